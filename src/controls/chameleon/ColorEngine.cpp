#include "ColorEngine_p.h"

#include "Conversions.h"
#include "Random.h"
#include "RuntimeError.h"

namespace Kelocontrols {

namespace {

qint16 checkedDifference(qint16 maximum, qint16 minimum)
{
    const int difference = int(maximum) - int(minimum);
    if (difference < -32768 || difference > 32767) {
        throw RuntimeError(ErrorNumber::Overflow);
    }
    return qint16(difference);
}

// Products and sums are formed in double and rounded to single once, the way
// the classic runtime's extended-precision arithmetic stored them.
float startValue(qint16 span, qint16 minimum)
{
    return float(double(Rnd()) * span + minimum);
}

float startStep(qint16 stepRate)
{
    const float step = float(double(Rnd()) * stepRate);
    return step < 1.0f ? 1.0f : step;
}

} // namespace

void ColorEngine::seed(const ColorRange &range)
{
    const qint16 span = checkedDifference(range.maximum, range.minimum);
    m_red.value = startValue(span, range.minimum);
    m_green.value = startValue(span, range.minimum);
    m_blue.value = startValue(span, range.minimum);
    m_red.step = startStep(range.stepRate);
    m_green.step = startStep(range.stepRate);
    m_blue.step = startStep(range.stepRate);
}

void ColorEngine::stepChannel(Channel &channel, const ColorRange &range)
{
    channel.value = channel.value + channel.step;
    if (channel.value > range.maximum) {
        channel.value = range.maximum;
        channel.step = -channel.step;
    }
    if (channel.value < range.minimum) {
        channel.value = range.minimum;
        channel.step = -channel.step;
    }
}

OleColor ColorEngine::step(const ColorRange &range)
{
    stepChannel(m_red, range);
    stepChannel(m_green, range);
    stepChannel(m_blue, range);
    m_current = RGB(CInt(double(m_red.value)), CInt(double(m_green.value)), CInt(double(m_blue.value)));
    return m_current;
}

bool ColorEngine::tick(int interval)
{
    m_elapsed += TickMilliseconds;
    if (m_elapsed >= interval) {
        m_elapsed = 0;
        return true;
    }
    return false;
}

void ColorEngine::setChannels(const Channel &red, const Channel &green, const Channel &blue)
{
    m_red = red;
    m_green = green;
    m_blue = blue;
}

} // namespace Kelocontrols
