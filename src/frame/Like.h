#pragma once

#include <kelocontrols_export.h>

#include <QString>

namespace Kelocontrols {

/**
 * The classic Like operator, comparing without regard to case.
 *
 * Pattern elements:
 * - `*` any run of characters, the empty run included;
 * - `?` exactly one character;
 * - `#` exactly one digit 0-9;
 * - `[list]` one character of the list, `[!list]` one character not in it.
 *   A list holds characters and ranges `a-z`; inside brackets `*`, `?`, `#`,
 *   `[` and `!` (after the first position) stand for themselves; `-` is
 *   literal as the first item (after a leading `!`) or as the last one;
 *   `]` closes the list. `[]` matches the empty string (it consumes no
 *   character) and `[!]` matches any one character;
 * - every other character, `!` and `]` included, matches itself.
 *
 * Case folding is Unicode's (QChar::toCaseFolded), so "ä" matches "Ä".
 * A range matches a character when the character or its lower- or upper-case
 * form lies within it, so both "[a-z]" and "[A-Z]" match "q" and "Q".
 * Characters outside the Basic Multilingual Plane count as one character.
 *
 * The matcher runs in O(text length x pattern length) at worst, whatever
 * the number of `*`.
 *
 * @throws RuntimeError InvalidPatternString (93) for a `[` without its `]`
 *         or a range whose start is above its end by code point ("[z-a]",
 *         "[a-Z]"), whether or not
 *         the match would reach that part of the pattern.
 */
KELOCONTROLS_EXPORT bool Like(const QString &text, const QString &pattern);

} // namespace Kelocontrols
