#pragma once

#include <kelocontrols_export.h>

#include "OleColor.h"

namespace Kelocontrols {

/**
 * The colour arithmetic of the wand, kept exactly as the animation has
 * always computed it.
 */
namespace WandColors {

/// Light grey, drawn over backgrounds brighter than 192.
constexpr OleColor LightGrey = 0x00C0C0C0u;
/// Grey, drawn over every other background.
constexpr OleColor Grey = 0x00808080u;

/// The red, green and blue parts of a colour.
struct Channels
{
    int red = 0;
    int green = 0;
    int blue = 0;
};

/// A system colour translated through the application palette; any other colour as it is.
KELOCONTROLS_TESTS_EXPORT OleColor toRgb(OleColor colour);

/**
 * The channels of a plain colour c: red = c And 255, green = (c / 256) And
 * 255, blue = (c / 65536) And 255, where the quotients are exact and the And
 * first rounds them half to even. A green or blue byte thus takes a carry
 * from a red or green byte of 128 and more: the green of 0x0000FF80 is 0.
 */
KELOCONTROLS_TESTS_EXPORT Channels channels(OleColor colour);

/// (red + green + blue) / 3 rounded half to even.
KELOCONTROLS_TESTS_EXPORT int brightness(OleColor colour);

/**
 * The colour a fraction @p t of the way from @p from to @p to: t is clamped
 * to 0..1 and each channel is round((to − from) × t + from), half to even.
 */
KELOCONTROLS_TESTS_EXPORT OleColor blend(OleColor from, OleColor to, double t);

/// Light grey on a background brighter than 192, grey on any other.
KELOCONTROLS_TESTS_EXPORT OleColor greyByContrast(OleColor backColor);

} // namespace WandColors

} // namespace Kelocontrols
