// SPDX-License-Identifier: MIT
#include "tests/postgres/odd_shop.h"

#include "app/records/statement_pieces.h"
#include "plugins/report/sales_statements.h"
#include "postgres/storable.h"
#include "store/statement_texts.h"

namespace harrowby::test {

using namespace Qt::StringLiterals;

namespace {

// Some differ in capitals alone, as ASCII has them or not.
const QStringList &ids()
{
    static const QStringList texts{u"A"_s,     u"a"_s,        u"ABC-0001"_s, u"ABC-*"_s, u"abc-*"_s,
                                   u"ABC-%"_s, u"ABC_0001"_s, u"a\\b"_s,     u"É1"_s,    u"é1"_s,
                                   u" A"_s,    u"A "_s,       u""_s,         u"ß"_s,     u"*TEA*"_s,
                                   u"𝒳"_s,     u"10"_s,       u"9"_s,        u"5%1"_s,   u"%L2"_s};
    return texts;
}

const QStringList &names()
{
    static const QStringList texts{u"Tea"_s,   u"TEA"_s, u"tea"_s,   u"*tea*"_s, u"Zoë"_s,   u"Zoe"_s,     u"\tTea"_s,
                                   u"Té\na"_s, u""_s,    u"Ünder"_s, u"%"_s,     u"_"_s,     u"Te\\a\\"_s, u"茶"_s,
                                   u"~"_s,     u"🍵"_s,   u"�"_s,     u"İ"_s,     u"40%1L"_s, u"A %2"_s};
    return texts;
}

const QStringList &categoryNames()
{
    static const QStringList texts{u"FOOD"_s, u"Food"_s, u"DRINKS"_s,        u"OTHER CATEGORY"_s,
                                   u""_s,     u"É"_s,    u"(ALL CATEGORY)"_s};
    return texts;
}

const QStringList &userNames()
{
    static const QStringList texts{u"MARY"_s, u"mary"_s, u"Mary"_s, u"JÖRG"_s, u"jörg"_s, u""_s};
    return texts;
}

const QStringList &days()
{
    static const QStringList texts{u"261122"_s, u"261121"_s, u"261130"_s, u"99"_s};
    return texts;
}

} // namespace

/// Now and then there is none.
DbValue OddShop::text(const QStringList &texts)
{
    return number(12) == 0 ? DbValue() : DbValue(pick(texts));
}

/// Quarters, whose sum is the same in whatever order they are added, and large figures now and then.
DbValue OddShop::figure()
{
    switch (number(8)) {
    case 0:
        return {};
    case 1:
        return std::int64_t{0};
    case 2:
        return -0.25 * number(100);
    case 3:
        return std::int64_t{1'000'000'000} * number(1000);
    case 4:
        return QString::number(0.25 * number(100));
    default:
        return std::int64_t{number(20)};
    }
}

QString OddShop::id()
{
    return pick(ids());
}

QString OddShop::name()
{
    return pick(names());
}

QString OddShop::categoryName()
{
    return pick(categoryNames());
}

QString OddShop::day()
{
    return pick(days());
}

DbAssignments OddShop::item()
{
    return {{u"StockID"_s, text(ids())},
            {u"StockName"_s, text(names())},
            {u"StockCategory"_s, text(categoryNames())},
            {u"StockCost"_s, figure()},
            {u"StockReorderLevel"_s, figure()},
            {u"StockAvailable"_s, figure()},
            {u"StockUse"_s, number(3) > 0 ? DbValue(u"Enabled"_s) : text({u"Disabled"_s, u"enabled"_s, u""_s})},
            {u"StockLastUpdated"_s, std::int64_t{number(5)}},
            {u"StockReorderUser"_s, text(userNames())}};
}

DbAssignments OddShop::itemChange()
{
    switch (number(3)) {
    case 0:
        return {{u"StockAvailable"_s, figure()}, {u"stockreorderuser"_s, text(userNames())}};
    case 1:
        return {{u"StockName"_s, text(names())}};
    default:
        return {{u"StockUse"_s, pick({u"Enabled"_s, u"Disabled"_s})}, {u"StockCategory"_s, text(categoryNames())}};
    }
}

DbAssignments OddShop::user()
{
    return {{u"Username"_s, text(userNames())},
            {u"Password"_s, text({u"secret"_s, u"SECRET"_s, u"Sécret"_s})},
            {u"Type"_s, text({u"STAFF"_s, u"VIEWER"_s, u""_s})},
            {u"InventoryUse"_s, figure()},
            {u"InventoryReorder"_s, std::int64_t{-1}}};
}

DbAssignments OddShop::category()
{
    return {{u"CategoryName"_s, text(categoryNames())}, {u"EntryDate"_s, text(days())}};
}

DbAssignments OddShop::purchase()
{
    return {{u"PurchaseID"_s, text(ids())},
            {u"PurchasedItems"_s, u"%1 x A  |  %2 = 2.50"_s.arg(number(9)).arg(name())},
            {u"PurchasedItemsTotal"_s, figure()},
            {u"PurchasedItemsCost"_s, figure()},
            {u"PurchasedDate"_s, number(9) == 0 ? text(names()) : DbValue(day() + QString::number(number(4)))},
            {u"Users"_s, text(userNames())}};
}

DbAssignments OddShop::settings()
{
    return {{u"Email"_s, figure()}, {u"EmailAddress"_s, text(names())}, {u"AutoPurchaseCart"_s, std::int64_t{0}}};
}

QStringList OddShop::stockSelects()
{
    using namespace statements;
    const QString all(allCategories);
    const QString other = categoryName();
    QStringList texts{stockById(id()).sql(),
                      allStock().sql(),
                      automaticIdCount(u"abc"_s).sql(),
                      automaticIdCount(u"%\\"_s).sql(),
                      sameStock(id(), name()).sql(),
                      sameStock(u"A"_s, u"TEA"_s).sql(),
                      sameStock(u"5%1"_s, u"A %2"_s).sql(),
                      sameStockName(u"TEA"_s).sql(),
                      searchStock(u"TEA"_s).sql(),
                      searchStock(name()).sql(),
                      stockLevels(id()).sql(),
                      availableStock(id(), name()).sql(),
                      availableStock(u"A"_s, u"Tea"_s).sql(),
                      lowStock().sql(),
                      stockTotal().sql()};
    for (const bool hideFinished : {false, true}) {
        for (const QString &category : {all, u"FOOD"_s, other}) {
            texts << stockItems(hideFinished, category).sql() << quickSalesCount(hideFinished, category).sql()
                  << quickSalesPage(hideFinished, category, 9 * number(4)).sql();
        }
    }
    return texts;
}

QStringList OddShop::reportSelects()
{
    QStringList texts;
    const report::Period period{QDate(2026, 11, 20), QDate(2026, 11, 22)};
    for (const std::optional<QString> &seller : {std::optional<QString>(), std::optional(pick(userNames()))}) {
        texts << report::sumsStatement(period, seller) << report::rowsStatement(period, seller)
              << report::itemsStatement(period, seller) << report::probeStatement(period, seller, 7);
    }
    return texts;
}

/// Of the kinds that the store program's own rooms read the six tables by.
QStringList OddShop::officeSelects()
{
    const QString pattern = postgres::literal(DbValue(u'%' + app::escapedForLike(name().toUpper()) + u'%'));
    const QString id = postgres::literal(DbValue(this->id()));
    const QString page = u" order by Dates desc limit 5 offset %1"_s.arg(number(9));
    return {
        u"select StockID, StockName, StockCost from StockList where upper(StockID) like %1 escape '\\' or "
        "upper(StockName) like %1 escape '\\' order by StockName, StockID limit 7"_s.arg(pattern),
        u"select s.StockID, s.StockName, s.StockCost, s.StockAvailable, (select count(*) from StockList o where "
        "o.StockID = s.StockID and o.StockName is distinct from s.StockName) from StockList s where s.StockUse = "
        "'Enabled' and s.StockCategory = 'FOOD' order by s.StockName, s.StockID"_s,
        u"select distinct StockCategory from StockList where StockUse = 'Enabled' order by StockCategory"_s,
        u"select StockName, StockUse from StockList where StockID = "_s + id,
        u"select StockID, StockName, StockCost from StockList where StockID in ('a', %1, 'A', '9', 'ABC-*')"_s.arg(id),
        u"select StockID, StockName from StockList where UPPER(StockID) in ('ABC-*', 'A', %1)"_s.arg(id),
        u"select p.ID from (select PurchaseID || '' as ID, count(*) as Times from PurchaseCart where "
        "substr(PurchasedDate, 1, 6) >= '261121' and PurchasedDate >= '2611211' group by PurchaseID || '') p "
        "where p.Times <> 2 order by p.ID"_s,
        u"select Dates, SystemUsage from SysUsage where Dates is not null"_s + page,
        u"select Dates, SystemUsage from SysUsage where Dates is null order by SystemUsage"_s,
        u"select 1 from Users where upper(Username) = 'MARY'"_s,
        u"select Username from Users where Username <> ''"_s,
        u"SELECT UPPER(Username), InventoryUse, InventoryReorder, UPPER(Password) FROM Users WHERE Type <> 'VIEWER'"_s,
        u"SELECT UPPER(Username), InventoryUse FROM Users WHERE Type <> 'VIEWER' AND UPPER(Username) = 'MARY'"_s,
        u"SELECT Username, Type FROM Users ORDER BY Username"_s,
        u"select CategoryName from InventoryCategory"_s,
        u"select StockID from StockList limit 1"_s,
        u"select PurchaseID from PurchaseCart"_s,
        u"select StockID from StockList where StockID like 'abc-%' escape '\\'"_s,
        u"select StockID, StockName, StockUse from StockList where StockID = %1 or UPPER(StockName) = 'TEA'"_s.arg(id),
        u"select PurchasedItems, PurchasedItemsCost, PurchasedDate, Users from PurchaseCart where PurchaseID = "_s + id,
        u"select PurchaseID, PurchasedItemsCost, Users from PurchaseCart where substr(PurchasedDate, 1, 6) >= '261121' "
        "and substr(PurchasedDate, 1, 6) <= '261130'"_s,
        u"select max(PurchasedDate) from PurchaseCart where substr(PurchasedDate,1,6) = '261121'"_s,
        u"SELECT max(substr(PurchasedDate,1,6)) FROM PurchaseCart"_s};
}

QStringList OddShop::selects()
{
    using namespace statements;
    return stockSelects() + reportSelects() + officeSelects() +
           QStringList{login(u"MARY"_s, u"SECRET"_s).sql(),
                       login(pick(userNames()), u"SECRET"_s).sql(),
                       storeSettings().sql(),
                       categories().sql(),
                       categoriesByName().sql(),
                       statements::purchase(id()).sql(),
                       purchaseIds().sql(),
                       salesCount(day()).sql(),
                       salesCount(pick(userNames()), day()).sql(),
                       salesAmount(day()).sql(),
                       salesAmount(pick(userNames()), day()).sql(),
                       u"Select * from SysUsage"_s};
}

QString OddShop::change()
{
    using namespace statements;
    switch (number(12)) {
    case 0:
        return updateSettings({static_cast<std::int16_t>(number(2)), 1, name(), 0, 1}).sql();
    case 1:
        return usage(name(), day(), day()).sql();
    case 2:
        return addCategory(categoryName(), day()).sql();
    case 3:
        return renameCategory(categoryName(), categoryName()).sql();
    case 4:
        return deleteCategory(categoryName()).sql();
    case 5:
        return moveStock(categoryName(), categoryName()).sql();
    case 6:
        return moveStockToOther(categoryName()).sql();
    case 7:
        return deleteStock(id().toUpper()).sql();
    case 8:
        return raiseStock(number(9), id()).sql();
    case 9:
        return deletePurchase(id()).sql();
    default:
        return lowerStock(0.25 * number(30), id(), name().toUpper()).sql();
    }
}

} // namespace harrowby::test
