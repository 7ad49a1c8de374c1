// SPDX-License-Identifier: MIT
#include "postgres/session_actions.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace harrowby::postgres {

namespace {

using namespace Qt::StringLiterals;

/// For an answer, however little of a phase is left.
constexpr std::chrono::milliseconds leastTime{100};

Heard answerOf(const PgError &error)
{
    if (error.sqlState == arrivedBefore)
        return Heard::ArrivedBefore;
    switch (error.kind) {
    case PgError::Kind::Refused:
    case PgError::Kind::Full:
        return Heard::Refused;
    case PgError::Kind::LockTimedOut:
        return Heard::Locked;
    case PgError::Kind::Deadlock:
        return Heard::Collided;
    case PgError::Kind::NotConfirmed:
        return Heard::NotConfirmed;
    default:
        return error.mayBeDone ? Heard::Lost : Heard::NotTaken;
    }
}

PgError notConfirmedYet()
{
    return {PgError::Kind::NotConfirmed, "55000", u"The server has not confirmed yet what was sent before"_s, true};
}

} // namespace

SessionActions::SessionActions(PgSession &session, Connect connect) : m_session(session), m_connect(std::move(connect))
{
}

void SessionActions::enter(Phase phase)
{
    m_phase = phase;
    const bool wasGivenUp = std::exchange(m_isGivenUp, false);
    m_wasReached = false;
    switch (phase) {
    case Phase::Sending:
        m_deadline = QDeadlineTimer(m_patience.sending);
        break;
    case Phase::Resending:
        m_deadline = QDeadlineTimer(m_patience.resending);
        break;
    case Phase::Claiming:
        m_deadline = QDeadlineTimer(wasGivenUp ? m_patience.lastTry : m_patience.claiming);
        break;
    }
}

bool SessionActions::isOver()
{
    return m_isGivenUp || m_deadline.hasExpired();
}

Result<void, PgError> SessionActions::reach()
{
    if (std::exchange(m_wasReached, true) && !pauseBeforeNextTry(m_hook))
        m_isGivenUp = true;
    if (!m_session.isLost() && !m_session.hasEnded())
        return {};
    auto connected = m_connect();
    if (!connected)
        m_isGivenUp = m_isGivenUp || connected.error().kind == PgError::Kind::GivenUp;
    return connected;
}

void SessionActions::drop()
{
    m_session.close();
}

ActionAnswer SessionActions::act(const ActionNumber &action, const Write &write)
{
    const QByteArray text = "select " + actionCall("act", action) + ';' + write.condition + write.statement;
    if (!m_session.isInTransaction())
        return run(text);
    ActionAnswer answer = run(text + ";commit", true);
    endTransaction();
    return answer;
}

ActionAnswer SessionActions::confirm(const ActionNumber &action)
{
    endTransaction();
    return run("select " + actionCall("confirm_action", action) + "::int");
}

ActionAnswer SessionActions::claim(const ActionNumber &action)
{
    endTransaction(); // a claim that is taken back with a held read would be none
    return run("select " + actionCall("claim_action", action));
}

void SessionActions::endTransaction()
{
    m_session.rollBack(budget());
}

/// A lock that is waited for may be that of the first sending, which waits for its standby: no longer than is left. A
/// sending that is the only one has all of its time.
PgBudget SessionActions::budget() const
{
    PgBudget budget = m_budget;
    const std::chrono::milliseconds left = std::max(leastTime, std::chrono::milliseconds(m_deadline.remainingTime()));
    if (m_phase != Phase::Sending) {
        budget.lock = std::min(budget.lock, left);
        budget.lockIs = PgWaiting::Answer;
    }
    if (m_phase == Phase::Claiming)
        budget.answer = std::min(budget.answer, left);
    return budget;
}

/// The value is the first one of the last statement, when that is a figure.
ActionAnswer SessionActions::run(const QByteArray &statements, bool endsTransaction)
{
    const Result<PgResults, PgError> results = m_session.run(statements, budget());
    if (!results)
        return failed(results.error());
    const std::size_t behind = endsTransaction ? 2 : 1;
    if (results->size() < behind)
        return failed(m_session.refuseAnswer());
    ActionAnswer answer{Heard::Done, 0, {}};
    if (results->back().rowCount() > 0)
        answer.value = results->back().text(0, 0).toByteArray().toLongLong();
    answer.changed = results->at(results->size() - behind).affectedRows();
    return answer;
}

ActionAnswer SessionActions::failed(const PgError &error)
{
    m_isGivenUp = m_isGivenUp || error.kind == PgError::Kind::GivenUp;
    if (error.kind != PgError::Kind::LockTimedOut || m_phase == Phase::Sending)
        return {answerOf(error), 0, error};
    if (error.behind == 0) // that of the number: the first sending holds it
        return {Heard::Locked, 0, notConfirmedYet()};
    m_deadline = QDeadlineTimer(0); // another's, for all the time that was left for it
    return {Heard::Locked, 0, error};
}

} // namespace harrowby::postgres
