#include "ClassicFace_p.h"

#include "ControlBase.h"

#include <QWidget>

namespace Kelocontrols {

// Enabled starts as the control's own setting: what setEnabled() last gave
// it, whatever its form says.
ClassicFace::ClassicFace(ControlBase &control)
    : m_control(control)
{
    QWidget *self = &control;
    m_enabled = {[self] { return !self->testAttribute(Qt::WA_ForceDisabled); },
        [self](bool enabled) { self->QWidget::setEnabled(enabled); }};
}

void ClassicFace::paintColorsInto(
    QWidget *widget, QPalette::ColorRole backRole, QPalette::ColorRole foreRole, OleColor back, OleColor fore)
{
    m_paletteWidget = widget;
    m_backRole = backRole;
    m_foreRole = foreRole;
    m_back = back;
    m_fore = fore;
    m_backColor = {[this] { return m_back; },
        [this](OleColor color) {
            m_back = color;
            repaintColors();
        }};
    m_foreColor = {[this] { return m_fore; },
        [this](OleColor color) {
            m_fore = color;
            repaintColors();
        }};
    repaintColors();
}

void ClassicFace::repaintColors()
{
    if (!m_paletteWidget) {
        return;
    }
    QPalette palette = m_paletteWidget->palette();
    palette.setColor(m_backRole, toQColor(m_back));
    palette.setColor(m_foreRole, toQColor(m_fore));
    m_paletteWidget->setPalette(palette);
}

// The effective state: a widget inside a disabled form reads as disabled.
void ClassicFace::keepEnabledOn(QWidget *widget)
{
    m_enabled = {[widget] { return widget->isEnabled(); }, [widget](bool enabled) { widget->setEnabled(enabled); }};
}

void ClassicFace::keepFontOn(QWidget *widget)
{
    m_font = {[widget] { return widget->font(); }, [widget](const QFont &font) { widget->setFont(font); }};
}

void ClassicFace::setBackColor(OleColor color)
{
    m_backColor.write(color);
    written(Member::BackColor, "BackColor");
}

void ClassicFace::setForeColor(OleColor color)
{
    m_foreColor.write(color);
    written(Member::ForeColor, "ForeColor");
}

void ClassicFace::setEnabled(bool enabled)
{
    m_enabled.write(enabled);
    written(Member::Enabled, "Enabled");
}

void ClassicFace::setFont(const QFont &font)
{
    m_font.write(font);
    written(Member::Font, "Font");
}

void ClassicFace::setMousePointer(int pointer)
{
    m_mousePointer.write(pointer);
    written(Member::MousePointer, "MousePointer");
}

void ClassicFace::written(Member member, const char *name)
{
    if (m_applied) {
        m_applied(member);
    }
    Q_EMIT m_control.PropertyChanged(QString::fromLatin1(name));
    if (m_changed) {
        m_changed(member);
    }
}

} // namespace Kelocontrols
