#pragma once

// Builds small trees of files, folders and links on disk from a text
// description, and reads a tree back into the same form, so a test states
// exactly what it expects on disk: every entry, nothing extra. One entry per
// string, paths relative to the root: "a/" a folder, "a/x.txt=text" a file
// and its contents, "a/ln->target" a symbolic link and its target. Names may
// hold any character but "=" and "->"; names that are not UTF-8 travel as
// FileNameCodec strings.

#include <Kelocontrols/FileNameCodec.h>
#include <Kelocontrols/FileOperations.h>

#include <QDir>
#include <QFile>
#include <QStringList>
#include <QTest>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace KeloTest {

inline QByteArray diskPath(const QString &path)
{
    return Kelocontrols::FileNameCodec::encode(path);
}

/// Writes @p contents to a new file at @p path (its folder must exist).
inline bool writeFileAt(const QString &path, const QByteArray &contents)
{
    const int fd = ::open(diskPath(path).constData(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0)
        return false;
    const bool ok = ::write(fd, contents.constData(), size_t(contents.size())) == contents.size();
    return ::close(fd) == 0 && ok;
}

/// Empties the folder @p root, whatever its entries are named (QDir cannot remove names that are not UTF-8).
inline bool emptyFolder(const QString &root)
{
    const bool ok = Kelocontrols::FileOperations::deleteFolder(root);
    return ::mkdir(diskPath(root).constData(), 0755) == 0 && ok;
}

/// Creates the entries of @p tree below @p root; false when one cannot be made.
inline bool makeTree(const QString &root, const QStringList &tree)
{
    for (const QString &entry : tree) {
        const QString base = root + QLatin1Char('/');
        if (entry.endsWith(QLatin1Char('/'))) {
            if (::mkdir(diskPath(base + entry.chopped(1)).constData(), 0755) != 0)
                return false;
        } else if (const qsizetype arrow = entry.indexOf(QStringLiteral("->")); arrow >= 0) {
            if (::symlink(diskPath(entry.mid(arrow + 2)).constData(), diskPath(base + entry.left(arrow)).constData())
                != 0)
                return false;
        } else {
            const qsizetype eq = entry.indexOf(QLatin1Char('='));
            if (eq < 0 || !writeFileAt(base + entry.left(eq), diskPath(entry.mid(eq + 1))))
                return false;
        }
    }
    return true;
}

inline void readTreeInto(const QByteArray &folder, const QString &prefix, QStringList &tree)
{
    DIR *dir = ::opendir(folder.constData());
    if (!dir)
        return;
    while (const dirent *e = ::readdir(dir)) {
        const QByteArray name(e->d_name);
        const QByteArray full = folder + '/' + name;
        const QString relative = prefix + Kelocontrols::FileNameCodec::decode(name);
        struct stat info;
        if (name == "." || name == ".." || ::lstat(full.constData(), &info) != 0)
            continue;
        if (S_ISDIR(info.st_mode)) {
            tree.append(relative + QLatin1Char('/'));
            readTreeInto(full, relative + QLatin1Char('/'), tree);
        } else if (S_ISLNK(info.st_mode)) {
            char target[4096];
            const ssize_t n = ::readlink(full.constData(), target, sizeof target);
            tree.append(relative + QStringLiteral("->") + Kelocontrols::FileNameCodec::decode(target, n > 0 ? n : 0));
        } else {
            QByteArray contents = "<unreadable>";
            if (const int fd = ::open(full.constData(), O_RDONLY); fd >= 0) {
                contents.clear();
                char buffer[65536];
                for (ssize_t n; (n = ::read(fd, buffer, sizeof buffer)) > 0;)
                    contents.append(buffer, n);
                ::close(fd);
            }
            tree.append(relative + QLatin1Char('=') + Kelocontrols::FileNameCodec::decode(contents));
        }
    }
    ::closedir(dir);
}

/// @p tree sorted, for comparing with readTree().
inline QStringList sorted(QStringList tree)
{
    std::sort(tree.begin(), tree.end());
    return tree;
}

/// Every entry below @p root in the form makeTree() takes, sorted.
inline QStringList readTree(const QString &root)
{
    QStringList tree;
    readTreeInto(diskPath(root), QString(), tree);
    return sorted(tree);
}

} // namespace KeloTest
