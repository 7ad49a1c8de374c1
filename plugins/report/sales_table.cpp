// SPDX-License-Identifier: MIT
#include "plugins/report/sales_table.h"

using namespace Qt::StringLiterals;

namespace harrowby::report {

namespace {

using tables::Cell;
using tables::Kind;
using tables::Row;

double average(const Sums &sums)
{
    return sums.purchases > 0 ? sums.amount / static_cast<double>(sums.purchases) : 0.0;
}

Row sumsRow(Cell name, const Sums &sums)
{
    return {std::move(name), static_cast<double>(sums.purchases), sums.amount, average(sums)};
}

std::vector<tables::Column> sumsColumns(const QString &name, Kind kind)
{
    return {{name, kind, true},
            {u"Purchases"_s, Kind::Count, false},
            {u"Amount"_s, Kind::Money, false},
            {u"Average"_s, Kind::Money, false}};
}

/// Texts that are no day share one row.
void addDays(tables::Table &table, const Sales &sales)
{
    table.columns = sumsColumns(u"Day"_s, Kind::Day);
    Sums unreadable;
    for (const auto &[key, sums] : sales.byDay) {
        if (const auto day = dayOfKey(key))
            table.rows.push_back(sumsRow(*day, sums));
        else
            unreadable.add(sums.purchases, sums.amount);
    }
    if (unreadable.purchases > 0)
        table.rows.push_back(sumsRow(unreadableText, unreadable));
}

void addSellers(tables::Table &table, const Sales &sales)
{
    table.columns = sumsColumns(u"Seller"_s, Kind::Text);
    for (const auto &[name, sums] : sales.bySeller)
        table.rows.push_back(sumsRow(name.trimmed().isEmpty() ? nobodyText : name, sums));
}

Row itemRow(QStringView key, const ItemSums &sums)
{
    const IdAndName item = idAndName(key);
    Row row;
    row.reserve(5);
    row.emplace_back(item.id.toString());
    row.emplace_back(item.name.toString());
    for (const double figure : {sums.quantity, sums.amount, static_cast<double>(sums.purchases)})
        row.emplace_back(figure);
    return row;
}

void addItems(tables::Table &table, const Sales &sales)
{
    table.columns = {{u"Item code"_s, Kind::Text, false},
                     {u"Item"_s, Kind::Text, true},
                     {u"Quantity"_s, Kind::Count, false},
                     {u"Amount"_s, Kind::Money, false},
                     {u"Times sold"_s, Kind::Count, false}};
    double quantity = 0.0;
    double amount = sales.unreadable.amount;
    table.rows.reserve(sales.byItem.entries().size() + 1);
    for (const auto &[key, sums] : sales.byItem.entries()) {
        table.rows.push_back(itemRow(key, sums));
        quantity += sums.quantity;
        amount += sums.amount;
    }
    if (sales.unreadable.purchases > 0)
        table.rows.push_back({QString(), unreadableText, Cell(), sales.unreadable.amount,
                              static_cast<double>(sales.unreadable.purchases)});
    table.totals = {QString(), u"Total"_s, quantity, amount, Cell()};
}

QString groupingWords(Grouping grouping)
{
    if (grouping == Grouping::Day)
        return u"by day"_s;
    return grouping == Grouping::Seller ? u"by seller"_s : u"by item"_s;
}

} // namespace

tables::Table salesTable(const Sales &sales, const SalesQuery &query)
{
    tables::Table table;
    table.title = u"Sales Report"_s;
    table.notes << periodText(query.period) + u", "_s + groupingWords(query.grouping);
    if (query.onlySeller)
        table.notes << u"Only the sales of "_s + *query.onlySeller;
    if (query.grouping == Grouping::Item) {
        addItems(table, sales);
        return table;
    }
    if (query.grouping == Grouping::Day)
        addDays(table, sales);
    else
        addSellers(table, sales);
    table.totals = sumsRow(u"Total"_s, sales.total);
    return table;
}

FirstOrder firstOrder(Grouping grouping)
{
    if (grouping == Grouping::Day)
        return {0, Qt::AscendingOrder};
    return {grouping == Grouping::Seller ? 2 : 3, Qt::DescendingOrder};
}

QString fileWords(const SalesQuery &query)
{
    const QString from = query.period.from.toString(Qt::ISODate);
    const QString to = query.period.to.toString(Qt::ISODate);
    const QString days = from == to ? from : u"%1 to %2"_s.arg(from, to);
    return u"Sales %1 %2"_s.arg(days, groupingWords(query.grouping));
}

} // namespace harrowby::report
