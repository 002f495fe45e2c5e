#include "StockEventFilter.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWidget>

namespace Kelocontrols {

StockEventFilter::StockEventFilter(QWidget *watched)
    : QObject(watched)
    , m_watched(watched)
{
    watched->installEventFilter(this);
    watched->setMouseTracking(true);
}

short StockEventFilter::keyCode(int qtKey)
{
    if ((qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) || (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z)) {
        return short(qtKey); // the same codes on both sides
    }
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24) {
        return short(112 + (qtKey - Qt::Key_F1));
    }
    switch (qtKey) {
    case Qt::Key_Backspace:
        return 8;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return 9;
    case Qt::Key_Clear:
        return 12;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return 13;
    case Qt::Key_Shift:
        return 16;
    case Qt::Key_Control:
        return 17;
    case Qt::Key_Alt:
        return 18;
    case Qt::Key_Pause:
        return 19;
    case Qt::Key_CapsLock:
        return 20;
    case Qt::Key_Escape:
        return 27;
    case Qt::Key_Space:
        return 32;
    case Qt::Key_PageUp:
        return 33;
    case Qt::Key_PageDown:
        return 34;
    case Qt::Key_End:
        return 35;
    case Qt::Key_Home:
        return 36;
    case Qt::Key_Left:
        return 37;
    case Qt::Key_Up:
        return 38;
    case Qt::Key_Right:
        return 39;
    case Qt::Key_Down:
        return 40;
    case Qt::Key_Print:
        return 44;
    case Qt::Key_Insert:
        return 45;
    case Qt::Key_Delete:
        return 46;
    case Qt::Key_Help:
        return 47;
    case Qt::Key_Asterisk:
        return 106;
    case Qt::Key_Plus:
        return 107;
    case Qt::Key_Minus:
        return 109;
    case Qt::Key_Period:
        return 190;
    case Qt::Key_Slash:
        return 191;
    case Qt::Key_NumLock:
        return 144;
    case Qt::Key_ScrollLock:
        return 145;
    case Qt::Key_Comma:
        return 188;
    case Qt::Key_Semicolon:
        return 186;
    case Qt::Key_Equal:
        return 187;
    default:
        return 0;
    }
}

short StockEventFilter::shiftState(Qt::KeyboardModifiers modifiers)
{
    short shift = 0;
    if (modifiers & Qt::ShiftModifier) {
        shift |= 1;
    }
    if (modifiers & Qt::ControlModifier) {
        shift |= 2;
    }
    if (modifiers & Qt::AltModifier) {
        shift |= 4;
    }
    return shift;
}

short StockEventFilter::buttonCode(Qt::MouseButtons buttons)
{
    short code = 0;
    if (buttons & Qt::LeftButton) {
        code |= 1;
    }
    if (buttons & Qt::RightButton) {
        code |= 2;
    }
    if (buttons & Qt::MiddleButton) {
        code |= 4;
    }
    return code;
}

bool StockEventFilter::eventFilter(QObject *watched, QEvent *event)
{
    // Filters see events before QWidget's own check, so a disabled widget
    // (or one inside a disabled control) must be skipped here.
    if (watched != m_watched || !m_watched->isEnabled()) {
        return false;
    }
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        return keyEvent(watched, event);
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        mouseEvent(event);
        return false;
    default:
        return false;
    }
}

bool StockEventFilter::keyEvent(QObject *watched, QEvent *event)
{
    auto *key = static_cast<QKeyEvent *>(event);
    short code = keyCode(key->key());
    short shift = shiftState(key->modifiers());
    if (event->type() == QEvent::KeyRelease) {
        Q_EMIT KeyUp(code, shift);
        return false;
    }
    Q_EMIT KeyDown(code, shift);
    const QString text = key->text();
    // X11 gives the Delete key the text DEL (127), yet it types no character.
    if (text.size() != 1 || text.at(0).unicode() > 0xff || key->key() == Qt::Key_Delete) {
        return false;
    }
    short ascii = short(text.at(0).unicode());
    const short original = ascii;
    Q_EMIT KeyPress(ascii);
    if (ascii == original) {
        return false;
    }
    if (ascii != 0) {
        // The handler replaced the character: deliver the new one instead.
        QKeyEvent replaced(QEvent::KeyPress, key->key(), key->modifiers(), QString(QChar(ushort(ascii) & 0xff)));
        m_watched->removeEventFilter(this);
        QCoreApplication::sendEvent(watched, &replaced);
        m_watched->installEventFilter(this);
    }
    return true;
}

void StockEventFilter::mouseEvent(QEvent *event)
{
    auto *mouse = static_cast<QMouseEvent *>(event);
    short shift = shiftState(mouse->modifiers());
    float x = float(mouse->position().x() * m_unitsPerPixel);
    float y = float(mouse->position().y() * m_unitsPerPixel);
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        short button = buttonCode(mouse->button());
        m_pressedInside = true;
        Q_EMIT MouseDown(button, shift, x, y);
        break;
    }
    case QEvent::MouseButtonRelease: {
        short button = buttonCode(mouse->button());
        Q_EMIT MouseUp(button, shift, x, y);
        const bool inside = m_watched->rect().contains(mouse->position().toPoint());
        if (m_pressedInside && inside && mouse->button() == Qt::LeftButton) {
            Q_EMIT Click();
        }
        m_pressedInside = false;
        break;
    }
    case QEvent::MouseButtonDblClick:
        if (mouse->button() == Qt::LeftButton) {
            Q_EMIT DblClick();
        } else {
            // Only the left button double-clicks: for the others the second
            // press is a press, so that its MouseUp has a MouseDown.
            short button = buttonCode(mouse->button());
            Q_EMIT MouseDown(button, shift, x, y);
        }
        m_pressedInside = false; // the release that follows a double click is no Click
        break;
    default: {
        short button = buttonCode(mouse->buttons());
        Q_EMIT MouseMove(button, shift, x, y);
        break;
    }
    }
}

} // namespace Kelocontrols
