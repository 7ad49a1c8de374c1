// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/edits.h"
#include "postgres/sql_tokens.h"

#include <QString>

namespace harrowby::postgres {

/// Where the clauses of a SELECT begin, as tokens. One that is missing begins where the next one does.
struct Clauses
{
    explicit Clauses(const SqlTokens &tokens);

    qsizetype from = 0;
    qsizetype where = 0;
    qsizetype group = 0;
    qsizetype order = 0;
    qsizetype limit = 0;
    qsizetype end = 0;
    QString table;        ///< the only one that it reads, when that is one of the six, in small letters; else empty
    bool isPlain = false; ///< neither WITH nor DISTINCT, HAVING, a window, nor several SELECTs put together
};

/// Has the server yield the rows in the order in which a store file does.
void orderRows(const SqlTokens &tokens, const Clauses &clauses, Edits &edits);

} // namespace harrowby::postgres
