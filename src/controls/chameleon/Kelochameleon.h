#pragma once

#include "ClassicFace.h"
#include "ControlBase.h"
#include "KeloEnums.h"
#include "OleColor.h"

#include <kelocontrols_export.h>

#include <QFont>
#include <QPixmap>

#include <memory>

/**
 * Styles the form it is placed on: a background for the form and all its
 * controls, a common font, and a "wand" animation that follows the mouse.
 *
 * The chameleon takes no room at run time (its size is forced to 0 × 0); in
 * a form designer it shows a 16 × 16 face, crossed out in red while it is
 * disabled. Its form is its parent widget. The form's controls are the
 * widgets and other objects placed on it, also those inside frames, group
 * boxes, tab pages and other containers, depth first in creation order; the
 * inner parts of compound widgets (a spin box's line edit, the list of a
 * list box, a tab widget's tab bar) are not controls, nor are layouts and
 * Qt's own helpers. A control's colour is its `BackColor` property when it
 * has one (the library's controls), else the background role of the
 * widget's face (the viewport of a view, the line edit of a spin box), and
 * its font is its `Font` property or its QWidget font.
 *
 * When the form is shown (a chameleon added to a form that is already
 * visible needs its own show()) and on Refresh(), at run time, an enabled
 * chameleon first reads its theme with GetTheme() when `ThemeIsUsed` is set
 * (a missing theme emits ThemeMissing() and the chameleon goes on with its
 * own values), then:
 * 1. seeds its drifting colour from Kelocontrols::Rnd(), without reseeding
 *    the generator, so every run starts from the same colours unless the
 *    program reseeds it;
 * 2. applies `BackgroundStyle`: `SystemDefault` gives the form and its
 *    controls the button-face colour, `FixedColor` gives them
 *    `NewBackColor`, `VariedColor` a colour that drifts between
 *    `ColorMinimum` and `ColorMaximum` (per channel, at most
 *    `ColorStepRate` per step, one step every `Interval` milliseconds
 *    rounded up to the 100 ms timer), and `Picture` paints
 *    `BackgroundPicture` on the form as `BackgroundPictureStyle` places it;
 *    controls left at the window-background system colour (text and list
 *    boxes) keep it;
 * 3. gives the form and its controls `NewFont` when `FontStyle` is
 *    `ChangeFont`;
 * 4. starts `Timer1` (100 ms), which steps the colour and animates the wand,
 *    unless the theme just read disabled the chameleon.
 *
 * The wand appears where the host reports the mouse: it calls WandMovement()
 * from the MouseMove handler of the surface it chooses (the form, a picture
 * box, any widget), and the wand is drawn on that surface beneath its child
 * widgets. With `WandFollowsMouse` set the chameleon follows the mouse over
 * its form by itself. All chameleons of a process share the wand's 21
 * elements.
 *
 * Styling ignores the failures of single statements: a control that lacks a
 * member is passed over as the rules of each step say (a control without a
 * background colour, such as a QTimer among the form's children, ends the
 * colouring pass; one without a font is skipped).
 *
 * Inner objects: `picBackground` (a hidden picture box holding the loaded
 * picture) and `Timer1`.
 *
 * Themes: SaveTheme() keeps the look (picture, placement, font style,
 * interval, background and wand styles, colour, Enabled and the colour
 * range) under the name `ThemeName` in the user's settings store (see
 * Kelocontrols::SaveSetting), GetTheme() takes it up again, and a chameleon
 * whose `ThemeIsUsed` is set reads its theme each time it is shown at run
 * time, before it applies the look. The store's application name is the
 * chameleon's objectName(), or "Kelochameleon" when it has none: chameleons
 * with the same name share their themes, across forms, programs and runs.
 * An empty `ThemeName` becomes "DefaultTheme" first.
 *
 * \code
 * auto *chameleon = new Kelochameleon(form);
 * chameleon->setBackgroundStyle(Kelocontrols::keloBackgroundStyle::VariedColor);
 * chameleon->setWandStyle(Kelocontrols::keloWandStyle::Stars);
 * form->show(); // the form takes its first colour
 * \endcode
 */
class KELOCONTROLS_EXPORT Kelochameleon : public Kelocontrols::ControlBase
{
    Q_OBJECT
    Q_CLASSINFO("Interface", "_Kelochameleon")
    Q_CLASSINFO("EventInterface", "__Kelochameleon")
    Q_CLASSINFO("HelpFile", "Kelocontrols.hlp")
    Q_CLASSINFO("Help:ColorMinimum", "The mimumum RGB value for the color settings")
    Q_CLASSINFO("Help:ColorMaximum", "The maximum value for the RGB color setting")
    Q_CLASSINFO("Help:ColorStepRate", "The maximum rate at which the color changes for each step")
    Q_CLASSINFO("Help:BackgroundStyle", "Style to be set for the background of the form and controls")
    Q_CLASSINFO("Help:WandStyle", "Style to be used for the wand")
    Q_CLASSINFO("Help:NewBackColor", "Background colour to be set for all controls")
    Q_CLASSINFO("Help:Interval", "Interval for the color step.")
    Q_CLASSINFO("Help:FontStyle", "The style of font to be applied to the form.")
    Q_CLASSINFO("Help:NewFont", "New font to replace font on form")
    Q_CLASSINFO("Help:BackgroundPicture", "Picture to be displayed on the background of the form")
    Q_CLASSINFO("Help:BackgroundPictureStyle", "Change the appearance of the background picture if used.")
    Q_CLASSINFO("Help:ThemeName", "Name of the current theme")
    Q_CLASSINFO("Help:ThemeIsUsed", "If set to TRUE a theme is read when the control is shown at run time.")
    Q_CLASSINFO("Help:MouseIcon", "Sets a custom mouse icon.")
    Q_CLASSINFO("Help:WandFollowsMouse",
        "If set to TRUE the wand follows the mouse over the form without calls to WandMovement.")
    Q_CLASSINFO("Help:WandMovement", "Called from controls MouseMove event")
    Q_CLASSINFO("Help:SaveTheme", "Saves the chameleon settings as a theme.")
    Q_CLASSINFO("Help:GetTheme", "Gets a theme from the system")
    Q_CLASSINFO("Help:ThemeMissing",
        "Fires when the ThemeIsUsed flag is set TRUE or when the GetTheme method invoked and the theme can not be "
        "found.")
    Q_CLASSINFO("DispId:ThemeMissing", "1")

    /// The lowest value of each colour channel that VariedColor drifts to.
    /// Default: 0.
    Q_PROPERTY(int ColorMinimum READ ColorMinimum WRITE setColorMinimum)
    /// The highest value of each colour channel that VariedColor drifts to.
    /// Default: 255.
    Q_PROPERTY(int ColorMaximum READ ColorMaximum WRITE setColorMaximum)
    /// The largest change of a colour channel in one VariedColor step.
    /// Default: 10.
    Q_PROPERTY(int ColorStepRate READ ColorStepRate WRITE setColorStepRate)
    /// Turns the styling on or off; in a designer the face is crossed out while disabled.
    /// Default: true.
    KELO_CLASSIC_PROPERTY(Enabled)
    /// What the form and its controls get as background.
    /// Default: None.
    Q_PROPERTY(Kelocontrols::keloBackgroundStyle::Value BackgroundStyle READ BackgroundStyle WRITE setBackgroundStyle)
    /// The animation that follows the mouse.
    /// Default: None.
    Q_PROPERTY(Kelocontrols::keloWandStyle::Value WandStyle READ WandStyle WRITE setWandStyle)
    /// The colour of the FixedColor background, an OLE colour (system colours allowed).
    /// Default: 0x00000000 (black).
    Q_PROPERTY(uint NewBackColor READ NewBackColor WRITE setNewBackColor)
    /// Milliseconds between two VariedColor steps, rounded up to the 100 ms timer.
    /// Default: 1000.
    Q_PROPERTY(int Interval READ Interval WRITE setInterval)
    /// Whether the form and its controls get NewFont.
    /// Default: None.
    Q_PROPERTY(Kelocontrols::keloFontStyle::Value FontStyle READ FontStyle WRITE setFontStyle)
    /// The font that ChangeFont gives the form and its controls.
    /// Default: the container's font.
    Q_PROPERTY(QFont NewFont READ NewFont WRITE setNewFont)
    /// The path of the picture file of the Picture background.
    /// Default: "".
    Q_PROPERTY(QString BackgroundPicture READ BackgroundPicture WRITE setBackgroundPicture)
    /// Where the Picture background is placed on the form, or tiled.
    /// Default: None.
    Q_PROPERTY(Kelocontrols::keloPictureStyle::Value BackgroundPictureStyle READ BackgroundPictureStyle WRITE
            setBackgroundPictureStyle)
    /// The name under which SaveTheme() and GetTheme() keep the look.
    /// Default: "DefaultTheme".
    Q_PROPERTY(QString ThemeName READ ThemeName WRITE setThemeName)
    /// Reads the theme ThemeName each time the chameleon is shown at run time.
    /// Default: false.
    Q_PROPERTY(bool ThemeIsUsed READ ThemeIsUsed WRITE setThemeIsUsed)
    /// The control's own mouse cursor; a null picture restores the default one.
    /// Default: none.
    Q_PROPERTY(QPixmap MouseIcon READ MouseIcon WRITE setMouseIcon)
    /// Whether the wand follows the mouse over the form by itself (see setWandFollowsMouse()).
    /// Default: false.
    Q_PROPERTY(bool WandFollowsMouse READ WandFollowsMouse WRITE setWandFollowsMouse)

public:
    /// The period of `Timer1`, in milliseconds.
    static constexpr int TimerInterval = 100;
    /// The side of the design-time face, in pixels.
    static constexpr int FaceSize = 16;

    explicit Kelochameleon(QWidget *parent = nullptr);
    ~Kelochameleon() override;

    /// 0 to ColorMaximum: a lower value becomes 0, a higher one ColorMaximum. @throws RuntimeError 6 beyond 16 bits
    int ColorMinimum() const;
    void setColorMinimum(int value);
    /// ColorMinimum to 255: a lower value becomes ColorMinimum, a higher one 255. @throws RuntimeError 6 beyond 16 bits
    int ColorMaximum() const;
    void setColorMaximum(int value);
    /// 0 to 255. @throws RuntimeError 6 beyond 16 bits
    int ColorStepRate() const;
    void setColorStepRate(int value);

    KELO_CLASSIC_ACCESSORS(Enabled)

    Kelocontrols::keloBackgroundStyle BackgroundStyle() const;
    void setBackgroundStyle(Kelocontrols::keloBackgroundStyle style);
    Kelocontrols::keloWandStyle WandStyle() const;
    void setWandStyle(Kelocontrols::keloWandStyle style);
    /// The colour of `FixedColor`, an OLE colour (system colours allowed).
    Kelocontrols::OleColor NewBackColor() const;
    void setNewBackColor(Kelocontrols::OleColor color);
    /// Milliseconds between two colour steps. @throws RuntimeError 6 beyond 16 bits
    int Interval() const;
    void setInterval(int milliseconds);
    Kelocontrols::keloFontStyle FontStyle() const;
    void setFontStyle(Kelocontrols::keloFontStyle style);
    QFont NewFont() const;
    void setNewFont(const QFont &font);
    /// The path of the picture file of the `Picture` style.
    QString BackgroundPicture() const;
    void setBackgroundPicture(const QString &path);
    Kelocontrols::keloPictureStyle BackgroundPictureStyle() const;
    void setBackgroundPictureStyle(Kelocontrols::keloPictureStyle style);
    QString ThemeName() const;
    void setThemeName(const QString &name);
    bool ThemeIsUsed() const;
    void setThemeIsUsed(bool used);
    QPixmap MouseIcon() const;
    /// Sets the control's own mouse cursor (a null picture restores the default one).
    void setMouseIcon(const QPixmap &icon);

    bool WandFollowsMouse() const;
    /**
     * A convenience for hosts that want the wand over the whole form: while
     * set, a running chameleon watches the form's mouse movements (turning
     * its mouse tracking on) and feeds them to WandMovement() itself, as a
     * MouseMove handler of the form would. Off by default: a host calls
     * WandMovement() from the MouseMove of the surface it chooses.
     */
    void setWandFollowsMouse(bool follows);

    /**
     * Applies everything again, as when the form is shown.
     * @throws RuntimeError 6 when unclamped colour bounds (loaded from a
     *         saved control) overflow the 16-bit range; any error of
     *         GetTheme() when `ThemeIsUsed` is set.
     */
    Q_INVOKABLE void Refresh();

    /**
     * Feeds the wand a mouse movement over @p MyControl (a form, a picture
     * box, any widget) at (@p X, @p Y) in that surface's own scale; call it
     * from the surface's MouseMove handler. Does nothing while disabled.
     * @throws RuntimeError 91 / 438 when an element starts on a surface
     *         that cannot be drawn on.
     */
    Q_INVOKABLE void WandMovement(QObject *MyControl, float X, float Y);

    /**
     * Saves the theme: writes "ThemeExists" ("True"), "BackgroundPicture",
     * "BackgroundPictureStyle", "FontStyle", "Interval", "BackgroundStyle",
     * "WandStyle", "NewBackColor" (signed decimal: 0x8000000F is
     * "-2147483633"), "Enabled" ("True" / "False"), "ColorMinimum",
     * "ColorMaximum" and "ColorStepRate", in this order, as texts under
     * (settingsApplicationName(), `ThemeName`). An empty `ThemeName` is set to
     * "DefaultTheme" first. The form keeps its look.
     * @return always an empty QVariant.
     * @throws RuntimeError from Kelocontrols::SaveSetting when the store
     *         cannot be written; keys written before the failure stay.
     */
    Q_INVOKABLE QVariant SaveTheme();

    /**
     * Reads the theme `ThemeName` (an empty name is set to "DefaultTheme"
     * first) back into the properties, unclamped (a hand-edited minimum above
     * the maximum stays so) and without PropertyChanged; keys that are
     * missing give the defaults of a new control. It does not re-apply the
     * look: call Refresh() afterwards (Show does this by itself).
     *
     * Numbers may be written as the classic conversions read them (" 12 ",
     * "1e3", "12.5" rounds half to even); truth values are "True" / "False"
     * in any case, or numbers, where any non-zero number is True ("-1", "1",
     * " 12 ") and 0 False.
     *
     * @return true when the theme exists; false, after emitting ThemeMissing(),
     *         when it does not, with every property unchanged.
     * @throws RuntimeError TypeMismatch (13) when a stored value is not a
     *         number or truth value, Overflow (6) when it does not fit its
     *         property, or an error of Kelocontrols::GetSetting. Values
     *         are stored one by one as they are read (in the order
     *         "BackgroundPicture", "BackgroundPictureStyle", "FontStyle",
     *         "Interval", "BackgroundStyle", "WandStyle", "NewBackColor",
     *         "Enabled", "ColorMaximum", "ColorMinimum", "ColorMaximum",
     *         "ColorStepRate"): those read before the bad one stay stored,
     *         the rest keep their values.
     */
    Q_INVOKABLE bool GetTheme();

    /// The application name of the settings store that the last SaveTheme() or
    /// GetTheme() used: the objectName(), or "Kelochameleon" when it is empty.
    QString settingsApplicationName() const;

    /// The colour the chameleon last gave the form (the control's own background).
    Kelocontrols::OleColor backColor() const;

    const Kelocontrols::PropertyTableBase &propertyTable() const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The theme named by `ThemeName` is not in the store (GetTheme(), or Show with `ThemeIsUsed`).
    void ThemeMissing();

protected:
    void propertiesLoaded() override;
    void userModeChanged() override;
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    class Private;
    std::unique_ptr<Private> const d;
};
