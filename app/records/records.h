// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/record_dialect.h"
#include "app/records/record_tables.h"
#include "basic/result.h"

#include <harrowby/db_connection.h>
#include <harrowby/db_value.h>

#include <QByteArrayView>
#include <QDateTime>
#include <QList>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

namespace harrowby::app {

/// Bytes are there for what other programs may have put into the component's tables; the program's own hold none.
using RecordValue = DbValue;
using RecordRow = QList<RecordValue>;

/// A statement and its values. A "?" of the text stands for the next value; what a person has typed comes in as a value
/// and never as text, so no "?" stands in a literal. The text is plain SQL that every engine understands.
struct RecordStatement
{
    QString text;
    QList<RecordValue> values;
    const RecordTable *table = nullptr; ///< made before it is written together with writes to another one
};

/// One row of a result, good until the next one is fetched.
class RecordCells
{
public:
    RecordCells() = default;
    virtual ~RecordCells() = default;
    RecordCells(const RecordCells &) = delete;
    RecordCells &operator=(const RecordCells &) = delete;

    [[nodiscard]] virtual int count() const = 0;
    [[nodiscard]] virtual RecordValue value(int column) const = 0;
    /// UTF-8 of a text, where the engine has it without a copy; empty for every other value, and where it has not.
    [[nodiscard]] virtual std::optional<QByteArrayView> utf8(int /*column*/) const { return {}; }
};

/// The store program's own records, whatever the engine. Used by one thread at a time. No function throws, waits for a
/// person, or enters an event loop.
///
/// A table is made before the first write to it; until then it reads as one without rows.
///
/// Errors: a statement that fails is logged and handed to the failure handler, once, and returned.
class Records
{
public:
    using FailureHandler = std::function<void(const DbFailure &)>;
    template <typename T>
    using Answer = Result<T, DbFailure>;

    Records() = default;
    virtual ~Records() = default;
    Records(const Records &) = delete;
    Records &operator=(const Records &) = delete;

    /// All rows of a SELECT over this table and, if need be, the component's six.
    [[nodiscard]] Answer<QList<RecordRow>> read(const RecordTable &table, const RecordStatement &statement);
    /// All rows of a SELECT over the component's six tables alone.
    [[nodiscard]] Answer<QList<RecordRow>> read(const RecordStatement &statement);
    /// Takes rows one by one, so that a long list is never held whole. False to be done.
    using RowTaker = std::function<bool(const RecordCells &)>;
    /// All rows of a SELECT over this table (null: over the component's six alone), until `take` returns false; whether
    /// it never did. `take` must not use the records, and may throw.
    [[nodiscard]] Answer<bool> readEach(const RecordTable *table, const RecordStatement &statement,
                                        const RowTaker &take);
    /// The number of rows that an INSERT, UPDATE or DELETE has changed.
    [[nodiscard]] Answer<std::int64_t> write(const RecordTable &table, const RecordStatement &statement);
    /// Several writes: all of them, or none. The rows that each has changed. A write that is not to `table`, nor to one
    /// of the component's, names its own.
    [[nodiscard]] Answer<QList<std::int64_t>> writeTogether(const RecordTable &table,
                                                            const QList<RecordStatement> &statements);

    /// The same when `mayWrite` says so, which reads with no other program's write between it and these. False, and
    /// nothing is written, when it does not.
    [[nodiscard]] Answer<bool> writeTogetherIf(const RecordTable &table, const std::function<Answer<bool>()> &mayWrite,
                                               const QList<RecordStatement> &statements);

    /// One statement, once for each of these rows of values: quicker than as many writes. The rows changed. Those
    /// before the one that fails stay written, unless this is within `together`.
    [[nodiscard]] Answer<std::int64_t> writeEach(const RecordTable &table, const QString &text,
                                                 const QList<QList<RecordValue>> &rows);

    /// Runs reads and writes with no other program's write between them. They are kept when `work` returns true, and
    /// undone when it returns false or when keeping them fails; whether they were kept. A failure in `work` has been
    /// told already when it returns. Not within another one. `name` is what it is told by where nobody knows whether it
    /// was kept (isUnknown()): a verb, the table, and what it concerns; empty for "UPDATE" and the table.
    [[nodiscard]] Answer<bool> together(const RecordTable &table, const std::function<bool()> &work,
                                        const QString &name = {});

    /// Makes the table where it is not there, before `together` begins with another one. The failure, which is told.
    [[nodiscard]] std::optional<DbFailure> prepare(const RecordTable &table);

    /// What this engine has another word for.
    [[nodiscard]] virtual const RecordDialect &dialect() const;
    /// Why a table cannot hold these values (English, one line, begins with a small letter); nothing when it can. A
    /// store file holds whatever it is given.
    [[nodiscard]] virtual std::optional<QString> unstorable(const QString &table, const DbAssignments &values) const;
    /// The value as the table will hold it. Precondition: it is storable. A store file converts by itself.
    [[nodiscard]] virtual RecordValue converted(const QString &table, const QString &column,
                                                const RecordValue &value) const;
    /// Whether nobody knows if what has failed was done; ServerStore::setResolvedHandler() tells it later.
    [[nodiscard]] static bool isUnknown(const DbFailure &failure);

    /// Called with each failure as it happens; must not throw, enter an event loop or use these records.
    void setFailureHandler(FailureHandler handler) { m_failureHandler = std::move(handler); }

    /// Reports a write that was not even tried, because of what could not be read before it.
    void tellNotTried(const RecordTable &table, const DbFailure &reading) const;

    /// Called before each write: where another reader of the same connection is in the middle of a long list, SQLite
    /// refuses a write once another program has written. It may end such reads; must not throw.
    void setBeforeWriting(std::function<void()> prepare) { m_beforeWriting = std::move(prepare); }

protected:
    /// How the engine does it. Each returns the failure, which is told by its caller.
    virtual Answer<bool> hasTable(const RecordTable &table) = 0;
    /// Has the engine refuse to change or delete rows of a table that is there; asked before each write to a table that
    /// is only added to. An engine with rights of its own has nothing to do here.
    virtual std::optional<DbFailure> keepRows(const RecordTable &table);
    virtual Answer<QList<RecordRow>> select(const RecordStatement &statement) = 0;
    /// In this default all of them are read first.
    virtual Answer<bool> selectEach(const RecordStatement &statement, const RowTaker &take);
    virtual Answer<std::int64_t> change(const RecordStatement &statement) = 0;
    virtual Answer<std::int64_t> changeEach(const QString &text, const QList<QList<RecordValue>> &rows) = 0;
    /// Takes the write lock for work that begins with this table. `name` as together() is told it, never empty.
    virtual std::optional<DbFailure> begin(const RecordTable &table, const QString &name) = 0;
    virtual std::optional<DbFailure> commit() = 0;
    virtual void rollBack() = 0;

private:
    /// Without `mayWrite` they are always written. Also false when the work was broken off.
    [[nodiscard]] Answer<bool> writeAll(const RecordTable &table, const std::function<Answer<bool>()> &mayWrite,
                                        const QList<RecordStatement> &statements, QList<std::int64_t> &changed);
    [[nodiscard]] std::optional<DbFailure> make(const RecordTable &table, const QString &forStatement);
    DbFailure told(DbFailure failure) const;

    FailureHandler m_failureHandler;
    std::function<void()> m_beforeWriting;
};

/// ISO 8601 in UTC with milliseconds: such texts sort as the times do.
[[nodiscard]] QString recordTime(const QDateTime &moment);
/// Invalid for any other text.
[[nodiscard]] QDateTime timeOfRecord(const QString &text);

/// A value as text; a number in its shortest form, null as an empty text.
[[nodiscard]] QString recordText(const RecordValue &value);
/// A value as a whole number; 0 for what is none.
[[nodiscard]] std::int64_t recordNumber(const RecordValue &value);
/// A value as a number; 0 for what is none.
[[nodiscard]] double recordReal(const RecordValue &value);

} // namespace harrowby::app
