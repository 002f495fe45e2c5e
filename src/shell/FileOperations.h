#pragma once

#include <kelocontrols_export.h>

#include <QString>

namespace Kelocontrols {

class TransferMonitor;

/**
 * @file
 * Copying, moving and deleting files and folders on the file system itself.
 *
 * Each function answers true when it did all it was asked, false when
 * anything failed; none raises and none shows a message. Paths reach the
 * system through FileNameCodec, so names that are not UTF-8 are kept byte
 * for byte.
 *
 * Nothing is lost, whatever fails:
 * - A file is written under a temporary name (".kelo-part-" and eight hex
 *   digits) in the target folder and renamed into place only when all its
 *   bytes are written and their count equals the source's size, so a full
 *   disk, a vanished or unreadable source or a cancel never leaves a
 *   truncated file, and never harms a file that was not to be replaced.
 * - A new folder is built under a temporary name beside its target and
 *   renamed into place when done; a cancel or a full disk removes the
 *   unfinished tree.
 * - A move on one file system is one rename(2). Across file systems the
 *   source is copied completely (every file's size checked) and only then
 *   removed.
 *
 * Copies keep contents, permission bits, modification and access times, and
 * (for root) owner and group. Symbolic links are copied as links, and
 * deleting never follows one. Contents are copied by the kernel: a reflink
 * (FICLONE) where the file system shares extents, else copy_file_range(2).
 *
 * A @p monitor, when given, hears of every item and byte and can cancel:
 * the operation then stops at once, removes what it had not finished and
 * keeps the source whole.
 */
namespace FileOperations {

/**
 * Copies the file (or symbolic link) @p source to the path @p target. An
 * existing target file is replaced only when @p overwrite is true, and in
 * one step, by a rename over it; a folder is never replaced.
 */
KELOCONTROLS_EXPORT bool copyFile(
    const QString &source, const QString &target, bool overwrite, TransferMonitor *monitor = nullptr);

/**
 * Copies the folder @p source with all its contents to the path @p target.
 * A missing target is created (whole or not at all, as the notes say). An
 * existing target folder is merged into: files of the same name are replaced
 * when @p overwrite is true and kept otherwise (which makes the answer
 * false, the rest still being copied). A folder copied into itself or one
 * of its own sub-folders copies what the source held when the copy began,
 * never the copy.
 */
KELOCONTROLS_EXPORT bool copyFolder(
    const QString &source, const QString &target, bool overwrite, TransferMonitor *monitor = nullptr);

/**
 * Moves the file (or symbolic link) @p source to the path @p target. An
 * existing target file is replaced only when @p replace is true, in one
 * step (a rename over it; across file systems after the copy is complete).
 */
KELOCONTROLS_EXPORT bool moveFile(
    const QString &source, const QString &target, bool replace, TransferMonitor *monitor = nullptr);

/**
 * Moves the folder (or a symbolic link to one) @p source to the path
 * @p target, which must not exist. Across file systems the whole tree is
 * copied first; should any part of that fail, the copy is removed and the
 * source stays as it was.
 */
KELOCONTROLS_EXPORT bool moveFolder(const QString &source, const QString &target, TransferMonitor *monitor = nullptr);

/**
 * Deletes the file or symbolic link @p path (the link, not its target). A
 * file whose owner write bit is clear is deleted only when @p force is true.
 */
KELOCONTROLS_EXPORT bool deleteFile(const QString &path, bool force);

/**
 * Deletes the folder @p path with all its contents, read-only entries
 * included. Symbolic links inside are removed, never followed; @p path
 * itself being a link removes the link only. Other file systems mounted
 * inside are not entered (their mount points stay, and the answer is false).
 */
KELOCONTROLS_EXPORT bool deleteFolder(const QString &path);

/**
 * Renames (or moves, on one file system) the entry @p source to the path
 * @p target without ever replacing an existing entry: the check and the
 * rename are one step (renameat2 with RENAME_NOREPLACE) where the file
 * system supports it. Answers 0 on success, else the errno value (EEXIST
 * when @p target exists, EXDEV across file systems, ENOENT for a missing
 * source).
 */
KELOCONTROLS_EXPORT int renameEntry(const QString &source, const QString &target);

} // namespace FileOperations

} // namespace Kelocontrols
