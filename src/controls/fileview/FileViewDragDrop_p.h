#pragma once

#include <kelocontrols_export.h>

#include <QItemSelection>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QStringList>

class KelofileView;
class QDropEvent;
class QMimeData;
class QRubberBand;

namespace Kelocontrols {

/**
 * A KelofileView as a drop target and as a drag source, watching the
 * viewports of both inner views.
 *
 * Dropping, by OLEDropMode: 0 refuses; 1 raises OLEDragOver (State 0
 * entering, 2 over, 1 leaving) and OLEDragDrop with the effect the source
 * allows (1 copy + 2 move), the buttons, the shift state (2 = Ctrl) and the
 * position in pixels, and takes the Effect the handler leaves, changing
 * nothing itself; 2 accepts a file list over a folder item (outlined while
 * the pointer is on it) or over the folder shown, and on the drop moves
 * the files there (Effect keeps its move bit) or, with Ctrl held or when
 * the source offers only copying, copies them (its copy bit), each path
 * through TransferItem() in the order of the data. With no folder shown
 * the Effect is 0. Moving files into the folder they are in is refused
 * while dragging, so a drag that ends where it began changes nothing.
 *
 * Dragging: OLEDrag() (or, with OLEDragMode 2, pressing on a selected item
 * and moving the mouse) offers the selected items' paths
 * (fileListMimeData()): OLEStartDrag(Data, AllowedEffects) (0 cancels),
 * OLESetData(Data, 15), OLEGiveFeedback(Effect, DefaultCursors) whenever
 * the target's effect changes, then OLECompleteDrag(Effect); when the
 * target completed a move and OLEDragMode is 2, the list is refreshed.
 */
class KELOCONTROLS_TESTS_EXPORT FileViewDragDrop : public QObject
{
    Q_OBJECT
public:
    explicit FileViewDragDrop(KelofileView &view);

    /// Starts a drag of the selected items and returns when it ends (see the class notes).
    void startDrag();

    /// The classic effect bits (1 copy, 2 move) of Qt drop actions.
    static int effectOf(Qt::DropActions actions);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// The drop for mode 2; answers the effect.
    int dropFiles(const QMimeData *data, const QString &destination, int effect, bool copy);
    /// The folder a drop at @p pos of the current view goes to ("" when none), and whether it is a folder item.
    QString targetAt(const QPoint &pos, int *row) const;
    bool acceptsAt(QDropEvent *event, int *row) const;
    void outline(int row);
    bool dragEvent(QEvent *event);

    KelofileView &q;
    QPointer<QRubberBand> m_outline;
    QPoint m_pressAt;
    bool m_pressedOnSelection = false;
    QItemSelection m_selectionAtPress;
    bool m_dragging = false;
};

} // namespace Kelocontrols
