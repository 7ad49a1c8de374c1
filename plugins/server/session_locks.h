// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/server_engine.h"
#include "postgres/server_access.h"

#include <QByteArray>
#include <QSet>
#include <QString>

#include <cstdint>
#include <functional>
#include <memory>

namespace harrowby::server {

/// Locks that a program holds as long as it is connected, over a session of their own: each is a number.
class SessionLocks
{
public:
    /// Where the store's own session is connected to. Empty: nowhere.
    using Target = std::function<std::optional<PgTarget>()>;

    SessionLocks(Target target, PgWaits waits);

    /// Takes it, or says why it cannot be had.
    [[nodiscard]] Result<void, QString> take(std::int64_t number);
    void release(std::int64_t number);
    [[nodiscard]] app::ServerStore::Holder holderOf(std::int64_t number);
    /// Takes what is held again when the session has broken; what somebody else has meanwhile as soon as it is free.
    void keep();

private:
    [[nodiscard]] Result<void, PgError> reach();
    [[nodiscard]] Result<void, PgError> takeMissing();
    [[nodiscard]] Result<bool, PgError> tryLock(std::int64_t number);
    [[nodiscard]] Result<PgResults, PgError> run(const QByteArray &function, std::int64_t number);

    Target m_target;
    PgWaits m_waits;
    PgSession m_session;
    QSet<std::int64_t> m_held;
    QSet<std::int64_t> m_missing; ///< of these: not taken again yet
};

} // namespace harrowby::server
