#include "PicturePlacement_p.h"

namespace Kelocontrols::PicturePlacement {

namespace {

QList<QPointF> tiles(float formWidth, float formHeight, float pictureWidth, float pictureHeight)
{
    QList<QPointF> copies;
    if (!(pictureWidth > 0.0f) || !(pictureHeight > 0.0f)) {
        return copies;
    }
    for (float x = 0.0f; x <= formWidth; x += pictureWidth) {
        for (float y = 0.0f; y <= formHeight; y += pictureHeight) {
            copies.append(QPointF(x, y));
        }
    }
    return copies;
}

} // namespace

QList<QPointF> positions(int style, float formWidth, float formHeight, float pictureWidth, float pictureHeight)
{
    const float middle = (formWidth - pictureWidth) / 2.0f;
    const float right = formWidth - pictureWidth;
    const float bottom = formHeight - pictureHeight;
    const float centre = (formHeight - pictureHeight) / 2.0f;
    switch (keloPictureStyle(style)) {
    case keloPictureStyle::TopLeft:
        return {QPointF(0.0, 0.0)};
    case keloPictureStyle::TopMiddle:
        return {QPointF(middle, 0.0)};
    case keloPictureStyle::TopRight:
        return {QPointF(right, 0.0)};
    case keloPictureStyle::BottomLeft:
        return {QPointF(0.0, bottom)};
    case keloPictureStyle::BottomMiddle:
        return {QPointF(middle, bottom)};
    case keloPictureStyle::BottomRight:
        return {QPointF(right, bottom)};
    case keloPictureStyle::Center:
        return {QPointF(middle, centre)};
    case keloPictureStyle::Tiled:
        return tiles(formWidth, formHeight, pictureWidth, pictureHeight);
    case keloPictureStyle::None:
        break;
    }
    return {};
}

} // namespace Kelocontrols::PicturePlacement
