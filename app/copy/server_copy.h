// SPDX-License-Identifier: MIT
#pragma once

#include "app/copy/store_copy.h"

#include <QHash>
#include <QStringList>

#include <functional>
#include <optional>

namespace harrowby::app {

enum class OwnName {
    Counted,
    PassedOver, ///< where this program has several sessions under its name
};
/// Who else has a server's store open: the names by which programs of ours have logged in, sorted.
[[nodiscard]] Result<QStringList, CopyFailure> serverUsers(Records &server, OwnName own = OwnName::Counted);
/// The same, until nobody is left or a second is over: a program that has just closed the store is seen for a moment.
[[nodiscard]] Result<QStringList, CopyFailure> serverUsersWhoStay(Records &server);

/// What becomes of the rows that a server's store holds.
enum class ServerRows {
    MustBeNone, ///< else nothing is copied
    Replace,    ///< they go, but for those of tables that are only ever added to
};

/// Whether this program has logged in as one who may do that to the server's store; else why not.
[[nodiscard]] std::optional<CopyFailure> unlessAllowed(Records &server, ServerRows before);

/// How many rows a server's tables have, and the highest identity of each: a sale adds some. By table.
using StoreTrace = QHash<QString, QStringList>;
[[nodiscard]] Result<StoreTrace, CopyFailure> traceOf(Records &server);
/// Nothing when the server's store still has this trace; else what has been written to meanwhile, for a person.
[[nodiscard]] std::optional<CopyFailure> unlessUnwritten(Records &server, const StoreTrace &trace);

/// Who has it open, and what to do, for a person. `what` needs the store for itself: "a restore".
[[nodiscard]] QString serverInUse(const QStringList &users, const QString &what);

struct ServerCopy
{
    ServerRows before = ServerRows::MustBeNone;
    QString what; ///< needs the store for itself: "a restore"
    /// Of the store as it was kept: once nobody else can write it is looked whether it is the same still.
    std::optional<StoreTrace> kept = {};
    /// Run when all is written and compared, to write what belongs to it; why it cannot be. May be empty.
    std::function<std::optional<CopyFailure>(Records &server)> more = {};
};

/// Copies a whole store into a server's, in one transaction of the server's, or nothing. `server` is over a session
/// that runs nothing else. The rows that the server's holds then, by table.
[[nodiscard]] Result<QHash<QString, std::int64_t>, CopyFailure> copyIntoServer(StoreCopy &copy, Records &server,
                                                                               const ServerCopy &how);

} // namespace harrowby::app
