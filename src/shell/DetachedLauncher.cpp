#include "DetachedLauncher.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char **environ;

namespace Kelocontrols {

namespace {

bool isExecutableFile(const QByteArray &path)
{
    struct stat info;
    return ::stat(path.constData(), &info) == 0 && S_ISREG(info.st_mode) && ::access(path.constData(), X_OK) == 0;
}

// Everything the program's process needs, prepared before fork(): after it
// only async-signal-safe calls are allowed.
struct LaunchPlan
{
    QByteArray program;
    QList<QByteArray> arguments;
    std::vector<char *> argv;
    QByteArray workingDirectory;
    char **environment = nullptr;
    int highestFd = 1024;
};

void writeErrno(int fd, int error)
{
    while (::write(fd, &error, sizeof error) < 0 && errno == EINTR) { }
}

void closeInheritedDescriptors(int keep, int highestFd)
{
    // close_range() does it in two calls where the kernel has it (5.9 on).
    const bool lowClosed = keep <= 3 || ::close_range(3, unsigned(keep - 1), 0) == 0;
    if (lowClosed && ::close_range(unsigned(keep + 1), ~0u, 0) == 0) {
        return;
    }
    for (int fd = 3; fd < highestFd; ++fd) {
        if (fd != keep) {
            ::close(fd);
        }
    }
}

void resetSignals()
{
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    struct sigaction byDefault = {};
    byDefault.sa_handler = SIG_DFL;
    ::sigaction(SIGPIPE, &byDefault, nullptr);
    ::sigaction(SIGCHLD, &byDefault, nullptr);
}

[[noreturn]] void runProgram(const LaunchPlan &plan, int reportFd)
{
    resetSignals();
    const int devNull = ::open("/dev/null", O_RDONLY);
    if (devNull >= 0 && devNull != STDIN_FILENO) {
        ::dup2(devNull, STDIN_FILENO);
        ::close(devNull);
    }
    closeInheritedDescriptors(reportFd, plan.highestFd);
    if (!plan.workingDirectory.isEmpty() && ::chdir(plan.workingDirectory.constData()) != 0) {
        // An unusable working folder is no reason not to open the file.
    }
    ::execve(plan.program.constData(), plan.argv.data(), plan.environment);
    writeErrno(reportFd, errno);
    ::_exit(127);
}

[[noreturn]] void runIntermediate(const LaunchPlan &plan, int reportFd)
{
    ::setsid();
    const pid_t program = ::fork();
    if (program < 0) {
        writeErrno(reportFd, errno);
        ::_exit(1);
    }
    if (program == 0) {
        runProgram(plan, reportFd);
    }
    ::_exit(0);
}

int readReportedErrno(int fd)
{
    int error = 0;
    qsizetype got = 0;
    char *into = reinterpret_cast<char *>(&error);
    while (got < qsizetype(sizeof error)) {
        const ssize_t n = ::read(fd, into + got, sizeof error - got);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            break;
        }
        got += n;
    }
    // End of file without a word: execve() succeeded and closed the pipe.
    return got == qsizetype(sizeof error) ? error : 0;
}

} // namespace

int DetachedLauncher::start(
    const QByteArray &program, const QList<QByteArray> &arguments, const QByteArray &workingDirectory)
{
    if (program.isEmpty() || arguments.isEmpty()) {
        return EINVAL;
    }
    LaunchPlan plan;
    plan.program = program;
    plan.arguments = arguments;
    for (QByteArray &argument : plan.arguments) {
        plan.argv.push_back(argument.data());
    }
    plan.argv.push_back(nullptr);
    plan.workingDirectory = workingDirectory;
    plan.environment = environ;
    const long openMax = ::sysconf(_SC_OPEN_MAX);
    plan.highestFd = openMax > 0 && openMax < 65536 ? int(openMax) : 65536;

    int report[2];
    if (::pipe2(report, O_CLOEXEC) != 0) {
        return errno;
    }
    const pid_t intermediate = ::fork();
    if (intermediate < 0) {
        const int error = errno;
        ::close(report[0]);
        ::close(report[1]);
        return error;
    }
    if (intermediate == 0) {
        ::close(report[0]);
        runIntermediate(plan, report[1]);
    }
    ::close(report[1]);
    int status = 0;
    while (::waitpid(intermediate, &status, 0) < 0 && errno == EINTR) { }
    const int error = readReportedErrno(report[0]);
    ::close(report[0]);
    return error;
}

QByteArray DetachedLauncher::findExecutable(const QByteArray &name)
{
    if (name.isEmpty()) {
        return {};
    }
    if (name.contains('/')) {
        return isExecutableFile(name) ? name : QByteArray();
    }
    QByteArray path = qgetenv("PATH");
    if (!qEnvironmentVariableIsSet("PATH")) {
        path = "/usr/local/bin:/usr/bin:/bin";
    }
    for (const QByteArray &folder : path.split(':')) {
        if (folder.isEmpty()) {
            continue;
        }
        const QByteArray candidate = folder + '/' + name;
        if (isExecutableFile(candidate)) {
            return candidate;
        }
    }
    return {};
}

} // namespace Kelocontrols
