// SPDX-License-Identifier: MIT
#include "plugins/server/session_locks.h"

#include "basic/logging.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::server {

namespace {

using Holder = app::ServerStore::Holder;

QByteArray keyOf(std::int64_t number)
{
    return "hashtextextended('run " + QByteArray::number(static_cast<qlonglong>(number)) + "', 0)";
}

} // namespace

SessionLocks::SessionLocks(WhereNow whereNow, PgWaits waits) :
    m_whereNow(std::move(whereNow)), m_waits(std::move(waits))
{
}

/// A session that nothing is sent over does not notice for minutes that its server is gone; so it is made anew whenever
/// the store's own was.
Result<void, PgError> SessionLocks::reach()
{
    const auto place = m_whereNow();
    const bool isGone = m_session.isLost() || m_session.hasEnded();
    if (isGone && !place)
        return Unexpected(PgError{PgError::Kind::CannotConnect, {}, u"There is no connection to the server"_s, false});
    if (isGone || (place && place->session != m_beside)) {
        m_taken.clear();
        if (auto connected = m_session.connect(place->target, m_waits); !connected)
            return connected;
        m_beside = place->session;
    }
    return takeMissing();
}

/// As long as one is missing, this program counts as dead. It cannot be had while the server has not noticed yet that
/// the session before this one is gone.
Result<void, PgError> SessionLocks::takeMissing()
{
    const QSet<std::int64_t> missing = m_held - m_taken;
    for (const std::int64_t number : missing) {
        const auto taken = tryLock(number);
        if (!taken)
            return Unexpected(taken.error());
        if (*taken)
            m_taken << number;
        else
            qCDebug(lcStore) << "Another session has the lock" << number << "still";
    }
    return {};
}

Result<bool, PgError> SessionLocks::tryLock(std::int64_t number)
{
    const auto results = m_session.run("select pg_try_advisory_lock(" + keyOf(number) + ")");
    if (!results)
        return Unexpected(results.error());
    return results->back().isTrue(0, 0);
}

Result<void, QString> SessionLocks::take(std::int64_t number)
{
    if (const auto reached = reach(); !reached)
        return Unexpected(reached.error().text);
    const auto taken = tryLock(number);
    if (!taken)
        return Unexpected(taken.error().text);
    if (!*taken)
        return Unexpected(u"another program has it"_s);
    m_held << number;
    m_taken << number;
    return {};
}

void SessionLocks::release(std::int64_t number)
{
    m_held.remove(number);
    if (m_taken.remove(number) && !m_session.isLost())
        (void)m_session.run("select pg_advisory_unlock(" + keyOf(number) + ")");
}

/// Looks, and takes nothing: who lives may be about to take it again.
Holder SessionLocks::holderOf(std::int64_t number)
{
    if (!reach())
        return Holder::NotKnown;
    if (m_held.contains(number))
        return Holder::Somebody;
    const auto results =
        m_session.run("select exists (select 1 from pg_locks where locktype = 'advisory' and granted "
                      "and database = (select oid from pg_database where datname = current_database()) "
                      "and classid::bigint << 32 | objid::bigint = " +
                      keyOf(number) + " and objsubid = 1)");
    if (!results)
        return Holder::NotKnown;
    return results->back().isTrue(0, 0) ? Holder::Somebody : Holder::Nobody;
}

void SessionLocks::keep()
{
    if (!m_held.isEmpty())
        (void)reach();
}

} // namespace harrowby::server
