#pragma once

#include <kelocontrols_export.h>

#include <QByteArray>
#include <QList>

namespace Kelocontrols {

/**
 * Starts programs that outlive the caller, with their arguments as raw
 * bytes.
 *
 * QProcess turns arguments into bytes through the local 8-bit codec, which
 * cannot carry a file name that is not valid UTF-8; here every argument is
 * handed to execve() exactly as given. The program is started through a
 * double fork: an intermediate child makes a new session (setsid), forks the
 * program and exits at once, and is reaped before start() returns. The
 * program, a child of that short-lived process, is adopted by init (or the
 * session's subreaper), so it never becomes a zombie of the caller and gets
 * no controlling terminal. Its standard input is /dev/null; standard output
 * and error are the caller's; file descriptors above 2 are closed; the
 * signal mask is cleared and SIGPIPE restored to its default.
 */
class KELOCONTROLS_EXPORT DetachedLauncher
{
public:
    /**
     * Starts @p program (a path to an executable file) with @p arguments
     * (argv, its first item the name the program sees as argv[0]) in
     * @p workingDirectory ("" keeps the caller's; one that cannot be entered
     * is ignored), detached.
     *
     * Returns 0 once the program runs, else the errno of the failure: of
     * fork(), or of execve() (ENOENT, EACCES, ENOEXEC ...), which the
     * program's process reports back through a close-on-exec pipe. EINVAL
     * when @p program or @p arguments is empty.
     */
    static int start(const QByteArray &program, const QList<QByteArray> &arguments,
        const QByteArray &workingDirectory = QByteArray());

    /**
     * The path of the executable @p name: a name with a "/" is taken as it
     * is, any other is searched along $PATH as it is now (the default
     * "/usr/local/bin:/usr/bin:/bin" when unset). Only regular files the
     * caller may execute count. An empty result means not found.
     */
    static QByteArray findExecutable(const QByteArray &name);
};

} // namespace Kelocontrols
