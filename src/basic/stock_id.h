// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1StringView>
#include <QString>

#include <cstdint>
#include <functional>

/// The automatic ID of a stock item: the beginning of its category and a number, "BEV-0001".
namespace harrowby {

/// The text of the ID field that asks for one.
inline constexpr QLatin1StringView automaticIdText("(Auto ID)");

/// Behind the prefix, it ends the IDs that move the beginning of the numbers: they are counted behind as many.
inline constexpr QLatin1StringView markedIdEnding("-*");

/// First three characters of the category, upper-cased; a shorter category gives fewer.
[[nodiscard]] QString automaticIdPrefix(const QString &category);
/// prefix "-" number, which has four digits at least.
[[nodiscard]] QString automaticId(const QString &prefix, std::int16_t number);

/// The first one above `last` that no item has. Empty when the numbers, which are of 16 bits, have run out.
[[nodiscard]] QString freeAutomaticId(const QString &prefix, std::int16_t last,
                                      const std::function<bool(const QString &id)> &isTaken);

} // namespace harrowby
