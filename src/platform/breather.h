// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace harrowby {

/// Lets the window breathe during a long loop: call breathe() once per row. It handles pending events (clicks
/// and keys too), but looks at the clock first and does so at most every 16 milliseconds, so a row does not cost a
/// repaint. Where the events take long, as the repaint of a long list does, it rests four times as long as they took,
/// so that most of the time stays with the loop; 40 milliseconds at most. One object serves the whole window,
/// nested loops included. It may be destroyed by an event that it handles.
///
/// A loop that fills a list by the hundred thousand keeps its rows back and hands a function that shows them: it
/// runs right before the events, so whoever is entered by one of them finds the list as far as it has come.
class Breather
{
public:
    Breather();
    /// Tells that events have just been handled without it, as before a click or in a box: it need not begin with them.
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

    // Shared, so that a breath can still end when the events have destroyed the window and this object.
    std::shared_ptr<Pulse> m_pulse;
};

} // namespace harrowby
