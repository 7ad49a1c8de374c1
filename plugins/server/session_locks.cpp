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

/// What was held is taken again at once: as long as it is not, this program counts as dead. Where the store's session
/// has gone to, the locks go, too.
Result<void, PgError> SessionLocks::reach()
{
    const auto target = m_target();
    const bool isThere =
        !m_session.isLost() && !m_session.hasEnded() && (!target || target->server == m_session.server());
    if (isThere)
        return takeMissing();
    if (!target)
        return Unexpected(PgError{PgError::Kind::CannotConnect, {}, u"There is no connection to the server"_s, false});
    if (auto connected = m_session.connect(*target, m_waits); !connected)
        return connected;
    m_missing = m_held;
    auto taken = takeMissing();
    for (const std::int64_t number : std::as_const(m_missing))
        qCWarning(lcStore) << "The lock" << number << "is somebody else's at present";
    return taken;
}

/// The server may not know yet that the session is gone which had them.
Result<void, PgError> SessionLocks::takeMissing()
{
    const QList<std::int64_t> missing = m_missing.values();
    for (const std::int64_t number : missing) {
        const auto taken = tryLock(number);
        if (!taken)
            return Unexpected(taken.error());
        if (*taken)
            m_missing.remove(number);
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
    const bool isMissing = m_missing.remove(number);
    if (m_held.remove(number) && !isMissing && !m_session.isLost())
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
