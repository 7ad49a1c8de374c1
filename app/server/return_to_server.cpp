// SPDX-License-Identifier: MIT
#include "app/server/return_to_server.h"

#include "app/records/server_engine.h"
#include "basic/steady_clock.h"

#include <utility>

namespace harrowby::app {

ReturnToServer::ReturnToServer(ServerStore &store, FindingOut::Clock clock) :
    m_store(store), m_clock(clock ? std::move(clock) : FindingOut::Clock(steadyNow)), m_findingOut(m_clock)
{
}

std::optional<bool> ReturnToServer::serverAnswers(const ServerWatch::State &state, bool isBack, bool isInDoubt)
{
    m_isToBeReached = m_isToBeReached || isBack;
    m_isToBeTold = m_isToBeTold || isBack;
    if (m_isToBeReached)
        reachAnew(isBack);
    if (m_store.isInAction())
        return {};
    if (m_isToBeReached)
        return false;
    const bool isBackNow = std::exchange(m_isToBeTold, false);
    if (m_findingOut.isDue(state, isBackNow, isInDoubt))
        (void)m_store.tryAgain();
    return isBackNow;
}

void ReturnToServer::reachAnew(bool atOnce)
{
    const auto now = m_clock();
    if (!atOnce && now < m_next)
        return;
    m_isToBeReached = m_store.reachAnew().has_value();
    m_next = now + FindingOut::rest;
}

} // namespace harrowby::app
