#include "WandPool_p.h"

#include "Conversions.h"
#include "Random.h"
#include "RuntimeError.h"
#include "WandColors_p.h"
#include "WandDisplay_p.h"
#include "WandFrame_p.h"
#include "WandGeometry_p.h"
#include "WandLayerDisplay_p.h"
#include "WandSurface_p.h"

#include <cmath>
#include <exception>

namespace Kelocontrols {

namespace {

constexpr qint16 StarsLife = 6;
constexpr qint16 RipplesLife = 40;
constexpr qint16 AtomLife = 20;
constexpr qint16 StarburstLife = 20;
constexpr qint16 LightningLife = 1;
constexpr OleColor White = 0x00FFFFFFu;

// True one time in n on average.
bool chance(int n)
{
    return double(Rnd()) < 1.0 / n;
}

OleColor classicColour()
{
    return QBColor(CInt(double(Rnd()) * 15.0));
}

float scattered(float position)
{
    return float(double(position) + double(Rnd()) * 40.0 - 20.0);
}

// Runs one statement of the animation; a failure ends that statement only.
template<typename Statement>
void ignoringErrors(Statement statement)
{
    try {
        statement();
    } catch (const std::exception &) {
    }
}

} // namespace

WandPool::WandPool(WandDisplay *display)
    : m_display(display)
{
}

WandPool &WandPool::shared()
{
    static WandPool pool(&WandLayerDisplay::instance());
    return pool;
}

WandDisplay *WandPool::setDisplay(WandDisplay *display)
{
    WandDisplay *previous = m_display;
    m_display = display;
    return previous;
}

int WandPool::activeCount() const
{
    int active = 0;
    for (const WandElement &element : m_elements) {
        active += element.isActive() ? 1 : 0;
    }
    return active;
}

void WandPool::movement(QObject *surface, float x, float y, keloWandStyle style)
{
    m_template.surface = surface;
    m_template.x = x;
    m_template.y = y;
    m_template.style = style;
    if (style == keloWandStyle::None || !m_mayStart) {
        return;
    }
    int active = 0;
    int freeIndex = -1;
    for (int i = 0; i < Size; ++i) {
        if (m_elements[size_t(i)].isActive()) {
            ++active;
        } else {
            freeIndex = i;
        }
    }
    if (freeIndex >= 0) {
        if (style != keloWandStyle::Atom) {
            start(freeIndex);
        } else if (active < AtomLimit && chance(2)) {
            start(freeIndex);
        }
    }
    m_mayStart = false;
}

void WandPool::startElement(int index, QObject *surface, float x, float y, keloWandStyle style)
{
    if (index < 0 || index >= Size) {
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange);
    }
    m_template.surface = surface;
    m_template.x = x;
    m_template.y = y;
    m_template.style = style;
    start(index);
}

void WandPool::start(int index)
{
    WandElement &e = m_elements[size_t(index)];
    e = m_template;
    e.life = 0;
    e.initialLife = 0;
    const QPointF pixels = WandSurface::toPixels(e.surface, QPointF(e.x, e.y));
    e.x = float(pixels.x());
    e.y = float(pixels.y());
    switch (e.style) {
    case keloWandStyle::Stars:
        e.x = scattered(e.x);
        e.y = scattered(e.y);
        e.colour = classicColour();
        e.life = StarsLife;
        break;
    case keloWandStyle::Ripples:
        e.colour = WandColors::greyByContrast(WandSurface::backColor(e.surface));
        e.life = RipplesLife;
        break;
    case keloWandStyle::Atom:
        e.colour = classicColour();
        e.life = AtomLife;
        e.parameter1 = std::pow(double(Rnd()) + 0.5, 3.0);
        e.parameter2 = float(double(Rnd()) * 20.0 + 20.0);
        break;
    case keloWandStyle::Starburst:
        e.colour = classicColour();
        e.life = StarburstLife;
        break;
    case keloWandStyle::Lightning:
        e.colour = White;
        e.life = LightningLife;
        e.parameter1 = double(Rnd()) * WandGeometry::FullTurn;
        Randomize();
        e.parameter2 = Rnd();
        break;
    case keloWandStyle::None:
        return;
    }
    e.initialLife = e.life;
    drawStep(index, false);
}

// One frame of one element, between preparing and restoring its surface.
void WandPool::drawStep(int index, bool erasing)
{
    QObject *surface = m_elements[size_t(index)].surface;
    const WandSurface::DrawState saved = WandSurface::prepare(surface, m_pictureMode);
    drawFrame(index, erasing);
    WandSurface::restore(surface, saved);
}

void WandPool::drawFrame(int index, bool erasing)
{
    const WandElement &e = m_elements[size_t(index)];
    WandDrawContext context;
    context.pictureMode = m_pictureMode;
    context.backColor = WandSurface::backColor(e.surface);
    WandFrame frame(erasing, m_pictureMode);
    WandGeometry::drawFrame(e, erasing, context, frame);
    if (m_display) {
        m_display->showFrame(e.surface, index, frame);
    }
}

void WandPool::advance()
{
    int active = 0;
    for (int i = 0; i < Size; ++i) {
        WandElement &e = m_elements[size_t(i)];
        if (!e.isActive()) {
            continue;
        }
        ++active;
        WandSurface::DrawState saved;
        ignoringErrors([&] { saved = WandSurface::prepare(e.surface, m_pictureMode); });
        ignoringErrors([&] { drawFrame(i, true); });
        e.life = qint16(e.life - 1);
        if (e.isActive()) {
            ignoringErrors([&] { drawFrame(i, false); });
        }
        ignoringErrors([&] { WandSurface::restore(e.surface, saved); });
    }
    m_mayStart = true;
    if (active == 0 && m_template.style != keloWandStyle::None) {
        ignoringErrors([&] { startIdleElement(); });
    }
}

void WandPool::startIdleElement()
{
    if (!WandSurface::exists(m_template.surface)) {
        return;
    }
    bool starts = false;
    switch (m_template.style) {
    case keloWandStyle::Stars:
    case keloWandStyle::Atom:
    case keloWandStyle::Starburst:
        starts = chance(10);
        break;
    case keloWandStyle::Ripples:
    case keloWandStyle::Lightning:
        starts = chance(40);
        break;
    case keloWandStyle::None:
        break;
    }
    if (starts) {
        start(0);
    }
}

void WandPool::reset()
{
    for (int i = 0; i < Size; ++i) {
        WandElement &e = m_elements[size_t(i)];
        if (!e.isActive()) {
            continue;
        }
        WandSurface::DrawState saved;
        ignoringErrors([&] { saved = WandSurface::prepare(e.surface, m_pictureMode); });
        ignoringErrors([&] { drawFrame(i, true); });
        e.life = 0;
        ignoringErrors([&] { WandSurface::restore(e.surface, saved); });
    }
}

} // namespace Kelocontrols
