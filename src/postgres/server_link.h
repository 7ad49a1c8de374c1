// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"
#include "postgres/row_pump.h"
#include "postgres/server_error.h"
#include "postgres/server_result.h"
#include "postgres/server_waits.h"

#include <QByteArray>

#include <memory>
#include <optional>

struct pg_conn;

namespace harrowby::postgres {

/// libpq's connection, which is never waited for but through Waiter. What it is asked goes out and comes in piece by
/// piece; a result is taken only when it is there as a whole.
class ServerLink
{
public:
    ServerLink(pg_conn *connection, PgWaitHook hook);
    ~ServerLink();
    ServerLink(const ServerLink &) = delete;
    ServerLink &operator=(const ServerLink &) = delete;

    /// Not while rows are fetched ahead.
    [[nodiscard]] pg_conn *raw() const { return m_connection.get(); }
    [[nodiscard]] const PgWaitHook &hook() const { return m_hook; }
    [[nodiscard]] bool isLost() const;
    /// Closes the connection without a word to the server about what is under way.
    void close();
    [[nodiscard]] bool isInTransaction() const;
    [[nodiscard]] bool isIdle() const; ///< nothing is under way, no transaction either

    // Without waiting

    [[nodiscard]] bool send(const QByteArray &statements, bool rowByRow);
    /// What is to be waited for.
    [[nodiscard]] pollfd wanted() const;
    /// Sends and reads what can be.
    void pump();
    /// Whether take() has something at once.
    [[nodiscard]] bool hasResult() const;
    /// The rows that were fetched ahead, in place of those in `rows`; false when take() is to be asked.
    [[nodiscard]] bool takeRows(RowBatch &rows);
    /// The next result; null after the last one.
    [[nodiscard]] pg_result *take();
    /// Whether the server has closed the connection meanwhile. Only while nothing is under way.
    [[nodiscard]] bool hasEnded();
    /// Has a thread fetch the rows that still come of a SELECT, for takeRows(). The connection is taken for a good one
    /// meanwhile, with a statement under way.
    void fetchAhead();

    // With waiting; the session is closed when it was in vain.

    /// Until hasResult().
    [[nodiscard]] std::optional<PgError> await(std::chrono::milliseconds answer, Waiter &waiter);
    /// All results of statements that are sent together.
    [[nodiscard]] Result<PgResults, PgError> exchange(const QByteArray &statements, std::chrono::milliseconds answer,
                                                      PgWaiting what);
    /// The error of a result that failed; the connection is closed when it has ended.
    [[nodiscard]] PgError failureOf(const pg_result *result);
    /// Takes what still comes of a text whose results nobody wants.
    void drain(std::chrono::milliseconds answer);
    /// Cancels what is under way, and drains it.
    void cancel();

    /// Whether the server has said of a commit since it was asked last that no standby has confirmed it.
    [[nodiscard]] bool isUnconfirmed() const { return m_isUnconfirmed; }

private:
    struct Finish
    {
        void operator()(pg_conn *connection) const noexcept;
    };

    static void notice(void *link, const pg_result *result);
    [[nodiscard]] PgError gone(Waiter::End end);
    [[nodiscard]] Result<PgResults, PgError> collect(std::chrono::milliseconds answer, PgWaiting what);

    std::unique_ptr<pg_conn, Finish> m_connection;
    std::unique_ptr<RowPump> m_ahead; ///< null: nothing is fetched ahead. It uses m_connection, and calls notice()
    PgWaitHook m_hook;
    bool m_hasUnsent = false;
    bool m_isUnconfirmed = false;
};

} // namespace harrowby::postgres
