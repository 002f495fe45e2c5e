#include "FileTransfer.h"

#include "ClipboardFiles.h"
#include "FileConfirmations.h"
#include "FileOperations.h"
#include "FileProgressDialog.h"
#include "FileSystem.h"
#include "MsgBox.h"

#include <QApplication>
#include <QScopedValueRollback>
#include <QStringList>

#include <memory>

namespace Kelocontrols {

namespace {

/// The monitor of the paste under way: one dialog for all its items.
TransferMonitor *g_pasteMonitor = nullptr;

/// The progress of one transfer: the running paste's dialog, else one of its own (none without widgets).
class TransferProgress
{
public:
    explicit TransferProgress(bool copy)
    {
        if (g_pasteMonitor) {
            m_monitor = g_pasteMonitor;
        } else if (qobject_cast<QApplication *>(QCoreApplication::instance())) {
            m_dialog = std::make_unique<FileProgressDialog>(copy, QApplication::activeWindow());
            m_monitor = m_dialog.get();
        }
    }

    TransferMonitor *monitor() const { return m_monitor; }

private:
    std::unique_ptr<FileProgressDialog> m_dialog;
    TransferMonitor *m_monitor = nullptr;
};

/// The last name of @p path, trailing "/" ignored.
QString fileNameOf(const QString &path)
{
    QString trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith(QLatin1Char('/')))
        trimmed.chop(1);
    return trimmed.mid(trimmed.lastIndexOf(QLatin1Char('/')) + 1);
}

using ExistsTest = bool (FileSystem::*)(const QString &) const;

/// The first of "parent/first", "parent/<numbered(2)>", "parent/<numbered(3)>" ... that @p exists denies.
template<typename Numbered>
QString uniquePath(const QString &parent, const QString &first, Numbered numbered, ExistsTest exists)
{
    const FileSystem &fileSystem = FileSystem::instance();
    qint32 counter = 1;
    QString candidate = FileSystem::buildPath(parent, first);
    while ((fileSystem.*exists)(candidate)) {
        counter = qint32(quint32(counter) + 1u); // 32 bits, as the numbering has always been
        candidate = FileSystem::buildPath(parent, numbered(QString::number(counter)));
    }
    return candidate;
}

} // namespace

void PasteFiles(const QString &destination, bool copy)
{
    if (destination.isEmpty())
        return;
    QStringList paths;
    if (!ClipboardGetFiles(paths))
        return;
    TransferProgress progress(copy);
    const QScopedValueRollback<TransferMonitor *> shared(g_pasteMonitor, progress.monitor());
    for (const QString &path : std::as_const(paths)) {
        if (progress.monitor() && progress.monitor()->isCancelled())
            break;
        TransferItem(path, destination, copy);
    }
}

QString TransferItem(const QString &source, const QString &destination, bool copy)
{
    const FileSystem &fileSystem = FileSystem::instance();
    if (fileSystem.fileExists(source))
        return TransferFile(source, destination, copy);
    if (fileSystem.folderExists(source))
        return TransferFolder(source, destination, copy);
    return QString();
}

QString TransferFile(const QString &source, const QString &destination, bool copy)
{
    const QString name = fileNameOf(source);
    QString target = FileSystem::buildPath(destination, name);
    int answer = MsgBoxResult::Yes;
    bool targetExists = false;
    if (target != source && FileSystem::instance().fileExists(target)) {
        targetExists = true;
        answer = ConfirmFileReplace(source, target);
    }
    if (target == source)
        target = UniqueCopyFilePath(destination, name); // into its own folder: a numbered copy, even for a move
    if (answer != MsgBoxResult::Yes)
        return QString();
    TransferProgress progress(copy);
    if (copy)
        FileOperations::copyFile(source, target, true, progress.monitor());
    else
        FileOperations::moveFile(source, target, targetExists, progress.monitor());
    return target;
}

QString TransferFolder(const QString &source, const QString &destination, bool copy)
{
    const QString name = FileSystem::instance().folder(source).name;
    QString target = FileSystem::buildPath(destination, name);
    if (destination == source) {
        ShowCopySameFolderError(name);
        return QString();
    }
    int answer = MsgBoxResult::Yes;
    bool targetExists = false;
    if (target != source) {
        if (FileSystem::instance().folderExists(target)) {
            targetExists = true;
            answer = ConfirmFolderReplace(name);
        }
    } else {
        target = UniqueCopyFolderPath(destination, name);
    }
    if (answer == MsgBoxResult::Cancel)
        return QString();
    const bool overwrite = answer == MsgBoxResult::Yes;
    TransferProgress progress(copy);
    if (copy)
        FileOperations::copyFolder(source, target, overwrite, progress.monitor());
    else if (!targetExists)
        FileOperations::moveFolder(source, target, progress.monitor()); // onto an existing folder nothing moves
    return target;
}

QString UniqueNewFolderPath(const QString &parent)
{
    return uniquePath(
        parent, QStringLiteral("New folder"),
        [](const QString &n) -> QString { return QStringLiteral("New folder (") + n + QStringLiteral(")"); },
        &FileSystem::folderExists);
}

QString UniqueCopyFolderPath(const QString &parent, const QString &name)
{
    return uniquePath(
        parent, name,
        [&name](const QString &n) -> QString { return QStringLiteral("Copy (") + n + QStringLiteral(") of ") + name; },
        &FileSystem::folderExists);
}

QString UniqueCopyFilePath(const QString &parent, const QString &name)
{
    return uniquePath(
        parent, name,
        [&name](const QString &n) -> QString { return QStringLiteral("Copy (") + n + QStringLiteral(") of ") + name; },
        &FileSystem::fileExists);
}

} // namespace Kelocontrols
