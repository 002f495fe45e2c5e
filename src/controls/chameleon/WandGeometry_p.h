#pragma once

#include <kelocontrols_export.h>

#include "OleColor.h"

#include <QPointF>

namespace Kelocontrols {

class WandDrawSink;
struct WandElement;

/// What a frame needs to know of the surface it is drawn on.
struct WandDrawContext
{
    /// The surface shows a picture: frames are drawn with the exclusive-or pen.
    bool pictureMode = false;
    /// The surface's background colour, system colours already translated.
    OleColor backColor = 0;
};

/**
 * The shapes of the wand animation, frame by frame, with L the element's
 * life and N its initial life (all sizes in pixels):
 *
 * - Stars: four strokes through (x, y) inside an L × L square: its two
 *   diagonals, then the vertical and the horizontal stroke, each L long.
 * - Ripples: a circle of radius (N + 1 − L) × 2 in the element's colour
 *   faded toward the background by (N − L) / N.
 * - Atom: the orbit, an ellipse of radius parameter 2 and aspect
 *   parameter 1 in grey by contrast, and an electron, a circle of radius
 *   ElectronRadius in the element's colour, that goes once round the orbit
 *   every ElectronTicksPerOrbit ticks.
 * - Starburst: rays every π / 10 for angles 0 to 2π, each from radius
 *   r − 6 to r, r = (N + 3 − L) × 2, faded like ripples.
 * - Lightning: a branching bolt from (x, y), see drawBolt().
 *
 * An erasing frame over a plain background is drawn in the background
 * colour; over a picture (the exclusive-or pen) erasing draws the same
 * colours again, which removes the first drawing.
 */
namespace WandGeometry {

/// π as the animation has always written it.
constexpr double Pi = 3.14159265358979;
/// The lightning's full turn, 2π as the animation has always written it.
constexpr double FullTurn = 6.28318530717958;
/// The radius of an atom's electron.
constexpr double ElectronRadius = 2.0;
/// Ticks an electron takes to go once round its orbit.
constexpr int ElectronTicksPerOrbit = 10;
/// The depth at which a bolt stops branching.
constexpr int BoltDepthLimit = 5;

/// Draws one frame of @p element into @p sink.
KELOCONTROLS_TESTS_EXPORT void drawFrame(
    const WandElement &element, bool erasing, const WandDrawContext &context, WandDrawSink &sink);

/**
 * A bolt of lightning: unless @p depth has reached BoltDepthLimit, one
 * length of Rnd × 10 + 10 pixels is drawn, then, depth times, a segment of
 * that length from @p start in a new direction (the angle turned by
 * (Rnd − 0.5) × 3, modulo 2π, with the end at (x + length × sin, y +
 * length × cos)), each followed by a bolt one level deeper from its end.
 * From depth 1 a bolt has 1 + 2 + 6 + 24 = 33 segments.
 */
KELOCONTROLS_TESTS_EXPORT void drawBolt(
    const QPointF &start, double angle, int depth, OleColor colour, WandDrawSink &sink);

/// Where an atom's electron is after @p ticks ticks of its life.
KELOCONTROLS_TESTS_EXPORT QPointF electronPosition(const WandElement &element, int ticks);

} // namespace WandGeometry

} // namespace Kelocontrols
