#include "GaugePainter_p.h"
#include <Kelocontrols/KeloscoreCard.h>
#include <Kelocontrols/PictureBox.h>
#include <Kelocontrols/PropertyBag.h>

#include <QTest>

using namespace Kelocontrols;

namespace {

const QColor black(0, 0, 0), red(255, 0, 0), yellow(255, 255, 0), green(0, 255, 0), cyan(0, 255, 255),
    white(255, 255, 255), blue(0, 0, 255);

// A gauge card 204 x 34 pixels: with its 2-pixel border the drawing area is
// 200 x 30, so a score s lies at x = 200 * s.
struct GaugeCard
{
    explicit GaugeCard(keloScoreCardStyle style)
    {
        card.setStyle(style);
        card.setBackColor(0x00FFFFFF); // white
        card.setForeColor(0x00FF0000); // blue
        card.resize(204, 34);
        card.show();
    }
    QImage image() const { return card.findChild<PictureBox *>(QStringLiteral("Picture1"))->rendered(); }
    KeloscoreCard card;
};

QColor at(const QImage &image, int x, int y)
{
    return QColor(image.pixel(x, y)).toRgb();
}

// The x positions of the middle row whose colour is `color`.
QList<int> columnsOf(const QImage &image, const QColor &color)
{
    QList<int> xs;
    for (int x = 0; x < image.width(); ++x) {
        if (at(image, x, image.height() / 2) == color) {
            xs << x;
        }
    }
    return xs;
}

int countInColumn(const QImage &image, int x, const QColor &color)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y) {
        n += at(image, x, y) == color;
    }
    return n;
}

} // namespace

class tst_ScoreCardRendering : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void flashCardFillsWithTheGradeColour_data();
    void flashCardFillsWithTheGradeColour();
    void rainbowBarTakesTheGradeColour();
    void plainBarAndOverrun();
    void limitLines();
    void verticalGaugeGrowsFromTheBottom();
    void blocks();
    void ticks();
    void valueTextPlacement();
    void nothingNewIsDrawnWhenThereIsNothingToDraw();
};

void tst_ScoreCardRendering::flashCardFillsWithTheGradeColour_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QColor>("color");
    QTest::newRow("grade 1") << 0.1 << black;
    QTest::newRow("grade 2") << 0.3 << red;
    QTest::newRow("grade 3") << 0.5 << yellow;
    QTest::newRow("grade 4") << 0.6 << green;
    QTest::newRow("grade 5") << 0.85 << cyan;
}

void tst_ScoreCardRendering::flashCardFillsWithTheGradeColour()
{
    QFETCH(double, value);
    QFETCH(QColor, color);
    KeloscoreCard card;
    card.resize(40, 30);
    card.setStyle(keloScoreCardStyle::FlashCard);
    card.setValue(value);
    const QImage drawn = card.findChild<PictureBox *>(QStringLiteral("Picture1"))->rendered();
    QCOMPARE(drawn.size(), QSize(36, 26));
    for (int y = 0; y < drawn.height(); ++y) {
        for (int x = 0; x < drawn.width(); ++x) {
            QCOMPARE(at(drawn, x, y), color);
        }
    }
    // And on screen, inside the border.
    const QImage screen = card.grab().toImage();
    QCOMPARE(at(screen, 20, 15), color);
    QCOMPARE(at(screen, 2, 2), color);
}

void tst_ScoreCardRendering::rainbowBarTakesTheGradeColour()
{
    GaugeCard gauge(keloScoreCardStyle::GaugeRainbow);
    const QList<std::pair<double, QColor>> cases = {{0.1, black}, {0.3, red}, {0.5, yellow}, {0.7, green}, {0.9, cyan}};
    for (const auto &[value, color] : cases) {
        gauge.card.setValue(value);
        const QImage image = gauge.image();
        QCOMPARE(at(image, 5, 15), color);
        QCOMPARE(at(image, int(200 * value) - 2, 15), color);
        QCOMPARE(at(image, int(200 * value) + 2, 15), white);
    }
}

void tst_ScoreCardRendering::plainBarAndOverrun()
{
    GaugeCard gauge(keloScoreCardStyle::Gauge);
    gauge.card.setValue(0.9);
    QImage image = gauge.image();
    QCOMPARE(at(image, 170, 15), blue); // the plain gauge has no overrun
    QCOMPARE(at(image, 185, 15), white);

    gauge.card.setStyle(keloScoreCardStyle::GaugeOverrun);
    image = gauge.image();
    QCOMPARE(at(image, 150, 15), blue); // below ScoreStar (x = 160)
    QCOMPARE(at(image, 158, 15), blue);
    QCOMPARE(at(image, 162, 15), red); // between ScoreStar and the value
    QCOMPARE(at(image, 177, 15), red);
    QCOMPARE(at(image, 182, 15), white); // beyond the value

    gauge.card.setValue(0.7); // not beyond ScoreStar: no red
    QVERIFY(columnsOf(gauge.image(), red).isEmpty());

    gauge.card.setValue(1.5); // beyond the scale: the bar runs to the edge
    image = gauge.image();
    QCOMPARE(at(image, 199, 15), red);
}

void tst_ScoreCardRendering::limitLines()
{
    GaugeCard gauge(keloScoreCardStyle::Gauge);
    gauge.card.setValue(0); // no bar
    QVERIFY(columnsOf(gauge.image(), red).isEmpty());
    gauge.card.setShowLimitLines(true);
    const QImage image = gauge.image();
    // Two pixels wide, across the whole bar, at 0.2, 0.4, 0.6 and 0.8.
    QCOMPARE(columnsOf(image, red), QList<int>({39, 40}));
    QCOMPARE(columnsOf(image, yellow), QList<int>({79, 80}));
    QCOMPARE(columnsOf(image, green), QList<int>({119, 120}));
    QCOMPARE(columnsOf(image, cyan), QList<int>({159, 160}));
    QCOMPARE(countInColumn(image, 39, red), 30);

    // A threshold at the very end of the scale stays visible.
    gauge.card.setScoreStar(1.0);
    QCOMPARE(columnsOf(gauge.image(), cyan), QList<int>({198, 199}));
}

void tst_ScoreCardRendering::verticalGaugeGrowsFromTheBottom()
{
    KeloscoreCard card;
    card.setStyle(keloScoreCardStyle::GaugeRainbow);
    card.setGaugeOrientation(keloGaugeOrientation::Vertical);
    card.setBackColor(0x00FFFFFF);
    card.resize(34, 204); // drawing area 30 x 200
    card.show();
    card.setValue(0.25);
    const QImage image = card.findChild<PictureBox *>(QStringLiteral("Picture1"))->rendered();
    QCOMPARE(at(image, 15, 199), red);
    QCOMPARE(at(image, 15, 152), red);
    QCOMPARE(at(image, 15, 147), white);
    QCOMPARE(at(image, 15, 2), white);
}

void tst_ScoreCardRendering::blocks()
{
    QCOMPARE(GaugePainter::blockPenWidth(1), 3);
    QCOMPARE(GaugePainter::blockPenWidth(10), 3);
    QCOMPARE(GaugePainter::blockPenWidth(11), 2);
    QCOMPARE(GaugePainter::blockPenWidth(20), 2);
    QCOMPARE(GaugePainter::blockPenWidth(21), 1);
    QCOMPARE(GaugePainter::blockPenWidth(100), 1);

    GaugeCard gauge(keloScoreCardStyle::Gauge);
    gauge.card.setValue(1);
    gauge.card.setShowBlocks(4);
    // Dividers in the back colour, three pixels wide, at 50, 100 and 150.
    QCOMPARE(columnsOf(gauge.image(), white), QList<int>({49, 50, 51, 99, 100, 101, 149, 150, 151}));
    gauge.card.setShowBlocks(20);
    QCOMPARE(columnsOf(gauge.image(), white).size(), 19 * 2);
    gauge.card.setShowBlocks(1); // one block: nothing to divide
    QVERIFY(columnsOf(gauge.image(), white).isEmpty());
}

void tst_ScoreCardRendering::ticks()
{
    QCOMPARE(GaugePainter::tickScores(0, 1, 0.25f, 200), QList<float>({0.25f, 0.5f, 0.75f, 1.0f}));
    QCOMPARE(GaugePainter::tickScores(0, 1, 0, 200), QList<float>());
    QCOMPARE(GaugePainter::tickScores(2, 3, 0.5f, 200), QList<float>({2.5f, 3.0f}));
    // A step too small to move a float ends the count instead of looping.
    QVERIFY(GaugePainter::tickScores(1000, 2000, 1e-6f, 200).size() <= 200);

    GaugeCard gauge(keloScoreCardStyle::Gauge);
    gauge.card.setValue(0);
    gauge.card.setTickLineColor(0x000000FF); // red
    gauge.card.setShowTickLinesEvery(0.1);
    const QImage image = gauge.image();
    // The centre line runs along the whole axis.
    QCOMPARE(at(image, 3, 15), red);
    QCOMPARE(at(image, 195, 15), red);
    QCOMPARE(at(image, 3, 10), white);
    // Ordinary ticks span 0.3 of the thickness, every fifth one 0.5 of it.
    QCOMPARE(countInColumn(image, 20, red), 9);
    QCOMPARE(countInColumn(image, 100, red), 15);
    QCOMPARE(countInColumn(image, 0, red), 1); // no tick at ScoreMin
}

void tst_ScoreCardRendering::valueTextPlacement()
{
    GaugeCard gauge(keloScoreCardStyle::Gauge);
    gauge.card.setValue(0);
    gauge.card.setFontColor(0x000000FF);
    auto inkIn = [&](int from, int to) {
        const QImage image = gauge.image();
        int n = 0;
        for (int x = from; x < to; ++x) {
            for (int y = 0; y < image.height(); ++y) {
                const QColor c = at(image, x, y);
                n += c.red() > 128 && c.green() < 100;
            }
        }
        return n;
    };
    QCOMPARE(inkIn(0, 200), 0);
    gauge.card.setShowValue(keloShowValue::AtLeft);
    QVERIFY(inkIn(0, 40) > 0);
    QCOMPARE(inkIn(60, 200), 0);
    gauge.card.setShowValue(keloShowValue::AtRight);
    QVERIFY(inkIn(160, 200) > 0);
    QCOMPARE(inkIn(0, 140), 0);
    gauge.card.setShowValue(keloShowValue::AtMiddle);
    QVERIFY(inkIn(80, 120) > 0);
    QCOMPARE(inkIn(0, 60) + inkIn(140, 200), 0);
    // Adjust follows the end of the bar.
    gauge.card.setShowValue(keloShowValue::Adjust);
    gauge.card.setValue(0.5);
    QVERIFY(inkIn(100, 150) > 0);
    QCOMPARE(inkIn(0, 95) + inkIn(160, 200), 0);
    gauge.card.setValue(0.98); // no room beyond the end: inside the bar
    QVERIFY(inkIn(150, 196) > 0);
}

void tst_ScoreCardRendering::nothingNewIsDrawnWhenThereIsNothingToDraw()
{
    KeloscoreCard card;
    card.resize(40, 30);
    card.setStyle(keloScoreCardStyle::FlashCard);
    card.setValue(0.85);
    auto *surface = card.findChild<PictureBox *>(QStringLiteral("Picture1"));
    QCOMPARE(at(surface->rendered(), 10, 10), cyan);

    // A gauge whose scale is empty (only loading can make one) draws nothing.
    PropertyBag emptyScale;
    emptyScale.WriteProperty(QStringLiteral("Style"), 7, 0);
    emptyScale.WriteProperty(QStringLiteral("ScoreMin"), 1.0f, 0.0f);
    emptyScale.WriteProperty(QStringLiteral("Value"), 0.1f, 0.5f);
    card.ReadProperties(emptyScale);
    QCOMPARE(at(surface->rendered(), 10, 10), cyan);

    // An unknown style only rebuilds the tool tip.
    PropertyBag unknownStyle;
    unknownStyle.WriteProperty(QStringLiteral("Style"), 12, 0);
    unknownStyle.WriteProperty(QStringLiteral("Value"), 0.1f, 0.5f);
    card.ReadProperties(unknownStyle);
    QCOMPARE(at(surface->rendered(), 10, 10), cyan);
    QCOMPARE(surface->toolTip(), QStringLiteral(" 10%"));
}

QTEST_MAIN(tst_ScoreCardRendering)
#include "tst_scorecardrendering.moc"
