#include "ChameleonPropertyPage.h"
#include "Kelochameleon.h"
#include "MsgBox.h"
#include "RuntimeError.h"
#include "SettingsStore.h"

#include "KeloTestSupport.h"

#include <QCheckBox>
#include <QDir>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

// Stands in for a chameleon: the same properties, and a log of every write
// and call in order.
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

struct BoxCall
{
    QString prompt;
    int buttons = -1;
    QString title;
};

// Records every message box instead of showing it.
class MsgBoxRecorder
{
public:
    MsgBoxRecorder()
    {
        m_previous = setMsgBoxHandler([this](const QString &prompt, int buttons, const QString &title) {
            calls.append({prompt, buttons, title});
            return MsgBoxResult::OK;
        });
    }
    ~MsgBoxRecorder() { setMsgBoxHandler(m_previous); }
    QList<BoxCall> calls;

private:
    MsgBoxHandler m_previous;
};

template<typename T>
T *child(const QWidget &page, const char *name)
{
    return page.findChild<T *>(QLatin1String(name));
}

QColor swatchColour(const QWidget &page, const char *name)
{
    return child<QLabel>(page, name)->palette().color(QPalette::Window);
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
    void innerWidgetsAreNamedAndGrouped();
    void selectionLoadsThePageWithoutMarkingIt();
    void applyWritesInItsOrder();
    void everyEditMarksThePageChanged();
    void slidersKeepTheRangeInOrder();
    void applyingAnyPairOnARealChameleon_data();
    void applyingAnyPairOnARealChameleon();
    void intervalSnapsToHundreds_data();
    void intervalSnapsToHundreds();
    void getThemeReloadsOrReports();
    void saveThemeAppliesThenSaves();
    void browseUsesTheDialogHook();
    void previewShowsOrClearsThePicture();
    void fileFilterInQtForm_data();
    void fileFilterInQtForm();
    void missingMembersAndErrors();
    void rendersCleanly();
};

void TestChameleonPropertyPage::innerWidgetsAreNamedAndGrouped()
{
    ChameleonPropertyPage page;
    for (const char *name : {"sliColorMinimum", "sliColorMaximum", "sliColorStepRate", "sliInterval"}) {
        QVERIFY2(child<QSlider>(page, name), name);
    }
    for (const char *name : {"labColorMinimum", "labColorMinimumDisplay", "labColorMaximum", "labColorMaximumDisplay",
             "labColorStepRate", "labInterval", "imgPreview"}) {
        QVERIFY2(child<QLabel>(page, name), name);
    }
    QVERIFY(child<QLineEdit>(page, "txtThemeName"));
    QVERIFY(child<QLineEdit>(page, "txtBackgroundPicture"));
    QVERIFY(child<QCheckBox>(page, "chkThemeIsUsed"));
    for (int i = 0; i < ChameleonPropertyPage::CommandCount; ++i) {
        QPushButton *button = page.Commands(i);
        QVERIFY(button);
        QCOMPARE(button->objectName(), QStringLiteral("Commands_%1").arg(i));
        QCOMPARE(child<QPushButton>(page, qPrintable(button->objectName())), button);
    }
    QVERIFY(!page.Commands(-1));
    QVERIFY(!page.Commands(4));
    QStringList groups;
    for (const QGroupBox *group : page.findChildren<QGroupBox *>()) {
        groups << group->title();
    }
    QCOMPARE(groups,
        (QStringList{QStringLiteral("Colours"), QStringLiteral("Timing"), QStringLiteral("Theme"),
            QStringLiteral("Background picture")}));

    // The ranges the chameleon needs.
    const auto *minimum = child<QSlider>(page, "sliColorMinimum");
    QCOMPARE(minimum->minimum(), 0);
    QCOMPARE(minimum->maximum(), 255);
    QCOMPARE(child<QSlider>(page, "sliColorStepRate")->maximum(), 255);
    const auto *interval = child<QSlider>(page, "sliInterval");
    QCOMPARE(interval->minimum(), 100);
    QVERIFY(interval->maximum() >= 5000);
    QCOMPARE(interval->singleStep(), 100);
    // A fresh page already shows its values.
    QCOMPARE(child<QLabel>(page, "labInterval")->text(), QStringLiteral("1000 milliseconds = 1 seconds"));
    QCOMPARE(child<QLabel>(page, "labColorMinimum")->text(), QStringLiteral("0"));
    QVERIFY(!page.changed());
    QVERIFY(page.SelectedControls().isEmpty());
}

void TestChameleonPropertyPage::selectionLoadsThePageWithoutMarkingIt()
{
    RecordingControl control;
    ChameleonPropertyPage page;
    QSignalSpy changed(&page, &ChameleonPropertyPage::Changed);
    page.setSelectedControls({&control});
    QCOMPARE(page.SelectedControls(), QList<QObject *>{&control});
    QCOMPARE(child<QSlider>(page, "sliColorMinimum")->value(), 10);
    QCOMPARE(child<QSlider>(page, "sliColorMaximum")->value(), 240);
    QCOMPARE(child<QSlider>(page, "sliColorStepRate")->value(), 5);
    QCOMPARE(child<QSlider>(page, "sliInterval")->value(), 1200);
    QCOMPARE(child<QLineEdit>(page, "txtThemeName")->text(), QStringLiteral("Ocean"));
    QVERIFY(child<QCheckBox>(page, "chkThemeIsUsed")->isChecked());
    QCOMPARE(child<QLineEdit>(page, "txtBackgroundPicture")->text(), QStringLiteral("/a.png"));
    QCOMPARE(child<QLabel>(page, "labColorMinimum")->text(), QStringLiteral("10"));
    QCOMPARE(child<QLabel>(page, "labColorMaximum")->text(), QStringLiteral("240"));
    QCOMPARE(child<QLabel>(page, "labColorStepRate")->text(), QStringLiteral("5"));
    QCOMPARE(child<QLabel>(page, "labInterval")->text(), QStringLiteral("1200 milliseconds = 1.2 seconds"));
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
    QCOMPARE(child<QSlider>(page, "sliColorStepRate")->value(), 42);
    delete first;
    QCOMPARE(page.SelectedControls(), QList<QObject *>{&second});
    page.ApplyChanges(); // no first control: nothing happens
    QVERIFY(second.log.isEmpty());
}

void TestChameleonPropertyPage::applyWritesInItsOrder()
{
    RecordingControl control;
    ChameleonPropertyPage page;
    page.setSelectedControls({&control});
    child<QSlider>(page, "sliColorMinimum")->setValue(30);
    child<QSlider>(page, "sliColorMaximum")->setValue(90);
    child<QSlider>(page, "sliColorStepRate")->setValue(12);
    child<QSlider>(page, "sliInterval")->setValue(2500);
    child<QLineEdit>(page, "txtThemeName")->setText(QStringLiteral("Desert"));
    child<QCheckBox>(page, "chkThemeIsUsed")->setChecked(false);
    child<QLineEdit>(page, "txtBackgroundPicture")->setText(QStringLiteral("/pics/sand.jpg"));
    QVERIFY(page.changed());
    QVERIFY(control.log.isEmpty());

    page.ApplyChanges();
    QCOMPARE(control.log,
        (QStringList{"ThemeIsUsed=false", "ThemeName=Desert", "BackgroundPicture=/pics/sand.jpg", "ColorStepRate=12",
            "ColorMaximum=90", "ColorMinimum=30", "ColorMaximum=90", "Interval=2500"}));
    QVERIFY(!page.changed());

    // Applying an untouched page writes the same set again.
    control.log.clear();
    page.ApplyChanges();
    QCOMPARE(control.log.size(), 8);
}

void TestChameleonPropertyPage::everyEditMarksThePageChanged()
{
    RecordingControl control;
    ChameleonPropertyPage page;
    page.setSelectedControls({&control});
    QSignalSpy changed(&page, &ChameleonPropertyPage::Changed);
    const QList<std::function<void()>> edits{
        [&] { child<QSlider>(page, "sliColorMinimum")->setValue(11); },
        [&] { child<QSlider>(page, "sliColorMaximum")->setValue(200); },
        [&] { child<QSlider>(page, "sliColorStepRate")->setValue(6); },
        [&] { child<QSlider>(page, "sliInterval")->setValue(1300); },
        [&] { QTest::keyClicks(child<QLineEdit>(page, "txtThemeName"), QStringLiteral("x")); },
        [&] { QTest::keyClicks(child<QLineEdit>(page, "txtBackgroundPicture"), QStringLiteral("x")); },
        [&] { child<QCheckBox>(page, "chkThemeIsUsed")->click(); },
    };
    for (int i = 0; i < edits.size(); ++i) {
        page.SelectionChanged();
        changed.clear();
        QVERIFY(!page.changed());
        edits.at(i)();
        QVERIFY2(page.changed(), qPrintable(QString::number(i)));
        QVERIFY2(changed.count() >= 1, qPrintable(QString::number(i)));
    }
    page.setChanged(false);
    QVERIFY(!page.changed());
}

void TestChameleonPropertyPage::slidersKeepTheRangeInOrder()
{
    RecordingControl control;
    control.values.insert("ColorMinimum", 50);
    control.values.insert("ColorMaximum", 100);
    ChameleonPropertyPage page;
    page.setSelectedControls({&control});
    auto *minimum = child<QSlider>(page, "sliColorMinimum");
    auto *maximum = child<QSlider>(page, "sliColorMaximum");

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
    control.log.clear();
    page.ApplyChanges();
    QVERIFY(control.log.contains(QStringLiteral("ColorMinimum=77")));
    QCOMPARE(control.colorMinimum(), 77);
    QCOMPARE(control.colorMaximum(), 77);

    // A hand-edited pair out of order loads as an equal pair.
    control.values.insert("ColorMinimum", 200);
    control.values.insert("ColorMaximum", 100);
    page.SelectionChanged();
    QCOMPARE(minimum->value(), maximum->value());
    QVERIFY(!page.changed());
}

void TestChameleonPropertyPage::applyingAnyPairOnARealChameleon_data()
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

void TestChameleonPropertyPage::applyingAnyPairOnARealChameleon()
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
    QCOMPARE(child<QSlider>(page, "sliColorMinimum")->value(), startMinimum);
    child<QSlider>(page, "sliColorMaximum")->setValue(pageMaximum);
    child<QSlider>(page, "sliColorMinimum")->setValue(pageMinimum);
    QSignalSpy changes(&chameleon, &Kelochameleon::PropertyChanged);
    page.ApplyChanges();
    QCOMPARE(chameleon.ColorMinimum(), pageMinimum);
    QCOMPARE(chameleon.ColorMaximum(), pageMaximum);
    QStringList names;
    for (const QList<QVariant> &change : changes) {
        names << change.at(0).toString();
    }
    QCOMPARE(names,
        (QStringList{"ThemeIsUsed", "ThemeName", "BackgroundPicture", "ColorStepRate", "ColorMaximum", "ColorMinimum",
            "ColorMaximum", "Interval"}));
}

void TestChameleonPropertyPage::intervalSnapsToHundreds_data()
{
    QTest::addColumn<int>("set");
    QTest::addColumn<int>("shown");
    QTest::addColumn<QString>("text");

    QTest::newRow("1550") << 1550 << 1500 << "1500 milliseconds = 1.5 seconds";
    QTest::newRow("1500") << 1500 << 1500 << "1500 milliseconds = 1.5 seconds";
    QTest::newRow("1599") << 1599 << 1500 << "1500 milliseconds = 1.5 seconds";
    QTest::newRow("2399") << 2399 << 2300 << "2300 milliseconds = 2.3 seconds";
    QTest::newRow("1000") << 1000 << 1000 << "1000 milliseconds = 1 seconds";
    QTest::newRow("100") << 100 << 100 << "100 milliseconds = 0.1 seconds";
    QTest::newRow("199") << 199 << 100 << "100 milliseconds = 0.1 seconds";
    QTest::newRow("below the slider") << 40 << 100 << "100 milliseconds = 0.1 seconds";
    QTest::newRow("10000") << 10000 << 10000 << "10000 milliseconds = 10 seconds";
}

void TestChameleonPropertyPage::intervalSnapsToHundreds()
{
    QFETCH(int, set);
    QFETCH(int, shown);
    QFETCH(QString, text);

    // Set by the user...
    ChameleonPropertyPage page;
    auto *slider = child<QSlider>(page, "sliInterval");
    slider->setValue(set);
    QCOMPARE(slider->value(), shown);
    QCOMPARE(child<QLabel>(page, "labInterval")->text(), text);
    // ... or loaded from the control, and applied back snapped.
    RecordingControl control;
    control.values.insert("Interval", set);
    page.setSelectedControls({&control});
    QCOMPARE(slider->value(), shown);
    QCOMPARE(child<QLabel>(page, "labInterval")->text(), text);
    page.ApplyChanges();
    QCOMPARE(control.interval(), shown);
    QCOMPARE(ChameleonPropertyPage::intervalText(shown), text);
}

void TestChameleonPropertyPage::getThemeReloadsOrReports()
{
    QTemporaryDir config;
    const QByteArray savedXdg = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    MsgBoxRecorder boxes;

    Kelochameleon writer;
    writer.setObjectName(QStringLiteral("Kelochameleon1"));
    writer.setColorMaximum(180);
    writer.setColorMinimum(90);
    writer.setInterval(2000);
    writer.setThemeName(QStringLiteral("Dusk"));
    writer.SaveTheme();
    writer.setInterval(700);
    writer.setThemeName(QString());
    writer.SaveTheme(); // as "DefaultTheme"

    Kelochameleon chameleon;
    chameleon.setObjectName(QStringLiteral("Kelochameleon1"));
    ChameleonPropertyPage page;
    page.setSelectedControls({&chameleon});
    auto *name = child<QLineEdit>(page, "txtThemeName");

    name->setText(QStringLiteral("Dusk"));
    page.Commands(ChameleonPropertyPage::GetThemeCommand)->click();
    QVERIFY(boxes.calls.isEmpty());
    QCOMPARE(chameleon.ThemeName(), QStringLiteral("Dusk"));
    QCOMPARE(chameleon.Interval(), 2000);
    QCOMPARE(child<QSlider>(page, "sliInterval")->value(), 2000);
    QCOMPARE(child<QSlider>(page, "sliColorMinimum")->value(), 90);
    QCOMPARE(child<QSlider>(page, "sliColorMaximum")->value(), 180);
    QVERIFY(!page.changed());

    // An empty name looks for the default theme, and the page shows that name.
    name->clear();
    page.Commands(ChameleonPropertyPage::GetThemeCommand)->click();
    QVERIFY(boxes.calls.isEmpty());
    QCOMPARE(name->text(), QStringLiteral("DefaultTheme"));
    QCOMPARE(child<QSlider>(page, "sliInterval")->value(), 700);

    // A theme that is not there: one OK box, no icon, default title; the page keeps its fields.
    name->setText(QStringLiteral("Nowhere"));
    child<QSlider>(page, "sliColorStepRate")->setValue(33);
    QSignalSpy missing(&chameleon, &Kelochameleon::ThemeMissing);
    page.Commands(ChameleonPropertyPage::GetThemeCommand)->click();
    QCOMPARE(missing.count(), 1);
    QCOMPARE(boxes.calls.size(), 1);
    QCOMPARE(boxes.calls.at(0).prompt, QStringLiteral("Error - Theme 'Nowhere' does not exist."));
    QCOMPARE(boxes.calls.at(0).buttons, 0);
    QCOMPARE(boxes.calls.at(0).title, QString());
    QCOMPARE(name->text(), QStringLiteral("Nowhere"));
    QCOMPARE(child<QSlider>(page, "sliColorStepRate")->value(), 33);
    QCOMPARE(child<QSlider>(page, "sliInterval")->value(), 700);
    QVERIFY(page.changed());

    // Another chameleon name has no default theme: the box names the theme looked for.
    Kelochameleon other;
    other.setObjectName(QStringLiteral("Kelochameleon2"));
    page.setSelectedControls({&other});
    name->clear();
    page.Commands(ChameleonPropertyPage::GetThemeCommand)->click();
    QCOMPARE(boxes.calls.size(), 2);
    QCOMPARE(boxes.calls.at(1).prompt, QStringLiteral("Error - Theme 'DefaultTheme' does not exist."));
    QCOMPARE(name->text(), QString());

    // On a recorder: the name is written, then GetTheme is called.
    RecordingControl control;
    control.themeFound = false;
    page.setSelectedControls({&control});
    name->setText(QStringLiteral("Rec"));
    page.Commands_Click(ChameleonPropertyPage::GetThemeCommand);
    QCOMPARE(control.log, (QStringList{"ThemeName=Rec", "GetTheme()"}));
    QCOMPARE(boxes.calls.last().prompt, QStringLiteral("Error - Theme 'Rec' does not exist."));

    qputenv("XDG_CONFIG_HOME", savedXdg);
}

void TestChameleonPropertyPage::saveThemeAppliesThenSaves()
{
    RecordingControl control;
    ChameleonPropertyPage page;
    page.setSelectedControls({&control});
    child<QSlider>(page, "sliColorStepRate")->setValue(21);
    page.Commands(ChameleonPropertyPage::SaveThemeCommand)->click();
    QCOMPARE(control.log,
        (QStringList{"ThemeIsUsed=true", "ThemeName=Ocean", "BackgroundPicture=/a.png", "ColorStepRate=21",
            "ColorMaximum=240", "ColorMinimum=10", "ColorMaximum=240", "Interval=1200", "SaveTheme()"}));
    QVERIFY(!page.changed());

    // On a real chameleon: the store holds the page's values, under the default name when empty.
    QTemporaryDir config;
    const QByteArray savedXdg = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
    Kelochameleon chameleon;
    chameleon.setObjectName(QStringLiteral("Kelochameleon1"));
    page.setSelectedControls({&chameleon});
    child<QLineEdit>(page, "txtThemeName")->clear();
    child<QSlider>(page, "sliInterval")->setValue(3456);
    page.Commands(ChameleonPropertyPage::SaveThemeCommand)->click();
    QCOMPARE(GetSetting(QStringLiteral("Kelochameleon1"), QStringLiteral("DefaultTheme"), QStringLiteral("Interval")),
        QStringLiteral("3400"));
    QCOMPARE(child<QLineEdit>(page, "txtThemeName")->text(), QStringLiteral("DefaultTheme"));
    QCOMPARE(chameleon.ThemeName(), QStringLiteral("DefaultTheme"));
    QVERIFY(!page.changed());
    qputenv("XDG_CONFIG_HOME", savedXdg);
}

void TestChameleonPropertyPage::browseUsesTheDialogHook()
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
    QCOMPARE(ChameleonPropertyPage::pictureFilter(),
        QStringLiteral("Picture files|*.bmp;*.ico;*.cur;*.rle;*.wmf;*.emf;*.gif;*.jpg|All files|*.*"));
}

void TestChameleonPropertyPage::previewShowsOrClearsThePicture()
{
    QTemporaryDir dir;
    const QString small = writePicture(dir, QStringLiteral("small.png"), QSize(40, 30));
    const QString large = writePicture(dir, QStringLiteral("large.jpg"), QSize(800, 400));
    ChameleonPropertyPage page;
    auto *path = child<QLineEdit>(page, "txtBackgroundPicture");
    auto *preview = child<QLabel>(page, "imgPreview");
    QVERIFY(preview->pixmap().isNull());

    path->setText(small);
    page.Commands(ChameleonPropertyPage::PreviewCommand)->click();
    QCOMPARE(preview->pixmap().size(), QSize(40, 30));
    QCOMPARE(preview->pixmap().toImage().pixelColor(5, 5), QColor(30, 120, 200));

    // Larger than the box: shrunk to fit, proportions kept.
    path->setText(large);
    page.Commands(ChameleonPropertyPage::PreviewCommand)->click();
    const QSize shown = preview->pixmap().size();
    QVERIFY(shown.width() <= preview->width() && shown.height() <= preview->height());
    QCOMPARE(shown.width(), shown.height() * 2);

    // Missing, not a picture, or no name at all: the preview is emptied.
    for (const QString &bad : {dir.filePath(QStringLiteral("missing.png")), dir.path(), QString()}) {
        path->setText(small);
        page.Commands(ChameleonPropertyPage::PreviewCommand)->click();
        QVERIFY(!preview->pixmap().isNull());
        path->setText(bad);
        page.Commands(ChameleonPropertyPage::PreviewCommand)->click();
        QVERIFY2(preview->pixmap().isNull(), qPrintable(bad));
    }
}

void TestChameleonPropertyPage::fileFilterInQtForm_data()
{
    QTest::addColumn<QString>("classic");
    QTest::addColumn<QString>("qt");

    const auto row = [](const char *name, const QString &classic, const char *qt) {
        QTest::newRow(name) << classic << QString::fromLatin1(qt);
    };
    row("pictures", ChameleonPropertyPage::pictureFilter(),
        "Picture files (*.bmp *.ico *.cur *.rle *.wmf *.emf *.gif *.jpg);;All files (*)");
    row("one pair", QStringLiteral("Text|*.txt"), "Text (*.txt)");
    row("trailing bar", QStringLiteral("Text|*.txt;*.log|"), "Text (*.txt *.log)");
    row("blanks around patterns", QStringLiteral("Text| *.txt ; *.log"), "Text (*.txt *.log)");
    row("description without patterns", QStringLiteral("Text|*.txt|Lonely"), "Text (*.txt)");
    row("empty", QString(), "");
}

void TestChameleonPropertyPage::fileFilterInQtForm()
{
    QFETCH(QString, classic);
    QFETCH(QString, qt);
    QCOMPARE(ChameleonPropertyPage::qtFileFilter(classic), qt);
}

void TestChameleonPropertyPage::missingMembersAndErrors()
{
    MsgBoxRecorder boxes;
    ChameleonPropertyPage page;
    RecordingControl control;
    page.setSelectedControls({&control});
    child<QSlider>(page, "sliColorStepRate")->setValue(77);

    // An object without the properties: the page stays as it was.
    QObject plain;
    QCOMPARE(errorNumberOf([&] { page.setSelectedControls({&plain}); }), 438);
    QCOMPARE(child<QSlider>(page, "sliColorStepRate")->value(), 77);
    QCOMPARE(errorNumberOf([&] { page.ApplyChanges(); }), 438);
    QCOMPARE(errorNumberOf([&] { page.Commands_Click(ChameleonPropertyPage::SaveThemeCommand); }), 438);

    // A control whose GetTheme fails: the error reaches a direct caller, a click shows it.
    control.themeError = ErrorNumber::TypeMismatch;
    page.setSelectedControls({&control});
    QCOMPARE(errorNumberOf([&] { page.Commands_Click(ChameleonPropertyPage::GetThemeCommand); }), 13);
    page.Commands(ChameleonPropertyPage::GetThemeCommand)->click();
    QCOMPARE(boxes.calls.size(), 1);
    QCOMPARE(boxes.calls.at(0).prompt, QStringLiteral("Run-time error '13':\r\n\r\nType mismatch"));
    QCOMPARE(boxes.calls.at(0).buttons, 16);

    // Dynamic properties serve as well; missing methods are reported.
    QObject dynamic;
    for (const char *name : {"ColorMinimum", "ColorMaximum", "ColorStepRate", "Interval"}) {
        dynamic.setProperty(name, 100);
    }
    dynamic.setProperty("ThemeName", QStringLiteral("Dyn"));
    dynamic.setProperty("ThemeIsUsed", false);
    dynamic.setProperty("BackgroundPicture", QString());
    page.setSelectedControls({&dynamic});
    QCOMPARE(child<QLineEdit>(page, "txtThemeName")->text(), QStringLiteral("Dyn"));
    child<QSlider>(page, "sliColorStepRate")->setValue(9);
    QCOMPARE(errorNumberOf([&] { page.Commands_Click(ChameleonPropertyPage::GetThemeCommand); }), 438);
    QCOMPARE(errorNumberOf([&] { page.Commands_Click(ChameleonPropertyPage::SaveThemeCommand); }), 438);
    QCOMPARE(dynamic.property("ColorStepRate").toInt(), 9);
    QCOMPARE(errorNumberOf([&] { page.Commands_Click(4); }), ErrorNumber::SubscriptOutOfRange);
    QCOMPARE(errorNumberOf([&] { page.Commands_Click(-1); }), ErrorNumber::SubscriptOutOfRange);

    // Nothing selected: the buttons do nothing, and nothing breaks.
    page.setSelectedControls({});
    for (int i = 0; i < 2; ++i) {
        page.Commands(i)->click();
    }
    QCOMPARE(boxes.calls.size(), 1);
}

void TestChameleonPropertyPage::rendersCleanly()
{
    RecordingControl control;
    control.values.insert("ColorMinimum", 96);
    control.values.insert("ColorMaximum", 220);
    control.values.insert("Interval", 1500);
    QTemporaryDir dir;
    const QString picturePath = writePicture(dir, QStringLiteral("dusk.png"), QSize(320, 200));
    control.values.insert("BackgroundPicture", picturePath);

    ChameleonPropertyPage page;
    page.setSelectedControls({&control});
    page.resize(page.sizeHint());
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    page.Commands(ChameleonPropertyPage::PreviewCommand)->click();
    QVERIFY(!child<QLabel>(page, "imgPreview")->pixmap().isNull());
    const QImage image = page.grab().toImage();
    QCOMPARE(image.size(), page.size());
    // Every inner widget lies inside the page.
    for (const QWidget *widget : page.findChildren<QWidget *>()) {
        const QRect area(widget->mapTo(&page, QPoint(0, 0)), widget->size());
        QVERIFY2(page.rect().contains(area), qPrintable(widget->objectName()));
    }
    const QString shot = QStringLiteral(KELO_BINARY_DIR "/chameleon-property-page.png");
    QVERIFY(image.save(shot));
}

QTEST_MAIN(TestChameleonPropertyPage)
#include "tst_chameleonpropertypage.moc"
