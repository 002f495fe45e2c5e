#include "KeloscoreCard.h"

#include "Conversions.h"
#include "GaugePainter.h"
#include "ImageList.h"
#include "PictureBox.h"
#include "PropertyValues.h"
#include "RuntimeError.h"
#include "ScoreCardArtwork.h"
#include "StockEventFilter.h"

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

const PropertyTable<KeloscoreCard> &KeloscoreCard::table()
{
    // Read order; the write order differs only in where ScoreBad goes.
    static const PropertyTable<KeloscoreCard> properties = [] {
        using C = KeloscoreCard;
        PropertyTable<C> t;
        t.add(
             "BackColor", QVariant(uint(0x8000000F)), [](const C &c) { return QVariant(c.BackColor()); },
             [](C &c, const QVariant &v) { c.m_picture->setBackColor(colorFromVariant(v)); })
            .add(
                "ForeColor", QVariant(uint(0x80000012)), [](const C &c) { return QVariant(c.ForeColor()); },
                [](C &c, const QVariant &v) { c.m_picture->setForeColor(colorFromVariant(v)); })
            .add(
                "Enabled", QVariant(true), [](const C &c) { return QVariant(c.Enabled()); },
                [](C &c, const QVariant &v) { c.QWidget::setEnabled(CBool(v)); })
            .add(
                "Font", [](const C &c) { return QVariant(c.ambientFont()); },
                [](const C &c) { return QVariant(c.Font()); },
                [](C &c, const QVariant &v) { c.m_picture->setFont(fontFromVariant(v)); })
            .add(
                "BorderStyle", QVariant(1), [](const C &c) { return QVariant(c.BorderStyle()); },
                [](C &c, const QVariant &v) { c.m_picture->setBorderStyle(CInt(v)); })
            .add(
                "Value", QVariant(0.5f), [](const C &c) { return QVariant(c.m_value); },
                [](C &c, const QVariant &v) { c.m_value = CSng(v); })
            .add(
                "Style", QVariant(0), [](const C &c) { return QVariant(c.m_style); },
                [](C &c, const QVariant &v) { c.m_style = CInt(v); })
            .add(
                "ScoreStar", QVariant(0.8f), [](const C &c) { return QVariant(c.scale().thresholds.star); },
                [](C &c, const QVariant &v) { c.m_scale.thresholds.star = CSng(v); })
            .add(
                "ScoreGood", QVariant(0.6f), [](const C &c) { return QVariant(c.scale().thresholds.good); },
                [](C &c, const QVariant &v) { c.m_scale.thresholds.good = CSng(v); })
            .add(
                "ScoreMaybe", QVariant(0.4f), [](const C &c) { return QVariant(c.scale().thresholds.maybe); },
                [](C &c, const QVariant &v) { c.m_scale.thresholds.maybe = CSng(v); })
            .add(
                "ScoreBad", QVariant(0.2f), [](const C &c) { return QVariant(c.scale().thresholds.bad); },
                [](C &c, const QVariant &v) { c.m_scale.thresholds.bad = CSng(v); })
            .add(
                "ScoreMin", QVariant(0.0f), [](const C &c) { return QVariant(c.scale().min); },
                [](C &c, const QVariant &v) { c.m_scale.min = CSng(v); })
            .add(
                "ScoreMax", QVariant(1.0f), [](const C &c) { return QVariant(c.scale().max); },
                [](C &c, const QVariant &v) { c.m_scale.max = CSng(v); })
            .add(
                "ShowLimitLines", QVariant(false), [](const C &c) { return QVariant(c.m_showLimitLines); },
                [](C &c, const QVariant &v) { c.m_showLimitLines = CBool(v); })
            .add(
                "ShowTickLinesEvery", QVariant(0), [](const C &c) { return QVariant(c.m_tickEvery); },
                [](C &c, const QVariant &v) { c.m_tickEvery = CDbl(v); })
            .add(
                "TickLineColor", QVariant(uint(0)), [](const C &c) { return QVariant(c.m_tickLineColor); },
                [](C &c, const QVariant &v) { c.m_tickLineColor = colorFromVariant(v); })
            .add(
                "FontColor", QVariant(uint(0)), [](const C &c) { return QVariant(c.m_fontColor); },
                [](C &c, const QVariant &v) { c.m_fontColor = colorFromVariant(v); })
            .add(
                "ShowValue", QVariant(0), [](const C &c) { return QVariant(c.m_showValue); },
                [](C &c, const QVariant &v) { c.m_showValue = CLng(v); })
            .add(
                "ToolTipStyle", QVariant(3), [](const C &c) { return QVariant(c.m_toolTipStyle); },
                [](C &c, const QVariant &v) { c.m_toolTipStyle = CLng(v); })
            .add(
                "ToolTip", QVariant(QString()), [](const C &c) { return QVariant(c.m_toolTip); },
                [](C &c, const QVariant &v) { c.m_toolTip = textFromVariant(v); })
            .add(
                "ShowMarker", QVariant(0), [](const C &c) { return QVariant(c.m_marker); },
                [](C &c, const QVariant &v) { c.m_marker = CLng(v); })
            .add(
                "ShowBlocks", QVariant(0), [](const C &c) { return QVariant(c.m_blocks); },
                [](C &c, const QVariant &v) { c.m_blocks = CInt(v); })
            .add(
                "GaugeOrientation", QVariant(0), [](const C &c) { return QVariant(c.m_orientation); },
                [](C &c, const QVariant &v) { c.m_orientation = CLng(v); });
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
    , m_picture(new PictureBox(this))
    , m_images32(new ImageList(QSize(32, 32), this))
    , m_images16(new ImageList(QSize(16, 16), this))
{
    m_picture->setObjectName(QStringLiteral("Picture1"));
    m_images32->setObjectName(QStringLiteral("ImageList32"));
    m_images16->setObjectName(QStringLiteral("ImageList16"));
    ScoreCardArtwork::fill(*m_images32);
    ScoreCardArtwork::fill(*m_images16);
    forwardStockEvents();
    InitProperties();
}

KeloscoreCard::~KeloscoreCard() = default;

const PropertyTableBase &KeloscoreCard::propertyTable() const
{
    return table();
}

void KeloscoreCard::forwardStockEvents()
{
    const StockEventFilter *events = m_picture->stockEvents();
    connect(events, &StockEventFilter::Click, this, &KeloscoreCard::Click);
    connect(events, &StockEventFilter::DblClick, this, &KeloscoreCard::DblClick);
    connect(events, &StockEventFilter::KeyDown, this, &KeloscoreCard::KeyDown);
    connect(events, &StockEventFilter::KeyPress, this, &KeloscoreCard::KeyPress);
    connect(events, &StockEventFilter::KeyUp, this, &KeloscoreCard::KeyUp);
    connect(events, &StockEventFilter::MouseDown, this, &KeloscoreCard::MouseDown);
    connect(events, &StockEventFilter::MouseMove, this, &KeloscoreCard::MouseMove);
    connect(events, &StockEventFilter::MouseUp, this, &KeloscoreCard::MouseUp);
}

// ---- properties on the surface -------------------------------------------

OleColor KeloscoreCard::BackColor() const
{
    return m_picture->backColor();
}

void KeloscoreCard::setBackColor(OleColor color)
{
    m_picture->setBackColor(color);
    propertyChanged("BackColor");
    redraw();
}

OleColor KeloscoreCard::ForeColor() const
{
    return m_picture->foreColor();
}

void KeloscoreCard::setForeColor(OleColor color)
{
    m_picture->setForeColor(color);
    propertyChanged("ForeColor");
    redraw();
}

bool KeloscoreCard::Enabled() const
{
    return !testAttribute(Qt::WA_ForceDisabled);
}

void KeloscoreCard::setEnabled(bool enabled)
{
    QWidget::setEnabled(enabled);
    propertyChanged("Enabled");
}

QFont KeloscoreCard::Font() const
{
    return m_picture->font();
}

void KeloscoreCard::setFont(const QFont &font)
{
    m_picture->setFont(font);
    propertyChanged("Font");
}

int KeloscoreCard::BorderStyle() const
{
    return m_picture->borderStyle();
}

void KeloscoreCard::setBorderStyle(int style)
{
    m_picture->setBorderStyle(CInt(style));
    propertyChanged("BorderStyle");
    layoutSurface();
}

void KeloscoreCard::Refresh()
{
    m_picture->repaint();
}

// ---- the score -------------------------------------------------------------

void KeloscoreCard::setValue(double value)
{
    m_value = single(value);
    propertyChanged("Value");
    redraw();
}

void KeloscoreCard::setStyle(keloScoreCardStyle style)
{
    if (int(style) == m_style) {
        return;
    }
    m_style = CInt(int(style));
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
    noteFirstWrite("ScoreStar");
    const float s = single(score);
    m_scale = m_scale.withStar(s);
    m_written.thresholds.star = s;
    scaleChanged("ScoreStar");
}

void KeloscoreCard::setScoreGood(double score)
{
    noteFirstWrite("ScoreGood");
    const float s = single(score);
    m_scale = m_scale.withGood(s);
    m_written.thresholds.good = s;
    scaleChanged("ScoreGood");
}

void KeloscoreCard::setScoreMaybe(double score)
{
    noteFirstWrite("ScoreMaybe");
    const float s = single(score);
    m_scale = m_scale.withMaybe(s);
    m_written.thresholds.maybe = s;
    scaleChanged("ScoreMaybe");
}

void KeloscoreCard::setScoreBad(double score)
{
    noteFirstWrite("ScoreBad");
    const float s = single(score);
    m_scale = m_scale.withBad(s);
    m_written.thresholds.bad = s;
    scaleChanged("ScoreBad");
}

void KeloscoreCard::setScoreMin(double score)
{
    noteFirstWrite("ScoreMin");
    const float s = single(score);
    m_scale = m_scale.withMin(s);
    m_written.min = s;
    scaleChanged("ScoreMin");
}

void KeloscoreCard::setScoreMax(double score)
{
    noteFirstWrite("ScoreMax");
    const float s = single(score);
    m_scale = m_scale.withMax(s);
    m_written.max = s;
    scaleChanged("ScoreMax");
}

void KeloscoreCard::scaleChanged(const char *name)
{
    if (!inFirstWrites()) {
        m_written = m_scale;
    }
    propertyChanged(name);
    redraw();
}

const ScoreScale &KeloscoreCard::scale() const
{
    return inFirstWrites() && m_written.isOrdered() ? m_written : m_scale;
}

void KeloscoreCard::firstWritesSettled()
{
    if (m_written.isOrdered()) {
        m_scale = m_written;
    }
    m_written = m_scale;
}

// ---- gauge decorations ------------------------------------------------------

void KeloscoreCard::setShowLimitLines(bool show)
{
    m_showLimitLines = show;
    propertyChanged("ShowLimitLines");
    redraw();
}

void KeloscoreCard::setShowTickLinesEvery(double every)
{
    m_tickEvery = every < 0 ? 0.0 : every;
    propertyChanged("ShowTickLinesEvery");
    redraw();
}

void KeloscoreCard::setTickLineColor(OleColor color)
{
    m_tickLineColor = color;
    propertyChanged("TickLineColor");
    redraw();
}

void KeloscoreCard::setFontColor(OleColor color)
{
    m_fontColor = color;
    propertyChanged("FontColor");
    redraw();
}

void KeloscoreCard::setShowValue(keloShowValue where)
{
    if (int(where) == m_showValue) {
        return;
    }
    m_showValue = int(where);
    redraw();
    propertyChanged("ShowValue");
}

void KeloscoreCard::setToolTipStyle(keloToolTipStyle style)
{
    if (int(style) < 0 || int(style) > 3) {
        return;
    }
    m_toolTipStyle = int(style);
    propertyChanged("ToolTipStyle");
}

void KeloscoreCard::setToolTip(const QString &text)
{
    m_toolTip = text;
    propertyChanged("ToolTip");
}

void KeloscoreCard::setShowMarker(keloMarkerStyle marker)
{
    m_marker = int(marker);
    propertyChanged("ShowMarker");
    redraw();
}

void KeloscoreCard::setShowBlocks(int blocks)
{
    if (blocks < 0 || blocks > 100) {
        return;
    }
    m_blocks = blocks;
    propertyChanged("ShowBlocks");
    redraw();
}

void KeloscoreCard::setGaugeOrientation(keloGaugeOrientation orientation)
{
    m_orientation = int(orientation);
    propertyChanged("GaugeOrientation");
    redraw();
}

int KeloscoreCard::grade() const
{
    return scoreGrade(m_value, scale().thresholds);
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
    m_written = m_scale;
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
    const int border = m_picture->frameWidth();
    const QSize image = (m_style % 2 == 0) ? m_images16->imageSize() : m_images32->imageSize();
    return image + QSize(2 * border, 2 * border);
}

QSize KeloscoreCard::sizeHint() const
{
    if (isPictureStyle()) {
        return pictureFitSize();
    }
    if (m_style == kFlashCard) {
        return QSize(32, 32);
    }
    return m_orientation == int(keloGaugeOrientation::Vertical) ? QSize(30, 160) : QSize(200, 30);
}

// The surface fills the control, except for a picture style, where it is
// exactly the picture's size in the top-left corner.
void KeloscoreCard::layoutSurface()
{
    const QRect area = isPictureStyle() ? QRect(QPoint(0, 0), pictureFitSize()) : rect();
    m_picture->setGeometry(area);
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
    if (m_style == kFlashCard) {
        drawFlashCard();
    } else if (m_style >= kGauge && m_style <= kGaugeRainbow) {
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
    m_picture->cls();
    const ImageList *images = (m_style % 2 == 0) ? m_images16 : m_images32;
    const QString key = ScoreCardArtwork::familyOf(m_style) + QString::number(grade());
    m_picture->setPicture(images->picture(key));
}

void KeloscoreCard::drawFlashCard()
{
    m_picture->setPicture(QPixmap());
    m_picture->cls();
    m_picture->fillBox(QRectF(0, 0, m_picture->scaleWidth(), m_picture->scaleHeight()), gradeColor(grade()));
}

void KeloscoreCard::drawGauge()
{
    if (scale().max == scale().min) {
        return; // nothing to scale against: the surface keeps what it showed
    }
    m_picture->setPicture(QPixmap());
    m_picture->cls();
    GaugeSpec gaugeSpec;
    gaugeSpec.style = m_style;
    gaugeSpec.value = m_value;
    gaugeSpec.scoreMin = scale().min;
    gaugeSpec.scoreMax = scale().max;
    gaugeSpec.thresholds = scale().thresholds;
    gaugeSpec.foreColor = m_picture->foreColor();
    gaugeSpec.backColor = m_picture->backColor();
    gaugeSpec.blocks = m_blocks;
    gaugeSpec.tickEvery = float(m_tickEvery);
    gaugeSpec.tickColor = m_tickLineColor;
    gaugeSpec.limitLines = m_showLimitLines;
    gaugeSpec.marker = m_marker;
    gaugeSpec.showValue = m_showValue;
    gaugeSpec.fontColor = m_fontColor;
    gaugeSpec.font = m_picture->font();
    gaugeSpec.vertical = m_orientation == int(keloGaugeOrientation::Vertical);
    GaugePainter(gaugeSpec).paint(m_picture->beginPaint());
    m_picture->endPaint();
}

void KeloscoreCard::updateToolTip()
{
    if (!UserMode()) {
        return; // at design time the surface's tool tip is left alone
    }
    QString text;
    switch (m_toolTipStyle) {
    case int(keloToolTipStyle::ShowTextAsTip):
        text = m_toolTip;
        break;
    case int(keloToolTipStyle::ShowValueAsTip):
        text = formatPercent(m_value);
        break;
    case int(keloToolTipStyle::ShowBothAsTip):
        text = m_toolTip + QLatin1Char(' ') + formatPercent(m_value);
        break;
    default:
        break;
    }
    m_picture->setToolTip(text);
}
