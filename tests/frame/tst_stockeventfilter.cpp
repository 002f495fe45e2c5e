#include "StockEventFilter.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QTest>
#include <QWidget>

#include <functional>
#include <tuple>

using namespace Kelocontrols;

namespace {

/// Records the stock events of a filter as readable lines, in the order raised.
class EventLog : public QObject
{
public:
    explicit EventLog(StockEventFilter *filter)
    {
        connect(filter, &StockEventFilter::Click, this, [this] { lines << u"Click"_qs; });
        connect(filter, &StockEventFilter::DblClick, this, [this] { lines << u"DblClick"_qs; });
        connect(filter, &StockEventFilter::KeyDown, this,
            [this](short &KeyCode, short &Shift) { lines << u"KeyDown %1 %2"_qs.arg(KeyCode).arg(Shift); });
        connect(filter, &StockEventFilter::KeyPress, this, [this](short &KeyAscii) {
            lines << u"KeyPress %1"_qs.arg(KeyAscii);
            if (onKeyPress) {
                onKeyPress(KeyAscii);
            }
        });
        connect(filter, &StockEventFilter::KeyUp, this,
            [this](short &KeyCode, short &Shift) { lines << u"KeyUp %1 %2"_qs.arg(KeyCode).arg(Shift); });
        connect(filter, &StockEventFilter::MouseDown, this, [this](short &Button, short &Shift, float &X, float &Y) {
            lines << mouseLine(u"MouseDown"_qs, Button, Shift, X, Y);
        });
        connect(filter, &StockEventFilter::MouseMove, this, [this](short &Button, short &Shift, float &X, float &Y) {
            lines << mouseLine(u"MouseMove"_qs, Button, Shift, X, Y);
        });
        connect(filter, &StockEventFilter::MouseUp, this, [this](short &Button, short &Shift, float &X, float &Y) {
            lines << mouseLine(u"MouseUp"_qs, Button, Shift, X, Y);
        });
    }

    /// The lines without the mouse moves a real pointer produces on the way.
    QStringList withoutMoves() const
    {
        QStringList result;
        for (const QString &line : lines) {
            if (!line.startsWith(QLatin1String("MouseMove"))) {
                result << line;
            }
        }
        return result;
    }

    /// The lines of the key events, without those of the modifier keys themselves.
    QStringList withoutModifierKeys() const
    {
        QStringList result;
        for (const QString &line : lines) {
            if (!line.contains(QRegularExpression(u"^Key(Down|Up) 1[678] "_qs))) {
                result << line;
            }
        }
        return result;
    }

    QStringList lines;
    std::function<void(short &)> onKeyPress;

private:
    static QString mouseLine(const QString &name, short button, short shift, float x, float y)
    {
        return u"%1 %2 %3 %4 %5"_qs.arg(name).arg(button).arg(shift).arg(double(x)).arg(double(y));
    }
};

// Sends one key press and release with the text a desktop keyboard gives for it.
void typeKey(QWidget *widget, Qt::Key key, const QString &text, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(widget, &press);
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    QApplication::sendEvent(widget, &release);
}

void sendMouse(QWidget *widget, QEvent::Type type, QPoint pos, Qt::MouseButton button, Qt::MouseButtons buttons,
    Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QMouseEvent event(type, QPointF(pos), widget->mapToGlobal(QPointF(pos)), button, buttons, modifiers);
    QApplication::sendEvent(widget, &event);
}

} // namespace

class TestStockEventFilter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void mouseSequences_data();
    void mouseSequences();
    void doubleClickThroughTheWindowSystem();
    void buttonCodes();
    void shiftStates_data();
    void shiftStates();
    void coordinatesFollowTheScale();
    void mouseMoveReportsHeldButtons();
    void keyCodes_data();
    void keyCodes();
    void keyPressCanSwallowOrReplaceTheKey();

private:
    QWidget *m_widget = nullptr;
    StockEventFilter *m_filter = nullptr;
    EventLog *m_log = nullptr;
};

void TestStockEventFilter::init()
{
    m_widget = new QWidget;
    m_widget->resize(100, 80);
    m_filter = new StockEventFilter(m_widget);
    m_log = new EventLog(m_filter);
    m_widget->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_widget));
    m_log->lines.clear();
}

void TestStockEventFilter::cleanup()
{
    delete m_log;
    delete m_widget;
    m_log = nullptr;
    m_widget = nullptr;
    m_filter = nullptr;
}

void TestStockEventFilter::mouseSequences_data()
{
    QTest::addColumn<QString>("script"); // "<press|release|dclick|click> <L|R|M> x,y" steps, separated by "; "
    QTest::addColumn<QStringList>("events");
    const QStringList click = {"MouseDown 1 0 10 7", "MouseUp 1 0 10 7", "Click"};
    QTest::newRow("click") << "click L 10,7" << click;
    QTest::newRow("the next click is a click of its own") << "click L 10,7; click L 10,7" << click + click;
    // A widget sees a double click as press, release, double click, release.
    QTest::newRow("double click") << "press L 20,30; release L 20,30; dclick L 20,30; release L 20,30"
                                  << QStringList{"MouseDown 1 0 20 30", "MouseUp 1 0 20 30", "Click", "DblClick",
                                         "MouseUp 1 0 20 30"};
    // Only the left button clicks and double-clicks; for the others the second press is a press like the first.
    for (const auto &[name, button, code] : {std::tuple{"right", "R", 2}, std::tuple{"middle", "M", 4}}) {
        const QString down = QStringLiteral("MouseDown %1 0 15 25").arg(code);
        const QString up = QStringLiteral("MouseUp %1 0 15 25").arg(code);
        QTest::addRow("%s double click", name)
            << QStringLiteral("press %1 15,25; release %1 15,25; dclick %1 15,25; release %1 15,25").arg(button)
            << QStringList{down, up, down, up};
    }
    QTest::newRow("release outside is no click")
        << "press L 10,10; release L 150,10" << QStringList{"MouseDown 1 0 10 10", "MouseUp 1 0 150 10"};
    QTest::newRow("release without a press is no click") << "release L 10,10" << QStringList{"MouseUp 1 0 10 10"};
}

void TestStockEventFilter::mouseSequences()
{
    QFETCH(QString, script);
    QFETCH(QStringList, events);
    const QHash<QString, Qt::MouseButton> buttons{
        {"L", Qt::LeftButton}, {"R", Qt::RightButton}, {"M", Qt::MiddleButton}};
    for (const QString &step : script.split("; ")) {
        const QStringList parts = step.split(' ');
        const QStringList xy = parts.at(2).split(',');
        const QPoint pos(xy.at(0).toInt(), xy.at(1).toInt());
        const Qt::MouseButton button = buttons.value(parts.at(1));
        if (parts.at(0) == "press")
            QTest::mousePress(m_widget, button, Qt::NoModifier, pos);
        else if (parts.at(0) == "release")
            QTest::mouseRelease(m_widget, button, Qt::NoModifier, pos);
        else if (parts.at(0) == "dclick")
            QTest::mouseDClick(m_widget, button, Qt::NoModifier, pos);
        else
            QTest::mouseClick(m_widget, button, Qt::NoModifier, pos);
    }
    QCOMPARE(m_log->lines, events);
}

void TestStockEventFilter::doubleClickThroughTheWindowSystem()
{
    // Through the window system the second press turns into the double click.
    QWindow *window = m_widget->windowHandle();
    QVERIFY(window);
    const QPoint pos(40, 25);
    QTest::mouseMove(window, pos);
    QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, pos);
    QCOMPARE(m_log->withoutMoves(), (QStringList{u"MouseDown 1 0 40 25"_qs, u"MouseUp 1 0 40 25"_qs, u"Click"_qs}));

    m_log->lines.clear();
    QTest::mouseDClick(window, Qt::LeftButton, Qt::NoModifier, pos);
    QCOMPARE(m_log->withoutMoves(),
        (QStringList{
            u"MouseDown 1 0 40 25"_qs, u"MouseUp 1 0 40 25"_qs, u"Click"_qs, u"DblClick"_qs, u"MouseUp 1 0 40 25"_qs}));
}

void TestStockEventFilter::buttonCodes()
{
    QCOMPARE(int(StockEventFilter::buttonCode(Qt::LeftButton)), 1);
    QCOMPARE(int(StockEventFilter::buttonCode(Qt::RightButton)), 2);
    QCOMPARE(int(StockEventFilter::buttonCode(Qt::MiddleButton)), 4);
    QCOMPARE(int(StockEventFilter::buttonCode(Qt::LeftButton | Qt::RightButton | Qt::MiddleButton)), 7);
    QCOMPARE(int(StockEventFilter::buttonCode(Qt::NoButton)), 0);
}

void TestStockEventFilter::shiftStates_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
    QTest::addColumn<int>("shift");

    QTest::newRow("none") << Qt::KeyboardModifiers() << 0;
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier) << 1;
    QTest::newRow("Ctrl") << Qt::KeyboardModifiers(Qt::ControlModifier) << 2;
    QTest::newRow("Alt") << Qt::KeyboardModifiers(Qt::AltModifier) << 4;
    QTest::newRow("Shift+Ctrl") << (Qt::ShiftModifier | Qt::ControlModifier) << 3;
    QTest::newRow("Shift+Alt") << (Qt::ShiftModifier | Qt::AltModifier) << 5;
    QTest::newRow("Ctrl+Alt") << (Qt::ControlModifier | Qt::AltModifier) << 6;
    QTest::newRow("Shift+Ctrl+Alt") << (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier) << 7;
    QTest::newRow("Meta only") << Qt::KeyboardModifiers(Qt::MetaModifier) << 0;
    QTest::newRow("keypad Shift") << (Qt::KeypadModifier | Qt::ShiftModifier) << 1;
}

void TestStockEventFilter::shiftStates()
{
    QFETCH(Qt::KeyboardModifiers, modifiers);
    QFETCH(int, shift);

    QCOMPARE(int(StockEventFilter::shiftState(modifiers)), shift);

    QTest::mouseClick(m_widget, Qt::LeftButton, modifiers & ~Qt::KeypadModifier, QPoint(3, 4));
    QCOMPARE(m_log->lines.value(0), u"MouseDown 1 %1 3 4"_qs.arg(shift));
    QCOMPARE(m_log->lines.value(1), u"MouseUp 1 %1 3 4"_qs.arg(shift));

    m_log->lines.clear();
    typeKey(m_widget, Qt::Key_F5, QString(), modifiers);
    QCOMPARE(m_log->lines, (QStringList{u"KeyDown 116 %1"_qs.arg(shift), u"KeyUp 116 %1"_qs.arg(shift)}));
}

void TestStockEventFilter::coordinatesFollowTheScale()
{
    QCOMPARE(m_filter->unitsPerPixel(), 1.0);
    QTest::mouseClick(m_widget, Qt::LeftButton, Qt::NoModifier, QPoint(99, 79));
    QCOMPARE(m_log->lines.value(0), u"MouseDown 1 0 99 79"_qs);

    m_filter->setUnitsPerPixel(15);
    m_log->lines.clear();
    QTest::mouseClick(m_widget, Qt::LeftButton, Qt::ShiftModifier, QPoint(10, 7));
    QCOMPARE(m_log->lines, (QStringList{u"MouseDown 1 1 150 105"_qs, u"MouseUp 1 1 150 105"_qs, u"Click"_qs}));

    m_log->lines.clear();
    sendMouse(m_widget, QEvent::MouseMove, QPoint(1, 2), Qt::NoButton, Qt::NoButton);
    QCOMPARE(m_log->lines, QStringList{u"MouseMove 0 0 15 30"_qs});
}

void TestStockEventFilter::mouseMoveReportsHeldButtons()
{
    sendMouse(m_widget, QEvent::MouseMove, QPoint(5, 5), Qt::NoButton, Qt::NoButton, Qt::ControlModifier);
    sendMouse(m_widget, QEvent::MouseButtonPress, QPoint(5, 5), Qt::LeftButton, Qt::LeftButton);
    sendMouse(m_widget, QEvent::MouseMove, QPoint(20, 30), Qt::NoButton, Qt::LeftButton);
    sendMouse(m_widget, QEvent::MouseMove, QPoint(21, 31), Qt::NoButton, Qt::LeftButton | Qt::RightButton);
    sendMouse(m_widget, QEvent::MouseButtonRelease, QPoint(21, 31), Qt::LeftButton, Qt::RightButton);
    sendMouse(m_widget, QEvent::MouseMove, QPoint(22, 32), Qt::NoButton, Qt::RightButton, Qt::AltModifier);

    QCOMPARE(m_log->lines,
        (QStringList{u"MouseMove 0 2 5 5"_qs, u"MouseDown 1 0 5 5"_qs, u"MouseMove 1 0 20 30"_qs,
            u"MouseMove 3 0 21 31"_qs, u"MouseUp 1 0 21 31"_qs, u"Click"_qs, u"MouseMove 2 4 22 32"_qs}));
}

void TestStockEventFilter::keyCodes_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("ascii"); // -1: no KeyPress

    QTest::newRow("a") << Qt::Key_A << u"a"_qs << 65 << 97;
    QTest::newRow("A") << Qt::Key_A << u"A"_qs << 65 << 65;
    QTest::newRow("Z") << Qt::Key_Z << u"z"_qs << 90 << 122;
    QTest::newRow("0") << Qt::Key_0 << u"0"_qs << 48 << 48;
    QTest::newRow("9") << Qt::Key_9 << u"9"_qs << 57 << 57;
    QTest::newRow("Return") << Qt::Key_Return << u"\r"_qs << 13 << 13;
    QTest::newRow("keypad Enter") << Qt::Key_Enter << u"\r"_qs << 13 << 13;
    QTest::newRow("Escape") << Qt::Key_Escape << u"\x1b"_qs << 27 << 27;
    QTest::newRow("Backspace") << Qt::Key_Backspace << u"\b"_qs << 8 << 8;
    QTest::newRow("Tab") << Qt::Key_Tab << u"\t"_qs << 9 << 9;
    QTest::newRow("Space") << Qt::Key_Space << u" "_qs << 32 << 32;
    QTest::newRow("F1") << Qt::Key_F1 << QString() << 112 << -1;
    QTest::newRow("F12") << Qt::Key_F12 << QString() << 123 << -1;
    QTest::newRow("Left") << Qt::Key_Left << QString() << 37 << -1;
    QTest::newRow("Up") << Qt::Key_Up << QString() << 38 << -1;
    QTest::newRow("Right") << Qt::Key_Right << QString() << 39 << -1;
    QTest::newRow("Down") << Qt::Key_Down << QString() << 40 << -1;
    QTest::newRow("PageUp") << Qt::Key_PageUp << QString() << 33 << -1;
    QTest::newRow("PageDown") << Qt::Key_PageDown << QString() << 34 << -1;
    QTest::newRow("End") << Qt::Key_End << QString() << 35 << -1;
    QTest::newRow("Home") << Qt::Key_Home << QString() << 36 << -1;
    QTest::newRow("Insert") << Qt::Key_Insert << QString() << 45 << -1;
    QTest::newRow("Delete") << Qt::Key_Delete << u"\x7f"_qs << 46 << -1;
    QTest::newRow("e acute") << Qt::Key_Eacute << u"\u00e9"_qs << 0 << 233;
    QTest::newRow("euro sign, no 8-bit code") << Qt::Key_unknown << u"\u20ac"_qs << 0 << -1;
}

void TestStockEventFilter::keyCodes()
{
    QFETCH(Qt::Key, key);
    QFETCH(QString, text);
    QFETCH(int, code);
    QFETCH(int, ascii);

    QCOMPARE(int(StockEventFilter::keyCode(key)), code);

    typeKey(m_widget, key, text);
    QStringList expected{u"KeyDown %1 0"_qs.arg(code)};
    if (ascii >= 0) {
        expected << u"KeyPress %1"_qs.arg(ascii);
    }
    expected << u"KeyUp %1 0"_qs.arg(code);
    QCOMPARE(m_log->lines, expected);

    // The same through the test keyboard, modifier keys and all.
    if (code == 0) {
        return;
    }
    m_log->lines.clear();
    QTest::keyClick(m_widget, key, Qt::ShiftModifier);
    const QStringList lines = m_log->withoutModifierKeys();
    QVERIFY(!lines.isEmpty());
    QCOMPARE(lines.first(), u"KeyDown %1 1"_qs.arg(code));
    QCOMPARE(lines.last(), u"KeyUp %1 1"_qs.arg(code));
}

void TestStockEventFilter::keyPressCanSwallowOrReplaceTheKey()
{
    QLineEdit edit;
    auto *filter = new StockEventFilter(&edit);
    EventLog log(filter);
    log.onKeyPress = [](short &KeyAscii) {
        if (KeyAscii == 'x') {
            KeyAscii = 0;
        } else if (KeyAscii == 'a') {
            KeyAscii = 'B';
        } else if (KeyAscii == 'e') {
            KeyAscii = 0xe9;
        }
    };
    edit.show();
    QVERIFY(QTest::qWaitForWindowExposed(&edit));

    QTest::keyClicks(&edit, u"axbxye"_qs);
    QCOMPARE(edit.text(), u"Bby\u00e9"_qs);
    // Each key has its one KeyPress; a replacement is delivered without a KeyPress of its own.
    QCOMPARE(log.lines.filter(u"KeyPress"_qs),
        (QStringList{u"KeyPress 97"_qs, u"KeyPress 120"_qs, u"KeyPress 98"_qs, u"KeyPress 120"_qs, u"KeyPress 121"_qs,
            u"KeyPress 101"_qs}));
    // KeyDown and KeyUp still come for the swallowed key.
    QCOMPARE(log.lines.count(u"KeyDown 88 0"_qs), 2);
    QCOMPARE(log.lines.count(u"KeyUp 88 0"_qs), 2);

    // Keys without a character are never swallowed that way: the cursor still moves.
    QTest::keyClick(&edit, Qt::Key_Home);
    QTest::keyClick(&edit, 'x');
    QTest::keyClick(&edit, 'c');
    // The filter keeps watching after replacements.
    QTest::keyClick(&edit, 'a');
    QCOMPARE(edit.text(), u"cBBby\u00e9"_qs);
    QCOMPARE(log.lines.filter(u"KeyPress"_qs).size(), 9);
}

QTEST_MAIN(TestStockEventFilter)
#include "tst_stockeventfilter.moc"
