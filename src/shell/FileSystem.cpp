#include "FileSystem.h"
#include "FileSystem_p.h"

#include "FileNameCodec.h"
#include "RuntimeError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QUrl>
#include <QtEndian>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Kelocontrols {

namespace FileSystemDetail {

QByteArray unescapeMountBytes(const QByteArray &field)
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
    return bytes;
}

QSet<QByteArray> readHiddenList(int folderFd)
{
    QSet<QByteArray> names;
    const int file = ::openat(folderFd, ".hidden", O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return names;
    QByteArray content;
    char buffer[4096];
    constexpr qsizetype maximumSize = 4 * 1024 * 1024; // a list, not a data file: read no further
    for (ssize_t got; content.size() < maximumSize && (got = ::read(file, buffer, sizeof buffer)) > 0;)
        content.append(buffer, got);
    ::close(file);
    for (QByteArray line : content.split('\n')) {
        while (!line.isEmpty() && (line.endsWith(' ') || line.endsWith('\t') || line.endsWith('\r')))
            line.chop(1);
        if (!line.isEmpty())
            names.insert(line);
    }
    return names;
}

} // namespace FileSystemDetail

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

QString unescapeMountField(const QByteArray &field)
{
    return FileNameCodec::decode(FileSystemDetail::unescapeMountBytes(field));
}

/// Undoes the "\x20" escapes udev uses in by-label link names.
QString unescapeUdevName(const QString &name)
{
    const QByteArray encoded = FileNameCodec::encode(name);
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
    return FileNameCodec::decode(bytes);
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
    char canonical[PATH_MAX];
    if (::realpath(FileNameCodec::encode(target).constData(), canonical))
        target = FileNameCodec::decode(QByteArray(canonical));
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
    if (::statvfs(FileNameCodec::encode(mountPoint).constData(), &info) != 0)
        return false;
    totalBytes = qint64(info.f_blocks) * qint64(info.f_frsize);
    freeBytes = qint64(info.f_bavail) * qint64(info.f_frsize);
    return true;
}

// ---- Files and folders -------------------------------------------------

/// What statx is asked for: enough for kind, attributes, size, the three dates and the status-change time.
constexpr unsigned int entryStatxMask
    = STATX_TYPE | STATX_MODE | STATX_SIZE | STATX_ATIME | STATX_MTIME | STATX_CTIME | STATX_BTIME;
/// Never wake an automounter and never wait for a network server to confirm cached attributes.
constexpr int entryStatxFlags = AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC;

/// Closes a descriptor when it goes out of scope.
class FileDescriptor
{
public:
    explicit FileDescriptor(int fd)
        : m_fd(fd)
    {
    }
    ~FileDescriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;

    int get() const { return m_fd; }
    bool isValid() const { return m_fd >= 0; }

private:
    int m_fd;
};

struct DirCloser
{
    void operator()(DIR *dir) const { ::closedir(dir); }
};
using DirHandle = std::unique_ptr<DIR, DirCloser>;

int errorNumberForErrno(int error)
{
    return error == EACCES || error == EPERM ? ErrorNumber::PermissionDenied : ErrorNumber::PathNotFound;
}

bool isDotOrDotDot(const char *name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

qint64 millisecondsOf(const struct statx_timestamp &time)
{
    return qint64(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
}

/// The canonical form of a path given as bytes, or "" when it cannot be resolved.
QByteArray canonicalBytes(const QByteArray &path)
{
    char resolved[PATH_MAX];
    if (!::realpath(path.constData(), resolved))
        return QByteArray();
    return QByteArray(resolved);
}

/// The mount points (as bytes) of pseudo file systems and system plumbing, read once from the mount table.
class SystemMounts
{
public:
    explicit SystemMounts(QString mountInfoPath)
        : m_mountInfoPath(std::move(mountInfoPath))
    {
    }

    bool contains(const QByteArray &canonicalPath)
    {
        if (!m_loaded)
            load();
        return m_points.contains(canonicalPath);
    }

private:
    void load()
    {
        m_loaded = true;
        QFile table(m_mountInfoPath);
        if (!table.open(QIODevice::ReadOnly))
            return;
        for (const MountEntry &entry : topMounts(table.readAll())) {
            if (isPseudoFileSystem(entry.fsType) || isSystemPlumbing(entry))
                m_points.insert(FileNameCodec::encode(entry.mountPoint));
        }
    }

    QString m_mountInfoPath;
    bool m_loaded = false;
    QSet<QByteArray> m_points;
};

/// How looking up one entry of a folder went.
enum class Lookup { Found, Missing, Denied };

/**
 * Reads entries of one folder by name, relative to its descriptor: one
 * statx for plain entries, a second one for symbolic links (the link is
 * described by its target). Knows the folder's ".hidden" list and, when a
 * mount point turns up, which mounts are system ones.
 */
class FolderReader
{
public:
    /// @p folderFd stays owned by the caller; @p folderPath is its absolute path as bytes.
    FolderReader(int folderFd, QByteArray folderPath, const QString &mountInfoPath)
        : m_fd(folderFd)
        , m_folderPath(std::move(folderPath))
        , m_hidden(FileSystemDetail::readHiddenList(folderFd))
        , m_systemMounts(mountInfoPath)
    {
        struct stat folder
        {
        };
        if (::fstat(folderFd, &folder) == 0)
            m_folderDevice = folder.st_dev;
    }

    /// Fills @p entry for the entry @p name (of @p length bytes, readdir type @p dType, DT_UNKNOWN when not known).
    Lookup read(const char *name, size_t length, unsigned char dType, FileEntry &entry)
    {
        struct statx info;
        bool isLink = dType == DT_LNK;
        if (!isLink) {
            if (::statx(m_fd, name, entryStatxFlags | AT_SYMLINK_NOFOLLOW, entryStatxMask, &info) != 0)
                return lookupFailure(errno);
            isLink = S_ISLNK(info.stx_mode);
        }
        // A link whose target cannot be reached (missing, a loop, no access) stays described by itself.
        if (isLink && ::statx(m_fd, name, entryStatxFlags, entryStatxMask, &info) != 0
            && ::statx(m_fd, name, entryStatxFlags | AT_SYMLINK_NOFOLLOW, entryStatxMask, &info) != 0)
            return lookupFailure(errno);
        fill(entry, info, isLink);
        entry.name = FileNameCodec::decode(name, qsizetype(length));
        if (isHidden(name, length))
            entry.attributes |= FileAttribute::Hidden;
        if (entry.isFolder() && isMountRoot(info) && isSystemMount(name, length))
            entry.attributes |= FileAttribute::System;
        return Lookup::Found;
    }

private:
    static Lookup lookupFailure(int error)
    {
        return error == EACCES || error == EPERM ? Lookup::Denied : Lookup::Missing;
    }

    static void fill(FileEntry &entry, const struct statx &info, bool isLink)
    {
        if (S_ISDIR(info.stx_mode)) {
            entry.attributes = FileAttribute::Directory;
            entry.size = 0;
        } else {
            entry.attributes = S_ISREG(info.stx_mode) ? FileAttribute::Archive : FileAttribute::System;
            entry.size = qint64(info.stx_size);
        }
        if (isLink)
            entry.attributes |= FileAttribute::Alias;
        if (!(info.stx_mode & S_IWUSR))
            entry.attributes |= FileAttribute::ReadOnly;
        entry.modified = millisecondsOf(info.stx_mtime);
        entry.accessed = millisecondsOf(info.stx_atime);
        entry.statusChanged = (info.stx_mask & STATX_CTIME) ? millisecondsOf(info.stx_ctime) : 0;
        entry.createdKnown = (info.stx_mask & STATX_BTIME) != 0;
        entry.created = entry.createdKnown ? millisecondsOf(info.stx_btime) : entry.modified;
    }

    bool isHidden(const char *name, size_t length) const
    {
        return name[0] == '.'
            || (!m_hidden.isEmpty() && m_hidden.contains(QByteArray::fromRawData(name, qsizetype(length))));
    }

    bool isMountRoot(const struct statx &info) const
    {
        if (info.stx_attributes_mask & STATX_ATTR_MOUNT_ROOT)
            return info.stx_attributes & STATX_ATTR_MOUNT_ROOT;
        // Older kernels do not say; a change of device is the next best sign.
        return m_folderDevice != 0 && makedev(info.stx_dev_major, info.stx_dev_minor) != m_folderDevice;
    }

    bool isSystemMount(const char *name, size_t length)
    {
        QByteArray path = m_folderPath;
        if (!path.endsWith('/'))
            path += '/';
        path.append(name, qsizetype(length));
        const QByteArray canonical = canonicalBytes(path);
        return !canonical.isEmpty() && m_systemMounts.contains(canonical);
    }

    int m_fd;
    QByteArray m_folderPath;
    QSet<QByteArray> m_hidden;
    SystemMounts m_systemMounts;
    dev_t m_folderDevice = 0;
};

/**
 * Puts the entries of a listing in order: folders before files, each by
 * name without regard to case, ties broken by the exact name.
 *
 * The case-folded name of every entry is computed once, as bytes: ASCII
 * names are lower-cased byte by byte, others are case-folded and encoded
 * with FileNameCodec (so UTF-8 names compare by code point and undecodable
 * bytes by byte value). The first sixteen key bytes are kept in the sort
 * item itself as two big-endian words, which decides most comparisons
 * without touching the key buffer.
 */
class NameOrder
{
public:
    /// Adds the next entry, whose raw name is @p name (@p length bytes) and whose decoded record is @p entry.
    void add(const char *name, size_t length, const FileEntry &entry)
    {
        const size_t offset = m_keys.size();
        if (isAscii(name, length)) {
            m_keys.append(name, length);
            for (size_t i = offset; i < m_keys.size(); ++i) {
                if (m_keys[i] >= 'A' && m_keys[i] <= 'Z')
                    m_keys[i] = char(m_keys[i] + ('a' - 'A'));
            }
        } else {
            const QByteArray folded = FileNameCodec::encode(entry.name.toCaseFolded());
            m_keys.append(folded.constData(), size_t(folded.size()));
        }
        SortItem item;
        item.offset = offset;
        item.length = m_keys.size() - offset;
        item.index = m_items.size();
        item.isFolder = entry.isFolder();
        m_items.push_back(item);
    }

    /// Moves the entries (added in the order of @p entries) into @p folders and @p files, sorted.
    void sortInto(QList<FileEntry> &entries, QList<FileEntry> &folders, QList<FileEntry> &files)
    {
        for (SortItem &item : m_items) {
            item.head = bigEndianWord(item.offset, item.length, 0);
            item.next = bigEndianWord(item.offset, item.length, 8);
        }
        std::sort(m_items.begin(), m_items.end(),
            [&](const SortItem &a, const SortItem &b) { return isBefore(a, b, entries); });
        const auto folderCount
            = std::count_if(m_items.cbegin(), m_items.cend(), [](const SortItem &item) { return item.isFolder; });
        folders.reserve(folderCount);
        files.reserve(qsizetype(m_items.size()) - folderCount);
        for (const SortItem &item : m_items)
            (item.isFolder ? folders : files).append(std::move(entries[qsizetype(item.index)]));
    }

private:
    struct SortItem
    {
        quint64 head = 0; ///< key bytes 0..7, big-endian, zero-padded
        quint64 next = 0; ///< key bytes 8..15
        size_t offset = 0; ///< of the key in m_keys
        size_t length = 0;
        size_t index = 0; ///< of the entry
        bool isFolder = false;
    };
    static constexpr size_t wordBytes = 2 * sizeof(quint64);

    static bool isAscii(const char *name, size_t length)
    {
        for (size_t i = 0; i < length; ++i) {
            if (static_cast<unsigned char>(name[i]) >= 0x80)
                return false;
        }
        return true;
    }

    quint64 bigEndianWord(size_t offset, size_t length, size_t from) const
    {
        unsigned char bytes[sizeof(quint64)] = {};
        if (length > from)
            std::memcpy(bytes, m_keys.data() + offset + from, std::min(length - from, sizeof bytes));
        return qFromBigEndian<quint64>(bytes);
    }

    bool isBefore(const SortItem &a, const SortItem &b, const QList<FileEntry> &entries) const
    {
        if (a.isFolder != b.isFolder)
            return a.isFolder;
        if (a.head != b.head)
            return a.head < b.head;
        if (a.next != b.next)
            return a.next < b.next;
        // Names hold no NUL byte, so equal padded words mean equal first sixteen bytes.
        const size_t common = std::min(a.length, b.length);
        if (common > wordBytes) {
            const int byTail = std::memcmp(
                m_keys.data() + a.offset + wordBytes, m_keys.data() + b.offset + wordBytes, common - wordBytes);
            if (byTail != 0)
                return byTail < 0;
        }
        if (a.length != b.length)
            return a.length < b.length;
        return entries.at(qsizetype(a.index)).name < entries.at(qsizetype(b.index)).name;
    }

    std::string m_keys;
    std::vector<SortItem> m_items;
};

/// The cleaned path of @p path as bytes for the system, or "" for "".
QByteArray systemPath(const QString &path)
{
    return FileNameCodec::encode(FileSystem::cleanPath(path));
}

/// Whether the entry @p name of a folder counts as a folder (a link to one included); nullopt when it is gone.
std::optional<bool> isFolderEntry(int folderFd, const char *name, unsigned char dType)
{
    if (dType == DT_DIR)
        return true;
    if (dType != DT_LNK && dType != DT_UNKNOWN)
        return false;
    struct statx info;
    if (::statx(folderFd, name, entryStatxFlags, STATX_TYPE, &info) == 0)
        return S_ISDIR(info.stx_mode);
    // A broken link is still there, as a file.
    if (::statx(folderFd, name, entryStatxFlags | AT_SYMLINK_NOFOLLOW, STATX_TYPE, &info) == 0)
        return false;
    return std::nullopt;
}

} // namespace

FileSystem::Probes FileSystem::Probes::system()
{
    Probes probes;
    probes.mountInfoPath = QStringLiteral("/proc/self/mountinfo");
    probes.isFileMount = [](const QString &mountPoint) {
        struct statx info;
        return ::statx(AT_FDCWD, FileNameCodec::encode(mountPoint).constData(), entryStatxFlags, STATX_TYPE, &info) == 0
            && !S_ISDIR(info.stx_mode);
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
    struct statx info;
    if (cleaned.isEmpty()
        || ::statx(AT_FDCWD, FileNameCodec::encode(cleaned).constData(), entryStatxFlags, STATX_TYPE, &info) != 0)
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
    info.exists = folderExists(info.path);
    return info;
}

qint64 FileSystem::fileSize(const QString &path) const
{
    const QByteArray encoded = systemPath(path);
    struct statx info;
    if (encoded.isEmpty()
        || ::statx(AT_FDCWD, encoded.constData(), entryStatxFlags, STATX_TYPE | STATX_SIZE, &info) != 0
        || S_ISDIR(info.stx_mode))
        throw RuntimeError(ErrorNumber::FileNotFound);
    return qint64(info.stx_size);
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

FolderContents FileSystem::listFolder(const QString &path) const
{
    return listFolder(path, {});
}

FolderContents FileSystem::listFolder(const QString &path, const std::function<bool(const QString &name)> &wanted) const
{
    FolderContents contents;
    contents.path = cleanPath(path);
    if (contents.path.isEmpty())
        throw RuntimeError(ErrorNumber::PathNotFound);
    const QByteArray folderPath = FileNameCodec::encode(contents.path);
    const DirHandle dir(::opendir(folderPath.constData()));
    if (!dir)
        throw RuntimeError(errorNumberForErrno(errno));
    FolderReader reader(::dirfd(dir.get()), folderPath, m_probes.mountInfoPath);
    QList<FileEntry> entries;
    NameOrder order;
    FileEntry entry;
    QString candidate; // the name a search asks about, reused: an ASCII name is copied into it without allocating
    errno = 0;
    while (const dirent *found = ::readdir(dir.get())) {
        if (isDotOrDotDot(found->d_name))
            continue;
        const size_t length = std::strlen(found->d_name);
        const bool known = found->d_type != DT_DIR && found->d_type != DT_UNKNOWN;
        if (wanted && known) {
            bool ascii = true;
            candidate.resize(qsizetype(length));
            QChar *out = candidate.data();
            for (size_t i = 0; i < length && ascii; ++i) {
                const auto byte = static_cast<unsigned char>(found->d_name[i]);
                ascii = byte < 0x80;
                out[i] = QChar(char16_t(byte));
            }
            if (!wanted(ascii ? candidate : FileNameCodec::decode(found->d_name, qsizetype(length)))) {
                errno = 0;
                continue;
            }
        }
        const Lookup lookup = reader.read(found->d_name, length, found->d_type, entry);
        if (lookup == Lookup::Denied)
            throw RuntimeError(ErrorNumber::PermissionDenied);
        if (lookup == Lookup::Found) {
            order.add(found->d_name, length, entry);
            entries.append(std::move(entry));
        }
        errno = 0;
    }
    if (errno != 0)
        throw RuntimeError(errorNumberForErrno(errno));
    order.sortInto(entries, contents.folders, contents.files);
    return contents;
}

std::optional<FileEntry> FileSystem::entry(const QString &path) const
{
    const QByteArray encoded = systemPath(path);
    if (encoded.isEmpty())
        return std::nullopt;
    const qsizetype slash = encoded.lastIndexOf('/');
    const bool isRoot = encoded == "/";
    // The root has no folder to be read from; it is looked up by its own path.
    const QByteArray folderPath = isRoot ? encoded : (slash == 0 ? QByteArray("/") : encoded.left(slash));
    const QByteArray name = isRoot ? encoded : encoded.mid(slash + 1);
    const FileDescriptor folder(::open(folderPath.constData(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isValid())
        return std::nullopt;
    FolderReader reader(folder.get(), isRoot ? QByteArray() : folderPath, m_probes.mountInfoPath);
    FileEntry found;
    if (reader.read(name.constData(), size_t(name.size()), DT_UNKNOWN, found) != Lookup::Found)
        return std::nullopt;
    if (isRoot)
        found.name.clear();
    return found;
}

bool FileSystem::fileExists(const QString &path) const
{
    const QByteArray encoded = systemPath(path);
    if (encoded.isEmpty())
        return false;
    struct statx info;
    if (::statx(AT_FDCWD, encoded.constData(), entryStatxFlags, STATX_TYPE, &info) == 0)
        return !S_ISDIR(info.stx_mode);
    // A broken link is listed among the files, so it exists as one.
    return ::statx(AT_FDCWD, encoded.constData(), entryStatxFlags | AT_SYMLINK_NOFOLLOW, STATX_TYPE, &info) == 0;
}

bool FileSystem::folderExists(const QString &path) const
{
    const QByteArray encoded = systemPath(path);
    struct statx info;
    return !encoded.isEmpty() && ::statx(AT_FDCWD, encoded.constData(), entryStatxFlags, STATX_TYPE, &info) == 0
        && S_ISDIR(info.stx_mode);
}

int FileSystem::fileCount(const QString &folderPath) const
{
    const QByteArray encoded = systemPath(folderPath);
    if (encoded.isEmpty())
        return 0;
    const DirHandle dir(::opendir(encoded.constData()));
    if (!dir)
        return 0;
    int count = 0;
    while (const dirent *found = ::readdir(dir.get())) {
        if (isDotOrDotDot(found->d_name))
            continue;
        if (isFolderEntry(::dirfd(dir.get()), found->d_name, found->d_type) == false)
            ++count;
    }
    return count;
}

QString FileSystem::extensionName(const QString &path)
{
    qsizetype end = path.size();
    while (end > 0 && path.at(end - 1) == QLatin1Char('/'))
        --end;
    const QStringView name = QStringView(path).first(end);
    const qsizetype slash = name.lastIndexOf(QLatin1Char('/'));
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    if (dot <= slash || dot == name.size() - 1)
        return QString();
    return name.mid(dot + 1).toString();
}

QString FileSystem::parentFolderName(const QString &path)
{
    if (path.isEmpty())
        return QString();
    const QString cleaned = QDir::cleanPath(path);
    const qsizetype slash = cleaned.lastIndexOf(QLatin1Char('/'));
    if (cleaned == QLatin1String("/") || slash < 0)
        return QString();
    return slash == 0 ? QStringLiteral("/") : cleaned.left(slash);
}

QString FileSystem::buildPath(const QString &folder, const QString &name)
{
    if (folder.isEmpty())
        return name;
    if (name.isEmpty())
        return folder;
    qsizetype folderEnd = folder.size();
    while (folderEnd > 0 && folder.at(folderEnd - 1) == QLatin1Char('/'))
        --folderEnd;
    qsizetype nameStart = 0;
    while (nameStart < name.size() && name.at(nameStart) == QLatin1Char('/'))
        ++nameStart;
    return QStringView(folder).first(folderEnd) + QLatin1Char('/') + QStringView(name).mid(nameStart);
}

} // namespace Kelocontrols
