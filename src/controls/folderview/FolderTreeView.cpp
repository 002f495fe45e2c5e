#include "FolderTreeView_p.h"

#include <QDragMoveEvent>
#include <QDropEvent>

namespace Kelocontrols {

FolderTreeView::FolderTreeView(QWidget *parent)
    : QTreeView(parent)
{
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDragEnabled(true);
    setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DragDrop);
}

bool FolderTreeView::editLabel(const QModelIndex &index)
{
    if (!index.isValid() || state() == EditingState || (editAllowed && !editAllowed(index))) {
        return false;
    }
    m_asked = true;
    QAbstractItemView::edit(index);
    m_asked = false;
    return state() == EditingState;
}

bool FolderTreeView::edit(const QModelIndex &index, EditTrigger trigger, QEvent *event)
{
    // Only starts of an edit are asked about; a running editor is left alone.
    if (!m_asked && state() != EditingState && index.isValid() && (trigger & editTriggers()) && editAllowed
        && !editAllowed(index)) {
        return false;
    }
    return QTreeView::edit(index, trigger, event);
}

void FolderTreeView::startDrag(Qt::DropActions)
{
    if (dragStarted) {
        dragStarted();
    }
}

void FolderTreeView::dragEnterEvent(QDragEnterEvent *event)
{
    dragMoveEvent(event);
}

void FolderTreeView::dragMoveEvent(QDragMoveEvent *event)
{
    if (dragMoved) {
        dragMoved(event);
    } else {
        event->ignore();
    }
}

void FolderTreeView::dragLeaveEvent(QDragLeaveEvent *event)
{
    if (dragLeft) {
        dragLeft();
    }
    event->accept();
}

void FolderTreeView::dropEvent(QDropEvent *event)
{
    if (dropped) {
        dropped(event);
    } else {
        event->ignore();
    }
}

} // namespace Kelocontrols
