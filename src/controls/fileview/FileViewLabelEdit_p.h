#pragma once

#include <kelocontrols_export.h>

#include <QAbstractItemView>
#include <QPointer>
#include <QStyledItemDelegate>

class KelofileView;

namespace Kelocontrols {

/**
 * Renaming a KelofileView's items by editing their labels in place.
 *
 * It is the item delegate of the Name column in both inner views, so every
 * way an edit starts (F2, the Rename entry, a click on the selected item's
 * label) passes createEditor(): AllowLabelEdit false, an item that is a
 * drive or a vanished favourite, or a BeforeLabelEdit(Cancel) handler that
 * cancels gives no editor. The editor is the view's QLineEdit, the name
 * without its extension selected; Return (or leaving it) commits, Escape
 * drops it. A commit raises AfterLabelEdit(Cancel, NewString), makes the
 * item the current one (ItemIndex) and renames it with rename().
 */
class KELOCONTROLS_TESTS_EXPORT FileViewLabelEdit : public QStyledItemDelegate
{
    Q_OBJECT
public:
    /// The question asked when a rename changes the extension (title "Rename", Yes/No with exclamation mark).
    static const QString ExtensionChangeQuestion;

    /// The delegate of @p view's inner view number @p viewIndex and, as its children, of the views after it.
    explicit FileViewLabelEdit(KelofileView &view, int viewIndex = 0);
    /// Leaves the view without a delegate of its own for the column (views ask a deleted one otherwise).
    ~FileViewLabelEdit() override;

    /// Opens the editor on @p row's label in the view shown; false when the edit was refused.
    bool edit(int row);

    /**
     * Renames @p row's entry to @p newName and writes it into the item's
     * text and RealName. Nothing happens (false) for an empty name, the
     * present RealName in any case, a name holding "/" or NUL, "." or ".."
     * (ShowInvalidNameChars()), a changed extension the user does not
     * confirm, or a name already taken (a box "Error Renaming File"; an
     * existing entry is never replaced). Raises RuntimeError when the file
     * system refuses otherwise.
     */
    bool rename(int row, const QString &newName);

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

private:
    void commit(const QModelIndex &index, QString newName);

    KelofileView &q;
    QPointer<QAbstractItemView> m_inner;
    bool m_committing = false; ///< a commit runs (its boxes may make the editor lose the focus and commit again)
};

} // namespace Kelocontrols
