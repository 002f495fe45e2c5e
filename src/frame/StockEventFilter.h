#pragma once

#include <kelocontrols_export.h>

#include <QObject>
#include <Qt>

class QWidget;

namespace Kelocontrols {

/**
 * Turns the Qt input events of an inner widget into the eight stock events
 * of a control: Click, DblClick, KeyDown, KeyPress, KeyUp, MouseDown,
 * MouseMove and MouseUp, with the classic arguments.
 *
 * Arguments are passed by reference, as a host expects: a KeyPress handler
 * that sets KeyAscii to 0 swallows the key, one that changes it makes the
 * inner widget receive the new character. Key codes are the classic virtual
 * key codes (65 for A, 13 for Enter, 37..40 for the arrows), Shift is
 * 1 Shift + 2 Ctrl + 4 Alt, Button is 1 left, 2 right, 4 middle, and X/Y are
 * in the watched widget's scale (pixels unless setUnitsPerPixel() says
 * otherwise, e.g. 15 for twips).
 *
 * The event order of a double click is MouseDown, MouseUp, Click,
 * DblClick, MouseUp. Only the left button double-clicks; the second press of
 * another button is a MouseDown. Keys that type no character (arrows,
 * function keys, Delete) raise KeyDown and KeyUp only.
 */
class KELOCONTROLS_EXPORT StockEventFilter : public QObject
{
    Q_OBJECT
public:
    /// Watches `watched` (and is owned by it).
    explicit StockEventFilter(QWidget *watched);

    void setUnitsPerPixel(double units) { m_unitsPerPixel = units; }
    double unitsPerPixel() const { return m_unitsPerPixel; }

    /// The classic virtual key code of a Qt key (0 when it has none).
    static short keyCode(int qtKey);
    /// The classic shift state: 1 Shift, 2 Ctrl, 4 Alt.
    static short shiftState(Qt::KeyboardModifiers modifiers);
    /// The classic button code: 1 left, 2 right, 4 middle.
    static short buttonCode(Qt::MouseButtons buttons);

Q_SIGNALS:
    void Click();
    void DblClick();
    void KeyDown(short &KeyCode, short &Shift);
    void KeyPress(short &KeyAscii);
    void KeyUp(short &KeyCode, short &Shift);
    void MouseDown(short &Button, short &Shift, float &X, float &Y);
    void MouseMove(short &Button, short &Shift, float &X, float &Y);
    void MouseUp(short &Button, short &Shift, float &X, float &Y);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool keyEvent(QObject *watched, QEvent *event);
    void mouseEvent(QEvent *event);

    QWidget *m_watched;
    double m_unitsPerPixel = 1.0;
    bool m_pressedInside = false;
};

} // namespace Kelocontrols
