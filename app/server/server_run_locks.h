// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/run_locks.h"

#include <map>
#include <memory>

namespace harrowby::app {

class ServerLock;
class ServerStore;

/// The locks of runs of tills that share a server's store. The server drops one with the session that holds it; so a
/// till whose session broke is without it for a moment, and renew() takes it again.
class ServerRunLocks final : public RunLocks
{
public:
    /// The store must outlive the last call.
    explicit ServerRunLocks(ServerStore &store);
    ~ServerRunLocks() override;

    [[nodiscard]] Result<void, QString> hold(std::int64_t run) override;
    [[nodiscard]] Holder holderOf(std::int64_t run) const override;
    /// To be called when the server has come back.
    void renew();
    /// The store goes; nothing is held from now on.
    void close();

private:
    ServerStore *m_store;
    std::map<std::int64_t, std::unique_ptr<ServerLock>> m_held;
};

} // namespace harrowby::app
