// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QLatin1StringView>
#include <QString>

#include <optional>
#include <vector>

/// Head, totals and foot of a receipt, line by line, and in which font; and the heading of a reprint. An item line is
/// purchaseElement() of basic/purchase_text.h. How much goes into a line: receipt_width.h. Wrapping and pages:
/// receipt_layout.cpp.
namespace harrowby {

/// One step of a receipt: font settings to change, then the line to print.
struct ReceiptStep
{
    std::optional<QString> text; ///< none: only the font changes
    std::optional<int> fontSize; ///< points; none: as it was
    std::optional<bool> bold;    ///< none: as it was
};

/// Title, address and heading, before the item lines.
[[nodiscard]] std::vector<ReceiptStep> receiptHeader(const QString &title, const QString &address);
/// After the item lines: number of cart lines and total, both in plain decimal form.
[[nodiscard]] std::vector<ReceiptStep> receiptTotals(float lineCount, const QString &currency, float total);
/// At the end, once the purchase ID is final.
[[nodiscard]] std::vector<ReceiptStep> receiptFooter(const QString &purchaseId, const QDateTime &time);

/// Stands over a receipt that is printed again.
inline constexpr QLatin1StringView reprintHeading("***REPRINTED COPY***");

} // namespace harrowby
