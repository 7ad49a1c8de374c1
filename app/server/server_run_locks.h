// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/run_locks.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace harrowby::app {

class ServerLock;
class ServerStore;

/// The locks of runs of tills that share a server's store. The server drops one with the session that holds it, and all
/// of them when it ends or another takes over; so a till that lives is without its own until it has reached the server
/// again, and renew() has taken it. A run counts as dead, therefore, only when its lock was free for `grace`, each time
/// that it was looked at.
class ServerRunLocks final : public RunLocks
{
public:
    using Milliseconds = std::chrono::milliseconds;
    /// On the steady clock.
    using Clock = std::function<Milliseconds()>;

    /// Longer than a till that lives needs: to notice that the server is back, and to end the sale that has waited for
    /// it (ServerOptions::rest).
    static constexpr Milliseconds grace{90'000};

    /// The store must outlive the last call. `clock` replaces the time in tests.
    explicit ServerRunLocks(ServerStore &store, Clock clock = {});
    ~ServerRunLocks() override;

    [[nodiscard]] Result<void, QString> hold(std::int64_t run) override;
    /// NotKnown of a lock that is free and has not been so for long enough: it is looked at from now on by renew(), and
    /// is to be asked for again.
    [[nodiscard]] Holder holderOf(std::int64_t run) const override;
    [[nodiscard]] QList<Holder> holdersOf(const QList<std::int64_t> &runs) const override;
    /// To be called again and again while the server answers. Takes what this till holds where the server dropped it.
    void renew();
    /// The store goes; nothing is held from now on.
    void close();

private:
    [[nodiscard]] Holder noted(std::int64_t run, Holder seen) const;

    ServerStore *m_store;
    Clock m_clock;
    std::map<std::int64_t, std::unique_ptr<ServerLock>> m_held;
    mutable std::map<std::int64_t, Milliseconds> m_freeSince; ///< of others
};

} // namespace harrowby::app
