// KelolistBox::Populate and the QSqlQuery adapter under it against real
// databases: SQLite in memory, SQLite in a file, and a PostgreSQL server
// started for the test. Every test runs once per database.

#include "KeloTestSupport.h"
#include "SqlQueryRecordset_p.h"
#include "controls/ControlTestSupport.h"
#include <Kelocontrols/KelolistBox.h>
#include <Kelocontrols/Recordset.h>

#include <QDeadlineTimer>
#include <QDir>
#include <QProcess>
#include <QSignalSpy>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlQueryModel>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QVersionNumber>

#include <csignal>
#include <grp.h>
#include <optional>
#include <pwd.h>
#include <sys/prctl.h>
#include <unistd.h>

using Kelocontrols::Recordset;
using KeloTest::errorNumberOf;
using KeloTest::listTexts;
using KeloTest::listValues;

namespace {

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

// A throw-away PostgreSQL server from the distribution's binaries (the
// newest /usr/lib/postgresql/<version>/bin, or the folder KELO_POSTGRES_BIN
// names): a cluster made by initdb in a temporary folder under /tmp, trusting
// the user "kelo", served on a unix socket in that folder only (no TCP port,
// so parallel runs never meet). The server is a child told to quit when the
// test process dies. PostgreSQL refuses to run as root, so a root test runs
// initdb and the server as the user "postgres".
class PostgresServer
{
public:
    ~PostgresServer()
    {
        if (m_server.state() != QProcess::NotRunning) {
            ::kill(pid_t(m_server.processId()), SIGINT); // fast shutdown: ends the sessions, then quits
            if (!m_server.waitForFinished(30000)) {
                m_server.kill();
                m_server.waitForFinished(5000);
            }
        }
    }

    /// Starts the server and opens the connection `name` to it; the reason when that fails.
    QString start(const QString &name)
    {
        QString bin = qEnvironmentVariable("KELO_POSTGRES_BIN");
        const QDir versions(QStringLiteral("/usr/lib/postgresql"));
        QVersionNumber newest;
        for (const QString &version : versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            if (QVersionNumber::fromString(version) > newest && qEnvironmentVariableIsEmpty("KELO_POSTGRES_BIN")) {
                newest = QVersionNumber::fromString(version);
                bin = versions.filePath(version + QStringLiteral("/bin"));
            }
        }
        if (!QFile::exists(bin + QStringLiteral("/initdb")) || !QFile::exists(bin + QStringLiteral("/postgres"))) {
            return QStringLiteral("no initdb and postgres under /usr/lib/postgresql/*/bin or $KELO_POSTGRES_BIN "
                                  "(scripts/setup installs the postgresql package)");
        }
        if (::geteuid() == 0) {
            const passwd *postgres = ::getpwnam("postgres");
            if (!postgres) {
                return QStringLiteral("running as root, but there is no user 'postgres' to run PostgreSQL as");
            }
            m_user = {postgres->pw_uid, postgres->pw_gid};
        }
        const QByteArray folder = QFile::encodeName(m_folder.path());
        if (!m_folder.isValid() || (m_user && ::chown(folder.constData(), m_user->first, m_user->second) != 0)) {
            return QStringLiteral("cannot prepare a folder for the server: ") + m_folder.errorString();
        }
        const QString data = m_folder.filePath(QStringLiteral("data"));
        QProcess initdb;
        configure(initdb);
        initdb.start(bin + QStringLiteral("/initdb"),
            {QStringLiteral("-D"), data, QStringLiteral("-U"), QStringLiteral("kelo"), QStringLiteral("-A"),
                QStringLiteral("trust"), QStringLiteral("-E"), QStringLiteral("UTF8"), QStringLiteral("--no-locale"),
                QStringLiteral("-N")});
        if (!initdb.waitForFinished(120000) || initdb.exitStatus() != QProcess::NormalExit || initdb.exitCode() != 0) {
            return QStringLiteral("initdb failed (%1): %2").arg(initdb.errorString(), initdb.readAll());
        }
        configure(m_server);
        m_server.start(bin + QStringLiteral("/postgres"),
            {QStringLiteral("-D"), data, QStringLiteral("-k"), m_folder.path(), QStringLiteral("-c"),
                QStringLiteral("listen_addresses="), QStringLiteral("-c"), QStringLiteral("fsync=off"),
                QStringLiteral("-c"), QStringLiteral("max_connections=20"), QStringLiteral("-c"),
                QStringLiteral("shared_buffers=16MB")});
        // Ready means a client can log in, not merely that the process runs.
        QString error = m_server.waitForStarted() ? QString() : m_server.errorString();
        for (QDeadlineTimer deadline(60000); !deadline.hasExpired() && m_server.state() == QProcess::Running;
             QThread::msleep(100)) {
            {
                QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), name);
                db.setHostName(m_folder.path()); // a folder: the server's unix socket in it
                db.setUserName(QStringLiteral("kelo"));
                db.setDatabaseName(QStringLiteral("postgres"));
                db.setConnectOptions(QStringLiteral("connect_timeout=5"));
                if (db.open()) {
                    return QString();
                }
                error = db.lastError().text();
            }
            QSqlDatabase::removeDatabase(name);
        }
        return QStringLiteral("PostgreSQL did not start: %1\n%2").arg(error, m_server.readAll());
    }

private:
    // A neutral locale and no PG* variables; as root, the tools run as
    // 'postgres'. The death signal is set after the user switch, which clears it.
    void configure(QProcess &process) const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const QString &name : environment.keys()) {
            if (name.startsWith(QLatin1String("PG"))) {
                environment.remove(name);
            }
        }
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(m_folder.path());
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.setChildProcessModifier([user = m_user] {
            if (user && (::setgroups(0, nullptr) != 0 || ::setgid(user->second) != 0 || ::setuid(user->first) != 0)) {
                ::_exit(126);
            }
            ::prctl(PR_SET_PDEATHSIG, SIGQUIT);
        });
    }

    // Under /tmp, which 'postgres' can reach; root's own temporary folder may not be.
    QTemporaryDir m_folder{QStringLiteral("/tmp/kelo-pg-XXXXXX")};
    QProcess m_server;
    std::optional<std::pair<uid_t, gid_t>> m_user;
};

const QString kCountries = QStringLiteral("SELECT name, code FROM countries ORDER BY id");

QSqlQuery run(const QSqlDatabase &db, const QString &sql, bool forwardOnly = false)
{
    QSqlQuery query(db);
    query.setForwardOnly(forwardOnly);
    if (!query.exec(sql)) {
        qWarning("%s: %s", qPrintable(sql), qPrintable(query.lastError().text()));
    }
    return query;
}

} // namespace

class TestPopulateDatabases : public QObject
{
    Q_OBJECT

private:
    // Creates the tables, or notes why the back end is not available.
    void prepare(QSqlDatabase db)
    {
        QSqlQuery query(db);
        for (const char *statement : kSchema) {
            if (!db.isOpen() || !query.exec(QString::fromLatin1(statement))) {
                m_unavailable.insert(db.connectionName(), db.lastError().text() + query.lastError().text());
                db.close();
                return;
            }
        }
    }

    PostgresServer m_server;
    QTemporaryDir m_folder;
    QHash<QString, QString> m_unavailable;
    QSqlDatabase m_db; // the back end of the current global row

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<QString>("backend");
        for (const char *name : {"sqlite-memory", "sqlite-file", "postgresql"}) {
            QTest::newRow(name) << QString::fromLatin1(name);
        }
    }
    void initTestCase()
    {
        QVERIFY(m_folder.isValid());
        for (const QString &file :
            {QStringLiteral(":memory:"), m_folder.filePath(QStringLiteral("countries.sqlite"))}) {
            const QString name
                = file.startsWith(u':') ? QStringLiteral("sqlite-memory") : QStringLiteral("sqlite-file");
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setDatabaseName(file);
            db.open();
            prepare(db);
        }
        const QString postgres = QStringLiteral("postgresql");
        const QString error = m_server.start(postgres);
        if (error.isEmpty()) {
            prepare(QSqlDatabase::database(postgres, false));
        } else {
            m_unavailable.insert(postgres, error);
        }
    }
    void cleanupTestCase()
    {
        m_db = QSqlDatabase();
        for (const QString &name : QSqlDatabase::connectionNames()) {
            QSqlDatabase::database(name, false).close();
            QSqlDatabase::removeDatabase(name);
        }
    }
    // A back end that is not available fails each test with the reason.
    void init()
    {
        QFETCH_GLOBAL(QString, backend);
        m_db = QSqlDatabase::database(backend, false);
        QVERIFY2(
            m_db.isOpen(), qPrintable(backend + QStringLiteral(" is not available: ") + m_unavailable.value(backend)));
    }
    void populate_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QVariant>("textColumn");
        QTest::addColumn<QVariant>("valueColumn");
        QTest::addColumn<QStringList>("texts"); // after the default entry, if any
        QTest::addColumn<QList<int>>("values");
        QTest::addColumn<QVariant>("defaultText"); // invalid: not passed
        QTest::addColumn<QVariant>("defaultValue");

        // NULL texts add no entry and leave their neighbours alone, NULL values give 0.
        const QStringList countries{"France", "Germany", "Atlantis", "Italy", "Austria"};
        const QList<int> codes{250, 276, 0, 380, 40};
        const QString empty = QStringLiteral("SELECT name, code FROM empty_table");
        const QVariant name("name"), code("code"), none;
        QTest::newRow("by name, any case")
            << kCountries << QVariant("NAME") << QVariant("Code") << countries << codes << none << none;
        QTest::newRow("by position, rounded") << "SELECT code, name FROM countries ORDER BY id" << QVariant(1.4)
                                              << QVariant(0.0) << countries << codes << none << none;
        QTest::newRow("default entry") << kCountries << name << code << countries << codes << QVariant("(none)")
                                       << QVariant(-1);
        QTest::newRow("DefaultValue alone") << kCountries << name << code << countries << codes << none << QVariant(7);
        // Values become 32-bit integers, halves rounded to even; what does not
        // convert or overflows leaves 0. Texts of numbers are their digits.
        QTest::newRow("values as text") << "SELECT label, amount FROM oddvalues ORDER BY id" << QVariant("label")
                                        << QVariant("amount")
                                        << QStringList{"twelve", "half", "letters", "huge", "nothing", "threehalves"}
                                        << QList<int>{12, 2, 0, 0, 0, 4} << none << none;
        QTest::newRow("64-bit texts, double values")
            << "SELECT big, ratio FROM measures ORDER BY id" << QVariant("big") << QVariant("ratio")
            << QStringList{"5000000000", "-7", "2147483647"} << QList<int>{2, 4, -2} << none << none;
        QTest::newRow("double texts, 64-bit values")
            << "SELECT ratio, big FROM measures ORDER BY id" << QVariant("ratio") << QVariant("big")
            << QStringList{"2.5", "3.5", "-2.5"} << QList<int>{0, -7, 2147483647} << none << none;
        QTest::newRow("empty result") << empty << name << code << QStringList() << QList<int>() << none << none;
        QTest::newRow("empty result, default entry")
            << empty << name << code << QStringList() << QList<int>() << QVariant("(all)") << QVariant(5);
    }
    // The list is replaced without a Click. A default entry heads it and is
    // selected; the DefaultValue passed with it replaces the property, which
    // reports the change. A DefaultValue without DefaultText changes nothing.
    void populate()
    {
        QFETCH(QString, sql);
        QFETCH(QVariant, textColumn);
        QFETCH(QVariant, valueColumn);
        QFETCH(QStringList, texts);
        QFETCH(QList<int>, values);
        QFETCH(QVariant, defaultText);
        QFETCH(QVariant, defaultValue);
        QSqlQuery query = run(m_db, sql);
        KelolistBox box;
        box.setDefaultText(QStringLiteral("nothing chosen"));
        box.AddItem(QStringLiteral("Old"), 1);
        QSignalSpy clicks(&box, &KelolistBox::Click);
        QSignalSpy changes(&box, &KelolistBox::PropertyChanged);
        QString result; // called by name with the query by reference, as a host does
        QVERIFY(QMetaObject::invokeMethod(&box, "Populate", Q_RETURN_ARG(QString, result), Q_ARG(QSqlQuery &, query),
            Q_ARG(QVariant, textColumn), Q_ARG(QVariant, valueColumn), Q_ARG(QVariant, defaultText),
            Q_ARG(QVariant, defaultValue)));
        QVERIFY(!result.isNull() && result.isEmpty());
        const bool withDefault = defaultText.isValid();
        QCOMPARE(listTexts(box), withDefault ? QStringList{defaultText.toString()} + texts : texts);
        QCOMPARE(listValues(box), withDefault ? QList<int>{defaultValue.toInt()} + values : values);
        QCOMPARE(box.Text(), withDefault ? defaultText.toString() : QStringLiteral("nothing chosen"));
        QCOMPARE(box.DefaultValue(), withDefault ? defaultValue.toInt() : 0);
        QCOMPARE(box.DefaultText(), QStringLiteral("nothing chosen"));
        QCOMPARE(KeloTest::firstArguments(changes), withDefault ? QStringList{"DefaultValue"} : QStringList());
        QCOMPARE(clicks.count(), 0);
    }
    void forwardOnlyQuery()
    {
        QSqlQuery query = run(m_db, kCountries, true);
        QVERIFY(query.next()); // standing on the first row is no obstacle
        KelolistBox box;
        QCOMPARE(box.Populate(query, QStringLiteral("name"), QStringLiteral("code")), QString());
        QCOMPARE(box.ListCount(), 5);

        // Read to the end, it cannot go back: the error is returned, the list stays.
        box.AddItem(QStringLiteral("Extra"), 1);
        QCOMPARE(box.Populate(query, QStringLiteral("name"), QStringLiteral("code")),
            QStringLiteral("The recordset is forward-only and cannot move back to its first record."));
        QCOMPARE(box.ListCount(), 6);

        // Empty and forward-only: no error, whatever the driver knows of sizes.
        QSqlQuery empty = run(m_db, QStringLiteral("SELECT name, code FROM empty_table"), true);
        QCOMPARE(box.Populate(empty, QStringLiteral("name"), QStringLiteral("code")), QString());
        QCOMPARE(box.ListCount(), 0);
    }
    void failuresLeaveTheList()
    {
        QSqlDatabase &db = m_db;
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

        QSqlQuery query = run(db, kCountries);
        const QString notFound = Recordset::itemNotFoundText();
        QCOMPARE(box.Populate(query, QStringLiteral("nme"), QStringLiteral("code")),
            QStringLiteral("TextColumn=nme - ") + notFound);
        QCOMPARE(box.Populate(query, QStringLiteral("name"), 2), QStringLiteral("ValueColumn=2 - ") + notFound);
        QCOMPARE(box.Populate(query, QVariant(), QStringLiteral("code")), QStringLiteral("TextColumn= - ") + notFound);
        QCOMPARE(box.Populate(query, QStringLiteral("name"), true), QStringLiteral("ValueColumn=True - ") + notFound);

        QCOMPARE(listTexts(box), QStringList{QStringLiteral("Kept")});
        QCOMPARE(box.Text(), QStringLiteral("Kept"));
        QCOMPARE(box.DefaultValue(), 0); // the failed call with DefaultValue 9 changed nothing
    }
    // A QSqlQueryModel hands its rows out 256 at a time; all of them arrive.
    void queryModel()
    {
        QSqlQueryModel model;
        model.setQuery(QStringLiteral("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000) "
                                      "SELECT 'Row ' || i AS label, i AS id FROM n ORDER BY i"),
            m_db);
        QVERIFY2(!model.lastError().isValid(), qPrintable(model.lastError().text()));
        model.setHeaderData(0, Qt::Horizontal, QStringLiteral("Shown header"));
        KelolistBox box;
        QCOMPARE(box.Populate(&model, QStringLiteral("label"), QStringLiteral("ID")), QString());
        QCOMPARE(box.ListCount(), 1000);
        box.setValue(1000);
        QCOMPARE(box.Text(), QStringLiteral("Row 1000"));

        QSqlQueryModel broken;
        broken.setQuery(QStringLiteral("SELECT nonsense FROM nowhere"), m_db);
        QVERIFY(broken.lastError().isValid());
        QCOMPARE(box.Populate(&broken, QStringLiteral("label"), QStringLiteral("id")), broken.lastError().text());
        QCOMPARE(box.ListCount(), 1000);
    }
    // What only the adapter shows: reading past the end, a forward-only query
    // keeping its place when refused, statements without a result set.
    void recordsetEdges()
    {
        using Kelocontrols::SqlQueryRecordset;
        QSqlDatabase &db = m_db;
        QSqlQuery query = run(db, QStringLiteral("SELECT code, name FROM countries ORDER BY id"), true);
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

        QSqlQuery update = run(db, QStringLiteral("UPDATE countries SET code = code WHERE id = 0"));
        SqlQueryRecordset noRows(update);
        QCOMPARE(errorNumberOf([&] { noRows.MoveFirst(); }), Recordset::ObjectClosed);
    }
};

QTEST_MAIN(TestPopulateDatabases)
#include "tst_populatedatabases.moc"
