// SPDX-License-Identifier: MIT
#pragma once

#include "store/recordset.h"
#include "store/statement.h"

#include <QStringList>

/// A result of rows that are called "row 0", "row 1" and so on, and how its tests go through it.
namespace harrowby::walk_rows {

extern const Statement everything;

/// The names of the rows from the current one on.
[[nodiscard]] QStringList rest(DbRecordset &rows);

[[nodiscard]] QStringList namesFrom(int first, int end);

void skip(DbRecordset &rows, int count);

} // namespace harrowby::walk_rows
