// KelolistBox::Populate and the QSqlQuery adapter under it against real
// databases: SQLite in memory, SQLite in a file, and a PostgreSQL server
// started for the test.

#include "PostgresServer.h"

#include "KeloTestSupport.h"
#include "SqlQueryRecordset_p.h"
#include "controls/ControlTestSupport.h"
#include <Kelocontrols/KelolistBox.h>
#include <Kelocontrols/Recordset.h>

#include <QLabel>
#include <QSignalSpy>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlQueryModel>
#include <QTemporaryDir>
#include <QTest>

using KeloTest::listTexts;
using KeloTest::listValues;

namespace {

const char *const kSqliteMemory = "sqlite-memory";
const char *const kSqliteFile = "sqlite-file";
const char *const kPostgres = "postgresql";

// The same tables on every back end; `id` gives one row order everywhere
// (SQLite and PostgreSQL sort NULLs differently).
const char *const kSchema[] = {
    "CREATE TABLE countries (id INTEGER, code INTEGER, name VARCHAR(60))",
    "INSERT INTO countries VALUES (1, 250, 'France'), (2, 276, 'Germany'), (3, NULL, 'Atlantis'),"
    " (4, 999, NULL), (5, 380, 'Italy'), (6, 40, 'Austria')",
    "CREATE TABLE oddvalues (id INTEGER, label VARCHAR(20), amount VARCHAR(20))",
    "INSERT INTO oddvalues VALUES (1, 'twelve', '12'), (2, 'half', '2.5'), (3, 'letters', 'abc'),"
    " (4, 'huge', '99999999999'), (5, 'nothing', NULL), (6, 'threehalves', ' 3.5 ')",
    "CREATE TABLE measures (id INTEGER, big BIGINT, ratio DOUBLE PRECISION)",
    "INSERT INTO measures VALUES (1, 5000000000, 2.5), (2, -7, 3.5), (3, 2147483647, -2.5)",
    "CREATE TABLE empty_table (code INTEGER, name VARCHAR(60))",
};

QString createTables(const QSqlDatabase &db)
{
    QSqlQuery query(db);
    for (const char *statement : kSchema) {
        if (!query.exec(QString::fromLatin1(statement))) {
            return query.lastError().text();
        }
    }
    return QString();
}

} // namespace

// Declares `db` for the back end of the current data row; fails the row
// with the reason when that back end is not available.
#define FETCH_DATABASE(db)                                                                                             \
    QFETCH(QString, backend);                                                                                          \
    QSqlDatabase db = QSqlDatabase::database(backend, false);                                                          \
    QVERIFY2(db.isOpen(), qPrintable(backend + QStringLiteral(" is not available: ") + m_unavailable.value(backend)))

class TestPopulateDatabases : public QObject
{
    Q_OBJECT

private:
    void addBackends();
    void openSqlite(const QString &name, const QString &file);

    PostgresServer m_server;
    QTemporaryDir m_folder;
    QHash<QString, QString> m_unavailable;

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void populateByNameAndPosition_data() { addBackends(); }
    void populateByNameAndPosition();
    void populateWithDefaults_data() { addBackends(); }
    void populateWithDefaults();
    void forwardOnlyQuery_data() { addBackends(); }
    void forwardOnlyQuery();
    void failuresLeaveTheList_data() { addBackends(); }
    void failuresLeaveTheList();
    void emptyResult_data() { addBackends(); }
    void emptyResult();
    void conversions_data() { addBackends(); }
    void conversions();
    void queryModel_data() { addBackends(); }
    void queryModel();
    void recordsetEdges_data() { addBackends(); }
    void recordsetEdges();
};

void TestPopulateDatabases::addBackends()
{
    QTest::addColumn<QString>("backend");
    for (const char *name : {kSqliteMemory, kSqliteFile, kPostgres}) {
        QTest::newRow(name) << QString::fromLatin1(name);
    }
}

void TestPopulateDatabases::openSqlite(const QString &name, const QString &file)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    db.setDatabaseName(file);
    if (!db.open()) {
        m_unavailable.insert(name, db.lastError().text());
        return;
    }
    const QString error = createTables(db);
    if (!error.isEmpty()) {
        m_unavailable.insert(name, error);
        db.close();
    }
}

void TestPopulateDatabases::initTestCase()
{
    QVERIFY(m_folder.isValid());
    openSqlite(QString::fromLatin1(kSqliteMemory), QStringLiteral(":memory:"));
    openSqlite(QString::fromLatin1(kSqliteFile), m_folder.filePath(QStringLiteral("countries.sqlite")));

    const QString postgres = QString::fromLatin1(kPostgres);
    if (!m_server.start()) {
        m_unavailable.insert(postgres, m_server.errorString());
        return;
    }
    QSqlDatabase db = m_server.connect(postgres);
    if (!db.isOpen()) {
        m_unavailable.insert(postgres, db.lastError().text());
        return;
    }
    const QString error = createTables(db);
    if (!error.isEmpty()) {
        m_unavailable.insert(postgres, error);
        db.close();
    }
}

void TestPopulateDatabases::cleanupTestCase()
{
    for (const char *name : {kSqliteMemory, kSqliteFile, kPostgres}) {
        QSqlDatabase::database(QString::fromLatin1(name), false).close();
        QSqlDatabase::removeDatabase(QString::fromLatin1(name));
    }
    m_server.stop();
    QVERIFY(!m_server.isRunning());
}

// By name without regard to case, or by position (rounded); NULL texts add no
// entry and leave their neighbours alone, NULL values give 0.
void TestPopulateDatabases::populateByNameAndPosition()
{
    FETCH_DATABASE(db);
    QSqlQuery query(db);
    QVERIFY(query.exec(QStringLiteral("SELECT name, code FROM countries ORDER BY id")));
    KelolistBox box;
    QSignalSpy clicks(&box, &KelolistBox::Click);
    QCOMPARE(box.Populate(query, QStringLiteral("NAME"), QStringLiteral("Code")), QString());
    const QStringList listed{"France", "Germany", "Atlantis", "Italy", "Austria"};
    QCOMPARE(listTexts(box), listed);
    QCOMPARE(listValues(box), (QList<int>{250, 276, 0, 380, 40}));
    QCOMPARE(box.Value(), 0); // nothing selected: DefaultValue
    QCOMPARE(clicks.count(), 0);
    box.setValue(380);
    QCOMPARE(box.Text(), QStringLiteral("Italy"));

    QVERIFY(query.exec(QStringLiteral("SELECT code, name FROM countries ORDER BY id")));
    QCOMPARE(box.Populate(query, 1.4, 0.0), QString());
    QCOMPARE(listTexts(box), listed);
    QCOMPARE(listValues(box), (QList<int>{250, 276, 0, 380, 40}));
}

void TestPopulateDatabases::populateWithDefaults()
{
    FETCH_DATABASE(db);
    QSqlQuery query(db);
    QVERIFY(query.exec(QStringLiteral("SELECT name, code FROM countries ORDER BY id")));
    KelolistBox box;
    box.setDefaultText(QStringLiteral("nothing chosen"));
    QSignalSpy clicks(&box, &KelolistBox::Click);
    QSignalSpy changes(&box, &KelolistBox::PropertyChanged);
    QCOMPARE(
        box.Populate(query, QStringLiteral("name"), QStringLiteral("code"), QStringLiteral("(none)"), -1), QString());
    QCOMPARE(box.ListCount(), 6);
    QCOMPARE(listTexts(box).first(), QStringLiteral("(none)"));
    QCOMPARE(listValues(box).first(), -1);
    QCOMPARE(box.DefaultValue(), -1);
    QCOMPARE(box.DefaultText(), QStringLiteral("nothing chosen"));
    QCOMPARE(box.Text(), QStringLiteral("(none)")); // the default entry is selected
    QCOMPARE(box.Value(), -1);
    QCOMPARE(clicks.count(), 0);
    QCOMPARE(box.findChild<QLabel *>(QStringLiteral("labItem"))->text(), QStringLiteral("(none)"));
    QVERIFY(changes.contains(QVariantList{QStringLiteral("DefaultValue")}));

    // A DefaultValue without DefaultText changes nothing.
    QVERIFY(query.exec(QStringLiteral("SELECT name, code FROM countries ORDER BY id")));
    QCOMPARE(box.Populate(query, QStringLiteral("name"), QStringLiteral("code"), QVariant(), 7), QString());
    QCOMPARE(box.DefaultValue(), -1);
    QCOMPARE(box.ListCount(), 5);
    QCOMPARE(box.Text(), QStringLiteral("nothing chosen"));
}

void TestPopulateDatabases::forwardOnlyQuery()
{
    FETCH_DATABASE(db);
    QSqlQuery query(db);
    query.setForwardOnly(true);
    QVERIFY(query.exec(QStringLiteral("SELECT name, code FROM countries ORDER BY id")));
    QVERIFY(query.next()); // standing on the first row is no obstacle
    KelolistBox box;
    QCOMPARE(box.Populate(query, QStringLiteral("name"), QStringLiteral("code")), QString());
    QCOMPARE(box.ListCount(), 5);

    // Read to the end, it cannot go back: the error is returned, the list stays.
    box.AddItem(QStringLiteral("Extra"), 1);
    QCOMPARE(box.Populate(query, QStringLiteral("name"), QStringLiteral("code")),
        QStringLiteral("The recordset is forward-only and cannot move back to its first record."));
    QCOMPARE(box.ListCount(), 6);
}

void TestPopulateDatabases::failuresLeaveTheList()
{
    FETCH_DATABASE(db);
    KelolistBox box;
    box.AddItem(QStringLiteral("Kept"), 5);
    box.setText(QStringLiteral("kept"));

    QSqlQuery broken(db);
    QVERIFY(!broken.exec(QStringLiteral("SELECT nonsense FROM nowhere")));
    QVERIFY(!broken.lastError().text().isEmpty());
    QCOMPARE(box.Populate(broken, QStringLiteral("name"), QStringLiteral("code"), QStringLiteral("(none)"), 9),
        broken.lastError().text());

    QSqlQuery neverRun(db);
    QCOMPARE(box.Populate(neverRun, QStringLiteral("name"), QStringLiteral("code")),
        QStringLiteral("Operation is not allowed when the object is closed."));

    QSqlQuery query(db);
    QVERIFY(query.exec(QStringLiteral("SELECT name, code FROM countries ORDER BY id")));
    const QString notFound = Kelocontrols::Recordset::itemNotFoundText();
    QCOMPARE(box.Populate(query, QStringLiteral("nme"), QStringLiteral("code")),
        QStringLiteral("TextColumn=nme - ") + notFound);
    QCOMPARE(box.Populate(query, QStringLiteral("name"), 2), QStringLiteral("ValueColumn=2 - ") + notFound);
    QCOMPARE(box.Populate(query, QVariant(), QStringLiteral("code")), QStringLiteral("TextColumn= - ") + notFound);
    QCOMPARE(box.Populate(query, QStringLiteral("name"), true), QStringLiteral("ValueColumn=True - ") + notFound);

    QCOMPARE(box.ListCount(), 1);
    QCOMPARE(box.Text(), QStringLiteral("Kept"));
    QCOMPARE(box.DefaultValue(), 0); // the failed call with DefaultValue 9 changed nothing
}

void TestPopulateDatabases::emptyResult()
{
    FETCH_DATABASE(db);
    QSqlQuery query(db);
    QVERIFY(query.exec(QStringLiteral("SELECT name, code FROM empty_table")));
    KelolistBox box;
    box.AddItem(QStringLiteral("Old"), 1);
    QCOMPARE(box.Populate(query, QStringLiteral("name"), QStringLiteral("code")), QString());
    QCOMPARE(box.ListCount(), 0);

    QVERIFY(query.exec(QStringLiteral("SELECT name, code FROM empty_table")));
    QCOMPARE(
        box.Populate(query, QStringLiteral("name"), QStringLiteral("code"), QStringLiteral("(all)"), 0), QString());
    QCOMPARE(listTexts(box), QStringList{QStringLiteral("(all)")});
    QCOMPARE(box.Text(), QStringLiteral("(all)"));

    // Empty and forward-only: still no error, whatever the driver knows of sizes.
    QSqlQuery forward(db);
    forward.setForwardOnly(true);
    QVERIFY(forward.exec(QStringLiteral("SELECT name, code FROM empty_table")));
    QCOMPARE(box.Populate(forward, QStringLiteral("name"), QStringLiteral("code")), QString());
    QCOMPARE(box.ListCount(), 0);
}

// Values become 32-bit integers, halves rounded to even; what does not
// convert or overflows leaves 0. Texts of numbers are their digits.
void TestPopulateDatabases::conversions()
{
    FETCH_DATABASE(db);
    KelolistBox box;
    QSqlQuery query(db);
    QVERIFY(query.exec(QStringLiteral("SELECT label, amount FROM oddvalues ORDER BY id")));
    QCOMPARE(box.Populate(query, QStringLiteral("label"), QStringLiteral("amount")), QString());
    QCOMPARE(listTexts(box), (QStringList{"twelve", "half", "letters", "huge", "nothing", "threehalves"}));
    QCOMPARE(listValues(box), (QList<int>{12, 2, 0, 0, 0, 4}));

    QVERIFY(query.exec(QStringLiteral("SELECT big, ratio FROM measures ORDER BY id")));
    QCOMPARE(box.Populate(query, QStringLiteral("big"), QStringLiteral("ratio")), QString());
    QCOMPARE(listTexts(box), (QStringList{"5000000000", "-7", "2147483647"}));
    QCOMPARE(listValues(box), (QList<int>{2, 4, -2}));

    QVERIFY(query.exec(QStringLiteral("SELECT ratio, big FROM measures ORDER BY id")));
    QCOMPARE(box.Populate(query, QStringLiteral("ratio"), QStringLiteral("big")), QString());
    QCOMPARE(listTexts(box), (QStringList{"2.5", "3.5", "-2.5"}));
    QCOMPARE(listValues(box), (QList<int>{0, -7, 2147483647}));
}

// A QSqlQueryModel hands its rows out 256 at a time; all of them arrive.
void TestPopulateDatabases::queryModel()
{
    FETCH_DATABASE(db);
    QSqlQueryModel model;
    model.setQuery(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000) "
                                  "SELECT 'Row ' || i AS label, i AS id FROM n ORDER BY i"),
        db);
    QVERIFY2(!model.lastError().isValid(), qPrintable(model.lastError().text()));
    model.setHeaderData(0, Qt::Horizontal, QStringLiteral("Shown header"));
    KelolistBox box;
    QCOMPARE(box.Populate(&model, QStringLiteral("label"), QStringLiteral("ID")), QString());
    QCOMPARE(box.ListCount(), 1000);
    box.setValue(1000);
    QCOMPARE(box.Text(), QStringLiteral("Row 1000"));

    QSqlQueryModel broken;
    broken.setQuery(QStringLiteral("SELECT nonsense FROM nowhere"), db);
    QVERIFY(broken.lastError().isValid());
    QCOMPARE(box.Populate(&broken, QStringLiteral("label"), QStringLiteral("id")), broken.lastError().text());
    QCOMPARE(box.ListCount(), 1000);
}

// What only the adapter shows: reading past the end, a forward-only query
// keeping its place when refused, statements without a result set.
void TestPopulateDatabases::recordsetEdges()
{
    FETCH_DATABASE(db);
    using Kelocontrols::Recordset;
    using Kelocontrols::SqlQueryRecordset;
    using KeloTest::errorNumberOf;
    QSqlQuery query(db);
    query.setForwardOnly(true);
    QVERIFY(query.exec(QStringLiteral("SELECT code, name FROM countries ORDER BY id")));
    SqlQueryRecordset records(query);
    QVERIFY(records.Eof()); // not on a record before MoveFirst
    records.MoveFirst();
    records.MoveFirst(); // still on the first record: allowed
    records.MoveNext();
    QCOMPARE(errorNumberOf([&] { records.MoveFirst(); }), Recordset::CannotMoveBack);
    QCOMPARE(records.FieldValue(1).toString(), QStringLiteral("Germany")); // the position is kept
    while (!records.Eof()) {
        records.MoveNext();
    }
    QCOMPARE(errorNumberOf([&] { records.FieldValue(0); }), Recordset::NoCurrentRecord);
    QCOMPARE(errorNumberOf([&] { records.MoveNext(); }), Recordset::NoCurrentRecord);
    QCOMPARE(errorNumberOf([&] { records.FieldName(-1); }), Recordset::ItemNotFound);

    // Bound values read to the end: empty is empty, anything else cannot start over.
    for (int id : {99, 1}) {
        QSqlQuery bound(db);
        bound.setForwardOnly(true);
        QVERIFY(bound.prepare(QStringLiteral("SELECT id FROM countries WHERE id = ?")));
        bound.addBindValue(id);
        QVERIFY(bound.exec());
        while (bound.next()) { }
        SqlQueryRecordset again(bound);
        QCOMPARE(errorNumberOf([&] { again.MoveFirst(); }), id == 99 ? 0 : int(Recordset::CannotMoveBack));
        QVERIFY(again.Eof());
    }

    QSqlQuery update(db);
    QVERIFY(update.exec(QStringLiteral("UPDATE countries SET code = code WHERE id = 0")));
    SqlQueryRecordset noRows(update);
    QCOMPARE(errorNumberOf([&] { noRows.MoveFirst(); }), Recordset::ObjectClosed);
}

QTEST_MAIN(TestPopulateDatabases)
#include "tst_populatedatabases.moc"
