// SPDX-License-Identifier: MIT
#include "postgres/server_waits.h"

#include <algorithm>

namespace harrowby::postgres {

namespace {

/// The hook is called this often, so that with what it paints no 100 ms pass between two pictures.
constexpr std::chrono::milliseconds hookEvery{40};
/// Between two tries.
constexpr std::chrono::milliseconds pauseTime{100};

} // namespace

Waiter::Waiter(const PgWaitHook &hook, PgWaiting what) : m_hook(hook), m_what(what)
{
    m_sinceHook.start();
}

Waiter::End Waiter::wait(std::vector<pollfd> &sockets, const QDeadlineTimer &deadline)
{
    return wait(sockets.data(), sockets.size(), deadline);
}

Waiter::End Waiter::wait(pollfd &socket, const QDeadlineTimer &deadline)
{
    return wait(&socket, 1, deadline);
}

Waiter::End Waiter::wait(pollfd *sockets, std::size_t count, const QDeadlineTimer &deadline)
{
    for (;;) {
        const auto left = std::clamp<qint64>(hookEvery.count() - m_sinceHook.elapsed(), 0, hookEvery.count());
        const qint64 slice = deadline.isForever() ? left : std::min(left, deadline.remainingTime());
        const int ready = ::poll(sockets, count, static_cast<int>(slice));
        if (!goesOn())
            return End::GivenUp;
        if (ready > 0)
            return End::Ready;
        if (deadline.hasExpired())
            return End::TimedOut;
    }
}

bool Waiter::goesOn()
{
    if (m_sinceHook.elapsed() < hookEvery.count())
        return true;
    const bool goesOn = !m_hook || m_hook(m_what);
    m_sinceHook.restart();
    return goesOn;
}

bool pauseBeforeNextTry(const PgWaitHook &hook)
{
    std::vector<pollfd> nothing;
    return Waiter(hook, PgWaiting::Connection).wait(nothing, QDeadlineTimer(pauseTime)) != Waiter::End::GivenUp;
}

} // namespace harrowby::postgres
