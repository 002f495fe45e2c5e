// Copying and moving with the library's confirmations, unique names and
// boxes, checked on a real file system in a temporary folder: for each case,
// the boxes shown, the answer and exactly what is on disk afterwards. Also
// file lists on the clipboard: the exact file-drop block, the URI list and
// GNOME's list, read back in each form, and the round trip with a real X
// client (xclip). Without a display the test starts itself again under
// xvfb-run; without xvfb-run or xclip the X cases are skipped with the reason.

#include "FileTreeFixture.h"
#include "KeloTestSupport.h"

#include <Kelocontrols/ClipboardFiles.h>
#include <Kelocontrols/Conversions.h>
#include <Kelocontrols/FileConfirmations.h>
#include <Kelocontrols/FileNameCodec.h>
#include <Kelocontrols/FileTransfer.h>
#include <Kelocontrols/MsgBox.h>

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QMimeData>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <utime.h>

using namespace Kelocontrols;
using KeloTest::makeTree;
using KeloTest::readTree;
using KeloTest::sorted;

namespace {

using Boxes = KeloTest::MsgBoxRecorder;
constexpr int Yes = MsgBoxResult::Yes;
constexpr int No = MsgBoxResult::No;
constexpr int Cancel = MsgBoxResult::Cancel;
const QString CrLf = QStringLiteral("\r\n");
const QString hdrop = QStringLiteral("application/x-kelocontrols-hdrop");

/// One row of the transfers table. `what` is "<item|file|folder> <copy|move> <source> -> <destination>", relative to
/// the test folder; `result` the path answered ("" for none); `titles` those of the boxes shown, in order.
void transferRow(const char *name, const QStringList &tree, const QString &what, const QList<int> &answers,
    const QString &result, const QStringList &titles, const QStringList &after)
{
    const qsizetype call = what.indexOf(' '), mode = what.indexOf(' ', call + 1), arrow = what.indexOf(" -> ");
    QTest::newRow(name) << tree << what.left(call) << what.mid(mode + 1, arrow - mode - 1) << what.mid(arrow + 4)
                        << (what.mid(call + 1, mode - call - 1) == "copy") << answers << result << titles
                        << sorted(after);
}

QByteArray header20()
{
    return QByteArray("\x14\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 20);
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
    // Waiting keeps the event loop running: xclip's request is answered by this very process.
    for (int waited = 0; xclip.state() != QProcess::NotRunning && waited < 30000; waited += 20) {
        QTest::qWait(20);
        output += xclip.readAllStandardOutput();
    }
    return output + xclip.readAllStandardOutput();
}

QString xclipMissing()
{
    if (QGuiApplication::platformName() != "xcb")
        return "no X display (xvfb-run is missing)";
    return QStandardPaths::findExecutable("xclip").isEmpty() ? "xclip is not installed (scripts/setup installs it)"
                                                             : QString();
}

} // namespace

class TestFileTransfer : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString root() const { return m_dir.path(); }
    QString at(const QString &relative) const
    {
        return relative.isEmpty() ? QString() : relative == "." ? root() : root() + '/' + relative;
    }

private Q_SLOTS:
    void init() { QVERIFY(KeloTest::emptyFolder(root())); }
    void cleanupTestCase() { KeloTest::emptyFolder(root()); }

    void transfers_data()
    {
        // call: item, file or folder
        KeloTest::addColumns<QStringList, QString, QString, QString, bool, QList<int>, QString, QStringList,
            QStringList>({"tree", "call", "source", "destination", "copy", "answers", "result", "titles", "after"});

        const QStringList none;
        const QStringList fileBox = {"Confirm File Replace"};
        const QStringList folderBox = {"Confirm Folder Replace"};
        const QStringList sameFolder = {"Error copying file or folder"};
        const QStringList one = {"a/", "a/x.txt=1", "b/"};
        const QStringList two = {"a/", "a/x.txt=new", "b/", "b/x.txt=old"};
        const QStringList folders = {"a/", "a/d/", "a/d/f=new", "a/d/g=only in source", "a/d/s/", "a/d/s/t=deep", "b/",
            "b/d/", "b/d/f=old", "b/d/h=only in target"};
        const QStringList merged = {"a/", "a/d/", "a/d/f=new", "a/d/g=only in source", "a/d/s/", "a/d/s/t=deep", "b/",
            "b/d/", "b/d/g=only in source", "b/d/h=only in target", "b/d/s/", "b/d/s/t=deep"};
        const QStringList tree = {"a/", "a/d/", "a/d/f=1", "a/d/s/", "a/d/s/t=2", "b/"};
        const QStringList inParent = {"a/", "a/d/", "a/d/f=1"};
        const QStringList link = {"a/", "a/real/", "a/real/f=1", "a/ln->real", "b/"};
        const QString odd = "we ird \"q\" 'n\nl'";

        // Files to another folder, and onto an existing file.
        transferRow("file copy", one, "item copy a/x.txt -> b", {}, "b/x.txt", none, one + QStringList{"b/x.txt=1"});
        transferRow("file move", one, "item move a/x.txt -> b", {}, "b/x.txt", none, {"a/", "b/", "b/x.txt=1"});
        transferRow("file copy, replace Yes", two, "item copy a/x.txt -> b", {Yes}, "b/x.txt", fileBox,
            {"a/", "a/x.txt=new", "b/", "b/x.txt=new"});
        transferRow("file copy, replace No", two, "item copy a/x.txt -> b", {No}, "", fileBox, two);
        transferRow("file move, replace Yes", two, "item move a/x.txt -> b", {Yes}, "b/x.txt", fileBox,
            {"a/", "b/", "b/x.txt=new"});
        transferRow("file copy over a read-only file", two, "file copy a/x.txt -> b", {Yes}, "b/x.txt", fileBox,
            {"a/", "a/x.txt=new", "b/", "b/x.txt=new"});
        transferRow("file move over a broken link, Yes", {"a/", "a/x.txt=1", "b/", "b/x.txt->gone"},
            "item move a/x.txt -> b", {Yes}, "b/x.txt", fileBox, {"a/", "b/", "b/x.txt=1"});
        transferRow("file onto a folder of its name", {"a/", "a/x=1", "b/", "b/x/", "b/x/in=2"}, "item copy a/x -> b",
            {}, "b/x", none, {"a/", "a/x=1", "b/", "b/x/", "b/x/in=2"});

        // A file into its own folder: numbered copies without a question, even for a move.
        transferRow("file copy into its folder", {"a/", "a/x.txt=1"}, "item copy a/x.txt -> a", {},
            "a/Copy (2) of x.txt", none, {"a/", "a/Copy (2) of x.txt=1", "a/x.txt=1"});
        transferRow("file copy into its folder, third", {"a/", "a/x.txt=1", "a/Copy (2) of x.txt=2"},
            "file copy a/x.txt -> a", {}, "a/Copy (3) of x.txt", none,
            {"a/", "a/Copy (2) of x.txt=2", "a/Copy (3) of x.txt=1", "a/x.txt=1"});
        transferRow("file move into its folder", {"a/", "a/x.txt=1"}, "item move a/x.txt -> a", {},
            "a/Copy (2) of x.txt", none, {"a/", "a/Copy (2) of x.txt=1"});

        // Folders to another folder, and onto an existing folder.
        transferRow("folder copy", tree, "item copy a/d -> b", {}, "b/d", none,
            tree + QStringList{"b/d/", "b/d/f=1", "b/d/s/", "b/d/s/t=2"});
        transferRow("folder move", tree, "item move a/d -> b", {}, "b/d", none,
            {"a/", "b/", "b/d/", "b/d/f=1", "b/d/s/", "b/d/s/t=2"});
        transferRow("folder copy, replace Yes", folders, "item copy a/d -> b", {Yes}, "b/d", folderBox,
            merged + QStringList{"b/d/f=new"});
        transferRow("folder copy, replace No", folders, "item copy a/d -> b", {No}, "b/d", folderBox,
            merged + QStringList{"b/d/f=old"});
        transferRow("folder copy, replace Cancel", folders, "item copy a/d -> b", {Cancel}, "", folderBox, folders);
        transferRow(
            "folder move, replace Yes moves nothing", folders, "item move a/d -> b", {Yes}, "b/d", folderBox, folders);
        transferRow("folder move onto an empty folder moves nothing", {"a/", "a/d/", "a/d/f=1", "b/", "b/d/"},
            "item move a/d -> b", {Yes}, "b/d", folderBox, {"a/", "a/d/", "a/d/f=1", "b/", "b/d/"});
        transferRow("folder copy, a file where the source has a folder",
            {"a/", "a/d/", "a/d/s/", "a/d/s/t=1", "a/d/u=2", "b/", "b/d/", "b/d/s=file"}, "folder copy a/d -> b", {Yes},
            "b/d", folderBox, {"a/", "a/d/", "a/d/s/", "a/d/s/t=1", "a/d/u=2", "b/", "b/d/", "b/d/s=file", "b/d/u=2"});
        transferRow("folder onto a file of its name", {"a/", "a/d/", "a/d/f=1", "b/", "b/d=file"}, "item copy a/d -> b",
            {}, "b/d", none, {"a/", "a/d/", "a/d/f=1", "b/", "b/d=file"});

        // A folder into its own parent, onto itself, into its own sub-folder.
        transferRow("folder copy into its parent", inParent, "item copy a/d -> a", {}, "a/Copy (2) of d", none,
            inParent + QStringList{"a/Copy (2) of d/", "a/Copy (2) of d/f=1"});
        transferRow("folder move into its parent", inParent, "item move a/d -> a", {}, "a/Copy (2) of d", none,
            {"a/", "a/Copy (2) of d/", "a/Copy (2) of d/f=1"});
        transferRow("folder onto itself", inParent, "item copy a/d -> a/d", {}, "", sameFolder, inParent);
        transferRow(
            "folder moved onto itself", {"a/", "a/f=1"}, "folder move a -> a", {}, "", sameFolder, {"a/", "a/f=1"});
        transferRow("folder copy into its own sub-folder", {"a/", "a/f=1", "a/s/", "a/s/g=2"}, "item copy a -> a/s", {},
            "a/s/a", none, {"a/", "a/f=1", "a/s/", "a/s/a/", "a/s/a/f=1", "a/s/a/s/", "a/s/a/s/g=2", "a/s/g=2"});
        transferRow("folder copy into its own sub-folder, again", {"a/", "a/f=1", "a/s/", "a/s/a/", "a/s/a/old=0"},
            "item copy a -> a/s", {Yes}, "a/s/a", folderBox,
            {"a/", "a/f=1", "a/s/", "a/s/a/", "a/s/a/f=1", "a/s/a/old=0", "a/s/a/s/"});
        transferRow("folder move into its own sub-folder", {"a/", "a/f=1", "a/s/"}, "item move a -> a/s", {}, "a/s/a",
            none, {"a/", "a/f=1", "a/s/"});

        // Links are copied and moved as links.
        transferRow("broken link copy", {"a/", "a/dead->nowhere", "b/"}, "item copy a/dead -> b", {}, "b/dead", none,
            {"a/", "a/dead->nowhere", "b/", "b/dead->nowhere"});
        transferRow("broken link move", {"a/", "a/dead->nowhere", "b/"}, "item move a/dead -> b", {}, "b/dead", none,
            {"a/", "b/", "b/dead->nowhere"});
        transferRow(
            "link to a folder copy", link, "item copy a/ln -> b", {}, "b/ln", none, link + QStringList{"b/ln->real"});
        transferRow("link to a folder move", link, "item move a/ln -> b", {}, "b/ln", none,
            {"a/", "a/real/", "a/real/f=1", "b/", "b/ln->real"});
        transferRow("folder with links inside",
            {"a/", "a/d/", "a/d/in->../outside", "a/outside/", "a/outside/f=1", "b/"}, "item copy a/d -> b", {}, "b/d",
            none,
            {"a/", "a/d/", "a/d/in->../outside", "a/outside/", "a/outside/f=1", "b/", "b/d/", "b/d/in->../outside"});

        // Odd names and missing sources.
        transferRow("names with blanks, quotes and newlines", {"a/", "a/" + odd + "/", "a/" + odd + "/x y\nz=1", "b/"},
            "item move a/" + odd + " -> b", {}, "b/" + odd, none,
            {"a/", "b/", "b/" + odd + "/", "b/" + odd + "/x y\nz=1"});
        transferRow("missing source", {"a/", "b/"}, "item copy a/none -> b", {}, "", none, {"a/", "b/"});
    }

    void transfers()
    {
        const auto [tree, call, source, destination, copy, result]
            = KeloTest::fetch<QStringList, QString, QString, QString, bool, QString>(
                {"tree", "call", "source", "destination", "copy", "result"});
        QVERIFY(makeTree(root(), tree));
        if (QTest::currentDataTag() == QByteArray("file copy over a read-only file"))
            QVERIFY(::chmod(KeloTest::diskPath(at("b/x.txt")).constData(), 0444) == 0);
        Boxes boxes(KeloTest::cell<QList<int>>("answers"));
        const auto transfer = call == "item" ? TransferItem : call == "file" ? TransferFile : TransferFolder;
        QCOMPARE(transfer(at(source), at(destination), copy), at(result));
        QTEST(boxes.titles(), "titles");
        QTEST(readTree(root()), "after");
    }

    void replaceBoxShowsBothFiles()
    {
        QVERIFY(makeTree(root(), {"a/", "a/x.txt=12345", "b/", "b/x.txt=1234567890"}));
        const QDateTime older = QDateTime::fromString("2021-03-04T05:06:07", Qt::ISODate);
        const QDateTime newer = QDateTime::fromString("2024-11-12T13:14:15", Qt::ISODate);
        const utimbuf oldTimes{older.toSecsSinceEpoch(), older.toSecsSinceEpoch()};
        const utimbuf newTimes{newer.toSecsSinceEpoch(), newer.toSecsSinceEpoch()};
        QCOMPARE(::utime(KeloTest::diskPath(at("b/x.txt")).constData(), &oldTimes), 0);
        QCOMPARE(::utime(KeloTest::diskPath(at("a/x.txt")).constData(), &newTimes), 0);

        Boxes boxes({No});
        QCOMPARE(TransferFile(at("a/x.txt"), at("b"), true), QString());
        QCOMPARE(boxes.titles(), QStringList{"Confirm File Replace"});
        QCOMPARE(boxes.styles(), QList<int>{52});
        QCOMPARE(boxes.prompts(),
            QStringList{"This folder already contains a file named 'x.txt'" + CrLf + CrLf
                + "Would you like to replace the existing file" + CrLf
                + "10 bytes.  Modified: " + formatGeneralDate(older) + CrLf + CrLf + "With this one ?" + CrLf
                + "5 bytes.  Modified: " + formatGeneralDate(newer)});
    }

    void boxTexts()
    {
        Boxes boxes({No});
        const QString name = "Docs";
        QCOMPARE(ConfirmFolderReplace(name), No); // the button pressed comes back
        ConfirmFolderDelete(name);
        ConfirmReadOnlyFolderDelete(name);
        ShowFolderNotAccessible(name);
        ShowInvalidNameChars();
        ShowCopySameFolderError(name);
        QCOMPARE(boxes.titles(),
            QStringList({"Confirm Folder Replace", "Confirm Folder Delete", "Confirm Folder Delete",
                "Folder Not Accessible", "Rename", "Error copying file or folder"}));
        QCOMPARE(boxes.styles(), QList<int>({51, 52, 52, 16, 16, 16}));
        QCOMPARE(boxes.prompts(),
            QStringList({"This folder already contains a folder named 'Docs'" + CrLf + CrLf
                    + "If the files in the existing folder have the same name as files in the" + CrLf
                    + "folder you are moving or copying, they will be replaced. Do you still" + CrLf
                    + "want to move or copy the folder?" + CrLf,
                "Are you sure you want to remove the folder 'Docs' and" + CrLf
                    + "move all its contents to the Recycle Bin?",
                "The folder 'Docs' is a read-only folder.  Are you sure you" + CrLf
                    + "want to remove it and move all its contents to the Recycle Bin?",
                "Docs is not accessible." + CrLf + CrLf + "This folder was moved or removed.",
                "A file cannot contain any of the following characters:" + CrLf + "              \\ / : * ? \" < > |",
                "Cannot copy Docs:  The destination folder is the same as the source folder." + CrLf}));
    }

    void uniqueNames()
    {
        QCOMPARE(UniqueNewFolderPath(root()), root() + "/New folder");
        QVERIFY(makeTree(root(), {"New folder/"}));
        QCOMPARE(UniqueNewFolderPath(root()), root() + "/New folder (2)");
        QCOMPARE(UniqueNewFolderPath(root() + "/"), root() + "/New folder (2)");
        // Only folders block a new folder's name, only files a copy's.
        QVERIFY(makeTree(root(), {"New folder (2)=a file", "New folder (3)/", "x.txt/", "d=file"}));
        QCOMPARE(UniqueNewFolderPath(root()), root() + "/New folder (2)");
        QCOMPARE(UniqueCopyFilePath(root(), "x.txt"), root() + "/x.txt");
        QCOMPARE(UniqueCopyFolderPath(root(), "d"), root() + "/d");
        QCOMPARE(UniqueCopyFilePath(root(), "d"), root() + "/Copy (2) of d");
        QCOMPARE(UniqueCopyFolderPath(root(), "x.txt"), root() + "/Copy (2) of x.txt");
        // Numbering goes on past ten without leading zeros, and fills gaps.
        for (int n = 2; n <= 11; ++n)
            QVERIFY(makeTree(root(), {QString("Copy (%1) of d=%1").arg(n)}));
        QCOMPARE(UniqueCopyFilePath(root(), "d"), root() + "/Copy (12) of d");
        QVERIFY(QFile::remove(root() + "/Copy (7) of d"));
        QCOMPARE(UniqueCopyFilePath(root(), "d"), root() + "/Copy (7) of d");
        // A name that is not UTF-8 keeps its bytes.
        const QString odd = FileNameCodec::decode(QByteArray("caf\xe9"));
        QVERIFY(makeTree(root(), {odd + "/"}));
        QCOMPARE(FileNameCodec::encode(UniqueCopyFolderPath(root(), odd)),
            FileNameCodec::encode(root()) + "/Copy (2) of caf\xe9");
    }

    void pasteFiles()
    {
        QVERIFY(makeTree(root(), {"a/", "a/x=1", "a/d/", "a/d/f=2", "b/"}));
        Boxes boxes;
        // Nothing without a destination, nothing without a list.
        QVERIFY(ClipboardPutFiles({at("a/x")}));
        PasteFiles(QString(), true);
        QGuiApplication::clipboard()->setMimeData(new QMimeData);
        PasteFiles(at("b"), true);
        QCOMPARE(readTree(root()), sorted({"a/", "a/x=1", "a/d/", "a/d/f=2", "b/"}));
        // Each item in the list's order; a missing one is skipped.
        QVERIFY(ClipboardPutFiles({at("a/x"), at("a/missing"), at("a/d")}));
        PasteFiles(at("b"), true);
        QCOMPARE(readTree(root()), sorted({"a/", "a/x=1", "a/d/", "a/d/f=2", "b/", "b/x=1", "b/d/", "b/d/f=2"}));
        // Pasting into the files' own folder twice: numbered copies, no question.
        QVERIFY(ClipboardPutFiles({at("a/x")}));
        PasteFiles(at("a"), true);
        PasteFiles(at("a"), true);
        QVERIFY(boxes.boxes.isEmpty());
        QCOMPARE(readTree(at("a")), sorted({"x=1", "Copy (2) of x=1", "Copy (3) of x=1", "d/", "d/f=2"}));
        // A cut pastes as a move when the pasting side says so.
        QVERIFY(ClipboardPutFiles({at("a/Copy (2) of x"), at("a/d")}));
        QVERIFY(makeTree(root(), {"c/"}));
        PasteFiles(at("c"), false);
        QCOMPARE(readTree(at("c")), sorted({"Copy (2) of x=1", "d/", "d/f=2"}));
        QCOMPARE(readTree(at("a")), sorted({"x=1", "Copy (3) of x=1"}));
    }

    void clipboardBlockAndForms()
    {
        QCOMPARE(fileDropBlock({"/tmp/a b", "/c"}), header20() + QByteArray("/tmp/a b\0/c\0\0", 13));
        QCOMPARE(fileDropBlock({}), header20() + QByteArray(1, '\0'));
        // Names are their file-name bytes: UTF-8, and bytes that are not UTF-8 as they are.
        const QString odd = FileNameCodec::decode(QByteArray("/x/caf\xe9"));
        QCOMPARE(fileDropBlock({odd, QString::fromUtf8("/x/\xc3\xbc")}),
            header20() + QByteArray("/x/caf\xe9\0/x/\xc3\xbc\0\0", 15));

        QVERIFY(ClipboardPutFiles({"/tmp/a b", "/tmp/\"q\"#%"}));
        const QMimeData *data = QGuiApplication::clipboard()->mimeData();
        QVERIFY(data);
        QCOMPARE(data->data(hdrop), header20() + QByteArray("/tmp/a b\0/tmp/\"q\"#%\0\0", 21));
        QCOMPARE(data->data("text/uri-list"), QByteArray("file:///tmp/a%20b\r\nfile:///tmp/%22q%22%23%25\r\n"));
        QCOMPARE(data->data("x-special/gnome-copied-files"),
            QByteArray("copy\nfile:///tmp/a%20b\nfile:///tmp/%22q%22%23%25"));

        // Empty lists: the block of no entries goes out; reading finds nothing and leaves the list alone.
        QVERIFY(ClipboardPutFiles({}));
        QCOMPARE(QGuiApplication::clipboard()->mimeData()->data(hdrop), header20() + QByteArray(1, '\0'));
        QStringList read = {"untouched"};
        QVERIFY(!ClipboardGetFiles(read));
        QGuiApplication::clipboard()->setText("just text");
        QVERIFY(!ClipboardGetFiles(read));
        QGuiApplication::clipboard()->clear();
        QVERIFY(!ClipboardGetFiles(read));
        QCOMPARE(read, QStringList{"untouched"});
    }

    void clipboardRoundTrip_data()
    {
        QTest::addColumn<QStringList>("paths");
        QTest::newRow("plain") << QStringList{"/home/u/a.txt", "/home/u/folder"};
        QTest::newRow("blanks, quotes, newline, percent")
            << QStringList{"/t/a b", "/t/'s' \"d\"", "/t/line\nbreak", "/t/100%", "/t/#x?y"};
        QTest::newRow("not UTF-8") << QStringList{
            FileNameCodec::decode(QByteArray("/t/\xff\xfe")), QString::fromUtf8("/t/\xe2\x82\xac")};
    }

    void clipboardRoundTrip()
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

    void xclipReadsWhatWePut()
    {
        if (const QString missing = xclipMissing(); !missing.isEmpty())
            QSKIP(qPrintable(missing));
        QVERIFY(ClipboardPutFiles({"/tmp/a b.txt", FileNameCodec::decode(QByteArray("/tmp/caf\xe9"))}));
        QCOMPARE(runXclip({"-o", "-selection", "clipboard", "-t", "text/uri-list"}),
            QByteArray("file:///tmp/a%20b.txt\r\nfile:///tmp/caf%E9\r\n"));
        QCOMPARE(runXclip({"-o", "-selection", "clipboard", "-t", "x-special/gnome-copied-files"}),
            QByteArray("copy\nfile:///tmp/a%20b.txt\nfile:///tmp/caf%E9"));
        const QByteArray targets = runXclip({"-o", "-selection", "clipboard", "-t", "TARGETS"});
        QVERIFY2(targets.contains(hdrop.toLatin1()), targets.constData());
    }

    void clipboardReadsEachForm_data()
    {
        // viaXclip: put there by another X client
        KeloTest::addColumns<bool, QString, QByteArray, QStringList>({"viaXclip", "format", "bytes", "paths"});
        QByteArray wide = header20();
        wide[16] = 1;
        for (const char16_t unit : u"/w/\u00fc\0/v\0\0")
            wide.append(char(unit & 0xff)).append(char(unit >> 8));
        wide.chop(2); // the literal's own terminator
        const auto row = [](const char *name, bool xclip, const QString &format, const QByteArray &bytes,
                             const QStringList &paths) { QTest::newRow(name) << xclip << format << bytes << paths; };
        row("block", false, hdrop, header20() + QByteArray("/a\0/b\0\0", 7), {"/a", "/b"});
        row("block, wide", false, hdrop, wide, {QString::fromUtf8("/w/\xc3\xbc"), "/v"});
        row("block of no entries", false, hdrop, header20() + QByteArray(1, '\0'), {});
        row("block, too short", false, hdrop, QByteArray("\x14\0\0", 3), {});
        row("block, path cut at 1,023", false, hdrop, header20() + "/" + QByteArray(1100, 'p') + QByteArray(2, '\0'),
            {"/" + QString(1022, 'p')});
        row("uri list, comments and hosts", false, "text/uri-list",
            "# comment\r\nfile:///a%20b\r\nfile://localhost/c\r\nfile://elsewhere/d\r\nhttp://x/e\r\nfile:/f\n",
            {"/a b", "/c", "/f"});
        row("uri list, not UTF-8", false, "text/uri-list", "file:///%FF%41\r\n",
            {FileNameCodec::decode(QByteArray("/\xff"
                                              "A"))});
        row("gnome, cut", false, "x-special/gnome-copied-files", "cut\nfile:///x\nfile:///y%20z\n", {"/x", "/y z"});
        row("gnome, nothing", false, "x-special/gnome-copied-files", "copy", {});
        row("xclip, uri list", true, "text/uri-list", "file:///srv/x%20y\r\nfile:///srv/z\r\n", {"/srv/x y", "/srv/z"});
        row("xclip, gnome", true, "x-special/gnome-copied-files", "copy\nfile:///srv/g", {"/srv/g"});
    }

    void clipboardReadsEachForm()
    {
        const auto [viaXclip, format, bytes, paths]
            = KeloTest::fetch<bool, QString, QByteArray, QStringList>({"viaXclip", "format", "bytes", "paths"});
        const auto readList = [](bool expected) {
            QStringList read;
            return ClipboardGetFiles(read) == expected ? read : QStringList{"<wrong answer>"};
        };
        if (viaXclip) {
            if (const QString missing = xclipMissing(); !missing.isEmpty())
                QSKIP(qPrintable(missing));
            runXclip({"-i", "-selection", "clipboard", "-t", format}, bytes); // xclip stays to serve the selection
            // The clipboard changes hands asynchronously: ask until our side has noticed.
            QTRY_COMPARE_WITH_TIMEOUT(readList(true), paths, 20000);
            return;
        }
        auto *data = new QMimeData;
        data->setData(format, bytes);
        QGuiApplication::clipboard()->setMimeData(data);
        QCOMPARE(readList(!paths.isEmpty()), paths);
    }
};

int main(int argc, char **argv)
{
    KeloTest::restartUnderXvfb(argc, argv);
    QApplication app(argc, argv);
    TestFileTransfer test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_filetransfer.moc"
