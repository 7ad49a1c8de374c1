// SPDX-License-Identifier: MIT
#pragma once

#include "bench/raw_statements.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace harrowby::bench {

/// What the till asks of the database for one piece of work, and nothing more: what the ratios are measured against.
/// `offset` says which page is shown; the user may see everybody's sales.

/// `key` as it stands in the cart.
[[nodiscard]] RawStatements pressStatements(const QString &key, const QDateTime &now);
/// Only the writes of a press.
[[nodiscard]] RawStatements pressWrites(const QString &key, const QDateTime &now);
[[nodiscard]] RawStatements pageStatements(const QString &category, int offset);
[[nodiscard]] RawStatements dashboardStatements(const QDateTime &now, int offset);
/// One unit of each key is sold.
[[nodiscard]] RawStatements commitStatements(const QStringList &keys, const QDateTime &now, int offset);
[[nodiscard]] RawStatements loadStatements(const QDateTime &now);

/// Joins two lists.
[[nodiscard]] RawStatements operator+(RawStatements left, const RawStatements &right);
/// The line that every reported piece of work leaves in the log's table.
[[nodiscard]] RawStatement usageRow(const QString &message, const QDateTime &now);

} // namespace harrowby::bench
