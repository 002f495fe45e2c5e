// How a form reaches a program, against the plugin of this build tree: the
// Designer plugin as Qt Designer and QUiLoader load it, forms loaded at run
// time by QUiLoader, and forms compiled by uic into this test. Loaded or
// compiled, every control runs in run mode and holds each value of its form
// file, as Qt Designer wrote it.

#include "FormFile.h"
#include "KeloEnums.h"
#include "KeloscoreCard.h"
#include "ui_enumerations.h"
#include "ui_thresholds.h"
#include "ui_uicform.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFileInfo>
#include <QPluginLoader>
#include <QRegularExpression>
#include <QTest>
#include <QUiLoader>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <functional>
#include <memory>

using namespace Kelocontrols;

namespace {

const QString pluginDir = QStringLiteral(KELO_PLUGIN_DIR "/designer");

/// A loader that looks for plugins only in this build tree's plugin folder, so an installed copy of the plugin can
/// never stand in for the one under test; it records the PropertyChanged signals of every control it creates, from
/// the moment of creation on (before the form's properties).
class RecordingLoader : public QUiLoader
{
public:
    RecordingLoader()
    {
        clearPluginPaths();
        addPluginPath(pluginDir);
    }

    QWidget *createWidget(const QString &className, QWidget *parent, const QString &name) override
    {
        QWidget *widget = QUiLoader::createWidget(className, parent, name);
        if (auto *control = qobject_cast<ControlBase *>(widget)) {
            connect(control, &ControlBase::PropertyChanged, this,
                [this, name](const QString &property) { changes[name].append(property); });
        }
        return widget;
    }

    std::unique_ptr<QWidget> load(QByteArray xml)
    {
        QBuffer buffer(&xml);
        buffer.open(QIODevice::ReadOnly);
        return std::unique_ptr<QWidget>(QUiLoader::load(&buffer));
    }

    std::unique_ptr<QWidget> loadFile(const QString &name)
    {
        return load(KeloTest::readTextFile(FormFile::path(name)).toUtf8());
    }

    QHash<QString, QStringList> changes;
};

/// A form holding one score card named "card" with the given property elements.
QByteArray cardForm(const QString &properties)
{
    return QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0">
 <class>Form</class>
 <widget class="QWidget" name="Form">
  <widget class="KeloscoreCard" name="card">%1</widget>
 </widget>
</ui>
)")
        .arg(properties)
        .toUtf8();
}

/// The widget a program builds from uicform.ui, with auto-connected handlers.
class ScoreForm : public QWidget
{
    Q_OBJECT

public:
    ScoreForm() { ui.setupUi(this); }

    Ui::UicScoreForm ui;
    QStringList trafficLightChanges;
    QList<short> keyCodes;

public Q_SLOTS:
    void on_trafficLight_PropertyChanged(const QString &name) { trafficLightChanges.append(name); }
    void on_trafficLight_KeyDown(short &KeyCode, short &) { keyCodes.append(KeyCode); }
};

/// Builds a form: loaded by QUiLoader, or compiled by uic.
using FormBuilder = std::function<std::unique_ptr<QWidget>()>;

FormBuilder loaded(const QString &file)
{
    return [file] { return RecordingLoader().loadFile(file); };
}

template<class Ui>
FormBuilder compiled()
{
    return [] {
        auto form = std::make_unique<QWidget>();
        Ui().setupUi(form.get());
        return form;
    };
}

std::unique_ptr<ControlBase> createControl(QDesignerCustomWidgetInterface *widget, QWidget *parent = nullptr)
{
    return std::unique_ptr<ControlBase>(qobject_cast<ControlBase *>(widget->createWidget(parent)));
}

} // namespace

class tst_UiLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void describesEveryControl();
    void createsDesignModeControlsOnlyForDesigner();
    void findsThePluginAndCreatesRunModeControls();
    void formsHoldTheirValues_data();
    void formsHoldTheirValues();
    void cardsShowTheirValues_data();
    void cardsShowTheirValues();
    void loadingEmitsEachPropertyOnce();
    void acceptsEveryEnumSpelling_data();
    void acceptsEveryEnumSpelling();
    void survivesBadForms();
    void uicConnectsEventsByName();

private:
    QDesignerCustomWidgetInterface *widget(const QString &name) const;

    QList<QDesignerCustomWidgetInterface *> m_widgets;
};

// The plugin as Qt Designer loads it: a custom widget collection.
void tst_UiLoader::initTestCase()
{
    QPluginLoader loader(pluginDir + u"/libKelocontrolsDesigner.so"_qs);
    QVERIFY2(loader.load(), qPrintable(loader.errorString()));
    QCOMPARE(loader.metaData().value(u"IID"_qs).toString(),
        u"org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface"_qs);
    auto *collection = qobject_cast<QDesignerCustomWidgetCollectionInterface *>(loader.instance());
    QVERIFY(collection);
    m_widgets = collection->customWidgets();
    QVERIFY(!m_widgets.isEmpty());
}

QDesignerCustomWidgetInterface *tst_UiLoader::widget(const QString &name) const
{
    for (QDesignerCustomWidgetInterface *w : m_widgets) {
        if (w->name() == name) {
            return w;
        }
    }
    return nullptr;
}

// What holds for every control of the collection, present and future.
void tst_UiLoader::describesEveryControl()
{
    QSet<QString> names;
    for (QDesignerCustomWidgetInterface *w : std::as_const(m_widgets)) {
        const QString name = w->name();
        QVERIFY2(!names.contains(name), qPrintable(name));
        names.insert(name);
        QCOMPARE(w->group(), u"Kelocontrols"_qs);
        QCOMPARE(w->includeFile(), u"Kelocontrols/"_qs + name + u".h"_qs);
        // The header a generated form includes must exist for consumers.
        QVERIFY2(QFileInfo::exists(QStringLiteral(KELO_BINARY_DIR "/src/include/") + w->includeFile()),
            qPrintable(w->includeFile()));
        QVERIFY(!w->toolTip().isEmpty());
        QVERIFY(w->whatsThis().size() > w->toolTip().size());
        QVERIFY(!w->isContainer());

        const QIcon icon = w->icon();
        QVERIFY(icon.availableSizes().contains(QSize(16, 16)));
        QVERIFY(icon.availableSizes().contains(QSize(32, 32)));
        QVERIFY(KeloTest::hasVisiblePixel(icon.pixmap(16, 16).toImage()));

        // The new widget: the class, and a name from it in lower camel case.
        const auto control = createControl(w);
        QVERIFY(control);
        QCOMPARE(QString::fromLatin1(control->metaObject()->className()), name);
        const QList<FormFile::Widget> dom = FormFile::parse(w->domXml());
        QCOMPARE(dom.size(), 1);
        QCOMPARE(dom.first().className, name);
        QCOMPARE(dom.first().name, name.at(0).toLower() + name.mid(1));
        QCOMPARE(dom.first().properties.size(), 1);
        const QString geometry = dom.first().properties.first().text;
        QVERIFY2(QRegularExpression(u"^x=0,y=0,width=[1-9]\\d*,height=[1-9]\\d*$"_qs).match(geometry).hasMatch(),
            qPrintable(geometry));
    }
    // A new score card shows the 16-pixel picture in its border: the default
    // geometry is exactly that, so nothing moves once it is dropped.
    QCOMPARE(KeloscoreCard().sizeHint(), QSize(20, 20));
    QCOMPARE(FormFile::parse(widget(u"KeloscoreCard"_qs)->domXml()).first().properties.first().text,
        u"x=0,y=0,width=20,height=20"_qs);
}

// The plugin instance is shared by Designer and QUiLoader of one process:
// only a non-null form editor turns design mode on, and only for creation.
void tst_UiLoader::createsDesignModeControlsOnlyForDesigner()
{
    QDesignerCustomWidgetInterface *card = widget(u"KeloscoreCard"_qs);
    QVERIFY(card);
    QWidget form;

    QVERIFY(!card->isInitialized());
    QCOMPARE(createControl(card, &form)->UserMode(), true);

    card->initialize(nullptr);
    QVERIFY(card->isInitialized());
    QCOMPARE(createControl(card, &form)->UserMode(), true);

    QDesignerFormEditorInterface core;
    card->initialize(&core);
    const auto designed = createControl(card, &form);
    QCOMPARE(designed->UserMode(), false);
    QCOMPARE(designed->parentWidget(), &form);
    QCOMPARE(createControl(card)->UserMode(), false);
    // Design mode ends with the creation: other code still gets run-mode controls.
    QCOMPARE(ControlBase::defaultUserMode(), true);
    QCOMPARE(KeloscoreCard().UserMode(), true);

    card->initialize(nullptr);
    QCOMPARE(createControl(card, &form)->UserMode(), true);
}

// QUiLoader looks for plugins in "<library path>/designer" and takes a path
// given to addPluginPath() as the plugin folder itself.
void tst_UiLoader::findsThePluginAndCreatesRunModeControls()
{
    const QString className = u"KeloscoreCard"_qs;
    RecordingLoader direct;
    QCOMPARE(direct.pluginPaths(), QStringList{pluginDir});
    QVERIFY(direct.availableWidgets().contains(className));

    QCoreApplication::addLibraryPath(QStringLiteral(KELO_PLUGIN_DIR));
    QUiLoader viaLibraryPath;
    QCoreApplication::removeLibraryPath(QStringLiteral(KELO_PLUGIN_DIR));
    QVERIFY(viaLibraryPath.pluginPaths().contains(pluginDir));
    QVERIFY(viaLibraryPath.availableWidgets().contains(className));

    // It creates run-mode controls, InitProperties done.
    QWidget form;
    auto *card = qobject_cast<KeloscoreCard *>(direct.createWidget(u"KeloscoreCard"_qs, &form, u"scoreCard1"_qs));
    QVERIFY(card);
    QCOMPARE(card->parentWidget(), &form);
    QCOMPARE(card->objectName(), u"scoreCard1"_qs);
    QCOMPARE(card->property("UserMode"), QVariant(true));
    QCOMPARE(card->Value(), 0.5);
    QCOMPARE(card->Style(), keloScoreCardStyle::ScoreCardSmall);
    QCOMPARE(card->BackColor(), 0x8000000Fu);

    QCOMPARE(direct.createWidget(u"KeloNoSuchControl"_qs, &form, QString()), nullptr);
}

void tst_UiLoader::formsHoldTheirValues_data()
{
    QTest::addColumn<FormBuilder>("build");
    QTest::addColumn<QString>("file");
    for (const char *file : {"scorecard.ui", "scorerange.ui", "enumerations.ui", "thresholds.ui", "uicform.ui"}) {
        QTest::addRow("loaded %s", file) << loaded(QString::fromLatin1(file)) << QString::fromLatin1(file);
    }
    QTest::newRow("compiled enumerations.ui") << compiled<Ui::EnumerationsForm>() << "enumerations.ui";
    QTest::newRow("compiled thresholds.ui") << compiled<Ui::ThresholdsForm>() << "thresholds.ui";
    QTest::newRow("compiled uicform.ui") << compiled<Ui::UicScoreForm>() << "uicform.ui";
}

// Every property a form file sets comes back with the value in the file,
// and stays when the form is shown.
void tst_UiLoader::formsHoldTheirValues()
{
    QFETCH(FormBuilder, build);
    QFETCH(QString, file);
    const auto form = build();
    QVERIFY(form);
    const QList<FormFile::Widget> controls = FormFile::parseFile(file);
    QVERIFY(!controls.isEmpty());
    QStringList mismatches = FormFile::mismatches(form.get(), controls);
    QVERIFY2(mismatches.isEmpty(), qPrintable(mismatches.join(u'\n')));
    for (const auto *control : form->findChildren<ControlBase *>()) {
        QCOMPARE(control->UserMode(), true);
    }
    form->show();
    QVERIFY(QTest::qWaitForWindowExposed(form.get()));
    mismatches = FormFile::mismatches(form.get(), controls);
    QVERIFY2(mismatches.isEmpty(), qPrintable(mismatches.join(u'\n')));
}

void tst_UiLoader::cardsShowTheirValues_data()
{
    QTest::addColumn<FormBuilder>("build");
    QTest::addColumn<QString>("card");
    QTest::addColumn<int>("grade");
    QTest::addColumn<QRect>("geometry");
    QTest::addColumn<QString>("pictureTip");
    // Designer writes the geometry before the control's own properties; a
    // redraw while Style is still a picture must not shrink the gauge.
    const FormBuilder scorecard = loaded(u"scorecard.ui"_qs);
    QTest::newRow("gauge") << scorecard << "qualityGauge" << 4 << QRect(10, 10, 240, 32) << "Quality of the last build";
    QTest::newRow("smiley") << scorecard << "buildSmiley" << 5 << QRect(10, 60, 36, 36) << " 95%";
    QTest::newRow("no tip") << scorecard << "levelGauge" << 2 << QRect(270, 10, 30, 160) << "";
    const FormBuilder uicform = compiled<Ui::UicScoreForm>();
    QTest::newRow("compiled gauge") << uicform << "coverageGauge" << 3 << QRect(10, 10, 40, 200) << "63%";
    QTest::newRow("compiled light") << uicform << "trafficLight" << 1 << QRect(60, 10, 36, 36) << " 13%";
}

void tst_UiLoader::cardsShowTheirValues()
{
    QFETCH(FormBuilder, build);
    QFETCH(QString, card);
    const auto form = build();
    const auto *control = form->findChild<KeloscoreCard *>(card);
    QVERIFY(control);
    QTEST(control->grade(), "grade");
    QTEST(control->geometry(), "geometry");
    const auto *picture = control->findChild<QWidget *>(u"Picture1"_qs);
    QVERIFY(picture);
    QTEST(picture->toolTip(), "pictureTip");
}

// Each property in the form is written once, in file order, under its exact
// name; QWidget's own properties (geometry) do not count as the control's.
void tst_UiLoader::loadingEmitsEachPropertyOnce()
{
    RecordingLoader loader;
    const auto form = loader.loadFile(u"scorecard.ui"_qs);
    QVERIFY2(form, qPrintable(loader.errorString()));
    for (const FormFile::Widget &widget : FormFile::parseFile(u"scorecard.ui"_qs)) {
        QStringList expected;
        for (const FormFile::Property &property : widget.properties) {
            if (property.name.at(0).isUpper()) {
                expected << property.name;
            }
        }
        QVERIFY(expected.size() >= 3);
        QCOMPARE(loader.changes.value(widget.name), expected);
    }

    loader.changes.clear();
    form->findChild<KeloscoreCard *>(u"qualityGauge"_qs)->setProperty("Value", 0.3);
    QCOMPARE(loader.changes.value(u"qualityGauge"_qs), QStringList{u"Value"_qs});
}

void tst_UiLoader::acceptsEveryEnumSpelling_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<int>("expected");

    QTest::newRow("as Qt Designer writes it") << "<enum>Kelocontrols::keloScoreCardStyle::GaugeOverrun</enum>" << 8;
    QTest::newRow("bare key") << "<enum>GaugeOverrun</enum>" << 8;
    QTest::newRow("number") << "<number>8</number>" << 8;
    // QUiLoader writes -1 for a key the enumeration lacks; the score card
    // keeps any style code, as it does for a loaded one, and draws nothing new.
    QTest::newRow("unknown key") << "<enum>Kelocontrols::NoSuchStyle</enum>" << -1;
}

void tst_UiLoader::acceptsEveryEnumSpelling()
{
    QFETCH(QString, element);
    RecordingLoader loader;
    const auto form = loader.load(cardForm(u"<property name=\"Style\">%1</property>"_qs.arg(element)));
    QVERIFY2(form, qPrintable(loader.errorString()));
    const auto *card = form->findChild<KeloscoreCard *>(u"card"_qs);
    QVERIFY(card);
    QTEST(int(card->Style()), "expected");
    QTEST(card->property("Style").toInt(), "expected");
}

void tst_UiLoader::survivesBadForms()
{
    RecordingLoader loader;
    QByteArray truncated = cardForm(QString());
    truncated.chop(40);
    QVERIFY(!loader.load(truncated));
    QVERIFY(!loader.errorString().isEmpty());

    // Values of the wrong type or out of range leave the defaults in place.
    const auto form
        = loader.load(cardForm(QStringLiteral("<property name=\"Value\"><string>abc</string></property>"
                                              "<property name=\"BackColor\"><string>red</string></property>"
                                              "<property name=\"ShowBlocks\"><number>500</number></property>"
                                              "<property name=\"ToolTipStyle\"><number>9</number></property>"
                                              "<property name=\"NoSuchProperty\"><number>1</number></property>")));
    QVERIFY2(form, qPrintable(loader.errorString()));
    const auto *card = form->findChild<KeloscoreCard *>(u"card"_qs);
    QVERIFY(card);
    QCOMPARE(KeloTest::propertyTexts(card, {"Value", "BackColor", "ShowBlocks", "ToolTipStyle"}),
        (QStringList{"Value=0.5", "BackColor=2147483663", "ShowBlocks=0", "ToolTipStyle=3"}));
}

// uic connects on_<object>_<event> slots to the controls' events by name.
void tst_UiLoader::uicConnectsEventsByName()
{
    ScoreForm form;
    KeloscoreCard *light = form.ui.trafficLight;
    QVERIFY(form.trafficLightChanges.isEmpty());
    light->setValue(0.9);
    light->setProperty("ShowBlocks", 5);
    QCOMPARE(form.trafficLightChanges, (QStringList{QStringLiteral("Value"), QStringLiteral("ShowBlocks")}));

    auto *picture = light->findChild<QWidget *>(QStringLiteral("Picture1"));
    QVERIFY(picture);
    QTest::keyPress(picture, Qt::Key_A);
    QTest::keyPress(picture, Qt::Key_Return);
    QCOMPARE(form.keyCodes, (QList<short>{65, 13}));
}

QTEST_MAIN(tst_UiLoader)
#include "tst_uiloader.moc"
