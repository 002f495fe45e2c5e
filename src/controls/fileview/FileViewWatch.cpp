#include "FileViewWatch_p.h"

#include "FileListModel.h"
#include "FileNameCodec.h"
#include "FileSystem.h"
#include "KelofileView_p.h"

#include <QSet>

#include <atomic>
#include <fcntl.h>
#include <sys/stat.h>

namespace Kelocontrols {

namespace {

std::atomic<quint64> passCounter{0};

} // namespace

FileViewWatch::FileViewWatch(KelofileView &view)
    : q(view)
{
}

FileViewWatch::~FileViewWatch()
{
    releaseAll();
}

quint64 FileViewWatch::passesRun()
{
    return passCounter.load();
}

void FileViewWatch::releaseAll()
{
    FolderWatcher &watcher = FolderWatcher::instance();
    watcher.release(m_folder);
    m_folder = 0;
    m_folderPath.clear();
    for (const FolderWatcher::Handle handle : std::as_const(m_subFolders)) {
        watcher.release(handle);
    }
    m_subFolders.clear();
    m_seen.clear();
    m_links.clear();
    m_valid = false;
}

FileViewWatch::Settings FileViewWatch::currentSettings() const
{
    const KelofileView::Private &d = *q.d;
    return {d.path, d.rules.pattern, d.rules.allowHidden, d.rules.allowSystem, d.showFolders, d.showFolderDetails};
}

// The folder shown is watched before it is read, so that no change between the two goes unnoticed.
void FileViewWatch::watchFolder()
{
    FolderWatcher &watcher = FolderWatcher::instance();
    watcher.readNotices(); // a folder deleted or moved away is known as such before it is asked about
    const QString &path = q.d->path;
    if (path != m_folderPath) {
        releaseAll();
        if (path.isEmpty()) {
            return;
        }
        m_folderPath = path;
        m_folder = watcher.watch(path);
    } else if (m_folder != 0 && !watcher.trustworthy(m_folder)) {
        // Deleted, moved or refused since: watch again whatever the path names now.
        const FolderWatcher::Handle again = watcher.watch(path);
        watcher.release(m_folder);
        m_folder = again;
        m_valid = false;
    }
}

void FileViewWatch::tick()
{
    KelofileView::Private &d = *q.d;
    if (d.busy) {
        return;
    }
    watchFolder();
    if (!d.path.isEmpty() && nothingChanged()) {
        d.filler.finish(); // what a pass that found nothing ends with
        return;
    }
    pass();
}

void FileViewWatch::pass()
{
    KelofileView::Private &d = *q.d;
    if (d.busy) {
        return;
    }
    watchFolder();
    FolderWatcher &watcher = FolderWatcher::instance();
    // Generations are taken before the folder is read: a notice during the pass means another pass.
    m_valid = false;
    m_seenNotices = watcher.noticeCount();
    m_seen.clear();
    if (m_folder != 0) {
        m_seen.insert(m_folder, watcher.generation(m_folder));
    }
    for (const FolderWatcher::Handle handle : std::as_const(m_subFolders)) {
        m_seen.insert(handle, watcher.generation(handle));
    }
    m_settings = currentSettings();
    ++passCounter;
    if (!d.refresher.run()) {
        return;
    }
    followList();
}

// After a pass: watch the folder items the list holds now and stamp its links.
void FileViewWatch::followList()
{
    FolderWatcher &watcher = FolderWatcher::instance();
    const FileListModel *model = q.d->model();
    QSet<QString> folders;
    QList<LinkStamp> links;
    bool tooMany = false;
    for (int r = 0; r < model->count(); ++r) {
        const FileListRow &row = model->row(r);
        if (row.kind == FileListKind::Folder) {
            if (folders.size() >= MaxFolderWatches) {
                tooMany = true;
            } else {
                folders.insert(row.path());
            }
        }
        if (row.entry.attributes & FileAttribute::Alias) {
            if (links.size() >= MaxLinks) {
                tooMany = true;
            } else {
                links.append(stampOf(row.path()));
            }
        }
    }
    bool added = false;
    for (auto it = m_subFolders.begin(); it != m_subFolders.end();) {
        if (tooMany || !folders.contains(it.key())) {
            watcher.release(*it);
            it = m_subFolders.erase(it);
            continue;
        }
        const FolderWatcher::State state = watcher.state(*it);
        if (state == FolderWatcher::State::Exhausted || state == FolderWatcher::State::Unavailable) {
            // Refused before: ask again, the limit may have room now.
            const FolderWatcher::Handle again = watcher.watch(it.key(), FolderWatcher::Events::Entries);
            watcher.release(*it);
            *it = again;
            added = true;
        }
        ++it;
    }
    if (!tooMany) {
        for (const QString &path : std::as_const(folders)) {
            if (!m_subFolders.contains(path)) {
                m_subFolders.insert(path, watcher.watch(path, FolderWatcher::Events::Entries));
                added = true;
            }
        }
    }
    m_links = links;
    m_listGeneration = model->layoutGeneration();
    m_listCount = model->count();
    // New watches started after the pass read their folders: one more pass covers the time between.
    m_valid = !tooMany && !added && m_folder != 0;
}

bool FileViewWatch::nothingChanged()
{
    if (!m_valid) {
        return false;
    }
    const FileListModel *model = q.d->model();
    if (model->layoutGeneration() != m_listGeneration || model->count() != m_listCount
        || !(currentSettings() == m_settings)) {
        return false;
    }
    const FolderWatcher &watcher = FolderWatcher::instance();
    if (!watcher.trustworthy(m_folder)) {
        return false;
    }
    for (const FolderWatcher::Handle handle : std::as_const(m_subFolders)) {
        // A folder item that is gone or unreadable has nothing to count; its parent's notices tell when that ends.
        const FolderWatcher::State state = watcher.state(handle);
        if (state != FolderWatcher::State::Watching && state != FolderWatcher::State::Missing) {
            return false;
        }
    }
    if (watcher.noticeCount() != m_seenNotices) {
        const auto unchanged = [&](FolderWatcher::Handle handle) {
            const auto seen = m_seen.constFind(handle);
            return seen != m_seen.cend() && *seen == watcher.generation(handle);
        };
        if (!unchanged(m_folder)) {
            return false;
        }
        for (const FolderWatcher::Handle handle : std::as_const(m_subFolders)) {
            if (!unchanged(handle)) {
                return false;
            }
        }
        m_seenNotices = watcher.noticeCount(); // notices about other folders only
    }
    for (const LinkStamp &link : std::as_const(m_links)) {
        if (!(stampOf(link.path) == link)) {
            return false;
        }
    }
    return true;
}

FileViewWatch::LinkStamp FileViewWatch::stampOf(const QString &path)
{
    LinkStamp stamp;
    stamp.path = path;
    struct statx info;
    if (::statx(AT_FDCWD, FileNameCodec::encode(path).constData(), AT_NO_AUTOMOUNT,
            STATX_TYPE | STATX_MODE | STATX_INO | STATX_SIZE | STATX_MTIME | STATX_CTIME, &info)
        == 0) {
        stamp.exists = true;
        stamp.size = qint64(info.stx_size);
        stamp.modifiedNs = qint64(info.stx_mtime.tv_sec) * 1000000000 + info.stx_mtime.tv_nsec;
        stamp.changedNs = qint64(info.stx_ctime.tv_sec) * 1000000000 + info.stx_ctime.tv_nsec;
        stamp.inode = info.stx_ino;
        stamp.mode = info.stx_mode;
    }
    return stamp;
}

} // namespace Kelocontrols
