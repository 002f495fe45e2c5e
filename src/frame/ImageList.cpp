#include "ImageList.h"

#include "RuntimeError.h"

namespace Kelocontrols {

ImageList::ImageList(const QSize &imageSize, QObject *parent)
    : QObject(parent)
    , m_imageSize(imageSize)
{
}

int ImageList::add(const QPixmap &picture, const QString &key, const QVariant &tag)
{
    if (!key.isEmpty() && contains(key)) {
        throw RuntimeError(ErrorNumber::KeyNotUnique);
    }
    QPixmap fitted = picture;
    if (!picture.isNull() && picture.size() != m_imageSize) {
        fitted = picture.scaled(m_imageSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    m_items.append({key, fitted, tag});
    if (!key.isEmpty() && !m_keyIndexStale) {
        m_keyIndex.insert(foldedKey(key), count());
    }
    return count();
}

void ImageList::remove(int index)
{
    itemAt(index);
    m_items.removeAt(index - 1);
    m_keyIndexStale = true;
}

void ImageList::remove(const QString &key)
{
    remove(requireKey(key));
}

void ImageList::clear()
{
    m_items.clear();
    m_keyIndex.clear();
    m_keyIndexStale = false;
}

int ImageList::indexOf(const QString &key) const
{
    if (key.isEmpty()) {
        return 0;
    }
    if (m_keyIndexStale) {
        rebuildKeyIndex();
    }
    return m_keyIndex.value(foldedKey(key), 0);
}

void ImageList::rebuildKeyIndex() const
{
    m_keyIndex.clear();
    for (int i = 0; i < m_items.size(); ++i) {
        if (!m_items.at(i).key.isEmpty()) {
            m_keyIndex.insert(foldedKey(m_items.at(i).key), i + 1);
        }
    }
    m_keyIndexStale = false;
}

QPixmap ImageList::picture(int index) const
{
    return itemAt(index).picture;
}

QPixmap ImageList::picture(const QString &key) const
{
    return picture(requireKey(key));
}

QString ImageList::key(int index) const
{
    return itemAt(index).key;
}

void ImageList::setKey(int index, const QString &key)
{
    itemAt(index);
    const int holder = indexOf(key);
    if (holder != 0 && holder != index) {
        throw RuntimeError(ErrorNumber::KeyNotUnique);
    }
    m_items[index - 1].key = key;
    m_keyIndexStale = true;
}

QVariant ImageList::tag(int index) const
{
    return itemAt(index).tag;
}

void ImageList::setTag(int index, const QVariant &tag)
{
    itemAt(index);
    m_items[index - 1].tag = tag;
}

const ImageList::Item &ImageList::itemAt(int index) const
{
    if (index < 1 || index > m_items.size()) {
        throw RuntimeError(ErrorNumber::ElementNotFound);
    }
    return m_items.at(index - 1);
}

int ImageList::requireKey(const QString &key) const
{
    const int index = indexOf(key);
    if (index == 0) {
        throw RuntimeError(ErrorNumber::ElementNotFound);
    }
    return index;
}

} // namespace Kelocontrols
