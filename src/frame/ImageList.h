#pragma once

#include <kelocontrols_export.h>

#include <QHash>
#include <QList>
#include <QObject>
#include <QPixmap>
#include <QSize>
#include <QVariant>

namespace Kelocontrols {

/**
 * A keyed collection of pictures of one size, like the image lists the
 * controls keep for their icons and grade pictures.
 *
 * Indexes count from 1. Keys are compared without regard to case and are
 * unique; an empty key is allowed any number of times. Asking for an index
 * or key that is not there raises RuntimeError(ElementNotFound); adding a
 * key that is already there raises RuntimeError(KeyNotUnique).
 */
class KELOCONTROLS_EXPORT ImageList : public QObject
{
    Q_OBJECT
public:
    explicit ImageList(const QSize &imageSize, QObject *parent = nullptr);

    QSize imageSize() const { return m_imageSize; }
    int count() const { return int(m_items.size()); }

    /// Adds a picture (scaled to the list's size when it differs) and returns its index.
    int add(const QPixmap &picture, const QString &key = QString(), const QVariant &tag = QVariant());
    void remove(int index);
    void remove(const QString &key);
    void clear();

    /// The index of `key`, or 0 when there is no such key.
    int indexOf(const QString &key) const;
    bool contains(const QString &key) const { return indexOf(key) > 0; }

    QPixmap picture(int index) const;
    QPixmap picture(const QString &key) const;
    QString key(int index) const;
    /// Renames the image at `index`; raises KeyNotUnique when another image has `key`.
    void setKey(int index, const QString &key);
    QVariant tag(int index) const;
    void setTag(int index, const QVariant &tag);

private:
    struct Item
    {
        QString key;
        QPixmap picture;
        QVariant tag;
    };
    const Item &itemAt(int index) const;
    int requireKey(const QString &key) const;
    void rebuildKeyIndex() const;
    static QString foldedKey(const QString &key) { return key.toCaseFolded(); }

    QSize m_imageSize;
    QList<Item> m_items;
    // Case-folded key -> 1-based index. Controls look keys up for every row
    // they paint, so this is a hash; it is rebuilt lazily after a removal
    // shifts the indexes.
    mutable QHash<QString, int> m_keyIndex;
    mutable bool m_keyIndexStale = false;
};

} // namespace Kelocontrols
