#include "FileIcon.h"

#include "CommonFile.h"
#include "Conversions.h"
#include "DesktopAssociations.h"
#include "DetachedLauncher.h"
#include "FileIconProvider.h"
#include "FileNameCodec.h"
#include "FileSystem.h"
#include "FileTypes.h"
#include "IconLookup.h"
#include "MsgBox.h"
#include "PictureBox.h"
#include "PrintSpooler.h"
#include "RuntimeError.h"

#include <QFile>
#include <QMimeDatabase>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Kelocontrols {

namespace {

int ghostChannel(int value)
{
    return int(roundHalfEven(255.0 - (255 - value) / 2.0));
}

// The result code for a path that stat() could not find, by its errno.
int missingPathResult(const QString &path, int error)
{
    if (error == ENOTDIR) {
        return ShellResult::PathNotFound;
    }
    if (error == EACCES) {
        return ShellResult::AccessDenied;
    }
    const QString parent = FileSystem::parentFolderName(path);
    if (!parent.isEmpty() && !FileSystem::instance().folderExists(parent)) {
        return ShellResult::PathNotFound;
    }
    return ShellResult::FileNotFound;
}

// The type that decides the application: by name, with the first bytes of
// a regular file to settle names that say nothing (as xdg-open does).
QMimeType mimeTypeForOpening(const QString &path, const QByteArray &bytes, const struct stat &info)
{
    const QMimeDatabase database;
    if (S_ISDIR(info.st_mode)) {
        return database.mimeTypeForName(u"inode/directory"_qs);
    }
    const QString name = path.mid(path.lastIndexOf(u'/') + 1);
    if (S_ISREG(info.st_mode)) {
        const int fd = ::open(bytes.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (fd >= 0) {
            QFile file;
            if (file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
                return database.mimeTypeForFileNameAndData(name, &file);
            }
            ::close(fd);
        }
    }
    return database.mimeTypeForFile(name, QMimeDatabase::MatchExtension);
}

int openFile(const QString &path, const QByteArray &bytes, const struct stat &info)
{
    const std::optional<DesktopEntry> handler = DesktopAssociations().handlerFor(mimeTypeForOpening(path, bytes, info));
    if (!handler) {
        return ShellResult::NoAssociation;
    }
    const std::optional<QList<QByteArray>> command = handler->commandLine(bytes);
    const QByteArray program = handler->programPath();
    if (!command || program.isEmpty()) {
        return ShellResult::BadFormat;
    }
    const int error = DetachedLauncher::start(program, *command, FileNameCodec::encode(handler->workingDirectory()));
    if (error == 0) {
        return ShellResult::Success;
    }
    return error == EAGAIN || error == ENOMEM ? ShellResult::OutOfResources : ShellResult::BadFormat;
}

int printFile(const QString &path, const QByteArray &bytes, const struct stat &info)
{
    if (S_ISDIR(info.st_mode)) {
        return ShellResult::NoAssociation; // a folder has nothing to print
    }
    const QByteArray title = FileNameCodec::encode(path.mid(path.lastIndexOf(u'/') + 1));
    switch (PrintSpooler::print(bytes, title)) {
    case PrintSpooler::Outcome::Spooled:
        return ShellResult::Success;
    case PrintSpooler::Outcome::NoSpooler:
        return ShellResult::NoAssociation;
    case PrintSpooler::Outcome::Unreadable:
        return ShellResult::AccessDenied;
    case PrintSpooler::Outcome::TimedOut:
        return ShellResult::Timeout;
    case PrintSpooler::Outcome::NotStarted:
        return ShellResult::BadFormat;
    case PrintSpooler::Outcome::Failed:
        break;
    }
    return ShellResult::PrintFailed;
}

QString shellErrorText(int code)
{
    switch (code) {
    case ShellResult::NoAssociation:
        return u"No application associated with file"_qs;
    case ShellResult::FileNotFound:
    case ShellResult::PathNotFound:
        return u"Unable to find file"_qs;
    default:
        return u"Unable to view file"_qs;
    }
}

} // namespace

QPixmap fileIconPixmap(const QString &path, int pixelSize, bool open, QString *typeKey)
{
    return FileIconProvider::forPath(path, pixelSize, open, false, typeKey);
}

void DrawFileIcon(const QString &path, bool large, PictureBox &picture, QString &typeKey, bool open)
{
    const int size = large ? FileIconSize::Large : FileIconSize::Small;
    const QPixmap icon = fileIconPixmap(path, size, open, &typeKey);
    if (icon.isNull()) {
        return;
    }
    // The drawing area, inside the border, gets the icon's size.
    const QSize border = picture.size() - picture.contentsRect().size();
    picture.resize(QSize(size, size) + border);
    picture.setPicture(QPixmap());
    picture.cls();
    picture.setPicture(icon);
}

QImage ghostImage(const QImage &image, QRgb transparent)
{
    if (image.isNull()) {
        return {};
    }
    QImage result = image.convertToFormat(QImage::Format_ARGB32);
    const QRgb key = transparent & RGB_MASK;
    for (int y = 0; y < result.height(); ++y) {
        QRgb *line = reinterpret_cast<QRgb *>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x) {
            const QRgb pixel = line[x];
            if (qAlpha(pixel) == 0 || (pixel & RGB_MASK) == key) {
                continue;
            }
            line[x] = qRgba(
                ghostChannel(qRed(pixel)), ghostChannel(qGreen(pixel)), ghostChannel(qBlue(pixel)), qAlpha(pixel));
        }
    }
    return result;
}

void GhostPicture(PictureBox &picture, QRgb transparent)
{
    if (!picture.picture().isNull()) {
        picture.setPicture(QPixmap::fromImage(ghostImage(picture.picture().toImage(), transparent)));
    }
    QImage &canvas = picture.beginPaint();
    canvas = ghostImage(canvas, transparent).convertToFormat(canvas.format());
    picture.endPaint();
}

int shellExecute(const QString &path, bool print)
{
    if (path.isEmpty()) {
        return ShellResult::FileNotFound;
    }
    const QByteArray bytes = FileNameCodec::encode(path);
    struct stat info;
    if (::stat(bytes.constData(), &info) != 0) {
        return missingPathResult(path, errno);
    }
    return print ? printFile(path, bytes, info) : openFile(path, bytes, info);
}

void OpenWithAssociatedApp(const QString &path, QWidget *window, bool print)
{
    Q_UNUSED(window); // the box is modal to the application; MsgBox picks its parent
    if (path.isEmpty()) {
        return;
    }
    const int code = shellExecute(path, print);
    if (code > 32) {
        return;
    }
    MsgBox(u"Error "_qs + QString::number(code) + u": "_qs + shellErrorText(code) + u" '"_qs + path + u"'"_qs,
        MsgBoxStyle::OKOnly);
}

} // namespace Kelocontrols
