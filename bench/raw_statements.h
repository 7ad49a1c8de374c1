// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

#include <vector>

struct sqlite3;

namespace harrowby {
class Statement;
}

namespace harrowby::bench {

/// One statement as a program without any layer would run it: prepared, stepped to the end, and of each row the
/// columns read that the till needs.
struct RawStatement
{
    QByteArray sql;
    QByteArrayList columns; ///< read from each row
    QByteArrayList values;  ///< bound to the statement's parameters, as text
};

using RawStatements = std::vector<RawStatement>;

[[nodiscard]] RawStatement readRows(const Statement &select, QByteArrayList columns);
/// A SELECT of which only the number of rows is wanted, in the cheapest form: counted, and in no order.
[[nodiscard]] RawStatement countRows(const Statement &select);
[[nodiscard]] RawStatement change(const Statement &statement);

/// Runs the statements one after the other, each one prepared anew; false when one fails.
bool runRaw(sqlite3 *database, const RawStatements &statements);

} // namespace harrowby::bench
