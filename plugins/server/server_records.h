// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/server_engine.h"
#include "app/records/store_records.h"
#include "plugins/server/postgres_records.h"

#include <functional>
#include <memory>

namespace harrowby::server {

struct OwnSession;

/// See app::StoreRecords: over a session of its own. A statement may take minutes; it ends when the watch says so; a
/// commit has a moment longer, so that nobody who cancels is left with what nobody knows.
class ServerRecords final : public app::StoreRecords
{
public:
    [[nodiscard]] static Result<std::unique_ptr<app::StoreRecords>, app::ServerProblem>
    open(const QString &target, app::Access access, std::function<bool()> goesOn, const QUuid &store);
    ~ServerRecords() override;

    [[nodiscard]] app::Records &records() override { return m_records; }
    void interrupt() override;
    void setWatch(std::function<bool()> goesOn) override;
    [[nodiscard]] bool wasInterrupted(const DbFailure &failure) const override;
    [[nodiscard]] std::optional<DbFailure> holdMoment() override { return m_records.holdMoment(); }
    void releaseMoment() override { m_records.releaseMoment(); }

private:
    ServerRecords(std::shared_ptr<OwnSession> session, app::Access access);

    std::shared_ptr<OwnSession> m_session;
    PostgresRecords m_records;
};

} // namespace harrowby::server
