// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QLatin1StringView>
#include <QString>

#include <vector>

/// The texts of a purchase: what is asked, stored, shown and logged of it.
namespace harrowby {

/// A cart line as its cells show it, commas included.
struct PurchaseLine
{
    QString quantity;
    QString key; ///< the item key
    QString amount;
};

/// The joints of a purchase's stored text.
namespace purchase {
inline constexpr QLatin1StringView quantityJoint(" x ");
inline constexpr QLatin1StringView amountJoint(" = ");
inline constexpr QLatin1StringView elementJoint(", ");
} // namespace purchase

/// quantity " x " key " = " amount: an element of the stored text, and an item line of the receipt.
[[nodiscard]] QString purchaseElement(const PurchaseLine &line);
/// The elements joined by ", ".
/// Intended: a ", " within a name is not escaped, though an undo splits there: the stored text is a fixed format.
[[nodiscard]] QString purchasedItems(const std::vector<PurchaseLine> &lines);

/// The question before a commit, with the numbered lines.
[[nodiscard]] QString checkoutQuestion(const std::vector<PurchaseLine> &lines);
/// What a confirmed commit leaves in the activity log.
[[nodiscard]] QString checkoutLogLine(int lineCount, float total);
/// The box after a commit.
[[nodiscard]] QString purchaseSummary(const QString &purchaseId, const QString &purchasedItems, float lineCount,
                                      float total, const QDateTime &time);

} // namespace harrowby
