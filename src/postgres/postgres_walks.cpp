// SPDX-License-Identifier: MIT
#include "postgres/postgres_walks.h"

#include <utility>

namespace harrowby::postgres {

std::shared_ptr<PgSession> WalkSessions::take()
{
    if (m_state->lent == most)
        return nullptr;
    std::unique_ptr<PgSession> session;
    if (m_state->idle.empty()) {
        session = std::make_unique<PgSession>();
    } else {
        session = std::move(m_state->idle.back());
        m_state->idle.pop_back();
    }
    ++m_state->lent;
    return {session.release(), [state = m_state](PgSession *back) {
                --state->lent;
                state->idle.emplace_back(back);
            }};
}

} // namespace harrowby::postgres
