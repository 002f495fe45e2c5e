// Qt Designer's own form editor, run headless on this build's plugin: the
// controls appear in the "Kelocontrols" group of the widget box, are created
// in design mode, and every form under forms/ (each saved by this editor)
// reads back with every value and is written out again unchanged.

#include "FormFile.h"
#include "KeloscoreCard.h"

#include <QTest>
#include <QtDesigner/QDesignerComponents>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>
#include <QtDesigner/QDesignerFormWindowManagerInterface>
#include <QtDesigner/QDesignerIntegration>
#include <QtDesigner/QDesignerObjectInspectorInterface>
#include <QtDesigner/QDesignerPropertyEditorInterface>
#include <QtDesigner/QDesignerWidgetBoxInterface>
#include <QtDesigner/QDesignerWidgetDataBaseInterface>
#include <QtDesigner/QDesignerWidgetFactoryInterface>

#include <memory>

using namespace Kelocontrols;

class tst_FormEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void listsControlsInWidgetBox();
    void createsDesignModeControls();
    void roundTripsForms_data();
    void roundTripsForms();

private:
    QDesignerFormWindowInterface *openForm(const QString &contents);

    QDesignerFormEditorInterface *m_core = nullptr;
    std::unique_ptr<QWidget> m_tools[3]; // widget box, property editor, object inspector
};

void tst_FormEditor::initTestCase()
{
    // Only this build's plugin folder: an installed copy must not answer.
    QCoreApplication::setLibraryPaths({QStringLiteral(KELO_PLUGIN_DIR)});
    QDesignerComponents::initializeResources();
    m_core = QDesignerComponents::createFormEditor(this);
    QDesignerComponents::initializePlugins(m_core);
    auto *widgetBox = QDesignerComponents::createWidgetBox(m_core, nullptr);
    auto *propertyEditor = QDesignerComponents::createPropertyEditor(m_core, nullptr);
    auto *objectInspector = QDesignerComponents::createObjectInspector(m_core, nullptr);
    m_tools[0].reset(widgetBox);
    m_tools[1].reset(propertyEditor);
    m_tools[2].reset(objectInspector);
    m_core->setWidgetBox(widgetBox);
    m_core->setPropertyEditor(propertyEditor);
    m_core->setObjectInspector(objectInspector);
    m_core->setIntegration(new QDesignerIntegration(m_core, m_core));
    QVERIFY(m_core->widgetDataBase()->indexOfClassName(u"KeloscoreCard"_qs) >= 0);
}

void tst_FormEditor::cleanupTestCase()
{
    const auto windows = m_core->formWindowManager()->formWindowCount();
    for (int i = windows - 1; i >= 0; --i) {
        delete m_core->formWindowManager()->formWindow(i);
    }
}

QDesignerFormWindowInterface *tst_FormEditor::openForm(const QString &contents)
{
    QDesignerFormWindowInterface *window = m_core->formWindowManager()->createFormWindow(nullptr);
    m_core->formWindowManager()->setActiveFormWindow(window);
    return window->setContents(contents) ? window : nullptr;
}

void tst_FormEditor::listsControlsInWidgetBox()
{
    const QDesignerWidgetDataBaseInterface *database = m_core->widgetDataBase();
    const QDesignerWidgetDataBaseItemInterface *item = database->item(database->indexOfClassName(u"KeloscoreCard"_qs));
    QVERIFY(item);
    QCOMPARE(item->group(), u"Kelocontrols"_qs);
    QVERIFY(item->isCustom() && !item->isContainer() && !item->icon().isNull());

    QDesignerWidgetBoxInterface *box = m_core->widgetBox();
    box->setFileName(u":/qt-project.org/widgetbox/widgetbox.xml"_qs);
    box->load();
    const int category = box->findOrInsertCategory(u"Kelocontrols"_qs);
    QVERIFY(category >= 0);
    const QDesignerWidgetBoxInterface::Category group = box->category(category);
    QStringList names;
    for (int i = 0; i < group.widgetCount(); ++i) {
        names << group.widget(i).name();
    }
    QVERIFY2(names.contains(u"KeloscoreCard"_qs), qPrintable(names.join(u',')));
}

void tst_FormEditor::createsDesignModeControls()
{
    QDesignerFormWindowInterface *window = openForm(KeloTest::readTextFile(FormFile::path(u"scorecard.ui"_qs)));
    QVERIFY(window);
    auto *card = qobject_cast<KeloscoreCard *>(
        m_core->widgetFactory()->createWidget(u"KeloscoreCard"_qs, window->mainContainer()));
    QVERIFY(card);
    QCOMPARE(card->UserMode(), false);
}

void tst_FormEditor::roundTripsForms_data()
{
    QTest::addColumn<QString>("form");
    for (const char *form : {"scorecard.ui", "scorerange.ui", "enumerations.ui", "thresholds.ui", "uicform.ui"}) {
        QTest::newRow(form) << QString::fromLatin1(form);
    }
}

// Each form was saved by this form editor: opened again, its controls hold
// every value of the file, and saving writes the very same file.
void tst_FormEditor::roundTripsForms()
{
    QFETCH(QString, form);

    const QString original = KeloTest::readTextFile(FormFile::path(form));
    QDesignerFormWindowInterface *window = openForm(original);
    QVERIFY(window);
    const QList<FormFile::Widget> controls = FormFile::parse(original);
    QVERIFY(!controls.isEmpty());
    const QStringList mismatches = FormFile::mismatches(window->mainContainer(), controls);
    QVERIFY2(mismatches.isEmpty(), qPrintable(mismatches.join(u'\n')));
    for (const auto *control : window->mainContainer()->findChildren<ControlBase *>()) {
        QCOMPARE(control->UserMode(), false);
    }
    QCOMPARE(window->contents(), original);
}

QTEST_MAIN(tst_FormEditor)
#include "tst_formeditor.moc"
