// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/support/database.h"

#include "ui/widgets/elided_label.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Topping up stock, what the panel shows of an item, and taking the last top-up back.
class ReorderTest : public QObject
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

    void reorderNeedsLogin();
    void reorderNeedsItsRight();
    void refusedQuantities_data();
    void refusedQuantities();
    void addsUnits_data();
    void addsUnits();
    void fiveUnitsAtTheLevel();
    void reorderRefused();
    void keyWithoutItem_data();
    void keyWithoutItem();
    void idIsNotTrimmed();
    void emptyIdIsAnId();
    void idWithQuote();
    void firstOfEqualIds();
    void orderOfEffects();
    void whoReorderedIsStored();
    void reporting();
    void listedRowIsBroughtUpToDate();
    void unlistedItemIsListed();
    void changedQuestionText();
    void failedUpdateShowsTheOldFigure();
    void noSaleGetsInBetween_data();
    void noSaleGetsInBetween();
    void refusedHoldIsNotTold();
    void lostCommitShowsTheOldFigure();
    void failedSelectDoesNothing();
    void sumTooLargeIsNotStored();
    void textInStock();
    void moreThanSixteenBits_data();
    void moreThanSixteenBits();
    void sixteenBitsHold_data();
    void sixteenBitsHold();

    void undoNeedsLogin();
    void undoNeedsItsRight();
    void nothingToUndoAtFirst();
    void undoTakesTheUnitsBack();
    void undoTakesRoundedUnitsBack();
    void undoRefused();
    void undoOrderOfEffects();
    void undoLeavesUserAndDashboard();
    void undoReporting();
    void undoOfAnItemThatIsGone();
    void undoFailing();
    void secondReorderReplacesTheFirst();
    void nothingToUndoAfterLogout();
    void dashboardButton();

private:
    static void openShop(Counter &counter);
    static void choose(Counter &counter, const QString &key, const QString &units);
    static void reorder(Counter &counter, const QString &key, const QString &units, const QString &asked);
};

namespace {

const QString milk = u"A1  |  MILK"_s;
const QString selectMilk = u"Select * from StockList where StockID = 'A1'"_s;
const QString nothingToUndo = u"Nothing to Undo!"_s;
const QString invalid = u"New Stock Number is invalid or less than 1!"_s;
const QString dashboardQuery = u"Select Total(StockAvailable) as Totals from Stocklist where StockUse = 'Enabled'"_s;

bool isRed(const Counter &counter, const char *label)
{
    return counter.find<LevelLabel>(label)->isLow();
}

QString addQuestion(const QString &units, const QString &key)
{
    return u"Add "_s + units + u" New item(s) to Stock ["_s + key + u"]?"_s;
}

QString undoQuestion(const QString &units, const QString &key)
{
    return u"Undo last added value of "_s + units + u" from Stock ["_s + key + u"]?"_s;
}

QString available(const Counter &counter, const QString &id = u"A1"_s)
{
    return counter.file.cell(u"SELECT StockAvailable FROM StockList WHERE StockID = "_s + quoted(id));
}

/// Log lines, newest first, without their times.
QStringList logged(const Counter &counter)
{
    QStringList lines;
    for (const QString &line : counter.text("Text1").split(u'\n', Qt::SkipEmptyParts))
        lines << line.section(u"-- "_s, 1);
    return lines;
}

} // namespace

void ReorderTest::openShop(Counter &counter)
{
    counter.file.addItem(u"A1"_s, u"MILK"_s, 1.25, 20, u"DRINKS"_s, u"Enabled"_s, 25);
    counter.file.addItem(u"A2"_s, u"TEA"_s, 2.5, 100, u"DRINKS"_s, u"Enabled"_s, 5);
    counter.file.addItem(u"B1"_s, u"BREAD"_s, 3, 0, u"FOOD"_s, u"Enabled"_s, 1);
    counter.file.addItem(u"B2"_s, u"OLD BREAD"_s, 3, 8, u"FOOD"_s, u"Disabled"_s, 1);
    counter.file.sql(u"INSERT INTO InventoryCategory VALUES ('DRINKS',''),('FOOD','')"_s);
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
}

void ReorderTest::choose(Counter &counter, const QString &key, const QString &units)
{
    counter.setText("Combo11", key);
    counter.setText("Combo10", units);
}

void ReorderTest::reorder(Counter &counter, const QString &key, const QString &units, const QString &asked)
{
    choose(counter, key, units);
    counter.boxes.expect(addQuestion(asked, key), box::Ask, Answer::Yes);
    counter.click("Command17");
}

void ReorderTest::startsEmpty()
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

void ReorderTest::categoryListsItsItems_data()
{
    QTest::addColumn<int>("entry");
    QTest::addColumn<QString>("category");
    QTest::addColumn<QStringList>("items");
    const QStringList drinks{u"A1  |  MILK"_s, u"A2  |  TEA"_s};
    const QStringList food{u"B1  |  BREAD"_s};
    QTest::newRow("all") << 0 << u"(ALL CATEGORY)"_s << drinks + food;
    QTest::newRow("drinks") << 1 << u"DRINKS"_s << drinks;
    QTest::newRow("food") << 2 << u"FOOD"_s << food;
    QTest::newRow("other") << 3 << u"OTHER CATEGORY"_s << QStringList();
}

void ReorderTest::categoryListsItsItems()
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

void ReorderTest::categoryIsTrimmed()
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

void ReorderTest::finishedItemsAreListed()
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

void ReorderTest::categoryResetsTheFigures()
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

void ReorderTest::categoryWithQuoteListsNothing()
{
    Counter counter;
    openShop(counter);
    counter.pick("Combo12", 1);
    counter.find<PickList>("Combo12")->addEntry(u"ANN'S"_s);
    counter.pick("Combo12", 4);
    QCOMPARE(counter.entries("Combo11"), QStringList());
}

void ReorderTest::itemShowsItsFigures_data()
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

void ReorderTest::itemShowsItsFigures()
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

void ReorderTest::itemIsReadByItsId()
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

void ReorderTest::pickingTheSameItemShowsItAgain()
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

void ReorderTest::missingItem_data()
{
    QTest::addColumn<QString>("key");
    QTest::newRow("no such ID") << u"Z9  |  GONE"_s;
    QTest::newRow("no separator") << u"A1 | MILK"_s;
    QTest::newRow("nothing") << QString();
    QTest::newRow("quote in the ID") << u"A'1  |  MILK"_s;
    QTest::newRow("another case") << u"a1  |  MILK"_s;
}

void ReorderTest::missingItem()
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

void ReorderTest::missingItemKeepsTheOtherColour()
{
    Counter counter;
    openShop(counter);
    counter.setText("Combo11", milk);
    counter.setText("Combo11", u"Z9  |  GONE"_s);
    QVERIFY(isRed(counter, "Label12"));
    QVERIFY(isRed(counter, "Label13"));
}

void ReorderTest::quantityOfChosenItem_data()
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

void ReorderTest::quantityOfChosenItem()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    Counter counter;
    openShop(counter);
    counter.setText("Combo10", before);
    counter.setText("Combo11", milk);
    QCOMPARE(counter.text("Combo10"), after);
}

void ReorderTest::typedItemShowsItsFigures()
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

void ReorderTest::missingColumnKeepsTheFigure()
{
    Counter counter;
    openShop(counter);
    counter.setText("Combo11", u"A2  |  TEA"_s);
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN StockReorderLevel"_s);
    reorder(counter, u"A2  |  TEA"_s, u"3"_s, u"3"_s); // reads the whole row, and so finds what is left of it
    QCOMPARE(counter.text("Label12"), u"5"_s);
    QCOMPARE(counter.text("Label13"), u"103"_s);
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN StockAvailable"_s);
    reorder(counter, u"A2  |  TEA"_s, u"3"_s, u"3"_s);
    QCOMPARE(counter.text("Label13"), u"103"_s);
}

void ReorderTest::reorderNeedsLogin()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    counter.click("Command17");
    QVERIFY(counter.hasFocus("Text3"));
}

void ReorderTest::reorderNeedsItsRight()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"MILK"_s, 1.25, 20);
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Undo"_s, u"Sales"_s});
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
    choose(counter, milk, u"5"_s);
    counter.boxes.expect(u"User [ANN] doesn't have this privilege!"_s, box::Exclamation);
    counter.click("Command17");
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
    QVERIFY(counter.find("Frame1")->isVisible());
    QCOMPARE(available(counter), u"20"_s);
}

void ReorderTest::refusedQuantities_data()
{
    QTest::addColumn<QString>("units");
    for (const char *units : {"abc", "0.5", "", "0", "-2", "-1.5", ".9", "0.9999999", "x5", ",5", "1e400", "-1e400",
                              "nan", "inf", "e5", "+", "."})
        QTest::newRow(*units == '\0' ? "nothing" : units) << QString::fromLatin1(units);
}

void ReorderTest::refusedQuantities()
{
    QFETCH(QString, units);
    Counter counter;
    openShop(counter);
    choose(counter, milk, units);
    counter.connection->statements.clear();
    counter.boxes.expect(invalid, box::Exclamation);
    counter.click("Command17");
    QCOMPARE(counter.connection->statements, QStringList());
    QCOMPARE(counter.text("Combo10"), units);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
}

void ReorderTest::addsUnits_data()
{
    QTest::addColumn<QString>("units");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<QString>("stock");
    QTest::addColumn<int>("undoable");
    QTest::newRow("1") << u"1"_s << u"1"_s << u"21"_s << 1;
    QTest::newRow("signed") << u"+5"_s << u"5"_s << u"25"_s << 5;
    QTest::newRow("leading zeros") << u"007"_s << u"7"_s << u"27"_s << 7;
    QTest::newRow("blanks") << u"  4  "_s << u"4"_s << u"24"_s << 4;
    QTest::newRow("and words") << u"3 boxes of 12"_s << u"3"_s << u"23"_s << 3;
    QTest::newRow("up to the comma") << u"1,000"_s << u"1"_s << u"21"_s << 1;
    QTest::newRow("up to the blank") << u"2 000"_s << u"2"_s << u"22"_s << 2;
    QTest::newRow("exponent") << u"1e2"_s << u"100"_s << u"120"_s << 100;
    QTest::newRow("1.5, half to even") << u"1.5"_s << u"1.5"_s << u"21.5"_s << 2;
    QTest::newRow("2.5, half to even") << u"2.5"_s << u"2.5"_s << u"22.5"_s << 2;
    QTest::newRow("3.5, half to even") << u"3.5"_s << u"3.5"_s << u"23.5"_s << 4;
    QTest::newRow("1.49") << u"1.49"_s << u"1.49"_s << u"21.49"_s << 1;
    QTest::newRow("trailing zeros") << u"6.50"_s << u"6.5"_s << u"26.5"_s << 6;
}

void ReorderTest::addsUnits()
{
    QFETCH(QString, units);
    QFETCH(QString, asked);
    QFETCH(QString, stock);
    QFETCH(int, undoable);
    Counter counter;
    openShop(counter);
    reorder(counter, milk, units, asked);
    QCOMPARE(available(counter), stock);
    QCOMPARE(counter.text("Label13"), stock);
    QCOMPARE(counter.text("StatusBar1_2"),
             asked + u" New item(s) to Stock [A1  |  MILK]. New Available Stock is "_s + stock + u'.');
    QCOMPARE(counter.text("Combo10"), u"0"_s);
    QCOMPARE(static_cast<int>(counter.state().last.LastReorderQty), undoable);
    QCOMPARE(counter.state().last.LastReorderItem, milk);
}

void ReorderTest::fiveUnitsAtTheLevel()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(available(counter), u"25"_s);
    QVERIFY(isRed(counter, "Label12")); // 25 of 25
    QVERIFY(isRed(counter, "Label13"));
    QCOMPARE(logged(counter).first(), u"5 New item(s) to Stock [A1  |  MILK]. New Available Stock is 25."_s);
    QCOMPARE(counter.text("Combo10"), u"0"_s);
    reorder(counter, milk, u"1"_s, u"1"_s);
    QVERIFY(!isRed(counter, "Label12"));
    QVERIFY(!isRed(counter, "Label13"));
}

void ReorderTest::reorderRefused()
{
    Counter counter;
    openShop(counter);
    choose(counter, milk, u"5"_s);
    counter.connection->statements.clear();
    counter.boxes.expect(addQuestion(u"5"_s, milk), box::Ask, Answer::No);
    counter.click("Command17");
    QCOMPARE(counter.connection->statements, QStringList());
    QCOMPARE(counter.text("Combo10"), u"5"_s);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
}

void ReorderTest::keyWithoutItem_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("looksForIt");
    QTest::newRow("nothing") << QString() << false;
    QTest::newRow("blanks") << u"   "_s << false;
    QTest::newRow("ID alone") << u"A1"_s << false;
    QTest::newRow("narrow separator") << u"A1 | MILK"_s << false;
    QTest::newRow("no such item") << u"Z9  |  GONE"_s << true;
    QTest::newRow("another case") << u"a1  |  MILK"_s << true;
}

void ReorderTest::keyWithoutItem()
{
    QFETCH(QString, key);
    QFETCH(bool, looksForIt);
    Counter counter;
    openShop(counter);
    const QString before = counter.text("Text1");
    choose(counter, key, u"5"_s);
    counter.connection->statements.clear();
    counter.boxes.expect(addQuestion(u"5"_s, key), box::Ask, Answer::Yes);
    counter.click("Command17");
    QCOMPARE(counter.connection->statements,
             looksForIt ? QStringList{u"Select * from StockList where StockID = '"_s + key.left(2) + u"'"_s}
                        : QStringList());
    QCOMPARE(counter.text("Combo10"), u"5"_s);
    QCOMPARE(counter.text("Text1"), before);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
}

void ReorderTest::idIsNotTrimmed()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u" A1"_s, u"OTHER"_s, 1, 3);
    reorder(counter, u" A1  |  MILK"_s, u"5"_s, u"5"_s);
    QCOMPARE(available(counter), u"20"_s);
    QCOMPARE(available(counter, u" A1"_s), u"8"_s);
    QCOMPARE(counter.state().last.LastReorderItem, milk); // which is trimmed: its undo looks for another item
    counter.boxes.expect(undoQuestion(u"5"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(available(counter), u"15"_s);
    QCOMPARE(available(counter, u" A1"_s), u"8"_s);
}

void ReorderTest::emptyIdIsAnId()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(QString(), u"NAMELESS"_s, 1, 3);
    reorder(counter, u"  |  NAMELESS"_s, u"5"_s, u"5"_s);
    QCOMPARE(available(counter, QString()), u"8"_s);
    // Trimmed, it has no separator any more.
    QCOMPARE(counter.state().last.LastReorderItem, u"|  NAMELESS"_s);
    counter.boxes.expect(undoQuestion(u"5"_s, u"|  NAMELESS"_s), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(available(counter, QString()), u"8"_s);
}

void ReorderTest::idWithQuote()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u"A'1"_s, u"ALE"_s, 1, 3);
    const QString before = counter.text("Text1");
    reorder(counter, u"A'1  |  ALE"_s, u"5"_s, u"5"_s);
    QCOMPARE(available(counter, u"A'1"_s), u"3"_s);
    QCOMPARE(counter.text("Text1"), before);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
}

void ReorderTest::firstOfEqualIds()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u"A1"_s, u"TWIN"_s, 1, 3);
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(counter.file.rows(u"SELECT StockName, StockAvailable FROM StockList WHERE StockID = 'A1'"_s),
             (QStringList{u"MILK|25"_s, u"TWIN|3"_s}));
}

void ReorderTest::orderOfEffects()
{
    Counter counter;
    openShop(counter);
    choose(counter, milk, u"5"_s);
    counter.connection->statements.clear();
    QStringList seen;
    counter.connection->before = [&](const QString &statement) {
        if (statement.startsWith(u"INSERT INTO SysUsage"_s))
            seen << counter.text("Label13") << counter.text("Combo10") << counter.state().last.LastReorderItem;
        if (statement == dashboardQuery)
            seen << counter.text("Combo10") << counter.rows("LV").first().section(u'|', 5, 5);
    };
    counter.boxes.expect(addQuestion(u"5"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command17");
    QCOMPARE(seen, (QStringList{u"25"_s, u"5"_s, milk, u"0"_s, u"25"_s}));
    QCOMPARE(
        counter.connection->statements.mid(0, 3),
        (QStringList{selectMilk, u"update StockList"_s,
                     u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('5 New item(s) to Stock "
                     "[A1  |  MILK]. New Available Stock is 25.','2018-03-05 14:07:09','2018-03-05 14:07:09')"_s}));
    QVERIFY(counter.connection->statements.indexOf(dashboardQuery) > 2);
}

void ReorderTest::whoReorderedIsStored()
{
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Reorder"_s});
    counter.file.addItem(u"A1"_s, u"MILK"_s, 1.25, 20);
    counter.file.sql(u"UPDATE StockList SET StockLastUpdated = 'long ago', StockLastModified = 'BOB', "
                     "StockAdded = 'EVE', StockReorderUser = 'SUE'"_s);
    counter.open();
    counter.logIn(u"ann"_s, u"PW"_s);
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(counter.file.rows(u"SELECT * FROM StockList"_s),
             QStringList{u"A1|MILK|DRINKS|1.25|2|25|Enabled|long ago|BOB|EVE|ANN"_s});
}

void ReorderTest::reporting()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1"_s);
    openShop(counter);
    reorder(counter, milk, u"5"_s, u"5"_s); // quiet: no box even so
    QCOMPARE(counter.file.rows(u"SELECT SystemUsage FROM SysUsage"_s).last(),
             u"5 New item(s) to Stock [A1  |  MILK]. New Available Stock is 25."_s);
}

void ReorderTest::listedRowIsBroughtUpToDate()
{
    Counter counter;
    openShop(counter);
    QCOMPARE(counter.rows("LV").size(), 4);
    counter.file.sql(u"UPDATE StockList SET StockName = 'Fresh milk', StockCost = 1234.5, StockCategory = 'FOOD', "
                     "StockReorderLevel = 3, StockUse = 'Disabled', StockLastUpdated = 'today' WHERE StockID = 'A1'"_s);
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(counter.rows("LV").first(), u"A1|FRESH MILK|FOOD|1,234.50|3|25|Disabled|today"_s);
    QCOMPARE(counter.rows("LV").size(), 4);
    QCOMPARE(counter.find<RowList>("LV")->selectedRow(), 0);
}

void ReorderTest::unlistedItemIsListed()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u"c1"_s, u"New"_s, 2, 1);
    reorder(counter, u"c1  |  New"_s, u"1"_s, u"1"_s);
    QCOMPARE(counter.rows("LV").last(), u"C1|NEW|DRINKS|2.00|2|2|Enabled|"_s);
    QCOMPARE(counter.find<RowList>("LV")->selectedRow(), 4);
}

void ReorderTest::changedQuestionText()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u"D1"_s, u"<b>M & M</b>"_s, 2, 1);
    reorder(counter, u"D1  |  <b>M & M</b>"_s, u"1.50"_s, u"1.5"_s);
    QCOMPARE(available(counter, u"D1"_s), u"2.5"_s);
}

void ReorderTest::failedUpdateShowsTheOldFigure()
{
    Counter counter;
    openShop(counter);
    choose(counter, milk, u"5"_s);
    counter.connection->fails = [](const QString &statement) { return statement == u"update StockList"_s; };
    counter.boxes.expect(addQuestion(u"5"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command17");
    QCOMPARE(available(counter), u"20"_s);
    QCOMPARE(counter.text("Label13"), u"20"_s);
    QCOMPARE(logged(counter).first(), u"5 New item(s) to Stock [A1  |  MILK]. New Available Stock is 20."_s);
    QCOMPARE(counter.text("Combo10"), u"0"_s);
    QCOMPARE(counter.state().last.LastReorderItem, milk); // nothing tells it that the write failed
    QCOMPARE(counter.rows("LV").first().section(u'|', 5, 5), u"20"_s);
}

void ReorderTest::noSaleGetsInBetween_data()
{
    QTest::addColumn<bool>("undo");
    QTest::newRow("reorder") << false;
    QTest::newRow("undo") << true;
}

/// Another till's sale between the stock that is read and the sum that is written would be lost.
void ReorderTest::noSaleGetsInBetween()
{
    QFETCH(bool, undo);
    Counter counter;
    openShop(counter);
    Database other(counter.file.path());
    const auto sell = [&other] {
        return other.run(u"Update Stocklist Set StockAvailable = StockAvailable - 1 where StockID = 'A1'"_s);
    };
    QList<bool> sold;
    counter.connection->before = [&](const QString &statement) {
        if (statement == u"update StockList"_s)
            sold << sell();
    };
    reorder(counter, milk, u"5"_s, u"5"_s);
    if (undo) {
        counter.boxes.expect(undoQuestion(u"5"_s, milk), box::Ask, Answer::Yes);
        counter.click("Command23");
    }
    QCOMPARE(sold, QList<bool>(undo ? 2 : 1, false)); // it is locked out
    QVERIFY(sell());                                  // and lets it in as soon as it is done
    QCOMPARE(available(counter), undo ? u"19"_s : u"24"_s);
}

void ReorderTest::refusedHoldIsNotTold()
{
    Counter counter;
    openShop(counter);
    std::vector<DbFailure> failures;
    counter.connection->setFailureHandler([&](const DbFailure &failure) { failures.push_back(failure); });
    counter.connection->refusesHolds = true;
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(available(counter), u"25"_s);
    QCOMPARE(counter.text("Label13"), u"25"_s);
    QVERIFY(failures.empty());
}

void ReorderTest::lostCommitShowsTheOldFigure()
{
    Counter counter;
    openShop(counter);
    std::vector<DbFailure> failures;
    counter.connection->setFailureHandler([&](const DbFailure &failure) { failures.push_back(failure); });
    counter.connection->losesCommits = true;
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(available(counter), u"20"_s);
    QCOMPARE(counter.text("Label13"), u"20"_s);
    QCOMPARE(logged(counter).first(), u"5 New item(s) to Stock [A1  |  MILK]. New Available Stock is 20."_s);
    QCOMPARE(failures.size(), 1u);
    QCOMPARE(failures.front().statement, u"UPDATE StockList"_s);
}

void ReorderTest::failedSelectDoesNothing()
{
    Counter counter;
    openShop(counter);
    choose(counter, milk, u"5"_s);
    const QString before = counter.text("Text1");
    counter.connection->fails = [](const QString &statement) { return statement == selectMilk; };
    counter.boxes.expect(addQuestion(u"5"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command17");
    QCOMPARE(available(counter), u"20"_s);
    QCOMPARE(counter.text("Text1"), before);
    QCOMPARE(counter.text("Combo10"), u"5"_s);
}

void ReorderTest::sumTooLargeIsNotStored()
{
    Counter counter;
    openShop(counter);
    counter.file.sql(u"UPDATE StockList SET StockAvailable = 1e308 WHERE StockID = 'A1'"_s);
    const QString asked = u'1' + QString(308, u'0');
    reorder(counter, milk, u"1e308"_s, asked);
    QCOMPARE(counter.file.cell(u"SELECT StockAvailable = 1e308 FROM StockList WHERE StockID = 'A1'"_s), u"1"_s);
    QCOMPARE(counter.text("Label13"), asked);
}

void ReorderTest::textInStock()
{
    Counter counter;
    openShop(counter);
    counter.file.sql(u"UPDATE StockList SET StockAvailable = '12 boxes' WHERE StockID = 'A1'"_s);
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(available(counter), u"17"_s);
}

void ReorderTest::moreThanSixteenBits_data()
{
    QTest::addColumn<QString>("units");
    QTest::addColumn<QString>("stock");
    QTest::newRow("32768") << u"32768"_s << u"32788"_s;
    QTest::newRow("32767.5, to even") << u"32767.5"_s << u"32787.5"_s;
    QTest::newRow("40000") << u"40000"_s << u"40020"_s;
    QTest::newRow("1e10") << u"1e10"_s << u"10000000020"_s;
}

/// They are added, and cannot be taken back; nor can what was reordered before.
void ReorderTest::moreThanSixteenBits()
{
    QFETCH(QString, units);
    QFETCH(QString, stock);
    Counter counter;
    openShop(counter);
    reorder(counter, u"A2  |  TEA"_s, u"3"_s, u"3"_s);
    reorder(counter, milk, units, units == u"1e10"_s ? u"10000000000"_s : units);
    QCOMPARE(available(counter), stock);
    QCOMPARE(counter.text("Label13"), stock);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
    counter.boxes.expect(nothingToUndo, box::Exclamation);
    counter.click("Command23");
    QCOMPARE(available(counter), stock);
    QCOMPARE(available(counter, u"A2"_s), u"103"_s);
}

void ReorderTest::sixteenBitsHold_data()
{
    QTest::addColumn<QString>("units");
    QTest::addColumn<QString>("left");
    QTest::newRow("32767") << u"32767"_s << u"20"_s;
    QTest::newRow("32767.4") << u"32767.4"_s << u"20.4"_s;
    QTest::newRow("32766.5, to even") << u"32766.5"_s << u"20.5"_s;
}

void ReorderTest::sixteenBitsHold()
{
    QFETCH(QString, units);
    QFETCH(QString, left);
    Counter counter;
    openShop(counter);
    reorder(counter, milk, units, units);
    const QString rounded = units == u"32766.5"_s ? u"32766"_s : u"32767"_s;
    counter.boxes.expect(undoQuestion(rounded, milk), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(QString::number(available(counter).toDouble(), 'f', 1), left.contains(u'.') ? left : left + u".0"_s);
}

void ReorderTest::undoNeedsLogin()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    counter.click("Command23");
}

void ReorderTest::undoNeedsItsRight()
{
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Reorder"_s});
    counter.file.addItem(u"A1"_s, u"MILK"_s, 1.25, 20);
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    reorder(counter, milk, u"5"_s, u"5"_s);
    counter.boxes.expect(u"User [ANN] doesn't have this privilege!"_s, box::Exclamation);
    counter.click("Command23");
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
    QCOMPARE(available(counter), u"25"_s);
    QCOMPARE(counter.state().last.LastReorderItem, milk);
}

void ReorderTest::nothingToUndoAtFirst()
{
    Counter counter;
    openShop(counter);
    counter.boxes.expect(nothingToUndo, box::Exclamation);
    counter.click("Command23");
}

void ReorderTest::undoTakesTheUnitsBack()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"6"_s, u"6"_s);
    QVERIFY(!isRed(counter, "Label12"));
    counter.boxes.expect(undoQuestion(u"6"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(available(counter), u"20"_s);
    QCOMPARE(counter.text("Label13"), u"20"_s);
    QVERIFY(isRed(counter, "Label12"));
    QVERIFY(isRed(counter, "Label13"));
    QCOMPARE(logged(counter).first(), u"Item(s) Removed from Stock [A1  |  MILK]. New Available Stock is 20."_s);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
    QCOMPARE(static_cast<int>(counter.state().last.LastReorderQty), 6);
    QCOMPARE(counter.rows("LV").first().section(u'|', 5, 5), u"20"_s);
    counter.boxes.expect(nothingToUndo, box::Exclamation);
    counter.click("Command23");
    QCOMPARE(available(counter), u"20"_s);
}

void ReorderTest::undoTakesRoundedUnitsBack()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"1.5"_s, u"1.5"_s);
    QCOMPARE(available(counter), u"21.5"_s);
    counter.boxes.expect(undoQuestion(u"2"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(available(counter), u"19.5"_s);
}

void ReorderTest::undoRefused()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"6"_s, u"6"_s);
    counter.boxes.expect(undoQuestion(u"6"_s, milk), box::Ask, Answer::No);
    counter.click("Command23");
    QCOMPARE(available(counter), u"26"_s);
    QCOMPARE(counter.state().last.LastReorderItem, milk);
}

void ReorderTest::undoOrderOfEffects()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"6"_s, u"6"_s);
    counter.connection->statements.clear();
    QStringList seen;
    counter.connection->before = [&](const QString &statement) {
        if (statement.startsWith(u"INSERT INTO SysUsage"_s))
            seen << counter.text("Label13") << counter.state().last.LastReorderItem
                 << counter.rows("LV").first().section(u'|', 5, 5);
    };
    counter.boxes.expect(undoQuestion(u"6"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(seen, (QStringList{u"20"_s, milk, u"26"_s}));
    QCOMPARE(
        counter.connection->statements,
        (QStringList{selectMilk, u"update StockList"_s,
                     u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('Item(s) Removed from Stock "
                     "[A1  |  MILK]. New Available Stock is 20.','2018-03-05 14:07:09','2018-03-05 14:07:09')"_s}));
}

void ReorderTest::undoLeavesUserAndDashboard()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"6"_s, u"6"_s);
    QCOMPARE(counter.text("Label6_8").trimmed(), u"126"_s);
    counter.file.sql(u"UPDATE StockList SET StockReorderUser = 'BOB', StockLastUpdated = 'long ago'"_s);
    counter.boxes.expect(undoQuestion(u"6"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(counter.text("Label6_8").trimmed(), u"126"_s);
    QCOMPARE(counter.file.cell(u"SELECT StockReorderUser || StockLastUpdated FROM StockList"_s), u"BOBlong ago"_s);
    QCOMPARE(counter.text("Combo10"), u"0"_s);
}

void ReorderTest::undoReporting()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1"_s);
    openShop(counter);
    reorder(counter, milk, u"6"_s, u"6"_s);
    counter.boxes.expect(undoQuestion(u"6"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command23"); // quiet
    QCOMPARE(counter.text("StatusBar1_2"), u"Item(s) Removed from Stock [A1  |  MILK]. New Available Stock is 20."_s);
}

void ReorderTest::undoOfAnItemThatIsGone()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"6"_s, u"6"_s);
    counter.file.sql(u"DELETE FROM StockList WHERE StockID = 'A1'"_s);
    const QString before = counter.text("Text1");
    counter.boxes.expect(undoQuestion(u"6"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(counter.text("Text1"), before);
    QCOMPARE(counter.state().last.LastReorderItem, milk);
}

void ReorderTest::undoFailing()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"6"_s, u"6"_s);
    counter.connection->fails = [](const QString &statement) { return statement == u"update StockList"_s; };
    counter.boxes.expect(undoQuestion(u"6"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(available(counter), u"26"_s);
    QCOMPARE(counter.text("Label13"), u"26"_s);
    QCOMPARE(logged(counter).first(), u"Item(s) Removed from Stock [A1  |  MILK]. New Available Stock is 26."_s);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
}

void ReorderTest::secondReorderReplacesTheFirst()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"6"_s, u"6"_s);
    reorder(counter, u"A2  |  TEA"_s, u"3"_s, u"3"_s);
    counter.boxes.expect(undoQuestion(u"3"_s, u"A2  |  TEA"_s), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(available(counter), u"26"_s);
    QCOMPARE(available(counter, u"A2"_s), u"100"_s);
    counter.boxes.expect(nothingToUndo, box::Exclamation);
    counter.click("Command23");
}

void ReorderTest::nothingToUndoAfterLogout()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"6"_s, u"6"_s);
    counter.boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::AskDefaultNo, Answer::Yes);
    counter.click("Command27");
    QCOMPARE(static_cast<int>(counter.state().last.LastReorderQty), 1);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    counter.boxes.expect(nothingToUndo, box::Exclamation);
    counter.click("Command23");
    QCOMPARE(available(counter), u"26"_s);
}

void ReorderTest::dashboardButton()
{
    Counter counter;
    openShop(counter);
    counter.chooseTab("TabStrip1", WorkArea::QuickSales);
    counter.connection->statements.clear();
    counter.chooseTab("TabStrip1", WorkArea::CustomSales); // which refreshes the dashboard last of all
    const QStringList refresh = counter.connection->statements;
    QVERIFY(refresh.size() >= 4);
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    counter.connection->statements.clear();
    counter.file.sql(u"UPDATE StockList SET StockAvailable = 1000 WHERE StockID = 'A2'"_s);
    const QString before = counter.text("Text1");
    counter.click("Command24");
    QCOMPARE(counter.connection->statements, refresh);
    QCOMPARE(counter.text("Label6_8").trimmed(), u"1,020"_s);
    QCOMPARE(counter.text("Text1"), before);
}

HARROWBY_TEST(reorder_test, ReorderTest)
#include "reorder_test.moc"
