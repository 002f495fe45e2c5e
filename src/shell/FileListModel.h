#pragma once

#include "FileListRow.h"

#include <kelocontrols_export.h>

#include <QAbstractTableModel>
#include <QFont>

#include <vector>

namespace Kelocontrols {

class ImageList;

/**
 * The rows of a file list as a Qt table model: one FileListRow per row,
 * the thirteen columns of Column.
 *
 * DisplayRole gives the column texts, made from the row's raw facts when
 * asked; RawValueRole gives the facts themselves (bytes, QDateTime, the
 * file count of a folder, the names), so that sorting and other views can
 * work on values rather than texts. Rows are 0-based here; the controls'
 * public members count from 1.
 *
 * Filling in bulk: between beginBatch() and endBatch() appended rows are
 * stored at once (callers read them back by index) but the views learn of
 * them only at endBatch(), in one insertion; rowCount() keeps answering the
 * published count meanwhile.
 *
 * layoutGeneration() moves whenever rows are removed, cleared, inserted
 * before others or reordered, or a row's RealName changes: a caller that
 * keeps row numbers or a name index across code it does not control (an
 * event handler) checks it and looks again.
 *
 * Sorting: setSorted(true) orders the rows by the text of sortKey()'s
 * column in sortOrder(), without regard to case, and keeps new rows in
 * their sorted place (a row appended outside a batch is inserted there; a
 * batch is sorted when it ends). The order is the one the column texts
 * give, but it is computed from the raw facts where the text is a fixed
 * form of them: the SortedSize, SortedModified and SortedCreated columns
 * compare as numbers and times to the second (an empty text, a drive's,
 * first), Changed as a flag; the other columns compare their case-folded
 * texts (SortName's leading blank puts folders first). Rows whose keys tie
 * keep their order before the sort, in either direction. Changing a row's
 * facts later does not move it.
 */
class KELOCONTROLS_EXPORT FileListModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    /// The columns of a file list, in order.
    enum Column {
        Name,
        Size,
        Type,
        Modified,
        Created,
        Changed,
        Folder,
        SortedSize,
        SortedModified,
        SortedCreated,
        RealName,
        Refresh,
        SortName,
    };
    Q_ENUM(Column)
    static constexpr int ColumnCount = SortName + 1;

    enum Role {
        RawValueRole = Qt::UserRole + 1, ///< the column's raw value (FileListRow::rawValue())
        KindRole, ///< the row's FileListKind as int
        PathRole, ///< the full path of the row's entry
    };

    /// How a column is presented: caption, key, sort-key column (1-based, 0 none) and designed width.
    struct ColumnSpec
    {
        const char *caption;
        const char *key;
        int sortColumn; ///< the 1-based number of the column that holds this column's sort key, 0 for none
        int width; ///< in HIMETRIC units (1/100 mm), 0 for a column that is never seen
        bool rightAligned;
    };
    static const ColumnSpec &columnSpec(int column);

    /// Publishes the rows appended in its scope to the views in one go, however the scope ends.
    class Batch
    {
    public:
        explicit Batch(FileListModel *model)
            : m_model(model)
        {
            m_model->beginBatch();
        }
        ~Batch() { m_model->endBatch(); }
        Batch(const Batch &) = delete;
        Batch &operator=(const Batch &) = delete;

    private:
        FileListModel *m_model;
    };

    explicit FileListModel(QObject *parent = nullptr);
    ~FileListModel() override;

    /// How the rows are ordered: by the text of column sortKey (0-based), ascending (0) or descending (1).
    int sortKey() const { return m_sortKey; }
    void setSortKey(int column);
    int sortOrder() const { return m_sortOrder; }
    void setSortOrder(int order);
    bool sorted() const { return m_sorted; }
    /// Turning sorting on orders the rows at once.
    void setSorted(bool sorted);
    /// Orders the rows by @p column now (QAbstractItemModel's entry point; sortKey and sortOrder follow).
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    /// Whether @p a comes before @p b in the order of @p column ascending.
    static bool lessByColumn(const FileListRow &a, const FileListRow &b, int column);

    int count() const { return int(m_rows.size()); }
    const FileListRow &row(int row) const { return m_rows[size_t(row)]; }
    /// Appends a row and returns its index.
    int append(FileListRow row);
    void remove(int row);
    void clear();
    void beginBatch();
    void endBatch();
    bool inBatch() const { return m_batchDepth > 0; }
    quint64 layoutGeneration() const { return m_generation; }

    QString text(int row, int column) const { return this->row(row).columnText(column); }
    void setText(int row, const QString &text);
    void setRealName(int row, const QString &name);
    void setIcon(int row, const QString &key);
    void setSmallIcon(int row, const QString &key);
    void setBold(int row, bool bold);
    void setTag(int row, const QString &tag);
    QString tag(int row) const;
    void setKey(int row, const QString &key);
    QString key(int row) const;
    /// Brings @p row up to date with @p fresh (FileListRow::takeFacts()); true when a text changed.
    bool updateFacts(int row, FileListRow &&fresh);
    /// Sets the refresh mark of every row (views are told once).
    void markAllUnmet();
    void setUnmet(int row, bool unmet)
    {
        m_rows[size_t(row)].unmet = unmet;
        keysChanged(); // the Refresh column's text
    }

    // Presentation
    void setImageLists(ImageList *large, ImageList *small);
    /// Whether DecorationRole pictures come from the large list (icon view) or the small one.
    void setLargeIcons(bool large);
    bool largeIcons() const { return m_largeIcons; }
    /// Tells the views that pictures changed (an image list was edited).
    void picturesChanged();
    void setColumnIcon(int column, const QString &key);
    QString columnIcon(int column) const;
    /// The font of bold items is derived from this one.
    void setBaseFont(const QFont &font);
    /// Whether only the first column can be selected (no full-row selection).
    void setFirstColumnSelectable(bool firstOnly) { m_firstColumnOnly = firstOnly; }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    QVariant picture(const QString &key, bool large) const;
    void emitRowChanged(int row, int firstColumn, int lastColumn);
    void sortRows();
    /// A key text may have changed: neither the order nor the ranks can be relied on any longer.
    void keysChanged()
    {
        m_orderKnown = false;
        m_rankColumn = -1;
    }
    void applyOrder(const std::vector<int> &order);
    int sortedPlaceOf(const FileListRow &row) const;

    std::vector<FileListRow> m_rows;
    QString m_columnIcons[ColumnCount];
    int m_published = 0;
    int m_sortKey = 0;
    int m_sortOrder = 0;
    bool m_sorted = false;
    bool m_sortPending = false;
    /// The rows are in the order of m_orderKey / m_orderOrder and no key changed since: sorting again moves nothing.
    bool m_orderKnown = false;
    int m_orderKey = 0;
    int m_orderOrder = 0;
    /// For each row, the rank of its key in column m_rankColumn (equal keys, equal ranks), kept from the last
    /// sort by a text column, so that sorting by that column again compares numbers; -1 when not kept.
    int m_rankColumn = -1;
    std::vector<quint32> m_ranks;
    int m_batchDepth = 0;
    quint64 m_generation = 0;
    ImageList *m_large = nullptr;
    ImageList *m_small = nullptr;
    bool m_largeIcons = false;
    bool m_firstColumnOnly = true;
    QFont m_boldFont;
};

} // namespace Kelocontrols
