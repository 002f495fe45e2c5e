#pragma once

#include "FileEntry.h"

#include <kelocontrols_export.h>

#include <QString>
#include <QVariant>

#include <memory>

namespace Kelocontrols {

struct DriveInfo;

/// What one row of a file list stands for.
enum class FileListKind : quint8 {
    File, ///< a file (anything that is not a folder)
    Folder, ///< a folder, a "My Folders" entry, or a virtual folder the host added
    Drive, ///< a drive of "My Computer"
    Unavailable, ///< a "My Folders" entry whose folder is gone
};

/**
 * One row of a file list: the facts read from the disk when the row was
 * added or last brought up to date, plus what the host set on the item.
 *
 * The facts are raw values (bytes, milliseconds, the file count of a
 * folder); the column texts are made from them only when asked
 * (columnText()), so a list of 100,000 rows formats only what is shown.
 *
 * A folder's file count is a fact like its dates: it is counted when the
 * row is made, together with the folder's status-change stamp at that
 * moment. A later comparison counts again only when the stamp moved (an
 * entry was added, removed or renamed inside: the kernel moves a folder's
 * ctime then, and no program can set it back) or when the count was taken
 * within RacyWindowMs of the stamp, where a change in the same clock tick
 * would leave the stamp as it was. Limits: a file system that reports no
 * ctime (stamp 0) is counted at every comparison; a network file system
 * whose attribute cache is stale shows the change once the cache expires;
 * a server clock ahead of ours keeps that folder "racy", so it is counted
 * at every comparison.
 */
struct KELOCONTROLS_EXPORT FileListRow
{
    /// A count taken less than this long after the folder's last status change is checked again.
    static constexpr qint64 RacyWindowMs = 2000;

    /// Rarely set parts, kept out of line so that a large list stays small.
    struct Extras
    {
        QString text; ///< the item's text as the host set it
        QString realName; ///< the RealName as the host set it
        QString key;
        QString tag;
        bool ownText = false;
        bool ownRealName = false;
    };

    /// For a drive: name = its root path; for an unavailable entry: name = the stored path.
    FileEntry entry;
    QString folder; ///< the parent folder's path ("" for drives and unavailable entries)
    QString typeText; ///< the type text (a drive's type name)
    QString largeIcon; ///< image key in the large list
    QString smallIcon; ///< image key in the small list
    qint64 fileCount = 0; ///< folders: files directly inside, counted when the row was made
    qint64 countStamp = 0; ///< folders: entry.statusChanged when fileCount was taken
    FileListKind kind = FileListKind::File;
    quint8 driveType = 0; ///< drives: the DriveType code
    bool details = false; ///< folders: show the count and dates in the visible columns
    bool countRacy = false; ///< folders: fileCount must be checked at the next comparison
    bool bold = false;
    bool unmet = false; ///< the mark of an in-place refresh: not yet met on disk in this pass
    std::unique_ptr<Extras> extras;

    /// A file @p entry of the folder @p folder.
    static FileListRow file(const FileEntry &entry, const QString &folder);
    /**
     * A folder @p entry of @p folder, with its files counted now unless
     * @p previous (the row of the same folder made earlier) still holds a
     * valid count.
     */
    static FileListRow folderOf(
        const FileEntry &entry, const QString &folder, bool details, const FileListRow *previous = nullptr);
    static FileListRow drive(const DriveInfo &drive);
    static FileListRow unavailable(const QString &path);

    /// The item's text (column Name).
    QString text() const;
    /// The name the list finds the item by (column RealName).
    QString realName() const;
    /// The full path of the entry ("" for an unavailable entry).
    QString path() const;
    /// The image key the row's kind shares: the extension, the program's own name, the folder or drive type.
    QString baseImageKey() const;
    /// Whether the row is a program (its image is its own, tagged "exe").
    bool isProgram() const;

    /// The text of @p column (a FileListModel::Column), made from the facts.
    QString columnText(int column) const;
    /// The raw value of @p column: qint64 for sizes and counts, QDateTime for dates, bool for Changed.
    QVariant rawValue(int column) const;

    /**
     * Takes the facts of @p fresh (the same entry as read now) and answers
     * whether any column text changed, comparing as the texts compare:
     * without regard to case, dates to the second. The host's text, real
     * name, tag, boldness and the image keys stay; a name that differs only
     * in case is kept as it was.
     */
    bool takeFacts(FileListRow &&fresh);

    /**
     * Whether the row already holds exactly these facts of a @p kind entry
     * of @p folder (names compared exactly, times to the millisecond, a
     * folder's count still valid for the entry's stamps): then nothing needs
     * to be read or compared again.
     */
    bool holdsFacts(const FileEntry &now, const QString &folder, FileListKind kind, bool details) const;

    Extras &ensureExtras();

    /// "0KB", "1KB", "2KB" for 0, 1 and 1,025 bytes.
    static QString sizeText(qint64 bytes);
    /// A count or size as twelve zero-filled digits.
    static QString sortedNumber(qint64 value);
    /// Whether two times (ms since the epoch) fall in different seconds.
    static bool differInSeconds(qint64 a, qint64 b);

private:
    void countFiles();
    bool countStillValidFor(const FileEntry &now) const;
    bool sameTexts(const FileListRow &fresh) const;
};

} // namespace Kelocontrols
