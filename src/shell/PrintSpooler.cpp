#include "PrintSpooler.h"

#include "DetachedLauncher.h"

#include <QElapsedTimer>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char **environ;

namespace Kelocontrols {

namespace {

// posix_spawn's attributes and file actions, released whatever happens.
class SpawnSetup
{
public:
    SpawnSetup()
    {
        ::posix_spawnattr_init(&attributes);
        ::posix_spawn_file_actions_init(&actions);
    }
    ~SpawnSetup()
    {
        ::posix_spawn_file_actions_destroy(&actions);
        ::posix_spawnattr_destroy(&attributes);
    }
    SpawnSetup(const SpawnSetup &) = delete;
    SpawnSetup &operator=(const SpawnSetup &) = delete;

    posix_spawnattr_t attributes;
    posix_spawn_file_actions_t actions;
};

// Waits for @p pid until @p timeoutMs passes; true with its status when it ended.
bool waitWithTimeout(pid_t pid, int timeoutMs, int &status)
{
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        const pid_t done = ::waitpid(pid, &status, WNOHANG);
        if (done == pid) {
            return true;
        }
        if (done < 0 && errno != EINTR) {
            status = -1; // reaped elsewhere: its result is unknown
            return true;
        }
        if (clock.elapsed() >= timeoutMs) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

} // namespace

PrintSpooler::Outcome PrintSpooler::print(const QByteArray &filePath, const QByteArray &title, int timeoutMs)
{
    const QByteArray lp = DetachedLauncher::findExecutable("lp");
    if (lp.isEmpty()) {
        return Outcome::NoSpooler;
    }
    const int file = ::open(filePath.constData(), O_RDONLY | O_CLOEXEC);
    if (file < 0) {
        return Outcome::Unreadable;
    }
    SpawnSetup setup;
    ::posix_spawn_file_actions_adddup2(&setup.actions, file, STDIN_FILENO);
    ::posix_spawn_file_actions_addopen(&setup.actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    sigset_t none;
    ::sigemptyset(&none);
    sigset_t defaults;
    ::sigemptyset(&defaults);
    ::sigaddset(&defaults, SIGPIPE);
    ::posix_spawnattr_setsigmask(&setup.attributes, &none);
    ::posix_spawnattr_setsigdefault(&setup.attributes, &defaults);
    ::posix_spawnattr_setflags(&setup.attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    QByteArray argv0 = "lp";
    QByteArray titleOption = "-t";
    QByteArray titleText = title;
    char *argv[] = {argv0.data(), titleOption.data(), titleText.data(), nullptr};
    pid_t pid = 0;
    const int spawned = ::posix_spawn(&pid, lp.constData(), &setup.actions, &setup.attributes, argv, environ);
    ::close(file);
    if (spawned != 0) {
        return Outcome::NotStarted;
    }
    int status = 0;
    if (!waitWithTimeout(pid, timeoutMs, status)) {
        ::kill(pid, SIGKILL);
        while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) { }
        return Outcome::TimedOut;
    }
    return status != -1 && WIFEXITED(status) && WEXITSTATUS(status) == 0 ? Outcome::Spooled : Outcome::Failed;
}

} // namespace Kelocontrols
