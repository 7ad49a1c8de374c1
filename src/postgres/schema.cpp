// SPDX-License-Identifier: MIT
#include "postgres/schema.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::postgres {

namespace {

ShopTable usersTable()
{
    const QStringList rights{u"InventoryUse"_s,    u"InventorySales"_s,    u"InventoryReport"_s, u"InventoryUndo"_s,
                             u"InventoryDelete"_s, u"InventorySettings"_s, u"InventoryReorder"_s};
    return {u"Users"_s, QStringList{u"Username"_s, u"Password"_s, u"Type"_s} + rights, rights, {{u"Username"_s}}};
}

ShopTable stockTable()
{
    return {u"StockList"_s,
            {u"StockID"_s, u"StockName"_s, u"StockCategory"_s, u"StockCost"_s, u"StockReorderLevel"_s,
             u"StockAvailable"_s, u"StockUse"_s, u"StockLastUpdated"_s, u"StockLastModified"_s, u"StockAdded"_s,
             u"StockReorderUser"_s},
            {u"StockCost"_s, u"StockReorderLevel"_s, u"StockAvailable"_s},
            {{u"StockID"_s}, {u"StockName"_s}, {u"StockCategory"_s, u"StockName"_s}}};
}

ShopTable purchaseTable()
{
    return {u"PurchaseCart"_s,
            {u"PurchaseID"_s, u"PurchasedItems"_s, u"PurchasedItemsTotal"_s, u"PurchasedItemsCost"_s,
             u"PurchasedDate"_s, u"Users"_s},
            {u"PurchasedItemsTotal"_s, u"PurchasedItemsCost"_s},
            {{u"PurchaseID"_s}, {u"PurchasedDate"_s, u"Users"_s}}};
}

ShopTable settingsTable()
{
    return {u"StoreSettings"_s,
            {u"Email"_s, u"ShowDetails"_s, u"EmailAddress"_s, u"Promptreorder"_s, u"AutoPurchaseCart"_s},
            {u"Email"_s, u"ShowDetails"_s, u"Promptreorder"_s, u"AutoPurchaseCart"_s},
            {}};
}

} // namespace

qsizetype ShopTable::column(QStringView column) const
{
    const auto found = std::find_if(columns.begin(), columns.end(), [column](const QString &one) {
        return column.compare(one, Qt::CaseInsensitive) == 0;
    });
    return found == columns.end() ? -1 : found - columns.begin();
}

bool ShopTable::isFigure(QStringView column) const
{
    return figures.contains(column, Qt::CaseInsensitive);
}

const QList<ShopTable> &shopTables()
{
    static const QList<ShopTable> tables{
        usersTable(),    {u"InventoryCategory"_s, {u"CategoryName"_s, u"EntryDate"_s}, {}, {{u"CategoryName"_s}}},
        stockTable(),    purchaseTable(),
        settingsTable(), {u"SysUsage"_s, {u"SystemUsage"_s, u"Times"_s, u"Dates"_s}, {}, {{u"Dates"_s}}},
    };
    return tables;
}

const ShopTable *shopTable(QStringView name)
{
    const auto &tables = shopTables();
    const auto found = std::find_if(tables.begin(), tables.end(), [name](const ShopTable &table) {
        return name.compare(table.name, Qt::CaseInsensitive) == 0;
    });
    return found == tables.end() ? nullptr : &*found;
}

} // namespace harrowby::postgres
