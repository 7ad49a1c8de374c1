// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_value.h>
#include <harrowby/export.h>

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace harrowby {

class SelectedRows;

/// A statement that was not carried out. The component goes on without a word to the user; this is how
/// its host learns of it.
struct DbFailure
{
    enum class Kind {
        Read,  ///< a SELECT: a list stays empty, a figure keeps its old value
        Write, ///< an UPDATE, INSERT or DELETE: the table keeps what it had
    };

    Kind kind = Kind::Read;
    QString statement;  ///< the statement's text, or for a row written by column "INSERT <table>" / "UPDATE <table>";
                        ///< a typed password is left out
    QString reason;     ///< the engine's own message, or why the statement was refused before it got there
    int engineCode = 0; ///< the engine's (extended) result code; 0 when the statement never reached it
};

/// Identity of one stored row within its table, for writing that row and no other.
using DbRowId = std::int64_t;

/// Forward-only result of one SELECT. Destroying it releases whatever the engine holds for it.
class HARROWBY_EXPORT DbCursor
{
public:
    enum class Step {
        Row,    ///< the cursor stands on a further row
        Done,   ///< no row is left
        Failed, ///< the engine gave up; the failure has been reported
    };

    DbCursor() = default;
    DbCursor(const DbCursor &) = delete;
    DbCursor &operator=(const DbCursor &) = delete;
    virtual ~DbCursor();

    [[nodiscard]] virtual QStringList columnNames() const = 0;
    [[nodiscard]] virtual Step next() = 0;
    /// Value of a column (0-based) of the row the cursor stands on.
    [[nodiscard]] virtual DbValue value(int column) const = 0;
    /// The same of a text, as UTF-8 in the engine's own memory, good until the next step: long lists are filled from
    /// it without a copy. Empty for every other value, and from an engine that cannot offer it.
    [[nodiscard]] virtual std::optional<QByteArrayView> text(int /*column*/) const { return {}; }
};

/// The host's open database connection, as the component uses it.
///
/// The host owns the database: the component never opens, configures or closes it, and drops its reference
/// when the host hands in another one. Everything happens on the user-interface thread, one statement at a
/// time, and each stands alone but for a read and its write that are held together (see hold()). Implement this
/// interface to run the component over another engine that speaks SQLite's dialect; SqliteConnection is the ready one.
///
/// Operations signal failure by their result and report it once through reportFailure(). They should not
/// throw; what they throw nevertheless is treated as that operation's failure.
class HARROWBY_EXPORT DbConnection
{
public:
    using FailureHandler = std::function<void(const DbFailure &)>;

    DbConnection() = default;
    DbConnection(const DbConnection &) = delete;
    DbConnection &operator=(const DbConnection &) = delete;
    virtual ~DbConnection();

    /// Runs exactly one UPDATE, INSERT or DELETE. A statement that matches no row succeeds.
    virtual bool Execute(const QString &statement) = 0;

    /// Runs exactly one SELECT; null when it is refused.
    [[nodiscard]] virtual std::unique_ptr<DbCursor> query(const QString &select) = 0;

    /// Number of rows that a SELECT yields, found as cheaply as the engine can, without reading them.
    [[nodiscard]] virtual std::optional<std::int64_t> countRows(const QString &select) = 0;

    /// Identities of the rows of a SELECT over one table, in the order in which query() yields them.
    /// Called while a cursor of the same text stands on its first row, so both see the same rows.
    [[nodiscard]] virtual std::optional<std::vector<DbRowId>> rowIds(const QString &select) = 0;

    /// Adds one row; columns that are not assigned take the table's defaults.
    virtual bool insertRow(const QString &table, const DbAssignments &values) = 0;

    /// Writes the assigned columns of one row and of no other.
    virtual bool updateRow(const QString &table, DbRowId row, const DbAssignments &values) = 0;

    /// The host's installation folder, handed on to the report component.
    [[nodiscard]] virtual QString location() const = 0;

    /// Asks to be told of every failure, as it happens, on the user-interface thread. One handler; an empty
    /// one switches it off. The handler must not throw, enter an event loop or run statements here.
    void setFailureHandler(FailureHandler handler);

    /// Tells the failure handler and the logging category "harrowby.store". Never throws.
    void reportFailure(const DbFailure &failure) const noexcept;

    /// Begins to hold what is read next together with the one write that is computed from it: until settle(), nobody
    /// else writes. Nothing but that read and that write happens in between, neither a box nor an event loop.
    /// True when it holds, and only then settle() follows. False, and nothing has changed, when it does not: within a
    /// transaction of the host's own, when it is refused (for another program keeps the lock, say), or when the engine
    /// knows no such thing, as here. The read and the write go on all the same. A refusal is not reported as a failure.
    virtual bool hold();

    /// Ends what hold() began. `write` names the write that was done, as in DbFailure::statement, and it is kept;
    /// empty when nothing was written or the write failed, and what there is of it is taken back.
    /// Whether what was held is committed now: the write's result. A commit that fails keeps nothing, and is reported
    /// as the failure of `write`. Without a hold nothing happens, and it is true.
    virtual bool settle(const QString &write);

private:
    friend class SelectedRows;
    friend void finishWalks(const std::shared_ptr<DbConnection> &connection) noexcept;

    FailureHandler m_failureHandler;
    /// The component's results whose rows are fetched while loops go, those of entered handlers last.
    std::vector<SelectedRows *> m_walks;
};

} // namespace harrowby
