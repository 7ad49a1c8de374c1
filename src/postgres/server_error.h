// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

struct pg_conn;
struct pg_result;

namespace harrowby {

/// Why the server did not do something, or why nobody knows whether it did.
struct PgError
{
    enum class Kind {
        // There is no session.
        CannotConnect, ///< nobody answers in time, or the machine refuses the connection
        BadTarget,     ///< what was given to connect to is no such thing, or names a service that is not there
        Denied,        ///< name, password or database are not let in, or not without TLS
        NotTrusted,    ///< TLS was not agreed upon: no certificate, a foreign one, or another machine's
        Crowded,       ///< as many are connected as the server takes
        Starting,      ///< it starts, ends, or is being recovered
        Unfit,         ///< no server or no database that a store can be in: version, locale, encoding, schema
        StoreTooOld,   ///< what the program needs of the store is not there yet
        StoreTooNew,   ///< this program is too old for it
        // The statement was not carried out. The session goes on.
        Refused,
        ReadOnly,     ///< the server takes no writes; or, when connecting, all that can be reached are such
        Full,         ///< its disk is full
        LockTimedOut, ///< another connection has held a lock for all of the time that this action had
        Deadlock,     ///< given up for another one, several times
        // The session is lost; what was under way may have been carried out.
        Lost,     ///< the connection broke, or the server ended it
        TimedOut, ///< the server said nothing
        GivenUp,  ///< the person who waited wanted no more
        // Carried out here. The session goes on.
        NotConfirmed, ///< but the server says that no standby has confirmed it
    };

    Kind kind = Kind::Refused;
    QByteArray sqlState = {}; ///< five characters when the server has said it, else empty
    QString text = {};        ///< one line to show: the server's message, or what happened
    bool mayBeDone = false;   ///< whether what was sent may have been carried out, now or later
    int behind = 0;           ///< of so many statements of the same text that had passed, and were taken back with it
};

namespace postgres {

/// Of a server's error: what its five characters mean.
[[nodiscard]] PgError::Kind kindOf(const QByteArray &sqlState);
/// Of a result that failed.
[[nodiscard]] PgError errorOf(const pg_result *result);
/// The same, of a server's error while a session is being made.
[[nodiscard]] PgError connectError(const pg_result *result);
/// What libpq says about a connection that could not be made; `duringTls` when it was about to be encrypted.
[[nodiscard]] PgError connectError(const QByteArray &message, bool duringTls);
/// What libpq says about a connection that has broken. `wasSent`: whether a statement had been sent.
[[nodiscard]] PgError lostError(const QByteArray &message, bool wasSent);
/// Whether a notice says that a commit was not confirmed by a standby, in whatever language.
[[nodiscard]] bool saysNotConfirmed(const pg_result *notice);
/// libpq's messages of several lines as one.
[[nodiscard]] QString oneLine(const QByteArray &message);

} // namespace postgres
} // namespace harrowby
