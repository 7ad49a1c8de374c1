// SPDX-License-Identifier: MIT
#include "postgres/server_search.h"

#include "postgres/server_attempt.h"
#include "postgres/server_choice.h"
#include "postgres/shop_memory.h"

#include <algorithm>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace harrowby::postgres {

namespace {

class ServerSearch
{
public:
    ServerSearch(const PgTarget &target, const PgWaits &waits, const ConnectOptions &options) :
        m_target(target), m_waits(waits), m_options(options)
    {
        const QList<Host> hosts = target.server
                                      ? QList{Host{target.server->host, target.server->address, target.server->port}}
                                      : hostsOf(options);
        add(hosts);
    }

    [[nodiscard]] Result<FoundServer, PgError> run()
    {
        if (!askAll())
            return Unexpected(PgError{PgError::Kind::GivenUp, {}, u"Given up"_s});
        for (const auto &attempt : m_attempts) {
            if (attempt->isUnderWay())
                attempt->expire();
        }
        return choose();
    }

private:
    void add(const QList<Host> &hosts)
    {
        for (const Host &host : hosts)
            m_attempts.push_back(std::make_unique<ServerAttempt>(m_options, host, m_target, m_waits));
    }

    [[nodiscard]] QList<ServerFacts> known() const
    {
        QList<ServerFacts> all;
        for (const auto &attempt : m_attempts) {
            if (attempt->isKnown())
                all.append(attempt->facts());
        }
        return all;
    }

    [[nodiscard]] QUuid wantedStore(const QList<ServerFacts> &all) const
    {
        return m_target.store.isNull() ? firstStore(all) : m_target.store;
    }

    [[nodiscard]] bool remembers(const QUuid &store) const
    {
        return !m_target.stateFolder.isEmpty() && !store.isNull();
    }

    /// Also what an earlier program has worked on counts.
    [[nodiscard]] std::optional<qsizetype> chosen(const QList<ServerFacts> &all) const
    {
        const QUuid store = wantedStore(all);
        quint32 least = m_target.leastTimeline;
        if (remembers(store))
            least = std::max(least, highestTimeline(store, m_target.stateFolder));
        return chosenServer(all, store, least);
    }

    /// Until each has answered, or time is over. False when it was given up.
    [[nodiscard]] bool askAll()
    {
        QDeadlineTimer deadline(m_waits.connecting);
        Waiter waiter(m_waits.hook, PgWaiting::Connection);
        bool hasOne = false;
        for (;;) {
            std::vector<ServerAttempt *> open;
            std::vector<pollfd> sockets;
            for (const auto &attempt : m_attempts) {
                if (!attempt->isUnderWay())
                    continue;
                open.push_back(attempt.get());
                sockets.push_back(attempt->wanted());
            }
            if (open.empty())
                return true;
            const Waiter::End end = waiter.wait(sockets, deadline);
            if (end != Waiter::End::Ready)
                return end == Waiter::End::TimedOut;
            for (std::size_t i = 0; i < open.size(); ++i) {
                if (sockets[i].revents == 0)
                    continue;
                open[i]->advance();
                add(open[i]->takeOtherAddresses());
            }
            if (!hasOne && chosen(known())) {
                hasOne = true;
                deadline = std::min(deadline, QDeadlineTimer(m_waits.otherHosts));
            }
        }
    }

    [[nodiscard]] Result<FoundServer, PgError> choose()
    {
        const QList<ServerFacts> all = known();
        const std::optional<qsizetype> index = chosen(all);
        if (!index)
            return Unexpected(nothingChosen(failures(wantedStore(all))));
        const ServerFacts &facts = all[*index];
        if (std::optional<PgError> error = unfitness(facts, m_target.schemaVersion))
            return Unexpected(*std::move(error));
        if (remembers(facts.store))
            noteTimeline(facts.store, facts.server.timeline, m_target.stateFolder);
        return FoundServer{facts.server, facts.store, linkOf(*index)};
    }

    /// Of the one that is known().at(index).
    [[nodiscard]] std::unique_ptr<ServerLink> linkOf(qsizetype index)
    {
        const auto isIt = [&index](const auto &attempt) { return attempt->isKnown() && index-- == 0; };
        return (*std::find_if(m_attempts.begin(), m_attempts.end(), isIt))->takeLink();
    }

    [[nodiscard]] QList<HostFailure> failures(const QUuid &store) const
    {
        QList<HostFailure> all;
        for (const auto &attempt : m_attempts) {
            const QString label = attempt->host().label();
            all.append({label, attempt->isKnown() ? notChosen(attempt->facts(), label, store, m_target.schemaVersion)
                                                  : attempt->error()});
        }
        return all;
    }

    const PgTarget &m_target;
    const PgWaits &m_waits;
    const ConnectOptions &m_options;
    std::vector<std::unique_ptr<ServerAttempt>> m_attempts;
};

} // namespace

Result<FoundServer, PgError> findServer(const PgTarget &target, const PgWaits &waits)
{
    const Result<ConnectOptions, PgError> options = connectOptions(target.conninfo);
    if (!options)
        return Unexpected(options.error());
    return ServerSearch(target, waits, *options).run();
}

} // namespace harrowby::postgres
