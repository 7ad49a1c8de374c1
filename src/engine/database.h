// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"
#include "engine/sqlite_statement.h"

#include <QList>
#include <QString>

#include <memory>
#include <optional>

struct sqlite3;

/// Opens databases, and runs statements on them in one go.
namespace harrowby {

struct CloseDatabase
{
    void operator()(sqlite3 *database) const noexcept;
};
using SqliteDatabase = std::unique_ptr<sqlite3, CloseDatabase>;

enum class OpenMode {
    Read,       ///< never writes
    ReadFrozen, ///< never writes, takes no lock, puts no file beside it; only for a file that nobody has open
    Write,
    Create, ///< as Write, and makes the file when it is missing, for its owner alone
};

/// Opens a database. A file that cannot be opened gives an error; one that turns out to be no database says so
/// at its first statement.
[[nodiscard]] Result<SqliteDatabase, SqlError> openDatabase(const QString &path, OpenMode mode);

/// Runs one statement to its end.
[[nodiscard]] std::optional<SqlError> runSql(sqlite3 *database, const QString &text, const QList<DbValue> &values = {});

/// First column of the first row; empty when there is none.
[[nodiscard]] QString readText(sqlite3 *database, const QString &text, const QList<DbValue> &values = {});

} // namespace harrowby
