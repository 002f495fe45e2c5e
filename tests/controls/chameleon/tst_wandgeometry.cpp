#include "Random.h"
#include "WandColors_p.h"
#include "WandElement_p.h"
#include "WandFrame_p.h"
#include "WandGeometry_p.h"

#include <QTest>

#include <cmath>

using namespace Kelocontrols;

namespace {

constexpr OleColor Back = 0x00200000; // dark blue: channels (0, 0, 32)

WandElement element(keloWandStyle style, qint16 life, qint16 initialLife, OleColor colour = 0x00000040)
{
    WandElement e;
    e.style = style;
    e.life = life;
    e.initialLife = initialLife;
    e.x = 50;
    e.y = 60;
    e.colour = colour;
    return e;
}

WandFrame frameOf(const WandElement &e, bool erasing, bool pictureMode = false)
{
    WandFrame frame(erasing, pictureMode);
    WandGeometry::drawFrame(e, erasing, WandDrawContext{pictureMode, Back}, frame);
    return frame;
}

WandStroke lineStroke(QPointF from, QPointF to, OleColor colour)
{
    WandStroke s;
    s.kind = WandStroke::Kind::Line;
    s.from = from;
    s.to = to;
    s.colour = colour;
    return s;
}

double lengthOf(const WandStroke &s)
{
    return std::hypot(s.to.x() - s.from.x(), s.to.y() - s.from.y());
}

bool near(QPointF a, QPointF b)
{
    return std::abs(a.x() - b.x()) < 1e-9 && std::abs(a.y() - b.y()) < 1e-9;
}

} // namespace

class TestWandGeometry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { resetRandomGenerator(); }
    void cleanupTestCase() { resetRandomGenerator(); }

    void channelsKeepTheClassicRounding_data();
    void channelsKeepTheClassicRounding();
    void blendClampsAndRounds();
    void greyByContrastSwitchesAbove192();
    void starsShrinkInsideTheirSquare();
    void erasingFramesUseTheBackgroundOnlyOverPlainSurfaces();
    void ripplesGrowAndFade();
    void atomOrbitAndElectron();
    void starburstOpensOutward();
    void lightningHasThirtyThreeConnectedSegments();
    void boltDepthDecidesItsSize_data();
    void boltDepthDecidesItsSize();
};

void TestWandGeometry::channelsKeepTheClassicRounding_data()
{
    QTest::addColumn<uint>("colour");
    QTest::addColumn<int>("red");
    QTest::addColumn<int>("green");
    QTest::addColumn<int>("blue");

    QTest::newRow("black") << 0x000000u << 0 << 0 << 0;
    QTest::newRow("low bytes") << 0x102030u << 0x30 << 0x20 << 0x10;
    QTest::newRow("red below half") << 0x00007Fu << 0x7F << 0 << 0;
    // Quotients are rounded half to even before the bytes are cut, so a
    // low byte of 128 and more carries into the next channel.
    QTest::newRow("red 128: green x.5 to even") << 0x000080u << 0x80 << 0 << 0;
    QTest::newRow("green 1, red 128: 1.5 to 2") << 0x000180u << 0x80 << 2 << 0;
    QTest::newRow("red 255 carries") << 0x0000FFu << 0xFF << 1 << 0;
    QTest::newRow("0x0000FF80") << 0x00FF80u << 0x80 << 0 << 1;
    QTest::newRow("grey 0x808080") << 0x808080u << 0x80 << 0x80 << 0x81;
    QTest::newRow("white") << 0xFFFFFFu << 0xFF << 0 << 0;
}

void TestWandGeometry::channelsKeepTheClassicRounding()
{
    QFETCH(uint, colour);
    QFETCH(int, red);
    QFETCH(int, green);
    QFETCH(int, blue);
    const WandColors::Channels c = WandColors::channels(colour);
    QCOMPARE(c.red, red);
    QCOMPARE(c.green, green);
    QCOMPARE(c.blue, blue);
}

void TestWandGeometry::blendClampsAndRounds()
{
    const OleColor from = RGB(10, 20, 30);
    const OleColor to = RGB(20, 40, 60);
    QCOMPARE(WandColors::blend(from, to, 0.0), from);
    QCOMPARE(WandColors::blend(from, to, 1.0), to);
    QCOMPARE(WandColors::blend(from, to, -3.0), from);
    QCOMPARE(WandColors::blend(from, to, 7.0), to);
    // 15, 30, 45 exactly; then 12.5 -> 12, 25 -> 25, 37.5 -> 38 (half to even).
    QCOMPARE(WandColors::blend(from, to, 0.5), RGB(15, 30, 45));
    QCOMPARE(WandColors::blend(from, to, 0.25), RGB(12, 25, 38));
}

void TestWandGeometry::greyByContrastSwitchesAbove192()
{
    // Channels as the classic rounding reads them.
    QCOMPARE(WandColors::brightness(0x404040), 64);
    QCOMPARE(WandColors::brightness(0x7FC0C0), 171); // (192, 193, 128)
    // (200, 201, 176): 192.33 -> 192, not above 192.
    QCOMPARE(WandColors::brightness(0xAFC8C8), 192);
    QCOMPARE(WandColors::greyByContrast(0xAFC8C8), WandColors::Grey);
    // (200, 201, 177): 192.67 -> 193.
    QCOMPARE(WandColors::brightness(0xB0C8C8), 193);
    QCOMPARE(WandColors::greyByContrast(0xB0C8C8), WandColors::LightGrey);
    QCOMPARE(WandColors::greyByContrast(0xC0C0C0), WandColors::LightGrey);
    QCOMPARE(WandColors::greyByContrast(0xFEFEFE), WandColors::LightGrey);
    // White reads as (255, 0, 0), brightness 85.
    QCOMPARE(WandColors::greyByContrast(0xFFFFFF), WandColors::Grey);
    QCOMPARE(WandColors::greyByContrast(0x000000), WandColors::Grey);
}

void TestWandGeometry::starsShrinkInsideTheirSquare()
{
    const WandFrame big = frameOf(element(keloWandStyle::Stars, 6, 6), false);
    const QList<WandStroke> expected{lineStroke({47, 57}, {53, 63}, 0x40), lineStroke({53, 57}, {47, 63}, 0x40),
        lineStroke({50, 57}, {50, 63}, 0x40), lineStroke({47, 60}, {53, 60}, 0x40)};
    QCOMPARE(big.strokes, expected);

    const WandFrame small = frameOf(element(keloWandStyle::Stars, 1, 6), false);
    QCOMPARE(small.strokes.size(), 4);
    QCOMPARE(small.strokes.at(0).from, QPointF(49.5, 59.5));
    QCOMPARE(small.strokes.at(0).to, QPointF(50.5, 60.5));
    QCOMPARE(small.strokes.at(3).from, QPointF(49.5, 60));
    QCOMPARE(small.strokes.at(3).to, QPointF(50.5, 60));
}

void TestWandGeometry::erasingFramesUseTheBackgroundOnlyOverPlainSurfaces()
{
    const WandElement star = element(keloWandStyle::Stars, 4, 6, 0x00FF00);
    const WandFrame drawn = frameOf(star, false);
    const WandFrame erased = frameOf(star, true);
    const WandFrame erasedOverPicture = frameOf(star, true, true);
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(drawn.strokes.at(i).colour, OleColor(0x00FF00));
        QCOMPARE(erased.strokes.at(i).colour, Back);
        QCOMPARE(erasedOverPicture.strokes.at(i).colour, OleColor(0x00FF00));
        // The same geometry both times: the erasing frame covers the drawn one.
        QCOMPARE(erased.strokes.at(i).from, drawn.strokes.at(i).from);
        QCOMPARE(erased.strokes.at(i).to, drawn.strokes.at(i).to);
    }
    QVERIFY(erasedOverPicture.exclusiveOr);
    QVERIFY(!erased.exclusiveOr);
}

void TestWandGeometry::ripplesGrowAndFade()
{
    // New: radius 2 in the element's own colour.
    const WandFrame fresh = frameOf(element(keloWandStyle::Ripples, 40, 40), false);
    QCOMPARE(fresh.circleCount(), 1);
    QCOMPARE(fresh.lineCount(), 0);
    QCOMPARE(fresh.strokes.at(0).from, QPointF(50, 60));
    QCOMPARE(fresh.strokes.at(0).radius, 2.0);
    QCOMPARE(fresh.strokes.at(0).aspect, 1.0);
    QCOMPARE(fresh.strokes.at(0).colour, RGB(0x40, 0, 0));

    // Halfway: radius 42, colour halfway to the background (0x40 -> 0, 0 -> 32).
    const WandFrame half = frameOf(element(keloWandStyle::Ripples, 20, 40), false);
    QCOMPARE(half.strokes.at(0).radius, 42.0);
    QCOMPARE(half.strokes.at(0).colour, RGB(0x20, 0, 16));

    // Last tick: radius 80, 39/40 of the way.
    const WandFrame last = frameOf(element(keloWandStyle::Ripples, 1, 40), false);
    QCOMPARE(last.strokes.at(0).radius, 80.0);
    QCOMPARE(last.strokes.at(0).colour, RGB(2, 0, 31));

    // Over a picture the erasing frame repeats the faded colour.
    QCOMPARE(frameOf(element(keloWandStyle::Ripples, 20, 40), true, true).strokes.at(0).colour, RGB(0x20, 0, 16));
}

void TestWandGeometry::atomOrbitAndElectron()
{
    WandElement atom = element(keloWandStyle::Atom, 20, 20, 0x0000FF00);
    atom.parameter1 = 0.5;
    atom.parameter2 = 30.0f;
    const WandFrame fresh = frameOf(atom, false);
    QCOMPARE(fresh.circleCount(), 2);
    const WandStroke orbit = fresh.strokes.at(0);
    QCOMPARE(orbit.from, QPointF(50, 60));
    QCOMPARE(orbit.radius, 30.0);
    QCOMPARE(orbit.aspect, 0.5);
    QCOMPARE(orbit.radiusX(), 30.0);
    QCOMPARE(orbit.radiusY(), 15.0);
    QCOMPARE(orbit.colour, WandColors::Grey);
    const WandStroke electron = fresh.strokes.at(1);
    QCOMPARE(electron.radius, WandGeometry::ElectronRadius);
    QCOMPARE(electron.colour, OleColor(0x0000FF00));
    QVERIFY(near(electron.from, QPointF(80, 60)));

    // Half an orbit later the electron is on the other side.
    atom.life = qint16(20 - WandGeometry::ElectronTicksPerOrbit / 2);
    QVERIFY(near(frameOf(atom, false).strokes.at(1).from, QPointF(20, 60)));

    // A tall orbit: the radius is the vertical one.
    atom.parameter1 = 2.0;
    const WandStroke tall = frameOf(atom, false).strokes.at(0);
    QCOMPARE(tall.radiusX(), 15.0);
    QCOMPARE(tall.radiusY(), 30.0);

    // Erasing over a plain background: orbit and electron in the background.
    const WandFrame erased = frameOf(atom, true);
    QCOMPARE(erased.strokes.at(0).colour, Back);
    QCOMPARE(erased.strokes.at(1).colour, Back);
}

void TestWandGeometry::starburstOpensOutward()
{
    const WandFrame fresh = frameOf(element(keloWandStyle::Starburst, 20, 20), false);
    // One ray every pi/10; the floating-point angle passes 2 pi after 20 steps.
    QCOMPARE(fresh.lineCount(), 20);
    const WandStroke first = fresh.strokes.at(0);
    QCOMPARE(first.from, QPointF(50, 60));
    QCOMPARE(first.to, QPointF(56, 60));
    for (const WandStroke &ray : fresh.strokes) {
        QVERIFY(qAbs(lengthOf(ray) - 6.0) < 1e-9);
    }
    const WandFrame last = frameOf(element(keloWandStyle::Starburst, 1, 20), false);
    QCOMPARE(last.strokes.at(0).from, QPointF(50 + 38, 60));
    QCOMPARE(last.strokes.at(0).to, QPointF(50 + 44, 60));
    const WandStroke quarter = last.strokes.at(5);
    QVERIFY(near(quarter.from, QPointF(50 + 38 * std::cos(M_PI / 2), 60 + 38 * std::sin(M_PI / 2))));
    QCOMPARE(last.strokes.at(0).colour, WandColors::blend(0x40, Back, 19.0 / 20.0));
}

void TestWandGeometry::lightningHasThirtyThreeConnectedSegments()
{
    WandElement bolt = element(keloWandStyle::Lightning, 1, 1, 0x00FFFFFF);
    bolt.parameter1 = 1.0;
    const WandFrame frame = frameOf(bolt, false);
    QCOMPARE(frame.lineCount(), 33);
    QList<QPointF> reached{QPointF(50, 60)};
    for (const WandStroke &segment : frame.strokes) {
        QCOMPARE(segment.colour, OleColor(0x00FFFFFF));
        QVERIFY(lengthOf(segment) >= 10.0 - 1e-9);
        QVERIFY(lengthOf(segment) < 20.0);
        const bool connected
            = std::any_of(reached.cbegin(), reached.cend(), [&](QPointF p) { return near(p, segment.from); });
        QVERIFY2(connected, "every segment starts where the bolt already is");
        reached << segment.to;
    }
    // The first level is one segment from the start, in the direction the
    // generator's numbers give it.
    resetRandomGenerator();
    const double length = double(Rnd()) * 10 + 10;
    const double angle = std::fmod(1.0 + (double(Rnd()) - 0.5) * 3, 2 * WandGeometry::Pi);
    const QPointF end(50 + length * std::sin(angle), 60 + length * std::cos(angle));
    QVERIFY(near(frame.strokes.at(0).to, end));
}

void TestWandGeometry::boltDepthDecidesItsSize_data()
{
    QTest::addColumn<int>("depth");
    QTest::addColumn<int>("segments");
    QTest::newRow("depth 1") << 1 << 33;
    QTest::newRow("depth 2") << 2 << 2 + 6 + 24;
    QTest::newRow("depth 3") << 3 << 3 + 12;
    QTest::newRow("depth 4") << 4 << 4;
    QTest::newRow("depth 5") << 5 << 0;
    QTest::newRow("depth 9") << 9 << 0;
}

void TestWandGeometry::boltDepthDecidesItsSize()
{
    QFETCH(int, depth);
    QFETCH(int, segments);
    WandFrame frame;
    WandGeometry::drawBolt(QPointF(0, 0), 0.0, depth, 0xFFFFFF, frame);
    QCOMPARE(frame.lineCount(), segments);
}

QTEST_APPLESS_MAIN(TestWandGeometry)
#include "tst_wandgeometry.moc"
