#include "Random.h"

#include <QTime>

#include <bit>
#include <cstdint>

namespace Kelocontrols {

namespace {

constexpr std::uint32_t InitialSeed = 0x50000u;
constexpr std::uint32_t Multiplier = 0x43FD43FDu;
constexpr std::uint32_t Increment = 0xC39EC3u;
constexpr std::uint32_t SeedMask = 0xFFFFFFu;
constexpr float SeedRange = 16777216.0f; // 2^24

std::uint32_t seed = InitialSeed;

// Every seed below 2^24 is exactly representable as a float, so the
// division is exact.
float currentValue()
{
    return static_cast<float>(seed) / SeedRange;
}

void advance()
{
    // Unsigned arithmetic wraps mod 2^32, a multiple of 2^24.
    seed = (seed * Multiplier + Increment) & SeedMask;
}

} // namespace

float Rnd()
{
    advance();
    return currentValue();
}

float Rnd(float number)
{
    if (number == 0.0f)
        return currentValue();
    if (number < 0.0f) {
        const auto bits = std::bit_cast<std::uint32_t>(number);
        seed = ((bits & SeedMask) + (bits >> 24)) & SeedMask;
    }
    return Rnd();
}

void Randomize()
{
    // The runtime's Timer: seconds since midnight as a single, hundredths included.
    const float secondsSinceMidnight = static_cast<float>(QTime::currentTime().msecsSinceStartOfDay()) / 1000.0f;
    Randomize(static_cast<double>(secondsSinceMidnight));
}

void Randomize(double number)
{
    const auto high = static_cast<std::uint32_t>(std::bit_cast<std::uint64_t>(number) >> 32);
    const std::uint32_t mixed = ((high & 0xFFFFu) ^ (high >> 16)) << 8;
    seed = (seed & 0xFFu) | (mixed & 0xFFFF00u);
}

void resetRandomGenerator()
{
    seed = InitialSeed;
}

} // namespace Kelocontrols
