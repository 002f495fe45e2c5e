// The chameleon as a host drives it: properties and persistence, the look it
// gives a form and the form's controls, its timer, its picture and its wand.

#include "ColorEngine_p.h"
#include "ControlAccess_p.h"
#include "FormPictureLayer_p.h"
#include "Kelochameleon.h"
#include "KelolistBox.h"
#include "KeloscoreCard.h"
#include "PropertyBag.h"
#include "Random.h"
#include "RuntimeError.h"
#include "WandPool_p.h"

#include "KeloTestSupport.h"

#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;

namespace {

const QStringList PersistedOrder{"ColorMinimum", "ColorMaximum", "ColorStepRate", "Enabled", "BackgroundStyle",
    "WandStyle", "NewBackColor", "Interval", "FontStyle", "NewFont", "BackgroundPicture", "BackgroundPictureStyle",
    "ThemeName", "ThemeIsUsed", "MouseIcon", "WandFollowsMouse"};
const QColor Red(255, 0, 0);
const QColor Blue(0, 0, 255);

void tick(Kelochameleon *chameleon, int times = 1)
{
    QVERIFY(KeloTest::fireTimer(chameleon, QStringLiteral("Timer1"), times));
}

bool timerRuns(const Kelochameleon *chameleon)
{
    return chameleon->findChild<QTimer *>(QStringLiteral("Timer1"))->isActive();
}

QColor windowColour(const QWidget *widget)
{
    return widget->palette().color(QPalette::Window);
}

// The colour each control reports, as hexadecimal texts for one comparison.
QStringList backsOf(const QList<QObject *> &controls)
{
    QStringList colours;
    for (QObject *control : controls) {
        colours << QString::number(ControlAccess::backColor(control), 16);
    }
    return colours;
}

// How many copies of the background picture the chameleon painted on its form.
int pictureCopies(const Kelochameleon *chameleon)
{
    return chameleon->findChild<FormPictureLayer *>(QStringLiteral("BackgroundLayer"))->copies();
}

// 100 x 100 red pixels with a blue top-left pixel that marks where each copy begins.
QString writeMarkedPicture(const QTemporaryDir &dir)
{
    QImage image(100, 100, QImage::Format_RGB32);
    image.fill(Red);
    image.setPixelColor(0, 0, Blue);
    const QString path = dir.filePath(QStringLiteral("marked.png"));
    image.save(path);
    return path;
}

// A 250 x 250 form with a chameleon named Kelochameleon1, not shown yet.
struct Form
{
    std::unique_ptr<QWidget> widget = std::make_unique<QWidget>();
    Kelochameleon *chameleon = new Kelochameleon(widget.get());

    Form()
    {
        widget->resize(250, 250);
        chameleon->setObjectName(QStringLiteral("Kelochameleon1"));
    }

    void fixedColour(OleColor colour)
    {
        chameleon->setBackgroundStyle(keloBackgroundStyle::FixedColor);
        chameleon->setNewBackColor(colour);
    }

    void changeFont(const QFont &font)
    {
        chameleon->setFontStyle(keloFontStyle::ChangeFont);
        chameleon->setNewFont(font);
    }

    void picture(const QString &path, keloPictureStyle style)
    {
        chameleon->setBackgroundStyle(keloBackgroundStyle::Picture);
        chameleon->setBackgroundPicture(path);
        chameleon->setBackgroundPictureStyle(style);
    }
    QImage shot() const { return widget->grab().toImage(); }
    bool markerAt(int x, int y) const { return shot().pixelColor(x, y) == Blue; }
};

} // namespace

class TestKelochameleon : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { resetRandomGenerator(); }
    void cleanup()
    {
        WandPool::shared().reset();
        resetRandomGenerator();
    }

    void helpStringsAndAmbientFont()
    {
        const QStringList members{"ColorMinimum", "ColorMaximum", "ColorStepRate", "Enabled", "BackgroundStyle",
            "WandStyle", "NewBackColor", "Interval", "FontStyle", "NewFont", "BackgroundPicture",
            "BackgroundPictureStyle", "ThemeName", "ThemeIsUsed", "MouseIcon", "WandFollowsMouse", "WandMovement",
            "SaveTheme", "GetTheme", "ThemeMissing"};
        QStringList help;
        for (const QString &member : members) {
            help << KeloTest::helpString(Kelochameleon::staticMetaObject, member);
        }
        QCOMPARE(help,
            (QStringList{"The mimumum RGB value for the color settings", "The maximum value for the RGB color setting",
                "The maximum rate at which the color changes for each step",
                "Returns/sets a value that determines whether an object can respond to user-generated events.",
                "Style to be set for the background of the form and controls", "Style to be used for the wand",
                "Background colour to be set for all controls", "Interval for the color step.",
                "The style of font to be applied to the form.", "New font to replace font on form",
                "Picture to be displayed on the background of the form",
                "Change the appearance of the background picture if used.", "Name of the current theme",
                "If set to TRUE a theme is read when the control is shown at run time.", "Sets a custom mouse icon.",
                "If set to TRUE the wand follows the mouse over the form without calls to WandMovement.",
                "Called from controls MouseMove event", "Saves the chameleon settings as a theme.",
                "Gets a theme from the system",
                "Fires when the ThemeIsUsed flag is set TRUE or when the GetTheme method invoked and the theme can "
                "not be found."}));
        QCOMPARE(KeloTest::classInfo(Kelochameleon::staticMetaObject, "DispId:ThemeMissing"), QStringLiteral("1"));
        // The new font starts as the form's (every other default is the property table's).
        QWidget form;
        form.setFont(QFont(QStringLiteral("DejaVu Serif"), 13));
        QCOMPARE(Kelochameleon(&form).NewFont(), form.font());
    }

    void persistenceKeepsOrderSkipsDefaultsAndReportsEveryWrite()
    {
        QWidget form;
        Kelochameleon chameleon(&form);
        QCOMPARE(chameleon.findChild<QTimer *>(QStringLiteral("Timer1"))->interval(), 100);
        QVERIFY(chameleon.findChild<QWidget *>(QStringLiteral("picBackground")));
        PropertyBag empty;
        chameleon.WriteProperties(empty);
        QVERIFY(empty.isEmpty());

        QPixmap icon(8, 8);
        icon.fill(Qt::green);
        const QVariantMap values{{"ColorMinimum", 50}, {"ColorMaximum", 200}, {"ColorStepRate", 3}, {"Enabled", false},
            {"BackgroundStyle", 4}, {"WandStyle", 5}, {"NewBackColor", 0x8000000Fu}, {"Interval", 500},
            {"FontStyle", 1}, {"NewFont", QFont(QStringLiteral("DejaVu Sans Mono"), 9)},
            {"BackgroundPicture", QStringLiteral("/pictures/tile.png")}, {"BackgroundPictureStyle", 8},
            {"ThemeName", QString()}, {"ThemeIsUsed", true}, {"MouseIcon", icon}, {"WandFollowsMouse", true}};
        // The maximum first, so that the minimum is not clamped below it. Every
        // write reports its exact name; late-bound enumerations take numbers.
        chameleon.setColorMaximum(200);
        QSignalSpy changes(&chameleon, &Kelochameleon::PropertyChanged);
        for (auto it = values.cbegin(); it != values.cend(); ++it) {
            QVERIFY2(chameleon.setProperty(it.key().toLatin1().constData(), it.value()), qPrintable(it.key()));
        }
        QCOMPARE(KeloTest::firstArguments(changes), values.keys());
        QCOMPARE(chameleon.BackgroundStyle(), keloBackgroundStyle::Picture);
        PropertyBag bag;
        chameleon.WriteProperties(bag);
        QCOMPARE(bag.names(), PersistedOrder);

        // Through the text form and back into a fresh control, which saves the
        // same bag again: no value is lost or changed on the way.
        const PropertyBag reread = PropertyBag::fromText(bag.toText());
        Kelochameleon copy(&form);
        copy.ReadProperties(reread);
        QCOMPARE(copy.MouseIcon().toImage(), icon.toImage());
        PropertyBag again;
        copy.WriteProperties(again);
        QCOMPARE(again, reread);
    }

    void loadingKeepsValuesUnclampedAndRejectsBadOnes()
    {
        QWidget form;
        Kelochameleon chameleon(&form);
        const auto read = [&](const QVariantMap &values) {
            PropertyBag bag;
            for (auto it = values.cbegin(); it != values.cend(); ++it) {
                bag.WriteProperty(it.key(), it.value());
            }
            return errorNumberOf([&] { chameleon.ReadProperties(bag); });
        };
        QCOMPARE(read({{"ColorMinimum", 200}, {"ColorMaximum", 100}, {"ColorStepRate", 999}, {"BackgroundStyle", 7},
                     {"NewBackColor", -2147483643}}),
            0);
        QCOMPARE(KeloTest::propertyTexts(
                     &chameleon, {"ColorMinimum", "ColorMaximum", "ColorStepRate", "BackgroundStyle", "NewBackColor"}),
            (QStringList{"ColorMinimum=200", "ColorMaximum=100", "ColorStepRate=999", "BackgroundStyle=7",
                "NewBackColor=2147483653"}));

        // With loaded bounds out of range the clamping keeps its order: below the
        // lower bound first, then above the upper one, so the upper bound wins.
        const QVariantMap wide{{"ColorMinimum", 300}, {"ColorMaximum", -5}};
        read(wide);
        chameleon.setColorMaximum(10); // between 300 and 255
        QCOMPARE(chameleon.ColorMaximum(), 255);
        read(wide);
        chameleon.setColorMinimum(3); // between 0 and -5
        QCOMPARE(chameleon.ColorMinimum(), -5);

        QCOMPARE((QList<int>{read({{"Interval", QStringLiteral("soon")}}), read({{"ColorMaximum", 70000}}),
                     read({{"NewFont", 12}}), read({{"WandFollowsMouse", QStringLiteral("maybe")}})}),
            (QList<int>{13, 6, 13, 13}));
    }

    void colourBoundsClampInTheOrderTheyAreSet_data()
    {
        QTest::addColumn<QStringList>("writes");
        QTest::addColumn<QString>("bounds"); // minimum maximum step rate

        QTest::newRow("minimum 300 under maximum 255") << QStringList{"ColorMinimum=300"} << "255 255 10";
        QTest::newRow("maximum -5 over minimum 0") << QStringList{"ColorMaximum=-5"} << "0 0 10";
        QTest::newRow("step rate 1000") << QStringList{"ColorStepRate=1000"} << "0 255 255";
        QTest::newRow("step rate -1") << QStringList{"ColorStepRate=-1"} << "0 255 0";
        QTest::newRow("minimum -10") << QStringList{"ColorMinimum=-10"} << "0 255 10";
        QTest::newRow("maximum 999") << QStringList{"ColorMaximum=999"} << "0 255 10";
        QTest::newRow("maximum, minimum, maximum again") << QStringList{"ColorMaximum=100", "ColorMinimum=150",
            "ColorMaximum=200", "ColorMinimum=150"} << "150 200 10";
    }

    void colourBoundsClampInTheOrderTheyAreSet()
    {
        QFETCH(QStringList, writes);
        QFETCH(QString, bounds);

        Kelochameleon chameleon;
        for (const QString &write : writes) {
            QVERIFY(chameleon.setProperty(
                qPrintable(write.section(QLatin1Char('='), 0, 0)), write.section('=', 1).toInt()));
        }
        const auto current = [&] {
            return QStringLiteral("%1 %2 %3")
                .arg(chameleon.ColorMinimum())
                .arg(chameleon.ColorMaximum())
                .arg(chameleon.ColorStepRate());
        };
        QCOMPARE(current(), bounds);
        // Beyond 16 bits the value cannot even be an Integer.
        QCOMPARE(errorNumberOf([&] { chameleon.setColorMinimum(40000); }), ErrorNumber::Overflow);
        QCOMPARE(errorNumberOf([&] { chameleon.setInterval(-40000); }), ErrorNumber::Overflow);
        QCOMPARE(current(), bounds);
    }

    void designTimeFaceAndRunTimeSize()
    {
        QWidget form;
        form.resize(100, 100);
        Kelochameleon *chameleon = nullptr;
        {
            ControlBase::DesignModeScope designer;
            chameleon = new Kelochameleon(&form);
        }
        chameleon->setGeometry(10, 10, 50, 40);
        QCOMPARE(chameleon->size(), QSize(16, 16));
        QCOMPARE(chameleon->sizeHint(), QSize(16, 16));
        form.show();
        QVERIFY(!timerRuns(chameleon));
        QImage face = chameleon->grab().toImage();
        QCOMPARE(face.size(), QSize(16, 16));
        QVERIFY(face.pixelColor(0, 0) != Red);
        // Disabled, the face is crossed out in red from corner to corner.
        chameleon->setEnabled(false);
        face = chameleon->grab().toImage();
        for (int i = 0; i < 16; ++i) {
            QCOMPARE(face.pixelColor(i, i), Red);
            QCOMPARE(face.pixelColor(i, 15 - i), Red);
        }
        QVERIFY(face.pixelColor(8, 2) != Red);
        // Showing again in design mode keeps the timer off and the form untouched.
        chameleon->setEnabled(true);
        chameleon->setBackgroundStyle(keloBackgroundStyle::FixedColor);
        chameleon->Refresh();
        QVERIFY(!form.autoFillBackground());
        QVERIFY(!timerRuns(chameleon));

        // At run time it takes no room, whatever it is given.
        chameleon->setUserMode(true);
        chameleon->setGeometry(5, 5, 120, 80);
        QCOMPARE(chameleon->size(), QSize(0, 0));
        QCOMPARE(chameleon->sizeHint(), QSize(0, 0));
    }

    void timerRunsOnlyWhileEnabledAtRunTime()
    {
        Form form;
        auto *label = new QLabel(QStringLiteral("Name"), form.widget.get());
        form.fixedColour(0x00336699);
        form.changeFont(QFont(QStringLiteral("DejaVu Serif"), 30));
        form.chameleon->setEnabled(false);
        const QFont labelFont = label->font();

        // Disabled: the form is never touched and the timer stays off.
        form.widget->show();
        tick(form.chameleon, 20);
        QVERIFY(!form.widget->autoFillBackground() && !label->autoFillBackground());
        QCOMPARE(label->font(), labelFont);
        QVERIFY(!timerRuns(form.chameleon));

        form.chameleon->setEnabled(true);
        QVERIFY(!timerRuns(form.chameleon)); // until it is shown again
        form.chameleon->Refresh();
        QVERIFY(timerRuns(form.chameleon));
        QCOMPARE(windowColour(label), toQColor(0x00336699));
        form.chameleon->setEnabled(false);
        form.chameleon->Refresh();
        QVERIFY(!timerRuns(form.chameleon));
    }

    void backgroundStyles_data()
    {
        QTest::addColumn<int>("style");
        QTest::addColumn<uint>("colour"); // 0: the form is not coloured

        QTest::newRow("None") << int(keloBackgroundStyle::None) << 0u;
        QTest::newRow("SystemDefault") << int(keloBackgroundStyle::SystemDefault) << 0x8000000Fu;
        QTest::newRow("FixedColor") << int(keloBackgroundStyle::FixedColor) << 0x00204060u;
        QTest::newRow("Picture without one") << int(keloBackgroundStyle::Picture) << 0u;
    }

    // What each style gives the form, and that ticks change nothing but the varied colour.
    void backgroundStyles()
    {
        QFETCH(int, style);
        QFETCH(uint, colour);

        Form form;
        auto *label = new QLabel(form.widget.get());
        form.chameleon->setBackgroundStyle(keloBackgroundStyle(style));
        form.chameleon->setNewBackColor(0x00204060);
        form.chameleon->setInterval(0);
        form.widget->show();
        QCOMPARE(form.widget->autoFillBackground(), colour != 0);
        QCOMPARE(label->autoFillBackground(), colour != 0);
        if (colour != 0) {
            QCOMPARE(form.chameleon->backColor(), OleColor(colour));
            QCOMPARE(windowColour(label), toQColor(colour));
        }
        QCOMPARE(WandPool::shared().pictureMode(), style == int(keloBackgroundStyle::Picture));

        QPalette own = form.widget->palette();
        own.setColor(QPalette::Window, Qt::yellow);
        form.widget->setPalette(own);
        tick(form.chameleon, 15);
        QCOMPARE(windowColour(form.widget.get()), QColor(Qt::yellow));
    }

    // The pass colours the form and its controls depth first: controls at the
    // window colour keep it, one named like the chameleon is passed over, and
    // the first timer, however deep, ends the pass; the font reaches them all.
    void colouringPassAndFont()
    {
        Form form;
        QWidget *f = form.widget.get();
        auto *text = new QLineEdit(f);
        auto *label = new QLabel(QStringLiteral("Name"), f);
        auto *namesake = new QLabel(f);
        namesake->setObjectName(QStringLiteral("Kelochameleon1"));
        auto *card = new KeloscoreCard(new QGroupBox(QStringLiteral("Group"), f));
        auto *list = new KelolistBox(new QFrame(f));
        list->setBackColor(0x00FFFFFF); // white, but not the window colour it keeps
        auto *box = new QGroupBox(f);
        auto *before = new QLabel(box);
        new QTimer(box);
        auto *after = new QLabel(box);
        auto *outside = new QLabel(f);
        auto *lateCard = new KeloscoreCard(f);
        text->setGeometry(10, 10, 100, 24);
        label->setGeometry(10, 50, 100, 24);
        const QFont bold(QStringLiteral("DejaVu Serif"), 19, QFont::Bold);
        form.fixedColour(0x00336699);
        form.changeFont(bold);
        form.widget->show();

        const QColor colour = toQColor(0x00336699);
        QCOMPARE(windowColour(f), colour);
        QCOMPARE(backsOf({text, label, card, list, before, after, outside, lateCard}),
            (QStringList{"80000005", "336699", "336699", "336699", "336699", "8000000f", "8000000f", "8000000f"}));
        QVERIFY(!namesake->autoFillBackground());
        for (QWidget *widget : QList<QWidget *>{f, label, before, after, outside}) {
            QCOMPARE(widget->font(), bold);
        }
        QCOMPARE((QList<QFont>{card->Font(), list->Font(), lateCard->Font()}), (QList<QFont>{bold, bold, bold}));
        // What the form shows: the text box keeps its white face.
        const QImage shot = form.shot();
        QCOMPARE(shot.pixelColor(label->geometry().topRight() + QPoint(-2, 2)), colour);
        QCOMPARE(shot.pixelColor(text->geometry().topRight() + QPoint(-4, 4)), text->palette().color(QPalette::Base));
        QCOMPARE(shot.pixelColor(f->width() - 2, f->height() - 2), colour);

        // Any other font style changes nothing, and restores nothing.
        form.chameleon->setNewFont(QFont(QStringLiteral("DejaVu Sans"), 7));
        form.chameleon->setFontStyle(keloFontStyle::None);
        form.chameleon->Refresh();
        QCOMPARE(outside->font(), bold);
        QCOMPARE(lateCard->Font(), bold);

        // An unnamed chameleon is told apart from unnamed controls by identity.
        Form second;
        second.chameleon->setObjectName(QString());
        auto *plain = new QLabel(second.widget.get());
        second.fixedColour(0x00040506);
        second.widget->show();
        QCOMPARE(backsOf({plain}), QStringList{"40506"});
    }

    void variedColourDriftsFromTheFixedSequence()
    {
        Form form;
        auto *label = new QLabel(form.widget.get());
        KeloTest::setProperties(form.chameleon,
            {{"BackgroundStyle", 3}, {"ColorMinimum", 40}, {"ColorMaximum", 220}, {"ColorStepRate", 25}});
        ColorEngine reference;
        const ColorRange range{40, 220, 25};
        reference.seed(range);
        const OleColor first = reference.step(range);
        const OleColor second = reference.step(range);
        resetRandomGenerator();

        form.widget->show();
        QCOMPARE(form.chameleon->backColor(), first);
        QCOMPARE(windowColour(form.widget.get()), toQColor(first));
        QCOMPARE(windowColour(label), toQColor(first));
        tick(form.chameleon, 9);
        QCOMPARE(form.chameleon->backColor(), first);
        tick(form.chameleon);
        QCOMPARE(form.chameleon->backColor(), second);
        QCOMPARE(windowColour(label), toQColor(second));

        // Equal bounds: grey for ever.
        KeloTest::setProperties(form.chameleon, {{"ColorMinimum", 128}, {"ColorMaximum", 128}, {"Interval", 0}});
        form.chameleon->Refresh();
        for (int i = 0; i < 30; ++i) {
            tick(form.chameleon);
            QCOMPARE(form.chameleon->backColor(), OleColor(0x00808080));
        }
    }

    void picturesArePlacedTiledOrNotAtAll()
    {
        QTemporaryDir dir;
        const QString marked = writeMarkedPicture(dir);
        Form form;
        auto *label = new QLabel(QStringLiteral("On the picture"), form.widget.get());
        label->setGeometry(110, 110, 30, 20);
        form.picture(marked, keloPictureStyle::Tiled);
        form.widget->show();
        QVERIFY(WandPool::shared().pictureMode());
        // 100 x 100 pixels (1500 twips) on 250 x 250: three columns of three
        // (where each lies is the placement's own test), also after a repaint.
        QCOMPARE(pictureCopies(form.chameleon), 9);
        for (int pass = 0; pass < 2; ++pass) {
            QVERIFY(form.markerAt(0, 0) && form.markerAt(200, 100) && form.markerAt(100, 200));
            QVERIFY(!form.markerAt(50, 50));
            QCOMPARE(form.shot().pixelColor(249, 249), Red);
            form.widget->repaint();
        }
        // The picture stays on the surface; the form keeps its own colour below it.
        QVERIFY(!form.widget->autoFillBackground());

        // Placed once; the form's scale is put back once the picture is placed.
        form.chameleon->setBackgroundPictureStyle(keloPictureStyle::Center);
        form.widget->setProperty("ScaleMode", 3);
        form.chameleon->Refresh();
        QCOMPARE(pictureCopies(form.chameleon), 1);
        QVERIFY(form.markerAt(75, 75));
        QCOMPARE(form.shot().pixelColor(174, 174), Red);
        QVERIFY(form.shot().pixelColor(176, 176) != Red);
        QCOMPARE(form.widget->property("ScaleMode").toInt(), 3);

        // The next full apply with another style clears the picture.
        form.fixedColour(0x00FF00);
        form.chameleon->Refresh();
        QCOMPARE(pictureCopies(form.chameleon), 0);
        QVERIFY(!WandPool::shared().pictureMode());
        QCOMPARE(form.shot().pixelColor(200, 200), QColor(0, 255, 0));

        // No placement: nothing drawn, the form's scale not even touched.
        Form unplaced;
        unplaced.widget->setProperty("ScaleMode", 3);
        unplaced.picture(marked, keloPictureStyle::None);
        unplaced.widget->show();
        QCOMPARE(pictureCopies(unplaced.chameleon), 0);
        QVERIFY(!unplaced.markerAt(0, 0));
        QCOMPARE(unplaced.widget->property("ScaleMode").toInt(), 3);

        // A missing file, a file that is not a picture, an empty path: nothing
        // drawn, no error, and the form left in twips.
        const QString junk = dir.filePath(QStringLiteral("junk.png"));
        QVERIFY(KeloTest::writeTextFile(junk, QStringLiteral("not a picture")));
        for (const QString &path : {dir.filePath(QStringLiteral("missing.png")), junk, QString()}) {
            unplaced.widget->setProperty("ScaleMode", 3);
            unplaced.picture(path, keloPictureStyle::TopLeft);
            unplaced.chameleon->Refresh();
            QCOMPARE(pictureCopies(unplaced.chameleon), 0);
            QCOMPARE(unplaced.widget->property("ScaleMode").toInt(), 1);
        }
    }

    void edgeCases()
    {
        // Bounds loaded beyond what a colour can hold overflow at Refresh, styling nothing.
        Form form;
        PropertyBag bag;
        bag.WriteProperty(QStringLiteral("ColorMinimum"), -32768);
        bag.WriteProperty(QStringLiteral("ColorMaximum"), 32767);
        bag.WriteProperty(QStringLiteral("BackgroundStyle"), 3);
        form.chameleon->ReadProperties(bag);
        QCOMPARE(errorNumberOf([&] { form.chameleon->Refresh(); }), ErrorNumber::Overflow);
        QVERIFY(!form.widget->autoFillBackground());

        // Without a form: its own colour is set, the missing form ends the pass quietly.
        Kelochameleon alone;
        KeloTest::setProperties(&alone,
            {{"BackgroundStyle", 2}, {"NewBackColor", 0x00123456}, {"FontStyle", 1}, {"WandFollowsMouse", true}});
        alone.show();
        QCOMPARE(alone.backColor(), OleColor(0x00123456));
        KeloTest::setProperties(&alone, {{"BackgroundStyle", 4}, {"BackgroundPictureStyle", 8}});
        alone.Refresh();
        QCOMPARE(pictureCopies(&alone), 0);
        tick(&alone, 3);

        // The mouse icon is the control's cursor.
        QPixmap icon(16, 16);
        icon.fill(Qt::blue);
        form.chameleon->setMouseIcon(icon);
        QCOMPARE(form.chameleon->cursor().pixmap().toImage(), icon.toImage());
        form.chameleon->setMouseIcon(QPixmap());
        QVERIFY(!form.chameleon->testAttribute(Qt::WA_SetCursor));
    }

    void wandFollowsTheFormsMouseOnlyWhenAskedTo()
    {
        Form form;
        form.chameleon->setWandStyle(keloWandStyle::Ripples);
        form.widget->setProperty("ScaleMode", 1);
        form.widget->show();
        WandPool &wand = WandPool::shared();
        QMouseEvent move(QEvent::MouseMove, QPointF(40, 50), form.widget->mapToGlobal(QPointF(40, 50)), Qt::NoButton,
            Qt::NoButton, Qt::NoModifier);

        // By default the host reports the mouse: the form's own movements start nothing.
        QVERIFY(!form.widget->hasMouseTracking());
        tick(form.chameleon);
        QCoreApplication::sendEvent(form.widget.get(), &move);
        QCOMPARE(wand.activeCount(), 0);
        QVERIFY(wand.templateElement().surface.data() != form.widget.get());

        form.chameleon->setWandFollowsMouse(true);
        QVERIFY(form.widget->hasMouseTracking());
        QCoreApplication::sendEvent(form.widget.get(), &move);
        // Reported in the form's twips, drawn at the pointer's pixels.
        QCOMPARE(wand.templateElement().surface.data(), form.widget.get());
        QCOMPARE(QPointF(wand.templateElement().x, wand.templateElement().y), QPointF(600, 750));
        QVERIFY(wand.element(20).isActive());
        QCOMPARE(QPointF(wand.element(20).x, wand.element(20).y), QPointF(40, 50));
        QCOMPARE(wand.element(20).style, keloWandStyle::Ripples);

        // Turned off again, the form's tracking goes back as it was.
        form.chameleon->setWandFollowsMouse(false);
        QVERIFY(!form.widget->hasMouseTracking());
        tick(form.chameleon);
        QCoreApplication::sendEvent(form.widget.get(), &move);
        QCOMPARE(wand.activeCount(), 1);

        // A disabled chameleon passes the host's movements over.
        form.chameleon->setEnabled(false);
        form.chameleon->WandMovement(form.widget.get(), 10, 10);
        QCOMPARE(wand.activeCount(), 1);
        form.chameleon->setEnabled(true);
        QCOMPARE(errorNumberOf([&] { form.chameleon->WandMovement(new QTimer(form.widget.get()), 10, 10); }), 438);
    }
};

QTEST_MAIN(TestKelochameleon)
#include "tst_kelochameleon.moc"
