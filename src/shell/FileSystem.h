#pragma once

#include <kelocontrols_export.h>

#include "DriveInfo.h"
#include "FileEntry.h"
#include "FolderContents.h"
#include "FolderInfo.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <optional>

namespace Kelocontrols {

/**
 * The library's file-system layer: every question the controls put about
 * drives, folders and files goes through here.
 *
 * One instance serves the process (instance()); further instances with
 * their own Probes let tests replace the mount table, the readiness test
 * and the device look-ups with fakes.
 *
 * @par Drives
 * The drives are the mounted volumes of /proc/self/mountinfo, read afresh on
 * every call so that mounts and unmounts show at once. Left out are:
 * pseudo file systems (proc, sysfs, cgroup, devpts ...), tmpfs mounts under
 * /dev, /run, /sys and /proc (system plumbing), squashfs images under /snap,
 * and mount points that are not folders (bind-mounted files). A mount point
 * mounted over again is listed once, with the top mount, at the place of its
 * first appearance; otherwise the kernel's order is kept.
 *
 * @par Drive type
 * RAM disk for tmpfs/ramfs; CD-ROM for iso9660/udf; remote for network file
 * systems (nfs, cifs, sshfs, 9p, ceph ...); removable for a block device
 * whose sysfs "removable" flag (or its parent disk's) is 1; fixed for any
 * other block device (source under /dev/) or local disk file system
 * (ext4, xfs, btrfs, vfat, ntfs, zfs, overlay ...); unknown otherwise.
 *
 * @par Volume name
 * Linux has no drive letters, so the volume name is what tells mounts apart
 * in captions. It is the file-system label (a /dev/disk/by-label entry that
 * resolves to the device) when the mount shows the whole file system. A
 * mount of part of a file system (a bind mount or btrfs subvolume, whose
 * mountinfo root is not "/") and an unlabelled volume are named after their
 * mount point: its last component ("/mnt/backup" gives "backup"), "Root" for
 * "/". Should such a derived name equal another drive's volume name, the
 * full mount point is used instead ("/var/backup").
 *
 * @par Share name
 * Network drives give their source in "\\server\share" form: "//srv/docs"
 * becomes "\\srv\docs", "srv:/export/docs" becomes "\\srv\export/docs",
 * "user@host:/p" becomes "\\host\p", "https://host/dav" becomes "\\host\dav".
 * Local drives, and network sources of no such form, have an empty share name.
 *
 * Paths are compared exactly (Linux file names are case-sensitive), after
 * cleaning: relative paths are made absolute against the current folder,
 * "." and ".." and doubled or trailing "/" are removed.
 *
 * @par Files and folders
 * listFolder() and entry() describe entries as FileEntry records. Every path
 * reaches the system through FileNameCodec::encode(), and names come back
 * through FileNameCodec::decode(), so names that are not valid UTF-8 survive
 * the round trip. Attributes:
 * - ReadOnly when the owner's write bit is clear (of the target, for a link).
 * - Hidden when the name begins with "." or is a line of the folder's
 *   ".hidden" file (blanks and a CR at the end of a line are ignored).
 * - System for what is neither a regular file nor a folder, nor a link to
 *   one: devices, sockets, FIFOs and broken links (a link whose target is
 *   missing or unreachable cannot be opened as a file or folder); and for
 *   folders that are the mount points of pseudo file systems (/proc, /sys,
 *   /dev, /dev/pts ...).
 * - Directory for folders and links to folders.
 * - Archive for regular files and links to them, as a fresh file carries it
 *   on Windows.
 * - Alias for every symbolic link, broken or not.
 * A link is described by its target (size, dates); a broken link by itself.
 * The creation time is the birth time where the file system records it
 * (statx); elsewhere it is the modification time and createdKnown is false.
 */
class KELOCONTROLS_EXPORT FileSystem
{
public:
    /// The system look-ups behind the drive list, each replaceable.
    struct Probes
    {
        /// The mount table to read.
        QString mountInfoPath;
        /// True when a mount point is something other than a folder (a bind-mounted file).
        std::function<bool(const QString &mountPoint)> isFileMount;
        /// Fills the volume's size and free space in bytes; false when the volume does not answer.
        std::function<bool(const QString &mountPoint, qint64 &totalBytes, qint64 &freeBytes)> statVolume;
        /// The file-system label of a device path, or "".
        std::function<QString(const QString &device)> volumeLabel;
        /// Whether the block device "major:minor" is removable.
        std::function<bool(const QString &majorMinor)> isRemovable;

        /// The real system: /proc/self/mountinfo, statvfs, /dev/disk/by-label, /sys.
        static Probes system();
        /// These probes with every empty member taken from system().
        Probes completed() const;
    };

    /// A file system over the real system.
    FileSystem();
    /// A file system over the given probes; empty members fall back to the system ones.
    explicit FileSystem(Probes probes);

    /// The process-wide instance, created on first use.
    static FileSystem &instance();

    /// The mounted drives; raises RuntimeError (PathNotFound) when the mount table cannot be read.
    QList<DriveInfo> drives() const;

    /// Parses mountinfo text into drives (see the class notes for the rules); malformed lines are skipped.
    static QList<DriveInfo> parseMountInfo(const QByteArray &text, const Probes &probes);

    /// True when @p path is the root (mount point) of a listed drive, or the share name of one.
    bool driveExists(const QString &path) const;

    /**
     * The drive whose root (or share name) is @p path; for any other
     * existing path, the drive that holds it (driveOf()). Raises
     * RuntimeError (PathNotFound) for an empty or missing path.
     */
    DriveInfo getDrive(const QString &path) const;

    /**
     * The drive holding @p path: the mount whose root is the longest prefix
     * of the path, symbolic links resolved when the path exists. Raises
     * RuntimeError (PathNotFound) for an empty path or when no drive holds it.
     */
    DriveInfo driveOf(const QString &path) const;

    /// Name and cleaned path of the folder @p path, and whether it exists; the name is taken from the path alone.
    FolderInfo folder(const QString &path) const;

    /// The size in bytes of the file @p path; raises RuntimeError (FileNotFound) when it is missing or a folder.
    qint64 fileSize(const QString &path) const;

    /// @p path absolute and cleaned as the class notes say; "" for "".
    static QString cleanPath(const QString &path);

    /**
     * The sub-folders and files of the folder @p path, each list sorted by
     * name without regard to case, ties broken by the exact name; "." and
     * ".." are left out, and so is an entry that vanishes while it is read.
     * Raises RuntimeError PathNotFound (76) when the folder is missing or
     * not a folder, PermissionDenied (70) when it cannot be read.
     */
    FolderContents listFolder(const QString &path) const;
    /**
     * listFolder() for a search: an entry the directory reports as neither
     * a folder nor of unknown kind is looked at only when @p wanted accepts
     * its name, so a folder of many files that do not match costs no more
     * than reading its names.
     */
    FolderContents listFolder(const QString &path, const std::function<bool(const QString &name)> &wanted) const;

    /// The entry for one path (attributes as in listFolder(), its folder's ".hidden" included); nullopt when missing.
    std::optional<FileEntry> entry(const QString &path) const;

    /// True when @p path is an existing file: anything but a folder or a link to one (broken links included).
    bool fileExists(const QString &path) const;

    /// True when @p path is an existing folder or a link to one.
    bool folderExists(const QString &path) const;

    /**
     * The number of files directly in the folder @p folderPath (everything
     * listFolder() would put in its file list); 0 when it cannot be read.
     */
    int fileCount(const QString &folderPath) const;

    /**
     * The extension of the last component of @p path: the text after its
     * last "." ("a.tar.gz" gives "gz", ".bashrc" gives "bashrc"); "" when it
     * has no "." or ends with one.
     */
    static QString extensionName(const QString &path);

    /// The cleaned path of the folder holding @p path; "" for "/" and for "".
    static QString parentFolderName(const QString &path);

    /// @p folder and @p name joined by one "/"; @p name alone when @p folder is "".
    static QString buildPath(const QString &folder, const QString &name);

    /// The label of @p device from a by-label folder of symbolic links (such as /dev/disk/by-label), or "".
    static QString labelFromDirectory(const QString &labelDirectory, const QString &device);

    /// Whether the block device "major:minor" is removable, read below the sysfs root @p sysRoot (such as /sys).
    static bool removableFromSysfs(const QString &sysRoot, const QString &majorMinor);

    /// The Windows-style share name "\\server\share" of a network mount source, or "".
    static QString shareNameFromSource(const QString &source);

private:
    Probes m_probes;
};

} // namespace Kelocontrols
