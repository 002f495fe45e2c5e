#pragma once

#include <kelocontrols_export.h>

#include <QPixmap>

class QPainter;
class QRect;

namespace Kelocontrols {

/**
 * The background picture of a ListView and where it sits:
 * 0 top left, 1 top right, 2 bottom left, 3 bottom right, 4 centre, 5 tiled.
 */
struct KELOCONTROLS_EXPORT ListBackground
{
    QPixmap picture;
    int alignment = 0;

    static constexpr int TopLeft = 0;
    static constexpr int TopRight = 1;
    static constexpr int BottomLeft = 2;
    static constexpr int BottomRight = 3;
    static constexpr int Center = 4;
    static constexpr int Tile = 5;

    static bool isValidAlignment(int alignment) { return alignment >= TopLeft && alignment <= Tile; }

    /// Draws the picture into @p area (nothing when there is none).
    void paint(QPainter &painter, const QRect &area) const;
};

} // namespace Kelocontrols
