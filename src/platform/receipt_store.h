// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace harrowby {

/// Where receipts are kept as PDF files, best first: "Harrowby Receipts" in the user's documents folder, and for
/// a documents folder that cannot be written, one in the user's data folder.
[[nodiscard]] QStringList receiptFolders();

/// Writes a receipt into the first folder that takes it and returns the path of the new file; it is on the disk
/// by then. The name tells the time ("Receipt 2026-11-20 14-07-09.pdf"); no file is ever overwritten. Failures are
/// logged; an empty path means that no folder took it, which the host is told. Receipt and folder are their owner's
/// alone.
[[nodiscard]] QString storeReceipt(const QByteArray &pdf, const QDateTime &time);

/// The name of a receipt file without its ending.
[[nodiscard]] QString receiptTitle(const QDateTime &time);

} // namespace harrowby
