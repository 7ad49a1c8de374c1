// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/postgres_session.h"

#include <memory>
#include <vector>

namespace harrowby::postgres {

/// The sessions over which lists are walked, each with one list at a time. A session is kept for the next list.
class WalkSessions
{
public:
    /// As many lists are walked at once.
    static constexpr int most = 3;

    WalkSessions() : m_state(std::make_shared<State>()) {}

    /// A session that is free, connected or not; it comes back by itself when the last one lets it go. Null when all
    /// are in use.
    [[nodiscard]] std::shared_ptr<PgSession> take();

private:
    struct State
    {
        std::vector<std::unique_ptr<PgSession>> idle;
        int lent = 0;
    };

    std::shared_ptr<State> m_state;
};

} // namespace harrowby::postgres
