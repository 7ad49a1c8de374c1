// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

/// A stored purchase taken apart again, to give its stock back.
namespace harrowby {

struct RestoredLine
{
    std::int16_t quantity = 0;
    QString stockId;   ///< trimmed
    QString stockName; ///< as it was stored
};

/// The elements of a stored purchase: its text split at every ", ".
/// Intended: a name that holds ", " becomes two elements. Of "2 x A1  |  TEA, GREEN = 5.00" the first one is a line all
/// the same, with the name "TEA"; the second one is none, but takes the place of a line in the count of lines.
[[nodiscard]] QStringList splitPurchase(const QString &purchasedItems);

/// Parses quantity " x " ID "  |  " name " = " amount. Empty when one of the first three is missing (the amount may be,
/// as the price is read from the stock again), or when the quantity does not fit 16 bits. Intended: all separators
/// count alike, so that a name that holds " x " or " = " ends there.
[[nodiscard]] std::optional<RestoredLine> restoredLine(const QString &element);

} // namespace harrowby
