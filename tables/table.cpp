// SPDX-License-Identifier: MIT
#include "tables/table.h"

#include "basic/numbers.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::tables {

namespace {

template <typename... Cases>
struct Overloaded : Cases...
{
    using Cases::operator()...;
};
/// Compilers deduce this of themselves only from C++20's later parts on.
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

QString countText(double value)
{
    return std::floor(value) == value ? formatCount(value) : plainText(value);
}

QString figureText(double value, Kind kind)
{
    return kind == Kind::Money ? formatMoney(value) : countText(value);
}

/// Whatever the locale, since a file is read back.
QString plainFigure(double value, Kind kind)
{
    return kind == Kind::Money ? formatFixed(value) : plainText(value);
}

/// Values first, then texts, then nothing.
int rank(const Cell &cell)
{
    if (std::holds_alternative<std::monostate>(cell))
        return 2;
    return std::holds_alternative<QString>(cell) ? 1 : 0;
}

int compareTexts(const QString &one, const QString &other)
{
    const int result = one.compare(other, Qt::CaseInsensitive);
    return result != 0 ? result : one.compare(other);
}

bool isLess(const Cell &one, const Cell &other)
{
    if (one.index() != other.index())
        return rank(one) < rank(other);
    if (const auto *text = std::get_if<QString>(&one))
        return compareTexts(*text, std::get<QString>(other)) < 0;
    return one < other;
}

/// Sort key of a row. Figures are copied into it: a sort compares each row dozens of times, and rows are scattered in
/// memory.
struct SortKey
{
    const Cell *cell = nullptr;
    const double *figure = nullptr; ///< the cell's, where it is one
    double value = 0.0;
    std::size_t row = 0;
};

SortKey sortKey(const Cell &cell, std::size_t row)
{
    const auto *figure = std::get_if<double>(&cell);
    return {&cell, figure, figure != nullptr ? *figure : 0.0, row};
}

bool isLess(const SortKey &one, const SortKey &other)
{
    if (one.figure != nullptr && other.figure != nullptr)
        return one.value < other.value;
    return isLess(*one.cell, *other.cell);
}

} // namespace

QString shownText(const Cell &cell, Kind kind)
{
    return std::visit(Overloaded{[](std::monostate) { return QString(); }, [](const QString &text) { return text; },
                                 [kind](double value) { return figureText(value, kind); },
                                 [](const QDate &day) { return QLocale::c().toString(day, u"ddd "_s) + dayText(day); }},
                      cell);
}

QString plainCell(const Cell &cell, Kind kind)
{
    return std::visit(Overloaded{[](std::monostate) { return QString(); }, [](const QString &text) { return text; },
                                 [kind](double value) { return plainFigure(value, kind); },
                                 [](const QDate &day) { return day.toString(Qt::ISODate); }},
                      cell);
}

QString totalsText(const Table &table)
{
    QStringList parts;
    for (std::size_t i = 0; i < table.totals.size() && i < table.columns.size(); ++i) {
        const Column &column = table.columns.at(i);
        if (isFigure(column.kind) && std::holds_alternative<double>(table.totals.at(i)))
            parts << u"%1: %2"_s.arg(column.heading, shownText(table.totals.at(i), column.kind));
    }
    return parts.join(u"   "_s);
}

bool isFigure(Kind kind)
{
    return kind == Kind::Count || kind == Kind::Money;
}

QString dayText(const QDate &day)
{
    return QLocale::c().toString(day, u"d MMM yyyy"_s);
}

void sortRows(std::vector<Row> &rows, int column, Qt::SortOrder order)
{
    const auto at = static_cast<std::size_t>(column);
    std::vector<SortKey> keys;
    keys.reserve(rows.size());
    for (const Row &row : rows)
        keys.push_back(sortKey(row.at(at), keys.size()));
    std::stable_sort(keys.begin(), keys.end(), [order](const SortKey &one, const SortKey &other) {
        return order == Qt::AscendingOrder ? isLess(one, other) : isLess(other, one);
    });
    std::vector<Row> sorted;
    sorted.reserve(rows.size());
    for (const SortKey &key : keys)
        sorted.push_back(std::move(rows[key.row]));
    rows = std::move(sorted);
}

} // namespace harrowby::tables
