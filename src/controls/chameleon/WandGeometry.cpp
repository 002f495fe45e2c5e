#include "WandGeometry_p.h"

#include "Random.h"
#include "WandColors_p.h"
#include "WandElement_p.h"
#include "WandFrame_p.h"

#include <cmath>

namespace Kelocontrols::WandGeometry {

namespace {

double modTurn(double angle)
{
    const double turn = 2.0 * Pi;
    const double result = std::fmod(angle, turn);
    return result < 0.0 ? result + turn : result;
}

// The colour of a fading frame: the element's colour, a fraction
// (N − L) / N of the way to the background.
OleColor fadedColour(const WandElement &element, const WandDrawContext &context)
{
    const double n = element.initialLife;
    const double t = n != 0.0 ? (n - element.life) / n : 0.0;
    return WandColors::blend(element.colour, context.backColor, t);
}

void drawStar(const WandElement &e, OleColor colour, WandDrawSink &sink)
{
    const double l = e.life;
    const double half = l / 2.0;
    const QPointF topLeft(e.x - half, e.y - half);
    const QPointF topRight(e.x + half, e.y - half);
    sink.line(topLeft, topLeft + QPointF(l, l), colour);
    sink.line(topRight, topRight + QPointF(-l, l), colour);
    sink.line(QPointF(e.x, e.y - half), QPointF(e.x, e.y + half), colour);
    sink.line(QPointF(e.x - half, e.y), QPointF(e.x + half, e.y), colour);
}

void drawRipple(const WandElement &e, OleColor colour, WandDrawSink &sink)
{
    const double radius = (e.initialLife + 1 - e.life) * 2.0;
    sink.circle(QPointF(e.x, e.y), radius, colour);
}

void drawAtom(const WandElement &e, OleColor orbitColour, OleColor electronColour, WandDrawSink &sink)
{
    sink.circle(QPointF(e.x, e.y), e.parameter2, orbitColour, e.parameter1);
    sink.circle(electronPosition(e, e.initialLife - e.life), ElectronRadius, electronColour);
}

void drawStarburst(const WandElement &e, OleColor colour, WandDrawSink &sink)
{
    const double outer = (e.initialLife + 3 - e.life) * 2.0;
    const double inner = outer - 6.0;
    const QPointF centre(e.x, e.y);
    const double limit = 2.0 * Pi;
    const double step = Pi / 10.0;
    // A floating-point loop counter, as the rays have always been counted.
    for (double angle = 0.0; angle <= limit; angle += step) {
        const QPointF direction(std::cos(angle), std::sin(angle));
        sink.line(centre + direction * inner, centre + direction * outer, colour);
    }
}

} // namespace

QPointF electronPosition(const WandElement &element, int ticks)
{
    const double angle = modTurn(ticks * (2.0 * Pi / ElectronTicksPerOrbit));
    const double radius = element.parameter2;
    const double aspect = element.parameter1;
    const double rx = aspect > 1.0 ? radius / aspect : radius;
    const double ry = aspect > 1.0 ? radius : radius * aspect;
    return QPointF(element.x + rx * std::cos(angle), element.y - ry * std::sin(angle));
}

void drawBolt(const QPointF &start, double angle, int depth, OleColor colour, WandDrawSink &sink)
{
    if (depth >= BoltDepthLimit) {
        return;
    }
    const double length = double(Rnd()) * 10.0 + 10.0;
    for (int k = 1; k <= depth; ++k) {
        const double turned = modTurn(angle + (double(Rnd()) - 0.5) * 3.0);
        const QPointF end(start.x() + length * std::sin(turned), start.y() + length * std::cos(turned));
        sink.line(start, end, colour);
        drawBolt(end, turned, depth + 1, colour, sink);
    }
}

void drawFrame(const WandElement &element, bool erasing, const WandDrawContext &context, WandDrawSink &sink)
{
    // Over a plain background an erasing frame overdraws the last one in the
    // background colour; over a picture the exclusive-or pen needs the very
    // same colours again.
    const bool inBackColour = erasing && !context.pictureMode;
    const auto colourOr = [&](OleColor drawn) { return inBackColour ? context.backColor : drawn; };
    switch (element.style) {
    case keloWandStyle::Stars:
        drawStar(element, colourOr(element.colour), sink);
        break;
    case keloWandStyle::Ripples:
        drawRipple(element, colourOr(fadedColour(element, context)), sink);
        break;
    case keloWandStyle::Atom:
        drawAtom(element, colourOr(WandColors::greyByContrast(context.backColor)), colourOr(element.colour), sink);
        break;
    case keloWandStyle::Starburst:
        drawStarburst(element, colourOr(fadedColour(element, context)), sink);
        break;
    case keloWandStyle::Lightning:
        drawBolt(QPointF(element.x, element.y), element.parameter1, 1, colourOr(element.colour), sink);
        break;
    case keloWandStyle::None:
        break;
    }
}

} // namespace Kelocontrols::WandGeometry
