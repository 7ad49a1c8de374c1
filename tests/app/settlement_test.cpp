// SPDX-License-Identifier: MIT
#include "app/cash/open_intents.h"
#include "app/cash/settlement.h"
#include "app/shop/schema.h"
#include "platform/boxes.h"
#include "tests/app/cash_till.h"
#include "tests/program/test_program.h"

#include <QRegularExpression>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// What a start does about runs of the till that were killed, and what it leaves to a person.
class SettlementTest : public CashTill
{
    Q_OBJECT

private Q_SLOTS:
    void nothingIsWrittenWithoutDeadRuns();
    void intentFindsItsPurchase();
    void purchaseWithoutIntentIsCounted();
    void intentWithoutPurchaseIsListed();
    void nearestIntentIsTaken();
    void intentOfAnotherDayIsNotTaken();
    void clockThatWentBackHidesNothing();
    void livingRunIsLeftAlone();
    void runThatMayLiveIsLookedAtAgain();
    void livingRunPutsItsOwnInPlaceOfTheCounted();
    void livingRunGivesAMatchedIntentBack();
    void runWithoutALockIsDeadADayLater();
    void paymentOfAGonePurchaseIsTakenBack();
    void sharedIdsArePaidEach();
    void storeThatFailsIsLeftToTheNextStart();
    void sumsWithoutCentsAreLeftAlone();
    void drawerIsThatOfTheDeadRun();
    void manyDeadRunsTakeFewStatements();
    void noStatementReadsAWholeTable();
    void personCountsAnIntent();
    void personRemovesAnIntent();

private:
    void addPurchase(const QString &id, const QString &items, const QString &cost, int secondsLater = 0) const;
    void addIntent(const QString &id, std::int64_t run, int secondsLater = 0, Cents total = 250);
    void addRun(std::int64_t run, const QString &drawer = u"Front"_s, bool locked = true);
    void settle(const QString &drawer = u"Front"_s);
    /// Who has decided what about a payment without a purchase.
    [[nodiscard]] QStringList told() const
    {
        return file().rows(u"SELECT Who, What FROM HarrowbyActivity WHERE Kind = 'PaymentSettled'"_s);
    }
    [[nodiscard]] QStringList openRunNumbers() const
    {
        return file().rows(u"SELECT Run FROM HarrowbyRun WHERE EndedAt = ''"_s);
    }
};

namespace {

const auto tea = u"1 x A1  |  TEA = 2.50"_s;

} // namespace

void SettlementTest::addPurchase(const QString &id, const QString &items, const QString &cost, int secondsLater) const
{
    file().sql(u"INSERT INTO PurchaseCart VALUES (%1, %2, 1, %3, '%4', 'ADMINISTRATOR')"_s.arg(
        harrowby::test::quoted(id), harrowby::test::quoted(items), cost,
        m_till->clock->time.addSecs(secondsLater).toString(u"yyMMddHHmmss"_s)));
}

void SettlementTest::addIntent(const QString &id, std::int64_t run, int secondsLater, Cents total)
{
    Payment intent;
    intent.id = id;
    intent.parts = {{cardWay(), total, total}};
    intent.total = total;
    intent.items = tea;
    intent.seller = u"ADMINISTRATOR"_s;
    intent.taken = m_till->clock->time.addSecs(secondsLater).toUTC();
    intent.drawer = u"Front"_s;
    intent.run = run;
    QVERIFY(PaymentTable(*m_records).addIntent(intent));
}

void SettlementTest::addRun(std::int64_t run, const QString &drawer, bool locked)
{
    file().sql(u"INSERT INTO HarrowbyRun VALUES (%1, '%2', '%3', '%4', '', %5)"_s.arg(
        QString::number(run), drawer, m_till->clock->time.toString(u"yyMMddHHmmss"_s), recordTime(m_till->clock->time),
        locked ? u"1"_s : u"0"_s));
}

void SettlementTest::settle(const QString &drawer)
{
    const FileRunLocks locks(locksPath());
    Settlement(*m_records, &locks, {0, drawer}).settle(m_till->clock->now());
}

void SettlementTest::nothingIsWrittenWithoutDeadRuns()
{
    purchasePlainly();
    endRun();
    m_fuss->texts.clear();
    startRun();
    QCOMPARE(m_fuss->texts.filter(u"HarrowbyPayment"_s), QStringList());
    m_fuss->texts.clear();
    settle(); // now with the living one
    QCOMPARE(m_fuss->texts.size(), 1);
}

void SettlementTest::intentFindsItsPurchase()
{
    addRun(7);
    addIntent(u"i"_s, 7);
    addPurchase(u"HV1"_s, tea, u"2.5"_s, 40);
    settle();
    QCOMPARE(payments(), QStringList{u"PAID|HV1|Card|250|250|250|ADMINISTRATOR|Front|7|1"_s});
    QCOMPARE(openRunNumbers(), QStringList{u"1"_s});
}

void SettlementTest::purchaseWithoutIntentIsCounted()
{
    addRun(7);
    addPurchase(u"HV1"_s, u"1 x B2  |  HONEY = 4.00"_s, u"4"_s, 40);
    settle();
    settle(); // once is enough
    QCOMPARE(payments(), QStringList{u"PAID|HV1|Cash|400|400|400|ADMINISTRATOR|Front|7|2"_s});
    QCOMPARE(sums(), u"400 of 400"_s);
}

void SettlementTest::intentWithoutPurchaseIsListed()
{
    addRun(7);
    addIntent(u"i"_s, 7);
    settle();
    QCOMPARE(payments(), QStringList{u"UNMATCHED||Card|250|250|250|ADMINISTRATOR|Front|7|0"_s});
    const auto listed = OpenIntents(*m_records).list();
    QCOMPARE(listed->size(), 1);
    QCOMPARE(listed->constFirst().items, tea);
    QCOMPARE(listed->constFirst().parts, (QList<PaymentPart>{{cardWay(), 250, 250}}));
    QCOMPARE(listed->constFirst().taken, m_till->clock->time.toUTC());
    // It is the person's now, whatever is sold later.
    addRun(8);
    addPurchase(u"HV1"_s, tea, u"2.5"_s, 40);
    settle();
    QCOMPARE(payments(), (QStringList{u"UNMATCHED||Card|250|250|250|ADMINISTRATOR|Front|7|0"_s,
                                      u"PAID|HV1|Cash|250|250|250|ADMINISTRATOR|Front|8|2"_s}));
}

void SettlementTest::nearestIntentIsTaken()
{
    addRun(7);
    addRun(8);
    addIntent(u"early"_s, 7);
    addIntent(u"near"_s, 8, 100);
    addIntent(u"late"_s, 8, 300);
    addIntent(u"other sum"_s, 8, 120, 251);
    addPurchase(u"HV1"_s, tea, u"2.5"_s, 120);
    settle();
    QCOMPARE(file().rows(u"SELECT PaymentID, State, PurchaseID FROM HarrowbyPayment ORDER BY TakenAt"_s),
             (QStringList{u"early|UNMATCHED|"_s, u"near|PAID|HV1"_s, u"other sum|UNMATCHED|"_s, u"late|UNMATCHED|"_s}));
}

void SettlementTest::intentOfAnotherDayIsNotTaken()
{
    addRun(7);
    addIntent(u"i"_s, 7);
    addPurchase(u"HV1"_s, tea, u"2.5"_s, 24 * 60 * 60 + 1);
    settle();
    QCOMPARE(payments().first().section(u'|', 0, 2), u"UNMATCHED||Card"_s);
    QCOMPARE(sums(), u"250 of 250"_s);
}

void SettlementTest::clockThatWentBackHidesNothing()
{
    laterBy(-3 * 24 * 60 * 60);
    fillCart(); // the run hears of it
    killRun();
    answerQuestion(Answer::Yes);
    QCOMPARE(counter().purchase(), CounterAnswer::Done);
    takeEvents();
    laterBy(3 * 24 * 60 * 60);
    startRun();
    QCOMPARE(sums(), u"250 of 250"_s);
    QCOMPARE(payments().first().section(u'|', 2, 9), u"Cash|250|250|250|ADMINISTRATOR|Front|1|2"_s);
}

/// As on a server that has just come back: whose lock is free may be about to take it again.
void SettlementTest::runThatMayLiveIsLookedAtAgain()
{
    class TurnedLocks final : public RunLocks
    {
    public:
        Holder holder = Holder::NotKnown;
        Result<void, QString> hold(std::int64_t) override { return {}; }
        [[nodiscard]] Holder holderOf(std::int64_t) const override { return holder; }
    };
    endRun();
    addRun(7);
    addPurchase(u"HV1"_s, tea, u"2.5"_s, 40);
    const auto locks = std::make_shared<TurnedLocks>();
    Payments start(counter(), *m_records, CashStation{u"Front"_s, locks, [this] { return m_till->clock->now(); }, 0});
    takeEvents();
    QCOMPARE(payments(), QStringList());
    locks->holder = RunLocks::Holder::Somebody;
    start.settleAgain();
    locks->holder = RunLocks::Holder::Nobody;
    m_fuss->texts.clear();
    start.settleAgain(); // all was settled: nothing is asked any more
    QCOMPARE(m_fuss->texts, QStringList());
    QCOMPARE(payments(), QStringList());

    Payments next(counter(), *m_records, CashStation{u"Front"_s, locks, [this] { return m_till->clock->now(); }, 0});
    locks->holder = RunLocks::Holder::NotKnown;
    takeEvents();
    locks->holder = RunLocks::Holder::Nobody;
    next.settleAgain();
    QCOMPARE(sums(), u"250 of 250"_s);
    QVERIFY(!openRunNumbers().contains(u"7"_s));
}

void SettlementTest::livingRunIsLeftAlone()
{
    addRun(7);
    fillCart();
    // Another till is started while this one asks, and again when the purchase is made but not heard of.
    // Meanwhile a purchase of the same is made by a till that is killed before it can say so.
    answerQuestion(Answer::Yes, [this] {
        addPurchase(u"HV1"_s, tea, u"2.5"_s);
        settle();
        QCOMPARE(sums(), u"250 of 250"_s);
        file().sql(u"DELETE FROM PurchaseCart; DELETE FROM HarrowbyPayment WHERE State = 'PAID'"_s);
    });
    QCOMPARE(m_payments->pay({{cashWay(), 250, 300}}), CounterAnswer::Done);
    addRun(8);
    settle();
    // Whose it is cannot be known, so it counts as paid until then.
    QCOMPARE(payments(), (QStringList{u"INTENT||Cash|250|300|250|ADMINISTRATOR|Front|1|0"_s,
                                      u"PAID|%1|Cash|250|250|250|ADMINISTRATOR|Front|8|2"_s.arg(onePurchase())}));
    takeEvents();
    QCOMPARE(payments(), QStringList{u"PAID|%1|Cash|250|300|250|ADMINISTRATOR|Front|1|0"_s.arg(onePurchase())});
}

void SettlementTest::livingRunPutsItsOwnInPlaceOfTheCounted()
{
    addRun(7, u"Back"_s);
    fillCart();
    answerQuestion(Answer::Yes);
    QCOMPARE(counter().purchase(), CounterAnswer::Done);
    settle(u"Side"_s); // before this till has heard of its purchase
    QCOMPARE(payments(), QStringList{u"PAID|%1|Cash|250|250|250|ADMINISTRATOR|Back|7|2"_s.arg(onePurchase())});
    takeEvents();
    QCOMPARE(payments(), QStringList{u"PAID|%1|Cash|250|250|250|ADMINISTRATOR|Front|1|0"_s.arg(onePurchase())});
}

void SettlementTest::livingRunGivesAMatchedIntentBack()
{
    addRun(7);
    addIntent(u"i"_s, 7);
    fillCart();
    answerQuestion(Answer::Yes);
    QCOMPARE(counter().purchase(), CounterAnswer::Done);
    settle();
    takeEvents();
    QCOMPARE(payments(), (QStringList{u"UNMATCHED||Card|250|250|250|ADMINISTRATOR|Front|7|0"_s,
                                      u"PAID|%1|Cash|250|250|250|ADMINISTRATOR|Front|1|0"_s.arg(onePurchase())}));
    QCOMPARE(OpenIntents(*m_records).list()->constFirst().items, tea);
}

void SettlementTest::runWithoutALockIsDeadADayLater()
{
    addRun(7, u"Front"_s, false);
    addIntent(u"i"_s, 7);
    settle();
    QCOMPARE(payments().first().section(u'|', 0, 0), u"INTENT"_s);
    laterBy(24 * 60 * 60 + 1);
    settle();
    QCOMPARE(payments().first().section(u'|', 0, 0), u"UNMATCHED"_s);
}

void SettlementTest::paymentOfAGonePurchaseIsTakenBack()
{
    purchasePlainly();
    laterBy(1);
    purchasePlainly();
    file().sql(u"DELETE FROM PurchaseCart WHERE PurchaseID = '%1'"_s.arg(onePurchase()));
    addRun(7);
    settle();
    QCOMPARE(file().rows(u"SELECT State, BackWhy FROM HarrowbyPayment ORDER BY PurchaseID"_s),
             (QStringList{u"PAID|"_s, u"BACK|GONE"_s}));
    QCOMPARE(sums(), u"250 of 250"_s);
}

void SettlementTest::sharedIdsArePaidEach()
{
    addRun(7);
    addIntent(u"i"_s, 7);
    addPurchase(u"HE1"_s, tea, u"2.5"_s, 1);
    addPurchase(u"HE1"_s, u"1 x B2  |  HONEY = 4.00"_s, u"4"_s, 1);
    addPurchase(u"HE1"_s, u"1 x B2  |  HONEY = 4.00"_s, u"4"_s, 1);
    settle();
    QCOMPARE(sums(), u"1050 of 1050"_s);
    QCOMPARE(payments().size(), 3);
    // One of them has lost its payment, and another has one too many.
    file().sql(u"DELETE FROM HarrowbyPayment WHERE Total = 250; "
               "UPDATE HarrowbyPayment SET PurchaseID = 'HE1'; "
               "DELETE FROM PurchaseCart WHERE rowid = (SELECT max(rowid) FROM PurchaseCart); "
               "DELETE FROM PurchaseCart WHERE rowid = (SELECT max(rowid) FROM PurchaseCart)"_s);
    addRun(8);
    settle();
    QCOMPARE(sums(), u"250 of 250"_s);
    QCOMPARE(file().cell(u"SELECT count(*) FROM HarrowbyPayment WHERE State = 'BACK'"_s), u"2"_s);
}

void SettlementTest::storeThatFailsIsLeftToTheNextStart()
{
    addRun(7);
    addIntent(u"i"_s, 7);
    addPurchase(u"HV1"_s, tea, u"2.5"_s);
    addPurchase(u"HV2"_s, u"1 x B2  |  HONEY = 4.00"_s, u"4"_s);
    addPurchase(u"HV3"_s, u"1 x B2  |  HONEY = 4.00"_s, u"4"_s);
    const QStringList before = payments();
    bool isThrough = false;
    for (int failAt = 0; !isThrough; ++failAt) {
        m_failures.clear();
        m_fuss->texts.clear();
        m_fuss->failAt = failAt;
        settle();
        m_fuss->failAt = -1;
        isThrough = m_fuss->texts.size() <= failAt;
        if (!isThrough) {
            QVERIFY(m_failures.size() <= 1);
            QCOMPARE(payments(), before);
            QCOMPARE(openRunNumbers().size(), 2);
        }
        QVERIFY(failAt < 100);
    }
    QCOMPARE(sums(), u"1050 of 1050"_s);
}

void SettlementTest::sumsWithoutCentsAreLeftAlone()
{
    addRun(7);
    addPurchase(u"HV1"_s, tea, u"9e999"_s);
    addPurchase(u"HV2"_s, tea, u"1e30"_s);
    addPurchase(u"HV3"_s, tea, u"NULL"_s);
    addPurchase(u"HV4"_s, tea, u"'x'"_s);
    addPurchase(u"HV5"_s, tea, u"-1.5"_s);
    addPurchase(u"HV6"_s, tea, u"'7.25 or so'"_s);
    addPurchase(u"HV7"_s, tea, u"x'3132'"_s);
    settle();
    QCOMPARE(file().rows(u"SELECT PurchaseID, Amount FROM HarrowbyPayment ORDER BY PurchaseID"_s),
             (QStringList{u"HV3|0"_s, u"HV4|0"_s, u"HV5|-150"_s, u"HV6|725"_s, u"HV7|1200"_s}));
    QCOMPARE(openRunNumbers(), QStringList{u"1"_s});
}

void SettlementTest::drawerIsThatOfTheDeadRun()
{
    addRun(7, u"Back"_s);
    addRun(8, u"Side"_s);
    addPurchase(u"HV1"_s, tea, u"2.5"_s);
    settle(u"Side"_s);
    QCOMPARE(payments().first().section(u'|', 7, 8), u"Side|8"_s);
}

/// A server answers each by itself.
void SettlementTest::manyDeadRunsTakeFewStatements()
{
    file().sql(
        u"WITH RECURSIVE n(i) AS (SELECT 1001 UNION ALL SELECT i + 1 FROM n WHERE i < 2100) INSERT INTO HarrowbyRun "
        "SELECT i, 'Front', '%1', '%2', '', 1 FROM n"_s.arg(m_till->clock->time.toString(u"yyMMddHHmmss"_s),
                                                            recordTime(m_till->clock->time)));
    addIntent(u"first"_s, 1001);
    addIntent(u"last"_s, 2100);
    m_fuss->texts.clear();
    settle();
    QVERIFY2(m_fuss->texts.size() < 20, qPrintable(m_fuss->texts.join(u'\n')));
    QCOMPARE(file().rows(u"SELECT count(*) FROM HarrowbyRun WHERE EndedAt = '' AND Run > 1000"_s), QStringList(u"0"_s));
    QCOMPARE(file().rows(u"SELECT State FROM HarrowbyPayment"_s), QStringList(2, u"UNMATCHED"_s));
}

void SettlementTest::noStatementReadsAWholeTable()
{
    QVERIFY(createMissingIndexes(file().handle()));
    m_fuss->texts.clear();
    addRun(7);
    addIntent(u"i"_s, 7);
    addPurchase(u"HV1"_s, tea, u"2.5"_s, 40);
    addPurchase(u"HV2"_s, u"1 x B2  |  HONEY = 4.00"_s, u"4"_s);
    settle();
    addIntent(u"open"_s, 7);
    settle();
    purchasePlainly();
    m_till->click("Command25");
    takeEvents();
    const auto open = PaymentTable(*m_records).withId(u"open"_s);
    QVERIFY(open && *open);
    (void)OpenIntents(*m_records).choicesFor(**open);
    (void)OpenIntents(*m_records).remove(u"open"_s);
    endRun();
    int looked = 0;
    for (const QString &text : std::as_const(m_fuss->texts)) {
        if (text == u"begin"_s || text == u"commit"_s)
            continue;
        const QString plan = file().rows(u"EXPLAIN QUERY PLAN "_s + text).join(u'\n');
        QVERIFY2(!plan.contains(QRegularExpression(u"SCAN (PurchaseCart|Harrowby|h\\b)"_s)),
                 qPrintable(text + u'\n' + plan));
        ++looked;
    }
    QVERIFY(looked > 20);
}

void SettlementTest::personCountsAnIntent()
{
    addRun(7);
    addIntent(u"i"_s, 7, 300, 400);
    addPurchase(u"HV1"_s, u"1 x B2  |  HONEY = 4.00"_s, u"4"_s);
    addPurchase(u"HV2"_s, tea, u"2.5"_s);
    settle();
    OpenIntents intents(*m_records, SignedDeeds(*m_records, officePlace, u"ANNA"_s));
    const Payment intent = intents.list()->constFirst();
    const auto choices = intents.choicesFor(intent);
    QCOMPARE(choices->size(), 1);
    QCOMPARE(choices->constFirst().purchaseId, u"HV1"_s);
    QCOMPARE(choices->constFirst().seller, u"ADMINISTRATOR"_s);
    QCOMPARE(intents.countFor(intent.id, u"HV2"_s), OpenIntents::Outcome::Misfit);
    QCOMPARE(intents.countFor(intent.id, u"x' or '1'='1"_s), OpenIntents::Outcome::Misfit);
    bool wasLast = false;
    for (int failAt = 0; !wasLast; ++failAt) {
        m_fuss->texts.clear();
        m_fuss->failAt = failAt;
        const auto outcome = intents.countFor(intent.id, u"HV1"_s);
        m_fuss->failAt = -1;
        wasLast = m_fuss->texts.last() == u"commit"_s;
        QVERIFY2(outcome == OpenIntents::Outcome::Failed && intents.list()->size() == 1,
                 qPrintable(m_fuss->texts.join(u'\n')));
    }
    QCOMPARE(intents.countFor(intent.id, u"HV1"_s), OpenIntents::Outcome::Done);
    QCOMPARE(intents.countFor(intent.id, u"HV1"_s), OpenIntents::Outcome::Gone);
    QCOMPARE(sums(), u"650 of 650"_s);
    QCOMPARE(file().cell(u"SELECT Way FROM HarrowbyPayment WHERE PurchaseID = 'HV1'"_s), u"Card"_s);
    QVERIFY(intents.choicesFor(intent)->isEmpty());
    QCOMPARE(told(), QStringList{u"ANNA|The payment i was counted for the purchase HV1."_s});
}

void SettlementTest::personRemovesAnIntent()
{
    addRun(7);
    addIntent(u"i"_s, 7);
    OpenIntents intents(*m_records, SignedDeeds(*m_records, officePlace, u"ANNA"_s));
    QCOMPARE(intents.remove(u"i"_s), OpenIntents::Outcome::Gone); // not listed yet
    settle();
    m_fuss->failAll = true;
    QCOMPARE(intents.remove(u"i"_s), OpenIntents::Outcome::Failed);
    m_fuss->failAll = false;
    QCOMPARE(intents.remove(u"i"_s), OpenIntents::Outcome::Done);
    QCOMPARE(intents.remove(u"i"_s), OpenIntents::Outcome::Gone);
    QVERIFY(intents.list()->isEmpty());
    QCOMPARE(told(), QStringList{u"ANNA|The payment i, which had found no purchase, was removed: nothing was sold."_s});
}

HARROWBY_TEST(app_settlement_test, SettlementTest)
#include "settlement_test.moc"
