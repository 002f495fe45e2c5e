#include "CommonFile.h"

#include "FileSystem.h"
#include "RuntimeError.h"

#include <QStringList>

#include <cmath>
#include <limits>

namespace Kelocontrols {

QString DriveTypeName(const DriveInfo &drive)
{
    switch (drive.driveType) {
    case DriveType::Removable:
        return QStringLiteral("Removable Disk");
    case DriveType::Fixed:
        return QStringLiteral("Local Disk");
    case DriveType::Remote:
        if (!drive.isReady)
            return QStringLiteral("Drive Unavailable");
        return drive.driveLetter.isEmpty() ? QStringLiteral("Network Folder") : QStringLiteral("Network Disk");
    case DriveType::CDRom:
        return QStringLiteral("Compact Disk");
    case DriveType::RamDisk:
        return QStringLiteral("RAM Disk");
    default:
        return QStringLiteral("Unknown Disk");
    }
}

QString DriveDisplayName(const DriveInfo &drive)
{
    QString label;
    if (!drive.shareName.isEmpty())
        label = ShareDisplayName(drive.shareName);
    else if (drive.isReady)
        label = (drive.volumeName.isEmpty() ? DriveTypeName(drive) : drive.volumeName) + QLatin1Char(' ');
    if (drive.driveLetter.isEmpty())
        return label;
    return label + QLatin1Char('(') + drive.driveLetter + QLatin1String(":)");
}

QString ShareDisplayName(const QString &share)
{
    const QStringList parts = share.split(QLatin1Char('\\'));
    if (parts.size() < 4)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    return parts[3] + QLatin1String(" on '") + parts[2] + QLatin1String("' ");
}

QString FolderDisplayName(const FolderInfo &folder, const FileSystem &fileSystem)
{
    if (!folder.name.isEmpty())
        return folder.name;
    // An empty name marks the root of a drive, which is shown as the drive.
    try {
        if (!fileSystem.driveExists(folder.path))
            return QStringLiteral("Unknown drive or folder");
        return DriveDisplayName(fileSystem.getDrive(folder.path));
    } catch (const std::exception &) {
        // The caption is never worth an error: a failed look-up leaves it empty.
        return QString();
    }
}

QString FolderDisplayName(const FolderInfo &folder)
{
    return FolderDisplayName(folder, FileSystem::instance());
}

QString FolderDisplayName(const QString &path, const FileSystem &fileSystem)
{
    return FolderDisplayName(fileSystem.folder(path), fileSystem);
}

QString FolderDisplayName(const QString &path)
{
    return FolderDisplayName(path, FileSystem::instance());
}

qint32 SizeInKB(double bytes)
{
    if (bytes == 0)
        return 0;
    if (bytes >= 1 && bytes <= 1023)
        return 1;
    const double kilobytes = std::floor((bytes + 1023) / 1024);
    if (!(kilobytes >= std::numeric_limits<qint32>::min() && kilobytes <= std::numeric_limits<qint32>::max()))
        throw RuntimeError(ErrorNumber::Overflow);
    return qint32(kilobytes);
}

QString StripAtNull(const QString &text)
{
    const qsizetype nul = text.indexOf(QChar(u'\0'));
    return nul < 0 ? text : text.left(nul);
}

} // namespace Kelocontrols
