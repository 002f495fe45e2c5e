#pragma once

#include <Kelocontrols/RuntimeError.h>

#include <QByteArray>
#include <QFile>
#include <QString>

#include <fcntl.h>
#include <sys/stat.h>

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

/// Writes a file of @p bytes bytes ("x" repeated); false when it cannot be written.
inline bool writeFile(const QString &path, qint64 bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(QByteArray(bytes, 'x')) == bytes;
}

/// Sets the modification and access times of @p path (a file or folder) to @p msecs since the epoch.
inline bool setModified(const QString &path, qint64 msecs)
{
    struct timespec times[2];
    times[0].tv_sec = times[1].tv_sec = msecs / 1000;
    times[0].tv_nsec = times[1].tv_nsec = (msecs % 1000) * 1000000;
    return utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0) == 0;
}

} // namespace KeloTest
