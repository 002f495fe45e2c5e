#include "FileConfirmations.h"

#include "Conversions.h"
#include "FileSystem.h"
#include "MsgBox.h"

#include <QDateTime>

namespace Kelocontrols {

namespace {

const QString kCrLf = QStringLiteral("\r\n");

/// "<size> bytes.  Modified: <date>" of the file at @p path.
QString sizeAndDate(const std::optional<FileEntry> &entry)
{
    const QString size = QString::number(entry ? entry->size : 0);
    const QString date = entry ? formatGeneralDate(QDateTime::fromMSecsSinceEpoch(entry->modified)) : QString();
    return size + QStringLiteral(" bytes.  Modified: ") + date;
}

QString lastName(const QString &path)
{
    QString trimmed = path;
    while (trimmed.size() > 1 && trimmed.endsWith(QLatin1Char('/')))
        trimmed.chop(1);
    return trimmed.mid(trimmed.lastIndexOf(QLatin1Char('/')) + 1);
}

} // namespace

int ConfirmFileReplace(const QString &source, const QString &target)
{
    const FileSystem &fileSystem = FileSystem::instance();
    const std::optional<FileEntry> existing = fileSystem.entry(target);
    const QString name = existing ? existing->name : lastName(target);
    const QString prompt = QStringLiteral("This folder already contains a file named '") + name + QStringLiteral("'")
        + kCrLf + kCrLf + QStringLiteral("Would you like to replace the existing file") + kCrLf + sizeAndDate(existing)
        + kCrLf + kCrLf + QStringLiteral("With this one ?") + kCrLf + sizeAndDate(fileSystem.entry(source));
    return MsgBox(prompt, MsgBoxStyle::YesNo + MsgBoxStyle::Exclamation, QStringLiteral("Confirm File Replace"));
}

int ConfirmFolderReplace(const QString &name)
{
    const QString prompt = QStringLiteral("This folder already contains a folder named '") + name + QStringLiteral("'")
        + kCrLf + kCrLf + QStringLiteral("If the files in the existing folder have the same name as files in the")
        + kCrLf + QStringLiteral("folder you are moving or copying, they will be replaced. Do you still") + kCrLf
        + QStringLiteral("want to move or copy the folder?") + kCrLf;
    return MsgBox(
        prompt, MsgBoxStyle::YesNoCancel + MsgBoxStyle::Exclamation, QStringLiteral("Confirm Folder Replace"));
}

int ConfirmFolderDelete(const QString &name)
{
    const QString prompt = QStringLiteral("Are you sure you want to remove the folder '") + name
        + QStringLiteral("' and") + kCrLf + QStringLiteral("move all its contents to the Recycle Bin?");
    return MsgBox(prompt, MsgBoxStyle::YesNo + MsgBoxStyle::Exclamation, QStringLiteral("Confirm Folder Delete"));
}

int ConfirmReadOnlyFolderDelete(const QString &name)
{
    const QString prompt = QStringLiteral("The folder '") + name
        + QStringLiteral("' is a read-only folder.  Are you sure you") + kCrLf
        + QStringLiteral("want to remove it and move all its contents to the Recycle Bin?");
    return MsgBox(prompt, MsgBoxStyle::YesNo + MsgBoxStyle::Exclamation, QStringLiteral("Confirm Folder Delete"));
}

int ShowFolderNotAccessible(const QString &name)
{
    const QString prompt = name + QStringLiteral(" is not accessible.") + kCrLf + kCrLf
        + QStringLiteral("This folder was moved or removed.");
    return MsgBox(prompt, MsgBoxStyle::OKOnly + MsgBoxStyle::Critical, QStringLiteral("Folder Not Accessible"));
}

int ShowInvalidNameChars()
{
    const QString prompt = QStringLiteral("A file cannot contain any of the following characters:") + kCrLf
        + QString(14, QLatin1Char(' ')) + QStringLiteral("\\ / : * ? \" < > |");
    return MsgBox(prompt, MsgBoxStyle::OKOnly + MsgBoxStyle::Critical, QStringLiteral("Rename"));
}

int ShowCopySameFolderError(const QString &name)
{
    const QString prompt = QStringLiteral("Cannot copy ") + name
        + QStringLiteral(":  The destination folder is the same as the source folder.") + kCrLf;
    return MsgBox(prompt, MsgBoxStyle::OKOnly + MsgBoxStyle::Critical, QStringLiteral("Error copying file or folder"));
}

} // namespace Kelocontrols
