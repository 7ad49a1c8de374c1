// SPDX-License-Identifier: MIT
#pragma once

#include <libpq-fe.h>

#include <memory>

namespace harrowby::bench {

struct PqEnd
{
    void operator()(PGresult *result) const { PQclear(result); }
    void operator()(PGconn *connection) const { PQfinish(connection); }
};

using PqAnswer = std::unique_ptr<PGresult, PqEnd>;
using PqConnection = std::unique_ptr<PGconn, PqEnd>;

} // namespace harrowby::bench
