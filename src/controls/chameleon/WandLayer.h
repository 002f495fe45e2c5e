#pragma once

#include "WandFrame.h"

#include <QWidget>

#include <array>

namespace Kelocontrols {

/**
 * A transparent widget laid over a surface on which the wand draws.
 *
 * It covers the whole surface, stays above the surface's other widgets and
 * lets every mouse event through, so the surface and its widgets work and
 * paint as if it were not there. It shows the current frame of each of the
 * 21 wand elements; an erasing frame removes an element's drawing without a
 * trace, whatever lies beneath. Frames drawn with the exclusive-or pen are
 * combined with what lies beneath them pixel by pixel, so over a picture
 * they show in inverted colours.
 *
 * An overlay keeps itself out of its surface's controls (see
 * ControlAccess::parentControls()).
 */
class WandOverlay : public QWidget
{
    Q_OBJECT
public:
    static constexpr int Elements = 21;

    explicit WandOverlay(QWidget *surface);

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
    void keepOnTop();

    std::array<WandFrame, Elements> m_frames;
};

} // namespace Kelocontrols
