// SPDX-License-Identifier: MIT
#include "plugins/server/server_problems.h"

#include "postgres/postgres_failure.h"

namespace harrowby::server {

namespace {

using Problem = app::ServerProblem::Kind;

Problem kindOf(PgError::Kind kind)
{
    switch (kind) {
    case PgError::Kind::CannotConnect:
    case PgError::Kind::Lost:
    case PgError::Kind::TimedOut:
        return Problem::NoServer;
    case PgError::Kind::BadTarget:
        return Problem::BadTarget;
    case PgError::Kind::Denied:
        return Problem::Denied;
    case PgError::Kind::NotTrusted:
        return Problem::NotTrusted;
    case PgError::Kind::Crowded:
        return Problem::Crowded;
    case PgError::Kind::Starting:
        return Problem::Starting;
    case PgError::Kind::Unfit:
        return Problem::NotAStore;
    case PgError::Kind::StoreTooOld:
        return Problem::SchemaTooOld;
    case PgError::Kind::StoreTooNew:
        return Problem::SchemaTooNew;
    case PgError::Kind::ReadOnly:
        return Problem::ReadOnly;
    case PgError::Kind::GivenUp:
        return Problem::GivenUp;
    default:
        return Problem::Other;
    }
}

} // namespace

app::ServerProblem problemOf(const PgError &error)
{
    return {kindOf(error.kind), error.text, postgres::stateOf(error)};
}

} // namespace harrowby::server
