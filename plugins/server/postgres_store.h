// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/server_engine.h"
#include "plugins/server/session_locks.h"
#include "postgres/connection_parts.h"

#include <harrowby/postgres_connection.h>

#include <memory>
#include <optional>

namespace harrowby::server {

/// See app::ServerStore.
class PostgresStore final : public app::ServerStore
{
public:
    PostgresStore(const QString &target, const app::ServerOptions &options);

    /// The first connection.
    [[nodiscard]] std::optional<app::ServerProblem> open() { return tryAgain(); }

    [[nodiscard]] std::shared_ptr<DbConnection> connection() override { return m_connection; }
    [[nodiscard]] std::unique_ptr<app::Records> records() override;
    [[nodiscard]] QUuid identity() const override { return m_parts.access.store(); }
    [[nodiscard]] bool isOpen() const override { return m_connection->isOpen(); }
    [[nodiscard]] std::optional<app::ServerProblem> tryAgain() override;
    [[nodiscard]] std::optional<app::ServerProblem> reachAnew() override;
    void setResolvedHandler(ResolvedHandler handler) override;
    void setWaitHook(DbConnection::WaitHook hook) override;
    void setChangeHandler(ChangeHandler handler) override;
    void setEmptyHandler(EmptyHandler handler) override;
    void beginAction() override { m_connection->beginAction(); }
    [[nodiscard]] bool isInAction() const override { return m_parts.access.time().isUnderWay(); }
    [[nodiscard]] Result<std::unique_ptr<app::ServerLock>, QString> lock(std::int64_t number) override;
    [[nodiscard]] QList<Holder> holdersOf(const QList<std::int64_t> &numbers) override
    {
        return m_locks->holdersOf(numbers);
    }

private:
    void beginActionUnlessInOne();

    std::shared_ptr<PostgresConnection> m_connection;
    postgres::ConnectionParts m_parts;
    std::shared_ptr<SessionLocks> m_locks; ///< goes with the last lock
};

} // namespace harrowby::server
