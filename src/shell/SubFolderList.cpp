#include "SubFolderList.h"

#include "FileNameCodec.h"
#include "FileSystem.h"

#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

namespace Kelocontrols {

namespace {

/// Undoes the octal escapes of a mountinfo field (\040 for a blank ...).
QByteArray unescaped(const QByteArray &field)
{
    QByteArray out;
    out.reserve(field.size());
    for (qsizetype i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size() && field[i + 1] >= '0' && field[i + 1] <= '7') {
            out.append(char(((field[i + 1] - '0') << 6) | ((field[i + 2] - '0') << 3) | (field[i + 3] - '0')));
            i += 3;
        } else {
            out.append(field[i]);
        }
    }
    return out;
}

QSet<QByteArray> hiddenNames(int folderFd)
{
    QSet<QByteArray> names;
    const int fd = ::openat(folderFd, ".hidden", O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return names;
    }
    QByteArray content;
    char buffer[4096];
    constexpr qsizetype maximumSize = 4 * 1024 * 1024; // a list, not a data file: read no further
    for (ssize_t got; content.size() < maximumSize && (got = ::read(fd, buffer, sizeof buffer)) > 0;) {
        content.append(buffer, got);
    }
    ::close(fd);
    for (QByteArray line : content.split('\n')) {
        while (!line.isEmpty() && (line.endsWith(' ') || line.endsWith('\t') || line.endsWith('\r'))) {
            line.chop(1);
        }
        if (!line.isEmpty()) {
            names.insert(line);
        }
    }
    return names;
}

} // namespace

QSet<QByteArray> SubFolderList::systemMountPoints(const QString &mountInfoPath)
{
    QFile table(mountInfoPath);
    if (!table.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QByteArray text = table.readAll();
    QSet<QByteArray> points;
    for (const QByteArray &line : text.split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() > 4) {
            points.insert(unescaped(fields[4]));
        }
    }
    // What FileSystem lists as drives is no system folder; the rest (proc, sysfs, /run plumbing ...) is.
    FileSystem::Probes cheap;
    cheap.mountInfoPath = mountInfoPath;
    cheap.isFileMount = [](const QString &) { return false; };
    cheap.statVolume = [](const QString &, qint64 &, qint64 &) { return false; };
    cheap.volumeLabel = [](const QString &) { return QString(); };
    cheap.isRemovable = [](const QString &) { return false; };
    for (const DriveInfo &drive : FileSystem::parseMountInfo(text, cheap)) {
        points.remove(FileNameCodec::encode(drive.rootPath));
    }
    return points;
}

bool SubFolderList::list(const QString &path, const QSet<QByteArray> &systemMounts, QList<FileEntry> &folders)
{
    QByteArray folderPath = FileNameCodec::encode(path);
    const int fd = ::open(folderPath.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    DIR *dir = ::fdopendir(fd);
    if (!dir) {
        ::close(fd);
        return false;
    }
    const QSet<QByteArray> hidden = hiddenNames(fd);
    if (!folderPath.endsWith('/')) {
        folderPath += '/';
    }
    while (const dirent *found = ::readdir(dir)) {
        const char *name = found->d_name;
        if (std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0) {
            continue;
        }
        if (found->d_type != DT_DIR) {
            if (found->d_type != DT_LNK && found->d_type != DT_UNKNOWN) {
                continue;
            }
            struct statx info;
            if (::statx(fd, name, AT_NO_AUTOMOUNT | AT_STATX_DONT_SYNC, STATX_TYPE, &info) != 0
                || !S_ISDIR(info.stx_mode)) {
                continue;
            }
        }
        const QByteArray bytes = QByteArray::fromRawData(name, qsizetype(std::strlen(name)));
        FileEntry entry;
        entry.name = FileNameCodec::decode(bytes);
        entry.attributes = FileAttribute::Directory;
        if (found->d_type == DT_LNK) {
            entry.attributes |= FileAttribute::Alias;
        }
        if (name[0] == '.' || (!hidden.isEmpty() && hidden.contains(bytes))) {
            entry.attributes |= FileAttribute::Hidden;
        }
        if (!systemMounts.isEmpty() && systemMounts.contains(folderPath + bytes)) {
            entry.attributes |= FileAttribute::System;
        }
        folders.append(std::move(entry));
    }
    ::closedir(dir);
    return true;
}

} // namespace Kelocontrols
