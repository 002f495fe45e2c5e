#include "OleColor.h"
#include "RuntimeError.h"

#include <QGuiApplication>
#include <QTest>

#include "KeloTestSupport.h"

#include <limits>
#include <tuple>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

// A palette in which every role and group has its own colour, so that a
// wrong role or group in the lookup cannot go unnoticed.
QPalette distinctPalette()
{
    QPalette palette;
    int shade = 1;
    for (int group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            palette.setColor(
                QPalette::ColorGroup(group), QPalette::ColorRole(role), QColor(shade, 255 - shade, (shade * 7) % 256));
            ++shade;
        }
    }
    return palette;
}

OleColor oleOf(const QPalette &palette, QPalette::ColorGroup group, QPalette::ColorRole role)
{
    const QColor c = palette.color(group, role);
    return OleColor(c.red()) | (OleColor(c.green()) << 8) | (OleColor(c.blue()) << 16);
}

} // namespace

class TestOleColor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rgbCombinesAndClampsChannels()
    {
        const int max = std::numeric_limits<int>::max();
        const int min = std::numeric_limits<int>::min();
        // Red in the low byte, blue in the high one; out-of-range channels clamp.
        for (const auto &[red, green, blue, expected] : {std::tuple{0, 0, 0, 0x000000u}, {255, 0, 0, 0x0000FFu},
                 {0, 255, 0, 0x00FF00u}, {0, 0, 255, 0xFF0000u}, {1, 2, 3, 0x030201u}, {256, 0, 0, 0x0000FFu},
                 {0, max, 0, 0x00FF00u}, {-1, -300, min, 0u}, {1000, -1000, 128, 0x8000FFu}})
            QCOMPARE(RGB(red, green, blue), expected);
    }

    void qbColor()
    {
        const OleColor values[] = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0xC0C0C0,
            0x808080, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};
        for (int i = 0; i < 16; ++i) {
            QCOMPARE(QBColor(i), values[i]);
            QCOMPARE(fromQColor(toQColor(QBColor(i))), QBColor(i));
        }
        for (int bad : {-1, 16, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
            QCOMPARE(errorNumberOf([&] { QBColor(bad); }), ErrorNumber::InvalidProcedureCall);
    }

    void colorKinds()
    {
        // System colours have the high byte 0x80, whatever their index.
        for (OleColor color : {0x8000000Fu, 0x80000000u, 0x80FFFFFFu})
            QVERIFY(isSystemColor(color));
        for (OleColor color : {0x7FFFFFFFu, 0x81000005u, 0xFF000005u})
            QVERIFY(!isSystemColor(color));
        // Plain colours pass through, whatever the palette.
        for (OleColor color : {0x000000u, 0xFFFFFFu, 0x123456u, 0x00000Fu}) {
            QVERIFY(!isSystemColor(color));
            QCOMPARE(OleTranslateColor(color, distinctPalette()), color);
            QCOMPARE(OleTranslateColor(color), color);
        }
        // Unknown indexes and other high bytes are refused.
        for (OleColor bad : {0x80000019u, 0x80FFFFFFu, 0x01000000u, 0x02000005u, 0x7F00000Fu, 0xFFFFFFFFu}) {
            QCOMPARE(
                errorNumberOf([&] { OleTranslateColor(bad, distinctPalette()); }), ErrorNumber::InvalidProcedureCall);
            QCOMPARE(errorNumberOf([&] { OleTranslateColor(bad); }), ErrorNumber::InvalidProcedureCall);
            QCOMPARE(errorNumberOf([&] { toQColor(bad); }), ErrorNumber::InvalidProcedureCall);
        }
    }

    void systemColorsResolveThroughPalette_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("group");
        QTest::addColumn<int>("role");
        using P = QPalette;
        for (const auto &[index, group, role] : {std::tuple{0, P::Active, P::Button}, {4, P::Active, P::Window},
                 {5, P::Active, P::Base}, {7, P::Active, P::WindowText}, {8, P::Active, P::Text},
                 {13, P::Active, P::Highlight}, {14, P::Active, P::HighlightedText}, {15, P::Active, P::Button},
                 {16, P::Active, P::Dark}, {17, P::Disabled, P::Text}, {18, P::Active, P::ButtonText},
                 {20, P::Active, P::Light}, {21, P::Active, P::Shadow}, {22, P::Active, P::Midlight},
                 {23, P::Active, P::ToolTipText}, {24, P::Active, P::ToolTipBase}})
            QTest::addRow("%d", index) << index << int(group) << int(role);
    }

    void systemColorsResolveThroughPalette()
    {
        QFETCH(int, index);
        QFETCH(int, group);
        QFETCH(int, role);
        const QPalette palette = distinctPalette();
        const OleColor expected = oleOf(palette, QPalette::ColorGroup(group), QPalette::ColorRole(role));
        QCOMPARE(OleTranslateColor(SystemColorFlag + OleColor(index), palette), expected);
    }

    void buttonFaceComesBackInOleByteOrder()
    {
        QPalette palette;
        palette.setColor(QPalette::Button, QColor(0x12, 0x34, 0x56));
        QCOMPARE(OleTranslateColor(0x8000000F, palette), OleColor(0x563412));

        // Transparency has no place in an OLE colour.
        palette.setColor(QPalette::Button, QColor(0x12, 0x34, 0x56, 0x20));
        QCOMPARE(OleTranslateColor(0x8000000F, palette), OleColor(0x563412));

        // Every index up to 24 resolves to some plain colour.
        for (OleColor index = 0; index <= 24; ++index)
            QVERIFY((OleTranslateColor(SystemColorFlag + index, palette) & 0xFF000000u) == 0);
    }

    void oneArgumentFormUsesApplicationPalette()
    {
        const QPalette saved = QGuiApplication::palette();
        QPalette palette = saved;
        palette.setColor(QPalette::Button, QColor(0xAB, 0xCD, 0xEF));
        palette.setColor(QPalette::Base, QColor(0x01, 0x02, 0x03));
        QGuiApplication::setPalette(palette);

        const OleColor buttonFace = OleTranslateColor(0x8000000F);
        const OleColor window = OleTranslateColor(0x80000005);
        const QColor buttonQColor = toQColor(0x8000000F);
        QGuiApplication::setPalette(saved);

        QCOMPARE(buttonFace, OleColor(0xEFCDAB));
        QCOMPARE(window, OleColor(0x030201));
        QCOMPARE(buttonQColor, QColor(0xAB, 0xCD, 0xEF));
    }

    void qColorConversions()
    {
        QCOMPARE(toQColor(0x0000FF), QColor(255, 0, 0));
        QCOMPARE(toQColor(0xFF0000), QColor(0, 0, 255));
        QCOMPARE(toQColor(0x563412), QColor(0x12, 0x34, 0x56));

        QCOMPARE(fromQColor(QColor(255, 0, 0)), OleColor(0x0000FF));
        QCOMPARE(fromQColor(QColor(0x12, 0x34, 0x56, 0x10)), OleColor(0x563412));
        QCOMPARE(fromQColor(QColor(Qt::white)), OleColor(0xFFFFFF));
        QCOMPARE(fromQColor(QColor()), OleColor(0));
        // Other colour specs convert through RGB.
        QCOMPARE(fromQColor(QColor::fromHsv(240, 255, 255)), OleColor(0xFF0000));
    }
};

// Usable where a constant is needed (default property values).
static_assert(RGB(0x12, 0x34, 0x56) == 0x563412u);
static_assert(RGB(-5, 999, 0) == 0x00FF00u);

QTEST_MAIN(TestOleColor)
#include "tst_olecolor.moc"
