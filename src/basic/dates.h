// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

/// Dates as the tables, the log and the receipts hold them. Month names are English everywhere, so that a file
/// means the same on every machine.
namespace harrowby {

/// "yyMMddHHmmss"
[[nodiscard]] QString purchasedDate(const QDateTime &time);
/// "yyMMdd": the first six characters of a purchasedDate().
[[nodiscard]] QString dayKey(const QDateTime &time);
/// The dayKey() of a purchasedDate(), from its text.
[[nodiscard]] QString dayKeyOf(const QString &purchased);
/// "dd.MM.yy HH:mm:ss", in the activity log on screen.
[[nodiscard]] QString activityLogTime(const QDateTime &time);
/// "yyyy-MM-dd HH:mm:ss", in SysUsage.
[[nodiscard]] QString usageTime(const QDateTime &time);
/// "dd-MMM-yy HH:mm:ss", of a stock item's last change.
[[nodiscard]] QString stockTime(const QDateTime &time);
/// "dd/MMM/yyyy HH:mm:ss", on receipts.
[[nodiscard]] QString receiptTime(const QDateTime &time);
/// "yyyy/MMM/dd HH:mm:ss", in the summary of a purchase.
[[nodiscard]] QString summaryTime(const QDateTime &time);

} // namespace harrowby
