#pragma once

#include <QPixmap>
#include <QString>

namespace Kelocontrols {

class ImageList;
struct FileListRow;

/**
 * The file list's two image lists, kept in step: every key an item uses is
 * in the large (32 px) and the small (16 px) list.
 *
 * Keys are loaded on first use from FileIconProvider, by what the key
 * stands for (a file type, the folder type, a drive type), never by the one
 * entry that first needs it: a virtual folder with nothing on disk loads the
 * folder picture like any other folder. A hidden item's key is "HIDDEN_" +
 * key with a washed-out copy; a folder's key also gets its open form under
 * "OPEN_" + key (and "HIDDEN_OPEN_" + key for a hidden folder). A key
 * missing from either list (the host removed it) is loaded again into that
 * list. So a folder of 100,000 files with 30 extensions loads 30 icons.
 */
class FileViewImages
{
public:
    static inline const QString HiddenPrefix = QStringLiteral("HIDDEN_");
    static inline const QString OpenPrefix = QStringLiteral("OPEN_");
    /// The tag of per-program images, dropped at each fill.
    static inline const QString ProgramTag = QStringLiteral("exe");

    FileViewImages(ImageList &large, ImageList &small);

    /// Adds the fixed images: "Drive Unavailable" and "FolderUnavailable" to both lists, "SortDown" and "SortUp" to the
    /// small one.
    void preload();

    /**
     * Makes sure the key of @p row is in both lists, with @p hidden also its
     * "HIDDEN_" form, and for a folder the "OPEN_" forms. Returns the key the
     * item shows: the row's key, or "HIDDEN_" + key for a hidden item.
     */
    QString ensure(const FileListRow &row, bool hidden);

    /// Removes from both lists every image tagged "exe", each list from its last image to its first.
    void removePrograms();

private:
    void load(const QString &key, const FileListRow &row, bool open, bool ghosted);
    static QPixmap picture(const QString &key, const FileListRow &row, int size, bool open, bool ghosted);

    ImageList &m_large;
    ImageList &m_small;
};

} // namespace Kelocontrols
