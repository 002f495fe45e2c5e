#pragma once

#include "FileEntry.h"

#include <kelocontrols_export.h>

#include <QString>

#include <memory>

namespace Kelocontrols {

class LikePattern;

/**
 * Which entries a file list shows: the name pattern and the hidden and
 * system rules, and the two pseudo-paths. The file view and the folder
 * tree list through the same rules.
 */
class KELOCONTROLS_EXPORT FileListFilter
{
public:
    /// The pseudo-paths, compared without regard to case.
    static inline const QString MyComputer = QStringLiteral("My Computer");
    static inline const QString MyFolders = QStringLiteral("My Folders");

    static bool isMyComputer(const QString &path);
    static bool isMyFolders(const QString &path);

    /// A Like pattern (* ? # [list]) compared without regard to case; "" lets everything through.
    QString pattern;
    bool allowHidden = false;
    bool allowSystem = false;

    /// Whether @p name matches pattern; the pattern is compiled once for as long as it stays the same.
    bool matches(const QString &name) const;
    /// Whether @p entry passes the hidden and system rules.
    bool passesAttributes(const FileEntry &entry) const;

private:
    mutable std::shared_ptr<const LikePattern> m_compiled; ///< pattern compiled, when it was m_compiledFor
    mutable QString m_compiledFor;
};

} // namespace Kelocontrols
