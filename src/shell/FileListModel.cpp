#include "FileListModel.h"

#include "ImageList.h"

namespace Kelocontrols {

namespace {

// The one table of the columns: caption, key, sort-key column, designed width (HIMETRIC), right-aligned.
const FileListModel::ColumnSpec Columns[FileListModel::ColumnCount] = {
    {"Name", "", 13, 1305, false},
    {"Size", "", 8, 2540, true},
    {"Type", "", 0, 2540, false},
    {"Modified", "", 9, 2540, false},
    {"Created", "", 10, 582, false},
    {"Changed", "", 0, 6068, false},
    {"Folder", "Folder", 0, 0, false},
    {"SortedSize", "", 0, 0, false},
    {"SortedModified", "", 0, 0, false},
    {"SortedCreated", "", 0, 0, false},
    {"RealName", "RealName", 0, 0, false},
    {"Refresh", "Refresh", 0, 0, false},
    {"SortName", "", 0, 0, false},
};

int alignmentOf(int column)
{
    return int(Qt::AlignVCenter | (Columns[column].rightAligned ? Qt::AlignRight : Qt::AlignLeft));
}

} // namespace

const FileListModel::ColumnSpec &FileListModel::columnSpec(int column)
{
    return Columns[std::clamp(column, 0, ColumnCount - 1)];
}

FileListModel::FileListModel(QObject *parent)
    : QAbstractTableModel(parent)
{
    m_boldFont.setBold(true);
}

FileListModel::~FileListModel() = default;

int FileListModel::append(FileListRow row)
{
    const int index = count();
    if (inBatch()) {
        m_rows.push_back(std::move(row));
        return index;
    }
    beginInsertRows(QModelIndex(), index, index);
    m_rows.push_back(std::move(row));
    m_published = count();
    endInsertRows();
    return index;
}

void FileListModel::remove(int row)
{
    if (row < 0 || row >= count()) {
        return;
    }
    ++m_generation;
    if (row >= m_published) { // not yet announced: nobody has seen it
        m_rows.erase(m_rows.begin() + row);
        return;
    }
    beginRemoveRows(QModelIndex(), row, row);
    m_rows.erase(m_rows.begin() + row);
    --m_published;
    endRemoveRows();
}

// Rows are removed rather than the model reset, so that the views keep their column widths and order.
void FileListModel::clear()
{
    ++m_generation;
    if (m_published > 0) {
        beginRemoveRows(QModelIndex(), 0, m_published - 1);
        m_rows.clear();
        m_published = 0;
        endRemoveRows();
    }
    m_rows.clear();
    m_rows.shrink_to_fit();
}

void FileListModel::beginBatch()
{
    ++m_batchDepth;
}

void FileListModel::endBatch()
{
    if (m_batchDepth == 0 || --m_batchDepth > 0 || m_published == count()) {
        return;
    }
    beginInsertRows(QModelIndex(), m_published, count() - 1);
    m_published = count();
    endInsertRows();
}

void FileListModel::emitRowChanged(int row, int firstColumn, int lastColumn)
{
    if (row < m_published) {
        Q_EMIT dataChanged(index(row, firstColumn), index(row, lastColumn));
    }
}

void FileListModel::setText(int row, const QString &text)
{
    FileListRow::Extras &extras = m_rows[size_t(row)].ensureExtras();
    extras.text = text;
    extras.ownText = true;
    emitRowChanged(row, Name, Name);
}

void FileListModel::setRealName(int row, const QString &name)
{
    FileListRow::Extras &extras = m_rows[size_t(row)].ensureExtras();
    extras.realName = name;
    extras.ownRealName = true;
    ++m_generation;
    emitRowChanged(row, RealName, RealName);
}

void FileListModel::setIcon(int row, const QString &key)
{
    m_rows[size_t(row)].largeIcon = key;
    emitRowChanged(row, Name, Name);
}

void FileListModel::setSmallIcon(int row, const QString &key)
{
    m_rows[size_t(row)].smallIcon = key;
    emitRowChanged(row, Name, Name);
}

void FileListModel::setBold(int row, bool bold)
{
    m_rows[size_t(row)].bold = bold;
    emitRowChanged(row, 0, ColumnCount - 1);
}

void FileListModel::setTag(int row, const QString &tag)
{
    m_rows[size_t(row)].ensureExtras().tag = tag;
}

QString FileListModel::tag(int row) const
{
    const FileListRow &r = this->row(row);
    return r.extras ? r.extras->tag : QString();
}

void FileListModel::setKey(int row, const QString &key)
{
    m_rows[size_t(row)].ensureExtras().key = key;
}

QString FileListModel::key(int row) const
{
    const FileListRow &r = this->row(row);
    return r.extras ? r.extras->key : QString();
}

bool FileListModel::updateFacts(int row, FileListRow &&fresh)
{
    const bool changed = m_rows[size_t(row)].takeFacts(std::move(fresh));
    if (changed) {
        emitRowChanged(row, Size, SortName);
    }
    return changed;
}

void FileListModel::markAllUnmet()
{
    for (FileListRow &r : m_rows) {
        r.unmet = true;
    }
    if (m_published > 0) {
        Q_EMIT dataChanged(index(0, Refresh), index(m_published - 1, Refresh));
    }
}

void FileListModel::setImageLists(ImageList *large, ImageList *small)
{
    m_large = large;
    m_small = small;
}

void FileListModel::setLargeIcons(bool large)
{
    if (m_largeIcons != large) {
        m_largeIcons = large;
        picturesChanged();
    }
}

void FileListModel::picturesChanged()
{
    if (m_published > 0) {
        Q_EMIT dataChanged(index(0, 0), index(m_published - 1, 0), {Qt::DecorationRole});
    }
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
}

void FileListModel::setColumnIcon(int column, const QString &key)
{
    if (column < 0 || column >= ColumnCount || m_columnIcons[column] == key) {
        return;
    }
    m_columnIcons[column] = key;
    Q_EMIT headerDataChanged(Qt::Horizontal, column, column);
}

QString FileListModel::columnIcon(int column) const
{
    return column >= 0 && column < ColumnCount ? m_columnIcons[column] : QString();
}

void FileListModel::setBaseFont(const QFont &font)
{
    m_boldFont = font;
    m_boldFont.setBold(true);
}

int FileListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_published;
}

int FileListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FileListModel::picture(const QString &key, bool large) const
{
    const ImageList *list = large ? m_large : m_small;
    if (!list || key.isEmpty()) {
        return QVariant();
    }
    const int index = list->indexOf(key);
    return index > 0 ? QVariant(list->picture(index)) : QVariant();
}

QVariant FileListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_published) {
        return QVariant();
    }
    const FileListRow &r = row(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return r.columnText(index.column());
    case Qt::DecorationRole:
        if (index.column() == Name) {
            return m_largeIcons ? picture(r.largeIcon, true) : picture(r.smallIcon, false);
        }
        return QVariant();
    case Qt::FontRole:
        return r.bold ? QVariant(m_boldFont) : QVariant();
    case Qt::TextAlignmentRole:
        return index.column() > 0 ? QVariant(alignmentOf(index.column())) : QVariant();
    case Qt::ToolTipRole:
        return index.column() == Name ? QVariant(r.text()) : QVariant();
    case RawValueRole:
        return r.rawValue(index.column());
    case KindRole:
        return int(r.kind);
    case PathRole:
        return r.path();
    default:
        return QVariant();
    }
}

QVariant FileListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount) {
        return QVariant();
    }
    switch (role) {
    case Qt::DisplayRole:
        return QString::fromLatin1(Columns[section].caption);
    case Qt::DecorationRole:
        return picture(m_columnIcons[section], false);
    case Qt::TextAlignmentRole:
        return alignmentOf(section);
    default:
        return QVariant();
    }
}

Qt::ItemFlags FileListModel::flags(const QModelIndex &index) const
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
