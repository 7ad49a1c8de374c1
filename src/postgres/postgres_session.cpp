// SPDX-License-Identifier: MIT
#include "postgres/postgres_session.h"

#include "postgres/server_attempt.h"
#include "postgres/server_link.h"
#include "postgres/server_search.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

using std::chrono::milliseconds;
using Kind = PgError::Kind;

bool isPassing(Kind kind)
{
    return kind == Kind::LockTimedOut || kind == Kind::Deadlock;
}

/// With the server's limit for locks where it is not the session's.
QByteArray limited(const QByteArray &statements, milliseconds limit, milliseconds usual)
{
    if (limit == usual)
        return statements;
    return "set local lock_timeout = " + QByteArray::number(qint64{std::max<milliseconds::rep>(limit.count(), 1)}) +
           ';' + statements;
}

/// As it is without the statement in front of the text.
PgError withoutLimit(PgError error)
{
    --error.behind;
    return error;
}

} // namespace

PgSession::PgSession() = default;
PgSession::~PgSession()
{
    close();
}

PgSession::PgSession(PgSession &&) noexcept = default;
PgSession &PgSession::operator=(PgSession &&other) noexcept
{
    if (this == &other)
        return *this;
    close();
    m_waits = std::move(other.m_waits);
    m_server = std::move(other.m_server);
    m_store = other.m_store;
    m_lockLimit = other.m_lockLimit;
    m_lockWait = other.m_lockWait;
    m_link = std::move(other.m_link);
    return *this;
}

Result<void, PgError> PgSession::connect(const PgTarget &target, const PgWaits &waits)
{
    close();
    m_waits = waits;
    Result<postgres::FoundServer, PgError> found = postgres::findServer(target, waits);
    if (!found)
        return Unexpected(found.error());
    m_link = std::move(found->link);
    m_server = found->server;
    m_store = found->store;
    m_lockLimit = postgres::usualLockLimit(target.use, waits.answer);
    return {};
}

void PgSession::close()
{
    if (m_link)
        m_link->close();
    m_link.reset();
}

bool PgSession::isLost() const
{
    return !m_link || m_link->isLost();
}

bool PgSession::hasEnded()
{
    return !m_link || m_link->hasEnded();
}

const PgServer &PgSession::server() const
{
    return m_server;
}

bool PgSession::isIdle() const
{
    return m_link && m_link->isIdle();
}

bool PgSession::isInTransaction() const
{
    return m_link && m_link->isInTransaction();
}

PgBudget PgSession::usualBudget() const
{
    return {m_waits.answer, m_waits.lock};
}

/// Why nothing can be sent.
std::optional<PgError> PgSession::refusal(const QByteArray &statements)
{
    if (isLost())
        return PgError{Kind::Lost, {}, u"There is no connection to the server"_s};
    if (statements.contains('\0'))
        return PgError{Kind::Refused, {}, u"The statement holds a NUL"_s};
    if (!m_link->isIdle() && !m_link->isInTransaction())
        return PgError{Kind::Refused, {}, u"The rows of another statement are still being fetched"_s};
    if (m_link->hasEnded())
        return PgError{Kind::Lost, {}, u"The server has ended the connection"_s};
    return {};
}

Result<PgResults, PgError> PgSession::run(const QByteArray &statements, const PgBudget &budget)
{
    if (std::optional<PgError> error = refusal(statements))
        return Unexpected(*std::move(error));
    return runUntilFree(statements, budget);
}

void PgSession::rollBack(const PgBudget &budget)
{
    // Bare: one that has failed takes nothing else, no limit for locks either.
    if (isInTransaction() && !m_link->exchange("rollback", budget.answer, PgWaiting::Answer))
        close();
}

PgError PgSession::refuseAnswer()
{
    close();
    return {Kind::Lost, {}, u"The server has answered otherwise than it was asked"_s, true};
}

milliseconds PgSession::takeLockWait()
{
    return std::exchange(m_lockWait, milliseconds::zero());
}

Result<PgResults, PgError> PgSession::runUntilFree(const QByteArray &statements, const PgBudget &budget)
{
    const milliseconds longest = postgres::lockLimit(budget.answer);
    const bool isAlone = m_link->isIdle();
    const QDeadlineTimer lock(budget.lock);
    milliseconds limit = isAlone ? std::min(m_lockLimit, longest) : longest;
    for (PgWaiting what = PgWaiting::Answer;; limit = longest) {
        const milliseconds time = std::min(limit, milliseconds(lock.remainingTime()));
        const QByteArray text = limited(statements, time, m_lockLimit);
        QElapsedTimer took;
        took.start();
        Result<PgResults, PgError> results = m_link->exchange(text, budget.answer, what);
        const bool isLimited = text.size() > statements.size();
        if (!results && isLimited)
            results = Unexpected(withoutLimit(results.error()));
        if (!results && isPassing(results.error().kind))
            what = results.error().behind > 0 ? PgWaiting::Lock : budget.lockIs;
        if (what == PgWaiting::Lock)
            m_lockWait += milliseconds(took.elapsed());
        if (results && results->size() < (isLimited ? 2 : 1))
            return Unexpected(refuseAnswer());
        if (results && isLimited)
            results->erase(results->begin()); // of the limit
        if (results || !isAlone || isLost())
            return results;
        const bool isOver = !isPassing(results.error().kind) || lock.hasExpired();
        if (m_link->isInTransaction()) // that the text has begun
            (void)m_link->exchange("rollback", budget.answer, what);
        if (isOver || isLost())
            return results;
    }
}

Result<PgResults, PgError> PgSession::run(const QByteArray &statements)
{
    return run(statements, usualBudget());
}

Result<PgRows, PgError> PgSession::walk(const QByteArray &statements, const PgBudget &budget)
{
    if (std::optional<PgError> error = refusal(statements))
        return Unexpected(*std::move(error));
    const bool isAlone = m_link->isIdle();
    if (!m_link->send(statements, true))
        return Unexpected(PgError{Kind::Lost, {}, u"The connection to the server broke"_s});
    PgRows rows(m_link, budget.answer, isAlone);
    rows.fetch();
    if (rows.error())
        return Unexpected(*rows.error());
    rows.m_isAhead = rows.m_link != nullptr;
    rows.m_isDone = !rows.m_isAhead;
    return rows;
}

Result<PgRows, PgError> PgSession::walk(const QByteArray &statements)
{
    return walk(statements, usualBudget());
}

} // namespace harrowby
