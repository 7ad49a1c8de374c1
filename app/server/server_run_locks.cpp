// SPDX-License-Identifier: MIT
#include "app/server/server_run_locks.h"

#include "app/records/server_engine.h"

#include <utility>

namespace harrowby::app {

ServerRunLocks::ServerRunLocks(ServerStore &store) : m_store(&store) {}

ServerRunLocks::~ServerRunLocks() = default;

Result<void, QString> ServerRunLocks::hold(std::int64_t run)
{
    if (m_store == nullptr)
        return Unexpected(QStringLiteral("the store is closed"));
    if (m_held.contains(run))
        return {};
    auto lock = m_store->lock(run);
    if (!lock)
        return Unexpected(lock.error());
    m_held.emplace(run, *std::move(lock));
    return {};
}

RunLocks::Holder ServerRunLocks::holderOf(std::int64_t run) const
{
    if (m_held.contains(run))
        return Holder::Somebody;
    if (m_store == nullptr)
        return Holder::NotKnown;
    switch (m_store->holderOf(run)) {
    case ServerStore::Holder::Nobody:
        return Holder::Nobody;
    case ServerStore::Holder::Somebody:
        return Holder::Somebody;
    default:
        return Holder::NotKnown;
    }
}

void ServerRunLocks::renew()
{
    if (m_store == nullptr)
        return;
    for (const auto &[run, lock] : m_held)
        (void)m_store->holderOf(run); // takes it again where it was lost
}

void ServerRunLocks::close()
{
    m_held.clear();
    m_store = nullptr;
}

} // namespace harrowby::app
