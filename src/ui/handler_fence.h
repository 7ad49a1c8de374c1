// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

class QWidget;

namespace harrowby {

class Breather;

/// Every handler of a window runs through it (connections.cpp). Exceptions are logged and end here; a window that is
/// closed while handlers run is destroyed once the last of them has returned. Then, too, a host is told of what they
/// did.
class HandlerFence
{
public:
    /// Both must outlive it. The window is allocated by new and has no other owner; close() leads to deleteLater().
    HandlerFence(QWidget &window, Breather &breather) : m_window(window), m_breather(breather) {}

    /// Runs a handler; may be nested.
    template <typename Handler>
    void run(Handler &&handler) noexcept
    {
        const Scope scope(*this);
        try {
            std::forward<Handler>(handler)();
        } catch (...) {
            logEarlyEnd();
        }
    }
    /// The window has been closed: it is destroyed by the event loop as soon as no handler runs.
    void close();
    [[nodiscard]] bool isClosed() const { return m_closed; }

private:
    class Scope
    {
    public:
        explicit Scope(HandlerFence &fence) : m_fence(fence) { m_fence.enter(); }
        ~Scope() { m_fence.leave(); }
        Scope(const Scope &) = delete;
        Scope &operator=(const Scope &) = delete;

    private:
        HandlerFence &m_fence;
    };

    void enter();
    void leave();
    void releaseIfClosed();
    /// Precondition: called in a catch block.
    static void logEarlyEnd();

    QWidget &m_window;
    Breather &m_breather;
    int m_running = 0;
    bool m_closed = false;
};

} // namespace harrowby
