#pragma once

#include "ClassicFace.h"
#include "ControlBase.h"
#include "KeloEnums.h"
#include "OleColor.h"
#include "PropertyTable.h"
#include <kelocontrols_export.h>

#include <QFont>

#include <memory>

namespace Kelocontrols {
struct ScoreScale;
} // namespace Kelocontrols

/**
 * Shows one score as a grade picture, a flat colour card or a gauge.
 *
 * `Value` (normally a fraction from 0 to 1) is graded against four
 * thresholds: below `ScoreBad` it is grade 1, from `ScoreBad` grade 2, from
 * `ScoreMaybe` 3, from `ScoreGood` 4 and from `ScoreStar` 5. `Style` picks
 * the presentation: a score card, smiley or traffic light picture (16 or 32
 * pixels), a flash card filled with the grade colour, or one of three gauges
 * with optional blocks, tick lines, limit lines, marker and value text.
 *
 * Setters keep the thresholds in order: each clamps against its two
 * neighbours, while `ScoreMin` and `ScoreMax` push all four. Loading a saved
 * control (ReadProperties) keeps values exactly as saved. A form sets the
 * scale one property at a time right after construction; those first writes
 * are checked as a whole (see ControlBase): a scale that is in order as
 * written is kept as written, whatever order its properties came in.
 *
 * Inner widgets: `Picture1` (the drawing surface; its input is re-raised as
 * the stock events), `ImageList32` and `ImageList16` (the fifteen grade
 * pictures under the keys "ScoreCard1".."Traffic5").
 *
 * \code
 * auto *card = new KeloscoreCard(form);
 * card->setStyle(Kelocontrols::keloScoreCardStyle::GaugeRainbow);
 * card->setShowValue(Kelocontrols::keloShowValue::AtMiddle);
 * card->setValue(0.72);
 * \endcode
 */
class KELOCONTROLS_EXPORT KeloscoreCard : public Kelocontrols::ControlBase
{
    Q_OBJECT
    Q_CLASSINFO("Interface", "_KeloscoreCard")
    Q_CLASSINFO("EventInterface", "__KeloscoreCard")
    Q_CLASSINFO("HelpFile", "Kelocontrols.hlp")
    Q_CLASSINFO("Help:BorderStyle", "Returns/sets the border style for an object.")
    Q_CLASSINFO("Help:Refresh", "Forces a complete repaint of a object.")
    Q_CLASSINFO("Help:Value", "Value for the score")
    Q_CLASSINFO("Help:Style", "Style for the control, either an image or a gauge style type.")
    Q_CLASSINFO("Help:ScoreStar", "Score above which the control shows star marks")
    Q_CLASSINFO("Help:ScoreGood", "Score above which the control shows a good mark")
    Q_CLASSINFO("Help:ScoreMaybe", "Score above which the control shows a maybe mark")
    Q_CLASSINFO("Help:ScoreBad", "Score above which the control shows a bad mark")
    Q_CLASSINFO("Help:ScoreMin", "Minimum score allowed")
    Q_CLASSINFO("Help:ScoreMax", "Maximum score allowed")
    Q_CLASSINFO("Help:ShowLimitLines", "Shows the limit (bad,maybe,good,star) lines on the control")
    Q_CLASSINFO("Help:ShowTickLinesEvery", "Shows tick lines every interval on the control.  0 means no tick lines.")
    Q_CLASSINFO("Help:TickLineColor", "Sets the line color for the tick marks")
    Q_CLASSINFO("Help:FontColor", "The color used for the value displayed on the control")
    Q_CLASSINFO("Help:ShowValue", "Show the value on the control as text (eg 93%).")
    Q_CLASSINFO("Help:ToolTipStyle", "The display style for the tooltip.")
    Q_CLASSINFO("Help:ToolTip",
        "Returns/sets the text displayed when the mouse is paused over the control.  Overwrites "
        "ToolTipText, see ToolTipStyle.")
    Q_CLASSINFO("Help:ShowMarker", "Shows the marker for the value of the gauge.")
    Q_CLASSINFO("Help:ShowBlocks", "Sets the number of blocks the gauge is split into.  Looks like an LED display.")
    Q_CLASSINFO("Help:GaugeOrientation", "Changes the gauge orientation from horizontal to vertical.")
    KELO_CLASSIC_STOCK_CLICK_IDS
    KELO_CLASSIC_STOCK_KEY_IDS
    KELO_CLASSIC_STOCK_MOUSE_IDS

    /// The colour behind the picture or gauge, an OLE colour (system colours follow the palette).
    /// Default: 0x8000000F (button face).
    KELO_CLASSIC_PROPERTY(BackColor)
    /// The colour of the surface's lines and texts, an OLE colour.
    /// Default: 0x80000012 (button text).
    KELO_CLASSIC_PROPERTY(ForeColor)
    /// Whether the card responds to the mouse and keyboard; setEnabled() emits PropertyChanged("Enabled").
    /// Default: true.
    KELO_CLASSIC_PROPERTY(Enabled)
    /// The font of the value text.
    /// Default: the container's font.
    KELO_CLASSIC_PROPERTY(Font)
    /// 0 none, 1 fixed single; other values raise RuntimeError 380.
    /// Default: 1.
    Q_PROPERTY(int BorderStyle READ BorderStyle WRITE setBorderStyle)
    /// The score, normally a fraction from 0 to 1 (kept as a single-precision number).
    /// Default: 0.5.
    Q_PROPERTY(double Value READ Value WRITE setValue)
    /// The presentation: a grade picture (16 or 32 pixels), the flash card or a gauge.
    /// Default: ScoreCardSmall.
    Q_PROPERTY(Kelocontrols::keloScoreCardStyle::Value Style READ Style WRITE setStyle)
    // Forms set properties in declaration order: the scale before the thresholds.

    /// The lowest score of the scale; pushes the four thresholds up to it.
    /// Default: 0.
    Q_PROPERTY(double ScoreMin READ ScoreMin WRITE setScoreMin)
    /// The highest score of the scale; pushes the four thresholds down to it.
    /// Default: 1.
    Q_PROPERTY(double ScoreMax READ ScoreMax WRITE setScoreMax)
    /// From this score on the grade is 5 (star); clamped between ScoreGood and ScoreMax.
    /// Default: 0.8.
    Q_PROPERTY(double ScoreStar READ ScoreStar WRITE setScoreStar)
    /// From this score on the grade is 4 (good); clamped between ScoreMaybe and ScoreStar.
    /// Default: 0.6.
    Q_PROPERTY(double ScoreGood READ ScoreGood WRITE setScoreGood)
    /// From this score on the grade is 3 (maybe); clamped between ScoreBad and ScoreGood.
    /// Default: 0.4.
    Q_PROPERTY(double ScoreMaybe READ ScoreMaybe WRITE setScoreMaybe)
    /// From this score on the grade is 2 (bad), below it 1; clamped between ScoreMin and ScoreMaybe.
    /// Default: 0.2.
    Q_PROPERTY(double ScoreBad READ ScoreBad WRITE setScoreBad)
    /// Draws the four threshold lines on a gauge.
    /// Default: false.
    Q_PROPERTY(bool ShowLimitLines READ ShowLimitLines WRITE setShowLimitLines)
    /// The distance between tick lines on a gauge, in score units; 0 draws none.
    /// Default: 0.
    Q_PROPERTY(double ShowTickLinesEvery READ ShowTickLinesEvery WRITE setShowTickLinesEvery)
    /// The colour of the tick lines, an OLE colour.
    /// Default: 0x00000000 (black).
    Q_PROPERTY(uint TickLineColor READ TickLineColor WRITE setTickLineColor)
    /// The colour of the value text, an OLE colour.
    /// Default: 0x00000000 (black).
    Q_PROPERTY(uint FontColor READ FontColor WRITE setFontColor)
    /// Where a gauge shows the value as text ("93%"), if at all.
    /// Default: None.
    Q_PROPERTY(Kelocontrols::keloShowValue::Value ShowValue READ ShowValue WRITE setShowValue)
    /// What the tool tip shows: ToolTip, the value, both or nothing.
    /// Default: ShowBothAsTip.
    Q_PROPERTY(Kelocontrols::keloToolTipStyle::Value ToolTipStyle READ ToolTipStyle WRITE setToolTipStyle)
    /// The text of the tool tip (see ToolTipStyle).
    /// Default: "".
    Q_PROPERTY(QString ToolTip READ ToolTip WRITE setToolTip)
    /// How a gauge marks the value: a line, a bar, a flat bar or not at all.
    /// Default: None.
    Q_PROPERTY(Kelocontrols::keloMarkerStyle::Value ShowMarker READ ShowMarker WRITE setShowMarker)
    /// The number of blocks a gauge is split into (an LED look); 0 for none.
    /// Default: 0.
    Q_PROPERTY(int ShowBlocks READ ShowBlocks WRITE setShowBlocks)
    /// Whether a gauge runs from left to right or from bottom to top.
    /// Default: Horizontal.
    Q_PROPERTY(
        Kelocontrols::keloGaugeOrientation::Value GaugeOrientation READ GaugeOrientation WRITE setGaugeOrientation)

public:
    explicit KeloscoreCard(QWidget *parent = nullptr);
    ~KeloscoreCard() override;

    KELO_CLASSIC_ACCESSORS(BackColor)
    KELO_CLASSIC_ACCESSORS(ForeColor)
    KELO_CLASSIC_ACCESSORS(Enabled)
    KELO_CLASSIC_ACCESSORS(Font)
    /// 0 none, 1 fixed single; other values raise RuntimeError 380.
    int BorderStyle() const;
    void setBorderStyle(int style);

    /// Repaints the surface as it is, without redrawing or rebuilding the tool tip.
    Q_INVOKABLE void Refresh();

    double Value() const;
    void setValue(double value);
    Kelocontrols::keloScoreCardStyle Style() const;
    void setStyle(Kelocontrols::keloScoreCardStyle style);
    double ScoreStar() const;
    void setScoreStar(double score);
    double ScoreGood() const;
    void setScoreGood(double score);
    double ScoreMaybe() const;
    void setScoreMaybe(double score);
    double ScoreBad() const;
    void setScoreBad(double score);
    double ScoreMin() const;
    void setScoreMin(double score);
    double ScoreMax() const;
    void setScoreMax(double score);
    bool ShowLimitLines() const;
    void setShowLimitLines(bool show);
    double ShowTickLinesEvery() const;
    void setShowTickLinesEvery(double every);
    Kelocontrols::OleColor TickLineColor() const;
    void setTickLineColor(Kelocontrols::OleColor color);
    Kelocontrols::OleColor FontColor() const;
    void setFontColor(Kelocontrols::OleColor color);
    Kelocontrols::keloShowValue ShowValue() const;
    void setShowValue(Kelocontrols::keloShowValue where);
    Kelocontrols::keloToolTipStyle ToolTipStyle() const;
    void setToolTipStyle(Kelocontrols::keloToolTipStyle style);
    QString ToolTip() const;
    void setToolTip(const QString &text);
    Kelocontrols::keloMarkerStyle ShowMarker() const;
    void setShowMarker(Kelocontrols::keloMarkerStyle marker);
    int ShowBlocks() const;
    void setShowBlocks(int blocks);
    Kelocontrols::keloGaugeOrientation GaugeOrientation() const;
    void setGaugeOrientation(Kelocontrols::keloGaugeOrientation orientation);

    /// The grade of the current value, 1 (worst) to 5 (best).
    int grade() const;

    const Kelocontrols::PropertyTableBase &propertyTable() const override;
    QSize sizeHint() const override;

Q_SIGNALS:
    KELO_CLASSIC_CLICK_EVENTS
    KELO_CLASSIC_KEY_EVENTS
    KELO_CLASSIC_MOUSE_EVENTS

protected:
    void propertiesLoaded() override;
    void firstWritesSettled() override;
    void userModeChanged() override;
    void resizeEvent(QResizeEvent *event) override;

private:
    static const Kelocontrols::PropertyTable<KeloscoreCard> &table();

    bool isPictureStyle() const;
    QSize pictureFitSize() const;
    const Kelocontrols::ScoreScale &scale() const;
    void writeScore(const char *name, double score,
        Kelocontrols::ScoreScale (Kelocontrols::ScoreScale::*clamped)(float) const, float &written);
    void redraw();
    void drawPicture();
    void drawFlashCard();
    void drawGauge();
    void renderCurrentDrawing();
    void updateToolTip();
    void layoutSurface();
    void fitToStyle();

    class Private;
    std::unique_ptr<Private> const d;
};
