// SPDX-License-Identifier: MIT
#pragma once

#include "app/errands/errand.h"
#include "basic/result.h"

namespace harrowby::app {

/// "--import FILE": compares a CSV file with the store, prints what it finds, and, without "--dry-run", imports it.
[[nodiscard]] Result<Errand, QString> readImportErrand(const ErrandLine &line);

} // namespace harrowby::app
