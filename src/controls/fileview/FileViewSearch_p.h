#pragma once

#include "FileEntry.h"
#include "FileListFilter.h"

#include <QElapsedTimer>
#include <QList>
#include <QString>

class KelofileView;

namespace Kelocontrols {

/**
 * Fills a KelofileView's list with the entries below a folder whose names
 * match a Like pattern, instead of one folder's contents.
 *
 * Collection order, folder by folder from the search root: the folder's
 * matching files, then each sub-folder (in the order FileSystem lists
 * them): first its own matches (with sub-directories on), then the
 * sub-folder itself when its name matches. Every matching file adds its
 * size to TotalSize, whether the hidden and system rules let it into the
 * list or not.
 *
 * The walk never loops and never leaves the tree: a symbolic link to a
 * folder can be found by its name but is never descended into (the tree is
 * the folders below the root, not whatever a link points at; a link to "/"
 * or to an ancestor would otherwise search the machine or loop, and a
 * bookkeeping of visited folders would still leave the list holding the
 * same files under several paths). Folders that cannot be read are skipped
 * quietly; pseudo file-system mounts (/proc, /sys ...) are descended into
 * only with AllowSystemFiles.
 *
 * Between folders, at most every PaintEveryMs, pending events are handled
 * so that the window keeps painting; stop() (KelofileView::StopSearch())
 * ends the walk at the next folder and lists what was found so far.
 */
class FileViewSearch
{
public:
    static constexpr qint64 PaintEveryMs = 30;

    explicit FileViewSearch(KelofileView &view);

    /// The whole search; raises PathNotFound (76) or PermissionDenied (70) when @p root cannot be listed.
    void run(const QString &pattern, const QString &root, bool subdirectories);
    void stop() { m_stopRequested = true; }
    bool running() const { return m_running; }

private:
    struct Found
    {
        FileEntry entry;
        QString folder;
    };
    void collect(const QString &folder, bool isRoot);
    void keepPainting();

    KelofileView &q;
    FileListFilter m_pattern;
    bool m_subdirectories = false;
    bool m_stopRequested = false;
    bool m_running = false;
    qint64 m_totalSize = 0;
    QList<Found> m_found;
    QElapsedTimer m_sinceEvents;
};

} // namespace Kelocontrols
