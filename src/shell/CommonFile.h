#pragma once

#include <kelocontrols_export.h>

#include "DriveInfo.h"
#include "FolderInfo.h"

#include <QString>
#include <QtGlobal>

namespace Kelocontrols {

class FileSystem;

/**
 * @file
 * The texts the controls show for drives, folders and sizes. Every control
 * takes its drive and folder captions from here, so a drive reads the same
 * everywhere.
 */

/**
 * The name of a drive's type: "Removable Disk", "Local Disk", "Compact Disk",
 * "RAM Disk", "Unknown Disk"; a network drive is "Network Disk" when ready
 * with a letter, "Network Folder" when ready without one, and
 * "Drive Unavailable" when not ready. Only network drives are asked whether
 * they are ready.
 */
KELOCONTROLS_EXPORT QString DriveTypeName(const DriveInfo &drive);

/**
 * The caption of a drive: the share's display name for a network share,
 * else (when ready) the volume name or the type name followed by one blank,
 * else nothing; then "(X:)" when the drive has a letter. "System (C:)",
 * "Local Disk (C:)", "(A:)" for an empty floppy drive, "docs on 'srv' (Z:)".
 * Raises what ShareDisplayName() raises.
 */
KELOCONTROLS_EXPORT QString DriveDisplayName(const DriveInfo &drive);

/**
 * The caption of a share "\\server\share": "share on 'server' ", with a
 * trailing blank so a drive letter can follow directly. Raises RuntimeError
 * (SubscriptOutOfRange) when the text has fewer than four "\"-separated parts.
 */
KELOCONTROLS_EXPORT QString ShareDisplayName(const QString &share);

/**
 * The caption of a folder: its name, or for the root of the tree (empty
 * name) the caption of the drive it is the root of, looked up in
 * @p fileSystem; "Unknown drive or folder" when no drive has that root.
 * Raises nothing: when the drive look-up fails, the answer is "".
 */
KELOCONTROLS_EXPORT QString FolderDisplayName(const FolderInfo &folder, const FileSystem &fileSystem);

/// FolderDisplayName() with the process-wide file system.
KELOCONTROLS_EXPORT QString FolderDisplayName(const FolderInfo &folder);

/// The caption of the folder at @p path (see FolderDisplayName()); raises nothing.
KELOCONTROLS_EXPORT QString FolderDisplayName(const QString &path, const FileSystem &fileSystem);

/// FolderDisplayName() of a path with the process-wide file system.
KELOCONTROLS_EXPORT QString FolderDisplayName(const QString &path);

/**
 * A byte count in whole kilobytes, rounded up: 0 gives 0, 1 to 1,023 give 1,
 * from 1,024 on the integer part of (bytes + 1,023) / 1,024, so 1,025 gives 2.
 * Raises RuntimeError (Overflow) when the result does not fit 32 bits
 * (from 2,199,023,254,529 bytes on) or @p bytes is not a number.
 */
KELOCONTROLS_EXPORT qint32 SizeInKB(double bytes);

/// @p text up to its first NUL character, or whole when it has none.
KELOCONTROLS_EXPORT QString StripAtNull(const QString &text);

} // namespace Kelocontrols
