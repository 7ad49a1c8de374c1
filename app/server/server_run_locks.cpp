// SPDX-License-Identifier: MIT
#include "app/server/server_run_locks.h"

#include "app/records/server_engine.h"
#include "basic/steady_clock.h"

#include <utility>

namespace harrowby::app {

namespace {

RunLocks::Holder holderSeen(ServerStore::Holder seen)
{
    switch (seen) {
    case ServerStore::Holder::Nobody:
        return RunLocks::Holder::Nobody;
    case ServerStore::Holder::Somebody:
        return RunLocks::Holder::Somebody;
    default:
        return RunLocks::Holder::NotKnown;
    }
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

RunLocks::Holder ServerRunLocks::holderOf(std::int64_t run) const
{
    return holdersOf({run}).constFirst();
}

/// The server is asked for all of them at once.
QList<RunLocks::Holder> ServerRunLocks::holdersOf(const QList<std::int64_t> &runs) const
{
    if (m_store == nullptr) {
        QList<Holder> holders;
        for (const std::int64_t run : runs)
            holders << (m_held.contains(run) ? Holder::Somebody : Holder::NotKnown);
        return holders;
    }
    const auto seen = m_store->holdersOf(runs);
    QList<Holder> holders;
    for (qsizetype i = 0; i < runs.size(); ++i)
        holders << noted(runs.at(i), holderSeen(seen.at(i)));
    return holders;
}

/// What is to be thought of a lock that was looked at just now.
RunLocks::Holder ServerRunLocks::noted(std::int64_t run, Holder seen) const
{
    if (m_held.contains(run))
        return Holder::Somebody;
    if (seen != Holder::Nobody) {
        m_freeSince.erase(run);
        return seen;
    }
    const Milliseconds now = m_clock();
    const Milliseconds since = m_freeSince.try_emplace(run, now).first->second;
    return now - since < grace ? Holder::NotKnown : Holder::Nobody;
}

void ServerRunLocks::renew()
{
    if (m_store == nullptr)
        return;
    QList<std::int64_t> looked;
    for (const auto &[run, since] : m_freeSince)
        looked << run;
    if (looked.isEmpty() && m_held.empty())
        return;
    const auto seen = m_store->holdersOf(looked); // takes its own again where they were lost
    for (qsizetype i = 0; i < looked.size(); ++i) {
        if (seen.at(i) != ServerStore::Holder::Nobody)
            m_freeSince.erase(looked.at(i));
    }
}

void ServerRunLocks::close()
{
    m_held.clear();
    m_freeSince.clear();
    m_store = nullptr;
}

} // namespace harrowby::app
