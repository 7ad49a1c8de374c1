// SPDX-License-Identifier: MIT
#pragma once

#include "bench/statement_lists.h"

namespace harrowby::bench {

/// As in statement_lists.h, for the manager's actions at the counter.

[[nodiscard]] RawStatements stockListStatements();
/// `row` is the item's row in the stock list, counted from 0, and `texts` what stands there. `saleCategory` is the
/// one chosen in the custom sale, whose items are listed again.
[[nodiscard]] RawStatements saveStatements(int row, const QStringList &texts, const QString &saleCategory,
                                           const QDateTime &now);
/// One unit comes in.
[[nodiscard]] RawStatements reorderStatements(int row, const QStringList &texts, const QDateTime &now, int offset);
[[nodiscard]] RawStatements saleCategoryStatements(const QString &category);
/// With the store program's comparison, which the connection must know.
/// Takes back a purchase of one unit of each key.
[[nodiscard]] RawStatements undoStatements(const QString &purchaseId, const QStringList &keys, const QDateTime &now,
                                           int offset);
/// Deletes such a purchase, of which no line is logged.
[[nodiscard]] RawStatements deletePurchaseStatements(const QString &purchaseId, const QStringList &keys,
                                                     const QDateTime &now, int offset);
[[nodiscard]] RawStatements purchaseIdStatements();

} // namespace harrowby::bench
