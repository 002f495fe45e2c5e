#include "FileViewRefresh_p.h"

#include "FileListModel.h"
#include "FileSystem.h"
#include "KelofileView_p.h"

#include <limits>

namespace Kelocontrols {

namespace {

QString folded(const QString &name)
{
    return name.toCaseFolded();
}

/**
 * The folded names that occur more than once among @p folders and @p files
 * (each list sorted without regard to case, so twins within one list are
 * neighbours; across the lists a small set of the folders' names decides).
 */
QSet<QString> caseTwins(const QList<FileEntry> &folders, const QList<FileEntry> &files)
{
    QSet<QString> twins;
    const auto neighbours = [&twins](const QList<FileEntry> &list) {
        for (qsizetype i = 1; i < list.size(); ++i) {
            if (list[i].name.compare(list[i - 1].name, Qt::CaseInsensitive) == 0) {
                twins.insert(folded(list[i].name));
            }
        }
    };
    neighbours(folders);
    neighbours(files);
    if (!folders.isEmpty()) {
        QSet<QString> folderNames;
        folderNames.reserve(folders.size());
        for (const FileEntry &f : folders) {
            folderNames.insert(folded(f.name));
        }
        for (const FileEntry &f : files) {
            const QString key = folded(f.name);
            if (folderNames.contains(key)) {
                twins.insert(key);
            }
        }
    }
    return twins;
}

} // namespace

FileViewRefresh::FileViewRefresh(KelofileView &view)
    : q(view)
{
}

void FileViewRefresh::run()
{
    KelofileView::Private &d = *q.d;
    if (d.busy || d.path.isEmpty()) {
        return;
    }
    KelofileView::Private::Busy busy(d);
    const FolderContents contents = FileSystem::instance().listFolder(d.path);
    FileListModel *model = d.model();
    model->markAllUnmet();
    forgetIndex();
    const QList<FileEntry> noFolders;
    const QList<FileEntry> &folders = d.showFolders ? contents.folders : noFolders;
    const QSet<QString> twins = caseTwins(folders, contents.files);

    bool changed = false;
    {
        FileListModel::Batch batch(model);
        for (const FileEntry &folder : folders) {
            if (d.rules.matches(folder.name)) {
                changed |= update(folder, contents.path, true, !twins.isEmpty() && twins.contains(folded(folder.name)));
            }
        }
        for (const FileEntry &file : contents.files) {
            if (d.rules.matches(file.name)) {
                changed |= update(file, contents.path, false, !twins.isEmpty() && twins.contains(folded(file.name)));
            }
        }
    }
    for (int row = model->count() - 1; row >= 0; --row) {
        if (model->row(row).unmet) {
            model->remove(row);
            changed = true;
        }
    }
    forgetIndex();
    d.filler.finish();
    if (changed) {
        Q_EMIT q.RefreshFoundChanges();
    }
}

// Updates the item of one entry on disk, or adds it; true when that changed the list.
bool FileViewRefresh::update(const FileEntry &entry, const QString &folder, bool isFolder, bool caseTwins)
{
    KelofileView::Private &d = *q.d;
    FileListModel *model = d.model();
    const int row = find(entry.name, caseTwins);
    if (row < 0) {
        isFolder ? d.filler.addFolder(entry, folder, false) : d.filler.addFile(entry, folder);
        return true;
    }
    const FileListKind kind = isFolder ? FileListKind::Folder : FileListKind::File;
    const FileListRow &old = model->row(row);
    bool changed = false;
    if (!old.holdsFacts(entry, folder, kind, d.showFolderDetails)) {
        FileListRow fresh = isFolder ? FileListRow::folderOf(entry, folder, d.showFolderDetails, &old)
                                     : FileListRow::file(entry, folder);
        changed = model->updateFacts(row, std::move(fresh));
    }
    model->setUnmet(row, false);
    return changed;
}

int FileViewRefresh::find(const QString &name, bool caseTwins)
{
    syncIndex();
    const QString key = folded(name);
    const auto first = m_firstRow.constFind(key);
    if (first == m_firstRow.constEnd()) {
        return -1;
    }
    if (!caseTwins) {
        return *first; // the first item whose RealName equals the name without regard to case
    }
    QList<int> candidates = m_laterRows.value(key);
    candidates.prepend(*first);
    const FileListModel *model = q.d->model();
    for (int row : candidates) {
        const FileListRow &r = model->row(row);
        if (r.unmet && r.realName() == name) {
            return row;
        }
    }
    for (int row : candidates) {
        if (model->row(row).unmet) {
            return row;
        }
    }
    return -1;
}

// The index covers the list as it is now: rebuilt when rows went or were renamed
// (a handler may have done either), extended by the rows appended since.
void FileViewRefresh::syncIndex()
{
    const FileListModel *model = q.d->model();
    if (model->layoutGeneration() != m_generation || m_indexed > model->count()) {
        m_firstRow.clear();
        m_laterRows.clear();
        m_firstRow.reserve(model->count());
        m_indexed = 0;
        m_generation = model->layoutGeneration();
    }
    for (; m_indexed < model->count(); ++m_indexed) {
        const QString key = folded(model->row(m_indexed).realName());
        const auto found = m_firstRow.constFind(key);
        if (found == m_firstRow.constEnd()) {
            m_firstRow.insert(key, m_indexed);
        } else {
            m_laterRows[key].append(m_indexed);
        }
    }
}

void FileViewRefresh::forgetIndex()
{
    m_firstRow.clear();
    m_laterRows.clear();
    m_generation = std::numeric_limits<quint64>::max();
    m_indexed = 0;
}

} // namespace Kelocontrols
