#include "ItemModelRecordset_p.h"

#include "RuntimeError.h"

#include <QAbstractItemModel>
#include <QSqlError>
#include <QSqlQueryModel>
#include <QSqlRecord>

namespace Kelocontrols {

ItemModelRecordset::ItemModelRecordset(QAbstractItemModel *model, const QModelIndex &root)
    : m_model(model)
    , m_root(root)
{
}

void ItemModelRecordset::MoveFirst()
{
    requireModel();
    if (const auto *sql = qobject_cast<const QSqlQueryModel *>(m_model.data())) {
        if (sql->lastError().type() != QSqlError::NoError) {
            throw RuntimeError(DatabaseError, sql->lastError().text());
        }
    }
    m_namesRead = false; // the model may have been given another query since
    m_row = 0;
    m_eof = !fetchRow(m_row);
}

void ItemModelRecordset::MoveNext()
{
    if (m_eof || !m_model) {
        m_eof = true;
        throw RuntimeError(NoCurrentRecord, noCurrentRecordText());
    }
    ++m_row;
    m_eof = !fetchRow(m_row);
}

int ItemModelRecordset::FieldCount() const
{
    requireModel();
    return m_model->columnCount(m_root);
}

QString ItemModelRecordset::FieldName(int position) const
{
    checkPosition(position);
    readFieldNames();
    return position < m_names.size() ? m_names.at(position) : QString();
}

QVariant ItemModelRecordset::FieldValue(int position) const
{
    checkPosition(position);
    if (m_eof) {
        throw RuntimeError(NoCurrentRecord, noCurrentRecordText());
    }
    const QModelIndex cell = m_model->index(m_row, position, m_root);
    QVariant value = m_model->data(cell, Qt::EditRole);
    if (!value.isValid()) {
        value = m_model->data(cell, Qt::DisplayRole);
    }
    return value;
}

void ItemModelRecordset::requireModel() const
{
    if (!m_model) {
        throw RuntimeError(ObjectClosed, objectClosedText());
    }
}

// True when `row` exists, after asking a lazily fetching model for more rows
// as long as it has some and the row is not there yet.
bool ItemModelRecordset::fetchRow(int row)
{
    while (row >= m_model->rowCount(m_root) && m_model->canFetchMore(m_root)) {
        const int before = m_model->rowCount(m_root);
        m_model->fetchMore(m_root);
        if (m_model->rowCount(m_root) == before) {
            break; // a model that claims more but delivers none must not loop forever
        }
    }
    return row < m_model->rowCount(m_root);
}

void ItemModelRecordset::readFieldNames() const
{
    if (m_namesRead) {
        return;
    }
    m_names.clear();
    const int count = m_model->columnCount(m_root);
    if (const auto *sql = qobject_cast<const QSqlQueryModel *>(m_model.data())) {
        const QSqlRecord record = sql->record();
        for (int i = 0; i < count; ++i) {
            m_names << record.fieldName(i);
        }
    } else {
        for (int i = 0; i < count; ++i) {
            m_names << m_model->headerData(i, Qt::Horizontal, Qt::DisplayRole).toString();
        }
    }
    m_namesRead = true;
}

} // namespace Kelocontrols
