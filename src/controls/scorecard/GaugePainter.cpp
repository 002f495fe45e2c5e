#include "GaugePainter_p.h"

#include "Conversions.h"
#include "KeloEnums.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPalette>

#include <cmath>

namespace Kelocontrols {

namespace {
constexpr OleColor overrunRed = 0x000000FF;
constexpr qreal limitLineWidth = 2;
constexpr qreal textMargin = 3;
} // namespace

GaugePainter::GaugePainter(const GaugeSpec &gaugeSpec)
    : m_spec(gaugeSpec)
{
}

int GaugePainter::blockPenWidth(int blocks)
{
    return blocks <= 10 ? 3 : blocks <= 20 ? 2 : 1;
}

QList<float> GaugePainter::tickScores(float scoreMin, float scoreMax, float every, int axisLength)
{
    QList<float> scores;
    if (!(every > 0.0f)) {
        return scores;
    }
    // Ticks closer than a pixel cannot be told apart; the cap also ends the
    // loop when `every` is too small to move a float at all.
    const int limit = qMax(1, axisLength);
    for (float score = scoreMin + every; score <= scoreMax; score += every) {
        if (scores.size() >= limit || (!scores.isEmpty() && score == scores.last())) {
            break;
        }
        scores.append(score);
    }
    return scores;
}

qreal GaugePainter::axisPos(float score) const
{
    return (qreal(score) - m_spec.scoreMin) / (qreal(m_spec.scoreMax) - m_spec.scoreMin) * m_length;
}

// The part of the bar between two scores, in canvas coordinates.
QRectF GaugePainter::stretch(float from, float to) const
{
    const qreal a = axisPos(from);
    const qreal b = axisPos(to);
    if (m_spec.vertical) {
        return QRectF(0, m_length - b, m_thickness, b - a).normalized();
    }
    return QRectF(a, 0, b - a, m_thickness).normalized();
}

// A line across the bar at a score, `width` pixels wide along the axis,
// kept inside the canvas so lines at either end stay visible, spanning a
// fraction of the thickness centred on the middle of the bar.
QRectF GaugePainter::crossLine(float score, qreal width, qreal spanFraction) const
{
    qreal start = std::floor(axisPos(score) - width / 2 + 0.5);
    start = qBound(0.0, start, qMax(0.0, m_length - width));
    const qreal span = std::round(m_thickness * spanFraction);
    const qreal across = std::floor((m_thickness - span) / 2);
    if (m_spec.vertical) {
        return QRectF(across, m_length - start - width, span, width);
    }
    return QRectF(start, across, width, span);
}

bool GaugePainter::paint(QImage &canvas)
{
    if (m_spec.scoreMax == m_spec.scoreMin) {
        return false;
    }
    m_length = m_spec.vertical ? canvas.height() : canvas.width();
    m_thickness = m_spec.vertical ? canvas.width() : canvas.height();

    QPainter p(&canvas);
    paintBar(p);
    if (m_spec.blocks >= 1) {
        paintBlocks(p);
    }
    if (m_spec.tickEvery > 0) {
        paintTicks(p);
    }
    if (m_spec.limitLines) {
        paintLimitLines(p);
    }
    paintMarker(p);
    paintValueText(p);
    return true;
}

void GaugePainter::paintBar(QPainter &p) const
{
    const auto style = keloScoreCardStyle(m_spec.style);
    const OleColor barColor = style == keloScoreCardStyle::GaugeRainbow
        ? gradeColor(scoreGrade(m_spec.value, m_spec.thresholds))
        : m_spec.foreColor;
    p.fillRect(stretch(m_spec.scoreMin, m_spec.value), toQColor(barColor));
    if (style == keloScoreCardStyle::GaugeOverrun && m_spec.value > m_spec.thresholds.star) {
        p.fillRect(stretch(m_spec.thresholds.star, m_spec.value), toQColor(overrunRed));
    }
}

void GaugePainter::paintBlocks(QPainter &p) const
{
    // Dividers in the background colour cut the bar into equal blocks, like
    // the segments of an LED display.
    const qreal width = blockPenWidth(m_spec.blocks);
    const QColor gap = toQColor(m_spec.backColor);
    const float range = m_spec.scoreMax - m_spec.scoreMin;
    for (int i = 1; i < m_spec.blocks; ++i) {
        const float score = m_spec.scoreMin + range * float(i) / float(m_spec.blocks);
        p.fillRect(crossLine(score, width), gap);
    }
}

void GaugePainter::paintTicks(QPainter &p) const
{
    const QColor color = toQColor(m_spec.tickColor);
    // The centre line along the whole axis.
    const qreal middle = std::floor(m_thickness / 2);
    if (m_spec.vertical) {
        p.fillRect(QRectF(middle, 0, 1, m_length), color);
    } else {
        p.fillRect(QRectF(0, middle, m_length, 1), color);
    }
    const QList<float> scores = tickScores(m_spec.scoreMin, m_spec.scoreMax, m_spec.tickEvery, int(m_length));
    for (int i = 0; i < scores.size(); ++i) {
        const int count = i + 1;
        p.fillRect(crossLine(scores.at(i), 1, count % 5 == 0 ? 0.5 : 0.3), color);
    }
}

void GaugePainter::paintLimitLines(QPainter &p) const
{
    const ScoreThresholds &t = m_spec.thresholds;
    const std::pair<float, int> lines[] = {{t.bad, 2}, {t.maybe, 3}, {t.good, 4}, {t.star, 5}};
    for (const auto &[score, grade] : lines) {
        p.fillRect(crossLine(score, limitLineWidth), toQColor(gradeColor(grade)));
    }
}

void GaugePainter::paintMarker(QPainter &p) const
{
    const auto marker = keloMarkerStyle(m_spec.marker);
    if (marker == keloMarkerStyle::ShowLine) {
        p.fillRect(crossLine(m_spec.value, 2), toQColor(m_spec.fontColor));
        return;
    }
    if (marker != keloMarkerStyle::ShowBar && marker != keloMarkerStyle::ShowFlatBar) {
        return;
    }
    // A thumb centred on the value, a third of the thickness long (at least 6 px).
    const qreal length = qMax(6.0, std::round(m_thickness / 3));
    const QRectF thumb = crossLine(m_spec.value, length);
    if (marker == keloMarkerStyle::ShowFlatBar) {
        p.fillRect(thumb, toQColor(m_spec.fontColor));
        return;
    }
    // A raised 3D thumb in the button colours.
    const QPalette palette;
    const QRect r = thumb.toRect();
    p.fillRect(r, palette.color(QPalette::Button));
    p.fillRect(QRect(r.left(), r.top(), r.width(), 1), palette.color(QPalette::Light));
    p.fillRect(QRect(r.left(), r.top(), 1, r.height()), palette.color(QPalette::Light));
    p.fillRect(QRect(r.left(), r.bottom(), r.width(), 1), palette.color(QPalette::Shadow));
    p.fillRect(QRect(r.right(), r.top(), 1, r.height()), palette.color(QPalette::Shadow));
    p.fillRect(QRect(r.left() + 1, r.bottom() - 1, r.width() - 2, 1), palette.color(QPalette::Dark));
    p.fillRect(QRect(r.right() - 1, r.top() + 1, 1, r.height() - 2), palette.color(QPalette::Dark));
}

void GaugePainter::paintValueText(QPainter &p) const
{
    const auto where = keloShowValue(m_spec.showValue);
    if (where == keloShowValue::None || m_spec.showValue < 0 || m_spec.showValue > 6) {
        return;
    }
    const QString text = formatPercent(m_spec.value);
    p.setFont(m_spec.font);
    p.setPen(toQColor(m_spec.fontColor));
    p.setRenderHint(QPainter::TextAntialiasing);
    const QRectF area = m_spec.vertical ? QRectF(0, 0, m_thickness, m_length) : QRectF(0, 0, m_length, m_thickness);
    const QRectF inner = area.adjusted(textMargin, 0, -textMargin, 0);
    switch (where) {
    case keloShowValue::AtLeft:
        p.drawText(inner, Qt::AlignLeft | Qt::AlignVCenter, text);
        break;
    case keloShowValue::AtRight:
        p.drawText(inner, Qt::AlignRight | Qt::AlignVCenter, text);
        break;
    case keloShowValue::AtTop:
        p.drawText(area, Qt::AlignTop | Qt::AlignHCenter, text);
        break;
    case keloShowValue::AtBottom:
        p.drawText(area, Qt::AlignBottom | Qt::AlignHCenter, text);
        break;
    case keloShowValue::Adjust: {
        // The text follows the end of the bar: just beyond it where there is
        // room, else just inside it.
        const QFontMetricsF metrics(m_spec.font);
        const qreal textLength = m_spec.vertical ? metrics.height() : metrics.horizontalAdvance(text);
        const qreal end = qBound(0.0, axisPos(m_spec.value), m_length);
        qreal start = end + textMargin;
        if (start + textLength > m_length - textMargin) {
            start = end - textMargin - textLength;
        }
        start = qBound(textMargin, start, qMax(textMargin, m_length - textLength - textMargin));
        if (m_spec.vertical) {
            p.drawText(QRectF(0, m_length - start - textLength, m_thickness, textLength), Qt::AlignCenter, text);
        } else {
            p.drawText(QRectF(start, 0, textLength + 1, m_thickness), Qt::AlignLeft | Qt::AlignVCenter, text);
        }
        break;
    }
    default:
        p.drawText(area, Qt::AlignCenter, text);
        break;
    }
}

} // namespace Kelocontrols
