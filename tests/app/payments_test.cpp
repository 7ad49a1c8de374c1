// SPDX-License-Identifier: MIT
#include "app/cash/drawer_name.h"
#include "app/cash/money.h"
#include "platform/boxes.h"
#include "tests/app/cash_till.h"
#include "tests/program/test_program.h"

#include <QSysInfo>
#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// How the purchases of a till are paid, at the real window over a real file. What a start settles is in
/// settlement_test.cpp.
class PaymentsTest : public CashTill
{
    Q_OBJECT

private Q_SLOTS:
    void centsOfAnAmount_data();
    void centsOfAnAmount();
    void centsAreWritten_data();
    void centsAreWritten();
    void drawerIsCalled_data();
    void drawerIsCalled();
    void purchaseWithoutCashCountsAsCashExact();
    void paymentIsWrittenBeforeAndCompletedAfterwards();
    void twoWaysAreTwoRows();
    void answerNoLeavesNothing();
    void partsThatDoNotAddUpArePaidForNothing();
    void intentOfAnotherSumIsNotTaken();
    void undoneSaleTakesItsPaymentsBack();
    void runMovesOnWithTheDays();
    void endedRunIsNoted();
};

void PaymentsTest::centsOfAnAmount_data()
{
    QTest::addColumn<double>("amount");
    QTest::addColumn<qint64>("cents");
    constexpr qint64 none = std::numeric_limits<qint64>::min();
    QTest::newRow("nothing") << 0.0 << qint64{0};
    QTest::newRow("price") << 99.99 << qint64{9999};
    QTest::newRow("below nothing") << -2.5 << qint64{-250};
    QTest::newRow("half to even, down") << 0.125 << qint64{12};
    QTest::newRow("half to even, up") << 0.375 << qint64{38};
    QTest::newRow("0.015 lies below the half") << 0.015 << qint64{1};
    QTest::newRow("0.025 lies above it") << 0.025 << qint64{3};
    QTest::newRow("largest") << 90071992547409.92 << qint64{9007199254740992};
    QTest::newRow("too large") << 90071992547410.0 << none;
    QTest::newRow("huge") << 1e300 << none;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << none;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << none;
}

void PaymentsTest::centsOfAnAmount()
{
    QFETCH(const double, amount);
    QFETCH(const qint64, cents);
    QCOMPARE(static_cast<qint64>(centsOf(amount).value_or(std::numeric_limits<Cents>::min())), cents);
}

void PaymentsTest::centsAreWritten_data()
{
    QTest::addColumn<qint64>("cents");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << qint64{0} << u"0.00"_s;
    QTest::newRow("5") << qint64{5} << u"0.05"_s;
    QTest::newRow("-5") << qint64{-5} << u"-0.05"_s;
    QTest::newRow("-123450") << qint64{-123450} << u"-1,234.50"_s;
    QTest::newRow("most") << qint64{9007199254740992} << u"90,071,992,547,409.92"_s;
}

void PaymentsTest::centsAreWritten()
{
    QFETCH(const qint64, cents);
    QTEST(centsText(cents), "text");
}

void PaymentsTest::drawerIsCalled_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("saved");
    QTest::addColumn<QString>("name");
    const QString machine = drawerNameOf(QSysInfo::machineHostName());
    QTest::newRow("by the command line") << u" Front  desk "_s << u"Back"_s << u"Front desk"_s;
    QTest::newRow("by what is saved") << QString() << u"Back"_s << u"Back"_s;
    QTest::newRow("as the machine") << QString() << u" "_s << (machine.isEmpty() ? u"Till"_s : machine);
    QTest::newRow("control characters are nothing") << QString(QChar(u'\a')) << u"Back"_s << u"Back"_s;
    QTest::newRow("at most 40 characters") << QString(100, u'x') << QString() << QString(40, u'x');
}

void PaymentsTest::drawerIsCalled()
{
    QFETCH(const QString, option);
    QFETCH(const QString, saved);
    const OfficeSettings settings = {[&](const QString &section, const QString &key, const QString &) {
                                         return section == u"Cash"_s && key == u"Drawer"_s ? saved : QString();
                                     },
                                     {}};
    QTEST(drawerName(option, settings), "name");
}

void PaymentsTest::purchaseWithoutCashCountsAsCashExact()
{
    purchasePlainly();
    const QString id = onePurchase();
    QCOMPARE(payments(), QStringList{u"PAID|%1|Cash|250|250|250|ADMINISTRATOR|Front|1|0"_s.arg(id)});
    QCOMPARE(m_told, QStringList{u"paid %1: Cash 250/250 of 250, change 0"_s.arg(id)});
    QCOMPARE(sums(), u"250 of 250"_s);
}

void PaymentsTest::paymentIsWrittenBeforeAndCompletedAfterwards()
{
    fillCart();
    fillCart(u"B2"_s);
    QCOMPARE(m_payments->sum(), std::optional<Cents>(650));
    QStringList inTheQuestion;
    answerQuestion(Answer::Yes, [&] { inTheQuestion = payments(); });
    QCOMPARE(m_payments->pay({{cashWay(), 650, 1000}}), CounterAnswer::Done);
    takeEvents();
    QCOMPARE(inTheQuestion, QStringList{u"INTENT||Cash|650|1000|650|ADMINISTRATOR|Front|1|0"_s});
    const QString id = onePurchase();
    QCOMPARE(payments(), QStringList{u"PAID|%1|Cash|650|1000|650|ADMINISTRATOR|Front|1|0"_s.arg(id)});
    QCOMPARE(m_told, QStringList{u"paid %1: Cash 650/1000 of 650, change 350"_s.arg(id)});
}

void PaymentsTest::twoWaysAreTwoRows()
{
    fillCart(u"B2"_s);
    answerQuestion(Answer::Yes);
    QCOMPARE(m_payments->pay({{cardWay(), 300, 300}, {cashWay(), 100, 500}}), CounterAnswer::Done);
    takeEvents();
    const QString id = onePurchase();
    QCOMPARE(payments(), (QStringList{u"PAID|%1|Card|300|300|400|ADMINISTRATOR|Front|1|0"_s.arg(id),
                                      u"PAID|%1|Cash|100|500|400|ADMINISTRATOR|Front|1|0"_s.arg(id)}));
    QCOMPARE(m_told, QStringList{u"paid %1: Card 300/300 + Cash 100/500 of 400, change 400"_s.arg(id)});
}

void PaymentsTest::answerNoLeavesNothing()
{
    fillCart();
    payCash(500, Answer::No);
    QCOMPARE(payments(), QStringList());
    QCOMPARE(m_told, QStringList());
    QCOMPARE(m_till->cart().size(), 1);
    purchasePlainly(); // and the next one is not that one's
    QCOMPARE(payments().size(), 1);
    QCOMPARE(sums(), u"500 of 500"_s);
}

void PaymentsTest::partsThatDoNotAddUpArePaidForNothing()
{
    fillCart();
    const QList<QList<PaymentPart>> wrong = {{},
                                             {{cashWay(), 200, 200}},
                                             {{cashWay(), 250, 200}},
                                             {{cardWay(), 250, 300}},
                                             {{QString(), 250, 250}},
                                             {{cashWay(), 125, 125}, {cardWay(), 126, 126}}};
    for (const QList<PaymentPart> &parts : wrong) {
        QCOMPARE(m_payments->pay(parts), CounterAnswer::Failed);
    }
    QCOMPARE(payments(), QStringList());
    QCOMPARE(m_till->cart().size(), 1);
}

void PaymentsTest::intentOfAnotherSumIsNotTaken()
{
    fillCart();
    CounterPurchase other;
    answerQuestion(Answer::Yes, [&] {
        other = {u"HV1"_s, u"1 X A1  |  TEA = 2.50"_s, u"ADMINISTRATOR"_s, 9, {}, CounterPurchase::Row::Written};
        Q_EMIT counter().purchased(other);
    });
    QCOMPARE(m_payments->pay({{cardWay(), 250, 250}}), CounterAnswer::Done);
    takeEvents();
    QCOMPARE(file().rows(u"SELECT State, Way, Amount FROM HarrowbyPayment ORDER BY Amount"_s),
             (QStringList{u"PAID|Cash|250"_s, u"BACK|Cash|900"_s}));
}

void PaymentsTest::undoneSaleTakesItsPaymentsBack()
{
    fillCart(u"B2"_s);
    answerQuestion(Answer::Yes);
    QCOMPARE(m_payments->pay({{cardWay(), 300, 300}, {cashWay(), 100, 500}}), CounterAnswer::Done);
    takeEvents();
    const QString id = onePurchase();
    m_told.clear();
    m_till->click("Command25");
    takeEvents();
    QCOMPARE(m_told, QStringList{u"back %1: 100 Card 300/300"_s.arg(id)});
    QCOMPARE(file().rows(u"SELECT DISTINCT State, BackWhy, BackAt FROM HarrowbyPayment"_s),
             QStringList{u"BACK|UNDONE|"_s + recordTime(m_till->clock->now())});
    QCOMPARE(sums(), u"0 of 0"_s);
}

void PaymentsTest::runMovesOnWithTheDays()
{
    const QString since = u"SELECT Since FROM HarrowbyRun"_s;
    laterBy(60);
    purchasePlainly();
    QCOMPARE(file().cell(since), u"180305140709"_s);
    laterBy(24 * 60 * 60);
    m_fuss->failAll = true;
    purchasePlainly();
    m_fuss->failAll = false;
    QCOMPARE(file().cell(since), u"180305140709"_s); // that one has to be looked for yet
    laterBy(60);
    purchasePlainly();
    QCOMPARE(file().cell(since), u"180306140909"_s);
    laterBy(-48 * 60 * 60); // the clock goes back, and somebody sells
    fillCart();
    QCOMPARE(file().cell(since), u"180304140909"_s);
}

void PaymentsTest::endedRunIsNoted()
{
    QCOMPARE(file().rows(u"SELECT Run, Drawer, Since, EndedAt = '', Locked FROM HarrowbyRun"_s),
             QStringList{u"1|Front|180305140709|1|1"_s});
    endRun();
    QCOMPARE(file().cell(u"SELECT EndedAt FROM HarrowbyRun"_s), recordTime(m_till->clock->now()));
}

HARROWBY_TEST(app_payments_test, PaymentsTest)
#include "payments_test.moc"
