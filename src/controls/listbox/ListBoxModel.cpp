#include "ListBoxModel_p.h"

#include <algorithm>
#include <numeric>

namespace Kelocontrols {

ListBoxModel::ListBoxModel(QObject *parent)
    : QAbstractListModel(parent)
{
}

QString ListBoxModel::text(int row) const
{
    return isRow(row) ? m_entries.at(row).text : QString();
}

qint32 ListBoxModel::value(int row) const
{
    return isRow(row) ? m_entries.at(row).value : 0;
}

void ListBoxModel::setValue(int row, qint32 value)
{
    if (!isRow(row)) {
        return;
    }
    m_entries[row].value = value;
    const QModelIndex changed = index(row);
    Q_EMIT dataChanged(changed, changed, {ValueRole});
}

int ListBoxModel::addEntry(const QString &text, qint32 value)
{
    const int row = m_sorted ? sortedRowFor(text) : count();
    beginInsertRows(QModelIndex(), row, row);
    m_entries.insert(row, Entry{text, value});
    endInsertRows();
    return row;
}

void ListBoxModel::addEntries(QList<Entry> entries)
{
    if (entries.isEmpty()) {
        return;
    }
    const int first = count();
    beginInsertRows(QModelIndex(), first, first + int(entries.size()) - 1);
    if (m_entries.isEmpty()) {
        m_entries = std::move(entries);
    } else {
        m_entries.append(std::move(entries));
    }
    endInsertRows();
    if (m_sorted) {
        // The old entries are in order and come first, so a stable sort puts
        // each new entry after its equals, as adding it alone would.
        sortEntries();
    }
}

void ListBoxModel::removeEntry(int row)
{
    if (!isRow(row)) {
        return;
    }
    beginRemoveRows(QModelIndex(), row, row);
    m_entries.removeAt(row);
    endRemoveRows();
}

void ListBoxModel::clear()
{
    beginResetModel();
    m_entries.clear();
    endResetModel();
}

int ListBoxModel::findValue(qint32 value) const
{
    for (int row = 0; row < m_entries.size(); ++row) {
        if (m_entries.at(row).value == value) {
            return row;
        }
    }
    return -1;
}

int ListBoxModel::findText(const QString &text) const
{
    for (int row = 0; row < m_entries.size(); ++row) {
        if (m_entries.at(row).text.compare(text, Qt::CaseInsensitive) == 0) {
            return row;
        }
    }
    return -1;
}

void ListBoxModel::setSorted(bool sorted)
{
    if (sorted == m_sorted) {
        return;
    }
    m_sorted = sorted;
    if (m_sorted) {
        sortEntries();
    }
}

int ListBoxModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant ListBoxModel::data(const QModelIndex &index, int role) const
{
    if (index.parent().isValid() || !isRow(index.row()) || index.column() != 0) {
        return QVariant();
    }
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return m_entries.at(index.row()).text;
    case ValueRole:
        return m_entries.at(index.row()).value;
    default:
        return QVariant();
    }
}

Qt::ItemFlags ListBoxModel::flags(const QModelIndex &index) const
{
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
}

bool ListBoxModel::textLess(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) < 0;
}

// After the last entry that does not sort after `text`.
int ListBoxModel::sortedRowFor(const QString &text) const
{
    const auto place = std::upper_bound(m_entries.cbegin(), m_entries.cend(), text,
        [](const QString &t, const Entry &e) { return textLess(t, e.text); });
    return int(place - m_entries.cbegin());
}

// Reorders the entries stably; selections and current items in views move
// with their entries.
void ListBoxModel::sortEntries()
{
    const int n = count();
    QList<int> order(n);
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
        [this](int a, int b) { return textLess(m_entries.at(a).text, m_entries.at(b).text); });
    if (std::is_sorted(order.cbegin(), order.cend())) {
        return;
    }

    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    QList<Entry> sorted;
    sorted.reserve(n);
    QList<int> newRow(n);
    for (int i = 0; i < n; ++i) {
        sorted.append(std::move(m_entries[order.at(i)]));
        newRow[order.at(i)] = i;
    }
    m_entries = std::move(sorted);
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex &old : before) {
        after.append(index(newRow.at(old.row())));
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

} // namespace Kelocontrols
