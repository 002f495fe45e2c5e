#include "KeloTestSupport.h"

#include <Kelocontrols/FileSystem.h>

#include "FolderWatcher_p.h"

#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using Kelocontrols::FolderWatcher;

class TestFolderWatcher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void eachChangeMovesTheGeneration_data();
    void eachChangeMovesTheGeneration();
    void changesElsewhereDoNotCount();
    void entriesOnlyIgnoresWrites();
    void handlesAreCounted();
    void aDeletedFolderIsWatchedAgainWhenItReturns();
    void refusedWatchesAreNotTrusted();
    void networkAndFuseMountsAreNotTrusted_data();
    void networkAndFuseMountsAreNotTrusted();
    void anOverflowChangesEveryFolder();

private:
    QString path(const QString &name) const { return m_dir->path() + QLatin1Char('/') + name; }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestFolderWatcher::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    QVERIFY(QDir(m_dir->path()).mkpath(QStringLiteral("watched/sub")));
    QVERIFY(QDir(m_dir->path()).mkpath(QStringLiteral("other")));
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("watched/a.txt")), 3));
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("other/b.txt")), 3));
}

void TestFolderWatcher::cleanup()
{
    FolderWatcher::instance().setAddWatchErrorForTests(0);
    FolderWatcher::instance().setIgnoreNoticesForTests(false);
    FolderWatcher::instance().readNotices();
    m_dir.reset();
}

void TestFolderWatcher::eachChangeMovesTheGeneration_data()
{
    QTest::addColumn<QString>("change");
    for (const char *change : {"create", "write", "touch", "chmod", "delete", "rename inside", "move out", "move in",
             "mkdir", "rmdir", "fifo"}) {
        QTest::newRow(change) << QString::fromLatin1(change);
    }
}

void TestFolderWatcher::eachChangeMovesTheGeneration()
{
    QFETCH(QString, change);
    FolderWatcher &watcher = FolderWatcher::instance();
    const QString folder = path(QStringLiteral("watched"));
    const FolderWatcher::Handle handle = watcher.watch(folder);
    const auto release = qScopeGuard([&] { watcher.release(handle); });
    QCOMPARE(watcher.state(handle), FolderWatcher::State::Watching);
    QVERIFY(watcher.trustworthy(handle));
    QVERIFY(watcher.trustworthy(folder + QStringLiteral("/"))); // asked by any spelling of the path
    watcher.readNotices();
    const quint64 before = watcher.generation(handle);
    QSignalSpy changed(&watcher, &FolderWatcher::changed);

    const QByteArray a = QFile::encodeName(folder + QStringLiteral("/a.txt"));
    if (change == QLatin1String("create")) {
        QVERIFY(KeloTest::writeFile(folder + QStringLiteral("/new.txt"), 0));
    } else if (change == QLatin1String("write")) {
        QFile file(QString::fromUtf8(a));
        QVERIFY(file.open(QIODevice::Append));
        QCOMPARE(file.write("more"), 4);
        file.close();
    } else if (change == QLatin1String("touch")) {
        QVERIFY(KeloTest::setModified(QString::fromUtf8(a), 86400000));
    } else if (change == QLatin1String("chmod")) {
        QCOMPARE(::chmod(a.constData(), 0444), 0);
    } else if (change == QLatin1String("delete")) {
        QCOMPARE(::unlink(a.constData()), 0);
    } else if (change == QLatin1String("rename inside")) {
        QCOMPARE(std::rename(a.constData(), QFile::encodeName(folder + QStringLiteral("/A.TXT")).constData()), 0);
    } else if (change == QLatin1String("move out")) {
        QCOMPARE(std::rename(a.constData(), QFile::encodeName(path(QStringLiteral("other/a.txt"))).constData()), 0);
    } else if (change == QLatin1String("move in")) {
        QCOMPARE(std::rename(QFile::encodeName(path(QStringLiteral("other/b.txt"))).constData(),
                     QFile::encodeName(folder + QStringLiteral("/b.txt")).constData()),
            0);
    } else if (change == QLatin1String("mkdir")) {
        QCOMPARE(::mkdir(QFile::encodeName(folder + QStringLiteral("/new")).constData(), 0755), 0);
    } else if (change == QLatin1String("rmdir")) {
        QCOMPARE(::rmdir(QFile::encodeName(folder + QStringLiteral("/sub")).constData()), 0);
    } else if (change == QLatin1String("fifo")) {
        QCOMPARE(::mkfifo(QFile::encodeName(folder + QStringLiteral("/pipe")).constData(), 0644), 0);
    }
    watcher.readNotices(); // the notice is queued before the call that caused it returns
    QVERIFY(watcher.generation(handle) > before);
    QCOMPARE(watcher.generation(folder), watcher.generation(handle));
    QCOMPARE(changed.count(), 1); // one signal per folder and reading, however many notices
    QCOMPARE(changed.at(0).at(0).toString(), folder);
    QVERIFY(watcher.trustworthy(handle));
}

void TestFolderWatcher::changesElsewhereDoNotCount()
{
    FolderWatcher &watcher = FolderWatcher::instance();
    const FolderWatcher::Handle handle = watcher.watch(path(QStringLiteral("watched")));
    const auto release = qScopeGuard([&] { watcher.release(handle); });
    watcher.readNotices();
    const quint64 before = watcher.generation(handle);
    // Nothing, a sibling folder, a file inside a sub-folder, and reading a file: none of them is a change here.
    watcher.readNotices();
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("other/c.txt")), 1));
    QVERIFY(KeloTest::writeFile(path(QStringLiteral("watched/sub/deep.txt")), 1));
    QFile read(path(QStringLiteral("watched/a.txt")));
    QVERIFY(read.open(QIODevice::ReadOnly));
    QCOMPARE(read.readAll(), QByteArray("xxx"));
    read.close();
    watcher.readNotices();
    QCOMPARE(watcher.generation(handle), before);
    QCOMPARE(watcher.generation(path(QStringLiteral("other"))), quint64(0)); // not watched
    QVERIFY(!watcher.trustworthy(path(QStringLiteral("other"))));
}

void TestFolderWatcher::entriesOnlyIgnoresWrites()
{
    FolderWatcher &watcher = FolderWatcher::instance();
    const QString sub = path(QStringLiteral("watched/sub"));
    QVERIFY(KeloTest::writeFile(sub + QStringLiteral("/x.txt"), 1));
    const FolderWatcher::Handle handle = watcher.watch(sub, FolderWatcher::Events::Entries);
    const auto release = qScopeGuard([&] { watcher.release(handle); });
    watcher.readNotices();
    const quint64 before = watcher.generation(handle);
    QVERIFY(KeloTest::writeFile(sub + QStringLiteral("/x.txt"), 20)); // rewritten in place: the count stays
    QVERIFY(KeloTest::setModified(sub + QStringLiteral("/x.txt"), 1000));
    watcher.readNotices();
    QCOMPARE(watcher.generation(handle), before);
    QVERIFY(KeloTest::writeFile(sub + QStringLiteral("/y.txt"), 1)); // one more file
    watcher.readNotices();
    QVERIFY(watcher.generation(handle) > before);

    // Watched for everything by a second caller, the folder now reports writes to both.
    const FolderWatcher::Handle all = watcher.watch(sub);
    const auto releaseAll = qScopeGuard([&] { watcher.release(all); });
    watcher.readNotices();
    const quint64 widened = watcher.generation(handle);
    QVERIFY(KeloTest::setModified(sub + QStringLiteral("/x.txt"), 2000));
    watcher.readNotices();
    QVERIFY(watcher.generation(handle) > widened);
    QCOMPARE(watcher.generation(all), watcher.generation(handle));
}

void TestFolderWatcher::handlesAreCounted()
{
    FolderWatcher &watcher = FolderWatcher::instance();
    const int kernelBefore = watcher.kernelWatchCount();
    const QString folder = path(QStringLiteral("watched"));
    const FolderWatcher::Handle first = watcher.watch(folder);
    const FolderWatcher::Handle second = watcher.watch(folder + QStringLiteral("/./"));
    QVERIFY(first != 0 && second != 0 && first != second);
    QCOMPARE(watcher.kernelWatchCount(), kernelBefore + 1);
    watcher.release(first);
    watcher.release(first); // twice: ignored
    watcher.release(0);
    QVERIFY(watcher.trustworthy(second));
    QVERIFY(KeloTest::writeFile(folder + QStringLiteral("/n.txt"), 1));
    const quint64 before = watcher.generation(second);
    watcher.readNotices();
    QVERIFY(watcher.generation(second) > before);
    watcher.release(second);
    QCOMPARE(watcher.kernelWatchCount(), kernelBefore);
    QVERIFY(!watcher.trustworthy(folder));
    QCOMPARE(watcher.state(second), FolderWatcher::State::Missing); // a released handle names nothing
}

void TestFolderWatcher::aDeletedFolderIsWatchedAgainWhenItReturns()
{
    FolderWatcher &watcher = FolderWatcher::instance();
    const QString sub = path(QStringLiteral("watched/sub"));
    const FolderWatcher::Handle handle = watcher.watch(sub);
    const auto release = qScopeGuard([&] { watcher.release(handle); });
    QVERIFY(watcher.trustworthy(handle));
    const quint64 before = watcher.generation(handle);
    QVERIFY(QDir(sub).removeRecursively());
    watcher.readNotices();
    QVERIFY(watcher.generation(handle) > before);
    QCOMPARE(watcher.state(handle), FolderWatcher::State::Missing);

    QVERIFY(QDir().mkpath(sub));
    const FolderWatcher::Handle again = watcher.watch(sub); // the same path names a new folder
    const auto releaseAgain = qScopeGuard([&] { watcher.release(again); });
    QVERIFY(watcher.trustworthy(handle) && watcher.trustworthy(again));
    const quint64 back = watcher.generation(again);
    QVERIFY(KeloTest::writeFile(sub + QStringLiteral("/z.txt"), 1));
    watcher.readNotices();
    QVERIFY(watcher.generation(again) > back);

    const FolderWatcher::Handle missing = watcher.watch(path(QStringLiteral("nowhere")));
    QCOMPARE(watcher.state(missing), FolderWatcher::State::Missing);
    watcher.release(missing);
}

// The kernel's limit (fs.inotify.max_user_watches) is per user and can only be lowered by root for the
// whole machine, so the refusal it causes, ENOSPC from inotify_add_watch, is made by the test hook.
void TestFolderWatcher::refusedWatchesAreNotTrusted()
{
    FolderWatcher &watcher = FolderWatcher::instance();
    const QString folder = path(QStringLiteral("watched"));
    const int kernelBefore = watcher.kernelWatchCount();
    watcher.setAddWatchErrorForTests(ENOSPC);
    const FolderWatcher::Handle exhausted = watcher.watch(folder);
    QCOMPARE(watcher.state(exhausted), FolderWatcher::State::Exhausted);
    QVERIFY(!watcher.trustworthy(exhausted));
    QVERIFY(!watcher.trustworthy(folder));
    QCOMPARE(watcher.kernelWatchCount(), kernelBefore);
    watcher.setAddWatchErrorForTests(ENOMEM);
    const FolderWatcher::Handle broken = watcher.watch(path(QStringLiteral("other")));
    QCOMPARE(watcher.state(broken), FolderWatcher::State::Unavailable);

    // Once watches are granted again, the next caller of the folder gets one, and so does the first.
    watcher.setAddWatchErrorForTests(0);
    const FolderWatcher::Handle granted = watcher.watch(folder);
    QVERIFY(watcher.trustworthy(granted) && watcher.trustworthy(exhausted));
    watcher.release(exhausted);
    watcher.release(broken);
    watcher.release(granted);
    QCOMPARE(watcher.kernelWatchCount(), kernelBefore);
}

void TestFolderWatcher::networkAndFuseMountsAreNotTrusted_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("reliable");
    QTest::newRow("ext4") << "ext4"
                          << "/dev/sda1" << true;
    QTest::newRow("tmpfs") << "tmpfs"
                           << "tmpfs" << true;
    QTest::newRow("btrfs") << "btrfs"
                           << "/dev/sdb2" << true;
    QTest::newRow("fuseblk (ntfs-3g)") << "fuseblk"
                                       << "/dev/sdc1" << true;
    QTest::newRow("nfs4") << "nfs4"
                          << "server:/export" << false;
    QTest::newRow("nfs") << "nfs"
                         << "server:/export" << false;
    QTest::newRow("cifs") << "cifs"
                          << "//server/share" << false;
    QTest::newRow("smb3") << "smb3"
                          << "//server/share" << false;
    QTest::newRow("sshfs") << "fuse.sshfs"
                           << "user@host:/home" << false;
    QTest::newRow("rclone") << "fuse.rclone"
                            << "remote:" << false;
    QTest::newRow("other FUSE") << "fuse.mergerfs"
                                << "a:b" << false;
    QTest::newRow("bare fuse") << "fuse"
                               << "something" << false;
}

void TestFolderWatcher::networkAndFuseMountsAreNotTrusted()
{
    QFETCH(QString, type);
    QFETCH(QString, source);
    QFETCH(bool, reliable);
    // The drive as the file-system layer reads it from a mountinfo line.
    const QByteArray line
        = "36 25 0:50 / /mnt/x rw,relatime shared:1 - " + type.toUtf8() + ' ' + source.toUtf8() + " rw\n";
    Kelocontrols::FileSystem::Probes probes;
    probes.isFileMount = [](const QString &) { return false; };
    probes.statVolume = [](const QString &, qint64 &, qint64 &) { return true; };
    probes.volumeLabel = [](const QString &) { return QString(); };
    probes.isRemovable = [](const QString &) { return false; };
    const QList<Kelocontrols::DriveInfo> drives = Kelocontrols::FileSystem::parseMountInfo(line, probes);
    QCOMPARE(drives.size(), 1);
    QCOMPARE(FolderWatcher::noticesReliableOn(drives.first()), reliable);
}

// A real overflow: more notices than the kernel queues (fs.inotify.max_queued_events) before any is read.
void TestFolderWatcher::anOverflowChangesEveryFolder()
{
    QFile limitFile(QStringLiteral("/proc/sys/fs/inotify/max_queued_events"));
    QVERIFY(limitFile.open(QIODevice::ReadOnly));
    const int limit = limitFile.readAll().trimmed().toInt();
    if (limit <= 0 || limit > 100000) {
        QSKIP("the kernel queues too many notices to overflow in a test");
    }
    FolderWatcher &watcher = FolderWatcher::instance();
    const FolderWatcher::Handle busy = watcher.watch(path(QStringLiteral("watched")), FolderWatcher::Events::Entries);
    const FolderWatcher::Handle quiet = watcher.watch(path(QStringLiteral("other")));
    const auto release = qScopeGuard([&] {
        watcher.release(busy);
        watcher.release(quiet);
    });
    watcher.readNotices();
    const quint64 before = watcher.generation(quiet);
    const QByteArray base = QFile::encodeName(path(QStringLiteral("watched/f")));
    for (int i = 0; i <= limit; ++i) { // one notice each (IN_CREATE; closing a new empty file is not watched here)
        const QByteArray name = base + QByteArray::number(i);
        const int fd = ::open(name.constData(), O_CREAT | O_WRONLY, 0644);
        QVERIFY(fd >= 0);
        ::close(fd);
    }
    watcher.readNotices();
    QVERIFY(watcher.generation(quiet) > before); // nothing happened there, but notices were lost
    QVERIFY(watcher.trustworthy(quiet) && watcher.trustworthy(busy));
}

QTEST_GUILESS_MAIN(TestFolderWatcher)
#include "tst_folderwatcher.moc"
