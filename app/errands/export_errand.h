// SPDX-License-Identifier: MIT
#pragma once

#include "app/errands/errand.h"
#include "basic/result.h"

namespace harrowby::app {

/// "--export KIND FILE": a list of the store as a CSV file, which takes the place of one of that name.
[[nodiscard]] Result<Errand, QString> readExportErrand(const ErrandLine &line);

} // namespace harrowby::app
