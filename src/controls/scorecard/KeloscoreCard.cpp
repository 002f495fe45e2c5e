#include "KeloscoreCard.h"

#include "ClassicFaceEntries_p.h"
#include "ClassicFace_p.h"
#include "Conversions.h"
#include "GaugePainter_p.h"
#include "ImageList.h"
#include "PictureBox.h"
#include "PropertyValues.h"
#include "RuntimeError.h"
#include "ScoreCardArtwork_p.h"
#include "ScoreModel_p.h"

#include <QResizeEvent>

using namespace Kelocontrols;

namespace {

constexpr int kFlashCard = int(keloScoreCardStyle::FlashCard);
constexpr int kGauge = int(keloScoreCardStyle::Gauge);
constexpr int kGaugeRainbow = int(keloScoreCardStyle::GaugeRainbow);

float single(double value)
{
    return CSng(QVariant(value));
}

} // namespace

/// The state of a score card; every persisted value gets its default from
/// the property table (InitProperties).
class KeloscoreCard::Private
{
public:
    explicit Private(KeloscoreCard *card)
        : picture(new PictureBox(card))
        , images32(new ImageList(QSize(32, 32), card))
        , images16(new ImageList(QSize(16, 16), card))
        , face(*card)
    {
        face.keepColorsOn(picture);
        face.keepFontOn(picture);
    }

    PictureBox *const picture;
    ImageList *const images32;
    ImageList *const images16;
    ClassicFace face; ///< BackColor, ForeColor and Font on the surface; Enabled

    float value = 0;
    int style = 0;
    ScoreScale scale;
    // The scale as written while the first batch of writes is open.
    ScoreScale written;
    bool showLimitLines = false;
    double tickEvery = 0.0;
    OleColor tickLineColor = 0;
    OleColor fontColor = 0;
    int showValue = 0;
    int toolTipStyle = 0;
    QString toolTip;
    int marker = 0;
    int blocks = 0;
    int orientation = 0;
};

const PropertyTable<KeloscoreCard> &KeloscoreCard::table()
{
    // Read order; the write order differs only in where ScoreBad goes.
    static const PropertyTable<KeloscoreCard> properties = [] {
        using C = KeloscoreCard;
        PropertyTable<C> t;
        ClassicFaceEntries<C>(t, [](C &c) -> ClassicFace & { return c.d->face; })
            .backColor(0x8000000F)
            .foreColor(0x80000012)
            .enabled()
            .font();
        t.add(
             "BorderStyle", QVariant(1), [](const C &c) { return QVariant(c.BorderStyle()); },
             [](C &c, const QVariant &v) { c.d->picture->setBorderStyle(CInt(v)); })
            .add(
                "Value", QVariant(0.5f), [](const C &c) { return QVariant(c.d->value); },
                [](C &c, const QVariant &v) { c.d->value = CSng(v); })
            .add(
                "Style", QVariant(0), [](const C &c) { return QVariant(c.d->style); },
                [](C &c, const QVariant &v) { c.d->style = CInt(v); })
            .add(
                "ScoreStar", QVariant(0.8f), [](const C &c) { return QVariant(c.scale().thresholds.star); },
                [](C &c, const QVariant &v) { c.d->scale.thresholds.star = CSng(v); })
            .add(
                "ScoreGood", QVariant(0.6f), [](const C &c) { return QVariant(c.scale().thresholds.good); },
                [](C &c, const QVariant &v) { c.d->scale.thresholds.good = CSng(v); })
            .add(
                "ScoreMaybe", QVariant(0.4f), [](const C &c) { return QVariant(c.scale().thresholds.maybe); },
                [](C &c, const QVariant &v) { c.d->scale.thresholds.maybe = CSng(v); })
            .add(
                "ScoreBad", QVariant(0.2f), [](const C &c) { return QVariant(c.scale().thresholds.bad); },
                [](C &c, const QVariant &v) { c.d->scale.thresholds.bad = CSng(v); })
            .add(
                "ScoreMin", QVariant(0.0f), [](const C &c) { return QVariant(c.scale().min); },
                [](C &c, const QVariant &v) { c.d->scale.min = CSng(v); })
            .add(
                "ScoreMax", QVariant(1.0f), [](const C &c) { return QVariant(c.scale().max); },
                [](C &c, const QVariant &v) { c.d->scale.max = CSng(v); })
            .add(
                "ShowLimitLines", QVariant(false), [](const C &c) { return QVariant(c.d->showLimitLines); },
                [](C &c, const QVariant &v) { c.d->showLimitLines = CBool(v); })
            .add(
                "ShowTickLinesEvery", QVariant(0), [](const C &c) { return QVariant(c.d->tickEvery); },
                [](C &c, const QVariant &v) { c.d->tickEvery = CDbl(v); })
            .add(
                "TickLineColor", QVariant(uint(0)), [](const C &c) { return QVariant(c.d->tickLineColor); },
                [](C &c, const QVariant &v) { c.d->tickLineColor = colorFromVariant(v); })
            .add(
                "FontColor", QVariant(uint(0)), [](const C &c) { return QVariant(c.d->fontColor); },
                [](C &c, const QVariant &v) { c.d->fontColor = colorFromVariant(v); })
            .add(
                "ShowValue", QVariant(0), [](const C &c) { return QVariant(c.d->showValue); },
                [](C &c, const QVariant &v) { c.d->showValue = CLng(v); })
            .add(
                "ToolTipStyle", QVariant(3), [](const C &c) { return QVariant(c.d->toolTipStyle); },
                [](C &c, const QVariant &v) { c.d->toolTipStyle = CLng(v); })
            .add(
                "ToolTip", QVariant(QString()), [](const C &c) { return QVariant(c.d->toolTip); },
                [](C &c, const QVariant &v) { c.d->toolTip = textFromVariant(v); })
            .add(
                "ShowMarker", QVariant(0), [](const C &c) { return QVariant(c.d->marker); },
                [](C &c, const QVariant &v) { c.d->marker = CLng(v); })
            .add(
                "ShowBlocks", QVariant(0), [](const C &c) { return QVariant(c.d->blocks); },
                [](C &c, const QVariant &v) { c.d->blocks = CInt(v); })
            .add(
                "GaugeOrientation", QVariant(0), [](const C &c) { return QVariant(c.d->orientation); },
                [](C &c, const QVariant &v) { c.d->orientation = CLng(v); });
        t.setWriteOrder({"BackColor", "ForeColor", "Enabled", "Font", "BorderStyle", "Value", "Style", "ScoreStar",
            "ScoreGood", "ScoreMaybe", "ScoreMin", "ScoreMax", "ShowLimitLines", "ShowTickLinesEvery", "TickLineColor",
            "FontColor", "ShowValue", "ToolTipStyle", "ToolTip", "ScoreBad", "ShowMarker", "ShowBlocks",
            "GaugeOrientation"});
        return t;
    }();
    return properties;
}

KeloscoreCard::KeloscoreCard(QWidget *parent)
    : ControlBase(parent)
    , d(new Private(this))
{
    d->picture->setObjectName(QStringLiteral("Picture1"));
    d->images32->setObjectName(QStringLiteral("ImageList32"));
    d->images16->setObjectName(QStringLiteral("ImageList16"));
    ScoreCardArtwork::fill(*d->images32);
    ScoreCardArtwork::fill(*d->images16);
    forwardKeyEvents(d->picture->stockEvents(), this);
    forwardMouseEvents(d->picture->stockEvents(), this);
    d->face.setChangedStep([this](ClassicFace::Member member) {
        if (member == ClassicFace::Member::BackColor || member == ClassicFace::Member::ForeColor) {
            redraw();
        }
    });
    InitProperties();
}

KeloscoreCard::~KeloscoreCard() = default;

const PropertyTableBase &KeloscoreCard::propertyTable() const
{
    return table();
}

// ---- properties on the surface -------------------------------------------

KELO_CLASSIC_FORWARD(KeloscoreCard, BackColor, d->face)
KELO_CLASSIC_FORWARD(KeloscoreCard, ForeColor, d->face)
KELO_CLASSIC_FORWARD(KeloscoreCard, Enabled, d->face)
KELO_CLASSIC_FORWARD(KeloscoreCard, Font, d->face)

int KeloscoreCard::BorderStyle() const
{
    return d->picture->borderStyle();
}

void KeloscoreCard::setBorderStyle(int style)
{
    d->picture->setBorderStyle(CInt(style));
    propertyChanged("BorderStyle");
    layoutSurface();
}

void KeloscoreCard::Refresh()
{
    d->picture->repaint();
}

// ---- the score -------------------------------------------------------------

double KeloscoreCard::Value() const
{
    return d->value;
}

keloScoreCardStyle KeloscoreCard::Style() const
{
    return keloScoreCardStyle(d->style);
}

bool KeloscoreCard::ShowLimitLines() const
{
    return d->showLimitLines;
}

double KeloscoreCard::ShowTickLinesEvery() const
{
    return d->tickEvery;
}

OleColor KeloscoreCard::TickLineColor() const
{
    return d->tickLineColor;
}

OleColor KeloscoreCard::FontColor() const
{
    return d->fontColor;
}

keloShowValue KeloscoreCard::ShowValue() const
{
    return keloShowValue(d->showValue);
}

keloToolTipStyle KeloscoreCard::ToolTipStyle() const
{
    return keloToolTipStyle(d->toolTipStyle);
}

QString KeloscoreCard::ToolTip() const
{
    return d->toolTip;
}

keloMarkerStyle KeloscoreCard::ShowMarker() const
{
    return keloMarkerStyle(d->marker);
}

int KeloscoreCard::ShowBlocks() const
{
    return d->blocks;
}

keloGaugeOrientation KeloscoreCard::GaugeOrientation() const
{
    return keloGaugeOrientation(d->orientation);
}

bool KeloscoreCard::isPictureStyle() const
{
    return d->style >= 0 && d->style <= 5;
}

void KeloscoreCard::setValue(double value)
{
    d->value = single(value);
    propertyChanged("Value");
    redraw();
}

void KeloscoreCard::setStyle(keloScoreCardStyle style)
{
    if (int(style) == d->style) {
        return;
    }
    d->style = CInt(int(style));
    fitToStyle();
    redraw();
    propertyChanged("Style");
}

// The clamping rules live in ScoreScale. While the first batch of writes is
// open (a form setting its properties), the writes are also kept as written:
// a scale that is in order as written is the card's scale, even where one
// write alone was clamped against a neighbour the form had not set yet.
void KeloscoreCard::setScoreStar(double score)
{
    writeScore("ScoreStar", score, &ScoreScale::withStar, d->written.thresholds.star);
}

void KeloscoreCard::setScoreGood(double score)
{
    writeScore("ScoreGood", score, &ScoreScale::withGood, d->written.thresholds.good);
}

void KeloscoreCard::setScoreMaybe(double score)
{
    writeScore("ScoreMaybe", score, &ScoreScale::withMaybe, d->written.thresholds.maybe);
}

void KeloscoreCard::setScoreBad(double score)
{
    writeScore("ScoreBad", score, &ScoreScale::withBad, d->written.thresholds.bad);
}

void KeloscoreCard::setScoreMin(double score)
{
    writeScore("ScoreMin", score, &ScoreScale::withMin, d->written.min);
}

void KeloscoreCard::setScoreMax(double score)
{
    writeScore("ScoreMax", score, &ScoreScale::withMax, d->written.max);
}

// `written` is the field of the scale as written that `name` sets.
void KeloscoreCard::writeScore(
    const char *name, double score, ScoreScale (ScoreScale::*clamped)(float) const, float &written)
{
    noteFirstWrite(name);
    const float s = single(score);
    d->scale = (d->scale.*clamped)(s);
    written = s;
    if (!inFirstWrites()) {
        d->written = d->scale;
    }
    propertyChanged(name);
    redraw();
}

const ScoreScale &KeloscoreCard::scale() const
{
    return inFirstWrites() && d->written.isOrdered() ? d->written : d->scale;
}

void KeloscoreCard::firstWritesSettled()
{
    if (d->written.isOrdered()) {
        d->scale = d->written;
    }
    d->written = d->scale;
}

// ---- gauge decorations ------------------------------------------------------

void KeloscoreCard::setShowLimitLines(bool show)
{
    d->showLimitLines = show;
    propertyChanged("ShowLimitLines");
    redraw();
}

void KeloscoreCard::setShowTickLinesEvery(double every)
{
    d->tickEvery = every < 0 ? 0.0 : every;
    propertyChanged("ShowTickLinesEvery");
    redraw();
}

void KeloscoreCard::setTickLineColor(OleColor color)
{
    d->tickLineColor = color;
    propertyChanged("TickLineColor");
    redraw();
}

void KeloscoreCard::setFontColor(OleColor color)
{
    d->fontColor = color;
    propertyChanged("FontColor");
    redraw();
}

void KeloscoreCard::setShowValue(keloShowValue where)
{
    if (int(where) == d->showValue) {
        return;
    }
    d->showValue = int(where);
    redraw();
    propertyChanged("ShowValue");
}

void KeloscoreCard::setToolTipStyle(keloToolTipStyle style)
{
    if (int(style) < 0 || int(style) > 3) {
        return;
    }
    d->toolTipStyle = int(style);
    propertyChanged("ToolTipStyle");
}

void KeloscoreCard::setToolTip(const QString &text)
{
    d->toolTip = text;
    propertyChanged("ToolTip");
}

void KeloscoreCard::setShowMarker(keloMarkerStyle marker)
{
    d->marker = int(marker);
    propertyChanged("ShowMarker");
    redraw();
}

void KeloscoreCard::setShowBlocks(int blocks)
{
    if (blocks < 0 || blocks > 100) {
        return;
    }
    d->blocks = blocks;
    propertyChanged("ShowBlocks");
    redraw();
}

void KeloscoreCard::setGaugeOrientation(keloGaugeOrientation orientation)
{
    d->orientation = int(orientation);
    propertyChanged("GaugeOrientation");
    redraw();
}

int KeloscoreCard::grade() const
{
    return scoreGrade(d->value, scale().thresholds);
}

double KeloscoreCard::ScoreStar() const
{
    return scale().thresholds.star;
}

double KeloscoreCard::ScoreGood() const
{
    return scale().thresholds.good;
}

double KeloscoreCard::ScoreMaybe() const
{
    return scale().thresholds.maybe;
}

double KeloscoreCard::ScoreBad() const
{
    return scale().thresholds.bad;
}

double KeloscoreCard::ScoreMin() const
{
    return scale().min;
}

double KeloscoreCard::ScoreMax() const
{
    return scale().max;
}

// ---- life cycle and layout ----------------------------------------------------

void KeloscoreCard::propertiesLoaded()
{
    d->written = d->scale;
    fitToStyle();
    redraw();
}

void KeloscoreCard::fitToStyle()
{
    if (isPictureStyle()) {
        resize(pictureFitSize());
    }
    layoutSurface();
}

void KeloscoreCard::userModeChanged()
{
    updateToolTip();
}

QSize KeloscoreCard::pictureFitSize() const
{
    const int border = d->picture->frameWidth();
    const QSize image = (d->style % 2 == 0) ? d->images16->imageSize() : d->images32->imageSize();
    return image + QSize(2 * border, 2 * border);
}

QSize KeloscoreCard::sizeHint() const
{
    if (isPictureStyle()) {
        return pictureFitSize();
    }
    if (d->style == kFlashCard) {
        return QSize(32, 32);
    }
    return d->orientation == int(keloGaugeOrientation::Vertical) ? QSize(30, 160) : QSize(200, 30);
}

// The surface fills the control, except for a picture style, where it is
// exactly the picture's size in the top-left corner.
void KeloscoreCard::layoutSurface()
{
    const QRect area = isPictureStyle() ? QRect(QPoint(0, 0), pictureFitSize()) : rect();
    d->picture->setGeometry(area);
    setSizePolicy(isPictureStyle() ? QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed)
                                   : QSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred));
}

void KeloscoreCard::resizeEvent(QResizeEvent *event)
{
    ControlBase::resizeEvent(event);
    layoutSurface();
    renderCurrentDrawing();
}

// A flash card or gauge follows the control's size; this repaints the
// drawing only and leaves the tool tip alone.
void KeloscoreCard::renderCurrentDrawing()
{
    if (d->style == kFlashCard) {
        drawFlashCard();
    } else if (d->style >= kGauge && d->style <= kGaugeRainbow) {
        drawGauge();
    }
}

// ---- drawing -----------------------------------------------------------------

void KeloscoreCard::redraw()
{
    if (isPictureStyle()) {
        drawPicture();
    } else {
        renderCurrentDrawing();
    }
    updateToolTip();
}

// A redraw fits the surface to the picture but leaves the control's own
// size alone: forms set their properties one by one after the geometry, and
// a redraw while Style is still at its default must not shrink a gauge.
// Choosing a picture style (setStyle) or loading one fits the control.
void KeloscoreCard::drawPicture()
{
    layoutSurface();
    d->picture->cls();
    const ImageList *images = (d->style % 2 == 0) ? d->images16 : d->images32;
    const QString key = ScoreCardArtwork::familyOf(d->style) + QString::number(grade());
    d->picture->setPicture(images->picture(key));
}

void KeloscoreCard::drawFlashCard()
{
    d->picture->setPicture(QPixmap());
    d->picture->cls();
    d->picture->fillBox(QRectF(0, 0, d->picture->scaleWidth(), d->picture->scaleHeight()), gradeColor(grade()));
}

void KeloscoreCard::drawGauge()
{
    if (scale().max == scale().min) {
        return; // nothing to scale against: the surface keeps what it showed
    }
    d->picture->setPicture(QPixmap());
    d->picture->cls();
    GaugeSpec gaugeSpec;
    gaugeSpec.style = d->style;
    gaugeSpec.value = d->value;
    gaugeSpec.scoreMin = scale().min;
    gaugeSpec.scoreMax = scale().max;
    gaugeSpec.thresholds = scale().thresholds;
    gaugeSpec.foreColor = d->picture->foreColor();
    gaugeSpec.backColor = d->picture->backColor();
    gaugeSpec.blocks = d->blocks;
    gaugeSpec.tickEvery = float(d->tickEvery);
    gaugeSpec.tickColor = d->tickLineColor;
    gaugeSpec.limitLines = d->showLimitLines;
    gaugeSpec.marker = d->marker;
    gaugeSpec.showValue = d->showValue;
    gaugeSpec.fontColor = d->fontColor;
    gaugeSpec.font = d->picture->font();
    gaugeSpec.vertical = d->orientation == int(keloGaugeOrientation::Vertical);
    GaugePainter(gaugeSpec).paint(d->picture->beginPaint());
    d->picture->endPaint();
}

void KeloscoreCard::updateToolTip()
{
    if (!UserMode()) {
        return; // at design time the surface's tool tip is left alone
    }
    QString text;
    switch (d->toolTipStyle) {
    case int(keloToolTipStyle::ShowTextAsTip):
        text = d->toolTip;
        break;
    case int(keloToolTipStyle::ShowValueAsTip):
        text = formatPercent(d->value);
        break;
    case int(keloToolTipStyle::ShowBothAsTip):
        text = d->toolTip + QLatin1Char(' ') + formatPercent(d->value);
        break;
    default:
        break;
    }
    d->picture->setToolTip(text);
}
