#include "Conversions.h"

#include "RuntimeError.h"

#include <QByteArray>
#include <QChar>
#include <QLocale>

#include <cmath>
#include <limits>

namespace Kelocontrols {

namespace {

[[noreturn]] void raiseTypeMismatch()
{
    throw RuntimeError(ErrorNumber::TypeMismatch);
}

[[noreturn]] void raiseOverflow()
{
    throw RuntimeError(ErrorNumber::Overflow);
}

// A number written as text: C locale first so that program-generated texts
// ("0.5") read the same everywhere, then the user's own locale ("0,5").
double numberFromText(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        raiseTypeMismatch();
    bool ok = false;
    double number = QLocale::c().toDouble(trimmed, &ok);
    if (!ok)
        number = QLocale().toDouble(trimmed, &ok);
    if (!ok || !std::isfinite(number))
        raiseTypeMismatch();
    return number;
}

QString textOf(const QVariant &value)
{
    switch (value.metaType().id()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::QByteArray:
        return QString::fromUtf8(value.toByteArray());
    case QMetaType::QChar:
        return QString(value.toChar());
    default:
        return QString();
    }
}

bool isText(const QVariant &value)
{
    const int type = value.metaType().id();
    return type == QMetaType::QString || type == QMetaType::QByteArray || type == QMetaType::QChar;
}

// The numeric value of a variant; raises Type mismatch for what has none.
double numberOf(const QVariant &value)
{
    switch (value.metaType().id()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return 0.0;
    case QMetaType::Bool:
        return value.toBool() ? -1.0 : 0.0;
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::Char:
    case QMetaType::SChar:
        return static_cast<double>(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UChar:
        return static_cast<double>(value.toULongLong());
    case QMetaType::Float:
        return static_cast<double>(value.toFloat());
    case QMetaType::Double:
        return value.toDouble();
    default:
        if (isText(value))
            return numberFromText(textOf(value));
        raiseTypeMismatch();
    }
}

} // namespace

double roundHalfEven(double value)
{
    if (!std::isfinite(value))
        return value;
    const double lower = std::floor(value);
    const double fraction = value - lower; // exact: both lie within one unit
    if (fraction < 0.5)
        return lower;
    if (fraction > 0.5)
        return lower + 1.0;
    return std::fmod(lower, 2.0) == 0.0 ? lower : lower + 1.0;
}

qint16 CInt(double value)
{
    const double rounded = roundHalfEven(value);
    if (!(rounded >= std::numeric_limits<qint16>::min() && rounded <= std::numeric_limits<qint16>::max()))
        raiseOverflow();
    return static_cast<qint16>(rounded);
}

qint32 CLng(double value)
{
    const double rounded = roundHalfEven(value);
    if (!(rounded >= std::numeric_limits<qint32>::min() && rounded <= std::numeric_limits<qint32>::max()))
        raiseOverflow();
    return static_cast<qint32>(rounded);
}

qint16 CInt(const QVariant &value)
{
    return CInt(numberOf(value));
}

qint32 CLng(const QVariant &value)
{
    return CLng(numberOf(value));
}

float CSng(const QVariant &value)
{
    if (value.metaType().id() == QMetaType::Float)
        return value.toFloat();
    const double number = numberOf(value);
    if (std::isnan(number))
        return std::numeric_limits<float>::quiet_NaN();
    if (std::fabs(number) > static_cast<double>(std::numeric_limits<float>::max()))
        raiseOverflow();
    return static_cast<float>(number);
}

double CDbl(const QVariant &value)
{
    return numberOf(value);
}

bool CBool(const QVariant &value)
{
    if (isText(value)) {
        const QString text = textOf(value).trimmed();
        if (text.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
            return true;
        if (text.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
            return false;
    }
    return numberOf(value) != 0.0;
}

QString formatPercent(double value)
{
    QLocale locale;
    locale.setNumberOptions(locale.numberOptions() | QLocale::OmitGroupSeparator);
    double whole = std::round(value * 100.0); // halves away from zero
    if (whole == 0.0)
        whole = 0.0; // no "-0%" for small negative values
    return locale.toString(whole, 'f', 0) + QLatin1Char('%');
}

namespace {

// The locale's long time format without its time-zone part ("t", "tt" ...),
// which the classic date text never showed.
QString longTimeFormatWithoutZone(const QLocale &locale)
{
    const QString format = locale.timeFormat(QLocale::LongFormat);
    QString result;
    bool quoted = false;
    for (const QChar c : format) {
        if (c == QLatin1Char('\'')) {
            quoted = !quoted;
        }
        if (!quoted && c == QLatin1Char('t')) {
            continue;
        }
        result += c;
    }
    return result.trimmed();
}

} // namespace

QString formatGeneralDate(const QDateTime &dateTime)
{
    if (!dateTime.isValid()) {
        return QString();
    }
    const QLocale locale;
    const QString date = locale.toString(dateTime.date(), QLocale::ShortFormat);
    if (dateTime.time() == QTime(0, 0)) {
        return date;
    }
    return date + QLatin1Char(' ') + locale.toString(dateTime.time(), longTimeFormatWithoutZone(locale));
}

QString formatSortableDateTime(const QDateTime &dateTime)
{
    if (!dateTime.isValid()) {
        return QString();
    }
    const QDate d = dateTime.date();
    const QTime t = dateTime.time();
    return QString::asprintf(
        "%04d-%02d-%02d %02d:%02d:%02d", d.year(), d.month(), d.day(), t.hour(), t.minute(), t.second());
}

} // namespace Kelocontrols
