// SPDX-License-Identifier: MIT
#include <harrowby/db_connection.h>

#include "basic/logging.h"

#include <utility>

namespace harrowby {

namespace {

/// Masks the typed password at the end of a login's statement, for handler and log.
QString withoutPassword(const QString &statement)
{
    constexpr QLatin1StringView condition("UPPER(Password) = ");
    const qsizetype found = statement.indexOf(condition);
    return found < 0 ? statement : statement.left(found + condition.size()) + QLatin1StringView("'...'");
}

QString codeOf(const DbFailure &failure)
{
    return failure.engineState.isEmpty() ? QString::number(failure.engineCode) : failure.engineState;
}

} // namespace

DbCursor::~DbCursor() = default;
DbConnection::~DbConnection() = default;

void DbConnection::setFailureHandler(FailureHandler handler)
{
    m_failureHandler = std::move(handler);
}

void DbConnection::reportFailure(const DbFailure &failure) const noexcept
{
    try {
        DbFailure told = failure;
        told.statement = withoutPassword(failure.statement);
        qCWarning(lcStore).noquote() << told.reason << codeOf(told) << told.statement;
        // A copy, as the handler may replace itself or drop the host's last reference to this connection.
        if (const FailureHandler handler = m_failureHandler)
            handler(told);
    } catch (...) {
        // Whatever the host's handler does, the statement's caller goes on.
    }
}

bool DbConnection::hold()
{
    return false;
}

bool DbConnection::settle(const QString & /*write*/)
{
    return true;
}

bool DbConnection::mayHaveWritten() const
{
    return true;
}

WriteOutcome DbConnection::lastWrite() const
{
    return mayHaveWritten() ? WriteOutcome::Unknown : WriteOutcome::Refused;
}

std::unique_ptr<DbCursor> DbConnection::queryAs(const QString &select, DbReading /*how*/)
{
    return query(select);
}

bool DbConnection::holdFor(const QString & /*select*/, HeldWrite /*write*/)
{
    return hold();
}

void DbConnection::setWaitHook(WaitHook /*hook*/) {}

} // namespace harrowby
