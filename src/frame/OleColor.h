#pragma once

#include <kelocontrols_export.h>

#include <QColor>
#include <QPalette>
#include <QtGlobal>

namespace Kelocontrols {

/**
 * A colour as the controls store and persist it: 0x00BBGGRR for a plain RGB
 * value (red in the low byte), or 0x80000000 plus an index for a system
 * colour that follows the desktop's colour scheme.
 */
using OleColor = quint32;

/// The high byte that marks a system colour.
constexpr OleColor SystemColorFlag = 0x80000000u;

/// The highest system colour index the library resolves (the info background).
constexpr int LastSystemColorIndex = 24;

namespace Detail {
constexpr OleColor clampChannel(int value)
{
    return value < 0 ? 0u : value > 255 ? 255u : static_cast<OleColor>(value);
}
} // namespace Detail

/**
 * Combines three channels into an OLE colour 0x00BBGGRR.
 *
 * Each channel is clamped to 0..255, so RGB(300, -4, 128) is RGB(255, 0, 128).
 */
constexpr OleColor RGB(int red, int green, int blue)
{
    return Detail::clampChannel(red) | (Detail::clampChannel(green) << 8) | (Detail::clampChannel(blue) << 16);
}

/**
 * One of the 16 classic console colours as an OLE colour.
 *
 * | index | colour        | value    | index | colour        | value    |
 * |-------|---------------|----------|-------|---------------|----------|
 * | 0     | black         | 0x000000 | 8     | grey          | 0x808080 |
 * | 1     | blue          | 0x800000 | 9     | light blue    | 0xFF0000 |
 * | 2     | green         | 0x008000 | 10    | light green   | 0x00FF00 |
 * | 3     | cyan          | 0x808000 | 11    | light cyan    | 0xFFFF00 |
 * | 4     | red           | 0x000080 | 12    | light red     | 0x0000FF |
 * | 5     | magenta       | 0x800080 | 13    | light magenta | 0xFF00FF |
 * | 6     | yellow        | 0x008080 | 14    | light yellow  | 0x00FFFF |
 * | 7     | white         | 0xC0C0C0 | 15    | bright white  | 0xFFFFFF |
 *
 * @throws RuntimeError InvalidProcedureCall (5) for an index outside 0..15.
 */
KELOCONTROLS_EXPORT OleColor QBColor(int color);

/// True when @p color is a system colour (high byte 0x80), whatever its index.
KELOCONTROLS_EXPORT bool isSystemColor(OleColor color);

/**
 * Turns an OLE colour into a plain RGB value, resolving system colours
 * through @p palette.
 *
 * A plain RGB value (high byte 0x00) comes back unchanged. A system colour
 * 0x80000000 + index takes the colour of a palette role (Active group unless
 * noted):
 *
 * | index | system colour                | palette role            |
 * |-------|------------------------------|-------------------------|
 * | 0     | scroll bar                   | Button                  |
 * | 1     | desktop                      | Dark                    |
 * | 2     | active caption               | Highlight               |
 * | 3     | inactive caption             | Mid                     |
 * | 4     | menu                         | Window                  |
 * | 5     | window background            | Base                    |
 * | 6     | window frame                 | Shadow                  |
 * | 7     | menu text                    | WindowText              |
 * | 8     | window text                  | Text                    |
 * | 9     | active caption text          | HighlightedText         |
 * | 10    | active border                | Button                  |
 * | 11    | inactive border              | Button                  |
 * | 12    | application workspace        | Mid                     |
 * | 13    | highlight                    | Highlight               |
 * | 14    | highlight text               | HighlightedText         |
 * | 15    | button face                  | Button                  |
 * | 16    | button shadow                | Dark                    |
 * | 17    | grey (disabled) text         | Text, Disabled group    |
 * | 18    | button text                  | ButtonText              |
 * | 19    | inactive caption text        | Text                    |
 * | 20    | button highlight             | Light                   |
 * | 21    | 3-D dark shadow              | Shadow                  |
 * | 22    | 3-D light                    | Midlight                |
 * | 23    | tool tip text                | ToolTipText             |
 * | 24    | tool tip background          | ToolTipBase             |
 *
 * The alpha channel of the palette colour is dropped.
 *
 * @throws RuntimeError InvalidProcedureCall (5) for a system colour index
 *         above 24 or a high byte other than 0x00 and 0x80.
 */
KELOCONTROLS_EXPORT OleColor OleTranslateColor(OleColor color, const QPalette &palette);

/**
 * OleTranslateColor() against the application's palette
 * (QGuiApplication::palette()), or against a default QPalette when no GUI
 * application exists.
 */
KELOCONTROLS_EXPORT OleColor OleTranslateColor(OleColor color);

/// The QColor of an OLE colour, system colours resolved through the application's palette.
KELOCONTROLS_EXPORT QColor toQColor(OleColor color);

/// The OLE colour 0x00BBGGRR of a QColor; its alpha is dropped and an invalid QColor gives black.
KELOCONTROLS_EXPORT OleColor fromQColor(const QColor &color);

} // namespace Kelocontrols
