// SPDX-License-Identifier: MIT
#include "app/shop/schema.h"
#include "store/statement_texts.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

class SchemaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void newFileHasTheTablesAndNoRule();
    void newFileIsMarked();
    void statementUsesItsIndex_data();
    void statementUsesItsIndex();
    void everyIndexServesAStatement();
    void listsWithoutOrderDoNotFollowTheStock();
    void indexesAreMadeOnce();

private:
    [[nodiscard]] QString plan(const QString &statement) const
    {
        QStringList steps;
        SqliteStatement query(m_database.get(), u"EXPLAIN QUERY PLAN "_s + statement);
        while (query.next())
            steps << query.text(3);
        return query.error() ? query.error()->reason : steps.join(u"; "_s);
    }

    QTemporaryDir m_folder;
    SqliteDatabase m_database;
};

namespace {

struct Expected
{
    QString statement;
    QString index;     ///< empty: the statement reads the whole table, and no index can help it
    bool counted;      ///< the window only counts its rows
    bool sorts = true; ///< false: the order must come from the index
};

QString sql(const Statement &statement)
{
    return statement.sql();
}

QList<Expected> sellingStatements()
{
    const QString all(statements::allCategories);
    const QString food = u"FOOD"_s;
    return {
        {sql(statements::login(u"A"_s, u"B"_s)), u"harrowby_user_name"_s, false},
        {sql(statements::categoriesByName()), u"harrowby_category_name"_s, false, false},
        {sql(statements::stockById(u"A"_s)), u"harrowby_stock_id"_s, false},
        {sql(statements::availableStock(u"A"_s, u"B"_s)), u"harrowby_stock_page"_s, false},
        {sql(statements::quickSalesPage(false, all, 9)), u"harrowby_stock_page"_s, false, false},
        {sql(statements::quickSalesPage(true, all, 9)), u"harrowby_stock_page_left"_s, false, false},
        {sql(statements::quickSalesPage(false, food, 9)), u"harrowby_stock_category"_s, false, false},
        {sql(statements::quickSalesPage(true, food, 9)), u"harrowby_stock_category_left"_s, false, false},
        {sql(statements::quickSalesCount(false, food)), u"harrowby_stock_category"_s, true, false},
        {sql(statements::quickSalesCount(true, food)), u"harrowby_stock_category_left"_s, true, false},
        {sql(statements::lowerStock(2, u"A"_s, u"B"_s)), u"harrowby_stock_name_upper"_s, false},
        {sql(statements::lowStock()), u"harrowby_stock_reorder"_s, true},
        {sql(statements::stockTotal()), u"harrowby_stock_total"_s, false},
        {sql(statements::purchase(u"HV1"_s)), u"harrowby_purchase_id"_s, true},
        {sql(statements::salesCount(u"260305"_s)), u"harrowby_purchase_day"_s, false},
        {sql(statements::salesCount(u"A"_s, u"260305"_s)), u"harrowby_purchase_day"_s, false},
        {sql(statements::salesAmount(u"260305"_s)), u"harrowby_purchase_day"_s, false},
        {sql(statements::salesAmount(u"A"_s, u"260305"_s)), u"harrowby_purchase_day"_s, false},
    };
}

QList<Expected> stockKeepingStatements()
{
    return {
        {u"Delete from StockList where Upper(StockID) = 'A'"_s, u"harrowby_stock_id_upper"_s, false},
        {u"Select count(*) as counts from StockList where StockID like 'ABC-*'"_s, u"harrowby_stock_id_like"_s, false},
        {u"Select * from StockList where StockID = 'A' or UPPER(StockName) = 'B'"_s, u"harrowby_stock_id"_s, true},
        {u"Select * from StockList where StockID = 'A' or UPPER(StockName) = 'B'"_s, u"harrowby_stock_name_upper"_s,
         true},
        {u"Select * from StockList where UPPER(StockName) = 'B'"_s, u"harrowby_stock_name_upper"_s, true},
        {u"Select StockName, StockID, StockReorderLevel,StockAvailable from StockList where StockID = 'A'"_s,
         u"harrowby_stock_id"_s, false},
        {u"Update StockList Set StockAvailable = StockAvailable + 3 where StockID = 'A'"_s, u"harrowby_stock_id"_s,
         false},
        {u"Update InventoryCategory SET CategoryName = 'A' where CategoryName = 'B'"_s, u"harrowby_category_name"_s,
         false},
        {u"Delete from InventoryCategory where CategoryName = 'A'"_s, u"harrowby_category_name"_s, false},
        {u"Update StockList SET StockCategory = 'A' where StockCategory = 'B'"_s, u"harrowby_stock_category"_s, false},
        {u"Update StockList Set StockCategory = 'OTHER CATEGORY' where StockCategory = 'B'"_s,
         u"harrowby_stock_category"_s, false},
        {u"Select * from StockList where stockAvailable > 0 and StockCategory = 'A' and StockUse = 'Enabled'"_s,
         u"harrowby_stock_category_left"_s, false},
        {u"Select * from StockList where StockCategory = 'A' and StockUse = 'Enabled'"_s, u"harrowby_stock_category"_s,
         false},
        {u"Delete from PurchaseCart where PurchaseID = 'A'"_s, u"harrowby_purchase_id"_s, false},
        {u"Select PurchaseID from PurchaseCart Order by PurchaseID DESC"_s, u"harrowby_purchase_id"_s, false, false},
        {u"select Dates, SystemUsage from SysUsage where Dates is not null and Dates <= 'A' order by Dates desc limit 9"_s,
         u"harrowby_usage_time"_s, false, false},
        {u"select Dates, SystemUsage from SysUsage where Dates is null order by SystemUsage"_s,
         u"harrowby_usage_time"_s, false},
    };
}

} // namespace

void SchemaTest::initTestCase()
{
    const QString path = m_folder.filePath(u"shop.sqlite"_s);
    makeStore(path);
    QVERIFY(!into(m_database, openDatabase(path, OpenMode::Write)));
}

void SchemaTest::newFileHasTheTablesAndNoRule()
{
    for (const StoreTable &table : storeTables()) {
        QStringList columns;
        SqliteStatement query(m_database.get(),
                              u"SELECT name, type, \"notnull\", dflt_value, pk FROM pragma_table_info(?1)"_s,
                              {table.name});
        while (query.next()) {
            columns << query.text(0);
            QCOMPARE(query.text(1), table.types.at(columns.size() - 1));
            QCOMPARE(query.text(2) + query.text(3) + query.text(4), u"00"_s);
        }
        QCOMPARE(columns, table.columns);
    }
    QCOMPARE(readText(m_database.get(), u"SELECT count(*) FROM sqlite_master WHERE type = 'table'"_s), u"6"_s);
    QCOMPARE(
        readText(m_database.get(), u"SELECT count(*) FROM sqlite_master WHERE sql LIKE '%UNIQUE%' OR sql IS NULL"_s),
        u"0"_s);
}

void SchemaTest::newFileIsMarked()
{
    QCOMPARE(readText(m_database.get(), u"PRAGMA application_id"_s).toInt(), storeApplicationId);
    QVERIFY(isOwnStore(m_database.get()));
    QCOMPARE(readText(m_database.get(), u"PRAGMA user_version"_s).toInt(), storeSchemaVersion);
    QCOMPARE(readText(m_database.get(), u"PRAGMA journal_mode"_s), u"wal"_s);
}

void SchemaTest::statementUsesItsIndex_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("index");
    QTest::addColumn<bool>("sorts");
    for (const Expected &expected : sellingStatements() + stockKeepingStatements()) {
        QTest::addRow("%s", qPrintable(expected.statement)) << expected.statement << expected.index << expected.sorts;
        if (expected.counted) {
            QTest::addRow("count of %s", qPrintable(expected.statement))
                << u"Select count(*) from (%1) order by 1"_s.arg(expected.statement) << expected.index << true;
        }
    }
}

void SchemaTest::statementUsesItsIndex()
{
    QFETCH(QString, statement);
    QFETCH(QString, index);
    QFETCH(bool, sorts);
    const QString found = plan(statement);
    QVERIFY2(found.split(QRegularExpression(u"\\W+"_s)).contains(index), qPrintable(found));
    QVERIFY2(!found.contains(u"SCAN StockList"_s), qPrintable(found));
    if (!sorts)
        QVERIFY2(!found.contains(u"TEMP B-TREE"_s), qPrintable(found));
}

void SchemaTest::everyIndexServesAStatement()
{
    QSet<QString> serving;
    for (const Expected &expected : sellingStatements() + stockKeepingStatements())
        serving.insert(expected.index);
    QSet<QString> present;
    for (const StoreIndex &index : storeIndexes())
        present.insert(index.name);
    QCOMPARE(serving, present);
}

void SchemaTest::listsWithoutOrderDoNotFollowTheStock()
{
    // A list that has no order of its own must not be shuffled by every sale.
    for (const QString &where : {u"stockAvailable > 0 and StockUse = 'Enabled'"_s, u"StockUse = 'Enabled'"_s}) {
        const QString found = plan(u"Select * from StockList where "_s + where);
        QVERIFY2(found.contains(u"harrowby_stock_page"_s), qPrintable(found));
    }
    for (const bool hideFinished : {false, true}) {
        const Statement counted = statements::quickSalesCount(hideFinished, QString(statements::allCategories));
        const QString found = plan(u"Select count(*) from (%1) order by 1"_s.arg(counted.sql()));
        QVERIFY2(found.contains(u"INDEX harrowby_"_s), qPrintable(found));
    }
}

void SchemaTest::indexesAreMadeOnce()
{
    QCOMPARE(createMissingIndexes(m_database.get()).value_or(-1), 0);
    QVERIFY(!runSql(m_database.get(), u"DROP INDEX harrowby_stock_page"_s));
    QCOMPARE(createMissingIndexes(m_database.get()).value_or(-1), 1);
}

HARROWBY_CORE_TEST(app_schema_test, SchemaTest)
#include "schema_test.moc"
