#pragma once

#include "ClassicFace.h"
#include "OleColor.h"
#include "StockEventFilter.h"

#include <QFont>
#include <QObject>
#include <QPalette>

#include <functional>

class QWidget;

namespace Kelocontrols {

class ControlBase;

/**
 * The implementation of the shared members of ClassicFace.h, held by each
 * control's private data; the control's accessors forward to it
 * (KELO_CLASSIC_FORWARD).
 *
 * A write applies the value where the control keeps it, runs the control's
 * applied() step, emits PropertyChanged with the member's exact name and
 * then runs the control's changed() step (its visible update). The store*()
 * functions only apply the value: the property tables load and initialise
 * through them, without PropertyChanged.
 *
 * Where a member lives is set up once, in the control's constructor:
 * - Enabled is the control's own setting unless keepEnabledOn() names an
 *   inner widget (the file view's list), whose effective state it then is.
 * - BackColor and ForeColor live on a surface that keeps OLE colours itself
 *   (keepColorsOn(): a PictureBox, a ListView), or are kept here and painted
 *   into an inner widget's palette (paintColorsInto(): the list box).
 * - Font is an inner widget's font (keepFontOn()).
 * - MousePointer lives on a surface with mousePointer() / setMousePointer().
 * A member the control does not publish is never set up nor called.
 */
class ClassicFace
{
public:
    enum class Member { BackColor, ForeColor, Enabled, Font, MousePointer };
    using Step = std::function<void(Member)>;

    explicit ClassicFace(ControlBase &control);

    ClassicFace(const ClassicFace &) = delete;
    ClassicFace &operator=(const ClassicFace &) = delete;

    template<class Surface>
    void keepColorsOn(Surface *surface)
    {
        m_backColor = {[surface] { return surface->backColor(); }, [surface](OleColor c) { surface->setBackColor(c); }};
        m_foreColor = {[surface] { return surface->foreColor(); }, [surface](OleColor c) { surface->setForeColor(c); }};
    }
    /// Keeps the colours here, starting from `back` and `fore`, and paints
    /// them into `widget`'s palette as the roles `backRole` and `foreRole`.
    void paintColorsInto(
        QWidget *widget, QPalette::ColorRole backRole, QPalette::ColorRole foreRole, OleColor back, OleColor fore);
    /// Paints the kept colours again (system colours follow a new palette).
    void repaintColors();
    void keepEnabledOn(QWidget *widget);
    void keepFontOn(QWidget *widget);
    template<class Surface>
    void keepMousePointerOn(Surface *surface)
    {
        m_mousePointer
            = {[surface] { return surface->mousePointer(); }, [surface](int p) { surface->setMousePointer(p); }};
    }

    /// Runs after a write has applied its value, before PropertyChanged.
    void setAppliedStep(Step step) { m_applied = std::move(step); }
    /// Runs after a write's PropertyChanged.
    void setChangedStep(Step step) { m_changed = std::move(step); }

    OleColor backColor() const { return m_backColor.read(); }
    void setBackColor(OleColor color);
    void storeBackColor(OleColor color) { m_backColor.write(color); }

    OleColor foreColor() const { return m_foreColor.read(); }
    void setForeColor(OleColor color);
    void storeForeColor(OleColor color) { m_foreColor.write(color); }

    bool enabled() const { return m_enabled.read(); }
    void setEnabled(bool enabled);
    void storeEnabled(bool enabled) { m_enabled.write(enabled); }

    QFont font() const { return m_font.read(); }
    void setFont(const QFont &font);
    void storeFont(const QFont &font) { m_font.write(font); }

    int mousePointer() const { return m_mousePointer.read(); }
    void setMousePointer(int pointer);
    void storeMousePointer(int pointer) { m_mousePointer.write(pointer); }

private:
    template<class T>
    struct Place
    {
        std::function<T()> read;
        std::function<void(const T &)> write;
    };

    void written(Member member, const char *name);

    ControlBase &m_control;
    Place<OleColor> m_backColor;
    Place<OleColor> m_foreColor;
    Place<bool> m_enabled;
    Place<QFont> m_font;
    Place<int> m_mousePointer;
    Step m_applied;
    Step m_changed;

    // The colours kept here by paintColorsInto().
    QWidget *m_paletteWidget = nullptr;
    QPalette::ColorRole m_backRole = QPalette::Base;
    QPalette::ColorRole m_foreRole = QPalette::Text;
    OleColor m_back = 0;
    OleColor m_fore = 0;
};

/// Re-raises the key events of `from` as the same events of `control`.
template<class Control>
void forwardKeyEvents(const StockEventFilter *from, Control *control)
{
    QObject::connect(from, &StockEventFilter::KeyDown, control, &Control::KeyDown);
    QObject::connect(from, &StockEventFilter::KeyPress, control, &Control::KeyPress);
    QObject::connect(from, &StockEventFilter::KeyUp, control, &Control::KeyUp);
}

/// Re-raises Click, DblClick and the mouse events of `from` as the same events of `control`.
template<class Control>
void forwardMouseEvents(const StockEventFilter *from, Control *control)
{
    QObject::connect(from, &StockEventFilter::Click, control, &Control::Click);
    QObject::connect(from, &StockEventFilter::DblClick, control, &Control::DblClick);
    QObject::connect(from, &StockEventFilter::MouseDown, control, &Control::MouseDown);
    QObject::connect(from, &StockEventFilter::MouseMove, control, &Control::MouseMove);
    QObject::connect(from, &StockEventFilter::MouseUp, control, &Control::MouseUp);
}

} // namespace Kelocontrols

/// Defines `Class`'s accessors of the shared member `Name` as calls of the
/// ClassicFace `face` (an expression valid in a member function: d->face).
#define KELO_CLASSIC_FORWARD(Class, Name, face) KELO_CLASSIC_FORWARD_##Name(Class, face)

#define KELO_CLASSIC_FORWARD_BackColor(Class, face)                                                                    \
    Kelocontrols::OleColor Class::BackColor() const                                                                    \
    {                                                                                                                  \
        return face.backColor();                                                                                       \
    }                                                                                                                  \
    void Class::setBackColor(Kelocontrols::OleColor color)                                                             \
    {                                                                                                                  \
        face.setBackColor(color);                                                                                      \
    }
#define KELO_CLASSIC_FORWARD_ForeColor(Class, face)                                                                    \
    Kelocontrols::OleColor Class::ForeColor() const                                                                    \
    {                                                                                                                  \
        return face.foreColor();                                                                                       \
    }                                                                                                                  \
    void Class::setForeColor(Kelocontrols::OleColor color)                                                             \
    {                                                                                                                  \
        face.setForeColor(color);                                                                                      \
    }
#define KELO_CLASSIC_FORWARD_Enabled(Class, face)                                                                      \
    bool Class::Enabled() const                                                                                        \
    {                                                                                                                  \
        return face.enabled();                                                                                         \
    }                                                                                                                  \
    void Class::setEnabled(bool enabled)                                                                               \
    {                                                                                                                  \
        face.setEnabled(enabled);                                                                                      \
    }
#define KELO_CLASSIC_FORWARD_Font(Class, face)                                                                         \
    QFont Class::Font() const                                                                                          \
    {                                                                                                                  \
        return face.font();                                                                                            \
    }                                                                                                                  \
    void Class::setFont(const QFont &font)                                                                             \
    {                                                                                                                  \
        face.setFont(font);                                                                                            \
    }
#define KELO_CLASSIC_FORWARD_MousePointer(Class, face)                                                                 \
    int Class::MousePointer() const                                                                                    \
    {                                                                                                                  \
        return face.mousePointer();                                                                                    \
    }                                                                                                                  \
    void Class::setMousePointer(int pointer)                                                                           \
    {                                                                                                                  \
        face.setMousePointer(pointer);                                                                                 \
    }
