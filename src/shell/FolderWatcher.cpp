#include "FolderWatcher_p.h"

#include "FileNameCodec.h"
#include "FileSystem.h"

#include <QFile>
#include <QSocketNotifier>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <sys/inotify.h>
#include <unistd.h>

namespace Kelocontrols {

namespace {

// What a folder's own listing shows: names, sizes, dates and attributes of its entries.
constexpr quint32 EverythingMask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_MODIFY | IN_ATTRIB
    | IN_CLOSE_WRITE | IN_DELETE_SELF | IN_MOVE_SELF;
// What a folder's file count depends on.
constexpr quint32 EntriesMask = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF;

bool isUnder(const QString &path, const QString &root)
{
    if (root == QLatin1String("/")) {
        return path.startsWith(QLatin1Char('/'));
    }
    return path == root || (path.startsWith(root) && path.at(root.size()) == QLatin1Char('/'));
}

} // namespace

FolderWatcher &FolderWatcher::instance()
{
    static FolderWatcher *watcher = new FolderWatcher; // lives as long as the process, like its descriptor
    return *watcher;
}

FolderWatcher::FolderWatcher()
{
    m_fd = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (m_fd >= 0) {
        m_notifier = new QSocketNotifier(qintptr(m_fd), QSocketNotifier::Read, this);
        connect(m_notifier, &QSocketNotifier::activated, this, &FolderWatcher::readNotices);
    }
}

FolderWatcher::~FolderWatcher()
{
    if (m_fd >= 0) {
        ::close(m_fd);
    }
}

bool FolderWatcher::noticesReliableOn(const DriveInfo &drive)
{
    if (drive.driveType == DriveType::Remote) {
        return false;
    }
    // fuseblk is a local disk behind FUSE (ntfs-3g, exfat-fuse): every change passes through this kernel.
    const QString &type = drive.fileSystem;
    return type != QLatin1String("fuse") && !type.startsWith(QLatin1String("fuse."));
}

// The drive holding the folder decides; the mount table is read without touching any volume
// (a hung network mount must not hang the watcher), and kept for a second.
bool FolderWatcher::reliablePlace(const QString &path)
{
    if (!m_drivesAge.isValid() || m_drivesAge.elapsed() > 1000) {
        QFile table(QStringLiteral("/proc/self/mountinfo"));
        FileSystem::Probes probes;
        probes.mountInfoPath = table.fileName();
        probes.isFileMount = [](const QString &) { return false; };
        probes.statVolume = [](const QString &, qint64 &, qint64 &) { return false; };
        probes.volumeLabel = [](const QString &) { return QString(); };
        probes.isRemovable = [](const QString &) { return false; };
        m_drives = table.open(QIODevice::ReadOnly) ? FileSystem::parseMountInfo(table.readAll(), probes)
                                                   : QList<DriveInfo>();
        m_drivesAge.start();
    }
    QString target = path;
    char canonical[PATH_MAX];
    if (::realpath(FileNameCodec::encode(path).constData(), canonical)) {
        target = FileNameCodec::decode(QByteArray(canonical));
    }
    const DriveInfo *best = nullptr;
    for (const DriveInfo &drive : m_drives) {
        if (isUnder(target, drive.rootPath) && (!best || drive.rootPath.size() > best->rootPath.size())) {
            best = &drive;
        }
    }
    return !best || noticesReliableOn(*best);
}

FolderWatcher::Handle FolderWatcher::watch(const QString &path, Events events)
{
    const QString cleaned = FileSystem::cleanPath(path);
    const Handle handle = m_nextHandle++;
    m_handles.insert(handle, {cleaned, events});
    Folder &folder = m_folders[cleaned];
    const quint32 before = maskOf(folder);
    (events == Events::Everything ? folder.everythingRefs : folder.entriesRefs) += 1;
    // A new folder, one whose watch is gone (deleted, moved, refused) or one that now wants more events.
    if (folder.state != State::Watching || (maskOf(folder) & ~before)) {
        attach(cleaned, folder);
    }
    return handle;
}

void FolderWatcher::release(Handle handle)
{
    const auto found = m_handles.constFind(handle);
    if (found == m_handles.constEnd()) {
        return;
    }
    const HandleInfo info = *found;
    m_handles.erase(found);
    const auto it = m_folders.find(info.path);
    if (it == m_folders.end()) {
        return;
    }
    (info.events == Events::Everything ? it->everythingRefs : it->entriesRefs) -= 1;
    if (it->everythingRefs + it->entriesRefs <= 0) {
        detach(info.path, *it);
        m_folders.erase(it);
    }
}

quint32 FolderWatcher::maskOf(const Folder &folder) const
{
    return folder.everythingRefs > 0 ? EverythingMask : (folder.entriesRefs > 0 ? EntriesMask : 0);
}

void FolderWatcher::attach(const QString &path, Folder &folder)
{
    if (m_fd < 0) {
        folder.state = State::Unavailable;
        return;
    }
    if (!reliablePlace(path)) {
        detach(path, folder);
        folder.state = State::Untrusted;
        return;
    }
    quint32 mask = maskOf(folder);
    int wd = -1;
    if (m_failWith != 0) {
        errno = m_failWith;
    } else {
        wd = ::inotify_add_watch(m_fd, FileNameCodec::encode(path).constData(), mask | IN_ONLYDIR | IN_EXCL_UNLINK);
    }
    if (wd < 0) {
        const int error = errno;
        detach(path, folder);
        folder.state = error == ENOSPC ? State::Exhausted
            : (error == ENOENT || error == EACCES || error == ENOTDIR || error == ELOOP || error == ENAMETOOLONG)
            ? State::Missing
            : State::Unavailable;
        return;
    }
    if (folder.watch >= 0 && folder.watch != wd) {
        detach(path, folder); // the path now names another folder
    }
    QList<QString> &sharers = m_pathsOfWatch[wd];
    if (!sharers.contains(path)) {
        sharers.append(path);
    }
    // Another path to the same folder (a link) shares the kernel watch: it must keep what they asked for too.
    quint32 wanted = mask;
    for (const QString &other : std::as_const(sharers)) {
        wanted |= maskOf(m_folders.value(other));
    }
    if (wanted != mask) {
        ::inotify_add_watch(m_fd, FileNameCodec::encode(path).constData(), wanted | IN_ONLYDIR | IN_EXCL_UNLINK);
    }
    folder.watch = wd;
    folder.state = State::Watching;
}

void FolderWatcher::detach(const QString &path, Folder &folder)
{
    if (folder.watch < 0) {
        return;
    }
    const auto it = m_pathsOfWatch.find(folder.watch);
    if (it != m_pathsOfWatch.end()) {
        it->removeAll(path);
        if (it->isEmpty()) {
            m_pathsOfWatch.erase(it);
            ::inotify_rm_watch(m_fd, folder.watch);
        }
    }
    folder.watch = -1;
}

FolderWatcher::State FolderWatcher::state(Handle handle) const
{
    const auto found = m_handles.constFind(handle);
    if (found == m_handles.constEnd()) {
        return State::Missing;
    }
    return m_folders.value(found->path).state;
}

bool FolderWatcher::trustworthy(const QString &path) const
{
    const auto found = m_folders.constFind(FileSystem::cleanPath(path));
    return found != m_folders.constEnd() && found->state == State::Watching;
}

quint64 FolderWatcher::generation(Handle handle) const
{
    const auto found = m_handles.constFind(handle);
    return found == m_handles.constEnd() ? 0 : m_folders.value(found->path).generation;
}

quint64 FolderWatcher::generation(const QString &path) const
{
    return m_folders.value(FileSystem::cleanPath(path)).generation;
}

void FolderWatcher::readNotices()
{
    if (m_fd < 0) {
        return;
    }
    QList<QString> touched;
    alignas(inotify_event) char buffer[16384];
    for (;;) {
        const ssize_t length = ::read(m_fd, buffer, sizeof buffer);
        if (length <= 0) {
            if (length < 0 && errno == EINTR) {
                continue;
            }
            break; // EAGAIN: the queue is empty
        }
        if (!m_ignoreNotices) {
            handleEvents(buffer, length, touched);
        }
    }
    for (const QString &path : std::as_const(touched)) {
        Q_EMIT changed(path);
    }
}

void FolderWatcher::handleEvents(const char *buffer, qsizetype length, QList<QString> &touched)
{
    const auto touch = [&](const QString &path, Folder &folder) {
        ++folder.generation;
        if (!touched.contains(path)) {
            touched.append(path);
        }
    };
    for (qsizetype at = 0; at + qsizetype(sizeof(inotify_event)) <= length;) {
        const auto *event = reinterpret_cast<const inotify_event *>(buffer + at);
        at += qsizetype(sizeof(inotify_event)) + event->len;
        ++m_noticeCount;
        if (event->mask & IN_Q_OVERFLOW) {
            // Notices were lost: every folder may have changed.
            for (auto it = m_folders.begin(); it != m_folders.end(); ++it) {
                touch(it.key(), *it);
            }
            continue;
        }
        const auto sharers = m_pathsOfWatch.constFind(event->wd);
        if (sharers == m_pathsOfWatch.constEnd()) {
            continue; // a watch removed already (its IN_IGNORED)
        }
        const QList<QString> paths = *sharers;
        const bool gone = event->mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_IGNORED | IN_UNMOUNT);
        for (const QString &path : paths) {
            const auto folder = m_folders.find(path);
            if (folder == m_folders.end()) {
                continue;
            }
            touch(path, *folder);
            if (gone) {
                // The path no longer names the folder watched: the caller looks for itself until it watches again.
                detach(path, *folder);
                folder->state = State::Missing;
            }
        }
    }
}

} // namespace Kelocontrols
