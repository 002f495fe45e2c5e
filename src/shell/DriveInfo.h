#pragma once

#include <kelocontrols_export.h>

#include <QString>
#include <QtGlobal>

namespace Kelocontrols {

/// The drive-type codes of DriveInfo::driveType.
namespace DriveType {
constexpr int Unknown = 0; ///< none of the kinds below
constexpr int Removable = 1; ///< a removable block device (USB stick, card reader)
constexpr int Fixed = 2; ///< a local disk
constexpr int Remote = 3; ///< a network file system (NFS, SMB, sshfs ...)
constexpr int CDRom = 4; ///< an optical disc (iso9660, udf)
constexpr int RamDisk = 5; ///< a file system in memory (tmpfs, ramfs)
} // namespace DriveType

/**
 * One drive as the naming services see it.
 *
 * A plain value: FileSystem fills it from the mount table, and code that
 * only names drives can be handed a record of any shape, a drive letter
 * included, without a real drive behind it.
 */
struct KELOCONTROLS_EXPORT DriveInfo
{
    int driveType = DriveType::Unknown; ///< one of the DriveType codes
    bool isReady = false; ///< the volume answers (statvfs on its root succeeds)
    QString driveLetter; ///< "C" and the like; always empty for drives read from Linux mounts
    QString shareName; ///< "\\server\share" for a network drive, empty for a local one
    QString volumeName; ///< the caption name of the volume (see FileSystem for how it is chosen)
    QString rootPath; ///< the mount point, e.g. "/home"
    QString fileSystem; ///< the file-system type, e.g. "ext4"
    QString device; ///< the mount source, e.g. "/dev/sda2" or "server:/export"
    qint64 totalSize = 0; ///< bytes in the volume, 0 when not ready
    qint64 freeSpace = 0; ///< bytes available to the user, 0 when not ready

    friend bool operator==(const DriveInfo &, const DriveInfo &) = default;
};

} // namespace Kelocontrols
