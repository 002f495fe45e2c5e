#include "ScoreModel.h"

namespace Kelocontrols {

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
