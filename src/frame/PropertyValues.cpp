#include "PropertyValues.h"

#include "Conversions.h"
#include "RuntimeError.h"

namespace Kelocontrols {

OleColor colorFromVariant(const QVariant &value)
{
    const double number = CDbl(value);
    if (number < -2147483648.0 || number > 4294967295.0) {
        throw RuntimeError(ErrorNumber::Overflow);
    }
    return OleColor(qint64(number) & 0xFFFFFFFF);
}

QString textFromVariant(const QVariant &value)
{
    if (!value.isValid()) {
        return QString();
    }
    if (!value.canConvert<QString>()) {
        throw RuntimeError(ErrorNumber::TypeMismatch);
    }
    return value.toString();
}

QFont fontFromVariant(const QVariant &value)
{
    if (value.typeId() != QMetaType::QFont) {
        throw RuntimeError(ErrorNumber::TypeMismatch);
    }
    return value.value<QFont>();
}

} // namespace Kelocontrols
