#pragma once

#include <kelocontrols_export.h>

#include <QDialog>
#include <QString>

#include <memory>

/**
 * The properties of one file or folder: its icon and name, type, location,
 * size (or, for a folder, what it contains), the three dates, and the
 * Read-only and Hidden attributes, which the user may switch.
 *
 * ShowFile() fills the dialog for a path and shows it modally; OK applies
 * the attributes and closes, Cancel closes without writing, Apply writes
 * and stays open. Both file controls open it through
 * Kelocontrols::ShowFileProperties().
 *
 * @par Widgets
 * The inner widgets carry these objectNames so hosts and tests can find
 * them: `picFile` (a Kelocontrols::PictureBox with the 32-pixel shell
 * icon), `labProperty_0` to `labProperty_6` (name, "Type of file:",
 * "Location:", "Size:", "Created:", "Modified:", "Accessed:"),
 * `chkProperty_0` "Read-only" and `chkProperty_1` "Hidden", the divider
 * lines `labDividers_0` to `labDividers_2`, and the buttons `Commands_0`
 * "OK", `Commands_1` "Cancel" and `Commands_2` "Apply". The value labels
 * show their texts as plain text, so a name such as "<b>x</b>" reads as
 * written.
 *
 * @par Texts
 * - Size: the kilobytes (0 for an empty file, else rounded up, no
 *   separators), "KB (", the bytes with the locale's group separators, and
 *   " bytes)": "0KB (0 bytes)", "1KB (1 bytes)", "2KB (1,025 bytes)".
 * - Contents of a folder (direct files and sub-folders only):
 *   "Contains: Nothing." when empty, else the files part ("No files.",
 *   "1 file.", "12 files.") and the folders part (" No folders.",
 *   " 1 folder.", " 3 folders."): "Contains: 12 files. 1 folder.".
 * - Dates: the date alone in the locale's long format; the tooltip of each
 *   date shows date and time in the general date format.
 *
 * @par Attributes
 * Apply reads the item's attributes and writes the read-only flag as the
 * box says, then reads them again and writes the hidden flag; every other
 * bit stays, and a flag that already is as the box says is not written at
 * all (Kelocontrols::FileAttributes). A name beginning with "." is always
 * hidden: its Hidden box is checked and disabled.
 *
 * @par Failures
 * A path that is neither a file nor a folder shows only the box
 * "Can not find '<path>'" (OK with information, style 64). ShowFile()
 * raises Kelocontrols::RuntimeError when the item cannot be read (a folder
 * whose contents cannot be listed: PermissionDenied, 70). A write refused
 * by OK or Apply is told in a box with the error's text (style 16) and the
 * dialog stays open.
 */
class KELOCONTROLS_EXPORT frmProperties : public QDialog
{
    Q_OBJECT
public:
    /// The dialog, titled "Properties" and empty until ShowFile().
    explicit frmProperties(QWidget *parent = nullptr);
    ~frmProperties() override;

    /**
     * Shows the properties of the file or folder at @p Path modally and
     * returns when the user closes the dialog. A non-empty @p DisplayName
     * replaces the item's own name in the title ("<name> Properties") and
     * in the name line.
     */
    Q_INVOKABLE void ShowFile(const QString &Path, const QString &DisplayName = QString());

private:
    class Private;
    std::unique_ptr<Private> const d;
};

namespace Kelocontrols {

/**
 * Opens the properties dialog for @p path (frmProperties::ShowFile()) and
 * waits until it is closed. What ShowFile() raises is told to the user in
 * a box with the error's text (style 16) instead, so the caller, usually a
 * menu command, needs no error handling.
 */
KELOCONTROLS_EXPORT void ShowFileProperties(
    const QString &path, const QString &displayName = QString(), QWidget *parent = nullptr);

} // namespace Kelocontrols
