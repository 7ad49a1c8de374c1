// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"
#include "app/records/store_records.h"
#include "basic/result.h"

#include <harrowby/db_connection.h>

#include <QString>
#include <QUuid>
#include <QtPlugin>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

/// A store on a server, as the program sees it. What talks to the server is a plugin of its own, so that nothing else
/// needs the server's library.
namespace harrowby::app {

/// Why a server's store cannot be opened.
struct ServerProblem
{
    enum class Kind {
        NoPackage,    ///< the plugin is not installed, or is another version's
        BadTarget,    ///< what was given to connect to is no such thing, or names a service that is not there
        NoServer,     ///< nobody answers in time, or the machine refuses the connection
        Denied,       ///< name, password or database are not let in, or not without TLS
        NotTrusted,   ///< TLS was not agreed upon: no certificate, a foreign one, or another machine's
        NotAStore,    ///< no server or no database that a store can be in, or another store
        SchemaTooOld, ///< a store, and older than this program
        SchemaTooNew, ///< a store, and this program is too old for it
        Crowded,      ///< as many are connected as the server takes
        Starting,     ///< it starts, ends, or is being recovered
        ReadOnly,     ///< all that can be reached take no writes
        GivenUp,      ///< by the person who waited
        Other,
    };
    Kind kind = Kind::Other;
    QString reason; ///< one line: the server's message, or what happened; never a password
    QString state;  ///< the server's five characters, when it has said any
};

/// How a server's store is used. All of it may stay as it is.
struct ServerOptions
{
    QString location;    ///< see DbConnection::location()
    QString stateFolder; ///< see PostgresOptions::stateFolder
    std::chrono::milliseconds connecting{2'000};
    std::chrono::milliseconds silence{5'000}; ///< of a server that has a statement
    std::chrono::milliseconds lock{10'000};   ///< others' locks, in one action of the user
    std::chrono::milliseconds rest{60'000};   ///< for the rest of an action whose first write has been sent
    /// Asked at each search of the till; see PostgresOptions::findsAnywhere.
    std::function<bool()> findsAnywhere = {};
    /// See DbConnection::setWaitHook(); called already while the store is being opened.
    DbConnection::WaitHook waitHook = {};
    /// See ServerStore::setResolvedHandler(); called already while the store is being opened.
    std::function<void(const QString &what, WriteOutcome known)> resolvedHandler = {};
};

/// Held until this object goes, or its program does.
class ServerLock
{
public:
    ServerLock() = default;
    virtual ~ServerLock() = default;
    ServerLock(const ServerLock &) = delete;
    ServerLock &operator=(const ServerLock &) = delete;
};

/// A server's store that is open, for one till or office, used on one thread.
class ServerStore
{
public:
    using ResolvedHandler = std::function<void(const QString &what, WriteOutcome known)>;
    /// An UPDATE, INSERT or DELETE of the component's that was done, and how many rows it has changed.
    using ChangeHandler = std::function<void(const QString &statement, std::int64_t rows)>;
    /// A SELECT of the component's that was read and has no row.
    using EmptyHandler = std::function<void(const QString &select)>;

    ServerStore() = default;
    virtual ~ServerStore() = default;
    ServerStore(const ServerStore &) = delete;
    ServerStore &operator=(const ServerStore &) = delete;

    /// The component's. Lives on when this object has gone.
    [[nodiscard]] virtual std::shared_ptr<DbConnection> connection() = 0;
    /// Records over the connection's own session: their writes and the component's are done in one order, each once.
    /// They keep the connection alive.
    [[nodiscard]] virtual std::unique_ptr<Records> records() = 0;

    /// Of the shop's store, the same on each of its servers.
    [[nodiscard]] virtual QUuid identity() const = 0;
    /// Whether the session was there when it was used last.
    [[nodiscard]] virtual bool isOpen() const = 0;
    /// Tries to connect when it is not, and to resolve what is unknown. Nothing when all is well.
    [[nodiscard]] virtual std::optional<ServerProblem> tryAgain() = 0;
    /// For when the server was gone: connects anew, also where the session does not know that it is dead; nobody tells
    /// it of a server that hangs or has lost its power. A transaction that is under way stays on its session. Takes the
    /// locks along. Nothing when all is well.
    [[nodiscard]] virtual std::optional<ServerProblem> reachAnew() = 0;
    /// Whether an action that has written is under way and has time left: its rest belongs to it. tryAgain() and
    /// reachAnew() are part of it then; otherwise they begin one.
    [[nodiscard]] virtual bool isInAction() const = 0;

    /// See PostgresConnection::setResolvedHandler(); also of writes of records().
    virtual void setResolvedHandler(ResolvedHandler handler) = 0;
    /// Of waits of the connection and of records().
    virtual void setWaitHook(DbConnection::WaitHook hook) = 0;
    /// Both are called in the middle of the till's work: they must not throw, enter an event loop, or use the store.
    virtual void setChangeHandler(ChangeHandler handler) = 0;
    virtual void setEmptyHandler(EmptyHandler handler) = 0;
    /// A new action of the user begins: its waits have their full time again. By itself it begins where the thread's
    /// outermost event loop waits.
    virtual void beginAction() = 0;

    enum class Holder {
        Nobody,
        Somebody,
        NotKnown,
    };
    /// Takes the lock of this number, or says why it cannot be had; waits for nobody. When the session that holds it
    /// breaks, the server gives it up, and holdersOf() takes it again if nobody else has.
    [[nodiscard]] virtual Result<std::unique_ptr<ServerLock>, QString> lock(std::int64_t number) = 0;
    /// Of all of these numbers, in their order; asked at once.
    [[nodiscard]] virtual QList<Holder> holdersOf(const QList<std::int64_t> &numbers) = 0;
};

/// What the plugin's root object implements.
class ServerEngine
{
public:
    virtual ~ServerEngine() = default;

    /// Connects and looks whether the database is one of a shop. `target` as libpq takes it.
    [[nodiscard]] virtual Result<std::unique_ptr<ServerStore>, ServerProblem> open(const QString &target,
                                                                                   const ServerOptions &options) = 0;
    /// See openStoreRecords(). Of the store of that identity alone, where one is given.
    [[nodiscard]] virtual Result<std::unique_ptr<StoreRecords>, ServerProblem>
    openRecords(const QString &target, Access access, std::function<bool()> goesOn, const QUuid &store) = 0;

    /// Why a server's table cannot hold these values (English, one line, begins with a small letter); nothing when it
    /// can.
    [[nodiscard]] virtual std::optional<QString> unstorable(const QString &table,
                                                            const DbAssignments &values) const = 0;
    /// The value as a column of a server's will hold it. Precondition: it is storable.
    [[nodiscard]] virtual RecordValue converted(const QString &table, const QString &column,
                                                const RecordValue &value) const = 0;
};

/// The package that brings the plugin.
inline constexpr char serverPackage[] = "harrowby-server-connection";

/// The plugin's engine, loaded at the first call; from any thread. Or why there is none, in words for a person, with
/// the package that is missing.
[[nodiscard]] Result<ServerEngine *, QString> serverEngine();

} // namespace harrowby::app

/// The interface identifier in the plugin's metadata; its number changes when something of the above does.
#define HARROWBY_SERVER_ENGINE_IID "harrowby.ServerEngine/1"

Q_DECLARE_INTERFACE(harrowby::app::ServerEngine, HARROWBY_SERVER_ENGINE_IID)
