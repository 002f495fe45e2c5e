#pragma once

#include <QProcess>
#include <QSqlDatabase>
#include <QString>
#include <QTemporaryDir>

#include <memory>

/**
 * A throw-away PostgreSQL server for tests, built from the distribution's
 * binaries (the newest /usr/lib/postgresql/<version>/bin, or the folder that
 * the environment variable KELO_POSTGRES_BIN names).
 *
 * start() creates a cluster with initdb in a temporary folder, trusting
 * local connections for the user "kelo", and runs the server on a free port
 * of 127.0.0.1 and on a unix socket in that folder. The server is a child of
 * the test process and is told to quit if the test process dies, so a
 * crashed test leaves no server behind; stop() (also run by the destructor)
 * shuts it down and the folder goes away with the object.
 *
 * PostgreSQL refuses to run as root: run as root, the fixture runs initdb
 * and the server as the system user "postgres" and hands the folder to it.
 */
class PostgresServer
{
public:
    PostgresServer();
    ~PostgresServer();
    PostgresServer(const PostgresServer &) = delete;
    PostgresServer &operator=(const PostgresServer &) = delete;

    /// Creates the cluster and starts the server; false with errorString() when that fails.
    bool start();
    /// Shuts the server down (fast shutdown) and waits for it.
    void stop();
    bool isRunning() const;

    /// What went wrong in start(), with the tools' output.
    QString errorString() const { return m_error; }
    int port() const { return m_port; }
    QString socketDirectory() const;
    QString userName() const { return QStringLiteral("kelo"); }
    QString databaseName() const { return QStringLiteral("postgres"); }

    /// Adds (and opens) a QPSQL connection named `connectionName` to the server over TCP.
    QSqlDatabase connect(const QString &connectionName) const;

    /// The server's log so far.
    QString log() const;

private:
    static QString findBinaryFolder();
    static int freePort();
    bool prepareFolder();
    bool runInitdb();
    bool launch();
    bool waitUntilReady();
    void configure(QProcess &process) const;
    QString binary(const QString &name) const;
    QString dataDirectory() const;
    QString logFile() const;

    QString m_binaries;
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QProcess> m_server;
    int m_port = 0;
    bool m_switchUser = false;
    unsigned m_uid = 0;
    unsigned m_gid = 0;
    QString m_error;
};
