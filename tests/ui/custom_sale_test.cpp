// SPDX-License-Identifier: MIT
#include "tests/support/counter.h"
#include "tests/support/database.h"
#include "tests/support/inventory_probe.h"

#include "tests/program/test_program.h"
#include "tests/ui/interruption.h"
#include "ui/widgets/pick_list.h"

#include <QLineEdit>
#include <QTimer>

using namespace Qt::StringLiterals;

using namespace harrowby;
using namespace harrowby::test;

/// Any quantity of one item: the lists, the figures shown of it, and its way into the cart.
class CustomSaleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmpty();
    void itemsOfACategory_data();
    void itemsOfACategory();
    void listNameDecides_data();
    void listNameDecides();
    void itemsComeInTheirOrder();
    void categoryDropsTheItem();
    void categoryIsTrimmed();
    void typedCategoryListsNothing();
    void categoryWithQuote();
    void failedListIsEmpty();
    void laterCategoryWins();
    void manyItems();

    void chosenItemShowsItsFigures();
    void quantityOfChosenItem_data();
    void quantityOfChosenItem();
    void figuresOfChosenItem_data();
    void figuresOfChosenItem();
    void itemThatIsGone();
    void sameItemAgain();
    void typedItemShowsNothing();
    void missingColumnKeepsTheFigure();

    void totalOfQuantity_data();
    void totalOfQuantity();
    void totalStopsAtTheComma();
    void pickedQuantity();
    void quantitiesFromNoughtToHundred();

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

namespace {

const QString milk = u"A1  |  MILK"_s;
const QString invalidQuantity = u"You have entered an invalid quantity. Quantity must be greater than 0!"_s;
const QString replaceQuestion = u"Item Already Exist in Cart.\r\nTo Update - YES, To Replace - NO"_s;

void openShop(Counter &counter)
{
    counter.file.addItem(u"A1"_s, u"MILK"_s, 1.25, 100);
    counter.file.addItem(u"C3"_s, u"CAVIAR"_s, 1250, 40000);
    counter.file.addItem(u"B1"_s, u"BREAD"_s, 3, 0, u"FOOD"_s);
    counter.file.addItem(u"B2"_s, u"OLD BREAD"_s, 3, 8, u"FOOD"_s, u"Disabled"_s);
    counter.file.addItem(u"B3"_s, u"CAKE"_s, 20, 5, u"FOOD"_s);
    counter.file.sql(u"INSERT INTO InventoryCategory VALUES ('DRINKS',''),('FOOD','')"_s);
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
}

/// 40,000 items of the food.
void addNuts(const Counter &counter)
{
    counter.file.sql(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 40000) "
                     "INSERT INTO StockList (StockID, StockName, StockCategory, StockUse) "
                     "SELECT 'N' || i, 'NUT', 'FOOD', 'Enabled' FROM n"_s);
}

/// Item, unit cost, total cost, stock.
QStringList figures(const Counter &counter)
{
    return {counter.text("Label14"), counter.text("Label7"), counter.text("Label9"), counter.text("Label15")};
}

void enter(Counter &counter, const QString &key, const QString &quantity)
{
    counter.setText("Combo3", key);
    counter.setText("Combo4", quantity);
}

} // namespace

void CustomSaleTest::startsEmpty()
{
    Counter counter;
    openShop(counter);
    QCOMPARE(figures(counter), (QStringList{QString(), u"0.00"_s, u"0.00"_s, u"Nil"_s}));
    QCOMPARE(counter.text("Combo2"), u"(ALL CATEGORY)"_s);
    QCOMPARE(counter.text("Combo3"), QString());
    QCOMPARE(counter.entries("Combo3"), QStringList());
    QCOMPARE(counter.text("Combo4"), u"0"_s);
    QCOMPARE(counter.text("Command15"), u"Add Item"_s);
}

void CustomSaleTest::itemsOfACategory_data()
{
    QTest::addColumn<bool>("hidesFinished");
    QTest::addColumn<int>("entry");
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QStringList>("items");
    const QStringList drinks{u"A1  |  MILK"_s, u"C3  |  CAVIAR"_s};
    const QString bread = u"B1  |  BREAD"_s;
    const QString cake = u"B3  |  CAKE"_s;
    QTest::newRow("all") << false << 0 << u"Select * from StockList where StockUse = 'Enabled'"_s
                         << drinks + QStringList{bread, cake};
    QTest::newRow("food") << false << 2
                          << u"Select * from StockList where StockCategory = 'FOOD' and StockUse = 'Enabled'"_s
                          << QStringList{bread, cake};
    QTest::newRow("all in stock") << true << 0
                                  << u"Select * from StockList where stockAvailable > 0 and StockUse = 'Enabled'"_s
                                  << drinks + QStringList{cake};
    QTest::newRow("food in stock") << true << 2
                                   << u"Select * from StockList where stockAvailable > 0 and StockCategory = 'FOOD' "
                                      "and StockUse = 'Enabled'"_s
                                   << QStringList{cake};
    QTest::newRow("none") << false << 3
                          << u"Select * from StockList where StockCategory = 'OTHER CATEGORY' and "
                             "StockUse = 'Enabled'"_s
                          << QStringList();
}

void CustomSaleTest::itemsOfACategory()
{
    QFETCH(bool, hidesFinished);
    QFETCH(int, entry);
    QFETCH(QString, statement);
    QFETCH(QStringList, items);
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET AutoPurchaseCart = %1"_s.arg(hidesFinished ? 1 : 0));
    openShop(counter);
    counter.connection->statements.clear();
    counter.pick("Combo2", entry);
    QCOMPARE(counter.connection->statements, QStringList{statement});
    QCOMPARE(counter.entries("Combo3"), items);
    QCOMPARE(counter.text("Combo3"), QString());
    QCOMPARE(figures(counter), (QStringList{QString(), u"0.00"_s, u"0.00"_s, u"Nil"_s}));
}

void CustomSaleTest::listNameDecides_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("items");
    QTest::newRow("Combo3") << u"Combo3"_s << 3;
    QTest::newRow("combo3") << u"combo3"_s << 3;
    QTest::newRow("COMBO3") << u"COMBO3"_s << 3;
    QTest::newRow("Combo11") << u"Combo11"_s << 4;
    QTest::newRow("Combo33") << u"Combo33"_s << 4;
    QTest::newRow("none") << QString() << 4;
}

void CustomSaleTest::listNameDecides()
{
    QFETCH(QString, name);
    QFETCH(int, items);
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET AutoPurchaseCart = 1"_s);
    openShop(counter);
    PickList list;
    list.setObjectName(name);
    list.addEntry(u"what was there"_s);
    InventoryProbe{counter.window()}.loadStockItem(list, u"(ALL CATEGORY)"_s);
    QCOMPARE(list.count(), items);
}

void CustomSaleTest::itemsComeInTheirOrder()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u"0"_s, u"AAA"_s, 1, 1);
    counter.pick("Combo2", 1);
    QCOMPARE(counter.entries("Combo3"), (QStringList{u"A1  |  MILK"_s, u"C3  |  CAVIAR"_s, u"0  |  AAA"_s}));
}

void CustomSaleTest::categoryDropsTheItem()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 0);
    counter.pick("Combo2", 2);
    QCOMPARE(counter.text("Combo3"), QString());
    QCOMPARE(figures(counter), (QStringList{milk, u"1.25"_s, u"1.25"_s, u"100"_s})); // what was shown of it stays
}

void CustomSaleTest::categoryIsTrimmed()
{
    Counter counter;
    openShop(counter);
    counter.find<PickList>("Combo2")->addEntry(u" (ALL CATEGORY)  "_s);
    counter.pick("Combo2", 4);
    QCOMPARE(counter.entries("Combo3").size(), 4);
}

void CustomSaleTest::typedCategoryListsNothing()
{
    Counter counter;
    openShop(counter);
    counter.connection->statements.clear();
    counter.setText("Combo2", u"FOOD"_s);
    QCOMPARE(counter.connection->statements, QStringList());
    QCOMPARE(counter.entries("Combo3"), QStringList());
}

void CustomSaleTest::categoryWithQuote()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.find<PickList>("Combo2")->addEntry(u"x' or 'a'='a"_s);
    counter.pick("Combo2", 4);
    QCOMPARE(counter.entries("Combo3"), QStringList());
}

void CustomSaleTest::failedListIsEmpty()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.connection->fails = [](const QString &) { return true; };
    counter.pick("Combo2", 0);
    QCOMPARE(counter.entries("Combo3"), QStringList());
}

void CustomSaleTest::laterCategoryWins()
{
    Counter counter;
    openShop(counter);
    addNuts(counter);
    bool entered = false;
    auto *categories = counter.find<PickList>("Combo2");
    counter.connection->before = [](const QString &statement) {
        if (statement.startsWith(u"Select * from StockList where StockCategory"_s))
            passRest(); // so that the window breathes among the first rows
    };
    connect(counter.find<PickList>("Combo3")->model(), &QAbstractItemModel::rowsInserted, this, [&] {
        if (std::exchange(entered, true))
            return;
        QTimer::singleShot(0, categories, [categories] { // while the first one's items still come in
            categories->setEntryText(u"DRINKS"_s);
            Q_EMIT categories->picked(1);
        });
    });
    counter.pick("Combo2", 2);
    QVERIFY(entered);
    QCOMPARE(counter.entries("Combo3"), (QStringList{u"A1  |  MILK"_s, u"C3  |  CAVIAR"_s}));
}

/// More than a 16-bit counter counts. A hang would be noticed.
void CustomSaleTest::manyItems()
{
    Counter counter;
    openShop(counter);
    addNuts(counter);
    counter.pick("Combo2", 2);
    const QStringList items = counter.entries("Combo3");
    QCOMPARE(items.size(), 40002);
    QCOMPARE(items.last(), u"N40000  |  NUT"_s);
}

void CustomSaleTest::chosenItemShowsItsFigures()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.setText("Combo4", u"4"_s);
    counter.connection->statements.clear();
    counter.pick("Combo3", 0);
    QCOMPARE(counter.connection->statements, QStringList{u"Select * from StockList where StockID = 'A1'"_s});
    QCOMPARE(figures(counter), (QStringList{milk, u"1.25"_s, u"5.00"_s, u"100"_s}));
}

void CustomSaleTest::quantityOfChosenItem_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("total");
    QTest::newRow("nothing") << QString() << u"1"_s << u"1.25"_s;
    QTest::newRow("0") << u"0"_s << u"1"_s << u"1.25"_s;
    QTest::newRow("below 1") << u"0.9"_s << u"1"_s << u"1.25"_s;
    QTest::newRow("negative") << u"-7"_s << u"1"_s << u"1.25"_s;
    QTest::newRow("words") << u"abc"_s << u"1"_s << u"1.25"_s;
    QTest::newRow("too large") << u"1e400"_s << u"1"_s << u"1.25"_s;
    QTest::newRow("1") << u"1"_s << u"1"_s << u"1.25"_s;
    QTest::newRow("fraction") << u"1.5"_s << u"1.5"_s << u"1.88"_s;
    QTest::newRow("thousands") << u"1,000"_s << u"1,000"_s << u"1,250.00"_s;
    QTest::newRow("a comma before") << u",2"_s << u",2"_s << u"2.50"_s;
    QTest::newRow("number and words") << u"3 boxes"_s << u"3 boxes"_s << u"3.75"_s;
}

void CustomSaleTest::quantityOfChosenItem()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    QFETCH(QString, total);
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.setText("Combo4", before);
    counter.pick("Combo3", 0);
    QCOMPARE(counter.text("Combo4"), after);
    QCOMPARE(counter.text("Label9"), total);
}

void CustomSaleTest::figuresOfChosenItem_data()
{
    QTest::addColumn<QString>("cost");
    QTest::addColumn<QString>("stock");
    QTest::addColumn<QStringList>("shown"); ///< unit cost, cost of two, stock
    QTest::newRow("thousands") << u"1250"_s << u"12345"_s << QStringList{u"1,250.00"_s, u"2,500.00"_s, u"12345"_s};
    QTest::newRow("half a cent") << u"0.005"_s << u"1.5"_s << QStringList{u"0.01"_s, u"0.01"_s, u"1.5"_s};
    QTest::newRow("whole real") << u"2.0"_s << u"5.0"_s << QStringList{u"2.00"_s, u"4.00"_s, u"5"_s};
    QTest::newRow("negative") << u"-2"_s << u"-5"_s << QStringList{u"-2.00"_s, u"-4.00"_s, u"-5"_s};
    QTest::newRow("text") << u"'a few'"_s << u"'some'"_s << QStringList{u"0.00"_s, u"0.00"_s, u"some"_s};
    QTest::newRow("null") << u"NULL"_s << u"NULL"_s << QStringList{u"0.00"_s, u"0.00"_s, QString()};
    // No number holds twice of it: the total keeps what two of nothing cost.
    QTest::newRow("huge") << u"1e308"_s << u"3"_s
                          << QStringList{u"100"_s + u",000"_s.repeated(102) + u".00"_s, u"0.00"_s, u"3"_s};
}

void CustomSaleTest::figuresOfChosenItem()
{
    QFETCH(QString, cost);
    QFETCH(QString, stock);
    QFETCH(QStringList, shown);
    Counter counter;
    openShop(counter);
    counter.file.sql(
        u"UPDATE StockList SET StockCost = %1, StockAvailable = %2 WHERE StockID = 'A1'"_s.arg(cost, stock));
    counter.pick("Combo2", 1);
    counter.setText("Combo4", u"2"_s);
    counter.pick("Combo3", 0);
    QCOMPARE(figures(counter), QStringList{milk} + shown);
}

void CustomSaleTest::itemThatIsGone()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 0);
    counter.setText("Combo4", u"0"_s);
    counter.file.sql(u"DELETE FROM StockList WHERE StockID = 'C3'"_s);
    counter.pick("Combo3", 1);
    QCOMPARE(figures(counter), (QStringList{u"C3  |  CAVIAR"_s, u"0.00"_s, u"0.00"_s, u"Nil"_s}));
    QCOMPARE(counter.text("Combo4"), u"0"_s);
}

void CustomSaleTest::sameItemAgain()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 0);
    counter.file.sql(u"UPDATE StockList SET StockAvailable = 7 WHERE StockID = 'A1'"_s);
    counter.pick("Combo3", 0);
    QCOMPARE(counter.text("Label15"), u"7"_s);
}

/// There is no change handler: only a choice from the list shows figures.
void CustomSaleTest::typedItemShowsNothing()
{
    Counter counter;
    openShop(counter);
    counter.connection->statements.clear();
    counter.setText("Combo3", milk);
    QCOMPARE(counter.connection->statements, QStringList());
    QCOMPARE(figures(counter), (QStringList{QString(), u"0.00"_s, u"0.00"_s, u"Nil"_s}));
}

void CustomSaleTest::missingColumnKeepsTheFigure()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 0);
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN StockCost;"
                     "UPDATE StockList SET StockAvailable = 9"_s);
    counter.pick("Combo3", 1);
    QCOMPARE(figures(counter), (QStringList{u"C3  |  CAVIAR"_s, u"1.25"_s, u"1.25"_s, u"9"_s}));
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN StockAvailable"_s);
    counter.pick("Combo3", 0);
    QCOMPARE(figures(counter), (QStringList{milk, u"1.25"_s, u"1.25"_s, u"9"_s}));
}

void CustomSaleTest::totalOfQuantity_data()
{
    QTest::addColumn<QString>("quantity");
    QTest::addColumn<QString>("total");
    QTest::newRow("3") << u"3"_s << u"3.75"_s;
    QTest::newRow("nothing") << QString() << u"0.00"_s;
    QTest::newRow("words") << u"abc"_s << u"0.00"_s;
    QTest::newRow("negative") << u"-2"_s << u"-2.50"_s;
    QTest::newRow("fraction") << u"2.5"_s << u"3.13"_s;
    QTest::newRow("thousands") << u"1,000"_s << u"1,250.00"_s;
    QTest::newRow("blanks inside") << u"1 000"_s << u"1,250.00"_s; // as many as are sold
    QTest::newRow("up to the words") << u"2 000 boxes"_s << u"2.50"_s;
    QTest::newRow("exponent") << u"1e3"_s << u"1,250.00"_s;
    QTest::newRow("too large a number") << u"1e400"_s << u"0.00"_s;
}

void CustomSaleTest::totalOfQuantity()
{
    QFETCH(QString, quantity);
    QFETCH(QString, total);
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 0);
    counter.connection->statements.clear();
    counter.setText("Combo4", quantity);
    QCOMPARE(counter.text("Label9"), total);
    QCOMPARE(counter.text("Label7"), u"1.25"_s);
    QCOMPARE(counter.connection->statements, QStringList());
}

void CustomSaleTest::totalStopsAtTheComma()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 1);
    QCOMPARE(counter.text("Label7"), u"1,250.00"_s);
    QCOMPARE(counter.text("Label9"), u"1,250.00"_s); // from the table
    counter.setText("Combo4", u"3"_s);
    QCOMPARE(counter.text("Label9"), u"3.00"_s); // from the text, up to its comma
    counter.setText("Combo4", u"2,500"_s);
    QCOMPARE(counter.text("Label9"), u"2,500.00"_s);
}

void CustomSaleTest::pickedQuantity()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 0);
    counter.pick("Combo4", 40);
    QCOMPARE(counter.text("Combo4"), u"40"_s);
    QCOMPARE(counter.text("Label9"), u"50.00"_s);
    counter.setText("Label9", u"spoilt"_s);
    counter.pick("Combo4", 40); // the same again runs it too
    QCOMPARE(counter.text("Label9"), u"50.00"_s);
}

void CustomSaleTest::quantitiesFromNoughtToHundred()
{
    Counter counter;
    openShop(counter);
    const QStringList quantities = counter.entries("Combo4");
    QCOMPARE(quantities.size(), 101);
    QCOMPARE(quantities.first(), u"0"_s);
    QCOMPARE(quantities.last(), u"100"_s);
}

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
    counter.file.addItem(u"A1"_s, u"MILK"_s, 1.25, 100);
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Reorder"_s});
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    enter(counter, milk, u"1"_s);
    counter.boxes.expect(u"User [ANN] doesn't have this privilege!"_s, box::Exclamation);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList());
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::ReorderStock); // this refusal leads nowhere
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
    enter(counter, key, u"bad"_s); // the item is looked at first
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
    enter(counter, u"C3  |  CAVIAR"_s, quantity);
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
    enter(counter, u"C3  |  CAVIAR"_s, quantity);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"C3  |  CAVIAR|%1|0.00"_s.arg(added)});
    QCOMPARE(counter.text("StatusBar1_2"), u"%1 of C3  |  CAVIAR Added to Cart!"_s.arg(added));
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
    QCOMPARE(counter.cart(), QStringList{u"A1  |  MILK|4|5.00"_s});
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
        (QStringList{u"Select * from Stocklist where StockUse = 'Enabled' and StockID = 'A1'  and StockName = 'MILK'"_s,
                     u"Select * from StockList where StockID = 'A1'"_s,
                     u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('1 of A1  |  MILK Added to Cart!',"
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
    QTest::keyClicks(item, milk);
    auto *quantity = counter.find<PickList>("Combo4")->lineEdit();
    quantity->setFocus();
    quantity->selectAll();
    QTest::keyClicks(quantity, u"3"_s);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  MILK|3|3.75"_s});
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
    QCOMPARE(counter.cart(), QStringList{u"C3  |  CAVIAR|3|3,750.00"_s});
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
    for (const QString &key : {u"Z9  |  GONE"_s, u"A1"_s, u"B2  |  OLD BREAD"_s, u"A'1  |  MILK"_s}) {
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
    enter(counter, milk, u"2"_s);
    counter.click("Command15");
    enter(counter, milk, u"3"_s);
    counter.boxes.expect(replaceQuestion, box::Ask, Answer::Yes);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  MILK|5|6.25"_s});
    QCOMPARE(counter.text("Combo4"), QString());
}

void CustomSaleTest::itemInCartIsReplaced()
{
    Counter counter;
    openShop(counter);
    enter(counter, milk, u"2"_s);
    counter.click("Command15");
    enter(counter, milk, u"3"_s);
    counter.boxes.expect(replaceQuestion, box::Ask, Answer::No);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  MILK|3|3.75"_s});
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
    QCOMPARE(counter.entries("Combo3"), QStringList{u"B3  |  CAKE"_s}); // it is in the cart only
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
    QCOMPARE(counter.cart(), QStringList{u"A1  |  MILK|1|1.25"_s});
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
