#include "FileItemSource.h"

#include "CommonFile.h"
#include "Conversions.h"
#include "FileSystem.h"
#include "RuntimeError.h"

#include <QDateTime>

namespace Kelocontrols {

namespace {

enum SubItem {
    Size = 1,
    Type,
    Modified,
    Created,
    Changed,
    Folder,
    SortedSize,
    SortedModified,
    SortedCreated,
    RealName,
    Refresh,
    SortName
};

QDateTime localTime(qint64 msecs)
{
    return QDateTime::fromMSecsSinceEpoch(msecs);
}

QString changedText(const FileEntry &e)
{
    return FileItemSource::differInSeconds(e.modified, e.created) ? QStringLiteral("Yes") : QString();
}

} // namespace

int FileItemSource::add(Row row)
{
    m_rows.push_back(std::move(row));
    return int(m_rows.size()) - 1;
}

void FileItemSource::clear()
{
    m_rows.clear();
    m_rows.shrink_to_fit();
}

QString FileItemSource::sizeText(qint64 bytes)
{
    qint64 kilobytes;
    try {
        kilobytes = SizeInKB(double(bytes));
    } catch (const RuntimeError &) {
        // Beyond 2 TB the 32-bit kilobyte count overflows; show the true figure instead.
        kilobytes = (bytes + 1023) / 1024;
    }
    return QString::number(kilobytes) + QStringLiteral("KB");
}

QString FileItemSource::sortedNumber(qint64 value)
{
    return QStringLiteral("%1").arg(value, 12, 10, QLatin1Char('0'));
}

bool FileItemSource::differInSeconds(qint64 a, qint64 b)
{
    const auto seconds = [](qint64 ms) { return ms >= 0 ? ms / 1000 : -((-ms + 999) / 1000); };
    return seconds(a) != seconds(b);
}

bool FileItemSource::storeSubItemText(int token, int subItem, const QString &text)
{
    if (subItem != Refresh || token < 0 || token >= count()) {
        return false;
    }
    m_rows[size_t(token)].refreshMark = text;
    return true;
}

QStringList FileItemSource::texts(const Row &row) const
{
    QStringList list;
    list.reserve(SortName);
    for (int n = Size; n <= SortName; ++n) {
        list << text(row, n);
    }
    return list;
}

QString FileItemSource::subItemText(int token, int subItem) const
{
    if (token < 0 || token >= count()) {
        return QString();
    }
    return text(row(token), subItem);
}

QString FileItemSource::text(const Row &r, int subItem) const
{
    if (subItem == Refresh) {
        return r.refreshMark;
    }
    switch (r.kind) {
    case Kind::File:
        return fileText(r, subItem);
    case Kind::Folder:
        return folderText(r, subItem);
    case Kind::Drive:
        if (subItem == Type) {
            return r.typeText;
        }
        return subItem == RealName || subItem == SortName ? r.entry.name : QString();
    case Kind::Unavailable:
        return subItem == SortName ? QLatin1Char(' ') + r.entry.name : QString();
    }
    return QString();
}

QString FileItemSource::fileText(const Row &r, int subItem) const
{
    const FileEntry &e = r.entry;
    switch (subItem) {
    case Size:
        return sizeText(e.size);
    case Type:
        return r.typeText;
    case Modified:
        return formatGeneralDate(localTime(e.modified));
    case Created:
        return formatGeneralDate(localTime(e.created));
    case Changed:
        return changedText(e);
    case Folder:
        return r.folder;
    case SortedSize:
        return sortedNumber(e.size);
    case SortedModified:
        return formatSortableDateTime(localTime(e.modified));
    case SortedCreated:
        return formatSortableDateTime(localTime(e.created));
    case RealName:
    case SortName:
        return e.name;
    default:
        return QString();
    }
}

qint64 FileItemSource::fileCountOf(const Row &r)
{
    if (r.fileCount < 0) {
        r.fileCount = FileSystem::instance().fileCount(FileSystem::buildPath(r.folder, r.entry.name));
    }
    return r.fileCount;
}

QString FileItemSource::folderText(const Row &r, int subItem) const
{
    const FileEntry &e = r.entry;
    switch (subItem) {
    case Size:
        return r.details ? QString::number(fileCountOf(r)) : QString();
    case Type:
        return r.typeText;
    case Modified:
        return r.details ? formatGeneralDate(localTime(e.modified)) : QString();
    case Created:
        return r.details ? formatGeneralDate(localTime(e.created)) : QString();
    case Changed:
        return r.details ? changedText(e) : QString();
    case Folder:
        return r.folder;
    case SortedSize:
        return sortedNumber(fileCountOf(r));
    case SortedModified:
        return formatSortableDateTime(localTime(e.modified));
    case SortedCreated:
        return formatSortableDateTime(localTime(e.created));
    case RealName:
        return e.name;
    case SortName:
        return QLatin1Char(' ') + e.name;
    default:
        return QString();
    }
}

} // namespace Kelocontrols
