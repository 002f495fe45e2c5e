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
    return QVariant(u"\x01unused default\x01"_qs);
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

    QTest::newRow("plain string") << QVariant(u"Hello"_qs);
    QTest::newRow("quotes and backslashes") << QVariant(u"say \"hi\" to C:\\dir\\ and \\\\server\\"_qs);
    QTest::newRow("ends in a backslash") << QVariant(u"C:\\"_qs);
    QTest::newRow("CR-LF lines") << QVariant(u"first line\r\nsecond line\r\n"_qs);
    QTest::newRow("lone LF and CR") << QVariant(u"a\nb\rc"_qs);
    QTest::newRow("tabs") << QVariant(u"\tcol1\tcol2\t"_qs);
    QTest::newRow("control characters") << QVariant(QString(u"nul:"_qs + QChar(0) + u" soh:"_qs + QChar(1) + u" esc:"_qs
        + QChar(0x1b) + u" us:"_qs + QChar(0x1f) + u" del:"_qs + QChar(0x7f)));
    QTest::newRow("Unicode line separators") << QVariant(u"a\u0085b\u2028c\u2029d"_qs);
    QTest::newRow("non-ASCII") << QVariant(u"Grüße – ünïcödé 日本語 \U0001F600 \u00A0nbsp"_qs);
    QTest::newRow("padding spaces") << QVariant(u"  padded  "_qs);
    QTest::newRow("looks like syntax") << QVariant(u"# Count = int:5 ] [ , \\u0041"_qs);
    QTest::newRow("empty string") << QVariant(u""_qs);
    QTest::newRow("empty value") << QVariant();

    QTest::newRow("empty string list") << QVariant(QStringList());
    QTest::newRow("list of one empty string") << QVariant(QStringList{QString()});
    QTest::newRow("string list") << QVariant(
        QStringList{u"C:\\My Folders"_qs, u"a,b"_qs, u"[x]"_qs, u"\"q\""_qs, u"line\r\nbreak"_qs, u"ü"_qs});

    QByteArray allBytes;
    for (int i = 0; i < 256; ++i) {
        allBytes.append(char(i));
    }
    QTest::newRow("empty byte array") << QVariant(QByteArray());
    QTest::newRow("all byte values") << QVariant(allBytes);

    QFont font(u"DejaVu Sans"_qs, 11, QFont::Bold, true);
    font.setUnderline(true);
    font.setStrikeOut(true);
    QTest::newRow("font bold italic") << QVariant(font);
    QFont pixelFont(u"DejaVu Serif"_qs);
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
    bag.WriteProperty(u"Value"_qs, value, unusedDefault());
    QVERIFY(bag.contains(u"Value"_qs));
    QVERIFY(sameContent(bag.ReadProperty(u"Value"_qs), value));

    const QString text = bag.toText();
    PropertyBag back;
    try {
        back = PropertyBag::fromText(text);
    } catch (const RuntimeError &error) {
        QFAIL(qPrintable(u"%1 (%2) for %3"_qs.arg(error.description()).arg(error.number()).arg(text)));
    }
    QCOMPARE(back.names(), QStringList{u"Value"_qs});
    const QVariant read = back.ReadProperty(u"Value"_qs, unusedDefault());
    QCOMPARE(QString::fromLatin1(read.metaType().name()), QString::fromLatin1(value.metaType().name()));
    QVERIFY2(sameContent(read, value), qPrintable(text));
    QVERIFY2(back == bag, qPrintable(text));
    // Writing the bag read back gives the same text again.
    QCOMPARE(back.toText(), text);
}

void TestPropertyBag::wholeBagRoundTripKeepsOrder()
{
    PropertyBag bag;
    bag.WriteProperty(u"ScoreStar"_qs, 0.9f, 0.95f);
    bag.WriteProperty(u"BackColor"_qs, uint(0x00FF8040), uint(0x8000000F));
    bag.WriteProperty(u"ToolTip"_qs, u"Needs \"review\"\r\n"_qs, QString());
    bag.WriteProperty(u"Enabled"_qs, false, true);
    bag.WriteProperty(u"Font"_qs, QFont(u"DejaVu Sans"_qs, 10), QVariant());
    bag.WriteProperty(u"Folders"_qs, QStringList{u"/home"_qs, u"/tmp"_qs}, QStringList());

    const PropertyBag back = PropertyBag::fromText(bag.toText());
    QCOMPARE(back.names(),
        (QStringList{u"ScoreStar"_qs, u"BackColor"_qs, u"ToolTip"_qs, u"Enabled"_qs, u"Font"_qs, u"Folders"_qs}));
    QVERIFY(back == bag);
    QCOMPARE(back.ReadProperty(u"ScoreStar"_qs).toFloat(), 0.9f);
    QCOMPARE(back.ReadProperty(u"ToolTip"_qs).toString(), u"Needs \"review\"\r\n"_qs);
    QCOMPARE(back.ReadProperty(u"Enabled"_qs).typeId(), int(QMetaType::Bool));

    // An empty bag is an empty text, and an empty text an empty bag.
    QCOMPARE(PropertyBag().toText(), QString());
    QVERIFY(PropertyBag::fromText(QString()).isEmpty());
    QVERIFY(PropertyBag::fromText(u"\n\n"_qs).isEmpty());
}

void TestPropertyBag::textFormIsOnePropertyPerLine()
{
    PropertyBag bag;
    bag.WriteProperty(u"Caption"_qs, u"a\r\nb\tc \"d\" \\e"_qs);
    bag.WriteProperty(u"Count"_qs, 3);
    bag.WriteProperty(u"Visible"_qs, true);
    bag.WriteProperty(u"Color"_qs, uint(0x8000000F));

    QCOMPARE(bag.toText(),
        QStringLiteral("Caption = string:\"a\\r\\nb\\tc \\\"d\\\" \\\\e\"\n"
                       "Count = int:3\n"
                       "Visible = bool:True\n"
                       "Color = uint:2147483663\n"));

    // Whatever the strings hold, no value spreads over more than its line.
    PropertyBag awkward;
    awkward.WriteProperty(u"A"_qs, QString::fromLatin1("x\ry\nz\x0b\x0c\x1c\x1d\x1e\x85"));
    awkward.WriteProperty(u"B"_qs, QStringList{u"\n"_qs, u"\r"_qs});
    const QString text = awkward.toText();
    QCOMPARE(text.count(QLatin1Char('\n')), 2);
    QVERIFY(!text.contains(QLatin1Char('\r')));
}

void TestPropertyBag::namesAreComparedWithoutCase()
{
    PropertyBag bag;
    bag.WriteProperty(u"BackColor"_qs, 255);
    bag.WriteProperty(u"Caption"_qs, u"first"_qs);

    QVERIFY(bag.contains(u"backcolor"_qs));
    QVERIFY(bag.contains(u"BACKCOLOR"_qs));
    QVERIFY(!bag.contains(u"BackColour"_qs));
    QCOMPARE(bag.ReadProperty(u"BACKCOLOR"_qs, 7).toInt(), 255);
    QCOMPARE(bag.ReadProperty(u"Missing"_qs, 7).toInt(), 7);
    QVERIFY(!bag.ReadProperty(u"Missing"_qs).isValid());

    // Replacing a value keeps the first spelling and position of its name.
    bag.WriteProperty(u"CAPTION"_qs, u"second"_qs);
    bag.WriteProperty(u"backcolor"_qs, 128);
    QCOMPARE(bag.count(), 2);
    QCOMPARE(bag.names(), (QStringList{u"BackColor"_qs, u"Caption"_qs}));
    QCOMPARE(bag.ReadProperty(u"caption"_qs).toString(), u"second"_qs);
    QCOMPARE(bag.ReadProperty(u"BackColor"_qs).toInt(), 128);

    // A value of another type replaces the earlier one entirely.
    bag.WriteProperty(u"Caption"_qs, 42);
    QCOMPARE(bag.ReadProperty(u"Caption"_qs).typeId(), int(QMetaType::Int));

    // The text form reads back without regard to case as well.
    const PropertyBag back = PropertyBag::fromText(u"pathroot = string:\"/tmp\"\n"_qs);
    QCOMPARE(back.ReadProperty(u"PathRoot"_qs).toString(), u"/tmp"_qs);
    QCOMPARE(back.names(), QStringList{u"pathroot"_qs});
}

void TestPropertyBag::writingTheDefaultForgetsAnEarlierValue()
{
    PropertyBag bag;
    bag.WriteProperty(u"Count"_qs, 3, 3);
    QVERIFY(bag.isEmpty());

    bag.WriteProperty(u"First"_qs, 1, 0);
    bag.WriteProperty(u"Count"_qs, 5, 3);
    bag.WriteProperty(u"Last"_qs, 1, 0);
    QCOMPARE(bag.names(), (QStringList{u"First"_qs, u"Count"_qs, u"Last"_qs}));

    bag.WriteProperty(u"COUNT"_qs, 3, 3);
    QCOMPARE(bag.names(), (QStringList{u"First"_qs, u"Last"_qs}));
    QCOMPARE(bag.ReadProperty(u"Count"_qs, 3).toInt(), 3);
    QVERIFY(!bag.toText().contains(u"Count"_qs));

    // Written again later, it goes to the end.
    bag.WriteProperty(u"Count"_qs, 4, 3);
    QCOMPARE(bag.names().last(), u"Count"_qs);

    // With no default given, only an empty value counts as the default.
    bag.clear();
    bag.WriteProperty(u"Tag"_qs, QVariant());
    QVERIFY(bag.isEmpty());
    bag.WriteProperty(u"Tag"_qs, QString());
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
    QTest::newRow("text 5 vs int 5") << QVariant(u"5"_qs) << QVariant(5) << true;
    QTest::newRow("text is case-sensitive") << QVariant(u"abc"_qs) << QVariant(u"ABC"_qs) << true;
    QTest::newRow("null vs empty text") << QVariant(QString()) << QVariant(u""_qs) << false;
    QTest::newRow("empty text vs empty value") << QVariant(u""_qs) << QVariant() << true;
    QTest::newRow("equal colours") << QVariant(QColor(1, 2, 3)) << QVariant(QColor(1, 2, 3)) << false;
    QTest::newRow("colours differing in alpha") << QVariant(QColor(1, 2, 3, 254)) << QVariant(QColor(1, 2, 3)) << true;
    QTest::newRow("equal fonts") << QVariant(QFont(u"DejaVu Sans"_qs, 9)) << QVariant(QFont(u"DejaVu Sans"_qs, 9))
                                 << false;
    QTest::newRow("fonts differing in size")
        << QVariant(QFont(u"DejaVu Sans"_qs, 9)) << QVariant(QFont(u"DejaVu Sans"_qs, 10)) << true;
    QTest::newRow("equal pictures, two pixmaps")
        << QVariant(QPixmap::fromImage(checkerImage(QImage::Format_RGB32, false)))
        << QVariant(QPixmap::fromImage(checkerImage(QImage::Format_RGB32, false))) << false;
    QTest::newRow("null pixmaps") << QVariant(QPixmap()) << QVariant(QPixmap()) << false;
    QTest::newRow("equal lists") << QVariant(QStringList{u"a"_qs}) << QVariant(QStringList{u"a"_qs}) << false;
}

void TestPropertyBag::defaultComparison()
{
    QFETCH(QVariant, value);
    QFETCH(QVariant, defaultValue);
    QFETCH(bool, stored);

    PropertyBag bag;
    bag.WriteProperty(u"P"_qs, value, defaultValue);
    QCOMPARE(bag.contains(u"P"_qs), stored);
    QCOMPARE(PropertyBag::sameValue(value, defaultValue), !stored);
    QCOMPARE(PropertyBag::sameValue(defaultValue, value), !stored);
}

void TestPropertyBag::malformedTextRaisesInvalidFileFormat_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("line");

    const QString notPng = QString::fromLatin1(QByteArray("hello, not a picture").toBase64());

    QTest::newRow("missing =") << u"Caption string:\"x\""_qs << 1;
    QTest::newRow("missing type") << u"Caption = \"x\""_qs << 1;
    QTest::newRow("missing value") << u"Caption ="_qs << 1;
    QTest::newRow("missing name") << u" = int:1"_qs << 1;
    QTest::newRow("name starts with digit") << u"1st = int:1"_qs << 1;
    QTest::newRow("unknown type") << u"Caption = widget:1"_qs << 1;
    QTest::newRow("type in capitals") << u"Count = Int:1"_qs << 1;
    QTest::newRow("bad number") << u"Count = int:12a"_qs << 1;
    QTest::newRow("empty number") << u"Count = int:"_qs << 1;
    QTest::newRow("hex number") << u"Count = int:0x10"_qs << 1;
    QTest::newRow("int overflow") << u"Count = int:2147483648"_qs << 1;
    QTest::newRow("negative uint") << u"Color = uint:-1"_qs << 1;
    QTest::newRow("uint overflow") << u"Color = uint:4294967296"_qs << 1;
    QTest::newRow("bad float") << u"Star = float:1.2.3"_qs << 1;
    QTest::newRow("float overflow") << u"Star = float:1e39"_qs << 1;
    QTest::newRow("bad double") << u"Value = double:one"_qs << 1;
    QTest::newRow("bool true lower case") << u"Enabled = bool:true"_qs << 1;
    QTest::newRow("bool 1") << u"Enabled = bool:1"_qs << 1;
    QTest::newRow("bool empty") << u"Enabled = bool:"_qs << 1;
    QTest::newRow("unquoted string") << u"Caption = string:abc"_qs << 1;
    QTest::newRow("unterminated quote") << u"Caption = string:\"abc"_qs << 1;
    QTest::newRow("escaped closing quote") << u"Caption = string:\"abc\\\""_qs << 1;
    QTest::newRow("backslash at line end") << u"Caption = string:\"abc\\"_qs << 1;
    QTest::newRow("bad escape") << u"Caption = string:\"a\\qb\""_qs << 1;
    QTest::newRow("short \\u escape") << u"Caption = string:\"\\u12\""_qs << 1;
    QTest::newRow("bad \\u escape") << u"Caption = string:\"\\uZZZZ\""_qs << 1;
    QTest::newRow("junk after string") << u"Caption = string:\"a\" b"_qs << 1;
    QTest::newRow("two strings") << u"Caption = string:\"a\"\"b\""_qs << 1;
    QTest::newRow("junk after number") << u"Count = int:5 6"_qs << 1;
    QTest::newRow("list without brackets") << u"Items = stringlist:\"a\""_qs << 1;
    QTest::newRow("list without comma") << u"Items = stringlist:[\"a\" \"b\"]"_qs << 1;
    QTest::newRow("list unterminated") << u"Items = stringlist:[\"a\","_qs << 1;
    QTest::newRow("list unquoted item") << u"Items = stringlist:[a]"_qs << 1;
    QTest::newRow("junk after list") << u"Items = stringlist:[\"a\"] x"_qs << 1;
    QTest::newRow("empty with text") << u"Tag = empty:x"_qs << 1;
    QTest::newRow("bad base64") << u"Data = bytes:@@@@"_qs << 1;
    QTest::newRow("base64 with spaces inside") << u"Data = bytes:QU JD"_qs << 1;
    QTest::newRow("bad base64 picture") << u"Picture = pixmap:!!"_qs << 1;
    QTest::newRow("non-PNG pixmap") << (u"Picture = pixmap:"_qs + notPng) << 1;
    QTest::newRow("non-PNG image") << (u"Picture = image:"_qs + notPng) << 1;
    QTest::newRow("unquoted font") << u"Font = font:DejaVu Sans,10"_qs << 1;
    QTest::newRow("bad colour") << u"Color = color:#zzzzzz"_qs << 1;
    QTest::newRow("bad date") << u"When = date:2023-02-29"_qs << 1;
    QTest::newRow("bad date-time") << u"When = datetime:yesterday"_qs << 1;
    QTest::newRow("duplicate name") << u"Count = int:1\nCount = int:2\n"_qs << 2;
    QTest::newRow("duplicate name other case") << u"Count = int:1\nX = int:0\ncount = int:2\n"_qs << 3;
    QTest::newRow("line number counts comments and blanks")
        << u"# saved\n\nCount = int:1\n   \nEnabled = bool:yes\n"_qs << 5;
    QTest::newRow("CR-LF lines") << u"A = int:1\r\nB = int:2\r\nC = int:x\r\n"_qs << 3;
    QTest::newRow("line 12") << (u"\n"_qs.repeated(11) + u"A = int:"_qs) << 12;
}

void TestPropertyBag::malformedTextRaisesInvalidFileFormat()
{
    QFETCH(QString, text);
    QFETCH(int, line);

    const RuntimeError error = errorOf([&] { PropertyBag::fromText(text); });
    QCOMPARE(error.number(), ErrorNumber::InvalidFileFormat);
    const QRegularExpression lineNumber(u"\\bline %1\\b"_qs.arg(line));
    QVERIFY2(lineNumber.match(error.description()).hasMatch(), qPrintable(error.description()));
    QVERIFY(error.description().startsWith(u"Invalid file format"_qs));
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
    QCOMPARE(bag.names(), (QStringList{u"Caption"_qs, u"Count"_qs, u"Limit"_qs, u"Lines"_qs, u"Last"_qs}));
    QCOMPARE(bag.ReadProperty(u"Caption"_qs).toString(), u"# not a comment = int:1"_qs);
    QCOMPARE(bag.ReadProperty(u"Count"_qs), QVariant(5));
    QCOMPARE(bag.ReadProperty(u"Limit"_qs), QVariant(2.5));
    QCOMPARE(bag.ReadProperty(u"Lines"_qs).toString(), u"a\r\nb"_qs);
    QCOMPARE(bag.ReadProperty(u"Last"_qs), QVariant(false));

    // The same bag written with LF line ends reads back equal.
    QVERIFY(PropertyBag::fromText(bag.toText()) == bag);
}

void TestPropertyBag::unsupportedTypeIsATypeMismatch()
{
    PropertyBag bag;
    bag.WriteProperty(u"Where"_qs, QPoint(1, 2));
    QCOMPARE(bag.ReadProperty(u"Where"_qs).toPoint(), QPoint(1, 2));
    QCOMPARE(errorOf([&] { bag.toText(); }).number(), ErrorNumber::TypeMismatch);

    // Names the text form could not read back are refused when written.
    for (const QString &name : {u"My Prop"_qs, u"1st"_qs, QString(), u"a=b"_qs}) {
        QCOMPARE(errorOf([&] { bag.WriteProperty(name, 1, 0); }).number(), ErrorNumber::InvalidProcedureCall);
    }
    QCOMPARE(bag.count(), 1);
}

void TestPropertyBag::bagTravelsInAVariant()
{
    PropertyBag bag;
    bag.WriteProperty(u"Count"_qs, 9, 0);
    const QVariant wrapped = QVariant::fromValue(bag);
    QVERIFY(wrapped.canConvert<PropertyBag>());
    QVERIFY(wrapped.value<PropertyBag>() == bag);

    PropertyBag other;
    other.WriteProperty(u"Count"_qs, 9.0, 0);
    QVERIFY(other != bag); // same number, another type
    other.clear();
    other.WriteProperty(u"count"_qs, 9, 0);
    QVERIFY(other != bag); // names as written
}

QTEST_MAIN(TestPropertyBag)
#include "tst_propertybag.moc"
