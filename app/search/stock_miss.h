// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

#include <optional>

namespace harrowby::app {

/// A statement of the till that is about one item and has found none: the item was renamed, switched off or removed
/// since the till has shown it.
struct StockMiss
{
    enum class Kind {
        NotLowered, ///< a line of a purchase
        NotRaised,  ///< a line of a purchase that is taken back
        NotForSale, ///< what was to go into the cart
    };

    Kind kind = Kind::NotForSale;
    QString stockId;
    QString name;     ///< in capitals; empty with NotRaised, which looks for the ID alone
    double units = 0; ///< 0 with NotForSale
};

/// Whether this looks for an item to put into the cart. No other query can be a miss.
[[nodiscard]] bool looksForItem(QStringView select);
/// What it means when this statement finds no item; nothing for every other statement.
[[nodiscard]] std::optional<StockMiss> missOf(QStringView statement);

} // namespace harrowby::app
