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
    /// Where the store's own session is connected to.
    struct Place
    {
        PgTarget target;
        int session = 0; ///< another one each time that it was made anew
    };
    using WhereNow = std::function<std::optional<Place>()>; ///< empty: nowhere

    SessionLocks(WhereNow whereNow, PgWaits waits);

    /// Takes it, or says why it cannot be had.
    [[nodiscard]] Result<void, QString> take(std::int64_t number);
    void release(std::int64_t number);
    [[nodiscard]] QList<app::ServerStore::Holder> holdersOf(const QList<std::int64_t> &numbers);
    /// Takes what is held again when the session has broken, or the store's own had to be made anew; what somebody else
    /// has meanwhile, as soon as it is free.
    void keep();

private:
    [[nodiscard]] Result<void, PgError> reach();
    [[nodiscard]] Result<void, PgError> takeMissing();
    [[nodiscard]] Result<bool, PgError> tryLock(std::int64_t number);

    WhereNow m_whereNow;
    PgWaits m_waits;
    PgSession m_session;
    int m_beside = 0;           ///< the store's own session that this one was made beside
    QSet<std::int64_t> m_held;  ///< what is to be held
    QSet<std::int64_t> m_taken; ///< of those, what this session has
};

} // namespace harrowby::server
