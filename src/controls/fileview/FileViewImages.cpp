#include "FileViewImages_p.h"

#include "FileIcon.h"
#include "FileIconProvider.h"
#include "FileListRow.h"
#include "ImageList.h"

namespace Kelocontrols {

namespace {

// A file name of the type an extension key stands for ("." stands for files without an extension).
QString representativeName(const QString &extensionKey)
{
    return extensionKey == QLatin1String(".") ? QStringLiteral("file") : QStringLiteral("file.") + extensionKey;
}

} // namespace

FileViewImages::FileViewImages(ImageList &large, ImageList &small)
    : m_large(large)
    , m_small(small)
{
}

void FileViewImages::preload()
{
    using P = FileIconProvider;
    for (const QString &key : {P::DriveUnavailable, P::FolderUnavailable}) {
        m_large.add(P::fixedPicture(key, FileIconSize::Large), key);
    }
    for (const QString &key : {P::SortDown, P::SortUp, P::DriveUnavailable, P::FolderUnavailable}) {
        m_small.add(P::fixedPicture(key, FileIconSize::Small), key);
    }
}

QString FileViewImages::ensure(const FileListRow &row, bool hidden)
{
    const QString key = row.baseImageKey();
    const bool folder = row.kind == FileListKind::Folder;
    load(key, row, false, false);
    if (folder) {
        load(OpenPrefix + key, row, true, false);
    }
    if (!hidden) {
        return key;
    }
    load(HiddenPrefix + key, row, false, true);
    if (folder) {
        load(HiddenPrefix + OpenPrefix + key, row, true, true);
    }
    return HiddenPrefix + key;
}

void FileViewImages::load(const QString &key, const FileListRow &row, bool open, bool ghosted)
{
    const QVariant tag = row.isProgram() ? QVariant(ProgramTag) : QVariant();
    if (!m_large.contains(key)) {
        m_large.add(picture(key, row, FileIconSize::Large, open, ghosted), key, tag);
    }
    if (!m_small.contains(key)) {
        m_small.add(picture(key, row, FileIconSize::Small, open, ghosted), key, tag);
    }
}

QPixmap FileViewImages::picture(const QString &key, const FileListRow &row, int size, bool open, bool ghosted)
{
    using P = FileIconProvider;
    const QPixmap fixed = P::fixedPicture(key, size); // "Drive Unavailable" for a network drive that is not ready
    if (!fixed.isNull()) {
        return ghosted ? P::ghost(fixed) : fixed;
    }
    switch (row.kind) {
    case FileListKind::File:
        // A type's picture, whichever file first needed the key; a program's own name is its key.
        return P::file(row.isProgram() ? row.entry.name : representativeName(row.baseImageKey()), size, ghosted);
    case FileListKind::Folder:
        return P::folder(size, open, ghosted);
    case FileListKind::Drive:
        return P::drive(row.driveType, size, ghosted);
    case FileListKind::Unavailable:
        break;
    }
    return P::fixedPicture(P::FolderUnavailable, size);
}

void FileViewImages::removePrograms()
{
    for (ImageList *list : {&m_large, &m_small}) {
        for (int i = list->count(); i >= 1; --i) {
            if (list->tag(i).toString() == ProgramTag) {
                list->remove(i);
            }
        }
    }
}

} // namespace Kelocontrols
