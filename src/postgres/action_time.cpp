// SPDX-License-Identifier: MIT
#include "postgres/action_time.h"

#include "basic/steady_clock.h"

#include <algorithm>
#include <utility>

namespace harrowby::postgres {

ActionTime::ActionTime(ActionLimits limits, Clock clock) :
    m_limits(limits), m_clock(clock ? std::move(clock) : Clock(steadyNow)), m_lockLeft(limits.lock)
{
    begin();
}

void ActionTime::begin()
{
    m_hasWritten = false;
    m_isGivenUp = false;
    m_isInTrouble = false;
    m_lockLeft = m_limits.lock;
    beginStatement();
}

void ActionTime::beginStatement()
{
    m_statementBegan = m_clock();
}

void ActionTime::noteTrouble()
{
    if (m_hasWritten && !std::exchange(m_isInTrouble, true))
        m_troubleBegan = m_clock();
}

void ActionTime::spendLock(Milliseconds time)
{
    m_lockLeft = std::max(m_lockLeft - time, Milliseconds::zero());
}

ActionTime::Milliseconds ActionTime::left() const
{
    if (m_isGivenUp)
        return Milliseconds::zero();
    Milliseconds end = m_statementBegan + m_limits.silence;
    if (m_hasWritten)
        end = m_isInTrouble ? m_troubleBegan + m_limits.rest : m_clock() + m_limits.rest;
    return std::max(end - m_clock(), Milliseconds::zero());
}

} // namespace harrowby::postgres
