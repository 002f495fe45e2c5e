#pragma once

#include <kelocontrols_export.h>

#include <QString>

namespace Kelocontrols {

/**
 * A folder as the naming services see it: its own name and full path.
 *
 * The name is the last component of the path; it is empty only for "/",
 * the root of the whole tree, which is named after its drive instead.
 */
struct KELOCONTROLS_EXPORT FolderInfo
{
    QString name; ///< last path component, "" for "/"
    QString path; ///< absolute, cleaned path without a trailing "/" (except "/" itself)
    bool exists = false; ///< the path names an existing folder

    friend bool operator==(const FolderInfo &, const FolderInfo &) = default;
};

} // namespace Kelocontrols
