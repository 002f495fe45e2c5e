#include "FileAttributes.h"

#include "FileEntry.h"
#include "FileNameCodec.h"
#include "FileSystem.h"
#include "RuntimeError.h"

#include <QList>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace Kelocontrols::FileAttributes {

namespace {

const char hiddenListName[] = ".hidden";

[[noreturn]] void raiseForErrno(int error)
{
    const bool refused = error == EACCES || error == EPERM || error == EROFS;
    throw RuntimeError(refused ? ErrorNumber::PermissionDenied : ErrorNumber::PathNotFound);
}

/// A descriptor closed when it goes out of scope.
class Descriptor
{
public:
    explicit Descriptor(int fd)
        : m_fd(fd)
    {
    }
    ~Descriptor()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    int get() const { return m_fd; }
    bool isValid() const { return m_fd >= 0; }
    /// Closes now and tells whether the close succeeded (a late write error shows here).
    bool close()
    {
        const int fd = m_fd;
        m_fd = -1;
        return ::close(fd) == 0;
    }

private:
    int m_fd;
};

/// A line of a ".hidden" file as readers compare it: the line ending, trailing blanks, tabs and CR dropped.
QByteArrayView comparedLine(QByteArrayView line)
{
    if (line.endsWith('\n'))
        line.chop(1);
    while (!line.isEmpty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r'))
        line.chop(1);
    return line;
}

/// The lines of @p content, each with its own line ending (the last one may have none).
QList<QByteArrayView> linesOf(const QByteArray &content)
{
    QList<QByteArrayView> lines;
    qsizetype start = 0;
    while (start < content.size()) {
        const qsizetype newline = content.indexOf('\n', start);
        const qsizetype end = newline < 0 ? content.size() : newline + 1;
        lines.append(QByteArrayView(content).sliced(start, end - start));
        start = end;
    }
    return lines;
}

bool isListable(const QByteArray &name)
{
    return !name.contains('\n') && !name.contains('\r') && comparedLine(name).size() == name.size();
}

QByteArray readAll(int fd)
{
    QByteArray content;
    char buffer[4096];
    ssize_t got;
    while ((got = ::read(fd, buffer, sizeof buffer)) != 0) {
        if (got < 0) {
            if (errno == EINTR)
                continue;
            raiseForErrno(errno);
        }
        content.append(buffer, got);
    }
    return content;
}

bool writeAll(int fd, const QByteArray &content)
{
    for (qsizetype done = 0; done < content.size();) {
        const ssize_t written = ::write(fd, content.constData() + done, size_t(content.size() - done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        done += written;
    }
    return true;
}

/**
 * Replaces the ".hidden" file of the folder @p folderFd by @p content: a
 * new file beside it takes the old one's permission bits and owner, gets
 * the content on disk, and is renamed over the old one, so a reader sees
 * the old list or the new one, never a part. @p old is the old file's
 * status, or nullptr when there was none.
 */
void replaceHiddenList(int folderFd, const QByteArray &content, const struct stat *old)
{
    static unsigned counter = 0;
    QByteArray tempName;
    int fd = -1;
    for (int attempt = 0; fd < 0 && attempt < 100; ++attempt) {
        tempName
            = QByteArray(hiddenListName) + '.' + QByteArray::number(::getpid()) + '.' + QByteArray::number(++counter);
        fd = ::openat(folderFd, tempName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && errno != EEXIST)
            raiseForErrno(errno);
    }
    if (fd < 0)
        raiseForErrno(EEXIST);
    Descriptor file(fd);
    if (old) {
        ::fchmod(file.get(), old->st_mode & 07777);
        // Only root may give a file away; for anybody else the owner is already right.
        if (::fchown(file.get(), old->st_uid, old->st_gid) != 0) { }
    }
    const bool written = writeAll(file.get(), content) && ::fsync(file.get()) == 0;
    const int writeError = errno;
    if (!file.close() || !written) {
        ::unlinkat(folderFd, tempName.constData(), 0);
        raiseForErrno(written ? errno : writeError);
    }
    if (::renameat(folderFd, tempName.constData(), folderFd, hiddenListName) != 0) {
        const int error = errno;
        ::unlinkat(folderFd, tempName.constData(), 0);
        raiseForErrno(error);
    }
}

} // namespace

QByteArray editedHiddenList(const QByteArray &content, const QByteArray &name, bool hidden)
{
    const QList<QByteArrayView> lines = linesOf(content);
    auto namesItem = [&name](QByteArrayView line) { return comparedLine(line) == QByteArrayView(name); };
    if (hidden) {
        if (std::any_of(lines.begin(), lines.end(), namesItem))
            return content;
        const QByteArray ending = lines.isEmpty() || !lines.first().endsWith("\r\n") ? "\n" : "\r\n";
        QByteArray result = content;
        if (!result.isEmpty() && !result.endsWith('\n'))
            result += ending;
        return result + name + ending;
    }
    if (std::none_of(lines.begin(), lines.end(), namesItem))
        return content;
    QByteArray result;
    for (QByteArrayView line : lines) {
        if (!namesItem(line))
            result += line;
    }
    return result;
}

void setReadOnly(const QString &path, bool readOnly)
{
    const QByteArray encoded = FileNameCodec::encode(FileSystem::cleanPath(path));
    struct stat info;
    if (encoded.isEmpty() || ::stat(encoded.constData(), &info) != 0)
        raiseForErrno(encoded.isEmpty() ? ENOENT : errno);
    const mode_t mode = readOnly ? (info.st_mode & ~S_IWUSR) : (info.st_mode | S_IWUSR);
    if (mode == info.st_mode)
        return;
    if (::chmod(encoded.constData(), mode & 07777) != 0)
        raiseForErrno(errno);
}

void setHidden(const QString &path, bool hidden)
{
    const QByteArray encoded = FileNameCodec::encode(FileSystem::cleanPath(path));
    if (encoded == "/")
        throw RuntimeError(ErrorNumber::InvalidProcedureCall, QStringLiteral("The root folder cannot be hidden"));
    struct stat info;
    if (encoded.isEmpty() || ::lstat(encoded.constData(), &info) != 0)
        raiseForErrno(encoded.isEmpty() ? ENOENT : errno);
    const qsizetype slash = encoded.lastIndexOf('/');
    const QByteArray folder = slash == 0 ? QByteArray("/") : encoded.left(slash);
    const QByteArray name = encoded.mid(slash + 1);
    if (name.startsWith('.'))
        return; // hidden by its name, whatever the list says
    if (hidden && !isListable(name))
        throw RuntimeError(ErrorNumber::InvalidProcedureCall,
            QStringLiteral("A name with a line break or ending in a blank cannot be listed in '.hidden'"));

    const Descriptor folderFd(::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folderFd.isValid())
        raiseForErrno(errno);
    QByteArray content;
    struct stat old;
    const Descriptor list(::openat(folderFd.get(), hiddenListName, O_RDONLY | O_CLOEXEC));
    if (list.isValid()) {
        if (::fstat(list.get(), &old) != 0)
            raiseForErrno(errno);
        content = readAll(list.get());
    } else if (errno != ENOENT) {
        raiseForErrno(errno);
    }
    const QByteArray edited = editedHiddenList(content, name, hidden);
    if (edited == content)
        return;
    if (edited.isEmpty()) {
        if (::unlinkat(folderFd.get(), hiddenListName, 0) != 0)
            raiseForErrno(errno);
        return;
    }
    replaceHiddenList(folderFd.get(), edited, list.isValid() ? &old : nullptr);
}

void setAttributes(const QString &path, int attributes)
{
    const std::optional<FileEntry> entry = FileSystem::instance().entry(path);
    if (!entry)
        throw RuntimeError(ErrorNumber::PathNotFound);
    const int changed = (entry->attributes ^ attributes);
    if (changed & FileAttribute::ReadOnly)
        setReadOnly(path, attributes & FileAttribute::ReadOnly);
    if (changed & FileAttribute::Hidden)
        setHidden(path, attributes & FileAttribute::Hidden);
}

} // namespace Kelocontrols::FileAttributes
