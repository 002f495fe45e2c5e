#pragma once

#include <kelocontrols_export.h>

#include "DriveInfo.h"

#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>

class QSocketNotifier;

namespace Kelocontrols {

/**
 * Tells the controls of a process when a folder they show may have changed.
 *
 * One inotify instance serves the whole process (instance()); a control asks
 * for a folder with watch() and gets a handle, and gives it back with
 * release(). Folders are reference counted: the kernel watch of a folder is
 * added by its first handle and removed with its last.
 *
 * Each watched folder has a generation counter that moves with every notice
 * about it (an entry created, deleted, renamed in or out, written, closed
 * after writing, its attributes changed, the folder itself deleted or moved)
 * and changed() is emitted. A queue overflow moves the counter of every
 * folder: after it, anything may have changed. noticeCount() moves with
 * every notice for any folder, so a caller that saw it unchanged knows that
 * none of its folders changed without asking about each one.
 *
 * Notices are read when the event loop sees the inotify descriptor ready, and
 * also at once by readNotices(): a caller about to decide on a generation
 * calls it first, so a change made just before is never missed. The kernel
 * queues a notice before the system call that caused it returns.
 *
 * A handle is trustworthy() only while its folder is really watched. It is
 * not, and the caller must look at the folder itself, when:
 * - the folder lies on a network or FUSE file system (changes made by other
 *   machines or by the FUSE daemon raise no notice here): see
 *   noticesReliableOn();
 * - the kernel's watch limit is exhausted (ENOSPC from inotify_add_watch,
 *   fs.inotify.max_user_watches), or the folder is missing or unreadable;
 * - inotify is not available at all;
 * - the folder was deleted or moved away since (the watch is gone; watch the
 *   path again to follow what is there now).
 *
 * Events::Entries asks only for names added, removed or renamed (what
 * changes a folder's file count); a folder watched both ways is watched for
 * everything. A folder's event mask only widens while it is watched.
 */
class KELOCONTROLS_TESTS_EXPORT FolderWatcher : public QObject
{
    Q_OBJECT
public:
    enum class Events {
        Everything, ///< entries added, removed, renamed, written, attributes changed
        Entries, ///< entries added, removed or renamed only
    };
    enum class State {
        Watching, ///< notices arrive for this folder
        Missing, ///< the folder does not exist, cannot be read, or was deleted or moved away
        Untrusted, ///< a network or FUSE file system: notices would not tell every change
        Exhausted, ///< the kernel's watch limit is reached
        Unavailable, ///< inotify cannot be used in this process
    };
    Q_ENUM(State)

    using Handle = quint64; ///< 0 is no handle

    static FolderWatcher &instance();

    /// Starts watching @p path (cleaned) for this caller; never 0.
    Handle watch(const QString &path, Events events = Events::Everything);
    /// Gives a handle back; unknown handles (and 0) are ignored.
    void release(Handle handle);

    State state(Handle handle) const;
    bool trustworthy(Handle handle) const { return state(handle) == State::Watching; }
    /// Whether @p path is watched now by some handle with notices that can be trusted.
    bool trustworthy(const QString &path) const;
    /// The generation of the handle's folder; moves with every notice about it.
    quint64 generation(Handle handle) const;
    quint64 generation(const QString &path) const;
    /// Moves with every notice for any folder (and at an overflow).
    quint64 noticeCount() const { return m_noticeCount; }
    /// The kernel watches held now (one per distinct folder).
    int kernelWatchCount() const { return int(m_pathsOfWatch.size()); }

    /// Reads every queued notice now, without waiting for the event loop.
    void readNotices();

    /// Whether notices can be trusted on a drive of this kind: not on network and FUSE file systems.
    static bool noticesReliableOn(const DriveInfo &drive);

    /// Tests: makes every later inotify_add_watch fail with @p error (ENOSPC ...); 0 stops it.
    void setAddWatchErrorForTests(int error) { m_failWith = error; }
    /// Tests: notices are read and thrown away, as if the change happened behind the watcher's back.
    void setIgnoreNoticesForTests(bool ignore) { m_ignoreNotices = ignore; }

Q_SIGNALS:
    /// A notice arrived about @p path (a watched folder's cleaned path).
    void changed(const QString &path);

private:
    FolderWatcher();
    ~FolderWatcher() override;

    struct Folder
    {
        int watch = -1; ///< the kernel watch descriptor, -1 when none
        State state = State::Missing;
        int everythingRefs = 0;
        int entriesRefs = 0;
        quint64 generation = 0;
    };
    struct HandleInfo
    {
        QString path;
        Events events;
    };

    void attach(const QString &path, Folder &folder);
    void detach(const QString &path, Folder &folder);
    quint32 maskOf(const Folder &folder) const;
    bool reliablePlace(const QString &path);
    void handleEvents(const char *buffer, qsizetype length, QList<QString> &touched);

    int m_fd = -1;
    QSocketNotifier *m_notifier = nullptr;
    QHash<QString, Folder> m_folders;
    QHash<Handle, HandleInfo> m_handles;
    QHash<int, QList<QString>> m_pathsOfWatch; ///< folders that share one kernel watch (links to one folder)
    Handle m_nextHandle = 1;
    quint64 m_noticeCount = 0;
    int m_failWith = 0;
    bool m_ignoreNotices = false;
    QList<DriveInfo> m_drives; ///< the mount table, read again when older than a second
    QElapsedTimer m_drivesAge;
};

} // namespace Kelocontrols
