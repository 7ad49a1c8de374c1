// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <variant>
#include <vector>

/// A table of figures with a heading, and what becomes of it on screen, on paper and in a file.
namespace harrowby::tables {

/// Nothing, a text, a figure or a day. A column of figures or days may hold texts where there is no figure to give.
using Cell = std::variant<std::monostate, QString, double, QDate>;
using Row = std::vector<Cell>;

enum class Kind {
    Text,
    Day,
    Count, ///< 12,345, or 0.25 as it is
    Money, ///< 1,234.50
};

struct Column
{
    QString heading;
    Kind kind = Kind::Text;
    bool stretches = false; ///< takes the room that the others leave
    int letters = 0; ///< room for so many, where its kind usually has less; the others give way to one that stretches
};

struct Table
{
    QString title;
    QStringList notes; ///< lines below the title
    std::vector<Column> columns;
    std::vector<Row> rows;
    Row totals; ///< one cell a column, or empty
};

/// As shown on screen and paper: grouped figures, "Sat 21 Nov 2026".
[[nodiscard]] QString shownText(const Cell &cell, Kind kind);
/// As written into a file: figures without grouping, "2026-11-21".
[[nodiscard]] QString plainCell(const Cell &cell, Kind kind);
/// "Purchases: 12   Amount: 1,234.50"; empty without totals.
[[nodiscard]] QString totalsText(const Table &table);

[[nodiscard]] bool isFigure(Kind kind);
/// "21 Nov 2026", in English everywhere.
[[nodiscard]] QString dayText(const QDate &day);

/// Figures and days by their value, texts without regard to case and behind them, nothing last. Equal rows keep their
/// order.
void sortRows(std::vector<Row> &rows, int column, Qt::SortOrder order);

} // namespace harrowby::tables
