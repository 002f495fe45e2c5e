#include "KeloEnums.h"
#include "PropertyBag.h"
#include "RuntimeError.h"

#include <QBuffer>
#include <QColor>
#include <QDateTime>
#include <QFont>
#include <QImage>
#include <QPixmap>
#include <QPoint>
#include <QRegularExpression>
#include <QTest>

#include <bit>
#include <cmath>
#include <limits>

using namespace Kelocontrols;

namespace {

// A default no round-trip value ever equals, so WriteProperty always stores.
QVariant unusedDefault()
{
    return QVariant(QStringLiteral("\x01unused default\x01"));
}

// The error a call raised; number 0 when it returned normally.
template<typename Call>
RuntimeError errorOf(Call call)
{
    try {
        call();
    } catch (const RuntimeError &error) {
        return error;
    }
    return RuntimeError(0, QString());
}

QImage checkerImage(QImage::Format format, bool withAlpha)
{
    QImage image(5, 3, format);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int alpha = withAlpha ? (x * 60 + y * 7) % 256 : 255;
            image.setPixelColor(x, y, QColor((x * 53) % 256, (y * 97) % 256, (x * y * 31) % 256, alpha));
        }
    }
    return image;
}

// Pixel-by-pixel equality, whatever the storage formats.
bool samePixels(QImage a, QImage b)
{
    if (a.size() != b.size() || a.isNull() != b.isNull()) {
        return false;
    }
    a = a.convertToFormat(QImage::Format_ARGB32);
    b = b.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (a.pixel(x, y) != b.pixel(x, y)) {
                return false;
            }
        }
    }
    return true;
}

// Exact equality of two values of the same type: floating-point numbers
// bit for bit (so no rounding slip hides), pictures pixel for pixel.
bool sameContent(const QVariant &a, const QVariant &b)
{
    if (a.typeId() != b.typeId()) {
        return false;
    }
    switch (a.typeId()) {
    case QMetaType::Float:
        return std::bit_cast<quint32>(a.toFloat()) == std::bit_cast<quint32>(b.toFloat());
    case QMetaType::Double:
        return std::bit_cast<quint64>(a.toDouble()) == std::bit_cast<quint64>(b.toDouble());
    case QMetaType::QPixmap:
        return samePixels(a.value<QPixmap>().toImage(), b.value<QPixmap>().toImage());
    case QMetaType::QImage:
        return samePixels(a.value<QImage>(), b.value<QImage>());
    case QMetaType::QDateTime:
        return a.toDateTime() == b.toDateTime() && a.toDateTime().offsetFromUtc() == b.toDateTime().offsetFromUtc();
    default:
        return a == b;
    }
}

} // namespace

class TestPropertyBag : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundTripKeepsValueAndType_data();
    void roundTripKeepsValueAndType();
    void wholeBagRoundTripKeepsOrder();
    void textFormIsOnePropertyPerLine();
    void namesAreComparedWithoutCase();
    void writingTheDefaultForgetsAnEarlierValue();
    void defaultComparison_data();
    void defaultComparison();
    void malformedTextRaisesInvalidFileFormat_data();
    void malformedTextRaisesInvalidFileFormat();
    void commentsBlankLinesAndCrLfAreAccepted();
    void unsupportedTypeIsATypeMismatch();
    void bagTravelsInAVariant();
};

void TestPropertyBag::roundTripKeepsValueAndType_data()
{
    QTest::addColumn<QVariant>("value");

    QTest::newRow("bool true") << QVariant(true);
    QTest::newRow("bool false") << QVariant(false);
    QTest::newRow("int -1") << QVariant(-1);
    QTest::newRow("int min") << QVariant(std::numeric_limits<int>::min());
    QTest::newRow("int max") << QVariant(std::numeric_limits<int>::max());
    QTest::newRow("uint button face") << QVariant(uint(0x8000000F));
    QTest::newRow("uint max") << QVariant(std::numeric_limits<uint>::max());
    QTest::newRow("long min") << QVariant(std::numeric_limits<qlonglong>::min());
    QTest::newRow("long max") << QVariant(std::numeric_limits<qlonglong>::max());
    QTest::newRow("long 2^53+1") << QVariant(qlonglong(9007199254740993LL));
    QTest::newRow("ulong max") << QVariant(std::numeric_limits<qulonglong>::max());

    QTest::newRow("float 0.1") << QVariant(0.1f);
    QTest::newRow("float -1.5e-7") << QVariant(-1.5e-7f);
    QTest::newRow("float 2^24") << QVariant(16777216.0f);
    QTest::newRow("float max") << QVariant(std::numeric_limits<float>::max());
    QTest::newRow("float lowest") << QVariant(std::numeric_limits<float>::lowest());
    QTest::newRow("float denormal") << QVariant(std::numeric_limits<float>::denorm_min());
    QTest::newRow("float infinity") << QVariant(std::numeric_limits<float>::infinity());
    QTest::newRow("double 0.1") << QVariant(0.1);
    QTest::newRow("double 1/3") << QVariant(1.0 / 3.0);
    QTest::newRow("double -123456.789e-10") << QVariant(-123456.789e-10);
    QTest::newRow("double max") << QVariant(std::numeric_limits<double>::max());
    QTest::newRow("double denormal") << QVariant(std::numeric_limits<double>::denorm_min());
    QTest::newRow("double -infinity") << QVariant(-std::numeric_limits<double>::infinity());

    QTest::newRow("plain string") << QVariant(QStringLiteral("Hello"));
    QTest::newRow("quotes and backslashes") << QVariant(QStringLiteral("say \"hi\" to C:\\dir\\ and \\\\server\\"));
    QTest::newRow("ends in a backslash") << QVariant(QStringLiteral("C:\\"));
    QTest::newRow("CR-LF lines") << QVariant(QStringLiteral("first line\r\nsecond line\r\n"));
    QTest::newRow("lone LF and CR") << QVariant(QStringLiteral("a\nb\rc"));
    QTest::newRow("tabs") << QVariant(QStringLiteral("\tcol1\tcol2\t"));
    QTest::newRow("control characters") << QVariant(
        QString(QStringLiteral("nul:") + QChar(0) + QStringLiteral(" soh:") + QChar(1) + QStringLiteral(" esc:")
            + QChar(0x1b) + QStringLiteral(" us:") + QChar(0x1f) + QStringLiteral(" del:") + QChar(0x7f)));
    QTest::newRow("Unicode line separators") << QVariant(QStringLiteral("a\u0085b\u2028c\u2029d"));
    QTest::newRow("non-ASCII") << QVariant(QStringLiteral("Grüße – ünïcödé 日本語 \U0001F600 \u00A0nbsp"));
    QTest::newRow("padding spaces") << QVariant(QStringLiteral("  padded  "));
    QTest::newRow("looks like syntax") << QVariant(QStringLiteral("# Count = int:5 ] [ , \\u0041"));
    QTest::newRow("empty string") << QVariant(QStringLiteral(""));
    QTest::newRow("empty value") << QVariant();

    QTest::newRow("empty string list") << QVariant(QStringList());
    QTest::newRow("list of one empty string") << QVariant(QStringList{QString()});
    QTest::newRow("string list") << QVariant(QStringList{QStringLiteral("C:\\My Folders"), QStringLiteral("a,b"),
        QStringLiteral("[x]"), QStringLiteral("\"q\""), QStringLiteral("line\r\nbreak"), QStringLiteral("ü")});

    QByteArray allBytes;
    for (int i = 0; i < 256; ++i) {
        allBytes.append(char(i));
    }
    QTest::newRow("empty byte array") << QVariant(QByteArray());
    QTest::newRow("all byte values") << QVariant(allBytes);

    QFont font(QStringLiteral("DejaVu Sans"), 11, QFont::Bold, true);
    font.setUnderline(true);
    font.setStrikeOut(true);
    QTest::newRow("font bold italic") << QVariant(font);
    QFont pixelFont(QStringLiteral("DejaVu Serif"));
    pixelFont.setPixelSize(17);
    QTest::newRow("font pixel size") << QVariant(pixelFont);

    QTest::newRow("colour with alpha") << QVariant(QColor(1, 2, 3, 128));
    QTest::newRow("colour transparent") << QVariant(QColor(0x12, 0x34, 0x56, 0));
    QTest::newRow("colour invalid") << QVariant(QColor());

    QTest::newRow("pixmap opaque") << QVariant(QPixmap::fromImage(checkerImage(QImage::Format_RGB32, false)));
    QTest::newRow("pixmap alpha") << QVariant(QPixmap::fromImage(checkerImage(QImage::Format_ARGB32, true)));
    QTest::newRow("pixmap null") << QVariant(QPixmap());
    QTest::newRow("image RGB32") << QVariant(checkerImage(QImage::Format_RGB32, false));
    QTest::newRow("image ARGB32") << QVariant(checkerImage(QImage::Format_ARGB32, true));
    QTest::newRow("image null") << QVariant(QImage());

    QTest::newRow("date-time local with ms") << QVariant(QDateTime(QDate(2024, 2, 29), QTime(23, 59, 58, 987)));
    QTest::newRow("date-time UTC") << QVariant(QDateTime(QDate(1999, 12, 31), QTime(12, 0), Qt::UTC));
    QTest::newRow("date-time offset") << QVariant(
        QDateTime(QDate(2010, 6, 1), QTime(8, 30, 15, 1), Qt::OffsetFromUTC, 7200));
    QTest::newRow("date") << QVariant(QDate(2024, 2, 29));
    QTest::newRow("date year 1") << QVariant(QDate(1, 1, 1));
    QTest::newRow("null date") << QVariant(QDate());
    QTest::newRow("null date-time") << QVariant(QDateTime());
}

void TestPropertyBag::roundTripKeepsValueAndType()
{
    QFETCH(QVariant, value);

    PropertyBag bag;
    bag.WriteProperty(QStringLiteral("Value"), value, unusedDefault());
    QVERIFY(bag.contains(QStringLiteral("Value")));
    QVERIFY(sameContent(bag.ReadProperty(QStringLiteral("Value")), value));

    const QString text = bag.toText();
    PropertyBag back;
    try {
        back = PropertyBag::fromText(text);
    } catch (const RuntimeError &error) {
        QFAIL(qPrintable(QStringLiteral("%1 (%2) for %3").arg(error.description()).arg(error.number()).arg(text)));
    }
    QCOMPARE(back.names(), QStringList{QStringLiteral("Value")});
    const QVariant read = back.ReadProperty(QStringLiteral("Value"), unusedDefault());
    QCOMPARE(QString::fromLatin1(read.metaType().name()), QString::fromLatin1(value.metaType().name()));
    QVERIFY2(sameContent(read, value), qPrintable(text));
    QVERIFY2(back == bag, qPrintable(text));
    // Writing the bag read back gives the same text again.
    QCOMPARE(back.toText(), text);
}

void TestPropertyBag::wholeBagRoundTripKeepsOrder()
{
    PropertyBag bag;
    bag.WriteProperty(QStringLiteral("ScoreStar"), 0.9f, 0.95f);
    bag.WriteProperty(QStringLiteral("BackColor"), uint(0x00FF8040), uint(0x8000000F));
    bag.WriteProperty(QStringLiteral("ToolTip"), QStringLiteral("Needs \"review\"\r\n"), QString());
    bag.WriteProperty(QStringLiteral("Enabled"), false, true);
    bag.WriteProperty(QStringLiteral("Font"), QFont(QStringLiteral("DejaVu Sans"), 10), QVariant());
    bag.WriteProperty(
        QStringLiteral("Folders"), QStringList{QStringLiteral("/home"), QStringLiteral("/tmp")}, QStringList());

    const PropertyBag back = PropertyBag::fromText(bag.toText());
    QCOMPARE(back.names(),
        (QStringList{QStringLiteral("ScoreStar"), QStringLiteral("BackColor"), QStringLiteral("ToolTip"),
            QStringLiteral("Enabled"), QStringLiteral("Font"), QStringLiteral("Folders")}));
    QVERIFY(back == bag);
    QCOMPARE(back.ReadProperty(QStringLiteral("ScoreStar")).toFloat(), 0.9f);
    QCOMPARE(back.ReadProperty(QStringLiteral("ToolTip")).toString(), QStringLiteral("Needs \"review\"\r\n"));
    QCOMPARE(back.ReadProperty(QStringLiteral("Enabled")).typeId(), int(QMetaType::Bool));

    // An empty bag is an empty text, and an empty text an empty bag.
    QCOMPARE(PropertyBag().toText(), QString());
    QVERIFY(PropertyBag::fromText(QString()).isEmpty());
    QVERIFY(PropertyBag::fromText(QStringLiteral("\n\n")).isEmpty());
}

void TestPropertyBag::textFormIsOnePropertyPerLine()
{
    PropertyBag bag;
    bag.WriteProperty(QStringLiteral("Caption"), QStringLiteral("a\r\nb\tc \"d\" \\e"));
    bag.WriteProperty(QStringLiteral("Count"), 3);
    bag.WriteProperty(QStringLiteral("Visible"), true);
    bag.WriteProperty(QStringLiteral("Color"), uint(0x8000000F));

    QCOMPARE(bag.toText(),
        QStringLiteral("Caption = string:\"a\\r\\nb\\tc \\\"d\\\" \\\\e\"\n"
                       "Count = int:3\n"
                       "Visible = bool:True\n"
                       "Color = uint:2147483663\n"));

    // Whatever the strings hold, no value spreads over more than its line.
    PropertyBag awkward;
    awkward.WriteProperty(QStringLiteral("A"), QString::fromLatin1("x\ry\nz\x0b\x0c\x1c\x1d\x1e\x85"));
    awkward.WriteProperty(QStringLiteral("B"), QStringList{QStringLiteral("\n"), QStringLiteral("\r")});
    const QString text = awkward.toText();
    QCOMPARE(text.count(QLatin1Char('\n')), 2);
    QVERIFY(!text.contains(QLatin1Char('\r')));
}

void TestPropertyBag::namesAreComparedWithoutCase()
{
    PropertyBag bag;
    bag.WriteProperty(QStringLiteral("BackColor"), 255);
    bag.WriteProperty(QStringLiteral("Caption"), QStringLiteral("first"));

    QVERIFY(bag.contains(QStringLiteral("backcolor")));
    QVERIFY(bag.contains(QStringLiteral("BACKCOLOR")));
    QVERIFY(!bag.contains(QStringLiteral("BackColour")));
    QCOMPARE(bag.ReadProperty(QStringLiteral("BACKCOLOR"), 7).toInt(), 255);
    QCOMPARE(bag.ReadProperty(QStringLiteral("Missing"), 7).toInt(), 7);
    QVERIFY(!bag.ReadProperty(QStringLiteral("Missing")).isValid());

    // Replacing a value keeps the first spelling and position of its name.
    bag.WriteProperty(QStringLiteral("CAPTION"), QStringLiteral("second"));
    bag.WriteProperty(QStringLiteral("backcolor"), 128);
    QCOMPARE(bag.count(), 2);
    QCOMPARE(bag.names(), (QStringList{QStringLiteral("BackColor"), QStringLiteral("Caption")}));
    QCOMPARE(bag.ReadProperty(QStringLiteral("caption")).toString(), QStringLiteral("second"));
    QCOMPARE(bag.ReadProperty(QStringLiteral("BackColor")).toInt(), 128);

    // A value of another type replaces the earlier one entirely.
    bag.WriteProperty(QStringLiteral("Caption"), 42);
    QCOMPARE(bag.ReadProperty(QStringLiteral("Caption")).typeId(), int(QMetaType::Int));

    // The text form reads back without regard to case as well.
    const PropertyBag back = PropertyBag::fromText(QStringLiteral("pathroot = string:\"/tmp\"\n"));
    QCOMPARE(back.ReadProperty(QStringLiteral("PathRoot")).toString(), QStringLiteral("/tmp"));
    QCOMPARE(back.names(), QStringList{QStringLiteral("pathroot")});
}

void TestPropertyBag::writingTheDefaultForgetsAnEarlierValue()
{
    PropertyBag bag;
    bag.WriteProperty(QStringLiteral("Count"), 3, 3);
    QVERIFY(bag.isEmpty());

    bag.WriteProperty(QStringLiteral("First"), 1, 0);
    bag.WriteProperty(QStringLiteral("Count"), 5, 3);
    bag.WriteProperty(QStringLiteral("Last"), 1, 0);
    QCOMPARE(bag.names(), (QStringList{QStringLiteral("First"), QStringLiteral("Count"), QStringLiteral("Last")}));

    bag.WriteProperty(QStringLiteral("COUNT"), 3, 3);
    QCOMPARE(bag.names(), (QStringList{QStringLiteral("First"), QStringLiteral("Last")}));
    QCOMPARE(bag.ReadProperty(QStringLiteral("Count"), 3).toInt(), 3);
    QVERIFY(!bag.toText().contains(QStringLiteral("Count")));

    // Written again later, it goes to the end.
    bag.WriteProperty(QStringLiteral("Count"), 4, 3);
    QCOMPARE(bag.names().last(), QStringLiteral("Count"));

    // With no default given, only an empty value counts as the default.
    bag.clear();
    bag.WriteProperty(QStringLiteral("Tag"), QVariant());
    QVERIFY(bag.isEmpty());
    bag.WriteProperty(QStringLiteral("Tag"), QString());
    QCOMPARE(bag.count(), 1);
}

void TestPropertyBag::defaultComparison_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("defaultValue");
    QTest::addColumn<bool>("stored");

    QTest::newRow("float 0.5 vs double 0.5") << QVariant(0.5f) << QVariant(0.5) << false;
    QTest::newRow("double 0.5 vs float 0.5") << QVariant(0.5) << QVariant(0.5f) << false;
    QTest::newRow("int 1 vs double 1.0") << QVariant(1) << QVariant(1.0) << false;
    QTest::newRow("short 7 vs int 7") << QVariant::fromValue(short(7)) << QVariant(7) << false;
    QTest::newRow("uint vs long same value") << QVariant(uint(0x8000000F)) << QVariant(qlonglong(0x8000000F)) << false;
    QTest::newRow("uint system colour vs negative int")
        << QVariant(uint(0x8000000F)) << QVariant(int(-2147483633)) << true;
    QTest::newRow("long 2^53+1 vs 2^53") << QVariant(qlonglong(9007199254740993LL))
                                         << QVariant(qlonglong(9007199254740992LL)) << true;
    QTest::newRow("ulong 2^53+1 vs double 2^53")
        << QVariant(qulonglong(9007199254740993ULL)) << QVariant(9007199254740992.0) << true;
    QTest::newRow("ulong max vs long -1")
        << QVariant(std::numeric_limits<qulonglong>::max()) << QVariant(qlonglong(-1)) << true;
    QTest::newRow("int 2 vs double 2.5") << QVariant(2) << QVariant(2.5) << true;
    QTest::newRow("enum vs its int") << QVariant::fromValue(keloShowValue::AtLeft) << QVariant(1) << false;
    QTest::newRow("enum vs same enum") << QVariant::fromValue(keloShowValue::Adjust)
                                       << QVariant::fromValue(keloShowValue::Adjust) << false;
    QTest::newRow("enum vs other enum value")
        << QVariant::fromValue(keloShowValue::Adjust) << QVariant::fromValue(keloShowValue::AtLeft) << true;
    QTest::newRow("bool true vs int 1") << QVariant(true) << QVariant(1) << true;
    QTest::newRow("bool false vs false") << QVariant(false) << QVariant(false) << false;
    QTest::newRow("text 5 vs int 5") << QVariant(QStringLiteral("5")) << QVariant(5) << true;
    QTest::newRow("text is case-sensitive")
        << QVariant(QStringLiteral("abc")) << QVariant(QStringLiteral("ABC")) << true;
    QTest::newRow("null vs empty text") << QVariant(QString()) << QVariant(QStringLiteral("")) << false;
    QTest::newRow("empty text vs empty value") << QVariant(QStringLiteral("")) << QVariant() << true;
    QTest::newRow("equal colours") << QVariant(QColor(1, 2, 3)) << QVariant(QColor(1, 2, 3)) << false;
    QTest::newRow("colours differing in alpha") << QVariant(QColor(1, 2, 3, 254)) << QVariant(QColor(1, 2, 3)) << true;
    QTest::newRow("equal fonts") << QVariant(QFont(QStringLiteral("DejaVu Sans"), 9))
                                 << QVariant(QFont(QStringLiteral("DejaVu Sans"), 9)) << false;
    QTest::newRow("fonts differing in size") << QVariant(QFont(QStringLiteral("DejaVu Sans"), 9))
                                             << QVariant(QFont(QStringLiteral("DejaVu Sans"), 10)) << true;
    QTest::newRow("equal pictures, two pixmaps")
        << QVariant(QPixmap::fromImage(checkerImage(QImage::Format_RGB32, false)))
        << QVariant(QPixmap::fromImage(checkerImage(QImage::Format_RGB32, false))) << false;
    QTest::newRow("null pixmaps") << QVariant(QPixmap()) << QVariant(QPixmap()) << false;
    QTest::newRow("equal lists") << QVariant(QStringList{QStringLiteral("a")})
                                 << QVariant(QStringList{QStringLiteral("a")}) << false;
}

void TestPropertyBag::defaultComparison()
{
    QFETCH(QVariant, value);
    QFETCH(QVariant, defaultValue);
    QFETCH(bool, stored);

    PropertyBag bag;
    bag.WriteProperty(QStringLiteral("P"), value, defaultValue);
    QCOMPARE(bag.contains(QStringLiteral("P")), stored);
    QCOMPARE(PropertyBag::sameValue(value, defaultValue), !stored);
    QCOMPARE(PropertyBag::sameValue(defaultValue, value), !stored);
}

void TestPropertyBag::malformedTextRaisesInvalidFileFormat_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("line");

    const QString notPng = QString::fromLatin1(QByteArray("hello, not a picture").toBase64());

    QTest::newRow("missing =") << QStringLiteral("Caption string:\"x\"") << 1;
    QTest::newRow("missing type") << QStringLiteral("Caption = \"x\"") << 1;
    QTest::newRow("missing value") << QStringLiteral("Caption =") << 1;
    QTest::newRow("missing name") << QStringLiteral(" = int:1") << 1;
    QTest::newRow("name starts with digit") << QStringLiteral("1st = int:1") << 1;
    QTest::newRow("unknown type") << QStringLiteral("Caption = widget:1") << 1;
    QTest::newRow("type in capitals") << QStringLiteral("Count = Int:1") << 1;
    QTest::newRow("bad number") << QStringLiteral("Count = int:12a") << 1;
    QTest::newRow("empty number") << QStringLiteral("Count = int:") << 1;
    QTest::newRow("hex number") << QStringLiteral("Count = int:0x10") << 1;
    QTest::newRow("int overflow") << QStringLiteral("Count = int:2147483648") << 1;
    QTest::newRow("negative uint") << QStringLiteral("Color = uint:-1") << 1;
    QTest::newRow("uint overflow") << QStringLiteral("Color = uint:4294967296") << 1;
    QTest::newRow("bad float") << QStringLiteral("Star = float:1.2.3") << 1;
    QTest::newRow("float overflow") << QStringLiteral("Star = float:1e39") << 1;
    QTest::newRow("bad double") << QStringLiteral("Value = double:one") << 1;
    QTest::newRow("bool true lower case") << QStringLiteral("Enabled = bool:true") << 1;
    QTest::newRow("bool 1") << QStringLiteral("Enabled = bool:1") << 1;
    QTest::newRow("bool empty") << QStringLiteral("Enabled = bool:") << 1;
    QTest::newRow("unquoted string") << QStringLiteral("Caption = string:abc") << 1;
    QTest::newRow("unterminated quote") << QStringLiteral("Caption = string:\"abc") << 1;
    QTest::newRow("escaped closing quote") << QStringLiteral("Caption = string:\"abc\\\"") << 1;
    QTest::newRow("backslash at line end") << QStringLiteral("Caption = string:\"abc\\") << 1;
    QTest::newRow("bad escape") << QStringLiteral("Caption = string:\"a\\qb\"") << 1;
    QTest::newRow("short \\u escape") << QStringLiteral("Caption = string:\"\\u12\"") << 1;
    QTest::newRow("bad \\u escape") << QStringLiteral("Caption = string:\"\\uZZZZ\"") << 1;
    QTest::newRow("junk after string") << QStringLiteral("Caption = string:\"a\" b") << 1;
    QTest::newRow("two strings") << QStringLiteral("Caption = string:\"a\"\"b\"") << 1;
    QTest::newRow("junk after number") << QStringLiteral("Count = int:5 6") << 1;
    QTest::newRow("list without brackets") << QStringLiteral("Items = stringlist:\"a\"") << 1;
    QTest::newRow("list without comma") << QStringLiteral("Items = stringlist:[\"a\" \"b\"]") << 1;
    QTest::newRow("list unterminated") << QStringLiteral("Items = stringlist:[\"a\",") << 1;
    QTest::newRow("list unquoted item") << QStringLiteral("Items = stringlist:[a]") << 1;
    QTest::newRow("junk after list") << QStringLiteral("Items = stringlist:[\"a\"] x") << 1;
    QTest::newRow("empty with text") << QStringLiteral("Tag = empty:x") << 1;
    QTest::newRow("bad base64") << QStringLiteral("Data = bytes:@@@@") << 1;
    QTest::newRow("base64 with spaces inside") << QStringLiteral("Data = bytes:QU JD") << 1;
    QTest::newRow("bad base64 picture") << QStringLiteral("Picture = pixmap:!!") << 1;
    QTest::newRow("non-PNG pixmap") << (QStringLiteral("Picture = pixmap:") + notPng) << 1;
    QTest::newRow("non-PNG image") << (QStringLiteral("Picture = image:") + notPng) << 1;
    QTest::newRow("unquoted font") << QStringLiteral("Font = font:DejaVu Sans,10") << 1;
    QTest::newRow("bad colour") << QStringLiteral("Color = color:#zzzzzz") << 1;
    QTest::newRow("bad date") << QStringLiteral("When = date:2023-02-29") << 1;
    QTest::newRow("bad date-time") << QStringLiteral("When = datetime:yesterday") << 1;
    QTest::newRow("duplicate name") << QStringLiteral("Count = int:1\nCount = int:2\n") << 2;
    QTest::newRow("duplicate name other case") << QStringLiteral("Count = int:1\nX = int:0\ncount = int:2\n") << 3;
    QTest::newRow("line number counts comments and blanks")
        << QStringLiteral("# saved\n\nCount = int:1\n   \nEnabled = bool:yes\n") << 5;
    QTest::newRow("CR-LF lines") << QStringLiteral("A = int:1\r\nB = int:2\r\nC = int:x\r\n") << 3;
    QTest::newRow("line 12") << (QStringLiteral("\n").repeated(11) + QStringLiteral("A = int:")) << 12;
}

void TestPropertyBag::malformedTextRaisesInvalidFileFormat()
{
    QFETCH(QString, text);
    QFETCH(int, line);

    const RuntimeError error = errorOf([&] { PropertyBag::fromText(text); });
    QCOMPARE(error.number(), ErrorNumber::InvalidFileFormat);
    const QRegularExpression lineNumber(QStringLiteral("\\bline %1\\b").arg(line));
    QVERIFY2(lineNumber.match(error.description()).hasMatch(), qPrintable(error.description()));
    QVERIFY(error.description().startsWith(QStringLiteral("Invalid file format")));
}

void TestPropertyBag::commentsBlankLinesAndCrLfAreAccepted()
{
    const QString text = QStringLiteral("# Saved by the designer\r\n"
                                        "\r\n"
                                        "   # an indented comment\r\n"
                                        "Caption = string:\"# not a comment = int:1\"\r\n"
                                        "  \t \r\n"
                                        "Count=int:5\r\n"
                                        "\tLimit   =   double:  2.5   \r\n"
                                        "Lines = string:\"a\\r\\nb\"\r\n"
                                        "Last = bool:False");
    const PropertyBag bag = PropertyBag::fromText(text);
    QCOMPARE(bag.names(),
        (QStringList{QStringLiteral("Caption"), QStringLiteral("Count"), QStringLiteral("Limit"),
            QStringLiteral("Lines"), QStringLiteral("Last")}));
    QCOMPARE(bag.ReadProperty(QStringLiteral("Caption")).toString(), QStringLiteral("# not a comment = int:1"));
    QCOMPARE(bag.ReadProperty(QStringLiteral("Count")), QVariant(5));
    QCOMPARE(bag.ReadProperty(QStringLiteral("Limit")), QVariant(2.5));
    QCOMPARE(bag.ReadProperty(QStringLiteral("Lines")).toString(), QStringLiteral("a\r\nb"));
    QCOMPARE(bag.ReadProperty(QStringLiteral("Last")), QVariant(false));

    // The same bag written with LF line ends reads back equal.
    QVERIFY(PropertyBag::fromText(bag.toText()) == bag);
}

void TestPropertyBag::unsupportedTypeIsATypeMismatch()
{
    PropertyBag bag;
    bag.WriteProperty(QStringLiteral("Where"), QPoint(1, 2));
    QCOMPARE(bag.ReadProperty(QStringLiteral("Where")).toPoint(), QPoint(1, 2));
    QCOMPARE(errorOf([&] { bag.toText(); }).number(), ErrorNumber::TypeMismatch);

    // Names the text form could not read back are refused when written.
    for (const QString &name : {QStringLiteral("My Prop"), QStringLiteral("1st"), QString(), QStringLiteral("a=b")}) {
        QCOMPARE(errorOf([&] { bag.WriteProperty(name, 1, 0); }).number(), ErrorNumber::InvalidProcedureCall);
    }
    QCOMPARE(bag.count(), 1);
}

void TestPropertyBag::bagTravelsInAVariant()
{
    PropertyBag bag;
    bag.WriteProperty(QStringLiteral("Count"), 9, 0);
    const QVariant wrapped = QVariant::fromValue(bag);
    QVERIFY(wrapped.canConvert<PropertyBag>());
    QVERIFY(wrapped.value<PropertyBag>() == bag);

    PropertyBag other;
    other.WriteProperty(QStringLiteral("Count"), 9.0, 0);
    QVERIFY(other != bag); // same number, another type
    other.clear();
    other.WriteProperty(QStringLiteral("count"), 9, 0);
    QVERIFY(other != bag); // names as written
}

QTEST_MAIN(TestPropertyBag)
#include "tst_propertybag.moc"
