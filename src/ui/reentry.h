// SPDX-License-Identifier: MIT
// What keeps handlers apart that are entered while an earlier one lets the window breathe.
#pragma once

namespace harrowby {

/// Loads into one place. A later one wins: an earlier one that goes on afterwards leaves the place alone.
class LatestLoad
{
public:
    /// The loads must outlive it.
    class Turn
    {
    public:
        [[nodiscard]] bool isLatest() const { return m_number == m_loads.m_begun; }

    private:
        friend LatestLoad;
        explicit Turn(const LatestLoad &loads) : m_loads(loads), m_number(loads.m_begun) {}

        const LatestLoad &m_loads;
        unsigned m_number;
    };

    /// From now on every earlier turn is not the latest any more.
    Turn begin()
    {
        ++m_begun;
        return current();
    }
    /// The one that began last.
    [[nodiscard]] Turn current() const { return Turn(*this); }

private:
    unsigned m_begun = 0;
};

/// Work that a second press must not begin again while it runs.
class OneAtATime
{
public:
    class Turn
    {
    public:
        ~Turn() { m_running = false; }
        Turn(const Turn &) = delete;
        Turn &operator=(const Turn &) = delete;

    private:
        friend OneAtATime;
        explicit Turn(bool &running) : m_running(running) { m_running = true; }

        bool &m_running;
    };

    [[nodiscard]] bool isRunning() const { return m_running; }
    /// The work runs for as long as the turn lives.
    [[nodiscard]] Turn begin() { return Turn(m_running); }

private:
    bool m_running = false;
};

} // namespace harrowby
