#pragma once

#include <kelocontrols_export.h>

#include "KeloEnums.h"

#include <QList>
#include <QPointF>

namespace Kelocontrols {

/**
 * Where the chameleon paints its background picture on a form.
 *
 * Sizes and positions are in twips (15 to a pixel), as single-precision
 * numbers: W × H is the form's inner size, w × h the picture's.
 *
 * | style          | x           | y           |
 * |----------------|-------------|-------------|
 * | TopLeft        | 0           | 0           |
 * | TopMiddle      | (W − w) / 2 | 0           |
 * | TopRight       | W − w       | 0           |
 * | BottomLeft     | 0           | H − h       |
 * | BottomMiddle   | (W − w) / 2 | H − h       |
 * | BottomRight    | W − w       | H − h       |
 * | Center         | (W − w) / 2 | (H − h) / 2 |
 *
 * A picture larger than the form gets negative offsets and is cut. `Tiled`
 * covers the form column by column: x = 0, w, 2w … while x ≤ W and, in each
 * column, y = 0, h, 2h … while y ≤ H, so the last column and row overhang
 * the edge. `None` and unknown styles place nothing.
 */
namespace PicturePlacement {

/// Twips in one pixel.
constexpr int TwipsPerPixel = 15;

/**
 * The top-left corners of the copies to paint, in painting order.
 * A tiled picture with no width or height places nothing.
 */
KELOCONTROLS_TESTS_EXPORT QList<QPointF> positions(
    int style, float formWidth, float formHeight, float pictureWidth, float pictureHeight);

} // namespace PicturePlacement

} // namespace Kelocontrols
