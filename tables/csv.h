// SPDX-License-Identifier: MIT
#pragma once

#include "tables/table.h"

#include <QByteArray>

namespace harrowby::tables {

/// The headings and the rows as RFC 4180 has it: UTF-8, commas, lines that end with CR LF. Title and totals are left
/// out, so that a program that reads it finds rows only. A text that a spreadsheet would take for a formula gets an
/// apostrophe in front, which makes it plain text there.
///
/// Written by hand because Qt has no writer of CSV, and the two rules of quoting are less than a library to depend on.
[[nodiscard]] QByteArray toCsv(const Table &table);

} // namespace harrowby::tables
