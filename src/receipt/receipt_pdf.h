// SPDX-License-Identifier: MIT
#pragma once

#include "receipt/receipt_layout.h"

#include <QByteArray>

namespace harrowby {

/// The receipt as a PDF whose text can be read back. Empty when it cannot be drawn.
[[nodiscard]] QByteArray receiptPdf(const std::vector<ReceiptLine> &lines, const QString &title);

} // namespace harrowby
