#include "SubFolderList.h"

#include "FileSystem_p.h"

#include "FileNameCodec.h"
#include "FileSystem.h"

#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

namespace Kelocontrols {

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
            points.insert(FileSystemDetail::unescapeMountBytes(fields[4]));
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
    const QSet<QByteArray> hidden = FileSystemDetail::readHiddenList(fd);
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
