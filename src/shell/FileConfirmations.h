#pragma once

#include <kelocontrols_export.h>

#include <QString>

namespace Kelocontrols {

/**
 * @file
 * The library's fixed confirmation and error boxes around copying, moving,
 * renaming and deleting. Each shows its box through MsgBox() and answers the
 * button pressed (1 OK, 6 Yes, 7 No, 2 Cancel). Texts break lines with CR-LF.
 */

/**
 * "Confirm File Replace", Yes/No with exclamation mark (52): names the
 * existing file @p target and shows its size and modification date above
 * those of @p source. Sizes are plain decimal bytes, dates in the general
 * date format; a file that cannot be looked at shows size 0 and no date.
 */
KELOCONTROLS_EXPORT int ConfirmFileReplace(const QString &source, const QString &target);

/// "Confirm Folder Replace", Yes/No/Cancel with exclamation mark (51), for the folder @p name.
KELOCONTROLS_EXPORT int ConfirmFolderReplace(const QString &name);

/// "Confirm Folder Delete", Yes/No with exclamation mark (52), for the folder @p name.
KELOCONTROLS_EXPORT int ConfirmFolderDelete(const QString &name);

/// "Confirm Folder Delete" for a read-only folder @p name, Yes/No with exclamation mark (52).
KELOCONTROLS_EXPORT int ConfirmReadOnlyFolderDelete(const QString &name);

/// "Folder Not Accessible", OK with stop sign (16): the folder @p name (or path) was moved or removed.
KELOCONTROLS_EXPORT int ShowFolderNotAccessible(const QString &name);

/// "Rename", OK with stop sign (16): the characters a file name cannot contain.
KELOCONTROLS_EXPORT int ShowInvalidNameChars();

/// "Error copying file or folder", OK with stop sign (16): @p name was dropped or pasted onto itself.
KELOCONTROLS_EXPORT int ShowCopySameFolderError(const QString &name);

} // namespace Kelocontrols
