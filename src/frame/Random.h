#pragma once

#include <kelocontrols_export.h>

namespace Kelocontrols {

/**
 * The classic BASIC runtime's random numbers, reproduced bit for bit so that
 * effects driven by them (colour drift, wand animations) run the same
 * sequence as they always did.
 *
 * The generator is a 24-bit linear congruential one:
 *
 *     seed' = (seed * 0x43FD43FD + 0xC39EC3) mod 2^24,   value = seed' / 2^24
 *
 * starting from the seed 0x50000 when the process starts, so that a program
 * that never calls Randomize() always gets 0.7055475, 0.533424, 0.5795186 ...
 *
 * The generator is one per process and not synchronised: use it from the
 * user-interface thread only.
 */

/// The next number of the sequence, in [0, 1).
KELOCONTROLS_EXPORT float Rnd();

/**
 * A number chosen by the sign of @p number:
 * - greater than zero (or NaN): the next number of the sequence, as Rnd();
 * - zero: the number most recently produced again, without advancing;
 * - less than zero: restarts the sequence at a seed made from the bits of
 *   the single-precision @p number (low 24 bits plus the high byte), then
 *   returns its first number. The same negative argument thus always gives
 *   the same number and the same sequence after it (Rnd(-1) is 0.224007).
 */
KELOCONTROLS_EXPORT float Rnd(float number);

/// Reseeds from the seconds since midnight, as Randomize(double) does.
KELOCONTROLS_EXPORT void Randomize();

/**
 * Reseeds the sequence from @p number: the high 32 bits of the double, their
 * two 16-bit halves combined by exclusive or, replace bits 8..23 of the seed;
 * its low byte is kept. Calling Rnd(-1) (or another negative number) first
 * makes the sequence after Randomize(number) repeatable.
 */
KELOCONTROLS_EXPORT void Randomize(double number);

/// Puts the generator back to its start-up seed, for tests and for hosts that need reproducible runs.
KELOCONTROLS_EXPORT void resetRandomGenerator();

} // namespace Kelocontrols
