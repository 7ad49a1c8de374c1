// SPDX-License-Identifier: MIT
#include "app/copy/column_rules.h"

#include "app/records/server_engine.h"

#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// A column of figures and one of texts, whose rules hold for those of the program's own tables as well.
const auto shopsTable = u"StockList"_s;
const auto shopsFigure = u"StockCost"_s;
const auto shopsText = u"StockUse"_s;

/// Most bytes (UTF-8) of the texts in one entry of an index on a server.
constexpr qsizetype mostIndexedBytes = 2600;

bool isNull(const RecordValue &value)
{
    return std::holds_alternative<std::monostate>(value);
}

std::optional<QString> unfitNumber(const CopiedColumn &column, const RecordValue &value)
{
    const auto *whole = std::get_if<std::int64_t>(&value);
    if (column.fill == ColumnFill::Real && (whole != nullptr || std::holds_alternative<double>(value)))
        return {};
    if (whole == nullptr)
        return u"a column of numbers on a server holds nothing else (%1)"_s.arg(column.name);
    if (column.fill == ColumnFill::SmallNumber &&
        (*whole < std::numeric_limits<std::int32_t>::min() || *whole > std::numeric_limits<std::int32_t>::max()))
        return u"the number is too large for its column on a server (%1)"_s.arg(column.name);
    return {};
}

std::optional<QString> tooLong(const CopiedTable &table, const RecordRow &row)
{
    const QStringList names = table.columnNames();
    for (const QStringList &texts : table.indexedTexts) {
        qsizetype bytes = 0;
        for (const QString &text : texts)
            bytes += recordText(row.at(names.indexOf(text))).toUtf8().size();
        if (bytes > mostIndexedBytes)
            return u"a text that a server looks for has at most %1 bytes (%2)"_s.arg(mostIndexedBytes)
                .arg(texts.join(u" and "_s));
    }
    return {};
}

} // namespace

ColumnRules::ColumnRules(const ServerEngine &engine) :
    m_unstorable(
        [&engine](const QString &table, const DbAssignments &values) { return engine.unstorable(table, values); }),
    m_converted([&engine](const QString &table, const QString &column, const RecordValue &value) {
        return engine.converted(table, column, value);
    })
{
}

ColumnRules::ColumnRules(Unstorable unstorable, Converted converted) :
    m_unstorable(std::move(unstorable)), m_converted(std::move(converted))
{
}

std::optional<QString> ColumnRules::unfit(const CopiedTable &table, const RecordRow &row) const
{
    if (table.isShops()) {
        DbAssignments values;
        for (qsizetype column = 0; column < row.size(); ++column)
            values.emplace_back(table.columns.at(column).name, row.at(column));
        return m_unstorable(table.name, values);
    }
    for (qsizetype column = 0; column < row.size(); ++column) {
        if (auto reason = unfitValue(table.columns.at(column), row.at(column)))
            return reason;
    }
    return tooLong(table, row);
}

/// Of a column of the program's own tables.
std::optional<QString> ColumnRules::unfitValue(const CopiedColumn &column, const RecordValue &value) const
{
    if (isNull(value))
        return {};
    if (column.fill != ColumnFill::Text && column.fill != ColumnFill::Figure)
        return unfitNumber(column, value);
    const QString like = column.fill == ColumnFill::Text ? shopsText : shopsFigure;
    auto reason = m_unstorable(shopsTable, {{like, value}});
    return reason ? std::optional(reason->replace(like, column.name)) : std::nullopt;
}

RecordRow ColumnRules::asHeld(const CopiedTable &table, RecordRow row) const
{
    for (qsizetype column = 0; column < row.size(); ++column) {
        const auto &[name, fill] = table.columns.at(column);
        if (table.isShops())
            row[column] = m_converted(table.name, name, row.at(column));
        else if (fill == ColumnFill::Text || fill == ColumnFill::Figure)
            row[column] = m_converted(shopsTable, fill == ColumnFill::Text ? shopsText : shopsFigure, row.at(column));
        else if (fill == ColumnFill::Real) // what is whole comes as a whole number from a server
            row[column] = m_converted(shopsTable, shopsFigure, row.at(column));
    }
    return row;
}

} // namespace harrowby::app
