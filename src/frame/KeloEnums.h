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
namespace Kelocontrols {

/// How the chameleon paints the background of its form.
class KELOCONTROLS_EXPORT keloBackgroundStyle
{
    Q_GADGET

public:
    enum Value : int { None = 0, SystemDefault = 1, FixedColor = 2, VariedColor = 3, Picture = 4 };
    Q_ENUM(Value)

    constexpr keloBackgroundStyle() noexcept = default;
    constexpr keloBackgroundStyle(Value value) noexcept
        : m_value(value)
    {
    }
    constexpr explicit keloBackgroundStyle(int value) noexcept
        : m_value(Value(value))
    {
    }
    constexpr operator Value() const noexcept { return m_value; }

private:
    Value m_value = Value(0);
};

/// The animation that follows the mouse over the chameleon's form.
class KELOCONTROLS_EXPORT keloWandStyle
{
    Q_GADGET

public:
    enum Value : int { None = 0, Stars = 1, Ripples = 2, Atom = 3, Starburst = 4, Lightning = 5 };
    Q_ENUM(Value)

    constexpr keloWandStyle() noexcept = default;
    constexpr keloWandStyle(Value value) noexcept
        : m_value(value)
    {
    }
    constexpr explicit keloWandStyle(int value) noexcept
        : m_value(Value(value))
    {
    }
    constexpr operator Value() const noexcept { return m_value; }

private:
    Value m_value = Value(0);
};

/// Whether the chameleon gives its form and controls a common font.
class KELOCONTROLS_EXPORT keloFontStyle
{
    Q_GADGET

public:
    enum Value : int { None = 0, ChangeFont = 1 };
    Q_ENUM(Value)

    constexpr keloFontStyle() noexcept = default;
    constexpr keloFontStyle(Value value) noexcept
        : m_value(value)
    {
    }
    constexpr explicit keloFontStyle(int value) noexcept
        : m_value(Value(value))
    {
    }
    constexpr operator Value() const noexcept { return m_value; }

private:
    Value m_value = Value(0);
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

    constexpr keloPictureStyle() noexcept = default;
    constexpr keloPictureStyle(Value value) noexcept
        : m_value(value)
    {
    }
    constexpr explicit keloPictureStyle(int value) noexcept
        : m_value(Value(value))
    {
    }
    constexpr operator Value() const noexcept { return m_value; }

private:
    Value m_value = Value(0);
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

    constexpr keloScoreCardStyle() noexcept = default;
    constexpr keloScoreCardStyle(Value value) noexcept
        : m_value(value)
    {
    }
    constexpr explicit keloScoreCardStyle(int value) noexcept
        : m_value(Value(value))
    {
    }
    constexpr operator Value() const noexcept { return m_value; }

private:
    Value m_value = Value(0);
};

/// Where a gauge prints its value as text.
class KELOCONTROLS_EXPORT keloShowValue
{
    Q_GADGET

public:
    enum Value : int { None = 0, AtLeft = 1, AtMiddle = 2, AtRight = 3, AtTop = 4, AtBottom = 5, Adjust = 6 };
    Q_ENUM(Value)

    constexpr keloShowValue() noexcept = default;
    constexpr keloShowValue(Value value) noexcept
        : m_value(value)
    {
    }
    constexpr explicit keloShowValue(int value) noexcept
        : m_value(Value(value))
    {
    }
    constexpr operator Value() const noexcept { return m_value; }

private:
    Value m_value = Value(0);
};

/// What the score card's tool tip shows.
class KELOCONTROLS_EXPORT keloToolTipStyle
{
    Q_GADGET

public:
    enum Value : int { None = 0, ShowTextAsTip = 1, ShowValueAsTip = 2, ShowBothAsTip = 3 };
    Q_ENUM(Value)

    constexpr keloToolTipStyle() noexcept = default;
    constexpr keloToolTipStyle(Value value) noexcept
        : m_value(value)
    {
    }
    constexpr explicit keloToolTipStyle(int value) noexcept
        : m_value(Value(value))
    {
    }
    constexpr operator Value() const noexcept { return m_value; }

private:
    Value m_value = Value(0);
};

/// How a gauge marks its value.
class KELOCONTROLS_EXPORT keloMarkerStyle
{
    Q_GADGET

public:
    enum Value : int { None = 0, ShowLine = 1, ShowBar = 2, ShowFlatBar = 3 };
    Q_ENUM(Value)

    constexpr keloMarkerStyle() noexcept = default;
    constexpr keloMarkerStyle(Value value) noexcept
        : m_value(value)
    {
    }
    constexpr explicit keloMarkerStyle(int value) noexcept
        : m_value(Value(value))
    {
    }
    constexpr operator Value() const noexcept { return m_value; }

private:
    Value m_value = Value(0);
};

/// The direction of a gauge.
class KELOCONTROLS_EXPORT keloGaugeOrientation
{
    Q_GADGET

public:
    enum Value : int { Horizontal = 0, Vertical = 1 };
    Q_ENUM(Value)

    constexpr keloGaugeOrientation() noexcept = default;
    constexpr keloGaugeOrientation(Value value) noexcept
        : m_value(value)
    {
    }
    constexpr explicit keloGaugeOrientation(int value) noexcept
        : m_value(Value(value))
    {
    }
    constexpr operator Value() const noexcept { return m_value; }

private:
    Value m_value = Value(0);
};

/// Every published enumeration, in the order of this header.
KELOCONTROLS_EXPORT QList<QMetaEnum> publishedEnumerations();

} // namespace Kelocontrols
