#include "ListBackground.h"

#include <QPainter>
#include <QRect>

namespace Kelocontrols {

void ListBackground::paint(QPainter &painter, const QRect &area) const
{
    if (picture.isNull()) {
        return;
    }
    if (alignment == Tile) {
        painter.drawTiledPixmap(area, picture);
        return;
    }
    const QSize size = picture.deviceIndependentSize().toSize();
    QPoint at = area.topLeft();
    switch (alignment) {
    case TopRight:
        at.setX(area.right() + 1 - size.width());
        break;
    case BottomLeft:
        at.setY(area.bottom() + 1 - size.height());
        break;
    case BottomRight:
        at = area.bottomRight() + QPoint(1, 1) - QPoint(size.width(), size.height());
        break;
    case Center:
        at = area.center() - QPoint(size.width() / 2, size.height() / 2);
        break;
    default:
        break;
    }
    painter.drawPixmap(at, picture);
}

} // namespace Kelocontrols
