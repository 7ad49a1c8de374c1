// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

#include <optional>
#include <vector>

/// Head, totals and foot of a receipt, line by line, and in which font. An item line is purchaseElement() of
/// basic/purchase_text.h. How fonts are scaled so that a separator fits, wrapping and pages: receipt_layout.cpp.
namespace harrowby {

/// One step of a receipt: font settings to change, then the line to print.
struct ReceiptStep
{
    std::optional<QString> text; ///< none: only the font changes
    std::optional<int> fontSize; ///< points; none: as it was
    std::optional<bool> bold;    ///< none: as it was
};

/// The line between the parts of a receipt: 63 hyphens, counted in receipt_text.cpp. ReceiptLayout
/// scales all fonts so that at this size, bold or not, it fills the paper's width.
[[nodiscard]] QString receiptSeparator();
inline constexpr int receiptSeparatorFontSize = 10; ///< points

/// Title, address and heading, before the item lines.
[[nodiscard]] std::vector<ReceiptStep> receiptHeader(const QString &title, const QString &address);
/// After the item lines: number of cart lines and total, both in plain decimal form.
[[nodiscard]] std::vector<ReceiptStep> receiptTotals(float lineCount, const QString &currency, float total);
/// At the end, once the purchase ID is final.
[[nodiscard]] std::vector<ReceiptStep> receiptFooter(const QString &purchaseId, const QDateTime &time);

} // namespace harrowby
