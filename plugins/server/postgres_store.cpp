// SPDX-License-Identifier: MIT
#include "plugins/server/postgres_store.h"

#include "plugins/server/postgres_records.h"
#include "plugins/server/server_problems.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::server {

namespace {

PostgresOptions optionsOf(const app::ServerOptions &options)
{
    PostgresOptions made;
    made.location = options.location;
    made.stateFolder = options.stateFolder;
    made.connecting = options.connecting;
    made.silence = options.silence;
    made.lock = options.lock;
    made.rest = options.rest;
    made.findsAnywhere = options.findsAnywhere;
    return made;
}

/// Where the connection is, for a session that outlives no change of the server: it is connected anew then.
SessionLocks::WhereNow besides(const std::shared_ptr<PostgresConnection> &connection)
{
    return [connection]() -> std::optional<SessionLocks::Place> {
        postgres::ServerAccess &access = postgres::ConnectionParts::of(*connection).access;
        if (access.session().isLost())
            return {};
        PgTarget target = access.targetBeside();
        target.use = PgTarget::Use::Work;
        return SessionLocks::Place{std::move(target), access.sessionsMade()};
    };
}

class HeldLock final : public app::ServerLock
{
public:
    HeldLock(std::shared_ptr<SessionLocks> locks, std::int64_t number) : m_locks(std::move(locks)), m_number(number) {}
    ~HeldLock() override { m_locks->release(m_number); }

private:
    std::shared_ptr<SessionLocks> m_locks;
    std::int64_t m_number;
};

} // namespace

PostgresStore::PostgresStore(const QString &target, const app::ServerOptions &options) :
    m_connection(std::make_shared<PostgresConnection>(target, optionsOf(options))),
    m_parts(postgres::ConnectionParts::of(*m_connection))
{
    setWaitHook(options.waitHook);
    setResolvedHandler(options.resolvedHandler);
    m_locks = std::make_shared<SessionLocks>(besides(m_connection), m_parts.access.waits());
}

std::unique_ptr<app::Records> PostgresStore::records()
{
    return std::make_unique<PostgresRecords>(m_connection, m_parts.access, m_parts.writer);
}

/// What looks for the server in the middle of an action does so in that one's time.
void PostgresStore::beginActionUnlessInOne()
{
    if (!isInAction())
        beginAction();
}

std::optional<app::ServerProblem> PostgresStore::tryAgain()
{
    beginActionUnlessInOne();
    if (auto reached = m_parts.access.reach(); !reached)
        return problemOf(reached.error());
    if (const auto error = m_parts.writer.resolve())
        return problemOf(*error);
    m_locks->keep();
    return {};
}

std::optional<app::ServerProblem> PostgresStore::reachAnew()
{
    beginActionUnlessInOne();
    if (auto reached = m_parts.access.reachAnew(); !reached)
        return problemOf(reached.error());
    m_locks->keep();
    return {};
}

void PostgresStore::setResolvedHandler(ResolvedHandler handler)
{
    m_connection->setResolvedHandler(std::move(handler));
}

void PostgresStore::setWaitHook(DbConnection::WaitHook hook)
{
    m_connection->setWaitHook(std::move(hook));
}

void PostgresStore::setChangeHandler(ChangeHandler handler)
{
    m_parts.watch.changed = std::move(handler);
}

void PostgresStore::setEmptyHandler(EmptyHandler handler)
{
    m_parts.watch.empty = std::move(handler);
}

Result<std::unique_ptr<app::ServerLock>, QString> PostgresStore::lock(std::int64_t number)
{
    if (auto taken = m_locks->take(number); !taken)
        return Unexpected(taken.error());
    return std::unique_ptr<app::ServerLock>(std::make_unique<HeldLock>(m_locks, number));
}

} // namespace harrowby::server
