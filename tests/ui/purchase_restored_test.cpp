// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/support/inventory_probe.h"
#include "tests/ui/purchase_desk.h"

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::purchase_desk;

/// What of a purchase that is taken back comes into the cart and the stock.
class PurchaseRestoredTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cartIsReplaced();
    void stockByTheIdAlone();
    void priceIsLookedUpAnew();
    void sameItemTwice();
    void withoutMerging();
    void elements_data();
    void elements();
    void counts_data();
    void counts();
    void noColumn_data();
    void noColumn();
    void twoRowsOfOneId();
    void deletedItem();
    void quotedId();
    void idIsTrimmed();
};

void PurchaseRestoredTest::cartIsReplaced()
{
    Counter counter;
    openShop(counter);
    commit(counter);
    for (const char *button : {"Command1_0", "Command1_1"})
        counter.click(button);
    undo(counter);
    QCOMPARE(counter.cart(), committedCart); // not merged with what was there
    QCOMPARE(stock(counter), untouched);
}

void PurchaseRestoredTest::stockByTheIdAlone()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, u"3 x 0012  |  MILK = 1,500.00"_s, u"1"_s);
    counter.file.sql(u"UPDATE StockList SET StockName = 'CREAM', StockUse = 'Disabled' WHERE StockID = '0012'"_s);
    deletePurchase(counter, u"HV1"_s);
    QCOMPARE(stock(counter).at(2), u"0012|33"_s);
    QCOMPARE(counter.cart(), QStringList{u"0012  |  MILK|3|1,500.00"_s});
}

void PurchaseRestoredTest::priceIsLookedUpAnew()
{
    Counter counter;
    openShop(counter);
    commit(counter);
    counter.file.sql(u"UPDATE StockList SET StockCost = 3 WHERE StockID = 'A2'"_s);
    undo(counter);
    QCOMPARE(counter.cart(), (QStringList{u"A1  |  SAFE|1|1,250.00"_s, u"A2  |  TEA|2|6.00"_s}));
}

void PurchaseRestoredTest::sameItemTwice()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, u"1 x A2  |  TEA = 2.50, 20000 x A2  |  tea = 0.00, 20000 x A2  |  TEA = 1.00"_s,
                u"3"_s);
    deletePurchase(counter, u"HV1"_s); // without a box about merging
    QCOMPARE(counter.cart(), QStringList{u"A2  |  TEA|40001|100,002.50"_s});
    QCOMPARE(stock(counter).at(1), u"A2|40021"_s);
}

void PurchaseRestoredTest::withoutMerging()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, u"1 x A2  |  TEA = 2.50, 4 x A2  |  TEA = 10.00"_s, u"2"_s);
    counter.boxes.expect(u"Item Already Exist in Cart.\r\nTo Update - YES, To Replace - NO"_s, box::Ask, Answer::No);
    InventoryProbe{counter.window()}.undoPurchase(u"HV1"_s, false);
    QCOMPARE(counter.cart(), QStringList{u"A2  |  TEA|4|10.00"_s});
}

void PurchaseRestoredTest::elements_data()
{
    QTest::addColumn<QString>("items");
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("cart");
    QTest::addColumn<QStringList>("stock");
    const auto row = [](const char *name, const char *items, int count, const QStringList &cart,
                        const QStringList &stock = untouched) {
        QTest::newRow(name) << QString::fromUtf8(items) << count << cart << stock;
    };
    const QString tea = u"A2  |  TEA|1|2.50"_s;
    const QStringList teaBack{u"A1|10"_s, u"A2|21"_s, u"0012|30"_s};
    row("x in the name", "1 x A2  |  BOX x 12 = 2.50", 1, {u"A2  |  BOX|1|2.50"_s}, teaBack);
    row("= in the name", "1 x A2  |  E = MC2 = 2.50", 1, {u"A2  |  E|1|2.50"_s}, teaBack);
    row("bar in the name", "1 x A2  |  TEA  |  GREEN = 2.50", 1, {tea}, teaBack);
    // The name's second half counts as an element that cannot be read, and the last element is beyond the count.
    row("comma in the name", "1 x A2  |  TEA, GREEN = 2.50, 1 x A1  |  SAFE = 1.00", 2, {tea}, teaBack);
    row("comma in the name, last", "1 x A1  |  SAFE = 1.00, 1 x A2  |  TEA, GREEN = 2.50", 2,
        {u"A1  |  SAFE|1|1,250.00"_s, tea}, {u"A1|11"_s, u"A2|21"_s, u"0012|30"_s});
    row("comma and a whole element in a name", "1 x A2  |  TEA, 5 x 0012  |  MILK = 2.50", 1, {tea}, teaBack);
    row("all separators", "1 x A2  |   x , = ,   |   = 2.50", 1, {u"A2  |  |1|2.50"_s}, teaBack);
    row("malformed first", "TEA, 1 x A2  |  TEA = 2.50", 2, {tea}, teaBack);
    row("malformed in the middle", "1 x A2  |  TEA = 2.50, , 1 x A2  |  TEA = 2.50", 3, {u"A2  |  TEA|2|5.00"_s},
        {u"A1|10"_s, u"A2|22"_s, u"0012|30"_s});
    row("nothing but separators", ", , , ", 4, {});
    row("empty", "", 1, {});
    row("no ID", "1 x   |  TEA = 2.50", 1, {u"  |  TEA|1|0.00"_s});
    row("quantity of none", "0 x A2  |  TEA = 2.50", 1, {u"A2  |  TEA|0|0.00"_s});
    row("negative quantity", "-2 x A2  |  TEA = 2.50", 1, {u"A2  |  TEA|-2|-5.00"_s},
        {u"A1|10"_s, u"A2|18"_s, u"0012|30"_s});
    row("quantity with a comma", "1,000 x A2  |  TEA = 2.50", 1, {tea}, teaBack);
    row("quantity that is none", "many x A2  |  TEA = 2.50", 1, {u"A2  |  TEA|0|0.00"_s});
    row("half to even", "2.5 x A2  |  TEA = 2.50, 1.5 x A1  |  SAFE = 1.00", 2,
        {u"A2  |  TEA|2|5.00"_s, u"A1  |  SAFE|2|2,500.00"_s}, {u"A1|12"_s, u"A2|22"_s, u"0012|30"_s});
    row("most that fits", "32767 x A2  |  TEA = 2.50", 1, {u"A2  |  TEA|32767|81,917.50"_s},
        {u"A1|10"_s, u"A2|32787"_s, u"0012|30"_s});
    row("does not fit", "32768 x A1  |  SAFE = 1.00, 1 x A2  |  TEA = 2.50", 2, {tea}, teaBack);
    row("another ID's capitals", "1 x a2  |  TEA = 2.50", 1, {u"a2  |  TEA|1|0.00"_s});
}

void PurchaseRestoredTest::elements()
{
    QFETCH(const QString, items);
    QFETCH(const int, count);
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, items, QString::number(count));
    deletePurchase(counter, u"HV1"_s);
    QTEST(counter.cart(), "cart");
    QTEST(stock(counter), "stock");
    QCOMPARE(purchases(counter), QStringList()); // deleted although lines were skipped
}

void PurchaseRestoredTest::counts_data()
{
    QTest::addColumn<QString>("count");
    QTest::addColumn<int>("restored");
    const auto row = [](const char *name, const char *count, int restored) {
        QTest::newRow(name) << QString::fromUtf8(count) << restored;
    };
    row("all", "3", 3);
    row("none", "0", 0);
    row("fewer", "2", 2);
    row("more", "30", 3);
    row("most", "32767", 3);
    row("negative", "-1", 0);
    row("does not fit", "32768", 0);
    row("far too large", "40000", 0);
    row("infinite", "9e999", 0);
    row("null", "NULL", 0);
    row("no number", "'three'", 0);
    row("empty", "''", 0);
    row("number as text", "'2'", 2);
    row("number and more", "'2 lines'", 0);
    row("blob", "X'32'", 0);
    row("half to even, down", "2.5", 2);
    row("half to even, up", "1.5", 2);
    row("below a half", "0.5", 0);
}

void PurchaseRestoredTest::counts()
{
    QFETCH(const QString, count);
    QFETCH(const int, restored);
    Counter counter;
    if (!counter.file.keepsFigure(count))
        QSKIP("no figure");
    openShop(counter);
    commit(counter);
    counter.click("Command1_0");
    addPurchase(counter, u"HV1"_s, u"1 x A1  |  SAFE = 1.00, 1 x A2  |  TEA = 2.50, 1 x 0012  |  MILK = 1.00"_s, count);
    const QString total = counter.text("Label5");
    const QStringList before = stock(counter);
    deletePurchase(counter, u"HV1"_s);
    const QStringList lines{u"A1  |  SAFE|1|1,250.00"_s, u"A2  |  TEA|1|2.50"_s, u"0012  |  MILK|1|500.00"_s};
    QCOMPARE(counter.cart(), lines.first(restored));
    QStringList after{u"A1|9"_s, u"A2|18"_s, u"0012|30"_s};
    QCOMPARE(before, after);
    const QStringList oneMore{u"A1|10"_s, u"A2|19"_s, u"0012|31"_s};
    for (int i = 0; i < restored; ++i)
        after[i] = oneMore.at(i);
    QCOMPARE(stock(counter), after);
    QCOMPARE(purchases(counter), QStringList{firstId});
    QCOMPARE(counter.state().last.LastPurchaseID, QString());
    if (restored == 0) // emptying the cart does not recompute the total
        QCOMPARE(counter.text("Label5"), total);
}

void PurchaseRestoredTest::noColumn_data()
{
    QTest::addColumn<QString>("column");
    QTest::newRow("items") << u"PurchasedItems"_s;
    QTest::newRow("count") << u"PurchasedItemsTotal"_s;
}

void PurchaseRestoredTest::noColumn()
{
    QFETCH(const QString, column);
    Counter counter;
    openShop(counter);
    commit(counter);
    const QStringList before = stock(counter);
    counter.file.sql(u"ALTER TABLE PurchaseCart DROP COLUMN "_s + column);
    undo(counter);
    QCOMPARE(counter.cart(), QStringList());
    QCOMPARE(stock(counter), before);
    QCOMPARE(purchases(counter), QStringList());
    QCOMPARE(counter.state().last.LastPurchaseID, QString());
}

void PurchaseRestoredTest::twoRowsOfOneId()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HE1"_s, u"1 x A1  |  SAFE = 1.00"_s, u"1"_s);
    addPurchase(counter, u"HE1"_s, u"1 x A2  |  TEA = 2.50"_s, u"1"_s);
    deletePurchase(counter, u"HE1"_s);
    QCOMPARE(stock(counter), (QStringList{u"A1|11"_s, u"A2|20"_s, u"0012|30"_s})); // the first one's
    QCOMPARE(purchases(counter), QStringList());                                   // both
}

void PurchaseRestoredTest::deletedItem()
{
    Counter counter;
    openShop(counter);
    commit(counter);
    counter.file.sql(u"DELETE FROM StockList WHERE StockID = 'A1'"_s);
    undo(counter);
    QCOMPARE(counter.cart(), (QStringList{u"A1  |  SAFE|1|0.00"_s, u"A2  |  TEA|2|5.00"_s}));
    QCOMPARE(stock(counter), (QStringList{u"A2|20"_s, u"0012|30"_s}));
    QCOMPARE(purchases(counter), QStringList());
}

void PurchaseRestoredTest::quotedId()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u"O'1"_s, u"OIL"_s, 4, 5);
    addPurchase(counter, u"HV1"_s, u"1 x O'1  |  OIL = 4.00, 2 x A2  |  O'TEA = 5.00"_s, u"2"_s);
    deletePurchase(counter, u"HV1"_s);
    // The ID makes its statements fail; the name is in none of them.
    QCOMPARE(counter.cart(), (QStringList{u"O'1  |  OIL|1|0.00"_s, u"A2  |  O'TEA|2|5.00"_s}));
    QCOMPARE(stock(counter), (QStringList{u"A1|10"_s, u"A2|22"_s, u"0012|30"_s, u"O'1|5"_s}));
    QCOMPARE(purchases(counter), QStringList());

    addPurchase(counter, u"x' or 'a'='a"_s, u"1 x A1  |  SAFE = 1.00"_s, u"1"_s);
    counter.setText("Combo17", u"x' or 'a'='a"_s);
    expectDeleteQuestion(counter, u"x' or 'a'='a"_s, Answer::Yes);
    expectNothingToUndo(counter);
    counter.click("Command4");
    QCOMPARE(purchases(counter).size(), 1);
}

void PurchaseRestoredTest::idIsTrimmed()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, u"1 x A1  |  SAFE = 1.00"_s, u"1"_s);
    counter.setText("Combo17", u"  HV1 "_s);
    expectDeleteQuestion(counter, u"HV1"_s, Answer::Yes);
    counter.click("Command4");
    QCOMPARE(purchases(counter), QStringList());
    addPurchase(counter, u"HV2"_s, u"1 x A1  |  SAFE = 1.00"_s, u"1"_s);
    InventoryProbe{counter.window()}.undoPurchase(u" HV2  "_s, true);
    QCOMPARE(purchases(counter), QStringList());
}

HARROWBY_TEST(purchase_restored_test, PurchaseRestoredTest)
#include "purchase_restored_test.moc"
