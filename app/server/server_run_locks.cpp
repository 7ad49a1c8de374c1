// SPDX-License-Identifier: MIT
#include "app/server/server_run_locks.h"

#include "app/records/server_engine.h"

#include <utility>

namespace harrowby::app {

namespace {

std::chrono::milliseconds steadyNow()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

} // namespace

ServerRunLocks::ServerRunLocks(ServerStore &store, Clock clock) :
    m_store(&store), m_clock(clock ? std::move(clock) : Clock(steadyNow))
{
}

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

RunLocks::Holder ServerRunLocks::look(std::int64_t run) const
{
    switch (m_store->holderOf(run)) {
    case ServerStore::Holder::Nobody:
        return Holder::Nobody;
    case ServerStore::Holder::Somebody:
        return Holder::Somebody;
    default:
        return Holder::NotKnown;
    }
}

RunLocks::Holder ServerRunLocks::holderOf(std::int64_t run) const
{
    if (m_held.contains(run))
        return Holder::Somebody;
    if (m_store == nullptr)
        return Holder::NotKnown;
    const Holder holder = look(run);
    if (holder != Holder::Nobody) {
        m_freeSince.erase(run);
        return holder;
    }
    const Milliseconds now = m_clock();
    const Milliseconds since = m_freeSince.try_emplace(run, now).first->second;
    return now - since < grace ? Holder::NotKnown : Holder::Nobody;
}

void ServerRunLocks::renew()
{
    if (m_store == nullptr)
        return;
    for (const auto &[run, lock] : m_held)
        (void)m_store->holderOf(run); // takes it again where it was lost
    std::erase_if(m_freeSince, [this](const auto &free) { return look(free.first) != Holder::Nobody; });
}

void ServerRunLocks::close()
{
    m_held.clear();
    m_freeSince.clear();
    m_store = nullptr;
}

} // namespace harrowby::app
