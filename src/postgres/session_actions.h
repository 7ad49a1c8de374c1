// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/action_server.h"
#include "postgres/postgres_session.h"

#include <QDeadlineTimer>

#include <chrono>
#include <functional>

namespace harrowby::postgres {

/// How long one write is tried for, each part of it. What has begun ends by its own limits, a little later.
struct ActionPatience
{
    std::chrono::milliseconds sending{2000};    ///< nothing of it is under way: the server cannot be reached
    std::chrono::milliseconds resending{60000}; ///< it may be under way
    std::chrono::milliseconds claiming{7000};   ///< until it is told as unknown
    std::chrono::milliseconds lastTry{1500};    ///< the same after a person has had enough: one more try
};

/// The server of Actions over a session, which others may use in between.
class SessionActions final : public ActionServer
{
public:
    /// Connects the session, to the right one of the servers; calls the session's hook while it waits.
    using Connect = std::function<Result<void, PgError>()>;

    SessionActions(PgSession &session, Connect connect);

    /// For the writes to come. `budget` is that of one sending, `hook` of the pauses between two.
    void setPatience(const ActionPatience &patience) { m_patience = patience; }
    void setBudget(const PgBudget &budget) { m_budget = budget; }
    void setHook(PgWaitHook hook) { m_hook = std::move(hook); }
    /// A person has had enough of a write that was not sent by this.
    void giveUp() { m_isGivenUp = true; }
    /// What is waited for at present. In Phase::Claiming nothing is left to be given up.
    [[nodiscard]] Phase phase() const { return m_phase; }

    void enter(Phase phase) override;
    [[nodiscard]] bool isOver() override;
    [[nodiscard]] Result<void, PgError> reach() override;
    void drop() override;
    /// Within a transaction of the session (a held read), the first sending ends it.
    [[nodiscard]] ActionAnswer act(const ActionNumber &action, const Write &write) override;
    [[nodiscard]] ActionAnswer confirm(const ActionNumber &action) override;
    [[nodiscard]] ActionAnswer claim(const ActionNumber &action) override;

private:
    [[nodiscard]] PgBudget budget() const;
    void endTransaction();
    [[nodiscard]] ActionAnswer run(const QByteArray &statements, bool endsTransaction = false);
    [[nodiscard]] ActionAnswer failed(const PgError &error);

    PgSession &m_session;
    Connect m_connect;
    ActionPatience m_patience;
    PgBudget m_budget;
    PgWaitHook m_hook;
    Phase m_phase = Phase::Sending;
    QDeadlineTimer m_deadline;
    bool m_isGivenUp = false;
    bool m_wasReached = false; ///< in this phase, or tried in vain
};

} // namespace harrowby::postgres
