#include <Kelocontrols/FileListModel.h>

#include <QPersistentModelIndex>
#include <QSignalSpy>
#include <QTest>

using namespace Kelocontrols;
using Column = FileListModel::Column;

namespace {

FileListRow file(const QString &name, qint64 size)
{
    FileEntry entry;
    entry.name = name;
    entry.size = size;
    entry.attributes = FileAttribute::Archive;
    return FileListRow::file(entry, QStringLiteral("/d"));
}

QStringList names(const FileListModel &model)
{
    QStringList list;
    for (int r = 0; r < model.count(); ++r) {
        list << model.row(r).text();
    }
    return list;
}

} // namespace

// Sorting again by a text column reuses what the last sort by it learnt, and must give exactly the order
// a sort of the texts gives: ties (names equal without regard to case) keep the order they had before.
class TestFileListModelResort : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sortingAgainGivesTheOrderOfTheTexts();
    void aSortThatMovesNothingTellsNoView();
};

void TestFileListModelResort::sortingAgainGivesTheOrderOfTheTexts()
{
    FileListModel model;
    model.append(file(QStringLiteral("B"), 1));
    model.append(file(QStringLiteral("a"), 3));
    model.append(file(QStringLiteral("A"), 2));
    model.append(file(QStringLiteral("c"), 0));
    model.sort(Column::SortName);
    QCOMPARE(names(model), (QStringList{"a", "A", "B", "c"}));
    model.sort(Column::SortedSize);
    QCOMPARE(names(model), (QStringList{"c", "B", "A", "a"}));
    model.sort(Column::SortName); // the tie a / A keeps the order the size sort left
    QCOMPARE(names(model), (QStringList{"A", "a", "B", "c"}));
    model.sort(Column::SortName, Qt::DescendingOrder);
    QCOMPARE(names(model), (QStringList{"c", "B", "A", "a"}));
    model.sort(Column::SortedSize, Qt::DescendingOrder);
    QCOMPARE(names(model), (QStringList{"a", "A", "B", "c"}));

    // A row removed: the others keep their places in the name order.
    model.remove(2); // B
    model.sort(Column::SortName, Qt::DescendingOrder);
    QCOMPARE(names(model), (QStringList{"c", "a", "A"}));

    // The Name column (the item's text) sorted once, then a text changed by the host and a row added:
    // the texts decide again.
    model.sort(Column::Name);
    QCOMPARE(names(model), (QStringList{"a", "A", "c"}));
    model.setText(2, QStringLiteral("0 first"));
    model.append(file(QStringLiteral("b"), 9));
    model.sort(Column::SortedSize);
    QCOMPARE(names(model), (QStringList{"0 first", "A", "a", "b"}));
    model.sort(Column::Name);
    QCOMPARE(names(model), (QStringList{"0 first", "A", "a", "b"}));
    model.setText(3, QStringLiteral("Z last"));
    model.sort(Column::SortedSize);
    model.sort(Column::Name, Qt::DescendingOrder);
    QCOMPARE(names(model), (QStringList{"Z last", "A", "a", "0 first"}));
}

void TestFileListModelResort::aSortThatMovesNothingTellsNoView()
{
    FileListModel model;
    for (const char *name : {"d", "b", "a", "c"}) {
        model.append(file(QString::fromLatin1(name), 1));
    }
    model.setSortKey(Column::SortName);
    model.setSortOrder(0);
    model.setSorted(true);
    QCOMPARE(names(model), (QStringList{"a", "b", "c", "d"}));
    const QPersistentModelIndex c = model.index(2, 0);
    QSignalSpy layout(&model, &QAbstractItemModel::layoutChanged);
    // A header click sets all three in turn: one sort, one layout change.
    model.setSortKey(Column::SortName);
    model.setSortOrder(1);
    model.setSorted(true);
    QCOMPARE(layout.count(), 1);
    QCOMPARE(names(model), (QStringList{"d", "c", "b", "a"}));
    QCOMPARE(c.row(), 1); // a persistent index follows its row
    model.setSorted(true);
    QCOMPARE(layout.count(), 1);
}

QTEST_GUILESS_MAIN(TestFileListModelResort)
#include "tst_filelistmodelresort.moc"
