// The list box's models: ListBoxModel, which holds the entries, and
// ItemModelRecordset, which reads another model's rows for Populate.

#include "ItemModelRecordset_p.h"
#include "ListBoxModel_p.h"
#include <Kelocontrols/RuntimeError.h>

#include "KeloTestSupport.h"

#include <QItemSelectionModel>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTest>

using Kelocontrols::ItemModelRecordset;
using Kelocontrols::ListBoxModel;
using Kelocontrols::Recordset;
using KeloTest::errorNumberOf;

namespace {

QStringList textsOf(const ListBoxModel &model)
{
    QStringList list;
    for (int row = 0; row < model.count(); ++row) {
        list << model.text(row);
    }
    return list;
}

QList<int> valuesOf(const ListBoxModel &model)
{
    QList<int> list;
    for (int row = 0; row < model.count(); ++row) {
        list << model.value(row);
    }
    return list;
}

// A model that hands out `total` rows, `batch` at a time, like a lazy SQL
// model; a batch of 0 claims more rows but never delivers them.
class LazyModel : public QAbstractTableModel
{
public:
    LazyModel(int total, int batch)
        : m_total(total)
        , m_batch(batch)
    {
    }
    int rowCount(const QModelIndex &parent = QModelIndex()) const override { return parent.isValid() ? 0 : m_loaded; }
    int columnCount(const QModelIndex &parent = QModelIndex()) const override { return parent.isValid() ? 0 : 2; }
    QVariant data(const QModelIndex &index, int role) const override
    {
        // No edit data: the recordset falls back to the display data.
        return role == Qt::DisplayRole ? QVariant(index.row()) : QVariant();
    }
    bool canFetchMore(const QModelIndex &) const override { return m_loaded < m_total; }
    void fetchMore(const QModelIndex &) override
    {
        const int more = qMin(m_batch, m_total - m_loaded);
        if (more > 0) {
            beginInsertRows(QModelIndex(), m_loaded, m_loaded + more - 1);
            m_loaded += more;
            endInsertRows();
        }
    }

private:
    int m_total;
    int m_batch;
    int m_loaded = 0;
};

} // namespace

class TestListBoxModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesAndRoles()
    {
        ListBoxModel model;
        QCOMPARE(model.addEntry(QStringLiteral("b"), 2), 0);
        QCOMPARE(model.addEntry(QStringLiteral("a"), -1), 1); // unsorted: at the end
        QCOMPARE(model.rowCount(), 2);
        QCOMPARE(model.rowCount(model.index(0)), 0);
        const QModelIndex second = model.index(1);
        QCOMPARE(second.data(Qt::DisplayRole), QVariant(QStringLiteral("a")));
        QCOMPARE(second.data(Qt::EditRole), QVariant(QStringLiteral("a")));
        QCOMPARE(second.data(ListBoxModel::ValueRole), QVariant(-1));
        QCOMPARE(ListBoxModel::ValueRole, int(Qt::UserRole));
        QVERIFY(!second.data(Qt::DecorationRole).isValid());
        QCOMPARE(model.flags(second) & (Qt::ItemIsEditable | Qt::ItemIsSelectable), Qt::ItemIsSelectable);

        QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
        model.setValue(0, 20);
        QCOMPARE(model.value(0), 20);
        QCOMPARE(changed.count(), 1);
        // Rows out of range are ignored.
        for (int row : {-1, 2, 1000}) {
            QCOMPARE(model.text(row), QString());
            QCOMPARE(model.value(row), 0);
            model.setValue(row, 9);
            model.removeEntry(row);
            QVERIFY(!model.data(model.index(row), Qt::DisplayRole).isValid());
        }
        QCOMPARE(valuesOf(model), (QList<int>{20, -1}));
        model.removeEntry(0);
        QCOMPARE(textsOf(model), QStringList{QStringLiteral("a")});
        model.clear();
        QCOMPARE(model.count(), 0);
    }
    void findFirstMatch()
    {
        ListBoxModel model;
        model.addEntries({{QStringLiteral("Été"), 5}, {QStringLiteral("été"), 6}, {QStringLiteral("Ete"), 5}});
        QCOMPARE(model.findText(QStringLiteral("ÉTÉ")), 0);
        QCOMPARE(model.findText(QStringLiteral("ete")), 2);
        QCOMPARE(model.findText(QStringLiteral("Et")), -1);
        QCOMPARE(model.findText(QString()), -1);
        QCOMPARE(model.findValue(5), 0);
        QCOMPARE(model.findValue(6), 1);
        QCOMPARE(model.findValue(0), -1);
    }
    // Sorted without regard to case; equal texts stay in the order they came,
    // one by one or in a batch.
    void sortedInsertion()
    {
        ListBoxModel model;
        model.addEntries({{QStringLiteral("pear"), 1}, {QStringLiteral("Apple"), 2}, {QStringLiteral("fig"), 3}});
        model.setSorted(true);
        QCOMPARE(textsOf(model), (QStringList{"Apple", "fig", "pear"}));
        QCOMPARE(model.addEntry(QStringLiteral("APPLE"), 4), 1);
        QCOMPARE(model.addEntry(QStringLiteral("apple"), 5), 2);
        QCOMPARE(model.addEntry(QStringLiteral("zucchini"), 6), 5);
        QCOMPARE(model.addEntry(QString(), 7), 0);
        QCOMPARE(valuesOf(model), (QList<int>{7, 2, 4, 5, 3, 1, 6}));
        // A batch lands where each entry would alone: after its equals, in order.
        model.addEntries({{QStringLiteral("FIG"), 8}, {QStringLiteral("apple"), 9}, {QStringLiteral("Fig"), 10}});
        QCOMPARE(valuesOf(model), (QList<int>{7, 2, 4, 5, 9, 3, 8, 10, 1, 6}));
        model.setSorted(false); // turning sorting off keeps the order
        model.addEntry(QStringLiteral("Banana"), 8);
        QCOMPARE(textsOf(model).last(), QStringLiteral("Banana"));
    }
    // A view's selection moves with its entry when a batch is sorted in.
    void sortingKeepsSelection()
    {
        ListBoxModel model;
        model.setSorted(true);
        model.addEntry(QStringLiteral("m"), 1);
        QItemSelectionModel selection(&model);
        selection.setCurrentIndex(model.index(0), QItemSelectionModel::ClearAndSelect);
        model.addEntries({{QStringLiteral("z"), 2}, {QStringLiteral("a"), 3}, {QStringLiteral("b"), 4}});
        QCOMPARE(textsOf(model), (QStringList{"a", "b", "m", "z"}));
        QCOMPARE(selection.currentIndex().row(), 2);
        QCOMPARE(selection.selectedIndexes(), QModelIndexList{model.index(2)});
    }
    void batchIsOneInsertion()
    {
        ListBoxModel model;
        model.addEntry(QStringLiteral("first"), 0);
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        QList<ListBoxModel::Entry> entries;
        for (int i = 1; i <= 5000; ++i) {
            entries.append({QStringLiteral("Row %1").arg(i), i});
        }
        model.addEntries(entries);
        model.addEntries({});
        QCOMPARE(inserted.count(), 1);
        QCOMPARE(inserted.first().mid(1), (QVariantList{1, 5000}));
        QCOMPARE(model.count(), 5001);
        QCOMPARE(model.value(5000), 5000);
    }
    void recordsetTraversal()
    {
        QStandardItemModel model(2, 2);
        model.setHorizontalHeaderLabels({QStringLiteral("Name"), QStringLiteral("Code")});
        model.setData(model.index(0, 0), QStringLiteral("France"));
        model.setData(model.index(0, 1), 250);
        model.setData(model.index(1, 0), QStringLiteral("Peru"));
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

        // The rows under a parent of a tree.
        auto *europe = new QStandardItem(QStringLiteral("Europe"));
        europe->appendRow({new QStandardItem(QStringLiteral("Spain")), new QStandardItem(QStringLiteral("724"))});
        model.appendRow(europe);
        ItemModelRecordset children(&model, europe->index());
        children.MoveFirst();
        QCOMPARE(children.FieldValue(0), QVariant(QStringLiteral("Spain")));
        QCOMPARE(children.FieldCount(), 2);
        children.MoveNext();
        QVERIFY(children.Eof());
    }
    void recordsetFieldLookup_data()
    {
        QTest::addColumn<QVariant>("field");
        QTest::addColumn<int>("position"); // -1: not found
        QTest::newRow("name") << QVariant(QStringLiteral("Code")) << 1;
        QTest::newRow("name, other case") << QVariant(QStringLiteral("cOdE")) << 1;
        QTest::newRow("name as bytes") << QVariant(QByteArray("Name")) << 0;
        QTest::newRow("digits are a name") << QVariant(QStringLiteral("0")) << -1;
        QTest::newRow("position") << QVariant(1) << 1;
        QTest::newRow("position rounds half to even") << QVariant(0.5) << 0;
        QTest::newRow("past the last") << QVariant(2) << -1;
        QTest::newRow("negative") << QVariant(-1) << -1;
        QTest::newRow("true is -1") << QVariant(true) << -1;
        QTest::newRow("false is 0") << QVariant(false) << 0;
        QTest::newRow("nothing") << QVariant() << -1;
        QTest::newRow("huge") << QVariant(1e300) << -1;
        QTest::newRow("not a name or number") << QVariant(QDate(2020, 1, 1)) << -1;
    }
    void recordsetFieldLookup()
    {
        QFETCH(QVariant, field);
        QFETCH(int, position);
        QStandardItemModel model(1, 2);
        model.setHorizontalHeaderLabels({QStringLiteral("Name"), QStringLiteral("Code")});
        ItemModelRecordset records(&model);
        QString found;
        const int error = errorNumberOf([&] {
            const Recordset::Field f = records.Fields(field);
            found = QStringLiteral("%1 %2").arg(f.Position()).arg(f.Name());
        });
        QCOMPARE(error, position < 0 ? int(Recordset::ItemNotFound) : 0);
        if (position >= 0) {
            QCOMPARE(found, QStringLiteral("%1 %2").arg(position).arg(position == 0 ? "Name" : "Code"));
        }
    }
    void recordsetOverLazyModels()
    {
        LazyModel lazy(1000, 256);
        ItemModelRecordset records(&lazy);
        int count = 0;
        for (records.MoveFirst(); !records.Eof(); records.MoveNext()) {
            QCOMPARE(records.FieldValue(1).toInt(), count++); // display data when there is no edit data
        }
        QCOMPARE(count, 1000);

        LazyModel stuck(10, 0);
        ItemModelRecordset none(&stuck);
        none.MoveFirst(); // must not spin on a model that never delivers
        QVERIFY(none.Eof());
    }
    void recordsetOverClosedModels()
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
};

QTEST_MAIN(TestListBoxModel)
#include "tst_listboxmodel.moc"
