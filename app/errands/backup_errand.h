// SPDX-License-Identifier: MIT
#pragma once

#include "app/errands/errand.h"
#include "basic/result.h"

namespace harrowby::app {

/// "--backup FOLDER [--keep N]": a checked copy of the store in that folder, under a name that says which store's and
/// when; with N, older ones of these go.
[[nodiscard]] Result<Errand, QString> readBackupErrand(const ErrandLine &line);

} // namespace harrowby::app
