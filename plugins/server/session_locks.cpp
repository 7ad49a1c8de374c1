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

/// For each number whether somebody holds its lock. The server's list has a lock's key in two halves.
QByteArray lookText(const QList<std::int64_t> &numbers)
{
    QByteArrayList asked;
    for (const std::int64_t number : numbers)
        asked << QByteArray::number(static_cast<qlonglong>(number));
    return "with held as materialized (select distinct (classid::bigint << 32) | objid::bigint as key from pg_locks "
           "where locktype = 'advisory' and objsubid = 1 and granted "
           "and database = (select oid from pg_database where datname = current_database())) "
           "select held.key is not null from unnest('{" +
           asked.join(',') +
           "}'::bigint[]) with ordinality as asked (number, place) "
           "left join held on held.key = hashtextextended('run ' || number, 0) order by place";
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

/// Looks once, and takes nothing: who lives may be about to take it again.
QList<Holder> SessionLocks::holdersOf(const QList<std::int64_t> &numbers)
{
    QList<Holder> holders(numbers.size(), Holder::NotKnown);
    if (!reach() || numbers.isEmpty())
        return holders;
    const auto results = m_session.run(lookText(numbers));
    if (!results || results->back().rowCount() != numbers.size())
        return holders;
    for (int row = 0; row < results->back().rowCount(); ++row) {
        const bool isHeld = m_held.contains(numbers.at(row)) || results->back().isTrue(row, 0);
        holders[row] = isHeld ? Holder::Somebody : Holder::Nobody;
    }
    return holders;
}

void SessionLocks::keep()
{
    if (!m_held.isEmpty())
        (void)reach();
}

} // namespace harrowby::server
