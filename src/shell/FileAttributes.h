#pragma once

#include <kelocontrols_export.h>

#include <QByteArray>
#include <QString>

namespace Kelocontrols {

/**
 * @file
 * Writing the two attributes a user may switch: read-only and hidden.
 *
 * Reading them is FileSystem::entry()'s job (FileEntry::attributes); these
 * functions change them on disk the way Linux file managers understand
 * them:
 * - read-only is the owner's write permission bit: setting read-only
 *   clears it, clearing read-only sets it, and every other mode bit stays.
 *   For a symbolic link the bit of its target changes, as it is the
 *   target's bit that is read.
 * - hidden is the name being listed in the ".hidden" file of the item's
 *   folder. That file is rewritten atomically (a new file in the same
 *   folder, renamed over the old one), keeping its other lines byte for
 *   byte, its permission bits and, where allowed, its owner. A name that
 *   begins with "." is hidden by itself and stays hidden whatever is
 *   written.
 *
 * Paths reach the system through FileNameCodec, so names that are not
 * UTF-8 work. Failures raise RuntimeError: PathNotFound (76) for a missing
 * item, PermissionDenied (70) when the system refuses the change (also for
 * a read-only file system), InvalidProcedureCall (5) for a name that a
 * ".hidden" file cannot hold.
 */
namespace FileAttributes {

/// Sets (@p readOnly) or clears the read-only attribute of @p path; nothing is written when it already is so.
KELOCONTROLS_EXPORT void setReadOnly(const QString &path, bool readOnly);

/**
 * Lists @p path in (@p hidden) or removes it from its folder's ".hidden"
 * file. Nothing is written when the file already says so. Adding appends
 * one line with the line ending the file already uses; removing drops
 * every line naming the item (trailing blanks and CR ignored, as readers
 * ignore them); a file left without any byte is removed. Raises
 * InvalidProcedureCall for "/" and, when hiding, for a name a line cannot
 * hold (one with a line break, or ending in a blank, tab or CR).
 */
KELOCONTROLS_EXPORT void setHidden(const QString &path, bool hidden);

/**
 * Writes the read-only (1) and hidden (2) bits of @p attributes to
 * @p path; the other bits are ignored, as they cannot be written. Each
 * attribute is written only when it differs from what is on disk.
 */
KELOCONTROLS_EXPORT void setAttributes(const QString &path, int attributes);

/**
 * The content of a ".hidden" file with @p name (bytes) added or removed
 * as setHidden() describes; @p content when there is nothing to change.
 */
KELOCONTROLS_EXPORT QByteArray editedHiddenList(const QByteArray &content, const QByteArray &name, bool hidden);

} // namespace FileAttributes

} // namespace Kelocontrols
