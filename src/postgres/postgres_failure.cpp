// SPDX-License-Identifier: MIT
#include "postgres/postgres_failure.h"

namespace harrowby::postgres {

namespace {

using namespace Qt::StringLiterals;

} // namespace

QString stateOf(const PgError &error)
{
    if (!error.sqlState.isEmpty())
        return QString::fromLatin1(error.sqlState);
    switch (error.kind) {
    case PgError::Kind::CannotConnect:
    case PgError::Kind::Starting:
    case PgError::Kind::BadTarget:
    case PgError::Kind::Unfit:
    case PgError::Kind::StoreTooOld:
    case PgError::Kind::StoreTooNew:
        return u"08001"_s;
    case PgError::Kind::Denied:
    case PgError::Kind::NotTrusted:
        return u"08004"_s;
    case PgError::Kind::Crowded:
        return u"53300"_s;
    case PgError::Kind::Lost:
        return u"08006"_s;
    case PgError::Kind::NotConfirmed:
        return u"08007"_s;
    case PgError::Kind::TimedOut:
    case PgError::Kind::GivenUp:
        return u"57014"_s;
    case PgError::Kind::ReadOnly:
        return u"25006"_s;
    case PgError::Kind::Full:
        return u"53100"_s;
    case PgError::Kind::LockTimedOut:
        return u"55P03"_s;
    case PgError::Kind::Deadlock:
        return u"40P01"_s;
    case PgError::Kind::Refused: // before it was sent
        return u"22000"_s;
    }
    return {};
}

DbFailure failureOf(DbFailure::Kind kind, const QString &statement, const PgError &error)
{
    return {kind, statement, error.text, 0, stateOf(error)};
}

DbFailure failureOf(const QString &statement, const Actions::End &end)
{
    DbFailure failure = failureOf(DbFailure::Kind::Write, statement, end.error);
    if (end.outcome == Actions::Outcome::Unknown)
        failure.engineState = u"08007"_s; // whatever was heard last
    return failure;
}

} // namespace harrowby::postgres
