#include "ClipboardFiles.h"

#include "FileNameCodec.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QtEndian>

namespace Kelocontrols {

const char *const kHdropMimeType = "application/x-kelocontrols-hdrop";

namespace {

const QString kUriListType = QStringLiteral("text/uri-list");
const QString kGnomeType = QStringLiteral("x-special/gnome-copied-files");

constexpr int kHeaderSize = 20;
/// The longest path read back, as the file-drop buffer of 1,024 characters with its NUL allows.
constexpr int kLongestPath = 1023;

QByteArray fileUri(const QString &path)
{
    return QByteArrayLiteral("file://") + FileNameCodec::encode(path).toPercentEncoding("/");
}

/// The local path of a `file:` URI ("file:///p", "file://localhost/p", "file:/p"), or "".
QString localPathOfUri(QByteArray uri)
{
    uri = uri.trimmed();
    if (!uri.startsWith("file:"))
        return QString();
    uri.remove(0, 5);
    if (uri.startsWith("//")) {
        const qsizetype pathStart = uri.indexOf('/', 2);
        if (pathStart < 0)
            return QString();
        const QByteArray host = uri.mid(2, pathStart - 2);
        if (!host.isEmpty() && host != "localhost")
            return QString(); // a file on another machine
        uri.remove(0, pathStart);
    }
    if (!uri.startsWith('/'))
        return QString();
    return FileNameCodec::decode(QByteArray::fromPercentEncoding(uri));
}

QStringList pathsOfUriLines(const QList<QByteArray> &lines)
{
    QStringList paths;
    for (const QByteArray &line : lines) {
        if (line.startsWith('#'))
            continue; // a comment line of text/uri-list
        const QString path = localPathOfUri(line);
        if (!path.isEmpty())
            paths.append(path);
    }
    return paths;
}

quint32 headerField(const QByteArray &block, int offset)
{
    return qFromLittleEndian<quint32>(block.constData() + offset);
}

/// The paths of a file-drop block, 8-bit or wide.
QStringList pathsOfBlock(const QByteArray &block)
{
    QStringList paths;
    if (block.size() < kHeaderSize)
        return paths;
    const quint32 listOffset = headerField(block, 0);
    const bool wide = headerField(block, 16) != 0;
    if (listOffset < quint32(kHeaderSize) || listOffset > quint32(block.size()))
        return paths;
    qsizetype at = listOffset;
    if (!wide) {
        while (at < block.size() && block.at(at) != 0) {
            qsizetype end = block.indexOf('\0', at);
            if (end < 0)
                end = block.size();
            paths.append(FileNameCodec::decode(block.constData() + at, end - at).left(kLongestPath));
            at = end + 1;
        }
        return paths;
    }
    const auto unitAt = [&block](qsizetype i) { return qFromLittleEndian<quint16>(block.constData() + i); };
    while (at + 1 < block.size() && unitAt(at) != 0) {
        QString path;
        for (; at + 1 < block.size() && unitAt(at) != 0; at += 2)
            path.append(QChar(unitAt(at)));
        paths.append(path.left(kLongestPath));
        at += 2;
    }
    return paths;
}

} // namespace

QByteArray fileDropBlock(const QStringList &paths)
{
    QByteArray block(kHeaderSize, '\0');
    qToLittleEndian<quint32>(kHeaderSize, block.data());
    for (const QString &path : paths) {
        block.append(FileNameCodec::encode(path));
        block.append('\0');
    }
    block.append('\0');
    return block;
}

QMimeData *fileListMimeData(const QStringList &paths)
{
    QByteArray uriList;
    QByteArray gnome = QByteArrayLiteral("copy");
    for (const QString &path : paths) {
        const QByteArray uri = fileUri(path);
        uriList += uri + "\r\n";
        gnome += '\n' + uri;
    }
    auto *data = new QMimeData;
    data->setData(QString::fromLatin1(kHdropMimeType), fileDropBlock(paths));
    data->setData(kUriListType, uriList);
    data->setData(kGnomeType, gnome);
    return data;
}

QStringList filesOfMimeData(const QMimeData *data)
{
    if (!data)
        return {};
    if (data->hasFormat(QString::fromLatin1(kHdropMimeType)))
        return pathsOfBlock(data->data(QString::fromLatin1(kHdropMimeType)));
    if (data->hasFormat(kUriListType)) {
        const QStringList paths = pathsOfUriLines(data->data(kUriListType).split('\n'));
        if (!paths.isEmpty())
            return paths;
    }
    if (data->hasFormat(kGnomeType)) {
        QList<QByteArray> lines = data->data(kGnomeType).split('\n');
        if (!lines.isEmpty())
            lines.removeFirst(); // "copy" or "cut"
        return pathsOfUriLines(lines);
    }
    return {};
}

bool ClipboardPutFiles(const QStringList &paths)
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return false;
    QClipboard *clipboard = QGuiApplication::clipboard();
    if (!clipboard)
        return false;
    clipboard->clear();
    clipboard->setMimeData(fileListMimeData(paths)); // the clipboard owns the data from here on
    return true;
}

bool ClipboardGetFiles(QStringList &paths)
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return false;
    const QClipboard *clipboard = QGuiApplication::clipboard();
    const QStringList found = clipboard ? filesOfMimeData(clipboard->mimeData()) : QStringList();
    if (found.isEmpty())
        return false;
    paths.append(found);
    return true;
}

} // namespace Kelocontrols
