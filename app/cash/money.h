// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

/// Money as whole cents, so that sums of it are exact; the tables of the counter keep floating-point numbers.
namespace harrowby::app {

using Cents = std::int64_t;

/// An amount as it is stored, to the nearest cent and halves to the even one. Empty for what is no finite number, or
/// has more cents than a double counts one by one (53 bits).
[[nodiscard]] std::optional<Cents> centsOf(double amount);
/// The sum of a purchase, as the number that it is stored as.
[[nodiscard]] std::optional<Cents> centsOf(float total);

/// "1,234.50", as the counter writes money.
[[nodiscard]] QString centsText(Cents amount);

} // namespace harrowby::app
