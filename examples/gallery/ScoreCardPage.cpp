#include "GalleryPages.h"

#include <Kelocontrols/KeloscoreCard.h>

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QSlider>
#include <QVBoxLayout>

using namespace Kelocontrols;

namespace {

KeloscoreCard *addCard(QGridLayout *grid, int row, int column, const QString &caption, keloScoreCardStyle style)
{
    auto *card = new KeloscoreCard;
    card->setObjectName(caption);
    card->setStyle(style);
    card->setToolTip(caption);
    grid->addWidget(new QLabel(caption), row, column * 2);
    grid->addWidget(card, row, column * 2 + 1, Qt::AlignLeft | Qt::AlignVCenter);
    return card;
}

KeloscoreCard *addGauge(QGridLayout *grid, int row, const QString &caption, keloScoreCardStyle style)
{
    auto *card = new KeloscoreCard;
    card->setObjectName(caption);
    card->setStyle(style);
    card->setMinimumSize(260, 30);
    card->setBackColor(RGB(0x26, 0x2a, 0x33));
    card->setForeColor(RGB(0x3d, 0x9b, 0xe9));
    card->setFontColor(RGB(0xff, 0xff, 0xff));
    card->setTickLineColor(RGB(0xc8, 0xcc, 0xd4));
    grid->addWidget(new QLabel(caption), row, 0);
    grid->addWidget(card, row, 1);
    return card;
}

} // namespace

QWidget *createScoreCardPage(QWidget *parent)
{
    auto *page = new QWidget(parent);
    auto *layout = new QVBoxLayout(page);

    auto *slider = new QSlider(Qt::Horizontal);
    slider->setRange(0, 100);
    slider->setValue(72);
    auto *valueLabel = new QLabel;
    auto *sliderRow = new QHBoxLayout;
    sliderRow->addWidget(new QLabel(QStringLiteral("Value")));
    sliderRow->addWidget(slider, 1);
    sliderRow->addWidget(valueLabel);
    layout->addLayout(sliderRow);

    QList<KeloscoreCard *> cards;

    auto *pictures = new QGroupBox(QStringLiteral("Pictures and flash card"));
    auto *pictureGrid = new QGridLayout(pictures);
    cards << addCard(pictureGrid, 0, 0, QStringLiteral("ScoreCardSmall"), keloScoreCardStyle::ScoreCardSmall)
          << addCard(pictureGrid, 1, 0, QStringLiteral("ScoreCardLarge"), keloScoreCardStyle::ScoreCardLarge)
          << addCard(pictureGrid, 0, 1, QStringLiteral("SmileySmall"), keloScoreCardStyle::SmileySmall)
          << addCard(pictureGrid, 1, 1, QStringLiteral("SmileyLarge"), keloScoreCardStyle::SmileyLarge)
          << addCard(pictureGrid, 0, 2, QStringLiteral("TrafficLightSmall"), keloScoreCardStyle::TrafficLightSmall)
          << addCard(pictureGrid, 1, 2, QStringLiteral("TrafficLightLarge"), keloScoreCardStyle::TrafficLightLarge);
    auto *flash = addCard(pictureGrid, 0, 3, QStringLiteral("FlashCard"), keloScoreCardStyle::FlashCard);
    flash->setMinimumSize(48, 48);
    cards << flash;
    layout->addWidget(pictures);

    auto *gauges = new QGroupBox(QStringLiteral("Gauges"));
    auto *gaugeGrid = new QGridLayout(gauges);
    auto *plain = addGauge(gaugeGrid, 0, QStringLiteral("Gauge, blocks"), keloScoreCardStyle::Gauge);
    plain->setShowBlocks(10);
    plain->setShowValue(keloShowValue::AtRight);
    auto *overrun = addGauge(gaugeGrid, 1, QStringLiteral("GaugeOverrun, ticks"), keloScoreCardStyle::GaugeOverrun);
    overrun->setShowTickLinesEvery(0.05);
    overrun->setShowMarker(keloMarkerStyle::ShowLine);
    overrun->setShowValue(keloShowValue::Adjust);
    auto *rainbow = addGauge(gaugeGrid, 2, QStringLiteral("GaugeRainbow, limits"), keloScoreCardStyle::GaugeRainbow);
    rainbow->setShowLimitLines(true);
    rainbow->setShowMarker(keloMarkerStyle::ShowBar);
    rainbow->setShowValue(keloShowValue::AtMiddle);
    rainbow->setFontColor(RGB(0, 0, 0));
    auto *flat = addGauge(gaugeGrid, 3, QStringLiteral("Gauge, flat marker"), keloScoreCardStyle::Gauge);
    flat->setShowTickLinesEvery(0.1);
    flat->setShowMarker(keloMarkerStyle::ShowFlatBar);
    flat->setShowValue(keloShowValue::AtLeft);
    flat->setForeColor(RGB(0x4c, 0xaf, 0x50));
    cards << plain << overrun << rainbow << flat;

    auto *vertical = new KeloscoreCard;
    vertical->setStyle(keloScoreCardStyle::GaugeRainbow);
    vertical->setGaugeOrientation(keloGaugeOrientation::Vertical);
    vertical->setShowBlocks(20);
    vertical->setShowLimitLines(true);
    vertical->setShowValue(keloShowValue::AtTop);
    vertical->setMinimumSize(40, 150);
    auto *verticalTicks = new KeloscoreCard;
    verticalTicks->setStyle(keloScoreCardStyle::Gauge);
    verticalTicks->setGaugeOrientation(keloGaugeOrientation::Vertical);
    verticalTicks->setShowTickLinesEvery(0.05);
    verticalTicks->setShowMarker(keloMarkerStyle::ShowBar);
    verticalTicks->setForeColor(RGB(0xff, 0x98, 0x00));
    verticalTicks->setMinimumSize(40, 150);
    gaugeGrid->addWidget(vertical, 0, 2, 4, 1);
    gaugeGrid->addWidget(verticalTicks, 0, 3, 4, 1);
    gaugeGrid->setColumnStretch(1, 1);
    cards << vertical << verticalTicks;
    layout->addWidget(gauges);
    layout->addStretch();

    auto apply = [cards, valueLabel](int percent) {
        for (KeloscoreCard *card : cards) {
            card->setValue(percent / 100.0);
        }
        valueLabel->setText(QStringLiteral("%1%").arg(percent));
    };
    QObject::connect(slider, &QSlider::valueChanged, page, apply);
    apply(slider->value());
    return page;
}
