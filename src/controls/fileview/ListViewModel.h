#pragma once

#include "ListItem.h"

#include <QAbstractTableModel>
#include <QFont>
#include <QList>

#include <vector>

namespace Kelocontrols {

class ImageList;

/**
 * The items and column headers of a ListView, as a Qt table model: row =
 * item, column 0 = the item's text, column n = sub-item n.
 *
 * Rows are 0-based here; the controls' public members count from 1.
 *
 * Filling in bulk: between beginBatch() and endBatch() appended items are
 * stored at once (so callers can read them back by index) but the views
 * learn of them only at endBatch(), in one insertion. rowCount() keeps
 * answering the published count meanwhile, so a view that paints in the
 * middle of a batch never sees a half-announced row.
 */
class ListViewModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    explicit ListViewModel(QObject *parent = nullptr);
    ~ListViewModel() override;

    // Columns
    void setColumns(const QList<ColumnHeader> &columns);
    const QList<ColumnHeader> &columns() const { return m_columns; }
    void setColumnIcon(int column, const QString &key);
    /// Records a column's width (HIMETRIC); the views apply it themselves.
    void setColumnWidth(int column, int himetric) { m_columns[column].width = himetric; }

    // Images: which lists the keys of items and headers refer to
    void setImageLists(ImageList *large, ImageList *small);
    /// Whether DisplayRole pictures come from the large list (icon view) or the small one.
    void setLargeIcons(bool large);
    bool largeIcons() const { return m_largeIcons; }
    /// Tells the views that pictures changed (an image list was edited).
    void picturesChanged();

    /// The source of sub-item texts for items added with a token (not owned; may be null).
    void setSubItemSource(SubItemSource *source) { m_source = source; }

    // Items
    int count() const { return int(m_items.size()); }
    /// Appends an item and returns its row.
    int append(ListItem item);
    void remove(int row);
    void clear();
    const ListItem &item(int row) const { return m_items[size_t(row)]; }

    void setText(int row, const QString &text);
    void setIcon(int row, const QString &key);
    void setSmallIcon(int row, const QString &key);
    void setBold(int row, bool bold);
    void setTag(int row, const QString &tag);
    QString tag(int row) const;
    void setKey(int row, const QString &key);
    QString key(int row) const;
    /// Sub-item @p subItem (1-based) of @p row: written text, else the source's, else "".
    QString subItem(int row, int subItem) const;
    /// Writes a sub-item; with @p notify false the views are not told (bookkeeping columns).
    void setSubItem(int row, int subItem, const QString &text, bool notify = true);
    /// Writes @p text into sub-item @p subItem of every item, with one change notice.
    void setSubItemOfAll(int subItem, const QString &text);
    /// Whether @p row keeps written sub-item texts of its own (rather than its source's).
    bool hasWrittenSubItems(int row) const;

    void beginBatch();
    void endBatch();
    bool inBatch() const { return m_batchDepth > 0; }

    /// The font of bold items is derived from this one.
    void setBaseFont(const QFont &font);

    // QAbstractItemModel
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Whether only the first column can be selected (no full-row selection).
    void setFirstColumnSelectable(bool firstOnly) { m_firstColumnOnly = firstOnly; }

private:
    QVariant picture(const QString &key, bool large) const;
    int subItemCount() const { return int(m_columns.size()) - 1; }
    void materialiseSubItems(ListItem &item) const;
    void emitRowChanged(int row, int firstColumn, int lastColumn);

    QList<ColumnHeader> m_columns;
    std::vector<ListItem> m_items;
    int m_published = 0;
    int m_batchDepth = 0;
    SubItemSource *m_source = nullptr;
    ImageList *m_large = nullptr;
    ImageList *m_small = nullptr;
    bool m_largeIcons = false;
    bool m_firstColumnOnly = true;
    QFont m_boldFont;
};

} // namespace Kelocontrols
