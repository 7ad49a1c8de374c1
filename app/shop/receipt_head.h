// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/office_settings.h"
#include "basic/result.h"

#include <QPixmap>
#include <QString>

#include <optional>

namespace harrowby::app {

/// What the saved settings hold for receipts and for the report.
struct ReceiptHead
{
    QString title;
    QString address;
    QString currency; ///< the label in the line of the total
    bool emailReport = true;
    bool operator==(const ReceiptHead &) const = default;
};

/// What a new shop is asked for: each part that this user has not saved yet.
struct ReceiptProposal
{
    std::optional<QString> title;
    std::optional<QString> currency;
    bool operator==(const ReceiptProposal &) const = default;
};

/// Proposes what is not saved yet: a title, and the currency of the user's country.
[[nodiscard]] ReceiptProposal proposeReceipt(const OfficeSettings &settings);

/// Saves what a new shop was asked for, and that no daily report is mailed from it; only what is not saved yet.
/// False when something of it could not be saved.
[[nodiscard]] bool saveNewShop(const OfficeSettings &settings, const ReceiptProposal &chosen);

[[nodiscard]] ReceiptHead readReceiptHead(const OfficeSettings &settings);

/// Saves what differs from `before`. False when something of it could not be saved.
[[nodiscard]] bool saveReceiptHead(const OfficeSettings &settings, const ReceiptHead &before, const ReceiptHead &head);

/// Whether the head can be taken, or why not, in words for a person: each part has one line of the receipt.
/// Needs a QGuiApplication, for its fonts.
[[nodiscard]] Result<void, QString> checkReceiptHead(const ReceiptHead &head);

/// A receipt with this head, as the printer sets it, `width` pixels wide.
[[nodiscard]] QPixmap receiptPreview(const ReceiptHead &head, int width, qreal pixelRatio);

} // namespace harrowby::app
