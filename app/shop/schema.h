// SPDX-License-Identifier: MIT
#pragma once

#include "engine/database.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/// The store file's tables and indexes; docs/database.md explains each.
namespace harrowby::app {

inline constexpr int storeApplicationId = 0x48726279; ///< "Hrby"
inline constexpr int storeSchemaVersion = 1;

struct StoreTable
{
    QString name;
    QStringList columns; ///< names
    QStringList types;   ///< declared types, one a column
};

struct StoreIndex
{
    QString name;  ///< "harrowby_…"
    QString table; ///< as in storeTables()
    QString body;  ///< what stands behind "ON <table>"
};

/// The six tables that the component needs.
[[nodiscard]] const QList<StoreTable> &storeTables();
/// One index for each way in which the component looks for rows, in the order in which they are made.
[[nodiscard]] const QList<StoreIndex> &storeIndexes();

/// Whether this program, or an older one, has made the file: it bears storeApplicationId.
[[nodiscard]] bool isOwnStore(sqlite3 *database);
/// Makes the six empty tables.
[[nodiscard]] std::optional<SqlError> createTables(sqlite3 *database);
/// Makes the indexes that the file lacks. An index of the same definition under another name counts as had.
/// The number of indexes made.
[[nodiscard]] Result<int, SqlError> createMissingIndexes(sqlite3 *database);

} // namespace harrowby::app
