#pragma once

#include <kelocontrols_export.h>

#include "FileEntry.h"

#include <QList>
#include <QString>

namespace Kelocontrols {

/**
 * What FileSystem::listFolder() finds in a folder: its sub-folders and its
 * files, each list sorted by name without regard to case (ties broken by
 * the exact name).
 */
struct KELOCONTROLS_EXPORT FolderContents
{
    QString path; ///< the listed folder, absolute and cleaned
    QList<FileEntry> folders; ///< sub-folders, links to folders included
    QList<FileEntry> files; ///< everything else: files, links to files, devices, FIFOs, sockets, broken links
};

} // namespace Kelocontrols
