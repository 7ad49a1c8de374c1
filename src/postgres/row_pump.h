// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/row_batch.h"
#include "postgres/server_result.h"

#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <thread>
#include <vector>

struct pg_conn;

namespace harrowby::postgres {

/// Takes the rows of a SELECT from libpq on a thread of its own, ahead of whoever reads them: for a long list that
/// costs as much as reading them. As long as this object is there, the connection is its thread's.
///
/// It ends with the first result that is no row, and takes no more while many rows wait to be read.
class RowPump
{
public:
    /// Once a row has come, so that nothing is left to be sent. Null when there is no thread to be had; then nothing
    /// has been done.
    [[nodiscard]] static std::unique_ptr<RowPump> start(pg_conn *connection);
    /// Ends the thread at once. What it has taken and nobody has read is gone.
    ~RowPump();
    RowPump(const RowPump &) = delete;
    RowPump &operator=(const RowPump &) = delete;

    // For the thread that reads

    /// Readable when anything has come from the server, also a part of a row.
    [[nodiscard]] int descriptor() const { return m_arrived.descriptor; }
    /// Makes it unreadable. To be called before hasResult().
    void clear() const { m_arrived.clear(); }
    /// Whether there are rows, or their end.
    [[nodiscard]] bool hasResult();
    /// The next rows in place of those in `rows`. False at the end.
    [[nodiscard]] bool take(RowBatch &rows);
    /// At the end: the result that is no row, as libpq gave it. Empty when the thread has failed.
    [[nodiscard]] std::optional<PgResult> takeLast();

private:
    struct Signal
    {
        Signal();
        ~Signal();
        Signal(const Signal &) = delete;
        Signal &operator=(const Signal &) = delete;

        void raise() const;
        void clear() const;

        int descriptor;
    };

    explicit RowPump(pg_conn *connection) : m_connection(connection) {}

    void run(const std::stop_token &stop);
    /// False after the end.
    [[nodiscard]] bool takeResult(const std::stop_token &stop);
    void awaitInput();
    [[nodiscard]] bool isResultThere() const;
    void handOver();
    void awaitRoom(const std::stop_token &stop);
    void end(std::optional<PgResult> last);

    Signal m_arrived;
    Signal m_wake; ///< there is room, or it is to stop

    // The thread's
    pg_conn *m_connection;
    RowBatch m_batch;

    std::mutex m_mutex; ///< of those below
    std::vector<RowBatch> m_ready;
    std::vector<RowBatch> m_read; ///< their memory is used again
    std::optional<PgResult> m_last;
    bool m_isFull = false; ///< the thread waits
    bool m_isOver = false;

    std::jthread m_thread; ///< last, so that it is joined before the other members are destroyed
};

} // namespace harrowby::postgres
