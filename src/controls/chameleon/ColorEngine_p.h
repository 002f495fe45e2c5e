#pragma once

#include <kelocontrols_export.h>

#include "OleColor.h"

#include <QtGlobal>

namespace Kelocontrols {

/// The bounds and speed of the drifting colour, as the chameleon's properties hold them.
struct ColorRange
{
    qint16 minimum = 0; ///< lower bound of each channel (ColorMinimum)
    qint16 maximum = 255; ///< upper bound of each channel (ColorMaximum)
    qint16 stepRate = 10; ///< largest step per channel (ColorStepRate)
};

/**
 * The slowly drifting background colour of the chameleon.
 *
 * Each of the three channels holds an exact single-precision value and a
 * signed step. A step moves the value by its step; past a bound the value
 * stops at the bound and the step turns round, so every channel runs back
 * and forth between the bounds at its own speed and the three drift out of
 * phase. The colour is the three values rounded half to even.
 *
 * seed() draws the start values and steps from Kelocontrols::Rnd() without
 * reseeding it, so a program that never reseeds the generator starts from
 * the same colours at every run.
 *
 * The engine also counts the time between two colour steps: tick() adds one
 * timer period and says when the interval has run out.
 */
class KELOCONTROLS_TESTS_EXPORT ColorEngine
{
public:
    /// One channel: its exact value and its signed step.
    struct Channel
    {
        float value = 0.0f;
        float step = 0.0f;
    };

    /// The period of the timer that drives the engine, in milliseconds.
    static constexpr int TickMilliseconds = 100;

    /**
     * Draws new start values and steps: the red, green and blue values from
     * three numbers of Rnd(), then their steps from three more. A value is
     * Rnd × (maximum − minimum) + minimum; a step is Rnd × stepRate, raised
     * to 1 when smaller, so every channel first rises.
     *
     * @throws RuntimeError Overflow (6) when maximum − minimum leaves the
     *         16-bit range (only possible with unclamped values).
     */
    void seed(const ColorRange &range);

    /**
     * Moves each channel by its step (red, green, blue), bouncing at the
     * bounds of @p range, and builds the new current colour.
     *
     * @throws RuntimeError Overflow (6) when a channel value cannot be
     *         rounded to a 16-bit integer; the channels have moved, the
     *         current colour is left as it was.
     */
    OleColor step(const ColorRange &range);

    /**
     * Moves one channel by its step. Past the maximum the value becomes the
     * maximum and the step changes sign; then, below the minimum, it becomes
     * the minimum and the step changes sign.
     */
    static void stepChannel(Channel &channel, const ColorRange &range);

    /**
     * Adds one timer period to the elapsed time. When the elapsed time has
     * reached @p interval it is reset and the call returns true: time for a
     * colour step. An interval of 1000 ms thus steps on every tenth tick,
     * 1050 on every eleventh, and 0 or 50 on every tick.
     */
    bool tick(int interval);

    const Channel &red() const { return m_red; }
    const Channel &green() const { return m_green; }
    const Channel &blue() const { return m_blue; }
    /// The colour built by the latest step().
    OleColor currentColor() const { return m_current; }
    /// Milliseconds since the latest colour step; kept when the engine is seeded again.
    qint32 elapsed() const { return m_elapsed; }

    /// Puts the channels where a test or a host wants them.
    void setChannels(const Channel &red, const Channel &green, const Channel &blue);

private:
    Channel m_red;
    Channel m_green;
    Channel m_blue;
    OleColor m_current = 0;
    qint32 m_elapsed = 0;
};

} // namespace Kelocontrols
