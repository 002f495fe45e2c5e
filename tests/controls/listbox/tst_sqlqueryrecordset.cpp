// The QSqlQuery adapter on SQLite and on a private PostgreSQL server.

#include "PostgresServer.h"

#include "SqlQueryRecordset_p.h"
#include <Kelocontrols/RuntimeError.h>

#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

using Kelocontrols::Recordset;
using Kelocontrols::RuntimeError;
using Kelocontrols::SqlQueryRecordset;

namespace {

const char *const kSqlite = "sqlite";
const char *const kPostgres = "postgresql";

int errorOf(const std::function<void()> &call, QString *description = nullptr)
{
    try {
        call();
    } catch (const RuntimeError &error) {
        if (description) {
            *description = error.description();
        }
        return error.number();
    }
    return 0;
}

QString createTables(const QSqlDatabase &db)
{
    QSqlQuery query(db);
    for (const char *statement : {"CREATE TABLE animals (id INTEGER, Name VARCHAR(30), legs INTEGER)",
             "INSERT INTO animals VALUES (1, 'Ant', 6), (2, 'Bird', 2), (3, NULL, NULL)",
             "CREATE TABLE no_rows (id INTEGER)"}) {
        if (!query.exec(QString::fromLatin1(statement))) {
            return query.lastError().text();
        }
    }
    return QString();
}

// Reads the names of every record from where the recordset stands.
QStringList names(Recordset &records)
{
    QStringList list;
    for (; !records.Eof(); records.MoveNext()) {
        list << records.Fields(QStringLiteral("name")).Value().toString();
    }
    return list;
}

} // namespace

#define FETCH_DATABASE(db)                                                                                             \
    QFETCH(QString, backend);                                                                                          \
    QSqlDatabase db = QSqlDatabase::database(backend, false);                                                          \
    QVERIFY2(db.isOpen(), qPrintable(backend + QStringLiteral(" is not available: ") + m_unavailable.value(backend)))

class TestSqlQueryRecordset : public QObject
{
    Q_OBJECT

private:
    void addBackends();
    void prepare(const QString &name, QSqlDatabase db);

    PostgresServer m_server;
    QHash<QString, QString> m_unavailable;

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void traversal_data() { addBackends(); }
    void traversal();
    void fields_data() { addBackends(); }
    void fields();
    void emptyResult_data() { addBackends(); }
    void emptyResult();
    void forwardOnly_data() { addBackends(); }
    void forwardOnly();
    void closedQueries_data() { addBackends(); }
    void closedQueries();
};

void TestSqlQueryRecordset::addBackends()
{
    QTest::addColumn<QString>("backend");
    QTest::newRow(kSqlite) << QString::fromLatin1(kSqlite);
    QTest::newRow(kPostgres) << QString::fromLatin1(kPostgres);
}

void TestSqlQueryRecordset::prepare(const QString &name, QSqlDatabase db)
{
    if (!db.isOpen()) {
        m_unavailable.insert(name, db.lastError().text());
        return;
    }
    const QString error = createTables(db);
    if (!error.isEmpty()) {
        m_unavailable.insert(name, error);
        db.close();
    }
}

void TestSqlQueryRecordset::initTestCase()
{
    QSqlDatabase sqlite = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QString::fromLatin1(kSqlite));
    sqlite.setDatabaseName(QStringLiteral(":memory:"));
    sqlite.open();
    prepare(QString::fromLatin1(kSqlite), sqlite);
    if (m_server.start()) {
        prepare(QString::fromLatin1(kPostgres), m_server.connect(QString::fromLatin1(kPostgres)));
    } else {
        m_unavailable.insert(QString::fromLatin1(kPostgres), m_server.errorString());
    }
}

void TestSqlQueryRecordset::cleanupTestCase()
{
    for (const char *name : {kSqlite, kPostgres}) {
        QSqlDatabase::database(QString::fromLatin1(name), false).close();
        QSqlDatabase::removeDatabase(QString::fromLatin1(name));
    }
    m_server.stop();
}

void TestSqlQueryRecordset::traversal()
{
    FETCH_DATABASE(db);
    QSqlQuery query(db);
    QVERIFY(query.exec(QStringLiteral("SELECT id, name, legs FROM animals ORDER BY id")));
    SqlQueryRecordset records(query);
    QVERIFY(records.Eof()); // not on a record before MoveFirst
    records.MoveFirst();
    QCOMPARE(names(records), (QStringList{"Ant", "Bird", QString()}));
    QCOMPARE(errorOf([&] { records.FieldValue(0); }), Recordset::NoCurrentRecord);
    QString description;
    QCOMPARE(errorOf([&] { records.MoveNext(); }, &description), Recordset::NoCurrentRecord);
    QCOMPARE(description, Recordset::noCurrentRecordText());

    // A scrollable query goes back as often as asked; NULLs come back as null values.
    records.MoveFirst();
    QCOMPARE(records.FieldValue(2).toInt(), 6);
    records.MoveNext();
    records.MoveNext();
    QVERIFY(records.FieldValue(1).isNull());
    QVERIFY(records.FieldValue(2).isNull());
}

void TestSqlQueryRecordset::fields()
{
    FETCH_DATABASE(db);
    QSqlQuery query(db);
    QVERIFY(query.exec(QStringLiteral("SELECT id, name AS \"Label\", legs FROM animals ORDER BY id")));
    SqlQueryRecordset records(query);
    records.MoveFirst();
    QCOMPARE(records.FieldCount(), 3);
    QCOMPARE(records.Fields(QStringLiteral("LABEL")).Name(), QStringLiteral("Label"));
    QCOMPARE(records.Fields(QStringLiteral("label")).Value().toString(), QStringLiteral("Ant"));
    QCOMPARE(records.Fields(2).Name(), QStringLiteral("legs"));
    QCOMPARE(records.Fields(2.4).Position(), 2);
    QString description;
    QCOMPARE(errorOf([&] { records.Fields(3); }, &description), Recordset::ItemNotFound);
    QCOMPARE(description,
        QStringLiteral("Item cannot be found in the collection corresponding to the requested name or ordinal."));
    QCOMPARE(errorOf([&] { records.Fields(QStringLiteral("name")); }), Recordset::ItemNotFound);
    QCOMPARE(errorOf([&] { records.FieldName(-1); }), Recordset::ItemNotFound);
    QCOMPARE(errorOf([&] { records.FieldValue(3); }), Recordset::ItemNotFound);
}

void TestSqlQueryRecordset::emptyResult()
{
    FETCH_DATABASE(db);
    for (bool forwardOnly : {false, true}) {
        QSqlQuery query(db);
        query.setForwardOnly(forwardOnly);
        QVERIFY(query.exec(QStringLiteral("SELECT id FROM no_rows")));
        SqlQueryRecordset records(query);
        records.MoveFirst(); // no records is no error
        QVERIFY(records.Eof());
        QCOMPARE(records.Fields(QStringLiteral("ID")).Name(), QStringLiteral("id"));
    }

    // With bound values: empty is empty, read to the end is not.
    for (int id : {99, 1}) {
        QSqlQuery query(db);
        query.setForwardOnly(true);
        QVERIFY(query.prepare(QStringLiteral("SELECT id FROM animals WHERE id = ?")));
        query.addBindValue(id);
        QVERIFY(query.exec());
        while (query.next()) { }
        SqlQueryRecordset records(query);
        QCOMPARE(errorOf([&] { records.MoveFirst(); }), id == 99 ? 0 : Recordset::CannotMoveBack);
        QVERIFY(records.Eof());
    }
}

void TestSqlQueryRecordset::forwardOnly()
{
    FETCH_DATABASE(db);
    QSqlQuery query(db);
    query.setForwardOnly(true);
    QVERIFY(query.exec(QStringLiteral("SELECT id, name FROM animals ORDER BY id")));
    SqlQueryRecordset records(query);
    records.MoveFirst();
    records.MoveFirst(); // still on the first record: allowed
    records.MoveNext();
    QString description;
    QCOMPARE(errorOf([&] { records.MoveFirst(); }, &description), Recordset::CannotMoveBack);
    QCOMPARE(description, QStringLiteral("The recordset is forward-only and cannot move back to its first record."));
    QCOMPARE(records.FieldValue(1).toString(), QStringLiteral("Bird")); // the position is kept

    // A new adapter over a query already read to its end cannot start over either.
    while (query.next()) { }
    SqlQueryRecordset again(query);
    QCOMPARE(errorOf([&] { again.MoveFirst(); }), Recordset::CannotMoveBack);
}

void TestSqlQueryRecordset::closedQueries()
{
    FETCH_DATABASE(db);
    QString description;
    QSqlQuery neverRun(db);
    SqlQueryRecordset closed(neverRun);
    QCOMPARE(errorOf([&] { closed.MoveFirst(); }, &description), Recordset::ObjectClosed);
    QCOMPARE(description, QStringLiteral("Operation is not allowed when the object is closed."));

    QSqlQuery update(db);
    QVERIFY(update.exec(QStringLiteral("UPDATE animals SET legs = legs WHERE id = 0")));
    SqlQueryRecordset noRows(update);
    QCOMPARE(errorOf([&] { noRows.MoveFirst(); }), Recordset::ObjectClosed);

    QSqlQuery broken(db);
    QVERIFY(!broken.exec(QStringLiteral("SELECT * FROM missing_table")));
    SqlQueryRecordset failed(broken);
    QCOMPARE(errorOf([&] { failed.MoveFirst(); }, &description), Recordset::DatabaseError);
    QCOMPARE(description, broken.lastError().text());
    QVERIFY(description.contains(QLatin1String("missing_table")));
}

QTEST_MAIN(TestSqlQueryRecordset)
#include "tst_sqlqueryrecordset.moc"
