#pragma once

#include <QPixmap>
#include <QString>

namespace Kelocontrols {

class ImageList;
class PictureBox;

/**
 * The file list's two image lists, kept in step: every key is in the large
 * (32 px) and the small (16 px) list at the same time.
 *
 * Keys are loaded on first use: the icon of the very file, folder or drive
 * that first needs a key is drawn through the hidden picture box and added
 * under the key to both lists. A hidden item's key is "HIDDEN_" + key with a
 * washed-out copy; a folder's key also gets its open form under "OPEN_" +
 * key (and "HIDDEN_OPEN_" + key for a hidden folder). So a folder of
 * 100,000 files with 30 extensions draws 30 icons, not 100,000.
 */
class FileViewImages
{
public:
    static inline const QString HiddenPrefix = QStringLiteral("HIDDEN_");
    static inline const QString OpenPrefix = QStringLiteral("OPEN_");

    FileViewImages(ImageList &large, ImageList &small, PictureBox &tempPicture);

    /// Adds the fixed images: "Drive Unavailable" and "FolderUnavailable" to both lists, "SortDown" and "SortUp" to the
    /// small one.
    void preload();

    /**
     * Makes sure @p key is in both lists, drawing the icon of @p path when it
     * is not; with @p hidden also the "HIDDEN_" form, and for a folder the
     * "OPEN_" forms. New images carry @p tag. Returns the key an item should
     * show: @p key, or "HIDDEN_" + @p key for a hidden item.
     */
    QString ensure(const QString &key, const QString &path, bool folder, bool hidden, const QString &tag = QString());

    /// Removes from both lists every image tagged @p tag, each list from its last image to its first.
    void removeTagged(const QString &tag);

    /// The painted fixed pictures.
    static QPixmap sortArrow(bool up);
    static QPixmap unavailable(bool drive, int size);

private:
    void load(const QString &key, const QString &path, bool open, bool ghost, const QString &tag);
    QPixmap draw(const QString &path, bool large, bool open, bool ghost);

    ImageList &m_large;
    ImageList &m_small;
    PictureBox &m_temp;
};

} // namespace Kelocontrols
