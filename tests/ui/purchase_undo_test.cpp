// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/ui/purchase_desk.h"

#include "ui/widgets/pick_list.h"
#include "ui/widgets/tab_strip.h"

#include <QCheckBox>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::purchase_desk;

/// Taking a purchase back, the last one or any other: who may, what is asked, and what follows.
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
    void purchaseListIsRefilled_data();
    void purchaseListIsRefilled();
    void listFollowsACommit();
};

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
    counter.logIn(u"JACK"_s); // without a logout, which would forget the purchase
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
    // The purchase IDs are not read again, as their tab is not shown.
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
    QCOMPARE(list->count(), 0); // the entry is removed nevertheless
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
    QCOMPARE(counter.entries("Combo17"), QStringList()); // choosing this tab fills other lists
    commit(counter);
    QCOMPARE(counter.entries("Combo17"), (QStringList{firstId, u"HV1"_s}));
}

HARROWBY_TEST(purchase_undo_test, PurchaseUndoTest)
#include "purchase_undo_test.moc"
