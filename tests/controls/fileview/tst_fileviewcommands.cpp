// The file view's popup menus and commands on real temporary folders: the
// menus' entries, delete with each question and answer, a refusal of the
// file system, the inert entries, new folders, renaming in place, cut /
// copy / paste between two lists, and deleting to the desktop's trash on
// the home file system and on a second one (a tmpfs mounted in a private
// mount namespace).

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
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QMenu>
#include <QRegularExpression>
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

QStringList captions(const QMenu *menu)
{
    QStringList list;
    for (const QAction *action : menu->actions())
        list << (action->isSeparator() ? QStringLiteral("-") : action->text());
    return list;
}

QAction *entry(KelofileView &view, const char *menu, int index)
{
    return view.findChild<QMenu *>(QString::fromLatin1(menu))->actions().at(index);
}

/// Chooses an entry the way the user does: the menu is about to show (entries are greyed), then the entry.
void choose(KelofileView &view, const char *menu, int index)
{
    Q_EMIT view.findChild<QMenu *>(QString::fromLatin1(menu))->aboutToShow();
    QAction *action = entry(view, menu, index);
    QVERIFY2(action->isEnabled(), qPrintable(action->text()));
    action->trigger();
}

QAbstractItemView *inner(KelofileView &view)
{
    return view.listFiles()->currentView();
}

/// The entries a file manager would restore from @p trash: "original path=contents" for each info file read back.
QStringList restorable(const QString &trash, const QString &topDir)
{
    QStringList found;
    const QStringList infos = QDir(trash + "/info").entryList({"*.trashinfo"}, QDir::Files);
    for (const QString &info : infos) {
        const QString text = KeloTest::readTextFile(trash + "/info/" + info);
        const QStringList lines = text.split('\n');
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

    void menus_data();
    void menus();
    void greyedEntries();
    void deleteAsks_data();
    void deleteAsks();
    void refusedDeleteRaisesAndKeepsWhatWasDone();
    void inertEntriesDoNothing();
    void newFolders();
    void rename_data();
    void rename();
    void editsRefusedAndCancelled();
    void copyCutPasteBetweenLists();
    void deleteToTrash_data();
    void deleteToTrash();
    void deleteToTrashIsPersisted();

private:
    QString root() const { return m_dir->path(); }
    std::unique_ptr<QTemporaryDir> m_dir;
};

void TestFileViewCommands::menus_data()
{
    QTest::addColumn<QString>("menu");
    QTest::addColumn<QStringList>("entries");
    QTest::newRow("popOnFile") << "popOnFile"
                               << QStringList{"&Open", "&Print", "-", "Cu&t", "&Copy", "-", "Create &Shortcut",
                                      "&Delete", "Rena&me", "-", "Prope&rties"};
    QTest::newRow("popOnBack") << "popOnBack"
                               << QStringList{"&View", "-", "R&efresh", "-", "&Paste", "Paste &Shortcut", "&Undo", "-",
                                      "Ne&w Folder", "-", "P&roperties"};
    QTest::newRow("popView") << "popView" << QStringList{"Lar&ge Icons", "S&mall Icons", "&List", "&Details"};
}

void TestFileViewCommands::menus()
{
    QFETCH(QString, menu);
    QFETCH(QStringList, entries);
    KelofileView view;
    auto *popup = view.findChild<QMenu *>(menu);
    QVERIFY(popup);
    QCOMPARE(popup->parent(), &view);
    QCOMPARE(captions(popup), entries);
    QCOMPARE(entry(view, "popOnBack", 0)->menu(), view.findChild<QMenu *>("popView"));

    // The right click: on an item it selects it and opens popOnFile, on the background popOnBack.
    QVERIFY(makeTree(root(), {"a.txt=a", "b.txt=b"}));
    view.setPathRoot(root());
    view.resize(400, 300);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    const QRect second = inner(view)->visualRect(view.listFiles()->model()->index(1, 0));
    QContextMenuEvent onItem(
        QContextMenuEvent::Mouse, second.center(), inner(view)->viewport()->mapToGlobal(second.center()));
    QApplication::sendEvent(inner(view)->viewport(), &onItem);
    QCOMPARE(view.ItemSelected(), 2);
    QTRY_VERIFY(view.findChild<QMenu *>("popOnFile")->isVisible());
    view.findChild<QMenu *>("popOnFile")->close();
    const QPoint empty(5, inner(view)->viewport()->height() - 5);
    QContextMenuEvent onBack(QContextMenuEvent::Mouse, empty, inner(view)->viewport()->mapToGlobal(empty));
    QApplication::sendEvent(inner(view)->viewport(), &onBack);
    QTRY_VERIFY(view.findChild<QMenu *>("popOnBack")->isVisible());
    view.findChild<QMenu *>("popOnBack")->close();

    // popView sets View.
    choose(view, "popView", 1);
    QCOMPARE(view.View(), 1);
}

void TestFileViewCommands::greyedEntries()
{
    QVERIFY(makeTree(root(), {"a.txt=a"}));
    KelofileView view;
    view.setPathRoot(root());
    auto *commands = view.findChild<FileViewCommands *>();
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

void TestFileViewCommands::deleteAsks_data()
{
    QTest::addColumn<QStringList>("selected");
    QTest::addColumn<bool>("byKey");
    QTest::addColumn<int>("answer");
    QTest::addColumn<QString>("box");
    QTest::addColumn<QStringList>("diskAfter");
    const QStringList tree = {"a.txt=a", "b.txt=b", "d/", "d/in.txt=i", "ro/", "ro/x=x"};
    const QString oneFile = "Confirm File Delete|52|Are you sure you want to send 'a.txt' to the Recycle Bin?";
    const QString folder = "Confirm Folder Delete|52|Are you sure you want to remove the folder 'd' and\r\n"
                           "move all its contents to the Recycle Bin?";
    const QString readOnly = "Confirm Folder Delete|52|The folder 'ro' is a read-only folder.  Are you sure you\r\n"
                             "want to remove it and move all its contents to the Recycle Bin?";
    const QString three = "Confirm File Delete|52|Are you sure you want to send these 3 items to the Recycle Bin?";
    QTest::newRow("one file, Yes") << QStringList{"a.txt"} << true << 6 << oneFile
                                   << QStringList{"b.txt=b", "d/", "d/in.txt=i", "ro/", "ro/x=x"};
    QTest::newRow("one file, No") << QStringList{"a.txt"} << false << 7 << oneFile << tree;
    QTest::newRow("one folder, Yes") << QStringList{"d"} << false << 6 << folder
                                     << QStringList{"a.txt=a", "b.txt=b", "ro/", "ro/x=x"};
    QTest::newRow("read-only folder, Yes")
        << QStringList{"ro"} << true << 6 << readOnly << QStringList{"a.txt=a", "b.txt=b", "d/", "d/in.txt=i"};
    QTest::newRow("read-only folder, No") << QStringList{"ro"} << false << 7 << readOnly << tree;
    QTest::newRow("three, Yes") << QStringList{"a.txt", "d", "ro"} << true << 6 << three << QStringList{"b.txt=b"};
    QTest::newRow("three, No") << QStringList{"a.txt", "d", "ro"} << false << 7 << three << tree;
    QTest::newRow("three, Cancel is not Yes") << QStringList{"a.txt", "d", "ro"} << false << 2 << three << tree;
}

void TestFileViewCommands::deleteAsks()
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
    QStringList disk = readTree(root());
    disk.replaceInStrings(QRegularExpression("=.*"), "");
    QStringList expected = diskAfter;
    expected.replaceInStrings(QRegularExpression("=.*"), "");
    QCOMPARE(disk, sorted(expected));
    // The list lost exactly the deleted items.
    QStringList listed;
    for (const QString &e : expected)
        if (!e.contains('/') || (e.endsWith('/') && e.count('/') == 1))
            listed << (e.endsWith('/') ? e.chopped(1) : e);
    QCOMPARE(sorted(names(view)), sorted(listed));
}

void TestFileViewCommands::refusedDeleteRaisesAndKeepsWhatWasDone()
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

void TestFileViewCommands::inertEntriesDoNothing()
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

void TestFileViewCommands::newFolders()
{
    QVERIFY(makeTree(root(), {"New folder (2)/"}));
    KelofileView view;
    view.setPathRoot(root());
    view.show();
    choose(view, "popOnBack", FileViewCommands::NewFolder);
    QVERIFY(inner(view)->findChild<QLineEdit *>("labelEditor")); // the new folder is put into rename
    QCOMPARE(view.ItemSelected(), 2);
    QTest::keyClick(inner(view)->findChild<QLineEdit *>("labelEditor"), Qt::Key_Escape);
    choose(view, "popOnBack", FileViewCommands::NewFolder);
    QCOMPARE(readTree(root()), (QStringList{"New folder (2)/", "New folder (3)/", "New folder/"}));
    QCOMPARE(names(view), (QStringList{"New folder (2)", "New folder", "New folder (3)"}));
}

void TestFileViewCommands::rename_data()
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
    QTest::newRow("taken name is never replaced") << "b.txt" << 1 << QStringList{"Error Renaming File|16"} << before;
}

void TestFileViewCommands::rename()
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

void TestFileViewCommands::editsRefusedAndCancelled()
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
    QTRY_VERIFY(view.findChild<QMenu *>("popOnFile")->isVisible());
    view.findChild<QMenu *>("popOnFile")->close();
}

void TestFileViewCommands::copyCutPasteBetweenLists()
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

void TestFileViewCommands::deleteToTrash_data()
{
    QTest::addColumn<bool>("otherFileSystem");
    QTest::newRow("home trash") << false;
    QTest::newRow("trash of a second file system") << true;
}

void TestFileViewCommands::deleteToTrash()
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
    QVERIFY(makeTree(folder, {"a b%.txt=1", "d/", "d/in=2"}));
    QVERIFY(makeTree(folder, {"again/", "again/a b%.txt=3"}));

    KelofileView view;
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
    QCOMPARE(withoutTrash(readTree(folder)), (QStringList{"a b%.txt=1", "again/", "again/a b%.txt=3", "d/", "d/in=2"}));
}

void TestFileViewCommands::deleteToTrashIsPersisted()
{
    KelofileView view;
    QCOMPARE(view.DeleteToTrash(), false);
    QCOMPARE(KeloTest::helpString(*view.metaObject(), "DeleteToTrash"),
        QString("Moves deleted items to the desktop's trash instead of removing them from the disk."));
    PropertyBag bag;
    view.WriteProperties(bag);
    QVERIFY(!bag.contains("DeleteToTrash")); // the default is not written
    view.setDeleteToTrash(true);
    view.setOLEDropMode(1); // the last of the other properties
    view.WriteProperties(bag);
    QCOMPARE(bag.names().mid(bag.names().indexOf("OLEDropMode")).constLast(), QString("DeleteToTrash"));
    KelofileView loaded;
    loaded.ReadProperties(bag);
    QCOMPARE(loaded.DeleteToTrash(), true);
}

int main(int argc, char **argv)
{
    // Mounts for the refusal and the second file system, private to this process; before any thread starts.
    g_privateMounts = ::geteuid() == 0 && ::unshare(CLONE_NEWNS) == 0
        && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    QApplication app(argc, argv);
    TestFileViewCommands test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "tst_fileviewcommands.moc"
