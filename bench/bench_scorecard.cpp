#include "GaugePainter_p.h"
#include <Kelocontrols/KeloscoreCard.h>
#include <Kelocontrols/PictureBox.h>

#include <QTest>

using namespace Kelocontrols;

// The cost of one score card redraw: a gauge with blocks, ticks, limit
// lines, marker and value text at 200 x 30 pixels.
class bench_ScoreCard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gaugeRedraw();
    void gaugePainterOnly();
    void pictureRedraw();
};

void bench_ScoreCard::gaugeRedraw()
{
    KeloscoreCard card;
    card.setStyle(keloScoreCardStyle::GaugeRainbow);
    card.setShowBlocks(10);
    card.setShowTickLinesEvery(0.05);
    card.setShowLimitLines(true);
    card.setShowMarker(keloMarkerStyle::ShowBar);
    card.setShowValue(keloShowValue::AtMiddle);
    card.resize(204, 34); // 200 x 30 inside the border
    card.show();
    double value = 0.0;
    QBENCHMARK
    {
        value = value >= 1.0 ? 0.0 : value + 0.01;
        card.setValue(value); // runs the whole redraw dispatch
    }
}

void bench_ScoreCard::gaugePainterOnly()
{
    GaugeSpec gaugeSpec;
    gaugeSpec.style = 9;
    gaugeSpec.blocks = 10;
    gaugeSpec.tickEvery = 0.05f;
    gaugeSpec.limitLines = true;
    gaugeSpec.marker = 2;
    gaugeSpec.showValue = 2;
    QImage canvas(200, 30, QImage::Format_ARGB32_Premultiplied);
    QBENCHMARK
    {
        canvas.fill(Qt::transparent);
        GaugePainter(gaugeSpec).paint(canvas);
    }
}

void bench_ScoreCard::pictureRedraw()
{
    KeloscoreCard card;
    card.setStyle(keloScoreCardStyle::SmileyLarge);
    card.show();
    double value = 0.0;
    QBENCHMARK
    {
        value = value >= 1.0 ? 0.0 : value + 0.01;
        card.setValue(value);
    }
}

QTEST_MAIN(bench_ScoreCard)
#include "bench_scorecard.moc"
