#include "KeloTestSupport.h"

#include <Kelocontrols/FileItemSource.h>
#include <Kelocontrols/IconView.h>
#include <Kelocontrols/ImageList.h>
#include <Kelocontrols/ListView.h>
#include <Kelocontrols/ListViewModel.h>
#include <Kelocontrols/ReportView.h>

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QSignalSpy>
#include <QTest>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

QList<ColumnHeader> threeColumns()
{
    return {{QStringLiteral("Name"), {}, {}, 2540, Qt::AlignLeft, {}},
        {QStringLiteral("Size"), {}, {}, 1270, Qt::AlignRight, {}}, {QStringLiteral("Hidden"), {}, {}, 0, {}, {}}};
}

ListItem itemNamed(const QString &text, int token = -1)
{
    ListItem item;
    item.text = text;
    item.sourceToken = token;
    return item;
}

// A source that counts how often it is asked, to prove texts are made lazily.
class CountingSource : public SubItemSource
{
public:
    QString subItemText(int token, int subItem) const override
    {
        ++asked;
        return QStringLiteral("%1/%2").arg(token).arg(subItem);
    }
    mutable int asked = 0;
};

} // namespace

class TestListView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void batchPublishesOnceAndKeepsRowsReadable();
    void subItemsComeFromTheSourceUntilWritten();
    void viewsShareModelAndSelection();
    void columnWidthsSurviveFills();
    void refusedValues();
    void fileTexts_data();
    void fileTexts();
};

void TestListView::batchPublishesOnceAndKeepsRowsReadable()
{
    ListViewModel model;
    model.setColumns(threeColumns());
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    model.append(itemNamed(QStringLiteral("first")));
    QCOMPARE(inserted.count(), 1);

    model.beginBatch();
    model.append(itemNamed(QStringLiteral("a")));
    model.append(itemNamed(QStringLiteral("b")));
    QCOMPARE(model.count(), 3); // stored and readable
    QCOMPARE(model.item(2).text, QStringLiteral("b"));
    QCOMPARE(model.rowCount(), 1); // not yet announced
    QVERIFY(!model.data(model.index(2, 0)).isValid());
    model.remove(2); // an unannounced row goes quietly
    model.endBatch();
    QCOMPARE(inserted.count(), 2);
    QCOMPARE(inserted.last().at(1).toInt(), 1);
    QCOMPARE(inserted.last().at(2).toInt(), 1);
    QCOMPARE(model.rowCount(), 2);

    model.beginBatch();
    model.endBatch(); // nothing new: nothing announced
    QCOMPARE(inserted.count(), 2);

    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    model.clear();
    QCOMPARE(reset.count(), 0); // rows go, the columns and their widths stay
    QCOMPARE(model.rowCount(), 0);
    QCOMPARE(model.columnCount(), 3);
}

void TestListView::subItemsComeFromTheSourceUntilWritten()
{
    ListViewModel model;
    model.setColumns(threeColumns());
    CountingSource source;
    model.setSubItemSource(&source);
    for (int i = 0; i < 1000; ++i) {
        model.append(itemNamed(QString::number(i), i));
    }
    QCOMPARE(source.asked, 0);
    QCOMPARE(model.subItem(7, 2), QStringLiteral("7/2"));
    QCOMPARE(model.data(model.index(7, 1)).toString(), QStringLiteral("7/1"));
    QCOMPARE(model.subItem(7, 3), QString()); // past the last column
    model.setSubItem(7, 1, QStringLiteral("written"));
    QCOMPARE(model.subItem(7, 1), QStringLiteral("written"));
    QCOMPARE(model.subItem(7, 2), QStringLiteral("7/2")); // the others were kept
    const int before = source.asked;
    model.subItem(7, 2);
    QCOMPARE(source.asked, before); // written items no longer ask
    QCOMPARE(model.subItem(8, 1), QStringLiteral("8/1"));
    QCOMPARE(model.subItem(8, 0), QString());
}

void TestListView::viewsShareModelAndSelection()
{
    ListView list;
    list.setColumns(threeColumns());
    for (const char *n : {"a", "b", "c"}) {
        list.model()->append(itemNamed(QString::fromLatin1(n)));
    }
    QCOMPARE(list.viewMode(), int(ListView::Report));
    QCOMPARE(list.currentView(), static_cast<QAbstractItemView *>(list.reportView()));
    QVERIFY(list.iconView()->model() != list.model()); // the hidden view does not lay the list out
    list.selectRow(1);
    QCOMPARE(list.selectedRow(), 1);

    list.setViewMode(ListView::Icon);
    QCOMPARE(list.currentView(), static_cast<QAbstractItemView *>(list.iconView()));
    QCOMPARE(list.iconView()->viewMode(), QListView::IconMode);
    QCOMPARE(list.iconView()->iconSize(), QSize(32, 32));
    QVERIFY(list.model()->largeIcons());
    QCOMPARE(list.selectedRow(), 1); // the selection crossed over
    QCOMPARE(list.iconView()->selectionModel(), list.selectionModel());

    list.setViewMode(ListView::List);
    QCOMPARE(list.iconView()->flow(), QListView::TopToBottom);
    QCOMPARE(list.iconView()->iconSize(), QSize(16, 16));
    QVERIFY(!list.model()->largeIcons());
    list.setViewMode(ListView::SmallIcon);
    QCOMPARE(list.iconView()->flow(), QListView::LeftToRight);

    list.setMultiSelect(true);
    QCOMPARE(list.iconView()->selectionMode(), QAbstractItemView::ExtendedSelection);
    list.selectRow(-1);
    QCOMPARE(list.selectedRow(), -1);
}

void TestListView::columnWidthsSurviveFills()
{
    ListView list;
    list.setColumns(threeColumns());
    QCOMPARE(list.reportView()->columnWidth(0), list.himetricToPixels(2540));
    QCOMPARE(list.himetricToPixels(2540), list.logicalDpiX()); // 2540 HIMETRIC is one inch
    QVERIFY(list.reportView()->isColumnHidden(2));
    QCOMPARE(list.columnWidth(1), 1270); // applying does not round the designed width

    list.reportView()->setColumnWidth(0, 300); // as a user dragging the divider
    QCOMPARE(list.columnWidth(0), list.pixelsToHimetric(300));
    list.model()->append(itemNamed(QStringLiteral("x")));
    list.model()->clear();
    list.model()->beginBatch();
    list.model()->append(itemNamed(QStringLiteral("y")));
    list.model()->endBatch();
    QCOMPARE(list.reportView()->columnWidth(0), 300);

    list.setColumnWidth(1, 0);
    QVERIFY(list.reportView()->isColumnHidden(1));
    QCOMPARE(errorNumberOf([&] { list.setColumnWidth(3, 100); }), ErrorNumber::InvalidPropertyValue);
}

void TestListView::refusedValues()
{
    ListView list;
    const int invalid = ErrorNumber::InvalidPropertyValue;
    QCOMPARE(errorNumberOf([&] { list.setViewMode(4); }), invalid);
    QCOMPARE(errorNumberOf([&] { list.setViewMode(-1); }), invalid);
    QCOMPARE(errorNumberOf([&] { list.setBorderStyle(2); }), invalid);
    QCOMPARE(errorNumberOf([&] { list.setAppearance(2); }), invalid);
    QCOMPARE(errorNumberOf([&] { list.setPictureAlignment(6); }), invalid);
    QCOMPARE(errorNumberOf([&] { list.setArrange(3); }), invalid);
    QCOMPARE(errorNumberOf([&] { list.setMousePointer(16); }), invalid);
    list.setMousePointer(99);
    list.setMousePointer(15);
    QCOMPARE(list.viewMode(), int(ListView::Report));
    QCOMPARE(list.borderStyle(), 1);
    QCOMPARE(list.frameShape(), QFrame::StyledPanel);
    list.setBorderStyle(0);
    QCOMPARE(list.frameShape(), QFrame::NoFrame);
}

void TestListView::fileTexts_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("sorted");
    QTest::newRow("empty") << qint64(0) << "0KB"
                           << "000000000000";
    QTest::newRow("one byte") << qint64(1) << "1KB"
                              << "000000000001";
    QTest::newRow("1024") << qint64(1024) << "1KB"
                          << "000000001024";
    QTest::newRow("1025") << qint64(1025) << "2KB"
                          << "000000001025";
    QTest::newRow("5 TB") << qint64(5) * 1024 * 1024 * 1024 * 1024 << "5368709120KB"
                          << "5497558138880"; // more digits than the format: all shown
}

void TestListView::fileTexts()
{
    QFETCH(qint64, bytes);
    QFETCH(QString, size);
    QFETCH(QString, sorted);
    QCOMPARE(FileItemSource::sizeText(bytes), size);
    QCOMPARE(FileItemSource::sortedNumber(bytes), sorted);
    QVERIFY(!FileItemSource::differInSeconds(10000, 10999));
    QVERIFY(FileItemSource::differInSeconds(10999, 11000));
    QVERIFY(FileItemSource::differInSeconds(-1, 0)); // before the epoch rounds down
    QVERIFY(!FileItemSource::differInSeconds(-1000, -1));
}

QTEST_MAIN(TestListView)
#include "tst_listview.moc"
