// SPDX-License-Identifier: MIT
#include <harrowby/postgres_connection.h>

#include "postgres/action_loop.h"
#include "postgres/connection_parts.h"
#include "postgres/dialect.h"
#include "postgres/postgres_failure.h"
#include "postgres/reader.h"
#include "postgres/schema.h"
#include "postgres/shop_memory.h"
#include "postgres/storable.h"
#include "postgres/writer.h"

#include <utility>

namespace harrowby {

namespace {

using namespace postgres;
using namespace Qt::StringLiterals;

PgTarget targetOf(const QString &target, const PostgresOptions &options)
{
    PgTarget made;
    made.conninfo = target.toUtf8();
    made.schemaVersion = schemaVersion;
    made.stateFolder = stateFolder(options.stateFolder);
    return made;
}

DbWait::For reasonOf(PgWaiting what)
{
    switch (what) {
    case PgWaiting::Connection:
        return DbWait::For::Connection;
    case PgWaiting::Lock:
        return DbWait::For::Lock;
    default:
        return DbWait::For::Answer;
    }
}

WriteOutcome outcomeOf(Actions::Outcome outcome)
{
    switch (outcome) {
    case Actions::Outcome::Done:
        return WriteOutcome::Done;
    case Actions::Outcome::Refused:
        return WriteOutcome::Refused;
    default:
        return WriteOutcome::Unknown;
    }
}

} // namespace

struct PostgresConnection::Private
{
    Private(const PostgresConnection &connection, const QString &target, PostgresOptions wanted);

    /// A read that is held, and the write that settle() will send.
    struct Held
    {
        HeldRead read;
        bool hasBegun = false;
        std::optional<Write> write = {};
    };

    const PostgresConnection &owner;
    PostgresOptions options;
    WaitHook hook;
    ActionTime time;
    ServerAccess access;
    Reader reader;
    Writer writer;
    ConnectionWatch watch;
    std::optional<Held> held;
    WriteOutcome lastWrite = WriteOutcome::Done;
    ActionLoop loop;

    [[nodiscard]] PgWaits waits();
    [[nodiscard]] bool goesOn(const PgWait &part);
    [[nodiscard]] std::unique_ptr<DbCursor> readHeld();
    [[nodiscard]] std::unique_ptr<DbCursor> read(const QString &select, DbReading how);
    bool write(Write &&write);
    bool send(const Write &write);
    bool refuse(const QString &what, const QString &reason);
    void report(DbFailure::Kind kind, const QString &what, const PgError &error) const;
    void rollBack();
};

PostgresConnection::Private::Private(const PostgresConnection &connection, const QString &target,
                                     PostgresOptions wanted) :
    owner(connection),
    options(std::move(wanted)), time(ActionLimits{options.silence, options.rest, options.lock}),
    access(targetOf(target, options), waits(), time),
    reader(
        access, [this](const QString &select, const PgError &error) { report(DbFailure::Kind::Read, select, error); },
        options.findsAnywhere),
    writer(access, options.stateFolder, options.rest), loop(time)
{
}

PgWaits PostgresConnection::Private::waits()
{
    PgWaits waits;
    waits.connecting = options.connecting;
    waits.answer = options.silence;
    waits.lock = options.lock;
    waits.hook = [this](const PgWait &part) { return goesOn(part); };
    return waits;
}

/// Called in the middle of a wait.
bool PostgresConnection::Private::goesOn(const PgWait &part)
{
    if (!hook)
        return true;
    const DbWait wait{reasonOf(part.what), time.waited(), writer.mayGiveUp(), part.isManyShortOnes};
    if (hook(wait) || !wait.mayGiveUp)
        return true;
    time.giveUp();
    writer.giveUp(); // where an answer has come at this very moment, the wait itself does not tell
    return false;
}

void PostgresConnection::Private::report(DbFailure::Kind kind, const QString &what, const PgError &error) const
{
    owner.reportFailure(failureOf(kind, what, error));
}

/// A write that is not even sent.
bool PostgresConnection::Private::refuse(const QString &what, const QString &reason)
{
    lastWrite = WriteOutcome::Refused;
    report(DbFailure::Kind::Write, what, {PgError::Kind::Refused, {}, reason, false});
    return false;
}

/// Under a hold it waits for settle(), which sends it with the end of the transaction.
bool PostgresConnection::Private::write(Write &&write)
{
    if (!held)
        return send(write);
    if (held->write)
        return refuse(write.what, u"a hold is for one write"_s);
    held->write = std::move(write);
    return true;
}

bool PostgresConnection::Private::send(const Write &write)
{
    const Actions::End end = writer.write(write);
    lastWrite = outcomeOf(end.outcome);
    if (end.outcome != Actions::Outcome::Done)
        owner.reportFailure(failureOf(write.what, end));
    else if (end.changed >= 0 && watch.changed)
        watch.changed(write.what, end.changed);
    return end.outcome == Actions::Outcome::Done;
}

std::unique_ptr<DbCursor> PostgresConnection::Private::readHeld()
{
    held->hasBegun = true;
    auto cursor = reader.held(held->read);
    if (!cursor)
        held.reset(); // what follows stands alone
    return cursor;
}

std::unique_ptr<DbCursor> PostgresConnection::Private::read(const QString &select, DbReading how)
{
    switch (how) {
    case DbReading::First:
        return reader.first(select);
    case DbReading::Walk:
    case DbReading::CountedWalk:
        return reader.walk(select, how == DbReading::CountedWalk);
    case DbReading::Count:
        return reader.counted(select);
    default:
        return reader.whole(select);
    }
}

void PostgresConnection::Private::rollBack()
{
    access.session().rollBack(access.budget());
}

PostgresConnection::PostgresConnection(const QString &target, PostgresOptions options) :
    d(std::make_unique<Private>(*this, target, std::move(options)))
{
}

PostgresConnection::~PostgresConnection() = default;

std::optional<DbFailure> PostgresConnection::open()
{
    d->time.begin();
    if (const auto error = d->writer.resolve())
        return failureOf(DbFailure::Kind::Read, {}, *error);
    return {};
}

bool PostgresConnection::isOpen() const
{
    return !d->access.session().isLost();
}

void PostgresConnection::beginAction()
{
    d->time.begin();
}

void PostgresConnection::setResolvedHandler(std::function<void(const QString &what, WriteOutcome known)> handler)
{
    if (!handler)
        return d->writer.setResolvedHandler({});
    d->writer.setResolvedHandler([handler = std::move(handler)](const QString &what, Actions::Outcome outcome) {
        handler(what, outcomeOf(outcome));
    });
}

bool PostgresConnection::Execute(const QString &statement)
{
    ServerText text = changeText(statement);
    if (!text)
        return d->refuse(statement, text.error());
    return d->write({{}, text->toUtf8(), statement});
}

std::unique_ptr<DbCursor> PostgresConnection::query(const QString &select)
{
    return queryAs(select, DbReading::Whole);
}

std::unique_ptr<DbCursor> PostgresConnection::queryAs(const QString &select, DbReading how)
{
    if (d->held && !d->held->hasBegun && d->held->read.select == select)
        return d->readHeld();
    auto cursor = d->read(select, how);
    if (cursor && d->watch.empty && cursor->rowCount() == 0)
        d->watch.empty(select);
    return cursor;
}

std::optional<std::int64_t> PostgresConnection::countRows(const QString &select)
{
    return d->reader.count(select);
}

std::optional<std::vector<DbRowId>> PostgresConnection::rowIds(const QString &select)
{
    return d->reader.rowIds(select);
}

bool PostgresConnection::insertRow(const QString &table, const DbAssignments &values)
{
    const QString what = u"INSERT "_s + table;
    if (const auto reason = unstorable(table, values))
        return d->refuse(what, *reason);
    QByteArray condition;
    if (d->held && d->held->hasBegun)
        condition = d->held->read.conditionOfInsert(d->reader.counting(d->held->read.select));
    return d->write({condition, insertText(table, values).toUtf8(), what, noteOfInsert(what, values)});
}

bool PostgresConnection::updateRow(const QString &table, DbRowId row, const DbAssignments &values)
{
    const QString what = u"UPDATE "_s + table;
    if (const auto reason = unstorable(table, values))
        return d->refuse(what, *reason);
    QByteArray condition;
    if (d->held && d->held->hasBegun)
        condition = d->held->read.conditionOfUpdate(table, row);
    return d->write({condition, updateText(table, row, values).toUtf8(), what});
}

QString PostgresConnection::location() const
{
    return d->options.location;
}

bool PostgresConnection::hold()
{
    return false;
}

bool PostgresConnection::holdFor(const QString &select, HeldWrite write)
{
    if (select.isEmpty() || d->held || d->access.session().isInTransaction())
        return false;
    d->held = Private::Held{{select, write}};
    return true;
}

bool PostgresConnection::settle(const QString &write)
{
    const auto held = std::exchange(d->held, std::nullopt);
    if (!held)
        return true;
    if (!write.isEmpty() && held->write)
        return d->send(*held->write);
    d->rollBack();
    d->lastWrite = WriteOutcome::Refused;
    return false;
}

bool PostgresConnection::mayHaveWritten() const
{
    return d->lastWrite == WriteOutcome::Unknown;
}

WriteOutcome PostgresConnection::lastWrite() const
{
    return d->lastWrite;
}

void PostgresConnection::setWaitHook(WaitHook hook)
{
    d->hook = std::move(hook);
}

postgres::ConnectionParts postgres::ConnectionParts::of(PostgresConnection &connection)
{
    PostgresConnection::Private &parts = *connection.d;
    return {parts.access, parts.writer, parts.watch};
}

} // namespace harrowby
