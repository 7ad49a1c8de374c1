// SPDX-License-Identifier: MIT
#include "tables/table_view.h"
#include "tests/app/hold_till.h"
#include "tests/program/test_program.h"

#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// "Recall" at the real window over a real file. Holding is in hold_test.cpp.
class RecallTest : public HoldTill
{
    Q_OBJECT

private Q_SLOTS:
    void heldCartsAreListed();
    void recallCanBeCalledOff();
    void recallIntoACartAsks();
    void onlyOneTillGetsACart();
    void cartThatIsGoneIsTold();
    void misfitsAreToldInOneList();
    void failedRecallLeavesTheCartHeld();
    void cartInBothPlacesIsTold();
    void recallThatNobodyKnowsIsTold();
};

void RecallTest::heldCartsAreListed()
{
    QCOMPARE(counter().sell(u"A1"_s, 2), CounterAnswer::Done);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    holdAs(u"Mary"_s);
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    m_till->file.sql(u"UPDATE HarrowbyHeld SET HeldAt = '2026-03-05T09:15:00.000Z' WHERE Word = '1'"_s);
    const QString since = QDateTime(QDate(2026, 3, 5), QTime(9, 15), Qt::UTC).toLocalTime().toString(u"MM-dd HH:mm");
    QStringList first;
    int rows = 0;
    inNextDialog([&](QDialog &dialog) {
        auto *list = dialog.findChild<tables::TableView *>();
        rows = list->model()->rowCount();
        for (int column = 0; column < list->model()->columnCount(); ++column)
            first << list->model()->index(0, column).data().toString();
        QTest::keyClick(list, Qt::Key_Return);
    });
    press(u"recallCart"_s);
    QCOMPARE(rows, 2);
    QCOMPARE(first, (QStringList{u"1"_s, since, u"ADMINISTRATOR"_s, u"1"_s, u"2.50"_s})); // held longest
    QCOMPARE(m_said, QStringList{u"\"1\" is back in the cart."_s});
    QCOMPARE(cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
    QCOMPARE(heldWords(), QStringList{u"Mary"_s});
}

void RecallTest::recallCanBeCalledOff()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    answerRecall(u"1"_s, u"cancelList"_s);
    press(u"recallCart"_s);
    QCOMPARE(heldWords(), QStringList{u"1"_s});
    QCOMPARE(cart(), QStringList());
}

void RecallTest::recallIntoACartAsks()
{
    QCOMPARE(counter().sell(u"A1"_s, 2), CounterAnswer::Done);
    holdAs(u"Mary"_s);
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    const QString question = u"The cart is not empty (2 lines, 6.50). Add \"Mary\" to it?"_s;
    inNextDialog([&](QDialog &dialog) {
        answerNextBox(question, u"Cancel"_s);
        dialog.findChild<QPushButton *>(u"listAction"_s)->click();
    });
    press(u"recallCart"_s);
    QCOMPARE(heldWords(), QStringList{u"Mary"_s});
    QCOMPARE(cart(), (QStringList{u"A1  |  TEA|1|2.50"_s, u"b2  |  HONEY|1|4.00"_s}));
    inNextDialog([&](QDialog &dialog) {
        answerNextBox(question, u"Add"_s);
        dialog.findChild<QPushButton *>(u"listAction"_s)->click();
    });
    press(u"recallCart"_s);
    QCOMPARE(heldWords(), QStringList());
    QCOMPARE(cart(), (QStringList{u"A1  |  TEA|3|7.50"_s, u"b2  |  HONEY|1|4.00"_s}));
    QCOMPARE(m_dialogs, 4);
}

void RecallTest::onlyOneTillGetsACart()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    const HeldCart held = heldCart(u"1"_s);
    const auto records = otherTillsRecords(m_till->file);
    HeldCarts other(*records);
    int got = 0;
    const auto take = [&got](const std::vector<CounterLine> &lines) {
        got += static_cast<int>(lines.size());
        return true;
    };
    // The other till tries while this one is at it, and after that.
    QCOMPARE(m_carts->take(held,
                           [&](const std::vector<CounterLine> &lines) {
                               return other.take(held, take) == HeldCarts::Taken::Failed && take(lines);
                           }),
             HeldCarts::Taken::Done);
    QCOMPARE(other.take(held, take), HeldCarts::Taken::Gone);
    QCOMPARE(got, 1);
}

void RecallTest::cartThatIsGoneIsTold()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    holdAs(u"2"_s);
    inNextDialog([this](QDialog &dialog) { // another till recalls it while this one looks at the list
        QCOMPARE(m_carts->drop(heldCart(u"1"_s)), HeldCarts::Taken::Done);
        answerNextBox(u"\"1\" has just been recalled at another till."_s, u"OK"_s);
        answerRecall(u"2"_s, u"listAction"_s);
        dialog.findChild<QPushButton *>(u"listAction"_s)->click();
    });
    press(u"recallCart"_s);
    QCOMPARE(cart(), QStringList{u"b2  |  HONEY|1|4.00"_s});
}

void RecallTest::misfitsAreToldInOneList()
{
    for (const QString &id : {u"A1"_s, u"b2"_s, u"C3"_s, u"D4"_s, u"E5"_s})
        QCOMPARE(counter().sell(id, 3), CounterAnswer::Done);
    holdAs(u"1"_s);
    m_till->file.sql(u"UPDATE StockList SET StockAvailable = 0 WHERE StockID = 'A1';"
                     "UPDATE StockList SET StockAvailable = 2 WHERE StockID = 'b2';"
                     "UPDATE StockList SET StockCost = 1.50 WHERE StockID = 'C3';"
                     "DELETE FROM StockList WHERE StockID = 'D4';"
                     "UPDATE StockList SET StockUse = 'Disabled' WHERE StockID = 'E5'"_s);
    QStringList told;
    answerRecall(u"1"_s, u"listAction"_s);
    inNextDialog([&](QDialog &dialog) {
        const QAbstractItemModel *list = dialog.findChild<tables::TableView *>()->model();
        for (int row = 0; row < list->rowCount(); ++row) {
            QStringList texts;
            for (int column = 0; column < list->columnCount(); ++column)
                texts << list->index(row, column).data().toString();
            told << texts.join(u'|');
        }
        QVERIFY(dialog.findChild<QPushButton *>(u"cancelList"_s) == nullptr);
        dialog.findChild<QPushButton *>(u"listAction"_s)->click();
    });
    press(u"recallCart"_s);
    QCOMPARE(told, (QStringList{u"BREAD|3 for 3.60|3 for 4.50|at the price of today"_s,
                                u"EGGS|3 for 9.00|\u2013|no longer for sale: left out"_s,
                                u"HONEY|3 for 12.00|2 for 8.00|only 2 left"_s,
                                u"MILK|3 for 2.97|\u2013|no such item any more: left out"_s,
                                u"TEA|3 for 7.50|\u2013|sold out: left out"_s}));
    QCOMPARE(cart(), (QStringList{u"b2  |  HONEY|2|8.00"_s, u"C3  |  BREAD|3|4.50"_s}));
    QCOMPARE(heldWords(), QStringList());
}

void RecallTest::failedRecallLeavesTheCartHeld()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    const HeldCart held = heldCart(u"1"_s);
    const QStringList lines = heldLines();
    std::vector<CounterMisfit> misfits;
    CartHolder holder(counter(), *m_carts);
    for (int at = 0; at < 4; ++at) { // begin, delete, read, delete
        m_fuss->texts.clear();
        m_fuss->failAt = at;
        QCOMPARE(holder.recall(held, misfits), HeldCarts::Taken::Failed);
        m_fuss->failAt = -1;
        QCOMPARE(cart(), QStringList());
        QCOMPARE(heldWords(), QStringList{u"1"_s});
        QCOMPARE(heldLines(), lines);
    }
}

void RecallTest::cartInBothPlacesIsTold()
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"1"_s);
    answerRecall(u"1"_s, u"listAction"_s);
    answerNextBox(u"\"1\" is in the cart, but it could not be taken off the list"_s, u"OK"_s);
    m_fuss->texts.clear();
    m_fuss->failAt = 5; // list, begin, delete, read, delete, and the commit
    press(u"recallCart"_s);
    m_fuss->failAt = -1;
    QCOMPARE(m_dialogs, 2);
    QCOMPARE(cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
    QCOMPARE(heldWords(), QStringList{u"1"_s});
}

/// Of a server: the cart may have been taken off its list.
void RecallTest::recallThatNobodyKnowsIsTold()
{
    QStringList failed;
    m_records->setFailureHandler([&failed](const DbFailure &failure) { failed << failure.statement; });
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    holdAs(u"Mary"_s);
    answerRecall(u"Mary"_s, u"listAction"_s);
    answerNextBox(u"\"Mary\" is in the cart, but it is not known whether it was taken off the list of held carts."_s,
                  u"OK"_s);
    m_fuss->texts.clear();
    m_fuss->failAt = 5; // list, begin, delete, read, delete, and the commit
    m_fuss->state = u"08007"_s;
    press(u"recallCart"_s);
    QCOMPARE(m_dialogs, 2);
    QCOMPARE(m_said, QStringList());
    QCOMPARE(cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
    QCOMPARE(failed, QStringList{u"DELETE HarrowbyHeld Mary"_s});
}

HARROWBY_TEST(app_recall_test, RecallTest)
#include "recall_test.moc"
