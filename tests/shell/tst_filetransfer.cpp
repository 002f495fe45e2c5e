// Copying and moving with the library's confirmations, unique names and
// boxes, checked on a real file system in a temporary folder: for each case,
// the boxes shown, the answer and exactly what is on disk afterwards.

#include "FileTreeFixture.h"
#include "KeloTestSupport.h"

#include <Kelocontrols/ClipboardFiles.h>
#include <Kelocontrols/Conversions.h>
#include <Kelocontrols/FileConfirmations.h>
#include <Kelocontrols/FileTransfer.h>
#include <Kelocontrols/MsgBox.h>

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QMimeData>
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

/// One row of the transfers table. `what` is "<item|file|folder> <copy|move> <source> -> <destination>", relative to
/// the test folder; `result` the path answered ("" for none); `titles` those of the boxes shown, in order.
void transferRow(const char *name, const QStringList &tree, const QString &what, const QList<int> &answers,
    const QString &result, const QStringList &titles, const QStringList &after)
{
    const qsizetype call = what.indexOf(' '), mode = what.indexOf(' ', call + 1), arrow = what.indexOf(" -> ");
    QTest::newRow(name) << tree << what.left(call) << what.mid(mode + 1, arrow - mode - 1) << what.mid(arrow + 4)
                        << (what.mid(call + 1, mode - call - 1) == "copy") << answers << result << titles << after;
}

} // namespace

class TestFileTransfer : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString root() const { return m_dir.path(); }
    QString at(const QString &relative) const
    {
        return relative.isEmpty() ? QString() : relative == "." ? root() : root() + '/' + relative;
    }
private Q_SLOTS:
    void init() { QVERIFY(KeloTest::emptyFolder(root())); }
    void cleanupTestCase() { KeloTest::emptyFolder(root()); }

    void transfers_data();
    void transfers();
    void replaceBoxShowsBothFiles();
    void boxTexts();
    void uniqueNames();
    void pasteFiles();
};

void TestFileTransfer::transfers_data()
{
    QTest::addColumn<QStringList>("tree");
    QTest::addColumn<QString>("call"); // item, file or folder
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("destination");
    QTest::addColumn<bool>("copy");
    QTest::addColumn<QList<int>>("answers");
    QTest::addColumn<QString>("result");
    QTest::addColumn<QStringList>("titles");
    QTest::addColumn<QStringList>("after");

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
    transferRow("file move, replace No", two, "item move a/x.txt -> b", {No}, "", fileBox, two);
    transferRow("file copy over a read-only file", two, "file copy a/x.txt -> b", {Yes}, "b/x.txt", fileBox,
        {"a/", "a/x.txt=new", "b/", "b/x.txt=new"});
    transferRow("file move over a broken link, Yes", {"a/", "a/x.txt=1", "b/", "b/x.txt->gone"},
        "item move a/x.txt -> b", {Yes}, "b/x.txt", fileBox, {"a/", "b/", "b/x.txt=1"});
    transferRow("file onto a folder of its name", {"a/", "a/x=1", "b/", "b/x/", "b/x/in=2"}, "item copy a/x -> b", {},
        "b/x", none, {"a/", "a/x=1", "b/", "b/x/", "b/x/in=2"});

    // A file into its own folder: numbered copies without a question, even for a move.
    transferRow("file copy into its folder", {"a/", "a/x.txt=1"}, "item copy a/x.txt -> a", {}, "a/Copy (2) of x.txt",
        none, {"a/", "a/Copy (2) of x.txt=1", "a/x.txt=1"});
    transferRow("file copy into its folder, third", {"a/", "a/x.txt=1", "a/Copy (2) of x.txt=2"},
        "file copy a/x.txt -> a", {}, "a/Copy (3) of x.txt", none,
        {"a/", "a/Copy (2) of x.txt=2", "a/Copy (3) of x.txt=1", "a/x.txt=1"});
    transferRow("file copy into its folder, gap filled", {"a/", "a/x.txt=1", "a/Copy (3) of x.txt=3"},
        "file copy a/x.txt -> a", {}, "a/Copy (2) of x.txt", none,
        {"a/", "a/Copy (2) of x.txt=1", "a/Copy (3) of x.txt=3", "a/x.txt=1"});
    transferRow("file move into its folder", {"a/", "a/x.txt=1"}, "item move a/x.txt -> a", {}, "a/Copy (2) of x.txt",
        none, {"a/", "a/Copy (2) of x.txt=1"});

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
    transferRow(
        "folder move, replace No moves nothing", folders, "item move a/d -> b", {No}, "b/d", folderBox, folders);
    transferRow("folder move, replace Cancel", folders, "item move a/d -> b", {Cancel}, "", folderBox, folders);
    transferRow("folder copy, a file where the source has a folder",
        {"a/", "a/d/", "a/d/s/", "a/d/s/t=1", "a/d/u=2", "b/", "b/d/", "b/d/s=file"}, "folder copy a/d -> b", {Yes},
        "b/d", folderBox, {"a/", "a/d/", "a/d/s/", "a/d/s/t=1", "a/d/u=2", "b/", "b/d/", "b/d/s=file", "b/d/u=2"});
    transferRow("folder onto a file of its name", {"a/", "a/d/", "a/d/f=1", "b/", "b/d=file"}, "item copy a/d -> b", {},
        "b/d", none, {"a/", "a/d/", "a/d/f=1", "b/", "b/d=file"});

    // A folder into its own parent, onto itself, into its own sub-folder.
    transferRow("folder copy into its parent", inParent, "item copy a/d -> a", {}, "a/Copy (2) of d", none,
        inParent + QStringList{"a/Copy (2) of d/", "a/Copy (2) of d/f=1"});
    transferRow("folder move into its parent", inParent, "item move a/d -> a", {}, "a/Copy (2) of d", none,
        {"a/", "a/Copy (2) of d/", "a/Copy (2) of d/f=1"});
    transferRow("folder onto itself", inParent, "item copy a/d -> a/d", {}, "", sameFolder, inParent);
    transferRow("folder moved onto itself", {"a/", "a/f=1"}, "folder move a -> a", {}, "", sameFolder, {"a/", "a/f=1"});
    transferRow("folder copy into its own sub-folder", {"a/", "a/f=1", "a/s/", "a/s/g=2"}, "item copy a -> a/s", {},
        "a/s/a", none, {"a/", "a/f=1", "a/s/", "a/s/a/", "a/s/a/f=1", "a/s/a/s/", "a/s/a/s/g=2", "a/s/g=2"});
    transferRow("folder copy into its own sub-folder, again", {"a/", "a/f=1", "a/s/", "a/s/a/", "a/s/a/old=0"},
        "item copy a -> a/s", {Yes}, "a/s/a", folderBox,
        {"a/", "a/f=1", "a/s/", "a/s/a/", "a/s/a/f=1", "a/s/a/old=0", "a/s/a/s/"});
    transferRow("folder move into its own sub-folder", {"a/", "a/f=1", "a/s/"}, "item move a -> a/s", {}, "a/s/a", none,
        {"a/", "a/f=1", "a/s/"});

    // Links are copied and moved as links.
    transferRow("broken link copy", {"a/", "a/dead->nowhere", "b/"}, "item copy a/dead -> b", {}, "b/dead", none,
        {"a/", "a/dead->nowhere", "b/", "b/dead->nowhere"});
    transferRow("broken link move", {"a/", "a/dead->nowhere", "b/"}, "item move a/dead -> b", {}, "b/dead", none,
        {"a/", "b/", "b/dead->nowhere"});
    transferRow(
        "link to a folder copy", link, "item copy a/ln -> b", {}, "b/ln", none, link + QStringList{"b/ln->real"});
    transferRow("link to a folder move", link, "item move a/ln -> b", {}, "b/ln", none,
        {"a/", "a/real/", "a/real/f=1", "b/", "b/ln->real"});
    transferRow("folder with links inside", {"a/", "a/d/", "a/d/in->../outside", "a/outside/", "a/outside/f=1", "b/"},
        "item copy a/d -> b", {}, "b/d", none,
        {"a/", "a/d/", "a/d/in->../outside", "a/outside/", "a/outside/f=1", "b/", "b/d/", "b/d/in->../outside"});

    // Odd names and missing sources.
    transferRow("names with blanks, quotes and newlines", {"a/", "a/" + odd + "/", "a/" + odd + "/x y\nz=1", "b/"},
        "item move a/" + odd + " -> b", {}, "b/" + odd, none, {"a/", "b/", "b/" + odd + "/", "b/" + odd + "/x y\nz=1"});
    transferRow("missing source", {"a/", "b/"}, "item copy a/none -> b", {}, "", none, {"a/", "b/"});
}

void TestFileTransfer::transfers()
{
    QFETCH(QStringList, tree);
    QFETCH(QString, call);
    QFETCH(QString, source);
    QFETCH(QString, destination);
    QFETCH(bool, copy);
    QFETCH(QList<int>, answers);
    QFETCH(QString, result);
    QFETCH(QStringList, titles);
    QFETCH(QStringList, after);

    QVERIFY(makeTree(root(), tree));
    if (QTest::currentDataTag() == QByteArray("file copy over a read-only file"))
        QVERIFY(::chmod(KeloTest::diskPath(at("b/x.txt")).constData(), 0444) == 0);
    Boxes boxes(answers);
    QString answer;
    if (call == "item")
        answer = TransferItem(at(source), at(destination), copy);
    else if (call == "file")
        answer = TransferFile(at(source), at(destination), copy);
    else
        answer = TransferFolder(at(source), at(destination), copy);
    QCOMPARE(answer, at(result));
    QCOMPARE(boxes.titles(), titles);
    QCOMPARE(readTree(root()), sorted(after));
}

void TestFileTransfer::replaceBoxShowsBothFiles()
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
    QCOMPARE(boxes.boxes.size(), 1);
    const QString expected = "This folder already contains a file named 'x.txt'" + CrLf + CrLf
        + "Would you like to replace the existing file" + CrLf + "10 bytes.  Modified: " + formatGeneralDate(older)
        + CrLf + CrLf + "With this one ?" + CrLf + "5 bytes.  Modified: " + formatGeneralDate(newer);
    QCOMPARE(boxes.boxes[0].prompt, expected);
    QCOMPARE(boxes.boxes[0].style, 52);
    QCOMPARE(boxes.boxes[0].title, QString("Confirm File Replace"));
}

void TestFileTransfer::boxTexts()
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

void TestFileTransfer::uniqueNames()
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

void TestFileTransfer::pasteFiles()
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
    QCOMPARE(readTree(root() + "/a"), sorted({"x=1", "Copy (2) of x=1", "Copy (3) of x=1", "d/", "d/f=2"}));

    // A cut pastes as a move when the pasting side says so.
    QVERIFY(ClipboardPutFiles({at("a/Copy (2) of x"), at("a/d")}));
    QVERIFY(QDir().mkpath(at("c")));
    PasteFiles(at("c"), false);
    QCOMPARE(readTree(root() + "/c"), sorted({"Copy (2) of x=1", "d/", "d/f=2"}));
    QCOMPARE(readTree(root() + "/a"), sorted({"x=1", "Copy (3) of x=1"}));
}

QTEST_MAIN(TestFileTransfer)
#include "tst_filetransfer.moc"
