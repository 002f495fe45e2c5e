// Copying and moving with the library's confirmations, unique names and
// boxes, checked on a real file system in a temporary folder: for each case,
// the boxes shown, the answer and exactly what is on disk afterwards.

#include "FileTreeFixture.h"

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

struct Box
{
    QString prompt;
    int style;
    QString title;
};

/// Scripts MsgBox for one test: records every box and answers from a queue (OK when it runs dry).
class ScriptedBoxes
{
public:
    explicit ScriptedBoxes(QList<int> answers = {})
        : m_answers(std::move(answers))
    {
        m_previous = setMsgBoxHandler([this](const QString &prompt, int style, const QString &title) {
            boxes.append({prompt, style, title});
            return m_answers.isEmpty() ? MsgBoxResult::OK : m_answers.takeFirst();
        });
    }
    ~ScriptedBoxes() { setMsgBoxHandler(m_previous); }

    QStringList titles() const
    {
        QStringList result;
        for (const Box &box : boxes)
            result.append(box.title);
        return result;
    }

    QList<Box> boxes;

private:
    QList<int> m_answers;
    MsgBoxHandler m_previous;
};

constexpr int Yes = MsgBoxResult::Yes;
constexpr int No = MsgBoxResult::No;
constexpr int Cancel = MsgBoxResult::Cancel;
const QString CrLf = QStringLiteral("\r\n");

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
    void boxTexts_data();
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
    const QString fileBox = "Confirm File Replace";
    const QString folderBox = "Confirm Folder Replace";
    const QStringList two = {"a/", "a/x.txt=new", "b/", "b/x.txt=old"};
    const QStringList folders = {"a/", "a/d/", "a/d/f=new", "a/d/g=only in source", "a/d/s/", "a/d/s/t=deep", "b/",
        "b/d/", "b/d/f=old", "b/d/h=only in target"};

    // Files to another folder, and onto an existing file.
    QTest::newRow("file copy") << QStringList{"a/", "a/x.txt=1", "b/"} << "item"
                               << "a/x.txt"
                               << "b" << true << QList<int>() << "b/x.txt" << none
                               << QStringList{"a/", "a/x.txt=1", "b/", "b/x.txt=1"};
    QTest::newRow("file move") << QStringList{"a/", "a/x.txt=1", "b/"} << "item"
                               << "a/x.txt"
                               << "b" << false << QList<int>() << "b/x.txt" << none
                               << QStringList{"a/", "b/", "b/x.txt=1"};
    QTest::newRow("file copy, replace Yes") << two << "item"
                                            << "a/x.txt"
                                            << "b" << true << QList<int>{Yes} << "b/x.txt" << QStringList{fileBox}
                                            << QStringList{"a/", "a/x.txt=new", "b/", "b/x.txt=new"};
    QTest::newRow("file copy, replace No") << two << "item"
                                           << "a/x.txt"
                                           << "b" << true << QList<int>{No} << "" << QStringList{fileBox} << two;
    QTest::newRow("file move, replace Yes") << two << "item"
                                            << "a/x.txt"
                                            << "b" << false << QList<int>{Yes} << "b/x.txt" << QStringList{fileBox}
                                            << QStringList{"a/", "b/", "b/x.txt=new"};
    QTest::newRow("file move, replace No") << two << "item"
                                           << "a/x.txt"
                                           << "b" << false << QList<int>{No} << "" << QStringList{fileBox} << two;
    QTest::newRow("file copy over a read-only file")
        << QStringList{"a/", "a/x.txt=new", "b/", "b/x.txt=old"} << "file"
        << "a/x.txt"
        << "b" << true << QList<int>{Yes} << "b/x.txt" << QStringList{fileBox}
        << QStringList{"a/", "a/x.txt=new", "b/", "b/x.txt=new"};
    QTest::newRow("file move over a broken link, Yes")
        << QStringList{"a/", "a/x.txt=1", "b/", "b/x.txt->gone"} << "item"
        << "a/x.txt"
        << "b" << false << QList<int>{Yes} << "b/x.txt" << QStringList{fileBox} << QStringList{"a/", "b/", "b/x.txt=1"};
    QTest::newRow("file onto a folder of its name")
        << QStringList{"a/", "a/x=1", "b/", "b/x/", "b/x/in=2"} << "item"
        << "a/x"
        << "b" << true << QList<int>() << "b/x" << none << QStringList{"a/", "a/x=1", "b/", "b/x/", "b/x/in=2"};

    // A file into its own folder: numbered copies without a question, even for a move.
    QTest::newRow("file copy into its folder") << QStringList{"a/", "a/x.txt=1"} << "item"
                                               << "a/x.txt"
                                               << "a" << true << QList<int>() << "a/Copy (2) of x.txt" << none
                                               << QStringList{"a/", "a/Copy (2) of x.txt=1", "a/x.txt=1"};
    QTest::newRow("file copy into its folder, third")
        << QStringList{"a/", "a/x.txt=1", "a/Copy (2) of x.txt=2"} << "file"
        << "a/x.txt"
        << "a" << true << QList<int>() << "a/Copy (3) of x.txt" << none
        << QStringList{"a/", "a/Copy (2) of x.txt=2", "a/Copy (3) of x.txt=1", "a/x.txt=1"};
    QTest::newRow("file copy into its folder, gap filled")
        << QStringList{"a/", "a/x.txt=1", "a/Copy (3) of x.txt=3"} << "file"
        << "a/x.txt"
        << "a" << true << QList<int>() << "a/Copy (2) of x.txt" << none
        << QStringList{"a/", "a/Copy (2) of x.txt=1", "a/Copy (3) of x.txt=3", "a/x.txt=1"};
    QTest::newRow("file move into its folder")
        << QStringList{"a/", "a/x.txt=1"} << "item"
        << "a/x.txt"
        << "a" << false << QList<int>() << "a/Copy (2) of x.txt" << none << QStringList{"a/", "a/Copy (2) of x.txt=1"};

    // Folders to another folder, and onto an existing folder.
    QTest::newRow("folder copy") << QStringList{"a/", "a/d/", "a/d/f=1", "a/d/s/", "a/d/s/t=2", "b/"} << "item"
                                 << "a/d"
                                 << "b" << true << QList<int>() << "b/d" << none
                                 << QStringList{"a/", "a/d/", "a/d/f=1", "a/d/s/", "a/d/s/t=2", "b/", "b/d/", "b/d/f=1",
                                        "b/d/s/", "b/d/s/t=2"};
    QTest::newRow("folder move") << QStringList{"a/", "a/d/", "a/d/f=1", "a/d/s/", "a/d/s/t=2", "b/"} << "item"
                                 << "a/d"
                                 << "b" << false << QList<int>() << "b/d" << none
                                 << QStringList{"a/", "b/", "b/d/", "b/d/f=1", "b/d/s/", "b/d/s/t=2"};
    QTest::newRow("folder copy, replace Yes")
        << folders << "item"
        << "a/d"
        << "b" << true << QList<int>{Yes} << "b/d" << QStringList{folderBox}
        << QStringList{"a/", "a/d/", "a/d/f=new", "a/d/g=only in source", "a/d/s/", "a/d/s/t=deep", "b/", "b/d/",
               "b/d/f=new", "b/d/g=only in source", "b/d/h=only in target", "b/d/s/", "b/d/s/t=deep"};
    QTest::newRow("folder copy, replace No")
        << folders << "item"
        << "a/d"
        << "b" << true << QList<int>{No} << "b/d" << QStringList{folderBox}
        << QStringList{"a/", "a/d/", "a/d/f=new", "a/d/g=only in source", "a/d/s/", "a/d/s/t=deep", "b/", "b/d/",
               "b/d/f=old", "b/d/g=only in source", "b/d/h=only in target", "b/d/s/", "b/d/s/t=deep"};
    QTest::newRow("folder copy, replace Cancel")
        << folders << "item"
        << "a/d"
        << "b" << true << QList<int>{Cancel} << "" << QStringList{folderBox} << folders;
    QTest::newRow("folder move, replace Yes moves nothing")
        << folders << "item"
        << "a/d"
        << "b" << false << QList<int>{Yes} << "b/d" << QStringList{folderBox} << folders;
    QTest::newRow("folder move, replace No moves nothing")
        << folders << "item"
        << "a/d"
        << "b" << false << QList<int>{No} << "b/d" << QStringList{folderBox} << folders;
    QTest::newRow("folder move, replace Cancel")
        << folders << "item"
        << "a/d"
        << "b" << false << QList<int>{Cancel} << "" << QStringList{folderBox} << folders;
    QTest::newRow("folder copy, a file where the source has a folder")
        << QStringList{"a/", "a/d/", "a/d/s/", "a/d/s/t=1", "a/d/u=2", "b/", "b/d/", "b/d/s=file"} << "folder"
        << "a/d"
        << "b" << true << QList<int>{Yes} << "b/d" << QStringList{folderBox}
        << QStringList{"a/", "a/d/", "a/d/s/", "a/d/s/t=1", "a/d/u=2", "b/", "b/d/", "b/d/s=file", "b/d/u=2"};
    QTest::newRow("folder onto a file of its name")
        << QStringList{"a/", "a/d/", "a/d/f=1", "b/", "b/d=file"} << "item"
        << "a/d"
        << "b" << true << QList<int>() << "b/d" << none << QStringList{"a/", "a/d/", "a/d/f=1", "b/", "b/d=file"};

    // A folder into its own parent, onto itself, into its own sub-folder.
    QTest::newRow("folder copy into its parent")
        << QStringList{"a/", "a/d/", "a/d/f=1"} << "item"
        << "a/d"
        << "a" << true << QList<int>() << "a/Copy (2) of d" << none
        << QStringList{"a/", "a/Copy (2) of d/", "a/Copy (2) of d/f=1", "a/d/", "a/d/f=1"};
    QTest::newRow("folder move into its parent") << QStringList{"a/", "a/d/", "a/d/f=1"} << "item"
                                                 << "a/d"
                                                 << "a" << false << QList<int>() << "a/Copy (2) of d" << none
                                                 << QStringList{"a/", "a/Copy (2) of d/", "a/Copy (2) of d/f=1"};
    QTest::newRow("folder onto itself") << QStringList{"a/", "a/d/", "a/d/f=1"} << "item"
                                        << "a/d"
                                        << "a/d" << true << QList<int>() << ""
                                        << QStringList{"Error copying file or folder"}
                                        << QStringList{"a/", "a/d/", "a/d/f=1"};
    QTest::newRow("folder moved onto itself")
        << QStringList{"a/", "a/f=1"} << "folder"
        << "a"
        << "a" << false << QList<int>() << "" << QStringList{"Error copying file or folder"}
        << QStringList{"a/", "a/f=1"};
    QTest::newRow("folder copy into its own sub-folder")
        << QStringList{"a/", "a/f=1", "a/s/", "a/s/g=2"} << "item"
        << "a"
        << "a/s" << true << QList<int>() << "a/s/a" << none
        << QStringList{"a/", "a/f=1", "a/s/", "a/s/a/", "a/s/a/f=1", "a/s/a/s/", "a/s/a/s/g=2", "a/s/g=2"};
    QTest::newRow("folder copy into its own sub-folder, again")
        << QStringList{"a/", "a/f=1", "a/s/", "a/s/a/", "a/s/a/old=0"} << "item"
        << "a"
        << "a/s" << true << QList<int>{Yes} << "a/s/a" << QStringList{folderBox}
        << QStringList{"a/", "a/f=1", "a/s/", "a/s/a/", "a/s/a/f=1", "a/s/a/old=0", "a/s/a/s/"};
    QTest::newRow("folder move into its own sub-folder")
        << QStringList{"a/", "a/f=1", "a/s/"} << "item"
        << "a"
        << "a/s" << false << QList<int>() << "a/s/a" << none << QStringList{"a/", "a/f=1", "a/s/"};

    // Links are copied and moved as links.
    QTest::newRow("broken link copy") << QStringList{"a/", "a/dead->nowhere", "b/"} << "item"
                                      << "a/dead"
                                      << "b" << true << QList<int>() << "b/dead" << none
                                      << QStringList{"a/", "a/dead->nowhere", "b/", "b/dead->nowhere"};
    QTest::newRow("broken link move") << QStringList{"a/", "a/dead->nowhere", "b/"} << "item"
                                      << "a/dead"
                                      << "b" << false << QList<int>() << "b/dead" << none
                                      << QStringList{"a/", "b/", "b/dead->nowhere"};
    QTest::newRow("link to a folder copy")
        << QStringList{"a/", "a/real/", "a/real/f=1", "a/ln->real", "b/"} << "item"
        << "a/ln"
        << "b" << true << QList<int>() << "b/ln" << none
        << QStringList{"a/", "a/ln->real", "a/real/", "a/real/f=1", "b/", "b/ln->real"};
    QTest::newRow("link to a folder move") << QStringList{"a/", "a/real/", "a/real/f=1", "a/ln->real", "b/"} << "item"
                                           << "a/ln"
                                           << "b" << false << QList<int>() << "b/ln" << none
                                           << QStringList{"a/", "a/real/", "a/real/f=1", "b/", "b/ln->real"};
    QTest::newRow("folder with links inside")
        << QStringList{"a/", "a/d/", "a/d/in->../outside", "a/outside/", "a/outside/f=1", "b/"} << "item"
        << "a/d"
        << "b" << true << QList<int>() << "b/d" << none
        << QStringList{
               "a/", "a/d/", "a/d/in->../outside", "a/outside/", "a/outside/f=1", "b/", "b/d/", "b/d/in->../outside"};

    // Odd names and missing sources.
    QTest::newRow("names with blanks, quotes and newlines")
        << QStringList{"a/", "a/we ird \"q\" 'n\nl'/", "a/we ird \"q\" 'n\nl'/x y\nz=1", "b/"} << "item"
        << "a/we ird \"q\" 'n\nl'"
        << "b" << false << QList<int>() << "b/we ird \"q\" 'n\nl'" << none
        << QStringList{"a/", "b/", "b/we ird \"q\" 'n\nl'/", "b/we ird \"q\" 'n\nl'/x y\nz=1"};
    QTest::newRow("missing source") << QStringList{"a/", "b/"} << "item"
                                    << "a/none"
                                    << "b" << true << QList<int>() << "" << none << QStringList{"a/", "b/"};
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
    ScriptedBoxes boxes(answers);
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

    ScriptedBoxes boxes({No});
    QCOMPARE(TransferFile(at("a/x.txt"), at("b"), true), QString());
    QCOMPARE(boxes.boxes.size(), 1);
    const QString expected = "This folder already contains a file named 'x.txt'" + CrLf + CrLf
        + "Would you like to replace the existing file" + CrLf + "10 bytes.  Modified: " + formatGeneralDate(older)
        + CrLf + CrLf + "With this one ?" + CrLf + "5 bytes.  Modified: " + formatGeneralDate(newer);
    QCOMPARE(boxes.boxes[0].prompt, expected);
    QCOMPARE(boxes.boxes[0].style, 52);
    QCOMPARE(boxes.boxes[0].title, QString("Confirm File Replace"));
}

void TestFileTransfer::boxTexts_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<QString>("prompt");
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("title");

    QTest::newRow("ConfirmFolderReplace") << 0
                                          << "This folder already contains a folder named 'Docs'" + CrLf + CrLf
            + "If the files in the existing folder have the same name as files in the" + CrLf
            + "folder you are moving or copying, they will be replaced. Do you still" + CrLf
            + "want to move or copy the folder?" + CrLf
                                          << 51 << "Confirm Folder Replace";
    QTest::newRow("ConfirmFolderDelete") << 1
                                         << "Are you sure you want to remove the folder 'Docs' and" + CrLf
            + "move all its contents to the Recycle Bin?"
                                         << 52 << "Confirm Folder Delete";
    QTest::newRow("ConfirmReadOnlyFolderDelete") << 2
                                                 << "The folder 'Docs' is a read-only folder.  Are you sure you" + CrLf
            + "want to remove it and move all its contents to the Recycle Bin?"
                                                 << 52 << "Confirm Folder Delete";
    QTest::newRow("ShowFolderNotAccessible")
        << 3 << "Docs is not accessible." + CrLf + CrLf + "This folder was moved or removed." << 16
        << "Folder Not Accessible";
    QTest::newRow("ShowInvalidNameChars")
        << 4 << "A file cannot contain any of the following characters:" + CrLf + "              \\ / : * ? \" < > |"
        << 16 << "Rename";
    QTest::newRow("ShowCopySameFolderError")
        << 5 << "Cannot copy Docs:  The destination folder is the same as the source folder." + CrLf << 16
        << "Error copying file or folder";
}

void TestFileTransfer::boxTexts()
{
    QFETCH(int, which);
    QFETCH(QString, prompt);
    QFETCH(int, style);
    QFETCH(QString, title);

    ScriptedBoxes boxes({MsgBoxResult::No});
    const QString name = "Docs";
    const int answers[] = {ConfirmFolderReplace(name), ConfirmFolderDelete(name), ConfirmReadOnlyFolderDelete(name),
        ShowFolderNotAccessible(name), ShowInvalidNameChars(), ShowCopySameFolderError(name)};
    QCOMPARE(answers[0], MsgBoxResult::No); // the button pressed comes back
    QCOMPARE(boxes.boxes.size(), 6);
    QCOMPARE(boxes.boxes[which].prompt, prompt);
    QCOMPARE(boxes.boxes[which].style, style);
    QCOMPARE(boxes.boxes[which].title, title);
    QCOMPARE(prompt.count(QString(14, ' ') + "\\"), which == 4 ? 1 : 0);
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
    ScriptedBoxes boxes;
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
