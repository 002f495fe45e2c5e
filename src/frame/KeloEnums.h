#pragma once

#include <QMetaObject>
#include <QObject>

/**
 * The published enumerations of the library.
 *
 * They are scoped enumerations, because several share member names
 * (`None` is in most of them), and are registered with the meta-object
 * system so Qt Designer offers their members by name and a late-bound
 * QObject::setProperty() with a plain int works.
 */
namespace Kelocontrols {
Q_NAMESPACE

/// How the chameleon paints the background of its form.
enum class keloBackgroundStyle { None = 0, SystemDefault = 1, FixedColor = 2, VariedColor = 3, Picture = 4 };
Q_ENUM_NS(keloBackgroundStyle)

/// The animation that follows the mouse over the chameleon's form.
enum class keloWandStyle { None = 0, Stars = 1, Ripples = 2, Atom = 3, Starburst = 4, Lightning = 5 };
Q_ENUM_NS(keloWandStyle)

/// Whether the chameleon gives its form and controls a common font.
enum class keloFontStyle { None = 0, ChangeFont = 1 };
Q_ENUM_NS(keloFontStyle)

/// Where the chameleon places its background picture.
enum class keloPictureStyle {
    None = 0,
    TopLeft = 1,
    TopMiddle = 2,
    TopRight = 3,
    BottomLeft = 4,
    BottomMiddle = 5,
    BottomRight = 6,
    Center = 7,
    Tiled = 8
};
Q_ENUM_NS(keloPictureStyle)

/// How the score card presents its value.
enum class keloScoreCardStyle {
    ScoreCardSmall = 0,
    ScoreCardLarge = 1,
    SmileySmall = 2,
    SmileyLarge = 3,
    TrafficLightSmall = 4,
    TrafficLightLarge = 5,
    FlashCard = 6,
    Gauge = 7,
    GaugeOverrun = 8,
    GaugeRainbow = 9
};
Q_ENUM_NS(keloScoreCardStyle)

/// Where a gauge prints its value as text.
enum class keloShowValue { None = 0, AtLeft = 1, AtMiddle = 2, AtRight = 3, AtTop = 4, AtBottom = 5, Adjust = 6 };
Q_ENUM_NS(keloShowValue)

/// What the score card's tool tip shows.
enum class keloToolTipStyle { None = 0, ShowTextAsTip = 1, ShowValueAsTip = 2, ShowBothAsTip = 3 };
Q_ENUM_NS(keloToolTipStyle)

/// How a gauge marks its value.
enum class keloMarkerStyle { None = 0, ShowLine = 1, ShowBar = 2, ShowFlatBar = 3 };
Q_ENUM_NS(keloMarkerStyle)

/// The direction of a gauge.
enum class keloGaugeOrientation { Horizontal = 0, Vertical = 1 };
Q_ENUM_NS(keloGaugeOrientation)

} // namespace Kelocontrols
