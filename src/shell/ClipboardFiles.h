#pragma once

#include <kelocontrols_export.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

class QMimeData;

namespace Kelocontrols {

/**
 * @file
 * File lists on the system clipboard, readable by the file controls and by
 * the desktop's file managers alike.
 *
 * A list is offered in three forms at once:
 * - `application/x-kelocontrols-hdrop`: the classic file-drop block, a
 *   20-byte header (list offset 20, drop point 0/0, non-client flag 0,
 *   wide-character flag 0, each a little-endian 32-bit value) followed by
 *   each path's file-name bytes and a NUL, and one more NUL; nothing after.
 * - `text/uri-list`: one `file://` URI per path, each ended by CR-LF.
 * - `x-special/gnome-copied-files`: "copy", then each URI on a line of its
 *   own (LF), as GNOME's and KDE's file managers paste it.
 * URIs carry the file-name bytes percent-encoded, so names that are not
 * UTF-8 survive all three forms.
 */

/// The MIME type of the file-drop block.
KELOCONTROLS_EXPORT extern const char *const kHdropMimeType;

/**
 * Empties the clipboard and puts @p paths on it in all three forms. An
 * empty list still puts a valid, empty list. False when there is no
 * clipboard (no QGuiApplication).
 */
KELOCONTROLS_EXPORT bool ClipboardPutFiles(const QStringList &paths);

/**
 * Appends the clipboard's file list to @p paths in its order: from the
 * file-drop block when there is one, else from `text/uri-list`, else from
 * `x-special/gnome-copied-files` (only local `file:` URIs count). Paths
 * longer than 1,023 characters are cut to that length. False, with
 * @p paths untouched, when the clipboard holds no list or a list of no
 * entries.
 */
KELOCONTROLS_EXPORT bool ClipboardGetFiles(QStringList &paths);

/// The file-drop block of @p paths, as ClipboardPutFiles() puts it.
KELOCONTROLS_EXPORT QByteArray fileDropBlock(const QStringList &paths);

/// The mime data carrying @p paths in the three forms; the caller owns it.
KELOCONTROLS_EXPORT QMimeData *fileListMimeData(const QStringList &paths);

/// The paths of @p data (its block, else its URI list, else its GNOME list) in order; empty when it has none.
KELOCONTROLS_EXPORT QStringList filesOfMimeData(const QMimeData *data);

} // namespace Kelocontrols
