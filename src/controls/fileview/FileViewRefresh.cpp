#include "FileViewRefresh_p.h"

#include "FileListModel.h"
#include "FileSystem.h"
#include "KelofileView_p.h"

#include <limits>

namespace Kelocontrols {

namespace {

/**
 * The set of names that occur more than once without regard to case among
 * @p folders and @p files. Each list is sorted without regard to case, so
 * twins within one list are neighbours; across the lists the folders' names
 * (few) decide. Hashes are compared first, so most names are never folded.
 */
QSet<CaseInsensitiveName> caseTwins(const QList<FileEntry> &folders, const QList<FileEntry> &files)
{
    QSet<CaseInsensitiveName> twins;
    QMultiHash<size_t, qsizetype> folderByHash;
    folderByHash.reserve(folders.size());
    const auto walk = [&](const QList<FileEntry> &list, bool againstFolders) {
        size_t previous = 0;
        for (qsizetype i = 0; i < list.size(); ++i) {
            const QString &name = list[i].name;
            const size_t hash = qHash(CaseInsensitiveName{name});
            if (i > 0 && hash == previous && name.compare(list[i - 1].name, Qt::CaseInsensitive) == 0) {
                twins.insert(CaseInsensitiveName{name});
            }
            previous = hash;
            if (!againstFolders) {
                folderByHash.insert(hash, i);
                continue;
            }
            for (auto it = folderByHash.constFind(hash); it != folderByHash.cend() && it.key() == hash; ++it) {
                if (folders[*it].name.compare(name, Qt::CaseInsensitive) == 0) {
                    twins.insert(CaseInsensitiveName{name});
                }
            }
        }
    };
    walk(folders, false);
    walk(files, !folders.isEmpty());
    return twins;
}

} // namespace

size_t qHash(const CaseInsensitiveName &key, size_t seed) noexcept
{
    // Folds as QString::compare(Qt::CaseInsensitive) does, without making a folded copy.
    size_t hash = seed;
    const QString &name = key.name;
    for (qsizetype i = 0; i < name.size(); ++i) {
        char32_t c = name.at(i).unicode();
        if (c < 0x80) {
            c = (c >= 'A' && c <= 'Z') ? c + ('a' - 'A') : c;
        } else if (QChar::isHighSurrogate(c) && i + 1 < name.size() && name.at(i + 1).isLowSurrogate()) {
            c = QChar::toCaseFolded(QChar::surrogateToUcs4(char16_t(c), name.at(++i).unicode()));
        } else {
            c = QChar::toCaseFolded(c);
        }
        hash = hash * 31 + c;
    }
    return hash ^ (hash >> 17);
}

bool operator==(const CaseInsensitiveName &a, const CaseInsensitiveName &b) noexcept
{
    return a.name.compare(b.name, Qt::CaseInsensitive) == 0;
}

FileViewRefresh::FileViewRefresh(KelofileView &view)
    : q(view)
{
}

bool FileViewRefresh::run()
{
    KelofileView::Private &d = *q.d;
    if (d.busy || d.path.isEmpty()) {
        return false;
    }
    KelofileView::Private::Busy busy(d);
    const FolderContents contents = FileSystem::instance().listFolder(d.path);
    FileListModel *model = d.model();
    model->markAllUnmet();
    forgetIndex();
    startInOrder();
    const QList<FileEntry> noFolders;
    const QList<FileEntry> &folders = d.showFolders ? contents.folders : noFolders;
    const QSet<CaseInsensitiveName> twins = caseTwins(folders, contents.files);

    bool changed = false;
    {
        FileListModel::Batch batch(model);
        for (const FileEntry &folder : folders) {
            if (d.rules.matches(folder.name)) {
                changed |= update(
                    folder, contents.path, true, !twins.isEmpty() && twins.contains(CaseInsensitiveName{folder.name}));
            }
        }
        for (const FileEntry &file : contents.files) {
            if (d.rules.matches(file.name)) {
                changed |= update(
                    file, contents.path, false, !twins.isEmpty() && twins.contains(CaseInsensitiveName{file.name}));
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
    return true;
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

void FileViewRefresh::startInOrder()
{
    m_inOrder = true;
    m_cursor = 0;
    m_orderGeneration = q.d->model()->layoutGeneration();
}

/*
 * While every entry so far was found at the next row, in order, the rows
 * before the cursor hold exactly the names met so far; a name without twins
 * differs from all of them without regard to case, so the row at the cursor,
 * if it bears the name, is the first item that does. A list that mirrors its
 * folder (as after a fill) is so matched without any index.
 */
int FileViewRefresh::findInOrder(const QString &name, bool caseTwins)
{
    const FileListModel *model = q.d->model();
    if (m_inOrder && !caseTwins && model->layoutGeneration() == m_orderGeneration && m_cursor < model->count()
        && model->row(m_cursor).realName() == name) {
        return m_cursor++;
    }
    m_inOrder = false;
    return -1;
}

int FileViewRefresh::find(const QString &name, bool caseTwins)
{
    if (m_inOrder) {
        const int row = findInOrder(name, caseTwins);
        if (row >= 0) {
            return row;
        }
    }
    syncIndex();
    const CaseInsensitiveName key{name};
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
        const CaseInsensitiveName key{model->row(m_indexed).realName()};
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
