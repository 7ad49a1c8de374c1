// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"
#include "postgres/server_error.h"

#include <QByteArray>
#include <QList>
#include <QUuid>

#include <functional>
#include <optional>
#include <utility>

namespace harrowby {

/// A server that a session works on.
struct PgServer
{
    QByteArray host;         ///< as it was given; a folder for a socket; may be empty
    QByteArray address;      ///< numeric; empty for a socket, or where the host was given so
    QByteArray port;         ///< may be empty: libpq's own
    quint32 timeline = 0;    ///< grows by each promotion of a standby
    int version = 0;         ///< 150018
    bool isReadOnly = false; ///< takes no writes

    bool operator==(const PgServer &) const = default;
};

/// Addresses of a machine's name, or why there are none. Called on a thread of its own; may block.
struct PgAddresses
{
    QList<QByteArray> numeric;
    QString failure;
};
using PgResolver = std::function<PgAddresses(const QByteArray &name)>;

/// What a session connects to, and what for.
struct PgTarget
{
    enum class Use {
        Work, ///< look-ups and writes
        Walk, ///< long lists; a statement that nobody waits for any more ends by itself
    };

    /// As libpq takes it: "postgresql://…" or "service=NAME host=… …", completed by the service file, the environment
    /// and the password file. Several hosts: the one that takes writes, on the highest timeline.
    QByteArray conninfo = {};
    Use use = Use::Work;
    int schemaVersion = 0;               ///< of the store's schema at least; 0: there need be none
    std::optional<PgServer> server = {}; ///< that one alone, as PgSession::server() has told it
    QUuid store = {};                    ///< that one alone; null: whichever is there
    quint32 leastTimeline = 0;           ///< on an older one is a server that has been replaced
    QString stateFolder = {};            ///< PostgresOptions::stateFolder, for what leastTimeline was; empty: none
    QByteArray programName = "harrowby"; ///< as the server's lists name this connection
    PgResolver resolver = {};            ///< empty: the system's
};

namespace postgres {

using ConnectOptions = QList<std::pair<QByteArray, QByteArray>>;

/// One machine to be tried.
struct Host
{
    QByteArray name;    ///< as PgServer::host
    QByteArray address; ///< as PgServer::address
    QByteArray port;

    [[nodiscard]] bool needsLookup() const;
    /// For messages.
    [[nodiscard]] QString label() const;
};

/// Everything that libpq would connect with: what was given, the service's, the environment's, its own. Reads files,
/// asks no network.
[[nodiscard]] Result<ConnectOptions, PgError> connectOptions(const QByteArray &conninfo);
[[nodiscard]] QList<Host> hostsOf(const ConnectOptions &options);
/// The options for this host alone.
[[nodiscard]] ConnectOptions optionsFor(ConnectOptions options, const Host &host);
/// By the system's name service; blocks.
[[nodiscard]] PgAddresses resolve(const QByteArray &name);

} // namespace postgres
} // namespace harrowby
