#include "OleColor.h"

#include "RuntimeError.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include <array>

namespace Kelocontrols {

namespace {

constexpr OleColor HighByteMask = 0xFF000000u;
constexpr OleColor IndexMask = 0x00FFFFFFu;

constexpr std::array<OleColor, 16> ClassicColors = {
    0x000000,
    0x800000,
    0x008000,
    0x808000,
    0x000080,
    0x800080,
    0x008080,
    0xC0C0C0,
    0x808080,
    0xFF0000,
    0x00FF00,
    0xFFFF00,
    0x0000FF,
    0xFF00FF,
    0x00FFFF,
    0xFFFFFF,
};

struct PaletteSource
{
    QPalette::ColorGroup group;
    QPalette::ColorRole role;
};

// The desktop colour indexes, in order, and the palette role that plays the
// same part in a Qt style.
constexpr std::array<PaletteSource, LastSystemColorIndex + 1> SystemColorRoles = {{
    {QPalette::Active, QPalette::Button}, // 0 scroll bar
    {QPalette::Active, QPalette::Dark}, // 1 desktop
    {QPalette::Active, QPalette::Highlight}, // 2 active caption
    {QPalette::Active, QPalette::Mid}, // 3 inactive caption
    {QPalette::Active, QPalette::Window}, // 4 menu
    {QPalette::Active, QPalette::Base}, // 5 window background
    {QPalette::Active, QPalette::Shadow}, // 6 window frame
    {QPalette::Active, QPalette::WindowText}, // 7 menu text
    {QPalette::Active, QPalette::Text}, // 8 window text
    {QPalette::Active, QPalette::HighlightedText}, // 9 active caption text
    {QPalette::Active, QPalette::Button}, // 10 active border
    {QPalette::Active, QPalette::Button}, // 11 inactive border
    {QPalette::Active, QPalette::Mid}, // 12 application workspace
    {QPalette::Active, QPalette::Highlight}, // 13 highlight
    {QPalette::Active, QPalette::HighlightedText}, // 14 highlight text
    {QPalette::Active, QPalette::Button}, // 15 button face
    {QPalette::Active, QPalette::Dark}, // 16 button shadow
    {QPalette::Disabled, QPalette::Text}, // 17 grey text
    {QPalette::Active, QPalette::ButtonText}, // 18 button text
    {QPalette::Active, QPalette::Text}, // 19 inactive caption text
    {QPalette::Active, QPalette::Light}, // 20 button highlight
    {QPalette::Active, QPalette::Shadow}, // 21 3-D dark shadow
    {QPalette::Active, QPalette::Midlight}, // 22 3-D light
    {QPalette::Active, QPalette::ToolTipText}, // 23 tool tip text
    {QPalette::Active, QPalette::ToolTipBase}, // 24 tool tip background
}};

QPalette applicationPalette()
{
    // QGuiApplication::palette() needs a GUI application; library code may
    // also run under a QCoreApplication or before any application exists.
    if (qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return QGuiApplication::palette();
    return QPalette();
}

} // namespace

OleColor QBColor(int color)
{
    if (color < 0 || color >= static_cast<int>(ClassicColors.size()))
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    return ClassicColors[static_cast<size_t>(color)];
}

bool isSystemColor(OleColor color)
{
    return (color & HighByteMask) == SystemColorFlag;
}

OleColor OleTranslateColor(OleColor color, const QPalette &palette)
{
    const OleColor highByte = color & HighByteMask;
    if (highByte == 0)
        return color;
    const OleColor index = color & IndexMask;
    if (highByte != SystemColorFlag || index > static_cast<OleColor>(LastSystemColorIndex))
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    const PaletteSource &source = SystemColorRoles[index];
    return fromQColor(palette.color(source.group, source.role));
}

OleColor OleTranslateColor(OleColor color)
{
    // Plain colours need no palette; building one is not free.
    if ((color & HighByteMask) == 0)
        return color;
    return OleTranslateColor(color, applicationPalette());
}

QColor toQColor(OleColor color)
{
    const OleColor rgb = OleTranslateColor(color);
    return QColor(int(rgb & 0xFF), int((rgb >> 8) & 0xFF), int((rgb >> 16) & 0xFF));
}

OleColor fromQColor(const QColor &color)
{
    if (!color.isValid())
        return 0;
    const QRgb rgb = color.rgb();
    return RGB(qRed(rgb), qGreen(rgb), qBlue(rgb));
}

} // namespace Kelocontrols
