// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

namespace harrowby {

/// One prepared SQLite statement; finalized when it goes. It never throws: what fails is kept as its error, and a
/// failed statement does not run.
class SqliteStatement
{
public:
    enum class Purpose {
        Select, ///< a statement that yields rows and changes nothing
        Change, ///< an INSERT, UPDATE or DELETE
    };

    /// Prepares exactly the text, which must be one statement of that purpose; blanks and semicolons may follow it.
    /// A null `database` fails like anything else.
    SqliteStatement(sqlite3 *database, const QString &text, Purpose purpose);

    [[nodiscard]] bool hasFailed() const { return m_failed; }
    [[nodiscard]] const QString &error() const { return m_error; }
    /// The engine's extended result code, 0 when the engine was not asked.
    [[nodiscard]] int errorCode() const { return m_errorCode; }

    /// Lets the statement fail because the caller does not want it.
    void refuse(const QString &reason);

    /// Binds the parameter (1-based).
    void bind(int parameter, const DbValue &value);
    [[nodiscard]] DbCursor::Step step();

    [[nodiscard]] QStringList columnNames() const;
    /// Value of a column (0-based) of the row that step() has reached; null when there is none.
    [[nodiscard]] DbValue value(int column) const;
    /// UTF-8 of a text, good until the next step; empty for every other value.
    [[nodiscard]] std::optional<QByteArrayView> text(int column) const;

private:
    struct Finalize
    {
        void operator()(sqlite3_stmt *statement) const;
    };

    void prepare(const QByteArray &sql, Purpose purpose);
    [[nodiscard]] bool serves(Purpose purpose) const;
    void fail(const QString &reason, int code);
    void failAsEngineSays();

    sqlite3 *m_database;
    std::unique_ptr<sqlite3_stmt, Finalize> m_statement;
    DbCursor::Step m_last = DbCursor::Step::Row;
    bool m_failed = false;
    QString m_error;
    int m_errorCode = 0;
};

} // namespace harrowby
