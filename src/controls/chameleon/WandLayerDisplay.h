#pragma once

#include "WandDisplay.h"

#include <QHash>
#include <QPointer>

class QWidget;

namespace Kelocontrols {

class WandOverlay;

/**
 * Shows wand frames on real widgets, each surface through a WandOverlay of
 * its own, made when the first frame is drawn on it. Surfaces that are not
 * widgets cannot be drawn on (RuntimeError 438).
 */
class WandOverlayDisplay : public WandDisplay
{
public:
    /// The display of the process's shared wand.
    static WandOverlayDisplay &instance();

    void showFrame(QObject *surface, int element, const WandFrame &frame) override;

    /// The overlay on @p surface, if a frame has been drawn on it.
    WandOverlay *overlayOf(const QWidget *surface) const;

private:
    QHash<const QObject *, QPointer<WandOverlay>> m_overlays;
};

} // namespace Kelocontrols
