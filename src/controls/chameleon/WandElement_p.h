#pragma once

#include "KeloEnums.h"
#include "OleColor.h"

#include <QObject>
#include <QPointer>

namespace Kelocontrols {

/**
 * One particle of the wand animation: what it is drawn on, where, in which
 * colour and style, and how many timer ticks it has left.
 *
 * An element whose life is below 1 is free. The two parameters are
 * style-specific: an atom's orbit aspect (parameter 1, 0.125 to 3.375) and
 * radius in pixels (parameter 2, 20 to 40); a lightning bolt's start angle
 * (parameter 1, radians) and a second random number (parameter 2).
 */
struct WandElement
{
    /// The surface drawn on; null once it has been destroyed.
    QPointer<QObject> surface;
    /// Ticks left; the element is free below 1.
    qint16 life = 0;
    /// Life at start, for fading and growing.
    qint16 initialLife = 0;
    /// Position in pixels of the surface (for the template: in the surface's own scale).
    float x = 0.0f;
    float y = 0.0f;
    OleColor colour = 0;
    /// Not used by any style; kept so an element holds what it always held.
    qint32 reserved = 0;
    keloWandStyle style = keloWandStyle::None;
    double parameter1 = 0.0;
    float parameter2 = 0.0f;

    bool isActive() const { return life >= 1; }
};

} // namespace Kelocontrols
