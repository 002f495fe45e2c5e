// The file view's popup menus, commands and drag and drop on real temporary
// folders: the menus' entries, delete with each question and answer, a
// refusal of the file system, the inert entries, new folders, renaming in
// place, cut / copy / paste between two lists, deleting to the desktop's trash
// on the home file system and on a second one (a tmpfs mounted in a private
// mount namespace), drops in each OLEDropMode (events built by hand), the drag
// source's events, a real drag between two lists and pasting what another
// program (xclip) put on the X clipboard. Without a display the test starts
// itself again under xvfb-run.

#include "KeloTestSupport.h"
#include "shell/FileTreeFixture.h"

#include <Kelocontrols/ClipboardFiles.h>
#include <Kelocontrols/FileListModel.h>
#include <Kelocontrols/KelofileView.h>
#include <Kelocontrols/ListView.h>
#include <Kelocontrols/PropertyBag.h>

#include "DesktopTrash_p.h"
#include "FileViewCommands_p.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QProcess>
#include <QRegularExpression>
#include <QRubberBand>
#include <QScopeGuard>
#include <QTest>

#include <sched.h>
#include <sys/mount.h>

using namespace Kelocontrols;
using KeloTest::makeTree;
using KeloTest::MsgBoxRecorder;
using KeloTest::readTree;
using KeloTest::sorted;

namespace {

bool g_privateMounts = false;

QStringList names(const KelofileView &view)
{
    QStringList list;
    for (int r = 0; r < view.ItemCount(); ++r)
        list << view.listFiles()->model()->text(r, FileListModel::Name);
    return list;
}

void select(KelofileView &view, const QStringList &wanted)
{
    view.setMultiSelect(true);
    QItemSelectionModel *selection = view.listFiles()->selectionModel();
    selection->clearSelection();
    for (int r = 0; r < view.ItemCount(); ++r) {
        if (wanted.contains(view.listFiles()->model()->text(r, FileListModel::Name)))
            selection->select(
                view.listFiles()->model()->index(r, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
}

QMenu *menu(KelofileView &view, const char *name)
{
    return view.findChild<QMenu *>(QString::fromLatin1(name));
}

QAction *entry(KelofileView &view, const char *name, int index)
{
    return menu(view, name)->actions().at(index);
}

/// Chooses an entry the way the user does: the menu is about to show (entries are greyed), then the entry.
void choose(KelofileView &view, const char *name, int index)
{
    Q_EMIT menu(view, name)->aboutToShow();
    QAction *action = entry(view, name, index);
    QVERIFY2(action->isEnabled(), qPrintable(action->text()));
    action->trigger();
}

QAbstractItemView *inner(KelofileView &view)
{
    return view.listFiles()->currentView();
}

/// The centre of @p row's item, or a point of the background below the items for -1.
QPoint pointAt(KelofileView &view, int row)
{
    if (row < 0)
        return QPoint(5, inner(view)->viewport()->height() - 5);
    return inner(view)->visualRect(view.listFiles()->model()->index(row, 0)).center();
}

/// Sends a context menu event at @p row (-1: the background) and answers whether popup @p name shows.
bool showsMenuAt(KelofileView &view, int row, const char *name)
{
    const QPoint at = pointAt(view, row);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, inner(view)->viewport()->mapToGlobal(at));
    QApplication::sendEvent(inner(view)->viewport(), &event);
    const bool shown = QTest::qWaitFor([&] { return menu(view, name)->isVisible(); });
    menu(view, name)->close();
    return shown;
}

/// Sends a drag over (DragEnter) and, when @p drop, the drop; answers "accepted action" of the last event.
QString dragTo(KelofileView &view, QMimeData *data, const QPoint &at, bool ctrl, bool drop)
{
    const Qt::KeyboardModifiers modifiers = ctrl ? Qt::ControlModifier : Qt::NoModifier;
    const Qt::DropActions allowed = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(at, allowed, data, Qt::LeftButton, modifiers);
    QDropEvent dropped(at, allowed, data, Qt::LeftButton, modifiers);
    QDropEvent &event = drop ? dropped : enter;
    if (drop)
        QApplication::sendEvent(inner(view)->viewport(), &enter);
    QApplication::sendEvent(inner(view)->viewport(), &event);
    return event.isAccepted() ? QString::number(event.dropAction()) : QStringLiteral("refused");
}

/// The values as texts, separated by spaces.
template<typename... Values>
QString joined(const Values &...values)
{
    return QStringList{QVariant::fromValue(values).toString()...}.join(QLatin1Char(' '));
}

/// A real drag (X11) runs its own event loop until a release or Escape: this ends it should nothing else.
void cancelDragSoon(QWidget *widget, int msecs = 300)
{
    QTimer::singleShot(msecs, widget, [widget] { QTest::keyClick(widget, Qt::Key_Escape); });
}

/// The entries a file manager would restore from @p trash: "original path=contents" for each info file read back.
QStringList restorable(const QString &trash, const QString &topDir)
{
    QStringList found;
    const QStringList infos = QDir(trash + "/info").entryList({"*.trashinfo"}, QDir::Files);
    for (const QString &info : infos) {
        const QStringList lines = KeloTest::readTextFile(trash + "/info/" + info).split('\n');
        if (lines.value(0) != "[Trash Info]" || !lines.value(2).startsWith("DeletionDate="))
            return {"bad info file " + info};
        QString original = QString::fromUtf8(QByteArray::fromPercentEncoding(lines.value(1).mid(5).toUtf8()));
        if (!topDir.isEmpty())
            original = topDir + '/' + original;
        const QString stored = trash + "/files/" + info.chopped(10);
        found << original + '=' + KeloTest::readTextFile(stored);
        QDir().rename(stored, original); // the restore
    }
    return found;
}

} // namespace

class TestFileViewCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_dir.reset(new QTemporaryDir);
        QVERIFY(m_dir->isValid());
    }

    void menus()
    {
        KelofileView view;
        const auto captions = [&](const char *name) {
            QStringList list;
            for (const QAction *action : menu(view, name)->actions())
                list << (action->isSeparator() ? QStringLiteral("-") : action->text());
            return list;
        };
        for (const char *name : {"popOnFile", "popOnBack", "popView"})
            QCOMPARE(menu(view, name)->parent(), &view);
        QCOMPARE(captions("popOnFile"),
            (QStringList{"&Open", "&Print", "-", "Cu&t", "&Copy", "-", "Create &Shortcut", "&Delete", "Rena&me", "-",
                "Prope&rties"}));
        QCOMPARE(captions("popOnBack"),
            (QStringList{"&View", "-", "R&efresh", "-", "&Paste", "Paste &Shortcut", "&Undo", "-", "Ne&w Folder", "-",
                "P&roperties"}));
        QCOMPARE(captions("popView"), (QStringList{"Lar&ge Icons", "S&mall Icons", "&List", "&Details"}));
        QCOMPARE(entry(view, "popOnBack", 0)->menu(), menu(view, "popView"));

        // The right click: on an item it selects it and opens popOnFile, on the background popOnBack.
        QVERIFY(makeTree(root(), {"a.txt=a", "b.txt=b"}));
        view.setPathRoot(root());
        view.resize(400, 300);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QVERIFY(showsMenuAt(view, 1, "popOnFile"));
        QCOMPARE(view.ItemSelected(), 2);
        QVERIFY(showsMenuAt(view, -1, "popOnBack"));
        choose(view, "popView", 1); // popView sets View
        QCOMPARE(view.View(), 1);

        // Greyed entries: nothing selected, nothing to paste; My Computer takes no new folder.
        auto *commands = view.findChild<FileViewCommands *>();
        select(view, {});
        QGuiApplication::clipboard()->clear();
        commands->updateMenus();
        for (int index : {FileViewCommands::Open, FileViewCommands::Delete, FileViewCommands::Rename})
            QVERIFY2(!entry(view, "popOnFile", index)->isEnabled(), qPrintable(QString::number(index)));
        QVERIFY(!entry(view, "popOnBack", FileViewCommands::Paste)->isEnabled());
        QVERIFY(entry(view, "popOnBack", FileViewCommands::NewFolder)->isEnabled());
        select(view, {"a.txt"});
        choose(view, "popOnFile", FileViewCommands::Copy);
        commands->updateMenus();
        QVERIFY(entry(view, "popOnFile", FileViewCommands::Delete)->isEnabled());
        QVERIFY(entry(view, "popOnBack", FileViewCommands::Paste)->isEnabled());
        view.setPathRoot(KelofileView::MyComputer);
        commands->updateMenus();
        QVERIFY(!entry(view, "popOnBack", FileViewCommands::BackProperties)->isEnabled());
        QVERIFY(!entry(view, "popOnBack", FileViewCommands::NewFolder)->isEnabled());
    }
    void deleteAsks_data()
    {
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<bool>("byKey");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("box");
        QTest::addColumn<QStringList>("diskAfter");
        const QStringList tree = {"a.txt", "b.txt", "d/", "d/in.txt", "ro/", "ro/x"};
        const QString oneFile = "Confirm File Delete|52|Are you sure you want to send 'a.txt' to the Recycle Bin?";
        const QString folder = "Confirm Folder Delete|52|Are you sure you want to remove the folder 'd' and\r\n"
                               "move all its contents to the Recycle Bin?";
        const QString readOnly = "Confirm Folder Delete|52|The folder 'ro' is a read-only folder.  Are you sure you\r\n"
                                 "want to remove it and move all its contents to the Recycle Bin?";
        const QString three = "Confirm File Delete|52|Are you sure you want to send these 3 items to the Recycle Bin?";
        const QStringList all{"a.txt", "d", "ro"};
        QTest::newRow("one file, Yes") << QStringList{"a.txt"} << true << 6 << oneFile
                                       << QStringList{"b.txt", "d/", "d/in.txt", "ro/", "ro/x"};
        QTest::newRow("one file, No") << QStringList{"a.txt"} << false << 7 << oneFile << tree;
        QTest::newRow("one folder, Yes") << QStringList{"d"} << false << 6 << folder
                                         << QStringList{"a.txt", "b.txt", "ro/", "ro/x"};
        QTest::newRow("read-only folder, Yes")
            << QStringList{"ro"} << true << 6 << readOnly << QStringList{"a.txt", "b.txt", "d/", "d/in.txt"};
        QTest::newRow("read-only folder, No") << QStringList{"ro"} << false << 7 << readOnly << tree;
        QTest::newRow("three, Yes") << all << true << 6 << three << QStringList{"b.txt"};
        QTest::newRow("three, No") << all << false << 7 << three << tree;
        QTest::newRow("three, Cancel is not Yes") << all << false << 2 << three << tree;
    }
    void deleteAsks()
    {
        QFETCH(QStringList, selected);
        QFETCH(bool, byKey);
        QFETCH(int, answer);
        QFETCH(QString, box);
        QFETCH(QStringList, diskAfter);
        QVERIFY(makeTree(root(), {"a.txt=a", "b.txt=b", "d/", "d/in.txt=i", "ro/", "ro/x=x"}));
        QVERIFY(::chmod(QFile::encodeName(root() + "/ro").constData(), 0555) == 0);
        QVERIFY(::chmod(QFile::encodeName(root() + "/a.txt").constData(), 0444) == 0); // forced: read-only files go too
        KelofileView view;
        view.setPathRoot(root());
        select(view, selected);
        MsgBoxRecorder boxes({answer});
        if (byKey)
            QTest::keyClick(inner(view), Qt::Key_Delete);
        else
            choose(view, "popOnFile", FileViewCommands::Delete);
        QCOMPARE(boxes.titled(), QStringList{box});
        QCOMPARE(readTree(root()).replaceInStrings(QRegularExpression("=.*"), ""), sorted(diskAfter));
        // The list lost exactly the deleted items.
        QStringList listed;
        for (const QString &e : diskAfter)
            if (!e.contains('/') || (e.endsWith('/') && e.count('/') == 1))
                listed << (e.endsWith('/') ? e.chopped(1) : e);
        QCOMPARE(sorted(names(view)), sorted(listed));
    }
    void refusedDeleteRaisesAndKeepsWhatWasDone()
    {
        if (!g_privateMounts)
            QSKIP("needs root and a private mount namespace");
        QVERIFY(makeTree(root(), {"a.txt=a", "z/", "z/keep=k"}));
        const QByteArray z = QFile::encodeName(root() + "/z");
        QVERIFY(::mount(z.constData(), z.constData(), nullptr, MS_BIND, nullptr) == 0);
        QVERIFY(::mount(nullptr, z.constData(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0);
        const auto unmount = qScopeGuard([&z] { ::umount(z.constData()); });
        KelofileView view;
        view.setPathRoot(root());
        QCOMPARE(names(view), (QStringList{"z", "a.txt"}));

        // Called directly, the refusal reaches the caller; the later item (walked first) is gone already.
        select(view, {"a.txt", "z"});
        QCOMPARE(KeloTest::errorNumberOf([&] { view.findChild<FileViewCommands *>()->deleteSelected(false); }), 70);
        QCOMPARE(names(view), QStringList{"z"});
        QCOMPARE(readTree(root()), (QStringList{"z/", "z/keep=k"}));

        // From the menu nobody can catch it: the error is shown.
        select(view, {"z"});
        MsgBoxRecorder boxes({6});
        choose(view, "popOnFile", FileViewCommands::Delete);
        QCOMPARE(boxes.titled().size(), 2);
        QVERIFY2(boxes.titled()[1].startsWith("|16|Cannot delete z: "), qPrintable(boxes.titled()[1]));
        QCOMPARE(names(view), QStringList{"z"});
    }
    void inertEntriesDoNothing()
    {
        QVERIFY(makeTree(root(), {"a.txt=a"}));
        KelofileView view;
        view.setPathRoot(root());
        select(view, {"a.txt"});
        QGuiApplication::clipboard()->setText("untouched");
        MsgBoxRecorder boxes;
        choose(view, "popOnFile", FileViewCommands::CreateShortcut);
        choose(view, "popOnBack", FileViewCommands::PasteShortcut);
        choose(view, "popOnBack", FileViewCommands::Undo);
        QCOMPARE(boxes.titled(), QStringList());
        QCOMPARE(readTree(root()), QStringList{"a.txt=a"});
        QCOMPARE(names(view), QStringList{"a.txt"});
        QCOMPARE(QGuiApplication::clipboard()->text(), QString("untouched"));
    }
    void newFolders()
    {
        QVERIFY(makeTree(root(), {"New folder (2)/"}));
        KelofileView view;
        view.setPathRoot(root());
        view.show();
        choose(view, "popOnBack", FileViewCommands::NewFolder);
        auto *editor = inner(view)->findChild<QLineEdit *>("labelEditor");
        QVERIFY(editor); // the new folder is put into rename
        QCOMPARE(view.ItemSelected(), 2);
        QTest::keyClick(editor, Qt::Key_Escape);
        choose(view, "popOnBack", FileViewCommands::NewFolder);
        QCOMPARE(readTree(root()), (QStringList{"New folder (2)/", "New folder (3)/", "New folder/"}));
        QCOMPARE(names(view), (QStringList{"New folder (2)", "New folder", "New folder (3)"}));
    }
    void rename_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QStringList>("boxTitles");
        QTest::addColumn<QStringList>("diskAfter");
        const QStringList before = {"b.txt=b", "report.txt=r"};
        QTest::newRow("plain") << "notes.txt" << 1 << QStringList() << QStringList{"b.txt=b", "notes.txt=r"};
        QTest::newRow("same name in other case") << "Report.TXT" << 1 << QStringList() << before;
        QTest::newRow("empty") << "" << 1 << QStringList() << before;
        QTest::newRow("slash") << "a/b.txt" << 1 << QStringList{"Rename|16"} << before;
        QTest::newRow("extension, No") << "report.doc" << 7 << QStringList{"Rename|52"} << before;
        QTest::newRow("extension, Yes") << "report.doc" << 6 << QStringList{"Rename|52"}
                                        << QStringList{"b.txt=b", "report.doc=r"};
        QTest::newRow("taken name is never replaced")
            << "b.txt" << 1 << QStringList{"Error Renaming File|16"} << before;
    }
    void rename()
    {
        QFETCH(QString, typed);
        QFETCH(int, answer);
        QFETCH(QStringList, boxTitles);
        QFETCH(QStringList, diskAfter);
        QVERIFY(makeTree(root(), {"b.txt=b", "report.txt=r"}));
        KelofileView view;
        view.setPathRoot(root());
        view.show();
        QStringList events;
        connect(&view, &KelofileView::BeforeLabelEdit, [&](int &) { events << "Before"; });
        connect(&view, &KelofileView::AfterLabelEdit, [&](int &, QString &name) { events << "After:" + name; });
        select(view, {"report.txt"});
        MsgBoxRecorder boxes({answer});
        QTest::keyClick(inner(view), Qt::Key_F2);
        auto *editor = inner(view)->findChild<QLineEdit *>("labelEditor");
        QVERIFY(editor);
        QTRY_COMPARE(editor->selectedText(), QString("report"));
        editor->setText(typed);
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(events, (QStringList{"Before", "After:" + typed})); // the editor commits from the event loop
        QStringList titles;
        for (const QString &box : boxes.titled())
            titles << box.section('|', 0, 1);
        QCOMPARE(titles, boxTitles);
        if (boxTitles == QStringList{"Rename|52"})
            QCOMPARE(boxes.titled()[0].section('|', 2),
                QString("If you change a filename extension, the file may become unusable.\r\n\r\n"
                        "Are you sure you want to change it?"));
        QCOMPARE(readTree(root()), diskAfter);
        QCOMPARE(view.ItemIndex(), 2); // the edited item became the current one
        QCOMPARE(view.ItemName(), diskAfter[1].section('=', 0, 0)); // RealName follows the disk
    }
    void editsRefusedAndCancelled()
    {
        QVERIFY(makeTree(root(), {"a.txt=a"}));
        KelofileView view;
        view.setPathRoot(root());
        view.show();
        view.setItemSelected(1);
        const auto editor = [&] { return inner(view)->findChild<QLineEdit *>("labelEditor"); };
        view.setAllowLabelEdit(false);
        QTest::keyClick(inner(view), Qt::Key_F2);
        QVERIFY(!editor());
        view.setAllowLabelEdit(true);
        int refuse = 1;
        connect(&view, &KelofileView::BeforeLabelEdit, [&](int &cancel) { cancel = refuse; });
        QTest::keyClick(inner(view), Qt::Key_F2);
        QVERIFY(!editor());
        refuse = 0;
        connect(&view, &KelofileView::AfterLabelEdit, [](int &cancel, QString &) { cancel = 1; });
        QTest::keyClick(inner(view), Qt::Key_F2);
        QVERIFY(editor());
        editor()->setText("b.txt");
        QTest::keyClick(editor(), Qt::Key_Return);
        QTRY_VERIFY(!editor());
        QCOMPARE(readTree(root()), QStringList{"a.txt=a"});
        QCOMPARE(names(view), QStringList{"a.txt"});
        // The keyboard's menu key opens the menu that fits the selection.
        QTest::keyClick(inner(view), Qt::Key_F10, Qt::ShiftModifier);
        QTRY_VERIFY(menu(view, "popOnFile")->isVisible());
        menu(view, "popOnFile")->close();
    }
    void copyCutPasteBetweenLists()
    {
        QVERIFY(makeTree(root(), {"a/", "a/one.txt=1", "a/two.txt=2", "b/"}));
        KelofileView left, right;
        left.setPathRoot(root() + "/a");
        right.setPathRoot(root() + "/b");
        MsgBoxRecorder boxes;
        select(left, {"one.txt"});
        QTest::keyClick(inner(left), Qt::Key_C, Qt::ControlModifier);
        QTest::keyClick(inner(right), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(names(right), QStringList{"one.txt"}); // pasting refreshes the list
        choose(left, "popOnBack", FileViewCommands::Paste); // into its own folder: a duplicate
        QCOMPARE(readTree(root()),
            (QStringList{"a/", "a/Copy (2) of one.txt=1", "a/one.txt=1", "a/two.txt=2", "b/", "b/one.txt=1"}));
        select(left, {"two.txt"});
        choose(left, "popOnFile", FileViewCommands::Cut);
        choose(right, "popOnBack", FileViewCommands::Paste);
        QCOMPARE(readTree(root()),
            (QStringList{"a/", "a/Copy (2) of one.txt=1", "a/one.txt=1", "b/", "b/one.txt=1", "b/two.txt=2"}));
        // A clipboard replaced by someone else after a cut is copied, never moved.
        select(left, {"one.txt"});
        QTest::keyClick(inner(left), Qt::Key_X, Qt::ControlModifier);
        ClipboardPutFiles({root() + "/a/Copy (2) of one.txt"});
        QTest::keyClick(inner(right), Qt::Key_V, Qt::ControlModifier);
        QVERIFY(QFile::exists(root() + "/a/Copy (2) of one.txt"));
        QVERIFY(QFile::exists(root() + "/b/Copy (2) of one.txt"));
        QCOMPARE(boxes.titled(), QStringList());
    }
    void deleteToTrash_data()
    {
        QTest::addColumn<bool>("otherFileSystem");
        QTest::newRow("home trash") << false;
        QTest::newRow("trash of a second file system") << true;
    }
    void deleteToTrash()
    {
        QFETCH(bool, otherFileSystem);
        QTemporaryDir dataHome;
        const QByteArray saved = qgetenv("XDG_DATA_HOME");
        qputenv("XDG_DATA_HOME", dataHome.path().toUtf8());
        const auto restore = qScopeGuard([&saved] { qputenv("XDG_DATA_HOME", saved); });
        QString folder = root() + "/files";
        QVERIFY(QDir().mkpath(folder));
        const QByteArray mountPoint = QFile::encodeName(folder);
        if (otherFileSystem) {
            if (!g_privateMounts)
                QSKIP("needs root and a private mount namespace");
            QVERIFY(::mount("kelotest", mountPoint.constData(), "tmpfs", 0, "size=1m") == 0);
        }
        const auto unmount = qScopeGuard([&] {
            if (otherFileSystem)
                ::umount2(mountPoint.constData(), MNT_DETACH);
        });
        QVERIFY(makeTree(folder, {"a b%.txt=1", "d/", "d/in=2", "again/", "again/a b%.txt=3"}));

        KelofileView view;
        QCOMPARE(view.DeleteToTrash(), false);
        QCOMPARE(KeloTest::helpString(*view.metaObject(), "DeleteToTrash"),
            QString("Moves deleted items to the desktop's trash instead of removing them from the disk."));
        view.setDeleteToTrash(true);
        view.setPathRoot(folder);
        MsgBoxRecorder boxes({6, 6});
        select(view, {"a b%.txt", "d"});
        QTest::keyClick(inner(view), Qt::Key_Delete);
        view.setPathRoot(folder + "/again"); // the same name again gets a name of its own in the trash
        select(view, {"a b%.txt"});
        QTest::keyClick(inner(view), Qt::Key_Delete);
        const auto withoutTrash = [](QStringList tree) {
            tree.removeIf([](const QString &e) { return e.startsWith(".Trash"); });
            return tree;
        };
        QCOMPARE(withoutTrash(readTree(folder)), (QStringList{"again/"}));

        const QString trash = otherFileSystem ? QString(folder + "/.Trash-" + QString::number(::getuid()))
                                              : QString(dataHome.path() + "/Trash");
        QCOMPARE(DesktopTrash::trashFor(folder + "/again"), trash);
        const QStringList info = QDir(trash + "/info").entryList(QDir::Files);
        QCOMPARE(info, (QStringList{"a b%.txt.2.trashinfo", "a b%.txt.trashinfo", "d.trashinfo"}));
        const QString first = KeloTest::readTextFile(trash + "/info/a b%.txt.trashinfo");
        const QString encoded
            = otherFileSystem ? QString("a%20b%25.txt") : QString(DesktopTrash::encodePath(folder) + "/a%20b%25.txt");
        QVERIFY2(first.startsWith("[Trash Info]\nPath=" + encoded + "\nDeletionDate=20"), qPrintable(first));
        QCOMPARE(sorted(restorable(trash, otherFileSystem ? folder : QString())),
            sorted({folder + "/a b%.txt=1", folder + "/again/a b%.txt=3", folder + "/d="}));
        QCOMPARE(
            withoutTrash(readTree(folder)), (QStringList{"a b%.txt=1", "again/", "again/a b%.txt=3", "d/", "d/in=2"}));

        // The opt-in is saved after the other properties, only when on.
        PropertyBag bag;
        view.setOLEDropMode(1); // the last of the other properties
        view.WriteProperties(bag);
        QCOMPARE(bag.names().mid(bag.names().indexOf("OLEDropMode")).constLast(), QString("DeleteToTrash"));
        KelofileView loaded;
        loaded.ReadProperties(bag);
        QCOMPARE(loaded.DeleteToTrash(), true);
        PropertyBag defaults;
        loaded.setDeleteToTrash(false);
        loaded.WriteProperties(defaults);
        QVERIFY(!defaults.contains("DeleteToTrash"));
    }
    void drops_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("onRow"); // -1: the background
        QTest::addColumn<bool>("ctrl");
        QTest::addColumn<QString>("answer"); // of the drag over and of the drop
        QTest::addColumn<QStringList>("diskAfter");
        const QStringList untouched = {"dst/", "dst/sub/", "src/", "src/x.txt=x"};
        const QString copy = QString::number(Qt::CopyAction), move = QString::number(Qt::MoveAction);
        QTest::newRow("2: no Ctrl moves")
            << 2 << "dst" << -1 << false << move << QStringList{"dst/", "dst/sub/", "dst/x.txt=x", "src/"};
        QTest::newRow("2: Ctrl copies") << 2 << "dst" << -1 << true << copy
                                        << QStringList{"dst/", "dst/sub/", "dst/x.txt=x", "src/", "src/x.txt=x"};
        QTest::newRow("2: onto a folder item")
            << 2 << "dst" << 0 << true << copy
            << QStringList{"dst/", "dst/sub/", "dst/sub/x.txt=x", "src/", "src/x.txt=x"};
        QTest::newRow("2: no folder shown") << 2 << "" << -1 << false << "refused" << untouched;
        QTest::newRow("2: moving to where it is") << 2 << "src" << -1 << false << "refused" << untouched;
        QTest::newRow("2: copying to where it is")
            << 2 << "src" << -1 << true << copy
            << QStringList{"dst/", "dst/sub/", "src/", "src/Copy (2) of x.txt=x", "src/x.txt=x"};
        QTest::newRow("1: the host decides") << 1 << "dst" << -1 << false << move << untouched;
        QTest::newRow("0: refused") << 0 << "dst" << -1 << true << "refused" << untouched;
    }
    void drops()
    {
        QFETCH(int, mode);
        QFETCH(QString, shown);
        QFETCH(int, onRow);
        QFETCH(bool, ctrl);
        QFETCH(QString, answer);
        QVERIFY(makeTree(root(), {"dst/", "dst/sub/", "src/", "src/x.txt=x"}));
        KelofileView view;
        view.setOLEDropMode(mode);
        view.resize(400, 300);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        if (!shown.isEmpty())
            view.setPathRoot(root() + '/' + shown);
        std::unique_ptr<QMimeData> data(fileListMimeData({root() + "/src/x.txt"}));
        QCOMPARE(dragTo(view, data.get(), pointAt(view, onRow), ctrl, false), answer);
        auto *outline = view.findChild<QRubberBand *>("dropTarget");
        QCOMPARE(outline && outline->isVisible(), mode == 2 && onRow == 0);
        QCOMPARE(dragTo(view, data.get(), pointAt(view, onRow), ctrl, true), answer);
        QTEST(readTree(root()), "diskAfter");

        // Data that holds no files is refused in the automatic mode.
        QMimeData text;
        text.setText("hello");
        if (mode == 2 && !shown.isEmpty())
            QCOMPARE(dragTo(view, &text, pointAt(view, -1), ctrl, false), QString("refused"));
    }
    void manualModePassesTheArguments()
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
                events << joined(QString("Over"), int(data->hasUrls()), effect, button, shift, x, y, state);
                effect = 1;
            });
        connect(&view, &KelofileView::OLEDragDrop,
            [&](QMimeData *data, int &effect, short &button, short &shift, float &x, float &y) {
                events << joined(QString("Drop"), int(data->hasUrls()), effect, button, shift, x, y);
                effect = 0;
            });
        std::unique_ptr<QMimeData> data(fileListMimeData({root() + "/a.txt"}));
        QCOMPARE(dragTo(view, data.get(), QPoint(7, 9), true, false), QString::number(Qt::CopyAction));
        QCOMPARE(dragTo(view, data.get(), QPoint(7, 9), true, true), QString("refused")); // the handler's Effect 0
        QCOMPARE(events, (QStringList{"Over 1 3 1 2 7 9 0", "Over 1 3 1 2 7 9 0", "Drop 1 3 1 2 7 9"}));
        QCOMPARE(readTree(root()), QStringList{"a.txt=a"});
    }
    void dragSourceEvents()
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
        connect(&view, &KelofileView::OLECompleteDrag,
            [&](int &effect) { events << "Complete " + QString::number(effect); });
        cancelDragSoon(&view);
        view.OLEDrag(); // nobody takes the drop here
        QCOMPARE(events.mid(0, 2), (QStringList{"Start b.txt 3", "SetData 15 1"}));
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
    void pasteWhatAnotherProgramCopied()
    {
        if (QGuiApplication::platformName() != "xcb" || QStandardPaths::findExecutable("xclip").isEmpty())
            QSKIP("needs an X display (xvfb-run) and xclip");
        QVERIFY(makeTree(root(), {"a/", "a/one.txt=1", "b/"}));
        QGuiApplication::clipboard()->clear(); // what the other tests put there is not the other program's
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
            (commands->updateMenus(), entry(view, "popOnBack", FileViewCommands::Paste)->isEnabled()), 20000);
        QTest::keyClick(inner(view), Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(
            readTree(root()), (QStringList{"a/", "a/one.txt=1", "b/", "b/one.txt=1"})); // another program's list copies
        QCOMPARE(view.ItemCount(), 1);
    }
    // The mouse drives a drag the way the user's does: Qt's X11 drag watches the application's mouse events and
    // finds the target window under the pointer on the X server, so the lists must be real, mapped windows.
    void realDragBetweenTwoLists()
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
        connect(left, &KelofileView::OLECompleteDrag,
            [&](int &effect) { events << "Complete " + QString::number(effect); });

        QWidget *from = inner(*left)->viewport();
        QWidget *to = inner(*right)->viewport();
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

private:
    QString root() const { return m_dir->path(); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

int main(int argc, char **argv)
{
    KeloTest::restartUnderXvfb(argc, argv);
    // Mounts for the refusal and the second file system, private to this process; before any thread starts.
    g_privateMounts = ::geteuid() == 0 && ::unshare(CLONE_NEWNS) == 0
        && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    QApplication app(argc, argv);
    TestFileViewCommands test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_fileviewcommands.moc"
