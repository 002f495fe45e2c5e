#pragma once

#include <Kelocontrols/MsgBox.h>
#include <Kelocontrols/RuntimeError.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QMetaClassInfo>
#include <QMetaObject>
#include <QPixmap>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <initializer_list>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

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

/// Writes the properties of `object` late-bound, in the order given; false when one is refused.
inline bool setProperties(QObject *object, std::initializer_list<std::pair<const char *, QVariant>> values)
{
    bool all = true;
    for (const auto &[name, value] : values) {
        all = object->setProperty(name, value) && all;
    }
    return all;
}

/// The named properties of `object` as "Name=text" (enumerations as numbers), in the order given, for one comparison of
/// many values.
inline QStringList propertyTexts(const QObject *object, const QStringList &names)
{
    QStringList texts;
    for (const QString &name : names) {
        const QVariant value = object->property(name.toLatin1().constData());
        // Enumerations as numbers, as a late-bound caller reads them.
        const bool enumeration = value.metaType().flags().testFlag(QMetaType::IsEnumeration);
        texts << name + QLatin1Char('=') + (enumeration ? QString::number(value.toLongLong()) : value.toString());
    }
    return texts;
}

/// The first argument of every signal `spy` recorded, as text (the names a PropertyChanged spy saw).
inline QStringList firstArguments(const QSignalSpy &spy)
{
    QStringList texts;
    for (const QList<QVariant> &arguments : spy) {
        texts << arguments.value(0).toString();
    }
    return texts;
}

/// Points XDG_CONFIG_HOME (or the environment variable `variable`) at a fresh temporary folder for its lifetime, then
/// puts the old value back.
class ScopedConfigHome
{
public:
    explicit ScopedConfigHome(const char *variable = "XDG_CONFIG_HOME")
        : m_variable(variable)
        , m_saved(qgetenv(variable))
    {
        qputenv(variable, m_dir.path().toUtf8());
    }
    ~ScopedConfigHome() { qputenv(m_variable, m_saved); }
    QString path() const { return m_dir.path(); }
    bool isValid() const { return m_dir.isValid(); }

private:
    QTemporaryDir m_dir;
    const char *m_variable;
    QByteArray m_saved;
};

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

/// Whether any pixel of `image` is not fully transparent.
inline bool hasVisiblePixel(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) != 0)
                return true;
        }
    }
    return false;
}

/// Stands in for the message box while it lives: records every box shown and answers from `answers` in turn (OK
/// once they run out); the handler in force before comes back on destruction.
class MsgBoxRecorder
{
public:
    struct Box
    {
        QString prompt;
        int style;
        QString title;
    };

    explicit MsgBoxRecorder(QList<int> answers = {})
        : m_answers(std::move(answers))
    {
        m_previous = Kelocontrols::setMsgBoxHandler([this](const QString &prompt, int style, const QString &title) {
            boxes.append({prompt, style, title});
            return m_answers.isEmpty() ? Kelocontrols::MsgBoxResult::OK : m_answers.takeFirst();
        });
    }
    ~MsgBoxRecorder() { Kelocontrols::setMsgBoxHandler(m_previous); }
    MsgBoxRecorder(const MsgBoxRecorder &) = delete;
    MsgBoxRecorder &operator=(const MsgBoxRecorder &) = delete;

    QStringList prompts() const { return collect(&Box::prompt); }
    QStringList titles() const { return collect(&Box::title); }
    QList<int> styles() const { return collect(&Box::style); }
    /// The answers for the next boxes; boxes beyond them are answered OK.
    void setAnswers(QList<int> answers) { m_answers = std::move(answers); }
    /// Each box as "<title>|<style>|<prompt>", in the order shown.
    QStringList titled() const
    {
        return collect([](const Box &box) -> QString {
            return box.title + u'|' + QString::number(box.style) + u'|' + box.prompt;
        });
    }
    /// Each box as "<title>|<prompt>", in the order shown.
    QStringList titledPrompts() const
    {
        return collect([](const Box &box) -> QString { return box.title + u'|' + box.prompt; });
    }
    /// Each box as "<style>|<prompt>|<title>", in the order shown.
    QStringList calls() const
    {
        return collect([](const Box &box) -> QString {
            return QString::number(box.style) + u'|' + box.prompt + u'|' + box.title;
        });
    }

    QList<Box> boxes;

private:
    template<typename Field, typename T = std::decay_t<std::invoke_result_t<Field, const Box &>>>
    QList<T> collect(Field field) const
    {
        QList<T> result;
        for (const Box &box : boxes)
            result << std::invoke(field, box);
        return result;
    }

    QList<int> m_answers;
    Kelocontrols::MsgBoxHandler m_previous;
};

/// Without a display, runs this test program again under a private X server
/// (xvfb-run), so that the real clipboard and drag and drop are used. Call it
/// first in main(); it returns only when there is a display or no xvfb-run.
inline void restartUnderXvfb(int argc, char **argv)
{
    if (qEnvironmentVariableIsSet("KELO_UNDER_XVFB") || qEnvironmentVariableIsSet("DISPLAY")) {
        return;
    }
    const QString xvfbRun = QStandardPaths::findExecutable(QStringLiteral("xvfb-run"));
    if (xvfbRun.isEmpty()) {
        return;
    }
    ::setenv("KELO_UNDER_XVFB", "1", 1);
    ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    const QByteArray program = QFile::encodeName(xvfbRun);
    std::vector<char *> arguments = {const_cast<char *>(program.constData()), const_cast<char *>("-a"), argv[0]};
    for (int i = 1; i < argc; ++i) {
        arguments.push_back(argv[i]);
    }
    arguments.push_back(nullptr);
    ::execv(program.constData(), arguments.data());
}

/// The value in column @p name of the current test data row (what QFETCH reads).
template<typename T>
T cell(const char *name)
{
    return *static_cast<T *>(QTest::qData(name, ::qMetaTypeId<T>()));
}

/// Declares the columns of a data table in one go: `addColumns<QString, int>({"name", "size"})`.
template<typename... Types>
void addColumns(const std::array<const char *, sizeof...(Types)> &names)
{
    [&]<std::size_t... I>(std::index_sequence<I...>)
    {
        (QTest::addColumn<Types>(names[I]), ...);
    }
    (std::index_sequence_for<Types...>());
}

/// The current row's values of the named columns, for a structured binding:
/// `const auto [name, size] = fetch<QString, int>({"name", "size"})`.
template<typename... Types>
std::tuple<Types...> fetch(const std::array<const char *, sizeof...(Types)> &names)
{
    return [&]<std::size_t... I>(std::index_sequence<I...>)
    {
        return std::tuple<Types...>{cell<Types>(names[I])...};
    }
    (std::index_sequence_for<Types...>());
}

} // namespace KeloTest
