#pragma once

#include <kelocontrols_export.h>

#include <QString>

namespace Kelocontrols {

/**
 * The desktop's trash in the layout Linux desktops share (freedesktop.org),
 * so that file managers list, restore and empty what the file
 * controls put there.
 *
 * An entry on the file system of the home trash ($XDG_DATA_HOME/Trash,
 * by default ~/.local/share/Trash) goes there; an entry on another file
 * system goes to the trash at that file system's top folder: $topdir/.Trash/$uid
 * when $topdir/.Trash is a real folder with the sticky bit, else
 * $topdir/.Trash-$uid (made with mode 0700 when missing). Nothing is ever
 * copied across file systems: the entry is renamed into the trash.
 *
 * Each entry gets a `.trashinfo` file in the trash's info/ folder, written
 * (and created exclusively, which claims the name) before the entry moves
 * into files/ under the same name; the name is the entry's own, or
 * "name.2", "name.3" ... when that is taken. Path= holds the original path
 * percent-encoded ("/" kept), absolute in the home trash and relative to
 * $topdir elsewhere; DeletionDate= the local time as YYYY-MM-DDThh:mm:ss.
 * Should the move fail, the info file is removed again and the entry stays.
 */
class KELOCONTROLS_TESTS_EXPORT DesktopTrash
{
public:
    /// The home trash folder: $XDG_DATA_HOME/Trash, or ~/.local/share/Trash.
    static QString homeTrash();

    /**
     * The trash folder that takes @p path (made when missing), and in
     * @p topDir the folder Path= entries are relative to ("" for the home
     * trash). "" when no trash can be used; @p error then holds the errno.
     */
    static QString trashFor(const QString &path, QString *topDir = nullptr, int *error = nullptr);

    /**
     * Moves the file, folder or symbolic link @p path into its trash. Answers
     * 0, or the errno value of what failed (the entry is then where it was).
     * A mount point cannot be trashed (EBUSY).
     */
    static int moveToTrash(const QString &path);

    /// @p path percent-encoded as a Path= value (its file-name bytes, "/" kept).
    static QByteArray encodePath(const QString &path);
};

} // namespace Kelocontrols
