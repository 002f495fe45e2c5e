#include "FileListRow.h"

#include "CommonFile.h"
#include "Conversions.h"
#include "DriveInfo.h"
#include "FileListModel.h"
#include "FileSystem.h"
#include "FileTypes.h"
#include "RuntimeError.h"

#include <QDateTime>

namespace Kelocontrols {

namespace {

using Column = FileListModel::Column;

const QString ExeExtension = QStringLiteral("exe");
// Files without an extension share this image key; no extension can hold a dot.
const QString NoExtensionKey = QStringLiteral(".");

QDateTime localTime(qint64 msecs)
{
    return QDateTime::fromMSecsSinceEpoch(msecs);
}

bool sameText(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

} // namespace

QString FileListRow::sizeText(qint64 bytes)
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

QString FileListRow::sortedNumber(qint64 value)
{
    return QStringLiteral("%1").arg(value, 12, 10, QLatin1Char('0'));
}

bool FileListRow::differInSeconds(qint64 a, qint64 b)
{
    const auto seconds = [](qint64 ms) { return ms >= 0 ? ms / 1000 : -((-ms + 999) / 1000); };
    return seconds(a) != seconds(b);
}

FileListRow FileListRow::file(const FileEntry &entry, const QString &folder)
{
    FileListRow row;
    row.entry = entry;
    row.folder = folder;
    row.typeText = FileTypes::instance().fileTypeText(entry.name);
    row.kind = FileListKind::File;
    row.largeIcon = row.smallIcon = row.baseImageKey();
    return row;
}

FileListRow FileListRow::folderOf(
    const FileEntry &entry, const QString &folder, bool details, const FileListRow *previous)
{
    FileListRow row;
    row.entry = entry;
    row.folder = folder;
    row.typeText = FileTypes::instance().folderTypeText();
    row.kind = FileListKind::Folder;
    row.details = details;
    row.largeIcon = row.smallIcon = row.typeText;
    if (previous && previous->kind == FileListKind::Folder && previous->countStillValidFor(entry)) {
        row.fileCount = previous->fileCount;
        row.countStamp = previous->countStamp;
    } else {
        row.countFiles();
    }
    return row;
}

FileListRow FileListRow::drive(const DriveInfo &drive)
{
    FileListRow row;
    row.entry.name = drive.rootPath;
    row.entry.attributes = FileAttribute::Directory;
    row.typeText = DriveTypeName(drive);
    row.kind = FileListKind::Drive;
    row.driveType = quint8(drive.driveType);
    row.largeIcon = row.smallIcon = row.typeText;
    return row;
}

FileListRow FileListRow::unavailable(const QString &path)
{
    FileListRow row;
    row.entry.name = path;
    row.kind = FileListKind::Unavailable;
    row.largeIcon = row.smallIcon = QStringLiteral("FolderUnavailable");
    return row;
}

FileListRow::Extras &FileListRow::ensureExtras()
{
    if (!extras) {
        extras = std::make_unique<Extras>();
    }
    return *extras;
}

void FileListRow::countFiles()
{
    fileCount = FileSystem::instance().fileCount(path());
    countStamp = entry.statusChanged;
    // A change in the same clock tick as the one the stamp shows would not move it again.
    countRacy = countStamp == 0 || QDateTime::currentMSecsSinceEpoch() - countStamp < RacyWindowMs;
}

bool FileListRow::countStillValidFor(const FileEntry &now) const
{
    return !countRacy && now.statusChanged == countStamp && now.statusChanged != 0;
}

QString FileListRow::text() const
{
    if (extras && extras->ownText) {
        return extras->text;
    }
    return kind == FileListKind::Unavailable ? entry.name + QStringLiteral(" (Unavailable)") : entry.name;
}

QString FileListRow::realName() const
{
    if (extras && extras->ownRealName) {
        return extras->realName;
    }
    return kind == FileListKind::Unavailable ? QString() : entry.name;
}

QString FileListRow::path() const
{
    switch (kind) {
    case FileListKind::Drive:
        return entry.name;
    case FileListKind::Unavailable:
        return QString();
    default:
        return FileSystem::buildPath(folder, entry.name);
    }
}

bool FileListRow::isProgram() const
{
    return kind == FileListKind::File
        && FileSystem::extensionName(entry.name).compare(ExeExtension, Qt::CaseInsensitive) == 0;
}

QString FileListRow::baseImageKey() const
{
    switch (kind) {
    case FileListKind::File: {
        if (isProgram()) {
            return entry.name; // each program has its own icon
        }
        const QString extension = FileSystem::extensionName(entry.name);
        return extension.isEmpty() ? NoExtensionKey : extension;
    }
    case FileListKind::Unavailable:
        return QStringLiteral("FolderUnavailable");
    default:
        return typeText;
    }
}

QString FileListRow::columnText(int column) const
{
    if (column == Column::Name) {
        return text();
    }
    if (column == Column::Refresh) {
        return unmet ? QStringLiteral("RemoveThis") : QString();
    }
    if (column == Column::RealName) {
        return realName();
    }
    const bool isFile = kind == FileListKind::File;
    const bool folderFacts = kind == FileListKind::Folder;
    const bool shown = isFile || (folderFacts && details); // the visible size and date columns
    switch (column) {
    case Column::Size:
        return isFile ? sizeText(entry.size) : (shown ? QString::number(fileCount) : QString());
    case Column::Type:
        return kind == FileListKind::Unavailable ? QString() : typeText;
    case Column::Modified:
        return shown ? formatGeneralDate(localTime(entry.modified)) : QString();
    case Column::Created:
        return shown ? formatGeneralDate(localTime(entry.created)) : QString();
    case Column::Changed:
        return shown && differInSeconds(entry.modified, entry.created) ? QStringLiteral("Yes") : QString();
    case Column::Folder:
        return folder;
    case Column::SortedSize:
        return isFile ? sortedNumber(entry.size) : (folderFacts ? sortedNumber(fileCount) : QString());
    case Column::SortedModified:
        return isFile || folderFacts ? formatSortableDateTime(localTime(entry.modified)) : QString();
    case Column::SortedCreated:
        return isFile || folderFacts ? formatSortableDateTime(localTime(entry.created)) : QString();
    case Column::SortName:
        switch (kind) {
        case FileListKind::File:
        case FileListKind::Drive:
            return entry.name;
        default:
            return QLatin1Char(' ') + entry.name; // folders before files in an ascending sort
        }
    default:
        return QString();
    }
}

QVariant FileListRow::rawValue(int column) const
{
    const bool facts = kind == FileListKind::File || kind == FileListKind::Folder;
    switch (column) {
    case Column::Size:
    case Column::SortedSize:
        return kind == FileListKind::File ? entry.size : (kind == FileListKind::Folder ? fileCount : qint64(0));
    case Column::Modified:
    case Column::SortedModified:
        return facts ? QVariant(localTime(entry.modified)) : QVariant();
    case Column::Created:
    case Column::SortedCreated:
        return facts ? QVariant(localTime(entry.created)) : QVariant();
    case Column::Changed:
        return facts && differInSeconds(entry.modified, entry.created);
    case Column::Refresh:
        return unmet;
    default:
        return columnText(column);
    }
}

bool FileListRow::holdsFacts(const FileEntry &now, const QString &folder, FileListKind kind, bool details) const
{
    if (this->kind != kind || entry.name != now.name || entry.size != now.size || entry.modified != now.modified
        || entry.created != now.created || this->folder != folder) {
        return false;
    }
    return kind != FileListKind::Folder || (this->details == details && countStillValidFor(now));
}

bool FileListRow::sameTexts(const FileListRow &fresh) const
{
    if (kind != fresh.kind || details != fresh.details) {
        return false;
    }
    const bool sizeSame = kind == FileListKind::Folder ? fileCount == fresh.fileCount : entry.size == fresh.entry.size;
    return sizeSame && !differInSeconds(entry.modified, fresh.entry.modified)
        && !differInSeconds(entry.created, fresh.entry.created) && sameText(entry.name, fresh.entry.name)
        && sameText(typeText, fresh.typeText) && sameText(folder, fresh.folder);
}

bool FileListRow::takeFacts(FileListRow &&fresh)
{
    const bool changed = !sameTexts(fresh);
    if (sameText(entry.name, fresh.entry.name)) {
        fresh.entry.name = entry.name; // a change of case only is no change
    }
    if (sameText(folder, fresh.folder)) {
        fresh.folder = folder;
    }
    if (sameText(typeText, fresh.typeText)) {
        fresh.typeText = typeText;
    }
    entry = std::move(fresh.entry);
    folder = std::move(fresh.folder);
    typeText = std::move(fresh.typeText);
    fileCount = fresh.fileCount;
    countStamp = fresh.countStamp;
    countRacy = fresh.countRacy;
    kind = fresh.kind;
    driveType = fresh.driveType;
    details = fresh.details;
    return changed;
}

} // namespace Kelocontrols
