#include "DetachedLauncher.h"

#include <QElapsedTimer>
#include <QTest>

#include "XdgTestSandbox.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

using namespace Kelocontrols;

class tst_DetachedLauncher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findExecutable();
    void passesArgumentsByteExact();
    void runsDetachedInItsOwnSession();
    void reportsStartFailures_data();
    void reportsStartFailures();
};

void tst_DetachedLauncher::findExecutable()
{
    XdgTestSandbox sandbox;
    const QByteArray tool = QFile::encodeName(sandbox.addRecorder(u"kelo-tool"_qs));
    sandbox.write(u"bin/kelo-plain"_qs, "#!/bin/sh\n"); // not executable
    QDir().mkpath(sandbox.path(u"bin/kelo-folder"_qs));
    QCOMPARE(DetachedLauncher::findExecutable("kelo-tool"), tool);
    QCOMPARE(DetachedLauncher::findExecutable(tool), tool);
    QCOMPARE(DetachedLauncher::findExecutable("kelo-plain"), QByteArray());
    QCOMPARE(DetachedLauncher::findExecutable("kelo-folder"), QByteArray());
    QCOMPARE(DetachedLauncher::findExecutable("kelo-none"), QByteArray());
    QCOMPARE(DetachedLauncher::findExecutable(QFile::encodeName(sandbox.path(u"bin/kelo-none"_qs))), QByteArray());
    QCOMPARE(DetachedLauncher::findExecutable(""), QByteArray());
    // PATH is read at each call; empty entries are skipped; unset means the standard folders.
    qputenv("PATH", "::/nonexistent");
    QCOMPARE(DetachedLauncher::findExecutable("kelo-tool"), QByteArray());
    qunsetenv("PATH");
    QCOMPARE(DetachedLauncher::findExecutable("sh"), QByteArray("/usr/bin/sh"));
}

void tst_DetachedLauncher::passesArgumentsByteExact()
{
    XdgTestSandbox sandbox;
    const QByteArray tool = QFile::encodeName(sandbox.addRecorder(u"kelo-tool"_qs));
    const QList<QByteArray> arguments{"name as seen", "", "with space", "\xff\xfe\x80 raw", "$HOME", "'\"\\", "-x"};
    QCOMPARE(DetachedLauncher::start(tool, arguments), 0);
    // argv[0] is what the caller chose; the recorder sees the rest.
    QCOMPARE(sandbox.waitForArguments(u"kelo-tool"_qs), arguments.mid(1));
    QCOMPARE(XdgTestSandbox::childCount(), 0);
}

void tst_DetachedLauncher::runsDetachedInItsOwnSession()
{
    XdgTestSandbox sandbox;
    const QByteArray records = QFile::encodeName(sandbox.path(u"records"_qs));
    // A descriptor this process leaves open on exec must not reach the program.
    const int leaked = ::open("/dev/null", O_RDONLY);
    QVERIFY(leaked > 2);
    const QByteArray script = "#!/bin/sh\n"
                              "/bin/readlink /proc/self/fd/0 > '"
        + records
        + "/stdin'\n"
          "/bin/cat /proc/$$/stat > '"
        + records
        + "/stat'\n"
          "/bin/pwd > '"
        + records
        + "/pwd'\n"
          "if [ -e /proc/$$/fd/"
        + QByteArray::number(leaked) + " ]; then echo open; else echo closed; fi > '" + records
        + "/fd.tmp'\n"
          "/bin/mv '"
        + records + "/fd.tmp' '" + records + "/fd'\n";
    const QByteArray program = QFile::encodeName(sandbox.write(u"bin/kelo-probe"_qs, script, true));
    QCOMPARE(DetachedLauncher::start(program, {"kelo-probe"}, QFile::encodeName(sandbox.path(u"files"_qs))), 0);
    ::close(leaked);
    const QString fdRecord = sandbox.path(u"records/fd"_qs);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(fdRecord), 10000);
    QCOMPARE(sandbox.readRecord(u"fd"_qs, ""), QByteArray("closed\n"));
    QCOMPARE(sandbox.readRecord(u"stdin"_qs, ""), QByteArray("/dev/null\n"));
    QCOMPARE(sandbox.readRecord(u"pwd"_qs, ""), QFile::encodeName(sandbox.path(u"files"_qs)) + '\n');
    // "pid (comm) state ppid pgrp session ...": its own session, not our child.
    const QByteArray stat = sandbox.readRecord(u"stat"_qs, "");
    const QList<QByteArray> fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    QVERIFY(fields.size() > 3);
    QVERIFY(fields.at(1).toLongLong() != qint64(::getpid()));
    QVERIFY(fields.at(3).toLongLong() != qint64(::getsid(0)));

    // A working folder that cannot be entered does not stop the start: the caller's is kept.
    QVERIFY(QFile::remove(fdRecord));
    QCOMPARE(DetachedLauncher::start(program, {"kelo-probe"}, "/nonexistent/folder"), 0);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(fdRecord), 10000);
    QCOMPARE(sandbox.readRecord(u"pwd"_qs, ""), QFile::encodeName(QDir::currentPath()) + '\n');
}

void tst_DetachedLauncher::reportsStartFailures_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("executable");
    QTest::addColumn<int>("error");
    QTest::newRow("missing") << QByteArray() << false << ENOENT;
    QTest::newRow("not executable") << QByteArray("#!/bin/sh\n") << false << EACCES;
    QTest::newRow("no format") << QByteArray("\x01\x02\x03\x04junk") << true << ENOEXEC;
    QTest::newRow("missing interpreter") << QByteArray("#!/nonexistent/shell\n") << true << ENOENT;
}

void tst_DetachedLauncher::reportsStartFailures()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, executable);
    QFETCH(int, error);
    XdgTestSandbox sandbox;
    QString program = sandbox.path(u"bin/kelo-bad"_qs);
    if (!content.isEmpty()) {
        program = sandbox.write(u"bin/kelo-bad"_qs, content, executable);
    }
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(DetachedLauncher::start(QFile::encodeName(program), {"kelo-bad", "arg"}), error);
    QVERIFY(clock.elapsed() < 5000);
    QCOMPARE(XdgTestSandbox::childCount(), 0);
    QCOMPARE(DetachedLauncher::start(QByteArray(), {"x"}), EINVAL);
    QCOMPARE(DetachedLauncher::start(QFile::encodeName(program), {}), EINVAL);
}

QTEST_GUILESS_MAIN(tst_DetachedLauncher)
#include "tst_detachedlauncher.moc"
