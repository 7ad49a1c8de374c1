// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <utility>
#include <variant>
#include <vector>

namespace harrowby {

/// One value of one column with the type the engine stores it in: null, integer, real, text or bytes. Amounts of money
/// are numbers in the shop's currency unit (2.5 is two and a half), stock figures are pieces, and dates are texts.
using DbValue = std::variant<std::monostate, std::int64_t, double, QString, QByteArray>;

/// Column names and the values to write, in the order in which they were assigned.
using DbAssignments = std::vector<std::pair<QString, DbValue>>;

} // namespace harrowby
