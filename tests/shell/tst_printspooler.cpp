#include "PrintSpooler.h"

#include <QElapsedTimer>
#include <QTest>

#include "XdgTestSandbox.h"

using namespace Kelocontrols;
using Outcome = PrintSpooler::Outcome;

class tst_PrintSpooler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void spoolsBytesWithTitle();
    void outcomes_data();
    void outcomes();
    void slowSpoolerIsStopped();
};

void tst_PrintSpooler::spoolsBytesWithTitle()
{
    XdgTestSandbox sandbox;
    sandbox.addRecorder(u"lp"_qs, true);
    const char raw[] = "first line\r\n\x00\x01\xff last";
    const QByteArray content(raw, sizeof raw - 1);
    const QByteArray file = QFile::encodeName(sandbox.write(u"files/doc.bin"_qs, content));
    QCOMPARE(PrintSpooler::print(file, "-odd \xff title"), Outcome::Spooled);
    QCOMPARE(sandbox.waitForArguments(u"lp"_qs, 0), (QList<QByteArray>{"-t", "-odd \xff title"}));
    QCOMPARE(sandbox.readRecord(u"lp"_qs, ".stdin"), content);
    QCOMPARE(XdgTestSandbox::childCount(), 0);
}

void tst_PrintSpooler::outcomes_data()
{
    QTest::addColumn<QByteArray>("lpScript");
    QTest::addColumn<bool>("fileExists");
    QTest::addColumn<int>("outcome");
    QTest::newRow("lp fails") << QByteArray("#!/bin/sh\nexit 3\n") << true << int(Outcome::Failed);
    QTest::newRow("lp killed") << QByteArray("#!/bin/sh\nkill -9 $$\n") << true << int(Outcome::Failed);
    QTest::newRow("no lp") << QByteArray() << true << int(Outcome::NoSpooler);
    QTest::newRow("missing file") << QByteArray("#!/bin/sh\nexit 0\n") << false << int(Outcome::Unreadable);
    QTest::newRow("lp cannot run") << QByteArray("\x01\x02junk") << true << int(Outcome::NotStarted);
}

void tst_PrintSpooler::outcomes()
{
    QFETCH(QByteArray, lpScript);
    QFETCH(bool, fileExists);
    QFETCH(int, outcome);
    XdgTestSandbox sandbox;
    if (!lpScript.isEmpty()) {
        sandbox.write(u"bin/lp"_qs, lpScript, true);
    }
    // Only the sandbox's bin folder: no lp of the machine can answer.
    qputenv("PATH", QFile::encodeName(sandbox.path(u"bin"_qs)));
    QString file = sandbox.path(u"files/none.txt"_qs);
    if (fileExists) {
        file = sandbox.write(u"files/doc.txt"_qs, "text\n");
    }
    QCOMPARE(int(PrintSpooler::print(QFile::encodeName(file), "doc.txt", 3000)), outcome);
    QCOMPARE(XdgTestSandbox::childCount(), 0);
}

void tst_PrintSpooler::slowSpoolerIsStopped()
{
    XdgTestSandbox sandbox;
    sandbox.write(u"bin/lp"_qs, "#!/bin/sh\nexec /bin/sleep 30\n", true);
    const QString file = sandbox.write(u"files/doc.txt"_qs, "text\n");
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(PrintSpooler::print(QFile::encodeName(file), "doc.txt", 300), Outcome::TimedOut);
    QVERIFY(clock.elapsed() >= 300);
    QVERIFY(clock.elapsed() < 5000);
    QCOMPARE(XdgTestSandbox::childCount(), 0);
}

QTEST_GUILESS_MAIN(tst_PrintSpooler)
#include "tst_printspooler.moc"
