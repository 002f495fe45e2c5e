#include "Conversions.h"
#include "RuntimeError.h"

#include <QFont>
#include <QLocale>
#include <QTest>

#include "KeloTestSupport.h"

#include <cmath>
#include <limits>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

// Sets the process locale for one test and puts the previous one back.
class LocaleScope
{
public:
    explicit LocaleScope(const QLocale &locale)
        : m_saved(QLocale())
    {
        QLocale::setDefault(locale);
    }
    ~LocaleScope() { QLocale::setDefault(m_saved); }

private:
    QLocale m_saved;
};

} // namespace

class TestConversions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundHalfEvenRounds_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<double>("expected");

        QTest::newRow("2.5") << 2.5 << 2.0;
        QTest::newRow("3.5") << 3.5 << 4.0;
        QTest::newRow("-2.5") << -2.5 << -2.0;
        QTest::newRow("-3.5") << -3.5 << -4.0;
        QTest::newRow("0.5") << 0.5 << 0.0;
        QTest::newRow("1.5") << 1.5 << 2.0;
        QTest::newRow("-0.5") << -0.5 << 0.0;
        QTest::newRow("-1.5") << -1.5 << -2.0;
        QTest::newRow("just below half") << 0.49999999999999994 << 0.0;
        QTest::newRow("just above 2.5") << 2.5000000000000004 << 3.0;
        QTest::newRow("just below 3.5") << 3.4999999999999996 << 3.0;
        QTest::newRow("just above -0.5") << -0.49999999999999994 << 0.0;
        QTest::newRow("just below -0.5") << -0.5000000000000001 << -1.0;
        QTest::newRow("-2.6") << -2.6 << -3.0;
        QTest::newRow("-2.4") << -2.4 << -2.0;
        QTest::newRow("whole") << 7.0 << 7.0;
        QTest::newRow("2^52 + 1") << 4503599627370497.0 << 4503599627370497.0;
        QTest::newRow("2^52 + 0.5") << 4503599627370496.5 << 4503599627370496.0;
        QTest::newRow("2^52 + 1.5") << 4503599627370497.5 << 4503599627370498.0;
        QTest::newRow("huge") << 1e300 << 1e300;
        QTest::newRow("infinity") << Infinity << Infinity;
        QTest::newRow("-infinity") << -Infinity << -Infinity;
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

        const int overflow = ErrorNumber::Overflow;
        const qint32 max = std::numeric_limits<qint32>::max();
        const qint32 min = std::numeric_limits<qint32>::min();
        const auto cint = [](const char *name, double value, qint32 expected, int error = 0) {
            QTest::addRow("CInt %s", name) << false << value << expected << error;
        };
        const auto clng = [](const char *name, double value, qint32 expected, int error = 0) {
            QTest::addRow("CLng %s", name) << true << value << expected << error;
        };
        cint("2.5", 2.5, 2);
        cint("3.5", 3.5, 4);
        cint("-0.5", -0.5, 0);
        cint("32767", 32767.0, 32767);
        cint("32767.4", 32767.4, 32767);
        cint("32766.5", 32766.5, 32766);
        cint("32767.5 overflows", 32767.5, 0, overflow);
        cint("32768 overflows", 32768.0, 0, overflow);
        cint("-32768", -32768.0, -32768);
        cint("-32768.5", -32768.5, -32768);
        cint("-32768.6 overflows", -32768.6, 0, overflow);
        cint("-32769.5 overflows", -32769.5, 0, overflow);
        cint("NaN overflows", NaN, 0, overflow);
        cint("infinity overflows", Infinity, 0, overflow);
        cint("-infinity overflows", -Infinity, 0, overflow);
        clng("2.5", 2.5, 2);
        clng("-3.5", -3.5, -4);
        clng("40000.5", 40000.5, 40000);
        clng("max", 2147483647.0, max);
        clng("max + 0.4", 2147483647.4, max);
        clng("max + 0.5 overflows", 2147483647.5, 0, overflow);
        clng("min - 0.5", -2147483648.5, min);
        clng("min - 1 overflows", -2147483649.0, 0, overflow);
        clng("1e10 overflows", 1e10, 0, overflow);
        clng("NaN overflows", NaN, 0, overflow);
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

        const int none = 0;
        const int mismatch = ErrorNumber::TypeMismatch;
        const int overflow = ErrorNumber::Overflow;

        QTest::newRow("invalid is Empty") << QVariant() << 0.0 << none << none;
        QTest::newRow("null pointer") << QVariant::fromValue(nullptr) << 0.0 << none << none;
        QTest::newRow("True") << QVariant(true) << -1.0 << none << none;
        QTest::newRow("False") << QVariant(false) << 0.0 << none << none;
        QTest::newRow("int") << QVariant(42) << 42.0 << none << none;
        QTest::newRow("uint") << QVariant(7u) << 7.0 << none << none;
        QTest::newRow("long long") << QVariant(qlonglong(-1234)) << -1234.0 << none << none;
        QTest::newRow("unsigned long long") << QVariant(qulonglong(99)) << 99.0 << none << none;
        QTest::newRow("short") << QVariant::fromValue(short(-5)) << -5.0 << none << none;
        QTest::newRow("unsigned char") << QVariant::fromValue(uchar(200)) << 200.0 << none << none;
        QTest::newRow("float") << QVariant(2.5f) << 2.5 << none << none;
        QTest::newRow("double") << QVariant(3.5) << 3.5 << none << none;
        QTest::newRow("int beyond 16 bits") << QVariant(40000) << 40000.0 << overflow << none;
        QTest::newRow("string 0.5") << QVariant(u"0.5"_qs) << 0.5 << none << none;
        QTest::newRow("string blanks") << QVariant(u" 12 "_qs) << 12.0 << none << none;
        QTest::newRow("string tab") << QVariant(u"\t-7\t"_qs) << -7.0 << none << none;
        QTest::newRow("string exponent") << QVariant(u"1e3"_qs) << 1000.0 << none << none;
        QTest::newRow("string 1.5") << QVariant(u"1.5"_qs) << 1.5 << none << none;
        QTest::newRow("string 32768") << QVariant(u"32768"_qs) << 32768.0 << overflow << none;
        QTest::newRow("byte array") << QVariant(QByteArray("42")) << 42.0 << none << none;
        QTest::newRow("char") << QVariant(QChar(u'7')) << 7.0 << none << none;
        QTest::newRow("string abc") << QVariant(u"abc"_qs) << 0.0 << mismatch << mismatch;
        QTest::newRow("string 12abc") << QVariant(u"12abc"_qs) << 0.0 << mismatch << mismatch;
        QTest::newRow("empty string") << QVariant(QString()) << 0.0 << mismatch << mismatch;
        QTest::newRow("blank string") << QVariant(u"   "_qs) << 0.0 << mismatch << mismatch;
        QTest::newRow("string nan") << QVariant(u"nan"_qs) << 0.0 << mismatch << mismatch;
        QTest::newRow("string inf") << QVariant(u"inf"_qs) << 0.0 << mismatch << mismatch;
        QTest::newRow("string True") << QVariant(u"True"_qs) << 0.0 << mismatch << mismatch;
        QTest::newRow("font") << QVariant(QFont()) << 0.0 << mismatch << mismatch;
        QTest::newRow("string list") << QVariant(QStringList{u"1"_qs}) << 0.0 << mismatch << mismatch;
    }

    void variantsConvert()
    {
        QFETCH(QVariant, value);
        QFETCH(double, number);
        QFETCH(int, cintError);
        QFETCH(int, cdblError);

        double asDouble = -99.0;
        QCOMPARE(errorNumberOf([&] { asDouble = CDbl(value); }), cdblError);
        if (cdblError == 0)
            QCOMPARE(asDouble, number);

        qint16 asInt = -99;
        QCOMPARE(errorNumberOf([&] { asInt = CInt(value); }), cintError);
        if (cintError == 0)
            QCOMPARE(asInt, CInt(number));

        if (cdblError == 0) {
            QCOMPARE(CLng(value), CLng(number));
            QCOMPARE(CSng(value), float(number));
        } else {
            QCOMPARE(errorNumberOf([&] { CLng(value); }), cdblError);
            QCOMPARE(errorNumberOf([&] { CSng(value); }), cdblError);
        }
    }

    void textsInTheProcessLocale()
    {
        LocaleScope german(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(CDbl(u"0,5"_qs), 0.5);
        QCOMPARE(CInt(u"2,5"_qs), qint16(2));
        // Texts written by programs keep working in any locale.
        QCOMPARE(CDbl(u"1.5"_qs), 1.5);
        QCOMPARE(CDbl(u"1e3"_qs), 1000.0);
        QCOMPARE(errorNumberOf([] { CDbl(u"0;5"_qs); }), ErrorNumber::TypeMismatch);
    }

    void cSngRange()
    {
        QCOMPARE(CSng(QVariant(0.1)), 0.1f);
        QCOMPARE(CSng(QVariant(3.4e38)), 3.4e38f);
        QCOMPARE(CSng(QVariant(double(std::numeric_limits<float>::max()))), std::numeric_limits<float>::max());
        QCOMPARE(CSng(QVariant(std::numeric_limits<float>::lowest())), std::numeric_limits<float>::lowest());
        QCOMPARE(errorNumberOf([] { CSng(QVariant(1e39)); }), ErrorNumber::Overflow);
        QCOMPARE(errorNumberOf([] { CSng(QVariant(-1e39)); }), ErrorNumber::Overflow);
        QCOMPARE(errorNumberOf([] { CSng(u"1e39"_qs); }), ErrorNumber::Overflow);
        QCOMPARE(errorNumberOf([] { CSng(QVariant(Infinity)); }), ErrorNumber::Overflow);
        QVERIFY(std::isnan(CSng(QVariant(NaN))));
        // Tiny values lose precision but do not overflow.
        QCOMPARE(CSng(QVariant(1e-50)), 0.0f);
    }

    void cBool_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("expected");
        QTest::addColumn<int>("error");

        QTest::newRow("True") << QVariant(u"True"_qs) << true << 0;
        QTest::newRow("FALSE") << QVariant(u"FALSE"_qs) << false << 0;
        QTest::newRow("tRuE with blanks") << QVariant(u" tRuE "_qs) << true << 0;
        QTest::newRow("false bytes") << QVariant(QByteArray("false")) << false << 0;
        QTest::newRow("string 0") << QVariant(u"0"_qs) << false << 0;
        QTest::newRow("string 2") << QVariant(u"2"_qs) << true << 0;
        QTest::newRow("string -0.0001") << QVariant(u"-0.0001"_qs) << true << 0;
        QTest::newRow("zero") << QVariant(0) << false << 0;
        QTest::newRow("-1") << QVariant(-1) << true << 0;
        QTest::newRow("small double") << QVariant(1e-300) << true << 0;
        QTest::newRow("bool true") << QVariant(true) << true << 0;
        QTest::newRow("bool false") << QVariant(false) << false << 0;
        QTest::newRow("Empty") << QVariant() << false << 0;
        QTest::newRow("yes") << QVariant(u"yes"_qs) << false << ErrorNumber::TypeMismatch;
        QTest::newRow("Truely") << QVariant(u"Truely"_qs) << false << ErrorNumber::TypeMismatch;
        QTest::newRow("empty string") << QVariant(u""_qs) << false << ErrorNumber::TypeMismatch;
        QTest::newRow("font") << QVariant(QFont()) << false << ErrorNumber::TypeMismatch;
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

        QTest::newRow("0.5") << 0.5 << u"50%"_qs;
        QTest::newRow("0.93") << 0.93 << u"93%"_qs;
        QTest::newRow("0.125 rounds up") << 0.125 << u"13%"_qs;
        QTest::newRow("0.135 rounds up") << 0.135 << u"14%"_qs;
        QTest::newRow("0.005 is exactly 0.5") << 0.005 << u"1%"_qs;
        QTest::newRow("0.285 is just below") << 0.285 << u"28%"_qs;
        QTest::newRow("0.0049999") << 0.0049999 << u"0%"_qs;
        QTest::newRow("1.5") << 1.5 << u"150%"_qs;
        QTest::newRow("-0.25") << -0.25 << u"-25%"_qs;
        QTest::newRow("-0.005 away from zero") << -0.005 << u"-1%"_qs;
        QTest::newRow("-0.001 no negative zero") << -0.001 << u"0%"_qs;
        QTest::newRow("0") << 0.0 << u"0%"_qs;
        QTest::newRow("-0") << -0.0 << u"0%"_qs;
        QTest::newRow("1") << 1.0 << u"100%"_qs;
        QTest::newRow("no group separator") << 123456.0 << u"12345600%"_qs;
        QTest::newRow("beyond 64 bits") << 1e20 << u"10000000000000000000000%"_qs;
    }

    void percentFormat()
    {
        QFETCH(double, value);
        QFETCH(QString, expected);
        LocaleScope english(QLocale(QLocale::English, QLocale::UnitedStates));
        QCOMPARE(formatPercent(value), expected);
    }

    void percentFormatFollowsLocale()
    {
        {
            LocaleScope german(QLocale(QLocale::German, QLocale::Germany));
            QCOMPARE(formatPercent(12.3456), u"1235%"_qs);
        }
        {
            // Swedish writes the minus as U+2212.
            LocaleScope swedish(QLocale(QLocale::Swedish, QLocale::Sweden));
            QCOMPARE(formatPercent(-0.25), u"\u221225%"_qs);
        }
        {
            LocaleScope arabic(QLocale(QLocale::Arabic, QLocale::Egypt));
            QCOMPARE(formatPercent(0.5), u"\u0665\u0660%"_qs);
        }
    }

    void dateTexts()
    {
        const QDateTime afternoon(QDate(2026, 3, 14), QTime(13, 5, 9));
        {
            LocaleScope british(QLocale(QLocale::English, QLocale::UnitedKingdom));
            QCOMPARE(formatGeneralDate(afternoon), u"14/03/2026 13:05:09"_qs);
            QCOMPARE(formatGeneralDate(QDateTime(QDate(2026, 3, 14), QTime(0, 0))), u"14/03/2026"_qs);
        }
        LocaleScope american(QLocale(QLocale::English, QLocale::UnitedStates));
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
