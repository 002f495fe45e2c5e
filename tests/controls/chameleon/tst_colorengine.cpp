#include "ColorEngine_p.h"
#include "Random.h"
#include "RuntimeError.h"

#include <QTest>

#include <cmath>
#include <cstdint>

using namespace Kelocontrols;

namespace {

// The classic generator written out from its definition, as an independent
// reference for the numbers the engine must have drawn.
class ReferenceSequence
{
public:
    float next()
    {
        m_seed = std::uint32_t((std::uint64_t(m_seed) * 0x43FD43FDull + 0xC39EC3ull) % 0x1000000ull);
        return float(double(m_seed) / 16777216.0);
    }

private:
    std::uint32_t m_seed = 0x50000u;
};

ColorRange range(int minimum, int maximum, int stepRate)
{
    return ColorRange{qint16(minimum), qint16(maximum), qint16(stepRate)};
}

} // namespace

class TestColorEngine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { resetRandomGenerator(); }
    void cleanupTestCase() { resetRandomGenerator(); }

    void seedDrawsValuesThenStepsFromTheFixedSequence();
    void seedRaisesSmallStepsToOne_data();
    void seedRaisesSmallStepsToOne();
    void seedOverflowsOnlyBeyondSixteenBits();
    void stepChannelBounces_data();
    void stepChannelBounces();
    void equalBoundsKeepTheColourGrey();
    void channelsRoundHalfToEven();
    void firstStepsFromAnUnseededGenerator();
    void tickCountsIntervals_data();
    void tickCountsIntervals();
    void elapsedTimeSurvivesReseeding();
};

void TestColorEngine::seedDrawsValuesThenStepsFromTheFixedSequence()
{
    ReferenceSequence rnd;
    ColorEngine engine;
    engine.seed(range(20, 220, 10));

    const float red = rnd.next(), green = rnd.next(), blue = rnd.next();
    const float redStep = rnd.next(), greenStep = rnd.next(), blueStep = rnd.next();
    QCOMPARE(engine.red().value, float(double(red) * 200 + 20));
    QCOMPARE(engine.green().value, float(double(green) * 200 + 20));
    QCOMPARE(engine.blue().value, float(double(blue) * 200 + 20));
    QCOMPARE(engine.red().step, qMax(1.0f, float(double(redStep) * 10)));
    QCOMPARE(engine.green().step, qMax(1.0f, float(double(greenStep) * 10)));
    QCOMPARE(engine.blue().step, qMax(1.0f, float(double(blueStep) * 10)));

    // The generator's well-known start: 0.7055475, 0.533424, 0.5795186.
    QVERIFY(qAbs(engine.red().value - (0.7055475f * 200 + 20)) < 1e-3f);
    QVERIFY(qAbs(engine.green().value - (0.533424f * 200 + 20)) < 1e-3f);
    QVERIFY(qAbs(engine.blue().value - (0.5795186f * 200 + 20)) < 1e-3f);

    // Seeding does not reseed: the generator goes on with the seventh number.
    QCOMPARE(Rnd(), rnd.next());

    // Every run that never reseeds starts from the same colours.
    resetRandomGenerator();
    ColorEngine again;
    again.seed(range(20, 220, 10));
    QCOMPARE(again.red().value, engine.red().value);
    QCOMPARE(again.blue().step, engine.blue().step);
}

void TestColorEngine::seedRaisesSmallStepsToOne_data()
{
    QTest::addColumn<int>("stepRate");
    QTest::newRow("rate 0") << 0;
    QTest::newRow("rate 1") << 1;
}

void TestColorEngine::seedRaisesSmallStepsToOne()
{
    QFETCH(int, stepRate);
    ColorEngine engine;
    engine.seed(range(0, 255, stepRate));
    QCOMPARE(engine.red().step, 1.0f);
    QCOMPARE(engine.green().step, 1.0f);
    QCOMPARE(engine.blue().step, 1.0f);
}

void TestColorEngine::seedOverflowsOnlyBeyondSixteenBits()
{
    ColorEngine engine;
    engine.seed(range(0, 32767, 10));
    QVERIFY(engine.red().value >= 0.0f);
    try {
        engine.seed(range(-32768, 32767, 10));
        QFAIL("a span beyond 16 bits must overflow");
    } catch (const RuntimeError &error) {
        QCOMPARE(error.number(), ErrorNumber::Overflow);
    }
}

void TestColorEngine::stepChannelBounces_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<float>("step");
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<float>("expectedValue");
    QTest::addColumn<float>("expectedStep");

    QTest::newRow("inside") << 100.0f << 7.5f << 0 << 255 << 107.5f << 7.5f;
    QTest::newRow("lands on maximum") << 245.0f << 10.0f << 0 << 255 << 255.0f << 10.0f;
    QTest::newRow("past maximum") << 250.0f << 10.0f << 0 << 255 << 255.0f << -10.0f;
    QTest::newRow("lands on minimum") << 10.0f << -10.0f << 0 << 255 << 0.0f << -10.0f;
    QTest::newRow("past minimum") << 5.0f << -10.0f << 0 << 255 << 0.0f << 10.0f;
    QTest::newRow("equal bounds rising") << 128.0f << 5.0f << 128 << 128 << 128.0f << -5.0f;
    QTest::newRow("equal bounds falling") << 128.0f << -5.0f << 128 << 128 << 128.0f << 5.0f;
    // Bounds out of order (an unclamped saved control): the minimum is
    // checked last and wins, the step turning twice.
    QTest::newRow("bounds out of order") << 150.0f << 10.0f << 200 << 100 << 200.0f << 10.0f;
}

void TestColorEngine::stepChannelBounces()
{
    QFETCH(float, value);
    QFETCH(float, step);
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(float, expectedValue);
    QFETCH(float, expectedStep);

    ColorEngine::Channel channel{value, step};
    ColorEngine::stepChannel(channel, range(minimum, maximum, 10));
    QCOMPARE(channel.value, expectedValue);
    QCOMPARE(channel.step, expectedStep);
}

void TestColorEngine::equalBoundsKeepTheColourGrey()
{
    ColorEngine engine;
    const ColorRange grey = range(128, 128, 10);
    engine.seed(grey);
    for (int i = 0; i < 50; ++i) {
        QCOMPARE(engine.step(grey), OleColor(0x00808080));
        QCOMPARE(engine.red().value, 128.0f);
    }
}

void TestColorEngine::channelsRoundHalfToEven()
{
    ColorEngine engine;
    engine.setChannels({0.5f, 0.0f}, {1.5f, 0.0f}, {2.5f, 0.0f});
    QCOMPARE(engine.step(range(0, 255, 10)), RGB(0, 2, 2));
    engine.setChannels({3.5f, 0.0f}, {254.5f, 0.0f}, {100.49f, 0.0f});
    QCOMPARE(engine.step(range(0, 255, 10)), RGB(4, 254, 100));
    QCOMPARE(engine.currentColor(), RGB(4, 254, 100));
}

void TestColorEngine::firstStepsFromAnUnseededGenerator()
{
    ReferenceSequence rnd;
    float values[3], steps[3];
    for (float &v : values) {
        v = float(double(rnd.next()) * 255);
    }
    for (float &s : steps) {
        s = qMax(1.0f, float(double(rnd.next()) * 10));
    }
    ColorEngine engine;
    const ColorRange full = range(0, 255, 10);
    engine.seed(full);
    // Every channel first rises.
    for (int n = 0; n < 3; ++n) {
        int channel[3];
        for (int c = 0; c < 3; ++c) {
            values[c] += steps[c];
            if (values[c] > 255) {
                values[c] = 255;
                steps[c] = -steps[c];
            }
            channel[c] = int(std::nearbyint(values[c]));
        }
        QCOMPARE(engine.step(full), RGB(channel[0], channel[1], channel[2]));
    }
}

void TestColorEngine::tickCountsIntervals_data()
{
    QTest::addColumn<int>("interval");
    QTest::addColumn<QList<int>>("steppingTicks");

    QTest::newRow("1000 ms: every tenth") << 1000 << QList<int>{10, 20, 30};
    QTest::newRow("1050 ms: every eleventh") << 1050 << QList<int>{11, 22, 33};
    QTest::newRow("100 ms: every tick") << 100 << QList<int>{1, 2, 3};
    QTest::newRow("101 ms: every second") << 101 << QList<int>{2, 4, 6};
    QTest::newRow("50 ms: every tick") << 50 << QList<int>{1, 2, 3};
    QTest::newRow("0 ms: every tick") << 0 << QList<int>{1, 2, 3};
    QTest::newRow("negative: every tick") << -20 << QList<int>{1, 2, 3};
}

void TestColorEngine::tickCountsIntervals()
{
    QFETCH(int, interval);
    QFETCH(QList<int>, steppingTicks);

    ColorEngine engine;
    QList<int> stepped;
    for (int tick = 1; stepped.size() < steppingTicks.size() && tick <= 100; ++tick) {
        if (engine.tick(interval)) {
            stepped << tick;
            QCOMPARE(engine.elapsed(), 0);
        }
    }
    QCOMPARE(stepped, steppingTicks);
}

void TestColorEngine::elapsedTimeSurvivesReseeding()
{
    ColorEngine engine;
    for (int i = 0; i < 6; ++i) {
        QVERIFY(!engine.tick(1000));
    }
    QCOMPARE(engine.elapsed(), 600);
    engine.seed(range(0, 255, 10));
    QCOMPARE(engine.elapsed(), 600);
    QVERIFY(!engine.tick(1000));
    QVERIFY(!engine.tick(1000));
    QVERIFY(!engine.tick(1000));
    QVERIFY(engine.tick(1000));
}

QTEST_APPLESS_MAIN(TestColorEngine)
#include "tst_colorengine.moc"
