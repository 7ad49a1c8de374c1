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

Waiter::Waiter(const PgWaitHook &hook, PgWaiting what) : m_hook(hook), m_what(what)
{
    m_began.start();
    m_before = StillTime::ofThisThread().waited;
}

Waiter::~Waiter()
{
    StillTime::ofThisThread().waited = still();
}

/// Since the hook was called.
std::chrono::nanoseconds Waiter::still() const
{
    return m_before + std::chrono::nanoseconds(m_began.nsecsElapsed());
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
        const qint64 left =
            std::max<qint64>(std::chrono::ceil<std::chrono::milliseconds>(hookEvery - still()).count(), 0);
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
    if (still() < hookEvery)
        return true;
    const bool isShort = m_what == PgWaiting::Answer && std::chrono::nanoseconds(m_began.nsecsElapsed()) < hookEvery;
    const bool goesOn = !m_hook || m_hook({m_what, isShort});
    m_before = {};
    m_began.start();
    return goesOn;
}

bool pauseBeforeNextTry(const PgWaitHook &hook)
{
    std::vector<pollfd> nothing;
    return Waiter(hook, PgWaiting::Connection).wait(nothing, QDeadlineTimer(pauseTime)) != Waiter::End::GivenUp;
}

} // namespace harrowby::postgres
