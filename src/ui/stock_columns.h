// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

namespace harrowby {

/// Columns of the existing-stock list.
namespace StockColumn {
inline constexpr int Id = 0;
inline constexpr int Name = 1;
inline constexpr int Category = 2;
inline constexpr int Cost = 3;
inline constexpr int ReorderLevel = 4;
inline constexpr int Available = 5;
inline constexpr int Use = 6;
inline constexpr int LastUpdated = 7;
} // namespace StockColumn

/// Their headings.
[[nodiscard]] inline QStringList stockHeadings()
{
    return {QStringLiteral("Stock ID"),  QStringLiteral("Stock Name"),  QStringLiteral("Category"),
            QStringLiteral("Unit Cost"), QStringLiteral("R. Level"),    QStringLiteral("Avail."),
            QStringLiteral("Use"),       QStringLiteral("Last Updated")};
}

/// Texts of a stock item as the existing-stock list takes them, in its columns' order.
struct ListedStock
{
    QString id;
    QString name;
    QString category;
    QString cost;
    QString reorderLevel;
    QString available;
    QString use;
    QString lastUpdated;
};

} // namespace harrowby
