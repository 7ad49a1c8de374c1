// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringView>

#include <functional>

namespace harrowby {

/// What the IDs of purchases begin with; a purchasedDate() (basic/dates.h) follows.
inline constexpr QStringView purchaseIdPrefix = u"HV";
inline constexpr QStringView secondPurchaseIdPrefix = u"HE"; ///< of one whose first ID was taken

/// The ID of a purchase: "HV" + yyMMddHHmmss + the minute once more. One second's resolution.
[[nodiscard]] QString purchaseId(const QDateTime &time);

/// What a purchase is saved under: `id`, or where the shop has one of that ID already, "HE" and the digits of the time
/// that is read then. Whether the "HE" ID is taken is not asked: a third purchase within one second of the clock is
/// saved under the same ID as the second purchase.
[[nodiscard]] QString purchaseIdToSave(const QString &id, bool isTaken, const std::function<QDateTime()> &now);

} // namespace harrowby
