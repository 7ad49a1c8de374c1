// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

#include <functional>

namespace harrowby {

/// The ID of a purchase: "HV" + yyMMddHHmmss + the minute once more. One second's resolution.
[[nodiscard]] QString purchaseId(const QDateTime &time);

/// What a purchase is saved under: `id`, or where the shop has one of that ID already, "HE" and the digits of the time
/// that is read then. That one is taken as it is: a third purchase of a second gets the ID of the second one.
[[nodiscard]] QString purchaseIdToSave(const QString &id, bool isTaken, const std::function<QDateTime()> &now);

} // namespace harrowby
