// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/action_time.h"
#include "postgres/postgres_session.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace harrowby::postgres {

/// The one session of a till for look-ups and writes, connected again whenever it is needed and has broken, within the
/// time that an action has.
class ServerAccess
{
public:
    /// The time must outlive it. `waits.hook` is called in every wait.
    ServerAccess(PgTarget target, PgWaits waits, ActionTime &time);

    /// Makes the session; tried once. An older server than the last one is not taken, and from the first one on none
    /// with another store.
    [[nodiscard]] Result<void, PgError> connect();
    /// The same where there is no usable session and the action has time for it.
    [[nodiscard]] Result<void, PgError> reach();
    /// The same, with a new session also in the place of an idle one.
    [[nodiscard]] Result<void, PgError> reachAnew();
    /// What to say when it has not: what has cost the action its time.
    [[nodiscard]] PgError noTimeLeft() const;
    /// Runs statements that change nothing, and again on a new session when one breaks, until the action has no time
    /// left.
    [[nodiscard]] Result<PgResults, PgError> read(const QByteArray &statements);
    /// The same of anything that does no harm when it is done twice.
    template <typename T>
    [[nodiscard]] Result<T, PgError> again(const std::function<Result<T, PgError>()> &tryOnce)
    {
        m_time.beginStatement();
        for (;;) {
            auto result = tryOnce();
            noteLocks();
            if (result || !goesOnAfter(result.error()))
                return result;
        }
    }

    [[nodiscard]] PgSession &session() { return m_session; }
    /// Counts what the session has waited for others' locks to the action.
    void noteLocks() { m_time.spendLock(m_session.takeLockWait()); }
    /// How often the session has been made.
    [[nodiscard]] int sessionsMade() const { return m_sessionsMade; }
    /// The store that all of its sessions are on; null before the first one.
    [[nodiscard]] const QUuid &store() const { return m_target.store; }
    /// Of the next statement.
    [[nodiscard]] PgBudget budget() const;
    /// For a further session on the same server.
    [[nodiscard]] PgTarget targetBeside() const;
    [[nodiscard]] const PgWaits &waits() const { return m_waits; }
    [[nodiscard]] ActionTime &time() { return m_time; }

private:
    [[nodiscard]] bool goesOnAfter(const PgError &error);

    PgTarget m_target;
    PgWaits m_waits;
    ActionTime &m_time;
    PgSession m_session;
    int m_sessionsMade = 0;
    std::optional<PgError> m_trouble; ///< since the session was made, or could not be
};

/// Whether this error says that the session broke, or could not be made, and that another try may do better.
[[nodiscard]] bool mayPass(const PgError &error);

} // namespace harrowby::postgres
