#pragma once

#include <Kelocontrols/RuntimeError.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMetaClassInfo>
#include <QMetaObject>
#include <QString>
#include <QTimer>

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

/// The value of the class information `name` of `meta` ("Help:Interval", "DispId:ThemeMissing"), "" when absent.
inline QString classInfo(const QMetaObject &meta, const char *name)
{
    const int index = meta.indexOfClassInfo(name);
    return index < 0 ? QString() : QString::fromUtf8(meta.classInfo(index).value());
}

/// The help string of member `member` of `meta`.
inline QString helpString(const QMetaObject &meta, const QString &member)
{
    return classInfo(meta, QByteArray("Help:").append(member.toLatin1()).constData());
}

/// Fires the QTimer named `timerName` inside `control` `times` times, as its ticks would; false when there is none.
inline bool fireTimer(QObject *control, const QString &timerName, int times = 1)
{
    auto *timer = control->findChild<QTimer *>(timerName);
    for (int i = 0; timer && i < times; ++i) {
        QMetaObject::invokeMethod(timer, "timeout");
    }
    return timer != nullptr;
}

/// The whole file as UTF-8 text, "" when it cannot be read.
inline QString readTextFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// Writes `text` as UTF-8, making the folders on the way; false on failure.
inline bool writeTextFile(const QString &path, const QString &text)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(text.toUtf8()) >= 0;
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
