#include "FileViewImages.h"

#include "FileIcon.h"
#include "IconLookup.h"
#include "ImageList.h"
#include "PictureBox.h"

#include <QPainter>
#include <QPainterPath>

namespace Kelocontrols {

namespace {

// A colour no icon uses, handed to the ghosting as "leave alone"; the icons
// are drawn on a transparent ground, which the ghosting skips anyway.
constexpr QRgb GhostTransparent = qRgb(255, 0, 255);

} // namespace

FileViewImages::FileViewImages(ImageList &large, ImageList &small, PictureBox &tempPicture)
    : m_large(large)
    , m_small(small)
    , m_temp(tempPicture)
{
}

void FileViewImages::preload()
{
    m_large.add(unavailable(true, FileIconSize::Large), QStringLiteral("Drive Unavailable"));
    m_large.add(unavailable(false, FileIconSize::Large), QStringLiteral("FolderUnavailable"));
    m_small.add(sortArrow(false), QStringLiteral("SortDown"));
    m_small.add(sortArrow(true), QStringLiteral("SortUp"));
    m_small.add(unavailable(true, FileIconSize::Small), QStringLiteral("Drive Unavailable"));
    m_small.add(unavailable(false, FileIconSize::Small), QStringLiteral("FolderUnavailable"));
}

QString FileViewImages::ensure(const QString &key, const QString &path, bool folder, bool hidden, const QString &tag)
{
    if (!m_large.contains(key)) {
        load(key, path, false, false, tag);
    }
    if (folder && !m_large.contains(OpenPrefix + key)) {
        load(OpenPrefix + key, path, true, false, tag);
    }
    if (!hidden) {
        return key;
    }
    const QString hiddenKey = HiddenPrefix + key;
    if (!m_large.contains(hiddenKey)) {
        load(hiddenKey, path, false, true, tag);
    }
    if (folder && !m_large.contains(HiddenPrefix + OpenPrefix + key)) {
        load(HiddenPrefix + OpenPrefix + key, path, true, true, tag);
    }
    return hiddenKey;
}

void FileViewImages::load(const QString &key, const QString &path, bool open, bool ghost, const QString &tag)
{
    const QVariant tagValue = tag.isEmpty() ? QVariant() : QVariant(tag);
    if (!m_large.contains(key)) {
        m_large.add(draw(path, true, open, ghost), key, tagValue);
    }
    if (!m_small.contains(key)) {
        m_small.add(draw(path, false, open, ghost), key, tagValue);
    }
}

QPixmap FileViewImages::draw(const QString &path, bool large, bool open, bool ghost)
{
    QString typeKey;
    m_temp.setPicture(QPixmap());
    DrawFileIcon(path, large, m_temp, typeKey, open);
    QPixmap picture = m_temp.picture();
    if (picture.isNull()) {
        // The path is gone (or was never on disk): a plain sheet keeps the item from showing no icon.
        const int size = large ? FileIconSize::Large : FileIconSize::Small;
        picture = IconLookup::builtinPixmap(IconLookup::BuiltinIcon::File, size);
        m_temp.setPicture(picture);
    }
    if (ghost) {
        GhostPicture(m_temp, GhostTransparent);
        picture = m_temp.picture();
    }
    return picture;
}

void FileViewImages::removeTagged(const QString &tag)
{
    for (ImageList *list : {&m_large, &m_small}) {
        for (int i = list->count(); i >= 1; --i) {
            if (list->tag(i).toString() == tag) {
                list->remove(i);
            }
        }
    }
}

QPixmap FileViewImages::sortArrow(bool up)
{
    QPixmap pixmap(FileIconSize::Small, FileIconSize::Small);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(96, 96, 96));
    QPainterPath triangle;
    if (up) {
        triangle.moveTo(8, 4);
        triangle.lineTo(13, 11);
        triangle.lineTo(3, 11);
    } else {
        triangle.moveTo(3, 5);
        triangle.lineTo(13, 5);
        triangle.lineTo(8, 12);
    }
    triangle.closeSubpath();
    painter.drawPath(triangle);
    return pixmap;
}

QPixmap FileViewImages::unavailable(bool drive, int size)
{
    const QStringList names
        = drive ? QStringList{QStringLiteral("drive-harddisk")} : QStringList{QStringLiteral("folder")};
    const auto fallback = drive ? IconLookup::BuiltinIcon::Drive : IconLookup::BuiltinIcon::Folder;
    QPixmap pixmap = IconLookup::instance().pixmapOrBuiltin(names, fallback, size);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    // A red cross over the lower right quarter: the item is there but cannot be reached.
    const qreal s = size;
    painter.setPen(QPen(QColor(200, 0, 0), std::max(1.5, s / 10.0), Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(s * 0.55, s * 0.55), QPointF(s * 0.92, s * 0.92));
    painter.drawLine(QPointF(s * 0.92, s * 0.55), QPointF(s * 0.55, s * 0.92));
    return pixmap;
}

} // namespace Kelocontrols
