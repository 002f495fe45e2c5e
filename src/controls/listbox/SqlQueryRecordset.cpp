#include "SqlQueryRecordset_p.h"

#include "RuntimeError.h"

#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>

namespace Kelocontrols {

SqlQueryRecordset::SqlQueryRecordset(QSqlQuery &query)
    : m_query(query)
    , m_eof(!query.isValid())
{
}

void SqlQueryRecordset::MoveFirst()
{
    if (!m_query.isActive() || !m_query.isSelect()) {
        raiseClosed();
    }
    if (m_query.isForwardOnly()) {
        if (m_query.at() == 0) {
            m_eof = false; // already on the first record: nothing to go back for
            return;
        }
        if (m_query.at() == QSql::AfterLastRow && resultIsEmpty()) {
            m_eof = true; // past the end of nothing: the first record is the end
            return;
        }
        if (m_query.at() != QSql::BeforeFirstRow) {
            throw RuntimeError(CannotMoveBack, cannotMoveBackText());
        }
    }
    if (m_query.first()) {
        m_eof = false;
        return;
    }
    m_eof = true;
    if (hasFetchError()) {
        raiseDatabaseError();
    }
}

void SqlQueryRecordset::MoveNext()
{
    if (m_eof) {
        throw RuntimeError(NoCurrentRecord, noCurrentRecordText());
    }
    if (m_query.next()) {
        return;
    }
    m_eof = true;
    if (hasFetchError()) {
        raiseDatabaseError();
    }
}

int SqlQueryRecordset::FieldCount() const
{
    return fields().count();
}

QString SqlQueryRecordset::FieldName(int position) const
{
    checkPosition(position);
    return fields().fieldName(position);
}

QVariant SqlQueryRecordset::FieldValue(int position) const
{
    checkPosition(position);
    if (m_eof) {
        throw RuntimeError(NoCurrentRecord, noCurrentRecordText());
    }
    return m_query.value(position);
}

void SqlQueryRecordset::raiseClosed() const
{
    if (m_query.lastError().type() != QSqlError::NoError) {
        raiseDatabaseError(); // the query ran and failed: its own error says more
    }
    throw RuntimeError(ObjectClosed, objectClosedText());
}

void SqlQueryRecordset::raiseDatabaseError() const
{
    throw RuntimeError(DatabaseError, m_query.lastError().text());
}

// A forward-only query stands past its end both when it was read to the end
// and when its result was empty from the start (SQLite puts it there at
// once). Drivers that know the result's size tell them apart; for the others
// the statement runs once more in a query of its own, the original untouched.
bool SqlQueryRecordset::resultIsEmpty() const
{
    if (m_query.size() >= 0) {
        return m_query.size() == 0;
    }
    const QSqlDriver *driver = m_query.driver();
    if (!driver) {
        return false;
    }
    QSqlQuery probe(driver->createResult());
    probe.setForwardOnly(true);
    if (!probe.prepare(m_query.lastQuery())) {
        return false;
    }
    const QVariantList bound = m_query.boundValues();
    for (const QVariant &value : bound) {
        probe.addBindValue(value);
    }
    return probe.exec() && probe.isSelect() && !probe.next() && !probe.lastError().isValid();
}

bool SqlQueryRecordset::hasFetchError() const
{
    return m_query.lastError().type() != QSqlError::NoError;
}

// QSqlQuery::record() builds a new QSqlRecord on each call; the field list
// does not change during a traversal, so it is read once.
const QSqlRecord &SqlQueryRecordset::fields() const
{
    if (!m_fieldsRead) {
        m_fields = m_query.record();
        m_fieldsRead = true;
    }
    return m_fields;
}

} // namespace Kelocontrols
