// SPDX-License-Identifier: MIT
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"
#include "tests/store/scratch_store.h"

#include "store/recordset.h"
#include "store/statement_texts.h"

#include <QTest>

using namespace harrowby;
using namespace Qt::StringLiterals;

/// What the component's statements read and change in the tables, edge cases included.
class TestTables : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void nobodyLogsInWithAQuote_data();
    void nobodyLogsInWithAQuote();
    void loginComparesInUpperCase();
    void automaticIdsAreCountedByALiteralAsterisk();
    void categoryRenameComparesCase();
    void secondPurchaseOfASecondFindsTheFirst();
    void dayKeyIsTheDatesBeginning();
    void settingsOfEveryRowAreSet();
    void duplicateCheckWithAQuoteFindsNothing();
    void aggregatesAreReadUnderAnyCase();
    void emptyResultHasNoRows();
    void changeOfNothingIsNoFailure();
    void salesFiguresAreAUsersOwn();
    void stockFiguresLeaveOutDisabledItems();
    void availableStockWantsUpperCaseNames();
    void stockFallsBelowZero();
    void quickSalePagesNineByNine();
    void finishedItemsAreHidden();
    void missingTableReadsAsEmpty();
    void missingColumnReadsAsEmpty();
    void textWhereNumbersBelong();
    void categoriesComeInTableOrderOrSorted();

private:
    [[nodiscard]] DbRecordset &open(const Statement &select);
    [[nodiscard]] bool execute(const Statement &statement) const;

    std::unique_ptr<ScratchStore> m_store;
    std::unique_ptr<DbRecordset> m_rows;
};

void TestTables::init()
{
    m_rows.reset();
    m_store = std::make_unique<ScratchStore>();
}

DbRecordset &TestTables::open(const Statement &select)
{
    m_rows = std::make_unique<DbRecordset>();
    m_rows->Open(select, m_store->connection());
    return *m_rows;
}

bool TestTables::execute(const Statement &statement) const
{
    return Execute(m_store->connection(), statement);
}

void TestTables::nobodyLogsInWithAQuote_data()
{
    QTest::addColumn<QString>("entry");
    QTest::newRow("always true") << u"x' or 'a'='a"_s;
    QTest::newRow("upper-cased") << u"X' OR 'A'='A"_s;
    QTest::newRow("comment") << u"ADMINISTRATOR' --"_s;
    QTest::newRow("union") << u"x' union select * from Users --"_s;
    QTest::newRow("second statement") << u"x'; delete from Users; --"_s;
    QTest::newRow("doubled") << u"x'' or 1=1 --"_s;
}

void TestTables::nobodyLogsInWithAQuote()
{
    QFETCH(const QString, entry);
    m_store->run(u"insert into Users(Username, Password, Type) values ('ADMINISTRATOR', 'SECRET', 'MANAGER')"_s);
    QCOMPARE(open(statements::login(entry, u"SECRET"_s)).RecordCount(), 0);
    QCOMPARE(open(statements::login(u"ADMINISTRATOR"_s, entry)).RecordCount(), 0);
    QCOMPARE(open(statements::login(entry, entry)).RecordCount(), 0);
    QCOMPARE(m_store->failures.size(), 3u);
    QCOMPARE(m_store->column(u"select count(*) from Users"_s), QStringList{u"1"_s});
    QCOMPARE(open(statements::login(u"ADMINISTRATOR"_s, u"SECRET"_s)).RecordCount(), 1);
}

void TestTables::loginComparesInUpperCase()
{
    m_store->run(
        u"insert into Users(Username, Password, Type, InventoryUse) values ('Mary', 'Secret', 'CASHIER', '-1'), "
        "('Vera', 'v', 'VIEWER', '-1'), ('Nell', 'n', null, '-1')"_s);
    DbRecordset &rows = open(statements::login(u"MARY"_s, u"SECRET"_s));
    QCOMPARE(rows.RecordCount(), 1);
    QCOMPARE(rows.Field(u"inventoryuse"_s).text(), u"-1"_s);
    QCOMPARE(open(statements::login(u"Mary"_s, u"SECRET"_s)).RecordCount(), 0);
    QCOMPARE(open(statements::login(u"VERA"_s, u"V"_s)).RecordCount(), 0);
    QCOMPARE(open(statements::login(u"NELL"_s, u"N"_s)).RecordCount(), 0);
    QVERIFY(m_store->failures.empty());
}

void TestTables::automaticIdsAreCountedByALiteralAsterisk()
{
    const auto counted = [this] {
        const Statement select =
            Statement("Select count(*) as counts from StockList where StockID like ").text("", u"ABC"_s, "-*");
        return open(select).Field(u"Counts"_s).number(-1);
    };
    m_store->addItem(u"ABC-0001"_s, u"TEA"_s);
    m_store->addItem(u"ABC-0002"_s, u"MILK"_s);
    QCOMPARE(counted(), 0.0);
    m_store->addItem(u"abc-*"_s, u"RICE"_s);
    QCOMPARE(counted(), 1.0);
}

void TestTables::categoryRenameComparesCase()
{
    m_store->run(u"insert into StockList(StockID, StockCategory) values (1, 'FOOD'), (2, 'Food'), (3, 'FOOD')"_s);
    QVERIFY(execute(Statement("Update StockList SET StockCategory = ")
                        .text(u"MEALS"_s)
                        .fixed(" where StockCategory = ")
                        .text(u"FOOD"_s)));
    QCOMPARE(m_store->column(u"select StockCategory from StockList order by StockID"_s),
             QStringList({u"MEALS"_s, u"Food"_s, u"MEALS"_s}));
}

void TestTables::secondPurchaseOfASecondFindsTheFirst()
{
    const QString id = u"HV18030514070907"_s;
    DbRecordset &first = open(statements::purchase(id));
    QCOMPARE(first.RecordCount(), 0);
    first.AddNew();
    first.Field(u"PurchaseID"_s).assign(id);
    first.Update();
    DbRecordset &second = open(statements::purchase(id));
    QCOMPARE(second.RecordCount(), 1);
    second.AddNew();
    second.Field(u"PurchaseID"_s).assign(u"HE18030514070907"_s);
    second.Update();
    QCOMPARE(m_store->column(u"select PurchaseID from PurchaseCart order by rowid"_s),
             QStringList({id, u"HE18030514070907"_s}));
}

void TestTables::dayKeyIsTheDatesBeginning()
{
    m_store->run(
        u"insert into PurchaseCart(PurchasedDate, PurchasedItemsCost, Users) values "
        "('261115053100', 10.5, 'MARY'), ('261115', 2, 'JOE'), ('2026-11-15', 4, 'MARY'), "
        "('261114235959', 8, 'MARY'), (261115060000, 16, 'MARY'), (null, 32, 'MARY'), ('26111', 64, 'MARY')"_s);
    QCOMPARE(open(statements::salesCount(u"261115"_s)).Field(u"totals"_s).number(), 3.0);
    QCOMPARE(open(statements::salesAmount(u"261115"_s)).Field(u"Counts"_s).number(), 28.5);
}

void TestTables::settingsOfEveryRowAreSet()
{
    m_store->run(u"insert into StoreSettings values (1,1,'a',1,1), (0,0,'b',0,0), (null,null,null,null,null)"_s);
    QVERIFY(execute(statements::updateSettings({0, 1, u"shop@example.org"_s, 1, 0})));
    QCOMPARE(
        m_store->column(u"select distinct ''||Email||ShowDetails||EmailAddress||Promptreorder||AutoPurchaseCart from "
                        "StoreSettings"_s),
        QStringList{u"01shop@example.org10"_s});
    QVERIFY(!execute(statements::updateSettings({1, 1, u"o'neill@example.org"_s, 1, 1})));
    QCOMPARE(m_store->column(u"select distinct EmailAddress from StoreSettings"_s), QStringList{u"shop@example.org"_s});
}

void TestTables::duplicateCheckWithAQuoteFindsNothing()
{
    m_store->run(u"insert into StockList(StockID, StockName) values ('1', 'O''NEILL'), ('2', 'O''NEILL')"_s);
    const Statement check = Statement("Select * from StockList where Upper(StockName) = ").text(u"O'NEILL"_s);
    QCOMPARE(open(check).RecordCount(), 0);
    QCOMPARE(m_store->failures.size(), 1u);
}

void TestTables::aggregatesAreReadUnderAnyCase()
{
    m_store->addItem(u"1"_s, u"TEA"_s, 2);
    DbRecordset &rows = open(Statement("Select count(*) as counts from StockList where StockID like '*'"));
    for (const QString &name : {u"Counts"_s, u"counts"_s, u"COUNTS"_s})
        QVERIFY(rows.Field(name).value() == DbValue(static_cast<std::int64_t>(0)));
    QCOMPARE(open(statements::salesCount(u"261115"_s)).Field(u"Totals"_s).text(u"?"_s), u"0"_s);
    QCOMPARE(open(statements::salesAmount(u"261115"_s)).Field(u"COUNTS"_s).number(9), 0.0);
    QVERIFY(open(statements::salesAmount(u"261115"_s)).Field(u"counts"_s).value() == DbValue());
    QCOMPARE(open(statements::stockTotal()).Field(u"totals"_s).text(), u"2"_s);
    m_store->run(u"delete from StockList"_s);
    const DbValue none = test::shopsAreOnAServer() ? DbValue(std::int64_t(0)) : DbValue(0.0); // whole is whole there
    QVERIFY(open(statements::stockTotal()).Field(u"totals"_s).value() == none);
}

void TestTables::emptyResultHasNoRows()
{
    DbRecordset &rows = open(statements::categories());
    QCOMPARE(rows.RecordCount(), 0);
    QVERIFY(rows.IsEof());
    QVERIFY(m_store->failures.empty());
}

void TestTables::changeOfNothingIsNoFailure()
{
    m_store->addItem(u"1"_s, u"TEA"_s, 5);
    QVERIFY(execute(statements::lowerStock(1, u"1"_s, u"COFFEE"_s)));
    QVERIFY(execute(statements::lowerStock(1, u"9"_s, u"TEA"_s)));
    QCOMPARE(m_store->column(u"select StockAvailable from StockList"_s), QStringList{u"5"_s});
    QVERIFY(m_store->failures.empty());
}

void TestTables::salesFiguresAreAUsersOwn()
{
    m_store->run(u"insert into PurchaseCart(PurchasedDate, PurchasedItemsCost, Users) values "
                 "('261115053100', 10.5, 'MARY'), ('261115053101', 2, 'JOE'), ('261115053102', 4, 'mary')"_s);
    QCOMPARE(open(statements::salesCount(u"MARY"_s, u"261115"_s)).Field(u"totals"_s).number(), 1.0);
    QCOMPARE(open(statements::salesAmount(u"MARY"_s, u"261115"_s)).Field(u"counts"_s).number(), 10.5);
    QCOMPARE(open(statements::salesCount({}, u"261115"_s)).Field(u"totals"_s).number(), 0.0);
    QCOMPARE(open(statements::salesCount(u"261115"_s)).Field(u"totals"_s).number(), 3.0);
}

void TestTables::stockFiguresLeaveOutDisabledItems()
{
    m_store->addItem(u"1"_s, u"TEA"_s, 5);  // at its reorder level
    m_store->addItem(u"2"_s, u"MILK"_s, 6); // above
    m_store->addItem(u"3"_s, u"RICE"_s, 1);
    m_store->run(u"update StockList set StockUse = 'Disabled' where StockID = '3'"_s);
    QCOMPARE(open(statements::lowStock()).RecordCount(), 1);
    QCOMPARE(open(statements::stockTotal()).Field(u"totals"_s).number(), 11.0);
}

void TestTables::availableStockWantsUpperCaseNames()
{
    m_store->addItem(u"1"_s, u"TEA"_s, 5);
    m_store->addItem(u"2"_s, u"Milk"_s, 5);
    QCOMPARE(open(statements::availableStock(u"1"_s, u"TEA"_s)).Field(u"StockAvailable"_s).number(), 5.0);
    QCOMPARE(open(statements::availableStock(u"2"_s, u"MILK"_s)).RecordCount(), 0);
    m_store->run(u"update StockList set StockUse = 'Disabled'"_s);
    QCOMPARE(open(statements::availableStock(u"1"_s, u"TEA"_s)).RecordCount(), 0);
    QCOMPARE(open(statements::stockById(u"1"_s)).RecordCount(), 1);
}

void TestTables::stockFallsBelowZero()
{
    m_store->addItem(u"1"_s, u"Tea"_s, 5);
    QVERIFY(execute(statements::lowerStock(7.5, u"1"_s, u"TEA"_s)));
    QCOMPARE(m_store->column(u"select StockAvailable from StockList"_s), QStringList{u"-2.5"_s});
    QVERIFY(execute(statements::lowerStock(-3, u"1"_s, u"TEA"_s)));
    QCOMPARE(m_store->column(u"select StockAvailable from StockList"_s), QStringList{u"0.5"_s});
}

void TestTables::quickSalePagesNineByNine()
{
    for (int i = 1; i <= 10; ++i)
        m_store->addItem(QString::number(i), u"ITEM %1"_s.arg(i, 2, 10, QChar(u'0')));
    DbRecordset &first = open(statements::quickSalesPage(false, statements::allCategories, 0));
    QCOMPARE(first.RecordCount(), 9);
    QCOMPARE(first.Field(u"StockName"_s).text(), u"ITEM 01"_s);
    DbRecordset &second = open(statements::quickSalesPage(false, u"FOOD"_s, 9));
    QCOMPARE(second.RecordCount(), 1);
    QCOMPARE(second.Field(u"Stockcost"_s).text(), u"2.5"_s);
    QCOMPARE(open(statements::quickSalesPage(false, u"DRINKS"_s, 0)).RecordCount(), 0);
    QCOMPARE(open(statements::quickSalesCount(false, u"FOOD"_s)).RecordCount(), 10);
}

void TestTables::finishedItemsAreHidden()
{
    m_store->addItem(u"1"_s, u"TEA"_s, 0);
    m_store->addItem(u"2"_s, u"MILK"_s, 1);
    for (const QString &category : {QString(statements::allCategories), u"FOOD"_s}) {
        QCOMPARE(open(statements::quickSalesPage(true, category, 0)).RecordCount(), 1);
        QCOMPARE(open(statements::quickSalesCount(true, category)).RecordCount(), 1);
        QCOMPARE(open(statements::quickSalesPage(false, category, 0)).RecordCount(), 2);
        QCOMPARE(open(statements::quickSalesCount(false, category)).RecordCount(), 2);
    }
}

void TestTables::missingTableReadsAsEmpty()
{
    m_store->run(u"drop table StockList; drop table SysUsage"_s);
    DbRecordset &rows = open(statements::lowStock());
    QCOMPARE(rows.RecordCount(), 0);
    QVERIFY(!rows.Field(u"StockID"_s).value());
    QVERIFY(!execute(statements::usage({}, {}, {})));
    QCOMPARE(m_store->failures.size(), 2u);
}

void TestTables::missingColumnReadsAsEmpty()
{
    m_store->addItem(u"1"_s, u"TEA"_s);
    m_store->run(u"alter table StockList drop column StockAvailable"_s);
    QCOMPARE(open(statements::lowStock()).RecordCount(), 0);
    DbRecordset &rows = open(statements::stockById(u"1"_s));
    QCOMPARE(rows.RecordCount(), 1);
    QVERIFY(!rows.Field(u"StockAvailable"_s).value());
    QCOMPARE(rows.Field(u"StockName"_s).text(), u"TEA"_s);
    QVERIFY(!execute(statements::lowerStock(1, u"1"_s, u"TEA"_s)));
}

void TestTables::textWhereNumbersBelong()
{
    m_store->run(u"insert into StockList(StockID, StockCost, StockAvailable, StockReorderLevel, StockUse) values "
                 "('1', '12abc', 'many', null, 'Enabled'), ('2', x'3133', x'', 5, 'Enabled')"_s);
    DbRecordset &rows = open(Statement("Select * from StockList"));
    QCOMPARE(rows.Field(u"StockCost"_s).number(), 12.0);
    QCOMPARE(rows.Field(u"StockAvailable"_s).number(-1), 0.0);
    QCOMPARE(rows.Field(u"StockReorderLevel"_s).text(u"?"_s), QString());
    rows.MoveNext();
    QCOMPARE(rows.Field(u"StockCost"_s).number(), 13.0);
    QCOMPARE(rows.Field(u"StockAvailable"_s).number(-1), 0.0);
    QCOMPARE(open(statements::stockTotal()).Field(u"Totals"_s).number(-1), 0.0);
}

void TestTables::categoriesComeInTableOrderOrSorted()
{
    m_store->run(u"insert into InventoryCategory(CategoryName) values ('TOYS'), ('Food'), ('DRINKS')"_s);
    DbRecordset &stored = open(statements::categories());
    QCOMPARE(stored.Field(u"categoryname"_s).text(), u"TOYS"_s);
    DbRecordset &sorted = open(statements::categoriesByName());
    QCOMPARE(sorted.Field(u"CategoryName"_s).text(), u"DRINKS"_s);
    QCOMPARE(sorted.RecordCount(), 3);
}

HARROWBY_CORE_TEST(tables_test, TestTables)
#include "tables_test.moc"
