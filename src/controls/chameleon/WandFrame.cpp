#include "WandFrame_p.h"

#include <algorithm>

namespace Kelocontrols {

QRectF WandStroke::bounds() const
{
    if (kind == Kind::Circle) {
        const double rx = radiusX();
        const double ry = radiusY();
        return QRectF(from.x() - rx, from.y() - ry, 2 * rx, 2 * ry).adjusted(-1, -1, 1, 1);
    }
    return QRectF(from, to).normalized().adjusted(-1, -1, 1, 1);
}

WandFrame::WandFrame(bool erasing, bool exclusiveOr)
    : erasing(erasing)
    , exclusiveOr(exclusiveOr)
{
}

void WandFrame::line(const QPointF &from, const QPointF &to, OleColor colour)
{
    WandStroke stroke;
    stroke.kind = WandStroke::Kind::Line;
    stroke.from = from;
    stroke.to = to;
    stroke.colour = colour;
    strokes.append(stroke);
}

void WandFrame::circle(const QPointF &centre, double radius, OleColor colour, double aspect)
{
    WandStroke stroke;
    stroke.kind = WandStroke::Kind::Circle;
    stroke.from = centre;
    stroke.to = centre;
    stroke.radius = radius;
    stroke.aspect = aspect;
    stroke.colour = colour;
    strokes.append(stroke);
}

QRectF WandFrame::bounds() const
{
    QRectF area;
    for (const WandStroke &stroke : strokes) {
        area = area.united(stroke.bounds());
    }
    return area;
}

int WandFrame::lineCount() const
{
    return int(std::count_if(
        strokes.cbegin(), strokes.cend(), [](const WandStroke &s) { return s.kind == WandStroke::Kind::Line; }));
}

int WandFrame::circleCount() const
{
    return int(strokes.size()) - lineCount();
}

} // namespace Kelocontrols
