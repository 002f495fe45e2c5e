// A form compiled by uic: the generated setupUi() includes
// <Kelocontrols/KeloscoreCard.h>, calls the typed setters (setStyle with the
// enumerator spelled in full, setBackColor with an unsigned literal ...) and
// connects on_<object>_<event> slots to the controls' events by name.

#include "ui_uicform.h"

#include <QSignalSpy>
#include <QTest>

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
    void setsEveryProperty();
    void connectsEventsByName();
};

void tst_UicForm::setsEveryProperty()
{
    ScoreForm form;
    QCOMPARE(form.windowTitle(), QStringLiteral("Coverage"));

    const KeloscoreCard *gauge = form.ui.coverageGauge;
    QCOMPARE(gauge->objectName(), QStringLiteral("coverageGauge"));
    QCOMPARE(gauge->UserMode(), true);
    QCOMPARE(gauge->BackColor(), 0x80000005u);
    QCOMPARE(gauge->ForeColor(), 0x00FF0000u);
    QCOMPARE(gauge->Enabled(), false);
    QCOMPARE(gauge->Font().pointSize(), 14);
    QCOMPARE(gauge->Font().italic(), true);
    QCOMPARE(gauge->BorderStyle(), 0);
    QCOMPARE(gauge->Value(), 0.625);
    QCOMPARE(gauge->Style(), keloScoreCardStyle::GaugeOverrun);
    QCOMPARE(gauge->ScoreStar(), 0.875);
    QCOMPARE(gauge->ScoreGood(), 0.75);
    QCOMPARE(gauge->ScoreMaybe(), 0.5);
    QCOMPARE(gauge->ScoreBad(), 0.125);
    QCOMPARE(gauge->ScoreMin(), 0.0);
    QCOMPARE(gauge->ScoreMax(), 1.0);
    QCOMPARE(gauge->ShowLimitLines(), true);
    QCOMPARE(gauge->ShowTickLinesEvery(), 0.2);
    QCOMPARE(gauge->TickLineColor(), 0x80000010u);
    QCOMPARE(gauge->FontColor(), 255u);
    QCOMPARE(gauge->ShowValue(), keloShowValue::AtRight);
    QCOMPARE(gauge->ToolTipStyle(), keloToolTipStyle::ShowValueAsTip);
    // Set by retranslateUi(), which setupUi() runs last.
    QCOMPARE(gauge->ToolTip(), QStringLiteral("Line coverage"));
    QCOMPARE(gauge->ShowMarker(), keloMarkerStyle::ShowBar);
    QCOMPARE(gauge->ShowBlocks(), 10);
    QCOMPARE(gauge->GaugeOrientation(), keloGaugeOrientation::Vertical);
    QCOMPARE(gauge->grade(), 3);
    QCOMPARE(gauge->size(), QSize(40, 200));

    const KeloscoreCard *light = form.ui.trafficLight;
    QCOMPARE(light->UserMode(), true);
    QCOMPARE(light->Style(), keloScoreCardStyle::TrafficLightLarge);
    QCOMPARE(light->Value(), 0.125);
    QCOMPARE(light->grade(), 1);
    QCOMPARE(light->size(), QSize(36, 36));
    QCOMPARE(light->pos(), QPoint(60, 10));
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
