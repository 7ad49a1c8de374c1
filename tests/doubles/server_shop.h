// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace harrowby {
class DbConnection;
}

namespace harrowby::test {

class PrivateCluster;

/// Whether this program's shops stand on a server: the environment variable HARROWBY_TEST_SERVER is set. The same tests
/// run so without being built again.
[[nodiscard]] bool shopsAreOnAServer();
/// Whether a path names a database on a server.
[[nodiscard]] bool isOnServer(const QString &path);
/// The product's connection to such a database.
[[nodiscard]] std::shared_ptr<DbConnection> connectToServer(const QString &path, const QString &location);

/// A connection of the tests' own to such a database. It understands what they say to SQLite: PRAGMA is passed over,
/// rowid is the row's identity, and a lock is refused at once.
class ServerSession
{
public:
    enum class Columns { All, First };

    explicit ServerSession(const QString &path);
    ~ServerSession();
    ServerSession(const ServerSession &) = delete;
    ServerSession &operator=(const ServerSession &) = delete;

    /// Runs statements; false when one failed, and then none is done that did not stand in a transaction of its own.
    bool run(const QString &statements);
    /// The rows of the last one, columns joined by "|", values as SQLite writes them; empty (nullopt) when one failed.
    [[nodiscard]] std::optional<QStringList> rows(const QString &select, Columns columns = Columns::All);
    /// What stands for a null in rows() from now on, in place of an empty text.
    void showNulls(const QString &text) { m_null = text; }
    /// Why the last call failed.
    [[nodiscard]] const QString &message() const { return m_message; }
    /// Whether it failed as a column takes no such value: of another kind, out of range, too long.
    [[nodiscard]] bool hasRefusedAValue() const;

private:
    struct Connection;
    std::unique_ptr<Connection> m_connection;
    QString m_message;
    QByteArray m_state; ///< SQLSTATE of the last call that failed
    QString m_null;
};

struct LentShop
{
    QString name; ///< of the database
    QString path;
    std::unique_ptr<ServerSession> session;
};

/// A shop's database on this program's private server, which is started with the first one: the six tables, nothing in
/// them.
class ServerShop
{
public:
    ServerShop();
    ~ServerShop();
    ServerShop(const ServerShop &) = delete;
    ServerShop &operator=(const ServerShop &) = delete;

    [[nodiscard]] const QString &path() const { return m_shop.path; }
    [[nodiscard]] ServerSession &session() const { return *m_shop.session; }

private:
    LentShop m_shop;
};

/// The private server of this program's shops, which is started when it is asked for first.
[[nodiscard]] PrivateCluster &serverOfShops();

/// Makes the shop's tables, functions, indexes and rights in a database of a running server, as harrowby-server does,
/// and the login "till" of a till. What a test adds to the schema is every till's.
void setUpShop(PrivateCluster &cluster, const QString &database);

/// As the server has it.
[[nodiscard]] QString inServersWords(const QString &statements);

} // namespace harrowby::test
