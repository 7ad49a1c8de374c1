// SPDX-License-Identifier: MIT
#include "postgres/row_pump.h"

#include <libpq-fe.h>

#include <array>
#include <cstddef>
#include <new>
#include <system_error>
#include <utility>

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace harrowby::postgres {

namespace {

// So many at once are handed over; fewer when the server has said nothing for a moment.
constexpr std::size_t batchRows = 256;
constexpr std::size_t batchBytes = 128 * 1024;
constexpr int momentMs = 1;
/// No more are taken while so many wait.
constexpr std::size_t mostBatches = 16;

} // namespace

RowPump::Signal::Signal() : descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

RowPump::Signal::~Signal()
{
    if (descriptor >= 0)
        ::close(descriptor);
}

void RowPump::Signal::raise() const
{
    ::eventfd_write(descriptor, 1);
}

void RowPump::Signal::clear() const
{
    eventfd_t count = 0;
    ::eventfd_read(descriptor, &count);
}

std::unique_ptr<RowPump> RowPump::start(pg_conn *connection)
{
    std::unique_ptr<RowPump> pump(new RowPump(connection));
    if (pump->m_arrived.descriptor < 0 || pump->m_wake.descriptor < 0)
        return nullptr;
    try {
        pump->m_thread = std::jthread([work = pump.get()](const std::stop_token &stop) { work->run(stop); });
    } catch (const std::system_error &) {
        return nullptr;
    }
    pthread_setname_np(pump->m_thread.native_handle(), "harrowby-rows");
    return pump;
}

RowPump::~RowPump()
{
    m_thread.request_stop();
    m_wake.raise();
}

bool RowPump::hasResult()
{
    const std::lock_guard lock(m_mutex);
    return !m_ready.empty() || m_isOver;
}

bool RowPump::take(RowBatch &rows)
{
    const std::lock_guard lock(m_mutex);
    if (m_ready.empty())
        return false;
    m_read.push_back(std::exchange(rows, std::move(m_ready.front())));
    m_ready.erase(m_ready.begin());
    if (std::exchange(m_isFull, false))
        m_wake.raise();
    return true;
}

std::optional<PgResult> RowPump::takeLast()
{
    const std::lock_guard lock(m_mutex);
    return std::move(m_last);
}

void RowPump::run(const std::stop_token &stop)
{
    try {
        while (!stop.stop_requested()) {
            if (!isResultThere())
                awaitInput();
            else if (!takeResult(stop))
                return;
        }
    } catch (const std::bad_alloc &) {
        end({});
    }
}

bool RowPump::takeResult(const std::stop_token &stop)
{
    PgResult result(PQgetResult(m_connection));
    if (PQresultStatus(result.raw()) != PGRES_SINGLE_TUPLE) {
        handOver();
        end(std::move(result));
        return false;
    }
    m_batch.add(result.raw());
    if (m_batch.rowCount() >= batchRows || m_batch.byteCount() >= batchBytes) {
        handOver();
        awaitRoom(stop);
    }
    return true;
}

void RowPump::awaitInput()
{
    std::array<pollfd, 2> awaited{{{PQsocket(m_connection), POLLIN, 0}, {m_wake.descriptor, POLLIN, 0}}};
    const int ready = ::poll(awaited.data(), awaited.size(), m_batch.rowCount() == 0 ? -1 : momentMs);
    if (ready == 0)
        handOver();
    if (ready <= 0)
        return;
    if (awaited[1].revents != 0)
        m_wake.clear();
    if (awaited[0].revents == 0)
        return;
    PQconsumeInput(m_connection); // what fails here is the next result
    if (!isResultThere())
        m_arrived.raise();
}

bool RowPump::isResultThere() const
{
    return PQisBusy(m_connection) == 0 || PQstatus(m_connection) != CONNECTION_OK;
}

void RowPump::handOver()
{
    if (m_batch.rowCount() == 0)
        return;
    const std::lock_guard lock(m_mutex);
    m_ready.push_back(std::move(m_batch));
    m_batch = RowBatch();
    if (!m_read.empty()) {
        m_batch = std::move(m_read.back());
        m_read.pop_back();
    }
    m_batch.clear();
    if (m_ready.size() == 1) // else nobody waits
        m_arrived.raise();
}

/// Until the reader has taken some of what is ready, when that is much.
void RowPump::awaitRoom(const std::stop_token &stop)
{
    const auto isFull = [this] {
        const std::lock_guard lock(m_mutex);
        return m_isFull = m_ready.size() >= mostBatches;
    };
    while (!stop.stop_requested() && isFull()) {
        pollfd wake{m_wake.descriptor, POLLIN, 0};
        if (::poll(&wake, 1, -1) > 0)
            m_wake.clear();
    }
}

void RowPump::end(std::optional<PgResult> last)
{
    const std::lock_guard lock(m_mutex);
    m_last = std::move(last);
    m_isOver = true;
    m_arrived.raise();
}

} // namespace harrowby::postgres
