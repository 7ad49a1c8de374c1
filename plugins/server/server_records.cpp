// SPDX-License-Identifier: MIT
#include "plugins/server/server_records.h"

#include "basic/logging.h"
#include "plugins/server/server_problems.h"
#include "postgres/schema.h"
#include "postgres/shop_memory.h"

#include <QDeadlineTimer>

#include <atomic>
#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::server {

using namespace std::chrono_literals;

constexpr auto longestCommit = 5s;

/// What works for minutes, beside the tills.
struct OwnSession
{
    OwnSession(const QString &target, PgTarget::Use use, const QUuid &store) :
        time(limits()), access(targetOf(target, use, store), waits(), time), writer(access, {}, limits().rest)
    {
    }

    static postgres::ActionLimits limits()
    {
        postgres::ActionLimits limits;
        limits.silence = 120'000ms; // a long statement says nothing either; who waits for it can end it
        return limits;
    }

    static PgTarget targetOf(const QString &target, PgTarget::Use use, const QUuid &store)
    {
        PgTarget made;
        made.conninfo = target.toUtf8();
        made.use = use;
        made.store = store;
        made.schemaVersion = postgres::schemaVersion;
        made.stateFolder = postgres::stateFolder({});
        made.programName = "harrowby work";
        return made;
    }

    [[nodiscard]] PgWaits waits()
    {
        PgWaits waits;
        waits.answer = limits().silence;
        waits.lock = limits().lock;
        waits.hook = [this](const PgWait &) { return goesOn(); };
        return waits;
    }

    /// Called in the middle of a wait.
    [[nodiscard]] bool goesOn()
    {
        if (!commit.hasExpired())
            return true;
        try {
            hasEnded = isInterrupted.exchange(false) || (watch && !watch());
        } catch (const std::exception &error) {
            qCWarning(lcStore) << "A statement is ended:" << error.what();
            hasEnded = true;
        }
        return !hasEnded;
    }

    std::atomic<bool> isInterrupted = false;
    bool hasEnded = false; ///< the latest statement, by whoever waits for it
    std::function<bool()> watch;
    QDeadlineTimer commit; ///< until then one that was sent is waited for, whatever the watch says
    postgres::ActionTime time;
    postgres::ServerAccess access;
    postgres::Writer writer;
};

ServerRecords::ServerRecords(std::shared_ptr<OwnSession> session, app::Access access) :
    m_session(std::move(session)), m_records(m_session, m_session->access, m_session->writer)
{
    m_records.workForLong();
    if (access == app::Access::Read)
        m_records.keepFromWriting();
    m_records.setBeforeAction([session = m_session.get()] {
        session->time.begin();
        session->isInterrupted = false;
        session->hasEnded = false;
    });
    m_records.setAroundCommit([session = m_session.get()](bool begins) {
        session->commit = begins ? QDeadlineTimer(longestCommit) : QDeadlineTimer();
    });
}

ServerRecords::~ServerRecords() = default;

Result<std::unique_ptr<app::StoreRecords>, app::ServerProblem>
ServerRecords::open(const QString &target, app::Access access, std::function<bool()> goesOn, const QUuid &store)
{
    const auto use = access == app::Access::Read ? PgTarget::Use::Walk : PgTarget::Use::Work;
    auto session = std::make_shared<OwnSession>(target, use, store);
    session->watch = std::move(goesOn);
    if (const auto reached = session->access.reach(); !reached)
        return Unexpected(problemOf(reached.error()));
    return std::unique_ptr<app::StoreRecords>(new ServerRecords(std::move(session), access));
}

void ServerRecords::interrupt()
{
    m_session->isInterrupted = true;
}

void ServerRecords::setWatch(std::function<bool()> goesOn)
{
    m_session->watch = std::move(goesOn);
}

bool ServerRecords::wasInterrupted(const DbFailure &failure) const
{
    return m_session->hasEnded && failure.engineState == "57014"_L1;
}

} // namespace harrowby::server
