#include "Conversions.h"
#include "RuntimeError.h"

#include <QFont>
#include <QLocale>
#include <QTest>

#include "KeloTestSupport.h"

#include <cmath>
#include <limits>
#include <tuple>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr int overflow = ErrorNumber::Overflow;
constexpr int mismatch = ErrorNumber::TypeMismatch;

// Sets the process locale for one test and puts the previous one back.
struct LocaleScope
{
    explicit LocaleScope(QLocale::Language language, QLocale::Country country)
    {
        QLocale::setDefault(QLocale(language, country));
    }
    ~LocaleScope() { QLocale::setDefault(saved); }
    const QLocale saved;
};

/// A row tag naming a variant by its type and value.
QByteArray tagOf(const QVariant &value)
{
    return QByteArray(value.typeName() ? value.typeName() : "Empty") + ' ' + value.toString().toUtf8();
}

} // namespace

class TestConversions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundHalfEvenRounds_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<double>("expected");
        // Halves go to the even neighbour; a hair off a half does not.
        for (const auto &[value, expected] :
            {std::pair{2.5, 2.0}, {3.5, 4.0}, {-2.5, -2.0}, {-3.5, -4.0}, {0.5, 0.0}, {-0.5, 0.0},
                {0.49999999999999994, 0.0}, {2.5000000000000004, 3.0}, {3.4999999999999996, 3.0},
                {-0.49999999999999994, 0.0}, {-0.5000000000000001, -1.0}, {-2.6, -3.0}, {-2.4, -2.0}, {7.0, 7.0},
                {4503599627370497.0, 4503599627370497.0}, {4503599627370496.5, 4503599627370496.0},
                {4503599627370497.5, 4503599627370498.0}, {1e300, 1e300}, {Infinity, Infinity}, {-Infinity, -Infinity}})
            QTest::addRow("%.17g", value) << value << expected;
    }

    void roundHalfEvenRounds()
    {
        QFETCH(double, value);
        QFETCH(double, expected);
        QCOMPARE(roundHalfEven(value), expected);
    }

    void wholeNumbersFromDouble_data()
    {
        QTest::addColumn<bool>("isLong"); // CLng (32 bits), else CInt (16 bits)
        QTest::addColumn<double>("value");
        QTest::addColumn<qint32>("expected");
        QTest::addColumn<int>("error");
        const qint32 max = std::numeric_limits<qint32>::max();
        const qint32 min = std::numeric_limits<qint32>::min();
        for (const auto &[value, expected, error] : {std::tuple{2.5, 2, 0}, {3.5, 4, 0}, {-0.5, 0, 0},
                 {32767.0, 32767, 0}, {32767.4, 32767, 0}, {32766.5, 32766, 0}, {32767.5, 0, overflow},
                 {32768.0, 0, overflow}, {-32768.0, -32768, 0}, {-32768.5, -32768, 0}, {-32768.6, 0, overflow},
                 {-32769.5, 0, overflow}, {NaN, 0, overflow}, {Infinity, 0, overflow}, {-Infinity, 0, overflow}})
            QTest::addRow("CInt %.17g", value) << false << value << expected << error;
        for (const auto &[value, expected, error] : {std::tuple{2.5, 2, 0}, {-3.5, -4, 0}, {40000.5, 40000, 0},
                 {2147483647.0, max, 0}, {2147483647.4, max, 0}, {2147483647.5, 0, overflow}, {-2147483648.5, min, 0},
                 {-2147483649.0, 0, overflow}, {1e10, 0, overflow}, {NaN, 0, overflow}})
            QTest::addRow("CLng %.17g", value) << true << value << expected << error;
    }

    void wholeNumbersFromDouble()
    {
        QFETCH(bool, isLong);
        QFETCH(double, value);
        QFETCH(qint32, expected);
        QFETCH(int, error);
        qint32 result = 0;
        QCOMPARE(errorNumberOf([&] { result = isLong ? CLng(value) : qint32(CInt(value)); }), error);
        QCOMPARE(result, expected);
    }

    void variantsConvert_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<double>("number"); // CDbl, and CInt / CLng of it unless an error is expected
        QTest::addColumn<int>("cintError");
        QTest::addColumn<int>("cdblError");
        // Empty and every number type, then texts in the C locale; True is -1.
        for (const auto &[value, number, cintError] : {std::tuple<QVariant, double, int>{QVariant(), 0.0, 0},
                 {QVariant::fromValue(nullptr), 0.0, 0}, {true, -1.0, 0}, {false, 0.0, 0}, {42, 42.0, 0}, {7u, 7.0, 0},
                 {qlonglong(-1234), -1234.0, 0}, {qulonglong(99), 99.0, 0}, {QVariant::fromValue(short(-5)), -5.0, 0},
                 {QVariant::fromValue(uchar(200)), 200.0, 0}, {2.5f, 2.5, 0}, {3.5, 3.5, 0}, {40000, 40000.0, overflow},
                 {u"0.5"_qs, 0.5, 0}, {u" 12 "_qs, 12.0, 0}, {u"\t-7\t"_qs, -7.0, 0}, {u"1e3"_qs, 1000.0, 0},
                 {u"1.5"_qs, 1.5, 0}, {u"32768"_qs, 32768.0, overflow}, {QByteArray("42"), 42.0, 0},
                 {QChar(u'7'), 7.0, 0}})
            QTest::addRow("%s", tagOf(value).constData()) << value << number << cintError << 0;
        // What holds no number is a type mismatch for every conversion.
        for (const QVariant &value :
            {QVariant(u"abc"_qs), QVariant(u"12abc"_qs), QVariant(QString()), QVariant(u"   "_qs), QVariant(u"nan"_qs),
                QVariant(u"inf"_qs), QVariant(u"True"_qs), QVariant(QFont()), QVariant(QStringList{u"1"_qs})})
            QTest::addRow("%s", tagOf(value).constData()) << value << 0.0 << mismatch << mismatch;
    }

    void variantsConvert()
    {
        QFETCH(QVariant, value);
        QFETCH(double, number);
        QFETCH(int, cintError);
        QFETCH(int, cdblError);

        double asDouble = -99.0;
        QCOMPARE(errorNumberOf([&] { asDouble = CDbl(value); }), cdblError);
        qint16 asInt = -99;
        QCOMPARE(errorNumberOf([&] { asInt = CInt(value); }), cintError);
        if (cdblError != 0) {
            QCOMPARE(errorNumberOf([&] { CLng(value); }), cdblError);
            QCOMPARE(errorNumberOf([&] { CSng(value); }), cdblError);
            return;
        }
        QCOMPARE(asDouble, number);
        if (cintError == 0)
            QCOMPARE(asInt, CInt(number));
        QCOMPARE(CLng(value), CLng(number));
        QCOMPARE(CSng(value), float(number));
    }

    void textsInTheProcessLocale()
    {
        LocaleScope german(QLocale::German, QLocale::Germany);
        QCOMPARE(CDbl(u"0,5"_qs), 0.5);
        QCOMPARE(CInt(u"2,5"_qs), qint16(2));
        // Texts written by programs keep working in any locale.
        QCOMPARE(CDbl(u"1.5"_qs), 1.5);
        QCOMPARE(CDbl(u"1e3"_qs), 1000.0);
        QCOMPARE(errorNumberOf([] { CDbl(u"0;5"_qs); }), mismatch);
    }

    void cSngRange()
    {
        using F = std::numeric_limits<float>;
        QCOMPARE(CSng(QVariant(0.1)), 0.1f);
        QCOMPARE(CSng(QVariant(3.4e38)), 3.4e38f);
        QCOMPARE(CSng(QVariant(double(F::max()))), F::max());
        QCOMPARE(CSng(QVariant(F::lowest())), F::lowest());
        for (const QVariant &tooBig : {QVariant(1e39), QVariant(-1e39), QVariant(u"1e39"_qs), QVariant(Infinity)})
            QCOMPARE(errorNumberOf([&] { CSng(tooBig); }), overflow);
        QVERIFY(std::isnan(CSng(QVariant(NaN))));
        // Tiny values lose precision but do not overflow.
        QCOMPARE(CSng(QVariant(1e-50)), 0.0f);
    }

    void cBool_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("expected");
        QTest::addColumn<int>("error");
        for (const auto &[value, expected, error] : {std::tuple<QVariant, bool, int>{u"True"_qs, true, 0},
                 {u"FALSE"_qs, false, 0}, {u" tRuE "_qs, true, 0}, {QByteArray("false"), false, 0}, {u"0"_qs, false, 0},
                 {u"2"_qs, true, 0}, {u"-0.0001"_qs, true, 0}, {0, false, 0}, {-1, true, 0}, {1e-300, true, 0},
                 {true, true, 0}, {false, false, 0}, {QVariant(), false, 0}, {u"yes"_qs, false, mismatch},
                 {u"Truely"_qs, false, mismatch}, {u""_qs, false, mismatch}, {QFont(), false, mismatch}})
            QTest::addRow("%s", tagOf(value).constData()) << value << expected << error;
    }

    void cBool()
    {
        QFETCH(QVariant, value);
        QFETCH(bool, expected);
        QFETCH(int, error);
        bool result = false;
        QCOMPARE(errorNumberOf([&] { result = CBool(value); }), error);
        QCOMPARE(result, expected);
    }

    void percentFormat_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("expected");
        // Halves away from zero (0.005 is exactly half a percent, 0.285 just below), no negative zero, no grouping.
        for (const auto &[value, expected] :
            {std::pair{0.5, "50%"}, {0.93, "93%"}, {0.125, "13%"}, {0.135, "14%"}, {0.005, "1%"}, {0.285, "28%"},
                {0.0049999, "0%"}, {1.5, "150%"}, {-0.25, "-25%"}, {-0.005, "-1%"}, {-0.001, "0%"}, {0.0, "0%"},
                {-0.0, "0%"}, {1.0, "100%"}, {123456.0, "12345600%"}, {1e20, "10000000000000000000000%"}})
            QTest::addRow("%g", value) << value << QString::fromLatin1(expected);
    }

    void percentFormat()
    {
        QFETCH(double, value);
        QFETCH(QString, expected);
        LocaleScope english(QLocale::English, QLocale::UnitedStates);
        QCOMPARE(formatPercent(value), expected);
    }

    void localeTexts()
    {
        {
            LocaleScope german(QLocale::German, QLocale::Germany);
            QCOMPARE(formatPercent(12.3456), u"1235%"_qs);
        }
        {
            // Swedish writes the minus as U+2212.
            LocaleScope swedish(QLocale::Swedish, QLocale::Sweden);
            QCOMPARE(formatPercent(-0.25), u"\u221225%"_qs);
        }
        {
            LocaleScope arabic(QLocale::Arabic, QLocale::Egypt);
            QCOMPARE(formatPercent(0.5), u"\u0665\u0660%"_qs);
        }
        const QDateTime afternoon(QDate(2026, 3, 14), QTime(13, 5, 9));
        {
            LocaleScope british(QLocale::English, QLocale::UnitedKingdom);
            QCOMPARE(formatGeneralDate(afternoon), u"14/03/2026 13:05:09"_qs);
            QCOMPARE(formatGeneralDate(QDateTime(QDate(2026, 3, 14), QTime(0, 0))), u"14/03/2026"_qs);
        }
        LocaleScope american(QLocale::English, QLocale::UnitedStates);
        const QString us = formatGeneralDate(afternoon);
        QVERIFY2(us.startsWith(u"3/14/26 1:05:09"_qs) && us.endsWith(u"PM"_qs), qPrintable(us)); // no time-zone name
        QCOMPARE(formatSortableDateTime(afternoon), u"2026-03-14 13:05:09"_qs);
        QCOMPARE(formatSortableDateTime(QDateTime(QDate(987, 1, 2), QTime(23, 59, 59))), u"0987-01-02 23:59:59"_qs);
        QCOMPARE(formatSortableDateTime(QDateTime()), QString());
        QCOMPARE(formatGeneralDate(QDateTime()), QString());
    }
};

QTEST_MAIN(TestConversions)
#include "tst_conversions.moc"
