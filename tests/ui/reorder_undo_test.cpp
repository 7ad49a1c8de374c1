// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/ui/reorder_desk.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::reorder_desk;

/// Taking the last top-up back, and the way from the dashboard to the next one.
class ReorderUndoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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
};

void ReorderUndoTest::undoNeedsLogin()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    counter.click("Command23");
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void ReorderUndoTest::undoNeedsItsRight()
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

void ReorderUndoTest::nothingToUndoAtFirst()
{
    Counter counter;
    openShop(counter);
    counter.boxes.expect(nothingToUndo, box::Exclamation);
    counter.click("Command23");
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void ReorderUndoTest::undoTakesTheUnitsBack()
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

void ReorderUndoTest::undoTakesRoundedUnitsBack()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"1.5"_s, u"1.5"_s);
    QCOMPARE(available(counter), u"21.5"_s);
    counter.boxes.expect(undoQuestion(u"2"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(available(counter), u"19.5"_s);
}

void ReorderUndoTest::undoRefused()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"6"_s, u"6"_s);
    counter.boxes.expect(undoQuestion(u"6"_s, milk), box::Ask, Answer::No);
    counter.click("Command23");
    QCOMPARE(available(counter), u"26"_s);
    QCOMPARE(counter.state().last.LastReorderItem, milk);
}

void ReorderUndoTest::undoOrderOfEffects()
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

void ReorderUndoTest::undoLeavesUserAndDashboard()
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

void ReorderUndoTest::undoReporting()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1"_s);
    openShop(counter);
    reorder(counter, milk, u"6"_s, u"6"_s);
    counter.boxes.expect(undoQuestion(u"6"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command23"); // quiet
    QCOMPARE(counter.text("StatusBar1_2"), u"Item(s) Removed from Stock [A1  |  MILK]. New Available Stock is 20."_s);
}

void ReorderUndoTest::undoOfAnItemThatIsGone()
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

void ReorderUndoTest::undoFailing()
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

void ReorderUndoTest::secondReorderReplacesTheFirst()
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

void ReorderUndoTest::nothingToUndoAfterLogout()
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

void ReorderUndoTest::dashboardButton()
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

HARROWBY_TEST(reorder_undo_test, ReorderUndoTest)
#include "reorder_undo_test.moc"
