#include "FileIconProvider.h"

#include "CommonFile.h"
#include "DriveInfo.h"
#include "FileIcon.h"
#include "FileNameCodec.h"
#include "FileSystem.h"
#include "FileTypes.h"
#include "IconLookup.h"
#include "RuntimeError.h"

#include <QMimeType>
#include <QPainter>
#include <QPainterPath>

#include <fcntl.h>
#include <sys/stat.h>

namespace Kelocontrols {

namespace {

using BuiltinIcon = IconLookup::BuiltinIcon;

/// What a path names, the key its icon is kept under, and where the icon comes from.
struct IconTarget
{
    bool exists = false;
    QString typeKey;
    QStringList iconNames;
    BuiltinIcon fallback = BuiltinIcon::File;
};

QStringList driveIconNames(int driveType)
{
    switch (driveType) {
    case DriveType::Removable:
        return {u"drive-removable-media"_qs, u"media-removable"_qs, u"drive-harddisk"_qs};
    case DriveType::Remote:
        return {u"folder-remote"_qs, u"network-server"_qs, u"drive-harddisk"_qs};
    case DriveType::CDRom:
        return {u"drive-optical"_qs, u"media-optical"_qs, u"drive-harddisk"_qs};
    case DriveType::RamDisk:
        return {u"media-memory"_qs, u"drive-harddisk"_qs};
    default:
        return {u"drive-harddisk"_qs};
    }
}

IconTarget fileTarget(const QString &path)
{
    IconTarget target;
    target.exists = true;
    target.typeKey = FileSystem::extensionName(path);
    // By name only: a listing must not open its files, and every file of one
    // extension shares one image key, so they must share one picture too.
    const QMimeType type = FileTypes::instance().mimeTypeForFileName(path);
    target.iconNames = QStringList{type.iconName(), type.genericIconName(), u"application-x-generic"_qs};
    target.iconNames.removeAll(QString());
    target.fallback = BuiltinIcon::File;
    return target;
}

// Only a mount point can be the root of a drive. The kernel tells (statx,
// Linux 5.8 on) without the mount table being read and every volume asked,
// which matters when a listing asks for each of its folders.
bool mayBeMountRoot(const QString &path)
{
    struct statx info;
    if (::statx(AT_FDCWD, FileNameCodec::encode(path).constData(), 0, STATX_TYPE, &info) != 0) {
        return true;
    }
    if (!(info.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT)) {
        return true; // an older kernel: the mount table decides
    }
    return (info.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

IconTarget lookUpTarget(const QString &path, bool open)
{
    IconTarget target;
    if (path.isEmpty()) {
        return target;
    }
    // Drawing never raises: a path that cannot be examined names nothing.
    try {
        const FileSystem &fileSystem = FileSystem::instance();
        if (fileSystem.fileExists(path)) {
            return fileTarget(path);
        }
        const bool isFolder = fileSystem.folderExists(path);
        if ((isFolder ? mayBeMountRoot(path) : path.startsWith(u"\\\\"_qs)) && fileSystem.driveExists(path)) {
            const DriveInfo drive = fileSystem.getDrive(path);
            target.exists = true;
            target.typeKey = DriveTypeName(drive);
            target.iconNames = driveIconNames(drive.driveType);
            target.fallback = BuiltinIcon::Drive;
            return target;
        }
        if (isFolder) {
            target.exists = true;
            target.typeKey = FileTypes::instance().folderTypeText();
            target.iconNames = open ? QStringList{u"folder-open"_qs, u"folder"_qs} : QStringList{u"folder"_qs};
            target.fallback = open ? BuiltinIcon::OpenFolder : BuiltinIcon::Folder;
        }
    } catch (const RuntimeError &) {
        return IconTarget();
    }
    return target;
}

// A colour no icon uses, handed to the ghosting as "leave alone": the icons
// lie on a transparent ground, which the ghosting skips anyway.
constexpr QRgb GhostTransparent = qRgb(255, 0, 255);

QPixmap pictureOf(const IconTarget &target, int size, bool ghosted)
{
    if (!target.exists || size < 1) {
        return {};
    }
    const QPixmap plain = IconLookup::instance().pixmapOrBuiltin(target.iconNames, target.fallback, size);
    return ghosted ? FileIconProvider::ghost(plain) : plain;
}

QPixmap sortArrow(bool up)
{
    QPixmap pixmap(FileIconSize::Small, FileIconSize::Small);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(96, 96, 96));
    QPainterPath triangle;
    if (up) {
        triangle.moveTo(8, 4);
        triangle.lineTo(13, 11);
        triangle.lineTo(3, 11);
    } else {
        triangle.moveTo(3, 5);
        triangle.lineTo(13, 5);
        triangle.lineTo(8, 12);
    }
    triangle.closeSubpath();
    painter.drawPath(triangle);
    return pixmap;
}

QPixmap unavailable(bool drive, int size)
{
    const QStringList names = drive ? QStringList{u"drive-harddisk"_qs} : QStringList{u"folder"_qs};
    QPixmap pixmap
        = IconLookup::instance().pixmapOrBuiltin(names, drive ? BuiltinIcon::Drive : BuiltinIcon::Folder, size);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    // A red cross over the lower right quarter: the item is there but cannot be reached.
    const qreal s = size;
    painter.setPen(QPen(QColor(200, 0, 0), std::max(1.5, s / 10.0), Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(s * 0.55, s * 0.55), QPointF(s * 0.92, s * 0.92));
    painter.drawLine(QPointF(s * 0.92, s * 0.55), QPointF(s * 0.55, s * 0.92));
    return pixmap;
}

} // namespace

QPixmap FileIconProvider::file(const QString &fileName, int size, bool ghosted)
{
    return pictureOf(fileTarget(fileName), size, ghosted);
}

QPixmap FileIconProvider::folder(int size, bool open, bool ghosted)
{
    IconTarget target;
    target.exists = true;
    target.iconNames = open ? QStringList{u"folder-open"_qs, u"folder"_qs} : QStringList{u"folder"_qs};
    target.fallback = open ? BuiltinIcon::OpenFolder : BuiltinIcon::Folder;
    return pictureOf(target, size, ghosted);
}

QPixmap FileIconProvider::drive(int driveType, int size, bool ghosted)
{
    IconTarget target;
    target.exists = true;
    target.iconNames = driveIconNames(driveType);
    target.fallback = BuiltinIcon::Drive;
    return pictureOf(target, size, ghosted);
}

QPixmap FileIconProvider::forPath(const QString &path, int size, bool open, bool ghosted, QString *typeKey)
{
    const IconTarget target = lookUpTarget(path, open);
    if (typeKey) {
        *typeKey = target.typeKey;
    }
    return pictureOf(target, size, ghosted);
}

QPixmap FileIconProvider::fixedPicture(const QString &key, int size)
{
    if (size < 1) {
        return {};
    }
    if (key == SortUp || key == SortDown) {
        const QPixmap arrow = sortArrow(key == SortUp);
        return size == FileIconSize::Small ? arrow
                                           : arrow.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    if (key == DriveUnavailable || key == FolderUnavailable) {
        return unavailable(key == DriveUnavailable, size);
    }
    if (key == MyComputer) {
        return IconLookup::instance().pixmapOrBuiltin({u"computer"_qs, u"drive-harddisk"_qs}, BuiltinIcon::Drive, size);
    }
    if (key == MyFolders) {
        return IconLookup::instance().pixmapOrBuiltin(
            {u"folder-favorites"_qs, u"user-bookmarks"_qs, u"folder"_qs}, BuiltinIcon::Folder, size);
    }
    return {};
}

QPixmap FileIconProvider::ghost(const QPixmap &picture)
{
    return picture.isNull() ? picture : QPixmap::fromImage(ghostImage(picture.toImage(), GhostTransparent));
}

} // namespace Kelocontrols
