#include "FileListModel.h"

#include "ImageList.h"

#include <algorithm>
#include <limits>
#include <numeric>

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

// Columns whose text is a fixed form of a number or time compare by that value; the others by their text.
bool sortsByNumber(int column)
{
    switch (column) {
    case FileListModel::SortedSize:
    case FileListModel::SortedModified:
    case FileListModel::SortedCreated:
    case FileListModel::Changed:
        return true;
    default:
        return false;
    }
}

qint64 floorSeconds(qint64 msecs)
{
    return msecs >= 0 ? msecs / 1000 : -((-msecs + 999) / 1000);
}

// The value whose order is the order of the column's text: twelve-digit sizes and counts,
// "yyyy-mm-dd hh:nn:ss" times, "Yes" or "". An empty text (a drive, an unavailable entry) comes first.
qint64 numberKey(const FileListRow &row, int column)
{
    constexpr qint64 Empty = std::numeric_limits<qint64>::min();
    const bool facts = row.kind == FileListKind::File || row.kind == FileListKind::Folder;
    switch (column) {
    case FileListModel::SortedSize:
        return row.kind == FileListKind::File ? row.entry.size : (facts ? row.fileCount : Empty);
    case FileListModel::SortedModified:
        return facts ? floorSeconds(row.entry.modified) : Empty;
    case FileListModel::SortedCreated:
        return facts ? floorSeconds(row.entry.created) : Empty;
    default:
        return row.columnText(column).isEmpty() ? 0 : 1;
    }
}

// The case-folded texts of one column for all rows, in one buffer: one allocation instead of
// one per row, and keys that lie next to each other for the comparisons of the sort.
class FoldedTexts
{
public:
    FoldedTexts(const std::vector<FileListRow> &rows, int column)
    {
        m_spans.reserve(rows.size());
        m_chars.reserve(rows.size() * 16);
        for (const FileListRow &row : rows) {
            const qsizetype start = qsizetype(m_chars.size());
            appendFolded(row.columnText(column));
            m_spans.push_back({start, qsizetype(m_chars.size()) - start});
        }
    }
    QStringView at(int i) const
    {
        const auto &[start, length] = m_spans[size_t(i)];
        return QStringView(m_chars.data() + start, length);
    }

private:
    void appendFolded(QStringView text)
    {
        for (qsizetype i = 0; i < text.size(); ++i) {
            const char16_t c = text[i].unicode();
            if (c < 0x80) {
                m_chars.push_back(c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c);
            } else if (QChar::isHighSurrogate(c) && i + 1 < text.size()
                && QChar::isLowSurrogate(text[i + 1].unicode())) {
                const char32_t folded = QChar::toCaseFolded(QChar::surrogateToUcs4(c, text[++i].unicode()));
                m_chars.push_back(QChar::highSurrogate(folded));
                m_chars.push_back(QChar::lowSurrogate(folded));
            } else {
                m_chars.push_back(char16_t(QChar::toCaseFolded(char32_t(c))));
            }
        }
    }

    std::vector<char16_t> m_chars;
    std::vector<std::pair<qsizetype, qsizetype>> m_spans;
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
    if (inBatch()) {
        m_rows.push_back(std::move(row));
        keysChanged();
        return count() - 1;
    }
    const int index = m_sorted ? sortedPlaceOf(row) : count();
    m_rankColumn = -1; // the new row has no rank
    if (!m_sorted) {
        m_orderKnown = false; // appended at the end, wherever its key belongs
    }
    if (index < count()) {
        ++m_generation; // the rows after it move down
    }
    beginInsertRows(QModelIndex(), index, index);
    m_rows.insert(m_rows.begin() + index, std::move(row));
    m_published = count();
    endInsertRows();
    return index;
}

bool FileListModel::lessByColumn(const FileListRow &a, const FileListRow &b, int column)
{
    if (sortsByNumber(column)) {
        return numberKey(a, column) < numberKey(b, column);
    }
    return QString::compare(a.columnText(column), b.columnText(column), Qt::CaseInsensitive) < 0;
}

// After the last row that does not come after @p row, so that ties keep the order they were added in.
int FileListModel::sortedPlaceOf(const FileListRow &row) const
{
    const int column = m_sortKey;
    const bool descending = m_sortOrder == 1;
    const auto place = std::upper_bound(
        m_rows.begin(), m_rows.end(), row, [column, descending](const FileListRow &a, const FileListRow &b) {
            return descending ? lessByColumn(b, a, column) : lessByColumn(a, b, column);
        });
    return int(place - m_rows.begin());
}

void FileListModel::setSortKey(int column)
{
    m_sortKey = std::clamp(column, 0, ColumnCount - 1);
    if (m_sorted) {
        sortRows();
    }
}

void FileListModel::setSortOrder(int order)
{
    m_sortOrder = order == 1 ? 1 : 0;
    if (m_sorted) {
        sortRows();
    }
}

void FileListModel::setSorted(bool sorted)
{
    m_sorted = sorted;
    if (sorted) {
        sortRows();
    }
}

void FileListModel::sort(int column, Qt::SortOrder order)
{
    m_sortKey = std::clamp(column, 0, ColumnCount - 1);
    m_sortOrder = order == Qt::DescendingOrder ? 1 : 0;
    sortRows();
}

// One key per row, computed once, then a stable sort of the row numbers by key: the keys of
// 100,000 rows are made in one pass instead of twice per comparison.
void FileListModel::sortRows()
{
    if (inBatch()) {
        m_sortPending = true; // rows the views have not seen yet: sorted when the batch ends
        return;
    }
    m_sortPending = false;
    // Header clicks set the key, the order and Sorted one after the other: only the first has work to do.
    if (m_orderKnown && m_orderKey == m_sortKey && m_orderOrder == m_sortOrder) {
        return;
    }
    const int n = count();
    std::vector<int> order(static_cast<size_t>(n));
    std::iota(order.begin(), order.end(), 0);
    const bool descending = m_sortOrder == 1;
    if (m_rankColumn == m_sortKey && m_ranks.size() == size_t(n)) {
        // Sorted by this text column before and no key changed since: its ranks order the rows as its texts do.
        const std::vector<quint32> &ranks = m_ranks;
        std::stable_sort(order.begin(), order.end(), [&ranks, descending](int a, int b) {
            return descending ? ranks[size_t(b)] < ranks[size_t(a)] : ranks[size_t(a)] < ranks[size_t(b)];
        });
    } else if (sortsByNumber(m_sortKey)) {
        std::vector<qint64> keys(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) {
            keys[size_t(i)] = numberKey(m_rows[size_t(i)], m_sortKey);
        }
        std::stable_sort(order.begin(), order.end(), [&keys, descending](int a, int b) {
            return descending ? keys[size_t(b)] < keys[size_t(a)] : keys[size_t(a)] < keys[size_t(b)];
        });
    } else {
        // Each key travels with its row number, so a comparison reads the two keys and nothing else.
        const FoldedTexts texts(m_rows, m_sortKey);
        struct Keyed
        {
            QStringView key;
            int row;
        };
        std::vector<Keyed> keyed(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) {
            keyed[size_t(i)] = {texts.at(i), i};
        }
        std::stable_sort(keyed.begin(), keyed.end(), [descending](const Keyed &a, const Keyed &b) {
            return descending ? b.key.compare(a.key) < 0 : a.key.compare(b.key) < 0;
        });
        // Ranks for the rows in their new places: equal keys share one, ascending order gives rising ranks.
        std::vector<quint32> ranks(static_cast<size_t>(n));
        quint32 group = 0;
        for (int i = 0; i < n; ++i) {
            order[size_t(i)] = keyed[size_t(i)].row;
            if (i > 0 && keyed[size_t(i)].key != keyed[size_t(i - 1)].key) {
                ++group;
            }
            ranks[size_t(i)] = group;
        }
        if (descending) {
            for (quint32 &rank : ranks) {
                rank = group - rank;
            }
        }
        m_rankColumn = -1;
        applyOrder(order);
        m_ranks = std::move(ranks);
        m_rankColumn = m_sortKey;
        m_orderKnown = true;
        m_orderKey = m_sortKey;
        m_orderOrder = m_sortOrder;
        return;
    }
    applyOrder(order);
    m_orderKnown = true;
    m_orderKey = m_sortKey;
    m_orderOrder = m_sortOrder;
}

void FileListModel::applyOrder(const std::vector<int> &order)
{
    const int n = int(order.size());
    bool moved = false;
    for (int i = 0; i < n && !moved; ++i) {
        moved = order[size_t(i)] != i;
    }
    if (!moved) {
        return;
    }
    ++m_generation;
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    std::vector<int> newRowOf(static_cast<size_t>(n));
    std::vector<FileListRow> rows;
    rows.reserve(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) {
        newRowOf[size_t(order[size_t(i)])] = i;
        rows.push_back(std::move(m_rows[size_t(order[size_t(i)])]));
    }
    m_rows = std::move(rows);
    if (m_rankColumn >= 0 && m_ranks.size() == size_t(n)) {
        std::vector<quint32> ranks(static_cast<size_t>(n));
        for (int i = 0; i < n; ++i) {
            ranks[size_t(i)] = m_ranks[size_t(order[size_t(i)])];
        }
        m_ranks = std::move(ranks);
    }
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex &i : before) {
        after << index(newRowOf[size_t(i.row())], i.column());
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void FileListModel::remove(int row)
{
    if (row < 0 || row >= count()) {
        return;
    }
    ++m_generation;
    if (m_rankColumn >= 0 && size_t(row) < m_ranks.size()) {
        m_ranks.erase(m_ranks.begin() + row); // the others keep their order
    }
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
    keysChanged();
    m_ranks.clear();
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
    if (m_batchDepth == 0 || --m_batchDepth > 0) {
        return;
    }
    if (m_published == count()) {
        if (m_sortPending) {
            sortRows();
        }
        return;
    }
    beginInsertRows(QModelIndex(), m_published, count() - 1);
    m_published = count();
    endInsertRows();
    if (m_sorted || m_sortPending) {
        sortRows();
    }
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
    keysChanged();
    emitRowChanged(row, Name, Name);
}

void FileListModel::setRealName(int row, const QString &name)
{
    FileListRow::Extras &extras = m_rows[size_t(row)].ensureExtras();
    extras.realName = name;
    extras.ownRealName = true;
    keysChanged();
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
        keysChanged();
        emitRowChanged(row, Size, SortName);
    }
    return changed;
}

void FileListModel::markAllUnmet()
{
    for (FileListRow &r : m_rows) {
        r.unmet = true;
    }
    keysChanged();
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
    // The label can be edited in place; the file view's delegate decides whether an edit may start.
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | (index.column() == Name ? Qt::ItemIsEditable : Qt::NoItemFlags);
}

} // namespace Kelocontrols
