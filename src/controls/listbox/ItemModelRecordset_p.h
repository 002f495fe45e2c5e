#pragma once

#include <kelocontrols_export.h>

#include "Recordset.h"

#include <QModelIndex>
#include <QPointer>
#include <QStringList>

class QAbstractItemModel;

namespace Kelocontrols {

/**
 * A Recordset over the rows of any QAbstractItemModel: each row under
 * `root` is a record, each column a field.
 *
 * - Field names: for a QSqlQueryModel the names of the query's fields
 *   (whatever headers were set for display); for other models the
 *   horizontal header texts (a QStandardItemModel without header labels
 *   numbers its columns "1", "2", ...).
 * - Values: the Qt::EditRole data of a cell, or its Qt::DisplayRole data when
 *   the model has no edit data.
 * - Models that fetch lazily (QSqlQueryModel fetches 256 rows at a time)
 *   are asked for more rows as the traversal reaches the end of what they
 *   hold, so every record is visited.
 * - MoveFirst() raises ObjectClosed for a null (or destroyed) model, and the
 *   query's own error text for a QSqlQueryModel whose query failed.
 */
class KELOCONTROLS_TESTS_EXPORT ItemModelRecordset : public Recordset
{
public:
    /// Traverses the rows of `model` under `root` (the top level by default).
    explicit ItemModelRecordset(QAbstractItemModel *model, const QModelIndex &root = QModelIndex());

    void MoveFirst() override;
    void MoveNext() override;
    bool Eof() const override { return m_eof; }
    int FieldCount() const override;
    QString FieldName(int position) const override;
    QVariant FieldValue(int position) const override;

private:
    void requireModel() const;
    bool fetchRow(int row);
    void readFieldNames() const;

    QPointer<QAbstractItemModel> m_model;
    QPersistentModelIndex m_root;
    int m_row = -1;
    bool m_eof = true;
    mutable bool m_namesRead = false;
    mutable QStringList m_names;
};

} // namespace Kelocontrols
