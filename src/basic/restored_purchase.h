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

/// The elements of a stored purchase: its text split at every ", ". A name that holds one falls into two elements,
/// neither of which is whole; that is how it has always been read.
[[nodiscard]] QStringList purchaseElements(const QString &purchasedItems);

/// quantity " x " ID "  |  " name " = " amount, all its separators alike: a name that holds " x " or " = " ends there.
/// Empty when a piece is missing, or when the quantity does not fit 16 bits.
[[nodiscard]] std::optional<RestoredLine> restoredLine(const QString &element);

} // namespace harrowby
