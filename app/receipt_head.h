// SPDX-License-Identifier: MIT
#pragma once

#include "office_settings.h"

#include <QPixmap>
#include <QString>

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

[[nodiscard]] ReceiptHead readReceiptHead(const OfficeSettings &settings);

/// Saves what differs from `before`. False when something of it could not be saved.
[[nodiscard]] bool saveReceiptHead(const OfficeSettings &settings, const ReceiptHead &before, const ReceiptHead &head);

/// Why the head cannot be taken, in words for a person: each part has one line of the receipt. Empty when it can.
/// Needs a QGuiApplication, for its fonts.
[[nodiscard]] QString receiptHeadProblem(const ReceiptHead &head);

/// A receipt with this head, as the printer sets it, `width` pixels wide.
[[nodiscard]] QPixmap receiptPreview(const ReceiptHead &head, int width, qreal pixelRatio);

} // namespace harrowby::app
