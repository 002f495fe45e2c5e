#include "StockEventFilter.h"

#include <QApplication>
#include <QKeySequence>
#include <QLineEdit>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QTest>
#include <QWidget>

#include <memory>
#include <tuple>

using namespace Kelocontrols;

namespace {

/// Records the stock events of a filter as readable lines, in the order raised.
class EventLog : public QObject
{
public:
    explicit EventLog(StockEventFilter *filter)
        : QObject(filter)
    {
        connect(filter, &StockEventFilter::Click, this, [this] { lines << u"Click"_qs; });
        connect(filter, &StockEventFilter::DblClick, this, [this] { lines << u"DblClick"_qs; });
        for (const auto &[signal, name] :
            {std::pair{&StockEventFilter::KeyDown, "KeyDown"}, {&StockEventFilter::KeyUp, "KeyUp"}}) {
            connect(filter, signal, this, [this, name](short &KeyCode, short &Shift) {
                lines << u"%1 %2 %3"_qs.arg(name).arg(KeyCode).arg(Shift);
            });
        }
        connect(filter, &StockEventFilter::KeyPress, this, [this](short &KeyAscii) {
            lines << u"KeyPress %1"_qs.arg(KeyAscii);
            KeyAscii = replacements.value(KeyAscii, KeyAscii);
        });
        for (const auto &[signal, name] : {std::pair{&StockEventFilter::MouseDown, "MouseDown"},
                 {&StockEventFilter::MouseMove, "MouseMove"}, {&StockEventFilter::MouseUp, "MouseUp"}}) {
            connect(filter, signal, this, [this, name](short &Button, short &Shift, float &X, float &Y) {
                lines << u"%1 %2 %3 %4 %5"_qs.arg(name).arg(Button).arg(Shift).arg(double(X)).arg(double(Y));
            });
        }
    }

    /// The lines but those matching `skipped`, such as the mouse moves a real pointer produces on the way.
    QStringList without(const char *skipped) const
    {
        return lines.filter(QRegularExpression(u"^(?!%1)"_qs.arg(QLatin1String(skipped))));
    }

    QStringList lines;
    QHash<short, short> replacements; ///< what a KeyPress handler turns a key into
};

// Sends one key press and release with the text a desktop keyboard gives for it.
void typeKey(QWidget *widget, Qt::Key key, const QString &text, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(widget, &press);
    QKeyEvent release(QEvent::KeyRelease, key, modifiers, text);
    QApplication::sendEvent(widget, &release);
}

} // namespace

class TestStockEventFilter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_widget = std::make_unique<QWidget>();
        m_widget->resize(100, 80);
        m_filter = new StockEventFilter(m_widget.get());
        m_log = new EventLog(m_filter);
        m_widget->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_widget.get()));
        m_log->lines.clear();
    }

    void mouseSequences_data()
    {
        // Steps separated by "; ", each "<press|release|dclick|click|move> <buttons> x,y [modifiers]" (buttons from
        // L, R, M, "-" for none; modifiers from S, C, A) or "scale <units per pixel>".
        QTest::addColumn<QString>("script");
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
        QTest::newRow("far corner") << "press L 99,79" << QStringList{"MouseDown 1 0 99 79"};
        QTest::newRow("coordinates follow the scale")
            << "scale 15; click L 10,7 S; move - 1,2"
            << QStringList{"MouseDown 1 1 150 105", "MouseUp 1 1 150 105", "Click", "MouseMove 0 0 15 30"};
        QTest::newRow("moves report held buttons")
            << "move - 5,5 C; press L 5,5; move L 20,30; move LR 21,31; release L 21,31; move R 22,32 A"
            << QStringList{"MouseMove 0 2 5 5", "MouseDown 1 0 5 5", "MouseMove 1 0 20 30", "MouseMove 3 0 21 31",
                   "MouseUp 1 0 21 31", "Click", "MouseMove 2 4 22 32"};
    }

    void mouseSequences()
    {
        QFETCH(QString, script);
        QFETCH(QStringList, events);
        QCOMPARE(m_filter->unitsPerPixel(), 1.0);
        const QHash<QChar, int> flags{{'L', Qt::LeftButton}, {'R', Qt::RightButton}, {'M', Qt::MiddleButton},
            {'S', Qt::ShiftModifier}, {'C', Qt::ControlModifier}, {'A', Qt::AltModifier}};
        const auto flagsOf = [&](const QString &letters) {
            int all = 0;
            for (const QChar letter : letters)
                all |= flags.value(letter);
            return all;
        };
        QWidget *w = m_widget.get();
        for (const QString &step : script.split("; ")) {
            const QStringList parts = step.split(' ');
            if (parts.at(0) == "scale") {
                m_filter->setUnitsPerPixel(parts.at(1).toDouble());
                continue;
            }
            const QStringList xy = parts.at(2).split(',');
            const QPoint pos(xy.at(0).toInt(), xy.at(1).toInt());
            const auto buttons = Qt::MouseButtons(flagsOf(parts.at(1)));
            const auto button = Qt::MouseButton(buttons.toInt());
            const auto modifiers = Qt::KeyboardModifiers(flagsOf(parts.value(3)));
            if (parts.at(0) == "press")
                QTest::mousePress(w, button, modifiers, pos);
            else if (parts.at(0) == "release")
                QTest::mouseRelease(w, button, modifiers, pos);
            else if (parts.at(0) == "dclick")
                QTest::mouseDClick(w, button, modifiers, pos);
            else if (parts.at(0) == "click")
                QTest::mouseClick(w, button, modifiers, pos);
            else {
                QMouseEvent move(
                    QEvent::MouseMove, QPointF(pos), w->mapToGlobal(QPointF(pos)), Qt::NoButton, buttons, modifiers);
                QApplication::sendEvent(w, &move);
            }
        }
        QCOMPARE(m_log->lines, events);
    }

    void doubleClickThroughTheWindowSystem()
    {
        // Through the window system the second press turns into the double click.
        QWindow *window = m_widget->windowHandle();
        QVERIFY(window);
        const QPoint pos(40, 25);
        QTest::mouseMove(window, pos);
        const QStringList click{"MouseDown 1 0 40 25", "MouseUp 1 0 40 25", "Click"};
        QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, pos);
        QCOMPARE(m_log->without("MouseMove"), click);
        m_log->lines.clear();
        QTest::mouseDClick(window, Qt::LeftButton, Qt::NoModifier, pos);
        QCOMPARE(m_log->without("MouseMove"), click + QStringList({"DblClick", "MouseUp 1 0 40 25"}));
    }

    void shiftStates_data()
    {
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<int>("shift");

        QTest::newRow("none") << Qt::KeyboardModifiers() << 0;
        QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier) << 1;
        QTest::newRow("Ctrl") << Qt::KeyboardModifiers(Qt::ControlModifier) << 2;
        QTest::newRow("Alt") << Qt::KeyboardModifiers(Qt::AltModifier) << 4;
        QTest::newRow("Shift+Ctrl+Alt") << (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier) << 7;
        QTest::newRow("Meta only") << Qt::KeyboardModifiers(Qt::MetaModifier) << 0;
        QTest::newRow("keypad Shift") << (Qt::KeypadModifier | Qt::ShiftModifier) << 1;
    }

    void shiftStates()
    {
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(int, shift);

        QCOMPARE(int(StockEventFilter::shiftState(modifiers)), shift);
        QCOMPARE(StockEventFilter::buttonCode(Qt::LeftButton | Qt::RightButton | Qt::MiddleButton), short(7));

        QTest::mouseClick(m_widget.get(), Qt::LeftButton, modifiers & ~Qt::KeypadModifier, QPoint(3, 4));
        QCOMPARE(m_log->lines.value(0), u"MouseDown 1 %1 3 4"_qs.arg(shift));
        QCOMPARE(m_log->lines.value(1), u"MouseUp 1 %1 3 4"_qs.arg(shift));

        m_log->lines.clear();
        typeKey(m_widget.get(), Qt::Key_F5, QString(), modifiers);
        QCOMPARE(m_log->lines, (QStringList{u"KeyDown 116 %1"_qs.arg(shift), u"KeyUp 116 %1"_qs.arg(shift)}));
    }

    void keyCodes_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("ascii"); // -1: no KeyPress

        for (const auto &[key, text, code, ascii] :
            {std::tuple<Qt::Key, const char16_t *, int, int>{Qt::Key_A, u"a", 65, 97}, {Qt::Key_A, u"A", 65, 65},
                {Qt::Key_Z, u"z", 90, 122}, {Qt::Key_0, u"0", 48, 48}, {Qt::Key_9, u"9", 57, 57},
                {Qt::Key_Return, u"\r", 13, 13}, {Qt::Key_Enter, u"\r", 13, 13}, {Qt::Key_Escape, u"\x1b", 27, 27},
                {Qt::Key_Backspace, u"\b", 8, 8}, {Qt::Key_Tab, u"\t", 9, 9}, {Qt::Key_Space, u" ", 32, 32},
                {Qt::Key_F1, u"", 112, -1}, {Qt::Key_F12, u"", 123, -1}, {Qt::Key_Left, u"", 37, -1},
                {Qt::Key_Up, u"", 38, -1}, {Qt::Key_Right, u"", 39, -1}, {Qt::Key_Down, u"", 40, -1},
                {Qt::Key_PageUp, u"", 33, -1}, {Qt::Key_PageDown, u"", 34, -1}, {Qt::Key_End, u"", 35, -1},
                {Qt::Key_Home, u"", 36, -1}, {Qt::Key_Insert, u"", 45, -1}, {Qt::Key_Delete, u"\x7f", 46, -1},
                {Qt::Key_Eacute, u"\u00e9", 0, 233}, {Qt::Key_unknown, u"\u20ac", 0, -1}})
            QTest::addRow("%s %d %d", qPrintable(QKeySequence(key).toString()), code, ascii)
                << key << QString::fromUtf16(text) << code << ascii;
    }

    void keyCodes()
    {
        QFETCH(Qt::Key, key);
        QFETCH(QString, text);
        QFETCH(int, code);
        QFETCH(int, ascii);

        QCOMPARE(int(StockEventFilter::keyCode(key)), code);

        typeKey(m_widget.get(), key, text);
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
        QTest::keyClick(m_widget.get(), key, Qt::ShiftModifier);
        const QStringList lines = m_log->without("Key(Down|Up) 1[678] ");
        QVERIFY(!lines.isEmpty());
        QCOMPARE(lines.first(), u"KeyDown %1 1"_qs.arg(code));
        QCOMPARE(lines.last(), u"KeyUp %1 1"_qs.arg(code));
    }

    void keyPressCanSwallowOrReplaceTheKey()
    {
        QLineEdit edit;
        auto *filter = new StockEventFilter(&edit);
        EventLog log(filter);
        log.replacements = {{'x', 0}, {'a', 'B'}, {'e', 0xe9}};
        edit.show();
        QVERIFY(QTest::qWaitForWindowExposed(&edit));

        QTest::keyClicks(&edit, u"axbxye"_qs);
        QCOMPARE(edit.text(), u"Bby\u00e9"_qs);
        // Each key has its one KeyPress; a replacement is delivered without a KeyPress of its own.
        QCOMPARE(log.lines.filter(u"KeyPress"_qs),
            QStringList(
                {"KeyPress 97", "KeyPress 120", "KeyPress 98", "KeyPress 120", "KeyPress 121", "KeyPress 101"}));
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

private:
    std::unique_ptr<QWidget> m_widget;
    StockEventFilter *m_filter = nullptr;
    EventLog *m_log = nullptr;
};

QTEST_MAIN(TestStockEventFilter)
#include "tst_stockeventfilter.moc"
