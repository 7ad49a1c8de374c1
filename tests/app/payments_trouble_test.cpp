// SPDX-License-Identifier: MIT
#include "app/cash/open_intents.h"
#include "app/cash/settlement.h"
#include "app/records/record_tables.h"
#include "platform/boxes.h"
#include "tests/app/cash_till.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"
#include "ui/work_areas.h"

#include <QDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// Payments on bad days: statements that fail, rows whose fate is not known, odd shops.
class PaymentsTroubleTest : public CashTill
{
    Q_OBJECT

private Q_SLOTS:
    void statementsAreThese();
    void eachStatementFailsAndTheSaleGoesOn_data();
    void eachStatementFailsAndTheSaleGoesOn();
    void whatFailsToTheEndIsSettledByTheNextStart();
    void undoThatCannotBeWrittenIsWrittenLater();
    void undoneBeforeItsPaymentIsWritten();
    void rowThatWasNotWrittenHasNoPayment();
    void rowThatIsNotKnownKeepsItsIntent_data();
    void rowThatIsNotKnownKeepsItsIntent();
    void sumWithoutCentsIsSoldWithoutPayment();
    void threeSalesOfASecondArePaidEachAndGoTogether();
    void purchaseThatIsGoneAlreadyIsTakenBack();
    void saleOfAnotherTillUnderThatIdStaysPaid();
    void purchaseOfALogoutIsPaid();
    void oddTextsAreMatched_data();
    void oddTextsAreMatched();
    void runWithoutItsLockIsToldOnce();
    void thousandsOfDeadIntentsAreListed();

private:
    void paySome();
};

/// Three units of an item, by card and in cash.
void PaymentsTroubleTest::paySome()
{
    fillCart(u"B2"_s);
    answerQuestion(Answer::Yes);
    QCOMPARE(m_payments->pay({{cardWay(), 300, 300}, {cashWay(), 100, 500}}), CounterAnswer::Done);
    takeEvents();
}

void PaymentsTroubleTest::statementsAreThese()
{
    const QString columns = u"select PaymentID, PurchaseID, State, Way, Amount, Given, Total, Items, Seller, TakenAt, "
                            "Drawer, Run, Origin, BackWhy from HarrowbyPayment where "_s;
    const QString insert =
        u"insert into HarrowbyPayment (PaymentID, Part, PurchaseID, State, Way, Amount, Given, Total, Items, Seller, "
        "TakenAt, Drawer, Run, Origin, BackAt, BackWhy) values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, '', '')"_s;
    const QString ofPurchase = columns + u"PurchaseID = ? and State = ? order by TakenAt, PaymentID, Part"_s;
    const QString purchases = u"select PurchasedItemsCost from PurchaseCart where PurchaseID = ?"_s;
    const QString withId = columns + u"PaymentID = ? order by Part"_s;
    m_fuss->texts.clear();
    paySome();
    QCOMPARE(m_fuss->texts,
             (QStringList{u"begin"_s, insert, insert, u"commit"_s, u"begin"_s, withId, ofPurchase, purchases,
                          u"update HarrowbyPayment set PurchaseID = ?, State = ?, Origin = ?, Items = '' "
                          "where PaymentID = ?"_s,
                          u"commit"_s}));
    m_fuss->texts.clear();
    purchasePlainly();
    QCOMPARE(m_fuss->texts, (QStringList{u"begin"_s, withId, ofPurchase, purchases, insert, u"commit"_s}));
    m_fuss->texts.clear();
    m_till->click("Command25");
    takeEvents();
    QCOMPARE(m_fuss->texts, (QStringList{ofPurchase, purchases, u"begin"_s, ofPurchase, purchases,
                                         u"update HarrowbyPayment set State = ?, BackAt = ?, BackWhy = ? "
                                         "where PaymentID = ? and State = ?"_s,
                                         u"commit"_s}));
    m_till->boxes.answerTheRest([](const QString &) { return Answer::No; });
    m_fuss->texts.clear();
    QCOMPARE(m_payments->pay(exactCash(*m_payments->sum())), CounterAnswer::Declined);
    QCOMPARE(m_fuss->texts, (QStringList{u"begin"_s, insert, u"commit"_s,
                                         u"delete from HarrowbyPayment where PaymentID = ? and PurchaseID = ''"_s}));
    m_fuss->texts.clear();
    endRun();
    QCOMPARE(m_fuss->texts, QStringList{u"update HarrowbyRun set EndedAt = ? where Run in (?)"_s});
    m_fuss->texts.clear();
    startRun();
    QCOMPARE(m_fuss->texts,
             (QStringList{u"select Run, Drawer, Since, StartedAt, Locked from HarrowbyRun where EndedAt = '' "
                          "order by Run"_s,
                          u"begin"_s, u"select max(Run) from HarrowbyRun"_s,
                          u"insert into HarrowbyRun (Run, Drawer, Since, StartedAt, EndedAt, Locked) "
                          "values (?, ?, ?, ?, '', ?)"_s,
                          u"commit"_s}));
}

void PaymentsTroubleTest::eachStatementFailsAndTheSaleGoesOn_data()
{
    QTest::addColumn<int>("failAt");
    for (int failAt = 0; failAt < 10; ++failAt)
        QTest::addRow("%d", failAt) << failAt;
}

void PaymentsTroubleTest::eachStatementFailsAndTheSaleGoesOn()
{
    QFETCH(const int, failAt);
    m_fuss->texts.clear();
    m_fuss->failAt = failAt;
    paySome();
    m_fuss->failAt = -1;
    QCOMPARE(m_failures, QStringList{u"The payment of a purchase was not recorded."_s});
    QCOMPARE(m_till->cart(), QStringList());
    QCOMPARE(m_told.size(), 1);
    // What was not written then is written with the next sale.
    laterBy(1);
    purchasePlainly();
    QCOMPARE(sums(), u"650 of 650"_s);
    QCOMPARE(file().rows(u"SELECT State, Way, Amount FROM HarrowbyPayment ORDER BY Amount DESC"_s),
             (QStringList{u"PAID|Card|300"_s, u"PAID|Cash|250"_s, u"PAID|Cash|100"_s}));
    QCOMPARE(m_failures.size(), 1);
}

void PaymentsTroubleTest::whatFailsToTheEndIsSettledByTheNextStart()
{
    m_fuss->failAll = true;
    paySome();
    laterBy(1);
    purchasePlainly();
    QCOMPARE(m_till->cart(), QStringList());
    QCOMPARE(m_told.size(), 2);
    QVERIFY(!m_failures.isEmpty());
    m_failures.clear();
    endRun();
    m_fuss->failAll = false;
    QCOMPARE(sums(), u"650 of 0"_s);
    startRun();
    QCOMPARE(sums(), u"650 of 650"_s);
    QCOMPARE(file().rows(u"SELECT DISTINCT Way, Origin FROM HarrowbyPayment"_s), QStringList{u"Cash|2"_s});
}

void PaymentsTroubleTest::undoThatCannotBeWrittenIsWrittenLater()
{
    paySome();
    m_told.clear();
    m_fuss->failAll = true;
    m_till->click("Command25");
    takeEvents();
    m_fuss->failAll = false;
    QCOMPARE(sums(), u"0 of 400"_s);
    QCOMPARE(m_failures, QStringList{u"The payment of a purchase was not recorded."_s});
    m_till->boxes.answerTheRest([](const QString &) { return Answer::Yes; });
    laterBy(1);
    QCOMPARE(counter().purchase(), CounterAnswer::Done); // of what the undo has put into the cart
    takeEvents();
    QCOMPARE(sums(), u"400 of 400"_s);
    QCOMPARE(file().rows(u"SELECT State, sum(Amount) FROM HarrowbyPayment GROUP BY State ORDER BY State"_s),
             (QStringList{u"BACK|400"_s, u"PAID|400"_s}));
}

void PaymentsTroubleTest::undoneBeforeItsPaymentIsWritten()
{
    m_fuss->failAll = true;
    paySome();
    m_till->click("Command25");
    takeEvents();
    m_fuss->failAll = false;
    laterBy(1);
    QCOMPARE(counter().purchase(), CounterAnswer::Done);
    takeEvents();
    QCOMPARE(sums(), u"400 of 400"_s);
    QCOMPARE(file().rows(
                 u"SELECT State, BackWhy, sum(Amount) FROM HarrowbyPayment GROUP BY State, BackWhy ORDER BY State"_s),
             (QStringList{u"BACK|GONE|400"_s, u"PAID||400"_s}));
}

void PaymentsTroubleTest::rowThatWasNotWrittenHasNoPayment()
{
    file().sql(u"CREATE TRIGGER no BEFORE INSERT ON PurchaseCart BEGIN SELECT RAISE(ABORT, 'no'); END"_s);
    paySome();
    purchasePlainly();
    QCOMPARE(payments(), QStringList());
    QCOMPARE(m_told, QStringList());
    endRun();
    QCOMPARE(file().cell(u"SELECT EndedAt <> '' FROM HarrowbyRun"_s), u"1"_s);
}

void PaymentsTroubleTest::rowThatIsNotKnownKeepsItsIntent_data()
{
    QTest::addColumn<bool>("isThere");
    QTest::addColumn<QString>("becomes");
    QTest::newRow("it was written") << true << u"PAID|Card|1, PAID|Cash|1"_s;
    QTest::newRow("it was not written") << false << u"UNMATCHED|Card|0, UNMATCHED|Cash|0"_s;
}

void PaymentsTroubleTest::rowThatIsNotKnownKeepsItsIntent()
{
    QFETCH(const bool, isThere);
    m_till->connection->losesCommits = true;
    m_till->connection->mayHave = true;
    paySome();
    QCOMPARE(file().rows(u"SELECT State, Amount FROM HarrowbyPayment"_s),
             (QStringList{u"INTENT|300"_s, u"INTENT|100"_s}));
    QCOMPARE(m_told.size(), 1); // the customer has paid, and gets the change
    m_till->connection->losesCommits = false;
    if (isThere)
        file().sql(u"INSERT INTO PurchaseCart VALUES ('HV1', '1 x B2  |  HONEY = 4.00', 1, 4, '180305140709', "
                   "'ADMINISTRATOR')"_s);
    laterBy(24 * 60 * 60); // the run does not move on without it
    purchasePlainly();
    endRun();
    QCOMPARE(file().cell(u"SELECT EndedAt FROM HarrowbyRun"_s), QString());
    startRun();
    QTEST(file().rows(u"SELECT State, Way, Origin FROM HarrowbyPayment WHERE Total = 400"_s).join(u", "_s), "becomes");
    QCOMPARE(sums(), isThere ? u"650 of 650"_s : u"250 of 250"_s);
}

void PaymentsTroubleTest::sumWithoutCentsIsSoldWithoutPayment()
{
    file().addItem(u"H"_s, u"HUGE"_s, 1e20, 5);
    fillCart(u"H"_s);
    QCOMPARE(m_payments->sum(), std::nullopt);
    QCOMPARE(m_payments->pay(exactCash(1)), CounterAnswer::Failed);
    answerQuestion(Answer::Yes);
    QCOMPARE(counter().purchase(), CounterAnswer::Done);
    takeEvents();
    QCOMPARE(file().cell(u"SELECT count(*) FROM PurchaseCart"_s), u"1"_s);
    QCOMPARE(payments(), QStringList());
    QCOMPARE(m_failures, QStringList());
    killRun();
    startRun();
    QCOMPARE(payments(), QStringList());
}

void PaymentsTroubleTest::threeSalesOfASecondArePaidEachAndGoTogether()
{
    purchasePlainly();
    purchasePlainly();
    paySome(); // HE, as the second one
    const QString shared = file().cell(u"SELECT min(PurchaseID) FROM PurchaseCart"_s);
    QVERIFY(shared.startsWith(u"HE"_s));
    QCOMPARE(file().rows(
                 u"SELECT PurchaseID = '%1', Way, Amount FROM HarrowbyPayment ORDER BY %2"_s.arg(shared, rowPlace())),
             (QStringList{u"0|Cash|250"_s, u"1|Cash|250"_s, u"1|Card|300"_s, u"1|Cash|100"_s}));
    m_told.clear();
    answerQuestion(Answer::Yes);
    m_till->click("Command25");
    takeEvents();
    QCOMPARE(m_told, QStringList{u"back %1: 350 Card 300/300"_s.arg(shared)});
    QCOMPARE(sums(), u"250 of 250"_s);
    laterBy(1);
    // The cart has one of the two again; deleting the other sale empties it.
    m_till->chooseTab("TabStrip1", WorkArea::ReorderStock);
    m_till->setText("Combo17", file().cell(u"SELECT PurchaseID FROM PurchaseCart"_s));
    m_told.clear();
    m_till->click("Command4");
    takeEvents();
    QCOMPARE(m_told.size(), 1);
    QCOMPARE(file().rows(u"SELECT DISTINCT State, BackWhy FROM HarrowbyPayment ORDER BY BackWhy"_s),
             (QStringList{u"BACK|DELETED"_s, u"BACK|UNDONE"_s}));
}

void PaymentsTroubleTest::purchaseThatIsGoneAlreadyIsTakenBack()
{
    fillCart();
    answerQuestion(Answer::Yes);
    QCOMPARE(counter().purchase(), CounterAnswer::Done);
    // Another till undoes its own one of this ID, and sells again in that second, before this one has heard of its
    // sale.
    file().sql(u"UPDATE PurchaseCart SET PurchasedItemsCost = 4"_s);
    takeEvents();
    QCOMPARE(file().rows(u"SELECT State, BackWhy, Amount FROM HarrowbyPayment"_s), QStringList{u"BACK|GONE|250"_s});
    QVERIFY(file().cell(u"SELECT BackAt FROM HarrowbyPayment"_s).startsWith(u"2018-03-05"_s));
    QCOMPARE(m_failures, QStringList());
}

void PaymentsTroubleTest::saleOfAnotherTillUnderThatIdStaysPaid()
{
    purchasePlainly();
    m_told.clear();
    const QString id = onePurchase();
    Q_EMIT counter().purchaseUndone(id); // the row that is there is another till's, of the same second and sum
    QCOMPARE(m_told, QStringList());
    QCOMPARE(sums(), u"250 of 250"_s);
    file().sql(u"UPDATE PurchaseCart SET PurchasedItemsCost = 4; "
               "INSERT INTO HarrowbyPayment SELECT 'other', 1, PurchaseID, State, Way, 400, 400, 400, Items, Seller, "
               "TakenAt, Drawer, 2, 0, '', '' FROM HarrowbyPayment"_s);
    Q_EMIT counter().purchaseUndone(id);
    QCOMPARE(m_told, QStringList{u"back %1: 250"_s.arg(id)});
    QCOMPARE(sums(), u"400 of 400"_s);
}

void PaymentsTroubleTest::purchaseOfALogoutIsPaid()
{
    fillCart();
    answerQuestion(Answer::Yes);
    m_till->click("Command27");
    takeEvents();
    QCOMPARE(sums(), u"250 of 250"_s);
    QCOMPARE(payments().first().section(u'|', 6, 6), u"ADMINISTRATOR"_s);
}

void PaymentsTroubleTest::oddTextsAreMatched_data()
{
    QTest::addColumn<QString>("items");
    QTest::newRow("quotes") << u"1 x Q'1  |  O'HARA\"S = 2.50"_s;
    if (!harrowby::test::shopsAreOnAServer()) // which holds none
        QTest::newRow("NUL") << u"1 x N"_s + QChar(u'\0') + u"1  |  NUL' or 1 = 2.50"_s;
    QTest::newRow("joints") << u"1 x A  |  B, 2 x C  |  D = 1.00 = 2.50"_s;
    QTest::newRow("percent and stars") << u"1 x %  |  100 % * _ = 2.50"_s;
    QTest::newRow("any script") << u"1 x \u05d0\u202e  |  STRASSE \u00df \U0001f375 = 2.50"_s;
    QTest::newRow("nothing") << QString();
    QTest::newRow("long") << QString(100'000, u'x');
}

void PaymentsTroubleTest::oddTextsAreMatched()
{
    QFETCH(const QString, items);
    paySome();
    QVERIFY(m_records
                ->write(kept::payment(),
                        {u"update HarrowbyPayment set State = 'INTENT', PurchaseID = '', Items = ?"_s, {items}})
                .has_value());
    QVERIFY(m_records->write(kept::payment(), {u"update PurchaseCart set PurchasedItems = ?"_s, {items}}).has_value());
    m_fuss->failAll = true;
    endRun();
    m_fuss->failAll = false;
    startRun();
    QCOMPARE(file().rows(u"SELECT State, Way, Origin FROM HarrowbyPayment ORDER BY Way"_s),
             (QStringList{u"PAID|Card|1"_s, u"PAID|Cash|1"_s}));
}

void PaymentsTroubleTest::runWithoutItsLockIsToldOnce()
{
    endRun();
    const QString path = FileRunLocks(locksPath()).path();
    QVERIFY(QDir().mkdir(path)); // as what cannot be written is for whoever may write everything
    startRun();
    QCOMPARE(m_told, QStringList{u"no lock"_s});
    QCOMPARE(file().cell(u"SELECT Locked FROM HarrowbyRun WHERE Run = 2"_s), u"0"_s);
    purchasePlainly();
    QCOMPARE(sums(), u"250 of 250"_s);
    QCOMPARE(m_told.count(u"no lock"_s), 1);
    // Nobody knows whether the others live: nothing of theirs is settled.
    file().sql(u"UPDATE HarrowbyRun SET EndedAt = '' WHERE Run = 1"_s);
    Settlement(*m_records, m_locks.get(), {2, u"Front"_s}).settle(m_till->clock->now());
    QCOMPARE(file().cell(u"SELECT EndedAt FROM HarrowbyRun WHERE Run = 1"_s), QString());
}

void PaymentsTroubleTest::thousandsOfDeadIntentsAreListed()
{
    constexpr int many = 3000;
    file().sql(
        u"WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
        "INSERT INTO HarrowbyRun SELECT i, 'Front', '180305140709', '2018-03-05T14:07:09.000Z', '', 1 FROM n; "
        "WITH RECURSIVE n(i) AS (SELECT 100 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
        "INSERT INTO HarrowbyPayment SELECT 'p' || i, 1, '', 'INTENT', 'Cash', 250, 300, 250, '1 x A1  |  TEA = 2.50', "
        "'ADMINISTRATOR', '2018-03-05T14:07:09.000Z', 'Front', i, 0, '', '' FROM n; "
        "INSERT INTO PurchaseCart VALUES ('HV1', '1 x A1  |  TEA = 2.50', 1, 2.5, '180305140709', 'ADMINISTRATOR')"_s
            .arg(many + 99));
    endRun();
    startRun();
    QCOMPARE(sums(), u"250 of 250"_s);
    QCOMPARE(OpenIntents(*m_records).list()->size(), many - 1);
    QCOMPARE(file().cell(u"SELECT count(*) FROM HarrowbyRun WHERE EndedAt = ''"_s), u"1"_s);
    QCOMPARE(m_failures, QStringList());
}

HARROWBY_TEST(app_payments_trouble_test, PaymentsTroubleTest)
#include "payments_trouble_test.moc"
