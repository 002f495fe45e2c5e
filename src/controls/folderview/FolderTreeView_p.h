#pragma once

#include <kelocontrols_export.h>

#include <QTreeView>

#include <functional>

namespace Kelocontrols {

/**
 * The tree widget of the folder view (`TreeFolders`): a QTreeView that
 * hands the starts of label edits and drags, and the drag-over and drop
 * events, to its control instead of handling them itself.
 */
class KELOCONTROLS_TESTS_EXPORT FolderTreeView : public QTreeView
{
    Q_OBJECT

public:
    explicit FolderTreeView(QWidget *parent = nullptr);

    /// Asked before an edit starts; false refuses it.
    std::function<bool(const QModelIndex &)> editAllowed;
    /// Called when the user drags a node far enough to start a drag.
    std::function<void()> dragStarted;
    /// Drag entering or moving over the tree; the handler accepts or ignores the event.
    std::function<void(QDragMoveEvent *)> dragMoved;
    /// Drag leaving the tree.
    std::function<void()> dragLeft;
    /// A drop on the tree; the handler accepts or ignores it.
    std::function<void(QDropEvent *)> dropped;

    /// Whether a label editor is open.
    bool editing() const { return state() == EditingState; }
    /// Starts editing the label of @p index (as F2 does); false when refused.
    bool editLabel(const QModelIndex &index);

protected:
    bool edit(const QModelIndex &index, EditTrigger trigger, QEvent *event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    bool m_asked = false; ///< editLabel() asked already
};

} // namespace Kelocontrols
