// SPDX-License-Identifier: MIT
#include "app/server/finding_out.h"

#include "basic/steady_clock.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

FindingOut::FindingOut(Clock clock) : m_clock(clock ? std::move(clock) : Clock(steadyNow)) {}

bool FindingOut::isDue(const ServerWatch::State &state, bool isBack, bool isInDoubt)
{
    const bool isWaiting = state.protection == "waiting"_L1;
    m_isBack = m_isBack || isBack || (isWaiting && isInDoubt);
    if (isWaiting)
        return false;
    const auto now = m_clock();
    if (!m_isBack && (!isInDoubt || now < m_next))
        return false;
    m_isBack = false;
    m_next = now + rest;
    return true;
}

} // namespace harrowby::app
