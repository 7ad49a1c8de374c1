// SPDX-License-Identifier: MIT
#pragma once

#include "app/csv/csv_form.h"
#include "app/records/records.h"

namespace harrowby::app {

/// The form of the lists that a person saves: the separator and the decimal sign that the shop chose last, at first a
/// comma and a point, with the byte order mark by which spreadsheets know the letters.
[[nodiscard]] CsvForm savedListForm(Records &records);

/// Keeps a choice for the next list. A failure is told by the records; the list itself needs none of it.
void keepListForm(Records &records, const CsvForm &form);

} // namespace harrowby::app
