// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace harrowby {

/// The receipts folders, the preferred one first: "Harrowby Receipts" in the user's documents folder, and, when that
/// cannot be written, in the user's data folder.
[[nodiscard]] QStringList receiptFolders();

/// Writes a receipt into the first receipts folder that can be written, syncs it to the disk and returns its path. The
/// name tells the time ("Receipt 2026-11-20 14-07-09.pdf"); no file is ever overwritten. Failures are logged; an empty
/// path means that no folder could be written, which is reported to the host. File and folder are private (0600, 0700).
[[nodiscard]] QString keepReceipt(const QByteArray &pdf, const QDateTime &time);

/// The name of a receipt file without its ending.
[[nodiscard]] QString receiptTitle(const QDateTime &time);

} // namespace harrowby
