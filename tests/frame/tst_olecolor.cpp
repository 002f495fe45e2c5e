#include "OleColor.h"
#include "RuntimeError.h"

#include <QGuiApplication>
#include <QTest>

#include "KeloTestSupport.h"

#include <limits>

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
    void rgbCombinesAndClampsChannels_data()
    {
        QTest::addColumn<int>("red");
        QTest::addColumn<int>("green");
        QTest::addColumn<int>("blue");
        QTest::addColumn<OleColor>("expected");

        QTest::newRow("black") << 0 << 0 << 0 << OleColor(0x000000);
        QTest::newRow("red in low byte") << 255 << 0 << 0 << OleColor(0x0000FF);
        QTest::newRow("green in middle") << 0 << 255 << 0 << OleColor(0x00FF00);
        QTest::newRow("blue in high byte") << 0 << 0 << 255 << OleColor(0xFF0000);
        QTest::newRow("order") << 1 << 2 << 3 << OleColor(0x030201);
        QTest::newRow("256 clamps") << 256 << 0 << 0 << OleColor(0x0000FF);
        QTest::newRow("huge clamps") << 0 << std::numeric_limits<int>::max() << 0 << OleColor(0x00FF00);
        QTest::newRow("negative clamps") << -1 << -300 << std::numeric_limits<int>::min() << OleColor(0);
        QTest::newRow("mixed") << 1000 << -1000 << 128 << OleColor(0x8000FF);
    }

    void rgbCombinesAndClampsChannels()
    {
        QFETCH(int, red);
        QFETCH(int, green);
        QFETCH(int, blue);
        QFETCH(OleColor, expected);
        QCOMPARE(RGB(red, green, blue), expected);
    }

    void qbColor_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<OleColor>("expected");
        QTest::addColumn<int>("error");
        const OleColor values[] = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0xC0C0C0,
            0x808080, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};
        for (int i = 0; i < 16; ++i)
            QTest::addRow("%d", i) << i << values[i] << 0;
        for (int bad : {-1, 16, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
            QTest::addRow("%d refused", bad) << bad << OleColor(0) << int(ErrorNumber::InvalidProcedureCall);
    }

    void qbColor()
    {
        QFETCH(int, index);
        QFETCH(OleColor, expected);
        QFETCH(int, error);
        OleColor color = 0;
        QCOMPARE(errorNumberOf([&] { color = QBColor(index); }), error);
        QCOMPARE(color, expected);
    }

    void systemColorsAreRecognised_data()
    {
        QTest::addColumn<OleColor>("color");
        QTest::addColumn<bool>("system");
        QTest::newRow("button face") << OleColor(0x8000000F) << true;
        QTest::newRow("index 0") << OleColor(0x80000000) << true;
        QTest::newRow("unknown index still system") << OleColor(0x80FFFFFF) << true;
        QTest::newRow("white") << OleColor(0x00FFFFFF) << false;
        QTest::newRow("black") << OleColor(0) << false;
        QTest::newRow("0x7F high byte") << OleColor(0x7FFFFFFF) << false;
        QTest::newRow("0x81 high byte") << OleColor(0x81000005) << false;
        QTest::newRow("0xFF high byte") << OleColor(0xFF000005) << false;
    }

    void systemColorsAreRecognised()
    {
        QFETCH(OleColor, color);
        QFETCH(bool, system);
        QCOMPARE(isSystemColor(color), system);
    }

    void plainColorsPassThrough_data()
    {
        QTest::addColumn<OleColor>("color");
        QTest::newRow("black") << OleColor(0);
        QTest::newRow("white") << OleColor(0xFFFFFF);
        QTest::newRow("mixed") << OleColor(0x123456);
        QTest::newRow("looks like index 15") << OleColor(0x00000F);
    }

    void plainColorsPassThrough()
    {
        QFETCH(OleColor, color);
        QCOMPARE(OleTranslateColor(color, distinctPalette()), color);
        QCOMPARE(OleTranslateColor(color), color);
    }

    void systemColorsResolveThroughPalette_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("group");
        QTest::addColumn<int>("role");

        QTest::newRow("0 scroll bar") << 0 << int(QPalette::Active) << int(QPalette::Button);
        QTest::newRow("4 menu") << 4 << int(QPalette::Active) << int(QPalette::Window);
        QTest::newRow("5 window background") << 5 << int(QPalette::Active) << int(QPalette::Base);
        QTest::newRow("7 menu text") << 7 << int(QPalette::Active) << int(QPalette::WindowText);
        QTest::newRow("8 window text") << 8 << int(QPalette::Active) << int(QPalette::Text);
        QTest::newRow("13 highlight") << 13 << int(QPalette::Active) << int(QPalette::Highlight);
        QTest::newRow("14 highlight text") << 14 << int(QPalette::Active) << int(QPalette::HighlightedText);
        QTest::newRow("15 button face") << 15 << int(QPalette::Active) << int(QPalette::Button);
        QTest::newRow("16 button shadow") << 16 << int(QPalette::Active) << int(QPalette::Dark);
        QTest::newRow("17 grey text") << 17 << int(QPalette::Disabled) << int(QPalette::Text);
        QTest::newRow("18 button text") << 18 << int(QPalette::Active) << int(QPalette::ButtonText);
        QTest::newRow("20 button highlight") << 20 << int(QPalette::Active) << int(QPalette::Light);
        QTest::newRow("21 dark shadow") << 21 << int(QPalette::Active) << int(QPalette::Shadow);
        QTest::newRow("22 3-D light") << 22 << int(QPalette::Active) << int(QPalette::Midlight);
        QTest::newRow("23 info text") << 23 << int(QPalette::Active) << int(QPalette::ToolTipText);
        QTest::newRow("24 info background") << 24 << int(QPalette::Active) << int(QPalette::ToolTipBase);
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

    void badColorsAreRejected_data()
    {
        QTest::addColumn<OleColor>("color");
        QTest::newRow("index 25") << OleColor(0x80000019);
        QTest::newRow("index 0xFFFFFF") << OleColor(0x80FFFFFF);
        QTest::newRow("high byte 0x01") << OleColor(0x01000000);
        QTest::newRow("high byte 0x02") << OleColor(0x02000005);
        QTest::newRow("high byte 0x7F") << OleColor(0x7F00000F);
        QTest::newRow("high byte 0xFF") << OleColor(0xFFFFFFFF);
    }

    void badColorsAreRejected()
    {
        QFETCH(OleColor, color);
        const QPalette palette = distinctPalette();
        QCOMPARE(errorNumberOf([&] { OleTranslateColor(color, palette); }), ErrorNumber::InvalidProcedureCall);
        QCOMPARE(errorNumberOf([&] { OleTranslateColor(color); }), ErrorNumber::InvalidProcedureCall);
        QCOMPARE(errorNumberOf([&] { toQColor(color); }), ErrorNumber::InvalidProcedureCall);
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

        for (int i = 0; i < 16; ++i)
            QCOMPARE(fromQColor(toQColor(QBColor(i))), QBColor(i));
    }
};

// Usable where a constant is needed (default property values).
static_assert(RGB(0x12, 0x34, 0x56) == 0x563412u);
static_assert(RGB(-5, 999, 0) == 0x00FF00u);

QTEST_MAIN(TestOleColor)
#include "tst_olecolor.moc"
