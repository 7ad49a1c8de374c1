// SPDX-License-Identifier: MIT
#include "ui/stock/stock_row_reader.h"

#include "basic/numbers.h"
#include "basic/stock_entry.h"
#include "basic/values.h"
#include "store/recordset.h"

#include <array>
#include <charconv>
#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// The number that the value's text begins with, without the text where it is a number itself.
double shownNumber(const DbValue &value)
{
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*integer);
    if (const auto *real = std::get_if<double>(&value); real && std::isfinite(*real))
        return *real;
    return leadingNumber(valueText(value));
}

} // namespace

StockRowReader::StockRowReader(DbRecordset &stock, qsizetype columns) :
    m_stock(stock), m_packer(columns), m_id(stock, u"StockID"_s), m_name(stock, u"StockName"_s)
{
}

bool StockRowReader::readId()
{
    m_hasName = m_name.read();
    if (!m_id.read())
        return false;
    m_packer.begin();
    m_packer.addUpper(m_id[0]);
    return true;
}

void StockRowReader::readRest()
{
    const DbValue level = value(u"StockReorderLevel"_s);
    const DbValue available = value(u"StockAvailable"_s);
    m_low = needsReorder(level, available);
    m_packer.addUpper(m_hasName ? m_name[0] : QUtf8StringView());
    m_packer.add(text(u"StockCategory"_s));
    m_packer.add(QStringView(formatMoney(shownNumber(value(u"StockCost"_s)))));
    addFigure(level);
    addFigure(available);
    m_packer.add(text(u"StockUse"_s));
    m_packer.add(text(u"StockLastUpdated"_s));
}

QUtf8StringView StockRowReader::text(const QString &column)
{
    return m_stock.Field(column).utf8(m_buffer).value_or(QUtf8StringView());
}

DbValue StockRowReader::value(const QString &column) const
{
    return m_stock.Field(column).value().value_or(DbValue());
}

void StockRowReader::addFigure(const DbValue &figure)
{
    const auto *integer = std::get_if<std::int64_t>(&figure);
    if (!integer)
        return m_packer.add(QStringView(valueText(figure)));
    std::array<char, 24> digits{};
    const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), *integer);
    m_packer.add(QUtf8StringView(digits.data(), written.ptr));
}

} // namespace harrowby
