#pragma once

#include <kelocontrols_export.h>

#include <QPixmap>
#include <QString>

namespace Kelocontrols {

/**
 * The pictures of files, folders and drives for the file controls' image
 * lists, as pixmaps: no widget in between.
 *
 * Every answer is square, @p size pixels (16 and 32 are the controls'
 * sizes; any positive size works), on a transparent ground, and with
 * @p ghosted washed out the way a hidden item looks (ghostImage()). The
 * icons come from the icon theme through IconLookup, with a painted
 * last resort, so a valid request never answers a null pixmap.
 *
 * A picture depends on what its image key stands for, never on one entry
 * that happens to need it first: a file's picture comes from its name
 * (its type), so a name with nothing on disk gets the same picture as a
 * real file of that type; every folder gets the folder picture, a drive the
 * picture of its drive type.
 */
class KELOCONTROLS_EXPORT FileIconProvider
{
public:
    /// The fixed keys that fixedPicture() answers.
    static inline const QString SortUp = QStringLiteral("SortUp");
    static inline const QString SortDown = QStringLiteral("SortDown");
    static inline const QString DriveUnavailable = QStringLiteral("Drive Unavailable");
    static inline const QString FolderUnavailable = QStringLiteral("FolderUnavailable");
    static inline const QString MyComputer = QStringLiteral("My Computer");
    static inline const QString MyFolders = QStringLiteral("My Folders");

    /// The picture of a file named @p fileName (a bare name or a path; only the name counts).
    static QPixmap file(const QString &fileName, int size, bool ghosted = false);
    /// The folder picture, or its open form.
    static QPixmap folder(int size, bool open = false, bool ghosted = false);
    /// The picture of a drive of type @p driveType (a DriveType code).
    static QPixmap drive(int driveType, int size, bool ghosted = false);
    /**
     * The picture of whatever is at @p path (file, drive root or folder);
     * null when nothing is there. @p typeKey, when given, receives the image
     * key the controls keep it under: the extension for a file, the drive
     * type name for a drive root, the folder type text for a folder, "" for
     * nothing.
     */
    static QPixmap forPath(
        const QString &path, int size, bool open = false, bool ghosted = false, QString *typeKey = nullptr);
    /// The picture of a fixed key (see the constants above); null for any other key.
    static QPixmap fixedPicture(const QString &key, int size);
    /// @p picture washed out as a hidden item shows.
    static QPixmap ghost(const QPixmap &picture);
};

} // namespace Kelocontrols
