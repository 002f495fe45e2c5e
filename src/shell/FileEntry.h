#pragma once

#include <kelocontrols_export.h>

#include <QString>
#include <QtGlobal>

namespace Kelocontrols {

/**
 * The attribute bits of FileEntry::attributes, valued as the classic
 * file-attribute codes so hosts can test them the same way.
 */
namespace FileAttribute {
constexpr int Normal = 0; ///< none of the bits below
constexpr int ReadOnly = 1; ///< the owner's write permission bit is clear
constexpr int Hidden = 2; ///< the name begins with "." or is listed in its folder's ".hidden" file
/// Neither a regular file nor a folder (device, socket, FIFO, broken link), or a pseudo file-system mount point.
constexpr int System = 4;
constexpr int Directory = 16; ///< a folder, or a symbolic link to one
constexpr int Archive = 32; ///< a regular file (or a link to one)
constexpr int Alias = 1024; ///< a symbolic link
} // namespace FileAttribute

/**
 * One file or folder of a listing: its name, size, dates and attributes.
 *
 * Dates are milliseconds since 1970-01-01 00:00 UTC. A symbolic link is
 * described by what it points to (size, dates, kind) and carries the Alias
 * bit; a broken link by the link itself.
 */
struct KELOCONTROLS_EXPORT FileEntry
{
    QString name; ///< the name, decoded losslessly (FileNameCodec)
    qint64 size = 0; ///< bytes for files; 0 for folders
    qint64 modified = 0; ///< last modification (mtime)
    /// Creation (birth time) when the file system records it; otherwise the
    /// modification time, so that "created" and "modified" compare equal
    /// when the creation time is unknown.
    qint64 created = 0;
    qint64 accessed = 0; ///< last access (atime)
    /// Last change of the entry's inode (ctime): any write, rename, link or attribute change
    /// moves it, and no program can set it back. For a folder it moves whenever an entry is
    /// added, removed or renamed inside, even when the modification time is restored.
    /// 0 when the file system does not report it.
    qint64 statusChanged = 0;
    int attributes = 0; ///< FileAttribute bits
    bool createdKnown = false; ///< true when created is a real birth time

    bool isFolder() const { return attributes & FileAttribute::Directory; }

    friend bool operator==(const FileEntry &, const FileEntry &) = default;
};

} // namespace Kelocontrols

// A QString and plain values: safe to move in memory, so lists of entries grow by reallocation.
Q_DECLARE_TYPEINFO(Kelocontrols::FileEntry, Q_RELOCATABLE_TYPE);
