#pragma once

#include <kelocontrols_export.h>

#include <QHash>
#include <QMimeDatabase>
#include <QMimeType>
#include <QString>

namespace Kelocontrols {

/**
 * The type texts of files and folders, process-wide and cached.
 *
 * A file's type is found from its name alone (the glob patterns of the
 * shared MIME database, never its content), so that listing a large folder
 * opens no file. The text is the MIME type's comment, such as
 * "plain text document"; QMimeDatabase localizes it by the process locale,
 * so a German session reads German texts. Each lower-case extension (or,
 * for a name without one, each whole name such as "Makefile") is looked up
 * once and then answered from the cache.
 *
 * Used from the user-interface thread only; the cache is not locked.
 */
class KELOCONTROLS_EXPORT FileTypes
{
public:
    /// The instance of the process, created on first use.
    static FileTypes &instance();

    /// The type text of a file by its name alone (glob match, never content): the MIME type's comment,
    /// cached per lower-case extension (per whole name when it has no extension).
    QString fileTypeText(const QString &fileName);

    /// The MIME type for a file name (same cache, glob only; application/octet-stream when nothing matches).
    QMimeType mimeTypeForFileName(const QString &fileName);

    /// The type text of folders (the comment of inode/directory, e.g. "Folder").
    QString folderTypeText();

private:
    FileTypes() = default;

    struct Type
    {
        QMimeType mimeType;
        QString text;
    };
    const Type &typeFor(const QString &fileName);

    QMimeDatabase m_database;
    QHash<QString, Type> m_byKey;
    QString m_folderText;
};

} // namespace Kelocontrols
