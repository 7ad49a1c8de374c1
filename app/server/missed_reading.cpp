// SPDX-License-Identifier: MIT
#include "app/server/missed_reading.h"

#include <QString>

#include <array>
#include <chrono>

namespace harrowby::app {

namespace {

constexpr std::chrono::seconds restAfterFailure{15};

/// By the class of its code: not reached, no room, ended or given up, takes no writes. Everything else was refused, and
/// would be again.
bool isForWantOfTheServer(const DbFailure &failure)
{
    constexpr std::array states{QLatin1StringView("08"), QLatin1StringView("25006"), QLatin1StringView("53"),
                                QLatin1StringView("57")};
    for (const QLatin1StringView state : states) {
        if (failure.engineState.startsWith(state))
            return true;
    }
    return false;
}

} // namespace

void MissedReading::note(const DbFailure &failure)
{
    if (failure.kind == DbFailure::Kind::Read && isForWantOfTheServer(failure))
        m_isMissing = true;
}

void MissedReading::serverAnswers(bool isBack)
{
    if (!m_isMissing || (!isBack && !m_rest.hasExpired()))
        return;
    m_isMissing = false; // note() may set it again
    if (!m_readAgain())
        m_isMissing = true;
    else if (m_isMissing)
        m_rest.setRemainingTime(restAfterFailure);
}

} // namespace harrowby::app
