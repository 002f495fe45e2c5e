#pragma once

#include "FolderWatcher_p.h"

#include <kelocontrols_export.h>

#include <QHash>
#include <QList>
#include <QString>

class KelofileView;

namespace Kelocontrols {

/**
 * Decides whether a RefreshTimer tick of a KelofileView needs an in-place
 * pass at all, from the notices of the process's FolderWatcher.
 *
 * The folder shown is watched for everything, and every folder item of the
 * list for names added, removed or renamed (its file count, and its dates,
 * which only such changes move). A tick runs the in-place pass when any of
 * them had a notice since the last pass, and otherwise only finishes as a
 * pass that found nothing does (the empty-folder message, AfterPaint),
 * unless one of these holds, when it runs the pass as before:
 * - no pass has run yet for what is shown: the path, Filter,
 *   AllowHiddenFiles, AllowSystemFiles, ShowFolders or ShowFolderDetails
 *   changed, or the list was changed by something else (a fill, the host's
 *   item members: rows removed, renamed, reordered or appended);
 * - a watch cannot be trusted (network or FUSE file system, the kernel's
 *   watch limit, inotify unavailable, the folder deleted or moved);
 * - the list holds more folder items than MaxFolderWatches, or more
 *   symbolic links than MaxLinks;
 * - a symbolic link of the list points at something that changed: links
 *   are described by their targets, which may lie in folders nobody
 *   watches, so their targets are looked at (one stat each) on every tick;
 * - folder items appeared that were not watched during the last pass: their
 *   watches start after the pass that found them, so one more pass covers
 *   what changed in between.
 * The host's Refresh() always runs the pass.
 */
class KELOCONTROLS_TESTS_EXPORT FileViewWatch
{
public:
    /// More folder items than this and every tick runs the pass (watches are a shared, limited resource).
    static constexpr int MaxFolderWatches = 4096;
    /// More symbolic links than this and every tick runs the pass.
    static constexpr int MaxLinks = 256;

    explicit FileViewWatch(KelofileView &view);
    ~FileViewWatch();
    FileViewWatch(const FileViewWatch &) = delete;
    FileViewWatch &operator=(const FileViewWatch &) = delete;

    /// A RefreshTimer tick: the in-place pass when something may have changed, else only its finish.
    void tick();
    /// The host's Refresh: the in-place pass, always.
    void pass();

    /// In-place passes run by ticks and Refresh() in this process (tests and benchmarks count them).
    static quint64 passesRun();

private:
    struct Settings
    {
        QString path;
        QString filter;
        bool allowHidden = false;
        bool allowSystem = false;
        bool showFolders = false;
        bool showFolderDetails = false;
        friend bool operator==(const Settings &, const Settings &) = default;
    };
    struct LinkStamp
    {
        QString path;
        qint64 size = 0;
        qint64 modifiedNs = 0;
        qint64 changedNs = 0;
        quint64 inode = 0;
        quint32 mode = 0;
        bool exists = false;
        friend bool operator==(const LinkStamp &, const LinkStamp &) = default;
    };

    Settings currentSettings() const;
    void watchFolder();
    bool nothingChanged();
    void followList();
    static LinkStamp stampOf(const QString &path);
    void releaseAll();

    KelofileView &q;
    FolderWatcher::Handle m_folder = 0;
    QString m_folderPath;
    QHash<QString, FolderWatcher::Handle> m_subFolders; ///< folder items' paths -> their watches
    QHash<FolderWatcher::Handle, quint64> m_seen; ///< generations taken right before the last pass
    QList<LinkStamp> m_links;
    Settings m_settings;
    quint64 m_seenNotices = 0;
    quint64 m_listGeneration = 0;
    int m_listCount = -1;
    bool m_valid = false; ///< the last pass covers what is shown, and the watches cover the list
};

} // namespace Kelocontrols
