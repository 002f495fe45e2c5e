// File lists on the clipboard: the exact file-drop block, the URI list and
// GNOME's list, read back in each form, and the round trip with a real X
// client (xclip). Without a display the test starts itself again under
// xvfb-run; without xvfb-run or xclip the X cases are skipped with the reason.

#include "KeloTestSupport.h"

#include <Kelocontrols/ClipboardFiles.h>
#include <Kelocontrols/FileNameCodec.h>

#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <unistd.h>

#include <cstdlib>
#include <vector>

using namespace Kelocontrols;

namespace {

QByteArray header20()
{
    return QByteArray("\x14\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 20);
}

bool xclipUsable(QString &reason)
{
    if (QGuiApplication::platformName() != "xcb") {
        reason = "no X display (xvfb-run is missing)";
        return false;
    }
    if (QStandardPaths::findExecutable("xclip").isEmpty()) {
        reason = "xclip is not installed (scripts/setup installs it)";
        return false;
    }
    return true;
}

/// Runs xclip with @p arguments while the event loop serves our side of the clipboard; its standard output.
QByteArray runXclip(const QStringList &arguments, const QByteArray &input = QByteArray())
{
    QProcess xclip;
    xclip.start("xclip", arguments);
    if (!xclip.waitForStarted(10000))
        return "<xclip did not start>";
    if (!input.isNull()) {
        xclip.write(input);
        xclip.closeWriteChannel();
    }
    QByteArray output;
    // QTRY keeps the event loop running: xclip's request is answered by this very process.
    for (int waited = 0; xclip.state() != QProcess::NotRunning && waited < 30000; waited += 20) {
        QTest::qWait(20);
        output += xclip.readAllStandardOutput();
    }
    output += xclip.readAllStandardOutput();
    return output;
}

} // namespace

class TestClipboardFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blockLayout();
    void putOffersThreeForms();
    void roundTrip_data();
    void roundTrip();
    void emptyLists();
    void readsEachForm_data();
    void readsEachForm();
    void xclipReadsWhatWePut();
    void weReadWhatXclipPuts_data();
    void weReadWhatXclipPuts();
};

void TestClipboardFiles::blockLayout()
{
    QCOMPARE(fileDropBlock({"/tmp/a b", "/c"}), header20() + QByteArray("/tmp/a b\0/c\0\0", 13));
    QCOMPARE(fileDropBlock({}), header20() + QByteArray(1, '\0'));
    // Names are their file-name bytes: UTF-8, and bytes that are not UTF-8 as they are.
    const QString odd = FileNameCodec::decode(QByteArray("/x/caf\xe9"));
    QCOMPARE(fileDropBlock({odd, QString::fromUtf8("/x/\xc3\xbc")}),
        header20() + QByteArray("/x/caf\xe9\0/x/\xc3\xbc\0\0", 15));
}

void TestClipboardFiles::putOffersThreeForms()
{
    QVERIFY(ClipboardPutFiles({"/tmp/a b", "/tmp/\"q\"#%"}));
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    QVERIFY(data);
    QCOMPARE(data->data("application/x-kelocontrols-hdrop"), header20() + QByteArray("/tmp/a b\0/tmp/\"q\"#%\0\0", 21));
    QCOMPARE(data->data("text/uri-list"), QByteArray("file:///tmp/a%20b\r\nfile:///tmp/%22q%22%23%25\r\n"));
    QCOMPARE(
        data->data("x-special/gnome-copied-files"), QByteArray("copy\nfile:///tmp/a%20b\nfile:///tmp/%22q%22%23%25"));
}

void TestClipboardFiles::roundTrip_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::newRow("plain") << QStringList{"/home/u/a.txt", "/home/u/folder"};
    QTest::newRow("blanks, quotes, newline, percent")
        << QStringList{"/t/a b", "/t/'s' \"d\"", "/t/line\nbreak", "/t/100%", "/t/#x?y"};
    QTest::newRow("not UTF-8") << QStringList{
        FileNameCodec::decode(QByteArray("/t/\xff\xfe")), QString::fromUtf8("/t/\xe2\x82\xac")};
}

void TestClipboardFiles::roundTrip()
{
    QFETCH(QStringList, paths);
    QVERIFY(ClipboardPutFiles(paths));
    QStringList read = {"kept"};
    QVERIFY(ClipboardGetFiles(read));
    QCOMPARE(read, QStringList{"kept"} + paths);
    // Each of the other forms alone brings back the same list.
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    for (const QString &format : {QString("text/uri-list"), QString("x-special/gnome-copied-files")}) {
        QMimeData only;
        only.setData(format, data->data(format));
        QCOMPARE(filesOfMimeData(&only), paths);
    }
}

void TestClipboardFiles::emptyLists()
{
    QVERIFY(ClipboardPutFiles({}));
    const QMimeData *data = QGuiApplication::clipboard()->mimeData();
    QCOMPARE(data->data("application/x-kelocontrols-hdrop").size(), 21);
    QStringList read = {"untouched"};
    QVERIFY(!ClipboardGetFiles(read));
    QCOMPARE(read, QStringList{"untouched"});
    QGuiApplication::clipboard()->setText("just text");
    QVERIFY(!ClipboardGetFiles(read));
    QGuiApplication::clipboard()->clear();
    QVERIFY(!ClipboardGetFiles(read));
    QCOMPARE(read, QStringList{"untouched"});
}

void TestClipboardFiles::readsEachForm_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("paths");
    QByteArray wide = header20();
    wide[16] = 1;
    for (const char16_t unit : u"/w/\u00fc\0/v\0\0")
        wide.append(char(unit & 0xff)).append(char(unit >> 8));
    wide.chop(2); // the literal's own terminator
    QTest::newRow("block") << "application/x-kelocontrols-hdrop" << header20() + QByteArray("/a\0/b\0\0", 7)
                           << QStringList{"/a", "/b"};
    QTest::newRow("block, wide") << "application/x-kelocontrols-hdrop" << wide
                                 << QStringList{QString::fromUtf8("/w/\xc3\xbc"), "/v"};
    QTest::newRow("block of no entries") << "application/x-kelocontrols-hdrop" << header20() + QByteArray(1, '\0')
                                         << QStringList();
    QTest::newRow("block, too short") << "application/x-kelocontrols-hdrop" << QByteArray("\x14\0\0", 3)
                                      << QStringList();
    QTest::newRow("block, path cut at 1,023")
        << "application/x-kelocontrols-hdrop" << header20() + "/" + QByteArray(1100, 'p') + QByteArray(2, '\0')
        << QStringList{"/" + QString(1022, 'p')};
    QTest::newRow("uri list, comments and hosts")
        << "text/uri-list"
        << QByteArray(
               "# comment\r\nfile:///a%20b\r\nfile://localhost/c\r\nfile://elsewhere/d\r\nhttp://x/e\r\nfile:/f\n")
        << QStringList{"/a b", "/c", "/f"};
    QTest::newRow("uri list, not UTF-8") << "text/uri-list" << QByteArray("file:///%FF%41\r\n")
                                         << QStringList{FileNameCodec::decode(QByteArray("/\xff"
                                                                                         "A"))};
    QTest::newRow("gnome, cut") << "x-special/gnome-copied-files" << QByteArray("cut\nfile:///x\nfile:///y%20z\n")
                                << QStringList{"/x", "/y z"};
    QTest::newRow("gnome, nothing") << "x-special/gnome-copied-files" << QByteArray("copy") << QStringList();
}

void TestClipboardFiles::readsEachForm()
{
    QFETCH(QString, format);
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, paths);
    auto *data = new QMimeData;
    data->setData(format, bytes);
    QGuiApplication::clipboard()->setMimeData(data);
    QStringList read;
    QCOMPARE(ClipboardGetFiles(read), !paths.isEmpty());
    QCOMPARE(read, paths);
}

void TestClipboardFiles::xclipReadsWhatWePut()
{
    QString reason;
    if (!xclipUsable(reason))
        QSKIP(qPrintable(reason));
    const QStringList paths = {"/tmp/a b.txt", FileNameCodec::decode(QByteArray("/tmp/caf\xe9"))};
    QVERIFY(ClipboardPutFiles(paths));
    QCOMPARE(runXclip({"-o", "-selection", "clipboard", "-t", "text/uri-list"}),
        QByteArray("file:///tmp/a%20b.txt\r\nfile:///tmp/caf%E9\r\n"));
    QCOMPARE(runXclip({"-o", "-selection", "clipboard", "-t", "x-special/gnome-copied-files"}),
        QByteArray("copy\nfile:///tmp/a%20b.txt\nfile:///tmp/caf%E9"));
    const QByteArray targets = runXclip({"-o", "-selection", "clipboard", "-t", "TARGETS"});
    QVERIFY2(targets.contains("application/x-kelocontrols-hdrop"), targets.constData());
}

void TestClipboardFiles::weReadWhatXclipPuts_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("paths");
    QTest::newRow("uri list") << "text/uri-list" << QByteArray("file:///srv/x%20y\r\nfile:///srv/z\r\n")
                              << QStringList{"/srv/x y", "/srv/z"};
    QTest::newRow("gnome") << "x-special/gnome-copied-files" << QByteArray("copy\nfile:///srv/g")
                           << QStringList{"/srv/g"};
}

void TestClipboardFiles::weReadWhatXclipPuts()
{
    QFETCH(QString, format);
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, paths);
    QString reason;
    if (!xclipUsable(reason))
        QSKIP(qPrintable(reason));
    runXclip({"-i", "-selection", "clipboard", "-t", format}, bytes); // xclip stays behind to serve the selection
    // The clipboard changes hands asynchronously: ask until our side has noticed.
    const auto readList = [] {
        QStringList read;
        ClipboardGetFiles(read);
        return read;
    };
    QTRY_COMPARE_WITH_TIMEOUT(readList(), paths, 20000);
}

int main(int argc, char **argv)
{
    KeloTest::restartUnderXvfb(argc, argv);
    QApplication app(argc, argv);
    TestClipboardFiles test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_clipboardfiles.moc"
