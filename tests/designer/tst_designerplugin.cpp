// The Designer plugin as Qt Designer loads it: a custom widget collection
// whose controls are created in design mode once Designer has handed over
// its form editor, and in run mode otherwise (QUiLoader in a program).

#include "ControlBase.h"
#include "KeloTestSupport.h"
#include "KeloscoreCard.h"

#include <QFileInfo>
#include <QImage>
#include <QPluginLoader>
#include <QTest>
#include <QXmlStreamReader>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>

#include <memory>

using namespace Kelocontrols;

namespace {

const QString pluginFile = QStringLiteral(KELO_PLUGIN_DIR "/designer/libKelocontrolsDesigner.so");

struct DomWidget
{
    QString className;
    QString objectName;
    QSize size;
    bool valid = false;
};

/// The widget element of a domXml() text, with the size from its geometry.
DomWidget parseDomXml(const QString &text)
{
    DomWidget result;
    QXmlStreamReader xml(text);
    if (!xml.readNextStartElement() || xml.name() != u"ui") {
        return result;
    }
    QString property;
    while (xml.readNextStartElement()) {
        if (xml.name() == u"widget") {
            result.className = xml.attributes().value(QLatin1String("class")).toString();
            result.objectName = xml.attributes().value(QLatin1String("name")).toString();
        } else if (xml.name() == u"property") {
            property = xml.attributes().value(QLatin1String("name")).toString();
        } else if (xml.name() == u"rect") {
            continue; // descend to its width and height
        } else if (xml.name() == u"width" && property == u"geometry") {
            result.size.setWidth(xml.readElementText().toInt());
        } else if (xml.name() == u"height" && property == u"geometry") {
            result.size.setHeight(xml.readElementText().toInt());
        } else {
            xml.skipCurrentElement();
        }
    }
    result.valid = !xml.hasError();
    return result;
}

std::unique_ptr<ControlBase> createControl(QDesignerCustomWidgetInterface *widget, QWidget *parent = nullptr)
{
    return std::unique_ptr<ControlBase>(qobject_cast<ControlBase *>(widget->createWidget(parent)));
}

} // namespace

class tst_DesignerPlugin : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void describesEveryControl();
    void describesScoreCard();
    void createsDesignModeControlsOnlyForDesigner();

private:
    QDesignerCustomWidgetInterface *widget(const QString &name) const;

    QList<QDesignerCustomWidgetInterface *> m_widgets;
};

void tst_DesignerPlugin::initTestCase()
{
    QPluginLoader loader(pluginFile);
    QVERIFY2(loader.load(), qPrintable(loader.errorString()));
    const QJsonObject metaData = loader.metaData();
    QCOMPARE(metaData.value(u"IID"_qs).toString(), u"org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface"_qs);
    auto *collection = qobject_cast<QDesignerCustomWidgetCollectionInterface *>(loader.instance());
    QVERIFY(collection);
    m_widgets = collection->customWidgets();
    QVERIFY(!m_widgets.isEmpty());
}

QDesignerCustomWidgetInterface *tst_DesignerPlugin::widget(const QString &name) const
{
    for (QDesignerCustomWidgetInterface *w : m_widgets) {
        if (w->name() == name) {
            return w;
        }
    }
    return nullptr;
}

// What holds for every control of the collection, present and future.
void tst_DesignerPlugin::describesEveryControl()
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
        QVERIFY(!icon.isNull());
        QVERIFY(icon.availableSizes().contains(QSize(16, 16)));
        QVERIFY(icon.availableSizes().contains(QSize(32, 32)));
        QVERIFY(KeloTest::hasVisiblePixel(icon.pixmap(16, 16).toImage()));

        const DomWidget dom = parseDomXml(w->domXml());
        QVERIFY2(dom.valid, qPrintable(w->domXml()));
        QCOMPARE(dom.className, name);
        QVERIFY(!dom.objectName.isEmpty());
        QVERIFY(dom.objectName.at(0).isLower());
        QVERIFY(dom.size.width() > 0 && dom.size.height() > 0);

        // The control the interface creates is of the class it names.
        const auto control = createControl(w);
        QVERIFY(control);
        QCOMPARE(QString::fromLatin1(control->metaObject()->className()), name);
    }
}

void tst_DesignerPlugin::describesScoreCard()
{
    QDesignerCustomWidgetInterface *card = widget(u"KeloscoreCard"_qs);
    QVERIFY(card);
    const DomWidget dom = parseDomXml(card->domXml());
    QCOMPARE(dom.objectName, u"keloscoreCard"_qs);
    // A new score card shows the 16-pixel picture in its border: the
    // default geometry is exactly that, so nothing moves once it is dropped.
    const KeloscoreCard fresh;
    QCOMPARE(dom.size, fresh.sizeHint());
    QCOMPARE(dom.size, QSize(20, 20));
}

// The plugin instance is shared by Designer and QUiLoader of one process:
// only a non-null form editor turns design mode on, and only for creation.
void tst_DesignerPlugin::createsDesignModeControlsOnlyForDesigner()
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
    QVERIFY(card->isInitialized());
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

QTEST_MAIN(tst_DesignerPlugin)
#include "tst_designerplugin.moc"
