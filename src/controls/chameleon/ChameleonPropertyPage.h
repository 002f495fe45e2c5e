#pragma once

#include <kelocontrols_export.h>

#include <QList>
#include <QPointer>
#include <QWidget>

#include <functional>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;

/**
 * The property page of Kelochameleon: colour range, step rate, interval,
 * theme and background picture of the first selected control, with a
 * preview of the picture and buttons that load and save themes.
 *
 * The page reaches its control only late-bound, through
 * QObject::property(), QObject::setProperty() and
 * QMetaObject::invokeMethod(), so any object with the properties
 * `ColorMinimum`, `ColorMaximum`, `ColorStepRate`, `Interval`, `ThemeName`,
 * `ThemeIsUsed` and `BackgroundPicture` and the invokable methods
 * `bool GetTheme()` and `QVariant SaveTheme()` can be edited with it (Qt
 * Designer's "Edit Chameleon Settings..." hands it a stand-in that records
 * every write as an undoable command).
 *
 * Inner widgets, by objectName:
 * | widget | kind | shows |
 * |---|---|---|
 * | `sliColorMinimum`, `labColorMinimum`, `labColorMinimumDisplay` | slider 0..255, value, grey swatch | `ColorMinimum`
 * | | `sliColorMaximum`, `labColorMaximum`, `labColorMaximumDisplay` | slider 0..255, value, grey swatch |
 * `ColorMaximum` | | `sliColorStepRate`, `labColorStepRate` | slider 0..255, value | `ColorStepRate` | | `sliInterval`,
 * `labInterval` | slider 100..10000 in steps of 100, text | `Interval` | | `txtThemeName` | line edit | `ThemeName` |
 * | `chkThemeIsUsed` | check box | `ThemeIsUsed` |
 * | `txtBackgroundPicture` | line edit | `BackgroundPicture` |
 * | `imgPreview` | label holding a picture | the picture, shrunk to fit the box |
 * | `Commands_0` .. `Commands_3` | push buttons, also Commands(i) | Get theme, Save theme, Browse..., Preview |
 *
 * The sliders keep the range in order: moving the minimum above the maximum
 * carries the maximum along, moving the maximum below the minimum carries
 * the minimum. The interval slider snaps down to whole hundreds and
 * `labInterval` reads "1500 milliseconds = 1.5 seconds". Values outside a
 * slider's range show at its nearest end.
 *
 * Every edit marks the page changed (changed(), Changed()); loading the
 * page in SelectionChanged() does not.
 *
 * \code
 * ChameleonPropertyPage page;
 * page.setSelectedControls({chameleon});   // loads the page
 * ...                                       // the user edits
 * if (page.changed())
 *     page.ApplyChanges();
 * \endcode
 */
class KELOCONTROLS_EXPORT ChameleonPropertyPage : public QWidget
{
    Q_OBJECT
    Q_CLASSINFO("Interface", "_ChameleonPropertyPage")

public:
    /// Asks for a picture file: parent, title, starting file name, Qt filter; "" when cancelled.
    using BrowseDialog
        = std::function<QString(QWidget *parent, const QString &title, const QString &fileName, const QString &filter)>;

    /// The number of buttons in Commands().
    static constexpr int CommandCount = 4;
    /// Indexes of Commands().
    enum Command {
        GetThemeCommand = 0,
        SaveThemeCommand = 1,
        BrowseCommand = 2,
        PreviewCommand = 3,
    };

    /// The title of the picture file dialog.
    static QString browseTitle();
    /// The picture file filter in its classic "description|patterns|..." form.
    static QString pictureFilter();

    explicit ChameleonPropertyPage(QWidget *parent = nullptr);
    ~ChameleonPropertyPage() override;

    /// Hands over the controls to edit and loads the page from the first (SelectionChanged()).
    void setSelectedControls(const QList<QObject *> &controls);
    /// The controls handed over that still exist.
    QList<QObject *> SelectedControls() const;

    /**
     * Loads the page from the first selected control (nothing without one)
     * and clears the changed mark.
     * @throws RuntimeError 438 when the control lacks one of the properties.
     */
    Q_INVOKABLE void SelectionChanged();

    /**
     * Writes the page to the first selected control (nothing without one),
     * in this order: ThemeIsUsed, ThemeName, BackgroundPicture,
     * ColorStepRate, ColorMaximum, ColorMinimum, ColorMaximum again,
     * Interval. Writing the maximum on both sides of the minimum lets a
     * control that keeps minimum <= maximum at every write accept any pair.
     * Clears the changed mark.
     * @throws RuntimeError 438 when the control lacks one of the properties,
     *         or any error the control raises (the writes before it stay).
     */
    Q_INVOKABLE void ApplyChanges();

    /// True once the user has edited the page since it was loaded or applied.
    bool changed() const { return m_changed; }
    /// Sets or clears the changed mark; setting it emits Changed().
    void setChanged(bool changed);

    /// Button @p index (0 Get theme, 1 Save theme, 2 Browse..., 3 Preview), nullptr outside 0..3.
    QPushButton *Commands(int index) const;

    /**
     * What button @p Index does when clicked:
     * - 0: sets the control's `ThemeName` to `txtThemeName` and calls its
     *   GetTheme(); reloads the page when the theme exists, else shows
     *   "Error - Theme '<name>' does not exist." (OK only, no icon) with the
     *   name the control looked up (an empty name is "DefaultTheme");
     * - 1: ApplyChanges(), then the control's SaveTheme(); the page then shows
     *   the theme name the control saved under;
     * - 2: the file dialog (browseTitle(), pictureFilter(), the current
     *   `txtBackgroundPicture` as starting file); a chosen file goes into
     *   `txtBackgroundPicture`;
     * - 3: shows the picture named in `txtBackgroundPicture` in `imgPreview`;
     *   a file that cannot be loaded leaves it empty.
     *
     * A click on the button itself shows an error raised here in a message
     * box (16) instead of letting it reach the event loop.
     * @throws RuntimeError SubscriptOutOfRange (9) for another index, 438 when
     *         the control lacks a member, or what the control raises.
     */
    Q_INVOKABLE void Commands_Click(int Index);

    /// Replaces the file dialog of Browse (tests, hosts); returns the previous
    /// one. An empty function restores QFileDialog::getOpenFileName().
    BrowseDialog setBrowseDialog(BrowseDialog dialog);

    /**
     * A classic file filter ("Text files|*.txt;*.log|All files|*.*") in Qt's
     * form ("Text files (*.txt *.log);;All files (*)"); "*.*" matches every
     * file, as it did on the classic platform.
     */
    static QString qtFileFilter(const QString &classicFilter);

    /// The text of `labInterval` for @p milliseconds: "1500 milliseconds = 1.5 seconds".
    static QString intervalText(int milliseconds);

Q_SIGNALS:
    /// The user edited the page (emitted at every edit; the host enables its Apply button).
    void Changed();

private:
    void buildLayout();
    QLabel *makeCaption(const QString &text, QWidget *buddy);
    QWidget *buildColoursGroup();
    QWidget *buildTimingGroup();
    QWidget *buildThemeGroup();
    QWidget *buildPictureGroup();
    void connectEdits();

    void onColorMinimumChanged(int value);
    void onColorMaximumChanged(int value);
    void onIntervalChanged(int value);
    void showSliderValues();
    void markChanged();
    void runCommand(int index);

    QObject *firstControl() const;
    void getTheme();
    void saveTheme();
    void browse();
    void preview();

    QList<QPointer<QObject>> m_selected;
    bool m_changed = false;
    bool m_loading = false;
    BrowseDialog m_browseDialog;

    QSlider *m_sliColorMinimum;
    QLabel *m_labColorMinimum;
    QLabel *m_labColorMinimumDisplay;
    QSlider *m_sliColorMaximum;
    QLabel *m_labColorMaximum;
    QLabel *m_labColorMaximumDisplay;
    QSlider *m_sliColorStepRate;
    QLabel *m_labColorStepRate;
    QSlider *m_sliInterval;
    QLabel *m_labInterval;
    QLineEdit *m_txtThemeName;
    QCheckBox *m_chkThemeIsUsed;
    QLineEdit *m_txtBackgroundPicture;
    QLabel *m_imgPreview;
    QList<QPushButton *> m_commands;
    QList<QLabel *> m_captions;
};
