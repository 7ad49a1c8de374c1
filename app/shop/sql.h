// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_value.h>

#include <QString>
#include <QVariant>
#include <QVariantList>

#include <memory>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

/// The few uses of SQLite that the program has for itself: opening, judging and creating a store file. What the
/// window reads and writes goes through the component's own connection.
namespace harrowby::app {

struct SqlError
{
    int code = 0;   ///< the engine's primary result code; SQLITE_READONLY_DBMOVED once the store is lost
    QString reason; ///< the engine's own words
};

struct CloseDatabase
{
    void operator()(sqlite3 *database) const noexcept;
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

enum class OpenMode {
    Read,       ///< never writes
    ReadFrozen, ///< never writes, takes no lock, puts no file beside it; only for a file that nobody has open
    Write,
    Create, ///< as Write, and makes the file when it is missing, for its owner alone
};

/// Opens a database. A file that cannot be opened gives an error; one that turns out to be no database says so
/// at its first statement.
[[nodiscard]] std::optional<SqlError> openDatabase(const QString &path, OpenMode mode, Database &database);

/// One prepared statement. Destroying it releases it.
class SqlQuery
{
public:
    SqlQuery(sqlite3 *database, const QString &text, const QVariantList &values = {});
    SqlQuery(const SqlQuery &) = delete;
    SqlQuery &operator=(const SqlQuery &) = delete;
    ~SqlQuery();

    /// Moves to the next row; false at the end and on failure.
    [[nodiscard]] bool next();
    [[nodiscard]] QString text(int column) const;
    [[nodiscard]] qint64 number(int column) const;
    /// As it is stored.
    [[nodiscard]] DbValue value(int column) const;
    [[nodiscard]] const std::optional<SqlError> &error() const { return m_error; }

private:
    void bind(int position, const QVariant &value);
    void noteError();

    sqlite3 *m_database;
    sqlite3_stmt *m_statement = nullptr;
    std::optional<SqlError> m_error;
};

/// Runs one statement to its end.
[[nodiscard]] std::optional<SqlError> runSql(sqlite3 *database, const QString &text, const QVariantList &values = {});

/// First column of the first row; empty when there is none.
[[nodiscard]] QString readText(sqlite3 *database, const QString &text, const QVariantList &values = {});

} // namespace harrowby::app
