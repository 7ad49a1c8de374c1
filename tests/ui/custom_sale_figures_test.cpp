// SPDX-License-Identifier: MIT
#include "tests/doubles/server_shop.h"
#include "tests/support/counter.h"
#include "tests/support/inventory_probe.h"

#include "tests/program/test_program.h"
#include "tests/ui/custom_sale_desk.h"
#include "tests/ui/interruption.h"
#include "ui/widgets/pick_list.h"

#include <QTimer>

using namespace Qt::StringLiterals;

using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::custom_sale_desk;

namespace {

/// 40,000 items of the food.
void addNuts(const Counter &counter)
{
    counter.file.sql(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 40000) "
                     "INSERT INTO StockList (StockID, StockName, StockCategory, StockUse) "
                     "SELECT 'N' || i, 'NUT', 'FOOD', 'Enabled' FROM n"_s);
}

} // namespace

/// Any quantity of one item: the lists, and the figures shown of it.
class CustomSaleFiguresTest : public QObject
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
};

void CustomSaleFiguresTest::startsEmpty()
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

void CustomSaleFiguresTest::itemsOfACategory_data()
{
    QTest::addColumn<bool>("hidesFinished");
    QTest::addColumn<int>("entry");
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QStringList>("items");
    const QStringList drinks{u"A1  |  ALE"_s, u"C3  |  BEER"_s};
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

void CustomSaleFiguresTest::itemsOfACategory()
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

void CustomSaleFiguresTest::listNameDecides_data()
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

void CustomSaleFiguresTest::listNameDecides()
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

void CustomSaleFiguresTest::itemsComeInTheirOrder()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u"0"_s, u"AAA"_s, 1, 1);
    counter.pick("Combo2", 1);
    const QString added = u"0  |  AAA"_s;
    QStringList items{u"A1  |  ALE"_s, u"C3  |  BEER"_s};
    items.insert(shopsAreOnAServer() ? 0 : 2, added); // a server has indexes, the file of a test has none
    QCOMPARE(counter.entries("Combo3"), items);
}

void CustomSaleFiguresTest::categoryDropsTheItem()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 0);
    counter.pick("Combo2", 2);
    QCOMPARE(counter.text("Combo3"), QString());
    QCOMPARE(figures(counter), (QStringList{ale, u"1.25"_s, u"1.25"_s, u"100"_s})); // what was shown of it stays
}

void CustomSaleFiguresTest::categoryIsTrimmed()
{
    Counter counter;
    openShop(counter);
    counter.find<PickList>("Combo2")->addEntry(u" (ALL CATEGORY)  "_s);
    counter.pick("Combo2", 4);
    QCOMPARE(counter.entries("Combo3").size(), 4);
}

void CustomSaleFiguresTest::typedCategoryListsNothing()
{
    Counter counter;
    openShop(counter);
    counter.connection->statements.clear();
    counter.setText("Combo2", u"FOOD"_s);
    QCOMPARE(counter.connection->statements, QStringList());
    QCOMPARE(counter.entries("Combo3"), QStringList());
}

void CustomSaleFiguresTest::categoryWithQuote()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.find<PickList>("Combo2")->addEntry(u"x' or 'a'='a"_s);
    counter.pick("Combo2", 4);
    QCOMPARE(counter.entries("Combo3"), QStringList());
}

void CustomSaleFiguresTest::failedListIsEmpty()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.connection->fails = [](const QString &) { return true; };
    counter.pick("Combo2", 0);
    QCOMPARE(counter.entries("Combo3"), QStringList());
}

void CustomSaleFiguresTest::laterCategoryWins()
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
    QCOMPARE(counter.entries("Combo3"), (QStringList{u"A1  |  ALE"_s, u"C3  |  BEER"_s}));
}

/// More items than a 16-bit counter holds: the loop must end.
void CustomSaleFiguresTest::manyItems()
{
    Counter counter;
    openShop(counter);
    addNuts(counter);
    counter.pick("Combo2", 2);
    const QStringList items = counter.entries("Combo3");
    QCOMPARE(items.size(), 40002);
    QCOMPARE(items.last(), u"N40000  |  NUT"_s);
}

void CustomSaleFiguresTest::chosenItemShowsItsFigures()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.setText("Combo4", u"4"_s);
    counter.connection->statements.clear();
    counter.pick("Combo3", 0);
    QCOMPARE(counter.connection->statements, QStringList{u"Select * from StockList where StockID = 'A1'"_s});
    QCOMPARE(figures(counter), (QStringList{ale, u"1.25"_s, u"5.00"_s, u"100"_s}));
}

void CustomSaleFiguresTest::quantityOfChosenItem_data()
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

void CustomSaleFiguresTest::quantityOfChosenItem()
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

void CustomSaleFiguresTest::figuresOfChosenItem_data()
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
    // Twice this cost overflows, so the total keeps the text of before, the cost of two items of 0.
    QTest::newRow("huge") << u"1e308"_s << u"3"_s
                          << QStringList{u"100"_s + u",000"_s.repeated(102) + u".00"_s, u"0.00"_s, u"3"_s};
}

void CustomSaleFiguresTest::figuresOfChosenItem()
{
    QFETCH(QString, cost);
    QFETCH(QString, stock);
    QFETCH(QStringList, shown);
    Counter counter;
    if (!counter.file.keepsFigure(cost))
        QSKIP("no figure");
    openShop(counter);
    counter.file.sql(
        u"UPDATE StockList SET StockCost = %1, StockAvailable = %2 WHERE StockID = 'A1'"_s.arg(cost, stock));
    counter.pick("Combo2", 1);
    counter.setText("Combo4", u"2"_s);
    counter.pick("Combo3", 0);
    QCOMPARE(figures(counter), QStringList{ale} + shown);
}

void CustomSaleFiguresTest::itemThatIsGone()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 0);
    counter.setText("Combo4", u"0"_s);
    counter.file.sql(u"DELETE FROM StockList WHERE StockID = 'C3'"_s);
    counter.pick("Combo3", 1);
    QCOMPARE(figures(counter), (QStringList{u"C3  |  BEER"_s, u"0.00"_s, u"0.00"_s, u"Nil"_s}));
    QCOMPARE(counter.text("Combo4"), u"0"_s);
}

void CustomSaleFiguresTest::sameItemAgain()
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
void CustomSaleFiguresTest::typedItemShowsNothing()
{
    Counter counter;
    openShop(counter);
    counter.connection->statements.clear();
    counter.setText("Combo3", ale);
    QCOMPARE(counter.connection->statements, QStringList());
    QCOMPARE(figures(counter), (QStringList{QString(), u"0.00"_s, u"0.00"_s, u"Nil"_s}));
}

void CustomSaleFiguresTest::missingColumnKeepsTheFigure()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo2", 1);
    counter.pick("Combo3", 0);
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN StockCost;"
                     "UPDATE StockList SET StockAvailable = 9"_s);
    counter.pick("Combo3", 1);
    QCOMPARE(figures(counter), (QStringList{u"C3  |  BEER"_s, u"1.25"_s, u"1.25"_s, u"9"_s}));
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN StockAvailable"_s);
    counter.pick("Combo3", 0);
    QCOMPARE(figures(counter), (QStringList{ale, u"1.25"_s, u"1.25"_s, u"9"_s}));
}

void CustomSaleFiguresTest::totalOfQuantity_data()
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

void CustomSaleFiguresTest::totalOfQuantity()
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

void CustomSaleFiguresTest::totalStopsAtTheComma()
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

void CustomSaleFiguresTest::pickedQuantity()
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

void CustomSaleFiguresTest::quantitiesFromNoughtToHundred()
{
    Counter counter;
    openShop(counter);
    const QStringList quantities = counter.entries("Combo4");
    QCOMPARE(quantities.size(), 101);
    QCOMPARE(quantities.first(), u"0"_s);
    QCOMPARE(quantities.last(), u"100"_s);
}

HARROWBY_TEST(custom_sale_figures_test, CustomSaleFiguresTest)
#include "custom_sale_figures_test.moc"
