#include "PostgresServer.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QSqlError>
#include <QThread>
#include <QVersionNumber>

#include <arpa/inet.h>
#include <csignal>
#include <grp.h>
#include <netinet/in.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int kStartAttempts = 3;
constexpr int kReadyTimeoutMs = 60000;
constexpr int kToolTimeoutMs = 120000;

QString processOutput(QProcess &process)
{
    return QString::fromLocal8Bit(process.readAllStandardOutput() + process.readAllStandardError());
}

} // namespace

PostgresServer::PostgresServer() = default;

PostgresServer::~PostgresServer()
{
    stop();
}

// The newest installed version that has the server and its tools, unless
// KELO_POSTGRES_BIN names the folder to use.
QString PostgresServer::findBinaryFolder()
{
    const QString chosen = qEnvironmentVariable("KELO_POSTGRES_BIN");
    if (!chosen.isEmpty()) {
        const QDir bin(chosen);
        return bin.exists(QStringLiteral("initdb")) && bin.exists(QStringLiteral("postgres")) ? bin.absolutePath()
                                                                                              : QString();
    }
    const QDir root(QStringLiteral("/usr/lib/postgresql"));
    QString best;
    QVersionNumber bestVersion;
    for (const QString &version : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QDir bin(root.filePath(version + QStringLiteral("/bin")));
        if (!bin.exists(QStringLiteral("initdb")) || !bin.exists(QStringLiteral("postgres"))) {
            continue;
        }
        const QVersionNumber number = QVersionNumber::fromString(version);
        if (best.isEmpty() || number > bestVersion) {
            best = bin.absolutePath();
            bestVersion = number;
        }
    }
    return best;
}

// A port the kernel just handed out on 127.0.0.1; it is free until someone
// else binds it, and start() tries another one if the server cannot.
int PostgresServer::freePort()
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    if (fd < 0) {
        return 0;
    }
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    socklen_t length = sizeof(address);
    int port = 0;
    if (::bind(fd, reinterpret_cast<sockaddr *>(&address), sizeof(address)) == 0
        && ::getsockname(fd, reinterpret_cast<sockaddr *>(&address), &length) == 0) {
        port = ntohs(address.sin_port);
    }
    ::close(fd);
    return port;
}

bool PostgresServer::start()
{
    m_error.clear();
    m_binaries = findBinaryFolder();
    if (m_binaries.isEmpty()) {
        m_error = QStringLiteral("PostgreSQL is not installed: no initdb and postgres under /usr/lib/postgresql/*/bin "
                                 "or $KELO_POSTGRES_BIN (scripts/setup installs the postgresql package)");
        return false;
    }
    if (!prepareFolder() || !runInitdb()) {
        return false;
    }
    QString attempts;
    for (int attempt = 0; attempt < kStartAttempts; ++attempt) {
        if (launch() && waitUntilReady()) {
            return true;
        }
        attempts += m_error + QLatin1Char('\n');
        stop();
    }
    m_error = QStringLiteral("PostgreSQL did not start:\n") + attempts + QStringLiteral("Server log:\n") + log();
    return false;
}

bool PostgresServer::prepareFolder()
{
    m_switchUser = ::geteuid() == 0;
    if (m_switchUser) {
        const passwd *postgres = ::getpwnam("postgres");
        if (!postgres) {
            m_error = QStringLiteral("running as root, but there is no system user 'postgres' to run PostgreSQL as");
            return false;
        }
        m_uid = postgres->pw_uid;
        m_gid = postgres->pw_gid;
    }
    // The user 'postgres' must reach the folder: root's own temporary folder
    // may lie in a home it cannot enter, /tmp is open to everyone.
    const QString base = m_switchUser ? QStringLiteral("/tmp") : QDir::tempPath();
    m_folder = std::make_unique<QTemporaryDir>(base + QStringLiteral("/kelo-pg-XXXXXX"));
    if (!m_folder->isValid()) {
        m_error = QStringLiteral("cannot create a temporary folder: ") + m_folder->errorString();
        return false;
    }
    if (!m_switchUser) {
        return true;
    }
    const QByteArray path = QFile::encodeName(m_folder->path());
    if (::chown(path.constData(), m_uid, m_gid) != 0) {
        m_error = QStringLiteral("cannot hand %1 to the user 'postgres'").arg(m_folder->path());
        return false;
    }
    return true;
}

// Runs the tools as 'postgres' when the test runs as root, in the temporary
// folder, with a neutral locale; the child quits when the test process dies.
void PostgresServer::configure(QProcess &process) const
{
    process.setWorkingDirectory(m_folder->path());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    for (const char *name : {"PGDATA", "PGHOST", "PGPORT", "PGUSER", "PGDATABASE", "PGOPTIONS"}) {
        environment.remove(QString::fromLatin1(name));
    }
    process.setProcessEnvironment(environment);
    const bool switchUser = m_switchUser;
    const uid_t uid = m_uid;
    const gid_t gid = m_gid;
    process.setChildProcessModifier([switchUser, uid, gid] {
        if (switchUser && (::setgroups(0, nullptr) != 0 || ::setgid(gid) != 0 || ::setuid(uid) != 0)) {
            ::_exit(126);
        }
        // Set after the user switch, which would clear it.
        ::prctl(PR_SET_PDEATHSIG, SIGQUIT);
    });
}

QString PostgresServer::binary(const QString &name) const
{
    return m_binaries + QLatin1Char('/') + name;
}

QString PostgresServer::dataDirectory() const
{
    return m_folder->filePath(QStringLiteral("data"));
}

QString PostgresServer::socketDirectory() const
{
    return m_folder ? m_folder->path() : QString();
}

QString PostgresServer::logFile() const
{
    return m_folder->filePath(QStringLiteral("server.log"));
}

bool PostgresServer::runInitdb()
{
    QProcess initdb;
    configure(initdb);
    initdb.start(binary(QStringLiteral("initdb")),
        {QStringLiteral("-D"), dataDirectory(), QStringLiteral("-U"), userName(), QStringLiteral("-A"),
            QStringLiteral("trust"), QStringLiteral("-E"), QStringLiteral("UTF8"), QStringLiteral("--no-locale"),
            QStringLiteral("-N")});
    if (!initdb.waitForFinished(kToolTimeoutMs) || initdb.exitStatus() != QProcess::NormalExit
        || initdb.exitCode() != 0) {
        m_error = QStringLiteral("initdb failed (exit code %1, %2):\n%3")
                      .arg(initdb.exitCode())
                      .arg(initdb.errorString(), processOutput(initdb));
        return false;
    }
    return true;
}

bool PostgresServer::launch()
{
    m_port = freePort();
    if (m_port == 0) {
        m_error = QStringLiteral("no free port on 127.0.0.1");
        return false;
    }
    m_server = std::make_unique<QProcess>();
    configure(*m_server);
    m_server->setStandardOutputFile(logFile(), QIODevice::Append);
    m_server->setStandardErrorFile(logFile(), QIODevice::Append);
    m_server->start(binary(QStringLiteral("postgres")),
        {QStringLiteral("-D"), dataDirectory(), QStringLiteral("-p"), QString::number(m_port), QStringLiteral("-k"),
            socketDirectory(), QStringLiteral("-c"), QStringLiteral("listen_addresses=127.0.0.1"), QStringLiteral("-c"),
            QStringLiteral("fsync=off"), QStringLiteral("-c"), QStringLiteral("full_page_writes=off"),
            QStringLiteral("-c"), QStringLiteral("synchronous_commit=off"), QStringLiteral("-c"),
            QStringLiteral("max_connections=20"), QStringLiteral("-c"), QStringLiteral("shared_buffers=16MB"),
            QStringLiteral("-c"), QStringLiteral("logging_collector=off")});
    if (!m_server->waitForStarted(kToolTimeoutMs)) {
        m_error = QStringLiteral("cannot run postgres: ") + m_server->errorString();
        return false;
    }
    return true;
}

// Ready means a client can log in, not merely that the process runs.
bool PostgresServer::waitUntilReady()
{
    const QString probe = QStringLiteral("kelo-pg-probe-%1").arg(m_port);
    QDeadlineTimer deadline(kReadyTimeoutMs);
    bool ready = false;
    QString lastError;
    while (!ready && !deadline.hasExpired()) {
        if (m_server->state() == QProcess::NotRunning) {
            m_error = QStringLiteral("postgres exited with code %1").arg(m_server->exitCode());
            break;
        }
        {
            QSqlDatabase db = connect(probe);
            ready = db.isOpen();
            lastError = db.lastError().text();
            db.close();
        }
        QSqlDatabase::removeDatabase(probe);
        if (!ready) {
            QThread::msleep(100);
        }
    }
    if (!ready && m_error.isEmpty()) {
        m_error = QStringLiteral("postgres did not accept connections within %1 s: %2")
                      .arg(kReadyTimeoutMs / 1000)
                      .arg(lastError);
    }
    return ready;
}

bool PostgresServer::isRunning() const
{
    return m_server && m_server->state() != QProcess::NotRunning;
}

void PostgresServer::stop()
{
    if (!isRunning()) {
        m_server.reset();
        return;
    }
    ::kill(pid_t(m_server->processId()), SIGINT); // fast shutdown: ends the sessions, then quits
    if (!m_server->waitForFinished(30000)) {
        ::kill(pid_t(m_server->processId()), SIGQUIT);
        if (!m_server->waitForFinished(10000)) {
            m_server->kill();
            m_server->waitForFinished(5000);
        }
    }
    m_server.reset();
}

QSqlDatabase PostgresServer::connect(const QString &connectionName) const
{
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), connectionName);
    db.setHostName(QStringLiteral("127.0.0.1"));
    db.setPort(m_port);
    db.setUserName(userName());
    db.setDatabaseName(databaseName());
    db.setConnectOptions(QStringLiteral("connect_timeout=5"));
    db.open();
    return db;
}

QString PostgresServer::log() const
{
    if (!m_folder) {
        return QString();
    }
    QFile file(logFile());
    if (!file.open(QIODevice::ReadOnly)) {
        return QString();
    }
    return QString::fromLocal8Bit(file.readAll());
}
