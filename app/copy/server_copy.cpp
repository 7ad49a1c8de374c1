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

const auto locking = u"harrowby.lock_store()"_s;
const auto emptying = u"harrowby.empty_store()"_s;
const auto following = u"harrowby.follow_identities()"_s;

/// The answer to a select with one of the functions that the server's store has for this.
Result<QList<RecordRow>, CopyFailure> ask(Records &server, const QString &select)
{
    const auto rows = server.read({select, {}});
    if (rows)
        return *rows;
    constexpr QLatin1StringView noFunction("42883");
    CopyFailure failure = copyFailureOf(rows.error());
    if (rows.error().engineState == noFunction)
        failure = {.problem = u"the server's store is older than this program"_s,
                   .advice = u"On the server, run harrowby-server update."_s};
    return Unexpected(failure);
}

Failed call(Records &server, const QString &function)
{
    const auto called = ask(server, u"select "_s + function);
    return called ? Failed() : called.error();
}

CopyFailure notAllowed(ServerRows before)
{
    if (before == ServerRows::Replace)
        return {.problem = u"this machine may not replace a whole store"_s,
                .advice = u"On the server, harrowby-server add-office NAME --owner lets it."_s};
    return {.problem = u"This machine may not copy a store to the server."_s,
            .advice = u"Use one that is enrolled as an office (on the server: harrowby-server add-office NAME)."_s};
}

Failed unlessEmpty(Records &server)
{
    QStringList full;
    for (const CopiedTable &table : copiedTables()) {
        const auto rows = server.read(table.records(), {u"select count(*) from "_s + table.name, {}});
        if (!rows)
            return copyFailureOf(rows.error());
        if (const auto count = rows->isEmpty() ? 0 : recordNumber(rows->constFirst().constFirst()); count > 0)
            full << u"%1 (%2)"_s.arg(table.name, QString::number(count));
    }
    if (full.isEmpty())
        return {};
    return CopyFailure{
        .problem =
            u"The server's store is not empty; a store is copied into an empty one only. It has rows in: %1."_s.arg(
                full.join(u", "_s)),
        .advice = u"To put a file in the place of what it holds, restore the file there (--restore)."_s};
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
    auto failure = call(server, locking);
    if (!failure)
        failure = unlessAlone(server, how.what);
    if (!failure && how.kept)
        failure = unlessUnwritten(server, *how.kept);
    if (!failure)
        failure = how.before == ServerRows::MustBeNone ? unlessEmpty(server) : call(server, emptying);
    if (failure)
        return Unexpected(*std::move(failure));
    auto rows = copy.copyInto(server);
    if (!rows)
        return rows;
    failure = how.more ? how.more(server) : Failed();
    if (!failure)
        failure = call(server, following);
    if (failure)
        return Unexpected(*std::move(failure));
    return rows;
}

} // namespace

std::optional<CopyFailure> unlessAllowed(Records &server, ServerRows before)
{
    QString select = u"select has_function_privilege('%1', 'execute')"_s.arg(locking);
    if (before == ServerRows::Replace)
        select += u" and has_function_privilege('%1', 'execute')"_s.arg(emptying);
    const auto rows = ask(server, select);
    if (!rows)
        return rows.error();
    const bool isAllowed = !rows->isEmpty() && recordNumber(rows->constFirst().constFirst()) != 0;
    return isAllowed ? Failed() : notAllowed(before);
}

Result<StoreTrace, CopyFailure> traceOf(Records &server)
{
    StoreTrace trace;
    for (const CopiedTable &table : copiedTables()) {
        const QString highest = table.isShops() ? u"max(%1)"_s.arg(server.dialect().rowId) : u"0"_s;
        const auto rows = server.read(table.records(), {u"select count(*), %1 from %2"_s.arg(highest, table.name), {}});
        if (!rows)
            return Unexpected(copyFailureOf(rows.error(), table.name));
        for (const RecordRow &row : *rows)
            trace.insert(table.name, {recordText(row.at(0)), recordText(row.at(1))});
    }
    return trace;
}

Failed unlessUnwritten(Records &server, const StoreTrace &trace)
{
    const auto now = traceOf(server);
    if (!now)
        return now.error();
    QStringList written;
    for (const CopiedTable &table : copiedTables()) {
        if (now->value(table.name) != trace.value(table.name))
            written << table.name;
    }
    if (written.isEmpty())
        return {};
    return CopyFailure{.problem = u"Another program has written into the store meanwhile: "_s + written.join(u", "_s),
                       .advice = u"Close the tills and offices, then do it once more."_s};
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
        return Unexpected(copyFailureOf(rows.error()));
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
        return Unexpected(copyFailureOf(kept.error()));
    return copied;
}

} // namespace harrowby::app
