// SPDX-License-Identifier: MIT
#include "store/statement_texts.h"

#include "basic/quick_sale_page.h"
#include "basic/reorder_level.h"
#include "basic/stock_id.h"

namespace harrowby::statements {

namespace {

/// The common part of a quick-sale page and its count. `where` differs in a blank between the two.
Statement quickSales(FixedText allItems, FixedText availableItems, bool hideFinished, const QString &category)
{
    Statement select(hideFinished ? availableItems : allItems);
    if (category != allCategories)
        select.fixed("StockCategory = ").text(category).fixed(" and ");
    return select.fixed("StockUse = 'Enabled' order by StockName ASC");
}

Statement ofDay(Statement select, const QString &day)
{
    return select.fixed("substr(PurchasedDate,1,6) = ").text(day);
}

Statement ofUser(Statement select, const QString &user, const QString &day)
{
    return ofDay(select.fixed("Users = ").text(user).fixed(" and "), day);
}

Statement countSales()
{
    return Statement("Select count(*) as totals from PurchaseCart where ");
}

Statement sumSales()
{
    return Statement("Select sum(PurchasedItemsCost) as Counts from PurchaseCart where ");
}

} // namespace

Statement login(const QString &name, const QString &password)
{
    return Statement("Select * from Users where Type <> 'VIEWER' and UPPER(Username) = ")
        .text(name)
        .fixed(" and UPPER(Password) = ")
        .text(password);
}

Statement storeSettings()
{
    return Statement("Select * from StoreSettings");
}

Statement updateSettings(const StoreSettings &settings)
{
    return Statement("Update StoreSettings SET Email = ")
        .number(std::int64_t{settings.EmailReportFlag})
        .fixed(", ShowDetails = ")
        .number(std::int64_t{settings.ShowDetailsFlag})
        .fixed(", EmailAddress = ")
        .text(settings.ReportEmailAddress)
        .fixed(", Promptreorder = ")
        .number(std::int64_t{settings.PromptReorderFlag})
        .fixed(", AutoPurchaseCart = ")
        .number(std::int64_t{settings.HideFinishedFlag});
}

Statement usage(const QString &message, const QString &times, const QString &dates)
{
    QString stripped = message;
    stripped.remove(u'\'');
    return Statement("INSERT INTO SysUsage (SystemUsage,Times,Dates) Values (")
        .text(stripped)
        .fixed(",")
        .text(times)
        .fixed(",")
        .text(dates)
        .fixed(")");
}

Statement categories()
{
    return Statement("Select * from InventoryCategory");
}

Statement categoriesByName()
{
    return Statement("Select * from InventoryCategory Order By CategoryName ASC");
}

Statement addCategory(const QString &name, const QString &entryDate)
{
    return Statement("Insert Into InventoryCategory (CategoryName, EntryDate) Values (")
        .text(name)
        .fixed(", ")
        .text(entryDate)
        .fixed(")");
}

Statement renameCategory(const QString &newName, const QString &oldName)
{
    return Statement("Update InventoryCategory SET CategoryName = ")
        .text(newName)
        .fixed(" where CategoryName = ")
        .text(oldName);
}

Statement deleteCategory(const QString &name)
{
    return Statement("Delete from InventoryCategory where CategoryName = ").text(name);
}

Statement moveStock(const QString &newCategory, const QString &oldCategory)
{
    return Statement("Update StockList SET StockCategory = ")
        .text(newCategory)
        .fixed(" where StockCategory = ")
        .text(oldCategory);
}

Statement moveStockToOther(const QString &category)
{
    return Statement("Update StockList Set StockCategory = ")
        .text(otherCategory)
        .fixed(" where StockCategory = ")
        .text(category);
}

Statement stockById(const QString &id)
{
    return Statement("Select * from StockList where StockID = ").text(id);
}

Statement allStock()
{
    return Statement("Select * from StockList");
}

Statement automaticIdCount(const QString &prefix)
{
    return Statement("Select count(*) as counts from StockList where StockID like ").text(prefix + markedIdEnding);
}

Statement sameStock(const QString &id, const QString &upperName)
{
    return stockById(id).fixed(" or UPPER(StockName) = ").text(upperName);
}

Statement sameStockName(const QString &upperName)
{
    return Statement("Select * from StockList where UPPER(StockName) = ").text(upperName);
}

Statement deleteStock(const QString &upperId)
{
    return Statement("Delete from StockList where Upper(StockID) = ").text(upperId);
}

Statement stockItems(bool hideFinished, const QString &category)
{
    Statement select(hideFinished ? FixedText("Select * from StockList where stockAvailable > 0 and ")
                                  : FixedText("Select * from StockList where "));
    if (category != allCategories)
        select.fixed("StockCategory = ").text(category).fixed(" and ");
    return select.fixed("StockUse = 'Enabled'");
}

Statement searchStock(const QString &upperText)
{
    return Statement("Select StockID, StockName, StockCategory from StockList where UPPER(StockID) like ")
        .text("*", upperText, "*")
        .fixed(" or UPPER(StockName) like ")
        .text("*", upperText, "*")
        .fixed("  and StockUse = 'Enabled'");
}

Statement stockLevels(const QString &id)
{
    return Statement("Select StockName, StockID, StockReorderLevel,StockAvailable from StockList where StockID = ")
        .text(id);
}

Statement availableStock(const QString &id, const QString &name)
{
    return Statement("Select * from Stocklist where StockUse = 'Enabled' and StockID = ")
        .text(id)
        .fixed("  and StockName = ")
        .text(name);
}

Statement quickSalesPage(bool hideFinished, const QString &category, std::int64_t offset)
{
    return quickSales("Select * from Stocklist where ", "Select * from Stocklist where stockAvailable > 0 and ",
                      hideFinished, category)
        .fixed("  Limit ")
        .number(offset)
        .fixed(", ")
        .number(std::int64_t{quickSaleButtons});
}

Statement quickSalesCount(bool hideFinished, const QString &category)
{
    if (category == allCategories)
        return quickSales("Select * from Stocklist where ", "Select * from Stocklist where stockAvailable > 0 and ",
                          hideFinished, category);
    return quickSales("Select * from Stocklist where ", "Select * from Stocklist where  stockAvailable > 0 and ",
                      hideFinished, category);
}

Statement raiseStock(std::int64_t quantity, const QString &id)
{
    return Statement("Update StockList Set StockAvailable = StockAvailable + ")
        .number(quantity)
        .fixed(" where StockID = ")
        .text(id);
}

Statement lowerStock(double quantity, const QString &id, const QString &upperName)
{
    return Statement("Update Stocklist Set StockAvailable = StockAvailable - ")
        .number(quantity)
        .fixed(" where StockID = ")
        .text(id)
        .fixed(" and UPPER(StockName) = ")
        .text(upperName);
}

Statement lowStock()
{
    return Statement(lowStockSelect);
}

Statement stockTotal()
{
    return Statement("Select Total(StockAvailable) as Totals from Stocklist where StockUse = 'Enabled'");
}

Statement purchase(const QString &id)
{
    return Statement("Select * from PurchaseCart where PurchaseID = ").text(id);
}

Statement deletePurchase(const QString &id)
{
    return Statement("Delete from PurchaseCart where PurchaseID = ").text(id);
}

Statement purchaseIds()
{
    return Statement("Select PurchaseID from PurchaseCart Order by PurchaseID DESC");
}

Statement salesCount(const QString &day)
{
    return ofDay(countSales(), day);
}

Statement salesCount(const QString &user, const QString &day)
{
    return ofUser(countSales(), user, day);
}

Statement salesAmount(const QString &day)
{
    return ofDay(sumSales(), day);
}

Statement salesAmount(const QString &user, const QString &day)
{
    return ofUser(sumSales(), user, day);
}

} // namespace harrowby::statements
