#include "ListViewModel.h"

#include "ImageList.h"

namespace Kelocontrols {

ListViewModel::ListViewModel(QObject *parent)
    : QAbstractTableModel(parent)
{
    m_boldFont.setBold(true);
}

ListViewModel::~ListViewModel() = default;

void ListViewModel::setColumns(const QList<ColumnHeader> &columns)
{
    beginResetModel();
    m_columns = columns;
    endResetModel();
}

void ListViewModel::setColumnIcon(int column, const QString &key)
{
    if (column < 0 || column >= m_columns.size() || m_columns[column].icon == key) {
        return;
    }
    m_columns[column].icon = key;
    Q_EMIT headerDataChanged(Qt::Horizontal, column, column);
}

void ListViewModel::setImageLists(ImageList *large, ImageList *small)
{
    m_large = large;
    m_small = small;
}

void ListViewModel::setLargeIcons(bool large)
{
    if (m_largeIcons != large) {
        m_largeIcons = large;
        picturesChanged();
    }
}

void ListViewModel::picturesChanged()
{
    if (m_published > 0) {
        Q_EMIT dataChanged(index(0, 0), index(m_published - 1, 0), {Qt::DecorationRole});
    }
    if (!m_columns.isEmpty()) {
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, int(m_columns.size()) - 1);
    }
}

int ListViewModel::append(ListItem item)
{
    const int row = count();
    if (inBatch()) {
        m_items.push_back(std::move(item));
        return row;
    }
    beginInsertRows(QModelIndex(), row, row);
    m_items.push_back(std::move(item));
    m_published = count();
    endInsertRows();
    return row;
}

void ListViewModel::remove(int row)
{
    if (row < 0 || row >= count()) {
        return;
    }
    if (row >= m_published) { // not yet announced: nobody has seen it
        m_items.erase(m_items.begin() + row);
        return;
    }
    beginRemoveRows(QModelIndex(), row, row);
    m_items.erase(m_items.begin() + row);
    --m_published;
    endRemoveRows();
}

// Rows are removed and inserted rather than the model reset, so that the
// views keep their column widths and order across fills.
void ListViewModel::clear()
{
    if (m_published > 0) {
        beginRemoveRows(QModelIndex(), 0, m_published - 1);
        m_items.clear();
        m_published = 0;
        endRemoveRows();
    }
    m_items.clear();
    m_items.shrink_to_fit();
}

void ListViewModel::beginBatch()
{
    ++m_batchDepth;
}

void ListViewModel::endBatch()
{
    if (m_batchDepth == 0 || --m_batchDepth > 0 || m_published == count()) {
        return;
    }
    beginInsertRows(QModelIndex(), m_published, count() - 1);
    m_published = count();
    endInsertRows();
}

void ListViewModel::setBaseFont(const QFont &font)
{
    m_boldFont = font;
    m_boldFont.setBold(true);
}

void ListViewModel::emitRowChanged(int row, int firstColumn, int lastColumn)
{
    if (row < m_published) {
        Q_EMIT dataChanged(index(row, firstColumn), index(row, lastColumn));
    }
}

void ListViewModel::setText(int row, const QString &text)
{
    m_items[size_t(row)].text = text;
    emitRowChanged(row, 0, 0);
}

void ListViewModel::setIcon(int row, const QString &key)
{
    m_items[size_t(row)].icon = key;
    emitRowChanged(row, 0, 0);
}

void ListViewModel::setSmallIcon(int row, const QString &key)
{
    m_items[size_t(row)].smallIcon = key;
    emitRowChanged(row, 0, 0);
}

void ListViewModel::setBold(int row, bool bold)
{
    m_items[size_t(row)].bold = bold;
    emitRowChanged(row, 0, std::max(0, subItemCount()));
}

void ListViewModel::setTag(int row, const QString &tag)
{
    m_items[size_t(row)].ensureExtras().tag = tag;
}

QString ListViewModel::tag(int row) const
{
    const ListItem &i = item(row);
    return i.extras ? i.extras->tag : QString();
}

void ListViewModel::setKey(int row, const QString &key)
{
    m_items[size_t(row)].ensureExtras().key = key;
}

QString ListViewModel::key(int row) const
{
    const ListItem &i = item(row);
    return i.extras ? i.extras->key : QString();
}

QString ListViewModel::subItem(int row, int subItem) const
{
    const ListItem &i = item(row);
    if (i.extras && !i.extras->subItems.isEmpty()) {
        return i.extras->subItems.value(subItem - 1);
    }
    if (m_source && i.sourceToken >= 0 && subItem >= 1 && subItem <= subItemCount()) {
        return m_source->subItemText(i.sourceToken, subItem);
    }
    return QString();
}

void ListViewModel::materialiseSubItems(ListItem &item) const
{
    ListItem::Extras &extras = item.ensureExtras();
    if (!extras.subItems.isEmpty()) {
        return;
    }
    extras.subItems.reserve(subItemCount());
    for (int n = 1; n <= subItemCount(); ++n) {
        extras.subItems.append(
            m_source && item.sourceToken >= 0 ? m_source->subItemText(item.sourceToken, n) : QString());
    }
}

void ListViewModel::setSubItem(int row, int subItem, const QString &text, bool notify)
{
    if (subItem < 1 || subItem > subItemCount()) {
        return;
    }
    ListItem &i = m_items[size_t(row)];
    const bool writtenTexts = i.extras && !i.extras->subItems.isEmpty();
    if (!writtenTexts && m_source && i.sourceToken >= 0 && m_source->storeSubItemText(i.sourceToken, subItem, text)) {
        if (notify) {
            emitRowChanged(row, subItem, subItem);
        }
        return;
    }
    materialiseSubItems(i);
    i.extras->subItems[subItem - 1] = text;
    if (notify) {
        emitRowChanged(row, subItem, subItem);
    }
}

void ListViewModel::setSubItemOfAll(int subItem, const QString &text)
{
    if (subItem < 1 || subItem > subItemCount() || m_items.empty()) {
        return;
    }
    for (int row = 0; row < count(); ++row) {
        setSubItem(row, subItem, text, false); // one notice below instead of one per row
    }
    if (m_published > 0) {
        Q_EMIT dataChanged(index(0, subItem), index(m_published - 1, subItem));
    }
}

bool ListViewModel::hasWrittenSubItems(int row) const
{
    const ListItem &i = item(row);
    return i.extras && !i.extras->subItems.isEmpty();
}

int ListViewModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_published;
}

int ListViewModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_columns.size());
}

QVariant ListViewModel::picture(const QString &key, bool large) const
{
    const ImageList *list = large ? m_large : m_small;
    if (!list || key.isEmpty()) {
        return QVariant();
    }
    const int index = list->indexOf(key);
    return index > 0 ? QVariant(list->picture(index)) : QVariant();
}

QVariant ListViewModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_published) {
        return QVariant();
    }
    const ListItem &i = item(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return index.column() == 0 ? i.text : subItem(index.row(), index.column());
    case Qt::DecorationRole:
        if (index.column() == 0) {
            return m_largeIcons ? picture(i.icon, true) : picture(i.smallIcon, false);
        }
        return QVariant();
    case Qt::FontRole:
        return i.bold ? QVariant(m_boldFont) : QVariant();
    case Qt::TextAlignmentRole:
        return index.column() < m_columns.size() && index.column() > 0
            ? QVariant(int(m_columns[index.column()].alignment))
            : QVariant();
    case Qt::ToolTipRole:
        return index.column() == 0 ? i.text : QVariant();
    default:
        return QVariant();
    }
}

QVariant ListViewModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columns.size()) {
        return QVariant();
    }
    const ColumnHeader &c = m_columns[section];
    switch (role) {
    case Qt::DisplayRole:
        return c.text;
    case Qt::DecorationRole:
        return picture(c.icon, false);
    case Qt::TextAlignmentRole:
        return int(c.alignment);
    default:
        return QVariant();
    }
}

Qt::ItemFlags ListViewModel::flags(const QModelIndex &index) const
{
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    if (index.column() > 0 && m_firstColumnOnly) {
        return Qt::ItemIsEnabled;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

} // namespace Kelocontrols
