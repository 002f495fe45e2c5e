#include "FileViewDragDrop_p.h"

#include "ClipboardFiles.h"
#include "FileListModel.h"
#include "FileSystem.h"
#include "FileTransfer.h"
#include "FileViewCommands_p.h"
#include "KelofileView_p.h"
#include "ListView.h"
#include "StockEventFilter.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QItemSelectionModel>
#include <QMimeData>
#include <QMouseEvent>
#include <QRubberBand>

namespace Kelocontrols {

namespace {

constexpr int CopyEffect = 1;
constexpr int MoveEffect = 2;
constexpr short FileListFormat = 15;

/// The drop action a target takes for the classic @p effect bits: move unless Ctrl asks for a copy or moving is not
/// allowed.
Qt::DropAction actionFor(int effect, bool ctrl)
{
    if ((effect & MoveEffect) && !(ctrl && (effect & CopyEffect))) {
        return Qt::MoveAction;
    }
    return (effect & CopyEffect) ? Qt::CopyAction : Qt::IgnoreAction;
}

void acceptWith(QDropEvent *event, int effect)
{
    const Qt::DropAction action = actionFor(effect, event->modifiers() & Qt::ControlModifier);
    if (action == Qt::IgnoreAction) {
        event->ignore();
        return;
    }
    event->setDropAction(action);
    event->accept();
}

} // namespace

FileViewDragDrop::FileViewDragDrop(KelofileView &view)
    : QObject(&view)
    , q(view)
{
    setObjectName(QStringLiteral("FileViewDragDrop"));
    for (QAbstractItemView *inner : q.d->list->views()) {
        inner->setAcceptDrops(true);
        inner->viewport()->setAcceptDrops(true);
        inner->viewport()->installEventFilter(this);
    }
}

int FileViewDragDrop::effectOf(Qt::DropActions actions)
{
    return (actions & Qt::CopyAction ? CopyEffect : 0)
        | (actions & (Qt::MoveAction | Qt::TargetMoveAction) ? MoveEffect : 0);
}

// ---------------------------------------------------------------------------
// As a drag source

void FileViewDragDrop::startDrag()
{
    if (q.d->oleDragMode == 0 || m_dragging) {
        return;
    }
    QWidget *source = q.d->list->currentView()->viewport();
    QMimeData *data = fileListMimeData(q.d->commands->selectedPaths());
    int allowed = CopyEffect | MoveEffect;
    Q_EMIT q.OLEStartDrag(data, allowed);
    if ((allowed & (CopyEffect | MoveEffect)) == 0) {
        delete data;
        int effect = 0;
        Q_EMIT q.OLECompleteDrag(effect);
        return;
    }
    short format = FileListFormat;
    Q_EMIT q.OLESetData(data, format);

    auto *drag = new QDrag(source); // the drag manager deletes it when the drag is over
    drag->setMimeData(data);
    const int row = q.d->list->selectedRow();
    if (row >= 0) {
        const QVariant picture = q.d->model()->data(q.d->model()->index(row, 0), Qt::DecorationRole);
        if (picture.canConvert<QPixmap>()) {
            drag->setPixmap(picture.value<QPixmap>());
        }
    }
    connect(drag, &QDrag::actionChanged, this, [this](Qt::DropAction action) {
        int effect = effectOf(action);
        bool defaultCursors = true;
        Q_EMIT q.OLEGiveFeedback(effect, defaultCursors);
    });
    Qt::DropActions supported;
    if (allowed & CopyEffect) {
        supported |= Qt::CopyAction;
    }
    if (allowed & MoveEffect) {
        supported |= Qt::MoveAction;
    }
    m_dragging = true;
    const Qt::DropAction result = drag->exec(supported, (allowed & MoveEffect) ? Qt::MoveAction : Qt::CopyAction);
    m_dragging = false;
    int effect = effectOf(result);
    if (effect == MoveEffect && q.d->oleDragMode == 2) {
        q.Refresh(); // the target moved the files away: show it at once
    }
    Q_EMIT q.OLECompleteDrag(effect);
}

// ---------------------------------------------------------------------------
// As a drop target

QString FileViewDragDrop::targetAt(const QPoint &pos, int *row) const
{
    *row = -1;
    QAbstractItemView *inner = q.d->list->currentView();
    const QModelIndex index = inner->indexAt(pos);
    if (index.isValid() && index.row() < q.d->model()->count()) {
        const FileListKind kind = q.d->model()->row(index.row()).kind;
        const QString path = q.d->commands->pathOf(index.row());
        if ((kind == FileListKind::Folder || kind == FileListKind::Drive)
            && FileSystem::instance().folderExists(path)) {
            *row = index.row();
            return path;
        }
    }
    return q.d->commands->folderShown() ? q.d->path : QString();
}

bool FileViewDragDrop::acceptsAt(QDropEvent *event, int *row) const
{
    const QString destination = targetAt(event->position().toPoint(), row);
    const QStringList files = filesOfMimeData(event->mimeData());
    if (destination.isEmpty() || files.isEmpty()) {
        return false;
    }
    const int effect = effectOf(event->possibleActions());
    const bool move = actionFor(effect, event->modifiers() & Qt::ControlModifier) == Qt::MoveAction;
    bool allInDestination = true;
    for (const QString &file : files) {
        // Never into itself; and moving files to where they already are would only rename them.
        if (destination == file || destination.startsWith(file + QLatin1Char('/'))) {
            return false;
        }
        allInDestination = allInDestination && FileSystem::parentFolderName(file) == destination;
    }
    return !(move && allInDestination);
}

void FileViewDragDrop::outline(int row)
{
    QWidget *viewport = q.d->list->currentView()->viewport();
    if (row < 0) {
        if (m_outline) {
            m_outline->hide();
        }
        return;
    }
    if (!m_outline || m_outline->parentWidget() != viewport) {
        delete m_outline;
        m_outline = new QRubberBand(QRubberBand::Rectangle, viewport);
        m_outline->setObjectName(QStringLiteral("dropTarget"));
    }
    m_outline->setGeometry(q.d->list->currentView()->visualRect(q.d->model()->index(row, 0)));
    m_outline->show();
}

int FileViewDragDrop::dropFiles(const QMimeData *data, const QString &destination, int effect, bool copy)
{
    const QStringList files = filesOfMimeData(data);
    if (files.isEmpty()) {
        return 0; // data in any other form is not ours to take
    }
    for (const QString &file : files) {
        TransferItem(file, destination, copy);
    }
    return effect & (copy ? CopyEffect : MoveEffect);
}

bool FileViewDragDrop::dragEvent(QEvent *event)
{
    const int mode = q.UserMode() ? q.d->oleDropMode : 0;
    if (event->type() == QEvent::DragLeave) {
        outline(-1);
        if (mode == 1) {
            int effect = 0;
            short button = 0, shift = 0, state = 1;
            float x = 0, y = 0;
            Q_EMIT q.OLEDragOver(nullptr, effect, button, shift, x, y, state);
        }
        return true;
    }
    auto *drop = static_cast<QDropEvent *>(event);
    auto *data = const_cast<QMimeData *>(drop->mimeData());
    int effect = effectOf(drop->possibleActions());
    short button = StockEventFilter::buttonCode(drop->buttons());
    short shift = StockEventFilter::shiftState(drop->modifiers());
    float x = float(drop->position().x());
    float y = float(drop->position().y());
    const bool ctrl = shift & 2;

    if (mode == 0) {
        drop->ignore();
        return true;
    }
    if (mode == 1) {
        if (event->type() == QEvent::Drop) {
            Q_EMIT q.OLEDragDrop(data, effect, button, shift, x, y);
        } else {
            short state = event->type() == QEvent::DragEnter ? 0 : 2;
            Q_EMIT q.OLEDragOver(data, effect, button, shift, x, y, state);
        }
        acceptWith(drop, effect);
        return true;
    }
    int row = -1;
    if (event->type() != QEvent::Drop) {
        if (acceptsAt(drop, &row)) {
            outline(row);
            acceptWith(drop, effect);
        } else {
            outline(-1);
            drop->ignore();
        }
        return true;
    }
    outline(-1);
    const QString destination = targetAt(drop->position().toPoint(), &row);
    if (destination.isEmpty()) {
        drop->ignore(); // no folder shown: Effect 0
        return true;
    }
    // Ctrl copies; without it the files move, unless the source allows copying only.
    const bool copy = ctrl || !(effect & MoveEffect);
    effect = dropFiles(data, destination, effect, copy);
    acceptWith(drop, effect);
    return true;
}

bool FileViewDragDrop::eventFilter(QObject *watched, QEvent *event)
{
    QAbstractItemView *inner = q.d->list->currentView();
    if (watched != inner->viewport()) {
        return false;
    }
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop:
        return dragEvent(event);
    case QEvent::MouseButtonPress: {
        auto *mouse = static_cast<QMouseEvent *>(event);
        const QModelIndex index = inner->indexAt(mouse->position().toPoint());
        m_pressedOnSelection = q.UserMode() && q.d->oleDragMode == 2 && mouse->button() == Qt::LeftButton
            && mouse->modifiers() == Qt::NoModifier && index.isValid();
        m_pressAt = mouse->position().toPoint();
        // Pressing a selected item makes it the only selected one; a drag that starts takes them all again.
        m_selectionAtPress = m_pressedOnSelection && q.d->list->isRowSelected(index.row())
            ? q.d->list->selectionModel()->selection()
            : QItemSelection();
        return false;
    }
    case QEvent::MouseMove: {
        auto *mouse = static_cast<QMouseEvent *>(event);
        if (!m_pressedOnSelection || !(mouse->buttons() & Qt::LeftButton)) {
            return false;
        }
        if ((mouse->position().toPoint() - m_pressAt).manhattanLength() >= QApplication::startDragDistance()) {
            m_pressedOnSelection = false;
            if (!m_selectionAtPress.isEmpty()) {
                q.d->list->selectionModel()->select(m_selectionAtPress, QItemSelectionModel::ClearAndSelect);
            }
            startDrag();
        }
        return true; // no rubber band or range selection while a drag may start
    }
    case QEvent::MouseButtonRelease:
        m_pressedOnSelection = false;
        return false;
    default:
        return false;
    }
}

} // namespace Kelocontrols
