#pragma once

// Pieces of the file-system layer that the library's other listings share
// (the folder tree's sub-folder list), so each rule is written once.

#include <QByteArray>
#include <QSet>

namespace Kelocontrols::FileSystemDetail {

/// Undoes the octal escapes (\040 for a blank, \134 for a backslash ...) of a mountinfo field.
QByteArray unescapeMountBytes(const QByteArray &field);

/// The names of the ".hidden" file in the folder open as `folderFd`, one a
/// line, trailing blanks and CR removed; empty when there is none.
QSet<QByteArray> readHiddenList(int folderFd);

} // namespace Kelocontrols::FileSystemDetail
