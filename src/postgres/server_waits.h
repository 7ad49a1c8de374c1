// SPDX-License-Identifier: MIT
#pragma once

#include <QDeadlineTimer>
#include <QElapsedTimer>

#include <chrono>
#include <functional>
#include <vector>

#include <poll.h>

namespace harrowby {

/// What the server is waited for.
enum class PgWaiting {
    Connection,
    Answer,
    Lock, ///< the server has said that another connection holds what is wanted
};

struct PgWait
{
    PgWaiting what = PgWaiting::Answer;
    bool isManyShortOnes = false; ///< none of them has called the hook by itself
};

/// Called on the waiting thread again and again, at most 50 ms apart, for as long as a wait lasts: it paints, takes no
/// input but "Give up", and returns whether to go on waiting. It must not use the session. Waits between which the
/// thread's event loop has not run count together; one that stands alone and is short never calls it.
using PgWaitHook = std::function<bool(const PgWait &)>;

/// How long a session waits, each time.
struct PgWaits
{
    std::chrono::milliseconds connecting{2000}; ///< all of it: names, every host, TLS, password, questions
    /// Of several hosts: once one that takes writes has answered, how long the others are waited for still.
    std::chrono::milliseconds otherHosts{500};
    std::chrono::milliseconds answer{5000}; ///< a server that says nothing to a statement
    std::chrono::milliseconds lock{10000};  ///< another's lock
    PgWaitHook hook = {};
};

/// How long one statement may take.
struct PgBudget
{
    /// Silence of the server; whatever comes from it begins the time anew.
    std::chrono::milliseconds answer{5000};
    /// Another's lock. What is left of an action's time for it.
    std::chrono::milliseconds lock{10000};
    /// What the text's first statement waits for then, as far as a person can tell: one's own write before may hold it.
    PgWaiting lockIs = PgWaiting::Lock;
};

namespace postgres {

/// Waits for sockets and calls the hook meanwhile.
class Waiter
{
public:
    enum class End { Ready, TimedOut, GivenUp };

    /// `isLong`: it will be, so that the hook never takes it for one of many short ones.
    Waiter(const PgWaitHook &hook, PgWaiting what, bool isLong = false);
    ~Waiter();
    Waiter(const Waiter &) = delete;
    Waiter &operator=(const Waiter &) = delete;

    /// Until one of `sockets` is ready; each has then its `revents`. None may be given. Once the hook has given up,
    /// the next wait ends at once.
    [[nodiscard]] End wait(std::vector<pollfd> &sockets, const QDeadlineTimer &deadline);
    [[nodiscard]] End wait(pollfd &socket, const QDeadlineTimer &deadline);

private:
    [[nodiscard]] End wait(pollfd *sockets, std::size_t count, const QDeadlineTimer &deadline);
    [[nodiscard]] bool goesOn();
    [[nodiscard]] std::chrono::nanoseconds still() const;
    [[nodiscard]] std::chrono::nanoseconds untilHook() const;

    const PgWaitHook &m_hook;
    PgWaiting m_what;
    QElapsedTimer m_own;                  ///< since this wait began
    QElapsedTimer m_sinceHook;            ///< or since it began
    std::chrono::nanoseconds m_before{0}; ///< waited for other answers, without the hook
    bool m_isToldLong;                    ///< the hook knows that it is no short one
    bool m_isGivenUp = false;
};

/// Between two tries to reach a server: short against a failover, long against what a try costs the server. Whether to
/// try again; a person may have had enough meanwhile.
[[nodiscard]] bool pauseBeforeNextTry(const PgWaitHook &hook);

} // namespace postgres
} // namespace harrowby
