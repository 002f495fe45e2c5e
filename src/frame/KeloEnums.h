#pragma once

#include <kelocontrols_export.h>

#include <QList>
#include <QMetaEnum>
#include <QObject>

/**
 * The published enumerations of the library.
 *
 * Each one is a small value class named after the enumeration that holds
 * an unscoped `Value` enumeration registered with the meta-object system:
 *
 * - `Kelocontrols::keloWandStyle::Atom` names a member, and members of
 *   different enumerations never clash (`None` is in most of them);
 * - `Kelocontrols::keloWandStyle` is a type that converts to and from its
 *   members, so it is declared, compared, switched on and cast from an int
 *   like an enumeration;
 * - the enumeration's meta-object scope is `Kelocontrols::keloWandStyle`, so
 *   Qt Designer writes a member as `Kelocontrols::keloWandStyle::Atom`, which
 *   is exactly what uic needs to compile, and Designer and QUiLoader read that
 *   spelling back;
 * - a late-bound QObject::setProperty() takes a plain int or a member's name.
 *
 * A property of such a type is declared with the `Value` enumeration
 * (`Q_PROPERTY(Kelocontrols::keloWandStyle::Value WandStyle ...)`) so that the
 * meta-object system sees an enumeration; its accessors take and return the
 * value class.
 */

/**
 * The value part of a published enumeration class `Name`: it converts from
 * its `Value` members, from an int (explicitly, as a cast from a number) and
 * back to `Value`, so the class is declared, compared and switched on like
 * the enumeration itself. Each class still writes out its Q_GADGET and
 * Q_ENUM(Value): moc reads those, and it does not expand macros.
 */
#define KELO_ENUMERATION_VALUE(Name)                                                                                   \
public:                                                                                                                \
    constexpr Name() noexcept = default;                                                                               \
    constexpr Name(Value value) noexcept                                                                               \
        : m_value(value)                                                                                               \
    {                                                                                                                  \
    }                                                                                                                  \
    constexpr explicit Name(int value) noexcept                                                                        \
        : m_value(Value(value))                                                                                        \
    {                                                                                                                  \
    }                                                                                                                  \
    constexpr operator Value() const noexcept                                                                          \
    {                                                                                                                  \
        return m_value;                                                                                                \
    }                                                                                                                  \
                                                                                                                       \
private:                                                                                                               \
    Value m_value = Value(0);

namespace Kelocontrols {

/// How the chameleon paints the background of its form.
class KELOCONTROLS_EXPORT keloBackgroundStyle
{
    Q_GADGET

public:
    enum Value : int { None = 0, SystemDefault = 1, FixedColor = 2, VariedColor = 3, Picture = 4 };
    Q_ENUM(Value)

    KELO_ENUMERATION_VALUE(keloBackgroundStyle)
};

/// The animation that follows the mouse over the chameleon's form.
class KELOCONTROLS_EXPORT keloWandStyle
{
    Q_GADGET

public:
    enum Value : int { None = 0, Stars = 1, Ripples = 2, Atom = 3, Starburst = 4, Lightning = 5 };
    Q_ENUM(Value)

    KELO_ENUMERATION_VALUE(keloWandStyle)
};

/// Whether the chameleon gives its form and controls a common font.
class KELOCONTROLS_EXPORT keloFontStyle
{
    Q_GADGET

public:
    enum Value : int { None = 0, ChangeFont = 1 };
    Q_ENUM(Value)

    KELO_ENUMERATION_VALUE(keloFontStyle)
};

/// Where the chameleon places its background picture.
class KELOCONTROLS_EXPORT keloPictureStyle
{
    Q_GADGET

public:
    enum Value : int {
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
    Q_ENUM(Value)

    KELO_ENUMERATION_VALUE(keloPictureStyle)
};

/// How the score card presents its value.
class KELOCONTROLS_EXPORT keloScoreCardStyle
{
    Q_GADGET

public:
    enum Value : int {
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
    Q_ENUM(Value)

    KELO_ENUMERATION_VALUE(keloScoreCardStyle)
};

/// Where a gauge prints its value as text.
class KELOCONTROLS_EXPORT keloShowValue
{
    Q_GADGET

public:
    enum Value : int { None = 0, AtLeft = 1, AtMiddle = 2, AtRight = 3, AtTop = 4, AtBottom = 5, Adjust = 6 };
    Q_ENUM(Value)

    KELO_ENUMERATION_VALUE(keloShowValue)
};

/// What the score card's tool tip shows.
class KELOCONTROLS_EXPORT keloToolTipStyle
{
    Q_GADGET

public:
    enum Value : int { None = 0, ShowTextAsTip = 1, ShowValueAsTip = 2, ShowBothAsTip = 3 };
    Q_ENUM(Value)

    KELO_ENUMERATION_VALUE(keloToolTipStyle)
};

/// How a gauge marks its value.
class KELOCONTROLS_EXPORT keloMarkerStyle
{
    Q_GADGET

public:
    enum Value : int { None = 0, ShowLine = 1, ShowBar = 2, ShowFlatBar = 3 };
    Q_ENUM(Value)

    KELO_ENUMERATION_VALUE(keloMarkerStyle)
};

/// The direction of a gauge.
class KELOCONTROLS_EXPORT keloGaugeOrientation
{
    Q_GADGET

public:
    enum Value : int { Horizontal = 0, Vertical = 1 };
    Q_ENUM(Value)

    KELO_ENUMERATION_VALUE(keloGaugeOrientation)
};

/// Every published enumeration, in the order of this header.
KELOCONTROLS_EXPORT QList<QMetaEnum> publishedEnumerations();

} // namespace Kelocontrols
