#include "ListBoxModel_p.h"

#include <QItemSelectionModel>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QTest>

using Kelocontrols::ListBoxModel;

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

} // namespace

class TestListBoxModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesAndRoles();
    void findFirstMatch();
    void outOfRangeRowsAreIgnored();
    void sortedInsertion();
    void batchEqualsOneByOne();
    void sortingKeepsSelection();
    void batchIsOneInsertion();
};

void TestListBoxModel::entriesAndRoles()
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
    QVERIFY(!(model.flags(second) & Qt::ItemIsEditable));
    QVERIFY(model.flags(second) & Qt::ItemIsSelectable);

    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    model.setValue(0, 20);
    QCOMPARE(model.value(0), 20);
    QCOMPARE(changed.count(), 1);
    model.removeEntry(0);
    QCOMPARE(textsOf(model), QStringList{QStringLiteral("a")});
    model.clear();
    QCOMPARE(model.count(), 0);
}

void TestListBoxModel::findFirstMatch()
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

void TestListBoxModel::outOfRangeRowsAreIgnored()
{
    ListBoxModel model;
    model.addEntry(QStringLiteral("only"), 1);
    for (int row : {-1, 1, 1000}) {
        QCOMPARE(model.text(row), QString());
        QCOMPARE(model.value(row), 0);
        model.setValue(row, 9);
        model.removeEntry(row);
        QVERIFY(!model.data(model.index(row), Qt::DisplayRole).isValid());
    }
    QCOMPARE(model.count(), 1);
    QCOMPARE(model.value(0), 1);
}

// Sorted without regard to case; equal texts stay in the order they came.
void TestListBoxModel::sortedInsertion()
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
    model.setSorted(false); // turning sorting off keeps the order
    model.addEntry(QStringLiteral("Banana"), 8);
    QCOMPARE(textsOf(model).last(), QStringLiteral("Banana"));
}

void TestListBoxModel::batchEqualsOneByOne()
{
    QRandomGenerator random(20240607);
    const QStringList words = {"kiwi", "Kiwi", "lime", "LIME", "date", "Date", "plum", "fig"};
    QList<ListBoxModel::Entry> first, second;
    for (int i = 0; i < 300; ++i) {
        (i < 100 ? first : second).append({words.at(random.bounded(int(words.size()))), i});
    }
    ListBoxModel batched, single;
    batched.setSorted(true);
    single.setSorted(true);
    batched.addEntries(first);
    batched.addEntries(second);
    for (const ListBoxModel::Entry &entry : first + second) {
        single.addEntry(entry.text, entry.value);
    }
    QCOMPARE(textsOf(batched), textsOf(single));
    QCOMPARE(valuesOf(batched), valuesOf(single));
}

// A view's selection moves with its entry when a batch is sorted in.
void TestListBoxModel::sortingKeepsSelection()
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

void TestListBoxModel::batchIsOneInsertion()
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
    QCOMPARE(inserted.first().at(1).toInt(), 1);
    QCOMPARE(inserted.first().at(2).toInt(), 5000);
    QCOMPARE(model.count(), 5001);
    QCOMPARE(model.value(5000), 5000);
}

QTEST_MAIN(TestListBoxModel)
#include "tst_listboxmodel.moc"
