#include "ScoreModel_p.h"

#include <algorithm>

namespace Kelocontrols {

namespace {

/// Clamps first against the lower bound, then against the upper one, so an
/// upper bound below the lower one wins.
float clampBetween(float value, float lower, float upper)
{
    return std::min(std::max(value, lower), upper);
}

} // namespace

ScoreScale ScoreScale::withStar(float score) const
{
    ScoreScale s = *this;
    s.thresholds.star = clampBetween(score, thresholds.good, max);
    return s;
}

ScoreScale ScoreScale::withGood(float score) const
{
    ScoreScale s = *this;
    s.thresholds.good = clampBetween(score, thresholds.maybe, thresholds.star);
    return s;
}

ScoreScale ScoreScale::withMaybe(float score) const
{
    ScoreScale s = *this;
    s.thresholds.maybe = clampBetween(score, thresholds.bad, thresholds.good);
    return s;
}

ScoreScale ScoreScale::withBad(float score) const
{
    ScoreScale s = *this;
    s.thresholds.bad = clampBetween(score, min, thresholds.maybe);
    return s;
}

ScoreScale ScoreScale::withMin(float score) const
{
    ScoreScale s = *this;
    s.min = score >= max ? max - 1.0f : score;
    for (float *t : {&s.thresholds.bad, &s.thresholds.maybe, &s.thresholds.good, &s.thresholds.star}) {
        *t = std::max(*t, s.min);
    }
    return s;
}

ScoreScale ScoreScale::withMax(float score) const
{
    ScoreScale s = *this;
    s.max = score <= min ? min + 1.0f : score;
    for (float *t : {&s.thresholds.bad, &s.thresholds.maybe, &s.thresholds.good, &s.thresholds.star}) {
        *t = std::min(*t, s.max);
    }
    return s;
}

bool ScoreScale::isOrdered() const
{
    const ScoreThresholds &t = thresholds;
    return min < max && min <= t.bad && t.bad <= t.maybe && t.maybe <= t.good && t.good <= t.star && t.star <= max;
}

bool ScoreScale::operator==(const ScoreScale &other) const
{
    const ScoreThresholds &a = thresholds;
    const ScoreThresholds &b = other.thresholds;
    return min == other.min && max == other.max && a.bad == b.bad && a.maybe == b.maybe && a.good == b.good
        && a.star == b.star;
}

int scoreGrade(float value, const ScoreThresholds &thresholds)
{
    int grade = 1;
    if (value >= thresholds.bad) {
        grade = 2;
    }
    if (value >= thresholds.maybe) {
        grade = 3;
    }
    if (value >= thresholds.good) {
        grade = 4;
    }
    if (value >= thresholds.star) {
        grade = 5;
    }
    return grade;
}

OleColor gradeColor(int grade)
{
    switch (grade) {
    case 2:
        return 0x000000FF; // red
    case 3:
        return 0x0000FFFF; // yellow
    case 4:
        return 0x0000FF00; // green
    case 5:
        return 0x00FFFF00; // cyan
    default:
        return 0x00000000; // black
    }
}

} // namespace Kelocontrols
