#pragma once

#include <kelocontrols_export.h>

#include <QImage>
#include <QPixmap>
#include <QString>
#include <QtGlobal>

class QWidget;

namespace Kelocontrols {

class PictureBox;

/**
 * @file
 * The shell services around a file's icon: its picture for the controls'
 * image lists, the washed-out picture of a hidden item, and opening or
 * printing a file with the application associated with its type.
 */

/// The pixel size of a large (32) and of a small (16) shell icon.
namespace FileIconSize {
constexpr int Large = 32;
constexpr int Small = 16;
} // namespace FileIconSize

/// The result codes of shellExecute(), numbered like the Windows shell's.
namespace ShellResult {
constexpr int Success = 42; ///< the program was started or the file handed to the printer
constexpr int OutOfResources = 0; ///< no process could be made (fork failed for want of memory or processes)
constexpr int FileNotFound = 2; ///< the file does not exist (its folder does), or the path is empty
constexpr int PathNotFound = 3; ///< the file's folder does not exist, or a part of the path is not a folder
constexpr int AccessDenied = 5; ///< the path cannot be searched, or (printing) the file cannot be read
constexpr int BadFormat = 11; ///< the handler's program or `lp` was found but could not be executed
constexpr int Timeout = 28; ///< printing: `lp` did not finish in time (it is stopped)
constexpr int PrintFailed = 29; ///< printing: `lp` ran and reported a failure
/// No launchable application handles the file's type or any of its parent types
/// (entries whose program is missing or whose Exec line is malformed do not count);
/// printing: no `lp` on $PATH, or the path is a folder.
constexpr int NoAssociation = 31;
} // namespace ShellResult

/**
 * Draws the shell icon of @p path into @p picture and tells the key under
 * which the controls keep that icon.
 *
 * @p typeKey becomes: for an existing file its extension without the dot
 * ("" for none; FileSystem::extensionName()); for the root of an existing
 * drive that drive's DriveTypeName() ("Local Disk"); for an existing folder
 * the folder type text ("Folder"). For a path that names none of these
 * @p typeKey becomes "" and @p picture is left untouched.
 *
 * Otherwise the picture box is sized to 32 x 32 pixels (@p large) or
 * 16 x 16 pixels of drawing area, its drawing is cleared and the icon,
 * drawn transparently on a transparent pixmap, becomes its Picture. With
 * @p open a folder shows its open variant.
 */
KELOCONTROLS_EXPORT void DrawFileIcon(
    const QString &path, bool large, PictureBox &picture, QString &typeKey, bool open);

/**
 * The same look-up as DrawFileIcon() without a picture box: the icon of
 * @p path at @p pixelSize (16 or 32; any other positive size works too) on
 * a transparent background, or a null pixmap when the path names nothing
 * (or @p pixelSize is not positive). @p typeKey, when given, receives the
 * key as DrawFileIcon() sets it.
 */
KELOCONTROLS_EXPORT QPixmap fileIconPixmap(const QString &path, int pixelSize, bool open, QString *typeKey = nullptr);

/**
 * Washes an image out towards white, the look of a hidden item.
 *
 * Every pixel whose colour (red, green, blue) is not @p transparent and
 * which is not fully transparent has each of red, green and blue moved
 * halfway to white: new = 255 - (255 - old) / 2, rounded half to even, so
 * black becomes 128, 1 and 2 become 128, 3 becomes 129 and white stays
 * white. The alpha of a changed pixel is kept; the alpha of @p transparent
 * is ignored when comparing. The result has the size of @p image, in
 * ARGB32 format (a null image gives a null image).
 */
KELOCONTROLS_EXPORT QImage ghostImage(const QImage &image, QRgb transparent);

/**
 * Washes the picture of @p picture out (ghostImage()): its Picture and
 * whatever is drawn on its canvas. Pixels of @p transparent stay as they
 * are.
 */
KELOCONTROLS_EXPORT void GhostPicture(PictureBox &picture, QRgb transparent);

/**
 * Opens @p path with the default application of its type, or prints it
 * when @p print, and answers a Windows-style result code: above 32
 * (ShellResult::Success, 42) for success, else one of the ShellResult
 * error codes (see there).
 *
 * Opening: the type is found from the name and, for a regular file whose
 * name does not settle it, its first bytes (as xdg-open does); a folder is
 * inode/directory. The application is the one DesktopAssociations finds
 * for the type (or a parent type), started detached (DetachedLauncher)
 * with the path as its exact bytes (FileNameCodec::encode()).
 *
 * Printing hands the file's bytes to the CUPS `lp` command with the file
 * name as job title and waits for it (PrintSpooler, 5 seconds at most).
 */
KELOCONTROLS_EXPORT int shellExecute(const QString &path, bool print);

/**
 * Opens (or with @p print prints) @p path with its associated application
 * and tells the user of a failure. An empty path does nothing. On a result
 * of 32 or less a message box (OK only, default title) shows
 * "Error <code>: <text> '<path>'", the text being "No application
 * associated with file" for 31, "Unable to find file" for 2 and 3, and
 * "Unable to view file" for any other code. @p window is the owner the
 * request comes from; the box itself goes through MsgBox().
 */
KELOCONTROLS_EXPORT void OpenWithAssociatedApp(const QString &path, QWidget *window, bool print);

} // namespace Kelocontrols
