#include "ColorEngine_p.h"
#include "Random.h"
#include "RuntimeError.h"

#include "KeloTestSupport.h"

#include <QTest>

#include <cmath>
#include <cstdint>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

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

    void seedAndFirstStepsFromTheFixedSequence_data();
    void seedAndFirstStepsFromTheFixedSequence();
    void seedOverflowsOnlyBeyondSixteenBits();
    void stepChannelBounces_data();
    void stepChannelBounces();
    void channelsRoundHalfToEven();
    void tickCountsIntervals_data();
    void tickCountsIntervals();
};

void TestColorEngine::seedAndFirstStepsFromTheFixedSequence_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("stepRate");
    QTest::newRow("0..255 by 10") << 0 << 255 << 10;
    QTest::newRow("20..220 by 10") << 20 << 220 << 10;
    QTest::newRow("rate 0: steps of 1") << 0 << 255 << 0;
    QTest::newRow("rate 1: steps of 1") << 0 << 255 << 1;
    QTest::newRow("grey 128") << 128 << 128 << 10;
}

// Values first (red, green, blue), then steps, each raised to at least 1, so
// every channel first rises; how each step then bounces at the bounds is
// stepChannelBounces' table.
void TestColorEngine::seedAndFirstStepsFromTheFixedSequence()
{
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(int, stepRate);

    ReferenceSequence rnd;
    QList<float> expected;
    for (int i = 0; i < 6; ++i) {
        const double range = i < 3 ? maximum - minimum : stepRate;
        expected << (i < 3 ? float(double(rnd.next()) * range + minimum)
                           : qMax(1.0f, float(double(rnd.next()) * range)));
    }
    ColorEngine engine;
    engine.seed(range(minimum, maximum, stepRate));
    QCOMPARE((QList<float>{engine.red().value, engine.green().value, engine.blue().value, engine.red().step,
                 engine.green().step, engine.blue().step}),
        expected);
    // Seeding does not reseed: the generator goes on with the seventh number.
    QCOMPARE(Rnd(), rnd.next());
    // The first step rises on every channel by its step, rounded half to even.
    const OleColor first = engine.step(range(minimum, maximum, stepRate));
    const auto channel
        = [&](int c) { return int(std::nearbyint(qMin(float(maximum), expected.at(c) + expected.at(c + 3)))); };
    QCOMPARE(first, RGB(channel(0), channel(1), channel(2)));
    // The generator's well-known start: 0.7055475.
    QVERIFY(qAbs(expected.at(0) - (0.7055475f * (maximum - minimum) + minimum)) < 1e-3f);
}

void TestColorEngine::seedOverflowsOnlyBeyondSixteenBits()
{
    ColorEngine engine;
    engine.seed(range(0, 32767, 10));
    QVERIFY(engine.red().value >= 0.0f);
    QCOMPARE(errorNumberOf([&] { engine.seed(range(-32768, 32767, 10)); }), ErrorNumber::Overflow);
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

void TestColorEngine::channelsRoundHalfToEven()
{
    ColorEngine engine;
    engine.setChannels({0.5f, 0.0f}, {1.5f, 0.0f}, {2.5f, 0.0f});
    QCOMPARE(engine.step(range(0, 255, 10)), RGB(0, 2, 2));
    engine.setChannels({3.5f, 0.0f}, {254.5f, 0.0f}, {100.49f, 0.0f});
    QCOMPARE(engine.step(range(0, 255, 10)), RGB(4, 254, 100));
    QCOMPARE(engine.currentColor(), RGB(4, 254, 100));
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

// The elapsed time counts on across a new seed (a Refresh).
void TestColorEngine::tickCountsIntervals()
{
    QFETCH(int, interval);
    QFETCH(QList<int>, steppingTicks);

    ColorEngine engine;
    QList<int> stepped;
    for (int tick = 1; stepped.size() < steppingTicks.size() && tick <= 100; ++tick) {
        if (tick == 2) {
            engine.seed(range(0, 255, 10));
        }
        if (engine.tick(interval)) {
            stepped << tick;
            QCOMPARE(engine.elapsed(), 0);
        }
    }
    QCOMPARE(stepped, steppingTicks);
}

QTEST_APPLESS_MAIN(TestColorEngine)
#include "tst_colorengine.moc"
