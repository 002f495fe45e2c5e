#include "FileViewSearch_p.h"

#include "FileListModel.h"
#include "FileSystem.h"
#include "KelofileView_p.h"
#include "RuntimeError.h"

#include <QCoreApplication>
#include <QScopeGuard>

#include <limits>

namespace Kelocontrols {

FileViewSearch::FileViewSearch(KelofileView &view)
    : q(view)
{
}

void FileViewSearch::run(const QString &pattern, const QString &root, bool subdirectories)
{
    KelofileView::Private &d = *q.d;
    if (d.busy) {
        return;
    }
    KelofileView::Private::Busy busy(d);
    m_running = true;
    m_stopRequested = false;
    const auto done = qScopeGuard([this] {
        m_running = false;
        m_found.clear();
    });
    d.path.clear();
    q.propertyChanged("Path");
    d.totalSize = 0;
    d.filler.clearItems();
    d.images.removePrograms();

    m_pattern = FileListFilter();
    m_pattern.pattern = pattern;
    m_subdirectories = subdirectories;
    m_totalSize = 0;
    m_sinceEvents.start();
    collect(root, true);
    if (m_totalSize > std::numeric_limits<qint32>::max()) {
        throw RuntimeError(ErrorNumber::Overflow);
    }
    d.totalSize = qint32(m_totalSize);

    {
        FileListModel::Batch batch(d.model());
        for (const Found &found : std::as_const(m_found)) {
            if (found.entry.isFolder()) {
                d.filler.addFolder(found.entry, found.folder, false);
            } else {
                d.filler.addFile(found.entry, found.folder);
            }
        }
    }
    d.filler.finish();
}

void FileViewSearch::collect(const QString &folder, bool isRoot)
{
    if (m_stopRequested) {
        return;
    }
    FolderContents contents;
    try {
        // Only names that match need their facts: the folders are read whatever their names, to descend.
        contents = FileSystem::instance().listFolder(
            folder, [this](const QString &name) { return m_pattern.matches(name); });
    } catch (const RuntimeError &) {
        if (isRoot) {
            throw; // the host asked for this folder: tell it why nothing can be found
        }
        return; // unreadable or gone since its parent was listed
    }
    for (const FileEntry &file : std::as_const(contents.files)) {
        if (m_pattern.matches(file.name)) {
            m_totalSize += file.size;
            m_found.append({file, contents.path});
        }
    }
    const bool allowSystem = q.d->rules.allowSystem;
    for (const FileEntry &sub : std::as_const(contents.folders)) {
        const bool descend = m_subdirectories && !(sub.attributes & FileAttribute::Alias)
            && (allowSystem || !(sub.attributes & FileAttribute::System));
        if (descend) {
            keepPainting();
            collect(FileSystem::buildPath(contents.path, sub.name), false);
        }
        if (m_pattern.matches(sub.name)) {
            m_found.append({sub, contents.path});
        }
    }
}

void FileViewSearch::keepPainting()
{
    if (m_sinceEvents.elapsed() >= PaintEveryMs) {
        QCoreApplication::processEvents();
        m_sinceEvents.restart();
    }
}

} // namespace Kelocontrols
