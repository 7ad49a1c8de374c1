// SPDX-License-Identifier: MIT
// For handlers that are entered while an earlier one handles events in its loop: which load is the latest, and what may
// not begin twice.
#pragma once

namespace harrowby {

/// The loads that fill one list or page. The latest wins: an earlier one that resumes afterwards writes nothing.
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

    /// Begins a load: every earlier turn is no longer the latest.
    Turn begin()
    {
        ++m_begun;
        return current();
    }
    /// Whether no later load has begun.
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

/// The boxes that are open: counted, as one may come up while another is.
class OpenBoxes
{
public:
    class Turn
    {
    public:
        ~Turn() { --m_open; }
        Turn(const Turn &) = delete;
        Turn &operator=(const Turn &) = delete;

    private:
        friend OpenBoxes;
        explicit Turn(int &open) : m_open(open) { ++m_open; }

        int &m_open;
    };

    [[nodiscard]] bool isOpen() const { return m_open > 0; }
    /// How many there have been.
    [[nodiscard]] unsigned shown() const { return m_shown; }
    /// One is open for as long as the turn lives.
    [[nodiscard]] Turn open()
    {
        ++m_shown;
        return Turn(m_open);
    }

private:
    int m_open = 0;
    unsigned m_shown = 0;
};

} // namespace harrowby
