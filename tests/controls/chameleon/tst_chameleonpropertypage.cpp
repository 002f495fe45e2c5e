#include "ChameleonPropertyPage.h"
#include "Kelochameleon.h"
#include "MsgBox.h"
#include "RuntimeError.h"
#include "SettingsStore.h"

#include "KeloTestSupport.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;
using KeloTest::MsgBoxRecorder;

namespace {

// Stands in for a chameleon: the same properties, and a log of every write and call in order.
class RecordingControl : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int ColorMinimum READ colorMinimum WRITE setColorMinimum)
    Q_PROPERTY(int ColorMaximum READ colorMaximum WRITE setColorMaximum)
    Q_PROPERTY(int ColorStepRate READ colorStepRate WRITE setColorStepRate)
    Q_PROPERTY(int Interval READ interval WRITE setInterval)
    Q_PROPERTY(QString ThemeName READ themeName WRITE setThemeName)
    Q_PROPERTY(bool ThemeIsUsed READ themeIsUsed WRITE setThemeIsUsed)
    Q_PROPERTY(QString BackgroundPicture READ backgroundPicture WRITE setBackgroundPicture)

public:
    QStringList log;
    QVariantMap values{{"ColorMinimum", 10}, {"ColorMaximum", 240}, {"ColorStepRate", 5}, {"Interval", 1200},
        {"ThemeName", QStringLiteral("Ocean")}, {"ThemeIsUsed", true}, {"BackgroundPicture", QStringLiteral("/a.png")}};
    bool themeFound = true;
    int themeError = 0;

    int colorMinimum() const { return values.value("ColorMinimum").toInt(); }
    void setColorMinimum(int v) { record("ColorMinimum", v); }
    int colorMaximum() const { return values.value("ColorMaximum").toInt(); }
    void setColorMaximum(int v) { record("ColorMaximum", v); }
    int colorStepRate() const { return values.value("ColorStepRate").toInt(); }
    void setColorStepRate(int v) { record("ColorStepRate", v); }
    int interval() const { return values.value("Interval").toInt(); }
    void setInterval(int v) { record("Interval", v); }
    QString themeName() const { return values.value("ThemeName").toString(); }
    void setThemeName(const QString &v) { record("ThemeName", v); }
    bool themeIsUsed() const { return values.value("ThemeIsUsed").toBool(); }
    void setThemeIsUsed(bool v) { record("ThemeIsUsed", v); }
    QString backgroundPicture() const { return values.value("BackgroundPicture").toString(); }
    void setBackgroundPicture(const QString &v) { record("BackgroundPicture", v); }

    Q_INVOKABLE bool GetTheme()
    {
        log << QStringLiteral("GetTheme()");
        if (themeError) {
            throw RuntimeError(themeError);
        }
        return themeFound;
    }
    Q_INVOKABLE QVariant SaveTheme()
    {
        log << QStringLiteral("SaveTheme()");
        return QVariant();
    }

private:
    void record(const char *name, const QVariant &value)
    {
        log << QString::fromLatin1(name) + QLatin1Char('=') + value.toString();
        values.insert(QString::fromLatin1(name), value);
    }
};

// The order in which ApplyChanges writes the page's fields.
const QStringList ApplyOrder{"ThemeIsUsed", "ThemeName", "BackgroundPicture", "ColorStepRate", "ColorMaximum",
    "ColorMinimum", "ColorMaximum", "Interval"};

template<typename T = QWidget>
T *child(const QWidget &page, const char *name)
{
    return page.findChild<T *>(QLatin1String(name));
}

QSlider *slider(const QWidget &page, const char *property)
{
    return child<QSlider>(page, QByteArray("sli").append(property).constData());
}

QColor swatchColour(const QWidget &page, const char *name)
{
    return child<QLabel>(page, name)->palette().color(QPalette::Window);
}

// Everything the page shows, in one line: the sliders, the texts, the check box and the captions.
QString shown(const QWidget &page)
{
    QStringList parts;
    for (const char *name : {"ColorMinimum", "ColorMaximum", "ColorStepRate", "Interval"}) {
        parts << QString::number(slider(page, name)->value());
    }
    parts << child<QLineEdit>(page, "txtThemeName")->text()
          << QString::number(child<QCheckBox>(page, "chkThemeIsUsed")->isChecked())
          << child<QLineEdit>(page, "txtBackgroundPicture")->text();
    for (const char *name : {"labColorMinimum", "labColorMaximum", "labColorStepRate", "labInterval"}) {
        parts << child<QLabel>(page, name)->text();
    }
    return parts.join(QLatin1Char('|'));
}

QString writePicture(const QTemporaryDir &dir, const QString &name, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(30, 120, 200));
    const QString path = dir.filePath(name);
    image.save(path);
    return path;
}

} // namespace

class TestChameleonPropertyPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The inner widgets the other tests reach by name are all there; these are
    // the ones only this test looks for. Shown, every one lies inside the page.
    void innerWidgetsAreNamedGroupedAndInside()
    {
        ChameleonPropertyPage page;
        page.resize(page.sizeHint());
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        for (const QWidget *widget : page.findChildren<QWidget *>()) {
            QVERIFY2(page.rect().contains(QRect(widget->mapTo(&page, QPoint(0, 0)), widget->size())),
                qPrintable(widget->objectName()));
        }
        for (const char *name : {"labColorMinimumDisplay", "labColorMaximumDisplay", "imgPreview"}) {
            QVERIFY2(child<QLabel>(page, name), name);
        }
        for (int i = 0; i < ChameleonPropertyPage::CommandCount; ++i) {
            QCOMPARE(page.Commands(i), child<QPushButton>(page, qPrintable(QStringLiteral("Commands_%1").arg(i))));
            QVERIFY(page.Commands(i));
        }
        QVERIFY(!page.Commands(-1) && !page.Commands(4));
        QStringList groups;
        for (const QGroupBox *group : page.findChildren<QGroupBox *>()) {
            groups << group->title();
        }
        QCOMPARE(groups, (QStringList{"Colours", "Timing", "Theme", "Background picture"}));

        // The ranges the chameleon needs; a fresh page already shows its values.
        QCOMPARE((QList<int>{slider(page, "ColorMinimum")->minimum(), slider(page, "ColorMinimum")->maximum(),
                     slider(page, "ColorStepRate")->maximum(), slider(page, "Interval")->minimum(),
                     slider(page, "Interval")->singleStep()}),
            (QList<int>{0, 255, 255, 100, 100}));
        QVERIFY(slider(page, "Interval")->maximum() >= 5000);
        QCOMPARE(child<QLabel>(page, "labColorMinimum")->text(), QStringLiteral("0"));
        QCOMPARE(child<QLabel>(page, "labInterval")->text(), QStringLiteral("1000 milliseconds = 1 seconds"));
        QVERIFY(!page.changed());
        QVERIFY(page.SelectedControls().isEmpty());
    }

    void selectionLoadsThePageWithoutMarkingIt()
    {
        RecordingControl control;
        ChameleonPropertyPage page;
        QSignalSpy changed(&page, &ChameleonPropertyPage::Changed);
        page.setSelectedControls({&control});
        QCOMPARE(page.SelectedControls(), QList<QObject *>{&control});
        QCOMPARE(shown(page), QStringLiteral("10|240|5|1200|Ocean|1|/a.png|10|240|5|1200 milliseconds = 1.2 seconds"));
        QCOMPARE(swatchColour(page, "labColorMinimumDisplay"), QColor(10, 10, 10));
        QCOMPARE(swatchColour(page, "labColorMaximumDisplay"), QColor(240, 240, 240));
        QVERIFY(!page.changed());
        QCOMPARE(changed.count(), 0);
        QVERIFY(control.log.isEmpty());

        // Reloading after an edit drops the edit and the mark.
        child<QLineEdit>(page, "txtThemeName")->setText(QStringLiteral("Desert"));
        QVERIFY(page.changed());
        page.SelectionChanged();
        QVERIFY(!page.changed());
        QCOMPARE(child<QLineEdit>(page, "txtThemeName")->text(), QStringLiteral("Ocean"));

        // Only the first selected control counts; a deleted one is forgotten.
        RecordingControl second;
        second.values.insert("ColorStepRate", 99);
        auto *first = new RecordingControl;
        first->values.insert("ColorStepRate", 42);
        page.setSelectedControls({first, &second});
        QCOMPARE(slider(page, "ColorStepRate")->value(), 42);
        delete first;
        QCOMPARE(page.SelectedControls(), QList<QObject *>{&second});
        page.ApplyChanges(); // no first control: nothing happens
        QVERIFY(second.log.isEmpty());
    }

    void applyWritesInItsOrderAndEveryEditMarksThePage()
    {
        RecordingControl control;
        ChameleonPropertyPage page;
        page.setSelectedControls({&control});
        QSignalSpy changed(&page, &ChameleonPropertyPage::Changed);
        const QList<std::function<void()>> edits{
            [&] { slider(page, "ColorMinimum")->setValue(30); },
            [&] { slider(page, "ColorMaximum")->setValue(90); },
            [&] { slider(page, "ColorStepRate")->setValue(12); },
            [&] { slider(page, "Interval")->setValue(2500); },
            [&] { QTest::keyClicks(child<QLineEdit>(page, "txtThemeName"), QStringLiteral("x")); },
            [&] { QTest::keyClicks(child<QLineEdit>(page, "txtBackgroundPicture"), QStringLiteral("x")); },
            [&] { child<QCheckBox>(page, "chkThemeIsUsed")->click(); },
        };
        // Each edit alone marks the page...
        for (int i = 0; i < edits.size(); ++i) {
            page.SelectionChanged();
            changed.clear();
            QVERIFY(!page.changed());
            edits.at(i)();
            QVERIFY2(page.changed() && changed.count() >= 1, qPrintable(QString::number(i)));
        }
        page.setChanged(false);
        QVERIFY(!page.changed());

        // ... and all of them together are written at Apply, in its order.
        page.SelectionChanged();
        for (const auto &edit : edits) {
            edit();
        }
        QVERIFY(control.log.isEmpty());
        page.ApplyChanges();
        QCOMPARE(control.log,
            (QStringList{"ThemeIsUsed=false", "ThemeName=Oceanx", "BackgroundPicture=/a.pngx", "ColorStepRate=12",
                "ColorMaximum=90", "ColorMinimum=30", "ColorMaximum=90", "Interval=2500"}));
        QVERIFY(!page.changed());
    }

    void slidersKeepTheRangeInOrder()
    {
        RecordingControl control;
        control.values.insert("ColorMinimum", 50);
        control.values.insert("ColorMaximum", 100);
        ChameleonPropertyPage page;
        page.setSelectedControls({&control});
        QSlider *minimum = slider(page, "ColorMinimum");
        QSlider *maximum = slider(page, "ColorMaximum");

        // Dragged: the maximum follows the handle while it is still held.
        minimum->setSliderDown(true);
        minimum->setSliderPosition(120);
        QCOMPARE(maximum->value(), 120);
        minimum->setSliderPosition(180);
        QCOMPARE(maximum->value(), 180);
        minimum->setSliderDown(false);
        QCOMPARE(child<QLabel>(page, "labColorMaximum")->text(), QStringLiteral("180"));
        QCOMPARE(swatchColour(page, "labColorMaximumDisplay"), QColor(180, 180, 180));
        // Back below the maximum: the maximum stays.
        minimum->setValue(60);
        QCOMPARE(maximum->value(), 180);
        // The maximum below the minimum carries the minimum down.
        maximum->setValue(30);
        QCOMPARE(minimum->value(), 30);
        QCOMPARE(child<QLabel>(page, "labColorMinimum")->text(), QStringLiteral("30"));
        QCOMPARE(swatchColour(page, "labColorMinimumDisplay"), QColor(30, 30, 30));

        // Applied, the carried pair is equal.
        minimum->setValue(77);
        page.ApplyChanges();
        QCOMPARE(KeloTest::propertyTexts(&control, {"ColorMinimum", "ColorMaximum"}),
            (QStringList{"ColorMinimum=77", "ColorMaximum=77"}));
        // A hand-edited pair out of order loads as an equal pair.
        control.values.insert("ColorMinimum", 200);
        control.values.insert("ColorMaximum", 100);
        page.SelectionChanged();
        QCOMPARE(minimum->value(), maximum->value());
        QVERIFY(!page.changed());
    }

    void applyingAnyPairOnARealChameleon_data()
    {
        QTest::addColumn<int>("startMinimum");
        QTest::addColumn<int>("startMaximum");
        QTest::addColumn<int>("pageMinimum");
        QTest::addColumn<int>("pageMaximum");

        QTest::newRow("both below the old minimum") << 100 << 120 << 10 << 20;
        QTest::newRow("both above the old maximum") << 10 << 20 << 200 << 230;
        QTest::newRow("equal bounds") << 0 << 255 << 128 << 128;
        QTest::newRow("widened") << 100 << 120 << 0 << 255;
    }

    void applyingAnyPairOnARealChameleon()
    {
        QFETCH(int, startMinimum);
        QFETCH(int, startMaximum);
        QFETCH(int, pageMinimum);
        QFETCH(int, pageMaximum);

        Kelochameleon chameleon;
        chameleon.setColorMaximum(startMaximum);
        chameleon.setColorMinimum(startMinimum);
        ChameleonPropertyPage page;
        page.setSelectedControls({&chameleon});
        QCOMPARE(slider(page, "ColorMinimum")->value(), startMinimum);
        slider(page, "ColorMaximum")->setValue(pageMaximum);
        slider(page, "ColorMinimum")->setValue(pageMinimum);
        QSignalSpy changes(&chameleon, &Kelochameleon::PropertyChanged);
        page.ApplyChanges();
        QCOMPARE(chameleon.ColorMinimum(), pageMinimum);
        QCOMPARE(chameleon.ColorMaximum(), pageMaximum);
        QCOMPARE(KeloTest::firstArguments(changes), ApplyOrder);
    }

    void intervalSnapsToHundreds_data()
    {
        QTest::addColumn<int>("set");
        QTest::addColumn<int>("snapped");
        QTest::addColumn<QString>("text");

        QTest::newRow("1599") << 1599 << 1500 << "1500 milliseconds = 1.5 seconds";
        QTest::newRow("1000") << 1000 << 1000 << "1000 milliseconds = 1 seconds";
        QTest::newRow("100") << 100 << 100 << "100 milliseconds = 0.1 seconds";
        QTest::newRow("below the slider") << 40 << 100 << "100 milliseconds = 0.1 seconds";
        QTest::newRow("10000") << 10000 << 10000 << "10000 milliseconds = 10 seconds";
    }

    void intervalSnapsToHundreds()
    {
        QFETCH(int, set);
        QFETCH(int, snapped);
        QFETCH(QString, text);

        // Set by the user...
        ChameleonPropertyPage page;
        slider(page, "Interval")->setValue(set);
        QCOMPARE(slider(page, "Interval")->value(), snapped);
        QCOMPARE(child<QLabel>(page, "labInterval")->text(), text);
        // ... or loaded from the control, and applied back snapped.
        RecordingControl control;
        control.values.insert("Interval", set);
        page.setSelectedControls({&control});
        QCOMPARE(slider(page, "Interval")->value(), snapped);
        QCOMPARE(child<QLabel>(page, "labInterval")->text(), text);
        page.ApplyChanges();
        QCOMPARE(control.interval(), snapped);
        QCOMPARE(ChameleonPropertyPage::intervalText(snapped), text);
    }

    void getThemeReloadsOrReports()
    {
        KeloTest::ScopedConfigHome config;
        MsgBoxRecorder boxes;
        Kelochameleon writer;
        writer.setObjectName(QStringLiteral("Kelochameleon1"));
        KeloTest::setProperties(&writer,
            {{"ColorMaximum", 180}, {"ColorMinimum", 90}, {"Interval", 2000}, {"ThemeName", QStringLiteral("Dusk")}});
        writer.SaveTheme();
        KeloTest::setProperties(&writer, {{"Interval", 700}, {"ThemeName", QString()}});
        writer.SaveTheme(); // as "DefaultTheme"

        Kelochameleon chameleon;
        chameleon.setObjectName(QStringLiteral("Kelochameleon1"));
        ChameleonPropertyPage page;
        page.setSelectedControls({&chameleon});
        auto *name = child<QLineEdit>(page, "txtThemeName");
        QPushButton *getTheme = page.Commands(ChameleonPropertyPage::GetThemeCommand);

        name->setText(QStringLiteral("Dusk"));
        getTheme->click();
        QCOMPARE(chameleon.ThemeName(), QStringLiteral("Dusk"));
        QCOMPARE(chameleon.Interval(), 2000);
        QVERIFY(shown(page).startsWith(QStringLiteral("90|180|10|2000|Dusk|")));
        QVERIFY(!page.changed());

        // An empty name looks for the default theme, and the page shows that name.
        name->clear();
        getTheme->click();
        QVERIFY(boxes.calls().isEmpty());
        QVERIFY(shown(page).startsWith(QStringLiteral("90|180|10|700|DefaultTheme|")));

        // A theme that is not there: one OK box, no icon, default title; the page keeps its fields.
        name->setText(QStringLiteral("Nowhere"));
        slider(page, "ColorStepRate")->setValue(33);
        QSignalSpy missing(&chameleon, &Kelochameleon::ThemeMissing);
        getTheme->click();
        QCOMPARE(missing.count(), 1);
        QCOMPARE(boxes.calls(), QStringList{"0|Error - Theme 'Nowhere' does not exist.|"});
        QVERIFY(shown(page).startsWith(QStringLiteral("90|180|33|700|Nowhere|")));
        QVERIFY(page.changed());

        // Another chameleon name has no default theme: the box names the theme looked for.
        Kelochameleon other;
        other.setObjectName(QStringLiteral("Kelochameleon2"));
        page.setSelectedControls({&other});
        name->clear();
        getTheme->click();
        QCOMPARE(boxes.calls().value(1), QStringLiteral("0|Error - Theme 'DefaultTheme' does not exist.|"));
        QCOMPARE(name->text(), QString());

        // On a recorder: the name is written, then GetTheme is called.
        RecordingControl control;
        control.themeFound = false;
        page.setSelectedControls({&control});
        name->setText(QStringLiteral("Rec"));
        page.Commands_Click(ChameleonPropertyPage::GetThemeCommand);
        QCOMPARE(control.log, (QStringList{"ThemeName=Rec", "GetTheme()"}));
        QCOMPARE(boxes.calls().value(2), QStringLiteral("0|Error - Theme 'Rec' does not exist.|"));
    }

    void saveThemeAppliesThenSaves()
    {
        RecordingControl control;
        ChameleonPropertyPage page;
        page.setSelectedControls({&control});
        slider(page, "ColorStepRate")->setValue(21);
        page.Commands(ChameleonPropertyPage::SaveThemeCommand)->click(); // an untouched field is written as well
        QCOMPARE(control.log,
            (QStringList{"ThemeIsUsed=true", "ThemeName=Ocean", "BackgroundPicture=/a.png", "ColorStepRate=21",
                "ColorMaximum=240", "ColorMinimum=10", "ColorMaximum=240", "Interval=1200", "SaveTheme()"}));
        QVERIFY(!page.changed());

        // On a real chameleon: the store holds the page's values, under the default name when empty.
        KeloTest::ScopedConfigHome config;
        Kelochameleon chameleon;
        chameleon.setObjectName(QStringLiteral("Kelochameleon1"));
        page.setSelectedControls({&chameleon});
        child<QLineEdit>(page, "txtThemeName")->clear();
        slider(page, "Interval")->setValue(3456);
        page.Commands(ChameleonPropertyPage::SaveThemeCommand)->click();
        QCOMPARE(
            GetSetting(QStringLiteral("Kelochameleon1"), QStringLiteral("DefaultTheme"), QStringLiteral("Interval")),
            QStringLiteral("3400"));
        QCOMPARE(child<QLineEdit>(page, "txtThemeName")->text(), QStringLiteral("DefaultTheme"));
        QCOMPARE(chameleon.ThemeName(), QStringLiteral("DefaultTheme"));
        QVERIFY(!page.changed());
    }

    void browseUsesTheDialogHook()
    {
        ChameleonPropertyPage page;
        RecordingControl control;
        page.setSelectedControls({&control});
        QStringList asked;
        QString answer = QStringLiteral("/pictures/new one.gif");
        const auto previous = page.setBrowseDialog(
            [&](QWidget *parent, const QString &title, const QString &fileName, const QString &filter) {
                asked << QString::number(parent == &page) << title << fileName << filter;
                return answer;
            });
        QVERIFY(!previous);
        page.Commands(ChameleonPropertyPage::BrowseCommand)->click();
        QCOMPARE(asked,
            (QStringList{"1", "Browse for background picture", "/a.png",
                "Picture files (*.bmp *.ico *.cur *.rle *.wmf *.emf *.gif *.jpg);;All files (*)"}));
        QCOMPARE(child<QLineEdit>(page, "txtBackgroundPicture")->text(), answer);
        QVERIFY(page.changed());
        QVERIFY(control.log.isEmpty());

        // Cancelled: the text stays.
        asked.clear();
        answer.clear();
        page.Commands_Click(ChameleonPropertyPage::BrowseCommand);
        QCOMPARE(asked.at(2), QStringLiteral("/pictures/new one.gif"));
        QCOMPARE(child<QLineEdit>(page, "txtBackgroundPicture")->text(), QStringLiteral("/pictures/new one.gif"));
    }

    void previewShowsOrClearsThePicture()
    {
        QTemporaryDir dir;
        const QString small = writePicture(dir, QStringLiteral("small.png"), QSize(40, 30));
        ChameleonPropertyPage page;
        auto *preview = child<QLabel>(page, "imgPreview");
        const auto previewOf = [&](const QString &file) {
            child<QLineEdit>(page, "txtBackgroundPicture")->setText(file);
            page.Commands(ChameleonPropertyPage::PreviewCommand)->click();
            return preview->pixmap();
        };
        QVERIFY(preview->pixmap().isNull());
        QCOMPARE(previewOf(small).size(), QSize(40, 30));
        QCOMPARE(preview->pixmap().toImage().pixelColor(5, 5), QColor(30, 120, 200));

        // Larger than the box: shrunk to fit, proportions kept.
        const QSize shrunk = previewOf(writePicture(dir, QStringLiteral("large.jpg"), QSize(800, 400))).size();
        QVERIFY(shrunk.width() <= preview->width() && shrunk.height() <= preview->height());
        QCOMPARE(shrunk.width(), shrunk.height() * 2);

        // Missing, not a picture, or no name at all: the preview is emptied.
        for (const QString &bad : {dir.filePath(QStringLiteral("missing.png")), dir.path(), QString()}) {
            QVERIFY(!previewOf(small).isNull());
            QVERIFY2(previewOf(bad).isNull(), qPrintable(bad));
        }
        previewOf(small);
        page.resize(page.sizeHint());
        QVERIFY(page.grab().save(QStringLiteral(KELO_BINARY_DIR "/chameleon-property-page.png")));
    }

    void fileFilterInQtForm_data()
    {
        QTest::addColumn<QString>("classic");
        QTest::addColumn<QString>("qt");

        const auto row = [](const char *name, const QString &classic, const char *qt) {
            QTest::newRow(name) << classic << QString::fromLatin1(qt);
        };
        row("pictures", QStringLiteral("Picture files|*.bmp;*.ico;*.cur;*.rle;*.wmf;*.emf;*.gif;*.jpg|All files|*.*"),
            "Picture files (*.bmp *.ico *.cur *.rle *.wmf *.emf *.gif *.jpg);;All files (*)");
        row("one pair", QStringLiteral("Text|*.txt"), "Text (*.txt)");
        row("trailing bar", QStringLiteral("Text|*.txt;*.log|"), "Text (*.txt *.log)");
        row("blanks around patterns", QStringLiteral("Text| *.txt ; *.log"), "Text (*.txt *.log)");
        row("description without patterns", QStringLiteral("Text|*.txt|Lonely"), "Text (*.txt)");
        row("empty", QString(), "");
    }

    void fileFilterInQtForm()
    {
        QFETCH(QString, classic);
        QFETCH(QString, qt);
        QCOMPARE(ChameleonPropertyPage::qtFileFilter(classic), qt);
        if (QTest::currentDataTag() == QLatin1String("pictures")) {
            QCOMPARE(ChameleonPropertyPage::pictureFilter(), classic);
        }
    }

    void missingMembersAndErrors()
    {
        MsgBoxRecorder boxes;
        ChameleonPropertyPage page;
        RecordingControl control;
        page.setSelectedControls({&control});
        slider(page, "ColorStepRate")->setValue(77);
        const auto click = [&](int command) { return errorNumberOf([&] { page.Commands_Click(command); }); };

        // An object without the properties: the page stays as it was.
        QObject plain;
        QCOMPARE(errorNumberOf([&] { page.setSelectedControls({&plain}); }), 438);
        QCOMPARE(slider(page, "ColorStepRate")->value(), 77);
        QCOMPARE(errorNumberOf([&] { page.ApplyChanges(); }), 438);
        QCOMPARE(click(ChameleonPropertyPage::SaveThemeCommand), 438);

        // A control whose GetTheme fails: the error reaches a direct caller, a click shows it.
        control.themeError = ErrorNumber::TypeMismatch;
        page.setSelectedControls({&control});
        QCOMPARE(click(ChameleonPropertyPage::GetThemeCommand), 13);
        page.Commands(ChameleonPropertyPage::GetThemeCommand)->click();
        QCOMPARE(boxes.calls(), QStringList{"16|Run-time error '13':\r\n\r\nType mismatch|"});

        // Dynamic properties serve as well; missing methods are reported.
        QObject dynamic;
        KeloTest::setProperties(&dynamic,
            {{"ColorMinimum", 100}, {"ColorMaximum", 100}, {"ColorStepRate", 100}, {"Interval", 100},
                {"ThemeName", QStringLiteral("Dyn")}, {"ThemeIsUsed", false}, {"BackgroundPicture", ""}});
        page.setSelectedControls({&dynamic});
        QCOMPARE(child<QLineEdit>(page, "txtThemeName")->text(), QStringLiteral("Dyn"));
        slider(page, "ColorStepRate")->setValue(9);
        QCOMPARE(click(ChameleonPropertyPage::GetThemeCommand), 438);
        QCOMPARE(click(ChameleonPropertyPage::SaveThemeCommand), 438);
        QCOMPARE(dynamic.property("ColorStepRate").toInt(), 9);
        QCOMPARE(click(4), ErrorNumber::SubscriptOutOfRange);
        QCOMPARE(click(-1), ErrorNumber::SubscriptOutOfRange);

        // Nothing selected: the buttons do nothing, and nothing breaks.
        page.setSelectedControls({});
        page.Commands(0)->click();
        page.Commands(1)->click();
        QCOMPARE(boxes.calls().size(), 1);
    }
};

QTEST_MAIN(TestChameleonPropertyPage)
#include "tst_chameleonpropertypage.moc"
