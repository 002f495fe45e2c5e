#include "KeloTestSupport.h"
#include "shell/XdgTestSandbox.h"

#include <Kelocontrols/CommonFile.h>
#include <Kelocontrols/Conversions.h>
#include <Kelocontrols/FileIcon.h>
#include <Kelocontrols/FileIconProvider.h>
#include <Kelocontrols/FileListModel.h>
#include <Kelocontrols/FileNameCodec.h>
#include <Kelocontrols/FileSystem.h>
#include <Kelocontrols/FileTypes.h>
#include <Kelocontrols/ImageList.h>
#include <Kelocontrols/KelofileView.h>
#include <Kelocontrols/ListView.h>
#include <Kelocontrols/MsgBox.h>
#include <Kelocontrols/PropertyBag.h>
#include <Kelocontrols/PropertyTable.h>
#include <Kelocontrols/ReportView.h>

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <cstdio>
#include <functional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;
Q_DECLARE_METATYPE(std::function<void(KelofileView &)>)

namespace {

using Column = FileListModel::Column;
using enum FileListModel::Column;

void writeFile(const QString &path, qint64 bytes)
{
    QVERIFY(KeloTest::writeFile(path, bytes));
}

void setModified(const QString &path, qint64 msecs)
{
    QVERIFY(KeloTest::setModified(path, msecs));
}

QString cell(KelofileView &view, int row, int column)
{
    return view.listFiles()->model()->text(row, column);
}

QStringList names(KelofileView &view)
{
    QStringList list;
    for (int r = 0; r < view.ItemCount(); ++r) {
        list << cell(view, r, Name);
    }
    return list;
}

// A control in run mode with a recorder of its fill events.
struct Recorder
{
    explicit Recorder(KelofileView &view)
    {
        QObject::connect(&view, &KelofileView::ChangedFolder, [this](int &cancel) { hit("ChangedFolder", cancel); });
        QObject::connect(&view, &KelofileView::BeforePaint, [this](int &cancel) { hit("BeforePaint", cancel); });
        QObject::connect(&view, &KelofileView::BeforeAddItem, [this](int &cancel) { hit("BeforeAddItem", cancel); });
        QObject::connect(&view, &KelofileView::AfterAddItem,
            [this](int &index) { events << QStringLiteral("AfterAddItem:%1").arg(index); });
        QObject::connect(&view, &KelofileView::AfterPaint, [this] { events << QStringLiteral("AfterPaint"); });
    }
    void hit(const char *name, int &cancel)
    {
        events << QString::fromLatin1(name);
        if (cancelAt == events.size()) {
            cancel = -1;
        }
    }
    QStringList events;
    int cancelAt = 0; // 1-based position in events whose handler cancels
};

} // namespace

class TestKelofileView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_dir.reset(new QTemporaryDir); }

    void freshControlHasItsConstituents();
    void defaults_data();
    void defaults();
    void eventOrderAndCancel_data();
    void eventOrderAndCancel();
    void columnsOfFilesAndFolders();
    void changedColumnComparesToTheSecond();
    void filterAndShowFolders();
    void hiddenAndSystemEntries();
    void emptyFolderAndEmptyPath();
    void designModeShowsAMessage();
    void myComputerInAnyCase();
    void myFoldersAsksTheHostAndMarksVanishedEntries();
    void programImagesAreDroppedAtTheNextFill();
    void totalSizeOverflows();
    void missingFolderRaises();
    void undecodableNamesStayReachable();
    void persistenceRoundTrip();
    void messageLinePlacement();
    void itemMembers();
    void itemMembersAtDesignTime_data();
    void itemMembersAtDesignTime();
    void imageMembers();
    void clickingAnItemRaisesItemClick();
    void headerClicksSort_data();
    void goUpRules_data();
    void goUpRules();
    void openingItemsByMouseAndKeys();
    void searchOrderAndSafety_data();
    void searchOrderAndSafety();
    void searchSkipsUnreadableFolders();
    void headerClicksSort();
    void refreshUpdatesInPlace();
    void refreshOfPseudoPaths();
    void refreshTimerRunsOnlyAtRunTime();
    void handlersMayChangeTheListDuringARefresh_data();
    void handlersMayChangeTheListDuringARefresh();
    void passesDoNotNest();
    void folderCountsAreFactsOfTheirTime();
    void virtualItemKeepsSharedImagesTrue();
    void missingImageKeysComeBackInBothLists();
    void namesDifferingInCaseKeepTheirItems();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestKelofileView::freshControlHasItsConstituents()
{
    KelofileView view;
    auto *list = view.findChild<ListView *>(QStringLiteral("ListFiles"));
    QVERIFY(list && view.findChild<QLineEdit *>(QStringLiteral("txtMessage")));
    QVERIFY(view.findChild<QTimer *>(QStringLiteral("RefreshTimer")));
    QVERIFY(view.findChild<ImageList *>(QStringLiteral("Image32")) == view.image32() && view.image32());
    QVERIFY(view.findChild<ImageList *>(QStringLiteral("Image16")) == view.image16() && view.image16());

    // Each column as "caption width(HIMETRIC) sort-column", the last seven hidden.
    QStringList columns;
    for (int c = 0; c < list->model()->columnCount(); ++c) {
        columns << QStringLiteral("%1 %2 %3%4")
                       .arg(list->model()->headerData(c, Qt::Horizontal).toString())
                       .arg(list->columnWidth(c))
                       .arg(FileListModel::columnSpec(c).sortColumn)
                       .arg(list->reportView()->isColumnHidden(c) ? " hidden" : "");
    }
    QCOMPARE(columns,
        (QStringList{"Name 1305 13", "Size 2540 8", "Type 2540 0", "Modified 2540 9", "Created 582 10",
            "Changed 6068 0", "Folder 0 0 hidden", "SortedSize 0 0 hidden", "SortedModified 0 0 hidden",
            "SortedCreated 0 0 hidden", "RealName 0 0 hidden", "Refresh 0 0 hidden", "SortName 0 0 hidden"}));

    // The fixed pictures; the sort arrows are in the small list only.
    const auto keys = [](ImageList *images) {
        QStringList all;
        for (int i = 1; i <= images->count(); ++i) {
            all << images->key(i) + (images->picture(i).isNull() ? QStringLiteral(" (no picture)") : QString());
        }
        return all;
    };
    QCOMPARE(keys(view.image32()), (QStringList{"Drive Unavailable", "FolderUnavailable"}));
    QCOMPARE(keys(view.image16()), (QStringList{"SortDown", "SortUp", "Drive Unavailable", "FolderUnavailable"}));
}

void TestKelofileView::defaults_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char *name, const QVariant &value) { QTest::newRow(name) << QByteArray(name) << value; };
    row("View", 3);
    row("BackColor", 0x80000005u);
    row("ForeColor", 0x80000008u);
    row("BorderStyle", 1);
    row("Appearance", 1);
    row("LimitToRoot", true);
    row("ShowFolders", true);
    row("AllowLabelEdit", true);
    row("LabelWrap", true);
    row("AllowHiddenFiles", false);
    row("AllowSystemFiles", false);
    row("ShowFolderDetails", false);
    row("OLEDragMode", 1);
    row("OLEDropMode", 2);
    row("RefreshInterval", 0);
    row("Path", QString());
    row("PathRoot", QString());
    row("Filter", QString());
    row("TotalSize", 0);
    row("ItemCount", 0);
    row("ItemIndex", 0);
    row("ItemSmallIcon", QString()); // no current item to report
    row("ImageCount", 2); // the large list
    row("ImageSmall", false);
}

void TestKelofileView::defaults()
{
    QFETCH(QByteArray, property);
    QFETCH(QVariant, value);
    KelofileView view;
    QCOMPARE(view.property(property.constData()), value);
}

void TestKelofileView::eventOrderAndCancel_data()
{
    QTest::addColumn<int>("cancelAt");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QStringList>("listed");
    const QStringList old = {"old.txt"};
    QTest::newRow("no cancel") << 0
                               << QStringList{"ChangedFolder", "BeforePaint", "BeforeAddItem", "AfterAddItem:1",
                                      "BeforeAddItem", "AfterAddItem:2", "BeforeAddItem", "AfterAddItem:3",
                                      "AfterPaint"}
                               << QStringList{"sub", "a.txt", "B.txt"};
    QTest::newRow("ChangedFolder") << 1 << QStringList{"ChangedFolder"} << old;
    QTest::newRow("BeforePaint") << 2 << QStringList{"ChangedFolder", "BeforePaint"} << old;
    QTest::newRow("second item") << 5
                                 << QStringList{"ChangedFolder", "BeforePaint", "BeforeAddItem", "AfterAddItem:1",
                                        "BeforeAddItem", "BeforeAddItem", "AfterAddItem:2", "AfterPaint"}
                                 << QStringList{"sub", "B.txt"};
}

void TestKelofileView::eventOrderAndCancel()
{
    QFETCH(int, cancelAt);
    QFETCH(QStringList, expected);
    QFETCH(QStringList, listed);
    QDir(m_dir->path()).mkpath(QStringLiteral("old"));
    writeFile(path("old/old.txt"), 1);
    QDir(m_dir->path()).mkpath(QStringLiteral("new/sub"));
    writeFile(path("new/B.txt"), 2);
    writeFile(path("new/a.txt"), 3);

    KelofileView view;
    view.setPathRoot(path("old"));
    QCOMPARE(names(view), QStringList{"old.txt"});

    Recorder recorder(view);
    recorder.cancelAt = cancelAt;
    view.setPathRoot(path("new"));
    QCOMPARE(recorder.events, expected);
    QCOMPARE(names(view), listed); // folders first, then files in name order without regard to case
}

void TestKelofileView::columnsOfFilesAndFolders()
{
    QDir(m_dir->path()).mkpath(QStringLiteral("docs"));
    writeFile(path("empty.txt"), 0);
    writeFile(path("one.txt"), 1);
    writeFile(path("big.txt"), 1025);
    const qint64 when = QDateTime(QDate(2024, 2, 29), QTime(13, 5, 9)).toMSecsSinceEpoch();
    setModified(path("big.txt"), when);

    KelofileView view;
    view.setPathRoot(m_dir->path());
    QCOMPARE(names(view), (QStringList{"docs", "big.txt", "empty.txt", "one.txt"}));
    QCOMPARE(cell(view, 2, Size), QStringLiteral("0KB"));
    QCOMPARE(cell(view, 3, Size), QStringLiteral("1KB"));
    QCOMPARE(cell(view, 1, Size), QStringLiteral("2KB"));
    QCOMPARE(cell(view, 1, SortedSize), QStringLiteral("000000001025"));
    QCOMPARE(cell(view, 1, SortedModified), QStringLiteral("2024-02-29 13:05:09"));
    QCOMPARE(cell(view, 1, Modified), formatGeneralDate(QDateTime::fromMSecsSinceEpoch(when)));
    QCOMPARE(cell(view, 1, Type), FileTypes::instance().fileTypeText(QStringLiteral("big.txt")));
    QVERIFY(!cell(view, 1, Type).isEmpty());
    const QString folder = FileSystem::cleanPath(m_dir->path());
    QCOMPARE(cell(view, 1, Folder), folder);
    QCOMPARE(cell(view, 1, RealName), QStringLiteral("big.txt"));
    QCOMPARE(cell(view, 1, Refresh), QString());
    QCOMPARE(cell(view, 1, SortName), QStringLiteral("big.txt"));
    QCOMPARE(view.TotalSize(), 1026);

    // A folder without details: type, folder, sort keys; no size or dates shown.
    QCOMPARE(cell(view, 0, Type), FileTypes::instance().folderTypeText());
    QCOMPARE(cell(view, 0, Size), QString());
    QCOMPARE(cell(view, 0, Modified), QString());
    QCOMPARE(cell(view, 0, Changed), QString());
    QCOMPARE(cell(view, 0, SortedSize), QStringLiteral("000000000000"));
    QCOMPARE(cell(view, 0, SortName), QStringLiteral(" docs"));
    QCOMPARE(cell(view, 0, RealName), QStringLiteral("docs"));
    QCOMPARE(cell(view, 0, Folder), folder);

    // Image keys: one per extension, in both lists; folders get their open form too.
    FileListModel *m = view.listFiles()->model();
    QCOMPARE(m->row(1).largeIcon, QStringLiteral("txt"));
    QCOMPARE(m->row(1).smallIcon, QStringLiteral("txt"));
    QCOMPARE(m->row(0).largeIcon, FileTypes::instance().folderTypeText());
    for (ImageList *list : {view.image32(), view.image16()}) {
        QVERIFY(list->contains(QStringLiteral("txt")));
        QVERIFY(list->contains(QStringLiteral("OPEN_") + FileTypes::instance().folderTypeText()));
    }
    QCOMPARE(view.image16()->count(), view.image32()->count() + 2); // the two sort arrows are small only
    QVERIFY(!m->data(m->index(1, 0), Qt::DecorationRole).isNull());
}

void TestKelofileView::changedColumnComparesToTheSecond()
{
    writeFile(path("same.txt"), 1);
    writeFile(path("later.txt"), 1);
    const std::optional<FileEntry> same = FileSystem::instance().entry(path("same.txt"));
    QVERIFY(same);
    setModified(path("same.txt"), same->created / 1000 * 1000 + 999); // same second as its creation
    setModified(path("later.txt"), same->created + 3600 * 1000);

    KelofileView view;
    view.setPathRoot(m_dir->path());
    QCOMPARE(names(view), (QStringList{"later.txt", "same.txt"}));
    QCOMPARE(cell(view, 1, Changed), QString());
    const std::optional<FileEntry> later = FileSystem::instance().entry(path("later.txt"));
    QCOMPARE(cell(view, 0, Changed), later->createdKnown ? QStringLiteral("Yes") : QString());
    QCOMPARE(cell(view, 0, Created), formatGeneralDate(QDateTime::fromMSecsSinceEpoch(later->created)));
}

void TestKelofileView::filterAndShowFolders()
{
    QDir dir(m_dir->path());
    dir.mkpath(QStringLiteral("notes.txt"));
    dir.mkpath(QStringLiteral("docs"));
    writeFile(path("a.txt"), 10);
    writeFile(path("b.TXT"), 20);
    writeFile(path("c.csv"), 40);

    KelofileView view;
    view.setFilter(QStringLiteral("*.txt"));
    view.setPathRoot(m_dir->path());
    QCOMPARE(names(view), (QStringList{"notes.txt", "a.txt", "b.TXT"}));
    QCOMPARE(view.TotalSize(), 30);

    view.setShowFolders(false); // refills
    QCOMPARE(names(view), (QStringList{"a.txt", "b.TXT"}));

    view.setFilter(QStringLiteral("[ab].*"));
    view.setShowFolders(true);
    QCOMPARE(names(view), (QStringList{"a.txt", "b.TXT"}));
}

void TestKelofileView::hiddenAndSystemEntries()
{
    QDir dir(m_dir->path());
    dir.mkpath(QStringLiteral(".secret"));
    writeFile(path(".dotfile"), 100);
    writeFile(path("listed.txt"), 1000);
    writeFile(path("plain.txt"), 1);
    QFile hiddenList(path(".hidden"));
    QVERIFY(hiddenList.open(QIODevice::WriteOnly));
    hiddenList.write("listed.txt\n");
    hiddenList.close();
    QCOMPARE(mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);

    KelofileView view;
    view.setPathRoot(m_dir->path());
    QCOMPARE(names(view), QStringList{"plain.txt"});
    // Hidden and system files that match still count: .dotfile, .hidden, listed.txt, pipe, plain.txt.
    QCOMPARE(view.TotalSize(), 100 + 11 + 1000 + 0 + 1);

    view.setAllowHiddenFiles(true);
    view.setShowFolders(true);
    QCOMPARE(names(view), (QStringList{".secret", ".dotfile", ".hidden", "listed.txt", "plain.txt"}));
    FileListModel *m = view.listFiles()->model();
    const QString folderKey = FileTypes::instance().folderTypeText();
    QCOMPARE(m->row(0).largeIcon, QStringLiteral("HIDDEN_") + folderKey);
    QCOMPARE(m->row(3).largeIcon, QStringLiteral("HIDDEN_txt"));
    QCOMPARE(m->row(4).largeIcon, QStringLiteral("txt"));
    for (ImageList *list : {view.image32(), view.image16()}) {
        QVERIFY(list->contains(QStringLiteral("HIDDEN_txt")));
        QVERIFY(list->contains(QStringLiteral("HIDDEN_OPEN_") + folderKey));
    }
    // The ghosted picture is lighter than the plain one.
    const QImage plain = view.image32()->picture(QStringLiteral("txt")).toImage();
    const QImage ghost = view.image32()->picture(QStringLiteral("HIDDEN_txt")).toImage();
    QVERIFY(plain != ghost);

    view.setAllowSystemFiles(true);
    view.setShowFolders(true);
    QVERIFY(names(view).contains(QStringLiteral("pipe")));

    // A drive root is never hidden by the rules: "/" is listed in My Folders even with all rules on.
    view.setAllowHiddenFiles(false);
    view.setAllowSystemFiles(false);
    connect(&view, &KelofileView::NeedMyFolders, [](QStringList &folders) { folders << QStringLiteral("/"); });
    view.setPathRoot(KelofileView::MyFolders);
    QCOMPARE(view.ItemCount(), 1);
}

void TestKelofileView::emptyFolderAndEmptyPath()
{
    QDir(m_dir->path()).mkpath(QStringLiteral("empty"));
    KelofileView view;
    view.resize(400, 300);
    auto *message = view.findChild<QLineEdit *>(QStringLiteral("txtMessage"));
    QSignalSpy afterPaint(&view, &KelofileView::AfterPaint);

    view.setPathRoot(path("empty"));
    QCOMPARE(view.ItemCount(), 0);
    QVERIFY(!message->isHidden());
    QCOMPARE(message->text(), QStringLiteral("There are no items to show in this folder."));
    QCOMPARE(afterPaint.count(), 1);

    writeFile(path("empty/a.log"), 1);
    view.setFilter(QStringLiteral("*.txt")); // everything filtered out counts as empty
    view.setShowFolders(true);
    QVERIFY(!message->isHidden());
    QCOMPARE(afterPaint.count(), 2);

    view.setFilter(QString());
    view.setShowFolders(true);
    QVERIFY(message->isHidden());

    view.setPathRoot(QString());
    QCOMPARE(view.ItemCount(), 0);
    QCOMPARE(afterPaint.count(), 3); // no AfterPaint, and the message stays as it was
    QVERIFY(message->isHidden());
}

void TestKelofileView::designModeShowsAMessage()
{
    writeFile(path("x.txt"), 1);
    KelofileView view;
    view.setUserMode(false);
    view.setObjectName(QStringLiteral("FileView1"));
    Recorder recorder(view);
    view.setPathRoot(m_dir->path());
    QCOMPARE(view.ItemCount(), 0);
    QCOMPARE(recorder.events, QStringList());
    auto *message = view.findChild<QLineEdit *>(QStringLiteral("txtMessage"));
    QCOMPARE(message->text(), QStringLiteral("FileView1: PathRoot set to '%1'").arg(m_dir->path()));
    QVERIFY(!message->isHidden());
    QCOMPARE(view.Path(), m_dir->path());
}

void TestKelofileView::myComputerInAnyCase()
{
    const QList<DriveInfo> drives = FileSystem::instance().drives();
    QVERIFY(!drives.isEmpty());
    KelofileView view;
    view.setPathRoot(QStringLiteral("mY cOMPUTER"));
    QCOMPARE(view.ItemCount(), int(drives.size()));
    for (int i = 0; i < drives.size(); ++i) {
        QCOMPARE(cell(view, i, Name), drives[i].rootPath);
        QCOMPARE(cell(view, i, RealName), drives[i].rootPath);
        QCOMPARE(cell(view, i, Folder), QString());
        QCOMPARE(view.listFiles()->model()->row(i).largeIcon, DriveTypeName(drives[i]));
        QVERIFY(view.image16()->contains(DriveTypeName(drives[i])));
    }
}

void TestKelofileView::myFoldersAsksTheHostAndMarksVanishedEntries()
{
    QDir(m_dir->path()).mkpath(QStringLiteral("Work"));
    const QString gone = path("Gone");
    KelofileView view;
    int asked = 0;
    connect(&view, &KelofileView::NeedMyFolders, [&](QStringList &folders) {
        ++asked;
        QVERIFY(folders.isEmpty());
        folders << path("Work") << gone;
    });
    Recorder recorder(view);
    view.setPathRoot(KelofileView::MyFolders);
    QCOMPARE(asked, 1);
    QCOMPARE(names(view), (QStringList{"Work", gone + QStringLiteral(" (Unavailable)")}));
    QCOMPARE(view.listFiles()->model()->row(1).largeIcon, QStringLiteral("FolderUnavailable"));
    QCOMPARE(view.listFiles()->model()->row(1).smallIcon, QStringLiteral("FolderUnavailable"));
    QCOMPARE(cell(view, 1, SortName), QLatin1Char(' ') + gone);
    QCOMPARE(cell(view, 0, Folder), FileSystem::cleanPath(m_dir->path()));
    // Only the existing folder raises the per-item events.
    QCOMPARE(recorder.events,
        (QStringList{"ChangedFolder", "BeforePaint", "BeforeAddItem", "AfterAddItem:1", "AfterPaint"}));

    view.setPathRoot(QStringLiteral("my folders"));
    QCOMPARE(asked, 1); // the set is filled now
    QCOMPARE(view.ItemCount(), 2);
}

void TestKelofileView::programImagesAreDroppedAtTheNextFill()
{
    QDir(m_dir->path()).mkpath(QStringLiteral("other"));
    writeFile(path("setup.exe"), 10);
    writeFile(path("TOOL.EXE"), 10);
    writeFile(path("readme.txt"), 10);
    KelofileView view;
    view.setPathRoot(m_dir->path());
    FileListModel *m = view.listFiles()->model();
    QCOMPARE(names(view), (QStringList{"other", "readme.txt", "setup.exe", "TOOL.EXE"}));
    QCOMPARE(m->row(3).largeIcon, QStringLiteral("TOOL.EXE"));
    for (ImageList *list : {view.image32(), view.image16()}) {
        QCOMPARE(list->tag(list->indexOf(QStringLiteral("setup.exe"))).toString(), QStringLiteral("exe"));
        QVERIFY(list->contains(QStringLiteral("TOOL.EXE")));
    }
    view.setPathRoot(path("other"));
    for (ImageList *list : {view.image32(), view.image16()}) {
        QVERIFY(!list->contains(QStringLiteral("setup.exe")));
        QVERIFY(!list->contains(QStringLiteral("TOOL.EXE")));
        QVERIFY(list->contains(QStringLiteral("txt"))); // images of types stay
    }
}

void TestKelofileView::totalSizeOverflows()
{
    // Two sparse files of 1.5 GB: the sum passes 2,147,483,647 bytes without using the disk.
    for (const char *n : {"a.bin", "b.bin"}) {
        QFile f(path(QString::fromLatin1(n)));
        QVERIFY(f.open(QIODevice::WriteOnly));
        QVERIFY(f.resize(qint64(1536) * 1024 * 1024));
    }
    KelofileView view;
    QCOMPARE(errorNumberOf([&] { view.setPathRoot(m_dir->path()); }), ErrorNumber::Overflow);
    QCOMPARE(view.ItemCount(), 1); // the first file was listed before the sum overflowed

    view.setFilter(QStringLiteral("a*"));
    view.setShowFolders(true);
    QCOMPARE(view.TotalSize(), 1536 * 1024 * 1024);
    QCOMPARE(cell(view, 0, Size), QStringLiteral("1572864KB"));
}

void TestKelofileView::missingFolderRaises()
{
    writeFile(path("x.txt"), 1);
    KelofileView view;
    view.setPathRoot(m_dir->path());
    QCOMPARE(view.ItemCount(), 1);
    QCOMPARE(errorNumberOf([&] { view.setPathRoot(path("missing")); }), ErrorNumber::PathNotFound);
    QCOMPARE(view.ItemCount(), 0);
    // Late-bound writes raise the same error.
    QCOMPARE(errorNumberOf([&] { view.setProperty("PathRoot", path("missing")); }), ErrorNumber::PathNotFound);
}

void TestKelofileView::undecodableNamesStayReachable()
{
    // A name that is not UTF-8, listed, read back from the list and opened with its application.
    XdgTestSandbox sandbox;
    sandbox.addRecorder(QStringLiteral("kelo-viewer"));
    sandbox.addEntry(QStringLiteral("viewer.desktop"), QStringLiteral("kelo-viewer %f"), QStringLiteral("text/plain"));
    const QString folder = sandbox.path(QStringLiteral("files"));
    const QByteArray raw = QFile::encodeName(folder) + "/caf\xe9-\xff.txt";
    const int fd = ::open(raw.constData(), O_CREAT | O_WRONLY, 0644);
    QVERIFY(fd >= 0);
    const auto removeFile = qScopeGuard([&raw] { ::unlink(raw.constData()); }); // QTemporaryDir cannot
    QCOMPARE(::write(fd, "hello", 5), ssize_t(5));
    ::close(fd);

    KelofileView view;
    view.setPathRoot(folder);
    QCOMPARE(view.ItemCount(), 1);
    view.setItemIndex(1);
    const QString name = view.ItemName();
    QVERIFY(name.startsWith(QStringLiteral("caf")));
    QCOMPARE(cell(view, 0, Size), QStringLiteral("1KB"));
    QCOMPARE(cell(view, 0, Type), FileTypes::instance().fileTypeText(QStringLiteral("x.txt")));
    const QString listedPath = FileSystem::buildPath(cell(view, 0, Folder), name);
    QCOMPARE(FileNameCodec::encode(listedPath), raw);

    KeloTest::MsgBoxRecorder boxes;
    OpenWithAssociatedApp(listedPath, &view, false);
    QCOMPARE(boxes.calls(), QStringList());
    QCOMPARE(sandbox.waitForArguments(QStringLiteral("kelo-viewer")), QList<QByteArray>{raw});
}

void TestKelofileView::persistenceRoundTrip()
{
    writeFile(path("x.txt"), 1);
    KelofileView original;
    const QStringList names{"BackColor", "BorderStyle", "Path", "LimitToRoot", "View", "GridLines", "MultiSelect",
        "Filter", "AllowHiddenFiles", "ShowFolderDetails", "RefreshInterval", "OLEDropMode", "PictureAlignment"};
    const QStringList values{"BackColor=1122867", "BorderStyle=0", "Path=/somewhere", "LimitToRoot=false", "View=1",
        "GridLines=true", "MultiSelect=true", "Filter=*.doc", "AllowHiddenFiles=true", "ShowFolderDetails=true",
        "RefreshInterval=1500", "OLEDropMode=1", "PictureAlignment=5"};
    for (const QString &value : values) {
        const QString name = value.section(QLatin1Char('='), 0, 0);
        const QString text = value.section(QLatin1Char('='), 1);
        QVERIFY2(original.setProperty(name.toLatin1().constData(), text), qPrintable(name));
    }
    QCOMPARE(KeloTest::propertyTexts(&original, names), values);
    PropertyBag bag;
    original.WriteProperties(bag);
    QVERIFY(!bag.contains(QStringLiteral("ForeColor"))); // defaults are not stored
    QVERIFY(!bag.contains(QStringLiteral("ItemCount")));

    KelofileView copy;
    Recorder recorder(copy);
    copy.ReadProperties(PropertyBag::fromText(bag.toText()));
    QCOMPARE(KeloTest::propertyTexts(&copy, names), values);
    QCOMPARE(recorder.events, QStringList()); // loading lists nothing

    // The run-time counts come back as the contents give them, never as saved.
    PropertyBag counts;
    for (const char *name : {"ItemIndex", "ItemCount", "ImageIndex", "ImageCount"}) {
        counts.WriteProperty(QString::fromLatin1(name), 7);
    }
    KelofileView loaded;
    loaded.ReadProperties(counts);
    QCOMPARE(KeloTest::propertyTexts(&loaded, {"ItemIndex", "ItemCount", "ImageIndex", "ImageCount"}),
        (QStringList{"ItemIndex=0", "ItemCount=0", "ImageIndex=0", "ImageCount=2"}));
    // The opt-in trash is saved after everything else.
    QCOMPARE(loaded.propertyTable().writeOrder().constLast(), QStringLiteral("DeleteToTrash"));

    // A value the list refuses raises its own error out of the load.
    PropertyBag bad;
    bad.WriteProperty(QStringLiteral("View"), 9);
    QCOMPARE(errorNumberOf([&] { loaded.ReadProperties(bad); }), ErrorNumber::InvalidPropertyValue);
}

void TestKelofileView::messageLinePlacement()
{
    KelofileView view;
    view.resize(600, 400);
    QFont font = view.Font();
    font.setPointSize(10);
    view.setFont(font);
    view.setPathRoot(m_dir->path()); // empty: the message shows
    auto *message = view.findChild<QLineEdit *>(QStringLiteral("txtMessage"));
    QCOMPARE(message->geometry().left(), 8);
    QCOMPARE(message->width(), 600 - 16);
    QCOMPARE(message->geometry().top(), (180 + 30 * 10) / 15);
    view.setView(0);
    QCOMPARE(message->geometry().top(), 8);
    QCOMPARE(message->font().pointSize(), 10);
}

void TestKelofileView::itemMembers()
{
    QDir(m_dir->path()).mkpath(QStringLiteral("folder"));
    writeFile(path("a.txt"), 1);
    writeFile(path("b.txt"), 1);
    KelofileView view;
    view.setPathRoot(m_dir->path());
    QCOMPARE(view.ItemCount(), 3);

    QCOMPARE(view.ItemDisplayName(), QString()); // ItemIndex 0 addresses nothing
    QCOMPARE(view.ItemIcon(), QString());
    view.setItemDisplayName(QStringLiteral("ignored"));
    QCOMPARE(names(view), (QStringList{"folder", "a.txt", "b.txt"}));

    view.setItemIndex(2);
    QCOMPARE(view.ItemDisplayName(), QStringLiteral("a.txt"));
    QCOMPARE(view.ItemName(), QStringLiteral("a.txt"));
    QCOMPARE(view.ItemIcon(), QStringLiteral("txt"));
    QCOMPARE(view.ItemSmallIcon(), QStringLiteral("txt"));
    view.setItemDisplayName(QStringLiteral("Shown name"));
    QCOMPARE(cell(view, 1, Name), QStringLiteral("Shown name"));
    QCOMPARE(view.ItemName(), QStringLiteral("a.txt")); // the real name stays
    view.setItemTag(QStringLiteral("tagged"));
    QCOMPARE(view.ItemTag(), QStringLiteral("tagged"));
    view.setItemBold(true);
    QVERIFY(view.ItemBold());
    QVERIFY(
        view.listFiles()->model()->data(view.listFiles()->model()->index(1, 0), Qt::FontRole).value<QFont>().bold());
    view.setItemIcon(QStringLiteral("FolderUnavailable"));
    QCOMPARE(view.ItemIcon(), QStringLiteral("FolderUnavailable"));
    QCOMPARE(
        errorNumberOf([&] { view.setItemSmallIcon(QStringLiteral("no such key")); }), ErrorNumber::ElementNotFound);
    QCOMPARE(view.ItemSmallIcon(), QStringLiteral("txt"));

    QCOMPARE(view.ItemSelected(), 0);
    view.setItemSelected(3);
    QCOMPARE(view.ItemSelected(), 3);
    QCOMPARE(view.ItemIndex(), 2); // the user's selection and ItemIndex are independent

    view.setItemIndex(9); // past the end: reads empty, writes touch nothing
    QCOMPARE(view.ItemDisplayName(), QString());
    view.setItemTag(QStringLiteral("x"));
    view.ItemRemove(9);
    QCOMPARE(view.ItemCount(), 3);
    view.ItemRemove(1);
    QCOMPARE(names(view), (QStringList{"Shown name", "b.txt"}));

    Recorder recorder(view);
    QCOMPARE(view.ItemAddNew(path("folder")), 3);
    QCOMPARE(view.ItemAddNew(path("b.txt")), 4);
    QCOMPARE(view.ItemAddNew(QStringLiteral("/virtual/Favourites")), 5);
    QCOMPARE(recorder.events,
        (QStringList{
            "BeforeAddItem", "AfterAddItem:3", "BeforeAddItem", "AfterAddItem:4", "BeforeAddItem", "AfterAddItem:5"}));
    QCOMPARE(cell(view, 2, SortName), QStringLiteral(" folder"));
    QCOMPARE(cell(view, 3, Size), QStringLiteral("1KB"));
    QCOMPARE(cell(view, 4, Name), QStringLiteral("Favourites"));
    QCOMPARE(cell(view, 4, Type), FileTypes::instance().folderTypeText());
    QVERIFY(!view.listFiles()->model()->data(view.listFiles()->model()->index(4, 0), Qt::DecorationRole).isNull());

    view.ItemClear();
    QCOMPARE(view.ItemCount(), 0);
    QCOMPARE(view.ItemDisplayName(), QString());
}

void TestKelofileView::itemMembersAtDesignTime_data()
{
    using Write = std::function<void(KelofileView &)>;
    QTest::addColumn<Write>("write");
    QTest::newRow("ItemIndex") << Write([](KelofileView &v) { v.setItemIndex(1); });
    QTest::newRow("ItemDisplayName") << Write([](KelofileView &v) { v.setItemDisplayName(QStringLiteral("x")); });
    QTest::newRow("ItemName") << Write([](KelofileView &v) { v.setItemName(QStringLiteral("x")); });
    QTest::newRow("ItemIcon") << Write([](KelofileView &v) { v.setItemIcon(QStringLiteral("x")); });
    QTest::newRow("ItemSmallIcon") << Write([](KelofileView &v) { v.setItemSmallIcon(QStringLiteral("x")); });
    QTest::newRow("ItemSelected") << Write([](KelofileView &v) { v.setItemSelected(1); });
    QTest::newRow("ItemTag") << Write([](KelofileView &v) { v.setItemTag(QStringLiteral("x")); });
    QTest::newRow("ItemBold") << Write([](KelofileView &v) { v.setItemBold(true); });
    QTest::newRow("ItemAddNew") << Write([](KelofileView &v) { v.ItemAddNew(QStringLiteral("/")); });
    QTest::newRow("ItemRemove") << Write([](KelofileView &v) { v.ItemRemove(1); });
    QTest::newRow("ItemClear") << Write([](KelofileView &v) { v.ItemClear(); });
    QTest::newRow("late-bound ItemTag") << Write(
        [](KelofileView &v) { v.setProperty("ItemTag", QStringLiteral("x")); });
    QTest::newRow("late-bound ItemClear") << Write([](KelofileView &v) { QMetaObject::invokeMethod(&v, "ItemClear"); });
}

void TestKelofileView::itemMembersAtDesignTime()
{
    QFETCH(std::function<void(KelofileView &)>, write);
    KelofileView view;
    view.setUserMode(false);
    QCOMPARE(errorNumberOf([&] { write(view); }), ErrorNumber::SetNotPermitted);
    QCOMPARE(view.ItemTag(), QString());
    QCOMPARE(view.ItemCount(), 0);
}

void TestKelofileView::imageMembers()
{
    KelofileView view;
    QCOMPARE(view.ImageCount(), 2); // the large list
    view.setImageSmall(true);
    QCOMPARE(view.ImageCount(), 4);
    view.setImageIndex(2);
    QCOMPARE(view.ImageKey(), QStringLiteral("SortUp"));
    view.setImageTag(QStringLiteral("arrow"));
    QCOMPARE(view.ImageTag(), QStringLiteral("arrow"));
    view.setImageIndex(10); // out of range: ignored
    QCOMPARE(view.ImageIndex(), 2);

    QPixmap star(16, 16);
    star.fill(Qt::yellow);
    QCOMPARE(view.ImageAddNew(star, QStringLiteral("Star")), 5);
    QCOMPARE(errorNumberOf([&] { view.ImageAddNew(star, QStringLiteral("star")); }), ErrorNumber::KeyNotUnique);
    view.setImageIndex(5);
    view.setImageKey(QStringLiteral("Bright star"));
    QVERIFY(view.image16()->contains(QStringLiteral("bright STAR")));
    QCOMPARE(errorNumberOf([&] { view.setImageKey(QStringLiteral("SortDown")); }), ErrorNumber::KeyNotUnique);
    view.ImageRemove(QStringLiteral("Bright star"));
    view.ImageRemove(QStringLiteral("never there"));
    QCOMPARE(view.ImageCount(), 4);
    QCOMPARE(view.ImageKey(), QString()); // index 5 is past the end now

    view.setImageSmall(false);
    QCOMPARE(view.ImageCount(), 2);
    QCOMPARE(view.image32()->count(), 2);
}

void TestKelofileView::clickingAnItemRaisesItemClick()
{
    writeFile(path("a.txt"), 1);
    writeFile(path("b.txt"), 1);
    KelofileView view;
    view.resize(500, 300);
    view.show();
    view.setPathRoot(m_dir->path());
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QList<int> clicks;
    connect(&view, &KelofileView::ItemClick, [&](int &index) { clicks << index; });
    QSignalSpy click(&view, &KelofileView::Click);
    ReportView *report = view.listFiles()->reportView();
    const QRect second = report->visualRect(view.listFiles()->model()->index(1, 0));
    QTest::mouseClick(report->viewport(), Qt::LeftButton, {}, second.center());
    QCOMPARE(clicks, QList<int>{2});
    QCOMPARE(view.ItemIndex(), 2);
    QCOMPARE(click.count(), 1);
    QCOMPARE(view.ItemSelected(), 2);
}

void TestKelofileView::headerClicksSort_data()
{
    QTest::addColumn<QList<int>>("clicks");
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<int>("sortKey");
    QTest::addColumn<int>("sortOrder");
    QTest::addColumn<QString>("nameIcon");
    QTest::addColumn<QString>("sizeIcon");
    const QString down = FileIconProvider::SortDown;
    const QString up = FileIconProvider::SortUp;
    const QStringList byName{"alpha", "Beta", "a.txt", "B.txt", "c.txt", "d.txt"};
    QStringList byNameDown = byName;
    std::reverse(byNameDown.begin(), byNameDown.end());
    // Sizes: alpha 0 files, Beta 2 files, a.txt 3, B.txt 1, c.txt 5, d.txt 1 (a tie with B.txt).
    const QStringList bySize{"alpha", "B.txt", "d.txt", "Beta", "a.txt", "c.txt"};
    const QStringList bySizeDown{"c.txt", "a.txt", "Beta", "B.txt", "d.txt", "alpha"};
    QTest::newRow("Name") << QList<int>{Name} << byName << 12 << 0 << down << QString();
    QTest::newRow("Name twice") << QList<int>{Name, Name} << byNameDown << 12 << 1 << up << QString();
    QTest::newRow("Name thrice") << QList<int>{Name, Name, Name} << byName << 12 << 0 << down << QString();
    QTest::newRow("Size") << QList<int>{Size} << bySize << 7 << 0 << QString() << down;
    QTest::newRow("Size twice") << QList<int>{Size, Size} << bySizeDown << 7 << 1 << QString() << up;
    QTest::newRow("Type then Name") << QList<int>{Type, Name} << byName << 12 << 0 << down << QString();
    QTest::newRow("Size, Name, Size") << QList<int>{Size, Name, Size} << bySize << 7 << 0 << QString() << down;
}

void TestKelofileView::headerClicksSort()
{
    QFETCH(QList<int>, clicks);
    QDir(m_dir->path()).mkpath(QStringLiteral("Beta"));
    QDir(m_dir->path()).mkpath(QStringLiteral("alpha"));
    writeFile(path("Beta/one"), 1);
    writeFile(path("Beta/two"), 1);
    writeFile(path("c.txt"), 5);
    writeFile(path("B.txt"), 1);
    writeFile(path("a.txt"), 3);
    writeFile(path("d.txt"), 1);
    KelofileView view;
    view.resize(600, 300);
    view.show();
    view.setPathRoot(m_dir->path());
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QHeaderView *header = view.listFiles()->reportView()->header();
    for (int column : clicks) {
        const QPoint at(
            header->sectionViewportPosition(column) + header->sectionSize(column) / 2, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
    }
    QTEST(names(view), "order");
    ListView *list = view.listFiles();
    QTEST(list->property("SortKey").toInt(), "sortKey");
    QTEST(list->property("SortOrder").toInt(), "sortOrder");
    QVERIFY(list->property("Sorted").toBool());
    FileListModel *model = list->model();
    QTEST(model->columnIcon(Name), "nameIcon");
    QTEST(model->columnIcon(Size), "sizeIcon");
    for (int c = Type; c < FileListModel::ColumnCount; ++c) {
        QCOMPARE(model->columnIcon(c), QString());
    }
    QCOMPARE(model->headerData(clicks.last(), Qt::Horizontal, Qt::DecorationRole).isNull(), false);

    // An item added while sorted goes to its sorted place, and AfterAddItem tells that place.
    QFETCH(QStringList, order);
    writeFile(path("b2.txt"), 2);
    QList<int> added;
    connect(&view, &KelofileView::AfterAddItem, [&](int &index) { added << index; });
    const int index = view.ItemAddNew(path("b2.txt"));
    QCOMPARE(added, QList<int>{index});
    QStringList expected = names(view);
    expected.removeAt(index - 1);
    QCOMPARE(expected, order);
    QCOMPARE(cell(view, index - 1, Name), QStringLiteral("b2.txt"));
    const FileListRow &newRow = model->row(index - 1);
    const int key = list->sortKey();
    const bool ascending = list->sortOrder() == 0;
    if (index > 1) {
        const FileListRow &before = model->row(index - 2);
        QVERIFY(!(ascending ? FileListModel::lessByColumn(newRow, before, key)
                            : FileListModel::lessByColumn(before, newRow, key)));
    }
    if (index < view.ItemCount()) {
        const FileListRow &after = model->row(index);
        QVERIFY(ascending ? FileListModel::lessByColumn(newRow, after, key)
                          : FileListModel::lessByColumn(after, newRow, key));
    }
}

void TestKelofileView::goUpRules_data()
{
    // "~" is the test folder, other relative paths lie inside it; "/", "" and the pseudo-paths stand for themselves.
    QTest::addColumn<QString>("pathRoot");
    QTest::addColumn<bool>("limit");
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("expected");
    QTest::newRow("at PathRoot, limited") << "data" << true << "data"
                                          << "data";
    QTest::newRow("at PathRoot, unlimited") << "data" << false << "data"
                                            << "~";
    QTest::newRow("inside PathRoot") << "data" << true << "data/sub"
                                     << "data";
    QTest::newRow("a plain prefix counts as inside") << "data" << true << "data2/x"
                                                     << "data2";
    QTest::newRow("above PathRoot refused") << "data" << true << "data2"
                                            << "data2";
    QTest::newRow("prefix without regard to case") << "data" << true << "DATA/sub"
                                                   << "DATA";
    QTest::newRow("file system root goes to PathRoot") << "data" << false << "/"
                                                       << "data";
    QTest::newRow("file system root to My Computer") << "My Computer" << true << "/"
                                                     << "My Computer";
    QTest::newRow("search result, unlimited") << "data" << false << ""
                                              << "My Folders";
    QTest::newRow("search result, limited") << "data" << true << ""
                                            << "";
}

void TestKelofileView::goUpRules()
{
    QFETCH(QString, pathRoot);
    QFETCH(bool, limit);
    QFETCH(QString, start);
    QFETCH(QString, expected);
    for (const char *folder : {"data/sub", "DATA/sub", "data2/x"}) {
        QDir(m_dir->path()).mkpath(QString::fromLatin1(folder));
    }
    auto resolve = [this](const QString &p) {
        if (p == QLatin1String("~")) {
            return m_dir->path();
        }
        const bool special = p.isEmpty() || p.startsWith(QLatin1Char('/')) || p.startsWith(QLatin1String("My "));
        return special ? p : path(p);
    };
    KelofileView view;
    view.setPathRoot(resolve(pathRoot));
    view.setLimitToRoot(limit);
    view.setPath(resolve(start));
    int fills = 0;
    connect(&view, &KelofileView::ChangedFolder, [&](int &) { ++fills; });
    view.GoUp();
    QCOMPARE(view.Path(), resolve(expected));
    QCOMPARE(fills, resolve(expected) == resolve(start) ? 0 : 1);
}

void TestKelofileView::openingItemsByMouseAndKeys()
{
    XdgTestSandbox sandbox;
    sandbox.addRecorder(QStringLiteral("kelo-viewer"));
    sandbox.addEntry(QStringLiteral("viewer.desktop"), QStringLiteral("kelo-viewer %f"), QStringLiteral("text/plain"));
    QDir(m_dir->path()).mkpath(QStringLiteral("sub"));
    writeFile(path("sub/doc.txt"), 3);
    KelofileView view;
    view.resize(600, 300);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QStringList events;
    connect(&view, &KelofileView::NeedMyFolders, [&](QStringList &folders) { folders << path("sub"); });
    connect(&view, &KelofileView::DblClick, [&] { events << QStringLiteral("DblClick"); });
    connect(
        &view, &KelofileView::ChangedFolder, [&](int &) { events << QStringLiteral("ChangedFolder:") + view.Path(); });
    view.setPathRoot(KelofileView::MyFolders);
    ReportView *report = view.listFiles()->reportView();
    auto doubleClickRow = [&](int row) {
        const QRect rect = report->visualRect(view.listFiles()->model()->index(row, 0));
        QTest::mouseClick(report->viewport(), Qt::LeftButton, {}, rect.center());
        QTest::mouseDClick(report->viewport(), Qt::LeftButton, {}, rect.center());
    };
    auto key = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(report, key, modifiers); };

    // A "My Folders" entry is entered and remembered, so GoUp comes back to "My Folders".
    events.clear();
    doubleClickRow(0);
    QCOMPARE(events, QStringList({"DblClick", "ChangedFolder:" + path("sub")}));
    QCOMPARE(view.Path(), path("sub"));
    view.GoUp();
    QCOMPARE(view.Path(), KelofileView::MyFolders);

    // Enter opens the selected folder, Backspace and Alt+Up go up.
    view.setItemSelected(1);
    key(Qt::Key_Return);
    QCOMPARE(view.Path(), path("sub"));
    key(Qt::Key_Backspace);
    QCOMPARE(view.Path(), KelofileView::MyFolders);
    view.setItemSelected(1);
    key(Qt::Key_Enter, Qt::KeypadModifier);
    key(Qt::Key_Up, Qt::AltModifier);
    QCOMPARE(view.Path(), KelofileView::MyFolders);

    // A file opens with its application; the list stays.
    view.setItemSelected(1);
    key(Qt::Key_Return);
    events.clear();
    doubleClickRow(0);
    QCOMPARE(events, QStringList{"DblClick"});
    QCOMPARE(view.Path(), path("sub"));
    QCOMPARE(sandbox.waitForArguments(QStringLiteral("kelo-viewer")),
        QList<QByteArray>{QFile::encodeName(path("sub/doc.txt"))});

    // A drive of "My Computer" opens its root.
    view.setPathRoot(KelofileView::MyComputer);
    if (view.ItemCount() == 0) {
        QSKIP("no drives listed on this machine");
    }
    view.setItemIndex(1);
    const QString root = view.ItemName();
    doubleClickRow(0);
    QCOMPARE(view.Path(), root);
}

// The found items as paths below @p root; a name that is not UTF-8 shows as "caf?".
static QStringList foundBelow(KelofileView &view, const QString &root)
{
    QStringList found;
    for (int r = 0; r < view.ItemCount(); ++r) {
        QString name = cell(view, r, RealName);
        if (name.startsWith(QLatin1String("caf"))) {
            name = QStringLiteral("caf?");
        }
        found << QDir(root).relativeFilePath(FileSystem::buildPath(cell(view, r, Folder), name));
    }
    return found;
}

// a7.txt (3 bytes), b.txt, caf\xe9 7.txt (4), dir7/in7.txt (2), dir7/deep/d7.txt (1), link7 -> dir7, loop -> the root.
// Returns a guard that removes the name QTemporaryDir cannot.
static auto makeSearchTree(const QString &root)
{
    const QByteArray raw = QFile::encodeName(root) + "/caf\xe9 7.txt";
    auto guard = qScopeGuard([raw] { ::unlink(raw.constData()); });
    QDir(root).mkpath(QStringLiteral("dir7/deep"));
    KeloTest::writeFile(root + QStringLiteral("/a7.txt"), 3);
    KeloTest::writeFile(root + QStringLiteral("/b.txt"), 1);
    KeloTest::writeFile(root + QStringLiteral("/dir7/in7.txt"), 2);
    KeloTest::writeFile(root + QStringLiteral("/dir7/deep/d7.txt"), 1);
    const int fd = ::open(raw.constData(), O_CREAT | O_WRONLY, 0644);
    if (fd >= 0) {
        (void)::write(fd, "abcd", 4);
        ::close(fd);
    }
    QFile::link(root + QStringLiteral("/dir7"), root + QStringLiteral("/link7"));
    QFile::link(root, root + QStringLiteral("/loop"));
    return guard;
}

void TestKelofileView::searchOrderAndSafety_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::addColumn<bool>("subdirectories");
    QTest::addColumn<QStringList>("found");
    QTest::addColumn<int>("totalSize");
    QTest::newRow("files, whole tree") << "*7*.TXT" << true
                                       << QStringList{"a7.txt", "caf?", "dir7/in7.txt", "dir7/deep/d7.txt"} << 10;
    QTest::newRow("folders after their contents")
        << "*7*" << true << QStringList{"a7.txt", "caf?", "dir7/in7.txt", "dir7/deep/d7.txt", "dir7", "link7"} << 10;
    QTest::newRow("root only") << "*7*" << false << QStringList{"a7.txt", "caf?", "dir7", "link7"} << 7;
    QTest::newRow("everything at the root")
        << "" << false << QStringList{"a7.txt", "b.txt", "caf?", "dir7", "link7", "loop"} << 8;
    QTest::newRow("nothing") << "*.none" << true << QStringList{} << 0;
}

void TestKelofileView::searchOrderAndSafety()
{
    QFETCH(QString, pattern);
    QFETCH(bool, subdirectories);
    const auto removeRaw = makeSearchTree(m_dir->path());
    KelofileView view;
    view.setPathRoot(m_dir->path());
    Recorder recorder(view);
    view.Search(pattern, m_dir->path(), subdirectories);
    QTEST(foundBelow(view, m_dir->path()), "found");
    QTEST(view.TotalSize(), "totalSize");
    QCOMPARE(view.Path(), QString());
    QVERIFY(!recorder.events.contains(QStringLiteral("ChangedFolder")));
    QVERIFY(!recorder.events.contains(QStringLiteral("BeforePaint")));
    QCOMPARE(recorder.events.last(), QStringLiteral("AfterPaint"));
    QCOMPARE(recorder.events.count(QStringLiteral("AfterPaint")), 1);
    QCOMPARE(view.findChild<QLineEdit *>(QStringLiteral("txtMessage"))->text(),
        view.ItemCount() == 0 ? KelofileView::EmptyFolderMessage : QString());
    for (int r = 0; r < view.ItemCount(); ++r) { // every found item can be reached by its path
        const QString found = FileSystem::buildPath(cell(view, r, Folder), cell(view, r, RealName));
        QVERIFY2(FileSystem::instance().entry(found).has_value(), qPrintable(found));
    }
    view.Refresh(); // a search result is left alone
    QTEST(foundBelow(view, m_dir->path()), "found");
}

// Root reads everything: the search runs in a child as nobody, where locked/ cannot be read.
void TestKelofileView::searchSkipsUnreadableFolders()
{
    const QString setpriv = QStandardPaths::findExecutable(QStringLiteral("setpriv"));
    if (::geteuid() != 0 || setpriv.isEmpty()) {
        QSKIP("needs root and setpriv to run a child as nobody");
    }
    const auto removeRaw = makeSearchTree(m_dir->path());
    QDir(m_dir->path()).mkpath(QStringLiteral("locked"));
    writeFile(path("locked/l7.txt"), 1);
    QCOMPARE(::chmod(QFile::encodeName(m_dir->path()).constData(), 0755), 0);
    QCOMPARE(::chmod(QFile::encodeName(path("locked")).constData(), 0700), 0);
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("KELO_SEARCH_CHILD"), m_dir->path());
    child.setProcessEnvironment(environment);
    child.start(setpriv,
        {QStringLiteral("--reuid=nobody"), QStringLiteral("--regid=nogroup"), QStringLiteral("--clear-groups"),
            QCoreApplication::applicationFilePath()});
    QVERIFY(child.waitForFinished(30000));
    QCOMPARE(QString::fromUtf8(child.readAllStandardOutput()),
        QStringLiteral("a7.txt\ncaf?\ndir7/in7.txt\ndir7/deep/d7.txt\n"));
}

void TestKelofileView::refreshUpdatesInPlace()
{
    writeFile(path("a.txt"), 1);
    writeFile(path("b.txt"), 1);
    writeFile(path("gone.txt"), 1);
    const qint64 earlier = QDateTime(QDate(2020, 1, 1), QTime(8, 0)).toMSecsSinceEpoch();
    setModified(path("a.txt"), earlier);
    KelofileView view;
    view.setPathRoot(m_dir->path());
    int found = 0;
    connect(&view, &KelofileView::RefreshFoundChanges, [&] { ++found; });
    Recorder recorder(view);

    view.Refresh(); // nothing changed on disk
    QCOMPARE(found, 0);
    QCOMPARE(recorder.events, QStringList{"AfterPaint"});

    view.setItemIndex(1);
    view.setItemBold(true); // survives: the list is not refilled
    const qint64 later = QDateTime(QDate(2021, 6, 1), QTime(9, 30)).toMSecsSinceEpoch();
    setModified(path("a.txt"), later);
    writeFile(path("b.txt"), 2000);
    QFile::remove(path("gone.txt"));
    writeFile(path("new.txt"), 3);
    recorder.events.clear();
    view.Refresh();
    QCOMPARE(found, 1);
    QCOMPARE(names(view), (QStringList{"a.txt", "b.txt", "new.txt"})); // new entries at the end
    QCOMPARE(recorder.events, (QStringList{"BeforeAddItem", "AfterAddItem:4", "AfterPaint"}));
    QCOMPARE(cell(view, 0, SortedModified), QStringLiteral("2021-06-01 09:30:00"));
    QCOMPARE(cell(view, 0, Modified), formatGeneralDate(QDateTime::fromMSecsSinceEpoch(later)));
    QCOMPARE(cell(view, 1, Size), QStringLiteral("2KB"));
    QCOMPARE(cell(view, 0, Refresh), QString());
    QVERIFY(view.ItemBold());

    view.Refresh();
    QCOMPARE(found, 1); // a pass that finds nothing new raises nothing

    // Two items of one name: both are matched against the first, the second is removed.
    view.ItemAddNew(path("b.txt"));
    QCOMPARE(view.ItemCount(), 4);
    view.Refresh();
    QCOMPARE(names(view), (QStringList{"a.txt", "b.txt", "new.txt"}));
    QCOMPARE(found, 2);

    // A change of case only is not a change.
    QVERIFY(QFile::rename(path("new.txt"), path("NEW.txt")));
    view.Refresh();
    QCOMPARE(found, 2);
    QCOMPARE(names(view), (QStringList{"a.txt", "b.txt", "new.txt"}));
    QCOMPARE(cell(view, 2, RealName), QStringLiteral("new.txt"));

    // The folder gone: the error reaches the caller.
    view.setPath(path("missing"));
    QCOMPARE(errorNumberOf([&] { view.Refresh(); }), ErrorNumber::PathNotFound);
}

void TestKelofileView::refreshOfPseudoPaths()
{
    KelofileView view;
    int asked = 0;
    connect(&view, &KelofileView::NeedMyFolders, [&](QStringList &folders) {
        ++asked;
        folders << m_dir->path();
    });
    view.setPathRoot(KelofileView::MyFolders);
    QCOMPARE(asked, 1);
    view.Refresh();
    view.Refresh();
    QCOMPARE(asked, 3); // the host is asked afresh every time
    QCOMPARE(view.ItemCount(), 1);

    view.setPathRoot(KelofileView::MyComputer);
    const int drives = view.ItemCount();
    Recorder recorder(view);
    view.setItemIndex(1);
    view.setItemDisplayName(QStringLiteral("renamed"));
    view.Refresh();
    QCOMPARE(recorder.events, QStringList());
    QCOMPARE(view.ItemCount(), drives);
    QCOMPARE(view.ItemDisplayName(), QStringLiteral("renamed"));
}

void TestKelofileView::refreshTimerRunsOnlyAtRunTime()
{
    writeFile(path("a.txt"), 1);
    KelofileView view;
    auto *timer = view.findChild<QTimer *>(QStringLiteral("RefreshTimer"));
    QVERIFY(timer);
    QVERIFY(!timer->isActive());
    view.setPathRoot(m_dir->path());
    view.setRefreshInterval(20);
    QVERIFY(timer->isActive());
    QCOMPARE(timer->interval(), 20);
    writeFile(path("b.txt"), 1);
    QTRY_COMPARE(view.ItemCount(), 2); // the next tick found it
    QFile::remove(path("a.txt"));
    QTRY_COMPARE(names(view), QStringList{"b.txt"});

    view.setRefreshInterval(0);
    QVERIFY(!timer->isActive());

    KelofileView designed;
    designed.setUserMode(false);
    designed.setRefreshInterval(20);
    QVERIFY(!timer->isActive() && !designed.findChild<QTimer *>(QStringLiteral("RefreshTimer"))->isActive());
    designed.setUserMode(true);
    QVERIFY(designed.findChild<QTimer *>(QStringLiteral("RefreshTimer"))->isActive());
}

void TestKelofileView::handlersMayChangeTheListDuringARefresh_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QStringList>("listed"); // in list order after the pass
    QTest::newRow("ItemClear") << "ItemClear" << QStringList{"b.txt", "c.txt"};
    QTest::newRow("ItemRemove(1)") << "ItemRemove" << QStringList{"c.txt", "a.txt", "b.txt"};
    QTest::newRow("PathRoot") << "PathRoot" << QStringList{"b.txt", "c.txt", "a.txt"};
}

void TestKelofileView::handlersMayChangeTheListDuringARefresh()
{
    QFETCH(QString, action);
    QFETCH(QStringList, listed);
    writeFile(path("b.txt"), 2000);
    writeFile(path("c.txt"), 5000);
    QDir(m_dir->path()).mkpath(QStringLiteral("elsewhere"));
    KelofileView view;
    view.setShowFolders(false);
    view.setPathRoot(m_dir->path());
    writeFile(path("a.txt"), 1); // met first by the next pass, before the items the list holds
    bool done = false;
    connect(&view, &KelofileView::AfterAddItem, [&](int &) {
        if (std::exchange(done, true)) {
            return;
        }
        if (action == QLatin1String("ItemClear")) {
            view.ItemClear();
        } else if (action == QLatin1String("ItemRemove")) {
            view.ItemRemove(1);
        } else {
            view.setPathRoot(path("elsewhere")); // stored; the list is not filled while the refresh runs
        }
    });
    view.Refresh();
    QVERIFY(done);
    QCOMPARE(names(view), listed);
    // Every item still shows the entry it stands for, with that entry's facts.
    const QHash<QString, QString> sizes = {{"a.txt", "1KB"}, {"b.txt", "2KB"}, {"c.txt", "5KB"}};
    for (int r = 0; r < view.ItemCount(); ++r) {
        QCOMPARE(cell(view, r, RealName), cell(view, r, Name));
        QCOMPARE(cell(view, r, Size), sizes.value(cell(view, r, Name)));
    }
}

void TestKelofileView::passesDoNotNest()
{
    writeFile(path("a.txt"), 1);
    KelofileView view;
    view.setPathRoot(m_dir->path());
    view.setRefreshInterval(5);
    int afterPaints = 0;
    connect(&view, &KelofileView::AfterPaint, [&] { ++afterPaints; });
    // A handler that runs an event loop (as a modal box does) while ticks arrive.
    connect(&view, &KelofileView::AfterAddItem, [&](int &) {
        QEventLoop loop;
        QTimer::singleShot(60, &loop, &QEventLoop::quit);
        loop.exec();
        view.Refresh(); // a nested call does nothing either
        view.setShowFolders(true);
    });
    writeFile(path("b.txt"), 1);
    view.Refresh();
    QCOMPARE(afterPaints, 1);
    view.setRefreshInterval(0);
    QCOMPARE(names(view), (QStringList{"a.txt", "b.txt"}));

    afterPaints = 0;
    view.setRefreshInterval(5);
    view.setPathRoot(m_dir->path()); // a fill with the same handler
    view.setRefreshInterval(0);
    QCOMPARE(afterPaints, 1);
    QCOMPARE(names(view), (QStringList{"a.txt", "b.txt"})); // no item twice
}

// With ShowFolderDetails a folder shows the count of files directly inside
// it (not its sub-folders) as they were when listed; a refresh updates it.
void TestKelofileView::folderCountsAreFactsOfTheirTime()
{
    QDir(m_dir->path()).mkpath(QStringLiteral("sub/inner"));
    writeFile(path("sub/one.txt"), 1);
    writeFile(path("sub/inner/deep.txt"), 1);
    const qint64 stamp = QDateTime(QDate(2020, 3, 4), QTime(5, 6, 7)).toMSecsSinceEpoch();
    setModified(path("sub"), stamp);
    KelofileView view;
    view.setShowFolderDetails(true);
    view.setPathRoot(m_dir->path());
    QCOMPARE(cell(view, 0, Modified), formatGeneralDate(QDateTime::fromMSecsSinceEpoch(stamp)));
    QVERIFY(!cell(view, 0, Created).isEmpty());
    int found = 0;
    connect(&view, &KelofileView::RefreshFoundChanges, [&] { ++found; });

    writeFile(path("sub/two.txt"), 1);
    setModified(path("sub"), stamp); // the folder's modification time as it was
    QCOMPARE(cell(view, 0, Size), QStringLiteral("1")); // the count of when it was listed
    view.Refresh();
    QCOMPARE(found, 1);
    QCOMPARE(cell(view, 0, Size), QStringLiteral("2"));
    QCOMPARE(cell(view, 0, SortedSize), QStringLiteral("000000000002"));
    view.Refresh();
    QCOMPARE(found, 1);
}

void TestKelofileView::virtualItemKeepsSharedImagesTrue()
{
    QDir(m_dir->path()).mkpath(QStringLiteral("real"));
    KelofileView view;
    QCOMPARE(view.ItemAddNew(QStringLiteral("/no/such/Virtual")), 1);
    const QString folderKey = FileTypes::instance().folderTypeText();
    QCOMPARE(view.ItemIcon(), QString()); // ItemIndex 0
    view.setPathRoot(m_dir->path());
    QCOMPARE(names(view), QStringList{"real"});
    QCOMPARE(view.listFiles()->model()->row(0).largeIcon, folderKey);
    QCOMPARE(view.image32()->picture(folderKey).toImage(), FileIconProvider::folder(32).toImage());
    QCOMPARE(view.image16()->picture(folderKey).toImage(), FileIconProvider::folder(16).toImage());
}

void TestKelofileView::missingImageKeysComeBackInBothLists()
{
    writeFile(path("a.txt"), 1);
    KelofileView view;
    view.setPathRoot(m_dir->path());
    for (const bool small : {true, false}) {
        view.setImageSmall(small);
        view.ImageRemove(QStringLiteral("txt"));
        QVERIFY(!(small ? view.image16() : view.image32())->contains(QStringLiteral("txt")));
        view.setPathRoot(m_dir->path());
        QVERIFY(view.image16()->contains(QStringLiteral("txt")));
        QVERIFY(view.image32()->contains(QStringLiteral("txt")));
    }
    view.setView(1); // small icons
    FileListModel *m = view.listFiles()->model();
    QVERIFY(!m->data(m->index(0, 0), Qt::DecorationRole).isNull());
}

void TestKelofileView::namesDifferingInCaseKeepTheirItems()
{
    writeFile(path("a.txt"), 1);
    writeFile(path("A.TXT"), 2000);
    KelofileView view;
    view.setPathRoot(m_dir->path());
    QCOMPARE(names(view), (QStringList{"A.TXT", "a.txt"}));
    int found = 0;
    connect(&view, &KelofileView::RefreshFoundChanges, [&] { ++found; });
    for (int pass = 0; pass < 3; ++pass) {
        view.Refresh();
        QCOMPARE(names(view), (QStringList{"A.TXT", "a.txt"}));
        QCOMPARE(cell(view, 0, Size), QStringLiteral("2KB"));
        QCOMPARE(cell(view, 1, Size), QStringLiteral("1KB"));
    }
    QCOMPARE(found, 0);

    // One of the two lost from the list (the host removed it): the next pass brings it back once.
    view.ItemRemove(2);
    view.Refresh();
    view.Refresh();
    QCOMPARE(found, 1);
    QCOMPARE(names(view), (QStringList{"A.TXT", "a.txt"}));
    QCOMPARE(cell(view, 1, Size), QStringLiteral("1KB"));
}

// The child of searchSkipsUnreadableFolders: searches the tree and prints what it found.
static int runSearchChild(int argc, char **argv)
{
    QApplication app(argc, argv);
    const QString root = qEnvironmentVariable("KELO_SEARCH_CHILD");
    KelofileView view;
    view.Search(QStringLiteral("*7*.txt"), root, true);
    for (const QString &found : foundBelow(view, root)) {
        std::fputs(qPrintable(found + QLatin1Char('\n')), stdout);
    }
    return 0;
}

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet("KELO_SEARCH_CHILD")) {
        return runSearchChild(argc, argv);
    }
    QApplication app(argc, argv);
    TestKelofileView test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}
#include "tst_kelofileview.moc"
