// SPDX-License-Identifier: MIT
#include "postgres/server_waits.h"

#include <QAbstractEventDispatcher>
#include <QObject>
#include <QPointer>

#include <algorithm>

namespace harrowby::postgres {

namespace {

/// The hook is called this often, so that with what it paints no 100 ms pass between two pictures.
constexpr std::chrono::milliseconds hookEvery{40};
/// Between two tries.
constexpr std::chrono::milliseconds pauseTime{100};

/// What this thread has waited since its event loop ran, or the hook was called: many short waits in a row leave a
/// window as still as a long one does.
class StillTime
{
public:
    static StillTime &ofThisThread()
    {
        thread_local StillTime time;
        time.followLoop();
        return time;
    }

    std::chrono::nanoseconds waited{0};

private:
    void followLoop()
    {
        auto *dispatcher = QAbstractEventDispatcher::instance();
        if (dispatcher == m_followed)
            return;
        m_followed = dispatcher;
        waited = {};
        if (dispatcher)
            QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, &m_context, [this] { waited = {}; });
    }

    QPointer<QAbstractEventDispatcher> m_followed;
    QObject m_context; ///< of the loop's signal
};

} // namespace

Waiter::Waiter(const PgWaitHook &hook, PgWaiting what, bool isLong) : m_hook(hook), m_what(what), m_isToldLong(isLong)
{
    m_own.start();
    m_sinceHook.start();
    m_before = StillTime::ofThisThread().waited;
}

Waiter::~Waiter()
{
    StillTime::ofThisThread().waited = still();
}

/// Since the hook was called.
std::chrono::nanoseconds Waiter::still() const
{
    return m_before + std::chrono::nanoseconds(m_sinceHook.nsecsElapsed());
}

/// Until the hook is called next: with what was waited before, and once it is a long wait by itself.
std::chrono::nanoseconds Waiter::untilHook() const
{
    const std::chrono::nanoseconds next = hookEvery - still();
    if (m_isToldLong)
        return next;
    return std::min(next, hookEvery - std::chrono::nanoseconds(m_own.nsecsElapsed()));
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
    while (!m_isGivenUp) {
        const qint64 left = std::max<qint64>(std::chrono::ceil<std::chrono::milliseconds>(untilHook()).count(), 0);
        const qint64 slice = deadline.isForever() ? left : std::min(left, deadline.remainingTime());
        const int ready = ::poll(sockets, count, static_cast<int>(slice));
        m_isGivenUp = !goesOn();
        if (ready > 0) // an answer that is there counts, and the next one is not waited for
            return End::Ready;
        if (!m_isGivenUp && deadline.hasExpired())
            return End::TimedOut;
    }
    return End::GivenUp;
}

bool Waiter::goesOn()
{
    if (untilHook() > std::chrono::nanoseconds::zero())
        return true;
    m_isToldLong = m_isToldLong || std::chrono::nanoseconds(m_own.nsecsElapsed()) >= hookEvery;
    const bool isShort = m_what != PgWaiting::Lock && !m_isToldLong;
    const bool goesOn = !m_hook || m_hook({m_what, isShort});
    m_before = {};
    m_sinceHook.start();
    return goesOn;
}

bool pauseBeforeNextTry(const PgWaitHook &hook)
{
    std::vector<pollfd> nothing;
    return Waiter(hook, PgWaiting::Connection, true).wait(nothing, QDeadlineTimer(pauseTime)) != Waiter::End::GivenUp;
}

} // namespace harrowby::postgres
