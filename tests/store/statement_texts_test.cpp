// SPDX-License-Identifier: MIT
#include "store/statement_texts.h"

#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby;
using namespace Qt::StringLiterals;

class TestStatements : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasExactText_data();
    void hasExactText();
    void refusesQuotes_data();
    void refusesQuotes();
    void usageLosesQuotes();
};

void TestStatements::hasExactText_data()
{
    using namespace statements;
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const Statement &statement, const char *expected) {
        QTest::newRow(name) << statement.sql() << QString::fromUtf8(expected);
    };

    row("login", login(u"MARY"_s, u"SECRET"_s),
        "Select * from Users where Type <> 'VIEWER' and UPPER(Username) = 'MARY' and UPPER(Password) = 'SECRET'");
    row("settings", storeSettings(), "Select * from StoreSettings");
    row("update settings", updateSettings({1, 0, u"shop@example.org"_s, 1, 0}),
        "Update StoreSettings SET Email = 1, ShowDetails = 0, EmailAddress = 'shop@example.org', Promptreorder = 1, "
        "AutoPurchaseCart = 0");
    row("usage", usage(u"Setting Saved!"_s, u"2026-11-15 05:31:00"_s, u"2026-11-15 05:31:01"_s),
        "INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('Setting Saved!','2026-11-15 05:31:00',"
        "'2026-11-15 05:31:01')");
    row("empty usage", usage({}, u"t"_s, u"d"_s), "INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('','t','d')");

    row("categories", categories(), "Select * from InventoryCategory");
    row("categories by name", categoriesByName(), "Select * from InventoryCategory Order By CategoryName ASC");

    row("add category", addCategory(u"FOOD"_s, u"2026-11-15 05:31:00"_s),
        "Insert Into InventoryCategory (CategoryName, EntryDate) Values ('FOOD', '2026-11-15 05:31:00')");
    row("rename category", renameCategory(u"BREAD"_s, u"Food"_s),
        "Update InventoryCategory SET CategoryName = 'BREAD' where CategoryName = 'Food'");
    row("delete category", deleteCategory(u"Food"_s), "Delete from InventoryCategory where CategoryName = 'Food'");
    row("move stock", moveStock(u"BREAD"_s, u"Food"_s),
        "Update StockList SET StockCategory = 'BREAD' where StockCategory = 'Food'");
    row("move stock to other", moveStockToOther(u"Food"_s),
        "Update StockList Set StockCategory = 'OTHER CATEGORY' where StockCategory = 'Food'");

    row("stock by ID", stockById(u"BEV-0001"_s), "Select * from StockList where StockID = 'BEV-0001'");
    row("all stock", allStock(), "Select * from StockList");
    row("automatic ID count", automaticIdCount(u"BEV"_s),
        "Select count(*) as counts from StockList where StockID like 'BEV-*'");
    row("automatic ID count without a prefix", automaticIdCount({}),
        "Select count(*) as counts from StockList where StockID like '-*'");
    row("same stock", sameStock(u"BEV-0001"_s, u"GREEN TEA"_s),
        "Select * from StockList where StockID = 'BEV-0001' or UPPER(StockName) = 'GREEN TEA'");
    row("same stock name", sameStockName(u"GREEN TEA"_s),
        "Select * from StockList where UPPER(StockName) = 'GREEN TEA'");
    row("delete stock", deleteStock(u"BEV-0001"_s), "Delete from StockList where Upper(StockID) = 'BEV-0001'");
    row("stock levels", stockLevels(u"BEV-0001"_s),
        "Select StockName, StockID, StockReorderLevel,StockAvailable from StockList where StockID = 'BEV-0001'");
    row("items, available, all", stockItems(true, allCategories),
        "Select * from StockList where stockAvailable > 0 and StockUse = 'Enabled'");
    row("items, available, category", stockItems(true, u"FOOD"_s),
        "Select * from StockList where stockAvailable > 0 and StockCategory = 'FOOD' and StockUse = 'Enabled'");
    row("items, every, all", stockItems(false, allCategories), "Select * from StockList where StockUse = 'Enabled'");
    row("items, every, category", stockItems(false, u"FOOD"_s),
        "Select * from StockList where StockCategory = 'FOOD' and StockUse = 'Enabled'");
    row("search", searchStock(u"TEA"_s),
        "Select StockID, StockName, StockCategory from StockList where UPPER(StockID) like '*TEA*' or UPPER(StockName) "
        "like '*TEA*'  and StockUse = 'Enabled'");
    row("raise stock", raiseStock(3, u"0012"_s),
        "Update StockList Set StockAvailable = StockAvailable + 3 where StockID = '0012'");
    row("raise stock by less than nothing", raiseStock(-3, u"0012"_s),
        "Update StockList Set StockAvailable = StockAvailable + -3 where StockID = '0012'");
    row("available stock", availableStock(u"12"_s, u"MILK"_s),
        "Select * from Stocklist where StockUse = 'Enabled' and StockID = '12'  and StockName = 'MILK'");
    row("lower stock", lowerStock(2, u"12"_s, u"MILK"_s),
        "Update Stocklist Set StockAvailable = StockAvailable - 2 where StockID = '12' and UPPER(StockName) = 'MILK'");
    row("lower stock by a part", lowerStock(1250.5, u"12"_s, u"MILK"_s),
        "Update Stocklist Set StockAvailable = StockAvailable - 1250.5 where StockID = '12' and UPPER(StockName) = "
        "'MILK'");
    row("lower stock by less than nothing", lowerStock(-2, u"12"_s, u"MILK"_s),
        "Update Stocklist Set StockAvailable = StockAvailable - -2 where StockID = '12' and UPPER(StockName) = 'MILK'");
    row("low stock", lowStock(),
        "Select * from Stocklist where StockReorderlevel >= stockavailable and StockUse = 'Enabled'");
    row("stock total", stockTotal(),
        "Select Total(StockAvailable) as Totals from Stocklist where StockUse = 'Enabled'");

    row("page, available, all", quickSalesPage(true, allCategories, 0),
        "Select * from Stocklist where stockAvailable > 0 and StockUse = 'Enabled' order by StockName ASC  Limit 0, 9");
    row("page, available, category", quickSalesPage(true, u"FOOD"_s, 9),
        "Select * from Stocklist where stockAvailable > 0 and StockCategory = 'FOOD' and StockUse = 'Enabled' order by "
        "StockName ASC  Limit 9, 9");
    row("page, every, all", quickSalesPage(false, allCategories, 18),
        "Select * from Stocklist where StockUse = 'Enabled' order by StockName ASC  Limit 18, 9");
    row("page, every, category", quickSalesPage(false, u" Food "_s, 32760),
        "Select * from Stocklist where StockCategory = ' Food ' and StockUse = 'Enabled' order by StockName ASC  Limit "
        "32760, 9");
    row("count, available, all", quickSalesCount(true, allCategories),
        "Select * from Stocklist where stockAvailable > 0 and StockUse = 'Enabled' order by StockName ASC");
    row("count, available, category", quickSalesCount(true, u"FOOD"_s),
        "Select * from Stocklist where  stockAvailable > 0 and StockCategory = 'FOOD' and StockUse = 'Enabled' order "
        "by "
        "StockName ASC");
    row("count, every, all", quickSalesCount(false, allCategories),
        "Select * from Stocklist where StockUse = 'Enabled' order by StockName ASC");
    row("count, every, category", quickSalesCount(false, u"FOOD"_s),
        "Select * from Stocklist where StockCategory = 'FOOD' and StockUse = 'Enabled' order by StockName ASC");

    row("purchase", purchase(u"HV18030514070907"_s),
        "Select * from PurchaseCart where PurchaseID = 'HV18030514070907'");
    row("delete purchase", deletePurchase(u"HV18030514070907"_s),
        "Delete from PurchaseCart where PurchaseID = 'HV18030514070907'");
    row("purchase IDs", purchaseIds(), "Select PurchaseID from PurchaseCart Order by PurchaseID DESC");
    row("sales count", salesCount(u"261115"_s),
        "Select count(*) as totals from PurchaseCart where substr(PurchasedDate,1,6) = '261115'");
    row("sales count of a user", salesCount(u"MARY"_s, u"261115"_s),
        "Select count(*) as totals from PurchaseCart where Users = 'MARY' and substr(PurchasedDate,1,6) = '261115'");
    row("sales count of nobody", salesCount({}, u"261115"_s),
        "Select count(*) as totals from PurchaseCart where Users = '' and substr(PurchasedDate,1,6) = '261115'");
    row("sales amount", salesAmount(u"261115"_s),
        "Select sum(PurchasedItemsCost) as Counts from PurchaseCart where substr(PurchasedDate,1,6) = '261115'");
    row("sales amount of a user", salesAmount(u"MARY"_s, u"261115"_s),
        "Select sum(PurchasedItemsCost) as Counts from PurchaseCart where Users = 'MARY' and "
        "substr(PurchasedDate,1,6) = '261115'");
}

void TestStatements::hasExactText()
{
    QFETCH(const QString, text);
    QFETCH(const QString, expected);
    QCOMPARE(text, expected);
}

void TestStatements::refusesQuotes_data()
{
    using namespace statements;
    QTest::addColumn<bool>("isRefused");
    QTest::addColumn<QString>("table");
    const auto row = [](const char *name, const Statement &statement, const QString &table) {
        QTest::newRow(name) << statement.isRefused() << table << statement.table();
    };
    QTest::addColumn<QString>("known");
    const QString bad = u"x' or 'a'='a"_s;
    row("login name", login(bad, u"A"_s), u"Users"_s);
    row("login password", login(u"A"_s, bad), u"Users"_s);
    row("settings", updateSettings({0, 0, bad, 0, 0}), QString());
    row("usage time", usage({}, bad, {}), QString());
    row("stock by ID", stockById(bad), u"StockList"_s);
    row("available stock", availableStock(bad, {}), u"Stocklist"_s);
    row("available stock name", availableStock({}, bad), u"Stocklist"_s);
    row("automatic ID count", automaticIdCount(bad), u"StockList"_s);
    row("same stock ID", sameStock(bad, {}), u"StockList"_s);
    row("same stock", sameStock({}, bad), u"StockList"_s);
    row("same stock name", sameStockName(bad), u"StockList"_s);
    row("delete stock", deleteStock(bad), u"StockList"_s);
    row("stock levels", stockLevels(bad), u"StockList"_s);
    row("items", stockItems(true, bad), u"StockList"_s);
    row("search", searchStock(bad), u"StockList"_s);
    row("raise stock", raiseStock(1, bad), QString());
    row("page", quickSalesPage(false, bad, 0), u"Stocklist"_s);
    row("count", quickSalesCount(true, bad), u"Stocklist"_s);
    row("lower stock", lowerStock(1, bad, {}), QString());
    row("lower stock name", lowerStock(1, {}, bad), QString());
    row("purchase", purchase(bad), u"PurchaseCart"_s);
    row("delete purchase", deletePurchase(bad), u"PurchaseCart"_s);
    row("sales count", salesCount(bad, {}), u"PurchaseCart"_s);
    row("sales amount", salesAmount(bad, {}), u"PurchaseCart"_s);
}

void TestStatements::refusesQuotes()
{
    QFETCH(const bool, isRefused);
    QFETCH(const QString, table);
    QVERIFY(isRefused);
    QTEST(table, "known");
}

void TestStatements::usageLosesQuotes()
{
    const Statement statement = statements::usage(u"Item [O'Neill's ''x''] Added!"_s, u"t"_s, u"d"_s);
    QVERIFY(!statement.isRefused());
    QCOMPARE(statement.sql(),
             u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('Item [ONeills x] Added!','t','d')"_s);
}

HARROWBY_CORE_TEST(statement_texts_test, TestStatements)
#include "statement_texts_test.moc"
