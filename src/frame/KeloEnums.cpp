#include "KeloEnums.h"

namespace Kelocontrols {

QList<QMetaEnum> publishedEnumerations()
{
    return {
        QMetaEnum::fromType<keloBackgroundStyle::Value>(),
        QMetaEnum::fromType<keloWandStyle::Value>(),
        QMetaEnum::fromType<keloFontStyle::Value>(),
        QMetaEnum::fromType<keloPictureStyle::Value>(),
        QMetaEnum::fromType<keloScoreCardStyle::Value>(),
        QMetaEnum::fromType<keloShowValue::Value>(),
        QMetaEnum::fromType<keloToolTipStyle::Value>(),
        QMetaEnum::fromType<keloMarkerStyle::Value>(),
        QMetaEnum::fromType<keloGaugeOrientation::Value>(),
    };
}

} // namespace Kelocontrols
