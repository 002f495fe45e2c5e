#pragma once

#include <kelocontrols_export.h>

#include <QImage>
#include <QString>

namespace Kelocontrols {

class ImageList;

/**
 * The score card's own pictures, painted in code so they stay sharp at both
 * sizes: three families ("ScoreCard", "Smiley", "Traffic"), five grades each
 * from 1 (worst) to 5 (best).
 *
 * - ScoreCard: a school report card with the letter E, D, C, B or A on a
 *   red, orange, yellow, light green or green card.
 * - Smiley: a face from a deep frown (red) to a broad smile (green).
 * - Traffic: a signal with red; red and amber; amber; amber and green; green.
 *
 * Internal, yet exported in every build: the Designer plugin paints its
 * toolbox icons with it.
 */
namespace ScoreCardArtwork {

/// The family words of the picture styles, as used in the image keys.
KELOCONTROLS_EXPORT QString familyOf(int style);

/// Paints one picture; `size` is the edge length in pixels (16 and 32 are used).
KELOCONTROLS_EXPORT QImage paint(const QString &family, int grade, int size);

/// Fills an image list with all fifteen pictures under their keys
/// ("ScoreCard1" .. "ScoreCard5", "Smiley1" .. "Smiley5", "Traffic1" .. "Traffic5").
KELOCONTROLS_EXPORT void fill(ImageList &list);

} // namespace ScoreCardArtwork
} // namespace Kelocontrols
