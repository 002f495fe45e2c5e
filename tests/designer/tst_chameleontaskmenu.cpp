// The chameleon's "Edit Chameleon Settings..." task menu in Qt Designer's own
// form editor, run headless on this build's plugin: the dialog it opens
// writes through Designer's property sheet, so every change is on the form's
// undo stack and in the form file.

#include "ChameleonPropertyPage.h"
#include "KeloTestSupport.h"
#include "Kelochameleon.h"
#include "SettingsStore.h"

#include <QApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUndoStack>
#include <QtDesigner/QDesignerComponents>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>
#include <QtDesigner/QDesignerFormWindowManagerInterface>
#include <QtDesigner/QDesignerIntegration>
#include <QtDesigner/QDesignerPropertyEditorInterface>
#include <QtDesigner/QDesignerPropertySheetExtension>
#include <QtDesigner/QDesignerTaskMenuExtension>
#include <QtDesigner/QExtensionManager>

#include <functional>
#include <memory>

using namespace Kelocontrols;

namespace {

const char FormText[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0">
 <class>Form</class>
 <widget class="QWidget" name="Form">
  <property name="geometry"><rect><x>0</x><y>0</y><width>300</width><height>200</height></rect></property>
  <widget class="Kelochameleon" name="kelochameleon">
   <property name="geometry"><rect><x>10</x><y>10</y><width>16</width><height>16</height></rect></property>
  </widget>
 </widget>
 <resources/>
 <connections/>
</ui>
)";

// Runs `steps` on the settings dialog once its modal loop is running, then
// lets it close; the test goes on after exec() returns.
void whenDialogOpens(const std::function<void(QDialog *)> &steps, bool *ran)
{
    auto *timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, steps, ran] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog) {
            return;
        }
        timer->stop();
        timer->deleteLater();
        *ran = true;
        steps(dialog);
        if (dialog->isVisible()) {
            dialog->reject();
        }
    });
    timer->start();
}

QPushButton *dialogButton(QDialog *dialog, QDialogButtonBox::StandardButton which)
{
    auto *box = dialog->findChild<QDialogButtonBox *>();
    return box ? box->button(which) : nullptr;
}

/// The text of one property element of the chameleon in a form file, "" when absent.
QString formProperty(const QString &form, const QString &name)
{
    const QString start = u"<property name=\""_qs + name + u"\">"_qs;
    const int at = form.indexOf(start);
    if (at < 0) {
        return QString();
    }
    const int end = form.indexOf(u"</property>"_qs, at);
    return form.mid(at + start.size(), end - at - start.size()).simplified();
}

} // namespace

class TestChameleonTaskMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void init();
    void cleanup();
    void chameleonHasTheEditAction();
    void applyWritesThroughThePropertySheet();
    void cancelLeavesTheFormAlone();
    void getThemeIsOneUndoableCommand();

private:
    QAction *editAction();

    QDesignerFormEditorInterface *m_core = nullptr;
    QDesignerFormWindowInterface *m_window = nullptr;
    Kelochameleon *m_chameleon = nullptr;
    std::unique_ptr<QWidget> m_propertyEditor;
    std::unique_ptr<KeloTest::ScopedConfigHome> m_config;
};

void TestChameleonTaskMenu::initTestCase()
{
    QCoreApplication::setLibraryPaths({QStringLiteral(KELO_PLUGIN_DIR)});
    QDesignerComponents::initializeResources();
    m_core = QDesignerComponents::createFormEditor(this);
    QDesignerComponents::initializePlugins(m_core);
    // The integration follows the property editor's edits; without one it warns.
    QDesignerPropertyEditorInterface *propertyEditor = QDesignerComponents::createPropertyEditor(m_core, nullptr);
    m_propertyEditor.reset(propertyEditor);
    m_core->setPropertyEditor(propertyEditor);
    m_core->setIntegration(new QDesignerIntegration(m_core, m_core));
}

void TestChameleonTaskMenu::cleanupTestCase()
{
    for (int i = m_core->formWindowManager()->formWindowCount() - 1; i >= 0; --i) {
        delete m_core->formWindowManager()->formWindow(i);
    }
}

void TestChameleonTaskMenu::init()
{
    m_config = std::make_unique<KeloTest::ScopedConfigHome>();
    m_window = m_core->formWindowManager()->createFormWindow(nullptr);
    m_core->formWindowManager()->setActiveFormWindow(m_window);
    QVERIFY(m_window->setContents(QString::fromUtf8(FormText)));
    m_chameleon = m_window->mainContainer()->findChild<Kelochameleon *>(u"kelochameleon"_qs);
    QVERIFY(m_chameleon);
    QVERIFY(!m_chameleon->UserMode());
    m_window->commandHistory()->clear();
}

void TestChameleonTaskMenu::cleanup()
{
    delete m_window;
    m_window = nullptr;
    m_chameleon = nullptr;
    m_config.reset();
}

QAction *TestChameleonTaskMenu::editAction()
{
    auto *menu = qt_extension<QDesignerTaskMenuExtension *>(m_core->extensionManager(), m_chameleon);
    if (!menu) {
        return nullptr;
    }
    for (QAction *action : menu->taskActions()) {
        if (action->text() == u"Edit Chameleon Settings...") {
            return action;
        }
    }
    return nullptr;
}

void TestChameleonTaskMenu::chameleonHasTheEditAction()
{
    auto *menu = qt_extension<QDesignerTaskMenuExtension *>(m_core->extensionManager(), m_chameleon);
    QVERIFY(menu);
    const QList<QAction *> actions = menu->taskActions();
    QCOMPARE(actions.size(), 1);
    QCOMPARE(actions.first()->text(), u"Edit Chameleon Settings..."_qs);
    QCOMPARE(menu->preferredEditAction(), actions.first());

    // Other widgets of the form do not get it.
    QWidget *form = m_window->mainContainer();
    auto *formMenu = qt_extension<QDesignerTaskMenuExtension *>(m_core->extensionManager(), form);
    if (formMenu) {
        for (const QAction *action : formMenu->taskActions()) {
            QVERIFY(action->text() != u"Edit Chameleon Settings...");
        }
    }
}

void TestChameleonTaskMenu::applyWritesThroughThePropertySheet()
{
    QAction *action = editAction();
    QVERIFY(action);
    QCOMPARE(m_chameleon->ColorMinimum(), 0);
    const int commandsBefore = m_window->commandHistory()->count();
    bool ran = false;
    int minimumAfterApply = -1;
    bool applyEnabledBefore = true;
    bool applyEnabledAfterEdit = false;
    bool applyEnabledAfterApply = true;
    QString title;
    whenDialogOpens(
        [&](QDialog *dialog) {
            title = dialog->windowTitle();
            auto *page = dialog->findChild<ChameleonPropertyPage *>();
            QVERIFY(page);
            QCOMPARE(page->findChild<QSlider *>(u"sliInterval"_qs)->value(), 1000);
            QPushButton *apply = dialogButton(dialog, QDialogButtonBox::Apply);
            applyEnabledBefore = apply->isEnabled();
            page->findChild<QSlider *>(u"sliColorMinimum"_qs)->setValue(77);
            page->findChild<QSlider *>(u"sliColorMaximum"_qs)->setValue(200);
            applyEnabledAfterEdit = apply->isEnabled();
            apply->click();
            minimumAfterApply = m_chameleon->ColorMinimum();
            applyEnabledAfterApply = apply->isEnabled();
            // Pending at OK: applied as well.
            page->findChild<QSlider *>(u"sliInterval"_qs)->setValue(2500);
            dialogButton(dialog, QDialogButtonBox::Ok)->click();
        },
        &ran);
    action->trigger();
    QVERIFY(ran);
    QCOMPARE(title, u"Edit Chameleon Settings - kelochameleon"_qs);
    QVERIFY(!applyEnabledBefore);
    QVERIFY(applyEnabledAfterEdit);
    QVERIFY(!applyEnabledAfterApply);
    QCOMPARE(minimumAfterApply, 77);
    QCOMPARE(m_chameleon->ColorMinimum(), 77);
    QCOMPARE(m_chameleon->ColorMaximum(), 200);
    QCOMPARE(m_chameleon->Interval(), 2500);

    // One undo step per Apply (OK applied the rest), and in the form file.
    QUndoStack *history = m_window->commandHistory();
    QCOMPARE(history->count(), commandsBefore + 2);
    QCOMPARE(history->text(commandsBefore), u"Edit Chameleon Settings"_qs);
    const QString form = m_window->contents();
    QCOMPARE(formProperty(form, u"ColorMinimum"_qs), u"<number>77</number>"_qs);
    QCOMPARE(formProperty(form, u"ColorMaximum"_qs), u"<number>200</number>"_qs);
    QCOMPARE(formProperty(form, u"Interval"_qs), u"<number>2500</number>"_qs);
    auto *sheet = qt_extension<QDesignerPropertySheetExtension *>(m_core->extensionManager(), m_chameleon);
    QVERIFY(sheet);
    QVERIFY(sheet->isChanged(sheet->indexOf(u"ColorMinimum"_qs)));

    history->undo();
    QCOMPARE(m_chameleon->Interval(), 1000);
    QCOMPARE(m_chameleon->ColorMinimum(), 77);
    history->undo();
    QCOMPARE(m_chameleon->ColorMinimum(), 0);
    QCOMPARE(m_chameleon->ColorMaximum(), 255);
    history->redo();
    QCOMPARE(m_chameleon->ColorMinimum(), 77);
    QCOMPARE(m_chameleon->ColorMaximum(), 200);
}

void TestChameleonTaskMenu::cancelLeavesTheFormAlone()
{
    QAction *action = editAction();
    QVERIFY(action);
    bool ran = false;
    whenDialogOpens(
        [&](QDialog *dialog) {
            auto *page = dialog->findChild<ChameleonPropertyPage *>();
            page->findChild<QSlider *>(u"sliColorStepRate"_qs)->setValue(99);
            page->findChild<QLineEdit *>(u"txtThemeName"_qs)->setText(u"Never"_qs);
            dialogButton(dialog, QDialogButtonBox::Cancel)->click();
        },
        &ran);
    action->trigger();
    QVERIFY(ran);
    QCOMPARE(m_chameleon->ColorStepRate(), 10);
    QCOMPARE(m_chameleon->ThemeName(), u"DefaultTheme"_qs);
    QCOMPARE(m_window->commandHistory()->count(), 0);
    QVERIFY(formProperty(m_window->contents(), u"ColorStepRate"_qs).isEmpty());
}

void TestChameleonTaskMenu::getThemeIsOneUndoableCommand()
{
    // A theme saved by a chameleon of the same name elsewhere.
    {
        Kelochameleon source;
        source.setObjectName(u"kelochameleon"_qs);
        source.setThemeName(u"Teal"_qs);
        source.setBackgroundStyle(keloBackgroundStyle::FixedColor);
        source.setNewBackColor(0x00808000u);
        source.setColorMaximum(150);
        source.setColorMinimum(60);
        source.SaveTheme();
    }
    QAction *action = editAction();
    QVERIFY(action);
    bool ran = false;
    int minimumShown = -1;
    whenDialogOpens(
        [&](QDialog *dialog) {
            auto *page = dialog->findChild<ChameleonPropertyPage *>();
            page->findChild<QLineEdit *>(u"txtThemeName"_qs)->setText(u"Teal"_qs);
            page->Commands(ChameleonPropertyPage::GetThemeCommand)->click();
            minimumShown = page->findChild<QSlider *>(u"sliColorMinimum"_qs)->value();
            dialogButton(dialog, QDialogButtonBox::Cancel)->click();
        },
        &ran);
    action->trigger();
    QVERIFY(ran);
    QCOMPARE(minimumShown, 60);
    QCOMPARE(m_chameleon->ThemeName(), u"Teal"_qs);
    QCOMPARE(m_chameleon->BackgroundStyle(), keloBackgroundStyle::FixedColor);
    QCOMPARE(m_chameleon->NewBackColor(), 0x00808000u);
    QCOMPARE(m_chameleon->ColorMinimum(), 60);
    QCOMPARE(m_chameleon->ColorMaximum(), 150);
    const QString form = m_window->contents();
    QVERIFY2(formProperty(form, u"BackgroundStyle"_qs).contains(u"FixedColor"_qs), qPrintable(form));
    QCOMPARE(formProperty(form, u"ThemeName"_qs), u"<string>Teal</string>"_qs);
    // Untouched by the theme: not written into the form.
    QVERIFY(formProperty(form, u"WandStyle"_qs).isEmpty());

    // The theme as one step, the name as another.
    QUndoStack *history = m_window->commandHistory();
    QCOMPARE(history->count(), 2);
    QCOMPARE(history->text(1), u"Get Theme"_qs);
    history->undo();
    QCOMPARE(m_chameleon->BackgroundStyle(), keloBackgroundStyle::None);
    QCOMPARE(m_chameleon->NewBackColor(), 0u);
    QCOMPARE(m_chameleon->ColorMinimum(), 0);
    QCOMPARE(m_chameleon->ColorMaximum(), 255);
    QCOMPARE(m_chameleon->ThemeName(), u"Teal"_qs);
    history->undo();
    QCOMPARE(m_chameleon->ThemeName(), u"DefaultTheme"_qs);

    // Save theme from the dialog writes the store under the chameleon's name.
    ran = false;
    whenDialogOpens(
        [&](QDialog *dialog) {
            auto *page = dialog->findChild<ChameleonPropertyPage *>();
            page->findChild<QLineEdit *>(u"txtThemeName"_qs)->setText(u"Saved"_qs);
            page->findChild<QSlider *>(u"sliColorStepRate"_qs)->setValue(44);
            page->Commands(ChameleonPropertyPage::SaveThemeCommand)->click();
            dialogButton(dialog, QDialogButtonBox::Ok)->click();
        },
        &ran);
    action->trigger();
    QVERIFY(ran);
    QCOMPARE(GetSetting(u"kelochameleon"_qs, u"Saved"_qs, u"ColorStepRate"_qs), u"44"_qs);
    QCOMPARE(formProperty(m_window->contents(), u"ColorStepRate"_qs), u"<number>44</number>"_qs);
}

QTEST_MAIN(TestChameleonTaskMenu)
#include "tst_chameleontaskmenu.moc"
