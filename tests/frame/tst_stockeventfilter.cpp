#include "StockEventFilter.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QTest>
#include <QWidget>

#include <functional>

using namespace Kelocontrols;

namespace {

/// Records the stock events of a filter as readable lines, in the order raised.
class EventLog : public QObject
{
public:
    explicit EventLog(StockEventFilter *filter)
    {
        connect(filter, &StockEventFilter::Click, this, [this] { lines << QStringLiteral("Click"); });
        connect(filter, &StockEventFilter::DblClick, this, [this] { lines << QStringLiteral("DblClick"); });
        connect(filter, &StockEventFilter::KeyDown, this,
            [this](short &KeyCode, short &Shift) { lines << QStringLiteral("KeyDown %1 %2").arg(KeyCode).arg(Shift); });
        connect(filter, &StockEventFilter::KeyPress, this, [this](short &KeyAscii) {
            lines << QStringLiteral("KeyPress %1").arg(KeyAscii);
            if (onKeyPress) {
                onKeyPress(KeyAscii);
            }
        });
        connect(filter, &StockEventFilter::KeyUp, this,
            [this](short &KeyCode, short &Shift) { lines << QStringLiteral("KeyUp %1 %2").arg(KeyCode).arg(Shift); });
        connect(filter, &StockEventFilter::MouseDown, this, [this](short &Button, short &Shift, float &X, float &Y) {
            lines << mouseLine(QStringLiteral("MouseDown"), Button, Shift, X, Y);
        });
        connect(filter, &StockEventFilter::MouseMove, this, [this](short &Button, short &Shift, float &X, float &Y) {
            lines << mouseLine(QStringLiteral("MouseMove"), Button, Shift, X, Y);
        });
        connect(filter, &StockEventFilter::MouseUp, this, [this](short &Button, short &Shift, float &X, float &Y) {
            lines << mouseLine(QStringLiteral("MouseUp"), Button, Shift, X, Y);
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
            if (!line.contains(QRegularExpression(QStringLiteral("^Key(Down|Up) 1[678] ")))) {
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
        return QStringLiteral("%1 %2 %3 %4 %5").arg(name).arg(button).arg(shift).arg(double(x)).arg(double(y));
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

    void clickOrder();
    void doubleClickOrder();
    void doubleClickThroughTheWindowSystem();
    void otherButtonsDoNotDoubleClick();
    void releaseOutsideIsNoClick();
    void buttonCodes_data();
    void buttonCodes();
    void shiftStates_data();
    void shiftStates();
    void coordinatesFollowTheScale();
    void mouseMoveReportsHeldButtons();
    void keyCodes_data();
    void keyCodes();
    void keyPressCanSwallowTheKey();
    void keyPressCanReplaceTheKey();

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

void TestStockEventFilter::clickOrder()
{
    QTest::mouseClick(m_widget, Qt::LeftButton, Qt::NoModifier, QPoint(10, 7));
    QCOMPARE(m_log->lines,
        (QStringList{
            QStringLiteral("MouseDown 1 0 10 7"), QStringLiteral("MouseUp 1 0 10 7"), QStringLiteral("Click")}));

    // The next click is a click of its own.
    m_log->lines.clear();
    QTest::mouseClick(m_widget, Qt::LeftButton, Qt::NoModifier, QPoint(11, 8));
    QCOMPARE(m_log->lines,
        (QStringList{
            QStringLiteral("MouseDown 1 0 11 8"), QStringLiteral("MouseUp 1 0 11 8"), QStringLiteral("Click")}));
}

void TestStockEventFilter::doubleClickOrder()
{
    // A widget sees a double click as press, release, double click, release.
    const QPoint pos(20, 30);
    QTest::mousePress(m_widget, Qt::LeftButton, Qt::NoModifier, pos);
    QTest::mouseRelease(m_widget, Qt::LeftButton, Qt::NoModifier, pos);
    QTest::mouseDClick(m_widget, Qt::LeftButton, Qt::NoModifier, pos);
    QTest::mouseRelease(m_widget, Qt::LeftButton, Qt::NoModifier, pos);

    QCOMPARE(m_log->lines,
        (QStringList{QStringLiteral("MouseDown 1 0 20 30"), QStringLiteral("MouseUp 1 0 20 30"),
            QStringLiteral("Click"), QStringLiteral("DblClick"), QStringLiteral("MouseUp 1 0 20 30")}));
}

void TestStockEventFilter::doubleClickThroughTheWindowSystem()
{
    // Through the window system the second press turns into the double click.
    QWindow *window = m_widget->windowHandle();
    QVERIFY(window);
    const QPoint pos(40, 25);
    QTest::mouseMove(window, pos);
    QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, pos);
    QCOMPARE(m_log->withoutMoves(),
        (QStringList{
            QStringLiteral("MouseDown 1 0 40 25"), QStringLiteral("MouseUp 1 0 40 25"), QStringLiteral("Click")}));

    m_log->lines.clear();
    QTest::mouseDClick(window, Qt::LeftButton, Qt::NoModifier, pos);
    QCOMPARE(m_log->withoutMoves(),
        (QStringList{QStringLiteral("MouseDown 1 0 40 25"), QStringLiteral("MouseUp 1 0 40 25"),
            QStringLiteral("Click"), QStringLiteral("DblClick"), QStringLiteral("MouseUp 1 0 40 25")}));
}

void TestStockEventFilter::otherButtonsDoNotDoubleClick()
{
    // Only the left button double-clicks; for the others the second press is
    // a press like the first, so every MouseUp has its MouseDown.
    const QPoint pos(15, 25);
    for (Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
        m_log->lines.clear();
        const int code = StockEventFilter::buttonCode(button);
        QTest::mousePress(m_widget, button, Qt::NoModifier, pos);
        QTest::mouseRelease(m_widget, button, Qt::NoModifier, pos);
        QTest::mouseDClick(m_widget, button, Qt::NoModifier, pos);
        QTest::mouseRelease(m_widget, button, Qt::NoModifier, pos);
        const QStringList lines = m_log->lines.filter(QRegularExpression(QStringLiteral("^Mouse|DblClick")));
        QCOMPARE(lines,
            (QStringList{QStringLiteral("MouseDown %1 0 15 25").arg(code),
                QStringLiteral("MouseUp %1 0 15 25").arg(code), QStringLiteral("MouseDown %1 0 15 25").arg(code),
                QStringLiteral("MouseUp %1 0 15 25").arg(code)}));
    }
}

void TestStockEventFilter::releaseOutsideIsNoClick()
{
    QTest::mousePress(m_widget, Qt::LeftButton, Qt::NoModifier, QPoint(10, 10));
    QTest::mouseRelease(m_widget, Qt::LeftButton, Qt::NoModifier, QPoint(150, 10));
    QCOMPARE(m_log->withoutMoves(),
        (QStringList{QStringLiteral("MouseDown 1 0 10 10"), QStringLiteral("MouseUp 1 0 150 10")}));

    // A release without a press before it is no click either.
    m_log->lines.clear();
    QTest::mouseRelease(m_widget, Qt::LeftButton, Qt::NoModifier, QPoint(10, 10));
    QCOMPARE(m_log->lines, QStringList{QStringLiteral("MouseUp 1 0 10 10")});
}

void TestStockEventFilter::buttonCodes_data()
{
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<int>("code");

    QTest::newRow("left") << Qt::LeftButton << 1;
    QTest::newRow("right") << Qt::RightButton << 2;
    QTest::newRow("middle") << Qt::MiddleButton << 4;
}

void TestStockEventFilter::buttonCodes()
{
    QFETCH(Qt::MouseButton, button);
    QFETCH(int, code);

    QTest::mouseClick(m_widget, button, Qt::NoModifier, QPoint(5, 6));
    QVERIFY(m_log->lines.size() >= 2);
    QCOMPARE(m_log->lines.at(0), QStringLiteral("MouseDown %1 0 5 6").arg(code));
    QCOMPARE(m_log->lines.at(1), QStringLiteral("MouseUp %1 0 5 6").arg(code));

    QCOMPARE(int(StockEventFilter::buttonCode(button)), code);
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
    QCOMPARE(m_log->lines.value(0), QStringLiteral("MouseDown 1 %1 3 4").arg(shift));
    QCOMPARE(m_log->lines.value(1), QStringLiteral("MouseUp 1 %1 3 4").arg(shift));

    m_log->lines.clear();
    typeKey(m_widget, Qt::Key_F5, QString(), modifiers);
    QCOMPARE(m_log->lines,
        (QStringList{QStringLiteral("KeyDown 116 %1").arg(shift), QStringLiteral("KeyUp 116 %1").arg(shift)}));
}

void TestStockEventFilter::coordinatesFollowTheScale()
{
    QCOMPARE(m_filter->unitsPerPixel(), 1.0);
    QTest::mouseClick(m_widget, Qt::LeftButton, Qt::NoModifier, QPoint(99, 79));
    QCOMPARE(m_log->lines.value(0), QStringLiteral("MouseDown 1 0 99 79"));

    m_filter->setUnitsPerPixel(15);
    m_log->lines.clear();
    QTest::mouseClick(m_widget, Qt::LeftButton, Qt::ShiftModifier, QPoint(10, 7));
    QCOMPARE(m_log->lines,
        (QStringList{
            QStringLiteral("MouseDown 1 1 150 105"), QStringLiteral("MouseUp 1 1 150 105"), QStringLiteral("Click")}));

    m_log->lines.clear();
    sendMouse(m_widget, QEvent::MouseMove, QPoint(1, 2), Qt::NoButton, Qt::NoButton);
    QCOMPARE(m_log->lines, QStringList{QStringLiteral("MouseMove 0 0 15 30")});
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
        (QStringList{QStringLiteral("MouseMove 0 2 5 5"), QStringLiteral("MouseDown 1 0 5 5"),
            QStringLiteral("MouseMove 1 0 20 30"), QStringLiteral("MouseMove 3 0 21 31"),
            QStringLiteral("MouseUp 1 0 21 31"), QStringLiteral("Click"), QStringLiteral("MouseMove 2 4 22 32")}));
}

void TestStockEventFilter::keyCodes_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("ascii"); // -1: no KeyPress

    QTest::newRow("a") << Qt::Key_A << QStringLiteral("a") << 65 << 97;
    QTest::newRow("A") << Qt::Key_A << QStringLiteral("A") << 65 << 65;
    QTest::newRow("Z") << Qt::Key_Z << QStringLiteral("z") << 90 << 122;
    QTest::newRow("0") << Qt::Key_0 << QStringLiteral("0") << 48 << 48;
    QTest::newRow("9") << Qt::Key_9 << QStringLiteral("9") << 57 << 57;
    QTest::newRow("Return") << Qt::Key_Return << QStringLiteral("\r") << 13 << 13;
    QTest::newRow("keypad Enter") << Qt::Key_Enter << QStringLiteral("\r") << 13 << 13;
    QTest::newRow("Escape") << Qt::Key_Escape << QStringLiteral("\x1b") << 27 << 27;
    QTest::newRow("Backspace") << Qt::Key_Backspace << QStringLiteral("\b") << 8 << 8;
    QTest::newRow("Tab") << Qt::Key_Tab << QStringLiteral("\t") << 9 << 9;
    QTest::newRow("Space") << Qt::Key_Space << QStringLiteral(" ") << 32 << 32;
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
    QTest::newRow("Delete") << Qt::Key_Delete << QStringLiteral("\x7f") << 46 << -1;
    QTest::newRow("e acute") << Qt::Key_Eacute << QStringLiteral("\u00e9") << 0 << 233;
    QTest::newRow("euro sign, no 8-bit code") << Qt::Key_unknown << QStringLiteral("\u20ac") << 0 << -1;
}

void TestStockEventFilter::keyCodes()
{
    QFETCH(Qt::Key, key);
    QFETCH(QString, text);
    QFETCH(int, code);
    QFETCH(int, ascii);

    QCOMPARE(int(StockEventFilter::keyCode(key)), code);

    typeKey(m_widget, key, text);
    QStringList expected{QStringLiteral("KeyDown %1 0").arg(code)};
    if (ascii >= 0) {
        expected << QStringLiteral("KeyPress %1").arg(ascii);
    }
    expected << QStringLiteral("KeyUp %1 0").arg(code);
    QCOMPARE(m_log->lines, expected);

    // The same through the test keyboard, modifier keys and all.
    if (code == 0) {
        return;
    }
    m_log->lines.clear();
    QTest::keyClick(m_widget, key, Qt::ShiftModifier);
    const QStringList lines = m_log->withoutModifierKeys();
    QVERIFY(!lines.isEmpty());
    QCOMPARE(lines.first(), QStringLiteral("KeyDown %1 1").arg(code));
    QCOMPARE(lines.last(), QStringLiteral("KeyUp %1 1").arg(code));
}

void TestStockEventFilter::keyPressCanSwallowTheKey()
{
    QLineEdit edit;
    auto *filter = new StockEventFilter(&edit);
    EventLog log(filter);
    log.onKeyPress = [](short &KeyAscii) {
        if (KeyAscii == 'x') {
            KeyAscii = 0;
        }
    };
    edit.show();
    QVERIFY(QTest::qWaitForWindowExposed(&edit));

    QTest::keyClicks(&edit, QStringLiteral("axbx"));
    QCOMPARE(edit.text(), QStringLiteral("ab"));
    QCOMPARE(log.lines.count(QStringLiteral("KeyPress 120")), 2);
    // KeyDown and KeyUp still come for the swallowed key.
    QCOMPARE(log.lines.count(QStringLiteral("KeyDown 88 0")), 2);
    QCOMPARE(log.lines.count(QStringLiteral("KeyUp 88 0")), 2);

    // Keys without a character are never swallowed that way: the cursor still moves.
    QTest::keyClick(&edit, Qt::Key_Home);
    QTest::keyClick(&edit, 'x');
    QTest::keyClick(&edit, 'c');
    QCOMPARE(edit.text(), QStringLiteral("cab"));
}

void TestStockEventFilter::keyPressCanReplaceTheKey()
{
    QLineEdit edit;
    auto *filter = new StockEventFilter(&edit);
    EventLog log(filter);
    log.onKeyPress = [](short &KeyAscii) {
        if (KeyAscii == 'a') {
            KeyAscii = 'B';
        } else if (KeyAscii == 'e') {
            KeyAscii = 0xe9;
        }
    };
    edit.show();
    QVERIFY(QTest::qWaitForWindowExposed(&edit));

    QTest::keyClicks(&edit, QStringLiteral("xaye"));
    QCOMPARE(edit.text(), QStringLiteral("xBy\u00e9"));
    // The replacement is delivered once, without a KeyPress of its own.
    QCOMPARE(log.lines.filter(QStringLiteral("KeyPress")),
        (QStringList{QStringLiteral("KeyPress 120"), QStringLiteral("KeyPress 97"), QStringLiteral("KeyPress 121"),
            QStringLiteral("KeyPress 101")}));
    // The filter keeps watching after a replacement.
    QTest::keyClicks(&edit, QStringLiteral("a"));
    QCOMPARE(edit.text(), QStringLiteral("xBy\u00e9B"));
    QCOMPARE(log.lines.filter(QStringLiteral("KeyPress")).size(), 5);
}

QTEST_MAIN(TestStockEventFilter)
#include "tst_stockeventfilter.moc"
