// KelolistBox::Populate of 100,000 rows from SQLite, against
// - the floor: a bare QSqlQuery loop reading the same two columns, and
// - what a Qt developer would write instead: a QSqlQueryModel shown in a
//   QListView, fetched to the end and laid out.
// Every candidate runs the same SELECT on the same file database: forward-only
// for the loops, scrollable for QSqlQueryModel, which needs to seek.

#include <Kelocontrols/KelolistBox.h>

#include <QApplication>
#include <QListView>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlQueryModel>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int kRows = 100000;
const char *const kConnection = "bench-listbox";

QString selectRows()
{
    return QStringLiteral("SELECT name, code FROM countries ORDER BY code");
}

QSqlDatabase database()
{
    return QSqlDatabase::database(QString::fromLatin1(kConnection));
}

} // namespace

class BenchListBox : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void bareQueryLoop();
    void populate();
    void populateFromQueryModel();
    void queryModelInListView();
    void queryModelInUniformListView();
};

void BenchListBox::initTestCase()
{
    QVERIFY(m_folder.isValid());
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QString::fromLatin1(kConnection));
    db.setDatabaseName(m_folder.filePath(QStringLiteral("bench.sqlite")));
    QVERIFY2(db.open(), qPrintable(db.lastError().text()));
    QSqlQuery query(db);
    QVERIFY(query.exec(QStringLiteral("CREATE TABLE countries (code INTEGER PRIMARY KEY, name TEXT NOT NULL)")));
    QVERIFY(db.transaction());
    QVERIFY(query.prepare(QStringLiteral("INSERT INTO countries (code, name) VALUES (?, ?)")));
    for (int code = 1; code <= kRows; ++code) {
        query.addBindValue(code);
        query.addBindValue(QStringLiteral("Country number %1").arg(code));
        QVERIFY(query.exec());
    }
    QVERIFY(db.commit());
}

void BenchListBox::cleanupTestCase()
{
    database().close();
    QSqlDatabase::removeDatabase(QString::fromLatin1(kConnection));
}

void BenchListBox::bareQueryLoop()
{
    qint64 sum = 0;
    qsizetype length = 0;
    QBENCHMARK
    {
        QSqlQuery query(database());
        query.setForwardOnly(true);
        QVERIFY(query.exec(selectRows()));
        while (query.next()) {
            const QString name = query.value(0).toString();
            length += name.size();
            sum += query.value(1).toInt();
        }
    }
    QVERIFY(sum > 0 && length > 0);
}

void BenchListBox::populate()
{
    KelolistBox box;
    box.resize(300, 400);
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    QBENCHMARK
    {
        QSqlQuery query(database());
        query.setForwardOnly(true);
        QVERIFY(query.exec(selectRows()));
        QCOMPARE(box.Populate(query, QStringLiteral("name"), QStringLiteral("code")), QString());
    }
    QCOMPARE(box.ListCount(), kRows);
}

void BenchListBox::populateFromQueryModel()
{
    KelolistBox box;
    box.resize(300, 400);
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    QBENCHMARK
    {
        QSqlQueryModel model;
        model.setQuery(selectRows(), database());
        QCOMPARE(box.Populate(&model, QStringLiteral("name"), QStringLiteral("code")), QString());
    }
    QCOMPARE(box.ListCount(), kRows);
}

// The usual Qt way: a model on the query, a view on the model, every row
// fetched (as the list box has them all) and the view laid out for display.
void BenchListBox::queryModelInListView()
{
    QListView view;
    QSqlQueryModel model;
    view.setModel(&model);
    view.resize(300, 400);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QBENCHMARK
    {
        model.setQuery(selectRows(), database());
        while (model.canFetchMore()) {
            model.fetchMore();
        }
        QCoreApplication::processEvents();
    }
    QCOMPARE(model.rowCount(), kRows);
}

// The same, with the view told that every line has the same height (which
// the list box does): the layout then skips measuring each row.
void BenchListBox::queryModelInUniformListView()
{
    QListView view;
    view.setUniformItemSizes(true);
    QSqlQueryModel model;
    view.setModel(&model);
    view.resize(300, 400);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QBENCHMARK
    {
        model.setQuery(selectRows(), database());
        while (model.canFetchMore()) {
            model.fetchMore();
        }
        QCoreApplication::processEvents();
    }
    QCOMPARE(model.rowCount(), kRows);
}

QTEST_MAIN(BenchListBox)
#include "bench_listbox.moc"
