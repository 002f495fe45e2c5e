#include "FileSystem.h"

#include "RuntimeError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QUrl>

#include <sys/statvfs.h>

#include <algorithm>
#include <optional>

namespace Kelocontrols {

namespace {

/// One line of the mount table, paths already unescaped.
struct MountEntry
{
    QString majorMinor; ///< device number "8:2"
    QString fsRoot; ///< the folder of the file system shown at the mount point ("/" for all of it)
    QString mountPoint;
    QString fsType;
    QString source;
};

/// File systems that hold no user files: kernel interfaces and helpers.
bool isPseudoFileSystem(const QString &type)
{
    static const QStringList pseudo
        = QStringLiteral("proc sysfs devtmpfs devpts cgroup cgroup2 securityfs debugfs tracefs pstore bpf mqueue "
                         "hugetlbfs configfs fusectl binfmt_misc autofs efivarfs selinuxfs rpc_pipefs nsfs sockfs "
                         "pipefs devfs usbfs nfsd fuse.gvfsd-fuse fuse.portal fuse.lxcfs")
              .split(QLatin1Char(' '));
    return pseudo.contains(type);
}

bool isRemoteFileSystem(const QString &type)
{
    static const QStringList remote
        = QStringLiteral("nfs nfs4 cifs smb3 smbfs fuse.sshfs sshfs 9p afs ceph fuse.ceph glusterfs fuse.glusterfs "
                         "davfs fuse.davfs2 fuse.rclone fuse.s3fs lustre ncpfs coda")
              .split(QLatin1Char(' '));
    return remote.contains(type);
}

bool isLocalDiskFileSystem(const QString &type)
{
    static const QStringList local = QStringLiteral(
        "ext2 ext3 ext4 xfs btrfs f2fs vfat msdos exfat ntfs ntfs3 fuseblk zfs overlay jfs reiserfs hfsplus squashfs")
                                         .split(QLatin1Char(' '));
    return local.contains(type);
}

/// True when @p path is @p root or lies below it.
bool isUnder(const QString &path, const QString &root)
{
    return root == QLatin1String("/") || path == root || path.startsWith(root + QLatin1Char('/'));
}

/// Mounts that only serve the running system, not the user: run-time
/// tmpfs areas and the read-only images that snap packages mount.
bool isSystemPlumbing(const MountEntry &entry)
{
    if (entry.fsType == QLatin1String("tmpfs")) {
        for (const char *area : {"/dev", "/run", "/sys", "/proc"}) {
            if (isUnder(entry.mountPoint, QLatin1String(area)))
                return true;
        }
    }
    return entry.fsType == QLatin1String("squashfs") && isUnder(entry.mountPoint, QStringLiteral("/snap"));
}

/// Undoes the octal escapes (\040 for a blank, \134 for a backslash ...) of a mountinfo field.
QString unescapeMountField(const QByteArray &field)
{
    QByteArray bytes;
    bytes.reserve(field.size());
    for (qsizetype i = 0; i < field.size(); ++i) {
        const bool octal = field[i] == '\\' && i + 3 < field.size()
            && std::all_of(field.begin() + i + 1, field.begin() + i + 4, [](char c) { return c >= '0' && c <= '7'; });
        if (octal) {
            bytes += char(((field[i + 1] - '0') << 6) | ((field[i + 2] - '0') << 3) | (field[i + 3] - '0'));
            i += 3;
        } else {
            bytes += field[i];
        }
    }
    return QFile::decodeName(bytes);
}

/// Undoes the "\x20" escapes udev uses in by-label link names.
QString unescapeUdevName(const QString &name)
{
    const QByteArray encoded = QFile::encodeName(name);
    QByteArray bytes;
    for (qsizetype i = 0; i < encoded.size(); ++i) {
        bool ok = false;
        if (encoded[i] == '\\' && i + 3 < encoded.size() && encoded[i + 1] == 'x') {
            const int value = encoded.mid(i + 2, 2).toInt(&ok, 16);
            if (ok) {
                bytes += char(value);
                i += 3;
            }
        }
        if (!ok)
            bytes += encoded[i];
    }
    return QFile::decodeName(bytes);
}

/// One mountinfo line: "ID PARENT MAJ:MIN ROOT MOUNTPOINT OPTIONS [OPTIONAL...] - TYPE SOURCE SUPEROPTIONS".
std::optional<MountEntry> parseMountLine(const QByteArray &line)
{
    const QList<QByteArray> fields = line.trimmed().split(' ');
    const qsizetype separator = fields.indexOf(QByteArray("-"), 6);
    if (separator < 0 || separator + 2 >= fields.size())
        return std::nullopt;
    MountEntry entry{QString::fromLatin1(fields[2]), unescapeMountField(fields[3]), unescapeMountField(fields[4]),
        unescapeMountField(fields[separator + 1]), unescapeMountField(fields[separator + 2])};
    if (!entry.mountPoint.startsWith(QLatin1Char('/')))
        return std::nullopt;
    return entry;
}

/// The mount table's entries, each mount point once with its top mount.
QList<MountEntry> topMounts(const QByteArray &text)
{
    QList<MountEntry> entries;
    QHash<QString, qsizetype> indexOfMountPoint;
    for (const QByteArray &line : text.split('\n')) {
        const std::optional<MountEntry> entry = parseMountLine(line);
        if (!entry)
            continue;
        const auto known = indexOfMountPoint.constFind(entry->mountPoint);
        if (known != indexOfMountPoint.cend()) {
            entries[*known] = *entry;
        } else {
            indexOfMountPoint.insert(entry->mountPoint, entries.size());
            entries.append(*entry);
        }
    }
    return entries;
}

bool isDriveMount(const MountEntry &entry, const FileSystem::Probes &probes)
{
    if (isPseudoFileSystem(entry.fsType) || isSystemPlumbing(entry))
        return false;
    // Only a mount of part of a file system can be a single file; asking
    // just those keeps unreachable network mounts from being stat'ed here.
    return entry.fsRoot == QLatin1String("/") || !probes.isFileMount(entry.mountPoint);
}

int driveTypeOf(const MountEntry &entry, const FileSystem::Probes &probes)
{
    const QString &type = entry.fsType;
    if (type == QLatin1String("tmpfs") || type == QLatin1String("ramfs"))
        return DriveType::RamDisk;
    // Before the removable test: optical drives report removable media too.
    if (type == QLatin1String("iso9660") || type == QLatin1String("udf"))
        return DriveType::CDRom;
    if (isRemoteFileSystem(type))
        return DriveType::Remote;
    const bool blockDevice = !entry.majorMinor.startsWith(QLatin1String("0:"));
    if (blockDevice && probes.isRemovable(entry.majorMinor))
        return DriveType::Removable;
    if (entry.source.startsWith(QLatin1String("/dev/")) || isLocalDiskFileSystem(type))
        return DriveType::Fixed;
    return DriveType::Unknown;
}

QString nameFromMountPoint(const QString &mountPoint)
{
    if (mountPoint == QLatin1String("/"))
        return QStringLiteral("Root");
    return mountPoint.mid(mountPoint.lastIndexOf(QLatin1Char('/')) + 1);
}

/// Replaces derived names that another drive also carries by the full mount point.
void makeDerivedNamesDistinct(QList<DriveInfo> &drives, const QList<bool> &derived)
{
    QHash<QString, int> uses;
    for (const DriveInfo &drive : drives)
        ++uses[drive.volumeName];
    for (qsizetype i = 0; i < drives.size(); ++i) {
        if (derived[i] && uses.value(drives[i].volumeName) > 1)
            drives[i].volumeName = drives[i].rootPath;
    }
}

/// The drive whose root path (or share name, for a "\\server\share" path) is @p path.
std::optional<DriveInfo> driveWithRoot(const QList<DriveInfo> &drives, const QString &path)
{
    const bool share = path.startsWith(QLatin1String("\\\\"));
    const QString key = share ? path : FileSystem::cleanPath(path);
    for (const DriveInfo &drive : drives) {
        if (!key.isEmpty() && key == (share ? drive.shareName : drive.rootPath))
            return drive;
    }
    return std::nullopt;
}

DriveInfo containingDrive(const QList<DriveInfo> &drives, const QString &path)
{
    QString target = FileSystem::cleanPath(path);
    if (target.isEmpty())
        throw RuntimeError(ErrorNumber::PathNotFound);
    const QString canonical = QFileInfo(target).canonicalFilePath();
    if (!canonical.isEmpty())
        target = canonical;
    const DriveInfo *best = nullptr;
    for (const DriveInfo &drive : drives) {
        if (isUnder(target, drive.rootPath) && (!best || drive.rootPath.size() > best->rootPath.size()))
            best = &drive;
    }
    if (!best)
        throw RuntimeError(ErrorNumber::PathNotFound);
    return *best;
}

bool statvfsVolume(const QString &mountPoint, qint64 &totalBytes, qint64 &freeBytes)
{
    struct statvfs info
    {
    };
    if (::statvfs(QFile::encodeName(mountPoint).constData(), &info) != 0)
        return false;
    totalBytes = qint64(info.f_blocks) * qint64(info.f_frsize);
    freeBytes = qint64(info.f_bavail) * qint64(info.f_frsize);
    return true;
}

} // namespace

FileSystem::Probes FileSystem::Probes::system()
{
    Probes probes;
    probes.mountInfoPath = QStringLiteral("/proc/self/mountinfo");
    probes.isFileMount = [](const QString &mountPoint) {
        const QFileInfo info(mountPoint);
        return info.exists() && !info.isDir();
    };
    probes.statVolume = statvfsVolume;
    probes.volumeLabel
        = [](const QString &device) { return labelFromDirectory(QStringLiteral("/dev/disk/by-label"), device); };
    probes.isRemovable
        = [](const QString &majorMinor) { return removableFromSysfs(QStringLiteral("/sys"), majorMinor); };
    return probes;
}

FileSystem::Probes FileSystem::Probes::completed() const
{
    const Probes fallback = system();
    Probes probes = *this;
    if (probes.mountInfoPath.isEmpty())
        probes.mountInfoPath = fallback.mountInfoPath;
    if (!probes.isFileMount)
        probes.isFileMount = fallback.isFileMount;
    if (!probes.statVolume)
        probes.statVolume = fallback.statVolume;
    if (!probes.volumeLabel)
        probes.volumeLabel = fallback.volumeLabel;
    if (!probes.isRemovable)
        probes.isRemovable = fallback.isRemovable;
    return probes;
}

FileSystem::FileSystem()
    : m_probes(Probes::system())
{
}

FileSystem::FileSystem(Probes probes)
    : m_probes(probes.completed())
{
}

FileSystem &FileSystem::instance()
{
    static FileSystem fileSystem;
    return fileSystem;
}

QList<DriveInfo> FileSystem::drives() const
{
    QFile table(m_probes.mountInfoPath);
    if (!table.open(QIODevice::ReadOnly))
        throw RuntimeError(ErrorNumber::PathNotFound);
    return parseMountInfo(table.readAll(), m_probes);
}

QList<DriveInfo> FileSystem::parseMountInfo(const QByteArray &text, const Probes &given)
{
    const Probes probes = given.completed();
    QList<DriveInfo> drives;
    QList<bool> derivedName;
    for (const MountEntry &entry : topMounts(text)) {
        if (!isDriveMount(entry, probes))
            continue;
        DriveInfo drive;
        drive.driveType = driveTypeOf(entry, probes);
        drive.rootPath = entry.mountPoint;
        drive.fileSystem = entry.fsType;
        drive.device = entry.source;
        drive.isReady = probes.statVolume(entry.mountPoint, drive.totalSize, drive.freeSpace);
        if (!drive.isReady)
            drive.totalSize = drive.freeSpace = 0;
        if (drive.driveType == DriveType::Remote)
            drive.shareName = shareNameFromSource(entry.source);
        else if (entry.fsRoot == QLatin1String("/") && entry.source.startsWith(QLatin1Char('/')))
            drive.volumeName = probes.volumeLabel(entry.source);
        derivedName.append(drive.volumeName.isEmpty());
        if (drive.volumeName.isEmpty())
            drive.volumeName = nameFromMountPoint(entry.mountPoint);
        drives.append(drive);
    }
    makeDerivedNamesDistinct(drives, derivedName);
    return drives;
}

bool FileSystem::driveExists(const QString &path) const
{
    return driveWithRoot(drives(), path).has_value();
}

DriveInfo FileSystem::getDrive(const QString &path) const
{
    const QList<DriveInfo> list = drives();
    if (const std::optional<DriveInfo> drive = driveWithRoot(list, path))
        return *drive;
    const QString cleaned = cleanPath(path);
    if (cleaned.isEmpty() || !QFileInfo::exists(cleaned))
        throw RuntimeError(ErrorNumber::PathNotFound);
    return containingDrive(list, cleaned);
}

DriveInfo FileSystem::driveOf(const QString &path) const
{
    return containingDrive(drives(), path);
}

FolderInfo FileSystem::folder(const QString &path) const
{
    FolderInfo info;
    info.path = cleanPath(path);
    if (info.path.isEmpty())
        return info;
    if (info.path != QLatin1String("/"))
        info.name = info.path.mid(info.path.lastIndexOf(QLatin1Char('/')) + 1);
    info.exists = QFileInfo(info.path).isDir();
    return info;
}

qint64 FileSystem::fileSize(const QString &path) const
{
    const QFileInfo info(cleanPath(path));
    if (path.isEmpty() || !info.exists() || info.isDir())
        throw RuntimeError(ErrorNumber::FileNotFound);
    return info.size();
}

QString FileSystem::cleanPath(const QString &path)
{
    if (path.isEmpty())
        return QString();
    return QDir::cleanPath(QDir::current().absoluteFilePath(path));
}

QString FileSystem::labelFromDirectory(const QString &labelDirectory, const QString &device)
{
    const QString target = QFileInfo(device).canonicalFilePath();
    if (target.isEmpty())
        return QString();
    const QDir links(labelDirectory);
    for (const QString &name : links.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
        if (QFileInfo(links.filePath(name)).canonicalFilePath() == target)
            return unescapeUdevName(name);
    }
    return QString();
}

bool FileSystem::removableFromSysfs(const QString &sysRoot, const QString &majorMinor)
{
    if (majorMinor.isEmpty() || majorMinor.contains(QLatin1Char('/')))
        return false;
    const QString device = QFileInfo(sysRoot + QLatin1String("/dev/block/") + majorMinor).canonicalFilePath();
    if (device.isEmpty())
        return false;
    // A partition has no flag of its own; its disk, the parent folder, has.
    for (const QString &folder : {device, QFileInfo(device).path()}) {
        QFile flag(folder + QLatin1String("/removable"));
        if (flag.open(QIODevice::ReadOnly))
            return flag.readAll().trimmed() == "1";
    }
    return false;
}

QString FileSystem::shareNameFromSource(const QString &source)
{
    const QString backslashes = QStringLiteral("\\\\");
    if (source.startsWith(QLatin1String("//")) || source.startsWith(backslashes))
        return QString(source).replace(QLatin1Char('/'), QLatin1Char('\\'));
    if (source.contains(QLatin1String("://"))) {
        const QUrl url(source);
        if (url.host().isEmpty())
            return QString();
        return backslashes + url.host() + QLatin1Char('\\') + url.path().mid(1);
    }
    // "host:/path", "user@host:/path" or "user@host:" (a home folder over sshfs).
    qsizetype colon = source.indexOf(QLatin1String(":/"));
    if (colon < 0 && source.endsWith(QLatin1Char(':')))
        colon = source.size() - 1;
    if (colon <= 0)
        return QString();
    QString host = source.left(colon);
    host = host.mid(host.lastIndexOf(QLatin1Char('@')) + 1);
    QString path = source.mid(colon + 1);
    while (path.startsWith(QLatin1Char('/')))
        path.remove(0, 1);
    return backslashes + host + QLatin1Char('\\') + path;
}

} // namespace Kelocontrols
