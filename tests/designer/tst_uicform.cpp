// Forms compiled by uic: the generated setupUi() includes
// <Kelocontrols/KeloscoreCard.h>, calls the typed setters (setStyle with the
// enumerator as Qt Designer writes it, setBackColor with an unsigned literal
// ...) and connects on_<object>_<event> slots to the controls' events by name.

#include "FormFile.h"
#include "ui_enumerations.h"
#include "ui_thresholds.h"
#include "ui_uicform.h"

#include <QSignalSpy>
#include <QTest>

#include <functional>

using namespace Kelocontrols;

namespace {

/// The widget a program builds from the form, with auto-connected handlers.
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
    void on_trafficLight_KeyDown(short &KeyCode, short &Shift)
    {
        Q_UNUSED(Shift);
        keyCodes.append(KeyCode);
    }
};

} // namespace

class tst_UicForm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void setsEveryProperty_data();
    void setsEveryProperty();
    void showsTheFormsValues();
    void connectsEventsByName();
};

using FormCheck = std::function<QStringList()>;

/// The properties of `file` that the form uic compiled into `Ui` does not hold.
template<class Ui>
FormCheck compiledForm(const char *file)
{
    return [file] {
        QWidget form;
        Ui ui;
        ui.setupUi(&form);
        const QString path = QStringLiteral(KELO_FORMS_DIR "/") + QLatin1String(file);
        return FormFile::mismatches(&form, FormFile::parse(FormFile::read(path)));
    };
}

void tst_UicForm::setsEveryProperty_data()
{
    QTest::addColumn<FormCheck>("check");
    QTest::newRow("every enumeration of every control") << compiledForm<Ui::EnumerationsForm>("enumerations.ui");
    QTest::newRow("thresholds away from their defaults") << compiledForm<Ui::ThresholdsForm>("thresholds.ui");
    QTest::newRow("every score card property") << compiledForm<Ui::UicScoreForm>("uicform.ui");
}

// setupUi() leaves every control holding each value of its form file.
void tst_UicForm::setsEveryProperty()
{
    QFETCH(FormCheck, check);
    const QStringList mismatches = check();
    QVERIFY2(mismatches.isEmpty(), qPrintable(mismatches.join(u'\n')));
}

void tst_UicForm::showsTheFormsValues()
{
    ScoreForm form;
    QCOMPARE(form.windowTitle(), QStringLiteral("Coverage"));
    const KeloscoreCard *gauge = form.ui.coverageGauge;
    QCOMPARE(gauge->UserMode(), true);
    // Set by retranslateUi(), which setupUi() runs last.
    QCOMPARE(gauge->ToolTip(), QStringLiteral("Line coverage"));
    QCOMPARE(gauge->grade(), 3);
    QCOMPARE(gauge->size(), QSize(40, 200));

    const KeloscoreCard *light = form.ui.trafficLight;
    QCOMPARE(light->grade(), 1);
    QCOMPARE(light->size(), QSize(36, 36));
    QCOMPARE(light->pos(), QPoint(60, 10));

    // Shown, the thresholds stay as the form has them.
    QWidget thresholds;
    Ui::ThresholdsForm ui;
    ui.setupUi(&thresholds);
    thresholds.show();
    QVERIFY(QTest::qWaitForWindowExposed(&thresholds));
    QCOMPARE(ui.belowDefaults->ScoreStar(), 0.125);
    QCOMPARE(ui.aboveDefaults->ScoreBad(), 0.84375);
    QCOMPARE(ui.belowScale->ScoreMax(), -1.0);
}

void tst_UicForm::connectsEventsByName()
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

QTEST_MAIN(tst_UicForm)
#include "tst_uicform.moc"
