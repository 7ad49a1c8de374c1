// SPDX-License-Identifier: MIT
#include "postgres/server_link.h"

#include "basic/logging.h"
#include "postgres/aside.h"

#include <libpq-fe.h>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::postgres {

namespace {

/// How long a statement that nobody wants any more may hold up the next one.
constexpr std::chrono::milliseconds cancelTime{1000};

/// PQcancel() makes a connection of its own, and blocks for as long as the server says nothing.
class CancelAside
{
public:
    explicit CancelAside(PGconn *connection) :
        m_done([handle = std::shared_ptr<PGcancel>(PQgetCancel(connection), &PQfreeCancel)] {
            std::array<char, 256> reason{};
            return handle && PQcancel(handle.get(), reason.data(), static_cast<int>(reason.size())) != 0;
        })
    {
    }

    /// Whether it has gone out in time. Before that nothing may be sent, as it would meet the next statement.
    [[nodiscard]] bool wentOut(Waiter &waiter, const QDeadlineTimer &deadline) const
    {
        pollfd done{m_done.descriptor(), POLLIN, 0};
        return waiter.wait(done, deadline) == Waiter::End::Ready && m_done.result().value_or(false);
    }

private:
    Aside<bool> m_done;
};

bool isGood(ExecStatusType status)
{
    return status == PGRES_TUPLES_OK || status == PGRES_SINGLE_TUPLE || status == PGRES_COMMAND_OK ||
           status == PGRES_EMPTY_QUERY;
}

bool isCopy(ExecStatusType status)
{
    return status == PGRES_COPY_IN || status == PGRES_COPY_OUT || status == PGRES_COPY_BOTH;
}

} // namespace

void ServerLink::Finish::operator()(pg_conn *connection) const noexcept
{
    PQfinish(connection);
}

ServerLink::ServerLink(pg_conn *connection, PgWaitHook hook) : m_connection(connection), m_hook(std::move(hook))
{
    PQsetErrorVerbosity(connection, PQERRORS_VERBOSE); // connectError() reads it
    PQsetNoticeReceiver(connection, &ServerLink::notice, this);
}

ServerLink::~ServerLink() = default;

bool ServerLink::isLost() const
{
    return !m_ahead && PQstatus(raw()) != CONNECTION_OK;
}

void ServerLink::close()
{
    m_ahead.reset();
    m_connection.reset();
}

bool ServerLink::isInTransaction() const
{
    if (m_ahead)
        return false;
    const PGTransactionStatusType status = PQtransactionStatus(raw());
    return status == PQTRANS_INTRANS || status == PQTRANS_INERROR;
}

bool ServerLink::isIdle() const
{
    return !m_ahead && PQtransactionStatus(raw()) == PQTRANS_IDLE;
}

bool ServerLink::send(const QByteArray &statements, bool rowByRow)
{
    m_isUnconfirmed = false;
    if (PQsetnonblocking(raw(), 1) != 0 || PQsendQuery(raw(), statements.constData()) == 0)
        return false;
    if (rowByRow)
        PQsetSingleRowMode(raw());
    m_hasUnsent = PQflush(raw()) > 0;
    return true;
}

pollfd ServerLink::wanted() const
{
    if (m_ahead)
        return {m_ahead->descriptor(), POLLIN, 0};
    return {PQsocket(raw()), static_cast<short>(m_hasUnsent ? POLLIN | POLLOUT : POLLIN), 0};
}

void ServerLink::pump()
{
    if (m_ahead) {
        m_ahead->clear();
        return;
    }
    // What fails here is the next result.
    PQconsumeInput(raw());
    if (m_hasUnsent)
        m_hasUnsent = PQflush(raw()) > 0;
}

bool ServerLink::hasResult() const
{
    if (m_ahead)
        return m_ahead->hasResult();
    return PQisBusy(raw()) == 0 || isLost(); // of a connection that has broken, its error
}

pg_result *ServerLink::take()
{
    if (!m_ahead)
        return PQgetResult(raw());
    std::optional<PgResult> last = m_ahead->takeLast();
    m_ahead.reset();
    if (!last)
        close();
    return last ? last->release() : nullptr;
}

bool ServerLink::takeRows(RowBatch &rows)
{
    return m_ahead && m_ahead->take(rows);
}

bool ServerLink::hasEnded()
{
    if (m_ahead)
        return false;
    // The server's last words come before the end, which is readable for ever.
    for (pollfd socket{PQsocket(raw()), POLLIN, 0}; !isLost() && ::poll(&socket, 1, 0) > 0;)
        PQconsumeInput(raw());
    return isLost();
}

void ServerLink::fetchAhead()
{
    if (!m_ahead && !isLost())
        m_ahead = RowPump::start(raw());
}

std::optional<PgError> ServerLink::await(std::chrono::milliseconds answer, Waiter &waiter)
{
    QDeadlineTimer deadline(answer);
    while (!hasResult()) {
        pollfd socket = wanted();
        const Waiter::End end = waiter.wait(socket, deadline);
        if (end != Waiter::End::Ready)
            return gone(end);
        pump();
        if ((socket.revents & POLLIN) != 0)
            deadline.setRemainingTime(answer);
    }
    return {};
}

PgError ServerLink::gone(Waiter::End end)
{
    close();
    if (end == Waiter::End::GivenUp)
        return {PgError::Kind::GivenUp, {}, u"Given up"_s, true};
    return {PgError::Kind::TimedOut, {}, u"The server says nothing"_s, true};
}

Result<PgResults, PgError> ServerLink::exchange(const QByteArray &statements, std::chrono::milliseconds answer,
                                                PgWaiting what)
{
    if (!send(statements, false)) {
        PgError error = lostError(PQerrorMessage(raw()), false);
        close();
        return Unexpected(std::move(error));
    }
    return collect(answer, what);
}

Result<PgResults, PgError> ServerLink::collect(std::chrono::milliseconds answer, PgWaiting what)
{
    Waiter waiter(m_hook, what);
    PgResults results;
    std::optional<PgError> error;
    for (;;) {
        if (std::optional<PgError> failure = await(answer, waiter))
            return Unexpected(*std::move(failure));
        pg_result *raw = take();
        if (!raw)
            break;
        results.emplace_back(raw);
        if (!error && !isGood(PQresultStatus(raw))) {
            error = failureOf(raw);
            error->behind = static_cast<int>(results.size()) - 1;
        }
    }
    if (!error && m_isUnconfirmed)
        error = PgError{PgError::Kind::NotConfirmed, {}, u"No standby has confirmed it"_s, true};
    if (error)
        return Unexpected(*std::move(error));
    return results;
}

PgError ServerLink::failureOf(const pg_result *result)
{
    const ExecStatusType status = PQresultStatus(result);
    PgError error = errorOf(result);
    if (isCopy(status))
        error = {PgError::Kind::Lost, {}, u"A COPY was sent where none is understood"_s, true};
    if (error.kind == PgError::Kind::Lost)
        close();
    return error;
}

void ServerLink::drain(std::chrono::milliseconds answer)
{
    Waiter waiter(m_hook, PgWaiting::Answer);
    while (!await(answer, waiter)) {
        pg_result *raw = take();
        if (!raw)
            return;
        const PgResult rest(raw);
        if (isCopy(PQresultStatus(raw)))
            close(); // it would say so for ever
    }
}

void ServerLink::cancel()
{
    m_ahead.reset();
    const CancelAside sent(raw());
    Waiter waiter(m_hook, PgWaiting::Answer);
    const QDeadlineTimer deadline(cancelTime);
    if (!sent.wentOut(waiter, deadline)) {
        close();
        return;
    }
    drain(std::chrono::milliseconds(deadline.remainingTime())); // rows that had come already
}

void ServerLink::notice(void *link, const pg_result *result)
{
    if (saysNotConfirmed(result))
        static_cast<ServerLink *>(link)->m_isUnconfirmed = true;
    qCInfo(lcStore, "The server says: %s", PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY));
}

} // namespace harrowby::postgres
