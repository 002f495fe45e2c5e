// Listing a folder of 100,000 entries into KelofileView, against the raw
// floor (readdir + statx of the same entries) and QFileSystemModel, in the
// same run. KELO_BENCH_SMOKE=1 (scripts/bench --smoke) uses 2,000 entries.
#include <Kelocontrols/FileListModel.h>
#include <Kelocontrols/KelofileView.h>
#include <Kelocontrols/ListView.h>
#include <Kelocontrols/ReportView.h>

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QSortFilterProxyModel>
#include <QTest>
#include <QTimer>

#include <dirent.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace {

const char *const Extensions[]
    = {"txt", "pdf", "png", "jpg", "html", "css", "js", "json", "xml", "csv", "md", "c", "cpp", "h", "py", "sh", "zip",
        "gz", "tar", "mp3", "ogg", "wav", "mp4", "svg", "odt", "ods", "doc", "xls", "log", "ini"};

int entryCount()
{
    return qEnvironmentVariableIntValue("KELO_BENCH_SMOKE") ? 2000 : 100000;
}

// One folder per 300 entries, the rest files spread over the extensions.
QString ensureFixture(int entries)
{
    const QString folder = QDir::tempPath() + QStringLiteral("/kelo-bench-fileview-%1").arg(entries);
    const QString done = folder + QStringLiteral("/.complete");
    if (QFile::exists(done)) {
        return folder;
    }
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    const QByteArray base = QFile::encodeName(folder);
    const int folders = entries / 300;
    for (int i = 0; i < entries - 1; ++i) { // the marker file is the last entry
        QByteArray name = base + '/';
        if (i < folders) {
            name += "Folder " + QByteArray::number(i);
            ::mkdir(name.constData(), 0755);
            continue;
        }
        name += "File " + QByteArray::number(i * 7919 % 1000003) + '.' + Extensions[i % std::size(Extensions)];
        const int fd = ::open(name.constData(), O_CREAT | O_WRONLY, 0644);
        if (fd >= 0) {
            if (i % 5 == 0) {
                (void)::write(fd, name.constData(), size_t(name.size()));
            }
            ::close(fd);
        }
    }
    QFile marker(done);
    marker.open(QIODevice::WriteOnly);
    return folder;
}

// The floor: what any listing must do, read the names and stat each entry.
int rawListing(const QByteArray &folder)
{
    DIR *dir = ::opendir(folder.constData());
    if (!dir) {
        return 0;
    }
    const int fd = ::dirfd(dir);
    int count = 0;
    while (const dirent *e = ::readdir(dir)) {
        if (e->d_name[0] == '.' && (e->d_name[1] == 0 || (e->d_name[1] == '.' && e->d_name[2] == 0))) {
            continue;
        }
        struct statx st;
        if (::statx(fd, e->d_name, AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME, &st) == 0) {
            ++count;
        }
    }
    ::closedir(dir);
    return count;
}

size_t heapInUse()
{
    return mallinfo2().uordblks;
}

} // namespace

class BenchFileView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_entries = entryCount();
        m_folder = ensureFixture(m_entries);
        rawListing(QFile::encodeName(m_folder)); // warm the cache
    }

    void rawFloor()
    {
        const QByteArray folder = QFile::encodeName(m_folder);
        int count = 0;
        QBENCHMARK
        {
            QElapsedTimer t;
            t.start();
            count = rawListing(folder);
            m_raw = std::min(m_raw, t.nsecsElapsed() / 1e6);
        }
        QCOMPARE(count, m_entries);
    }

    void fillView()
    {
        int items = 0;
        const QByteArray folder = QFile::encodeName(m_folder);
        QBENCHMARK
        {
            QElapsedTimer raw;
            raw.start();
            rawListing(folder);
            const double floor = raw.nsecsElapsed() / 1e6;
            KelofileView view;
            view.resize(800, 600);
            view.setAllowHiddenFiles(true);
            const size_t before = heapInUse();
            QElapsedTimer t;
            t.start();
            view.setPathRoot(m_folder);
            view.grab(); // lays the rows out and paints the visible ones
            m_fill = std::min(m_fill, t.nsecsElapsed() / 1e6);
            m_fillRatio = std::min(m_fillRatio, t.nsecsElapsed() / 1e6 / floor);
            m_heapMB = (heapInUse() - before) / 1048576.0;
            items = view.ItemCount();
        }
        QCOMPARE(items, m_entries);
    }

    // What RefreshTimer costs on each tick when nothing changed. The floor is
    // measured right before each pass, so that a busy machine slows both alike.
    void refreshUnchanged()
    {
        KelofileView view;
        view.setAllowHiddenFiles(true);
        view.setPathRoot(m_folder);
        int changes = 0;
        connect(&view, &KelofileView::RefreshFoundChanges, this, [&] { ++changes; });
        const QByteArray folder = QFile::encodeName(m_folder);
        QBENCHMARK
        {
            QElapsedTimer t;
            t.start();
            rawListing(folder);
            const double raw = t.nsecsElapsed() / 1e6;
            t.restart();
            view.Refresh();
            const double refresh = t.nsecsElapsed() / 1e6;
            m_refresh = std::min(m_refresh, refresh);
            m_rawBeforeRefresh = std::min(m_rawBeforeRefresh, raw);
            m_refreshRatio = std::min(m_refreshRatio, refresh / raw);
        }
        QCOMPARE(changes, 0);
        QCOMPARE(view.ItemCount(), m_entries);
    }

    // What RefreshTimer costs when nothing changed (a tick that only checks the change notices), and
    // when one file changed (a tick that runs the in-place pass), against Refresh(), which always runs it.
    void refreshTick()
    {
        KelofileView view;
        view.setAllowHiddenFiles(true);
        view.setPathRoot(m_folder);
        auto *timer = view.findChild<QTimer *>(QStringLiteral("RefreshTimer"));
        QVERIFY(timer);
        const auto tick = [timer] { QMetaObject::invokeMethod(timer, "timeout"); };
        for (int i = 0; i < 3; ++i) {
            tick(); // the first ticks after a fill run the pass, which starts the watches
        }
        int changes = 0;
        connect(&view, &KelofileView::RefreshFoundChanges, this, [&] { ++changes; });
        QBENCHMARK
        {
            QElapsedTimer t;
            t.start();
            tick();
            m_idleTick = std::min(m_idleTick, t.nsecsElapsed() / 1e6);
        }
        QCOMPARE(changes, 0);
        const QByteArray marker = QFile::encodeName(m_folder + QStringLiteral("/.complete"));
        for (int round = 0; round < 3; ++round) {
            struct timespec times[2];
            times[0].tv_sec = times[1].tv_sec = 1700000000 + round * 60;
            times[0].tv_nsec = times[1].tv_nsec = 0;
            QCOMPARE(::utimensat(AT_FDCWD, marker.constData(), times, 0), 0);
            QElapsedTimer t;
            t.start();
            tick();
            m_changedTick = std::min(m_changedTick, t.nsecsElapsed() / 1e6);
            t.restart();
            view.Refresh();
            m_fullPass = std::min(m_fullPass, t.nsecsElapsed() / 1e6);
        }
        QCOMPARE(changes, 3);
        QCOMPARE(view.ItemCount(), m_entries);
    }

    // Re-sorting the filled list by each sortable column, both orders, against QSortFilterProxyModel
    // sorting the same rows by the same column in the same run; then a header click until the
    // report view has repainted.
    void sortByColumn()
    {
        using Column = Kelocontrols::FileListModel::Column;
        KelofileView view;
        view.resize(800, 600);
        view.setAllowHiddenFiles(true);
        view.setPathRoot(m_folder);
        Kelocontrols::FileListModel *model = view.listFiles()->model();
        // The first sort by a text column compares its folded texts; later ones reuse the ranks it gave.
        model->sort(Column::SortedSize, Qt::DescendingOrder);
        QElapsedTimer first;
        first.start();
        model->sort(Column::SortName, Qt::AscendingOrder);
        qInfo("first sort by SortName (texts compared) %.1f ms", first.nsecsElapsed() / 1e6);
        QBENCHMARK_ONCE
        {
            for (int column : {int(Column::SortName), int(Column::SortedSize), int(Column::SortedModified),
                     int(Column::SortedCreated), int(Column::Type), int(Column::Changed)}) {
                double ours = 1e12;
                double peer = 1e12;
                for (int round = 0; round < 3; ++round) { // best of three for ours, the peer once
                    for (Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
                        // From an order unrelated to the column's: the fill's name order would flatter a name sort.
                        model->sort(column == Column::SortedSize ? Column::SortedModified : Column::SortedSize,
                            Qt::DescendingOrder);
                        QElapsedTimer t;
                        t.start();
                        model->sort(column, order);
                        ours = std::min(ours, t.nsecsElapsed() / 1e6);
                        if (round > 0) {
                            continue; // the peer formats texts at every comparison: once is enough to compare
                        }
                        QSortFilterProxyModel proxy;
                        proxy.setSortCaseSensitivity(Qt::CaseInsensitive);
                        proxy.setSourceModel(model);
                        t.restart();
                        proxy.sort(column, order);
                        peer = std::min(peer, t.nsecsElapsed() / 1e6);
                    }
                }
                m_worstSort = std::max(m_worstSort, ours);
                qInfo("sort by %-14s %6.1f ms; QSortFilterProxyModel %7.1f ms (%.1fx)",
                    Kelocontrols::FileListModel::columnSpec(column).caption, ours, peer, peer / ours);
            }
            view.show();
            QVERIFY(QTest::qWaitForWindowExposed(&view));
            QHeaderView *header = view.listFiles()->reportView()->header();
            view.listFiles()->reportView()->viewport()->repaint(); // the first showing is not a click's cost
            for (int click = 0; click < 6; ++click) {
                const int column = click % 3 == 0 ? Column::Name : (click % 3 == 1 ? Column::Size : Column::Modified);
                const QPoint at(header->sectionViewportPosition(column) + 5, header->height() / 2);
                QElapsedTimer t;
                t.start();
                QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
                view.listFiles()->reportView()->viewport()->repaint();
                m_click = std::min(m_click, t.nsecsElapsed() / 1e6);
                m_worstClick = std::max(m_worstClick, t.nsecsElapsed() / 1e6);
                qInfo(
                    "header click %d on column %d until repainted: %.1f ms", click + 1, column, t.nsecsElapsed() / 1e6);
            }
        }
        QVERIFY(view.listFiles()->sorted());
    }

    void fileSystemModel()
    {
        int rows = 0;
        QBENCHMARK_ONCE
        {
            QElapsedTimer t;
            t.start();
            QFileSystemModel model;
            model.setFilter(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
            QEventLoop loop;
            QTimer poll;
            QModelIndex root;
            connect(&poll, &QTimer::timeout, &loop, [&] {
                if (root.isValid() && model.rowCount(root) >= m_entries) {
                    loop.quit();
                }
            });
            poll.start(5);
            root = model.setRootPath(m_folder);
            QTimer::singleShot(60000, &loop, &QEventLoop::quit);
            loop.exec();
            rows = model.rowCount(root);
            m_model = t.nsecsElapsed() / 1e6;
            qInfo("QFileSystemModel run: %.0f ms, %d rows", m_model, rows);
        }
        QCOMPARE(rows, m_entries);
    }

    void cleanupTestCase()
    {
        qInfo("entries %d: raw floor %.1f ms, KelofileView fill %.1f ms (best ratio to the floor measured before "
              "each fill %.2fx), QFileSystemModel %.0f ms (%.1fx the fill); heap for the filled list %.1f MB",
            m_entries, m_raw, m_fill, m_fillRatio, m_model, m_model / m_fill, m_heapMB);
        qInfo("in-place refresh with nothing changed: %.1f ms against a floor of %.1f ms measured before each pass; "
              "best ratio %.2fx",
            m_refresh, m_rawBeforeRefresh, m_refreshRatio);
        qInfo("RefreshTimer tick: nothing changed %.3f ms; one file touched %.1f ms; Refresh() with nothing "
              "changed %.1f ms (best of each)",
            m_idleTick, m_changedTick, m_fullPass);
        qInfo("re-sort: worst column %.1f ms; header click to repaint: best %.1f ms, worst %.1f ms", m_worstSort,
            m_click, m_worstClick);
    }

private:
    int m_entries = 0;
    QString m_folder;
    double m_raw = 1e12;
    double m_fill = 1e12;
    double m_fillRatio = 1e12;
    double m_model = 0;
    double m_refresh = 1e12;
    double m_worstSort = 0;
    double m_click = 1e12;
    double m_worstClick = 0;
    double m_rawBeforeRefresh = 1e12;
    double m_refreshRatio = 1e12;
    double m_heapMB = 0;
    double m_idleTick = 1e12;
    double m_changedTick = 1e12;
    double m_fullPass = 1e12;
};

QTEST_MAIN(BenchFileView)
#include "bench_fileview.moc"
