// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

namespace harrowby {

struct SqlError
{
    int code =
        0; ///< the engine's primary result code, 0 when it was not asked; SQLITE_READONLY_DBMOVED for a lost file
    QString reason; ///< the engine's own words, or what has happened to the file
};

/// One prepared SQLite statement; finalized when it goes. It never throws: what fails is kept as its error, and a
/// failed statement does not run.
class SqliteStatement
{
public:
    enum class Purpose {
        Any,    ///< whatever it is: the caller's own text
        Select, ///< a statement that yields rows and changes nothing
        Change, ///< an INSERT, UPDATE or DELETE
    };

    /// Prepares exactly the text, which must be one statement of that purpose; blanks and semicolons may follow it.
    /// A null `database` fails like anything else.
    SqliteStatement(sqlite3 *database, const QString &text, Purpose purpose);
    /// The caller's own text, with the values of ?1, ?2, …
    SqliteStatement(sqlite3 *database, const QString &text, const QList<DbValue> &values = {});

    [[nodiscard]] bool hasFailed() const { return m_error.has_value(); }
    [[nodiscard]] const std::optional<SqlError> &error() const { return m_error; }
    /// The engine's extended result code for the error, 0 when the engine was not asked.
    [[nodiscard]] int extendedCode() const { return m_extendedCode; }

    /// Lets the statement fail because the caller does not want it.
    void refuse(const QString &reason);

    /// Binds the parameter (1-based).
    void bind(int parameter, const DbValue &value);
    [[nodiscard]] DbCursor::Step step();
    /// Back before the first row, to be run again with other values. A statement that has failed stays so.
    void beginAgain();
    /// Moves to the next row; false at the end and on failure.
    [[nodiscard]] bool next() { return step() == DbCursor::Step::Row; }

    [[nodiscard]] QStringList columnNames() const;
    /// Value of a column (0-based) of the row that step() has reached, as it is stored; null when there is none.
    [[nodiscard]] DbValue value(int column) const;
    /// Any value as the engine writes it in a text; empty for null.
    [[nodiscard]] QString text(int column) const;
    /// Any value as the engine makes a number of it; 0 for null.
    [[nodiscard]] std::int64_t number(int column) const;
    /// UTF-8 of a text, good until the next step; empty for every other value.
    [[nodiscard]] std::optional<QByteArrayView> utf8(int column) const;

private:
    struct Finalize
    {
        void operator()(sqlite3_stmt *statement) const;
    };

    void prepare(const QByteArray &sql, Purpose purpose);
    [[nodiscard]] bool serves(Purpose purpose) const;
    void failAsEngineSays();

    sqlite3 *m_database;
    std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
    DbCursor::Step m_last = DbCursor::Step::Row;
    std::optional<SqlError> m_error;
    int m_extendedCode = 0;
};

/// What the engine says about its last failure on this connection.
[[nodiscard]] SqlError lastErrorOf(sqlite3 *database);

} // namespace harrowby
