#pragma once

#include <kelocontrols_export.h>

#include "FileEntry.h"

#include <QByteArray>
#include <QList>
#include <QSet>
#include <QString>

namespace Kelocontrols {

/**
 * The sub-folders of one folder, read for a folder tree: names and the
 * Hidden / System bits only, in the order the directory gives them.
 *
 * A tree lists many folders to fill one level ahead, and needs no sizes or
 * dates, so entries the directory reports as folders are not looked at one
 * by one: only symbolic links and entries of unknown kind get a statx (a
 * link to a folder counts as a folder). The rules are FileSystem's:
 * Hidden for names beginning with "." or listed in the folder's ".hidden"
 * file (blanks and a CR at the end of a line ignored); System for folders
 * that are mount points of pseudo file systems and system plumbing, which
 * are the mount points that FileSystem does not list as drives.
 */
class KELOCONTROLS_EXPORT SubFolderList
{
public:
    /// The mount points (as file-name bytes) whose folders count as System: read from @p mountInfoPath.
    static QSet<QByteArray> systemMountPoints(const QString &mountInfoPath = QStringLiteral("/proc/self/mountinfo"));

    /**
     * The sub-folders of @p path (an absolute, cleaned path), each as a
     * FileEntry with its name and the Directory, Hidden and System bits.
     * @p systemMounts is what systemMountPoints() answers. Answers false
     * (and nothing) when the folder cannot be read.
     */
    static bool list(const QString &path, const QSet<QByteArray> &systemMounts, QList<FileEntry> &folders);
};

} // namespace Kelocontrols
