#pragma once

#include <kelocontrols_export.h>

#include "Recordset.h"

#include <QSqlRecord>

class QSqlQuery;

namespace Kelocontrols {

/**
 * A Recordset over an executed QSqlQuery.
 *
 * The adapter moves the query itself (it does not copy the result), so the
 * query must outlive it and is left where the traversal stopped.
 *
 * - MoveFirst() on a query that is not active raises the query's own error
 *   (lastError().text()) when it failed, else ObjectClosed; a query that
 *   returns no rows (an UPDATE, say) is closed as well.
 * - A forward-only query can go to its first record only while it has not
 *   moved past it: MoveFirst() after the traversal raises CannotMoveBack.
 *   An empty forward-only result is no traversal: on drivers that do not
 *   report result sizes (SQLite) MoveFirst() finds that out by running the
 *   query's statement once more, separately, with the same bound values.
 * - A query without records is no error: MoveFirst() leaves Eof() true.
 * - An error while fetching a record raises the database's text and ends
 *   the traversal (Eof() becomes true), so a loop over the records always ends.
 */
class KELOCONTROLS_TESTS_EXPORT SqlQueryRecordset : public Recordset
{
public:
    /// Traverses `query`, which must stay alive as long as the adapter.
    explicit SqlQueryRecordset(QSqlQuery &query);

    void MoveFirst() override;
    void MoveNext() override;
    bool Eof() const override { return m_eof; }
    int FieldCount() const override;
    QString FieldName(int position) const override;
    QVariant FieldValue(int position) const override;

private:
    [[noreturn]] void raiseClosed() const;
    [[noreturn]] void raiseDatabaseError() const;
    bool hasFetchError() const;
    bool resultIsEmpty() const;
    const QSqlRecord &fields() const;

    QSqlQuery &m_query;
    bool m_eof;
    mutable bool m_fieldsRead = false;
    mutable QSqlRecord m_fields;
};

} // namespace Kelocontrols
