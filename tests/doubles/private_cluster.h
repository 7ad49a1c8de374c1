// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <chrono>
#include <memory>

class QProcess;
struct pg_conn;

namespace harrowby::test {

/// A PostgreSQL server of the test's own in a temporary folder: C locale, UTF-8, checksums, the empty database "shop",
/// the superuser "postgres"; everyone on this machine is let in without a password. It listens on a socket in its
/// folder and on one free port of 127.0.0.1. As root it runs as the user "postgres". It ends with the test, also with
/// one that is killed, and leaves nothing behind. What fails ends the test program with a message.
class PrivateCluster
{
public:
    enum class Durability {
        Memory, ///< nothing waits for the disk: an end by kill9() loses nothing, a power cut would
        Disk,   ///< as in a shop
    };

    /// Why this machine can have none, for QSKIP(); empty when it can.
    [[nodiscard]] static QString missing();

    /// Not started yet. `settings` are further lines of postgresql.conf ("max_connections = 5").
    explicit PrivateCluster(const QStringList &settings = {}, Durability durability = Durability::Memory);
    ~PrivateCluster();
    PrivateCluster(const PrivateCluster &) = delete;
    PrivateCluster &operator=(const PrivateCluster &) = delete;

    /// Starts it and returns when it takes connections; also after kill9() and shutDown(), on the same port.
    void start();
    /// Ends it in order; its connections are cut.
    void shutDown();
    /// SIGKILL to all of its processes at once; nothing when it has ended by itself.
    void kill9();
    /// SIGSTOP to all of its processes, and SIGCONT: a machine that hangs, and goes on. What connects meanwhile is
    /// accepted by the kernel and gets no answer.
    void stop();
    void cont();
    [[nodiscard]] bool isRunning() const { return m_server != nullptr; }

    /// A running copy of this running one, which streams from it, and whose confirmation each write from now on waits
    /// for.
    [[nodiscard]] std::unique_ptr<PrivateCluster> standby();
    /// Whether each write waits for a standby's confirmation.
    void demandStandby(bool demanded);
    /// Makes this standby a primary, which waits for no standby of its own. Since when it takes writes.
    std::chrono::steady_clock::time_point promote();
    /// Takes this one, which has ended in whatever way, back as the standby of `primary`; as after standby(), its
    /// writes wait for it.
    void follow(PrivateCluster &primary);

    /// How a client connects, in libpq's "key=value" form, through the socket or through 127.0.0.1.
    [[nodiscard]] QString conninfo(const QString &user = QStringLiteral("postgres"),
                                   const QString &database = QStringLiteral("shop")) const;
    [[nodiscard]] QString tcpConninfo(const QString &user = QStringLiteral("postgres"),
                                      const QString &database = QStringLiteral("shop")) const;
    [[nodiscard]] quint16 port() const { return m_port; }
    [[nodiscard]] QString socketFolder() const { return m_folder.path(); }
    [[nodiscard]] QString dataFolder() const { return m_folder.filePath(QStringLiteral("data")); }

    /// Runs statements as the superuser, on a connection that is kept; the rows of the last one, columns joined by "|",
    /// a null as empty text.
    QStringList sql(const QString &statements, const QString &database = QStringLiteral("shop"));
    /// As sql(), on a connection of its own; false when it failed.
    bool trySql(const QString &statements, const QString &database = QStringLiteral("shop"));
    /// Asks until the first value of the first row is `value`; a minute at most.
    void await(const QString &select, const QString &value);
    /// Sets a setting that needs no restart, and waits until it holds.
    void set(const QString &name, const QString &value);
    /// Replaces pg_hba.conf, and has it read. sql() needs "local all postgres trust" in it.
    void setAccess(const QStringList &lines);
    /// The server's log so far.
    [[nodiscard]] QString log() const;

private:
    struct StandbyOf
    {
        const PrivateCluster &primary;
    };
    explicit PrivateCluster(StandbyOf copied);

    [[nodiscard]] bool startOnce();
    [[nodiscard]] bool isReady() const;
    void reload();
    void awaitStandby(const PrivateCluster &standby);
    void disconnect();
    void removeSharedMemory() const;
    [[nodiscard]] pg_conn *connected(const QString &database);
    [[nodiscard]] QString logFile() const { return m_folder.filePath(QStringLiteral("log")); }

    QTemporaryDir m_folder;
    quint16 m_port = 0;
    std::unique_ptr<QProcess> m_server;
    pg_conn *m_connection = nullptr; ///< of sql()
    QString m_connectedTo;           ///< its database
    bool m_hasRun = false;
};

} // namespace harrowby::test
