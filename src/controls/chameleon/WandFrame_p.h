#pragma once

#include <kelocontrols_export.h>

#include "OleColor.h"

#include <QList>
#include <QPointF>
#include <QRectF>

namespace Kelocontrols {

/**
 * Where the wand draws: lines and circles in pixels of a surface.
 *
 * The geometry of the animation talks only to this interface, so it can be
 * drawn on a screen or recorded and checked without one.
 */
class KELOCONTROLS_TESTS_EXPORT WandDrawSink
{
public:
    virtual ~WandDrawSink() = default;
    /// A one-pixel line from @p from to @p to.
    virtual void line(const QPointF &from, const QPointF &to, OleColor colour) = 0;
    /**
     * A circle or ellipse around @p centre, in the classic sense: @p aspect
     * is the ratio of the vertical to the horizontal radius, and @p radius
     * is the horizontal radius when aspect ≤ 1, the vertical one otherwise.
     */
    virtual void circle(const QPointF &centre, double radius, OleColor colour, double aspect = 1.0) = 0;
};

/// One line or circle of a wand frame.
struct WandStroke
{
    enum class Kind { Line, Circle };

    Kind kind = Kind::Line;
    /// The start of a line, or the centre of a circle.
    QPointF from;
    /// The end of a line.
    QPointF to;
    double radius = 0.0;
    double aspect = 1.0;
    OleColor colour = 0;

    /// A circle's horizontal and vertical radii.
    double radiusX() const { return aspect > 1.0 ? radius / aspect : radius; }
    double radiusY() const { return aspect > 1.0 ? radius : radius * aspect; }
    /// The pixels the stroke may touch.
    QRectF bounds() const;

    bool operator==(const WandStroke &other) const = default;
};

/**
 * What one element draws in one step: its strokes, whether the step erases
 * the element's previous frame, and whether it is drawn with the
 * exclusive-or pen (over pictures) or the copy pen.
 *
 * WandFrame is itself a sink, so a frame is recorded by drawing into it.
 */
class KELOCONTROLS_TESTS_EXPORT WandFrame : public WandDrawSink
{
public:
    WandFrame() = default;
    WandFrame(bool erasing, bool exclusiveOr);

    void line(const QPointF &from, const QPointF &to, OleColor colour) override;
    void circle(const QPointF &centre, double radius, OleColor colour, double aspect = 1.0) override;

    bool erasing = false;
    bool exclusiveOr = false;
    QList<WandStroke> strokes;

    /// The pixels the frame may touch (an empty rectangle for no strokes).
    QRectF bounds() const;
    int lineCount() const;
    int circleCount() const;
};

} // namespace Kelocontrols
