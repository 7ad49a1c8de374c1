// SPDX-License-Identifier: MIT
#pragma once

#include "tables/table.h"

#include <QByteArray>

namespace harrowby::tables {

/// The headings and the rows as RFC 4180 has it: UTF-8, commas, lines that end with CR LF. Title and totals are left
/// out, so that a program that reads it finds rows only. How a cell is quoted, and what becomes of texts that look like
/// formulas, is decided in basic/csv_cell.h.
///
/// Written by hand because Qt has no writer of CSV, and the two rules of quoting are less than a library to depend on.
[[nodiscard]] QByteArray toCsv(const Table &table);

} // namespace harrowby::tables
