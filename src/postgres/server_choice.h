// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/server_target.h"

#include <QByteArray>
#include <QList>
#include <QUuid>

#include <optional>

/// Which of several servers a store is on, and whether it can be on it. Pure; server_search.h asks the servers.
namespace harrowby::postgres {

/// What a server says about itself and the database.
struct ServerFacts
{
    PgServer server;
    QByteArray database;
    QByteArray collation; ///< of its order
    QByteArray letters;   ///< of what is a capital
    QByteArray encoding;
    int schemaVersion = 0;  ///< 0: no store is in it
    QUuid store = {};       ///< null: it did not tell
    QByteArray schemaState; ///< the server's five characters when it did not tell the version
};

/// The store to work on where none was before: that of the first server that takes writes. Null when none tells its
/// own.
[[nodiscard]] QUuid firstStore(const QList<ServerFacts> &servers);
/// Index of the server to work on: it has this store and takes writes, and no other one with it has been promoted after
/// it. A primary that has been replaced still takes writes, but is on an older timeline than its successor, and than a
/// standby of that. Empty when there is none.
[[nodiscard]] std::optional<qsizetype> chosenServer(const QList<ServerFacts> &servers, const QUuid &store,
                                                    quint32 leastTimeline);

/// Why a server of that version cannot be asked any further; empty when it can.
[[nodiscard]] std::optional<PgError> tooOld(const ServerFacts &facts);
/// Why no store can be there; empty when it can.
[[nodiscard]] std::optional<PgError> unfitness(const ServerFacts &facts, int wanted);

/// What one address of a host came to.
struct HostFailure
{
    QString label; ///< Host::label()
    PgError error;
};
/// Why nothing was chosen: what each of the hosts came to, in one line, and the kind that says most. Of a host's
/// several addresses that which says most.
[[nodiscard]] PgError nothingChosen(const QList<HostFailure> &failures);
/// Of one that has answered and was not chosen, while a server with this store was looked for.
[[nodiscard]] PgError notChosen(const ServerFacts &facts, const QString &label, const QUuid &store, int wanted);

} // namespace harrowby::postgres
