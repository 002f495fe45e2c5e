#include "FileViewFill_p.h"

#include "FileListModel.h"
#include "FileSystem.h"
#include "KelofileView_p.h"
#include "RuntimeError.h"

#include <limits>

namespace Kelocontrols {

FileViewFill::FileViewFill(KelofileView &view)
    : q(view)
{
}

bool FileViewFill::raise(void (KelofileView::*signal)(int &))
{
    int cancel = 0;
    (q.*signal)(cancel);
    return cancel == 0;
}

void FileViewFill::clearItems()
{
    q.d->model()->clear();
}

void FileViewFill::fill()
{
    KelofileView::Private &d = *q.d;
    if (d.busy) {
        return;
    }
    KelofileView::Private::Busy busy(d);
    if (!q.UserMode()) {
        clearItems();
        d.message.show(q.objectName() + QStringLiteral(": PathRoot set to '") + d.pathRoot + QLatin1Char('\''));
        return;
    }
    if (!raise(&KelofileView::ChangedFolder) || !raise(&KelofileView::BeforePaint)) {
        return;
    }
    clearItems();
    d.images.removePrograms();
    if (FileListFilter::isMyComputer(d.path)) {
        listMyComputer();
    } else if (FileListFilter::isMyFolders(d.path)) {
        listMyFolders();
    } else if (!d.path.isEmpty()) {
        listFolder();
    } else {
        return;
    }
    finish();
}

void FileViewFill::finish()
{
    q.d->message.show(q.d->model()->count() == 0 ? KelofileView::EmptyFolderMessage : QString());
    Q_EMIT q.AfterPaint();
}

void FileViewFill::listFolder()
{
    KelofileView::Private &d = *q.d;
    d.totalSize = 0;
    const FolderContents contents = FileSystem::instance().listFolder(d.path);
    FileListModel::Batch batch(d.model());
    if (d.showFolders) {
        for (const FileEntry &folder : contents.folders) {
            if (d.rules.matches(folder.name)) {
                addFolder(folder, contents.path, false);
            }
        }
    }
    for (const FileEntry &file : contents.files) {
        if (d.rules.matches(file.name)) {
            addToTotalSize(file.size);
            addFile(file, contents.path);
        }
    }
}

void FileViewFill::listMyComputer()
{
    const QList<DriveInfo> drives = FileSystem::instance().drives();
    FileListModel::Batch batch(q.d->model());
    for (const DriveInfo &drive : drives) {
        addDrive(drive);
    }
}

void FileViewFill::listMyFolders()
{
    KelofileView::Private &d = *q.d;
    d.myFoldersEntry.clear();
    d.enteredFromMyFolders = true;
    if (d.myFolders.isEmpty()) {
        Q_EMIT q.NeedMyFolders(d.myFolders);
    }
    d.totalSize = 0;
    clearItems();
    const FileSystem &fs = FileSystem::instance();
    FileListModel::Batch batch(d.model());
    const QStringList folders = d.myFolders; // a handler may edit the set while we walk it
    for (const QString &path : folders) {
        const std::optional<FileEntry> entry = fs.folderExists(path) ? fs.entry(path) : std::nullopt;
        if (!entry) {
            addUnavailable(path);
            continue;
        }
        FileEntry folder = *entry;
        const QString cleaned = FileSystem::cleanPath(path);
        if (folder.name.isEmpty()) {
            folder.name = cleaned; // the root of everything has no name of its own
        }
        addFolder(folder, FileSystem::parentFolderName(cleaned), fs.driveExists(cleaned));
    }
}

void FileViewFill::addToTotalSize(qint64 bytes)
{
    qint32 &total = q.d->totalSize;
    const qint64 sum = qint64(total) + bytes;
    if (sum > std::numeric_limits<qint32>::max()) {
        throw RuntimeError(ErrorNumber::Overflow);
    }
    total = qint32(sum);
}

int FileViewFill::append(FileListRow row, bool hidden)
{
    KelofileView::Private &d = *q.d;
    if (d.model()->count() == 0) {
        d.message.show(QString());
    }
    row.largeIcon = row.smallIcon = d.images.ensure(row, hidden);
    int index = d.model()->append(std::move(row)) + 1;
    Q_EMIT q.AfterAddItem(index);
    return index;
}

int FileViewFill::addFile(const FileEntry &entry, const QString &folder)
{
    if (!raise(&KelofileView::BeforeAddItem) || !q.d->rules.passesAttributes(entry)) {
        return 0;
    }
    return append(FileListRow::file(entry, folder), entry.attributes & FileAttribute::Hidden);
}

int FileViewFill::addFolder(const FileEntry &entry, const QString &folder, bool driveRoot)
{
    if (!raise(&KelofileView::BeforeAddItem)) {
        return 0;
    }
    // A drive's root is never hidden by the attribute rules; asking costs a mount-table read,
    // so only entries the rules would drop are asked.
    const bool dropped = !q.d->rules.passesAttributes(entry);
    const bool hiddenOrDropped = dropped || (entry.attributes & FileAttribute::Hidden);
    const bool isDriveRoot = driveRoot
        || (hiddenOrDropped && FileSystem::instance().driveExists(FileSystem::buildPath(folder, entry.name)));
    if (dropped && !isDriveRoot) {
        return 0;
    }
    const bool hidden = !isDriveRoot && (entry.attributes & FileAttribute::Hidden);
    return append(FileListRow::folderOf(entry, folder, q.d->showFolderDetails), hidden);
}

int FileViewFill::addDrive(const DriveInfo &drive)
{
    if (!raise(&KelofileView::BeforeAddItem)) {
        return 0;
    }
    return append(FileListRow::drive(drive), false);
}

void FileViewFill::addUnavailable(const QString &path)
{
    KelofileView::Private &d = *q.d;
    if (d.model()->count() == 0) {
        d.message.show(QString());
    }
    d.model()->append(FileListRow::unavailable(path));
}

} // namespace Kelocontrols
