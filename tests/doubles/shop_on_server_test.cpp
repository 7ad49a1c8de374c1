// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/doubles/server_shop.h"
#include "tests/doubles/shop_file.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::test;

/// A shop of the tests that stands on a server, and what they say to it.
class ShopOnServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersAsAFile();
    void beginsEmptyEachTime();
    void twoAtOnce();
    void refusesLocksAtOnce();
    void triggers();
    void words_data();
    void words();
};

void ShopOnServerTest::answersAsAFile()
{
    QVERIFY(shopsAreOnAServer());
    const ShopFile shop;
    QVERIFY(isOnServer(shop.path()));
    QCOMPARE(shop.handle(), nullptr);
    shop.addItem(u"A1"_s, u"O'NEILL"_s, 1.25, 10);
    shop.addUser(u"JACK"_s, u"PASS"_s, {u"Sales"_s});
    QCOMPARE(shop.rows(u"SELECT * FROM StockList"_s), QStringList{u"A1|O'NEILL|DRINKS|1.25|2|10|Enabled||||"_s});
    QCOMPARE(shop.cell(u"SELECT InventorySales FROM Users"_s), u"-1"_s);
    QCOMPARE(shop.cell(u"SELECT StockID FROM StockList WHERE StockID LIKE 'a%'"_s), u"A1"_s);
    QCOMPARE(shop.cell(u"SELECT StockID FROM StockList WHERE rowid = 2"_s), u"(no row)"_s);
    QCOMPARE(shop.rows(u"SELECT sum(StockCost), StockCost = 1.25, NULL, quote(StockName), typeof(StockCost) "
                       "FROM StockList GROUP BY 2, 4, 5"_s),
             QStringList{u"1.25|1||'O''NEILL'|real"_s});
    QCOMPARE(shop.rows(u"SELECT name FROM pragma_table_info('StoreSettings')"_s).size(), 5);
    QCOMPARE(shop.cell(u"SELECT replace(hex(zeroblob(2)), '00', 'tea ')"_s), u"tea tea "_s);
    QVERIFY(!shop.trySql(u"UPDATE Nothing SET A = 1"_s));
    QVERIFY(!shop.isInTransaction());
    QVERIFY(!shop.isBeingRead());
}

void ShopOnServerTest::beginsEmptyEachTime()
{
    QString path;
    for (int time = 0; time < 3; ++time) {
        const ShopFile shop;
        QCOMPARE(shop.cell(u"SELECT count(*) FROM StockList"_s), u"0"_s);
        shop.addItem(u"A1"_s, u"TEA"_s, 1.25, 10);
        QCOMPARE(shop.cell(u"SELECT rowid FROM StockList"_s), u"1"_s);
        if (time == 1)
            QCOMPARE(shop.path(), path); // the same database
        path = shop.path();
        Database other(path);
        QVERIFY(other.run(u"BEGIN; DELETE FROM StockList"_s)); // and is in the way of the next
        if (time == 1)                                         // changed in its make
            shop.sql(u"ALTER TABLE Users DROP COLUMN Type"_s);
    }
    const ShopFile shop;
    shop.addUser(u"JACK"_s, u"PASS"_s);
}

void ShopOnServerTest::twoAtOnce()
{
    const ShopFile first;
    const ShopFile second;
    QVERIFY(first.path() != second.path());
    first.addItem(u"A1"_s, u"TEA"_s, 1.25, 10);
    QCOMPARE(second.cell(u"SELECT count(*) FROM StockList"_s), u"0"_s);
}

void ShopOnServerTest::refusesLocksAtOnce()
{
    const ShopFile shop;
    shop.addItem(u"A1"_s, u"TEA"_s, 1.25, 10);
    Database first(shop.path());
    Database second(shop.path());
    QVERIFY(first.run(u"BEGIN IMMEDIATE"_s));
    QVERIFY(shop.isInTransaction());
    QVERIFY(!second.run(u"BEGIN IMMEDIATE"_s));
    QVERIFY(!second.run(u"UPDATE StockList SET StockAvailable = 1"_s));
    QCOMPARE(second.rows(u"SELECT StockAvailable FROM StockList"_s), QStringList{u"10"_s});
    QVERIFY(first.run(u"UPDATE StockList SET StockAvailable = 2; COMMIT"_s));
    QVERIFY(second.run(u"BEGIN EXCLUSIVE"_s));
    QCOMPARE(first.rows(u"SELECT StockAvailable FROM StockList"_s), QStringList{u"(failed)"_s});
    QVERIFY(second.run(u"ROLLBACK"_s));
    QCOMPARE(first.rows(u"SELECT StockAvailable FROM StockList"_s), QStringList{u"2"_s});
    QCOMPARE(first.integrity(), u"ok"_s);
    Database reader(shop.path(), true);
    QVERIFY(!reader.run(u"UPDATE StockList SET StockAvailable = 3"_s));
}

void ShopOnServerTest::triggers()
{
    const ShopFile shop;
    shop.sql(u"CREATE TRIGGER no BEFORE INSERT ON PurchaseCart BEGIN SELECT RAISE(ABORT, 'no'); END"_s);
    QVERIFY(!shop.trySql(u"INSERT INTO PurchaseCart (PurchaseID) VALUES ('HV1')"_s));
    shop.sql(u"create trigger after_it after update on StockList begin update StoreSettings set Email = 1; "
             "select raise(abort, 'no'); end"_s);
    shop.addItem(u"A1"_s, u"TEA"_s, 1.25, 10);
    QVERIFY(!shop.trySql(u"UPDATE StockList SET StockAvailable = 3"_s));
}

void ShopOnServerTest::words_data()
{
    QTest::addColumn<QString>("statements");
    QTest::addColumn<QString>("expected");
    QTest::newRow("as it is") << u"SELECT a FROM t"_s << u"SELECT a FROM t"_s;
    QTest::newRow("pragma") << u"PRAGMA synchronous = OFF; SELECT 1"_s << u"; SELECT 1"_s;
    QTest::newRow("pragma, last") << u"SELECT 1; pragma journal_mode = WAL"_s << u"SELECT 1; "_s;
    QTest::newRow("identity") << u"SELECT a.rowid FROM t AS a ORDER BY ROWID"_s
                              << u"SELECT a.rowid_ FROM t AS a ORDER BY rowid_"_s;
    QTest::newRow("of an own table") << u"DELETE FROM HarrowbyRun WHERE rowid = 1; DELETE FROM t WHERE rowid = 1"_s
                                     << u"DELETE FROM HarrowbyRun WHERE ctid = 1; DELETE FROM t WHERE rowid_ = 1"_s;
    QTest::newRow("in a literal") << u"SELECT 'rowid', 'it''s pragma x' WHERE rowid = 1"_s
                                  << u"SELECT 'rowid', 'it''s pragma x' WHERE rowid_ = 1"_s;
}

void ShopOnServerTest::words()
{
    QFETCH(const QString, statements);
    QTEST(inServersWords(statements), "expected");
}

HARROWBY_CORE_TEST(shop_on_server_test, ShopOnServerTest)
#include "shop_on_server_test.moc"
