#include "KeloTestSupport.h"

#include <Kelocontrols/FileListModel.h>
#include <Kelocontrols/KelofileView.h>
#include <Kelocontrols/ListView.h>

#include "FileViewWatch_p.h"
#include "FolderWatcher_p.h"

#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

using namespace Kelocontrols;
using Column = FileListModel::Column;

namespace {

QString cell(KelofileView &view, int row, int column)
{
    return view.listFiles()->model()->text(row, column);
}

QStringList names(KelofileView &view)
{
    QStringList list;
    for (int r = 0; r < view.ItemCount(); ++r) {
        list << cell(view, r, Column::Name);
    }
    return list;
}

int rowOf(KelofileView &view, const QString &name)
{
    return int(names(view).indexOf(name));
}

void tick(KelofileView &view)
{
    KeloTest::fireTimer(&view, QStringLiteral("RefreshTimer"));
}

// Ticks until a tick runs no pass: the list and its watches have caught up with the folder.
int settle(KelofileView &view)
{
    for (int i = 0; i < 5; ++i) {
        const quint64 before = FileViewWatch::passesRun();
        tick(view);
        if (FileViewWatch::passesRun() == before) {
            return i;
        }
    }
    return -1;
}

} // namespace

class TestFileViewWatch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aChangeIsSeenOnTheNextTick_data();
    void aChangeIsSeenOnTheNextTick();
    void aChangeBehindTheWatchersBackWaitsForRefresh();
    void withoutTrustworthyNoticesEveryTickRunsThePass();
    void aRealWatchLimitRefusesWatches();
    void realWatchLimitChild();
    void settingsAndHostEditsStillTakeEffectOnTheNextTick();
    void aLinkIsFollowedToItsTarget();
    void theFolderShownIsDeletedAndMadeAgain();

private:
    QString path(const QString &name) const { return m_dir->path() + QLatin1Char('/') + name; }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestFileViewWatch::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    QVERIFY(QDir(m_dir->path()).mkpath(QStringLiteral("shown/sub")));
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("shown/a.txt")), 10));
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("shown/b.txt")), 2000));
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("shown/sub/in.txt")), 1));
    QVERIFY(KeloTest::setModified(path(QStringLiteral("shown/a.txt")), 1700000000000));
}

void TestFileViewWatch::cleanup()
{
    FolderWatcher::instance().setAddWatchErrorForTests(0);
    FolderWatcher::instance().setIgnoreNoticesForTests(false);
    m_dir.reset();
}

void TestFileViewWatch::aChangeIsSeenOnTheNextTick_data()
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

void TestFileViewWatch::aChangeIsSeenOnTheNextTick()
{
    QFETCH(QString, change);
    QFETCH(QStringList, listed);
    QFETCH(int, passes);
    QFETCH(int, found);
    QVERIFY(QDir(m_dir->path()).mkpath(QStringLiteral("elsewhere")));
    KelofileView view;
    view.setShowFolderDetails(true);
    view.setPathRoot(path(QStringLiteral("shown")));
    QCOMPARE(names(view), (QStringList{"sub", "a.txt", "b.txt"}));
    QVERIFY(settle(view) >= 1); // the first tick after a fill runs the pass, which starts the watches
    QSignalSpy foundChanges(&view, &KelofileView::RefreshFoundChanges);
    QSignalSpy afterPaint(&view, &KelofileView::AfterPaint);
    const QString modifiedBefore = cell(view, 1, Column::Modified);
    QCOMPARE(cell(view, 0, Column::Size), QStringLiteral("1"));

    const QByteArray a = QFile::encodeName(path(QStringLiteral("shown/a.txt")));
    if (change == QLatin1String("elsewhere")) {
        QVERIFY(KeloTest::writeFile(path(QStringLiteral("elsewhere/x.txt")), 1));
    } else if (change == QLatin1String("touch")) {
        QVERIFY(KeloTest::setModified(path(QStringLiteral("shown/a.txt")), 1710000000000));
    } else if (change == QLatin1String("same time")) {
        QVERIFY(KeloTest::setModified(path(QStringLiteral("shown/a.txt")), 1700000000000));
    } else if (change == QLatin1String("write")) {
        QVERIFY(KeloTest::writeFile(path(QStringLiteral("shown/b.txt")), 5000));
    } else if (change == QLatin1String("create")) {
        QVERIFY(KeloTest::writeFile(path(QStringLiteral("shown/c.txt")), 1));
    } else if (change == QLatin1String("delete")) {
        QCOMPARE(::unlink(a.constData()), 0);
    } else if (change == QLatin1String("rename")) {
        QCOMPARE(std::rename(a.constData(), QFile::encodeName(path(QStringLiteral("shown/z.txt"))).constData()), 0);
    } else if (change == QLatin1String("case")) {
        QCOMPARE(std::rename(a.constData(), QFile::encodeName(path(QStringLiteral("shown/A.TXT"))).constData()), 0);
    } else if (change == QLatin1String("in sub-folder")) {
        QVERIFY(KeloTest::writeFile(path(QStringLiteral("shown/sub/new.txt")), 1));
    } else if (change == QLatin1String("write in sub-folder")) {
        QVERIFY(KeloTest::writeFile(path(QStringLiteral("shown/sub/in.txt")), 300));
    }

    const quint64 before = FileViewWatch::passesRun();
    tick(view);
    QCOMPARE(int(FileViewWatch::passesRun() - before), passes);
    QCOMPARE(foundChanges.count(), found);
    QCOMPARE(afterPaint.count(), 1); // a tick with nothing to do finishes as a pass that found nothing
    QCOMPARE(names(view), listed);
    if (change == QLatin1String("touch")) {
        QVERIFY(cell(view, 1, Column::Modified) != modifiedBefore);
        QCOMPARE(cell(view, 1, Column::SortedModified).left(4), QStringLiteral("2024"));
    } else if (change == QLatin1String("write")) {
        QCOMPARE(cell(view, rowOf(view, QStringLiteral("b.txt")), Column::Size), QStringLiteral("5KB"));
    } else if (change == QLatin1String("case")) {
        QCOMPARE(cell(view, 1, Column::RealName), QStringLiteral("a.txt")); // kept as it was
    } else if (change == QLatin1String("in sub-folder")) {
        QCOMPARE(cell(view, 0, Column::Size), QStringLiteral("2")); // the folder's file count
        QCOMPARE(cell(view, 0, Column::SortedSize), QStringLiteral("000000000002"));
    }

    // The change is taken: the next tick has nothing to do.
    const quint64 after = FileViewWatch::passesRun();
    tick(view);
    QCOMPARE(FileViewWatch::passesRun(), after);
    QCOMPARE(foundChanges.count(), found);
    QCOMPARE(afterPaint.count(), 2);
}

void TestFileViewWatch::aChangeBehindTheWatchersBackWaitsForRefresh()
{
    KelofileView view;
    view.setPathRoot(path(QStringLiteral("shown")));
    QVERIFY(settle(view) >= 1);
    QSignalSpy foundChanges(&view, &KelofileView::RefreshFoundChanges);
    FolderWatcher::instance().setIgnoreNoticesForTests(true);
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("shown/hidden from the watcher.txt")), 1));
    FolderWatcher::instance().readNotices();
    FolderWatcher::instance().setIgnoreNoticesForTests(false);
    const quint64 before = FileViewWatch::passesRun();
    for (int i = 0; i < 3; ++i) {
        tick(view);
    }
    QCOMPARE(FileViewWatch::passesRun(), before); // the ticks did not read the folder
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

void TestFileViewWatch::withoutTrustworthyNoticesEveryTickRunsThePass()
{
    FolderWatcher::instance().setAddWatchErrorForTests(ENOSPC); // as when fs.inotify.max_user_watches is reached
    KelofileView view;
    view.setPathRoot(path(QStringLiteral("shown")));
    QVERIFY(!FolderWatcher::instance().trustworthy(path(QStringLiteral("shown"))));
    QSignalSpy foundChanges(&view, &KelofileView::RefreshFoundChanges);
    const quint64 before = FileViewWatch::passesRun();
    tick(view);
    tick(view);
    QCOMPARE(FileViewWatch::passesRun(), before + 2);
    QCOMPARE(foundChanges.count(), 0);
    FolderWatcher::instance().setIgnoreNoticesForTests(true); // no notice could tell it anyway
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("shown/c.txt")), 1));
    tick(view);
    QCOMPARE(FileViewWatch::passesRun(), before + 3);
    QCOMPARE(names(view), (QStringList{"sub", "a.txt", "b.txt", "c.txt"}));
    QCOMPARE(foundChanges.count(), 1);

    // Watches granted again: the view takes one at its next tick and goes quiet.
    FolderWatcher::instance().setIgnoreNoticesForTests(false);
    FolderWatcher::instance().setAddWatchErrorForTests(0);
    QVERIFY(settle(view) >= 1);
    QVERIFY(FolderWatcher::instance().trustworthy(path(QStringLiteral("shown"))));
    QCOMPARE(foundChanges.count(), 1);

    // A folder item beyond the limit: its count could go stale, so every tick reads the folder.
    FolderWatcher::instance().setAddWatchErrorForTests(ENOSPC);
    QVERIFY(QDir(path(QStringLiteral("shown"))).mkpath(QStringLiteral("sub2")));
    tick(view);
    QCOMPARE(names(view), (QStringList{"sub", "a.txt", "b.txt", "c.txt", "sub2"})); // a pass appends what it finds
    const quint64 limited = FileViewWatch::passesRun();
    tick(view);
    tick(view);
    QCOMPARE(FileViewWatch::passesRun(), limited + 2);
}

// The kernel's watch limit for real: the limits of /proc/sys/user are per user namespace, so this test runs
// realWatchLimitChild again in a namespace of its own whose limit is one watch, touching no other process.
void TestFileViewWatch::aRealWatchLimitRefusesWatches()
{
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("KELO_REAL_WATCH_LIMIT"), QStringLiteral("1"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    child.setProcessEnvironment(environment);
    child.start(QStringLiteral("unshare"),
        {QStringLiteral("-Ur"), QStringLiteral("sh"), QStringLiteral("-c"),
            QStringLiteral("echo 1 > /proc/sys/user/max_inotify_watches || exit 77; exec \"$0\" realWatchLimitChild"),
            QCoreApplication::applicationFilePath()});
    if (!child.waitForStarted()) {
        QSKIP("unshare is not available");
    }
    QVERIFY(child.waitForFinished(120000));
    const QByteArray output = child.readAllStandardOutput() + child.readAllStandardError();
    if (child.exitCode() == 77 || (child.exitCode() != 0 && output.startsWith("unshare:"))) {
        QSKIP("no user namespace with its own watch limit here");
    }
    QVERIFY2(child.exitCode() == 0, output.constData());
    QVERIFY2(output.contains("PASS   : TestFileViewWatch::realWatchLimitChild()"), output.constData());
}

void TestFileViewWatch::realWatchLimitChild()
{
    if (!qEnvironmentVariableIsSet("KELO_REAL_WATCH_LIMIT")) {
        QSKIP("run by aRealWatchLimitRefusesWatches, in a user namespace allowed one watch");
    }
    FolderWatcher &watcher = FolderWatcher::instance();
    KelofileView view;
    view.setShowFolderDetails(true);
    view.setPathRoot(path(QStringLiteral("shown")));
    tick(view); // the folder shown takes the one watch; its folder item "sub" is refused one
    QVERIFY(watcher.trustworthy(path(QStringLiteral("shown"))));
    const FolderWatcher::Handle another = watcher.watch(path(QStringLiteral("shown/sub")));
    QCOMPARE(watcher.state(another), FolderWatcher::State::Exhausted); // ENOSPC from the kernel itself
    watcher.release(another);

    // The file count of "sub" could change unseen: every tick reads the folder.
    QSignalSpy foundChanges(&view, &KelofileView::RefreshFoundChanges);
    const quint64 before = FileViewWatch::passesRun();
    tick(view);
    tick(view);
    QCOMPARE(FileViewWatch::passesRun(), before + 2);
    QCOMPARE(foundChanges.count(), 0);
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("shown/sub/new.txt")), 1));
    tick(view);
    QCOMPARE(cell(view, 0, Column::Size), QStringLiteral("2"));
    QCOMPARE(foundChanges.count(), 1);
}

void TestFileViewWatch::settingsAndHostEditsStillTakeEffectOnTheNextTick()
{
    KelofileView view;
    view.setPathRoot(path(QStringLiteral("shown")));
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
    view.ItemAddNew(path(QStringLiteral("shown/sub/in.txt"))); // appended; found by name nowhere on the folder
    tick(view);
    QCOMPARE(view.ItemCount(), 3);
    QCOMPARE(settle(view), 0);

    // Another folder: the new one is watched and the old one let go.
    view.setPath(path(QStringLiteral("shown/sub")));
    tick(view);
    QCOMPARE(names(view), QStringList{"in.txt"});
    QVERIFY(FolderWatcher::instance().trustworthy(path(QStringLiteral("shown/sub"))));
    QVERIFY(!FolderWatcher::instance().trustworthy(path(QStringLiteral("shown"))));
}

// A link is described by its target, which no watch of the folder covers.
void TestFileViewWatch::aLinkIsFollowedToItsTarget()
{
    QVERIFY(QDir(m_dir->path()).mkpath(QStringLiteral("far")));
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("far/target.txt")), 10));
    QCOMPARE(::symlink(QFile::encodeName(path(QStringLiteral("far/target.txt"))).constData(),
                 QFile::encodeName(path(QStringLiteral("shown/link.txt"))).constData()),
        0);
    KelofileView view;
    view.setPathRoot(path(QStringLiteral("shown")));
    QVERIFY(settle(view) >= 1);
    const int link = rowOf(view, QStringLiteral("link.txt"));
    QCOMPARE(cell(view, link, Column::Size), QStringLiteral("1KB"));
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("far/target.txt")), 3000));
    QSignalSpy foundChanges(&view, &KelofileView::RefreshFoundChanges);
    tick(view);
    QCOMPARE(cell(view, link, Column::Size), QStringLiteral("3KB"));
    QCOMPARE(foundChanges.count(), 1);
    QCOMPARE(settle(view), 0);
}

void TestFileViewWatch::theFolderShownIsDeletedAndMadeAgain()
{
    KelofileView view;
    view.setPathRoot(path(QStringLiteral("shown")));
    QVERIFY(settle(view) >= 1);
    QVERIFY(QDir(path(QStringLiteral("shown"))).removeRecursively());
    const quint64 before = FileViewWatch::passesRun();
    tick(view); // the pass fails: the message line tells why, as it always did
    tick(view);
    QCOMPARE(FileViewWatch::passesRun(), before + 2);
    QVERIFY(QDir(m_dir->path()).mkpath(QStringLiteral("shown")));
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("shown/again.txt")), 1));
    tick(view);
    QCOMPARE(names(view), QStringList{"again.txt"});
    QVERIFY(settle(view) >= 0);
    QVERIFY(FolderWatcher::instance().trustworthy(path(QStringLiteral("shown"))));
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("shown/more.txt")), 1));
    tick(view);
    QCOMPARE(names(view), (QStringList{"again.txt", "more.txt"}));
}

QTEST_MAIN(TestFileViewWatch)
#include "tst_fileviewwatch.moc"
