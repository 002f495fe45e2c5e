#include "FileListFilter.h"

#include "Like.h"

namespace Kelocontrols {

bool FileListFilter::isMyComputer(const QString &path)
{
    return path.compare(MyComputer, Qt::CaseInsensitive) == 0;
}

bool FileListFilter::isMyFolders(const QString &path)
{
    return path.compare(MyFolders, Qt::CaseInsensitive) == 0;
}

bool FileListFilter::matches(const QString &name) const
{
    return pattern.isEmpty() || Like(name, pattern);
}

bool FileListFilter::passesAttributes(const FileEntry &entry) const
{
    if (!allowHidden && (entry.attributes & FileAttribute::Hidden)) {
        return false;
    }
    return allowSystem || !(entry.attributes & FileAttribute::System);
}

} // namespace Kelocontrols
