#include "KeloEnums.h"
#include "PropertyBag.h"
#include "RuntimeError.h"

#include <QColor>
#include <QDateTime>
#include <QFont>
#include <QImage>
#include <QPixmap>
#include <QPoint>
#include <QRegularExpression>
#include <QTest>

#include "KeloTestSupport.h"

#include <bit>
#include <limits>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

// A default no round-trip value ever equals, so WriteProperty always stores.
const QVariant unusedDefault(u"\x01unused default\x01"_qs);

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

// Exact equality of two values of the same type: floating-point numbers
// bit for bit (so no rounding slip hides), pictures pixel for pixel.
bool sameContent(const QVariant &a, const QVariant &b)
{
    const auto pixels = [](const QImage &image) { return image.convertToFormat(QImage::Format_ARGB32); };
    if (a.typeId() != b.typeId()) {
        return false;
    }
    switch (a.typeId()) {
    case QMetaType::Float:
        return std::bit_cast<quint32>(a.toFloat()) == std::bit_cast<quint32>(b.toFloat());
    case QMetaType::Double:
        return std::bit_cast<quint64>(a.toDouble()) == std::bit_cast<quint64>(b.toDouble());
    case QMetaType::QPixmap:
        return pixels(a.value<QPixmap>().toImage()) == pixels(b.value<QPixmap>().toImage());
    case QMetaType::QImage:
        return pixels(a.value<QImage>()) == pixels(b.value<QImage>());
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
    void roundTripKeepsValueAndType_data()
    {
        QTest::addColumn<QVariant>("value");
        using F = std::numeric_limits<float>;
        using D = std::numeric_limits<double>;

        // Every boundary of the numbers, each row named after its type and value.
        const QVariantList numbers{true, false, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(),
            std::numeric_limits<uint>::max(), std::numeric_limits<qlonglong>::min(),
            std::numeric_limits<qlonglong>::max(), qlonglong(9007199254740993LL),
            std::numeric_limits<qulonglong>::max(), 0.1f, -1.5e-7f, 16777216.0f, F::max(), F::lowest(), F::denorm_min(),
            F::infinity(), 0.1, 1.0 / 3.0, -123456.789e-10, D::max(), D::denorm_min(), -D::infinity()};
        for (const QVariant &number : numbers)
            QTest::addRow("%s %s", number.typeName(), qPrintable(number.toString())) << number;
        QTest::newRow("quotes and backslashes") << QVariant(u"say \"hi\" to C:\\dir\\ and \\\\server\\"_qs);
        QTest::newRow("ends in a backslash") << QVariant(u"C:\\"_qs);
        QTest::newRow("CR-LF lines") << QVariant(u"first line\r\nsecond line\r\n"_qs);
        QTest::newRow("lone LF and CR") << QVariant(u"a\nb\rc"_qs);
        QTest::newRow("tabs") << QVariant(u"\tcol1\tcol2\t"_qs);
        QTest::newRow("control characters") << QVariant(QString(u"nul:"_qs + QChar(0) + u" soh:"_qs + QChar(1)
            + u" esc:"_qs + QChar(0x1b) + u" us:"_qs + QChar(0x1f) + u" del:"_qs + QChar(0x7f)));
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
        QTest::newRow("date-time offset")
            << QVariant(QDateTime(QDate(2010, 6, 1), QTime(8, 30, 15, 1), Qt::OffsetFromUTC, 7200));
        QTest::newRow("date year 1") << QVariant(QDate(1, 1, 1));
        QTest::newRow("null date") << QVariant(QDate());
        QTest::newRow("null date-time") << QVariant(QDateTime());
    }

    void roundTripKeepsValueAndType()
    {
        QFETCH(QVariant, value);

        PropertyBag bag;
        bag.WriteProperty(u"Value"_qs, value, unusedDefault);
        QVERIFY(sameContent(bag.ReadProperty(u"Value"_qs), value));

        const QString text = bag.toText();
        PropertyBag back;
        const RuntimeError error = errorOf([&] { back = PropertyBag::fromText(text); });
        QVERIFY2(error.number() == 0, qPrintable(error.description() + u" for "_qs + text));
        QCOMPARE(back.names(), QStringList{u"Value"_qs});
        const QVariant read = back.ReadProperty(u"Value"_qs, unusedDefault);
        QCOMPARE(QString::fromLatin1(read.metaType().name()), QString::fromLatin1(value.metaType().name()));
        QVERIFY2(sameContent(read, value), qPrintable(text));
        QVERIFY2(back == bag, qPrintable(text));
        // Writing the bag read back gives the same text again.
        QCOMPARE(back.toText(), text);
    }

    void textFormKeepsOrderOnePropertyPerLine()
    {
        PropertyBag bag;
        bag.WriteProperty(u"Caption"_qs, u"a\r\nb\tc \"d\" \\e"_qs);
        bag.WriteProperty(u"Count"_qs, 3);
        bag.WriteProperty(u"Visible"_qs, true);
        bag.WriteProperty(u"Color"_qs, uint(0x8000000F));
        bag.WriteProperty(u"Star"_qs, 0.9f, 0.95f);
        bag.WriteProperty(u"Folders"_qs, QStringList{u"/home"_qs, u"/tmp"_qs}, QStringList());
        const QString text = QStringLiteral("Caption = string:\"a\\r\\nb\\tc \\\"d\\\" \\\\e\"\n"
                                            "Count = int:3\n"
                                            "Visible = bool:True\n"
                                            "Color = uint:2147483663\n");
        QCOMPARE(bag.toText().section(u'\n', 0, 3) + u'\n', text);
        const PropertyBag back = PropertyBag::fromText(bag.toText());
        QCOMPARE(back.names(),
            (QStringList{u"Caption"_qs, u"Count"_qs, u"Visible"_qs, u"Color"_qs, u"Star"_qs, u"Folders"_qs}));
        QVERIFY(back == bag);

        // Whatever the strings hold, no value spreads over more than its line.
        PropertyBag awkward;
        awkward.WriteProperty(u"A"_qs, QString::fromLatin1("x\ry\nz\x0b\x0c\x1c\x1d\x1e\x85"));
        awkward.WriteProperty(u"B"_qs, QStringList{u"\n"_qs, u"\r"_qs});
        QCOMPARE(awkward.toText().count(QLatin1Char('\n')), 2);
        QVERIFY(!awkward.toText().contains(QLatin1Char('\r')));

        // Comments, blank lines, CR-LF line ends and blanks around the parts are read over.
        const PropertyBag read = PropertyBag::fromText(QStringLiteral("# Saved by the designer\r\n"
                                                                      "\r\n"
                                                                      "   # an indented comment\r\n"
                                                                      "Caption = string:\"# not a comment = int:1\"\r\n"
                                                                      "  \t \r\n"
                                                                      "Count=int:5\r\n"
                                                                      "\tLimit   =   double:  2.5   \r\n"
                                                                      "Last = bool:False"));
        QCOMPARE(read.toText(),
            QStringLiteral("Caption = string:\"# not a comment = int:1\"\nCount = int:5\n"
                           "Limit = double:2.5\nLast = bool:False\n"));

        // An empty bag is an empty text, and an empty text an empty bag.
        QCOMPARE(PropertyBag().toText(), QString());
        QVERIFY(PropertyBag::fromText(QString()).isEmpty() && PropertyBag::fromText(u"\n\n"_qs).isEmpty());
    }

    void namesIgnoreCaseAndDefaultsAreLeftOut()
    {
        PropertyBag bag;
        bag.WriteProperty(u"BackColor"_qs, 255);
        bag.WriteProperty(u"Caption"_qs, u"first"_qs);
        QVERIFY(bag.contains(u"BACKCOLOR"_qs));
        QVERIFY(!bag.contains(u"BackColour"_qs));
        QCOMPARE(bag.ReadProperty(u"backcolor"_qs, 7), QVariant(255));
        QCOMPARE(bag.ReadProperty(u"Missing"_qs, 7), QVariant(7));
        QVERIFY(!bag.ReadProperty(u"Missing"_qs).isValid());

        // Replacing a value keeps the first spelling and position of its name; another type replaces it entirely.
        bag.WriteProperty(u"CAPTION"_qs, 42);
        bag.WriteProperty(u"backcolor"_qs, 128);
        QCOMPARE(bag.names(), (QStringList{u"BackColor"_qs, u"Caption"_qs}));
        QCOMPARE(bag.ReadProperty(u"caption"_qs), QVariant(42));
        QCOMPARE(bag.ReadProperty(u"BackColor"_qs), QVariant(128));
        // The text form reads back without regard to case as well.
        const PropertyBag back = PropertyBag::fromText(u"pathroot = string:\"/tmp\"\n"_qs);
        QCOMPARE(back.ReadProperty(u"PathRoot"_qs), QVariant(u"/tmp"_qs));
        QCOMPARE(back.names(), QStringList{u"pathroot"_qs});

        // Writing the default forgets an earlier value; written again later, it goes to the end.
        bag.clear();
        bag.WriteProperty(u"Count"_qs, 3, 3);
        QVERIFY(bag.isEmpty());
        bag.WriteProperty(u"First"_qs, 1, 0);
        bag.WriteProperty(u"Count"_qs, 5, 3);
        bag.WriteProperty(u"Last"_qs, 1, 0);
        QCOMPARE(bag.names(), (QStringList{u"First"_qs, u"Count"_qs, u"Last"_qs}));
        bag.WriteProperty(u"COUNT"_qs, 3, 3);
        QCOMPARE(bag.names(), (QStringList{u"First"_qs, u"Last"_qs}));
        QCOMPARE(bag.ReadProperty(u"Count"_qs, 3), QVariant(3));
        bag.WriteProperty(u"Count"_qs, 4, 3);
        QCOMPARE(bag.names(), (QStringList{u"First"_qs, u"Last"_qs, u"Count"_qs}));

        // With no default given, only an empty value counts as the default.
        bag.clear();
        bag.WriteProperty(u"Tag"_qs, QVariant());
        QVERIFY(bag.isEmpty());
        bag.WriteProperty(u"Tag"_qs, QString());
        QCOMPARE(bag.count(), 1);
    }

    void defaultComparison_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QVariant>("defaultValue");
        QTest::addColumn<bool>("stored");
        const QVariant checker = QPixmap::fromImage(checkerImage(QImage::Format_RGB32, false));
        const QFont font(u"DejaVu Sans"_qs, 9);

        const auto row = [](const char *name, const QVariant &value, const QVariant &defaultValue, bool stored) {
            QTest::newRow(name) << value << defaultValue << stored;
        };
        row("float 0.5 vs double 0.5", 0.5f, 0.5, false);
        row("double 0.5 vs float 0.5", 0.5, 0.5f, false);
        row("int 1 vs double 1.0", 1, 1.0, false);
        row("short 7 vs int 7", QVariant::fromValue(short(7)), 7, false);
        row("uint vs long same value", uint(0x8000000F), qlonglong(0x8000000F), false);
        row("uint system colour vs negative int", uint(0x8000000F), int(-2147483633), true);
        row("long 2^53+1 vs 2^53", qlonglong(9007199254740993LL), qlonglong(9007199254740992LL), true);
        row("ulong 2^53+1 vs double 2^53", qulonglong(9007199254740993ULL), 9007199254740992.0, true);
        row("ulong max vs long -1", std::numeric_limits<qulonglong>::max(), qlonglong(-1), true);
        row("int 2 vs double 2.5", 2, 2.5, true);
        row("enum vs its int", QVariant::fromValue(keloShowValue::AtLeft), 1, false);
        row("enum vs same enum", QVariant::fromValue(keloShowValue::Adjust), QVariant::fromValue(keloShowValue::Adjust),
            false);
        row("enum vs other enum value", QVariant::fromValue(keloShowValue::Adjust),
            QVariant::fromValue(keloShowValue::AtLeft), true);
        row("bool true vs int 1", true, 1, true);
        row("bool false vs false", false, false, false);
        row("text 5 vs int 5", u"5"_qs, 5, true);
        row("text is case-sensitive", u"abc"_qs, u"ABC"_qs, true);
        row("null vs empty text", QString(), u""_qs, false);
        row("empty text vs empty value", u""_qs, QVariant(), true);
        row("equal colours", QColor(1, 2, 3), QColor(1, 2, 3), false);
        row("colours differing in alpha", QColor(1, 2, 3, 254), QColor(1, 2, 3), true);
        row("equal fonts", font, QFont(u"DejaVu Sans"_qs, 9), false);
        row("fonts differing in size", font, QFont(u"DejaVu Sans"_qs, 10), true);
        row("equal pictures, two pixmaps", checker, QPixmap::fromImage(checkerImage(QImage::Format_RGB32, false)),
            false);
        row("null pixmaps", QPixmap(), QPixmap(), false);
        row("equal lists", QStringList{u"a"_qs}, QStringList{u"a"_qs}, false);
    }

    void defaultComparison()
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

    void malformedTextRaisesInvalidFileFormat_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("line");
        const QString notPng = QString::fromLatin1(QByteArray("hello, not a picture").toBase64());
        const auto row
            = [](const char *name, const QString &text, int line = 1) { QTest::newRow(name) << text << line; };

        // Each text fails on its only line; the row is named after the text.
        const QStringList lineOne{"Caption string:\"x\"", "Caption = \"x\"", "Caption =", " = int:1", "1st = int:1",
            "Caption = widget:1", "Count = Int:1", "Count = int:12a", "Count = int:", "Count = int:0x10",
            "Count = int:2147483648", "Color = uint:-1", "Color = uint:4294967296", "Star = float:1.2.3",
            "Star = float:1e39", "Value = double:one", "Enabled = bool:true", "Enabled = bool:1",
            "Caption = string:abc", "Caption = string:\"abc", "Caption = string:\"abc\\\"", "Caption = string:\"abc\\",
            "Caption = string:\"a\\qb\"", "Caption = string:\"\\u12\"", "Caption = string:\"\\uZZZZ\"",
            "Caption = string:\"a\" b", "Caption = string:\"a\"\"b\"", "Count = int:5 6", "Items = stringlist:\"a\"",
            "Items = stringlist:[\"a\" \"b\"]", "Items = stringlist:[\"a\",", "Items = stringlist:[a]",
            "Items = stringlist:[\"a\"] x", "Tag = empty:x", "Data = bytes:@@@@", "Data = bytes:QU JD",
            "Picture = pixmap:!!", "Picture = pixmap:" + notPng, "Picture = image:" + notPng,
            "Font = font:DejaVu Sans,10", "Color = color:#zzzzzz", "When = date:2023-02-29",
            "When = datetime:yesterday"};
        for (const QString &text : lineOne)
            QTest::addRow("%s", qPrintable(text)) << text << 1;
        row("duplicate name", u"Count = int:1\nCount = int:2\n"_qs, 2);
        row("duplicate name other case", u"Count = int:1\nX = int:0\ncount = int:2\n"_qs, 3);
        row("line number counts comments and blanks", u"# saved\n\nCount = int:1\n   \nEnabled = bool:yes\n"_qs, 5);
        row("CR-LF lines", u"A = int:1\r\nB = int:2\r\nC = int:x\r\n"_qs, 3);
        row("line 12", u"\n"_qs.repeated(11) + u"A = int:"_qs, 12);
    }

    void malformedTextRaisesInvalidFileFormat()
    {
        QFETCH(QString, text);
        QFETCH(int, line);

        const RuntimeError error = errorOf([&] { PropertyBag::fromText(text); });
        QCOMPARE(error.number(), ErrorNumber::InvalidFileFormat);
        const QRegularExpression lineNumber(u"^Invalid file format.*\\bline %1\\b"_qs.arg(line));
        QVERIFY2(lineNumber.match(error.description()).hasMatch(), qPrintable(error.description()));
    }

    void badValuesAndNamesAreRefused()
    {
        // A type the text form cannot hold stays in the bag but cannot be written out.
        PropertyBag bag;
        bag.WriteProperty(u"Where"_qs, QPoint(1, 2));
        QCOMPARE(bag.ReadProperty(u"Where"_qs), QVariant(QPoint(1, 2)));
        QCOMPARE(errorNumberOf([&] { bag.toText(); }), ErrorNumber::TypeMismatch);

        // Names the text form could not read back are refused when written.
        for (const QString &name : {u"My Prop"_qs, u"1st"_qs, QString(), u"a=b"_qs}) {
            QCOMPARE(errorNumberOf([&] { bag.WriteProperty(name, 1, 0); }), ErrorNumber::InvalidProcedureCall);
        }
        QCOMPARE(bag.count(), 1);

        // A bag travels in a QVariant; equality takes types and names as written.
        bag.clear();
        bag.WriteProperty(u"Count"_qs, 9, 0);
        QVERIFY(QVariant::fromValue(bag).value<PropertyBag>() == bag);
        PropertyBag other;
        other.WriteProperty(u"Count"_qs, 9.0, 0);
        QVERIFY(other != bag);
        other.clear();
        other.WriteProperty(u"count"_qs, 9, 0);
        QVERIFY(other != bag);
    }
};

QTEST_MAIN(TestPropertyBag)
#include "tst_propertybag.moc"
