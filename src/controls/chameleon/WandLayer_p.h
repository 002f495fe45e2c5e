#pragma once

#include <kelocontrols_export.h>

#include "WandFrame_p.h"

#include <QWidget>

#include <array>

namespace Kelocontrols {

/**
 * The layer of a surface on which the wand draws: a transparent widget that
 * covers the whole surface beneath all of the surface's other widgets.
 *
 * Qt paints a widget, then its children from the bottom up, so the layer
 * paints after the surface's own background, picture and paintEvent() and
 * before every child: the stars lie on the surface itself, and buttons,
 * text boxes and other controls of the surface cover them, as drawings made
 * with Line and Circle on a classic form lie beneath its controls. The layer
 * lets every mouse event through and takes no focus.
 *
 * It shows the current frame of each of the 21 wand elements; an erasing
 * frame removes an element's drawing without a trace, whatever lies beneath.
 * Frames drawn with the exclusive-or pen are combined with the surface's
 * pixels beneath them, so over a picture they show in inverted colours and
 * the picture survives.
 *
 * A layer keeps itself out of its surface's controls (see
 * ControlAccess::parentControls()) and goes back to the bottom when a
 * widget has been lowered beneath it.
 */
class KELOCONTROLS_TESTS_EXPORT WandLayer : public QWidget
{
    Q_OBJECT
public:
    static constexpr int Elements = 21;

    explicit WandLayer(QWidget *surface);

    /// Shows @p frame for @p element, or takes the element's drawing away for an erasing frame.
    void setFrame(int element, const WandFrame &frame);

    /// What @p element shows now (no strokes when nothing).
    const WandFrame &frame(int element) const { return m_frames.at(size_t(element)); }
    /// Whether no element shows anything.
    bool isBlank() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void keepAtBottom();

    std::array<WandFrame, Elements> m_frames;
};

} // namespace Kelocontrols
