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

// One stroke as text, to six digits: "50,60-56,60 #40" for a line, "(50,60) r2 a1 #40" for a circle.
QString describe(const WandStroke &s)
{
    const auto point = [](QPointF p) { return QStringLiteral("%1,%2").arg(p.x()).arg(p.y()); };
    const QString colour = QStringLiteral(" #%1").arg(s.colour, 0, 16);
    if (s.kind == WandStroke::Kind::Line) {
        return point(s.from) + QLatin1Char('-') + point(s.to) + colour;
    }
    return QStringLiteral("(%1) r%2 a%3").arg(point(s.from)).arg(s.radius).arg(s.aspect) + colour;
}

QStringList describe(const WandFrame &frame)
{
    QStringList texts;
    for (const WandStroke &s : frame.strokes) {
        texts << describe(s);
    }
    return texts;
}

double lengthOf(const WandStroke &s)
{
    return std::hypot(s.to.x() - s.from.x(), s.to.y() - s.from.y());
}

} // namespace

Q_DECLARE_METATYPE(Kelocontrols::WandElement)

class TestWandGeometry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { resetRandomGenerator(); }
    void cleanupTestCase() { resetRandomGenerator(); }

    void channelsKeepTheClassicRounding_data();
    void channelsKeepTheClassicRounding();
    void blendAndContrastGrey();
    void framesOfEachStyle_data();
    void framesOfEachStyle();
    void erasingFramesUseTheBackgroundOnlyOverPlainSurfaces();
    void lightningHasThirtyThreeConnectedSegments();
    void boltDepthDecidesItsSize_data();
    void boltDepthDecidesItsSize();
};

void TestWandGeometry::channelsKeepTheClassicRounding_data()
{
    QTest::addColumn<uint>("colour");
    QTest::addColumn<QString>("channels"); // red green blue
    QTest::addColumn<int>("brightness");

    QTest::newRow("black") << 0x000000u << "0 0 0" << 0;
    QTest::newRow("low bytes") << 0x102030u << "48 32 16" << 32;
    QTest::newRow("red below half") << 0x00007Fu << "127 0 0" << 42;
    // Quotients are rounded half to even before the bytes are cut, so a
    // low byte of 128 and more carries into the next channel.
    QTest::newRow("red 128: green x.5 to even") << 0x000080u << "128 0 0" << 43;
    QTest::newRow("green 1, red 128: 1.5 to 2") << 0x000180u << "128 2 0" << 43;
    QTest::newRow("red 255 carries") << 0x0000FFu << "255 1 0" << 85;
    QTest::newRow("0x0000FF80") << 0x00FF80u << "128 0 1" << 43;
    QTest::newRow("grey 0x808080") << 0x808080u << "128 128 129" << 128;
    QTest::newRow("white reads as red") << 0xFFFFFFu << "255 0 0" << 85;
    QTest::newRow("0x404040") << 0x404040u << "64 64 64" << 64;
    QTest::newRow("0x7FC0C0") << 0x7FC0C0u << "192 193 128" << 171;
    QTest::newRow("192.33 is not above 192") << 0xAFC8C8u << "200 201 176" << 192;
    QTest::newRow("192.67 is") << 0xB0C8C8u << "200 201 177" << 193;
    QTest::newRow("0xC0C0C0") << 0xC0C0C0u << "192 193 193" << 193;
    QTest::newRow("0xFEFEFE") << 0xFEFEFEu << "254 255 255" << 255;
}

// The channels as the classic rounding reads them decide the contrasting
// grey: light grey above a brightness of 192, grey at or below it.
void TestWandGeometry::channelsKeepTheClassicRounding()
{
    QFETCH(uint, colour);
    QFETCH(QString, channels);
    QFETCH(int, brightness);
    const WandColors::Channels c = WandColors::channels(colour);
    QCOMPARE(QStringLiteral("%1 %2 %3").arg(c.red).arg(c.green).arg(c.blue), channels);
    QCOMPARE(WandColors::brightness(colour), brightness);
    QCOMPARE(WandColors::greyByContrast(colour), brightness > 192 ? WandColors::LightGrey : WandColors::Grey);
}

void TestWandGeometry::blendAndContrastGrey()
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

void TestWandGeometry::framesOfEachStyle_data()
{
    QTest::addColumn<WandElement>("element");
    QTest::addColumn<QStringList>("strokes"); // the first strokes drawn, as describe() writes them

    // Stars: four lines across a square of 6 pixels, shrinking with their life.
    QTest::newRow("star, new") << element(keloWandStyle::Stars, 6,
        6) << QStringList{"47,57-53,63 #40", "53,57-47,63 #40", "50,57-50,63 #40", "47,60-53,60 #40"};
    QTest::newRow("star, last tick") << element(keloWandStyle::Stars, 1, 6)
                                     << QStringList{"49.5,59.5-50.5,60.5 #40", "50.5,59.5-49.5,60.5 #40",
                                            "50,59.5-50,60.5 #40", "49.5,60-50.5,60 #40"};
    // Ripples: radius 2 in the element's own colour, growing by 2 a tick while
    // the colour fades to the background (0x40 -> 0, 0 -> 32).
    QTest::newRow("ripple, new") << element(keloWandStyle::Ripples, 40, 40) << QStringList{"(50,60) r2 a1 #40"};
    QTest::newRow("ripple, halfway") << element(keloWandStyle::Ripples, 20, 40)
                                     << QStringList{"(50,60) r42 a1 #100020"};
    QTest::newRow("ripple, last tick") << element(keloWandStyle::Ripples, 1, 40)
                                       << QStringList{"(50,60) r80 a1 #1f0002"};
    // Starburst: a ray every pi/10, 6 long, moving out and fading.
    QTest::newRow("starburst, new") << element(keloWandStyle::Starburst, 20, 20)
                                    << QStringList{"50,60-56,60 #40", "50,60-55.7063,61.8541 #40"};
    QTest::newRow("starburst, last tick")
        << element(keloWandStyle::Starburst, 1, 20) << QStringList{"88,60-94,60 #1e0003"};
    // Atom: a grey orbit (30 wide, aspect 0.5) and the electron on it, in the element's colour.
    WandElement atom = element(keloWandStyle::Atom, 20, 20, 0x0000FF00);
    atom.parameter1 = 0.5;
    atom.parameter2 = 30.0f;
    QTest::newRow("atom") << atom
                          << QStringList{QStringLiteral("(50,60) r30 a0.5 #%1").arg(WandColors::Grey, 0, 16),
                                 QStringLiteral("(80,60) r%1 a1 #ff00").arg(WandGeometry::ElectronRadius)};
    atom.life = qint16(20 - WandGeometry::ElectronTicksPerOrbit / 2);
    QTest::newRow("atom, half an orbit later")
        << atom
        << QStringList{QStringLiteral("(50,60) r30 a0.5 #%1").arg(WandColors::Grey, 0, 16),
               QStringLiteral("(20,60) r%1 a1 #ff00").arg(WandGeometry::ElectronRadius)};
}

void TestWandGeometry::framesOfEachStyle()
{
    QFETCH(WandElement, element);
    QFETCH(QStringList, strokes);
    const WandFrame frame = frameOf(element, false);
    QCOMPARE(describe(frame).mid(0, strokes.size()), strokes);
    const int rays = element.style == keloWandStyle::Starburst ? 20 : 0;
    QCOMPARE(frame.lineCount(), element.style == keloWandStyle::Stars ? 4 : rays);
    QCOMPARE(frame.circleCount(),
        element.style == keloWandStyle::Atom ? 2 : (element.style == keloWandStyle::Ripples ? 1 : 0));
    if (element.style == keloWandStyle::Starburst) {
        // A quarter turn on, the sixth ray; the floating-point angle passes 2 pi
        // after 20 steps; every ray is 6 long.
        const double inner = 2.0 * (element.initialLife - element.life);
        QCOMPARE(
            describe(frame.strokes.at(5)).section(QLatin1Char('-'), 0, 0), QStringLiteral("50,%1").arg(60 + inner));
        for (const WandStroke &ray : frame.strokes) {
            QVERIFY(qAbs(lengthOf(ray) - 6.0) < 1e-9);
        }
    }
    if (element.style == keloWandStyle::Atom) {
        // A tall orbit: the radius is the vertical one.
        const WandStroke orbit = frame.strokes.at(0);
        QCOMPARE(orbit.radiusX(), 30.0);
        QCOMPARE(orbit.radiusY(), 15.0);
        WandElement tall = element;
        tall.parameter1 = 2.0;
        QCOMPARE(frameOf(tall, false).strokes.at(0).radiusX(), 15.0);
        QCOMPARE(frameOf(tall, false).strokes.at(0).radiusY(), 30.0);
    }
}

void TestWandGeometry::erasingFramesUseTheBackgroundOnlyOverPlainSurfaces()
{
    WandElement atom = element(keloWandStyle::Atom, 20, 20, 0x0000FF00);
    atom.parameter1 = 0.5;
    atom.parameter2 = 30.0f;
    for (const WandElement &e : {element(keloWandStyle::Stars, 4, 6, 0x00FF00), atom}) {
        const WandFrame drawn = frameOf(e, false);
        const WandFrame erased = frameOf(e, true);
        const WandFrame erasedOverPicture = frameOf(e, true, true);
        QVERIFY(erasedOverPicture.exclusiveOr);
        QVERIFY(!erased.exclusiveOr);
        // The same geometry: the erasing frame covers the drawn one, in the
        // background colour, or over a picture repeating the drawing.
        QCOMPARE(erasedOverPicture.strokes, drawn.strokes);
        for (int i = 0; i < drawn.strokes.size(); ++i) {
            WandStroke expected = drawn.strokes.at(i);
            expected.colour = Back;
            QCOMPARE(erased.strokes.at(i), expected);
        }
    }
    // Over a picture the erasing frame of a ripple repeats the faded colour.
    QCOMPARE(frameOf(element(keloWandStyle::Ripples, 20, 40), true, true).strokes.at(0).colour, RGB(0x20, 0, 16));
}

void TestWandGeometry::lightningHasThirtyThreeConnectedSegments()
{
    WandElement bolt = element(keloWandStyle::Lightning, 1, 1, 0x00FFFFFF);
    bolt.parameter1 = 1.0;
    const WandFrame frame = frameOf(bolt, false);
    QCOMPARE(frame.lineCount(), 33);
    const auto near = [](QPointF a, QPointF b) { return std::abs(a.x() - b.x()) + std::abs(a.y() - b.y()) < 1e-9; };
    QList<QPointF> reached{QPointF(50, 60)};
    for (const WandStroke &segment : frame.strokes) {
        QCOMPARE(segment.colour, OleColor(0x00FFFFFF));
        QVERIFY(lengthOf(segment) >= 10.0 - 1e-9 && lengthOf(segment) < 20.0);
        QVERIFY2(std::any_of(reached.cbegin(), reached.cend(), [&](QPointF p) { return near(p, segment.from); }),
            "every segment starts where the bolt already is");
        reached << segment.to;
    }
    // The first level is one segment from the start, in the direction the generator's numbers give it.
    resetRandomGenerator();
    const double length = double(Rnd()) * 10 + 10;
    const double angle = std::fmod(1.0 + (double(Rnd()) - 0.5) * 3, 2 * WandGeometry::Pi);
    QVERIFY(near(frame.strokes.at(0).to, QPointF(50 + length * std::sin(angle), 60 + length * std::cos(angle))));
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
