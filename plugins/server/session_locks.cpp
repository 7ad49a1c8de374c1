// SPDX-License-Identifier: MIT
#include "plugins/server/session_locks.h"

#include "basic/logging.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::server {

namespace {

using Holder = app::ServerStore::Holder;

} // namespace

SessionLocks::SessionLocks(Target target, PgWaits waits) : m_target(std::move(target)), m_waits(std::move(waits)) {}

/// What was held is taken again at once: as long as it is not, this program counts as dead.
Result<void, PgError> SessionLocks::reach()
{
    if (!m_session.isLost() && !m_session.hasEnded())
        return {};
    const auto target = m_target();
    if (!target)
        return Unexpected(PgError{PgError::Kind::CannotConnect, {}, u"There is no connection to the server"_s, false});
    if (auto connected = m_session.connect(*target, m_waits); !connected)
        return connected;
    for (const std::int64_t number : std::as_const(m_held)) {
        const auto taken = tryLock(number);
        if (!taken)
            return Unexpected(taken.error());
        if (!*taken)
            qCWarning(lcStore) << "Another program has taken the lock" << number << "meanwhile";
    }
    return {};
}

Result<PgResults, PgError> SessionLocks::run(const QByteArray &function, std::int64_t number)
{
    return m_session.run("select " + function + "(hashtextextended('run " +
                         QByteArray::number(static_cast<qlonglong>(number)) + "', 0))");
}

Result<bool, PgError> SessionLocks::tryLock(std::int64_t number)
{
    const auto results = run("pg_try_advisory_lock", number);
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
    return {};
}

void SessionLocks::release(std::int64_t number)
{
    if (m_held.remove(number) && !m_session.isLost())
        (void)run("pg_advisory_unlock", number);
}

/// A lock that can be had is nobody's; a session can take its own once more.
Holder SessionLocks::holderOf(std::int64_t number)
{
    if (!reach())
        return Holder::NotKnown;
    if (m_held.contains(number))
        return Holder::Somebody;
    const auto taken = tryLock(number);
    if (!taken)
        return Holder::NotKnown;
    if (!*taken)
        return Holder::Somebody;
    (void)run("pg_advisory_unlock", number);
    return Holder::Nobody;
}

void SessionLocks::keep()
{
    if (!m_held.isEmpty())
        (void)reach();
}

} // namespace harrowby::server
