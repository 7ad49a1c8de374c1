// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace harrowby {

/// Calls QCoreApplication::processEvents() during a long loop (input events too): call breathe() once per row. It
/// checks the clock and handles events at most every 16 milliseconds, so that a row does not cost a repaint. When the
/// events take long (the repaint of a long list), the next interval is four times as long as they took, 40 milliseconds
/// at most. One object serves the whole window, nested loops included. It may be destroyed by an event that it handles.
///
/// A loop that fills a long list queues its rows and passes a function that shows them: it is called right before the
/// events, so that handlers entered by them find the rows so far.
class Breather
{
public:
    Breather();
    /// Restarts the interval: events have just been handled elsewhere (a click, a box).
    void rest();
    void breathe()
    {
        breathe([] {});
    }
    template <typename Show>
    void breathe(Show &&show)
    {
        if (!isDue())
            return;
        const Breath breath(*this);
        show();
        breath.handleEvents();
    }

private:
    struct Pulse;

    class Breath
    {
    public:
        explicit Breath(const Breather &breather);
        void handleEvents() const;

    private:
        std::shared_ptr<Pulse> m_pulse;
        long long m_begun; ///< in milliseconds
    };

    [[nodiscard]] bool isDue() const;

    // Shared, as the events may destroy the window and this object before a breath ends.
    std::shared_ptr<Pulse> m_pulse;
};

} // namespace harrowby
