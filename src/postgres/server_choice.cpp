// SPDX-License-Identifier: MIT
#include "postgres/server_choice.h"

#include "postgres/schema.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::postgres {

namespace {

using Kind = PgError::Kind;

/// 15.0.
constexpr int leastVersion = 150000;

bool isPlain(const QByteArray &locale)
{
    return locale == "C" || locale == "POSIX";
}

PgError unfit(const QString &text)
{
    return {Kind::Unfit, {}, text};
}

/// Of several hosts' failures: what a person has to mend comes first, what may pass by itself last.
int weight(Kind kind)
{
    constexpr std::array order{Kind::CannotConnect, Kind::ReadOnly, Kind::Starting,
                               Kind::Crowded,       Kind::Denied,   Kind::NotTrusted};
    return static_cast<int>(std::find(order.begin(), order.end(), kind) - order.begin());
}

} // namespace

QUuid firstStore(const QList<ServerFacts> &servers)
{
    for (const ServerFacts &facts : servers) {
        if (!facts.server.isReadOnly && !facts.store.isNull())
            return facts.store;
    }
    return {};
}

std::optional<qsizetype> chosenServer(const QList<ServerFacts> &servers, const QUuid &store, quint32 leastTimeline)
{
    quint32 newest = leastTimeline;
    for (const ServerFacts &facts : servers) {
        if (facts.store == store)
            newest = std::max(newest, facts.server.timeline);
    }
    for (qsizetype i = 0; i < servers.size(); ++i) {
        const PgServer &server = servers[i].server;
        if (servers[i].store == store && !server.isReadOnly && server.timeline == newest)
            return i;
    }
    return {};
}

std::optional<PgError> tooOld(const ServerFacts &facts)
{
    if (facts.server.version >= leastVersion)
        return {};
    return unfit(u"The server is PostgreSQL %1; a store needs 15 or newer"_s.arg(facts.server.version / 10000));
}

std::optional<PgError> unfitness(const ServerFacts &facts, int wanted)
{
    const QString database = QString::fromUtf8(facts.database);
    if (facts.encoding != "UTF8")
        return unfit(u"The database \"%1\" has the encoding %2; a store needs UTF8"_s.arg(
            database, QString::fromUtf8(facts.encoding)));
    if (!isPlain(facts.collation) || !isPlain(facts.letters))
        return unfit(u"The database \"%1\" has the locale %2; a store needs C"_s.arg(
            database, QString::fromUtf8(isPlain(facts.collation) ? facts.letters : facts.collation)));
    if (wanted > 0 && facts.schemaVersion / schemaGeneration > wanted / schemaGeneration)
        return PgError{
            Kind::StoreTooNew, {}, u"The store in the database \"%1\" is newer than this program"_s.arg(database)};
    if (facts.schemaVersion >= wanted)
        return {};
    if (facts.schemaState == "42501")
        return PgError{Kind::Denied, facts.schemaState, u"This user may not use the store in \"%1\""_s.arg(database)};
    if (facts.schemaVersion == 0)
        return unfit(u"There is no store in the database \"%1\""_s.arg(database));
    return PgError{
        Kind::StoreTooOld,
        {},
        u"The store in the database \"%1\" is older than this program and has to be updated"_s.arg(database)};
}

PgError nothingChosen(const QList<HostFailure> &failures)
{
    const auto saysLess = [](const HostFailure &one, const HostFailure &other) {
        return weight(one.error.kind) < weight(other.error.kind);
    };
    QList<HostFailure> hosts;
    for (const HostFailure &failure : failures) {
        const auto same = std::find_if(hosts.begin(), hosts.end(),
                                       [&failure](const HostFailure &host) { return host.label == failure.label; });
        if (same == hosts.end())
            hosts.append(failure);
        else if (saysLess(*same, failure))
            *same = failure;
    }
    if (hosts.isEmpty())
        return {Kind::CannotConnect, {}, u"No server was named"_s};
    PgError most = std::max_element(hosts.cbegin(), hosts.cend(), saysLess)->error;
    QStringList texts;
    for (const HostFailure &host : std::as_const(hosts))
        texts.append(host.error.text);
    most.text = texts.join(u"; "_s);
    return most;
}

PgError notChosen(const ServerFacts &facts, const QString &label, const QUuid &store, int wanted)
{
    if (!store.isNull() && facts.store != store)
        return unfitness(facts, wanted)
            .value_or(unfit(u"The database \"%1\" is another store's"_s.arg(QString::fromUtf8(facts.database))));
    const QString why = facts.server.isReadOnly ? u"%1 takes no writes"_s : u"%1 has been replaced by another server"_s;
    return {Kind::ReadOnly, {}, why.arg(label)};
}

} // namespace harrowby::postgres
