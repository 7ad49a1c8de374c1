// SPDX-License-Identifier: MIT
#include "app/copy/store_copy.h"

#include "app/records/record_dialect.h"
#include "app/records/statement_pieces.h"
#include "app/shop/failure_text.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr qsizetype rowsInOneWrite = 200;
constexpr qsizetype mostUnfitListed = 100;
constexpr std::int64_t rowsBetweenSteps = 500;

using Failed = std::optional<CopyFailure>;

const RecordTable *ownTable(const CopiedTable &table)
{
    return table.made;
}

/// The identity first where rows have one.
QString columnsOf(const Records &store, const CopiedTable &table)
{
    const QString columns = table.columnNames().join(u", "_s);
    return table.isShops() ? store.dialect().rowId + u", "_s + columns : columns;
}

Failed failureOf(const DbFailure &failure, const CopiedTable &table)
{
    return copyFailureOf(failure, table.name);
}

Failed ofCopy(Failed failure)
{
    if (failure)
        failure->isOfCopy = true;
    return failure;
}

/// A text whose bytes are no UTF-8 would be another one when it is written.
bool isOdd(const RecordCells &cells, int column, const RecordValue &value)
{
    const auto *text = std::get_if<QString>(&value);
    if (text == nullptr || !text->contains(QChar::ReplacementCharacter))
        return false;
    const auto stored = cells.utf8(column);
    return stored && *stored != text->toUtf8();
}

/// Bytes instead, which no column of a server's holds.
RecordValue valueOf(const RecordCells &cells, int column)
{
    RecordValue value = cells.value(column);
    return isOdd(cells, column, value) ? RecordValue(cells.utf8(column)->toByteArray()) : value;
}

/// "row 12, TEA-0001"
QString rowWords(const CopiedTable &table, const RecordRow &row)
{
    constexpr qsizetype longest = 60;
    const QString name = recordText(row.value(table.isShops() ? 1 : 0)).simplified().left(longest);
    const QString number = table.isShops() ? u"row %1"_s.arg(recordNumber(row.constFirst())) : QString();
    return number.isEmpty() || name.isEmpty() ? number + name : u"%1, %2"_s.arg(number, name);
}

RecordRow withoutIdentity(const CopiedTable &table, const RecordRow &row)
{
    return table.isShops() ? row.mid(1) : row;
}

RecordRow asHeld(const ColumnRules &rules, const CopiedTable &table, const RecordRow &row)
{
    RecordRow held = rules.asHeld(table, withoutIdentity(table, row));
    if (table.isShops())
        held.prepend(row.constFirst());
    return held;
}

QByteArray keyOf(const RecordRow &row)
{
    return recordText(row.constFirst()).toUtf8();
}

bool isOnlyAddedTo(const CopiedTable &table)
{
    return table.made != nullptr && kept::isOnlyAddedTo(*table.made);
}

/// A figure of the program's own tables as a text: a file keeps those as texts, and would shorten a number.
RecordRow asWritten(const CopiedTable &table, RecordRow row)
{
    for (qsizetype column = 0; column < table.columns.size() && !table.isShops(); ++column) {
        const bool isFigure = table.columns.at(column).fill == ColumnFill::Figure;
        if (isFigure && !std::holds_alternative<std::monostate>(row.at(column)))
            row[column] = recordText(row.at(column));
    }
    return row;
}

Failed writeRows(Records &to, const CopiedTable &table, const QList<RecordRow> &rows)
{
    if (rows.isEmpty())
        return {};
    const QString places = u'(' + placesFor(rows.constFirst().size()) + u')';
    RecordStatement statement{u"insert into %1 (%2) values "_s.arg(table.name, columnsOf(to, table)) +
                                  QStringList(rows.size(), places).join(u", "_s),
                              {}};
    for (const RecordRow &row : rows)
        statement.values << asWritten(table, row);
    const auto written = to.write(table.records(), statement);
    if (!written)
        return ofCopy(failureOf(written.error(), table));
    if (*written != rows.size())
        return ofCopy(CopyFailure{u"%1: not all rows were written"_s.arg(table.name)});
    return {};
}

} // namespace

CopyFailure copyFailureOf(const DbFailure &failure, const QString &where)
{
    const QString problem = where.isEmpty() ? failure.reason : u"%1: %2"_s.arg(where, failure.reason);
    const QString advice = failure.engineState.isEmpty() ? QString() : failureAdvice(failure);
    return {problem, false, Records::isUnknown(failure), false, failure.engineCode, advice};
}

StoreCopy::StoreCopy(Records &from, const ColumnRules &rules, const WorkWatch &watch) :
    m_from(from), m_rules(rules), m_watch(watch)
{
}

bool StoreCopy::goesOn(const QString &words)
{
    return m_watch({words, percentOf(m_done, m_all)});
}

/// How far each step is, is told by the rows of the whole store.
Failed StoreCopy::count()
{
    m_done = 0;
    if (m_all >= 0)
        return {};
    std::int64_t all = 0;
    for (const CopiedTable &table : copiedTables()) {
        const auto counted = m_from.read(table.records(), {u"select count(*) from "_s + table.name, {}});
        if (!counted)
            return failureOf(counted.error(), table);
        all += counted->isEmpty() ? 0 : recordNumber(counted->constFirst().constFirst());
    }
    m_all = all;
    return {};
}

Failed StoreCopy::readTable(Records &store, const CopiedTable &table, const QString &words, const TakeRow &take)
{
    if (!goesOn(words))
        return CopyFailure{{}, true};
    const int columns = static_cast<int>(table.columns.size()) + (table.isShops() ? 1 : 0);
    bool isStopped = false;
    const auto takeCells = [&](const RecordCells &cells) {
        RecordRow row;
        for (int column = 0; column < columns; ++column)
            row << valueOf(cells, column);
        isStopped = ++m_done % rowsBetweenSteps == 0 && !goesOn(words);
        return !isStopped && take(row);
    };
    const QString text = u"select %1 from %2"_s.arg(columnsOf(store, table), table.name);
    const auto read = store.readEach(ownTable(table), {text, {}}, takeCells);
    if (isStopped)
        return CopyFailure{{}, true};
    return read ? Failed() : failureOf(read.error(), table);
}

Result<UnfitRows, CopyFailure> StoreCopy::unfitRows()
{
    if (auto failure = count())
        return Unexpected(*std::move(failure));
    UnfitRows unfit;
    for (const CopiedTable &table : copiedTables()) {
        const auto look = [&](const RecordRow &row) {
            const auto reason = m_rules.unfit(table, withoutIdentity(table, row));
            if (reason && ++unfit.count <= mostUnfitListed)
                unfit.first << UnfitRow{table.name, rowWords(table, row), *reason};
            return true;
        };
        if (auto failure = readTable(m_from, table, u"The rows are being looked at \u2026"_s, look))
            return Unexpected(*std::move(failure));
    }
    return unfit;
}

Result<QHash<QString, std::int64_t>, CopyFailure> StoreCopy::copyInto(Records &to)
{
    m_sums.clear();
    auto failure = count();
    for (const CopiedTable &table : copiedTables()) {
        if (!failure)
            failure = copyTable(to, table);
    }
    if (!failure)
        failure = compare(to);
    if (failure)
        return Unexpected(*std::move(failure));
    QHash<QString, std::int64_t> rows;
    for (const CopiedTable &table : copiedTables())
        rows.insert(table.name, m_sums.value(table.name).rows());
    return rows;
}

/// What a table that is only ever added to has already.
Failed StoreCopy::readKept(Records &to, const CopiedTable &table)
{
    m_there.clear();
    if (!isOnlyAddedTo(table))
        return {};
    const std::int64_t done = m_done; // these rows are not of those that are counted
    auto failure = readTable(to, table, u"The rows are being copied \u2026"_s, [&](const RecordRow &row) {
        m_there.insert(keyOf(row));
        m_sums[table.name].add(asHeld(m_rules, table, row));
        return true;
    });
    m_done = done;
    return ofCopy(std::move(failure));
}

Failed StoreCopy::copyTable(Records &to, const CopiedTable &table)
{
    if (auto failure = readKept(to, table))
        return failure;
    Rows waiting;
    Failed failure;
    const auto write = [&] {
        failure = writeRows(to, table, waiting);
        waiting.clear();
        return !failure;
    };
    auto reading = readTable(m_from, table, u"The rows are being copied \u2026"_s, [&](const RecordRow &row) {
        if (m_there.contains(keyOf(row)))
            return true;
        waiting << asHeld(m_rules, table, row);
        m_sums[table.name].add(waiting.constLast());
        return waiting.size() < rowsInOneWrite || write();
    });
    if (!failure && !reading)
        (void)write();
    return failure ? failure : reading;
}

Failed StoreCopy::compare(Records &to)
{
    m_done = 0;
    for (const CopiedTable &table : copiedTables()) {
        RowSum found;
        auto failure = readTable(to, table, comparingWords.toString(), [&](const RecordRow &row) {
            found.add(asHeld(m_rules, table, row));
            return true;
        });
        if (failure)
            return ofCopy(std::move(failure));
        if (found != m_sums.value(table.name))
            return ofCopy(
                CopyFailure{u"%1 does not read back as it was written (%2 rows instead of %3)"_s.arg(table.name)
                                .arg(found.rows())
                                .arg(m_sums.value(table.name).rows())});
    }
    return {};
}

namespace {

/// Columns of the table in the file, and the table itself, that are not copied. `table` is null for a foreign one.
Result<QStringList, CopyFailure> foreignColumns(Records &file, const CopiedTable &table)
{
    const auto rows = file.read({u"select name from pragma_table_info(?)"_s, {table.name}});
    if (!rows)
        return Unexpected(*failureOf(rows.error(), table));
    QStringList foreign;
    const QStringList known = table.columnNames();
    for (const RecordRow &row : *rows) {
        const QString name = recordText(row.constFirst());
        if (!known.contains(name, Qt::CaseInsensitive))
            foreign << u"column %1 of %2"_s.arg(name, table.name);
    }
    return foreign;
}

} // namespace

Result<QStringList, CopyFailure> foreignParts(Records &file)
{
    const auto rows = file.read({u"select name from sqlite_master where type = 'table' and name not like 'sqlite~_%' "
                                 "escape '~' order by name"_s,
                                 {}});
    if (!rows)
        return Unexpected(CopyFailure{rows.error().reason});
    QStringList foreign;
    for (const RecordRow &row : *rows) {
        const QString name = recordText(row.constFirst());
        const auto table = std::ranges::find_if(
            copiedTables(), [&](const CopiedTable &one) { return one.name.compare(name, Qt::CaseInsensitive) == 0; });
        if (table == copiedTables().end()) {
            foreign << u"table "_s + name;
            continue;
        }
        const auto columns = foreignColumns(file, *table);
        if (!columns)
            return columns;
        foreign << *columns;
    }
    return foreign;
}

} // namespace harrowby::app
