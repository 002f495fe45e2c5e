#pragma once

#include <kelocontrols_export.h>

#include <QCursor>
#include <QPixmap>

namespace Kelocontrols {

/// The classic mouse-pointer codes of a control's MousePointer property.
namespace MousePointer {
constexpr int Default = 0;
constexpr int Arrow = 1;
constexpr int Cross = 2;
constexpr int IBeam = 3;
constexpr int Icon = 4;
constexpr int Size = 5;
constexpr int SizeNESW = 6;
constexpr int SizeNS = 7;
constexpr int SizeNWSE = 8;
constexpr int SizeWE = 9;
constexpr int UpArrow = 10;
constexpr int Hourglass = 11;
constexpr int NoDrop = 12;
constexpr int ArrowHourglass = 13;
constexpr int ArrowQuestion = 14;
constexpr int SizeAll = 15;
constexpr int Custom = 99; ///< the control's MouseIcon

/// Whether @p pointer is one of the codes above.
KELOCONTROLS_EXPORT bool isValid(int pointer);

/**
 * The Qt cursor of a pointer code; Custom uses @p icon (hot spot in its
 * centre) and falls back to the arrow when the icon is empty. Default
 * gives Qt::ArrowCursor; callers that want "whatever the widget has" unset
 * the cursor for Default instead.
 */
KELOCONTROLS_EXPORT QCursor cursor(int pointer, const QPixmap &icon = QPixmap());
} // namespace MousePointer

} // namespace Kelocontrols
