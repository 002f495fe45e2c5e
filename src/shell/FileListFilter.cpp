#include "FileListFilter.h"

#include "LikePattern_p.h"

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
    if (pattern.isEmpty()) {
        return true;
    }
    if (!m_compiled || m_compiledFor != pattern) {
        m_compiled = std::make_shared<const LikePattern>(pattern); // a bad pattern raises its error at every call
        m_compiledFor = pattern;
    }
    return m_compiled->matches(name);
}

bool FileListFilter::passesAttributes(const FileEntry &entry) const
{
    if (!allowHidden && (entry.attributes & FileAttribute::Hidden)) {
        return false;
    }
    return allowSystem || !(entry.attributes & FileAttribute::System);
}

} // namespace Kelocontrols
