#include "KeloTestSupport.h"
#include "shell/FileTreeFixture.h"

#include <Kelocontrols/ClipboardFiles.h>
#include <Kelocontrols/CommonFile.h>
#include <Kelocontrols/FileOperations.h>
#include <Kelocontrols/FileSystem.h>
#include <Kelocontrols/FileTypes.h>
#include <Kelocontrols/ImageList.h>
#include <Kelocontrols/KelofolderView.h>
#include <Kelocontrols/MsgBox.h>
#include <Kelocontrols/PropertyBag.h>
#include <Kelocontrols/PropertyTable.h>
#include <Kelocontrols/RuntimeError.h>
#include <Kelocontrols/SubFolderList.h>

#include <QAbstractItemModel>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QRandomGenerator>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include <sys/stat.h>

using namespace Kelocontrols;
using KeloTest::errorNumberOf;
using KeloTest::makeTree;
using KeloTest::readTree;

namespace {

QAbstractItemModel *modelOf(KelofolderView &view)
{
    return view.treeFolders()->model();
}

QModelIndex indexOfKey(KelofolderView &view, const QString &key)
{
    const QModelIndexList found = modelOf(view)->match(modelOf(view)->index(0, 0), Qt::UserRole, key, 1,
        Qt::MatchRecursive | Qt::MatchFixedString | Qt::MatchCaseSensitive);
    return found.value(0);
}

/// Points ItemIndex at the node keyed @p key; false when there is none.
bool goTo(KelofolderView &view, const QString &key)
{
    for (int i = 1; i <= view.ItemCount(); ++i) {
        view.setItemIndex(i);
        if (view.ItemPath() == key)
            return true;
    }
    return false;
}

/// The keys below @p root as paths relative to it ("a", "a/a1"), sorted; the root itself as ".".
QStringList nodes(KelofolderView &view, const QString &root)
{
    QStringList keys;
    for (int i = 1; i <= view.ItemCount(); ++i) {
        view.setItemIndex(i);
        const QString key = view.ItemPath();
        keys << (key == root ? QStringLiteral(".") : key.mid(root.size() + 1));
    }
    keys.sort();
    return keys;
}

QString folderType()
{
    return FileTypes::instance().folderTypeText();
}

void click(KelofolderView &view, const QString &key)
{
    view.treeFolders()->setCurrentIndex(indexOfKey(view, key));
}

void press(KelofolderView &view, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(view.treeFolders(), key, modifiers);
}

} // namespace

class TestKelofolderView : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;
    QString m_root;

    void makeRoot(const QStringList &tree)
    {
        m_root = m_dir.filePath(QString::number(QRandomGenerator::global()->generate()));
        QVERIFY(::mkdir(QFile::encodeName(m_root).constData(), 0755) == 0);
        QVERIFY(makeTree(m_root, tree));
    }
    QString at(const QString &relative) const { return m_root + QLatin1Char('/') + relative; }

private Q_SLOTS:
    void interfaceAndDefaults()
    {
        KelofolderView view;
        const QMetaObject &meta = KelofolderView::staticMetaObject;
        QCOMPARE(KeloTest::helpString(meta, QStringLiteral("AddNewFolder")),
            QStringLiteral("Adds a new folder to the list of folders under the special virtual folder  'My Folders'.  "
                           "PathRoot must be set to 'My Folders'."));
        QCOMPARE(KeloTest::helpString(meta, QStringLiteral("GoUp")),
            QStringLiteral(
                "Moves up one level in the tree.  Returns the index of the newly selected folder or 0 if at the "
                "root top (no movement)."));
        QCOMPARE(KeloTest::helpString(meta, QStringLiteral("BeforeAddItem")),
            QStringLiteral("Occurs before an item has been added to the list"));
        const QStringList events{"BeforeLabelEdit", "AfterLabelEdit", "OLECompleteDrag", "OLEDragDrop", "OLEDragOver",
            "OLEGiveFeedback", "OLESetData", "OLEStartDrag", "Collapse", "Expand", "NodeClick", "BeforePaint",
            "AfterPaint", "AfterAddItem", "BeforeAddItem", "ChangedFolder"};
        for (int i = 0; i < events.size(); ++i)
            QCOMPARE(KeloTest::classInfo(meta, QByteArray("DispId:" + events[i].toLatin1()).constData()),
                QString::number(i + 1));
        QVERIFY(meta.indexOfSignal("NodeClick(QString)") >= 0);
        QVERIFY(meta.indexOfSignal("AfterLabelEdit(int&,QString&)") >= 0);

        QCOMPARE(KelofolderView::table().readOrder(),
            QStringList({"Enabled", "Font", "BorderStyle", "Appearance", "FullRowSelect", "HotTracking", "LabelEdit",
                "OLEDropMode", "OLEDragMode", "AllowLabelEdit", "PathRoot", "AllowHiddenFolders", "AllowSystemFolders",
                "ForeColor", "ImageCount", "ImageIndex", "ImageTag", "ImageKey", "RefreshInterval", "ItemIndex",
                "ItemTag", "ItemExpanded", "ItemIcon", "ItemCount", "Path", "ItemName", "ItemDisplayName",
                "ItemSelected", "ItemPath", "MousePointer", "MouseIcon"}));
        QCOMPARE(
            KeloTest::propertyTexts(&view,
                {"BorderStyle", "Appearance", "OLEDropMode", "OLEDragMode", "ForeColor", "AllowLabelEdit", "Path"}),
            QStringList({"BorderStyle=0", "Appearance=1", "OLEDropMode=2", "OLEDragMode=1", "ForeColor=2147483666",
                "AllowLabelEdit=true", "Path="}));

        // Saved and loaded through a property bag, in the same order.
        view.setPathRoot(QStringLiteral("My Folders"));
        view.setAllowHiddenFolders(true);
        PropertyBag bag;
        view.WriteProperties(bag);
        KelofolderView loaded;
        loaded.ReadProperties(bag);
        QCOMPARE(loaded.PathRoot(), QStringLiteral("My Folders"));
        QVERIFY(loaded.AllowHiddenFolders());

        QStringList captions;
        for (QAction *action : view.popOnFolder()->actions())
            captions << (action->isSeparator() ? QStringLiteral("-") : action->text());
        QCOMPARE(captions,
            QStringList({"Cu&t", "&Copy", "&Paste", "-", "&Delete", "Rena&me", "&New folder", "-", "P&roperties"}));
        QVERIFY(view.findChild<QTreeView *>(QStringLiteral("TreeFolders")));
        QVERIFY(view.findChild<QTimer *>(QStringLiteral("RefreshTimer")));

        // Design time: a sample tree, and writes of Path and item members refused.
        view.setUserMode(false);
        QVERIFY(view.ItemCount() > 1);
        QCOMPARE(errorNumberOf([&] { view.setPath(QStringLiteral("/")); }), 387);
        QCOMPARE(errorNumberOf([&] { view.setItemIndex(1); }), 387);
        QCOMPARE(errorNumberOf([&] { view.setItemTag(QStringLiteral("x")); }), 387);
        QCOMPARE(errorNumberOf([&] { view.setBorderStyle(2); }), 380);
    }
    void roots_data()
    {
        QTest::addColumn<QString>("pathRoot");
        QTest::addColumn<QString>("rootKey");
        const auto row = [](const char *name, const char *pathRoot, const char *rootKey) {
            QTest::newRow(name) << QString(pathRoot) << QString(rootKey);
        };
        row("My Computer", "My Computer", "My Computer");
        row("mixed case", "mY cOMPUTER", "My Computer");
        row("My Folders", "MY FOLDERS", "My Folders");
        row("missing folder", "/no/such/folder/here", "My Computer");
        row("folder", "<root>", "<root>");
    }
    void roots()
    {
        QFETCH(QString, pathRoot);
        QFETCH(QString, rootKey);
        makeRoot({"b/", "a/", "a/x/"});
        pathRoot.replace(QStringLiteral("<root>"), m_root);
        rootKey.replace(QStringLiteral("<root>"), m_root);
        KelofolderView view;
        view.setPathRoot(pathRoot);
        view.setItemIndex(1);
        QCOMPARE(view.ItemPath(), rootKey);
        const QAbstractItemModel *model = modelOf(view);
        QCOMPARE(model->rowCount(), 1);
        const QModelIndex root = model->index(0, 0);
        if (rootKey == QStringLiteral("My Computer")) {
            QCOMPARE(view.ItemDisplayName(), QStringLiteral("My Computer"));
            QCOMPARE(view.ItemIcon(), QStringLiteral("My Computer"));
            // Every mount the file view's "My Computer" lists, with its caption.
            const QList<DriveInfo> drives = FileSystem::instance().drives();
            QCOMPARE(model->rowCount(root), drives.size());
            for (const DriveInfo &drive : drives) {
                QVERIFY2(goTo(view, drive.rootPath), qPrintable(drive.rootPath));
                QCOMPARE(view.ItemDisplayName(), DriveDisplayName(drive));
                QCOMPARE(view.ItemIcon(), DriveTypeName(drive));
            }
        } else if (rootKey == QStringLiteral("My Folders")) {
            QCOMPARE(view.ItemCount(), 1);
            QCOMPARE(view.ItemIcon(), QStringLiteral("My Folders"));
        } else {
            QCOMPARE(nodes(view, m_root), QStringList({".", "a", "a/x", "b"}));
            // Children sorted by text, whatever order the disk gives.
            QCOMPARE(model->index(0, 0, root).data().toString(), QStringLiteral("a"));
            QCOMPARE(model->index(1, 0, root).data().toString(), QStringLiteral("b"));
        }
    }
    void oneLevelAheadAndHidden_data()
    {
        QTest::addColumn<bool>("allowHidden");
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QStringList>("after");
        const QStringList shown{".", "a", "a/a1", "b"};
        QTest::newRow("hidden left out") << false << shown << QStringList{".", "a", "a/a1", "a/a1/deep", "b"};
        QTest::newRow("hidden shown") << true << QStringList{".", ".dot", ".dot/in", "a", "a/a1", "a/listed", "b"}
                                      << QStringList{".", ".dot", ".dot/in", "a", "a/a1", "a/a1/deep", "a/listed",
                                             "a/listed/x", "b"};
    }
    void oneLevelAheadAndHidden()
    {
        QFETCH(bool, allowHidden);
        QFETCH(QStringList, before);
        QFETCH(QStringList, after);
        makeRoot({"a/", "a/a1/", "a/a1/deep/", "a/a1/deep/deeper/", "a/listed/", "a/listed/x/", "a/.hidden=listed\n",
            "b/", ".dot/", ".dot/in/"});
        KelofolderView view;
        view.setAllowHiddenFolders(allowHidden);
        view.setPathRoot(m_root);
        QCOMPARE(nodes(view, m_root), before);
        QSignalSpy expand(&view, &KelofolderView::Expand);
        QStringList added;
        connect(&view, &KelofolderView::AfterAddItem, &view, [&](int &index) {
            view.setItemIndex(index);
            added << view.ItemPath().mid(m_root.size() + 1);
        });
        view.treeFolders()->expand(indexOfKey(view, at("a")));
        QCOMPARE(expand.size(), 1);
        QCOMPARE(expand.at(0).at(0).toString(), at("a"));
        QCOMPARE(nodes(view, m_root), after);
        QCOMPARE(added.size(), after.size() - before.size());
        if (allowHidden) {
            QVERIFY(goTo(view, at("a/listed")));
            QCOMPARE(view.ItemIcon(), QStringLiteral("HIDDEN_") + folderType());
            QVERIFY(goTo(view, at("a")));
            QCOMPARE(view.ItemIcon(), folderType());
        }
        QSignalSpy collapse(&view, &KelofolderView::Collapse);
        view.treeFolders()->collapse(indexOfKey(view, at("a")));
        QCOMPARE(collapse.size(), 1);
        QCOMPARE(nodes(view, m_root), after);

        // System folders: the pseudo file-system mounts below "/".
        KelofolderView system;
        system.setPathRoot(QStringLiteral("/"));
        QVERIFY(!goTo(system, QStringLiteral("/proc")));
        system.setAllowSystemFolders(true);
        system.setPathRoot(QStringLiteral("/"));
        QVERIFY(goTo(system, QStringLiteral("/proc")) || FileSystem::instance().driveExists(QStringLiteral("/proc")));
    }
    void beforeAddItemCancelled_data()
    {
        QTest::addColumn<QString>("pathRoot");
        QTest::newRow("My Computer") << "My Computer";
        QTest::newRow("folder") << "<root>";
        QTest::newRow("My Folders") << "My Folders";
    }
    void beforeAddItemCancelled()
    {
        QFETCH(QString, pathRoot);
        makeRoot({"a/", "a/b/", "c/"});
        pathRoot.replace(QStringLiteral("<root>"), m_root);
        KelofolderView view;
        int afterAdds = 0;
        connect(&view, &KelofolderView::AfterAddItem, &view, [&](int &) { ++afterAdds; });
        connect(&view, &KelofolderView::BeforeAddItem, &view, [](int &cancel) { cancel = 1; });
        view.setPathRoot(pathRoot);
        view.AddNewFolder(at("a"));
        view.AddNewFolder(at("missing"));
        view.Refresh();
        QCOMPARE(view.ItemCount(), 1);
        QCOMPARE(afterAdds, 0);
        QCOMPARE(view.GetMyFolders(), QStringList({at("a"), at("missing")}));
    }
    void favourites()
    {
        makeRoot({"docs/", "docs/inner/"});
        KelofolderView view;
        view.setPathRoot(QStringLiteral("My Folders"));
        QList<int> indexes;
        connect(&view, &KelofolderView::AfterAddItem, &view, [&](int &index) { indexes << index; });
        view.AddNewFolder(at("docs"));
        view.AddNewFolder(at("later"));
        QCOMPARE(view.GetMyFolders(), QStringList({at("docs"), at("later")}));
        QCOMPARE(indexes, QList<int>({2, 3, 4})); // docs, its sub-folder one level ahead, the unavailable one
        // A node as "display name|image|check state", "-" without one.
        const auto node = [&](const QString &key) {
            const QVariant check = indexOfKey(view, key).data(Qt::CheckStateRole);
            return goTo(view, key) ? view.ItemDisplayName() + '|' + view.ItemIcon() + '|'
                    + (check.isValid() ? QString::number(check.toInt()) : QStringLiteral("-"))
                                   : QStringLiteral("no node");
        };
        const QString unavailable = at("later") + QStringLiteral(" (Unavailable)|FolderUnavailable|2");
        QCOMPARE(node(at("docs")), "docs|" + folderType() + "|-");
        QCOMPARE(node(at("later")), unavailable);

        // Made on disk, it becomes a normal node at the next refresh; removed again, unavailable again.
        QVERIFY(makeTree(m_root, {"later/", "later/sub/"}));
        view.Refresh();
        QCOMPARE(node(at("later")), "later|" + folderType() + "|0");
        QVERIFY(goTo(view, at("later/sub")));
        QVERIFY(FileOperations::deleteFolder(at("later")));
        view.Refresh();
        QCOMPARE(node(at("later")), unavailable);
        QVERIFY(!goTo(view, at("later/sub")));
        QCOMPARE(view.GetMyFolders().size(), 2);
    }
    void vanishedFolders()
    {
        makeRoot({"a/", "a/x/", "b/", "c/"});
        KeloTest::MsgBoxRecorder boxes;
        KelofolderView view;
        view.setPathRoot(m_root);
        QSignalSpy changed(&view, &KelofolderView::ChangedFolder);
        QSignalSpy clicks(&view, &KelofolderView::NodeClick);

        QVERIFY(FileOperations::deleteFolder(at("a")));
        view.treeFolders()->expand(indexOfKey(view, at("a")));
        QCOMPARE(boxes.titledPrompts(),
            QStringList(
                {"Folder Not Accessible|" + at("a") + " is not accessible.\r\n\r\nThis folder was moved or removed."}));
        QCOMPARE(nodes(view, m_root), QStringList({".", "b", "c"}));

        boxes.boxes.clear();
        QVERIFY(FileOperations::deleteFolder(at("b")));
        click(view, at("b"));
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(boxes.titledPrompts(),
            QStringList({"Folder Not Accessible|b is not accessible.\r\n\r\nThis folder was moved or removed."}));
        QCOMPARE(nodes(view, m_root), QStringList({".", "c"}));
        QCOMPARE(changed.size(), 0);

        click(view, at("c"));
        QCOMPARE(changed.size(), 1);
        QCOMPARE(view.Path(), at("c"));
        QVERIFY(goTo(view, at("c")));
        QVERIFY(view.ItemSelected());
        QCOMPARE(indexOfKey(view, at("c")).data(Qt::DecorationRole).value<QIcon>().pixmap(16).toImage(),
            view.imageList()->picture(QStringLiteral("OPEN_") + folderType()).toImage());

        // Refresh drops folders removed behind the tree's back.
        QVERIFY(FileOperations::deleteFolder(at("c")));
        view.Refresh();
        QCOMPARE(nodes(view, m_root), QStringList({"."}));
    }
    void goUpAndPath()
    {
        makeRoot({"a/", "a/b/", "a/b/c/", "a/b/c/d/"});
        KelofolderView view;
        QCOMPARE(view.GoUp(), 0);
        view.setPathRoot(m_root);
        QSignalSpy changed(&view, &KelofolderView::ChangedFolder);
        QSignalSpy clicks(&view, &KelofolderView::NodeClick);
        QSignalSpy properties(&view, &KelofolderView::PropertyChanged);
        // A path not yet in the tree is filled in on the way down.
        view.setPath(at("a/b/c/d"));
        QCOMPARE(view.Path(), at("a/b/c/d"));
        QCOMPARE(changed.size(), 1);
        QCOMPARE(clicks.size(), 0);
        QCOMPARE(KeloTest::firstArguments(properties), QStringList({"Path"}));
        view.setPath(at("a/b/c/d"));
        QCOMPARE(changed.size(), 1);

        for (const QString &expected : {at("a/b/c"), at("a/b"), at("a"), m_root}) {
            const int index = view.GoUp();
            view.setItemIndex(index);
            QCOMPARE(view.ItemPath(), expected);
            QCOMPARE(view.Path(), expected);
        }
        QCOMPARE(changed.size(), 5);
        QCOMPARE(view.GoUp(), 0);
        QCOMPARE(view.Path(), m_root);
        view.setPath(QStringLiteral("/no/such/place"));
        QCOMPARE(view.Path(), m_root);
    }
    void keys_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QList<int>>("answers");
        QTest::addColumn<QStringList>("expectedDisk");
        QTest::addColumn<QStringList>("expectedBoxes");
        const QStringList untouched{"dst/", "src/", "src/f.txt=x"};
        const QString confirm
            = QStringLiteral("Confirm Folder Delete|Are you sure you want to remove the folder 'src' and\r\n"
                             "move all its contents to the Recycle Bin?");
        const auto row = [](const char *name, Qt::Key key, Qt::KeyboardModifiers modifiers, QList<int> answers,
                             const QStringList &disk, const QStringList &boxes = {}) {
            QTest::newRow(name) << int(key) << int(modifiers) << answers << disk << boxes;
        };
        const Qt::KeyboardModifiers ctrl = Qt::ControlModifier;
        row("Delete, Yes", Qt::Key_Delete, {}, {6}, {"dst/"}, {confirm});
        row("Delete, No", Qt::Key_Delete, {}, {7}, untouched, {confirm});
        row("Ctrl+C, Ctrl+V", Qt::Key_C, ctrl, {}, {"dst/", "dst/src/", "dst/src/f.txt=x", "src/", "src/f.txt=x"});
        row("Ctrl+X, Ctrl+V", Qt::Key_X, ctrl, {}, {"dst/", "dst/src/", "dst/src/f.txt=x"});
        row("C alone", Qt::Key_C, {}, {}, untouched);
        row("Ctrl+Shift+X", Qt::Key_X, ctrl | Qt::ShiftModifier, {}, untouched);
        row("Alt+X", Qt::Key_X, Qt::AltModifier, {}, untouched);
        row("Ctrl+D", Qt::Key_D, ctrl, {}, untouched);
    }
    void keys()
    {
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(QList<int>, answers);
        QFETCH(QStringList, expectedDisk);
        QFETCH(QStringList, expectedBoxes);
        makeRoot({"dst/", "src/", "src/f.txt=x"});
        QVERIFY(ClipboardPutFiles({}));
        KeloTest::MsgBoxRecorder boxes;
        boxes.setAnswers(answers);
        KelofolderView view;
        view.setPathRoot(m_root);
        QList<short> keyDowns;
        connect(&view, &KelofolderView::KeyDown, &view, [&](short &code, short &) { keyDowns << code; });
        view.setPath(at("src"));
        press(view, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(keyDowns.last(), short(key >= Qt::Key_A && key <= Qt::Key_Z ? key : key == Qt::Key_Delete ? 46 : 0));
        // Paste whatever the key put on the clipboard into dst, with Ctrl+V.
        view.setPath(at("dst"));
        press(view, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(readTree(m_root), KeloTest::sorted(expectedDisk));
        QCOMPARE(boxes.titledPrompts(), expectedBoxes);
        if (expectedDisk.contains(QStringLiteral("dst/src/")))
            QVERIFY(goTo(view, at("dst/src"))); // the paste refreshed the tree
        if (!expectedDisk.contains(QStringLiteral("src/")))
            QVERIFY(!goTo(view, at("src")));

        // F2 opens the label editor, F5 picks up a new folder.
        view.setPath(at("dst"));
        int beforeEdits = 0;
        connect(&view, &KelofolderView::BeforeLabelEdit, &view, [&](int &) { ++beforeEdits; });
        press(view, Qt::Key_F2);
        QCOMPARE(beforeEdits, 1);
        QLineEdit *editor = view.treeFolders()->findChild<QLineEdit *>();
        QVERIFY(editor);
        QCOMPARE(editor->text(), QStringLiteral("dst"));
        editor->setText(QStringLiteral("dst2"));
        QTest::keyClick(editor, Qt::Key_Return); // the editor commits (queued): the folder is renamed on disk
        QTRY_VERIFY(QFileInfo::exists(at("dst2")));
        QVERIFY(goTo(view, at("dst2")));
        QCOMPARE(view.Path(), at("dst2"));
        QVERIFY(makeTree(m_root, {"new/"}));
        QTest::qWait(1); // the closed editor goes
        press(view, Qt::Key_F5);
        QVERIFY(goTo(view, at("new")));
    }
    void newFolderAndRename()
    {
        makeRoot({"p/", "p/other/"});
        KeloTest::MsgBoxRecorder boxes;
        KelofolderView view;
        view.setPathRoot(m_root);
        view.setPath(at("p"));
        QAction *newFolder = view.popOnFolder()->actions().at(6);
        newFolder->trigger();
        QCOMPARE(view.Path(), at("p/New folder"));
        view.setPath(at("p"));
        newFolder->trigger();
        QCOMPARE(view.Path(), at("p/New folder (2)"));
        QCOMPARE(readTree(at("p")), QStringList({"New folder (2)/", "New folder/", "other/"}));

        // Label edits: invalid characters refused with the box, a handler's cancel honoured, a good name renames.
        QAbstractItemModel *model = modelOf(view);
        int cancelWith = 0;
        QStringList afterEdits;
        connect(&view, &KelofolderView::AfterLabelEdit, &view, [&](int &cancel, QString &text) {
            afterEdits << text;
            cancel = cancelWith;
        });
        QVERIFY(!model->setData(indexOfKey(view, at("p/other")), QStringLiteral("bad:name")));
        QCOMPARE(boxes.titledPrompts().size(), 1);
        QVERIFY(boxes.titledPrompts().at(0).startsWith(
            QStringLiteral("Rename|A file cannot contain any of the following")));
        cancelWith = 1;
        model->setData(indexOfKey(view, at("p/other")), QStringLiteral("cancelled"));
        cancelWith = 0;
        model->setData(indexOfKey(view, at("p/other")), QStringLiteral("renamed"));
        QCOMPARE(afterEdits, QStringList({"bad:name", "cancelled", "renamed"}));
        QCOMPARE(readTree(at("p")), QStringList({"New folder (2)/", "New folder/", "renamed/"}));
        QVERIFY(goTo(view, at("p/renamed")));
        QCOMPARE(view.ItemDisplayName(), QStringLiteral("renamed"));
        QVERIFY(!goTo(view, at("p/other")));

        // No editing when AllowLabelEdit is off or a BeforeLabelEdit handler cancels.
        view.setAllowLabelEdit(false);
        view.setPath(at("p/renamed"));
        press(view, Qt::Key_F2);
        QVERIFY(!view.treeFolders()->findChild<QLineEdit *>());

        // A read-only folder is asked about with its own question; No keeps it.
        QVERIFY(::chmod(QFile::encodeName(at("p/renamed")).constData(), 0555) == 0);
        boxes.boxes.clear();
        boxes.setAnswers({7});
        press(view, Qt::Key_Delete);
        QCOMPARE(boxes.titledPrompts(),
            QStringList(
                {"Confirm Folder Delete|The folder 'renamed' is a read-only folder.  Are you sure you\r\nwant to "
                 "remove it and move all its contents to the Recycle Bin?"}));
        QVERIFY(goTo(view, at("p/renamed")));
        boxes.setAnswers({6});
        press(view, Qt::Key_Delete);
        QCOMPARE(readTree(at("p")), QStringList({"New folder (2)/", "New folder/"}));
        QCOMPARE(view.Path(), at("p"));
    }
    void drops_data()
    {
        QTest::addColumn<bool>("ctrl");
        QTest::newRow("move") << false;
        QTest::newRow("copy with Ctrl") << true;
    }
    void drops()
    {
        QFETCH(bool, ctrl);
        makeRoot({"target/", "target/sub/", "other/", "f.txt=data"});
        KelofolderView view;
        view.resize(300, 300);
        view.show();
        view.setPathRoot(m_root);
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTreeView *tree = view.treeFolders();
        // A mouse click and an arrow key each raise NodeClick and make the node current.
        QStringList clicked;
        connect(&view, &KelofolderView::NodeClick, &view, [&](const QString &node) { clicked << node; });
        QTest::mouseClick(
            tree->viewport(), Qt::LeftButton, {}, tree->visualRect(indexOfKey(view, at("other"))).center());
        QCOMPARE(view.Path(), at("other"));
        press(view, Qt::Key_Down);
        QCOMPARE(clicked, QStringList({at("other"), at("target")}));
        QCOMPARE(view.Path(), at("target"));
        const QPoint point = tree->visualRect(indexOfKey(view, at("target"))).center();
        std::unique_ptr<QMimeData> data(fileListMimeData({at("f.txt")}));
        const auto accepted = [&](auto &&event) {
            QApplication::sendEvent(tree->viewport(), &event);
            return event.isAccepted();
        };
        const Qt::KeyboardModifiers modifiers = ctrl ? Qt::ControlModifier : Qt::NoModifier;
        const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
        QVERIFY(accepted(QDragEnterEvent(point, actions, data.get(), Qt::LeftButton, modifiers)));
        QVERIFY(accepted(QDragMoveEvent(point, actions, data.get(), Qt::LeftButton, modifiers)));
        QCOMPARE(tree->currentIndex(), indexOfKey(view, at("target")));
        QVERIFY(tree->isExpanded(indexOfKey(view, at("target"))));
        accepted(QDropEvent(point, actions, data.get(), Qt::LeftButton, modifiers));
        QStringList expected{"f.txt=data", "other/", "target/", "target/f.txt=data", "target/sub/"};
        if (!ctrl)
            expected.removeFirst();
        QCOMPARE(readTree(m_root), expected);
        view.setOLEDropMode(0); // no drops at all
        QVERIFY(!accepted(QDragMoveEvent(point, actions, data.get(), Qt::LeftButton, modifiers)));
    }
    void itemAndImageMembers()
    {
        makeRoot({"a/", "a/b/", "a/b/c/"});
        KelofolderView view;
        view.setPathRoot(m_root);
        QCOMPARE(view.ItemCount(), 3);
        QVERIFY(goTo(view, at("a")));
        QCOMPARE(view.ItemName(), QStringLiteral("a"));
        QVERIFY(!view.ItemExpanded());
        QStringList expanded;
        connect(&view, &KelofolderView::Expand, &view, [&](const QString &node) { expanded << node; });
        view.setItemExpanded(true); // as the user would: Expand, then one level ahead
        QCOMPARE(expanded, QStringList({at("a")}));
        QVERIFY(view.ItemExpanded());
        QCOMPARE(view.ItemCount(), 4);

        view.setItemTag(QStringLiteral("mine"));
        QCOMPARE(view.ItemTag(), QStringLiteral("mine"));
        view.setItemDisplayName(QStringLiteral("Renamed on screen only"));
        QCOMPARE(indexOfKey(view, at("a")).data().toString(), QStringLiteral("Renamed on screen only"));
        QVERIFY(QFileInfo::exists(at("a")));
        QCOMPARE(errorNumberOf([&] { view.setItemIcon(QStringLiteral("no such key")); }), 35601);

        // Images: the tree's list, 1-based; a host picture can become a node's image.
        const int count = view.ImageCount();
        QPixmap red(16, 16);
        red.fill(Qt::red);
        QCOMPARE(view.ImageAddNew(red, QStringLiteral("Red")), count + 1);
        QCOMPARE(errorNumberOf([&] { view.ImageAddNew(red, QStringLiteral("red")); }), 35602);
        view.setItemIcon(QStringLiteral("Red"));
        QCOMPARE(view.ItemIcon(), QStringLiteral("Red"));
        view.setImageIndex(count + 1);
        QCOMPARE(view.ImageKey(), QStringLiteral("Red"));
        view.setImageTag(QStringLiteral("t"));
        QCOMPARE(view.ImageTag(), QStringLiteral("t"));
        view.ImageRemove(QStringLiteral("RED"));
        QCOMPARE(view.ImageCount(), count);
        view.setItemIndex(view.ItemCount() + 1);
        QCOMPARE(view.ItemPath(), QString());
        QCOMPARE(view.ItemTag(), QString());

        // The timer refreshes at run time only.
        view.setRefreshInterval(50);
        QVERIFY(view.findChild<QTimer *>(QStringLiteral("RefreshTimer"))->isActive());
        QVERIFY(FileOperations::deleteFolder(at("a/b")));
        QVERIFY(KeloTest::fireTimer(&view, QStringLiteral("RefreshTimer")));
        QVERIFY(!goTo(view, at("a/b")));
        view.setUserMode(false);
        QVERIFY(!view.findChild<QTimer *>(QStringLiteral("RefreshTimer"))->isActive());
    }
    void subFolderList()
    {
        makeRoot({"z/", "A/", ".dot/", "listed/", ".hidden=listed\r\n", "file.txt=x", "link->z", "broken->/no/such"});
        QList<FileEntry> folders;
        QVERIFY(SubFolderList::list(m_root, SubFolderList::systemMountPoints(), folders));
        QStringList found;
        for (const FileEntry &entry : folders)
            found << entry.name + QLatin1Char(':') + QString::number(entry.attributes);
        found.sort();
        QCOMPARE(found, QStringList({".dot:18", "A:16", "link:1040", "listed:18", "z:16"}));
        QVERIFY(!SubFolderList::list(at("missing"), {}, folders));

        QList<FileEntry> top;
        QVERIFY(SubFolderList::list(QStringLiteral("/"), SubFolderList::systemMountPoints(), top));
        for (const FileEntry &entry : top) {
            if (entry.name == QStringLiteral("proc"))
                QCOMPARE(entry.attributes & FileAttribute::System, FileAttribute::System);
        }
    }
};

QTEST_MAIN(TestKelofolderView)
#include "tst_kelofolderview.moc"
