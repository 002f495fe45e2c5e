#include "FileViewCommands_p.h"

#include "ClipboardFiles.h"
#include "DesktopTrash_p.h"
#include "FileConfirmations.h"
#include "FileIcon.h"
#include "FileListModel.h"
#include "FileNameCodec.h"
#include "FileOperations.h"
#include "FileSystem.h"
#include "FileTransfer.h"
#include "FileViewLabelEdit_p.h"
#include "KelofileView_p.h"
#include "ListView.h"
#include "MsgBox.h"
#include "RuntimeError.h"
#include "frmProperties.h"

#include <QAbstractItemView>
#include <QActionGroup>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

namespace Kelocontrols {

namespace {

/// The paths the last Cut of any file view put on the clipboard; empty after a Copy or a moving Paste.
QStringList &lastCut()
{
    static QStringList paths;
    return paths;
}

/// Whether a file manager put the clipboard's list there with "cut" (GNOME's and KDE's first line).
bool clipboardSaysCut(const QMimeData *data)
{
    return data && data->data(QStringLiteral("x-special/gnome-copied-files")).startsWith("cut\n");
}

QString systemError(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

} // namespace

FileViewCommands::FileViewCommands(KelofileView &view)
    : QObject(&view)
    , q(view)
    , m_onFile(new QMenu(&view))
    , m_onBack(new QMenu(&view))
    , m_view(new QMenu(&view))
{
    setObjectName(QStringLiteral("FileViewCommands"));
    m_onFile->setObjectName(QStringLiteral("popOnFile"));
    m_onBack->setObjectName(QStringLiteral("popOnBack"));
    m_view->setObjectName(QStringLiteral("popView"));

    addEntry(m_onFile, QStringLiteral("&Open"), nullptr);
    connect(
        m_onFile->actions().constLast(), &QAction::triggered, this, [this] { run([this] { openSelected(false); }); });
    addEntry(m_onFile, QStringLiteral("&Print"), nullptr);
    connect(
        m_onFile->actions().constLast(), &QAction::triggered, this, [this] { run([this] { openSelected(true); }); });
    m_onFile->addSeparator();
    addEntry(m_onFile, QStringLiteral("Cu&t"), &FileViewCommands::cut);
    addEntry(m_onFile, QStringLiteral("&Copy"), &FileViewCommands::copy);
    m_onFile->addSeparator();
    addEntry(m_onFile, QStringLiteral("Create &Shortcut"), nullptr); // deliberately does nothing
    addEntry(m_onFile, QStringLiteral("&Delete"), nullptr);
    connect(
        m_onFile->actions().constLast(), &QAction::triggered, this, [this] { run([this] { deleteSelected(true); }); });
    addEntry(m_onFile, QStringLiteral("Rena&me"), &FileViewCommands::renameSelected);
    m_onFile->addSeparator();
    addEntry(m_onFile, QStringLiteral("Prope&rties"), nullptr);
    connect(m_onFile->actions().constLast(), &QAction::triggered, this, [this] { run([this] { properties(false); }); });

    QAction *viewEntry = m_onBack->addMenu(m_view);
    viewEntry->setText(QStringLiteral("&View"));
    m_onBack->addSeparator();
    addEntry(m_onBack, QStringLiteral("R&efresh"), &FileViewCommands::refill);
    m_onBack->addSeparator();
    addEntry(m_onBack, QStringLiteral("&Paste"), &FileViewCommands::paste);
    addEntry(m_onBack, QStringLiteral("Paste &Shortcut"), nullptr); // deliberately does nothing
    addEntry(m_onBack, QStringLiteral("&Undo"), nullptr); // deliberately does nothing
    m_onBack->addSeparator();
    addEntry(m_onBack, QStringLiteral("Ne&w Folder"), &FileViewCommands::newFolder);
    m_onBack->addSeparator();
    addEntry(m_onBack, QStringLiteral("P&roperties"), nullptr);
    connect(m_onBack->actions().constLast(), &QAction::triggered, this, [this] { run([this] { properties(true); }); });

    auto *views = new QActionGroup(m_view);
    const char *captions[] = {"Lar&ge Icons", "S&mall Icons", "&List", "&Details"};
    for (int mode = 0; mode < 4; ++mode) {
        QAction *entry = m_view->addAction(QString::fromLatin1(captions[mode]));
        entry->setCheckable(true);
        views->addAction(entry);
        connect(entry, &QAction::triggered, this, [this, mode] { run([this, mode] { q.setView(mode); }); });
    }
    connect(m_onFile, &QMenu::aboutToShow, this, &FileViewCommands::updateMenus);
    connect(m_onBack, &QMenu::aboutToShow, this, &FileViewCommands::updateMenus);
    connect(m_view, &QMenu::aboutToShow, this, &FileViewCommands::updateMenus);

    for (QAbstractItemView *inner : q.d->list->views()) {
        inner->installEventFilter(this);
        inner->viewport()->installEventFilter(this);
    }
}

QAction *FileViewCommands::addEntry(QMenu *menu, const QString &caption, void (FileViewCommands::*command)())
{
    QAction *entry = menu->addAction(caption);
    if (command) {
        connect(entry, &QAction::triggered, this, [this, command] { run([this, command] { (this->*command)(); }); });
    }
    return entry;
}

void FileViewCommands::run(const std::function<void()> &command)
{
    try {
        command();
    } catch (const RuntimeError &error) {
        MsgBox(error.description(), MsgBoxStyle::Critical);
    }
}

// ---------------------------------------------------------------------------
// Menus and keys

void FileViewCommands::updateMenus()
{
    const FileListModel *model = q.d->model();
    const QList<int> rows = selectedRows();
    bool onDisk = !rows.isEmpty(); // every selected item is a file or folder (not a drive or a vanished favourite)
    for (int row : rows) {
        const FileListKind kind = model->row(row).kind;
        onDisk = onDisk && (kind == FileListKind::File || kind == FileListKind::Folder);
    }
    const bool any = !rows.isEmpty();
    const bool available = any && model->row(rows.first()).kind != FileListKind::Unavailable;
    const QList<QAction *> file = m_onFile->actions();
    file[Open]->setEnabled(available);
    file[Print]->setEnabled(available);
    file[Cut]->setEnabled(onDisk);
    file[Copy]->setEnabled(onDisk);
    file[Delete]->setEnabled(onDisk);
    file[Rename]->setEnabled(onDisk && q.d->allowLabelEdit);
    file[FileProperties]->setEnabled(available);

    const QMimeData *clipboard = QGuiApplication::clipboard()->mimeData();
    const QList<QAction *> back = m_onBack->actions();
    back[Paste]->setEnabled(folderShown() && clipboard && !filesOfMimeData(clipboard).isEmpty());
    back[NewFolder]->setEnabled(folderShown());
    back[BackProperties]->setEnabled(folderShown());
    const QList<QAction *> views = m_view->actions();
    for (int mode = 0; mode < views.size(); ++mode) {
        views[mode]->setChecked(mode == q.View());
    }
}

void FileViewCommands::showMenu(bool onItem, const QPoint &globalPos)
{
    updateMenus();
    (onItem ? m_onFile : m_onBack)->popup(globalPos);
}

bool FileViewCommands::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::ContextMenu || !q.UserMode()) {
        return false;
    }
    auto *menuEvent = static_cast<QContextMenuEvent *>(event);
    QAbstractItemView *inner = q.d->list->currentView();
    if (watched != inner && watched != inner->viewport()) {
        return false;
    }
    if (menuEvent->reason() == QContextMenuEvent::Keyboard) {
        const int row = q.d->list->selectedRow();
        QPoint at = inner->viewport()->mapToGlobal(QPoint(0, 0));
        if (row >= 0) {
            at = inner->viewport()->mapToGlobal(inner->visualRect(q.d->model()->index(row, 0)).center());
        }
        showMenu(row >= 0, at);
        return true;
    }
    const QPoint local = inner->viewport()->mapFromGlobal(menuEvent->globalPos());
    const QModelIndex index = inner->indexAt(local);
    if (index.isValid() && !q.d->list->isRowSelected(index.row())) {
        q.d->list->selectRow(index.row());
    }
    showMenu(index.isValid(), menuEvent->globalPos());
    return true;
}

bool FileViewCommands::handleKey(QKeyEvent *event)
{
    if (!q.UserMode()) {
        return false;
    }
    const Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    const int key = event->key();
    if (modifiers == Qt::NoModifier) {
        switch (key) {
        case Qt::Key_Delete:
            updateMenus();
            if (m_onFile->actions()[Delete]->isEnabled()) {
                run([this] { deleteSelected(true); });
            }
            return true;
        case Qt::Key_F2:
            run([this] { renameSelected(); });
            return true;
        case Qt::Key_F5:
            run([this] { refill(); });
            return true;
        case Qt::Key_Menu: {
            QContextMenuEvent menu(QContextMenuEvent::Keyboard, QPoint(), QPoint());
            eventFilter(q.d->list->currentView(), &menu);
            return true;
        }
        default:
            return false;
        }
    }
    if (modifiers == Qt::ShiftModifier && key == Qt::Key_F10) {
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        eventFilter(q.d->list->currentView(), &menu);
        return true;
    }
    if (modifiers == Qt::ControlModifier && (key == Qt::Key_C || key == Qt::Key_X || key == Qt::Key_V)) {
        updateMenus();
        if (key == Qt::Key_V) {
            if (m_onBack->actions()[Paste]->isEnabled()) {
                run([this] { paste(); });
            }
        } else if (m_onFile->actions()[Copy]->isEnabled()) {
            run([this, key] { key == Qt::Key_C ? copy() : cut(); });
        }
        return true;
    }
    return false;
}

// ---------------------------------------------------------------------------
// Selection

QList<int> FileViewCommands::selectedRows() const
{
    QList<int> rows;
    const int count = q.d->model()->count();
    for (int row = 0; row < count; ++row) {
        if (q.d->list->isRowSelected(row)) {
            rows << row;
        }
    }
    return rows;
}

QString FileViewCommands::pathOf(int row) const
{
    const FileListRow &item = q.d->model()->row(row);
    return FileSystem::buildPath(item.folder, item.realName());
}

QStringList FileViewCommands::selectedPaths() const
{
    QStringList paths;
    for (int row : selectedRows()) {
        paths << pathOf(row);
    }
    return paths;
}

bool FileViewCommands::editing() const
{
    const QAbstractItemView *inner = q.d->list->currentView();
    return inner->indexWidget(inner->currentIndex()) != nullptr;
}

bool FileViewCommands::folderShown() const
{
    const QString &path = q.d->path;
    return !path.isEmpty() && !FileListFilter::isMyComputer(path) && !FileListFilter::isMyFolders(path)
        && FileSystem::instance().folderExists(path);
}

// ---------------------------------------------------------------------------
// Commands

void FileViewCommands::openSelected(bool print)
{
    const int row = q.d->list->selectedRow();
    if (row < 0) {
        return;
    }
    const QString path = pathOf(row);
    if (print && FileSystem::instance().fileExists(path)) {
        OpenWithAssociatedApp(path, q.d->list, true);
    } else {
        q.openSelectedItem();
    }
}

void FileViewCommands::cut()
{
    const QStringList paths = selectedPaths();
    if (!paths.isEmpty() && ClipboardPutFiles(paths)) {
        lastCut() = paths;
    }
}

void FileViewCommands::copy()
{
    const QStringList paths = selectedPaths();
    if (!paths.isEmpty()) {
        lastCut().clear();
        ClipboardPutFiles(paths);
    }
}

void FileViewCommands::paste()
{
    if (!folderShown()) {
        return;
    }
    QStringList onClipboard;
    if (!ClipboardGetFiles(onClipboard)) {
        return;
    }
    const bool move = (!lastCut().isEmpty() && onClipboard == lastCut())
        || clipboardSaysCut(QGuiApplication::clipboard()->mimeData());
    PasteFiles(q.d->path, !move);
    if (move) {
        lastCut().clear(); // the files have gone from where the list points
    }
    q.Refresh();
}

void FileViewCommands::newFolder()
{
    if (!folderShown()) {
        return;
    }
    const QString target = UniqueNewFolderPath(q.d->path);
    if (::mkdir(FileNameCodec::encode(target).constData(), 0777) != 0) {
        const int error = errno;
        throw RuntimeError(ErrorNumber::PermissionDenied,
            QStringLiteral("Cannot create the folder '%1': %2")
                .arg(target.section(QLatin1Char('/'), -1), systemError(error)));
    }
    const int index = q.ItemAddNew(target);
    if (index > 0) {
        q.d->list->selectRow(index - 1);
        q.d->labelEdit->edit(index - 1);
    }
}

void FileViewCommands::properties(bool ofFolderShown)
{
    if (ofFolderShown) {
        if (folderShown()) {
            ShowFileProperties(q.d->path, QString(), &q);
        }
        return;
    }
    const int row = q.d->list->selectedRow();
    if (row >= 0) {
        ShowFileProperties(pathOf(row), q.d->model()->row(row).text(), &q);
    }
}

void FileViewCommands::refill()
{
    q.d->filler.fill();
}

void FileViewCommands::renameSelected()
{
    const int row = q.d->list->selectedRow();
    if (row >= 0) {
        q.d->labelEdit->edit(row);
    }
}

int FileViewCommands::confirmDelete(const QList<int> &rows)
{
    if (rows.size() > 1) {
        return MsgBox(
            QStringLiteral("Are you sure you want to send these %1 items to the Recycle Bin?").arg(rows.size()),
            MsgBoxStyle::YesNo + MsgBoxStyle::Exclamation, QStringLiteral("Confirm File Delete"));
    }
    const FileSystem &fs = FileSystem::instance();
    const QString path = pathOf(rows.first());
    const QString text = q.d->model()->row(rows.first()).text();
    if (fs.fileExists(path)) {
        return MsgBox(
            QStringLiteral("Are you sure you want to send '") + text + QStringLiteral("' to the Recycle Bin?"),
            MsgBoxStyle::YesNo + MsgBoxStyle::Exclamation, QStringLiteral("Confirm File Delete"));
    }
    if (fs.folderExists(path)) {
        const std::optional<FileEntry> entry = fs.entry(path);
        const bool readOnly = entry && (entry->attributes & FileAttribute::ReadOnly);
        return readOnly ? ConfirmReadOnlyFolderDelete(text) : ConfirmFolderDelete(text);
    }
    return MsgBoxResult::Yes; // nothing on disk any more: no question, the item just goes
}

void FileViewCommands::deleteSelected(bool confirm)
{
    const QList<int> rows = selectedRows();
    if (rows.isEmpty()) {
        return;
    }
    // The box runs an event loop in which the list may change: afterwards only the items asked about go.
    QStringList asked;
    for (int row : rows) {
        asked << pathOf(row);
    }
    if (confirm && confirmDelete(rows) != MsgBoxResult::Yes) {
        return;
    }
    FileListModel *model = q.d->model();
    for (int row = model->count() - 1; row >= 0; --row) {
        if (!q.d->list->isRowSelected(row)) {
            continue;
        }
        const QString path = pathOf(row);
        if (!asked.contains(path)) {
            continue;
        }
        deletePath(path, model->row(row).text());
        model->remove(row);
    }
}

void FileViewCommands::deletePath(const QString &path, const QString &text)
{
    const QByteArray bytes = FileNameCodec::encode(path);
    struct stat info;
    if (::lstat(bytes.constData(), &info) != 0) {
        return; // gone already
    }
    int error = 0;
    if (q.d->deleteToTrash) {
        error = DesktopTrash::moveToTrash(path);
    } else {
        errno = 0;
        const bool isFolder = S_ISDIR(info.st_mode);
        const bool done = isFolder ? FileOperations::deleteFolder(path) : FileOperations::deleteFile(path, true);
        error = done ? 0 : (errno ? errno : EACCES);
    }
    if (error != 0 && ::lstat(bytes.constData(), &info) == 0) {
        throw RuntimeError(
            ErrorNumber::PermissionDenied, QStringLiteral("Cannot delete %1: %2").arg(text, systemError(error)));
    }
}

} // namespace Kelocontrols
