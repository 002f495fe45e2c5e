#include "KelofolderView_p.h"

#include "ClassicFaceEntries_p.h"
#include "ClipboardFiles.h"
#include "CommonFile.h"
#include "Conversions.h"
#include "FileConfirmations.h"
#include "FileIconProvider.h"
#include "FileNameCodec.h"
#include "FileOperations.h"
#include "FileSystem.h"
#include "FileTransfer.h"
#include "FileTypes.h"
#include "FolderTreeView_p.h"
#include "ImageList.h"
#include "MousePointer.h"
#include "MsgBox.h"
#include "PropertyTable.h"
#include "PropertyValues.h"
#include "RuntimeError.h"
#include "StockEventFilter.h"
#include "SubFolderList.h"
#include "frmProperties.h"

#include <QDrag>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFile>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QSet>
#include <QTimer>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

using namespace Kelocontrols;

namespace {

const QString OpenPrefix = QStringLiteral("OPEN_");
const QString HiddenPrefix = QStringLiteral("HIDDEN_");
const QString HiddenOpenPrefix = QStringLiteral("HIDDEN_OPEN_");
constexpr int IconSize = 16;

bool sameText(const QString &a, const QString &b)
{
    return QString::compare(a, b, Qt::CaseInsensitive) == 0;
}

void requireOneOf(int value, int a, int b)
{
    if (value != a && value != b) {
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    }
}

QPixmap pictureOf(const QVariant &value)
{
    return value.canConvert<QPixmap>() ? value.value<QPixmap>() : QPixmap();
}

/// The last component of a node's key: a folder's name, a mount point, a pseudo-root's name.
QString nameOfKey(const QString &key)
{
    const QString name = key.section(QLatin1Char('/'), -1);
    return name.isEmpty() ? key : name;
}

} // namespace

// ---------------------------------------------------------------------------
// Private: building and filling

KelofolderView::Private::Private(KelofolderView &view)
    : q(view)
    , images(new ImageList(QSize(IconSize, IconSize), &view))
    , model(new FolderTreeModel(*images, &view))
    , tree(new FolderTreeView(&view))
    , menu(new QMenu(&view))
    , refreshTimer(new QTimer(&view))
    , face(view)
{
    face.keepEnabledOn(tree);
    face.keepFontOn(tree);
}

bool KelofolderView::Private::isPseudoRoot(const QString &key)
{
    return FileListFilter::isMyComputer(key) || FileListFilter::isMyFolders(key);
}

bool KelofolderView::Private::isDriveNode(const Node *node) const
{
    return node && node->parent && FileListFilter::isMyComputer(node->parent->key);
}

bool KelofolderView::Private::isFavourite(const Node *node) const
{
    return node && node->parent && FileListFilter::isMyFolders(node->parent->key);
}

bool KelofolderView::Private::isRealFolder(const Node *node) const
{
    return node && !isPseudoRoot(node->key) && !(isFavourite(node) && node->checked);
}

bool KelofolderView::Private::exists(const Node *node) const
{
    if (isPseudoRoot(node->key)) {
        return true;
    }
    const FileSystem &fs = FileSystem::instance();
    return isDriveNode(node) ? fs.driveExists(node->key) : fs.folderExists(node->key);
}

KelofolderView::Private::Node *KelofolderView::Private::selectedNode() const
{
    return const_cast<Node *>(model->current());
}

QString KelofolderView::Private::folderType()
{
    if (folderTypeText.isEmpty()) {
        folderTypeText = FileTypes::instance().folderTypeText();
    }
    return folderTypeText;
}

void KelofolderView::Private::ensureImage(const QString &key, const QPixmap &picture)
{
    if (!images->contains(key)) {
        images->add(picture, key);
        model->picturesChanged();
        tree->viewport()->update();
    }
}

void KelofolderView::Private::ensureFolderImages(bool hidden)
{
    const QString type = folderType();
    if (hidden) {
        if (!images->contains(HiddenPrefix + type) || !images->contains(HiddenOpenPrefix + type)) {
            ensureImage(HiddenPrefix + type, FileIconProvider::folder(IconSize, false, true));
            ensureImage(HiddenOpenPrefix + type, FileIconProvider::folder(IconSize, true, true));
        }
    } else if (!images->contains(type) || !images->contains(OpenPrefix + type)) {
        ensureImage(type, FileIconProvider::folder(IconSize, false));
        ensureImage(OpenPrefix + type, FileIconProvider::folder(IconSize, true));
    }
}

void KelofolderView::Private::ensureDriveImage(const DriveInfo &drive)
{
    const QString type = DriveTypeName(drive);
    if (!images->contains(type) || !images->contains(OpenPrefix + type)) {
        const QPixmap picture = FileIconProvider::drive(drive.driveType, IconSize);
        ensureImage(type, picture);
        ensureImage(OpenPrefix + type, picture);
    }
}

// Only the mount points: read from the mount table without asking each volume about itself, which
// (statvfs, labels) costs more than the listing it serves.
const QSet<QString> &KelofolderView::Private::mountPoints()
{
    if (!mountCache) {
        QSet<QString> points;
        QFile table(FileSystem::Probes::system().mountInfoPath);
        if (table.open(QIODevice::ReadOnly)) {
            FileSystem::Probes cheap;
            cheap.mountInfoPath = table.fileName();
            cheap.isFileMount = [](const QString &) { return false; };
            cheap.statVolume = [](const QString &, qint64 &, qint64 &) { return false; };
            cheap.volumeLabel = [](const QString &) { return QString(); };
            cheap.isRemovable = [](const QString &) { return false; };
            for (const DriveInfo &drive : FileSystem::parseMountInfo(table.readAll(), cheap)) {
                points.insert(drive.rootPath);
            }
        }
        mountCache = std::move(points);
    }
    return *mountCache;
}

QString KelofolderView::Private::addNode(
    const QString &parentKey, const QString &key, const QString &text, const QString &image, const QString &selected)
{
    if (model->find(key)) {
        return QString();
    }
    int cancel = 0;
    Q_EMIT q.BeforeAddItem(cancel);
    if (cancel != 0) {
        return QString();
    }
    Node *parent = parentKey.isEmpty() ? nullptr : model->find(parentKey);
    if (!parentKey.isEmpty() && !parent) {
        return QString(); // the handler removed the parent
    }
    Node *node = model->add(parent, key, text, image, selected);
    if (!node) {
        return QString(); // the handler added the same key
    }
    int index = node->index;
    Q_EMIT q.AfterAddItem(index);
    return key;
}

QString KelofolderView::Private::addFolder(
    const QString &parentKey, const QString &key, const QString &text, bool hidden)
{
    ensureFolderImages(hidden);
    const QString type = folderType();
    return addNode(parentKey, key, text, (hidden ? HiddenPrefix : QString()) + type,
        (hidden ? HiddenOpenPrefix : OpenPrefix) + type);
}

QString KelofolderView::Private::addDrive(const QString &parentKey, const DriveInfo &drive)
{
    ensureDriveImage(drive);
    const QString type = DriveTypeName(drive);
    return addNode(parentKey, drive.rootPath, DriveDisplayName(drive), type, OpenPrefix + type);
}

bool KelofolderView::Private::addSubFolders(const QString &key)
{
    const FileSystem &fs = FileSystem::instance();
    if (!systemMountCache) {
        systemMountCache = SubFolderList::systemMountPoints();
    }
    QList<FileEntry> folders;
    if (!SubFolderList::list(key, *systemMountCache, folders)) {
        return model->find(key) != nullptr; // an unreadable folder shows no sub-folders
    }
    for (const FileEntry &entry : std::as_const(folders)) {
        if (!rules.passesAttributes(entry)) {
            continue;
        }
        const QString childKey = FileSystem::buildPath(key, entry.name);
        const bool hidden = entry.attributes & FileAttribute::Hidden;
        if (mountPoints().contains(childKey) && !model->find(childKey)) {
            // A drive mounted inside the tree: the folder's name, the drive's picture.
            DriveInfo drive;
            try {
                drive = fs.getDrive(childKey);
            } catch (const RuntimeError &) {
                drive.driveType = DriveType::Unknown;
            }
            ensureDriveImage(drive);
            const QString driveType = DriveTypeName(drive);
            addNode(key, childKey, entry.name, driveType, OpenPrefix + driveType);
        } else if (!mountPoints().contains(childKey)) {
            addFolder(key, childKey, entry.name, hidden);
        }
        if (!model->find(key)) {
            return false;
        }
    }
    return true;
}

void KelofolderView::Private::fillAhead(const QString &key)
{
    if (!addSubFolders(key)) {
        return;
    }
    QStringList childKeys;
    if (const Node *node = model->find(key)) {
        childKeys.reserve(qsizetype(node->children.size()));
        for (const auto &child : node->children) {
            childKeys.append(child->key);
        }
    }
    for (const QString &child : std::as_const(childKeys)) {
        const Node *node = model->find(child);
        if (node && isRealFolder(node)) {
            addSubFolders(child);
        }
    }
}

// The root itself is always there: handlers of BeforeAddItem decide about the nodes below it.
void KelofolderView::Private::build()
{
    Step step(*this);
    int cancel = 0;
    Q_EMIT q.BeforePaint(cancel);
    if (cancel != 0) {
        return;
    }
    showingSelection = true;
    model->clear();
    showingSelection = false;
    itemIndex = 0;
    const FileSystem &fs = FileSystem::instance();
    const bool myFoldersRoot = FileListFilter::isMyFolders(pathRoot);
    const bool folderRoot
        = !myFoldersRoot && !FileListFilter::isMyComputer(pathRoot) && !pathRoot.isEmpty() && fs.folderExists(pathRoot);
    if (myFoldersRoot) {
        ensureImage(MyFolders, FileIconProvider::fixedPicture(FileIconProvider::MyFolders, IconSize));
        model->add(nullptr, MyFolders, MyFolders, MyFolders, MyFolders);
    } else if (folderRoot) {
        const QString key = FileSystem::cleanPath(pathRoot);
        QString type;
        const QPixmap closed = FileIconProvider::forPath(key, IconSize, false, false, &type);
        ensureImage(type, closed);
        ensureImage(OpenPrefix + type, FileIconProvider::forPath(key, IconSize, true));
        model->add(nullptr, key, FolderDisplayName(key), type, OpenPrefix + type);
        fillAhead(key);
    } else if (!pathRoot.isEmpty()) {
        // "My Computer", and any folder that is not there.
        ensureImage(MyComputer, FileIconProvider::fixedPicture(FileIconProvider::MyComputer, IconSize));
        model->add(nullptr, MyComputer, MyComputer, MyComputer, MyComputer);
        // Every drive first, so that a mount inside another drive stands as a drive of its own.
        QStringList driveKeys;
        for (const DriveInfo &drive : fs.drives()) {
            const QString key = addDrive(MyComputer, drive);
            if (!key.isEmpty()) {
                driveKeys.append(key);
            }
        }
        for (const QString &key : std::as_const(driveKeys)) {
            if (model->find(key)) {
                addSubFolders(key);
            }
        }
    }
    if (!model->roots().empty()) {
        building = true; // the root's children are there already: no Expand for opening it
        tree->expand(model->index(0, 0));
        building = false;
    }
    if (Node *node = model->find(path)) {
        showSelected(node);
    }
    Q_EMIT q.AfterPaint();
}

// The design-time face: a small tree of made-up folders, so nothing is read from disk in a designer.
void KelofolderView::Private::buildSample()
{
    model->clear();
    ensureImage(MyComputer, FileIconProvider::fixedPicture(FileIconProvider::MyComputer, IconSize));
    const QString closed = QStringLiteral("Folder");
    ensureImage(closed, FileIconProvider::folder(IconSize));
    const QString rootText = pathRoot.isEmpty() ? MyComputer : pathRoot;
    Node *root = model->add(nullptr, rootText, rootText, MyComputer, MyComputer);
    for (const char *name : {"Documents", "Music", "Pictures", "Projects"}) {
        const QString text = QString::fromLatin1(name);
        model->add(root, rootText + QLatin1Char('/') + text, text, closed, closed);
    }
    tree->expand(model->indexOf(root));
}

void KelofolderView::Private::expanded(const QString &key)
{
    Step step(*this);
    Q_EMIT q.Expand(key);
    const Node *node = model->find(key);
    if (!node || isPseudoRoot(key) || (isFavourite(node) && node->checked)) {
        return;
    }
    if (exists(node)) {
        fillAhead(key);
    } else {
        ShowFolderNotAccessible(key);
        removeNode(model->find(key));
    }
}

void KelofolderView::Private::removeNode(Node *node)
{
    if (!node) {
        return;
    }
    // TreeFolders moves its current row off a removed node: that is no click of the user's.
    showingSelection = true;
    model->remove(node);
    showingSelection = false;
    showSelected(model->find(path));
}

void KelofolderView::Private::showSelected(const Node *node)
{
    showingSelection = true;
    model->setCurrent(node);
    if (node) {
        const QModelIndex index = model->indexOf(node);
        tree->setCurrentIndex(index);
        tree->scrollTo(index);
    } else {
        tree->setCurrentIndex(QModelIndex());
        tree->clearSelection();
    }
    showingSelection = false;
}

void KelofolderView::Private::select(const QString &key, bool click)
{
    if (click) {
        Q_EMIT q.NodeClick(key);
    }
    Node *node = model->find(key);
    if (!node) {
        showSelected(model->find(path));
        return;
    }
    if (click) {
        itemIndex = node->index;
    }
    if (sameText(key, path)) {
        showSelected(node);
        return;
    }
    if (!isPseudoRoot(key) && !(isFavourite(node) && node->checked) && !exists(node)) {
        const QString text = node->text;
        showSelected(model->find(path));
        ShowFolderNotAccessible(text);
        removeNode(model->find(key));
        return;
    }
    path = node->key;
    showSelected(node);
    Q_EMIT q.ChangedFolder();
}

KelofolderView::Private::Node *KelofolderView::Private::reveal(const QString &wanted)
{
    if (Node *node = model->find(wanted)) {
        return node;
    }
    // Walk down from the deepest node whose key is a parent of the path.
    QString ancestor = FileSystem::parentFolderName(wanted);
    QStringList below{wanted};
    while (!ancestor.isEmpty() && !model->find(ancestor)) {
        below.prepend(ancestor);
        ancestor = FileSystem::parentFolderName(ancestor);
    }
    if (ancestor.isEmpty()) {
        return nullptr;
    }
    QString key = ancestor;
    for (const QString &next : std::as_const(below)) {
        Node *node = model->find(key);
        if (!node || !isRealFolder(node)) {
            return nullptr;
        }
        fillAhead(key);
        if (!model->find(next)) {
            return nullptr;
        }
        key = next;
    }
    return model->find(wanted);
}

void KelofolderView::Private::refresh()
{
    Step step(*this);
    const FileSystem &fs = FileSystem::instance();
    // Drives under "My Computer": captions again, media gone and come.
    if (Node *computer = model->find(MyComputer)) {
        const QList<DriveInfo> drives = fs.drives();
        QSet<QString> roots;
        for (const DriveInfo &drive : drives) {
            roots.insert(drive.rootPath);
        }
        QStringList gone;
        for (const auto &child : computer->children) {
            if (!roots.contains(child->key)) {
                gone.append(child->key);
            }
        }
        for (const QString &key : std::as_const(gone)) {
            removeNode(model->find(key));
        }
        for (const DriveInfo &drive : drives) {
            if (Node *node = model->find(drive.rootPath)) {
                if (isDriveNode(node)) {
                    model->setText(node, DriveDisplayName(drive));
                }
            } else if (model->find(MyComputer)) {
                if (!addDrive(MyComputer, drive).isEmpty()) {
                    addSubFolders(drive.rootPath);
                }
            }
        }
    }
    // Every other node against the disk, in the order they were added.
    QStringList keys;
    for (int i = 1; i <= model->count(); ++i) {
        keys.append(model->at(i)->key);
    }
    for (const QString &key : std::as_const(keys)) {
        Node *node = model->find(key);
        if (!node || isPseudoRoot(key) || isDriveNode(node)) {
            continue;
        }
        const bool there = fs.folderExists(key);
        if (isFavourite(node)) {
            if (!there && !node->checked) {
                while (!node->children.empty()) {
                    removeNode(node->children.back().get());
                }
                model->setText(node, key + UnavailableSuffix);
                model->setImages(node, FileIconProvider::FolderUnavailable, FileIconProvider::FolderUnavailable);
                model->setChecked(node, true);
            } else if (there && node->checked) {
                ensureFolderImages(false);
                model->setText(node, FolderDisplayName(key));
                model->setImages(node, folderType(), OpenPrefix + folderType());
                model->setChecked(node, false);
                addSubFolders(key);
            }
        } else if (!there) {
            removeNode(node);
        }
    }
    // New sub-folders of the expanded nodes, one level ahead.
    keys.clear();
    for (int i = 1; i <= model->count(); ++i) {
        const Node *node = model->at(i);
        if (isRealFolder(node) && tree->isExpanded(model->indexOf(node))) {
            keys.append(node->key);
        }
    }
    for (const QString &key : std::as_const(keys)) {
        if (model->find(key)) {
            fillAhead(key);
        }
    }
    if (!model->find(path) && !path.isEmpty() && !isPseudoRoot(path)) {
        showSelected(nullptr);
    }
}

// ---------------------------------------------------------------------------
// Private: commands

void KelofolderView::Private::cut()
{
    if (Node *node = selectedNode(); isRealFolder(node)) {
        cutFlag = true;
        ClipboardPutFiles({node->key});
    }
}

void KelofolderView::Private::copy()
{
    if (Node *node = selectedNode(); isRealFolder(node)) {
        cutFlag = false;
        ClipboardPutFiles({node->key});
    }
}

void KelofolderView::Private::paste()
{
    Node *node = selectedNode();
    if (!isRealFolder(node)) {
        return;
    }
    const bool copying = !cutFlag;
    cutFlag = false;
    PasteFiles(node->key, copying);
    refresh();
}

void KelofolderView::Private::deleteFolder()
{
    Node *node = selectedNode();
    if (!isRealFolder(node) || isDriveNode(node) || !node->parent) {
        return; // roots and drives are not deleted from here
    }
    const QString key = node->key;
    const QString name = node->text;
    const std::optional<FileEntry> entry = FileSystem::instance().entry(key);
    if (!entry || !entry->isFolder()) {
        return;
    }
    const int answer
        = entry->attributes & FileAttribute::ReadOnly ? ConfirmReadOnlyFolderDelete(name) : ConfirmFolderDelete(name);
    if (answer != 6) {
        return;
    }
    FileOperations::deleteFolder(key);
    if (FileSystem::instance().folderExists(key)) {
        return;
    }
    Node *gone = model->find(key);
    const QString parentKey = gone && gone->parent ? gone->parent->key : QString();
    removeNode(gone);
    if (!parentKey.isEmpty()) {
        select(parentKey, false);
    }
}

void KelofolderView::Private::rename()
{
    if (Node *node = selectedNode()) {
        tree->editLabel(model->indexOf(node));
    }
}

bool KelofolderView::Private::labelEditAllowed(const QModelIndex &index)
{
    const Node *node = model->nodeOf(index);
    if (!allowLabelEdit || !q.UserMode() || !isRealFolder(node) || isDriveNode(node) || !node->parent) {
        return false;
    }
    int cancel = 0;
    Q_EMIT q.BeforeLabelEdit(cancel);
    return cancel == 0;
}

bool KelofolderView::Private::commitLabel(Node *node, QString &text)
{
    const QString key = node->key;
    int cancel = 0;
    Q_EMIT q.AfterLabelEdit(cancel, text);
    node = model->find(key);
    if (cancel != 0 || !node || text.isEmpty() || text == node->text) {
        return false;
    }
    static const QString invalid = QStringLiteral("\\/:*?\"<>|");
    for (const QChar c : std::as_const(text)) {
        if (invalid.contains(c)) {
            ShowInvalidNameChars();
            return false;
        }
    }
    const QString target = FileSystem::buildPath(FileSystem::parentFolderName(key), text);
    // renameat2 with RENAME_NOREPLACE: an existing entry of the new name is never replaced.
    if (::renameat2(AT_FDCWD, FileNameCodec::encode(key).constData(), AT_FDCWD,
            FileNameCodec::encode(target).constData(), RENAME_NOREPLACE)
        != 0) {
        MsgBox(QStringLiteral("Cannot rename ") + node->text
                + QStringLiteral(": A file or folder with the name you specified already exists, or the folder "
                                 "cannot be renamed."),
            16, QStringLiteral("Error Renaming File or Folder"));
        return false;
    }
    const bool wasPath = sameText(path, key);
    const QString parentKey = node->parent ? node->parent->key : QString();
    const bool wasExpanded = tree->isExpanded(model->indexOf(node));
    // The node and everything below it are keyed by the old path: take them out and add the new name.
    removeNode(node);
    if (!addFolder(parentKey, target, text, false).isEmpty()) {
        addSubFolders(target);
        if (wasExpanded) {
            tree->expand(model->indexOf(model->find(target)));
        }
        if (wasPath) {
            select(target, false);
        }
    }
    return false; // the node shows the new name already
}

void KelofolderView::Private::newFolder()
{
    Node *node = selectedNode();
    if (!isRealFolder(node)) {
        return;
    }
    const QString parentKey = node->key;
    const QString target = UniqueNewFolderPath(parentKey);
    if (::mkdir(FileNameCodec::encode(target).constData(), 0777) != 0) {
        return; // nothing made: a read-only folder, say; the tree stays as it is
    }
    if (!addFolder(parentKey, target, nameOfKey(target), false).isEmpty()) {
        tree->expand(model->indexOf(model->find(parentKey)));
        select(target, false);
    }
}

void KelofolderView::Private::properties()
{
    if (Node *node = selectedNode(); isRealFolder(node)) {
        ShowFileProperties(node->key, node->text, &q);
    }
}

bool KelofolderView::Private::keyCommand(short keyCode, short shift)
{
    switch (keyCode) {
    case 88:
        if (shift == 2) {
            cut();
            return true;
        }
        return false;
    case 67:
        if (shift == 2) {
            copy();
            return true;
        }
        return false;
    case 86:
        if (shift == 2) {
            paste();
            return true;
        }
        return false;
    case 46:
        deleteFolder();
        return true;
    case 113:
        rename();
        return true;
    case 116:
        refresh();
        return true;
    default:
        return false;
    }
}

void KelofolderView::Private::startDrag()
{
    if (oleDragMode != 1) {
        return;
    }
    // The press that starts a drag has made the node under the pointer current, but no click came yet.
    if (const Node *pressed = model->nodeOf(tree->currentIndex()); pressed && pressed != model->current()) {
        select(pressed->key, true);
    }
    q.OLEDrag();
}

void KelofolderView::Private::dragMoved(QDragMoveEvent *event)
{
    if (oleDropMode == 0 || !q.UserMode()) {
        event->ignore();
        return;
    }
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    int effect = ctrl ? 1 : 2;
    if (oleDropMode == 1) {
        short button = StockEventFilter::buttonCode(event->buttons());
        short shift = StockEventFilter::shiftState(event->modifiers());
        float x = float(event->position().x());
        float y = float(event->position().y());
        short state = event->type() == QEvent::DragEnter ? 0 : 2;
        Q_EMIT q.OLEDragOver(const_cast<QMimeData *>(event->mimeData()), effect, button, shift, x, y, state);
    } else {
        const QModelIndex index = tree->indexAt(event->position().toPoint());
        const Node *node = model->nodeOf(index);
        if (!isRealFolder(node) || filesOfMimeData(event->mimeData()).isEmpty()) {
            event->ignore();
            return;
        }
        showSelected(node);
        if (!tree->isExpanded(index)) {
            tree->expand(index);
        }
    }
    if (effect == 0) {
        event->ignore();
        return;
    }
    event->setDropAction(effect == 1 ? Qt::CopyAction : Qt::MoveAction);
    event->accept();
}

void KelofolderView::Private::dropped(QDropEvent *event)
{
    const bool ctrl = event->modifiers() & Qt::ControlModifier;
    if (oleDropMode == 1) {
        int effect = ctrl ? 1 : 2;
        short button = StockEventFilter::buttonCode(event->buttons());
        short shift = StockEventFilter::shiftState(event->modifiers());
        float x = float(event->position().x());
        float y = float(event->position().y());
        Q_EMIT q.OLEDragDrop(const_cast<QMimeData *>(event->mimeData()), effect, button, shift, x, y);
        event->setDropAction(effect == 1 ? Qt::CopyAction : effect == 2 ? Qt::MoveAction : Qt::IgnoreAction);
        event->accept();
        return;
    }
    const Node *node = model->nodeOf(tree->indexAt(event->position().toPoint()));
    const QStringList files = filesOfMimeData(event->mimeData());
    if (oleDropMode != 2 || !isRealFolder(node) || files.isEmpty()) {
        showSelected(model->find(path));
        event->ignore();
        return;
    }
    const QString destination = node->key;
    for (const QString &file : files) {
        TransferItem(file, destination, ctrl);
    }
    event->setDropAction(ctrl ? Qt::CopyAction : Qt::MoveAction);
    event->accept();
    refresh();
    showSelected(model->find(path));
}

void KelofolderView::Private::applyFrame()
{
    if (borderStyle == 0) {
        tree->setFrameStyle(QFrame::NoFrame);
    } else if (appearance == 0) {
        tree->setFrameStyle(QFrame::Box | QFrame::Plain);
        tree->setLineWidth(1);
    } else {
        tree->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    }
}

// F2 goes through the control's keys in both modes; a click on the selected node edits only in mode 0.
void KelofolderView::Private::applyLabelEdit()
{
    tree->setEditTriggers(labelEdit == 0 ? QAbstractItemView::SelectedClicked : QAbstractItemView::NoEditTriggers);
}

void KelofolderView::Private::applyPalette()
{
    QPalette p = tree->palette();
    p.setColor(QPalette::Text, toQColor(foreColor));
    tree->setPalette(p);
}

// ---------------------------------------------------------------------------
// The control

KelofolderView::KelofolderView(QWidget *parent)
    : ControlBase(parent)
    , d(std::make_unique<Private>(*this))
{
    d->tree->setObjectName(QStringLiteral("TreeFolders"));
    d->images->setObjectName(QStringLiteral("ImageList1"));
    d->menu->setObjectName(QStringLiteral("popOnFolder"));
    d->refreshTimer->setObjectName(QStringLiteral("RefreshTimer"));
    d->tree->setModel(d->model);
    d->tree->setFont(ambientFont());
    d->tree->setContextMenuPolicy(Qt::CustomContextMenu);
    setFocusProxy(d->tree);

    const struct
    {
        const char *caption;
        void (Private::*command)();
    } entries[] = {{"Cu&t", &Private::cut}, {"&Copy", &Private::copy}, {"&Paste", &Private::paste}, {"-", nullptr},
        {"&Delete", &Private::deleteFolder}, {"Rena&me", &Private::rename}, {"&New folder", &Private::newFolder},
        {"-", nullptr}, {"P&roperties", &Private::properties}};
    for (const auto &entry : entries) {
        if (!entry.command) {
            d->menu->addSeparator();
            continue;
        }
        QAction *action = d->menu->addAction(QString::fromLatin1(entry.caption));
        connect(action, &QAction::triggered, this, [this, command = entry.command] { ((*d).*command)(); });
    }

    d->tree->editAllowed = [this](const QModelIndex &index) { return d->labelEditAllowed(index); };
    d->tree->dragStarted = [this] { d->startDrag(); };
    d->tree->dragMoved = [this](QDragMoveEvent *event) { d->dragMoved(event); };
    d->tree->dragLeft = [this] { d->showSelected(d->model->find(d->path)); };
    d->tree->dropped = [this](QDropEvent *event) { d->dropped(event); };
    d->model->setEditHandler([this](FolderTreeModel::Node *node, QString &text) { return d->commitLabel(node, text); });

    connect(d->refreshTimer, &QTimer::timeout, this, [this] {
        if (UserMode()) {
            d->refresh();
        }
    });
    connect(d->tree, &QTreeView::expanded, this, [this](const QModelIndex &index) {
        if (UserMode() && !d->building) {
            if (const FolderTreeModel::Node *node = d->model->nodeOf(index)) {
                d->expanded(node->key);
            }
        }
    });
    connect(d->tree, &QTreeView::collapsed, this, [this](const QModelIndex &index) {
        if (UserMode()) {
            if (const FolderTreeModel::Node *node = d->model->nodeOf(index)) {
                Q_EMIT Collapse(node->key);
            }
        }
    });
    connect(d->tree->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex &current) {
        // A mouse click is told by clicked() once the button is up, also on the node already selected.
        if (d->showingSelection || !UserMode() || QGuiApplication::mouseButtons() != Qt::NoButton) {
            return;
        }
        if (const FolderTreeModel::Node *node = d->model->nodeOf(current)) {
            d->select(node->key, true);
        }
    });
    connect(d->tree, &QAbstractItemView::clicked, this, [this](const QModelIndex &index) {
        if (UserMode() && !d->showingSelection) {
            if (const FolderTreeModel::Node *node = d->model->nodeOf(index)) {
                d->select(node->key, true);
            }
        }
    });
    connect(d->tree, &QWidget::customContextMenuRequested, this, [this](const QPoint &) {
        if (UserMode() && d->selectedNode()) {
            d->menu->exec(QCursor::pos());
        }
    });

    // Filters run last-installed first: ours goes before the stock events', so KeyDown comes first.
    d->tree->installEventFilter(this);
    auto *keys = new StockEventFilter(d->tree);
    connect(keys, &StockEventFilter::KeyDown, this, &KelofolderView::KeyDown);
    connect(keys, &StockEventFilter::KeyPress, this, &KelofolderView::KeyPress);
    connect(keys, &StockEventFilter::KeyUp, this, &KelofolderView::KeyUp);
    auto *mouse = new StockEventFilter(d->tree->viewport());
    connect(mouse, &StockEventFilter::Click, this, &KelofolderView::Click);
    connect(mouse, &StockEventFilter::DblClick, this, &KelofolderView::DblClick);
    connect(mouse, &StockEventFilter::MouseDown, this, &KelofolderView::MouseDown);
    connect(mouse, &StockEventFilter::MouseMove, this, &KelofolderView::MouseMove);
    connect(mouse, &StockEventFilter::MouseUp, this, &KelofolderView::MouseUp);

    InitProperties();
}

KelofolderView::~KelofolderView() = default;

const PropertyTable<KelofolderView> &KelofolderView::table()
{
    static const PropertyTable<KelofolderView> properties = [] {
        using C = KelofolderView;
        const auto text = [](const QString &s) { return QVariant(s); };
        const auto drop = [](C &, const QVariant &) {};
        PropertyTable<C> t;
        ClassicFaceEntries<C>(t, [](C &c) -> ClassicFace & { return c.d->face; }).enabled().font();
        t.add(
             "BorderStyle", QVariant(0), [](const C &c) { return QVariant(c.d->borderStyle); },
             [](C &c, const QVariant &v) {
                 c.d->borderStyle = CInt(v);
                 c.d->applyFrame();
             })
            .add(
                "Appearance", QVariant(1), [](const C &c) { return QVariant(c.d->appearance); },
                [](C &c, const QVariant &v) {
                    c.d->appearance = CInt(v);
                    c.d->applyFrame();
                })
            .add(
                "FullRowSelect", QVariant(false), [](const C &c) { return QVariant(c.d->fullRowSelect); },
                [](C &c, const QVariant &v) { c.setFullRowSelect(CBool(v)); })
            .add(
                "HotTracking", QVariant(false), [](const C &c) { return QVariant(c.d->hotTracking); },
                [](C &c, const QVariant &v) { c.setHotTracking(CBool(v)); })
            .add(
                "LabelEdit", QVariant(0), [](const C &c) { return QVariant(c.d->labelEdit); },
                [](C &c, const QVariant &v) {
                    c.d->labelEdit = CInt(v);
                    c.d->applyLabelEdit();
                })
            .add(
                "OLEDropMode", QVariant(2), [](const C &c) { return QVariant(c.d->oleDropMode); },
                [](C &c, const QVariant &v) { c.d->oleDropMode = CLng(v); })
            .add(
                "OLEDragMode", QVariant(1), [](const C &c) { return QVariant(c.d->oleDragMode); },
                [](C &c, const QVariant &v) { c.d->oleDragMode = CLng(v); })
            .add(
                "AllowLabelEdit", QVariant(true), [](const C &c) { return QVariant(c.d->allowLabelEdit); },
                [](C &c, const QVariant &v) { c.d->allowLabelEdit = CBool(v); })
            .add(
                "PathRoot", text(QString()), [](const C &c) { return QVariant(c.d->pathRoot); },
                [](C &c, const QVariant &v) { c.d->pathRoot = textFromVariant(v); })
            .add(
                "AllowHiddenFolders", QVariant(false), [](const C &c) { return QVariant(c.d->rules.allowHidden); },
                [](C &c, const QVariant &v) { c.d->rules.allowHidden = CBool(v); })
            .add(
                "AllowSystemFolders", QVariant(false), [](const C &c) { return QVariant(c.d->rules.allowSystem); },
                [](C &c, const QVariant &v) { c.d->rules.allowSystem = CBool(v); })
            .add(
                "ForeColor", QVariant(uint(0x80000012)), [](const C &c) { return QVariant(c.d->foreColor); },
                [](C &c, const QVariant &v) {
                    c.d->foreColor = colorFromVariant(v);
                    c.d->applyPalette();
                })
            .add(
                "ImageCount", QVariant(0), [](const C &c) { return QVariant(c.ImageCount()); }, drop)
            .add(
                "ImageIndex", QVariant(0), [](const C &c) { return QVariant(c.d->imageIndex); }, drop)
            .add(
                "ImageTag", text(QString()), [](const C &c) { return QVariant(c.d->imageTag); },
                [](C &c, const QVariant &v) { c.d->imageTag = textFromVariant(v); })
            .add(
                "ImageKey", text(QString()), [](const C &c) { return QVariant(c.d->imageKey); },
                [](C &c, const QVariant &v) { c.d->imageKey = textFromVariant(v); })
            .add(
                "RefreshInterval", QVariant(0), [](const C &c) { return QVariant(c.RefreshInterval()); },
                [](C &c, const QVariant &v) { c.d->refreshTimer->setInterval(std::max(0, int(CLng(v)))); })
            .add(
                "ItemIndex", QVariant(0), [](const C &c) { return QVariant(c.d->itemIndex); }, drop)
            .add(
                "ItemTag", text(QString()), [](const C &c) { return QVariant(c.d->itemTag); },
                [](C &c, const QVariant &v) { c.d->itemTag = textFromVariant(v); })
            .add(
                "ItemExpanded", QVariant(false), [](const C &c) { return QVariant(c.d->itemExpanded); },
                [](C &c, const QVariant &v) { c.d->itemExpanded = CBool(v); })
            .add(
                "ItemIcon", text(QString()), [](const C &c) { return QVariant(c.d->itemIcon); },
                [](C &c, const QVariant &v) { c.d->itemIcon = textFromVariant(v); })
            .add(
                "ItemCount", QVariant(0), [](const C &c) { return QVariant(c.ItemCount()); }, drop)
            .add(
                "Path", text(QString()), [](const C &c) { return QVariant(c.d->path); },
                [](C &c, const QVariant &v) { c.d->path = textFromVariant(v); })
            .add(
                "ItemName", text(QString()), [](const C &c) { return QVariant(c.d->itemName); },
                [](C &c, const QVariant &v) { c.d->itemName = textFromVariant(v); })
            .add(
                "ItemDisplayName", text(QString()), [](const C &c) { return QVariant(c.d->itemDisplayName); },
                [](C &c, const QVariant &v) { c.d->itemDisplayName = textFromVariant(v); })
            .add(
                "ItemSelected", QVariant(false), [](const C &c) { return QVariant(c.d->itemSelected); },
                [](C &c, const QVariant &v) { c.d->itemSelected = CBool(v); })
            .add(
                "ItemPath", text(QString()), [](const C &c) { return QVariant(c.d->itemPath); },
                [](C &c, const QVariant &v) { c.d->itemPath = textFromVariant(v); })
            .add(
                "MousePointer", QVariant(0), [](const C &c) { return QVariant(c.d->mousePointer); },
                [](C &c, const QVariant &v) {
                    c.d->mousePointer = CInt(v);
                    c.d->tree->viewport()->setCursor(MousePointer::cursor(c.d->mousePointer, c.d->mouseIcon));
                })
            .add(
                "MouseIcon", QVariant(QPixmap()), [](const C &c) { return QVariant(c.d->mouseIcon); },
                [](C &c, const QVariant &v) { c.setMouseIcon(pictureOf(v)); });
        return t;
    }();
    return properties;
}

const PropertyTableBase &KelofolderView::propertyTable() const
{
    return table();
}

QSize KelofolderView::sizeHint() const
{
    return QSize(240, 320);
}

QTreeView *KelofolderView::treeFolders() const
{
    return d->tree;
}

ImageList *KelofolderView::imageList() const
{
    return d->images;
}

QMenu *KelofolderView::popOnFolder() const
{
    return d->menu;
}

// ---------------------------------------------------------------------------
// Life cycle

void KelofolderView::propertiesLoaded()
{
    d->refreshTimer->stop();
    if (UserMode()) {
        if (d->refreshTimer->interval() > 0) {
            d->refreshTimer->start();
        }
        d->build();
    } else {
        d->buildSample();
    }
}

void KelofolderView::userModeChanged()
{
    propertiesLoaded();
}

void KelofolderView::resizeEvent(QResizeEvent *event)
{
    ControlBase::resizeEvent(event);
    d->tree->setGeometry(rect());
}

void KelofolderView::changeEvent(QEvent *event)
{
    ControlBase::changeEvent(event);
    if (event->type() == QEvent::ParentChange && !d->tree->font().resolveMask()) {
        d->tree->setFont(ambientFont());
    }
}

bool KelofolderView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == d->tree && event->type() == QEvent::KeyPress && UserMode() && !d->tree->editing()) {
        auto *key = static_cast<QKeyEvent *>(event);
        return d->keyCommand(StockEventFilter::keyCode(key->key()), StockEventFilter::shiftState(key->modifiers()));
    }
    return ControlBase::eventFilter(watched, event);
}

// ---------------------------------------------------------------------------
// Properties passed to TreeFolders

KELO_CLASSIC_FORWARD(KelofolderView, Enabled, d->face)
KELO_CLASSIC_FORWARD(KelofolderView, Font, d->face)

int KelofolderView::BorderStyle() const
{
    return d->borderStyle;
}

void KelofolderView::setBorderStyle(int style)
{
    requireOneOf(style, 0, 1);
    d->borderStyle = style;
    d->applyFrame();
    propertyChanged("BorderStyle");
}

int KelofolderView::Appearance() const
{
    return d->appearance;
}

void KelofolderView::setAppearance(int appearance)
{
    requireOneOf(appearance, 0, 1);
    d->appearance = appearance;
    d->applyFrame();
    propertyChanged("Appearance");
}

OleColor KelofolderView::ForeColor() const
{
    return d->foreColor;
}

void KelofolderView::setForeColor(OleColor color)
{
    d->foreColor = color;
    d->applyPalette();
    propertyChanged("ForeColor");
}

OleColor KelofolderView::BackColor() const
{
    return fromQColor(d->tree->palette().color(QPalette::Base));
}

int KelofolderView::MousePointer() const
{
    return d->mousePointer;
}

void KelofolderView::setMousePointer(int pointer)
{
    if (!MousePointer::isValid(pointer)) {
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    }
    d->mousePointer = pointer;
    d->tree->viewport()->setCursor(MousePointer::cursor(pointer, d->mouseIcon));
    propertyChanged("MousePointer");
}

QPixmap KelofolderView::MouseIcon() const
{
    return d->mouseIcon;
}

void KelofolderView::setMouseIcon(const QPixmap &icon)
{
    d->mouseIcon = icon;
    d->tree->viewport()->setCursor(MousePointer::cursor(d->mousePointer, icon));
    propertyChanged("MouseIcon");
}

bool KelofolderView::FullRowSelect() const
{
    return d->fullRowSelect;
}

void KelofolderView::setFullRowSelect(bool full)
{
    d->fullRowSelect = full;
    // The selection then covers the indentation and branch area too.
    d->tree->setStyleSheet(full ? QStringLiteral("QTreeView { show-decoration-selected: 1; }") : QString());
    propertyChanged("FullRowSelect");
}

bool KelofolderView::HotTracking() const
{
    return d->hotTracking;
}

void KelofolderView::setHotTracking(bool on)
{
    d->hotTracking = on;
    d->tree->setMouseTracking(on);
    d->tree->viewport()->setAttribute(Qt::WA_Hover, on);
    propertyChanged("HotTracking");
}

int KelofolderView::LabelEdit() const
{
    return d->labelEdit;
}

void KelofolderView::setLabelEdit(int mode)
{
    requireOneOf(mode, 0, 1);
    d->labelEdit = mode;
    d->applyLabelEdit();
    propertyChanged("LabelEdit");
}

// ---------------------------------------------------------------------------
// Roots, folders and paths

void KelofolderView::Refresh()
{
    if (UserMode()) {
        d->refresh();
    }
    d->tree->viewport()->update();
}

void KelofolderView::AddNewFolder(const QString &FolderName)
{
    d->myFolders.append(FolderName);
    if (!UserMode() || !d->model->find(MyFolders)) {
        return;
    }
    Private::Step step(*d);
    const FileSystem &fs = FileSystem::instance();
    const QString key = FolderName.isEmpty() ? FolderName : FileSystem::cleanPath(FolderName);
    if (!key.isEmpty() && fs.folderExists(key)) {
        const std::optional<FileEntry> entry = fs.entry(key);
        const bool hidden = entry && (entry->attributes & FileAttribute::Hidden) && key != QStringLiteral("/");
        if (!d->addFolder(MyFolders, key, FolderDisplayName(key), hidden).isEmpty()) {
            d->addSubFolders(key);
        }
    } else {
        d->ensureImage(FileIconProvider::FolderUnavailable,
            FileIconProvider::fixedPicture(FileIconProvider::FolderUnavailable, IconSize));
        const QString nodeKey = key.isEmpty() ? FolderName : key;
        const QString added = d->addNode(MyFolders, nodeKey, FolderName + UnavailableSuffix,
            FileIconProvider::FolderUnavailable, FileIconProvider::FolderUnavailable);
        if (FolderTreeModel::Node *node = d->model->find(added)) {
            d->model->setChecked(node, true);
        }
    }
}

QString KelofolderView::PathRoot() const
{
    return d->pathRoot;
}

void KelofolderView::setPathRoot(const QString &pathRoot)
{
    d->pathRoot = pathRoot;
    propertyChanged("PathRoot");
    if (UserMode()) {
        d->build();
    } else {
        d->buildSample();
    }
}

QStringList KelofolderView::GetMyFolders() const
{
    return d->myFolders;
}

QString KelofolderView::Path() const
{
    return d->path;
}

void KelofolderView::setPath(const QString &path)
{
    requireRunMode();
    if (sameText(path, d->path)) {
        return;
    }
    Private::Step step(*d);
    if (FolderTreeModel::Node *node = d->reveal(Private::isPseudoRoot(path) ? path : FileSystem::cleanPath(path))) {
        d->select(node->key, false);
    }
    propertyChanged("Path");
}

int KelofolderView::GoUp()
{
    FolderTreeModel::Node *node = d->selectedNode();
    if (!node || !node->parent) {
        return 0;
    }
    const QString parentKey = node->parent->key;
    d->select(parentKey, false);
    const FolderTreeModel::Node *parent = d->model->find(parentKey);
    return parent && d->model->current() == parent ? parent->index : 0;
}

// ---------------------------------------------------------------------------
// Drag and drop

void KelofolderView::OLEDrag()
{
    FolderTreeModel::Node *node = d->selectedNode();
    if (!UserMode() || !d->isRealFolder(node)) {
        return;
    }
    const QString key = node->key;
    QMimeData *data = fileListMimeData({key});
    int allowed = 3;
    Q_EMIT OLEStartDrag(data, allowed);
    if (allowed == 0) {
        delete data;
        return;
    }
    auto *drag = new QDrag(this);
    drag->setMimeData(data);
    Qt::DropActions actions;
    if (allowed & 1) {
        actions |= Qt::CopyAction;
    }
    if (allowed & 2) {
        actions |= Qt::MoveAction;
    }
    connect(drag, &QDrag::actionChanged, this, [this](Qt::DropAction action) {
        int effect = action == Qt::CopyAction ? 1 : action == Qt::MoveAction ? 2 : 0;
        bool defaultCursors = true;
        Q_EMIT OLEGiveFeedback(effect, defaultCursors);
    });
    const Qt::DropAction done = drag->exec(actions, Qt::MoveAction);
    int effect = done == Qt::CopyAction ? 1 : done == Qt::MoveAction ? 2 : 0;
    Q_EMIT OLECompleteDrag(effect);
    if (effect == 2) {
        d->refresh();
    }
}

int KelofolderView::OLEDropMode() const
{
    return d->oleDropMode;
}

void KelofolderView::setOLEDropMode(int mode)
{
    if (mode < 0 || mode > 2) {
        throw RuntimeError(ErrorNumber::InvalidPropertyValue);
    }
    d->oleDropMode = mode;
    propertyChanged("OLEDropMode");
}

int KelofolderView::OLEDragMode() const
{
    return d->oleDragMode;
}

void KelofolderView::setOLEDragMode(int mode)
{
    requireOneOf(mode, 0, 1);
    d->oleDragMode = mode;
    propertyChanged("OLEDragMode");
}

bool KelofolderView::AllowLabelEdit() const
{
    return d->allowLabelEdit;
}

void KelofolderView::setAllowLabelEdit(bool allow)
{
    d->allowLabelEdit = allow;
    propertyChanged("AllowLabelEdit");
}

bool KelofolderView::AllowHiddenFolders() const
{
    return d->rules.allowHidden;
}

void KelofolderView::setAllowHiddenFolders(bool allow)
{
    d->rules.allowHidden = allow;
    propertyChanged("AllowHiddenFolders");
}

bool KelofolderView::AllowSystemFolders() const
{
    return d->rules.allowSystem;
}

void KelofolderView::setAllowSystemFolders(bool allow)
{
    d->rules.allowSystem = allow;
    propertyChanged("AllowSystemFolders");
}

int KelofolderView::RefreshInterval() const
{
    return d->refreshTimer->interval();
}

void KelofolderView::setRefreshInterval(int milliseconds)
{
    d->refreshTimer->setInterval(std::max(0, milliseconds));
    if (UserMode() && d->refreshTimer->interval() > 0) {
        d->refreshTimer->start();
    } else {
        d->refreshTimer->stop();
    }
    propertyChanged("RefreshInterval");
}

// ---------------------------------------------------------------------------
// Image members

int KelofolderView::ImageCount() const
{
    return d->images->count();
}

int KelofolderView::ImageIndex() const
{
    return d->imageIndex;
}

void KelofolderView::setImageIndex(int index)
{
    if (index < 0 || index > ImageCount()) {
        return;
    }
    d->imageIndex = index;
    propertyChanged("ImageIndex");
}

QString KelofolderView::ImageTag() const
{
    return d->imageIndex >= 1 && d->imageIndex <= ImageCount() ? d->images->tag(d->imageIndex).toString() : QString();
}

void KelofolderView::setImageTag(const QString &tag)
{
    if (d->imageIndex >= 1 && d->imageIndex <= ImageCount()) {
        d->images->setTag(d->imageIndex, tag);
    }
    d->imageTag = tag;
    propertyChanged("ImageTag");
}

QString KelofolderView::ImageKey() const
{
    return d->imageIndex >= 1 && d->imageIndex <= ImageCount() ? d->images->key(d->imageIndex) : QString();
}

void KelofolderView::setImageKey(const QString &key)
{
    if (d->imageIndex >= 1 && d->imageIndex <= ImageCount()) {
        d->images->setKey(d->imageIndex, key);
        d->model->picturesChanged();
        d->tree->viewport()->update();
    }
    d->imageKey = key;
    propertyChanged("ImageKey");
}

int KelofolderView::ImageAddNew(const QPixmap &MyImage, const QString &MyKey)
{
    const int index = d->images->add(MyImage, MyKey);
    d->model->picturesChanged();
    d->tree->viewport()->update();
    return index;
}

void KelofolderView::ImageRemove(const QString &MyKey)
{
    if (d->images->contains(MyKey)) {
        d->images->remove(MyKey);
        d->model->picturesChanged();
        d->tree->viewport()->update();
    }
}

// ---------------------------------------------------------------------------
// Item members

int KelofolderView::ItemIndex() const
{
    return d->itemIndex;
}

void KelofolderView::setItemIndex(int index)
{
    requireRunMode();
    if (index < 0) {
        return;
    }
    d->itemIndex = index;
    propertyChanged("ItemIndex");
}

QString KelofolderView::ItemTag() const
{
    const FolderTreeModel::Node *node = d->currentItem();
    return node ? d->model->tag(node) : QString();
}

void KelofolderView::setItemTag(const QString &tag)
{
    requireRunMode();
    if (FolderTreeModel::Node *node = d->currentItem()) {
        d->model->setTag(node, tag);
    }
    d->itemTag = tag;
    propertyChanged("ItemTag");
}

bool KelofolderView::ItemExpanded() const
{
    const FolderTreeModel::Node *node = d->currentItem();
    return node && d->tree->isExpanded(d->model->indexOf(node));
}

void KelofolderView::setItemExpanded(bool expanded)
{
    requireRunMode();
    if (FolderTreeModel::Node *node = d->currentItem()) {
        d->tree->setExpanded(d->model->indexOf(node), expanded);
    }
    d->itemExpanded = expanded;
    propertyChanged("ItemExpanded");
}

QString KelofolderView::ItemIcon() const
{
    const FolderTreeModel::Node *node = d->currentItem();
    return node ? d->model->image(node) : QString();
}

void KelofolderView::setItemIcon(const QString &key)
{
    requireRunMode();
    if (FolderTreeModel::Node *node = d->currentItem()) {
        if (!d->images->contains(key)) {
            throw RuntimeError(ErrorNumber::ElementNotFound);
        }
        d->model->setImages(node, key, d->model->selectedImage(node));
    }
    d->itemIcon = key;
    propertyChanged("ItemIcon");
}

int KelofolderView::ItemCount() const
{
    return d->model->count();
}

QString KelofolderView::ItemName() const
{
    const FolderTreeModel::Node *node = d->currentItem();
    return node ? nameOfKey(node->key) : QString();
}

void KelofolderView::setItemName(const QString &name)
{
    requireRunMode();
    d->itemName = name;
    propertyChanged("ItemName");
}

QString KelofolderView::ItemDisplayName() const
{
    const FolderTreeModel::Node *node = d->currentItem();
    return node ? node->text : QString();
}

void KelofolderView::setItemDisplayName(const QString &text)
{
    requireRunMode();
    if (FolderTreeModel::Node *node = d->currentItem()) {
        d->model->setText(node, text);
    }
    d->itemDisplayName = text;
    propertyChanged("ItemDisplayName");
}

bool KelofolderView::ItemSelected() const
{
    const FolderTreeModel::Node *node = d->currentItem();
    return node && node == d->model->current();
}

void KelofolderView::setItemSelected(bool selected)
{
    requireRunMode();
    if (FolderTreeModel::Node *node = d->currentItem(); node && selected) {
        d->select(node->key, false);
    }
    d->itemSelected = selected;
    propertyChanged("ItemSelected");
}

QString KelofolderView::ItemPath() const
{
    const FolderTreeModel::Node *node = d->currentItem();
    return node ? node->key : QString();
}
