// QUiLoader with the Kelocontrols Designer plugin: how the plugin is found,
// that loaded controls run in run mode, and that forms written by Qt Designer
// (every enumeration of every control, thresholds far from their defaults)
// come back with every value.

#include "FormFile.h"
#include "KeloEnums.h"
#include "KeloscoreCard.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <QUiLoader>

#include <memory>

using namespace Kelocontrols;

namespace {

const QString pluginDir = QStringLiteral(KELO_PLUGIN_DIR "/designer");

QString formPath(const char *name)
{
    return QStringLiteral(KELO_FORMS_DIR "/") + QLatin1String(name);
}

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

    QHash<QString, QStringList> changes;
};

std::unique_ptr<QUiLoader> buildTreeLoader()
{
    return std::make_unique<RecordingLoader>();
}

/// A form holding one score card named "card" with the given property elements.
QByteArray cardForm(const QString &properties)
{
    return QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0">
 <class>Form</class>
 <widget class="QWidget" name="Form">
  <widget class="KeloscoreCard" name="card">%1</widget>
 </widget>
 <customwidgets>
  <customwidget>
   <class>KeloscoreCard</class>
   <extends>QWidget</extends>
   <header>Kelocontrols/KeloscoreCard.h</header>
  </customwidget>
 </customwidgets>
</ui>
)")
        .arg(properties)
        .toUtf8();
}

std::unique_ptr<QWidget> loadForm(QUiLoader &loader, QByteArray xml)
{
    QBuffer buffer(&xml);
    buffer.open(QIODevice::ReadOnly);
    return std::unique_ptr<QWidget>(loader.load(&buffer));
}

std::unique_ptr<QWidget> loadFormFile(QUiLoader &loader, const QString &path)
{
    return loadForm(loader, FormFile::read(path).toUtf8());
}

/// The names of the control's own properties (mixed case; QWidget's start
/// in lower case) that `widgetName` sets in a form file, in file order.
QStringList controlPropertiesInForm(const QString &path, const QString &widgetName)
{
    QStringList names;
    for (const FormFile::Widget &widget : FormFile::parse(FormFile::read(path))) {
        for (const FormFile::Property &property : widget.properties) {
            if (widget.name == widgetName && property.name.at(0).isUpper()) {
                names << property.name;
            }
        }
    }
    return names;
}

QString pictureToolTip(const QWidget *card)
{
    const auto *picture = card->findChild<QWidget *>(u"Picture1"_qs);
    return picture ? picture->toolTip() : u"<no Picture1>"_qs;
}

} // namespace

class tst_UiLoader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void findsThePluginFolder();
    void createsRunModeControls();
    void loadsDesignerForms_data();
    void loadsDesignerForms();
    void loadedCardsShowTheirValues();
    void loadingEmitsEachPropertyOnce();
    void acceptsEveryEnumSpelling_data();
    void acceptsEveryEnumSpelling();
    void survivesBadForms();
};

void tst_UiLoader::initTestCase()
{
    const QString plugin = pluginDir + u"/libKelocontrolsDesigner.so"_qs;
    QVERIFY2(QFileInfo::exists(plugin), qPrintable(plugin + u" has not been built"_qs));
}

// QUiLoader looks for plugins in "<library path>/designer" and takes a path
// given to addPluginPath() as the plugin folder itself.
void tst_UiLoader::findsThePluginFolder()
{
    const QString className = u"KeloscoreCard"_qs;

    QUiLoader parentFolder;
    parentFolder.clearPluginPaths();
    parentFolder.addPluginPath(QStringLiteral(KELO_PLUGIN_DIR));
    QVERIFY(!parentFolder.availableWidgets().contains(className));

    auto direct = buildTreeLoader();
    QCOMPARE(direct->pluginPaths(), QStringList{pluginDir});
    QVERIFY(direct->availableWidgets().contains(className));

    QCoreApplication::addLibraryPath(QStringLiteral(KELO_PLUGIN_DIR));
    QUiLoader viaLibraryPath;
    QCoreApplication::removeLibraryPath(QStringLiteral(KELO_PLUGIN_DIR));
    QVERIFY(viaLibraryPath.pluginPaths().contains(pluginDir));
    QVERIFY(viaLibraryPath.availableWidgets().contains(className));
}

void tst_UiLoader::createsRunModeControls()
{
    auto loader = buildTreeLoader();
    QWidget form;
    QWidget *widget = loader->createWidget(u"KeloscoreCard"_qs, &form, u"scoreCard1"_qs);
    auto *card = qobject_cast<KeloscoreCard *>(widget);
    QVERIFY(card);
    QCOMPARE(card->parentWidget(), &form);
    QCOMPARE(card->objectName(), u"scoreCard1"_qs);
    QCOMPARE(card->UserMode(), true);
    QCOMPARE(card->property("UserMode"), QVariant(true));
    // Freshly created means InitProperties has run.
    QCOMPARE(card->Value(), 0.5);
    QCOMPARE(card->Style(), keloScoreCardStyle::ScoreCardSmall);
    QCOMPARE(card->BackColor(), 0x8000000Fu);

    QCOMPARE(loader->createWidget(u"KeloNoSuchControl"_qs, &form), nullptr);
}

void tst_UiLoader::loadsDesignerForms_data()
{
    FormFile::addSavedFormRows();
}

// Every property a form file sets comes back with the value in the file.
void tst_UiLoader::loadsDesignerForms()
{
    QFETCH(QString, form);
    auto loader = buildTreeLoader();
    const auto widget = loadFormFile(*loader, formPath(form.toLatin1().constData()));
    QVERIFY2(widget, qPrintable(loader->errorString()));
    const QList<FormFile::Widget> controls = FormFile::parse(FormFile::read(formPath(form.toLatin1().constData())));
    QVERIFY(!controls.isEmpty());
    const QStringList mismatches = FormFile::mismatches(widget.get(), controls);
    QVERIFY2(mismatches.isEmpty(), qPrintable(mismatches.join(u'\n')));
    for (const auto *control : widget->findChildren<ControlBase *>()) {
        QCOMPARE(control->UserMode(), true);
    }
}

// What the loaded score cards of scorecard.ui show besides their properties.
void tst_UiLoader::loadedCardsShowTheirValues()
{
    auto loader = buildTreeLoader();
    const auto form = loadFormFile(*loader, formPath("scorecard.ui"));
    QVERIFY2(form, qPrintable(loader->errorString()));
    QCOMPARE(form->windowTitle(), u"Build scores"_qs);

    const auto *quality = form->findChild<KeloscoreCard *>(u"qualityGauge"_qs);
    QVERIFY(quality);
    QCOMPARE(quality->grade(), 4);
    QCOMPARE(pictureToolTip(quality), u"Quality of the last build"_qs);
    // Designer writes the geometry before the control's own properties; a
    // redraw while Style is still a picture must not shrink the gauge.
    QCOMPARE(quality->size(), QSize(240, 32));

    const auto *smiley = form->findChild<KeloscoreCard *>(u"buildSmiley"_qs);
    QVERIFY(smiley);
    QCOMPARE(smiley->isEnabled(), false);
    QCOMPARE(smiley->grade(), 5);
    QCOMPARE(smiley->size(), QSize(36, 36));
    QCOMPARE(smiley->ToolTipStyle(), keloToolTipStyle::ShowBothAsTip);
    QCOMPARE(pictureToolTip(smiley), u" 95%"_qs);

    const auto *level = form->findChild<KeloscoreCard *>(u"levelGauge"_qs);
    QVERIFY(level);
    QCOMPARE(pictureToolTip(level), QString());
    QCOMPARE(level->size(), QSize(30, 160));
}

// Each property in the form is written once, in file order, under its exact
// name; QWidget's own properties (geometry) do not count as the control's.
void tst_UiLoader::loadingEmitsEachPropertyOnce()
{
    RecordingLoader loader;
    const QString path = formPath("scorecard.ui");
    const auto form = loadFormFile(loader, path);
    QVERIFY2(form, qPrintable(loader.errorString()));

    for (const char *widget : {"qualityGauge", "buildSmiley", "levelGauge"}) {
        const QString name = QString::fromLatin1(widget);
        const QStringList expected = controlPropertiesInForm(path, name);
        QVERIFY(expected.size() >= 3);
        QCOMPARE(loader.changes.value(name), expected);
    }

    auto *quality = form->findChild<KeloscoreCard *>(u"qualityGauge"_qs);
    loader.changes.clear();
    quality->setProperty("Value", 0.3);
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
    QFETCH(int, expected);

    auto loader = buildTreeLoader();
    const auto form = loadForm(*loader, cardForm(u"<property name=\"Style\">%1</property>"_qs.arg(element)));
    QVERIFY2(form, qPrintable(loader->errorString()));
    const auto *card = form->findChild<KeloscoreCard *>(u"card"_qs);
    QVERIFY(card);
    QCOMPARE(int(card->Style()), expected);
    QCOMPARE(card->property("Style").toInt(), expected);
    QCOMPARE(card->UserMode(), true);
}

void tst_UiLoader::survivesBadForms()
{
    auto loader = buildTreeLoader();

    QByteArray truncated = cardForm(QString());
    truncated.chop(40);
    QVERIFY(!loadForm(*loader, truncated));
    QVERIFY(!loader->errorString().isEmpty());

    // Values of the wrong type or out of range leave the defaults in place.
    const auto form = loadForm(*loader,
        cardForm(QStringLiteral("<property name=\"Value\"><string>abc</string></property>"
                                "<property name=\"BackColor\"><string>red</string></property>"
                                "<property name=\"ShowBlocks\"><number>500</number></property>"
                                "<property name=\"ToolTipStyle\"><number>9</number></property>"
                                "<property name=\"NoSuchProperty\"><number>1</number></property>")));
    QVERIFY2(form, qPrintable(loader->errorString()));
    const auto *card = form->findChild<KeloscoreCard *>(u"card"_qs);
    QVERIFY(card);
    QCOMPARE(card->Value(), 0.5);
    QCOMPARE(card->BackColor(), 0x8000000Fu);
    QCOMPARE(card->ShowBlocks(), 0);
    QCOMPARE(card->ToolTipStyle(), keloToolTipStyle::ShowBothAsTip);
}

QTEST_MAIN(tst_UiLoader)
#include "tst_uiloader.moc"
