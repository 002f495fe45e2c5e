#include "FileOperations.h"

#include "FileNameCodec.h"
#include "TransferMonitor.h"

#include <QRandomGenerator>

#include <dirent.h>
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
#include <utility>
#include <vector>

namespace Kelocontrols::FileOperations {

namespace {

/// A file descriptor closed when it goes out of scope.
class UniqueFd
{
public:
    explicit UniqueFd(int fd = -1)
        : m_fd(fd)
    {
    }
    ~UniqueFd() { reset(); }
    UniqueFd(const UniqueFd &) = delete;
    UniqueFd &operator=(const UniqueFd &) = delete;

    int get() const { return m_fd; }
    bool valid() const { return m_fd >= 0; }
    int release() { return std::exchange(m_fd, -1); }
    void reset(int fd = -1)
    {
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = fd;
    }

private:
    int m_fd;
};

/// A path as the folder that holds it and its last name, both as file-name bytes.
struct SplitPath
{
    QByteArray folder;
    QByteArray name;
};

SplitPath splitPath(const QString &path)
{
    QByteArray bytes = FileNameCodec::encode(path);
    while (bytes.size() > 1 && bytes.endsWith('/'))
        bytes.chop(1);
    const qsizetype slash = bytes.lastIndexOf('/');
    if (slash < 0)
        return {QByteArrayLiteral("."), bytes};
    return {slash == 0 ? QByteArrayLiteral("/") : bytes.left(slash), bytes.mid(slash + 1)};
}

bool isDotOrDotDot(const char *name)
{
    return name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0));
}

int openFolder(const QByteArray &path)
{
    return ::open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

int openSubFolder(int parent, const char *name)
{
    return ::openat(parent, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

/// A name no other entry of a folder is likely to have; the leading dot keeps it out of listings.
QByteArray temporaryName()
{
    return QByteArrayLiteral(".kelo-part-") + QByteArray::number(QRandomGenerator::global()->generate(), 16);
}

using FolderId = std::pair<dev_t, ino_t>;

/// One entry of a folder as read from it: its name and the kind readdir reported (DT_UNKNOWN when it did not).
struct FolderEntry
{
    QByteArray name;
    unsigned char type;
};

/**
 * Every entry of the open folder @p folder, read before anything is written
 * so that new entries are not met, in byte order of the names so that the
 * work (and its progress) goes in a predictable order.
 */
std::vector<FolderEntry> readFolder(int folder, int &error)
{
    std::vector<FolderEntry> entries;
    const int own = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR *dir = own >= 0 ? ::fdopendir(own) : nullptr;
    if (!dir) {
        error = errno;
        if (own >= 0)
            ::close(own);
        return entries;
    }
    errno = 0;
    while (const dirent *entry = ::readdir(dir)) {
        if (!isDotOrDotDot(entry->d_name))
            entries.push_back({QByteArray(entry->d_name), entry->d_type});
    }
    error = errno;
    ::closedir(dir);
    std::sort(
        entries.begin(), entries.end(), [](const FolderEntry &a, const FolderEntry &b) { return a.name < b.name; });
    return entries;
}

/// The state of one copy or move: what failed, whether to stop, and the folders it made.
class Job
{
public:
    explicit Job(TransferMonitor *monitor)
        : monitor(monitor)
    {
    }

    TransferMonitor *const monitor;
    const bool keepOwner = ::geteuid() == 0;
    bool failed = false;
    /// Cancelled, or the disk is full: no further work is started.
    bool stopped = false;
    /// The folders this job created: a folder copied into itself must not copy its copy.
    std::set<FolderId> createdFolders;
    /// Devices on which FICLONE failed once: not tried again.
    std::set<dev_t> noReflink;

    void fail(int error)
    {
        failed = true;
        if (error == ENOSPC || error == EDQUOT || error == ECANCELED)
            stopped = true;
    }

    bool shouldStop()
    {
        if (!stopped && monitor && monitor->isCancelled())
            fail(ECANCELED);
        return stopped;
    }

    void beginItem(const QByteArray &name, qint64 bytes)
    {
        if (monitor)
            monitor->beginItem(FileNameCodec::decode(name), bytes);
    }
};

/// Copies @p size bytes from @p in to @p out by read and write, for file systems without copy_file_range.
ssize_t readWriteChunk(int in, int out, size_t size)
{
    static thread_local std::vector<char> buffer(1 << 20);
    const ssize_t got = ::read(in, buffer.data(), std::min(size, buffer.size()));
    if (got <= 0)
        return got;
    for (ssize_t written = 0; written < got;) {
        const ssize_t n = ::write(out, buffer.data() + written, size_t(got - written));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return -1;
        }
        written += n;
    }
    return got;
}

/// Copies the @p size bytes of @p in into the empty file @p out; answers 0 or an errno value.
int copyContents(Job &job, int in, int out, qint64 size, dev_t targetDevice)
{
    if (size > 0 && !job.noReflink.count(targetDevice)) {
        if (::ioctl(out, FICLONE, in) == 0) {
            if (job.monitor)
                job.monitor->addBytes(size);
            return job.monitor && job.shouldStop() ? ECANCELED : 0;
        }
        job.noReflink.insert(targetDevice);
    }
    // Pieces small enough for the progress dialog to stay responsive, one call per file otherwise.
    const size_t piece = job.monitor ? size_t(8) << 20 : size_t(1) << 30;
    bool inKernel = true;
    qint64 done = 0;
    while (done < size) {
        const size_t want = size_t(std::min<qint64>(size - done, qint64(piece)));
        ssize_t n = inKernel ? ::copy_file_range(in, nullptr, out, nullptr, want, 0) : readWriteChunk(in, out, want);
        if (n < 0 && inKernel && done == 0
            && (errno == EXDEV || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP || errno == EBADF)) {
            inKernel = false;
            continue;
        }
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        if (n == 0)
            break; // the source shrank while it was copied
        done += n;
        if (job.monitor) {
            job.monitor->addBytes(n);
            if (job.shouldStop())
                return ECANCELED;
        }
    }
    return done == size ? 0 : EIO;
}

/// Gives the new entry @p fd the owner (for root), permission bits and times of @p info.
void copyAttributes(const Job &job, int fd, const struct stat &info)
{
    if (job.keepOwner && ::fchown(fd, info.st_uid, info.st_gid) != 0) {
        // Another owner cannot be given here (a file system without owners); the rest is still kept.
    }
    ::fchmod(fd, info.st_mode & 07777);
    const timespec times[2] = {info.st_atim, info.st_mtim};
    ::futimens(fd, times);
}

void copyEntryAttributes(const Job &job, int folder, const char *name, const struct stat &info)
{
    if (job.keepOwner)
        ::fchownat(folder, name, info.st_uid, info.st_gid, AT_SYMLINK_NOFOLLOW);
    if (!S_ISLNK(info.st_mode))
        ::fchmodat(folder, name, info.st_mode & 07777, 0);
    const timespec times[2] = {info.st_atim, info.st_mtim};
    ::utimensat(folder, name, times, AT_SYMLINK_NOFOLLOW);
}

int writeFile(Job &job, int sourceFolder, const char *sourceName, int targetFolder, const char *targetName)
{
    UniqueFd in(::openat(sourceFolder, sourceName, O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY));
    if (!in.valid())
        return errno;
    struct stat info;
    if (::fstat(in.get(), &info) != 0)
        return errno;
    if (!S_ISREG(info.st_mode))
        return EINVAL;
    job.beginItem(sourceName, info.st_size);
    if (info.st_size >= (qint64(1) << 16))
        ::posix_fadvise(
            in.get(), 0, 0, POSIX_FADV_SEQUENTIAL); // a source not in the cache is read ahead in large steps
    UniqueFd out(::openat(targetFolder, targetName, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!out.valid())
        return errno;
    struct stat folderInfo;
    const dev_t device = ::fstat(targetFolder, &folderInfo) == 0 ? folderInfo.st_dev : 0;
    int error = copyContents(job, in.get(), out.get(), info.st_size, device);
    if (error == 0)
        copyAttributes(job, out.get(), info);
    if (::close(out.release()) != 0 && error == 0)
        error = errno; // a late write error (network file systems report them here)
    if (error != 0)
        ::unlinkat(targetFolder, targetName, 0);
    return error;
}

int writeLink(Job &job, int sourceFolder, const char *sourceName, const struct stat &info, int targetFolder,
    const char *targetName)
{
    job.beginItem(sourceName, 0);
    QByteArray linkTarget(qMax<qsizetype>(info.st_size, 255) + 1, Qt::Uninitialized);
    for (;;) {
        const ssize_t n = ::readlinkat(sourceFolder, sourceName, linkTarget.data(), size_t(linkTarget.size()));
        if (n < 0)
            return errno;
        if (n < linkTarget.size()) {
            linkTarget.truncate(n);
            break;
        }
        linkTarget.resize(linkTarget.size() * 2); // the link changed since it was looked at
    }
    if (::symlinkat(linkTarget.constData(), targetFolder, targetName) != 0)
        return errno;
    copyEntryAttributes(job, targetFolder, targetName, info);
    return 0;
}

/// FIFOs are made anew; devices only by root; sockets cannot be copied.
int writeSpecial(Job &job, const char *sourceName, const struct stat &info, int targetFolder, const char *targetName)
{
    job.beginItem(sourceName, 0);
    if (S_ISSOCK(info.st_mode))
        return EOPNOTSUPP;
    if (::mknodat(targetFolder, targetName, info.st_mode, info.st_rdev) != 0)
        return errno;
    copyEntryAttributes(job, targetFolder, targetName, info);
    return 0;
}

int copyEntry(Job &job, int sourceFolder, const QByteArray &sourceName, unsigned char typeHint, int targetFolder,
    const QByteArray &targetName);

/// Copies every entry of @p source into the empty folder @p target under its own name.
void fillFolder(Job &job, int source, int target)
{
    int error = 0;
    const std::vector<FolderEntry> entries = readFolder(source, error);
    if (error != 0)
        job.fail(error);
    for (const FolderEntry &entry : entries) {
        if (job.shouldStop())
            return;
        copyEntry(job, source, entry.name, entry.type, target, entry.name);
    }
}

int writeFolder(Job &job, int sourceFolder, const char *sourceName, const struct stat &info, int targetFolder,
    const char *targetName)
{
    UniqueFd source(openSubFolder(sourceFolder, sourceName));
    if (!source.valid())
        return errno;
    if (::mkdirat(targetFolder, targetName, 0700) != 0)
        return errno;
    UniqueFd target(openSubFolder(targetFolder, targetName));
    struct stat targetInfo;
    if (!target.valid() || ::fstat(target.get(), &targetInfo) != 0) {
        const int error = errno;
        ::unlinkat(targetFolder, targetName, AT_REMOVEDIR);
        return error;
    }
    job.createdFolders.insert({targetInfo.st_dev, targetInfo.st_ino});
    fillFolder(job, source.get(), target.get());
    // Permission bits and times last: a read-only folder is filled first, and filling changes the time.
    copyAttributes(job, target.get(), info);
    return 0;
}

/**
 * Copies the entry @p sourceName of @p sourceFolder to the new name
 * @p targetName in @p targetFolder, which must not exist. Answers 0 when the
 * entry itself was made (failures inside a folder are recorded in the job).
 */
int copyEntry(Job &job, int sourceFolder, const QByteArray &sourceName, unsigned char typeHint, int targetFolder,
    const QByteArray &targetName)
{
    int error = 0;
    if (typeHint == DT_REG) {
        error = writeFile(job, sourceFolder, sourceName.constData(), targetFolder, targetName.constData());
    } else {
        struct stat info;
        if (::fstatat(sourceFolder, sourceName.constData(), &info, AT_SYMLINK_NOFOLLOW) != 0)
            error = errno;
        else if (S_ISDIR(info.st_mode) && job.createdFolders.count({info.st_dev, info.st_ino}))
            return 0; // the copy being made, met inside its own source
        else if (S_ISDIR(info.st_mode))
            error = writeFolder(job, sourceFolder, sourceName.constData(), info, targetFolder, targetName.constData());
        else if (S_ISREG(info.st_mode))
            error = writeFile(job, sourceFolder, sourceName.constData(), targetFolder, targetName.constData());
        else if (S_ISLNK(info.st_mode))
            error = writeLink(job, sourceFolder, sourceName.constData(), info, targetFolder, targetName.constData());
        else
            error = writeSpecial(job, sourceName.constData(), info, targetFolder, targetName.constData());
    }
    if (error != 0)
        job.fail(error);
    else if (job.monitor)
        job.monitor->endItem();
    return error;
}

int removeEntry(int folder, const char *name);

/// Removes everything inside the open folder @p folder; answers the last failure, or 0.
int emptyFolder(int folder)
{
    int error = 0;
    const std::vector<FolderEntry> entries = readFolder(folder, error);
    bool madeWritable = false;
    for (const FolderEntry &entry : entries) {
        int result = removeEntry(folder, entry.name.constData());
        if ((result == EACCES || result == EPERM) && !madeWritable) {
            // A read-only folder: its entries can go once its owner may write to it.
            struct stat info;
            if (::fstat(folder, &info) == 0 && ::fchmod(folder, (info.st_mode & 07777) | S_IRWXU) == 0) {
                madeWritable = true;
                result = removeEntry(folder, entry.name.constData());
            }
        }
        if (result != 0)
            error = result;
    }
    return error;
}

/// Removes the entry @p name of @p folder: a file or link by unlink, a folder with all it holds.
int removeEntry(int folder, const char *name)
{
    if (::unlinkat(folder, name, 0) == 0)
        return 0;
    if (errno != EISDIR && errno != EPERM)
        return errno;
    struct stat info, folderInfo;
    if (::fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISDIR(info.st_mode))
        return EPERM;
    if (::fstat(folder, &folderInfo) == 0 && folderInfo.st_dev != info.st_dev)
        return EXDEV; // another file system mounted here: not ours to empty
    UniqueFd sub(openSubFolder(folder, name));
    if (!sub.valid() && (errno == EACCES || errno == EPERM)
        && ::fchmodat(folder, name, (info.st_mode & 07777) | S_IRWXU, 0) == 0)
        sub.reset(openSubFolder(folder, name));
    if (!sub.valid())
        return errno;
    const int error = emptyFolder(sub.get());
    sub.reset();
    if (::unlinkat(folder, name, AT_REMOVEDIR) != 0)
        return errno;
    return error;
}

/// Renames @p fromName to @p toName; an existing entry of that name is replaced only when @p replace is true.
int renameEntry(int fromFolder, const char *fromName, int toFolder, const char *toName, bool replace)
{
    if (replace)
        return ::renameat(fromFolder, fromName, toFolder, toName) == 0 ? 0 : errno;
    if (::renameat2(fromFolder, fromName, toFolder, toName, RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // A file system that cannot refuse to replace in the same step: look first.
    struct stat info;
    if (::fstatat(toFolder, toName, &info, AT_SYMLINK_NOFOLLOW) == 0)
        return EEXIST;
    return ::renameat(fromFolder, fromName, toFolder, toName) == 0 ? 0 : errno;
}

/**
 * Copies @p sourceName of @p sourceFolder under a temporary name into
 * @p targetFolder, then renames the copy to @p targetName. A copy that was
 * cancelled or ran out of space, or that cannot be renamed, is removed.
 */
int placeCopy(Job &job, int sourceFolder, const QByteArray &sourceName, unsigned char typeHint, int targetFolder,
    const QByteArray &targetName, bool replace, bool wholeOrNothing = false)
{
    const QByteArray temporary = temporaryName();
    int error = copyEntry(job, sourceFolder, sourceName, typeHint, targetFolder, temporary);
    if (error == 0 && (job.stopped || (wholeOrNothing && job.failed)))
        error = ECANCELED;
    if (error == 0)
        error = renameEntry(targetFolder, temporary.constData(), targetFolder, targetName.constData(), replace);
    if (error != 0) {
        removeEntry(targetFolder, temporary.constData());
        job.fail(error);
    }
    return error;
}

/// Copies every entry of @p source into the existing folder @p target, replacing files only when @p overwrite.
void mergeFolder(Job &job, int source, int target, bool overwrite)
{
    int error = 0;
    const std::vector<FolderEntry> entries = readFolder(source, error);
    if (error != 0)
        job.fail(error);
    for (const FolderEntry &entry : entries) {
        if (job.shouldStop())
            return;
        struct stat from, to;
        if (::fstatat(source, entry.name.constData(), &from, AT_SYMLINK_NOFOLLOW) != 0) {
            job.fail(errno);
            continue;
        }
        if (S_ISDIR(from.st_mode) && job.createdFolders.count({from.st_dev, from.st_ino}))
            continue;
        const bool exists = ::fstatat(target, entry.name.constData(), &to, AT_SYMLINK_NOFOLLOW) == 0;
        if (exists && S_ISDIR(from.st_mode) && S_ISDIR(to.st_mode)) {
            UniqueFd subSource(openSubFolder(source, entry.name.constData()));
            UniqueFd subTarget(openSubFolder(target, entry.name.constData()));
            if (subSource.valid() && subTarget.valid())
                mergeFolder(job, subSource.get(), subTarget.get(), overwrite);
            else
                job.fail(errno);
            continue;
        }
        if (exists && (!overwrite || S_ISDIR(from.st_mode) || S_ISDIR(to.st_mode))) {
            job.fail(EEXIST); // kept: not to be replaced, or a file and a folder of the same name
            continue;
        }
        placeCopy(job, source, entry.name, DT_UNKNOWN, target, entry.name, exists);
    }
}

struct OpenedPath
{
    SplitPath path;
    UniqueFd folder;
    struct stat info = {};
    bool exists = false;
};

/// Opens the folder holding @p path and looks at the entry itself (not following a link); false when the folder cannot
/// be opened.
bool openPath(const QString &path, OpenedPath &opened)
{
    opened.path = splitPath(path);
    if (opened.path.name.isEmpty() || opened.path.name == "." || opened.path.name == "..")
        return false;
    opened.folder.reset(openFolder(opened.path.folder));
    if (!opened.folder.valid())
        return false;
    opened.exists
        = ::fstatat(opened.folder.get(), opened.path.name.constData(), &opened.info, AT_SYMLINK_NOFOLLOW) == 0;
    return true;
}

} // namespace

bool copyFile(const QString &source, const QString &target, bool overwrite, TransferMonitor *monitor)
{
    OpenedPath from, to;
    if (!openPath(source, from) || !from.exists || S_ISDIR(from.info.st_mode) || !openPath(target, to))
        return false;
    if (to.exists && (!overwrite || S_ISDIR(to.info.st_mode)))
        return false;
    Job job(monitor);
    return placeCopy(job, from.folder.get(), from.path.name, DT_UNKNOWN, to.folder.get(), to.path.name, to.exists) == 0
        && !job.failed;
}

bool copyFolder(const QString &source, const QString &target, bool overwrite, TransferMonitor *monitor)
{
    OpenedPath from, to;
    if (!openPath(source, from) || !from.exists || !openPath(target, to))
        return false;
    if (S_ISLNK(from.info.st_mode))
        return copyFile(source, target, overwrite, monitor); // a link to a folder is copied as a link
    if (!S_ISDIR(from.info.st_mode))
        return false;
    Job job(monitor);
    if (!to.exists)
        return placeCopy(job, from.folder.get(), from.path.name, DT_DIR, to.folder.get(), to.path.name, false) == 0
            && !job.failed;
    if (!S_ISDIR(to.info.st_mode))
        return false;
    UniqueFd sourceFolder(openSubFolder(from.folder.get(), from.path.name.constData()));
    UniqueFd targetFolder(openSubFolder(to.folder.get(), to.path.name.constData()));
    if (!sourceFolder.valid() || !targetFolder.valid())
        return false;
    // The target never copies into itself when it lies inside the source.
    job.createdFolders.insert({to.info.st_dev, to.info.st_ino});
    mergeFolder(job, sourceFolder.get(), targetFolder.get(), overwrite);
    return !job.failed;
}

bool moveFile(const QString &source, const QString &target, bool replace, TransferMonitor *monitor)
{
    OpenedPath from, to;
    if (!openPath(source, from) || !from.exists || S_ISDIR(from.info.st_mode) || !openPath(target, to))
        return false;
    const int error = renameEntry(
        from.folder.get(), from.path.name.constData(), to.folder.get(), to.path.name.constData(), replace);
    if (error != EXDEV)
        return error == 0;
    if (to.exists && (!replace || S_ISDIR(to.info.st_mode)))
        return false;
    Job job(monitor);
    if (placeCopy(job, from.folder.get(), from.path.name, DT_UNKNOWN, to.folder.get(), to.path.name, to.exists) != 0
        || job.failed)
        return false;
    return ::unlinkat(from.folder.get(), from.path.name.constData(), 0) == 0;
}

bool moveFolder(const QString &source, const QString &target, TransferMonitor *monitor)
{
    OpenedPath from, to;
    if (!openPath(source, from) || !from.exists || !openPath(target, to))
        return false;
    if (S_ISLNK(from.info.st_mode))
        return moveFile(source, target, false, monitor);
    if (!S_ISDIR(from.info.st_mode))
        return false;
    const int error
        = renameEntry(from.folder.get(), from.path.name.constData(), to.folder.get(), to.path.name.constData(), false);
    if (error != EXDEV)
        return error == 0;
    if (to.exists)
        return false;
    // Across file systems: the whole tree is copied, every file's size checked, before the source goes.
    Job job(monitor);
    if (placeCopy(job, from.folder.get(), from.path.name, DT_DIR, to.folder.get(), to.path.name, false, true) != 0)
        return false;
    return removeEntry(from.folder.get(), from.path.name.constData()) == 0;
}

bool deleteFile(const QString &path, bool force)
{
    OpenedPath opened;
    if (!openPath(path, opened) || !opened.exists || S_ISDIR(opened.info.st_mode))
        return false;
    if (!force && !S_ISLNK(opened.info.st_mode) && !(opened.info.st_mode & S_IWUSR))
        return false;
    return ::unlinkat(opened.folder.get(), opened.path.name.constData(), 0) == 0;
}

bool deleteFolder(const QString &path)
{
    OpenedPath opened;
    if (!openPath(path, opened) || !opened.exists)
        return false;
    if (S_ISLNK(opened.info.st_mode))
        return ::unlinkat(opened.folder.get(), opened.path.name.constData(), 0) == 0;
    if (!S_ISDIR(opened.info.st_mode))
        return false;
    return removeEntry(opened.folder.get(), opened.path.name.constData()) == 0;
}

int renameEntry(const QString &source, const QString &target)
{
    OpenedPath from, to;
    if (!openPath(source, from) || !openPath(target, to))
        return ENOENT;
    if (!from.exists)
        return ENOENT;
    return renameEntry(from.folder.get(), from.path.name.constData(), to.folder.get(), to.path.name.constData(), false);
}

} // namespace Kelocontrols::FileOperations
