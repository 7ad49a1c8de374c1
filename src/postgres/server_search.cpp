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

    [[nodiscard]] bool remembers(const ServerFacts &facts) const
    {
        return !m_target.stateFolder.isEmpty() && !facts.store.isNull();
    }

    /// Also of what an earlier program has worked on.
    [[nodiscard]] quint32 leastTimeline() const
    {
        quint32 least = m_target.leastTimeline;
        for (const auto &attempt : m_attempts) {
            if (attempt->isKnown() && remembers(attempt->facts()))
                least = std::max(least, highestTimeline(attempt->facts().store, m_target.stateFolder));
        }
        return least;
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
            if (!hasOne && chosenServer(known(), leastTimeline())) {
                hasOne = true;
                deadline = std::min(deadline, QDeadlineTimer(m_waits.otherHosts));
            }
        }
    }

    [[nodiscard]] Result<FoundServer, PgError> choose()
    {
        QList<ServerFacts> all;
        QList<ServerAttempt *> whose;
        for (const auto &attempt : m_attempts) {
            if (!attempt->isKnown())
                continue;
            all.append(attempt->facts());
            whose.append(attempt.get());
        }
        const std::optional<qsizetype> chosen = chosenServer(all, leastTimeline());
        if (!chosen)
            return Unexpected(nothingChosen(failures()));
        if (std::optional<PgError> error = unfitness(all[*chosen], m_target.schemaVersion))
            return Unexpected(*std::move(error));
        if (remembers(all[*chosen]))
            noteTimeline(all[*chosen].store, all[*chosen].server.timeline, m_target.stateFolder);
        return FoundServer{all[*chosen].server, whose[*chosen]->takeLink()};
    }

    [[nodiscard]] QList<HostFailure> failures() const
    {
        QList<HostFailure> all;
        for (const auto &attempt : m_attempts) {
            const QString label = attempt->host().label();
            all.append({label, attempt->isKnown() ? notChosen(attempt->facts(), label) : attempt->error()});
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
