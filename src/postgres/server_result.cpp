// SPDX-License-Identifier: MIT
#include "postgres/server_result.h"

#include <libpq-fe.h>

#include <cstdlib>

namespace harrowby {

void PgResult::Clear::operator()(pg_result *result) const noexcept
{
    PQclear(result);
}

int PgResult::rowCount() const
{
    return PQntuples(m_result.get());
}

int PgResult::columnCount() const
{
    return PQnfields(m_result.get());
}

QByteArray PgResult::columnName(int column) const
{
    return PQfname(m_result.get(), column);
}

std::uint32_t PgResult::columnType(int column) const
{
    return PQftype(m_result.get(), column);
}

bool PgResult::isNull(int row, int column) const
{
    return PQgetisnull(m_result.get(), row, column) != 0;
}

QByteArrayView PgResult::text(int row, int column) const
{
    return {PQgetvalue(m_result.get(), row, column), PQgetlength(m_result.get(), row, column)};
}

std::int64_t PgResult::affectedRows() const
{
    return m_result ? std::strtoll(PQcmdTuples(m_result.get()), nullptr, 10) : 0;
}

} // namespace harrowby
