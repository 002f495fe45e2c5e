#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QList>
#include <QString>
#include <QTemporaryDir>
#include <QTest>

#include <dirent.h>
#include <unistd.h>

/**
 * A private freedesktop environment for one test: XDG_DATA_DIRS,
 * XDG_DATA_HOME, XDG_CONFIG_HOME and XDG_CONFIG_DIRS point into a temporary
 * folder (nothing of the machine's own applications or mimeapps.list is
 * seen), XDG_CURRENT_DESKTOP is unset, and a private bin folder comes first
 * on PATH. The real MIME database is linked in as data/mime, so type
 * look-ups still work. Everything is restored on destruction.
 */
class XdgTestSandbox
{
public:
    XdgTestSandbox()
    {
        for (const char *name :
            {"XDG_DATA_DIRS", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "XDG_CURRENT_DESKTOP", "PATH"}) {
            m_saved.insert(name, {qEnvironmentVariableIsSet(name), qgetenv(name)});
        }
        for (const char *folder :
            {"data/applications", "datahome/applications", "config", "configdirs", "bin", "records", "files"}) {
            QDir(m_dir.path()).mkpath(QString::fromLatin1(folder));
        }
        QFile::link(u"/usr/share/mime"_qs, path("data/mime"));
        qputenv("XDG_DATA_DIRS", path("data").toUtf8());
        qputenv("XDG_DATA_HOME", path("datahome").toUtf8());
        qputenv("XDG_CONFIG_HOME", path("config").toUtf8());
        qputenv("XDG_CONFIG_DIRS", path("configdirs").toUtf8());
        qunsetenv("XDG_CURRENT_DESKTOP");
        qputenv("PATH", path("bin").toUtf8() + ':' + m_saved.value("PATH").second);
    }

    ~XdgTestSandbox()
    {
        for (auto it = m_saved.cbegin(); it != m_saved.cend(); ++it) {
            if (it->first)
                qputenv(it.key().constData(), it->second);
            else
                qunsetenv(it.key().constData());
        }
    }

    XdgTestSandbox(const XdgTestSandbox &) = delete;
    XdgTestSandbox &operator=(const XdgTestSandbox &) = delete;

    QString path(const QString &relative = QString()) const
    {
        return relative.isEmpty() ? m_dir.path() : m_dir.filePath(relative);
    }

    /// Writes @p content to @p relative (folders made as needed); @p executable sets mode 0755.
    QString write(const QString &relative, const QByteArray &content, bool executable = false) const
    {
        const QString file = path(relative);
        QDir().mkpath(QFileInfo(file).path());
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(file));
        out.close();
        if (executable)
            out.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner
                | QFileDevice::ReadGroup | QFileDevice::ExeGroup);
        return file;
    }

    /**
     * A script bin/@p name that writes its arguments, each ended by a NUL,
     * to records/@p name.args (and, with @p withStdin, its standard input to
     * records/@p name.stdin) and exits with @p exitCode. The record appears
     * at once and whole (written aside, then renamed).
     */
    QString addRecorder(const QString &name, bool withStdin = false, int exitCode = 0) const
    {
        const QByteArray record = path(u"records/"_qs + name).toUtf8();
        const QByteArray script = "#!/bin/sh\n"
            + (withStdin ? QByteArray("/bin/cat > '" + record + ".stdin'\n") : QByteArray())
            + "printf '%s\\0' \"$@\" > '" + record + ".tmp'\n/bin/mv '" + record + ".tmp' '" + record + ".args'\nexit "
            + QByteArray::number(exitCode) + "\n";
        return write(u"bin/"_qs + name, script, true);
    }

    /// Adds an applications entry @p id (under data/ or, with @p inDataHome, datahome/) starting @p exec.
    QString addEntry(const QString &id, const QString &exec, const QString &mimeTypes, bool inDataHome = false,
        const QByteArray &extraLines = QByteArray()) const
    {
        const QByteArray text = "[Desktop Entry]\nType=Application\nName=" + id.toUtf8() + "\nExec=" + exec.toUtf8()
            + "\nMimeType=" + mimeTypes.toUtf8() + "\n" + extraLines;
        return write((inDataHome ? u"datahome/applications/"_qs : u"data/applications/"_qs) + id, text);
    }

    QString recordPath(const QString &name, const char *suffix = ".args") const
    {
        return path(u"records/"_qs + name + QString::fromLatin1(suffix));
    }

    /// The arguments a recorder got, once its record is there (empty after @p timeoutMs).
    QList<QByteArray> waitForArguments(const QString &name, int timeoutMs = 10000) const
    {
        for (int waited = 0; !QFile::exists(recordPath(name)) && waited < timeoutMs; waited += 20)
            QTest::qWait(20);
        QList<QByteArray> arguments = readRecord(name, ".args").split('\0');
        arguments.removeLast(); // after the last NUL, or the empty record
        return arguments;
    }

    QByteArray readRecord(const QString &name, const char *suffix) const
    {
        QFile in(recordPath(name, suffix));
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

    /// The children of this process, zombies included, from /proc: a detached start leaves none.
    static int childCount()
    {
        DIR *proc = ::opendir("/proc");
        if (!proc)
            return -1;
        int count = 0;
        const QByteArray self = QByteArray::number(qint64(::getpid()));
        while (const dirent *entry = ::readdir(proc)) {
            QFile stat(u"/proc/"_qs + QString::fromLatin1(entry->d_name) + u"/stat"_qs);
            if (entry->d_name[0] < '0' || entry->d_name[0] > '9' || !stat.open(QIODevice::ReadOnly))
                continue;
            // "pid (comm) state ppid ...": comm may hold blanks and parentheses.
            const QByteArray line = stat.readAll();
            const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
            count += fields.size() > 1 && fields.at(1) == self;
        }
        ::closedir(proc);
        return count;
    }

private:
    QTemporaryDir m_dir;
    QHash<QByteArray, std::pair<bool, QByteArray>> m_saved;
};
