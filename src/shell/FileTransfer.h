#pragma once

#include <kelocontrols_export.h>

#include <QString>

namespace Kelocontrols {

/**
 * @file
 * Copying and moving files and folders for the file controls' paste, drop
 * and new-folder commands, with the library's confirmations, and the unique
 * names for new folders and duplicates.
 *
 * Paths are absolute; a folder and a name are joined with one "/". Source
 * and target are compared as texts, exactly. The file-system work itself is
 * done by FileOperations: nothing is lost when it fails, and failures are
 * not reported (callers refresh their views and show what happened). Work
 * that runs longer than half a second shows a FileProgressDialog; its Cancel
 * stops the work, removes what was unfinished and keeps the source.
 */

/**
 * Copies (@p copy true) or moves the files and folders of the clipboard's
 * file list into the folder @p destination, first to last, each through
 * TransferItem(). Does nothing for an empty destination or a clipboard
 * without a file list; a cancelled progress dialog skips the remaining
 * items.
 */
KELOCONTROLS_EXPORT void PasteFiles(const QString &destination, bool copy);

/**
 * TransferFile() when @p source is an existing file (or link to one, or a
 * broken link), TransferFolder() when it is an existing folder (or link to
 * one); "" otherwise.
 */
KELOCONTROLS_EXPORT QString TransferItem(const QString &source, const QString &destination, bool copy);

/**
 * Copies or moves the file @p source into the folder @p destination, under
 * its own name. An existing file of that name is replaced only after
 * ConfirmFileReplace() answers Yes; a file transferred into its own folder
 * takes UniqueCopyFilePath() without a question (a move then renames it to
 * "Copy (2) of name"). Answers the target path, or "" when the user
 * declined; failures of the file system keep the answer.
 */
KELOCONTROLS_EXPORT QString TransferFile(const QString &source, const QString &destination, bool copy);

/**
 * Copies or moves the folder @p source into the folder @p destination,
 * under its own name. @p destination equal to @p source shows
 * ShowCopySameFolderError() and answers "". An existing folder of the
 * target's name is asked about with ConfirmFolderReplace(): Cancel answers
 * ""; a copy merges into it, replacing files of the same name on Yes and
 * keeping them on No; a move then moves nothing at all. A folder transferred
 * into its own parent takes UniqueCopyFolderPath(). Otherwise the target
 * path is answered, whatever the file system did.
 */
KELOCONTROLS_EXPORT QString TransferFolder(const QString &source, const QString &destination, bool copy);

/// "parent/New folder", else the first free of "New folder (2)", "New folder (3)" ... (only folders count).
KELOCONTROLS_EXPORT QString UniqueNewFolderPath(const QString &parent);

/// "parent/name", else the first free of "Copy (2) of name", "Copy (3) of name" ... (only folders count).
KELOCONTROLS_EXPORT QString UniqueCopyFolderPath(const QString &parent, const QString &name);

/// "parent/name", else the first free of "Copy (2) of name", "Copy (3) of name" ... (only files count).
KELOCONTROLS_EXPORT QString UniqueCopyFilePath(const QString &parent, const QString &name);

} // namespace Kelocontrols
