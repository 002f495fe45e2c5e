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

const QString EditText = QStringLiteral("Edit Chameleon Settings...");
const QStringList Bounds{"ColorMinimum", "ColorMaximum"};

using DialogSteps = std::function<void(QDialog *, ChameleonPropertyPage *)>;

QPushButton *dialogButton(QDialog *dialog, QDialogButtonBox::StandardButton which)
{
    return dialog->findChild<QDialogButtonBox *>()->button(which);
}

QSlider *slider(ChameleonPropertyPage *page, const QString &property)
{
    return page->findChild<QSlider *>(QStringLiteral("sli") + property);
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

private:
    QDesignerFormEditorInterface *m_core = nullptr;
    QDesignerFormWindowInterface *m_window = nullptr;
    Kelochameleon *m_chameleon = nullptr;
    std::unique_ptr<QWidget> m_propertyEditor;
    std::unique_ptr<KeloTest::ScopedConfigHome> m_config;

    QDesignerTaskMenuExtension *taskMenu(QObject *widget) const
    {
        return qt_extension<QDesignerTaskMenuExtension *>(m_core->extensionManager(), widget);
    }
    QStringList state() const
    {
        return KeloTest::propertyTexts(
            m_chameleon, {"ColorMinimum", "ColorMaximum", "ColorStepRate", "Interval", "ThemeName", "BackgroundStyle"});
    }
    QStringList formProperties(const QStringList &names) const
    {
        QStringList texts;
        for (const QString &name : names) {
            texts << name + QLatin1Char('=') + formProperty(m_window->contents(), name);
        }
        return texts;
    }

    // Opens the settings dialog from the task menu and runs `steps` once its
    // modal loop runs, then lets it close; false when it never opened.
    bool editSettings(const DialogSteps &steps)
    {
        QDesignerTaskMenuExtension *menu = taskMenu(m_chameleon);
        if (!menu || menu->taskActions().isEmpty()) {
            return false;
        }
        bool ran = false;
        auto *timer = new QTimer;
        timer->setInterval(10);
        QObject::connect(timer, &QTimer::timeout, [timer, steps, &ran] {
            auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
            if (!dialog) {
                return;
            }
            timer->stop();
            timer->deleteLater();
            ran = true;
            steps(dialog, dialog->findChild<ChameleonPropertyPage *>());
            if (dialog->isVisible()) {
                dialog->reject();
            }
        });
        timer->start();
        menu->taskActions().first()->trigger();
        return ran;
    }

private Q_SLOTS:
    void initTestCase()
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

    void cleanupTestCase()
    {
        for (int i = m_core->formWindowManager()->formWindowCount() - 1; i >= 0; --i) {
            delete m_core->formWindowManager()->formWindow(i);
        }
    }

    void init()
    {
        m_config = std::make_unique<KeloTest::ScopedConfigHome>();
        m_window = m_core->formWindowManager()->createFormWindow(nullptr);
        m_core->formWindowManager()->setActiveFormWindow(m_window);
        QVERIFY(m_window->setContents(QString::fromUtf8(FormText)));
        m_chameleon = m_window->mainContainer()->findChild<Kelochameleon *>(u"kelochameleon"_qs);
        QVERIFY(m_chameleon && !m_chameleon->UserMode());
        m_window->commandHistory()->clear();
    }

    void cleanup()
    {
        delete m_window;
        m_window = nullptr;
        m_chameleon = nullptr;
        m_config.reset();
    }

    // The chameleon's one task action opens the dialog; other widgets of the form do not get it.
    void applyWritesThroughThePropertySheet()
    {
        QDesignerTaskMenuExtension *menu = taskMenu(m_chameleon);
        QVERIFY(menu);
        const QList<QAction *> actions = menu->taskActions();
        QCOMPARE(actions.size(), 1);
        QCOMPARE(actions.first()->text(), EditText);
        QCOMPARE(menu->preferredEditAction(), actions.first());
        if (QDesignerTaskMenuExtension *formMenu = taskMenu(m_window->mainContainer())) {
            for (const QAction *action : formMenu->taskActions()) {
                QVERIFY(action->text() != EditText);
            }
        }
        QStringList seen; // the title, then Apply's state and the minimum at each step
        QVERIFY(editSettings([&](QDialog *dialog, ChameleonPropertyPage *page) {
            QPushButton *apply = dialogButton(dialog, QDialogButtonBox::Apply);
            seen << dialog->windowTitle() << QString::number(slider(page, "Interval")->value())
                 << QString::number(apply->isEnabled());
            slider(page, "ColorMinimum")->setValue(77);
            slider(page, "ColorMaximum")->setValue(200);
            seen << QString::number(apply->isEnabled());
            apply->click();
            seen << QString::number(apply->isEnabled()) << QString::number(m_chameleon->ColorMinimum());
            // Pending at OK: applied as well.
            slider(page, "Interval")->setValue(2500);
            dialogButton(dialog, QDialogButtonBox::Ok)->click();
        }));
        QCOMPARE(seen, (QStringList{"Edit Chameleon Settings - kelochameleon", "1000", "0", "1", "0", "77"}));

        // One undo step per Apply (OK applied the rest), and in the form file.
        QUndoStack *history = m_window->commandHistory();
        QCOMPARE(history->count(), 2);
        QCOMPARE(history->text(0), u"Edit Chameleon Settings"_qs);
        QCOMPARE(formProperties(Bounds + QStringList{"Interval"}),
            (QStringList{"ColorMinimum=<number>77</number>", "ColorMaximum=<number>200</number>",
                "Interval=<number>2500</number>"}));
        auto *sheet = qt_extension<QDesignerPropertySheetExtension *>(m_core->extensionManager(), m_chameleon);
        QVERIFY(sheet && sheet->isChanged(sheet->indexOf(u"ColorMinimum"_qs)));

        const QStringList applied = KeloTest::propertyTexts(m_chameleon, Bounds);
        QCOMPARE(applied, (QStringList{"ColorMinimum=77", "ColorMaximum=200"}));
        history->undo();
        QCOMPARE(m_chameleon->Interval(), 1000);
        QCOMPARE(KeloTest::propertyTexts(m_chameleon, Bounds), applied);
        history->undo();
        QCOMPARE(KeloTest::propertyTexts(m_chameleon, Bounds), (QStringList{"ColorMinimum=0", "ColorMaximum=255"}));
        history->redo();
        QCOMPARE(KeloTest::propertyTexts(m_chameleon, Bounds), applied);
    }

    void cancelLeavesTheFormAlone()
    {
        const QStringList before = state();
        QVERIFY(editSettings([&](QDialog *dialog, ChameleonPropertyPage *page) {
            slider(page, "ColorStepRate")->setValue(99);
            page->findChild<QLineEdit *>(u"txtThemeName"_qs)->setText(u"Never"_qs);
            dialogButton(dialog, QDialogButtonBox::Cancel)->click();
        }));
        QCOMPARE(state(), before);
        QCOMPARE(m_window->commandHistory()->count(), 0);
        QCOMPARE(formProperties({"ColorStepRate"}), QStringList{"ColorStepRate="});
    }

    void themesAreUndoableCommands()
    {
        // A theme saved by a chameleon of the same name elsewhere.
        Kelochameleon source;
        source.setObjectName(u"kelochameleon"_qs);
        KeloTest::setProperties(&source,
            {{"ThemeName", u"Teal"_qs}, {"BackgroundStyle", 2}, {"NewBackColor", 0x00808000u}, {"ColorMaximum", 150},
                {"ColorMinimum", 60}});
        source.SaveTheme();
        const QStringList before = state();
        int minimumShown = -1;
        QVERIFY(editSettings([&](QDialog *dialog, ChameleonPropertyPage *page) {
            page->findChild<QLineEdit *>(u"txtThemeName"_qs)->setText(u"Teal"_qs);
            page->Commands(ChameleonPropertyPage::GetThemeCommand)->click();
            minimumShown = slider(page, "ColorMinimum")->value();
            dialogButton(dialog, QDialogButtonBox::Cancel)->click();
        }));
        QCOMPARE(minimumShown, 60);
        const QStringList teal{"ColorMinimum=60", "ColorMaximum=150", "ColorStepRate=10", "Interval=1000",
            "ThemeName=Teal", "BackgroundStyle=2"};
        QCOMPARE(state(), teal);
        QCOMPARE(m_chameleon->NewBackColor(), 0x00808000u);
        // Untouched by the theme: not written into the form.
        QCOMPARE(formProperties({"ThemeName", "BackgroundStyle", "WandStyle"}),
            (QStringList{"ThemeName=<string>Teal</string>",
                "BackgroundStyle=<enum>Kelocontrols::keloBackgroundStyle::FixedColor</enum>", "WandStyle="}));

        // The theme as one step, the name as another.
        QUndoStack *history = m_window->commandHistory();
        QCOMPARE(history->count(), 2);
        QCOMPARE(history->text(1), u"Get Theme"_qs);
        history->undo();
        QCOMPARE(m_chameleon->NewBackColor(), 0u);
        QCOMPARE(state(), QStringList(before).replaceInStrings(u"DefaultTheme"_qs, u"Teal"_qs));
        history->undo();
        QCOMPARE(state(), before);

        // Save theme from the dialog writes the store under the chameleon's name.
        QVERIFY(editSettings([&](QDialog *dialog, ChameleonPropertyPage *page) {
            page->findChild<QLineEdit *>(u"txtThemeName"_qs)->setText(u"Saved"_qs);
            slider(page, "ColorStepRate")->setValue(44);
            page->Commands(ChameleonPropertyPage::SaveThemeCommand)->click();
            dialogButton(dialog, QDialogButtonBox::Ok)->click();
        }));
        QCOMPARE(GetSetting(u"kelochameleon"_qs, u"Saved"_qs, u"ColorStepRate"_qs), u"44"_qs);
        QCOMPARE(formProperties({"ColorStepRate"}), QStringList{"ColorStepRate=<number>44</number>"});
    }
};

QTEST_MAIN(TestChameleonTaskMenu)
#include "tst_chameleontaskmenu.moc"
