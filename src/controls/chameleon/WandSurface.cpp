#include "WandSurface_p.h"

#include "ControlAccess_p.h"
#include "Conversions.h"
#include "RuntimeError.h"
#include "WandColors_p.h"

#include <QWidget>

namespace Kelocontrols::WandSurface {

namespace {

constexpr char ScaleModeName[] = "ScaleMode";
constexpr char DrawStyleName[] = "DrawStyle";
constexpr char DrawModeName[] = "DrawMode";
constexpr char DrawWidthName[] = "DrawWidth";
constexpr char ScaleLeftName[] = "ScaleLeft";
constexpr char ScaleTopName[] = "ScaleTop";
constexpr char ScaleWidthName[] = "ScaleWidth";
constexpr char ScaleHeightName[] = "ScaleHeight";

const QObject &require(const QObject *surface)
{
    if (!surface) {
        throw RuntimeError(
            ControlAccess::ObjectVariableNotSet, QStringLiteral("Object variable or With block variable not set"));
    }
    return *surface;
}

[[noreturn]] void raiseMissingMember()
{
    throw RuntimeError(
        ControlAccess::ObjectDoesNotSupportMember, QStringLiteral("Object doesn't support this property or method"));
}

// Twips in one unit of a fixed scale, across and down; 0 for the user scale.
QPointF twipsPerUnit(int mode)
{
    switch (mode) {
    case Twips:
        return QPointF(1, 1);
    case 2:
        return QPointF(20, 20);
    case 4:
        return QPointF(120, 240);
    case 5:
        return QPointF(1440, 1440);
    case 6:
        return QPointF(1440 / 25.4, 1440 / 25.4);
    case 7:
        return QPointF(1440 / 2.54, 1440 / 2.54);
    case UserScale:
        return QPointF(0, 0);
    default:
        return QPointF(TwipsPerPixel, TwipsPerPixel);
    }
}

double numberProperty(const QObject &surface, const char *name, double fallback)
{
    return ControlAccess::hasMember(&surface, name) ? CDbl(surface.property(name)) : fallback;
}

// The user scale: the surface's ScaleLeft / ScaleTop at its top-left corner
// and ScaleWidth / ScaleHeight across its whole size.
struct UserScaleFrame
{
    QPointF origin;
    QPointF unitsPerPixel;
};

UserScaleFrame userScale(const QObject &surface)
{
    QSizeF pixels(1, 1);
    if (surface.isWidgetType()) {
        pixels = static_cast<const QWidget &>(surface).size();
    }
    const double width = numberProperty(surface, ScaleWidthName, pixels.width());
    const double height = numberProperty(surface, ScaleHeightName, pixels.height());
    UserScaleFrame frame;
    frame.origin = QPointF(numberProperty(surface, ScaleLeftName, 0), numberProperty(surface, ScaleTopName, 0));
    frame.unitsPerPixel = QPointF(pixels.width() > 0 && width != 0 ? width / pixels.width() : 1.0,
        pixels.height() > 0 && height != 0 ? height / pixels.height() : 1.0);
    return frame;
}

void setIfPresent(QObject &surface, const char *name, const QVariant &value)
{
    if (value.isValid() && ControlAccess::hasMember(&surface, name)) {
        surface.setProperty(name, value);
    }
}

QVariant swap(QObject &surface, const char *name, int value)
{
    if (!ControlAccess::hasMember(&surface, name)) {
        return QVariant();
    }
    const QVariant saved = surface.property(name);
    surface.setProperty(name, value);
    return saved;
}

} // namespace

int scaleMode(const QObject *surface)
{
    const QObject &object = require(surface);
    if (ControlAccess::hasMember(&object, ScaleModeName)) {
        return CInt(object.property(ScaleModeName));
    }
    if (!object.isWidgetType()) {
        raiseMissingMember();
    }
    return Pixels;
}

QPointF toPixels(const QObject *surface, const QPointF &position)
{
    const int mode = scaleMode(surface);
    if (mode == Pixels) {
        return position;
    }
    if (mode == UserScale) {
        const UserScaleFrame frame = userScale(*surface);
        const QPointF offset = position - frame.origin;
        return QPointF(offset.x() / frame.unitsPerPixel.x(), offset.y() / frame.unitsPerPixel.y());
    }
    const QPointF twips = twipsPerUnit(mode);
    return QPointF(float(position.x() * twips.x() / TwipsPerPixel), float(position.y() * twips.y() / TwipsPerPixel));
}

QPointF fromPixels(const QObject *surface, const QPointF &pixels)
{
    const int mode = scaleMode(surface);
    if (mode == Pixels) {
        return pixels;
    }
    if (mode == UserScale) {
        const UserScaleFrame frame = userScale(*surface);
        return QPointF(pixels.x() * frame.unitsPerPixel.x(), pixels.y() * frame.unitsPerPixel.y()) + frame.origin;
    }
    const QPointF twips = twipsPerUnit(mode);
    return QPointF(pixels.x() * TwipsPerPixel / twips.x(), pixels.y() * TwipsPerPixel / twips.y());
}

OleColor backColor(const QObject *surface)
{
    return WandColors::toRgb(ControlAccess::backColor(&require(surface)));
}

bool exists(const QObject *surface)
{
    return surface != nullptr;
}

DrawState prepare(QObject *surface, bool pictureMode)
{
    QObject &object = const_cast<QObject &>(require(surface));
    DrawState saved;
    saved.drawStyle = swap(object, DrawStyleName, SolidDrawStyle);
    saved.drawMode = swap(object, DrawModeName, pictureMode ? XorPenDrawMode : CopyPenDrawMode);
    saved.scaleMode = swap(object, ScaleModeName, Pixels);
    saved.drawWidth = swap(object, DrawWidthName, 1);
    if (!object.isWidgetType() && !saved.drawStyle.isValid() && !saved.drawMode.isValid() && !saved.scaleMode.isValid()
        && !saved.drawWidth.isValid()) {
        raiseMissingMember();
    }
    return saved;
}

void restore(QObject *surface, const DrawState &state)
{
    QObject &object = const_cast<QObject &>(require(surface));
    setIfPresent(object, DrawStyleName, state.drawStyle);
    setIfPresent(object, DrawModeName, state.drawMode);
    setIfPresent(object, ScaleModeName, state.scaleMode);
    setIfPresent(object, DrawWidthName, state.drawWidth);
}

} // namespace Kelocontrols::WandSurface
