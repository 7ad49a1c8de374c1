// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/support/database.h"
#include "tests/support/inventory_probe.h"

#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"

#include <QCheckBox>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Taking a purchase back, the last one or any other.
class PurchaseUndoTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void needsLogin();
    void needsTheRight_data();
    void needsTheRight();
    void nothingToUndoAfterTheStart();
    void nothingToDelete_data();
    void nothingToDelete();
    void refusedQuestionChangesNothing_data();
    void refusedQuestionChangesNothing();
    void undoAfterCommit();
    void undoIsQuiet();
    void undoneCartCommitsAgain();
    void statementsInOrder();
    void statementsOfADeletion();
    void deletionForgetsTheLastPurchase_data();
    void deletionForgetsTheLastPurchase();
    void deletionWritesNoLine();
    void reprintGoesWithTheUndoAlone();
    void missingPurchase_data();
    void missingPurchase();
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
    void purchaseListIsRefilled_data();
    void purchaseListIsRefilled();
    void listFollowsACommit();
};

namespace {

constexpr auto firstId = "HV18030514070907"_L1;

void openShop(Counter &counter)
{
    counter.file.addItem(u"A1"_s, u"SAFE"_s, 1250, 10);
    counter.file.addItem(u"A2"_s, u"TEA"_s, 2.5, 20);
    counter.file.addItem(u"0012"_s, u"MILK"_s, 500, 30);
    counter.open();
    counter.logIn();
}

void addPurchase(const Counter &counter, const QString &id, const QString &items, const QString &count)
{
    counter.file.sql(u"INSERT INTO PurchaseCart VALUES (%1, %2, %3, 1, '180305080000', 'JACK')"_s.arg(
        quoted(id), quoted(items), count));
}

QStringList stock(const Counter &counter)
{
    return counter.file.rows(u"SELECT StockID, StockAvailable FROM StockList ORDER BY rowid"_s);
}

const QStringList untouched{u"A1|10"_s, u"A2|20"_s, u"0012|30"_s};

/// Sells a safe and two teas, as A1 stands on the second button and A2 on the third.
void commit(Counter &counter)
{
    for (const char *button : {"Command1_1", "Command1_2", "Command1_2"})
        counter.click(button);
    counter.boxes.expect(u"Item List:\r\n\r\n1. 1 x A1  |  SAFE = 1,250.00\r\n2. 2 x A2  |  TEA = 5.00\r\n\r\n\r\n\r\n"
                         "Purchased Cart?"_s,
                         box::Ask, Answer::Yes);
    counter.click("Command14");
}

const QStringList committedCart{u"A1  |  SAFE|1|1,250.00"_s, u"A2  |  TEA|2|5.00"_s};

void undo(Counter &counter, const QString &id = firstId)
{
    counter.boxes.expect(u"Undo last Purchased Cart with ID ["_s + id + u"]?"_s, box::Ask, Answer::Yes);
    counter.click("Command25");
}

void expectDeleteQuestion(Counter &counter, const QString &id, Answer answer)
{
    counter.boxes.expect(u"Delete Purchased Cart with ID ["_s + id +
                             u"].\r\nAll purchased items will br restored (Y/N)?"_s,
                         box::Ask, answer);
}

void deletePurchase(Counter &counter, const QString &id)
{
    counter.setText("Combo17", id);
    expectDeleteQuestion(counter, id, Answer::Yes);
    counter.click("Command4");
}

void expectNothingToUndo(Counter &counter)
{
    counter.boxes.expect(u"Nothing to Undo!"_s, box::Exclamation);
}

QStringList purchases(const Counter &counter)
{
    return counter.file.rows(u"SELECT PurchaseID FROM PurchaseCart ORDER BY rowid"_s);
}

} // namespace

void PurchaseUndoTest::needsLogin()
{
    for (const char *button : {"Command25", "Command4"}) {
        Counter counter;
        counter.open();
        counter.setText("Combo17", u"HV1"_s);
        counter.find("Text4")->setFocus();
        counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
        counter.click(button);
        QVERIFY(counter.hasFocus("Text3"));
    }
}

void PurchaseUndoTest::needsTheRight_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QString>("otherRight");
    QTest::newRow("undo") << QByteArray("Command25") << u"Delete"_s;
    QTest::newRow("delete") << QByteArray("Command4") << u"Undo"_s;
}

void PurchaseUndoTest::needsTheRight()
{
    QFETCH(const QByteArray, button);
    QFETCH(const QString, otherRight);
    Counter counter;
    counter.file.addUser(u"JACK"_s, u"PASS"_s, {otherRight, u"Sales"_s, u"Settings"_s});
    openShop(counter);
    commit(counter);
    counter.logIn(u"JACK"_s); // over the other one, so that there is something to undo
    QCOMPARE(counter.state().last.LastPurchaseID, firstId);
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    counter.setText("Combo17", firstId);
    counter.boxes.expect(u"User [JACK] doesn't have this privilege!"_s, box::Exclamation);
    counter.click(button.constData());
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
    QCOMPARE(purchases(counter), QStringList{firstId});
}

void PurchaseUndoTest::nothingToUndoAfterTheStart()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, u"1 x A1  |  SAFE = 1.00"_s, u"1"_s);
    counter.connection->statements.clear();
    expectNothingToUndo(counter);
    counter.click("Command25");
    QCOMPARE(counter.connection->statements, QStringList());
}

void PurchaseUndoTest::nothingToDelete_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("blanks") << u"   "_s;
}

void PurchaseUndoTest::nothingToDelete()
{
    QFETCH(const QString, text);
    Counter counter;
    openShop(counter);
    counter.setText("Combo17", text);
    counter.connection->statements.clear();
    counter.boxes.expect(u"Nothing to Delete!"_s, box::Exclamation);
    counter.click("Command4");
    QCOMPARE(counter.connection->statements, QStringList());
}

void PurchaseUndoTest::refusedQuestionChangesNothing_data()
{
    QTest::addColumn<bool>("isUndo");
    QTest::newRow("undo") << true;
    QTest::newRow("delete") << false;
}

void PurchaseUndoTest::refusedQuestionChangesNothing()
{
    QFETCH(const bool, isUndo);
    Counter counter;
    openShop(counter);
    commit(counter);
    counter.click("Command1_2");
    const QStringList cart = counter.cart();
    counter.setText("Combo17", firstId);
    counter.connection->statements.clear();
    if (isUndo)
        counter.boxes.expect(u"Undo last Purchased Cart with ID [HV18030514070907]?"_s, box::Ask, Answer::No);
    else
        expectDeleteQuestion(counter, firstId, Answer::No);
    counter.click(isUndo ? "Command25" : "Command4");
    QCOMPARE(counter.connection->statements, QStringList());
    QCOMPARE(counter.cart(), cart);
    QCOMPARE(counter.state().last.LastPurchaseID, firstId);
    QCOMPARE(counter.text("Combo17"), firstId);
}

void PurchaseUndoTest::undoAfterCommit()
{
    Counter counter;
    counter.settings->values.clear(); // receipts
    openShop(counter);
    commit(counter);
    QVERIFY(!counter.state().last.ReceiptText.isEmpty());
    undo(counter);
    QCOMPARE(counter.cart(), committedCart);
    QCOMPARE(counter.text("Label5"), u"Total: 1,255.00"_s);
    QCOMPARE(counter.find<TabStrip>("TabStrip2")->tabText(0), u"Cart(2)"_s);
    QCOMPARE(stock(counter), untouched);
    QCOMPARE(purchases(counter), QStringList());
    QCOMPARE(counter.state().last.LastPurchaseID, QString());
    QCOMPARE(counter.state().last.ReceiptText, QString());
    QCOMPARE(counter.text("Label6_3"), u"0"_s);
    QCOMPARE(counter.text("Label6_8"), u"  60"_s);
    QCOMPARE(counter.text("StatusBar1_2"), u"Last Purchased Undone!"_s);
    QVERIFY(counter.text("Text1").startsWith(u"[05.03.18 14:07:09] -- Last Purchased Undone!\n\n["_s));
    expectNothingToUndo(counter);
    counter.click("Command25");
}

void PurchaseUndoTest::undoIsQuiet()
{
    Counter counter;
    openShop(counter);
    commit(counter);
    counter.find<QCheckBox>("Check3")->setChecked(true);
    counter.click("Command18"); // "Show Details On Purchase" from now on
    counter.boxes.expect(u"Undo last Purchased Cart with ID [HV18030514070907]?"_s, box::Ask, Answer::Yes);
    counter.click("Command25"); // and no further box
    QCOMPARE(counter.text("StatusBar1_2"), u"Last Purchased Undone!"_s);
}

void PurchaseUndoTest::undoneCartCommitsAgain()
{
    Counter counter;
    openShop(counter);
    commit(counter);
    undo(counter);
    counter.click("Command1_2");
    counter.boxes.expect(u"Item List:\r\n\r\n1. 1 x A1  |  SAFE = 1,250.00\r\n2. 3 x A2  |  TEA = 7.50\r\n\r\n\r\n\r\n"
                         "Purchased Cart?"_s,
                         box::Ask, Answer::Yes);
    counter.click("Command14");
    QCOMPARE(stock(counter), (QStringList{u"A1|9"_s, u"A2|17"_s, u"0012|30"_s}));
    QCOMPARE(counter.state().last.LastPurchaseID, firstId); // the ID is free again
    undo(counter);
    QCOMPARE(stock(counter), untouched);
}

void PurchaseUndoTest::statementsInOrder()
{
    Counter counter;
    openShop(counter);
    commit(counter);
    counter.connection->statements.clear();
    undo(counter);
    const QString usage = u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('%1','2018-03-05 14:07:09',"
                          "'2018-03-05 14:07:09')"_s;
    const QStringList expected{
        u"Select * from PurchaseCart where PurchaseID = 'HV18030514070907'"_s,
        u"Update StockList Set StockAvailable = StockAvailable + 1 where StockID = 'A1'"_s,
        u"Select * from StockList where StockID = 'A1'"_s,
        usage.arg(u"1 of A1  |  SAFE Added to Cart!"_s),
        u"Update StockList Set StockAvailable = StockAvailable + 2 where StockID = 'A2'"_s,
        u"Select * from StockList where StockID = 'A2'"_s,
        usage.arg(u"2 of A2  |  TEA Added to Cart!"_s),
        u"Delete from PurchaseCart where PurchaseID = 'HV18030514070907'"_s,
        u"Select count(*) as totals from PurchaseCart where substr(PurchasedDate,1,6) = '180305'"_s,
    };
    QCOMPARE(counter.connection->statements.first(expected.size()), expected);
    // The purchase IDs are not asked for again, as their tab is not there.
    QCOMPARE(counter.connection->statements.last(), usage.arg(u"Last Purchased Undone!"_s));
    QVERIFY(
        !counter.connection->statements.contains(u"Select PurchaseID from PurchaseCart Order by PurchaseID DESC"_s));
}

void PurchaseUndoTest::statementsOfADeletion()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HE1"_s, u"3 x A2  |  TEA = 7.50"_s, u"1"_s);
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    counter.connection->statements.clear();
    deletePurchase(counter, u"HE1"_s);
    const QStringList &statements = counter.connection->statements;
    QCOMPARE(statements.at(0), u"Select * from PurchaseCart where PurchaseID = 'HE1'"_s);
    QCOMPARE(statements.at(1), u"Update StockList Set StockAvailable = StockAvailable + 3 where StockID = 'A2'"_s);
    QCOMPARE(statements.at(4), u"Delete from PurchaseCart where PurchaseID = 'HE1'"_s);
    QCOMPARE(statements.filter(u"Select PurchaseID"_s), QStringList());
    QCOMPARE(counter.cart(), QStringList{u"A2  |  TEA|3|7.50"_s});
    QCOMPARE(stock(counter).at(1), u"A2|23"_s);
}

void PurchaseUndoTest::deletionForgetsTheLastPurchase_data()
{
    QTest::addColumn<QString>("id");
    QTest::newRow("the last one") << QString(firstId);
    QTest::newRow("an older one") << u"HV1"_s;
}

void PurchaseUndoTest::deletionForgetsTheLastPurchase()
{
    QFETCH(const QString, id);
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, u"1 x A1  |  SAFE = 1,250.00"_s, u"1"_s);
    commit(counter);
    QCOMPARE(counter.state().last.LastPurchaseID, firstId);
    deletePurchase(counter, id);
    QCOMPARE(counter.state().last.LastPurchaseID, QString());
    QVERIFY(!purchases(counter).contains(id));
    expectNothingToUndo(counter);
    counter.click("Command25");
}

void PurchaseUndoTest::deletionWritesNoLine()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, u"Sold by hand"_s, u"1"_s);
    const QString log = counter.text("Text1");
    const QString uses = counter.file.cell(u"SELECT count(*) FROM SysUsage"_s);
    deletePurchase(counter, u"HV1"_s);
    QCOMPARE(purchases(counter), QStringList());
    QCOMPARE(counter.text("Text1"), log);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM SysUsage"_s), uses);
}

void PurchaseUndoTest::reprintGoesWithTheUndoAlone()
{
    Counter counter;
    counter.settings->values.clear();
    openShop(counter);
    commit(counter);
    const QString receipt = counter.state().last.ReceiptText;
    deletePurchase(counter, firstId);
    QCOMPARE(counter.state().last.ReceiptText, receipt);
}

void PurchaseUndoTest::missingPurchase_data()
{
    QTest::addColumn<QString>("damage");
    QTest::newRow("no such row") << u"DELETE FROM PurchaseCart"_s;
    QTest::newRow("no table") << u"DROP TABLE PurchaseCart"_s;
    QTest::newRow("another ID's capitals") << u"UPDATE PurchaseCart SET PurchaseID = lower(PurchaseID)"_s;
}

void PurchaseUndoTest::missingPurchase()
{
    QFETCH(const QString, damage);
    Counter counter;
    counter.settings->values.clear();
    openShop(counter);
    commit(counter);
    counter.click("Command1_0");
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    auto *list = counter.find<PickList>("Combo17");
    list->setCurrentIndex(0);
    counter.file.sql(damage);
    const QStringList cart = counter.cart();
    const QStringList before = stock(counter);
    expectDeleteQuestion(counter, firstId, Answer::Yes);
    expectNothingToUndo(counter);
    counter.click("Command4");
    QCOMPARE(list->count(), 0); // the entry goes all the same
    QCOMPARE(counter.text("Combo17"), QString());
    QCOMPARE(counter.state().last.LastPurchaseID, firstId);
    QVERIFY(!counter.state().last.ReceiptText.isEmpty());

    counter.boxes.expect(u"Undo last Purchased Cart with ID [HV18030514070907]?"_s, box::Ask, Answer::Yes);
    expectNothingToUndo(counter);
    counter.click("Command25");
    QCOMPARE(counter.state().last.LastPurchaseID, firstId);
    QCOMPARE(counter.state().last.ReceiptText, QString());
    QCOMPARE(counter.text("StatusBar1_2"), u"Last Purchased Undone!"_s);
    QCOMPARE(counter.cart(), cart);
    QCOMPARE(stock(counter), before);
}

void PurchaseUndoTest::cartIsReplaced()
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

void PurchaseUndoTest::stockByTheIdAlone()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, u"3 x 0012  |  MILK = 1,500.00"_s, u"1"_s);
    counter.file.sql(u"UPDATE StockList SET StockName = 'CREAM', StockUse = 'Disabled' WHERE StockID = '0012'"_s);
    deletePurchase(counter, u"HV1"_s);
    QCOMPARE(stock(counter).at(2), u"0012|33"_s);
    QCOMPARE(counter.cart(), QStringList{u"0012  |  MILK|3|1,500.00"_s});
}

void PurchaseUndoTest::priceIsLookedUpAnew()
{
    Counter counter;
    openShop(counter);
    commit(counter);
    counter.file.sql(u"UPDATE StockList SET StockCost = 3 WHERE StockID = 'A2'"_s);
    undo(counter);
    QCOMPARE(counter.cart(), (QStringList{u"A1  |  SAFE|1|1,250.00"_s, u"A2  |  TEA|2|6.00"_s}));
}

void PurchaseUndoTest::sameItemTwice()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, u"1 x A2  |  TEA = 2.50, 20000 x A2  |  tea = 0.00, 20000 x A2  |  TEA = 1.00"_s,
                u"3"_s);
    deletePurchase(counter, u"HV1"_s); // no question whether to merge
    QCOMPARE(counter.cart(), QStringList{u"A2  |  TEA|40001|100,002.50"_s});
    QCOMPARE(stock(counter).at(1), u"A2|40021"_s);
}

void PurchaseUndoTest::withoutMerging()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, u"1 x A2  |  TEA = 2.50, 4 x A2  |  TEA = 10.00"_s, u"2"_s);
    counter.boxes.expect(u"Item Already Exist in Cart.\r\nTo Update - YES, To Replace - NO"_s, box::Ask, Answer::No);
    InventoryProbe{counter.window()}.undoPurchase(u"HV1"_s, false);
    QCOMPARE(counter.cart(), QStringList{u"A2  |  TEA|4|10.00"_s});
}

void PurchaseUndoTest::elements_data()
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
    // The second half of the name is an element that is none, and the count ends before the last one.
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

void PurchaseUndoTest::elements()
{
    QFETCH(const QString, items);
    QFETCH(const int, count);
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, items, QString::number(count));
    deletePurchase(counter, u"HV1"_s);
    QTEST(counter.cart(), "cart");
    QTEST(stock(counter), "stock");
    QCOMPARE(purchases(counter), QStringList()); // whatever was skipped
}

void PurchaseUndoTest::counts_data()
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

void PurchaseUndoTest::counts()
{
    QFETCH(const QString, count);
    QFETCH(const int, restored);
    Counter counter;
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
    if (restored == 0) // an emptied cart does not add itself up
        QCOMPARE(counter.text("Label5"), total);
}

void PurchaseUndoTest::noColumn_data()
{
    QTest::addColumn<QString>("column");
    QTest::newRow("items") << u"PurchasedItems"_s;
    QTest::newRow("count") << u"PurchasedItemsTotal"_s;
}

void PurchaseUndoTest::noColumn()
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

void PurchaseUndoTest::twoRowsOfOneId()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HE1"_s, u"1 x A1  |  SAFE = 1.00"_s, u"1"_s);
    addPurchase(counter, u"HE1"_s, u"1 x A2  |  TEA = 2.50"_s, u"1"_s);
    deletePurchase(counter, u"HE1"_s);
    QCOMPARE(stock(counter), (QStringList{u"A1|11"_s, u"A2|20"_s, u"0012|30"_s})); // the first one's
    QCOMPARE(purchases(counter), QStringList());                                   // both
}

void PurchaseUndoTest::deletedItem()
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

void PurchaseUndoTest::quotedId()
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

void PurchaseUndoTest::idIsTrimmed()
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

void PurchaseUndoTest::purchaseListIsRefilled_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<bool>("isRefilled");
    QTest::newRow("custom sales") << WorkArea::CustomSales << false;
    QTest::newRow("stock") << WorkArea::EditStock << false;
    QTest::newRow("reorder") << WorkArea::ReorderStock << true;
    QTest::newRow("settings") << WorkArea::Settings << false;
}

void PurchaseUndoTest::purchaseListIsRefilled()
{
    QFETCH(const int, tab);
    QFETCH(const bool, isRefilled);
    Counter counter;
    openShop(counter);
    commit(counter);
    addPurchase(counter, u"HV2"_s, u""_s, u"0"_s);
    counter.chooseTab("TabStrip1", tab);
    auto *list = counter.find<PickList>("Combo17");
    list->clearEntries();
    list->addEntry(u"left as it was"_s);
    counter.connection->statements.clear();
    undo(counter);
    QCOMPARE(counter.connection->statements.contains(u"Select PurchaseID from PurchaseCart Order by PurchaseID DESC"_s),
             isRefilled);
    QCOMPARE(counter.entries("Combo17"), QStringList{isRefilled ? u"HV2"_s : u"left as it was"_s});
    QCOMPARE(counter.connection->statements.last().startsWith(u"Select PurchaseID"_s), isRefilled);
}

void PurchaseUndoTest::listFollowsACommit()
{
    Counter counter;
    openShop(counter);
    addPurchase(counter, u"HV1"_s, u""_s, u"0"_s);
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    QCOMPARE(counter.entries("Combo17"), QStringList()); // this tab's own choice fills other lists
    commit(counter);
    QCOMPARE(counter.entries("Combo17"), (QStringList{firstId, u"HV1"_s}));
}

HARROWBY_TEST(purchase_undo_test, PurchaseUndoTest)
#include "purchase_undo_test.moc"
