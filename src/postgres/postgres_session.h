// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"
#include "postgres/postgres_rows.h"
#include "postgres/server_error.h"
#include "postgres/server_result.h"
#include "postgres/server_target.h"
#include "postgres/server_waits.h"

#include <QByteArray>

#include <chrono>
#include <memory>
#include <optional>

namespace harrowby {

/// One connection to a PostgreSQL server, on which statements run one after the other. Each call returns when it is
/// done, and within its time whatever the server does: it never blocks in between for more than 50 ms without calling
/// the hook. Used on one thread at a time.
///
/// A session that is lost stays so; connect() makes a new one in its place.
class PgSession
{
public:
    PgSession();
    ~PgSession();
    PgSession(PgSession &&) noexcept;
    PgSession &operator=(PgSession &&) noexcept;

    /// Closes what is open, and connects. The session is then as a store needs it: UTF-8, numbers and dates in their
    /// usual form, the store's schema first, synchronous_commit as the server has it. A database that no store can be
    /// in is refused (PgError::Kind::Unfit).
    [[nodiscard]] Result<void, PgError> connect(const PgTarget &target, const PgWaits &waits);
    /// Closes the connection. What is under way is not cancelled: a write that waits for its standby goes on waiting.
    void close();
    /// Whether there is no usable connection: before connect(), after close(), and once it has broken or was given up.
    [[nodiscard]] bool isLost() const;
    /// Looks, without waiting, whether the server has ended the connection meanwhile.
    [[nodiscard]] bool hasEnded();
    [[nodiscard]] const PgServer &server() const;
    /// Connected, outside a transaction, and nothing of a statement is still to come.
    [[nodiscard]] bool isIdle() const;
    /// The identity of the store that is there; null when it was not told.
    [[nodiscard]] const QUuid &store() const { return m_store; }
    /// Within BEGIN and COMMIT, or failed and to be rolled back.
    [[nodiscard]] bool isInTransaction() const;

    /// Runs statements, sent together in one round trip: outside a transaction all or none of them is done. The time
    /// for others' locks is given by the server's own limit, in pieces shorter than the time for an answer: so a lock
    /// is never taken for a server that says nothing. What was refused for a lock or as a deadlock's victim is sent
    /// again until that time is over, when it began outside a transaction; the first piece is a short one, so that also
    /// a short wait is known for what it is.
    [[nodiscard]] Result<PgResults, PgError> run(const QByteArray &statements, const PgBudget &budget);
    [[nodiscard]] Result<PgResults, PgError> run(const QByteArray &statements); ///< with the waits of connect()
    /// Ends the transaction, if there is one, with nothing of it done. A session on which that fails is closed.
    void rollBack(const PgBudget &budget);
    /// Of an answer that does not fit what was run: the session is closed, and this is what to say.
    [[nodiscard]] PgError refuseAnswer();
    /// How long others' locks have been waited for since this was asked last, as far as the server has told of them.
    [[nodiscard]] std::chrono::milliseconds takeLockWait();

    /// Starts a SELECT, or several statements with the last of its rows in mind, whose rows are fetched one by one. The
    /// columns are there when it returns.
    [[nodiscard]] Result<PgRows, PgError> walk(const QByteArray &statements, const PgBudget &budget);
    [[nodiscard]] Result<PgRows, PgError> walk(const QByteArray &statements);

private:
    [[nodiscard]] PgBudget usualBudget() const;
    [[nodiscard]] Result<PgResults, PgError> runUntilFree(const QByteArray &statements, const PgBudget &budget);
    [[nodiscard]] std::optional<PgError> refusal(const QByteArray &statements);

    PgWaits m_waits;
    PgServer m_server;
    QUuid m_store;
    std::chrono::milliseconds m_lockLimit{0}; ///< the server's own, unless a text says otherwise
    std::chrono::milliseconds m_lockWait{0};
    std::shared_ptr<postgres::ServerLink> m_link; ///< null: none. Shared with the rows that are being fetched
};

} // namespace harrowby
