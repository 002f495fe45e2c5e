#include "KeloTestSupport.h"

#include <Kelocontrols/FileSystem.h>

#include "FolderWatcher_p.h"

#include <QProcess>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

using Kelocontrols::FolderWatcher;
using Handle = FolderWatcher::Handle;

class TestFolderWatcher : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    FolderWatcher &watcher = FolderWatcher::instance();
    QString path(const QString &name) const { return m_dir->path() + QLatin1Char('/') + name; }

    /// Reads the notices and answers whether the generation of @p handle moved since @p before.
    bool movedSince(Handle handle, quint64 &before)
    {
        watcher.readNotices();
        const quint64 now = watcher.generation(handle);
        return std::exchange(before, now) != now;
    }

private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(m_dir->path()).mkpath(QStringLiteral("watched/sub")));
        QVERIFY(QDir(m_dir->path()).mkpath(QStringLiteral("other")));
        QVERIFY(KeloTest::writeFile(path(QStringLiteral("watched/a.txt")), 3));
        QVERIFY(KeloTest::writeFile(path(QStringLiteral("other/b.txt")), 3));
    }

    void cleanup()
    {
        watcher.setAddWatchErrorForTests(0);
        watcher.readNotices();
        m_dir.reset();
    }

    void eachChangeMovesTheGeneration_data()
    {
        QTest::addColumn<QString>("command"); // run in the watched folder
        for (const char *command : {"touch new.txt", "echo more >> a.txt", "touch -d @86400 a.txt", "chmod 444 a.txt",
                 "rm a.txt", "mv a.txt A.TXT", "mv a.txt ../other/", "mv ../other/b.txt .", "mkdir new", "rmdir sub",
                 "mkfifo pipe"}) {
            QTest::newRow(command) << QString::fromLatin1(command);
        }
    }

    void eachChangeMovesTheGeneration()
    {
        QFETCH(QString, command);
        const QString folder = path(QStringLiteral("watched"));
        const Handle handle = watcher.watch(folder);
        const auto release = qScopeGuard([&] { watcher.release(handle); });
        QCOMPARE(watcher.state(handle), FolderWatcher::State::Watching);
        QVERIFY(watcher.trustworthy(handle));
        QVERIFY(watcher.trustworthy(folder + QStringLiteral("/"))); // asked by any spelling of the path
        quint64 generation = watcher.generation(handle);
        movedSince(handle, generation);
        QSignalSpy changed(&watcher, &FolderWatcher::changed);
        QProcess shell;
        shell.setWorkingDirectory(folder);
        shell.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command});
        QVERIFY(shell.waitForFinished(10000) && shell.exitCode() == 0);
        // The notice is queued before the command that caused it ends.
        QVERIFY(movedSince(handle, generation));
        QCOMPARE(watcher.generation(folder), generation);
        QCOMPARE(changed.count(), 1); // one signal per folder and reading, however many notices
        QCOMPARE(changed.at(0).at(0).toString(), folder);
        QVERIFY(watcher.trustworthy(handle));
    }

    void changesElsewhereDoNotCount()
    {
        const Handle handle = watcher.watch(path(QStringLiteral("watched")));
        const auto release = qScopeGuard([&] { watcher.release(handle); });
        quint64 generation = watcher.generation(handle);
        movedSince(handle, generation);
        // Nothing, a sibling folder, a file inside a sub-folder, and reading a file: none of them is a change here.
        QVERIFY(!movedSince(handle, generation));
        QVERIFY(KeloTest::writeFile(path(QStringLiteral("other/c.txt")), 1));
        QVERIFY(KeloTest::writeFile(path(QStringLiteral("watched/sub/deep.txt")), 1));
        QCOMPARE(KeloTest::readTextFile(path(QStringLiteral("watched/a.txt"))), QStringLiteral("xxx"));
        QVERIFY(!movedSince(handle, generation));
        QCOMPARE(watcher.generation(path(QStringLiteral("other"))), quint64(0)); // not watched
        QVERIFY(!watcher.trustworthy(path(QStringLiteral("other"))));
    }

    void entriesOnlyIgnoresWrites()
    {
        const QString file = path(QStringLiteral("watched/sub/x.txt"));
        QVERIFY(KeloTest::writeFile(file, 1));
        const Handle handle = watcher.watch(path(QStringLiteral("watched/sub")), FolderWatcher::Events::Entries);
        const auto release = qScopeGuard([&] { watcher.release(handle); });
        quint64 generation = watcher.generation(handle);
        movedSince(handle, generation);
        QVERIFY(KeloTest::writeFile(file, 20)); // rewritten in place: the count stays
        QVERIFY(KeloTest::setModified(file, 1000));
        QVERIFY(!movedSince(handle, generation));
        QVERIFY(KeloTest::writeFile(path(QStringLiteral("watched/sub/y.txt")), 1)); // one more file
        QVERIFY(movedSince(handle, generation));

        // Watched for everything by a second caller, the folder now reports writes to both.
        const Handle all = watcher.watch(path(QStringLiteral("watched/sub")));
        const auto releaseAll = qScopeGuard([&] { watcher.release(all); });
        movedSince(handle, generation);
        QVERIFY(KeloTest::setModified(file, 2000));
        QVERIFY(movedSince(handle, generation));
        QCOMPARE(watcher.generation(all), generation);
    }

    void handlesAreCounted()
    {
        const int kernelBefore = watcher.kernelWatchCount();
        const QString folder = path(QStringLiteral("watched"));
        const Handle first = watcher.watch(folder);
        const Handle second = watcher.watch(folder + QStringLiteral("/./"));
        QVERIFY(first != 0 && second != 0 && first != second);
        QCOMPARE(watcher.kernelWatchCount(), kernelBefore + 1);
        watcher.release(first);
        watcher.release(first); // twice: ignored
        watcher.release(0);
        QVERIFY(watcher.trustworthy(second));
        quint64 generation = watcher.generation(second);
        QVERIFY(KeloTest::writeFile(folder + QStringLiteral("/n.txt"), 1));
        QVERIFY(movedSince(second, generation));
        watcher.release(second);
        QCOMPARE(watcher.kernelWatchCount(), kernelBefore);
        QVERIFY(!watcher.trustworthy(folder));
        QCOMPARE(watcher.state(second), FolderWatcher::State::Missing); // a released handle names nothing
    }

    void aDeletedFolderIsWatchedAgainWhenItReturns()
    {
        const QString sub = path(QStringLiteral("watched/sub"));
        const Handle handle = watcher.watch(sub);
        const auto release = qScopeGuard([&] { watcher.release(handle); });
        QVERIFY(watcher.trustworthy(handle));
        quint64 generation = watcher.generation(handle);
        QVERIFY(QDir(sub).removeRecursively());
        QVERIFY(movedSince(handle, generation));
        QCOMPARE(watcher.state(handle), FolderWatcher::State::Missing);

        QVERIFY(QDir().mkpath(sub));
        const Handle again = watcher.watch(sub); // the same path names a new folder
        const auto releaseAgain = qScopeGuard([&] { watcher.release(again); });
        QVERIFY(watcher.trustworthy(handle) && watcher.trustworthy(again));
        generation = watcher.generation(again);
        QVERIFY(KeloTest::writeFile(sub + QStringLiteral("/z.txt"), 1));
        QVERIFY(movedSince(again, generation));

        const Handle missing = watcher.watch(path(QStringLiteral("nowhere")));
        QCOMPARE(watcher.state(missing), FolderWatcher::State::Missing);
        watcher.release(missing);
    }

    // The kernel's limit (fs.inotify.max_user_watches) is per user and can only be lowered by root for the
    // whole machine, so the refusal it causes, ENOSPC from inotify_add_watch, is made by the test hook.
    void refusedWatchesAreNotTrusted()
    {
        const QString folder = path(QStringLiteral("watched"));
        const int kernelBefore = watcher.kernelWatchCount();
        watcher.setAddWatchErrorForTests(ENOSPC);
        const Handle exhausted = watcher.watch(folder);
        QCOMPARE(watcher.state(exhausted), FolderWatcher::State::Exhausted);
        QVERIFY(!watcher.trustworthy(exhausted));
        QVERIFY(!watcher.trustworthy(folder));
        QCOMPARE(watcher.kernelWatchCount(), kernelBefore);
        watcher.setAddWatchErrorForTests(ENOMEM);
        const Handle broken = watcher.watch(path(QStringLiteral("other")));
        QCOMPARE(watcher.state(broken), FolderWatcher::State::Unavailable);

        // Once watches are granted again, the next caller of the folder gets one, and so does the first.
        watcher.setAddWatchErrorForTests(0);
        const Handle granted = watcher.watch(folder);
        QVERIFY(watcher.trustworthy(granted) && watcher.trustworthy(exhausted));
        for (const Handle handle : {exhausted, broken, granted})
            watcher.release(handle);
        QCOMPARE(watcher.kernelWatchCount(), kernelBefore);
    }

    void networkAndFuseMountsAreNotTrusted_data()
    {
        // mount: type and source
        KeloTest::addColumns<QByteArray, bool>({"mount", "reliable"});
        for (const char *mount : {"ext4 /dev/sda1", "tmpfs tmpfs", "btrfs /dev/sdb2", "fuseblk /dev/sdc1"})
            QTest::newRow(mount) << QByteArray(mount) << true;
        for (const char *mount :
            {"nfs4 server:/export", "nfs server:/export", "cifs //server/share", "smb3 //server/share",
                "fuse.sshfs user@host:/home", "fuse.rclone remote:", "fuse.mergerfs a:b", "fuse something"})
            QTest::newRow(mount) << QByteArray(mount) << false;
    }

    void networkAndFuseMountsAreNotTrusted()
    {
        QFETCH(QByteArray, mount);
        // The drive as the file-system layer reads it from a mountinfo line.
        Kelocontrols::FileSystem::Probes probes;
        probes.isFileMount = [](const QString &) { return false; };
        probes.statVolume = [](const QString &, qint64 &, qint64 &) { return true; };
        probes.volumeLabel = [](const QString &) { return QString(); };
        probes.isRemovable = [](const QString &) { return false; };
        const QList<Kelocontrols::DriveInfo> drives = Kelocontrols::FileSystem::parseMountInfo(
            "36 25 0:50 / /mnt/x rw,relatime shared:1 - " + mount + " rw\n", probes);
        QCOMPARE(drives.size(), 1);
        QTEST(FolderWatcher::noticesReliableOn(drives.first()), "reliable");
    }

    // A real overflow: more notices than the kernel queues (fs.inotify.max_queued_events) before any is read.
    void anOverflowChangesEveryFolder()
    {
        const int limit
            = KeloTest::readTextFile(QStringLiteral("/proc/sys/fs/inotify/max_queued_events")).trimmed().toInt();
        if (limit <= 0 || limit > 100000)
            QSKIP("the kernel queues too many notices to overflow in a test");
        const Handle busy = watcher.watch(path(QStringLiteral("watched")), FolderWatcher::Events::Entries);
        const Handle quiet = watcher.watch(path(QStringLiteral("other")));
        const auto release = qScopeGuard([&] {
            watcher.release(busy);
            watcher.release(quiet);
        });
        quint64 generation = watcher.generation(quiet);
        movedSince(quiet, generation);
        const QByteArray base = QFile::encodeName(path(QStringLiteral("watched/f")));
        for (int i = 0; i <= limit; ++i) { // one notice each (IN_CREATE; closing a new empty file is not watched here)
            const int fd = ::open(QByteArray(base + QByteArray::number(i)).constData(), O_CREAT | O_WRONLY, 0644);
            QVERIFY(fd >= 0);
            ::close(fd);
        }
        QVERIFY(movedSince(quiet, generation)); // nothing happened there, but notices were lost
        QVERIFY(watcher.trustworthy(quiet) && watcher.trustworthy(busy));
    }
};

QTEST_GUILESS_MAIN(TestFolderWatcher)
#include "tst_folderwatcher.moc"
