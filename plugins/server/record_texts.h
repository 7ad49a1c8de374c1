// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/record_tables.h"

#include <harrowby/db_value.h>

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>

/// What the records' statements need on a server beside the dialect. Pure functions.
namespace harrowby::server {

/// Keeps the records' writes to these tables away until the transaction ends, and those of everybody to tables that are
/// the component's.
[[nodiscard]] QList<QByteArray> locksFor(const app::RecordTable &table);
/// Waits for such a lock, and for nobody else who writes. Empty for a table that is not the program's own.
[[nodiscard]] QList<QByteArray> locksForWriteTo(const QString &table);

/// The table that an INSERT, UPDATE or DELETE writes to.
[[nodiscard]] QString changedTable(const QString &statement);
/// Whether it can only add one row: then nobody needs to be asked how many there were.
[[nodiscard]] bool addsOneRow(const QString &statement);
/// `insert into T (a, b) values (?, ?)` for as many rows. Empty for every other statement.
[[nodiscard]] std::optional<QString> forRows(const QString &statement, qsizetype rows);

} // namespace harrowby::server
