#include "DesktopTrash_p.h"

#include "FileNameCodec.h"
#include "FileOperations.h"
#include "FileSystem.h"

#include <QDateTime>
#include <QDir>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace Kelocontrols {

namespace {

QByteArray bytesOf(const QString &path)
{
    return FileNameCodec::encode(path);
}

/// The parent of a cleaned path as bytes ("/" for a top-level entry).
QByteArray parentOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    return slash <= 0 ? QByteArrayLiteral("/") : path.left(slash);
}

/// Makes the folder @p path (mode 0700) unless it is there; false when it cannot be made or is no real folder.
bool ensureFolder(const QByteArray &path)
{
    struct stat info;
    if (::lstat(path.constData(), &info) == 0)
        return S_ISDIR(info.st_mode);
    return ::mkdir(path.constData(), 0700) == 0 || errno == EEXIST;
}

/// Makes @p path and the folders above it that are missing, each with mode 0700.
bool ensureFolders(const QByteArray &path)
{
    struct stat info;
    if (::stat(path.constData(), &info) == 0)
        return S_ISDIR(info.st_mode);
    if (path != "/" && !ensureFolders(parentOf(path)))
        return false;
    return ensureFolder(path);
}

/// The device of @p path, or of the nearest folder above it that exists.
bool deviceOfNearest(QByteArray path, dev_t &device)
{
    struct stat info;
    while (::stat(path.constData(), &info) != 0) {
        if (path == "/")
            return false;
        path = parentOf(path);
    }
    device = info.st_dev;
    return true;
}

/// The top folder (mount point) of the file system that holds the entry @p path of device @p device.
QByteArray topDirOf(const QByteArray &path, dev_t device)
{
    QByteArray top = path;
    while (top != "/") {
        const QByteArray parent = parentOf(top);
        struct stat info;
        if (::stat(parent.constData(), &info) != 0 || info.st_dev != device)
            break;
        top = parent;
    }
    return top;
}

bool trashReady(const QByteArray &trash)
{
    return ensureFolder(trash) && ensureFolder(trash + "/files") && ensureFolder(trash + "/info");
}

} // namespace

QString DesktopTrash::homeTrash()
{
    QString data = qEnvironmentVariable("XDG_DATA_HOME");
    if (data.isEmpty() || !data.startsWith(QLatin1Char('/'))) {
        data = QDir::homePath() + QStringLiteral("/.local/share");
    }
    return FileSystem::cleanPath(data + QStringLiteral("/Trash"));
}

QString DesktopTrash::trashFor(const QString &path, QString *topDir, int *error)
{
    int failure = 0;
    int &err = error ? *error : failure;
    err = 0;
    const QByteArray entry = bytesOf(FileSystem::cleanPath(path));
    struct stat info;
    if (entry.isEmpty() || ::lstat(entry.constData(), &info) != 0) {
        err = entry.isEmpty() ? ENOENT : errno;
        return QString();
    }
    const QByteArray home = bytesOf(homeTrash());
    dev_t homeDevice;
    if (deviceOfNearest(home, homeDevice) && homeDevice == info.st_dev) {
        if (!ensureFolders(home) || !trashReady(home)) {
            err = errno ? errno : EACCES;
            return QString();
        }
        if (topDir)
            topDir->clear();
        return FileNameCodec::decode(home);
    }
    const QByteArray top = topDirOf(entry, info.st_dev);
    if (top == entry) {
        err = EBUSY; // a mount point stays where it is
        return QString();
    }
    const QByteArray base = top == "/" ? QByteArray() : top;
    const QByteArray uid = QByteArray::number(::getuid());
    // An administrator's shared $topdir/.Trash: a real folder with the sticky bit, one sub-folder per user.
    QByteArray trash;
    struct stat shared;
    if (::lstat(QByteArray(base + "/.Trash").constData(), &shared) == 0 && S_ISDIR(shared.st_mode)
        && (shared.st_mode & S_ISVTX) && trashReady(base + "/.Trash/" + uid)) {
        trash = base + "/.Trash/" + uid;
    } else {
        trash = base + "/.Trash-" + uid;
        struct stat own;
        const bool exists = ::lstat(trash.constData(), &own) == 0;
        if ((exists && (!S_ISDIR(own.st_mode) || own.st_uid != ::getuid())) || !trashReady(trash)) {
            err = errno ? errno : EACCES;
            return QString();
        }
    }
    if (topDir)
        *topDir = FileNameCodec::decode(top);
    return FileNameCodec::decode(trash);
}

QByteArray DesktopTrash::encodePath(const QString &path)
{
    return bytesOf(path).toPercentEncoding("/");
}

int DesktopTrash::moveToTrash(const QString &path)
{
    const QString clean = FileSystem::cleanPath(path);
    QString top;
    int error = 0;
    const QString trash = trashFor(clean, &top, &error);
    if (trash.isEmpty())
        return error ? error : EACCES;
    QString original = clean;
    if (!top.isEmpty())
        original = clean.mid(top == QLatin1String("/") ? 1 : top.size() + 1);
    const QByteArray info = "[Trash Info]\nPath=" + encodePath(original) + "\nDeletionDate="
        + QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")).toLatin1() + "\n";
    const QString name = clean.section(QLatin1Char('/'), -1);
    const QByteArray infoFolder = bytesOf(trash) + "/info/";
    for (int n = 1; n < 1000000; ++n) {
        const QString candidate = n == 1 ? name : name + QLatin1Char('.') + QString::number(n);
        const QByteArray infoPath = infoFolder + bytesOf(candidate) + ".trashinfo";
        // The exclusive create claims the name for this entry against other programs trashing at the same time.
        const int fd = ::open(infoPath.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd < 0) {
            if (errno == EEXIST)
                continue;
            return errno;
        }
        const bool written = ::write(fd, info.constData(), size_t(info.size())) == info.size();
        const bool closed = ::close(fd) == 0;
        if (!written || !closed) {
            ::unlink(infoPath.constData());
            return EIO;
        }
        const int moved = FileOperations::renameEntry(clean, trash + QStringLiteral("/files/") + candidate);
        if (moved == 0)
            return 0;
        ::unlink(infoPath.constData());
        if (moved != EEXIST && moved != ENOTEMPTY)
            return moved;
    }
    return EEXIST;
}

} // namespace Kelocontrols
