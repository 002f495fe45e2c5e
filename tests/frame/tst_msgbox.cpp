#include "MsgBox.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "KeloTestSupport.h"

using namespace Kelocontrols;

namespace {

// What a standard box showed before it was answered.
struct ShownBox
{
    bool seen = false;
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton defaultButton = QMessageBox::NoButton;
};

QMessageBox *openMessageBox()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (auto *box = qobject_cast<QMessageBox *>(widget); box && box->isVisible()) {
            return box;
        }
    }
    return nullptr;
}

// Waits for the next message box to open, records what it shows and answers
// it by pressing `key`; the box runs its own event loop meanwhile.
void answerNextBox(ShownBox *shown, Qt::Key key)
{
    auto *timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, shown, key] {
        QMessageBox *box = openMessageBox();
        if (!box) {
            return;
        }
        timer->stop();
        timer->deleteLater();
        *shown = {true, box->windowTitle(), box->text(), box->icon(), box->standardButtons(),
            box->defaultButton() ? box->standardButton(box->defaultButton()) : QMessageBox::NoButton};
        QTest::keyClick(box, key);
    });
    timer->start();
}

} // namespace

class TestMsgBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Each test starts from the standard box; a box left open must not hang the run.
    void init() { setMsgBoxHandler({}); }

    void cleanup()
    {
        while (QMessageBox *box = openMessageBox()) {
            box->done(0);
        }
        setMsgBoxHandler({});
    }

    void handlerReceivesArgumentsExactly()
    {
        KeloTest::MsgBoxRecorder boxes({MsgBoxResult::Yes, MsgBoxResult::Cancel, MsgBoxResult::Cancel});
        const QString prompt = u"Are you sure you want to delete 'a.txt'?\r\n\r\n  Tab:\there \"quoted\""_qs;
        QCOMPARE(MsgBox(prompt, 52, u"Confirm File Delete"_qs), MsgBoxResult::Yes);
        QCOMPARE(MsgBox(u"Only a prompt"_qs), MsgBoxResult::Cancel);
        QCOMPARE(MsgBox(QString(), 51 + MsgBoxStyle::DefaultButton3, u"  padded title "_qs), MsgBoxResult::Cancel);

        QCOMPARE(boxes.prompts(), (QStringList{prompt, u"Only a prompt"_qs, QString()}));
        QCOMPARE(boxes.styles(), (QList<int>{52, 0, 51 + 512}));
        QCOMPARE(boxes.titles(), (QStringList{u"Confirm File Delete"_qs, QString(), u"  padded title "_qs}));
        QVERIFY(!openMessageBox());
    }

    void handlersChainAndRestore()
    {
        QStringList firstCalls;
        const MsgBoxHandler first = [&firstCalls](const QString &Prompt, int Buttons, const QString &Title) {
            firstCalls << u"%1|%2|%3"_qs.arg(Prompt).arg(Buttons).arg(Title);
            return MsgBoxResult::Yes;
        };
        // What comes back for the standard box is that box, callable on its own.
        const MsgBoxHandler standard = setMsgBoxHandler(first);
        QVERIFY(standard);
        ShownBox direct;
        answerNextBox(&direct, Qt::Key_Escape);
        QCOMPARE(standard(u"Shown by the standard box"_qs, 1, u"Chained"_qs), MsgBoxResult::Cancel);
        QCOMPARE(direct.title, u"Chained"_qs);
        QCOMPARE(direct.buttons, QMessageBox::Ok | QMessageBox::Cancel);
        QVERIFY(firstCalls.isEmpty());

        // A second handler that asks the one it replaced and turns its answer round.
        MsgBoxHandler previous;
        int secondCalls = 0;
        previous = setMsgBoxHandler([&](const QString &Prompt, int Buttons, const QString &Title) {
            ++secondCalls;
            return previous(Prompt, Buttons, Title) == MsgBoxResult::Yes ? MsgBoxResult::No : MsgBoxResult::OK;
        });
        QVERIFY(previous);
        QCOMPARE(MsgBox(u"Replace?"_qs, 51, u"Confirm File Replace"_qs), MsgBoxResult::No);
        QCOMPARE(secondCalls, 1);
        QCOMPARE(firstCalls, QStringList{u"Replace?|51|Confirm File Replace"_qs});

        // Restoring the first handler hands back the second, still callable.
        const MsgBoxHandler second = setMsgBoxHandler(previous);
        QCOMPARE(MsgBox(u"again"_qs), MsgBoxResult::Yes);
        QCOMPARE(secondCalls, 1);
        QCOMPARE(second(u"direct"_qs, 0, QString()), MsgBoxResult::No);
        QCOMPARE(secondCalls, 2);
        QCOMPARE(firstCalls.size(), 3);

        // An empty handler brings the standard box back; so does handing the standard box's handler back in.
        QCOMPARE(setMsgBoxHandler({})(u"x"_qs, 0, QString()), MsgBoxResult::Yes);
        ShownBox shown;
        answerNextBox(&shown, Qt::Key_Return);
        QCOMPARE(MsgBox(u"The standard box"_qs, 0, u"Standard"_qs), MsgBoxResult::OK);
        QCOMPARE(shown.text + u'|' + shown.title, u"The standard box|Standard"_qs);
        setMsgBoxHandler(first);
        setMsgBoxHandler(standard);
        ShownBox again;
        answerNextBox(&again, Qt::Key_Return);
        QCOMPARE(MsgBox(u"Back to standard"_qs), MsgBoxResult::OK);
        QVERIFY(again.seen);
        QCOMPARE(firstCalls.size(), 4);
    }

    void standardBoxFollowsStyle_data()
    {
        using B = QMessageBox;
        QTest::addColumn<int>("style");
        QTest::addColumn<QMessageBox::StandardButtons>("buttons");
        QTest::addColumn<QMessageBox::Icon>("icon");
        QTest::addColumn<QMessageBox::StandardButton>("defaultButton");
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<int>("answer");
        const QMessageBox::StandardButtons ok = B::Ok;
        const auto okCancel = B::Ok | B::Cancel;
        const auto yesNoCancel = B::Yes | B::No | B::Cancel;
        const auto yesNo = B::Yes | B::No;
        const auto abortRetryIgnore = B::Abort | B::Retry | B::Ignore;
        const auto retryCancel = B::Retry | B::Cancel;

        QTest::newRow("0 OK, Enter") << 0 << ok << B::NoIcon << B::Ok << Qt::Key_Return << 1;
        QTest::newRow("0 OK, Escape") << 0 << ok << B::NoIcon << B::Ok << Qt::Key_Escape << 1;
        QTest::newRow("16 stop sign") << 16 << ok << B::Critical << B::Ok << Qt::Key_Return << 1;
        QTest::newRow("64 information") << 64 << ok << B::Information << B::Ok << Qt::Key_Return << 1;
        QTest::newRow("48 exclamation") << 48 << ok << B::Warning << B::Ok << Qt::Key_Escape << 1;
        QTest::newRow("1 OK/Cancel, Escape") << 1 << okCancel << B::NoIcon << B::Ok << Qt::Key_Escape << 2;
        QTest::newRow("1+256 OK/Cancel, Enter") << 257 << okCancel << B::NoIcon << B::Cancel << Qt::Key_Return << 2;
        QTest::newRow("51 Yes/No/Cancel, Enter") << 51 << yesNoCancel << B::Warning << B::Yes << Qt::Key_Return << 6;
        QTest::newRow("51 Yes/No/Cancel, Escape") << 51 << yesNoCancel << B::Warning << B::Yes << Qt::Key_Escape << 2;
        QTest::newRow("51+256 default No") << 307 << yesNoCancel << B::Warning << B::No << Qt::Key_Return << 7;
        QTest::newRow("51+512 default Cancel") << 563 << yesNoCancel << B::Warning << B::Cancel << Qt::Key_Return << 2;
        QTest::newRow("52 Yes/No, Enter") << 52 << yesNo << B::Warning << B::Yes << Qt::Key_Return << 6;
        QTest::newRow("52+256 Yes/No, default No") << 308 << yesNo << B::Warning << B::No << Qt::Key_Return << 7;
        QTest::newRow("36 Yes/No question") << 36 << yesNo << B::Question << B::Yes << Qt::Key_Return << 6;
        QTest::newRow("2+512 Ignore") << 514 << abortRetryIgnore << B::NoIcon << B::Ignore << Qt::Key_Return << 5;
        QTest::newRow("2 Abort") << 2 << abortRetryIgnore << B::NoIcon << B::Abort << Qt::Key_Return << 3;
        QTest::newRow("5+16 Retry/Cancel") << 21 << retryCancel << B::Critical << B::Retry << Qt::Key_Return << 4;
        QTest::newRow("5 Retry/Cancel, Escape") << 5 << retryCancel << B::NoIcon << B::Retry << Qt::Key_Escape << 2;
        QTest::newRow("4+512 third default on two buttons")
            << 516 << yesNo << B::NoIcon << B::No << Qt::Key_Return << 7;
    }

    void standardBoxFollowsStyle()
    {
        QFETCH(int, style);
        QFETCH(QMessageBox::StandardButtons, buttons);
        QFETCH(QMessageBox::Icon, icon);
        QFETCH(QMessageBox::StandardButton, defaultButton);
        QFETCH(Qt::Key, key);
        QFETCH(int, answer);

        ShownBox shown;
        answerNextBox(&shown, key);
        QCOMPARE(MsgBox(u"First line\r\nSecond line"_qs, style, u"Kelocontrols test"_qs), answer);
        QVERIFY(shown.seen);
        QCOMPARE(shown.buttons, buttons);
        QCOMPARE(shown.icon, icon);
        QCOMPARE(shown.defaultButton, defaultButton);
        QCOMPARE(shown.title, u"Kelocontrols test"_qs);
        QCOMPARE(shown.text, u"First line\nSecond line"_qs);

        // Without a title the box is titled with the application's name.
        answerNextBox(&shown, key);
        QCOMPARE(MsgBox(u"x"_qs, style), answer);
        QCOMPARE(shown.title, QGuiApplication::applicationDisplayName());
    }
};

QTEST_MAIN(TestMsgBox)
#include "tst_msgbox.moc"
