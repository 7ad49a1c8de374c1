// SPDX-License-Identifier: MIT
#include "tests/support/counter.h"

#include "tests/program/test_program.h"
#include "tests/ui/custom_sale_desk.h"
#include "ui/widgets/pick_list.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;

using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::custom_sale_desk;

namespace {

const QString invalidQuantity = u"You have entered an invalid quantity. Quantity must be greater than 0!"_s;

const QString replaceQuestion = u"Item Already Exist in Cart.\r\nTo Update - YES, To Replace - NO"_s;

void enter(Counter &counter, const QString &key, const QString &quantity)
{
    counter.setText("Combo3", key);
    counter.setText("Combo4", quantity);
}

} // namespace

/// Any quantity of one item: its way into the cart, and the list afterwards.
class CustomSaleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addNeedsLogin();
    void addNeedsItsRight();
    void noItem_data();
    void noItem();
    void refusedQuantities_data();
    void refusedQuantities();
    void addsQuantity_data();
    void addsQuantity();
    void resetsAfterwards();
    void orderOfEffects();
    void typedItemIsSold();
    void costComesFromTheTable();
    void noStock();
    void notEnoughStock();
    void unknownItemIsRefusedSilently();
    void itemInCartIsUpdated();
    void itemInCartIsReplaced();
    void finishedItemsReturnOnTheReorderTab();
    void soldOutItemLeavesTheList();
    void listThatFailsAfterwards();
    void listThatBreaksInTheMiddle();
    void itemsWithoutAColumn_data();
    void itemsWithoutAColumn();
};

void CustomSaleTest::addNeedsLogin()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    counter.click("Command15");
    QVERIFY(counter.hasFocus("Text3"));
}

void CustomSaleTest::addNeedsItsRight()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"ALE"_s, 1.25, 100);
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Reorder"_s});
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    enter(counter, ale, u"1"_s);
    counter.boxes.expect(u"User [ANN] doesn't have this privilege!"_s, box::Exclamation);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList());
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::ReorderStock); // this refusal does not change the tab
}

void CustomSaleTest::noItem_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("nothing") << QString();
    QTest::newRow("blanks") << u"   "_s;
}

void CustomSaleTest::noItem()
{
    QFETCH(QString, key);
    Counter counter;
    openShop(counter);
    enter(counter, key, u"bad"_s); // the item is checked first
    counter.find("Combo4")->setFocus();
    counter.boxes.expect(u"You have selected an item!"_s, box::Exclamation);
    counter.click("Command15");
    QVERIFY(counter.hasFocus("Combo3"));
    QCOMPARE(counter.text("Combo4"), u"bad"_s);
}

void CustomSaleTest::refusedQuantities_data()
{
    QTest::addColumn<QString>("quantity");
    for (const char *quantity : {"abc",
                                 "0",
                                 "-2",
                                 "",
                                 "   ",
                                 "0.5",
                                 "0.99",
                                 "1x",
                                 "3 boxes",
                                 "1.2.3",
                                 ",5",
                                 "1,",
                                 "nan",
                                 "inf",
                                 "-inf",
                                 "1e400",
                                 "-1e400",
                                 "32768",
                                 "32767.5",
                                 "32,768",
                                 "40000",
                                 "1e5",
                                 "99999999999999999999",
                                 "1e"})
        QTest::addRow("\"%s\"", quantity) << QString::fromLatin1(quantity);
}

void CustomSaleTest::refusedQuantities()
{
    QFETCH(QString, quantity);
    Counter counter;
    openShop(counter);
    enter(counter, u"C3  |  BEER"_s, quantity);
    counter.connection->statements.clear();
    counter.find("Combo3")->setFocus();
    counter.boxes.expect(invalidQuantity, box::Exclamation);
    counter.click("Command15");
    QVERIFY(counter.hasFocus("Combo4"));
    QCOMPARE(counter.connection->statements, QStringList());
    QCOMPARE(counter.cart(), QStringList());
    QCOMPARE(counter.text("Combo4"), quantity);
}

void CustomSaleTest::addsQuantity_data()
{
    QTest::addColumn<QString>("quantity");
    QTest::addColumn<int>("added");
    QTest::newRow("1") << u"1"_s << 1;
    QTest::newRow("012") << u"012"_s << 12;
    QTest::newRow("blanks") << u"  7 "_s << 7;
    QTest::newRow("signed") << u"+5"_s << 5;
    QTest::newRow("commas") << u"1,000"_s << 1000;
    QTest::newRow("odd commas") << u"1,0,0"_s << 100;
    QTest::newRow("blanks inside") << u"1 000"_s << 1000;
    QTest::newRow("nought before a blank") << u"0 5"_s << 5;
    QTest::newRow("blanks and commas") << u"10, 000"_s << 10000;
    QTest::newRow("1.5, to even") << u"1.5"_s << 2;
    QTest::newRow("2.5, to even") << u"2.5"_s << 2;
    QTest::newRow("1.49") << u"1.49"_s << 1;
    QTest::newRow("1.51") << u"1.51"_s << 2;
    QTest::newRow("exponent") << u"1e3"_s << 1000;
    QTest::newRow("32767") << u"32767"_s << 32767;
    QTest::newRow("32767.4") << u"32767.4"_s << 32767;
    QTest::newRow("32,767") << u"32,767"_s << 32767;
}

void CustomSaleTest::addsQuantity()
{
    QFETCH(QString, quantity);
    QFETCH(int, added);
    Counter counter;
    openShop(counter);
    counter.file.sql(u"UPDATE StockList SET StockCost = 0"_s);
    enter(counter, u"C3  |  BEER"_s, quantity);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"C3  |  BEER|%1|0.00"_s.arg(added)});
    QCOMPARE(counter.text("StatusBar1_2"), u"%1 of C3  |  BEER Added to Cart!"_s.arg(added));
}

void CustomSaleTest::resetsAfterwards()
{
    Counter counter;
    openShop(counter);
    counter.chooseTab("TabStrip2", SidePanel::SalesActivity);
    QCOMPARE(counter.selectedTab("TabStrip2"), SidePanel::SalesActivity);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 0);
    counter.setText("Combo4", u"4"_s);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  ALE|4|5.00"_s});
    QCOMPARE(counter.selectedTab("TabStrip2"), SidePanel::Cart);
    QVERIFY(counter.find("Frame4")->isVisible());
    QCOMPARE(figures(counter), (QStringList{QString(), u"0.00"_s, u"0.00"_s, u"Nil"_s}));
    QCOMPARE(counter.text("Combo2"), u"DRINKS"_s);
    QCOMPARE(counter.text("Combo3"), QString());
    QCOMPARE(counter.entries("Combo3").size(), 2);
    QCOMPARE(counter.text("Combo4"), QString());
    QCOMPARE(counter.text("Label5"), u"Total: 5.00"_s);
}

void CustomSaleTest::orderOfEffects()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 0);
    counter.connection->statements.clear();
    QString quantityThen;
    counter.connection->before = [&](const QString &statement) {
        if (statement.contains(u"StockCategory = 'DRINKS'"_s))
            quantityThen = counter.text("Combo4");
    };
    counter.click("Command15");
    QCOMPARE(
        counter.connection->statements,
        (QStringList{u"Select * from Stocklist where StockUse = 'Enabled' and StockID = 'A1'  and StockName = 'ALE'"_s,
                     u"Select * from StockList where StockID = 'A1'"_s,
                     u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('1 of A1  |  ALE Added to Cart!',"
                     "'2018-03-05 14:07:09','2018-03-05 14:07:09')"_s,
                     u"Select * from StockList where StockCategory = 'DRINKS' and StockUse = 'Enabled'"_s}));
    QCOMPARE(quantityThen, u"1"_s); // emptied only after the list was read again
}

void CustomSaleTest::typedItemIsSold()
{
    Counter counter;
    openShop(counter);
    auto *item = counter.find<PickList>("Combo3")->lineEdit();
    item->setFocus();
    QTest::keyClicks(item, ale);
    auto *quantity = counter.find<PickList>("Combo4")->lineEdit();
    quantity->setFocus();
    quantity->selectAll();
    QTest::keyClicks(quantity, u"3"_s);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  ALE|3|3.75"_s});
}

void CustomSaleTest::costComesFromTheTable()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 1);
    counter.setText("Combo4", u"3"_s);
    QCOMPARE(counter.text("Label9"), u"3.00"_s);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"C3  |  BEER|3|3,750.00"_s});
}

void CustomSaleTest::noStock()
{
    Counter counter;
    openShop(counter);
    enter(counter, u"B1  |  BREAD"_s, u"2"_s);
    counter.boxes.expect(u"There is no available stock item(s) for B1  |  BREAD. Kindly reorder Stock!"_s,
                         box::Information);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList());
    QCOMPARE(counter.text("Combo3"), u"B1  |  BREAD"_s); // nothing is reset
    QCOMPARE(counter.text("Combo4"), u"2"_s);
}

void CustomSaleTest::notEnoughStock()
{
    Counter counter;
    openShop(counter);
    enter(counter, u"B3  |  CAKE"_s, u"6"_s);
    counter.boxes.expect(u"There are only 5 item(s) in stock for B3  |  CAKE. Kindly reorder Stock!"_s,
                         box::Information);
    counter.click("Command15");
    enter(counter, u"B3  |  CAKE"_s, u"5"_s);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"B3  |  CAKE|5|100.00"_s});
}

void CustomSaleTest::unknownItemIsRefusedSilently()
{
    Counter counter;
    openShop(counter);
    for (const QString &key : {u"Z9  |  GONE"_s, u"A1"_s, u"B2  |  OLD BREAD"_s, u"A'1  |  ALE"_s}) {
        enter(counter, key, u"2"_s);
        counter.click("Command15");
        QCOMPARE(counter.text("Combo3"), key);
        QCOMPARE(counter.text("Combo4"), u"2"_s);
    }
    QCOMPARE(counter.cart(), QStringList());
}

void CustomSaleTest::itemInCartIsUpdated()
{
    Counter counter;
    openShop(counter);
    enter(counter, ale, u"2"_s);
    counter.click("Command15");
    enter(counter, ale, u"3"_s);
    counter.boxes.expect(replaceQuestion, box::Ask, Answer::Yes);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  ALE|5|6.25"_s});
    QCOMPARE(counter.text("Combo4"), QString());
}

void CustomSaleTest::itemInCartIsReplaced()
{
    Counter counter;
    openShop(counter);
    enter(counter, ale, u"2"_s);
    counter.click("Command15");
    enter(counter, ale, u"3"_s);
    counter.boxes.expect(replaceQuestion, box::Ask, Answer::No);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  ALE|3|3.75"_s});
}

void CustomSaleTest::finishedItemsReturnOnTheReorderTab()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET AutoPurchaseCart = 1"_s);
    openShop(counter);
    counter.pick("Combo2", 2);
    QCOMPARE(counter.entries("Combo3"), QStringList{u"B3  |  CAKE"_s});
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    counter.pick("Combo12", 2);
    QCOMPARE(counter.entries("Combo11"), (QStringList{u"B1  |  BREAD"_s, u"B3  |  CAKE"_s}));
    QCOMPARE(counter.entries("Combo3"), QStringList{u"B3  |  CAKE"_s});
}

void CustomSaleTest::soldOutItemLeavesTheList()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET AutoPurchaseCart = 1"_s);
    openShop(counter);
    counter.pick("Combo2", 2);
    counter.pick("Combo3", 0);
    counter.boxes.expect(u"Item List:\r\n\r\n1. 1 x B3  |  CAKE = 20.00\r\n\r\n\r\n\r\nPurchased Cart?"_s, box::Ask,
                         Answer::Yes);
    counter.click("Command15");
    QCOMPARE(counter.entries("Combo3"), QStringList{u"B3  |  CAKE"_s}); // no longer listed, only in the cart
    counter.file.sql(u"UPDATE StockList SET StockAvailable = 1 WHERE StockID = 'B3'"_s);
    counter.click("Command14");
    counter.pick("Combo2", 2);
    QCOMPARE(counter.entries("Combo3"), QStringList());
}

void CustomSaleTest::listThatFailsAfterwards()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 0);
    counter.connection->fails = [](const QString &statement) { return statement.contains(u"StockCategory"_s); };
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  ALE|1|1.25"_s});
    QCOMPARE(counter.entries("Combo3"), QStringList());
    QCOMPARE(figures(counter), (QStringList{QString(), u"0.00"_s, u"0.00"_s, u"Nil"_s}));
    QCOMPARE(counter.text("Combo4"), QString());
}

void CustomSaleTest::listThatBreaksInTheMiddle()
{
    Counter counter;
    openShop(counter);
    counter.connection->rowsUntilBreak = [](const QString &select) {
        return select.endsWith(u"where StockUse = 'Enabled'"_s) ? 2 : -1;
    };
    counter.pick("Combo2", 0);
    QCOMPARE(counter.entries("Combo3"), QStringList());
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    counter.pick("Combo12", 0);
    QCOMPARE(counter.entries("Combo11"), QStringList());
    counter.connection->rowsUntilBreak = [](const QString &) { return -1; };
    counter.pick("Combo12", 0);
    QCOMPARE(counter.entries("Combo11").size(), 4);
}

void CustomSaleTest::itemsWithoutAColumn_data()
{
    QTest::addColumn<QString>("column");
    for (const char *column : {"StockID", "StockName"})
        QTest::newRow(column) << QString::fromLatin1(column);
}

void CustomSaleTest::itemsWithoutAColumn()
{
    QFETCH(const QString, column);
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 0);
    QCOMPARE(counter.entries("Combo3").size(), 4);
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN "_s + column);
    counter.pick("Combo2", 0);
    QCOMPARE(counter.entries("Combo3"), QStringList());
}

HARROWBY_TEST(custom_sale_test, CustomSaleTest)
#include "custom_sale_test.moc"
