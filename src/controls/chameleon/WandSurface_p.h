#pragma once

#include "OleColor.h"

#include <QPointF>
#include <QVariant>

class QObject;

namespace Kelocontrols {

/**
 * Late-bound access to the surface a wand is drawn on (the `MyControl`
 * handed to WandMovement): a form, a picture box, any widget.
 *
 * A surface may expose a `ScaleMode` property giving the unit of the mouse
 * positions it reports, as classic forms did:
 *
 * | ScaleMode | unit        | twips per unit         |
 * |-----------|-------------|------------------------|
 * | 0         | user        | from ScaleLeft, ScaleTop, ScaleWidth, ScaleHeight |
 * | 1         | twips       | 1                      |
 * | 2         | points      | 20                     |
 * | 3         | pixels      | 15                     |
 * | 4         | characters  | 120 across, 240 down   |
 * | 5         | inches      | 1440                   |
 * | 6         | millimetres | 1440 / 25.4            |
 * | 7         | centimetres | 1440 / 2.54            |
 *
 * with 15 twips to a pixel. A widget without the property counts in
 * pixels. A surface may also expose `DrawStyle`, `DrawMode` and `DrawWidth`;
 * prepare() sets them, and ScaleMode, for drawing and restore() puts them
 * back. An object that is not a widget and has none of these cannot be drawn
 * on: asking raises RuntimeError 438.
 */
namespace WandSurface {

constexpr int UserScale = 0;
constexpr int Twips = 1;
constexpr int Pixels = 3;
constexpr int TwipsPerPixel = 15;
/// The solid pen (DrawStyle 0).
constexpr int SolidDrawStyle = 0;
/// The exclusive-or pen (DrawMode 7), used over pictures.
constexpr int XorPenDrawMode = 7;
/// The copy pen (DrawMode 13), used over plain backgrounds.
constexpr int CopyPenDrawMode = 13;

/// The surface's ScaleMode (3 for a widget without one). @throws RuntimeError 91, 438
int scaleMode(const QObject *surface);

/// A position in the surface's own scale converted to pixels. @throws RuntimeError 91, 438
QPointF toPixels(const QObject *surface, const QPointF &position);

/// A position in pixels converted to the surface's own scale. @throws RuntimeError 91, 438
QPointF fromPixels(const QObject *surface, const QPointF &pixels);

/// The surface's background colour, system colours translated. @throws RuntimeError 91, 438
OleColor backColor(const QObject *surface);

/// Whether the surface still exists.
bool exists(const QObject *surface);

/// The drawing settings of a surface, saved by prepare().
struct DrawState
{
    QVariant drawStyle;
    QVariant drawMode;
    QVariant scaleMode;
    QVariant drawWidth;
};

/**
 * Sets the surface up for wand drawing: solid pen, exclusive-or pen over a
 * picture and copy pen otherwise, pixels, width 1, as far as the surface has
 * these settings. Returns the settings it had. @throws RuntimeError 91, 438
 */
DrawState prepare(QObject *surface, bool pictureMode);

/// Puts back the settings prepare() saved. @throws RuntimeError 91
void restore(QObject *surface, const DrawState &state);

} // namespace WandSurface

} // namespace Kelocontrols
