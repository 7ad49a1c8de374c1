// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <utility>
#include <variant>
#include <vector>

namespace harrowby {

/// One value of one column: null, integer, real, text or bytes, as the engine holds it.
using DbValue = std::variant<std::monostate, std::int64_t, double, QString, QByteArray>;

/// Columns to write, in the order in which they were assigned.
using DbAssignments = std::vector<std::pair<QString, DbValue>>;

} // namespace harrowby
