#include "WandColors_p.h"

#include "Conversions.h"

#include <algorithm>

namespace Kelocontrols::WandColors {

OleColor toRgb(OleColor colour)
{
    return isSystemColor(colour) ? OleTranslateColor(colour) : colour;
}

Channels channels(OleColor colour)
{
    const double value = double(colour);
    return {int(colour & 255u), int(qint64(roundHalfEven(value / 256.0)) & 255),
        int(qint64(roundHalfEven(value / 65536.0)) & 255)};
}

int brightness(OleColor colour)
{
    const Channels c = channels(colour);
    return CInt((c.red + c.green + c.blue) / 3.0);
}

OleColor blend(OleColor from, OleColor to, double t)
{
    t = std::clamp(t, 0.0, 1.0);
    const Channels a = channels(from);
    const Channels b = channels(to);
    const auto mix = [t](int start, int end) { return int(CInt((end - start) * t + start)); };
    return RGB(mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue));
}

OleColor greyByContrast(OleColor backColor)
{
    return brightness(backColor) > 192 ? LightGrey : Grey;
}

} // namespace Kelocontrols::WandColors
