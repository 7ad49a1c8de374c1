// SPDX-License-Identifier: MIT
#include "app/records/records.h"

#include "basic/logging.h"
#include "basic/numbers.h"

#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = DbFailure::Kind;

/// Too few values would be nulls to SQLite, and no statement to a server.
std::optional<DbFailure> misfit(Kind kind, const RecordStatement &statement)
{
    const qsizetype marks = statement.text.count(u'?');
    if (marks == statement.values.size())
        return {};
    return DbFailure{kind, statement.text,
                     u"%1 values were given for %2 marks"_s.arg(statement.values.size()).arg(marks), 0};
}

/// Of a row that was read before.
class ReadCells final : public RecordCells
{
public:
    explicit ReadCells(const RecordRow &row) : m_row(row) {}
    [[nodiscard]] int count() const override { return static_cast<int>(m_row.size()); }
    [[nodiscard]] RecordValue value(int column) const override { return m_row.at(column); }

private:
    const RecordRow &m_row;
};

} // namespace

Records::Answer<QList<RecordRow>> Records::read(const RecordTable &table, const RecordStatement &statement)
{
    const auto there = hasTable(table);
    if (!there)
        return Unexpected(told(there.error()));
    return *there ? read(statement) : QList<RecordRow>();
}

Records::Answer<QList<RecordRow>> Records::read(const RecordStatement &statement)
{
    if (auto failure = misfit(Kind::Read, statement))
        return Unexpected(told(*std::move(failure)));
    auto rows = select(statement);
    if (!rows)
        return Unexpected(told(rows.error()));
    return rows;
}

Records::Answer<bool> Records::readEach(const RecordTable *table, const RecordStatement &statement,
                                        const RowTaker &take)
{
    const auto there = table != nullptr ? hasTable(*table) : Answer<bool>(true);
    if (!there)
        return Unexpected(told(there.error()));
    if (!*there)
        return true;
    if (auto failure = misfit(Kind::Read, statement))
        return Unexpected(told(*std::move(failure)));
    auto end = selectEach(statement, take);
    if (!end)
        return Unexpected(told(end.error()));
    return end;
}

Records::Answer<bool> Records::selectEach(const RecordStatement &statement, const RowTaker &take)
{
    const auto rows = select(statement);
    if (!rows)
        return Unexpected(rows.error());
    for (const RecordRow &row : *rows) {
        if (!take(ReadCells(row)))
            return false;
    }
    return true;
}

Records::Answer<std::int64_t> Records::write(const RecordTable &table, const RecordStatement &statement)
{
    auto failure = misfit(Kind::Write, statement);
    if (!failure)
        failure = make(table, statement.text);
    if (failure)
        return Unexpected(told(*std::move(failure)));
    auto rows = change(statement);
    if (!rows)
        return Unexpected(told(rows.error()));
    return rows;
}

Records::Answer<QList<std::int64_t>> Records::writeTogether(const RecordTable &table,
                                                            const QList<RecordStatement> &statements)
{
    QList<std::int64_t> changed;
    const auto kept = writeAll(table, {}, statements, changed);
    if (!kept)
        return Unexpected(kept.error());
    if (!*kept)
        return Unexpected(told({Kind::Write, u"UPDATE "_s + table.name, u"The writes were broken off"_s, 0}));
    return changed;
}

Records::Answer<bool> Records::writeTogetherIf(const RecordTable &table, const std::function<Answer<bool>()> &mayWrite,
                                               const QList<RecordStatement> &statements)
{
    QList<std::int64_t> changed;
    return writeAll(table, mayWrite, statements, changed);
}

Records::Answer<bool> Records::writeAll(const RecordTable &table, const std::function<Answer<bool>()> &mayWrite,
                                        const QList<RecordStatement> &statements, QList<std::int64_t> &changed)
{
    for (const RecordStatement &statement : statements) {
        auto failure = statement.table != nullptr ? prepare(*statement.table) : std::nullopt;
        if (failure)
            return Unexpected(*std::move(failure));
    }
    std::optional<DbFailure> failure;
    const auto kept = together(table, [&] {
        const auto may = mayWrite ? mayWrite() : Answer<bool>(true);
        if (!may)
            failure = may.error();
        if (!may || !*may)
            return false;
        for (const RecordStatement &statement : statements) {
            const auto rows = write(table, statement);
            if (!rows) {
                failure = rows.error();
                return false;
            }
            changed << *rows;
        }
        return true;
    });
    if (failure)
        return Unexpected(*std::move(failure));
    return kept;
}

Records::Answer<std::int64_t> Records::writeEach(const RecordTable &table, const QString &text,
                                                 const QList<QList<RecordValue>> &rows)
{
    std::optional<DbFailure> failure;
    for (const QList<RecordValue> &values : rows) {
        failure = misfit(Kind::Write, {text, values});
        if (failure)
            break;
    }
    if (!failure)
        failure = make(table, text);
    if (failure)
        return Unexpected(told(*std::move(failure)));
    auto changed = changeEach(text, rows);
    if (!changed)
        return Unexpected(told(changed.error()));
    return changed;
}

std::optional<DbFailure> Records::prepare(const RecordTable &table)
{
    auto failure = make(table, u"UPDATE "_s + table.name);
    return failure ? std::optional(told(*std::move(failure))) : std::nullopt;
}

Records::Answer<bool> Records::together(const RecordTable &table, const std::function<bool()> &work,
                                        const QString &name)
{
    const QString what = u"UPDATE "_s + table.name;
    const QString noted = name.isEmpty() ? what : name;
    // Made outside: to roll the making of a table back would stop every list that is being filled.
    auto failure = make(table, what);
    if (!failure)
        failure = begin(table, noted);
    if (failure) {
        failure->statement = what;
        return Unexpected(told(*std::move(failure)));
    }
    bool keep = false;
    try {
        keep = work();
    } catch (const std::exception &error) {
        qCWarning(lcStore) << "Writes that belong together are undone:" << error.what();
    }
    if (keep)
        failure = commit();
    if (!keep || failure)
        rollBack();
    if (failure) {
        failure->statement = isUnknown(*failure) ? noted : what;
        return Unexpected(told(*std::move(failure)));
    }
    return keep;
}

/// Every write comes through here first.
std::optional<DbFailure> Records::make(const RecordTable &table, const QString &forStatement)
{
    if (m_beforeWriting)
        m_beforeWriting();
    const auto there = hasTable(table);
    std::optional<DbFailure> failure;
    if (!there || !*there) {
        for (const QString &making : table.making) {
            if (const auto made = change({making, {}}); !made) {
                failure = made.error();
                break;
            }
        }
    }
    if (!failure && kept::isOnlyAddedTo(table))
        failure = keepRows(table);
    if (failure)
        failure->statement = forStatement; // what was not done is the write, not the table
    return failure;
}

std::optional<DbFailure> Records::keepRows(const RecordTable &)
{
    return {};
}

const RecordDialect &Records::dialect() const
{
    static const RecordDialect ofFiles = {u"rowid"_s, [](const QString &expression) { return expression; }};
    return ofFiles;
}

std::optional<QString> Records::unstorable(const QString &, const DbAssignments &) const
{
    return {};
}

RecordValue Records::converted(const QString &, const QString &, const RecordValue &value) const
{
    return value;
}

bool Records::isUnknown(const DbFailure &failure)
{
    return failure.kind == Kind::Write && failure.engineState == "08007"_L1;
}

void Records::tellNotTried(const RecordTable &table, const DbFailure &reading) const
{
    DbFailure failure = reading;
    failure.kind = Kind::Write;
    failure.statement = u"UPDATE "_s + table.name;
    (void)told(std::move(failure));
}

DbFailure Records::told(DbFailure failure) const
{
    qCWarning(lcStore).noquote() << "Failed:" << failure.statement << '-' << failure.reason;
    if (m_failureHandler) {
        try {
            m_failureHandler(failure);
        } catch (const std::exception &error) {
            qCWarning(lcStore) << "A failure could not be told:" << error.what();
        }
    }
    return failure;
}

QString recordTime(const QDateTime &moment)
{
    return moment.toUTC().toString(Qt::ISODateWithMs);
}

QDateTime timeOfRecord(const QString &text)
{
    return QDateTime::fromString(text, Qt::ISODateWithMs);
}

QString recordText(const RecordValue &value)
{
    if (const auto *text = std::get_if<QString>(&value))
        return *text;
    if (const auto *bytes = std::get_if<QByteArray>(&value))
        return QString::fromUtf8(*bytes);
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        return QString::number(*integer);
    const auto *real = std::get_if<double>(&value);
    return real != nullptr ? plainText(*real) : QString();
}

std::int64_t recordNumber(const RecordValue &value)
{
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        return *integer;
    const double real = recordReal(value);
    constexpr double bound = 9e18;
    return real > -bound && real < bound ? static_cast<std::int64_t>(real) : 0;
}

double recordReal(const RecordValue &value)
{
    if (const auto *real = std::get_if<double>(&value))
        return *real;
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*integer);
    return leadingNumber(recordText(value));
}

} // namespace harrowby::app
