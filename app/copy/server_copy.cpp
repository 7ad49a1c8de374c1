// SPDX-License-Identifier: MIT
#include "app/copy/server_copy.h"

#include <chrono>
#include <thread>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using namespace std::chrono_literals;
using Rows = QHash<QString, std::int64_t>;
using Failed = std::optional<CopyFailure>;

CopyFailure failureOf(const DbFailure &failure)
{
    return {failure.reason, false, Records::isUnknown(failure)};
}

const auto mayNotReplace =
    u"this machine may not replace a whole store: on the server, \"harrowby-server add-office NAME --owner\" lets it"_s;

/// One of the functions that the server's store has for this.
Failed call(Records &server, const QString &function)
{
    const auto called = server.read({u"select %1()"_s.arg(function), {}});
    if (called)
        return {};
    constexpr QLatin1StringView noRight("42501");
    constexpr QLatin1StringView noFunction("42883");
    CopyFailure failure = failureOf(called.error());
    if (called.error().engineState == noRight)
        failure.problem = mayNotReplace;
    else if (called.error().engineState == noFunction)
        failure.problem = u"the server's store is older than this program: run \"harrowby-server update\" there"_s;
    return failure;
}

Failed unlessEmpty(Records &server)
{
    QStringList full;
    for (const CopiedTable &table : copiedTables()) {
        const auto rows = server.read(table.records(), {u"select count(*) from "_s + table.name, {}});
        if (!rows)
            return failureOf(rows.error());
        if (const auto count = rows->isEmpty() ? 0 : recordNumber(rows->constFirst().constFirst()); count > 0)
            full << u"%1 (%2)"_s.arg(table.name, QString::number(count));
    }
    if (full.isEmpty())
        return {};
    return CopyFailure{
        u"The server's store is not empty; a store is copied into an empty one only. It has rows in: %1."_s.arg(
            full.join(u", "_s))};
}

Failed unlessAlone(Records &server, const QString &what)
{
    const auto users = serverUsersWhoStay(server);
    if (!users)
        return users.error();
    return users->isEmpty() ? Failed() : CopyFailure{serverInUse(*users, what)};
}

/// All within the transaction.
Result<Rows, CopyFailure> copyLocked(StoreCopy &copy, Records &server, const ServerCopy &how)
{
    auto failure = call(server, u"harrowby.lock_store"_s);
    if (!failure)
        failure = unlessAlone(server, how.what);
    if (!failure)
        failure = how.before == ServerRows::MustBeNone ? unlessEmpty(server) : call(server, u"harrowby.empty_store"_s);
    if (failure)
        return Unexpected(*std::move(failure));
    auto rows = copy.copyInto(server);
    if (!rows)
        return rows;
    failure = how.more ? how.more(server) : Failed();
    if (!failure)
        failure = call(server, u"harrowby.follow_identities"_s);
    if (failure)
        return Unexpected(*std::move(failure));
    return rows;
}

} // namespace

std::optional<CopyFailure> unlessMayReplace(Records &server)
{
    const auto rows = server.read({u"select has_function_privilege('harrowby.empty_store()', 'execute')"_s, {}});
    if (!rows)
        return failureOf(rows.error());
    if (rows->isEmpty() || recordNumber(rows->constFirst().constFirst()) == 0)
        return CopyFailure{mayNotReplace};
    return {};
}

Result<QStringList, CopyFailure> serverUsers(Records &server, OwnName own)
{
    const QString others = own == OwnName::PassedOver ? u"and usename <> current_user "_s : QString();
    const auto rows = server.read(
        {u"select usename, count(*) from pg_stat_activity where datname = current_database() and usename is not null "
         "and pid <> pg_backend_pid() and starts_with(application_name, 'harrowby') "_s +
             others + u"group by usename order by usename"_s,
         {}});
    if (!rows)
        return Unexpected(failureOf(rows.error()));
    QStringList users;
    for (const RecordRow &row : *rows)
        users << recordText(row.constFirst());
    return users;
}

Result<QStringList, CopyFailure> serverUsersWhoStay(Records &server)
{
    constexpr int tries = 10;
    constexpr auto pause = 100ms;
    auto users = serverUsers(server);
    for (int tried = 1; tried < tries && users && !users->isEmpty(); ++tried) {
        std::this_thread::sleep_for(pause);
        users = serverUsers(server);
    }
    return users;
}

QString serverInUse(const QStringList &users, const QString &what)
{
    return u"The store is open in other programs, which have logged in as: %1. Close it there first; %2 needs the "
           u"store "
           "for itself."_s.arg(users.join(u", "_s), what);
}

Result<Rows, CopyFailure> copyIntoServer(StoreCopy &copy, Records &server, const ServerCopy &how)
{
    Result<Rows, CopyFailure> copied = Unexpected(CopyFailure{u"The copying was broken off."_s});
    const auto kept = server.together(kept::setting(), [&] {
        copied = copyLocked(copy, server, how);
        return copied.has_value();
    });
    if (!kept)
        return Unexpected(failureOf(kept.error()));
    return copied;
}

} // namespace harrowby::app
