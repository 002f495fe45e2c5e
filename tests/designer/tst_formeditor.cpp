// Qt Designer's own form editor, run headless on this build's plugin: the
// controls appear in the "Kelocontrols" group of the widget box, are created
// in design mode, and every form under forms/ (each saved by this editor)
// reads back with every value and is written out again unchanged.

#include "FormFile.h"
#include "KeloscoreCard.h"

#include <QFile>
#include <QMetaProperty>
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

namespace {

QString formPath(const QString &name)
{
    return QStringLiteral(KELO_FORMS_DIR "/") + name;
}

} // namespace

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
    void formSetsEveryEnumeration();

private:
    QDesignerFormWindowInterface *openForm(const QString &contents);

    QDesignerFormEditorInterface *m_core = nullptr;
    std::unique_ptr<QWidget> m_widgetBox;
    std::unique_ptr<QWidget> m_propertyEditor;
    std::unique_ptr<QWidget> m_objectInspector;
};

void tst_FormEditor::initTestCase()
{
    // Only this build's plugin folder: an installed copy must not answer.
    QCoreApplication::setLibraryPaths({QStringLiteral(KELO_PLUGIN_DIR)});
    QDesignerComponents::initializeResources();
    m_core = QDesignerComponents::createFormEditor(this);
    QDesignerComponents::initializePlugins(m_core);
    auto *widgetBox = QDesignerComponents::createWidgetBox(m_core, nullptr);
    m_widgetBox.reset(widgetBox);
    m_core->setWidgetBox(widgetBox);
    auto *propertyEditor = QDesignerComponents::createPropertyEditor(m_core, nullptr);
    m_propertyEditor.reset(propertyEditor);
    m_core->setPropertyEditor(propertyEditor);
    auto *objectInspector = QDesignerComponents::createObjectInspector(m_core, nullptr);
    m_objectInspector.reset(objectInspector);
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
    if (!window->setContents(contents)) {
        return nullptr;
    }
    return window;
}

void tst_FormEditor::listsControlsInWidgetBox()
{
    const QDesignerWidgetDataBaseInterface *database = m_core->widgetDataBase();
    const QDesignerWidgetDataBaseItemInterface *item = database->item(database->indexOfClassName(u"KeloscoreCard"_qs));
    QVERIFY(item);
    QCOMPARE(item->group(), u"Kelocontrols"_qs);
    QVERIFY(item->isCustom());
    QVERIFY(!item->isContainer());
    QVERIFY(!item->icon().isNull());

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
    QDesignerFormWindowInterface *window = openForm(FormFile::read(formPath(u"scorecard.ui"_qs)));
    QVERIFY(window);
    QWidget *created = m_core->widgetFactory()->createWidget(u"KeloscoreCard"_qs, window->mainContainer());
    auto *card = qobject_cast<KeloscoreCard *>(created);
    QVERIFY(card);
    QCOMPARE(card->UserMode(), false);
}

void tst_FormEditor::roundTripsForms_data()
{
    FormFile::addSavedFormRows();
}

// Each form was saved by this form editor: opened again, its controls hold
// every value of the file, and saving writes the very same file.
void tst_FormEditor::roundTripsForms()
{
    QFETCH(QString, form);

    const QString original = FormFile::read(formPath(form));
    QVERIFY(!original.isEmpty());
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

// enumerations.ui gives every enumeration-typed property of every control in
// the widget box a value other than the one a new control has.
void tst_FormEditor::formSetsEveryEnumeration()
{
    QHash<QString, QHash<QString, QString>> set; // class -> property -> text
    for (const FormFile::Widget &w : FormFile::parse(FormFile::read(formPath(u"enumerations.ui"_qs)))) {
        for (const FormFile::Property &p : w.properties) {
            set[w.className].insert(p.name, p.text);
        }
    }
    const QDesignerWidgetDataBaseInterface *database = m_core->widgetDataBase();
    QStringList missing;
    int enumerations = 0;
    for (int i = 0; i < database->count(); ++i) {
        if (database->item(i)->group() != QLatin1String("Kelocontrols")) {
            continue;
        }
        const QString className = database->item(i)->name();
        std::unique_ptr<QWidget> fresh(m_core->widgetFactory()->createWidget(className, nullptr));
        QVERIFY(fresh);
        const QMetaObject *meta = fresh->metaObject();
        for (int p = meta->propertyOffset(); p < meta->propertyCount(); ++p) {
            const QMetaProperty property = meta->property(p);
            if (!property.isEnumType()) {
                continue;
            }
            ++enumerations;
            const QString name = QString::fromLatin1(property.name());
            const FormFile::Property asFresh{name, u"enum"_qs, QString()};
            const QString text = set.value(className).value(name);
            if (text.isEmpty() || text == FormFile::valueAsFormText(fresh.get(), asFresh)) {
                missing << className + QLatin1Char('/') + name;
            }
        }
    }
    QCOMPARE(missing, QStringList());
    QVERIFY(enumerations >= 9);
}

QTEST_MAIN(tst_FormEditor)
#include "tst_formeditor.moc"
