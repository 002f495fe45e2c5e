#pragma once

#include <kelocontrols_export.h>

#include "OleColor.h"
#include "ScoreModel_p.h"

#include <QFont>
#include <QRectF>

class QImage;
class QPainter;

namespace Kelocontrols {

/// Everything a gauge drawing depends on.
struct KELOCONTROLS_TESTS_EXPORT GaugeSpec
{
    int style = 7; ///< keloScoreCardStyle: 7 Gauge, 8 GaugeOverrun, 9 GaugeRainbow
    float value = 0.5f;
    float scoreMin = 0.0f;
    float scoreMax = 1.0f;
    ScoreThresholds thresholds;
    OleColor foreColor = 0x80000012;
    OleColor backColor = 0x8000000F;
    int blocks = 0;
    float tickEvery = 0.0f;
    OleColor tickColor = 0;
    bool limitLines = false;
    int marker = 0; ///< keloMarkerStyle
    int showValue = 0; ///< keloShowValue
    OleColor fontColor = 0;
    QFont font;
    bool vertical = false;
};

/**
 * Draws a gauge onto a cleared canvas.
 *
 * The axis runs along the width from the left (horizontal) or along the
 * height from the bottom (vertical); ScoreMin sits at its start and ScoreMax
 * at its end. Layers, in order: the bar from ScoreMin to the value (the
 * ForeColor, or the grade colour for the rainbow gauge), the red overrun
 * beyond ScoreStar, the block dividers, the tick lines, the limit lines, the
 * marker and last the value text. Lines are drawn without anti-aliasing so
 * their colours are exact.
 */
class KELOCONTROLS_TESTS_EXPORT GaugePainter
{
public:
    explicit GaugePainter(const GaugeSpec &gaugeSpec);

    /// Draws on `canvas`; returns false (and draws nothing) when ScoreMin equals ScoreMax.
    bool paint(QImage &canvas);

    /// The pen width of the block dividers: 3 up to 10 blocks, 2 up to 20, 1 beyond.
    static int blockPenWidth(int blocks);
    /// The scores at which tick lines fall, counted in single precision from
    /// ScoreMin + every up to ScoreMax (at most one per pixel of the axis).
    static QList<float> tickScores(float scoreMin, float scoreMax, float every, int axisLength);

private:
    qreal axisPos(float score) const;
    QRectF stretch(float from, float to) const;
    QRectF crossLine(float score, qreal width, qreal spanFraction = 1.0) const;

    void paintBar(QPainter &p) const;
    void paintBlocks(QPainter &p) const;
    void paintTicks(QPainter &p) const;
    void paintLimitLines(QPainter &p) const;
    void paintMarker(QPainter &p) const;
    void paintValueText(QPainter &p) const;

    GaugeSpec m_spec;
    qreal m_length = 0; // along the axis
    qreal m_thickness = 0; // across the axis
};

} // namespace Kelocontrols
