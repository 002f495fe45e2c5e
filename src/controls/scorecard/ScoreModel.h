#pragma once

#include "OleColor.h"

namespace Kelocontrols {

/// The four thresholds that split scores into five grades.
struct ScoreThresholds
{
    float bad = 0.2f;
    float maybe = 0.4f;
    float good = 0.6f;
    float star = 0.8f;
};

/**
 * The grade of a score, 1 (worst) to 5 (best).
 *
 * The thresholds are tested in the order bad, maybe, good, star and each
 * test that holds overwrites the result, so a value equal to a threshold
 * takes the higher grade and, with thresholds out of order (a loaded form
 * may have them so), the highest-numbered threshold the value reaches wins.
 */
int scoreGrade(float value, const ScoreThresholds &thresholds);

/// The colour of a grade: 1 black, 2 red, 3 yellow, 4 green, 5 cyan.
OleColor gradeColor(int grade);

} // namespace Kelocontrols
