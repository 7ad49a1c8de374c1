// SPDX-License-Identifier: MIT
#include "plugins/server/postgres_records.h"

#include "plugins/server/record_texts.h"
#include "plugins/server/row_cells.h"
#include "postgres/dialect.h"
#include "postgres/postgres_failure.h"
#include "postgres/schema.h"
#include "postgres/storable.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::server {

namespace {

using namespace postgres;
using app::RecordRow;
using app::RecordStatement;
using app::RecordTable;
using app::RecordValue;
using Kind = DbFailure::Kind;
using Outcome = Actions::Outcome;

/// Until the server takes a program for dead that says nothing in the middle of a transaction.
constexpr char longIdleTime[] = "set local idle_in_transaction_session_timeout = 120000";

/// Sent as one statement.
constexpr qsizetype rowsAtOnce = 200;

/// Of a long list that is read in a transaction.
constexpr int rowsInOnePiece = 10'000;

DbFailure refused(Kind kind, const QString &text, const QString &reason)
{
    return {kind, text, reason, 0};
}

/// The statement with its values, in the server's dialect.
ServerText textOf(const RecordStatement &statement, ServerText (*inDialect)(const QString &))
{
    const ServerText text = withValues(statement.text, statement.values);
    return text ? inDialect(*text) : text;
}

ServerText selectOf(const QString &statement)
{
    return selectText(statement);
}

PgError momentIsGone()
{
    return {
        PgError::Kind::Lost, {}, u"The connection to the server broke in the middle of what belongs together"_s, false};
}

QString asFigure(const QString &expression)
{
    return u"cast("_s + expression + u" as double precision)"_s;
}

} // namespace

PostgresRecords::PostgresRecords(std::shared_ptr<void> session, ServerAccess &access, Writer &writer) :
    m_session(std::move(session)), m_access(access), m_writer(writer)
{
}

PostgresRecords::~PostgresRecords()
{
    m_transaction.reset(); // before the session goes
    releaseMoment();
}

void PostgresRecords::beforeAction() const
{
    if (m_beforeAction && m_writer.transaction() == nullptr && !m_holdsMoment)
        m_beforeAction();
}

Result<PgResults, PgError> PostgresRecords::read(const QByteArray &text)
{
    if (Transaction *transaction = m_writer.transaction())
        return transaction->run(text);
    if (!m_holdsMoment)
        return m_access.read(text);
    if (!m_access.session().isInTransaction())
        return Unexpected(momentIsGone());
    return m_access.session().run(text, m_access.budget());
}

const app::RecordDialect &PostgresRecords::dialect() const
{
    static const app::RecordDialect ofServers = {QLatin1StringView(identityColumn), &asFigure};
    return ofServers;
}

std::optional<QString> PostgresRecords::unstorable(const QString &table, const DbAssignments &values) const
{
    return postgres::unstorable(table, values);
}

RecordValue PostgresRecords::converted(const QString &table, const QString &column, const RecordValue &value) const
{
    return postgres::converted(table, column, value);
}

/// All of them are asked for at once; one that is there stays.
app::Records::Answer<bool> PostgresRecords::hasTable(const RecordTable &table)
{
    const QString name = table.name.toLower();
    if (m_tables.contains(name))
        return true;
    beforeAction();
    const auto results =
        read("select relname from pg_class where relnamespace = 'harrowby'::regnamespace and relkind = 'r'");
    if (!results)
        return Unexpected(failureOf(Kind::Read, u"look for "_s + table.name, results.error()));
    const PgResult &names = results->back();
    for (int i = 0; i < names.rowCount(); ++i)
        m_tables << QString::fromUtf8(names.text(i, 0));
    return m_tables.contains(name);
}

app::Records::Answer<QList<RecordRow>> PostgresRecords::select(const RecordStatement &statement)
{
    const ServerText text = textOf(statement, &selectOf);
    if (!text)
        return Unexpected(refused(Kind::Read, statement.text, text.error()));
    beforeAction();
    const auto results = read(text->toUtf8());
    if (!results)
        return Unexpected(failureOf(Kind::Read, statement.text, results.error()));
    return rowsOf(results->back(), statement.text);
}

app::Records::Answer<bool> PostgresRecords::selectEach(const RecordStatement &statement, const RowTaker &take)
{
    const ServerText text = textOf(statement, &selectOf);
    if (!text)
        return Unexpected(refused(Kind::Read, statement.text, text.error()));
    if (m_writer.transaction() != nullptr)
        return selectInPieces(statement, text->toUtf8(), take);
    beforeAction();
    if (auto reached = m_holdsMoment ? Result<void, PgError>() : m_access.reach(); !reached)
        return Unexpected(failureOf(Kind::Read, statement.text, reached.error()));
    if (m_holdsMoment && !m_access.session().isInTransaction())
        return Unexpected(failureOf(Kind::Read, statement.text, momentIsGone()));
    auto rows = m_access.session().walk(text->toUtf8(), m_access.budget());
    if (!rows)
        return Unexpected(failureOf(Kind::Read, statement.text, rows.error()));
    const WalkedCells cells(*rows, statement.text);
    while (rows->next() == PgRows::Step::Row) {
        if (!take(cells))
            return false;
    }
    if (rows->error())
        return Unexpected(failureOf(Kind::Read, statement.text, *rows->error()));
    return true;
}

/// By a cursor of the server's: read once, however many pieces it is, and a transaction that is run again reads the
/// same pieces.
app::Records::Answer<bool> PostgresRecords::selectInPieces(const RecordStatement &statement, const QByteArray &text,
                                                           const RowTaker &take)
{
    Transaction &transaction = *m_writer.transaction();
    const QByteArray name = "harrowby_list_" + QByteArray::number(++m_lists);
    const QByteArray fetch = "fetch " + QByteArray::number(rowsInOnePiece) + " from " + name;
    auto piece = transaction.run("declare " + name + " no scroll cursor for " + text + ';' + fetch);
    bool goesOn = true;
    while (piece && takeRows(piece->back(), statement.text, take, goesOn) == rowsInOnePiece && goesOn)
        piece = transaction.run(fetch);
    if (piece)
        piece = transaction.run("close " + name);
    if (!piece)
        return Unexpected(failureOf(Kind::Read, statement.text, piece.error()));
    return goesOn;
}

/// What makes a table does no harm when it is done twice.
app::Records::Answer<std::int64_t> PostgresRecords::make(const RecordStatement &statement)
{
    const auto results = read(statement.text.toUtf8());
    if (!results)
        return Unexpected(failureOf(Kind::Write, statement.text, results.error()));
    return 0;
}

app::Records::Answer<std::int64_t> PostgresRecords::change(const RecordStatement &statement)
{
    if (m_holdsMoment || !m_writes)
        return Unexpected(refused(Kind::Write, statement.text, u"this connection only reads"_s));
    beforeAction();
    if (statement.text.startsWith("create "_L1))
        return make(statement);
    const ServerText text = textOf(statement, &changeText);
    if (!text)
        return Unexpected(refused(Kind::Write, statement.text, text.error()));
    if (m_writer.transaction() == nullptr)
        return changeAlone(statement.text, text->toUtf8());
    const auto results = m_writer.transaction()->run(text->toUtf8());
    if (!results)
        return Unexpected(failureOf(Kind::Write, statement.text, results.error()));
    return results->back().affectedRows();
}

/// How many rows were changed has to be known also when the last answer is lost; so it is heard before the commit.
app::Records::Answer<std::int64_t> PostgresRecords::changeAlone(const QString &text, const QByteArray &serverText)
{
    const QList<QByteArray> locks = locksForWriteTo(changedTable(text));
    if (addsOneRow(text)) {
        const QByteArray condition = locks.isEmpty() ? QByteArray() : locks.join(';') + ';';
        const Actions::End end = m_writer.write({condition, serverText, text});
        return end.outcome == Outcome::Done ? Answer<std::int64_t>(1) : Unexpected(failureOf(text, end));
    }
    Transaction transaction(m_writer, locks, text);
    const auto results = transaction.begin(serverText);
    if (!results)
        return Unexpected(failureOf(Kind::Write, text, results.error()));
    const std::int64_t changed = results->back().affectedRows();
    const Actions::End end = transaction.commit();
    return end.outcome == Outcome::Done ? Answer<std::int64_t>(changed) : Unexpected(failureOf(text, end));
}

app::Records::Answer<std::int64_t> PostgresRecords::changeEach(const QString &text,
                                                               const QList<QList<RecordValue>> &rows)
{
    if (m_writer.transaction() == nullptr || !forRows(text, 1))
        return changeOneByOne(text, rows);
    std::int64_t changed = 0;
    for (qsizetype first = 0; first < rows.size(); first += rowsAtOnce) {
        const qsizetype count = std::min(rowsAtOnce, rows.size() - first);
        RecordStatement several{forRows(text, count).value_or(QString()), {}};
        for (const QList<RecordValue> &row : rows.sliced(first, count))
            several.values << row;
        const auto put = change(several);
        if (!put)
            return Unexpected(DbFailure{Kind::Write, text, put.error().reason, 0, put.error().engineState});
        changed += *put;
    }
    return changed;
}

app::Records::Answer<std::int64_t> PostgresRecords::changeOneByOne(const QString &text,
                                                                   const QList<QList<RecordValue>> &rows)
{
    std::int64_t changed = 0;
    for (const QList<RecordValue> &row : rows) {
        const auto put = change({text, row});
        if (!put)
            return put;
        changed += *put;
    }
    return changed;
}

std::optional<DbFailure> PostgresRecords::begin(const RecordTable &table, const QString &name)
{
    if (m_writer.transaction() != nullptr || m_holdsMoment || !m_writes)
        return refused(Kind::Write, name, u"something else that belongs together is not done yet"_s);
    beforeAction();
    QList<QByteArray> locks = locksFor(table);
    if (m_worksForLong)
        locks.prepend(longIdleTime);
    auto transaction = std::make_unique<Transaction>(m_writer, std::move(locks), name);
    if (const auto begun = transaction->begin(); !begun)
        return failureOf(Kind::Write, name, begun.error());
    m_transaction = std::move(transaction);
    return {};
}

std::optional<DbFailure> PostgresRecords::commit()
{
    const auto transaction = std::exchange(m_transaction, nullptr);
    if (!transaction)
        return refused(Kind::Write, u"commit"_s, u"nothing was begun"_s);
    if (m_aroundCommit)
        m_aroundCommit(true);
    const Actions::End end = transaction->commit();
    if (m_aroundCommit)
        m_aroundCommit(false);
    return end.outcome == Outcome::Done ? std::nullopt : std::optional(failureOf(u"commit"_s, end));
}

void PostgresRecords::rollBack()
{
    m_transaction.reset();
}

std::optional<DbFailure> PostgresRecords::holdMoment()
{
    beforeAction();
    if (m_writer.transaction() != nullptr || m_holdsMoment)
        return refused(Kind::Read, u"begin"_s, u"something else that belongs together is not done yet"_s);
    const auto begun = m_access.read("begin transaction isolation level repeatable read read only; select 1");
    if (!begun)
        return failureOf(Kind::Read, u"begin"_s, begun.error());
    m_holdsMoment = true;
    return {};
}

void PostgresRecords::releaseMoment()
{
    if (std::exchange(m_holdsMoment, false))
        m_access.session().rollBack(m_access.budget());
}

} // namespace harrowby::server
