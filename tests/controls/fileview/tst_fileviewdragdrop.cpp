// Dropping files on the file view in each OLEDropMode (drop events built by
// hand, with and without Ctrl), the drag-over answers, the drag source's
// events, and pasting a file list another program put on the X clipboard
// (xclip). Without a display the test starts itself again under xvfb-run.

#include "KeloTestSupport.h"
#include "shell/FileTreeFixture.h"

#include <Kelocontrols/ClipboardFiles.h>
#include <Kelocontrols/FileListModel.h>
#include <Kelocontrols/KelofileView.h>
#include <Kelocontrols/ListView.h>

#include "FileViewCommands_p.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHBoxLayout>
#include <QMenu>
#include <QMimeData>
#include <QProcess>
#include <QRubberBand>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <unistd.h>

#include <vector>

using namespace Kelocontrols;
using KeloTest::makeTree;
using KeloTest::readTree;

namespace {

QWidget *viewport(KelofileView &view)
{
    return view.listFiles()->currentView()->viewport();
}

/// The centre of @p row's item, or a point of the background below the items for -1.
QPoint pointAt(KelofileView &view, int row)
{
    QAbstractItemView *inner = view.listFiles()->currentView();
    if (row < 0)
        return QPoint(5, inner->viewport()->height() - 5);
    return inner->visualRect(view.listFiles()->model()->index(row, 0)).center();
}

/// Sends a drag over (DragEnter) and, when @p drop, the drop; answers "accepted action" of the last event.
QString dragTo(KelofileView &view, QMimeData *data, const QPoint &at, bool ctrl, bool drop)
{
    const Qt::KeyboardModifiers modifiers = ctrl ? Qt::ControlModifier : Qt::NoModifier;
    const Qt::DropActions allowed = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(at, allowed, data, Qt::LeftButton, modifiers);
    QApplication::sendEvent(viewport(view), &enter);
    if (!drop)
        return enter.isAccepted() ? QString::number(enter.dropAction()) : QStringLiteral("refused");
    QDropEvent event(at, allowed, data, Qt::LeftButton, modifiers);
    QApplication::sendEvent(viewport(view), &event);
    return event.isAccepted() ? QString::number(event.dropAction()) : QStringLiteral("refused");
}

/// A real drag (X11) runs its own event loop until a release or Escape: this ends it should nothing else.
void cancelDragSoon(QWidget *widget, int msecs = 300)
{
    QTimer::singleShot(msecs, widget, [widget] { QTest::keyClick(widget, Qt::Key_Escape); });
}

} // namespace

class TestFileViewDragDrop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_dir.reset(new QTemporaryDir);
        QVERIFY(m_dir->isValid());
    }

    void drops_data();
    void drops();
    void manualModePassesTheArguments();
    void dragSourceEvents();
    void pasteWhatAnotherProgramCopied();
    void realDragBetweenTwoLists();

private:
    QString root() const { return m_dir->path(); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestFileViewDragDrop::drops_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("onRow"); // -1: the background
    QTest::addColumn<bool>("ctrl");
    QTest::addColumn<QString>("overAnswer");
    QTest::addColumn<QString>("dropAnswer");
    QTest::addColumn<QStringList>("diskAfter");
    const QStringList untouched = {"dst/", "dst/sub/", "src/", "src/x.txt=x"};
    const QString copy = QString::number(Qt::CopyAction), move = QString::number(Qt::MoveAction);
    QTest::newRow("2: no Ctrl moves") << 2 << "dst" << -1 << false << move << move
                                      << QStringList{"dst/", "dst/sub/", "dst/x.txt=x", "src/"};
    QTest::newRow("2: Ctrl copies") << 2 << "dst" << -1 << true << copy << copy
                                    << QStringList{"dst/", "dst/sub/", "dst/x.txt=x", "src/", "src/x.txt=x"};
    QTest::newRow("2: onto a folder item") << 2 << "dst" << 0 << true << copy << copy
                                           << QStringList{"dst/", "dst/sub/", "dst/sub/x.txt=x", "src/", "src/x.txt=x"};
    QTest::newRow("2: no folder shown") << 2 << "" << -1 << false << "refused"
                                        << "refused" << untouched;
    QTest::newRow("2: moving to where it is") << 2 << "src" << -1 << false << "refused"
                                              << "refused" << untouched;
    QTest::newRow("2: copying to where it is")
        << 2 << "src" << -1 << true << copy << copy
        << QStringList{"dst/", "dst/sub/", "src/", "src/Copy (2) of x.txt=x", "src/x.txt=x"};
    QTest::newRow("1: the host decides") << 1 << "dst" << -1 << false << move << move << untouched;
    QTest::newRow("0: refused") << 0 << "dst" << -1 << true << "refused"
                                << "refused" << untouched;
}

void TestFileViewDragDrop::drops()
{
    QFETCH(int, mode);
    QFETCH(QString, shown);
    QFETCH(int, onRow);
    QFETCH(bool, ctrl);
    QFETCH(QString, overAnswer);
    QFETCH(QString, dropAnswer);
    QFETCH(QStringList, diskAfter);
    QVERIFY(makeTree(root(), {"dst/", "dst/sub/", "src/", "src/x.txt=x"}));
    KelofileView view;
    view.setOLEDropMode(mode);
    view.resize(400, 300);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    if (!shown.isEmpty())
        view.setPathRoot(root() + '/' + shown);
    std::unique_ptr<QMimeData> data(fileListMimeData({root() + "/src/x.txt"}));
    QCOMPARE(dragTo(view, data.get(), pointAt(view, onRow), ctrl, false), overAnswer);
    auto *outline = view.findChild<QRubberBand *>("dropTarget");
    QCOMPARE(outline && outline->isVisible(), mode == 2 && onRow == 0);
    QCOMPARE(dragTo(view, data.get(), pointAt(view, onRow), ctrl, true), dropAnswer);
    QCOMPARE(readTree(root()), diskAfter);

    // Data that holds no files is refused in the automatic mode.
    QMimeData text;
    text.setText("hello");
    if (mode == 2 && !shown.isEmpty())
        QCOMPARE(dragTo(view, &text, pointAt(view, -1), ctrl, false), QString("refused"));
}

void TestFileViewDragDrop::manualModePassesTheArguments()
{
    QVERIFY(makeTree(root(), {"a.txt=a"}));
    KelofileView view;
    view.setOLEDropMode(1);
    view.setPathRoot(root());
    view.resize(300, 200);
    view.show();
    QStringList events;
    connect(&view, &KelofileView::OLEDragOver,
        [&](QMimeData *data, int &effect, short &button, short &shift, float &x, float &y, short &state) {
            events << QStringLiteral("Over %1 %2 %3 %4 %5,%6 %7")
                          .arg(data->hasUrls())
                          .arg(effect)
                          .arg(button)
                          .arg(shift)
                          .arg(x)
                          .arg(y)
                          .arg(state);
            effect = 1;
        });
    connect(&view, &KelofileView::OLEDragDrop,
        [&](QMimeData *data, int &effect, short &button, short &shift, float &x, float &y) {
            events << QStringLiteral("Drop %1 %2 %3 %4 %5,%6")
                          .arg(data->hasUrls())
                          .arg(effect)
                          .arg(button)
                          .arg(shift)
                          .arg(x)
                          .arg(y);
            effect = 0;
        });
    std::unique_ptr<QMimeData> data(fileListMimeData({root() + "/a.txt"}));
    QCOMPARE(dragTo(view, data.get(), QPoint(7, 9), true, false), QString::number(Qt::CopyAction));
    QCOMPARE(dragTo(view, data.get(), QPoint(7, 9), true, true), QString("refused")); // the handler's Effect 0
    QCOMPARE(events, (QStringList{"Over 1 3 1 2 7,9 0", "Over 1 3 1 2 7,9 0", "Drop 1 3 1 2 7,9"}));
    QCOMPARE(readTree(root()), QStringList{"a.txt=a"});
}

void TestFileViewDragDrop::dragSourceEvents()
{
    QVERIFY(makeTree(root(), {"a.txt=a", "b.txt=b"}));
    KelofileView view;
    view.setPathRoot(root());
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    view.setItemSelected(2);
    QStringList events;
    bool hostCancels = false;
    connect(&view, &KelofileView::OLEStartDrag, [&](QMimeData *data, int &allowed) {
        events << "Start " + filesOfMimeData(data).join(',').remove(root() + '/') + ' ' + QString::number(allowed);
        if (hostCancels)
            allowed = 0;
    });
    connect(&view, &KelofileView::OLESetData, [&](QMimeData *data, short &format) {
        events << "SetData " + QString::number(format) + ' ' + QString::number(data->hasFormat(kHdropMimeType));
    });
    connect(&view, &KelofileView::OLEGiveFeedback,
        [&](int &effect, bool &) { events << "Feedback " + QString::number(effect); });
    connect(
        &view, &KelofileView::OLECompleteDrag, [&](int &effect) { events << "Complete " + QString::number(effect); });
    cancelDragSoon(&view);
    view.OLEDrag(); // nobody takes the drop here
    const QStringList first = events.mid(0, 2);
    QCOMPARE(first, (QStringList{"Start b.txt 3", "SetData 15 1"}));
    QCOMPARE(events.constLast(), QString("Complete 0"));
    events.clear();
    hostCancels = true;
    view.OLEDrag();
    QCOMPARE(events, (QStringList{"Start b.txt 3", "Complete 0"}));
    view.setOLEDragMode(0);
    events.clear();
    view.OLEDrag();
    QCOMPARE(events, QStringList());
}

void TestFileViewDragDrop::pasteWhatAnotherProgramCopied()
{
    if (QGuiApplication::platformName() != "xcb" || QStandardPaths::findExecutable("xclip").isEmpty())
        QSKIP("needs an X display (xvfb-run) and xclip");
    QVERIFY(makeTree(root(), {"a/", "a/one.txt=1", "b/"}));
    QProcess xclip;
    xclip.start("xclip", {"-i", "-selection", "clipboard", "-t", "text/uri-list"});
    QVERIFY(xclip.waitForStarted());
    xclip.write(QUrl::fromLocalFile(root() + "/a/one.txt").toEncoded() + "\r\n");
    xclip.closeWriteChannel();
    const auto stop = qScopeGuard([&xclip] {
        xclip.kill();
        xclip.waitForFinished();
    });
    KelofileView view;
    view.setPathRoot(root() + "/b");
    auto *commands = view.findChild<FileViewCommands *>();
    // The clipboard changes hands asynchronously: wait until Paste can act.
    QTRY_VERIFY_WITH_TIMEOUT(
        (commands->updateMenus(), view.findChild<QMenu *>("popOnBack")->actions()[4]->isEnabled()), 20000);
    QTest::keyClick(view.listFiles()->currentView(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(
        readTree(root()), (QStringList{"a/", "a/one.txt=1", "b/", "b/one.txt=1"})); // another program's list copies
    QCOMPARE(view.ItemCount(), 1);
}

// The mouse drives a drag the way the user's does: Qt's X11 drag watches the application's mouse events and
// finds the target window under the pointer on the X server, so the lists must be real, mapped windows.
void TestFileViewDragDrop::realDragBetweenTwoLists()
{
    if (QGuiApplication::platformName() != "xcb")
        QSKIP("needs an X display (xvfb-run): the offscreen platform has no drag and drop");
    QVERIFY(makeTree(root(), {"dst/", "src/", "src/x.txt=x"}));
    QWidget window;
    auto *layout = new QHBoxLayout(&window);
    auto *left = new KelofileView(&window);
    auto *right = new KelofileView(&window);
    layout->addWidget(left);
    layout->addWidget(right);
    left->setOLEDragMode(2);
    left->setPathRoot(root() + "/src");
    right->setPathRoot(root() + "/dst");
    window.setGeometry(20, 20, 640, 300);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QStringList events;
    connect(left, &KelofileView::OLEStartDrag, [&](QMimeData *, int &) { events << "Start"; });
    connect(left, &KelofileView::OLEGiveFeedback,
        [&](int &effect, bool &) { events << "Feedback " + QString::number(effect); });
    connect(
        left, &KelofileView::OLECompleteDrag, [&](int &effect) { events << "Complete " + QString::number(effect); });

    QWidget *from = viewport(*left);
    QWidget *to = viewport(*right);
    const QPoint item = pointAt(*left, 0);
    QTimer::singleShot(200, to, [to] {
        for (int x = 20; x <= 120; x += 20) {
            QTest::mouseMove(to, QPoint(x, 60));
            QTest::qWait(30);
        }
        QTest::mouseRelease(to, Qt::LeftButton, Qt::NoModifier, QPoint(120, 60));
    });
    cancelDragSoon(from, 5000);
    QTest::mousePress(from, Qt::LeftButton, Qt::NoModifier, item);
    QTest::mouseMove(from, item + QPoint(30, 0)); // starts the drag and returns when it is over
    QTRY_COMPARE(events.constLast(), QString("Complete 2"));
    QCOMPARE(events.constFirst(), QString("Start"));
    QVERIFY2(events.contains("Feedback 2"), qPrintable(events.join(", ")));
    QCOMPARE(readTree(root()), (QStringList{"dst/", "dst/x.txt=x", "src/"}));
    QCOMPARE(left->ItemCount(), 0); // a completed move refreshes the source list
}

int main(int argc, char **argv)
{
    KeloTest::restartUnderXvfb(argc, argv);
    QApplication app(argc, argv);
    TestFileViewDragDrop test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_fileviewdragdrop.moc"
