// SPDX-License-Identifier: MIT
#include "postgres/transaction.h"

#include <QCryptographicHash>

#include <utility>

namespace harrowby::postgres {

namespace {

using namespace Qt::StringLiterals;
using Kind = PgError::Kind;
using Outcome = Actions::Outcome;

// What is longer is not run again: it would keep everybody waiting, and its texts in memory.
constexpr std::size_t mostSteps = 500;
constexpr qsizetype mostText = 4'000'000;
constexpr int mostCollisions = 4; // of locks, as long as a single statement waits for one
constexpr int mostTries = 20;

// A statement whose program has gone ends, so that nobody waits for what it has locked. Not so the end of the
// transaction: its wait for a standby would end with it.
constexpr char endsWhenAlone[] = "set local client_connection_check_interval = 1000";
constexpr char commitText[] = "set local client_connection_check_interval = 0; commit";

QByteArray digestOf(const PgResults &results)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const PgResult &result : results) {
        hash.addData(QByteArray::number(static_cast<qlonglong>(result.affectedRows())));
        for (int row = 0; row < result.rowCount(); ++row) {
            for (int column = 0; column < result.columnCount(); ++column) {
                hash.addData(result.isNull(row, column) ? QByteArrayView("\1n") : QByteArrayView("\1v"));
                hash.addData(result.text(row, column));
            }
        }
    }
    return hash.result();
}

PgError changed()
{
    return {Kind::Refused, "HB002", u"the store has changed while the server could not be reached"_s, false};
}

PgError over()
{
    return {Kind::Refused, {}, u"a statement before it has failed"_s, false};
}

PgError broken()
{
    return {Kind::Lost, {}, u"The connection to the server broke"_s, false};
}

} // namespace

Transaction::Transaction(Writer &writer, QList<QByteArray> locks, QString what) :
    m_writer(writer), m_locks(std::move(locks)), m_what(std::move(what))
{
}

Transaction::~Transaction()
{
    rollBack();
}

Result<PgResults, PgError> Transaction::begin(const QByteArray &first)
{
    auto begun = beginOnce(first);
    for (; !begun; begun = beginOnce(first)) {
        if (begun.error().sqlState == arrivedBefore && ++m_tries == 1) {
            m_writer.retire();
        } else if (!goesOnAfter(begun.error())) {
            m_isOver = true;
            return begun;
        }
    }
    m_writer.setTransaction(this);
    if (!first.isEmpty())
        note(first, *begun);
    return begun;
}

Result<PgResults, PgError> Transaction::beginOnce(const QByteArray &first)
{
    const auto taken = m_writer.take();
    if (!taken)
        return Unexpected(taken.error());
    m_action = *taken;
    QList<QByteArray> before = {"begin", "select " + actionCall("act", m_action)};
    before << endsWhenAlone;
    before += m_locks;
    const QByteArray text = before.join(';') + ';' + first;
    ServerAccess &access = m_writer.access();
    auto results = access.again<PgResults>([&]() -> Result<PgResults, PgError> {
        if (auto reached = access.reach(); !reached)
            return Unexpected(std::move(reached).error());
        return access.session().run(text, access.budget());
    });
    if (results && results->size() < static_cast<std::size_t>(before.size()))
        return Unexpected(access.session().refuseAnswer());
    if (results)
        results->erase(results->begin(), results->begin() + before.size());
    else
        takeBack();
    return results;
}

/// Of the same work, once more. When it is in vain nothing of it is left in the session.
Result<void, PgError> Transaction::beginAnew(PgError why)
{
    for (;;) {
        leave(why);
        if (!goesOnAfter(why))
            return Unexpected(why);
        const auto begun = beginOnce();
        auto again = begun ? replay() : Result<void, PgError>(Unexpected(begun.error()));
        if (again)
            return again;
        why = std::move(again).error();
    }
}

Result<void, PgError> Transaction::replay()
{
    for (const Step &step : m_steps) {
        const auto results = runOnce(step.statements);
        if (!results)
            return Unexpected(results.error());
        if (digestOf(*results) != step.digest)
            return Unexpected(changed());
    }
    return {};
}

Result<PgResults, PgError> Transaction::runOnce(const QByteArray &statements)
{
    ServerAccess &access = m_writer.access();
    if (!access.session().isInTransaction())
        return Unexpected(broken());
    access.time().beginStatement();
    auto results = access.session().run(statements, access.budget());
    access.noteLocks();
    return results;
}

/// Whether the work can be run again, and another try may do better.
bool Transaction::goesOnAfter(const PgError &error)
{
    if (m_isLong || ++m_tries > mostTries)
        return false;
    if (mayPass(error))
        return !m_writer.access().time().isOver();
    const bool hasCollided = error.kind == Kind::Deadlock || error.kind == Kind::LockTimedOut;
    return hasCollided && ++m_collisions <= mostCollisions && m_writer.access().budget().lock.count() > 0;
}

void Transaction::note(const QByteArray &statements, const PgResults &results)
{
    m_size += statements.size();
    m_isLong = m_isLong || m_size > mostText || m_steps.size() >= mostSteps;
    if (m_isLong)
        m_steps.clear();
    else
        m_steps.push_back({statements, digestOf(results)});
}

Result<PgResults, PgError> Transaction::run(const QByteArray &statements)
{
    if (m_isOver)
        return Unexpected(over());
    for (;;) {
        auto results = runOnce(statements);
        if (results) {
            note(statements, *results);
            return results;
        }
        if (const auto begun = beginAnew(results.error()); !begun) {
            m_isOver = true; // what else is to be part of it still is, and is refused
            return Unexpected(begun.error());
        }
    }
}

Actions::End Transaction::commit()
{
    for (;;) {
        if (m_isOver)
            return finished({Outcome::Refused, over()});
        const auto results = runOnce(commitText);
        if (results)
            break;
        PgError error = results.error();
        if (error.mayBeDone || error.kind == Kind::NotConfirmed) {
            const Actions::End end = m_writer.find(m_action, m_what, error);
            if (end.outcome != Outcome::Refused)
                return finished(end);
            error = {Kind::Lost, error.sqlState, error.text, false};
        }
        if (const auto begun = beginAnew(error); !begun)
            return finished({Outcome::Refused, begun.error()});
    }
    return finished({Outcome::Done, {}});
}

Actions::End Transaction::finished(const Actions::End &end)
{
    m_isOver = true;
    m_writer.setTransaction(nullptr);
    return m_writer.ended(end);
}

void Transaction::rollBack()
{
    if (m_writer.transaction() == this)
        m_writer.setTransaction(nullptr);
    if (!std::exchange(m_isOver, true))
        takeBack();
}

/// After what has failed.
void Transaction::leave(const PgError &why)
{
    if (mayPass(why))
        m_writer.access().session().close(); // a server that takes no more writes would be asked again
    else
        takeBack();
}

void Transaction::takeBack()
{
    m_writer.access().session().rollBack(m_writer.access().budget());
}

} // namespace harrowby::postgres
