#include "Random.h"

#include <QTest>
#include <QTime>

#include <bit>
#include <cstdint>
#include <limits>

using namespace Kelocontrols;

namespace {

// The generator written out from its definition, in 64-bit arithmetic, as
// an independent reference for the library's 32-bit wrap-around version.
std::uint32_t nextSeed(std::uint32_t seed)
{
    return std::uint32_t((std::uint64_t(seed) * 0x43FD43FDull + 0xC39EC3ull) % 0x1000000ull);
}

float valueOf(std::uint32_t seed)
{
    return float(double(seed) / 16777216.0);
}

// The seed the generator holds now, read back without advancing it.
std::uint32_t currentSeed()
{
    return std::uint32_t(double(Rnd(0.0f)) * 16777216.0);
}

std::uint32_t randomizedSeed(std::uint32_t seed, double number)
{
    const auto high = std::uint32_t(std::bit_cast<std::uint64_t>(number) >> 32);
    const std::uint32_t middle = (high >> 16) ^ (high & 0xFFFFu);
    return (seed & 0xFFu) | (middle << 8);
}

} // namespace

class TestRandom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { resetRandomGenerator(); }
    void cleanupTestCase() { resetRandomGenerator(); }

    void defaultSequence()
    {
        QCOMPARE(QString::number(double(Rnd()), 'g', 7), u"0.7055475"_qs);
        QCOMPARE(QString::number(double(Rnd()), 'g', 7), u"0.533424"_qs);
        QCOMPARE(QString::number(double(Rnd()), 'g', 7), u"0.5795186"_qs);

        // After a reset the same again, for reproducible runs; a long run stays on the reference sequence and inside
        // [0, 1).
        resetRandomGenerator();
        std::uint32_t seed = 0x50000;
        for (int i = 0; i < 100000; ++i) {
            const float value = Rnd();
            QVERIFY(value >= 0.0f && value < 1.0f);
            seed = nextSeed(seed);
            if (value != valueOf(seed))
                QFAIL(qPrintable(u"differs at %1"_qs.arg(i)));
        }
    }

    void zeroRepeatsAndPositiveAdvances()
    {
        // Before any number is drawn, Rnd(0) gives the start-up seed's value; NaN is no reason to reseed or repeat.
        QCOMPARE(Rnd(0.0f), 0.01953125f);
        QCOMPARE(Rnd(-0.0f), 0.01953125f);
        std::uint32_t seed = 0x50000;
        using F = std::numeric_limits<float>;
        for (float number : {1.0f, F::denorm_min(), 1e30f, F::quiet_NaN()}) {
            seed = nextSeed(seed);
            QCOMPARE(Rnd(number), valueOf(seed));
            QCOMPARE(Rnd(0.0f), valueOf(seed));
            QCOMPARE(Rnd(0.0f), valueOf(seed));
        }
        QCOMPARE(Rnd(), valueOf(nextSeed(seed)));
    }

    void negativeArgumentReseeds_data()
    {
        // The seed is the float's low 24 bits plus its top byte; the value comes from the seed after it.
        QTest::addColumn<float>("number");
        QTest::addColumn<uint>("seed");
        using F = std::numeric_limits<float>;
        for (const auto &[number, seed] :
            {std::pair{-1.0f, 0x395886u}, {-0.5f, 0xB95886u}, {-123.456f, 0x658C12u}, {-1e10f, 0x2AF768u},
                {-F::denorm_min(), 0x62E140u}, {F::lowest(), 0x8D13C9u}, {-F::infinity(), 0x8A57C6u}})
            QTest::addRow("%g", double(number)) << number << seed;
    }

    void negativeArgumentReseeds()
    {
        QFETCH(float, number);
        QFETCH(uint, seed);
        Rnd();
        Rnd();
        QCOMPARE(Rnd(number), valueOf(seed));
        QCOMPARE(Rnd(), valueOf(nextSeed(seed)));
        // The same argument restarts the same sequence, whatever came before.
        QCOMPARE(Rnd(number), valueOf(seed));
    }

    void randomizeReplacesMiddleBytes_data()
    {
        // After Rnd(-1) the seed is 0x395886; Randomize keeps its low byte and puts the two halves of the number's
        // top 32 bits, combined, in the middle.
        QTest::addColumn<double>("number");
        QTest::addColumn<uint>("seed");
        for (const auto &[number, seed] : {std::pair{0.0, 0x000086u}, {1.0, 0x3FF086u}, {-1.0, 0xBFF086u},
                 {12345.678, 0x5C1E86u}, {1e300, 0x9A0B86u}})
            QTest::addRow("%g", number) << number << seed;
    }

    void randomizeReplacesMiddleBytes()
    {
        QFETCH(double, number);
        QFETCH(uint, seed);
        Rnd(-1.0f);
        QCOMPARE(currentSeed(), 0x395886u);
        Randomize(number);
        QCOMPARE(currentSeed(), seed);
        QCOMPARE(Rnd(), valueOf(nextSeed(seed)));
    }

    void randomizeAfterNegativeIsRepeatable()
    {
        // Randomize(0) clears the middle bytes; from power-on the low byte is 0 too.
        Randomize(0.0);
        QCOMPARE(currentSeed(), 0u);
        QCOMPARE(Rnd(), valueOf(0xC39EC3));

        // 1.0 = 0x3FF00000 00000000: middle bytes become 0x3FF0.
        QCOMPARE(QString::number(double(Rnd(-1.0f)), 'g', 7), u"0.224007"_qs);
        Randomize(1.0);
        QCOMPARE(currentSeed(), 0x3FF086u);
        const float first = Rnd();
        const float second = Rnd();

        Rnd(-1.0f);
        Randomize(1.0);
        QCOMPARE(Rnd(), first);
        QCOMPARE(Rnd(), second);
    }

    void randomizeUsesTimeOfDay()
    {
        Rnd(-1.0f);
        const std::uint32_t before = currentSeed();
        const auto secondsNow = [] { return double(float(QTime::currentTime().msecsSinceStartOfDay()) / 1000.0f); };
        const double earliest = secondsNow();
        Randomize();
        const double latest = secondsNow();

        const std::uint32_t after = currentSeed();
        QCOMPARE(after & 0xFFu, before & 0xFFu);
        QVERIFY2(after == randomizedSeed(before, earliest) || after == randomizedSeed(before, latest),
            qPrintable(QString::number(after, 16)));
    }
};

QTEST_MAIN(TestRandom)
#include "tst_random.moc"
