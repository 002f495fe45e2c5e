#include "ItemModelRecordset_p.h"
#include <Kelocontrols/RuntimeError.h>

#include "KeloTestSupport.h"

#include <QStandardItemModel>
#include <QTest>

using Kelocontrols::ItemModelRecordset;
using Kelocontrols::Recordset;
using KeloTest::errorNumberOf;

namespace {

// A model that hands out `total` rows, `batch` at a time, like a lazy SQL model.
class LazyModel : public QAbstractTableModel
{
public:
    LazyModel(int total, int batch, bool stuck = false)
        : m_total(total)
        , m_batch(batch)
        , m_stuck(stuck)
    {
    }
    int rowCount(const QModelIndex &parent = QModelIndex()) const override { return parent.isValid() ? 0 : m_loaded; }
    int columnCount(const QModelIndex &parent = QModelIndex()) const override { return parent.isValid() ? 0 : 2; }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == Qt::DisplayRole) {
            return index.column() == 0 ? QVariant(QStringLiteral("Row %1").arg(index.row())) : QVariant(index.row());
        }
        return QVariant(); // no edit data: the recordset falls back to the display data
    }
    bool canFetchMore(const QModelIndex &) const override { return m_loaded < m_total; }
    void fetchMore(const QModelIndex &) override
    {
        if (m_stuck) {
            return; // claims more rows but never delivers
        }
        const int more = qMin(m_batch, m_total - m_loaded);
        beginInsertRows(QModelIndex(), m_loaded, m_loaded + more - 1);
        m_loaded += more;
        endInsertRows();
    }

private:
    int m_total;
    int m_batch;
    bool m_stuck;
    int m_loaded = 0;
};

} // namespace

class TestItemModelRecordset : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void traversal();
    void fieldLookup_data();
    void fieldLookup();
    void lazyModels();
    void closedModels();
    void childRows();
};

void TestItemModelRecordset::traversal()
{
    QStandardItemModel model(2, 2);
    model.setHorizontalHeaderLabels({QStringLiteral("Name"), QStringLiteral("Code")});
    model.setData(model.index(0, 0), QStringLiteral("France"));
    model.setData(model.index(0, 1), 250);
    model.setData(model.index(1, 0), QStringLiteral("Peru"));
    model.setData(model.index(1, 1), 604);
    ItemModelRecordset records(&model);
    QVERIFY(records.Eof()); // not moved yet
    records.MoveFirst();
    QVERIFY(!records.Eof());
    QCOMPARE(records.Fields(QStringLiteral("code")).Value(), QVariant(250));
    records.MoveNext();
    QCOMPARE(records.Fields(0).Value(), QVariant(QStringLiteral("Peru")));
    records.MoveNext();
    QVERIFY(records.Eof());
    QCOMPARE(errorNumberOf([&] { records.FieldValue(0); }), Recordset::NoCurrentRecord);
    QCOMPARE(errorNumberOf([&] { records.MoveNext(); }), Recordset::NoCurrentRecord);
    records.MoveFirst(); // a model can always go back
    QCOMPARE(records.FieldValue(0), QVariant(QStringLiteral("France")));

    QStandardItemModel empty(0, 2);
    ItemModelRecordset none(&empty);
    none.MoveFirst();
    QVERIFY(none.Eof());
}

void TestItemModelRecordset::fieldLookup_data()
{
    QTest::addColumn<QVariant>("field");
    QTest::addColumn<int>("position"); // -1: not found
    QTest::newRow("name") << QVariant(QStringLiteral("Code")) << 1;
    QTest::newRow("name, other case") << QVariant(QStringLiteral("cOdE")) << 1;
    QTest::newRow("name as bytes") << QVariant(QByteArray("Name")) << 0;
    QTest::newRow("digits are a name") << QVariant(QStringLiteral("0")) << -1;
    QTest::newRow("position") << QVariant(1) << 1;
    QTest::newRow("position as double") << QVariant(0.4) << 0;
    QTest::newRow("position rounds half to even") << QVariant(0.5) << 0;
    QTest::newRow("past the last") << QVariant(2) << -1;
    QTest::newRow("negative") << QVariant(-1) << -1;
    QTest::newRow("true is -1") << QVariant(true) << -1;
    QTest::newRow("false is 0") << QVariant(false) << 0;
    QTest::newRow("nothing") << QVariant() << -1;
    QTest::newRow("huge") << QVariant(1e300) << -1;
    QTest::newRow("not a name or number") << QVariant(QDate(2020, 1, 1)) << -1;
}

void TestItemModelRecordset::fieldLookup()
{
    QFETCH(QVariant, field);
    QFETCH(int, position);
    QStandardItemModel model(1, 2);
    model.setHorizontalHeaderLabels({QStringLiteral("Name"), QStringLiteral("Code")});
    ItemModelRecordset records(&model);
    int found = -1;
    const int error = errorNumberOf([&] { found = records.Fields(field).Position(); });
    if (position < 0) {
        QCOMPARE(error, Recordset::ItemNotFound);
    } else {
        QCOMPARE(error, 0);
        QCOMPARE(found, position);
        QCOMPARE(records.Fields(field).Name(), position == 0 ? QStringLiteral("Name") : QStringLiteral("Code"));
    }
}

void TestItemModelRecordset::lazyModels()
{
    LazyModel lazy(1000, 256);
    ItemModelRecordset records(&lazy);
    int count = 0;
    for (records.MoveFirst(); !records.Eof(); records.MoveNext()) {
        QCOMPARE(records.FieldValue(1).toInt(), count); // display data when there is no edit data
        ++count;
    }
    QCOMPARE(count, 1000);

    LazyModel stuck(10, 5, true);
    ItemModelRecordset none(&stuck);
    none.MoveFirst(); // must not spin on a model that never delivers
    QVERIFY(none.Eof());
}

void TestItemModelRecordset::closedModels()
{
    ItemModelRecordset nothing(nullptr);
    QCOMPARE(errorNumberOf([&] { nothing.MoveFirst(); }), Recordset::ObjectClosed);
    QCOMPARE(errorNumberOf([&] { nothing.Fields(0); }), Recordset::ObjectClosed);

    auto *model = new QStandardItemModel(3, 1);
    ItemModelRecordset records(model);
    records.MoveFirst();
    delete model; // the recordset notices instead of crashing
    QCOMPARE(errorNumberOf([&] { records.FieldValue(0); }), Recordset::ObjectClosed);
    QCOMPARE(errorNumberOf([&] { records.MoveNext(); }), Recordset::NoCurrentRecord);
    QVERIFY(records.Eof());
}

void TestItemModelRecordset::childRows()
{
    QStandardItemModel tree;
    auto *parent = new QStandardItem(QStringLiteral("Europe"));
    parent->appendRow({new QStandardItem(QStringLiteral("France")), new QStandardItem(QStringLiteral("250"))});
    parent->appendRow({new QStandardItem(QStringLiteral("Spain")), new QStandardItem(QStringLiteral("724"))});
    tree.appendRow(parent);
    ItemModelRecordset records(&tree, parent->index());
    QStringList names;
    for (records.MoveFirst(); !records.Eof(); records.MoveNext()) {
        names << records.FieldValue(0).toString();
    }
    QCOMPARE(names, (QStringList{"France", "Spain"}));
    QCOMPARE(records.FieldCount(), 2);
}

QTEST_MAIN(TestItemModelRecordset)
#include "tst_itemmodelrecordset.moc"
