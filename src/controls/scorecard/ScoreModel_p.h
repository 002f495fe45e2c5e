#pragma once

#include <kelocontrols_export.h>

#include "OleColor.h"

namespace Kelocontrols {

/// The four thresholds that split scores into five grades.
struct KELOCONTROLS_TESTS_EXPORT ScoreThresholds
{
    float bad = 0.2f;
    float maybe = 0.4f;
    float good = 0.6f;
    float star = 0.8f;
};

/**
 * The scale of a score card: its range and the thresholds within it.
 *
 * The with...() functions give the scale after one write through the
 * control's setter, with the setters' clamping rules: a threshold clamps
 * against its two neighbours (first the one below, then the one above; the
 * lowest and highest against the range), while a new minimum or maximum
 * steps back by one whole unit when it would cross the other end and pushes
 * every threshold that falls outside the new range.
 */
struct KELOCONTROLS_TESTS_EXPORT ScoreScale
{
    float min = 0.0f;
    float max = 1.0f;
    ScoreThresholds thresholds;

    ScoreScale withStar(float score) const;
    ScoreScale withGood(float score) const;
    ScoreScale withMaybe(float score) const;
    ScoreScale withBad(float score) const;
    ScoreScale withMin(float score) const;
    ScoreScale withMax(float score) const;

    /// Whether the scale is one the setters can reach: min < max and
    /// min <= bad <= maybe <= good <= star <= max.
    bool isOrdered() const;

    bool operator==(const ScoreScale &other) const;
};

/**
 * The grade of a score, 1 (worst) to 5 (best).
 *
 * The thresholds are tested in the order bad, maybe, good, star and each
 * test that holds overwrites the result, so a value equal to a threshold
 * takes the higher grade and, with thresholds out of order (a loaded form
 * may have them so), the highest-numbered threshold the value reaches wins.
 */
KELOCONTROLS_TESTS_EXPORT int scoreGrade(float value, const ScoreThresholds &thresholds);

/// The colour of a grade: 1 black, 2 red, 3 yellow, 4 green, 5 cyan.
KELOCONTROLS_TESTS_EXPORT OleColor gradeColor(int grade);

} // namespace Kelocontrols
