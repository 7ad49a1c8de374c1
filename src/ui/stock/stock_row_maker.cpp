// SPDX-License-Identifier: MIT
#include "ui/stock/stock_row_maker.h"

#include "basic/numbers.h"
#include "basic/values.h"

#include <array>
#include <charconv>
#include <cmath>

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

void StockRowMaker::begin(QAnyStringView id)
{
    m_packer.begin();
    m_packer.addUpper(id);
}

PackedRow StockRowMaker::finish(const StockRowParts &parts)
{
    m_packer.addUpper(parts.name);
    m_packer.add(parts.category);
    m_packer.add(formatMoney(shownNumber(parts.cost)));
    addFigure(parts.reorderLevel);
    addFigure(parts.available);
    m_packer.add(parts.use);
    m_packer.add(parts.lastUpdated);
    return m_packer.packed();
}

void StockRowMaker::addFigure(const DbValue &figure)
{
    const auto *integer = std::get_if<std::int64_t>(&figure);
    if (!integer)
        return m_packer.add(valueText(figure));
    std::array<char, 24> digits{};
    const auto written = std::to_chars(digits.data(), digits.data() + digits.size(), *integer);
    m_packer.add(QUtf8StringView(digits.data(), written.ptr));
}

} // namespace harrowby
