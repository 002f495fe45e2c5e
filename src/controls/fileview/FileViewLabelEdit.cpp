#include "FileViewLabelEdit_p.h"

#include "FileConfirmations.h"
#include "FileListModel.h"
#include "FileOperations.h"
#include "FileSystem.h"
#include "KelofileView_p.h"
#include "ListView.h"
#include "MsgBox.h"
#include "RuntimeError.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QPersistentModelIndex>

#include <cerrno>
#include <cstring>

namespace Kelocontrols {

const QString FileViewLabelEdit::ExtensionChangeQuestion
    = QStringLiteral("If you change a filename extension, the file may become unusable.\r\n\r\n"
                     "Are you sure you want to change it?");

FileViewLabelEdit::FileViewLabelEdit(KelofileView &view, int viewIndex)
    : QStyledItemDelegate(viewIndex == 0 ? static_cast<QObject *>(&view) : nullptr)
    , q(view)
{
    setObjectName(QStringLiteral("FileViewLabelEdit"));
    // One delegate per view: a delegate's closeEditor reaches every view it serves.
    QAbstractItemView *inner = q.d->list->views().at(viewIndex);
    m_inner = inner;
    inner->setItemDelegateForColumn(FileListModel::Name, this);
    inner->setEditTriggers(QAbstractItemView::SelectedClicked);
    if (viewIndex + 1 < q.d->list->views().size()) {
        (new FileViewLabelEdit(view, viewIndex + 1))->setParent(this);
    }
}

FileViewLabelEdit::~FileViewLabelEdit()
{
    if (m_inner) {
        m_inner->setItemDelegateForColumn(FileListModel::Name, nullptr);
    }
}

bool FileViewLabelEdit::edit(int row)
{
    if (row < 0 || row >= q.d->model()->count()) {
        return false;
    }
    QAbstractItemView *inner = q.d->list->currentView();
    const QModelIndex index = q.d->model()->index(row, FileListModel::Name);
    inner->setCurrentIndex(index);
    inner->scrollTo(index);
    inner->edit(index);
    return inner->indexWidget(index) != nullptr;
}

QWidget *FileViewLabelEdit::createEditor(
    QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    if (!q.UserMode() || !q.d->allowLabelEdit || index.row() >= q.d->model()->count()) {
        return nullptr;
    }
    const FileListKind kind = q.d->model()->row(index.row()).kind;
    if (kind != FileListKind::File && kind != FileListKind::Folder) {
        return nullptr;
    }
    int cancel = 0;
    Q_EMIT q.BeforeLabelEdit(cancel);
    if (cancel != 0) {
        return nullptr;
    }
    QWidget *editor = QStyledItemDelegate::createEditor(parent, option, index);
    editor->setObjectName(QStringLiteral("labelEditor"));
    return editor;
}

void FileViewLabelEdit::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    QStyledItemDelegate::setEditorData(editor, index);
    auto *line = qobject_cast<QLineEdit *>(editor);
    if (line && index.row() < q.d->model()->count()) {
        // Like the desktop's file managers: the name without its extension is selected, ready to be typed over.
        const QString text = line->text();
        const int dot = text.lastIndexOf(QLatin1Char('.'));
        const bool isFile = q.d->model()->row(index.row()).kind == FileListKind::File;
        const int length = isFile && dot > 0 ? dot : text.size();
        // The view selects all once the editor is shown; this comes after.
        QMetaObject::invokeMethod(
            line, [line, length] { line->setSelection(0, length); }, Qt::QueuedConnection);
    }
}

void FileViewLabelEdit::setModelData(QWidget *editor, QAbstractItemModel *, const QModelIndex &index) const
{
    auto *line = qobject_cast<QLineEdit *>(editor);
    if (line && !m_committing) {
        const_cast<FileViewLabelEdit *>(this)->commit(index, line->text());
    }
}

void FileViewLabelEdit::commit(const QModelIndex &index, QString newName)
{
    m_committing = true;
    const QPersistentModelIndex item(index);
    int cancel = 0;
    Q_EMIT q.AfterLabelEdit(cancel, newName);
    if (cancel == 0 && item.isValid()) {
        q.d->itemIndex = item.row() + 1;
        try {
            rename(item.row(), newName);
        } catch (const RuntimeError &error) {
            MsgBox(error.description(), MsgBoxStyle::Critical); // the user pressed Return: nobody else can be told
        }
    }
    m_committing = false;
}

bool FileViewLabelEdit::rename(int row, const QString &newName)
{
    FileListModel *model = q.d->model();
    if (row < 0 || row >= model->count() || newName.isEmpty()) {
        return false;
    }
    const QString oldName = model->row(row).realName();
    if (QString::compare(newName, oldName, Qt::CaseInsensitive) == 0) {
        return false;
    }
    if (newName.contains(QLatin1Char('/')) || newName.contains(QChar(0)) || newName == QLatin1String(".")
        || newName == QLatin1String("..")) {
        ShowInvalidNameChars();
        return false;
    }
    const QPersistentModelIndex item(model->index(row, 0));
    if (QString::compare(FileSystem::extensionName(newName), FileSystem::extensionName(oldName), Qt::CaseInsensitive)
        != 0) {
        const int answer
            = MsgBox(ExtensionChangeQuestion, MsgBoxStyle::YesNo + MsgBoxStyle::Exclamation, QStringLiteral("Rename"));
        if (answer != MsgBoxResult::Yes || !item.isValid()) {
            return false;
        }
        row = item.row();
    }
    const QString folder = model->row(row).folder;
    const int error
        = FileOperations::renameEntry(FileSystem::buildPath(folder, oldName), FileSystem::buildPath(folder, newName));
    if (error == EEXIST || error == ENOTEMPTY) {
        MsgBox(QStringLiteral("Cannot rename %1: A file or folder with the name you specified already exists. "
                              "Specify a different name.")
                   .arg(oldName),
            MsgBoxStyle::Critical, QStringLiteral("Error Renaming File"));
        return false;
    }
    if (error != 0) {
        throw RuntimeError(error == ENOENT ? ErrorNumber::FileNotFound : ErrorNumber::PermissionDenied,
            QStringLiteral("Cannot rename %1: %2").arg(oldName, QString::fromLocal8Bit(std::strerror(error))));
    }
    model->setRealName(row, newName);
    model->setText(row, newName);
    return true;
}

} // namespace Kelocontrols
