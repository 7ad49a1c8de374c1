// SPDX-License-Identifier: MIT
#pragma once

#include "app/csv/csv_form.h"
#include "app/start/errand_line.h"

#include <QString>

#include <optional>

namespace harrowby::app {

/// Puts what --separator and --decimal say into the form. Why they are refused; nothing when they are not.
[[nodiscard]] std::optional<QString> readFormOptions(const ErrandLine &line, CsvForm &form);

} // namespace harrowby::app
