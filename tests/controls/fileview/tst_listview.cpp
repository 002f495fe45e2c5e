#include "KeloTestSupport.h"

#include <Kelocontrols/FileListModel.h>
#include <Kelocontrols/IconView.h>
#include <Kelocontrols/ImageList.h>
#include <Kelocontrols/ListView.h>
#include <Kelocontrols/ReportView.h>

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QSignalSpy>
#include <QTest>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

FileListRow fileNamed(const QString &name)
{
    FileEntry entry;
    entry.name = name;
    return FileListRow::file(entry, QStringLiteral("/nowhere"));
}

} // namespace

class TestListView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void viewsShareModelAndSelection();
    void columnWidthsSurviveFills();
    void refusedValues();
};

void TestListView::viewsShareModelAndSelection()
{
    ListView list;
    for (const char *n : {"a", "b", "c"}) {
        list.model()->append(fileNamed(QString::fromLatin1(n)));
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
    QCOMPARE(list.reportView()->columnWidth(1), list.himetricToPixels(2540));
    QCOMPARE(list.himetricToPixels(2540), list.logicalDpiX()); // 2540 HIMETRIC is one inch
    QVERIFY(list.reportView()->isColumnHidden(FileListModel::Folder));
    QCOMPARE(list.columnWidth(4), 582); // applying does not round the designed width

    list.reportView()->setColumnWidth(0, 300); // as a user dragging the divider
    QCOMPARE(list.columnWidth(0), list.pixelsToHimetric(300));
    list.model()->append(fileNamed(QStringLiteral("x")));
    list.model()->clear();
    list.model()->beginBatch();
    list.model()->append(fileNamed(QStringLiteral("y")));
    list.model()->endBatch();
    QCOMPARE(list.reportView()->columnWidth(0), 300);

    list.setColumnWidth(1, 0);
    QVERIFY(list.reportView()->isColumnHidden(1));
    QCOMPARE(errorNumberOf([&] { list.setColumnWidth(13, 100); }), ErrorNumber::InvalidPropertyValue);
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

QTEST_MAIN(TestListView)
#include "tst_listview.moc"
