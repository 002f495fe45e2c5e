#pragma once

#include <Kelocontrols/RuntimeError.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QPixmap>

#include <utility>

namespace KeloTest {

/// The number of the Kelocontrols::RuntimeError that `call` raises, or 0 when it raises none.
template<typename Call>
int errorNumberOf(Call &&call)
{
    try {
        std::forward<Call>(call)();
    } catch (const Kelocontrols::RuntimeError &error) {
        return error.number();
    }
    return 0;
}

/// Writes `content` to the file at `path`, creating the folders above it; false when any step fails.
inline bool writeFile(const QString &path, const QByteArray &content = {})
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
        && file.write(content) == content.size();
}

/// The colour of the pixel at the centre of `pixmap`.
inline QRgb centreOf(const QPixmap &pixmap)
{
    const QImage image = pixmap.toImage();
    return image.pixel(image.width() / 2, image.height() / 2);
}

} // namespace KeloTest
