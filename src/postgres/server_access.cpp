// SPDX-License-Identifier: MIT
#include "postgres/server_access.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <utility>
#include <vector>

namespace harrowby::postgres {

namespace {

using namespace Qt::StringLiterals;
using Kind = PgError::Kind;

} // namespace

bool mayPass(const PgError &error)
{
    switch (error.kind) {
    case Kind::CannotConnect:
    case Kind::Crowded:
    case Kind::Starting:
    case Kind::ReadOnly:
    case Kind::Lost:
    case Kind::TimedOut:
        return true;
    default:
        return false;
    }
}

ServerAccess::ServerAccess(PgTarget target, PgWaits waits, ActionTime &time) :
    m_target(std::move(target)), m_waits(std::move(waits)), m_time(time)
{
}

PgError ServerAccess::noTimeLeft() const
{
    if (!m_trouble)
        return {Kind::CannotConnect,
                {},
                u"the server did not answer before in the same action, and is not waited for again"_s,
                false};
    return {Kind::CannotConnect, m_trouble->sqlState, m_trouble->text + u" (not tried again in the same action)"_s,
            false};
}

Result<void, PgError> ServerAccess::reach()
{
    if (!m_session.isLost() && !m_session.hasEnded())
        return {};
    if (m_time.isOver())
        return Unexpected(noTimeLeft());
    return connect();
}

Result<void, PgError> ServerAccess::reachAnew()
{
    if (m_session.isIdle())
        m_session.close();
    return reach();
}

Result<void, PgError> ServerAccess::connect()
{
    auto connected = m_session.connect(m_target, m_waits);
    m_trouble = connected ? std::nullopt : std::optional(connected.error());
    if (!connected)
        return connected;
    ++m_sessionsMade;
    m_target.store = m_session.store();
    m_target.leastTimeline = std::max(m_target.leastTimeline, m_session.server().timeline);
    return connected;
}

PgBudget ServerAccess::budget() const
{
    return {m_waits.answer, m_time.lockLeft()};
}

PgTarget ServerAccess::targetBeside() const
{
    PgTarget target = m_target;
    target.use = PgTarget::Use::Walk;
    target.server = m_session.server();
    return target;
}

Result<PgResults, PgError> ServerAccess::read(const QByteArray &statements)
{
    return again<PgResults>([&]() -> Result<PgResults, PgError> {
        if (auto reached = reach(); !reached)
            return Unexpected(std::move(reached).error());
        return m_session.run(statements, budget());
    });
}

/// Whether another try may do better, and the action has time for it. Waits a little then.
bool ServerAccess::goesOnAfter(const PgError &error)
{
    if (error.kind == Kind::GivenUp)
        m_time.giveUp();
    if (!mayPass(error))
        return false;
    m_time.noteTrouble();
    if (m_time.isOver()) {
        m_time.giveUp(); // further statements of this action are not waited for in their turn
        return false;
    }
    if (!pauseBeforeNextTry(m_waits.hook))
        m_time.giveUp();
    return true;
}

} // namespace harrowby::postgres
