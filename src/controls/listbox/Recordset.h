#pragma once

#include <kelocontrols_export.h>

#include <QString>
#include <QVariant>

namespace Kelocontrols {

/**
 * Read-only traversal of tabular data, record by record: the operations a
 * data-aware control needs to fill itself from a query result.
 *
 * A recordset has a current record. MoveFirst() goes to the first record,
 * MoveNext() to the following one, and Eof() tells when the current
 * position lies past the last record (at once for a result without
 * records). Fields are found by name (compared without regard to case) or
 * by 0-based position through Fields(), and give their Name and the current
 * record's Value.
 *
 * Every failure is raised as a RuntimeError whose description() says what
 * went wrong: the database's own error text for a failing query, or one of
 * the texts below.
 *
 * Two adapters come with the library: SqlQueryRecordset over a QSqlQuery and
 * ItemModelRecordset over any QAbstractItemModel (QSqlQueryModel,
 * QStandardItemModel...). Other sources can derive from this class.
 *
 * \code
 * QSqlQuery query(QStringLiteral("SELECT name, code FROM countries"), db);
 * Kelocontrols::SqlQueryRecordset records(query);
 * for (records.MoveFirst(); !records.Eof(); records.MoveNext()) {
 *     qDebug() << records.Fields(QStringLiteral("name")).Value();
 * }
 * \endcode
 */
class KELOCONTROLS_EXPORT Recordset
{
public:
    /// A field was asked for by a name or position the recordset does not have.
    static constexpr int ItemNotFound = 3265;
    /// The operation needs a current record and the recordset is past its end.
    static constexpr int NoCurrentRecord = 3021;
    /// The recordset holds no result at all (no query run, or not one that returns rows).
    static constexpr int ObjectClosed = 3704;
    /// A forward-only recordset was asked to go back to its first record.
    static constexpr int CannotMoveBack = 3219;
    /// The database reported an error; the description is the database's text.
    static constexpr int DatabaseError = -2147467259;

    /// "Item cannot be found in the collection corresponding to the requested name or ordinal."
    static QString itemNotFoundText();
    /// "Either BOF or EOF is True, or the current record has been deleted. Requested operation requires a current
    /// record."
    static QString noCurrentRecordText();
    /// "Operation is not allowed when the object is closed."
    static QString objectClosedText();
    /// "The recordset is forward-only and cannot move back to its first record."
    static QString cannotMoveBackText();

    /// One field of a recordset, as Fields() finds it.
    class Field
    {
    public:
        /// The field's name.
        QString Name() const { return m_records->FieldName(m_position); }
        /// The field's value in the current record. @throws RuntimeError NoCurrentRecord past the end.
        QVariant Value() const { return m_records->FieldValue(m_position); }
        /// The field's 0-based position.
        int Position() const { return m_position; }

    private:
        friend class Recordset;
        Field(const Recordset *records, int position)
            : m_records(records)
            , m_position(position)
        {
        }

        const Recordset *m_records;
        int m_position;
    };

    virtual ~Recordset();

    /// Goes to the first record; Eof() is then true when there is none.
    /// @throws RuntimeError when the recordset cannot get there.
    virtual void MoveFirst() = 0;
    /// Goes to the next record. Past the last record Eof() becomes true.
    /// @throws RuntimeError NoCurrentRecord when already past the end, or the database's error;
    ///         the recordset is past its end afterwards in either case.
    virtual void MoveNext() = 0;
    /// True when the current position lies past the last record (named after
    /// the classic EOF property; EOF itself is a C macro).
    virtual bool Eof() const = 0;

    /// The number of fields (columns).
    virtual int FieldCount() const = 0;
    /// The name of the field at `position` (0-based). @throws RuntimeError ItemNotFound.
    virtual QString FieldName(int position) const = 0;
    /// The value of the field at `position` in the current record.
    /// @throws RuntimeError ItemNotFound, NoCurrentRecord.
    virtual QVariant FieldValue(int position) const = 0;

    /**
     * Finds a field by what `nameOrPosition` holds: a text (QString,
     * QByteArray, QChar) is a name, compared without regard to case; a
     * number (or a Boolean, True counting as -1) is a 0-based position,
     * rounded to a whole number.
     * @throws RuntimeError ItemNotFound for anything else or a field that does not exist.
     */
    Field Fields(const QVariant &nameOrPosition) const;

protected:
    Recordset() = default;
    Recordset(const Recordset &) = default;
    Recordset &operator=(const Recordset &) = default;

    /// Raises ItemNotFound unless 0 <= position < FieldCount().
    void checkPosition(int position) const;

private:
    int positionOfName(const QString &name) const;
    int positionOfNumber(const QVariant &number) const;
};

} // namespace Kelocontrols
