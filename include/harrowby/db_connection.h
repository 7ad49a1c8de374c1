// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_value.h>
#include <harrowby/export.h>

#include <QByteArrayView>
#include <QString>
#include <QStringList>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace harrowby {

class SelectedRows;

/// A statement that was not carried out. The component shows the user nothing and goes on with the next step; the host
/// learns of it through DbConnection::setFailureHandler().
struct DbFailure
{
    enum class Kind {
        Read,  ///< a SELECT: a list stays empty, a figure keeps its old value
        Write, ///< an UPDATE, INSERT or DELETE: the table keeps what it had
    };

    Kind kind = Kind::Read;
    QString statement;  ///< the statement's text, or for a row written by column "INSERT <table>" / "UPDATE <table>";
                        ///< a typed password is left out
    QString reason;     ///< the engine's message, or why the component refused the statement; English, one line
    int engineCode = 0; ///< SQLite's extended result code (SQLITE_...); 0 when the statement never reached it, and with
                        ///< every other engine
    QString engineState = {}; ///< the code of an engine that says it by SQLSTATE (five characters); else empty
};

/// What has become of a write.
enum class WriteOutcome {
    Done,    ///< it is in the database
    Refused, ///< for certain it is not
    Unknown, ///< it failed in a way that leaves open whether it is
};

/// How the rows of a SELECT are going to be read. No rows, columns or orders depend on it; but behind the tenth row,
/// those of First may be of a later moment than its count and the rows before, and so may all rows of Count.
enum class DbReading {
    Whole, ///< all of them, at once
    First, ///< perhaps only the first ten, and DbCursor::rowCount(); perhaps all
    Walk,  ///< a long result, row by row from front to back, while the window handles events and other statements run
    CountedWalk, ///< the same, with DbCursor::rowCount() before the first row
    Count, ///< DbCursor::rowCount(), where the engine can tell it without the rows; these only when next() is called
};

/// The write that a hold is for: see DbConnection::holdFor().
enum class HeldWrite {
    Change, ///< of a row that the SELECT yields
    Insert, ///< of a row that the SELECT has looked for
};

/// A wait in the middle of a statement, as DbConnection::setWaitHook() tells of it.
struct DbWait
{
    enum class For {
        Connection, ///< the engine cannot be reached, yet or any more
        Answer,     ///< it has a statement and has not answered
        Lock,       ///< another program has locked what the statement needs
    };

    For what = For::Answer;
    std::chrono::milliseconds since{0}; ///< how long this statement has waited
    bool mayGiveUp = false;             ///< whether the statement ends when the hook returns false
    bool isManyShortOnes = false;       ///< answers that came soon; the hook is called for their sum
};

/// Identifies one stored row within its table (SQLite's rowid).
using DbRowId = std::int64_t;

/// Forward-only result of one SELECT. The caller of DbConnection::query() owns it and destroys it before the
/// connection; destroying it releases the engine's statement. No function throws. Used on the user-interface thread
/// only.
class HARROWBY_EXPORT DbCursor
{
public:
    enum class Step {
        Row,    ///< the cursor stands on the next row
        Done,   ///< no row is left
        Failed, ///< the engine failed; the failure has been reported through reportFailure(), once
    };

    DbCursor() = default;
    DbCursor(const DbCursor &) = delete;
    DbCursor &operator=(const DbCursor &) = delete;
    virtual ~DbCursor();

    /// Names of the result's columns, in its order; known before the first next().
    [[nodiscard]] virtual QStringList columnNames() const = 0;
    /// Goes to the next row; a new cursor stands before the first one. After Done and Failed it returns the same again.
    [[nodiscard]] virtual Step next() = 0;
    /// Value of a column of the current row, with its stored type. Precondition: next() returned Row, and `column` is
    /// an index into columnNames().
    [[nodiscard]] virtual DbValue value(int column) const = 0;
    /// A text value as UTF-8 in the engine's own memory, valid until the next call of next(), so that long lists are
    /// filled without a copy. Empty (nullopt) for every other type, and where the engine cannot offer it; the caller
    /// then uses value(). Precondition as for value().
    [[nodiscard]] virtual std::optional<QByteArrayView> text(int /*column*/) const { return {}; }

    /// Identity of the current row, where the engine hands it over with the row. Empty (nullopt), as in this default,
    /// where it does not; the caller then asks DbConnection::rowIds(). Precondition as for value().
    [[nodiscard]] virtual std::optional<DbRowId> rowId() const { return {}; }
    /// Number of all rows of the result, of the same moment as the rows, where it is known without a further statement.
    /// Empty (nullopt), as in this default, where it is not; the caller then asks DbConnection::countRows().
    [[nodiscard]] virtual std::optional<std::int64_t> rowCount() const { return {}; }
    /// Whether this cursor may stay as it is while its connection writes, shows a box or waits for a person: its rows
    /// need nothing more of the engine that anybody else could wait for. In this default it may not, and the caller
    /// reads the remaining rows before a write, or lets the cursor go.
    [[nodiscard]] virtual bool standsApart() const noexcept { return false; }
};

/// The host's open database connection, as the component uses it. SqliteConnection implements it over a `sqlite3 *`;
/// implement it to run the component over another engine that understands SQLite's dialect. Functions that are not pure
/// virtual are for engines that can do better than their defaults.
///
/// Ownership: shared. The component keeps its reference after its window has been closed, until the next
/// Init::LoadInventory() hands in another connection (or null) or the process ends. The database behind it stays the
/// host's: the component never opens, configures or closes it.
///
/// Threads: every function is called on the user-interface thread, one statement at a time. Several cursors may be open
/// while another statement runs.
///
/// Transactions: none, each statement stands alone; the exception is a read and its write between hold() and settle().
///
/// Errors: an operation signals failure by its result and reports it once through reportFailure(). Operations should
/// not throw; the component treats an exception as that operation's failure and reports it.
///
/// No function needs a QApplication or a QCoreApplication.
class HARROWBY_EXPORT DbConnection
{
public:
    using FailureHandler = std::function<void(const DbFailure &)>;
    using WaitHook = std::function<bool(const DbWait &)>;

    DbConnection() = default;
    DbConnection(const DbConnection &) = delete;
    DbConnection &operator=(const DbConnection &) = delete;
    virtual ~DbConnection();

    /// Runs exactly one UPDATE, INSERT or DELETE. False when it failed; true also when it matched no row.
    virtual bool Execute(const QString &statement) = 0;

    /// Starts exactly one SELECT; the caller owns the cursor. Null when the engine refuses the statement; what fails
    /// later, DbCursor::next() tells.
    [[nodiscard]] virtual std::unique_ptr<DbCursor> query(const QString &select) = 0;

    /// Number of rows that a SELECT yields, counted by the engine without handing them over. Empty when it failed.
    [[nodiscard]] virtual std::optional<std::int64_t> countRows(const QString &select) = 0;

    /// Identities of the rows of a SELECT over one table, in the order in which query() yields them. Called while a
    /// cursor of the same text stands on its first row, so that both see the same rows. Empty (nullopt) when it failed
    /// or the rows have no identity (a view, a join, a table WITHOUT ROWID); nothing is written by row then.
    [[nodiscard]] virtual std::optional<std::vector<DbRowId>> rowIds(const QString &select) = 0;

    /// Inserts one row; columns that are not assigned take the table's defaults. False when it failed.
    virtual bool insertRow(const QString &table, const DbAssignments &values) = 0;

    /// Updates the assigned columns of the row with this identity, and no other row. False when it failed; true also
    /// when the row has been deleted meanwhile.
    virtual bool updateRow(const QString &table, DbRowId row, const DbAssignments &values) = 0;

    /// The host's installation folder, or the path of its library "Harrowby.dll" there; may be empty. The component
    /// removes each occurrence of "Harrowby.dll" (in this spelling) from it and nothing else, so that a trailing
    /// separator stays, and passes the rest to the report as `folder` (harrowby/report_component.h). Used for nothing
    /// else.
    [[nodiscard]] virtual QString location() const = 0;

    /// Sets the one handler, which is called with each failure as it happens, in the middle of the component's step; an
    /// empty one switches it off. The handler must not throw, enter an event loop or run statements on this connection.
    /// It may replace itself.
    void setFailureHandler(FailureHandler handler);

    /// For implementations: logs a failure in the category "harrowby.store" and calls the handler. Never throws; an
    /// exception out of the handler is swallowed.
    void reportFailure(const DbFailure &failure) const noexcept;

    /// Takes the write lock (in SQLite: an immediate transaction), so that a row is read and the value computed from it
    /// written without another program's write in between. The component runs that one read and that one write next,
    /// shows no box and enters no event loop, and calls settle().
    /// True when the lock is held; only then settle() follows. False, with nothing changed, within a transaction of the
    /// host's own, when the lock is refused (another program has it, say), or when the engine has no such operation, as
    /// in this default. The component then reads and writes without it. A refusal is not reported as a failure.
    virtual bool hold();

    /// Commits or rolls back what hold() began. `write` names the write that was done, as in DbFailure::statement: it
    /// is committed. An empty `write` (nothing was written, or the write failed) rolls back. Returns whether it is
    /// committed now, which is the write's result. A commit that fails is rolled back, reported as the failure of
    /// `write`, and false. Without a hold nothing happens, and the result is true.
    virtual bool settle(const QString &write);

    /// Asked right after Execute(), insertRow(), updateRow() or settle() has returned false for a write: whether the
    /// change may be in the database nevertheless, because the engine failed when it had perhaps been committed
    /// already. A host is told with this whether a purchase was stored (harrowby/counter.h). True, as in this default,
    /// where the engine cannot tell. The component asks lastWrite(), whose default asks this.
    [[nodiscard]] virtual bool mayHaveWritten() const;

    /// What has become of the last write, asked right after Execute(), insertRow(), updateRow() or settle() has
    /// returned; of a write that fails, also within the failure handler. Under a hold only settle() settles it. This
    /// default knows nothing of writes that succeed, and of one that has returned false what mayHaveWritten() says.
    [[nodiscard]] virtual WriteOutcome lastWrite() const;

    /// query() for a caller that knows how it will read the rows. Same rows and errors; this default is query().
    [[nodiscard]] virtual std::unique_ptr<DbCursor> queryAs(const QString &select, DbReading how);

    /// hold() for a caller that knows which SELECT it will run next and what it will write, so that an engine that
    /// locks rows locks what they concern and nothing else. An empty `select` stands for none. This default is hold().
    ///
    /// The engine may take the lock with that SELECT only: then a lock that is refused lets the SELECT fail, which is
    /// reported, and the write stands alone.
    virtual bool holdFor(const QString &select, HeldWrite write);

    /// Sets the one hook, for an engine whose answers may take long: it is called at least every 50 milliseconds while
    /// a statement waits, in the middle of the component's step, and paints what is waited for; also when none waits
    /// long and many do so without the event loop running between them. It may handle no events
    /// but its own sign's, must not throw, and runs no statement. Returning false ends the wait where
    /// DbWait::mayGiveUp says so; the statement fails then, unless its answer is there. An empty hook switches it off.
    /// In this default it is never called: SQLite waits in the host's own busy handler.
    virtual void setWaitHook(WaitHook hook);

private:
    friend class SelectedRows;
    friend void finishWalks(const std::shared_ptr<DbConnection> &connection) noexcept;
    friend void finishWalksInTheWay(const std::shared_ptr<DbConnection> &connection) noexcept;

    FailureHandler m_failureHandler;
    /// The component's results that still fetch rows, the innermost loop's last. Never touched by implementations.
    std::vector<SelectedRows *> m_walks;
};

} // namespace harrowby
