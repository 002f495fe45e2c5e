#pragma once

#include <kelocontrols_export.h>

#include <QAbstractListModel>
#include <QList>
#include <QString>

namespace Kelocontrols {

/**
 * The entries of a list box: each has a text, shown in the list, and a
 * hidden 32-bit integer value (its key).
 *
 * Texts and values need not be unique; the find functions return the first
 * match. Views show the text (Qt::DisplayRole and Qt::EditRole); the value
 * is the data of ValueRole (Qt::UserRole).
 *
 * A sorted model keeps its entries in alphabetical order, compared without
 * regard to case; an entry equal to existing ones goes after them, so
 * entries of equal text keep the order in which they were added.
 *
 * Filling many entries at once with addEntries() costs one insertion for
 * the views, not one per entry, which keeps a list of 100,000 entries quick
 * to fill.
 */
class KELOCONTROLS_TESTS_EXPORT ListBoxModel : public QAbstractListModel
{
    Q_OBJECT

public:
    struct Entry
    {
        QString text;
        qint32 value = 0;
    };

    /// The data role of an entry's value.
    static constexpr int ValueRole = Qt::UserRole;

    explicit ListBoxModel(QObject *parent = nullptr);

    /// The number of entries.
    int count() const { return int(m_entries.size()); }
    /// The text of entry `row`; an empty text for a row that does not exist.
    QString text(int row) const;
    /// The value of entry `row`; 0 for a row that does not exist.
    qint32 value(int row) const;
    /// Changes the value of entry `row`; a row that does not exist is ignored.
    void setValue(int row, qint32 value);

    /// Adds an entry at the end, or in its sorted place; returns its row.
    int addEntry(const QString &text, qint32 value);
    /// Adds `entries` in their order, with the same result as adding them one by one.
    void addEntries(QList<Entry> entries);
    /// Removes entry `row`; a row that does not exist is ignored.
    void removeEntry(int row);
    /// Removes every entry.
    void clear();

    /// The row of the first entry whose value is `value`, or -1.
    int findValue(qint32 value) const;
    /// The row of the first entry whose text equals `text` without regard to case, or -1.
    int findText(const QString &text) const;

    bool isSorted() const { return m_sorted; }
    /// Turns sorting on (sorting the present entries) or off (keeping their order).
    void setSorted(bool sorted);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    static bool textLess(const QString &a, const QString &b);
    bool isRow(int row) const { return row >= 0 && row < m_entries.size(); }
    int sortedRowFor(const QString &text) const;
    void sortEntries();

    QList<Entry> m_entries;
    bool m_sorted = false;
};

} // namespace Kelocontrols
