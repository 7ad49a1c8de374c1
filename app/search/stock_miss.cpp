// SPDX-License-Identifier: MIT
#include "app/search/stock_miss.h"

#include <QLatin1StringView>
#include <QList>

#include <array>

namespace harrowby::app {

namespace {

// The texts around the values; a test holds them against the component's own.
constexpr std::array lowering{QLatin1StringView("Update Stocklist Set StockAvailable = StockAvailable - "),
                              QLatin1StringView(" where StockID = '"), QLatin1StringView("' and UPPER(StockName) = '"),
                              QLatin1StringView("'")};
constexpr std::array raising{QLatin1StringView("Update StockList Set StockAvailable = StockAvailable + "),
                             QLatin1StringView(" where StockID = '"), QLatin1StringView("'")};
constexpr std::array offering{QLatin1StringView("Select * from Stocklist where StockUse = 'Enabled' and StockID = '"),
                              QLatin1StringView("'  and StockName = '"), QLatin1StringView("'")};

/// What stands between the pieces; empty unless they are all there is besides. No value holds a quote.
template <std::size_t Pieces>
QList<QStringView> valuesBetween(QStringView statement, const std::array<QLatin1StringView, Pieces> &pieces)
{
    if (!statement.startsWith(pieces.front()))
        return {};
    QList<QStringView> values;
    qsizetype from = pieces.front().size();
    for (std::size_t piece = 1; piece < Pieces; ++piece) {
        const qsizetype to = statement.indexOf(pieces.at(piece), from);
        if (to < 0)
            return {};
        values << statement.sliced(from, to - from);
        from = to + pieces.at(piece).size();
    }
    return from == statement.size() ? values : QList<QStringView>();
}

} // namespace

bool looksForItem(QStringView select)
{
    return select.startsWith(offering.front());
}

std::optional<StockMiss> missOf(QStringView statement)
{
    using Kind = StockMiss::Kind;
    if (const auto sold = valuesBetween(statement, lowering); !sold.isEmpty())
        return StockMiss{Kind::NotLowered, sold.at(1).toString(), sold.at(2).toString(), sold.at(0).toDouble()};
    if (const auto back = valuesBetween(statement, raising); !back.isEmpty())
        return StockMiss{Kind::NotRaised, back.at(1).toString(), {}, back.at(0).toDouble()};
    if (const auto wanted = valuesBetween(statement, offering); !wanted.isEmpty())
        return StockMiss{Kind::NotForSale, wanted.at(0).toString(), wanted.at(1).toString(), 0};
    return {};
}

} // namespace harrowby::app
