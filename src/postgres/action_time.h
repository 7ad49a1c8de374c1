// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>

namespace harrowby::postgres {

struct ActionLimits
{
    std::chrono::milliseconds silence{5'000}; ///< of the server, before the first write
    std::chrono::milliseconds rest{60'000};   ///< after it, from the first trouble on
    std::chrono::milliseconds lock{10'000};
};

/// How long one action of the user may still wait for the server, however many statements it runs.
///
/// Before its first write has been sent it is cheap to end: one wait is as long as a silent server is borne with, and
/// once one has been in vain, those of the same action are none at all. After that write the rest of the action has a
/// time of its own, so that a failover does not cut it in two. Waits for others' locks have one time for all of it.
class ActionTime
{
public:
    using Milliseconds = std::chrono::milliseconds;
    /// A clock that only goes forward.
    using Clock = std::function<Milliseconds()>;

    explicit ActionTime(ActionLimits limits = {}, Clock clock = {});

    /// The user's next action.
    void begin();
    /// A statement is about to be run.
    void beginStatement();
    /// The first write of the action has been done, or may be there.
    void noteWrite() { m_hasWritten = true; }
    /// The server did not answer, or could not be reached.
    void noteTrouble();
    /// This action has waited in vain, or a person has had enough.
    void giveUp() { m_isGivenUp = true; }
    void spendLock(Milliseconds time);

    [[nodiscard]] bool hasWritten() const { return m_hasWritten; }
    /// It has written, and its rest still has time, which would be lost with a begin().
    [[nodiscard]] bool isUnderWay() const { return m_hasWritten && !isOver(); }
    /// How long the statement may still be tried; 0 when no more.
    [[nodiscard]] Milliseconds left() const;
    [[nodiscard]] bool isOver() const { return left() == Milliseconds::zero(); }
    [[nodiscard]] Milliseconds lockLeft() const { return m_lockLeft; }
    /// How long this statement has been run.
    [[nodiscard]] Milliseconds waited() const { return m_clock() - m_statementBegan; }

private:
    ActionLimits m_limits;
    Clock m_clock;
    bool m_hasWritten = false;
    bool m_isGivenUp = false;
    bool m_isInTrouble = false; ///< since the first write
    Milliseconds m_statementBegan{0};
    Milliseconds m_troubleBegan{0};
    Milliseconds m_lockLeft;
};

} // namespace harrowby::postgres
