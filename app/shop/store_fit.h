// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/store_problem.h"
#include "engine/database.h"

#include <QString>

#include <optional>

namespace harrowby::app {

/// Finds out whether what the component runs on the six tables can work: the columns it writes take values, the rows
/// it changes one by one have an identity, and no index, trigger or rule calls what is not there. Whatever else the
/// tables have is their owner's business. Reads the file's catalogue and writes nothing; the tables and columns
/// themselves must have been found already.
[[nodiscard]] std::optional<StoreProblem> judgeFit(sqlite3 *database, const QString &path);

} // namespace harrowby::app
