#pragma once

#include <kelocontrols_export.h>

#include "KeloEnums.h"
#include "WandElement_p.h"

#include <array>

class QObject;

namespace Kelocontrols {

class WandDisplay;

/**
 * The wand animation: a pool of 21 elements that mouse movement starts and
 * the 100 ms timer ticks advance.
 *
 * - movement() records the latest mouse position (the template) and, at
 *   most once per tick, starts an element in the free slot with the highest
 *   index. Atoms start only while fewer than six elements are active, and
 *   then only every other time on average.
 * - advance() erases and redraws every active element one step older,
 *   erasing it for good when its life runs out, and allows the next start.
 *   With nothing active, it now and then starts an element at the last
 *   mouse position by itself (one tick in 10 for stars, atoms and
 *   starbursts, one in 40 for ripples and lightning).
 * - reset() erases every active element at once.
 *
 * Elements start with (life, look): stars 6 ticks, scattered up to 20 pixels
 * from the pointer, in one of the 16 classic colours; ripples 40, grey by
 * contrast; atoms 20, a classic colour, a random orbit; starbursts 20, a
 * classic colour; lightning 1 tick, white, with a random direction (and the
 * random generator reseeded from the clock).
 *
 * The frames go to a WandDisplay. shared() is the pool of the whole process,
 * shared by every chameleon, drawing on layers beneath the widgets of the surfaces; tests
 * and benchmarks make pools of their own with a display of their own.
 *
 * Random numbers come from Kelocontrols::Rnd(), in a fixed order per start.
 * Errors of a surface that is gone or lacks a member end only the statement
 * they happen in during advance() and reset(); movement() lets them reach
 * the caller.
 */
class KELOCONTROLS_TESTS_EXPORT WandPool
{
public:
    static constexpr int Size = 21;
    /// Movement starts no atom while this many elements are active.
    static constexpr int AtomLimit = 6;

    explicit WandPool(WandDisplay *display = nullptr);

    /// The pool of the process, shared by every chameleon.
    static WandPool &shared();

    WandDisplay *display() const { return m_display; }
    /// Sets where frames go (not owned); returns the previous display.
    WandDisplay *setDisplay(WandDisplay *display);

    /**
     * The mouse moved over @p surface to (@p x, @p y) in the surface's own
     * scale, with wand style @p style.
     * @throws RuntimeError when an element starts on a surface that cannot be drawn on.
     */
    void movement(QObject *surface, float x, float y, keloWandStyle style);

    /**
     * Starts element @p index at once, as movement() starts a free element:
     * the template becomes (@p surface, @p x, @p y, @p style) and the
     * element takes it, whether or not the slot was free and the tick has
     * allowed a start. For hosts that script the animation, and for
     * measuring a full pool.
     * @throws RuntimeError when the surface cannot be drawn on.
     */
    void startElement(int index, QObject *surface, float x, float y, keloWandStyle style);

    /// One timer tick.
    void advance();

    /// Erases every active element and frees it.
    void reset();

    /// Whether the surfaces show a picture (frames then use the exclusive-or pen).
    bool pictureMode() const { return m_pictureMode; }
    void setPictureMode(bool pictureMode) { m_pictureMode = pictureMode; }

    /// Whether the next movement may start an element.
    bool mayStart() const { return m_mayStart; }

    const WandElement &element(int index) const { return m_elements.at(size_t(index)); }
    /// The latest movement: its surface, position (in the surface's scale) and style.
    const WandElement &templateElement() const { return m_template; }
    int activeCount() const;

private:
    void start(int index);
    void drawFrame(int index, bool erasing);
    void drawStep(int index, bool erasing);
    void startIdleElement();

    std::array<WandElement, Size> m_elements;
    WandElement m_template;
    bool m_mayStart = false;
    bool m_pictureMode = false;
    WandDisplay *m_display;
};

} // namespace Kelocontrols
