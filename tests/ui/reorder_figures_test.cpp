// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/ui/reorder_desk.h"

#include "ui/widgets/pick_list.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::reorder_desk;

/// What the reorder panel lists, and what it shows of an item.
class ReorderFiguresTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmpty();
    void categoryListsItsItems_data();
    void categoryListsItsItems();
    void categoryIsTrimmed();
    void finishedItemsAreListed();
    void categoryResetsTheFigures();
    void categoryWithQuoteListsNothing();
    void itemShowsItsFigures_data();
    void itemShowsItsFigures();
    void itemIsReadByItsId();
    void pickingTheSameItemShowsItAgain();
    void missingItem_data();
    void missingItem();
    void missingItemKeepsTheOtherColour();
    void quantityOfChosenItem_data();
    void quantityOfChosenItem();
    void typedItemShowsItsFigures();
    void missingColumnKeepsTheFigure();
};

void ReorderFiguresTest::startsEmpty()
{
    Counter counter;
    openShop(counter);
    QCOMPARE(counter.text("Label12"), u"0"_s);
    QCOMPARE(counter.text("Label13"), u"0"_s);
    QVERIFY(!isRed(counter, "Label12"));
    QVERIFY(!isRed(counter, "Label13"));
    QCOMPARE(counter.text("Combo11"), QString());
    QCOMPARE(counter.text("Combo12"), u"(ALL CATEGORY)"_s);
    QCOMPARE(counter.state().last.LastReorderQty, 0);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
    QCOMPARE(counter.text("Command17"), u"Reorder Stock"_s);
    QCOMPARE(counter.text("Command23"), u"Undo"_s);
    QCOMPARE(counter.text("Command24"), QString());
}

void ReorderFiguresTest::categoryListsItsItems_data()
{
    QTest::addColumn<int>("entry");
    QTest::addColumn<QString>("category");
    QTest::addColumn<QStringList>("items");
    const QStringList drinks{u"A1  |  MILK"_s, u"A2  |  TEA"_s};
    const QStringList food{u"B1  |  BREAD"_s};
    // A server lists items by name, as a file does that has an index of them.
    QTest::newRow("all") << 0 << u"(ALL CATEGORY)"_s << (shopsAreOnAServer() ? food + drinks : drinks + food);
    QTest::newRow("drinks") << 1 << u"DRINKS"_s << drinks;
    QTest::newRow("food") << 2 << u"FOOD"_s << food;
    QTest::newRow("other") << 3 << u"OTHER CATEGORY"_s << QStringList();
}

void ReorderFiguresTest::categoryListsItsItems()
{
    QFETCH(int, entry);
    QFETCH(QString, category);
    QFETCH(QStringList, items);
    Counter counter;
    openShop(counter);
    QCOMPARE(counter.entries("Combo12").at(entry), category);
    counter.pick("Combo12", entry);
    QCOMPARE(counter.text("Combo12"), category);
    QCOMPARE(counter.entries("Combo11"), items);
    QCOMPARE(counter.text("Combo11"), QString());
}

void ReorderFiguresTest::categoryIsTrimmed()
{
    Counter counter;
    openShop(counter);
    counter.find<PickList>("Combo12")->addEntry(u"  DRINKS "_s);
    counter.pick("Combo12", 4);
    QCOMPARE(counter.text("Combo12"), u"  DRINKS "_s);
    QCOMPARE(counter.entries("Combo11").size(), 2);
    QVERIFY(counter.connection->statements.contains(
        u"Select * from StockList where StockCategory = 'DRINKS' and StockUse = 'Enabled'"_s));
}

void ReorderFiguresTest::finishedItemsAreListed()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET AutoPurchaseCart = 1"_s); // hides finished items elsewhere
    openShop(counter);
    QVERIFY(counter.state().settings.HideFinishedFlag != 0);
    counter.connection->statements.clear();
    counter.pick("Combo12", 2);
    QCOMPARE(counter.entries("Combo11"), QStringList{u"B1  |  BREAD"_s});
    QCOMPARE(counter.connection->statements,
             QStringList{u"Select * from StockList where StockCategory = 'FOOD' and StockUse = 'Enabled'"_s});
}

void ReorderFiguresTest::categoryResetsTheFigures()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo12", 1);
    counter.pick("Combo11", 0);
    QVERIFY(isRed(counter, "Label12"));
    QVERIFY(isRed(counter, "Label13"));
    counter.setText("Combo10", u"12"_s);
    counter.pick("Combo12", 2);
    QCOMPARE(counter.text("Label12"), u"0"_s);
    QCOMPARE(counter.text("Label13"), u"0"_s);
    QVERIFY(!isRed(counter, "Label12"));
    QVERIFY(!isRed(counter, "Label13"));
    QCOMPARE(counter.text("Combo10"), u"0"_s);
    counter.pick("Combo11", 0);
    QCOMPARE(counter.text("Combo10"), u"1"_s);
}

void ReorderFiguresTest::categoryWithQuoteListsNothing()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo12", 1);
    counter.find<PickList>("Combo12")->addEntry(u"ANN'S"_s);
    counter.pick("Combo12", 4);
    QCOMPARE(counter.entries("Combo11"), QStringList());
}

void ReorderFiguresTest::itemShowsItsFigures_data()
{
    QTest::addColumn<QString>("level");
    QTest::addColumn<QString>("stock");
    QTest::addColumn<QString>("levelText");
    QTest::addColumn<QString>("stockText");
    QTest::addColumn<bool>("low");
    QTest::newRow("below") << u"5"_s << u"4"_s << u"5"_s << u"4"_s << true;
    QTest::newRow("at") << u"5"_s << u"5"_s << u"5"_s << u"5"_s << true;
    QTest::newRow("above") << u"5"_s << u"6"_s << u"5"_s << u"6"_s << false;
    QTest::newRow("just above") << u"5"_s << u"5.01"_s << u"5"_s << u"5.01"_s << false;
    QTest::newRow("not as texts") << u"5"_s << u"10"_s << u"5"_s << u"10"_s << false;
    QTest::newRow("whole real") << u"5.0"_s << u"12.5"_s << u"5"_s << u"12.5"_s << false;
    QTest::newRow("thousands") << u"1000"_s << u"123456"_s << u"1000"_s << u"123456"_s << false;
    QTest::newRow("both null") << u"NULL"_s << u"NULL"_s << QString() << QString() << false;
    QTest::newRow("negative stock") << u"0"_s << u"-3"_s << u"0"_s << u"-3"_s << true;
}

void ReorderFiguresTest::itemShowsItsFigures()
{
    QFETCH(QString, level);
    QFETCH(QString, stock);
    QFETCH(QString, levelText);
    QFETCH(QString, stockText);
    QFETCH(bool, low);
    Counter counter;
    openShop(counter);
    counter.file.sql(
        u"UPDATE StockList SET StockReorderLevel = %1, StockAvailable = %2 WHERE StockID = 'A1'"_s.arg(level, stock));
    counter.pick("Combo12", 1);
    counter.pick("Combo11", 0);
    QCOMPARE(counter.text("Label12"), levelText);
    QCOMPARE(counter.text("Label13"), stockText);
    QCOMPARE(isRed(counter, "Label12"), low);
    QCOMPARE(isRed(counter, "Label13"), low);
}

void ReorderFiguresTest::itemIsReadByItsId()
{
    Counter counter;
    openShop(counter);
    counter.connection->statements.clear();
    counter.setText("Combo11", u"  A1   |  ANY NAME"_s);
    QCOMPARE(counter.connection->statements,
             QStringList{u"Select StockName, StockID, StockReorderLevel,StockAvailable from StockList where "
                         "StockID = 'A1'"_s});
    QCOMPARE(counter.text("Label13"), u"20"_s);
}

void ReorderFiguresTest::pickingTheSameItemShowsItAgain()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo12", 1);
    counter.pick("Combo11", 0);
    counter.file.sql(u"UPDATE StockList SET StockAvailable = 77 WHERE StockID = 'A1'"_s);
    counter.pick("Combo11", 0);
    QCOMPARE(counter.text("Label13"), u"77"_s);
    QVERIFY(!isRed(counter, "Label13"));
}

void ReorderFiguresTest::missingItem_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("no such ID") << u"Z9  |  GONE"_s;
    QTest::newRow("no separator") << u"A1 | MILK"_s;
    QTest::newRow("nothing") << QString();
    QTest::newRow("quote in the ID") << u"A'1  |  MILK"_s;
    QTest::newRow("another case") << u"a1  |  MILK"_s;
}

void ReorderFiguresTest::missingItem()
{
    QFETCH(QString, key);
    Counter counter;
    openShop(counter);
    counter.setText("Combo11", u"A2  |  TEA"_s);
    QCOMPARE(counter.text("Label13"), u"100"_s);
    counter.setText("Combo10", u"0"_s);
    counter.setText("Combo11", key);
    QCOMPARE(counter.text("Label12"), u"0"_s);
    QCOMPARE(counter.text("Label13"), u"0"_s);
    QVERIFY(isRed(counter, "Label12"));
    QVERIFY(!isRed(counter, "Label13"));
    QCOMPARE(counter.text("Combo10"), u"0"_s);
}

void ReorderFiguresTest::missingItemKeepsTheOtherColour()
{
    Counter counter;
    openShop(counter);
    counter.setText("Combo11", milk);
    counter.setText("Combo11", u"Z9  |  GONE"_s);
    QVERIFY(isRed(counter, "Label12"));
    QVERIFY(isRed(counter, "Label13"));
}

void ReorderFiguresTest::quantityOfChosenItem_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("nothing") << QString() << u"1"_s;
    QTest::newRow("0") << u"0"_s << u"1"_s;
    QTest::newRow("0.99") << u"0.99"_s << u"1"_s;
    QTest::newRow("negative") << u"-4"_s << u"1"_s;
    QTest::newRow("words") << u"few"_s << u"1"_s;
    QTest::newRow("1") << u"1"_s << u"1"_s;
    QTest::newRow("1.5") << u"1.5"_s << u"1.5"_s;
    QTest::newRow("7 and words") << u" 7 boxes"_s << u" 7 boxes"_s;
    QTest::newRow("thousands") << u"1,000"_s << u"1,000"_s;
    QTest::newRow("too large") << u"1e400"_s << u"1"_s;
}

void ReorderFiguresTest::quantityOfChosenItem()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    Counter counter;
    openShop(counter);
    counter.setText("Combo10", before);
    counter.setText("Combo11", milk);
    QCOMPARE(counter.text("Combo10"), after);
}

void ReorderFiguresTest::typedItemShowsItsFigures()
{
    Counter counter;
    openShop(counter);
    auto *entry = counter.find<PickList>("Combo11")->lineEdit();
    entry->setFocus();
    QTest::keyClicks(entry, u"A2  |  "_s);
    QCOMPARE(counter.text("Label13"), u"100"_s);
    QTest::keyClick(entry, Qt::Key_Backspace);
    QCOMPARE(counter.text("Label13"), u"0"_s);
}

void ReorderFiguresTest::missingColumnKeepsTheFigure()
{
    Counter counter;
    openShop(counter);
    counter.setText("Combo11", u"A2  |  TEA"_s);
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN StockReorderLevel"_s);
    reorder(counter, u"A2  |  TEA"_s, u"3"_s, u"3"_s); // reads the whole row, and uses the columns that are left
    QCOMPARE(counter.text("Label12"), u"5"_s);
    QCOMPARE(counter.text("Label13"), u"103"_s);
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN StockAvailable"_s);
    reorder(counter, u"A2  |  TEA"_s, u"3"_s, u"3"_s);
    QCOMPARE(counter.text("Label13"), u"103"_s);
}

HARROWBY_TEST(reorder_figures_test, ReorderFiguresTest)
#include "reorder_figures_test.moc"
