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
#include <Kelocontrols/IconView.h>
#include <Kelocontrols/ImageList.h>
#include <Kelocontrols/KelofileView.h>
#include <Kelocontrols/ListView.h>
#include <Kelocontrols/PropertyBag.h>
#include <Kelocontrols/PropertyTable.h>
#include <Kelocontrols/ReportView.h>

#include "FileViewWatch_p.h"
#include "FolderWatcher_p.h"

#include <QApplication>
#include <QDateTime>
#include <QEventLoop>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QProcess>
#include <QScopeGuard>
#include <QTest>

#include <cerrno>
#include <cstdio>
#include <functional>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;
Q_DECLARE_METATYPE(std::function<void(KelofileView &)>)

namespace {

using enum FileListModel::Column;

void writeFile(const QString &path, qint64 bytes)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()) && KeloTest::writeFile(path, bytes));
}

void setModified(const QString &path, qint64 msecs)
{
    QVERIFY(KeloTest::setModified(path, msecs));
}

qint64 msecsAt(int year, int month, int day, int hour, int minute, int second = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second)).toMSecsSinceEpoch();
}

QString dateText(qint64 msecs)
{
    return formatGeneralDate(QDateTime::fromMSecsSinceEpoch(msecs));
}

QString cell(KelofileView &view, int row, int column)
{
    return view.listFiles()->model()->text(row, column);
}

/// The texts of @p row in @p columns, joined by "|", for one comparison of a whole row.
QString cells(KelofileView &view, int row, std::initializer_list<int> columns)
{
    QStringList texts;
    for (int column : columns)
        texts << cell(view, row, column);
    return texts.join(QLatin1Char('|'));
}

QStringList names(KelofileView &view)
{
    QStringList list;
    for (int r = 0; r < view.ItemCount(); ++r)
        list << cell(view, r, Name);
    return list;
}

QLineEdit *message(KelofileView &view)
{
    return view.findChild<QLineEdit *>(QStringLiteral("txtMessage"));
}

void tick(KelofileView &view)
{
    KeloTest::fireTimer(&view, QStringLiteral("RefreshTimer"));
}

/// Ticks @p ticks times and answers the refresh passes the ticks ran.
int passesIn(KelofileView &view, int ticks)
{
    const quint64 before = FileViewWatch::passesRun();
    for (int i = 0; i < ticks; ++i)
        tick(view);
    return int(FileViewWatch::passesRun() - before);
}

/// Ticks until a tick runs no pass: the list and its watches have caught up with the folder. Answers the passes run.
int settle(KelofileView &view)
{
    for (int i = 0; i < 5; ++i) {
        if (passesIn(view, 1) == 0)
            return i;
    }
    return -1;
}

FileListRow fileNamed(const QString &name)
{
    FileEntry entry;
    entry.name = name;
    return FileListRow::file(entry, QStringLiteral("/nowhere"));
}

// A recorder of the fill events; the handler at position cancelAt (1-based) cancels.
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
        if (cancelAt == events.size())
            cancel = -1;
    }
    QStringList events;
    int cancelAt = 0;
};

} // namespace

// The found items as paths below @p root; a name that is not UTF-8 shows as "caf?".
static QStringList foundBelow(KelofileView &view, const QString &root)
{
    QStringList found;
    for (int r = 0; r < view.ItemCount(); ++r) {
        QString name = cell(view, r, RealName);
        if (name.startsWith(QLatin1String("caf")))
            name = QStringLiteral("caf?");
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
    writeFile(root + QStringLiteral("/a7.txt"), 3);
    writeFile(root + QStringLiteral("/b.txt"), 1);
    writeFile(root + QStringLiteral("/dir7/in7.txt"), 2);
    writeFile(root + QStringLiteral("/dir7/deep/d7.txt"), 1);
    const int fd = ::open(raw.constData(), O_CREAT | O_WRONLY, 0644);
    if (fd >= 0) {
        (void)::write(fd, "abcd", 4);
        ::close(fd);
    }
    QFile::link(root + QStringLiteral("/dir7"), root + QStringLiteral("/link7"));
    QFile::link(root, root + QStringLiteral("/loop"));
    return guard;
}

// The child of searchSkipsUnreadableFolders: searches the tree and prints what it found.
static int runSearchChild(int argc, char **argv)
{
    QApplication app(argc, argv);
    const QString root = qEnvironmentVariable("KELO_SEARCH_CHILD");
    KelofileView view;
    view.Search(QStringLiteral("*7*.txt"), root, true);
    for (const QString &found : foundBelow(view, root))
        std::fputs(qPrintable(found + QLatin1Char('\n')), stdout);
    return 0;
}

class TestKelofileView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_dir.reset(new QTemporaryDir); }
    void cleanup()
    {
        FolderWatcher::instance().setAddWatchErrorForTests(0);
        FolderWatcher::instance().setIgnoreNoticesForTests(false);
    }

    void freshControlAndImages()
    {
        KelofileView view;
        auto *list = view.findChild<ListView *>(QStringLiteral("ListFiles"));
        QVERIFY(list && message(view) && view.findChild<QTimer *>(QStringLiteral("RefreshTimer")));
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
        QCOMPARE(KeloTest::propertyTexts(&view,
                     {"View", "BackColor", "ForeColor", "BorderStyle", "Appearance", "LimitToRoot", "ShowFolders",
                         "AllowLabelEdit", "LabelWrap", "AllowHiddenFiles", "AllowSystemFiles", "ShowFolderDetails",
                         "OLEDragMode", "OLEDropMode", "RefreshInterval", "Path", "PathRoot", "Filter", "TotalSize",
                         "ItemCount", "ItemIndex", "ItemSmallIcon", "ImageCount", "ImageSmall"}),
            (QStringList{"View=3", "BackColor=2147483653", "ForeColor=2147483656", "BorderStyle=1", "Appearance=1",
                "LimitToRoot=true", "ShowFolders=true", "AllowLabelEdit=true", "LabelWrap=true",
                "AllowHiddenFiles=false", "AllowSystemFiles=false", "ShowFolderDetails=false", "OLEDragMode=1",
                "OLEDropMode=2", "RefreshInterval=0", "Path=", "PathRoot=", "Filter=", "TotalSize=0", "ItemCount=0",
                "ItemIndex=0", "ItemSmallIcon=", "ImageCount=2", "ImageSmall=false"}));

        // The fixed pictures; the sort arrows are in the small list only.
        const auto keys = [](ImageList *images) {
            QStringList all;
            for (int i = 1; i <= images->count(); ++i)
                all << images->key(i) + (images->picture(i).isNull() ? QStringLiteral(" (no picture)") : QString());
            return all;
        };
        QCOMPARE(keys(view.image32()), (QStringList{"Drive Unavailable", "FolderUnavailable"}));
        QCOMPARE(keys(view.image16()), (QStringList{"SortDown", "SortUp", "Drive Unavailable", "FolderUnavailable"}));

        // The image members address the large list, or the small one with ImageSmall.
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

        // An item added before any fill gets the shared folder pictures, which stay as they are.
        QCOMPARE(view.ItemAddNew(QStringLiteral("/no/such/Virtual")), 1);
        QCOMPARE(view.ItemIcon(), QString()); // ItemIndex 0
        mkpath(QStringLiteral("real"));
        view.setPathRoot(m_dir->path());
        QCOMPARE(names(view), QStringList{"real"});
        const QString folderKey = FileTypes::instance().folderTypeText();
        QCOMPARE(view.listFiles()->model()->row(0).largeIcon, folderKey);
        QCOMPARE(view.image32()->picture(folderKey).toImage(), FileIconProvider::folder(32).toImage());
        QCOMPARE(view.image16()->picture(folderKey).toImage(), FileIconProvider::folder(16).toImage());

        // An image key the host removed comes back in both lists at the next fill.
        writeFile(path("a.txt"), 1);
        for (const bool small : {true, false}) {
            view.setImageSmall(small);
            view.ImageRemove(QStringLiteral("txt"));
            QVERIFY(!(small ? view.image16() : view.image32())->contains(QStringLiteral("txt")));
            view.setPathRoot(m_dir->path());
            QVERIFY(view.image16()->contains(QStringLiteral("txt")) && view.image32()->contains(QStringLiteral("txt")));
        }
        view.setView(1); // small icons
        FileListModel *m = view.listFiles()->model();
        QVERIFY(!m->data(m->index(1, 0), Qt::DecorationRole).isNull());
    }
    void eventOrderAndCancel_data()
    {
        QTest::addColumn<int>("cancelAt");
        QTest::addColumn<QStringList>("expected");
        QTest::addColumn<QStringList>("listed");
        const QStringList start{"ChangedFolder", "BeforePaint", "BeforeAddItem", "AfterAddItem:1", "BeforeAddItem"};
        QTest::newRow("no cancel") << 0
                                   << start
                + QStringList{"AfterAddItem:2", "BeforeAddItem", "AfterAddItem:3", "AfterPaint"}
                                   << QStringList{"sub", "a.txt", "B.txt"};
        QTest::newRow("ChangedFolder") << 1 << start.mid(0, 1) << QStringList{"old.txt"};
        QTest::newRow("BeforePaint") << 2 << start.mid(0, 2) << QStringList{"old.txt"};
        QTest::newRow("second item") << 5 << start + QStringList{"BeforeAddItem", "AfterAddItem:2", "AfterPaint"}
                                     << QStringList{"sub", "B.txt"};
    }
    void eventOrderAndCancel()
    {
        QFETCH(int, cancelAt);
        mkpath(QStringLiteral("new/sub"));
        writeFile(path("old/old.txt"), 1);
        writeFile(path("new/B.txt"), 2);
        writeFile(path("new/a.txt"), 3);
        KelofileView view;
        view.setPathRoot(path("old"));
        QCOMPARE(names(view), QStringList{"old.txt"});
        Recorder recorder(view);
        recorder.cancelAt = cancelAt;
        view.setPathRoot(path("new"));
        QTEST(recorder.events, "expected");
        QTEST(names(view), "listed"); // folders first, then files in name order without regard to case
    }
    void columnsOfFilesAndFolders()
    {
        mkpath(QStringLiteral("docs"));
        writeFile(path("empty.txt"), 0);
        writeFile(path("big.txt"), 1025);
        const qint64 when = msecsAt(2024, 2, 29, 13, 5, 9);
        setModified(path("big.txt"), when);
        writeFile(path("same.txt"), 1);
        writeFile(path("later.txt"), 1);
        const std::optional<FileEntry> same = FileSystem::instance().entry(path("same.txt"));
        QVERIFY(same);
        setModified(path("same.txt"), same->created / 1000 * 1000 + 999); // the same second as its creation
        setModified(path("later.txt"), same->created + 3600 * 1000);

        KelofileView view;
        view.setPathRoot(m_dir->path());
        QCOMPARE(names(view), (QStringList{"docs", "big.txt", "empty.txt", "later.txt", "same.txt"}));
        const QString folder = FileSystem::cleanPath(m_dir->path());
        QCOMPARE(cells(view, 1, {Size, Modified, Folder, SortedSize, SortedModified, RealName, Refresh, SortName}),
            QStringList(
                {"2KB", dateText(when), folder, "000000001025", "2024-02-29 13:05:09", "big.txt", "", "big.txt"})
                .join('|'));
        QCOMPARE(cell(view, 2, Size), QStringLiteral("0KB"));
        QCOMPARE(cell(view, 1, Type), FileTypes::instance().fileTypeText(QStringLiteral("big.txt")));
        QVERIFY(!cell(view, 1, Type).isEmpty());
        QCOMPARE(view.TotalSize(), 1027);
        // Changed tells whether the modification lies in another second than the creation.
        const std::optional<FileEntry> later = FileSystem::instance().entry(path("later.txt"));
        QCOMPARE(cells(view, 3, {Changed, Created}),
            (later->createdKnown ? QStringLiteral("Yes|") : QStringLiteral("|")) + dateText(later->created));
        QCOMPARE(cell(view, 4, Changed), QString());

        // A folder without details: type, folder, sort keys; no size or dates shown.
        QCOMPARE(cells(view, 0, {Type, Size, Modified, Changed, SortedSize, SortName, RealName, Folder}),
            QStringList({FileTypes::instance().folderTypeText(), "", "", "", "000000000000", " docs", "docs", folder})
                .join('|'));

        // Image keys: one per extension, in both lists; folders get their open form too.
        FileListModel *m = view.listFiles()->model();
        QCOMPARE(m->row(1).largeIcon + m->row(1).smallIcon, QStringLiteral("txttxt"));
        QCOMPARE(m->row(0).largeIcon, FileTypes::instance().folderTypeText());
        for (ImageList *list : {view.image32(), view.image16()}) {
            QVERIFY(list->contains(QStringLiteral("txt")));
            QVERIFY(list->contains(QStringLiteral("OPEN_") + FileTypes::instance().folderTypeText()));
        }
        QCOMPARE(view.image16()->count(), view.image32()->count() + 2); // the two sort arrows are small only
        QVERIFY(!m->data(m->index(1, 0), Qt::DecorationRole).isNull());
    }
    void filterHiddenAndSystemEntries()
    {
        mkpath(QStringLiteral("notes.txt"));
        mkpath(QStringLiteral("docs"));
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

        QVERIFY(m_dir->remove() && QDir().mkpath(m_dir->path()));
        mkpath(QStringLiteral(".secret"));
        writeFile(path(".dotfile"), 100);
        writeFile(path("listed.txt"), 1000);
        writeFile(path("plain.txt"), 1);
        QVERIFY(KeloTest::writeTextFile(path(".hidden"), QStringLiteral("listed.txt\n")));
        QCOMPARE(mkfifo(QFile::encodeName(path("pipe")).constData(), 0600), 0);
        view.setFilter(QString());
        view.setShowFolders(true);
        QCOMPARE(names(view), QStringList{"plain.txt"});
        // Hidden and system files that match still count: .dotfile, .hidden, listed.txt, pipe, plain.txt.
        QCOMPARE(view.TotalSize(), 100 + 11 + 1000 + 0 + 1);

        view.setAllowHiddenFiles(true);
        view.setShowFolders(true);
        QCOMPARE(names(view), (QStringList{".secret", ".dotfile", ".hidden", "listed.txt", "plain.txt"}));
        FileListModel *m = view.listFiles()->model();
        const QString folderKey = FileTypes::instance().folderTypeText();
        QCOMPARE(QStringList({m->row(0).largeIcon, m->row(3).largeIcon, m->row(4).largeIcon}),
            QStringList({"HIDDEN_" + folderKey, "HIDDEN_txt", "txt"}));
        for (ImageList *list : {view.image32(), view.image16()}) {
            QVERIFY(list->contains(QStringLiteral("HIDDEN_txt")));
            QVERIFY(list->contains(QStringLiteral("HIDDEN_OPEN_") + folderKey));
        }
        // The ghosted picture differs from the plain one.
        QVERIFY(view.image32()->picture(QStringLiteral("txt")).toImage()
            != view.image32()->picture(QStringLiteral("HIDDEN_txt")).toImage());

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
    void messageLine()
    {
        mkpath(QStringLiteral("empty"));
        KelofileView view;
        view.resize(600, 400);
        QFont font = view.Font();
        font.setPointSize(10);
        view.setFont(font);
        QSignalSpy afterPaint(&view, &KelofileView::AfterPaint);
        view.setPathRoot(path("empty"));
        QCOMPARE(view.ItemCount(), 0);
        QVERIFY(!message(view)->isHidden());
        QCOMPARE(message(view)->text(), QStringLiteral("There are no items to show in this folder."));
        QCOMPARE(afterPaint.count(), 1);
        QCOMPARE(message(view)->geometry(), QRect(8, (180 + 30 * 10) / 15, 600 - 16, message(view)->height()));
        QCOMPARE(message(view)->font().pointSize(), 10);
        view.setView(0);
        QCOMPARE(message(view)->geometry().top(), 8);

        writeFile(path("empty/a.log"), 1);
        view.setFilter(QStringLiteral("*.txt")); // everything filtered out counts as empty
        view.setShowFolders(true);
        QVERIFY(!message(view)->isHidden());
        QCOMPARE(afterPaint.count(), 2);
        view.setFilter(QString());
        view.setShowFolders(true);
        QVERIFY(message(view)->isHidden());
        view.setPathRoot(QString());
        QCOMPARE(view.ItemCount(), 0);
        QCOMPARE(afterPaint.count(), 3); // no AfterPaint, and the message stays as it was
        QVERIFY(message(view)->isHidden());

        // At design time the message line tells where the list would be; nothing is listed.
        KelofileView designed;
        designed.setUserMode(false);
        designed.setObjectName(QStringLiteral("FileView1"));
        Recorder recorder(designed);
        designed.setPathRoot(path("empty"));
        QCOMPARE(designed.ItemCount(), 0);
        QCOMPARE(recorder.events, QStringList());
        QCOMPARE(message(designed)->text(), QStringLiteral("FileView1: PathRoot set to '%1'").arg(path("empty")));
        QVERIFY(!message(designed)->isHidden());
        QCOMPARE(designed.Path(), path("empty"));
    }
    void pseudoFolders()
    {
        // My Computer, in any case: the drives.
        const QList<DriveInfo> drives = FileSystem::instance().drives();
        QVERIFY(!drives.isEmpty());
        KelofileView view;
        view.setPathRoot(QStringLiteral("mY cOMPUTER"));
        QCOMPARE(view.ItemCount(), int(drives.size()));
        for (int i = 0; i < drives.size(); ++i) {
            QCOMPARE(cells(view, i, {Name, RealName, Folder}), drives[i].rootPath + '|' + drives[i].rootPath + '|');
            QCOMPARE(view.listFiles()->model()->row(i).largeIcon, DriveTypeName(drives[i]));
            QVERIFY(view.image16()->contains(DriveTypeName(drives[i])));
        }

        // My Folders asks the host once and marks the entries that are gone.
        mkpath(QStringLiteral("Work"));
        const QString gone = path("Gone");
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
        FileListModel *m = view.listFiles()->model();
        QCOMPARE(
            m->row(1).largeIcon + '|' + m->row(1).smallIcon, QStringLiteral("FolderUnavailable|FolderUnavailable"));
        QCOMPARE(cell(view, 1, SortName), QLatin1Char(' ') + gone);
        QCOMPARE(cell(view, 0, Folder), FileSystem::cleanPath(m_dir->path()));
        // Only the existing folder raises the per-item events.
        QCOMPARE(recorder.events,
            (QStringList{"ChangedFolder", "BeforePaint", "BeforeAddItem", "AfterAddItem:1", "AfterPaint"}));
        view.setPathRoot(QStringLiteral("my folders"));
        QCOMPARE(asked, 1); // the set is filled now
        QCOMPARE(view.ItemCount(), 2);
        view.Refresh();
        view.Refresh();
        QCOMPARE(asked, 3); // a refresh asks the host afresh every time
        QCOMPARE(view.ItemCount(), 2);

        // A refresh of My Computer leaves the list as it is.
        view.setPathRoot(KelofileView::MyComputer);
        view.setItemIndex(1);
        view.setItemDisplayName(QStringLiteral("renamed"));
        recorder.events.clear();
        view.Refresh();
        QCOMPARE(recorder.events, QStringList());
        QCOMPARE(view.ItemCount(), int(drives.size()));
        QCOMPARE(view.ItemDisplayName(), QStringLiteral("renamed"));
    }
    void programImagesAreDroppedAtTheNextFill()
    {
        mkpath(QStringLiteral("other"));
        writeFile(path("setup.exe"), 10);
        writeFile(path("TOOL.EXE"), 10);
        writeFile(path("readme.txt"), 10);
        KelofileView view;
        view.setPathRoot(m_dir->path());
        QCOMPARE(names(view), (QStringList{"other", "readme.txt", "setup.exe", "TOOL.EXE"}));
        QCOMPARE(view.listFiles()->model()->row(3).largeIcon, QStringLiteral("TOOL.EXE"));
        for (ImageList *list : {view.image32(), view.image16()}) {
            QCOMPARE(list->tag(list->indexOf(QStringLiteral("setup.exe"))).toString(), QStringLiteral("exe"));
            QVERIFY(list->contains(QStringLiteral("TOOL.EXE")));
        }
        view.setPathRoot(path("other"));
        for (ImageList *list : {view.image32(), view.image16()}) {
            QVERIFY(!list->contains(QStringLiteral("setup.exe")) && !list->contains(QStringLiteral("TOOL.EXE")));
            QVERIFY(list->contains(QStringLiteral("txt"))); // images of types stay
        }
    }
    void errorsOfTheFill()
    {
        // Two sparse files of 1.5 GB: the sum passes 2,147,483,647 bytes without using the disk.
        for (const char *n : {"a.bin", "b.bin"}) {
            QFile f(path(QString::fromLatin1(n)));
            QVERIFY(f.open(QIODevice::WriteOnly) && f.resize(qint64(1536) * 1024 * 1024));
        }
        KelofileView view;
        QCOMPARE(errorNumberOf([&] { view.setPathRoot(m_dir->path()); }), ErrorNumber::Overflow);
        QCOMPARE(view.ItemCount(), 1); // the first file was listed before the sum overflowed
        view.setFilter(QStringLiteral("a*"));
        view.setShowFolders(true);
        QCOMPARE(view.TotalSize(), 1536 * 1024 * 1024);
        QCOMPARE(cell(view, 0, Size), QStringLiteral("1572864KB"));

        // A missing folder raises, early or late bound, and leaves the list empty.
        QCOMPARE(errorNumberOf([&] { view.setPathRoot(path("missing")); }), ErrorNumber::PathNotFound);
        QCOMPARE(view.ItemCount(), 0);
        QCOMPARE(errorNumberOf([&] { view.setProperty("PathRoot", path("missing")); }), ErrorNumber::PathNotFound);
    }
    void undecodableNamesStayReachable()
    {
        // A name that is not UTF-8, listed, read back from the list and opened with its application.
        XdgTestSandbox sandbox;
        sandbox.addRecorder(QStringLiteral("kelo-viewer"));
        sandbox.addEntry(
            QStringLiteral("viewer.desktop"), QStringLiteral("kelo-viewer %f"), QStringLiteral("text/plain"));
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
        QCOMPARE(cells(view, 0, {Size, Type}), "1KB|" + FileTypes::instance().fileTypeText(QStringLiteral("x.txt")));
        const QString listedPath = FileSystem::buildPath(cell(view, 0, Folder), name);
        QCOMPARE(FileNameCodec::encode(listedPath), raw);

        KeloTest::MsgBoxRecorder boxes;
        OpenWithAssociatedApp(listedPath, &view, false);
        QCOMPARE(boxes.calls(), QStringList());
        QCOMPARE(sandbox.waitForArguments(QStringLiteral("kelo-viewer")), QList<QByteArray>{raw});
    }
    void persistenceRoundTrip()
    {
        KelofileView original;
        const QStringList names{"BackColor", "BorderStyle", "Path", "LimitToRoot", "View", "GridLines", "MultiSelect",
            "Filter", "AllowHiddenFiles", "ShowFolderDetails", "RefreshInterval", "OLEDropMode", "PictureAlignment"};
        const QStringList values{"BackColor=1122867", "BorderStyle=0", "Path=/somewhere", "LimitToRoot=false", "View=1",
            "GridLines=true", "MultiSelect=true", "Filter=*.doc", "AllowHiddenFiles=true", "ShowFolderDetails=true",
            "RefreshInterval=1500", "OLEDropMode=1", "PictureAlignment=5"};
        for (const QString &value : values) {
            QVERIFY2(original.setProperty(value.section('=', 0, 0).toLatin1().constData(), value.section('=', 1)),
                qPrintable(value));
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
        const QStringList counts{"ItemIndex", "ItemCount", "ImageIndex", "ImageCount"};
        PropertyBag saved;
        for (const QString &name : counts)
            saved.WriteProperty(name, 7);
        KelofileView loaded;
        loaded.ReadProperties(saved);
        QCOMPARE(KeloTest::propertyTexts(&loaded, counts),
            (QStringList{"ItemIndex=0", "ItemCount=0", "ImageIndex=0", "ImageCount=2"}));
        // The opt-in trash is saved after everything else.
        QCOMPARE(loaded.propertyTable().writeOrder().constLast(), QStringLiteral("DeleteToTrash"));
        // A value the list refuses raises its own error out of the load.
        PropertyBag bad;
        bad.WriteProperty(QStringLiteral("View"), 9);
        QCOMPARE(errorNumberOf([&] { loaded.ReadProperties(bad); }), ErrorNumber::InvalidPropertyValue);
    }
    void itemMembers()
    {
        mkpath(QStringLiteral("folder"));
        writeFile(path("a.txt"), 1);
        writeFile(path("b.txt"), 1);
        KelofileView view;
        view.setPathRoot(m_dir->path());
        QCOMPARE(view.ItemCount(), 3);
        QCOMPARE(view.ItemDisplayName() + view.ItemIcon(), QString()); // ItemIndex 0 addresses nothing
        view.setItemDisplayName(QStringLiteral("ignored"));
        QCOMPARE(names(view), (QStringList{"folder", "a.txt", "b.txt"}));

        view.setItemIndex(2);
        QCOMPARE(KeloTest::propertyTexts(&view, {"ItemDisplayName", "ItemName", "ItemIcon", "ItemSmallIcon"}),
            (QStringList{"ItemDisplayName=a.txt", "ItemName=a.txt", "ItemIcon=txt", "ItemSmallIcon=txt"}));
        view.setItemDisplayName(QStringLiteral("Shown name"));
        QCOMPARE(cell(view, 1, Name), QStringLiteral("Shown name"));
        QCOMPARE(view.ItemName(), QStringLiteral("a.txt")); // the real name stays
        view.setItemTag(QStringLiteral("tagged"));
        QCOMPARE(view.ItemTag(), QStringLiteral("tagged"));
        view.setItemBold(true);
        FileListModel *m = view.listFiles()->model();
        QVERIFY(view.ItemBold() && m->data(m->index(1, 0), Qt::FontRole).value<QFont>().bold());
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
            (QStringList{"BeforeAddItem", "AfterAddItem:3", "BeforeAddItem", "AfterAddItem:4", "BeforeAddItem",
                "AfterAddItem:5"}));
        QCOMPARE(cell(view, 2, SortName), QStringLiteral(" folder"));
        QCOMPARE(cell(view, 3, Size), QStringLiteral("1KB"));
        QCOMPARE(cells(view, 4, {Name, Type}), "Favourites|" + FileTypes::instance().folderTypeText());
        QVERIFY(!m->data(m->index(4, 0), Qt::DecorationRole).isNull());
        view.ItemClear();
        QCOMPARE(view.ItemCount(), 0);
        QCOMPARE(view.ItemDisplayName(), QString());
    }
    void itemMembersAtDesignTime_data()
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
        QTest::newRow("late-bound ItemTag")
            << Write([](KelofileView &v) { v.setProperty("ItemTag", QStringLiteral("x")); });
        QTest::newRow("late-bound ItemClear")
            << Write([](KelofileView &v) { QMetaObject::invokeMethod(&v, "ItemClear"); });
    }
    void itemMembersAtDesignTime()
    {
        QFETCH(std::function<void(KelofileView &)>, write);
        KelofileView view;
        view.setUserMode(false);
        QCOMPARE(errorNumberOf([&] { write(view); }), ErrorNumber::SetNotPermitted);
        QCOMPARE(view.ItemTag(), QString());
        QCOMPARE(view.ItemCount(), 0);
    }
    void headerClicksSort_data()
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
    void headerClicksSort()
    {
        QFETCH(QList<int>, clicks);
        QFETCH(QStringList, order);
        mkpath(QStringLiteral("alpha"));
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
        QCOMPARE(names(view), order);
        ListView *list = view.listFiles();
        QTEST(list->property("SortKey").toInt(), "sortKey");
        QTEST(list->property("SortOrder").toInt(), "sortOrder");
        QVERIFY(list->property("Sorted").toBool());
        FileListModel *model = list->model();
        QTEST(model->columnIcon(Name), "nameIcon");
        QTEST(model->columnIcon(Size), "sizeIcon");
        for (int c = Type; c < FileListModel::ColumnCount; ++c)
            QCOMPARE(model->columnIcon(c), QString());
        QCOMPARE(model->headerData(clicks.last(), Qt::Horizontal, Qt::DecorationRole).isNull(), false);

        // An item added while sorted goes to its sorted place, and AfterAddItem tells that place.
        writeFile(path("b2.txt"), 2);
        QList<int> added;
        connect(&view, &KelofileView::AfterAddItem, [&](int &index) { added << index; });
        const int index = view.ItemAddNew(path("b2.txt"));
        QCOMPARE(added, QList<int>{index});
        QStringList others = names(view);
        QCOMPARE(others.takeAt(index - 1), QStringLiteral("b2.txt"));
        QCOMPARE(others, order);
        const FileListRow &newRow = model->row(index - 1);
        const auto inOrder = [&](const FileListRow &a, const FileListRow &b) {
            return list->sortOrder() == 0 ? FileListModel::lessByColumn(a, b, list->sortKey())
                                          : FileListModel::lessByColumn(b, a, list->sortKey());
        };
        QVERIFY(index == 1 || !inOrder(newRow, model->row(index - 2)));
        QVERIFY(index == view.ItemCount() || inOrder(newRow, model->row(index)));
    }
    void goUpRules_data()
    {
        // "~" is the test folder, other relative paths lie inside it; "/", "" and the pseudo-paths stand for
        // themselves.
        QTest::addColumn<QString>("pathRoot");
        QTest::addColumn<bool>("limit");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const char *root, bool limit, const char *start, const char *expected) {
            QTest::newRow(name) << QString(root) << limit << QString(start) << QString(expected);
        };
        row("at PathRoot, limited", "data", true, "data", "data");
        row("at PathRoot, unlimited", "data", false, "data", "~");
        row("inside PathRoot", "data", true, "data/sub", "data");
        row("a plain prefix counts as inside", "data", true, "data2/x", "data2");
        row("above PathRoot refused", "data", true, "data2", "data2");
        row("prefix without regard to case", "data", true, "DATA/sub", "DATA");
        row("file system root goes to PathRoot", "data", false, "/", "data");
        row("file system root to My Computer", "My Computer", true, "/", "My Computer");
        row("search result, unlimited", "data", false, "", "My Folders");
        row("search result, limited", "data", true, "", "");
    }
    void goUpRules()
    {
        QFETCH(bool, limit);
        for (const char *folder : {"data/sub", "DATA/sub", "data2/x"})
            mkpath(QString::fromLatin1(folder));
        const auto resolve = [this](const QString &p) {
            if (p == QLatin1String("~"))
                return m_dir->path();
            const bool special = p.isEmpty() || p.startsWith(QLatin1Char('/')) || p.startsWith(QLatin1String("My "));
            return special ? p : path(p);
        };
        QFETCH(QString, pathRoot);
        QFETCH(QString, start);
        QFETCH(QString, expected);
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
    void openingItemsByMouseAndKeys()
    {
        XdgTestSandbox sandbox;
        sandbox.addRecorder(QStringLiteral("kelo-viewer"));
        sandbox.addEntry(
            QStringLiteral("viewer.desktop"), QStringLiteral("kelo-viewer %f"), QStringLiteral("text/plain"));
        writeFile(path("sub/doc.txt"), 3);
        writeFile(path("a.txt"), 1);
        KelofileView view;
        view.resize(600, 300);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        ReportView *report = view.listFiles()->reportView();
        const auto rowCentre
            = [&](int row) { return report->visualRect(view.listFiles()->model()->index(row, 0)).center(); };

        // A click makes the item current and selected, raising ItemClick with its index, then Click.
        view.setPathRoot(m_dir->path());
        QStringList events;
        connect(
            &view, &KelofileView::ItemClick, [&](int &index) { events << QStringLiteral("ItemClick:%1").arg(index); });
        connect(&view, &KelofileView::Click, [&] { events << QStringLiteral("Click"); });
        QTest::mouseClick(report->viewport(), Qt::LeftButton, {}, rowCentre(1));
        events.sort();
        QCOMPARE(events, (QStringList{"Click", "ItemClick:2"}));
        QCOMPARE(QList<int>({view.ItemIndex(), view.ItemSelected()}), QList<int>({2, 2}));

        connect(&view, &KelofileView::NeedMyFolders, [&](QStringList &folders) { folders << path("sub"); });
        connect(&view, &KelofileView::DblClick, [&] { events << QStringLiteral("DblClick"); });
        connect(&view, &KelofileView::ChangedFolder,
            [&](int &) { events << QStringLiteral("ChangedFolder:") + view.Path(); });
        view.setPathRoot(KelofileView::MyFolders);
        const auto doubleClickRow = [&](int row) {
            QTest::mouseClick(report->viewport(), Qt::LeftButton, {}, rowCentre(row));
            events.clear();
            QTest::mouseDClick(report->viewport(), Qt::LeftButton, {}, rowCentre(row));
        };
        const auto key
            = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(report, key, modifiers); };

        // A "My Folders" entry is entered and remembered, so GoUp comes back to "My Folders".
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
        doubleClickRow(0);
        QCOMPARE(events, QStringList{"DblClick"});
        QCOMPARE(view.Path(), path("sub"));
        QCOMPARE(sandbox.waitForArguments(QStringLiteral("kelo-viewer")),
            QList<QByteArray>{QFile::encodeName(path("sub/doc.txt"))});

        // A drive of "My Computer" opens its root.
        view.setPathRoot(KelofileView::MyComputer);
        if (view.ItemCount() == 0)
            QSKIP("no drives listed on this machine");
        view.setItemIndex(1);
        const QString root = view.ItemName();
        doubleClickRow(0);
        QCOMPARE(view.Path(), root);
    }
    void searchOrderAndSafety_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<bool>("subdirectories");
        QTest::addColumn<QStringList>("found");
        QTest::addColumn<int>("totalSize");
        const QStringList files{"a7.txt", "caf?", "dir7/in7.txt", "dir7/deep/d7.txt"};
        QTest::newRow("files, whole tree") << "*7*.TXT" << true << files << 10;
        QTest::newRow("folders after their contents") << "*7*" << true << files + QStringList{"dir7", "link7"} << 10;
        QTest::newRow("root only") << "*7*" << false << QStringList{"a7.txt", "caf?", "dir7", "link7"} << 7;
        QTest::newRow("everything at the root")
            << "" << false << QStringList{"a7.txt", "b.txt", "caf?", "dir7", "link7", "loop"} << 8;
        QTest::newRow("nothing") << "*.none" << true << QStringList{} << 0;
    }
    void searchOrderAndSafety()
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
        // Neither ChangedFolder nor BeforePaint; one AfterPaint, last.
        recorder.events.removeAll(QStringLiteral("BeforeAddItem"));
        recorder.events.removeIf([](const QString &e) { return e.startsWith(QLatin1String("AfterAddItem:")); });
        QCOMPARE(recorder.events, QStringList{"AfterPaint"});
        QCOMPARE(message(view)->text(), view.ItemCount() == 0 ? KelofileView::EmptyFolderMessage : QString());
        for (int r = 0; r < view.ItemCount(); ++r) { // every found item can be reached by its path
            const QString found = FileSystem::buildPath(cell(view, r, Folder), cell(view, r, RealName));
            QVERIFY2(FileSystem::instance().entry(found).has_value(), qPrintable(found));
        }
        view.Refresh(); // a search result is left alone
        QTEST(foundBelow(view, m_dir->path()), "found");
    }
    // Root reads everything: the search runs in a child as nobody, where locked/ cannot be read.
    void searchSkipsUnreadableFolders()
    {
        const QString setpriv = QStandardPaths::findExecutable(QStringLiteral("setpriv"));
        if (::geteuid() != 0 || setpriv.isEmpty())
            QSKIP("needs root and setpriv to run a child as nobody");
        const auto removeRaw = makeSearchTree(m_dir->path());
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
    void refreshUpdatesInPlace()
    {
        writeFile(path("a.txt"), 1);
        writeFile(path("b.txt"), 1);
        writeFile(path("gone.txt"), 1);
        setModified(path("a.txt"), msecsAt(2020, 1, 1, 8, 0));
        KelofileView view;
        view.setPathRoot(m_dir->path());
        QSignalSpy found(&view, &KelofileView::RefreshFoundChanges);
        Recorder recorder(view);
        view.Refresh(); // nothing changed on disk
        QCOMPARE(found.count(), 0);
        QCOMPARE(recorder.events, QStringList{"AfterPaint"});

        view.setItemIndex(1);
        view.setItemBold(true); // survives: the list is not refilled
        const qint64 later = msecsAt(2021, 6, 1, 9, 30);
        setModified(path("a.txt"), later);
        writeFile(path("b.txt"), 2000);
        QFile::remove(path("gone.txt"));
        writeFile(path("new.txt"), 3);
        recorder.events.clear();
        view.Refresh();
        QCOMPARE(found.count(), 1);
        QCOMPARE(names(view), (QStringList{"a.txt", "b.txt", "new.txt"})); // new entries at the end
        QCOMPARE(recorder.events, (QStringList{"BeforeAddItem", "AfterAddItem:4", "AfterPaint"}));
        QCOMPARE(cells(view, 0, {SortedModified, Modified, Refresh}), "2021-06-01 09:30:00|" + dateText(later) + '|');
        QCOMPARE(cell(view, 1, Size), QStringLiteral("2KB"));
        QVERIFY(view.ItemBold());
        view.Refresh();
        QCOMPARE(found.count(), 1); // a pass that finds nothing new raises nothing

        // Two items of one name: both are matched against the first, the second is removed.
        view.ItemAddNew(path("b.txt"));
        QCOMPARE(view.ItemCount(), 4);
        view.Refresh();
        QCOMPARE(names(view), (QStringList{"a.txt", "b.txt", "new.txt"}));
        QCOMPARE(found.count(), 2);

        // The folder gone: the error reaches the caller.
        view.setPath(path("missing"));
        QCOMPARE(errorNumberOf([&] { view.Refresh(); }), ErrorNumber::PathNotFound);
    }
    void refreshTimerRunsOnlyAtRunTime()
    {
        writeFile(path("a.txt"), 1);
        KelofileView view;
        auto *timer = view.findChild<QTimer *>(QStringLiteral("RefreshTimer"));
        QVERIFY(timer && !timer->isActive());
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
        auto *designedTimer = designed.findChild<QTimer *>(QStringLiteral("RefreshTimer"));
        QVERIFY(!timer->isActive() && !designedTimer->isActive());
        designed.setUserMode(true);
        QVERIFY(designedTimer->isActive());
    }
    void handlersMayChangeTheListDuringARefresh_data()
    {
        QTest::addColumn<QString>("action");
        QTest::addColumn<QStringList>("listed"); // in list order after the pass
        QTest::newRow("ItemClear") << "ItemClear" << QStringList{"b.txt", "c.txt"};
        QTest::newRow("ItemRemove(1)") << "ItemRemove" << QStringList{"c.txt", "a.txt", "b.txt"};
        QTest::newRow("PathRoot") << "PathRoot" << QStringList{"b.txt", "c.txt", "a.txt"};
    }
    void handlersMayChangeTheListDuringARefresh()
    {
        QFETCH(QString, action);
        writeFile(path("b.txt"), 2000);
        writeFile(path("c.txt"), 5000);
        mkpath(QStringLiteral("elsewhere"));
        KelofileView view;
        view.setShowFolders(false);
        view.setPathRoot(m_dir->path());
        writeFile(path("a.txt"), 1); // met first by the next pass, before the items the list holds
        bool done = false;
        connect(&view, &KelofileView::AfterAddItem, [&](int &) {
            if (std::exchange(done, true))
                return;
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
        QTEST(names(view), "listed");
        // Every item still shows the entry it stands for, with that entry's facts.
        const QHash<QString, QString> sizes = {{"a.txt", "1KB"}, {"b.txt", "2KB"}, {"c.txt", "5KB"}};
        for (int r = 0; r < view.ItemCount(); ++r) {
            QCOMPARE(cell(view, r, RealName), cell(view, r, Name));
            QCOMPARE(cell(view, r, Size), sizes.value(cell(view, r, Name)));
        }
    }
    void passesDoNotNest()
    {
        writeFile(path("a.txt"), 1);
        KelofileView view;
        view.setPathRoot(m_dir->path());
        view.setRefreshInterval(5);
        QSignalSpy afterPaints(&view, &KelofileView::AfterPaint);
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
        QCOMPARE(afterPaints.count(), 1);
        view.setRefreshInterval(0);
        QCOMPARE(names(view), (QStringList{"a.txt", "b.txt"}));

        afterPaints.clear();
        view.setRefreshInterval(5);
        view.setPathRoot(m_dir->path()); // a fill with the same handler
        view.setRefreshInterval(0);
        QCOMPARE(afterPaints.count(), 1);
        QCOMPARE(names(view), (QStringList{"a.txt", "b.txt"})); // no item twice
    }
    // With ShowFolderDetails a folder shows the count of files directly inside
    // it (not its sub-folders) as they were when listed; a refresh updates it.
    void folderCountsAreFactsOfTheirTime()
    {
        writeFile(path("sub/one.txt"), 1);
        writeFile(path("sub/inner/deep.txt"), 1);
        const qint64 stamp = msecsAt(2020, 3, 4, 5, 6, 7);
        setModified(path("sub"), stamp);
        KelofileView view;
        view.setShowFolderDetails(true);
        view.setPathRoot(m_dir->path());
        QCOMPARE(cell(view, 0, Modified), dateText(stamp));
        QVERIFY(!cell(view, 0, Created).isEmpty());
        QSignalSpy found(&view, &KelofileView::RefreshFoundChanges);
        writeFile(path("sub/two.txt"), 1);
        setModified(path("sub"), stamp); // the folder's modification time as it was
        QCOMPARE(cell(view, 0, Size), QStringLiteral("1")); // the count of when it was listed
        view.Refresh();
        QCOMPARE(found.count(), 1);
        QCOMPARE(cells(view, 0, {Size, SortedSize}), QStringLiteral("2|000000000002"));
        view.Refresh();
        QCOMPARE(found.count(), 1);
    }
    void namesDifferingInCaseKeepTheirItems()
    {
        writeFile(path("a.txt"), 1);
        writeFile(path("A.TXT"), 2000);
        KelofileView view;
        view.setPathRoot(m_dir->path());
        QSignalSpy found(&view, &KelofileView::RefreshFoundChanges);
        for (int pass = 0; pass <= 3; ++pass) {
            if (pass > 0)
                view.Refresh();
            QCOMPARE(names(view), (QStringList{"A.TXT", "a.txt"}));
            QCOMPARE(cell(view, 0, Size) + cell(view, 1, Size), QStringLiteral("2KB1KB"));
        }
        QCOMPARE(found.count(), 0);

        // One of the two lost from the list (the host removed it): the next pass brings it back once.
        view.ItemRemove(2);
        view.Refresh();
        view.Refresh();
        QCOMPARE(found.count(), 1);
        QCOMPARE(names(view), (QStringList{"A.TXT", "a.txt"}));
        QCOMPARE(cell(view, 1, Size), QStringLiteral("1KB"));
    }
    void aChangeIsSeenOnTheNextTick_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addColumn<QStringList>("listed"); // names in list order after the tick
        QTest::addColumn<int>("passes"); // passes the tick runs
        QTest::addColumn<int>("found"); // RefreshFoundChanges raised by the tick
        const QStringList before{"sub", "a.txt", "b.txt"};
        QTest::newRow("nothing") << "nothing" << before << 0 << 0;
        QTest::newRow("a file in a folder nobody shows") << "elsewhere" << before << 0 << 0;
        QTest::newRow("touched") << "touch" << before << 1 << 1;
        QTest::newRow("touched to the same time") << "same time" << before << 1 << 0;
        QTest::newRow("written") << "write" << before << 1 << 1;
        QTest::newRow("created") << "create" << QStringList{"sub", "a.txt", "b.txt", "c.txt"} << 1 << 1;
        QTest::newRow("deleted") << "delete" << QStringList{"sub", "b.txt"} << 1 << 1;
        QTest::newRow("renamed") << "rename" << QStringList{"sub", "b.txt", "z.txt"} << 1 << 1;
        QTest::newRow("renamed in case only") << "case" << before << 1 << 0;
        QTest::newRow("a file made in a sub-folder") << "in sub-folder" << before << 1 << 1;
        QTest::newRow("a file written in a sub-folder") << "write in sub-folder" << before << 0 << 0;
    }
    void aChangeIsSeenOnTheNextTick()
    {
        QFETCH(QString, change);
        QFETCH(int, passes);
        QFETCH(int, found);
        makeShown();
        mkpath(QStringLiteral("elsewhere"));
        KelofileView view;
        view.setShowFolderDetails(true);
        view.setPathRoot(path("shown"));
        QCOMPARE(names(view), (QStringList{"sub", "a.txt", "b.txt"}));
        QVERIFY(settle(view) >= 1); // the first tick after a fill runs the pass, which starts the watches
        QSignalSpy foundChanges(&view, &KelofileView::RefreshFoundChanges);
        QSignalSpy afterPaint(&view, &KelofileView::AfterPaint);
        const QString modifiedBefore = cell(view, 1, Modified);
        QCOMPARE(cell(view, 0, Size), QStringLiteral("1"));

        const QByteArray a = QFile::encodeName(path("shown/a.txt"));
        const auto renameA = [&](const char *to) { return std::rename(a.constData(), QFile::encodeName(path(to))); };
        if (change == QLatin1String("elsewhere")) {
            writeFile(path("elsewhere/x.txt"), 1);
        } else if (change == QLatin1String("touch") || change == QLatin1String("same time")) {
            setModified(path("shown/a.txt"), change == QLatin1String("touch") ? 1710000000000 : 1700000000000);
        } else if (change == QLatin1String("write")) {
            writeFile(path("shown/b.txt"), 5000);
        } else if (change == QLatin1String("create")) {
            writeFile(path("shown/c.txt"), 1);
        } else if (change == QLatin1String("delete")) {
            QCOMPARE(::unlink(a.constData()), 0);
        } else if (change == QLatin1String("rename") || change == QLatin1String("case")) {
            QCOMPARE(renameA(change == QLatin1String("rename") ? "shown/z.txt" : "shown/A.TXT"), 0);
        } else if (change == QLatin1String("in sub-folder")) {
            writeFile(path("shown/sub/new.txt"), 1);
        } else if (change == QLatin1String("write in sub-folder")) {
            writeFile(path("shown/sub/in.txt"), 300);
        }

        QCOMPARE(passesIn(view, 1), passes);
        QCOMPARE(foundChanges.count(), found);
        QCOMPARE(afterPaint.count(), 1); // a tick with nothing to do finishes as a pass that found nothing
        QTEST(names(view), "listed");
        if (change == QLatin1String("touch")) {
            QVERIFY(cell(view, 1, Modified) != modifiedBefore);
            QCOMPARE(cell(view, 1, SortedModified).left(4), QStringLiteral("2024"));
        } else if (change == QLatin1String("write")) {
            QCOMPARE(cell(view, int(names(view).indexOf(QStringLiteral("b.txt"))), Size), QStringLiteral("5KB"));
        } else if (change == QLatin1String("case")) {
            QCOMPARE(cell(view, 1, RealName), QStringLiteral("a.txt")); // kept as it was
        } else if (change == QLatin1String("in sub-folder")) {
            QCOMPARE(cells(view, 0, {Size, SortedSize}), QStringLiteral("2|000000000002")); // the folder's file count
        }

        // The change is taken: the next tick has nothing to do.
        QCOMPARE(passesIn(view, 1), 0);
        QCOMPARE(foundChanges.count(), found);
        QCOMPARE(afterPaint.count(), 2);
    }
    void aChangeBehindTheWatchersBackWaitsForRefresh()
    {
        makeShown();
        KelofileView view;
        view.setPathRoot(path("shown"));
        QVERIFY(settle(view) >= 1);
        QSignalSpy foundChanges(&view, &KelofileView::RefreshFoundChanges);
        FolderWatcher::instance().setIgnoreNoticesForTests(true);
        writeFile(path("shown/hidden from the watcher.txt"), 1);
        FolderWatcher::instance().readNotices();
        FolderWatcher::instance().setIgnoreNoticesForTests(false);
        QCOMPARE(passesIn(view, 3), 0); // the ticks did not read the folder
        const quint64 before = FileViewWatch::passesRun();
        QCOMPARE(view.ItemCount(), 3);
        QCOMPARE(foundChanges.count(), 0);
        view.Refresh(); // the host's call always reads it
        QCOMPARE(FileViewWatch::passesRun(), before + 1);
        QCOMPARE(names(view), (QStringList{"sub", "a.txt", "b.txt", "hidden from the watcher.txt"}));
        QCOMPARE(foundChanges.count(), 1);
        view.Refresh();
        QCOMPARE(FileViewWatch::passesRun(), before + 2);
        QCOMPARE(foundChanges.count(), 1);
    }
    void withoutTrustworthyNoticesEveryTickRunsThePass()
    {
        makeShown();
        FolderWatcher &watcher = FolderWatcher::instance();
        watcher.setAddWatchErrorForTests(ENOSPC); // as when fs.inotify.max_user_watches is reached
        KelofileView view;
        view.setPathRoot(path("shown"));
        QVERIFY(!watcher.trustworthy(path("shown")));
        QSignalSpy foundChanges(&view, &KelofileView::RefreshFoundChanges);
        QCOMPARE(passesIn(view, 2), 2);
        QCOMPARE(foundChanges.count(), 0);
        watcher.setIgnoreNoticesForTests(true); // no notice could tell it anyway
        writeFile(path("shown/c.txt"), 1);
        QCOMPARE(passesIn(view, 1), 1);
        QCOMPARE(names(view), (QStringList{"sub", "a.txt", "b.txt", "c.txt"}));
        QCOMPARE(foundChanges.count(), 1);

        // Watches granted again: the view takes one at its next tick and goes quiet.
        watcher.setIgnoreNoticesForTests(false);
        watcher.setAddWatchErrorForTests(0);
        QVERIFY(settle(view) >= 1);
        QVERIFY(watcher.trustworthy(path("shown")));
        QCOMPARE(foundChanges.count(), 1);

        // A folder item beyond the limit: its count could go stale, so every tick reads the folder.
        watcher.setAddWatchErrorForTests(ENOSPC);
        mkpath(QStringLiteral("shown/sub2"));
        tick(view);
        QCOMPARE(names(view), (QStringList{"sub", "a.txt", "b.txt", "c.txt", "sub2"})); // a pass appends what it finds
        QCOMPARE(passesIn(view, 2), 2);
    }
    // The kernel's watch limit for real: the limits of /proc/sys/user are per user namespace, so this test runs
    // realWatchLimitChild again in a namespace of its own whose limit is one watch, touching no other process.
    void aRealWatchLimitRefusesWatches()
    {
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("KELO_REAL_WATCH_LIMIT"), QStringLiteral("1"));
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        child.setProcessEnvironment(environment);
        child.start(QStringLiteral("unshare"),
            {QStringLiteral("-Ur"), QStringLiteral("sh"), QStringLiteral("-c"),
                QStringLiteral(
                    "echo 1 > /proc/sys/user/max_inotify_watches || exit 77; exec \"$0\" realWatchLimitChild"),
                QCoreApplication::applicationFilePath()});
        if (!child.waitForStarted())
            QSKIP("unshare is not available");
        QVERIFY(child.waitForFinished(120000));
        const QByteArray output = child.readAllStandardOutput() + child.readAllStandardError();
        if (child.exitCode() == 77 || (child.exitCode() != 0 && output.startsWith("unshare:")))
            QSKIP("no user namespace with its own watch limit here");
        QVERIFY2(child.exitCode() == 0, output.constData());
        QVERIFY2(output.contains("PASS   : TestKelofileView::realWatchLimitChild()"), output.constData());
    }
    void realWatchLimitChild()
    {
        if (!qEnvironmentVariableIsSet("KELO_REAL_WATCH_LIMIT"))
            QSKIP("run by aRealWatchLimitRefusesWatches, in a user namespace allowed one watch");
        makeShown();
        FolderWatcher &watcher = FolderWatcher::instance();
        KelofileView view;
        view.setShowFolderDetails(true);
        view.setPathRoot(path("shown"));
        tick(view); // the folder shown takes the one watch; its folder item "sub" is refused one
        QVERIFY(watcher.trustworthy(path("shown")));
        const FolderWatcher::Handle another = watcher.watch(path("shown/sub"));
        QCOMPARE(watcher.state(another), FolderWatcher::State::Exhausted); // ENOSPC from the kernel itself
        watcher.release(another);

        // The file count of "sub" could change unseen: every tick reads the folder.
        QSignalSpy foundChanges(&view, &KelofileView::RefreshFoundChanges);
        QCOMPARE(passesIn(view, 2), 2);
        QCOMPARE(foundChanges.count(), 0);
        writeFile(path("shown/sub/new.txt"), 1);
        tick(view);
        QCOMPARE(cell(view, 0, Size), QStringLiteral("2"));
        QCOMPARE(foundChanges.count(), 1);
    }
    void settingsAndHostEditsStillTakeEffectOnTheNextTick()
    {
        makeShown();
        KelofileView view;
        view.setPathRoot(path("shown"));
        QVERIFY(settle(view) >= 1);
        QSignalSpy foundChanges(&view, &KelofileView::RefreshFoundChanges);
        view.setFilter(QStringLiteral("b*")); // applied in place by the next pass, as every pass does
        tick(view);
        QCOMPARE(names(view), QStringList{"b.txt"});
        QCOMPARE(foundChanges.count(), 1);
        QCOMPARE(settle(view), 0);
        view.setFilter(QString());
        tick(view);
        QCOMPARE(names(view), (QStringList{"b.txt", "sub", "a.txt"}));
        QCOMPARE(settle(view), 1); // one more pass covers "sub" from its reading to the start of its watch

        view.ItemRemove(1); // the host's edits are undone by the next pass, as before
        QCOMPARE(view.ItemCount(), 2);
        tick(view);
        QCOMPARE(view.ItemCount(), 3);
        QCOMPARE(foundChanges.count(), 3);
        QCOMPARE(settle(view), 0);
        view.ItemAddNew(path("shown/sub/in.txt")); // appended; found by name nowhere on the folder
        tick(view);
        QCOMPARE(view.ItemCount(), 3);
        QCOMPARE(settle(view), 0);

        // Another folder: the new one is watched and the old one let go.
        view.setPath(path("shown/sub"));
        tick(view);
        QCOMPARE(names(view), QStringList{"in.txt"});
        QVERIFY(FolderWatcher::instance().trustworthy(path("shown/sub")));
        QVERIFY(!FolderWatcher::instance().trustworthy(path("shown")));
    }
    void linksAndAFolderMadeAgain()
    {
        makeShown();
        writeFile(path("far/target.txt"), 10);
        QVERIFY(QFile::link(path("far/target.txt"), path("shown/link.txt")));
        KelofileView view;
        view.setPathRoot(path("shown"));
        QVERIFY(settle(view) >= 1);
        QSignalSpy foundChanges(&view, &KelofileView::RefreshFoundChanges);
        // A link is described by its target, which no watch of the folder covers.
        const int link = int(names(view).indexOf(QStringLiteral("link.txt")));
        QCOMPARE(cell(view, link, Size), QStringLiteral("1KB"));
        writeFile(path("far/target.txt"), 3000);
        tick(view);
        QCOMPARE(cell(view, link, Size), QStringLiteral("3KB"));
        QCOMPARE(foundChanges.count(), 1);
        QCOMPARE(settle(view), 0);

        // The folder shown deleted: every tick tries, until it is made again and watched again.
        QVERIFY(QDir(path("shown")).removeRecursively());
        QCOMPARE(passesIn(view, 2), 2); // the passes fail: the message line tells why, as it always did
        writeFile(path("shown/again.txt"), 1);
        tick(view);
        QCOMPARE(names(view), QStringList{"again.txt"});
        QVERIFY(settle(view) >= 0);
        QVERIFY(FolderWatcher::instance().trustworthy(path("shown")));
        writeFile(path("shown/more.txt"), 1);
        tick(view);
        QCOMPARE(names(view), (QStringList{"again.txt", "more.txt"}));
    }
    void listControl()
    {
        ListView list;
        for (const char *n : {"a", "b", "c"})
            list.model()->append(fileNamed(QString::fromLatin1(n)));
        QCOMPARE(list.viewMode(), int(ListView::Report));
        QCOMPARE(list.currentView(), static_cast<QAbstractItemView *>(list.reportView()));
        QVERIFY(list.iconView()->model() != list.model()); // the hidden view does not lay the list out
        list.selectRow(1);
        QCOMPARE(list.selectedRow(), 1);

        list.setViewMode(ListView::Icon);
        QCOMPARE(list.currentView(), static_cast<QAbstractItemView *>(list.iconView()));
        QCOMPARE(list.iconView()->viewMode(), QListView::IconMode);
        QCOMPARE(list.iconView()->iconSize(), QSize(32, 32));
        QVERIFY(list.model()->largeIcons());
        QCOMPARE(list.selectedRow(), 1); // the selection crossed over
        QCOMPARE(list.iconView()->selectionModel(), list.selectionModel());

        list.setViewMode(ListView::List);
        QCOMPARE(list.iconView()->flow(), QListView::TopToBottom);
        QCOMPARE(list.iconView()->iconSize(), QSize(16, 16));
        QVERIFY(!list.model()->largeIcons());
        list.setViewMode(ListView::SmallIcon);
        QCOMPARE(list.iconView()->flow(), QListView::LeftToRight);

        list.setMultiSelect(true);
        QCOMPARE(list.iconView()->selectionMode(), QAbstractItemView::ExtendedSelection);
        list.selectRow(-1);
        QCOMPARE(list.selectedRow(), -1);

        list.setViewMode(ListView::Report);
        QCOMPARE(list.reportView()->columnWidth(1), list.himetricToPixels(2540));
        QCOMPARE(list.himetricToPixels(2540), list.logicalDpiX()); // 2540 HIMETRIC is one inch
        list.reportView()->setColumnWidth(0, 300); // as a user dragging the divider
        QCOMPARE(list.columnWidth(0), list.pixelsToHimetric(300));
        list.model()->append(fileNamed(QStringLiteral("x")));
        list.model()->clear();
        list.model()->beginBatch();
        list.model()->append(fileNamed(QStringLiteral("y")));
        list.model()->endBatch();
        QCOMPARE(list.reportView()->columnWidth(0), 300); // widths survive fills
        list.setColumnWidth(1, 0);
        QVERIFY(list.reportView()->isColumnHidden(1));

        const int invalid = ErrorNumber::InvalidPropertyValue;
        QCOMPARE(errorNumberOf([&] { list.setColumnWidth(13, 100); }), invalid);
        QCOMPARE(errorNumberOf([&] { list.setViewMode(4); }), invalid);
        QCOMPARE(errorNumberOf([&] { list.setViewMode(-1); }), invalid);
        QCOMPARE(errorNumberOf([&] { list.setBorderStyle(2); }), invalid);
        QCOMPARE(errorNumberOf([&] { list.setAppearance(2); }), invalid);
        QCOMPARE(errorNumberOf([&] { list.setPictureAlignment(6); }), invalid);
        QCOMPARE(errorNumberOf([&] { list.setArrange(3); }), invalid);
        QCOMPARE(errorNumberOf([&] { list.setMousePointer(16); }), invalid);
        list.setMousePointer(99);
        list.setMousePointer(15);
        QCOMPARE(list.viewMode(), int(ListView::Report));
        QCOMPARE(list.borderStyle(), 1);
        QCOMPARE(list.frameShape(), QFrame::StyledPanel);
        list.setBorderStyle(0);
        QCOMPARE(list.frameShape(), QFrame::NoFrame);
    }

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }
    void mkpath(const QString &folder) const { QVERIFY(QDir(m_dir->path()).mkpath(folder)); }
    /// "shown/" with sub/in.txt, a.txt (10 bytes, of a fixed time) and b.txt (2000 bytes), for the watch tests.
    void makeShown() const
    {
        mkpath(QStringLiteral("shown/sub"));
        writeFile(path(QStringLiteral("shown/a.txt")), 10);
        writeFile(path(QStringLiteral("shown/b.txt")), 2000);
        writeFile(path(QStringLiteral("shown/sub/in.txt")), 1);
        setModified(path(QStringLiteral("shown/a.txt")), 1700000000000);
    }
    std::unique_ptr<QTemporaryDir> m_dir;
};

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet("KELO_SEARCH_CHILD"))
        return runSearchChild(argc, argv);
    QApplication app(argc, argv);
    TestKelofileView test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}
#include "tst_kelofileview.moc"
