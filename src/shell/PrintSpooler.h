#pragma once

#include <kelocontrols_export.h>

#include <QByteArray>

namespace Kelocontrols {

/**
 * Hands a file to the CUPS `lp` command for printing on the default
 * printer.
 *
 * The file's bytes go to `lp` on its standard input, so that a name `lp`
 * could not take as an argument (not valid UTF-8, starting with "-") still
 * prints; the file name is passed as the job title (`lp -t <name>`). `lp`
 * is looked up along $PATH at each call; its standard output (the request
 * id) is discarded, its standard error is the caller's. The call waits for
 * `lp` to end, at most the given time; an `lp` that takes longer is killed.
 * Either way the process is reaped before print() returns.
 */
class KELOCONTROLS_EXPORT PrintSpooler
{
public:
    /// How a print request ended.
    enum class Outcome {
        Spooled, ///< `lp` accepted the job (exit status 0)
        NoSpooler, ///< there is no `lp` on $PATH
        Unreadable, ///< the file could not be opened for reading
        Failed, ///< `lp` ended with an error status or by a signal
        TimedOut, ///< `lp` did not end in time and was stopped
        NotStarted, ///< `lp` could not be started
    };

    /// The longest wait for `lp`, in milliseconds, when the caller gives none.
    static constexpr int DefaultTimeoutMs = 5000;

    /**
     * Prints the file at @p filePath (the exact bytes of its path) with the
     * job title @p title (bytes as well), waiting at most @p timeoutMs for
     * `lp`.
     */
    static Outcome print(const QByteArray &filePath, const QByteArray &title, int timeoutMs = DefaultTimeoutMs);
};

} // namespace Kelocontrols
