#pragma once

#include <kelocontrols_export.h>

#include <QDateTime>
#include <QString>
#include <QVariant>
#include <QtGlobal>

namespace Kelocontrols {

/**
 * Rounds to the nearest whole number, halves to the even neighbour
 * (banker's rounding): 2.5 -> 2, 3.5 -> 4, -2.5 -> -2, 0.5 -> 0.
 *
 * Independent of the floating-point rounding mode. NaN and infinities come
 * back unchanged.
 */
KELOCONTROLS_EXPORT double roundHalfEven(double value);

/**
 * The 16-bit integer nearest to @p value, halves to even.
 * @throws RuntimeError Overflow (6) when the rounded value lies outside
 *         -32768..32767, or for NaN.
 */
KELOCONTROLS_EXPORT qint16 CInt(double value);

/**
 * The 32-bit integer nearest to @p value, halves to even.
 * @throws RuntimeError Overflow (6) when the rounded value lies outside the
 *         32-bit range, or for NaN.
 */
KELOCONTROLS_EXPORT qint32 CLng(double value);

/*
 * The QVariant conversions below accept:
 * - every numeric type (int, unsigned, long long, double, float, short, char ...);
 * - bool, where True is -1 and False 0;
 * - a string (QString, QByteArray, QChar) holding a number, surrounding
 *   blanks allowed ("0.5", " 12 ", "1e3"), read in the C locale and, failing
 *   that, in the process locale ("0,5" in a German process);
 * - an invalid QVariant (nothing assigned), which counts as 0.
 *
 * Anything else, including an empty or non-numeric string ("", "abc") and
 * non-finite texts ("nan", "inf"), raises RuntimeError TypeMismatch (13).
 */

/// The QVariant as a 16-bit integer (see above). @throws RuntimeError TypeMismatch (13), Overflow (6).
KELOCONTROLS_EXPORT qint16 CInt(const QVariant &value);

/// The QVariant as a 32-bit integer (see above). @throws RuntimeError TypeMismatch (13), Overflow (6).
KELOCONTROLS_EXPORT qint32 CLng(const QVariant &value);

/**
 * The QVariant as a single-precision number (see above).
 * @throws RuntimeError TypeMismatch (13); Overflow (6) when the magnitude
 *         exceeds the largest float.
 */
KELOCONTROLS_EXPORT float CSng(const QVariant &value);

/// The QVariant as a double (see above). @throws RuntimeError TypeMismatch (13).
KELOCONTROLS_EXPORT double CDbl(const QVariant &value);

/**
 * The QVariant as a truth value: numbers (and numeric strings) are true when
 * not zero; the strings "True" and "False" in any case, blanks around them
 * allowed, are themselves; an invalid QVariant is false.
 * @throws RuntimeError TypeMismatch (13) for anything else.
 */
KELOCONTROLS_EXPORT bool CBool(const QVariant &value);

/**
 * The "0%" number format: @p value times 100 (computed in double),
 * rounded half away from zero to a whole number, followed by "%".
 *
 * 0.5 -> "50%", 0.125 -> "13%", -0.25 -> "-25%". The rounding works on the
 * exact binary value of the product: 0.005 * 100 is exactly 0.5 in double
 * arithmetic and gives "1%", while 0.285 * 100 is 28.499999999999996 and
 * gives "28%". A value that rounds to zero gives "0%", never "-0%".
 *
 * Digits and minus sign come from the process QLocale; there are no group
 * separators ("1234%"). NaN and infinities are written as the locale writes
 * them, followed by "%".
 */
KELOCONTROLS_EXPORT QString formatPercent(double value);

/**
 * The default text of a date and time: the process QLocale's short date
 * followed by one blank and its long time without the time-zone name
 * ("3/14/26 1:05:09 PM" in en_US, "14/03/2026 13:05:09" in en_GB). A time of
 * exactly midnight is left out, as the classic runtime did; an invalid
 * date-time gives "".
 */
KELOCONTROLS_EXPORT QString formatGeneralDate(const QDateTime &dateTime);

/// The locale-free sortable form "yyyy-mm-dd hh:nn:ss" (24-hour clock), "" for an invalid date-time.
KELOCONTROLS_EXPORT QString formatSortableDateTime(const QDateTime &dateTime);

} // namespace Kelocontrols
