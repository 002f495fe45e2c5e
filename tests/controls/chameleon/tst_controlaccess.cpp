#include "ControlAccess_p.h"
#include "Kelochameleon.h"
#include "KelolistBox.h"
#include "KeloscoreCard.h"
#include "RuntimeError.h"

#include "KeloTestSupport.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <QVBoxLayout>

#include <functional>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

using WidgetFactory = std::function<QWidget *(QWidget *)>;

} // namespace

Q_DECLARE_METATYPE(WidgetFactory)

class TestControlAccess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void controlsAreTheFormsChildrenInCreationOrder();
    void nestedControlsDepthFirstWithoutInnerParts();
    void plainWidgetsReportTheColourOfTheirFace_data();
    void plainWidgetsReportTheColourOfTheirFace();
    void writingAColourFillsTheFace();
    void libraryControlsUseTheirOwnProperties();
    void missingMembersRaise();
};

void TestControlAccess::controlsAreTheFormsChildrenInCreationOrder()
{
    QWidget form;
    auto *layout = new QVBoxLayout(&form);
    auto *label = new QLabel(QStringLiteral("Name"), &form);
    auto *timer = new QTimer(&form);
    auto *edit = new QLineEdit(&form);
    auto *helper = new QObject(&form);
    ControlAccess::markInternal(helper);
    auto *qtHelper = new QWidget(&form);
    qtHelper->setObjectName(QStringLiteral("qt_helper"));
    auto *action = new QAction(&form);
    layout->addWidget(edit);
    layout->addWidget(label);

    // The layout, the marked helper and Qt's own helper are not controls;
    // the timer and the action are, in the order they were made.
    const QList<QObject *> expected{label, timer, edit, action};
    QCOMPARE(ControlAccess::parentControls(&form), expected);
    QVERIFY(ControlAccess::parentControls(nullptr).isEmpty());
}

void TestControlAccess::nestedControlsDepthFirstWithoutInnerParts()
{
    QWidget form;
    auto *top = new QLabel(&form);
    auto *group = new QGroupBox(&form);
    auto *groupLayout = new QVBoxLayout(group);
    auto *inGroup = new QSpinBox(group);
    auto *card = new KeloscoreCard(group);
    auto *frame = new QFrame(group);
    auto *deep = new QLineEdit(frame);
    groupLayout->addWidget(inGroup);
    auto *tabs = new QTabWidget(&form);
    auto *page1 = new QWidget;
    auto *onPage1 = new QPushButton(page1);
    auto *timer = new QTimer(page1);
    auto *page2 = new QWidget;
    auto *list = new KelolistBox(page2);
    tabs->addTab(page1, QStringLiteral("One"));
    tabs->addTab(page2, QStringLiteral("Two"));
    auto *scroll = new QScrollArea(&form);
    auto *contents = new QWidget;
    auto *inScroll = new QCheckBox(contents);
    scroll->setWidget(contents);
    auto *last = new QLabel(&form);

    // The spin box's line edit, the score card's and list box's inner
    // widgets, the tab widget's bar and stack and the scroll area's viewport
    // and bars are parts, not controls.
    const QList<QObject *> expected{top, group, inGroup, card, frame, deep, tabs, page1, onPage1, timer, page2, list,
        scroll, contents, inScroll, last};
    QCOMPARE(ControlAccess::parentControls(&form), expected);
}

void TestControlAccess::plainWidgetsReportTheColourOfTheirFace_data()
{
    QTest::addColumn<WidgetFactory>("make");
    QTest::addColumn<uint>("expected");

    const uint window = ControlAccess::WindowBackground;
    const uint face = ControlAccess::ButtonFace;
    QTest::newRow("line edit") << WidgetFactory([](QWidget *p) { return new QLineEdit(p); }) << window;
    QTest::newRow("text edit") << WidgetFactory([](QWidget *p) { return new QTextEdit(p); }) << window;
    QTest::newRow("plain text edit") << WidgetFactory([](QWidget *p) { return new QPlainTextEdit(p); }) << window;
    QTest::newRow("list") << WidgetFactory([](QWidget *p) { return new QListWidget(p); }) << window;
    QTest::newRow("spin box") << WidgetFactory([](QWidget *p) { return new QSpinBox(p); }) << window;
    QTest::newRow("editable combo") << WidgetFactory([](QWidget *p) {
        auto *combo = new QComboBox(p);
        combo->setEditable(true);
        return combo;
    }) << window;
    QTest::newRow("combo") << WidgetFactory([](QWidget *p) { return new QComboBox(p); }) << face;
    QTest::newRow("label") << WidgetFactory([](QWidget *p) { return new QLabel(p); }) << face;
    QTest::newRow("button") << WidgetFactory([](QWidget *p) { return new QPushButton(p); }) << face;
    QTest::newRow("check box") << WidgetFactory([](QWidget *p) { return new QCheckBox(p); }) << face;
    QTest::newRow("container") << WidgetFactory([](QWidget *p) { return new QWidget(p); }) << face;
}

void TestControlAccess::plainWidgetsReportTheColourOfTheirFace()
{
    QFETCH(WidgetFactory, make);
    QFETCH(uint, expected);
    QWidget form;
    QWidget *widget = make(&form);
    QCOMPARE(ControlAccess::backColor(widget), OleColor(expected));
    // A colour of its own is reported as it is, and fills the face.
    ControlAccess::setBackColor(widget, 0x00336699);
    QCOMPARE(ControlAccess::backColor(widget), OleColor(0x00336699));
}

void TestControlAccess::writingAColourFillsTheFace()
{
    QWidget form;
    auto *label = new QLabel(&form);
    auto *edit = new QTextEdit(&form);
    QVERIFY(!label->autoFillBackground());
    ControlAccess::setBackColor(label, 0x00336699);
    QVERIFY(label->autoFillBackground());
    for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(label->palette().color(group, QPalette::Window), QColor(0x99, 0x66, 0x33));
    }
    ControlAccess::setBackColor(edit, 0x00010203);
    QCOMPARE(edit->viewport()->palette().color(QPalette::Base), QColor(3, 2, 1));

    // A system colour is resolved when it is written.
    ControlAccess::setBackColor(label, ControlAccess::ButtonFace);
    QCOMPARE(ControlAccess::backColor(label), OleTranslateColor(ControlAccess::ButtonFace));

    // The form's own colour reaches children that have none of their own.
    ControlAccess::setBackColor(&form, 0x00112233);
    QCOMPARE(form.palette().color(QPalette::Window), QColor(0x33, 0x22, 0x11));
    QVERIFY(form.autoFillBackground());
}

void TestControlAccess::libraryControlsUseTheirOwnProperties()
{
    QWidget form;
    auto *card = new KeloscoreCard(&form);
    QCOMPARE(ControlAccess::backColor(card), OleColor(0x8000000F));
    ControlAccess::setBackColor(card, 0x00445566);
    QCOMPARE(card->BackColor(), OleColor(0x00445566));
    QFont font(QStringLiteral("DejaVu Serif"), 17);
    ControlAccess::setFont(card, font);
    QCOMPARE(card->Font(), font);
    QCOMPARE(ControlAccess::font(card), font);

    // A plain QObject that carries the properties counts as a control too.
    QObject custom;
    custom.setProperty("BackColor", -2147483643); // 0x80000005 as a signed number
    QCOMPARE(ControlAccess::backColor(&custom), ControlAccess::WindowBackground);
    ControlAccess::setBackColor(&custom, 0x00ABCDEF);
    QCOMPARE(ControlAccess::backColor(&custom), OleColor(0x00ABCDEF));
}

void TestControlAccess::missingMembersRaise()
{
    QWidget form;
    QTimer timer;
    auto *chameleon = new Kelochameleon(&form);
    QCOMPARE(errorNumberOf([&] { ControlAccess::backColor(&timer); }), 438);
    QCOMPARE(errorNumberOf([&] { ControlAccess::setBackColor(&timer, 0); }), 438);
    QCOMPARE(errorNumberOf([&] { ControlAccess::setFont(&timer, QFont()); }), 438);
    QCOMPARE(errorNumberOf([&] { ControlAccess::font(&timer); }), 438);
    // The library's own controls are reached through their properties only.
    QCOMPARE(errorNumberOf([&] { ControlAccess::backColor(chameleon); }), 438);
    QCOMPARE(errorNumberOf([&] { ControlAccess::setFont(chameleon, QFont()); }), 438);
    QCOMPARE(errorNumberOf([&] { ControlAccess::backColor(nullptr); }), 91);
    QCOMPARE(errorNumberOf([&] { ControlAccess::setBackColor(nullptr, 0); }), 91);
    QCOMPARE(errorNumberOf([&] { ControlAccess::nameOf(nullptr); }), 91);
    // A property of the wrong kind is a type mismatch.
    QObject odd;
    odd.setProperty("Font", QStringLiteral("Arial"));
    QCOMPARE(errorNumberOf([&] { ControlAccess::font(&odd); }), ErrorNumber::TypeMismatch);
}

QTEST_MAIN(TestControlAccess)
#include "tst_controlaccess.moc"
