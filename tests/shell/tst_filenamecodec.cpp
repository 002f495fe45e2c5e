#include "FileNameCodec.h"

#include <QRandomGenerator>

#include "KeloTestSupport.h"
#include <QTest>

#include <algorithm>

using namespace Kelocontrols;

namespace {

/// Bytes from a hex text such as "C3 A9".
QByteArray bytes(const char *hex)
{
    return QByteArray::fromHex(QByteArray(hex).replace(' ', ""));
}

/// A QString from UTF-16 code units, lone surrogates allowed.
QString units(std::initializer_list<char16_t> codeUnits)
{
    QString text;
    for (char16_t unit : codeUnits)
        text += QChar(unit);
    return text;
}

/// Random bytes that hit UTF-8 lead and continuation bytes often, so that
/// valid, truncated and malformed sequences all turn up.
QByteArray randomBytes(QRandomGenerator &random)
{
    static const unsigned char interesting[] = {0x00, 0x2F, 0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F, 0xA0, 0xBF, 0xC0, 0xC1,
        0xC2, 0xDF, 0xE0, 0xE1, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xF8, 0xFE, 0xFF};
    const int length = random.bounded(40);
    QByteArray result;
    for (int i = 0; i < length; ++i) {
        const bool pick = random.bounded(2) == 0;
        result += char(pick ? interesting[random.bounded(int(sizeof interesting))] : random.bounded(256));
    }
    return result;
}

} // namespace

class tst_FileNameCodec : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void decode_data()
    {
        KeloTest::addColumns<QByteArray, QString>({"input", "expected"});

        QTest::newRow("ascii") << QByteArray("report 2024.txt") << u"report 2024.txt"_qs;
        QTest::newRow("ascii, long (word loop)")
            << QByteArray("abcdefghijklmnopqrstuvwxyz0123456789") << u"abcdefghijklmnopqrstuvwxyz0123456789"_qs;
        QTest::newRow("two-byte") << bytes("43 61 66 C3 A9") << QStringLiteral(u"Café");
        QTest::newRow("three-byte") << bytes("E2 82 AC") << QStringLiteral(u"€");
        QTest::newRow("four-byte") << bytes("F0 9F 98 80") << QString::fromUcs4(U"\U0001F600", 1);
        QTest::newRow("highest code point") << bytes("F4 8F BF BF") << QString::fromUcs4(U"\U0010FFFF", 1);
        QTest::newRow("last before surrogates") << bytes("ED 9F BF") << units({0xD7FF});
        QTest::newRow("first after surrogates") << bytes("EE 80 80") << units({0xE000});
        QTest::newRow("high byte in ascii text, late")
            << bytes("61 62 63 64 65 66 67 68 FF") << u"abcdefgh"_qs + units({0xDCFF});
        QTest::newRow("FF") << bytes("FF") << units({0xDCFF});
        QTest::newRow("lone continuation") << bytes("61 80 62") << units({'a', 0xDC80, 'b'});
        QTest::newRow("overlong NUL C0 80") << bytes("C0 80") << units({0xDCC0, 0xDC80});
        QTest::newRow("overlong C1 BF") << bytes("C1 BF") << units({0xDCC1, 0xDCBF});
        QTest::newRow("overlong three-byte E0 80 AF") << bytes("E0 80 AF") << units({0xDCE0, 0xDC80, 0xDCAF});
        QTest::newRow("overlong four-byte F0 8F BF BF")
            << bytes("F0 8F BF BF") << units({0xDCF0, 0xDC8F, 0xDCBF, 0xDCBF});
        QTest::newRow("encoded surrogate ED A0 80") << bytes("ED A0 80") << units({0xDCED, 0xDCA0, 0xDC80});
        QTest::newRow("encoded surrogate pair")
            << bytes("ED A0 BD ED B8 80") << units({0xDCED, 0xDCA0, 0xDCBD, 0xDCED, 0xDCB8, 0xDC80});
        QTest::newRow("above U+10FFFF") << bytes("F4 90 80 80") << units({0xDCF4, 0xDC90, 0xDC80, 0xDC80});
        QTest::newRow("F5 lead") << bytes("F5 80 80 80") << units({0xDCF5, 0xDC80, 0xDC80, 0xDC80});
        QTest::newRow("truncated, then ascii") << bytes("E2 82 41") << units({0xDCE2, 0xDC82, 'A'});
        QTest::newRow("truncated at the end") << bytes("41 F0 9F 98") << units({'A', 0xDCF0, 0xDC9F, 0xDC98});
        QTest::newRow("valid after invalid") << bytes("FF C3 A9") << units({0xDCFF, 0xE9});
        QTest::newRow("latin-1 name") << bytes("72 E9 73 75 6D E9") << units({'r', 0xDCE9, 's', 'u', 'm', 0xDCE9});
        QTest::newRow("four-byte between escapes")
            << bytes("80 F0 9F 98 80 80") << units({0xDC80, 0xD83D, 0xDE00, 0xDC80});
    }

    void decode()
    {
        const auto [input, expected] = KeloTest::fetch<QByteArray, QString>({"input", "expected"});
        QCOMPARE(FileNameCodec::decode(input), expected);
        QCOMPARE(FileNameCodec::decode(input.constData(), input.size()), expected);
        QCOMPARE(FileNameCodec::encode(expected), input);
    }

    void encodeOddStrings_data()
    {
        KeloTest::addColumns<QString, QByteArray>({"input", "expected"});

        QTest::newRow("escape of 0x80") << units({0xDC80}) << bytes("80");
        QTest::newRow("escape of 0xFF") << units({0xDCFF}) << bytes("FF");
        // A real character whose low surrogate falls in the escape range stays one character.
        QTest::newRow("U+10080 is not an escape") << units({0xD800, 0xDC80}) << bytes("F0 90 82 80");
        QTest::newRow("lone high surrogate") << units({'a', 0xD800, 'b'}) << bytes("61 EF BF BD 62");
        QTest::newRow("high surrogate at the end") << units({0xD83D}) << bytes("EF BF BD");
        QTest::newRow("low surrogate below the escapes") << units({0xDC41}) << bytes("EF BF BD");
        QTest::newRow("U+FFFD itself") << units({0xFFFD}) << bytes("EF BF BD");
        QTest::newRow("NUL inside") << units({'a', 0, 'b'}) << QByteArray("a\0b", 3);
    }

    void encodeOddStrings()
    {
        const auto [input, expected] = KeloTest::fetch<QString, QByteArray>({"input", "expected"});
        QCOMPARE(FileNameCodec::encode(input), expected);
    }

    void randomBytesRoundTrip()
    {
        QRandomGenerator random(20240611);
        for (int round = 0; round < 50000; ++round) {
            const QByteArray input = randomBytes(random);
            const QString name = FileNameCodec::decode(input);
            const QByteArray back = FileNameCodec::encode(name);
            if (back != input)
                QFAIL(qPrintable(u"bytes %1 came back as %2"_qs.arg(
                    QString::fromLatin1(input.toHex(' ')), QString::fromLatin1(back.toHex(' ')))));
            if (FileNameCodec::decode(back) != name)
                QFAIL(qPrintable(u"name of %1 changed"_qs.arg(QString::fromLatin1(input.toHex(' ')))));
            // Whatever was valid UTF-8 decodes exactly as UTF-8 does.
            const bool escaped = std::any_of(
                name.cbegin(), name.cend(), [](QChar c) { return c.unicode() >= 0xDC80 && c.unicode() <= 0xDCFF; });
            if (!escaped)
                QCOMPARE(name, QString::fromUtf8(input));
        }
    }

    void emptyAndNullInput()
    {
        QVERIFY(FileNameCodec::decode(QByteArray()).isEmpty());
        QVERIFY(FileNameCodec::decode(nullptr, 0).isEmpty());
        QVERIFY(FileNameCodec::decode("abc", 0).isEmpty());
        QVERIFY(FileNameCodec::decode("abc", -1).isEmpty());
        QVERIFY(FileNameCodec::encode(QString()).isEmpty());
        QCOMPARE(FileNameCodec::decode("abc", 2), u"ab"_qs);
    }
};

QTEST_APPLESS_MAIN(tst_FileNameCodec)
#include "tst_filenamecodec.moc"
