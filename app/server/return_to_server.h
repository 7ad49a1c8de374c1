// SPDX-License-Identifier: MIT
#pragma once

#include "app/server/finding_out.h"
#include "app/server/server_watch.h"

#include <chrono>
#include <optional>

namespace harrowby::app {

class ServerStore;

/// What is done with a store each time that its server answers: once that is back it is reached anew, and what nobody
/// knows yet is looked for. An answer may come in the middle of an action, between two of its writes: what else the
/// program would do then waits for a later one.
class ReturnToServer
{
public:
    explicit ReturnToServer(ServerStore &store, FindingOut::Clock clock = {});

    /// See ServerWatch::answered. Whether the server is back, told once it has been reached; nothing where the action
    /// that is under way comes first.
    [[nodiscard]] std::optional<bool> serverAnswers(const ServerWatch::State &state, bool isBack, bool isInDoubt);

private:
    void reachAnew(bool atOnce);

    ServerStore &m_store;
    FindingOut::Clock m_clock;
    FindingOut m_findingOut;
    bool m_isToBeReached = false;
    bool m_isToBeTold = false;
    std::chrono::milliseconds m_next{0}; ///< when it is reached for again; a try may hold the window up
};

} // namespace harrowby::app
