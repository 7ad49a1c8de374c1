// SPDX-License-Identifier: MIT
#include "app/server/sale_follower.h"
#include "app/shop/failure_notice.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include <harrowby/counter.h>

#include <QLabel>
#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace std::chrono_literals;

static WriteOutcome outcomeOf(bool isDone)
{
    return isDone ? WriteOutcome::Done : WriteOutcome::Refused;
}

/// What a till on a server says and keeps of sales that fail, without a server.
class ServerTillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void cartOfWhichNothingWasWrittenComesBack();
    void cartOfALogoutComesBackWithTheNextLogin();
    void whatIsNotAsItWasIsTold();
    void linesThatWereNotWrittenAreTold();
    void purchaseThatIsMissingIsTold();
    void whatIsNotKnownIsToldAndSettled();
    void whatIsKnownByTheEndIsToldAsItIs_data();
    void whatIsKnownByTheEndIsToldAsItIs();
    void whatIsNeverKnownByTheEndIsToldOnce();
    void whatWasNotKnownIsForgotten();
    void whatNobodyCanFindOutIsTold();
    void doubtsOfTwoPurchasesAreTwo();
    void cartComesBackOnceAllIsKnownAsNotDone_data();
    void cartComesBackOnceAllIsKnownAsNotDone();
    void cartComesBackOnceItsRowIsKnownAsNotDone_data();
    void cartComesBackOnceItsRowIsKnownAsNotDone();
    void itemsOfOneIdAreToldEach();
    void heldCartsAreNamed_data();
    void heldCartsAreNamed();

private:
    /// A shop with two items, both in the cart, and what follows its sales.
    void openTill();
    void sell(const std::function<bool(const QString &)> &fails, WriteOutcome outcome = WriteOutcome::Refused,
              const char *button = "Command14");
    [[nodiscard]] QString told(const char *label) const
    {
        return m_notice->isHidden() ? QString() : m_notice->findChild<QLabel *>(QLatin1StringView(label))->text();
    }

    std::unique_ptr<FailureNotice> m_notice;
    std::unique_ptr<test::Counter> m_till;
    std::unique_ptr<SaleFollower> m_follower;
    QStringList m_back;
    WriteOutcome m_outcome = WriteOutcome::Refused;
};

void ServerTillTest::cleanup()
{
    m_follower.reset();
    m_till.reset();
    m_notice.reset();
    m_back.clear();
}

static bool isOfTheSale(const QString &statement)
{
    return statement.startsWith(u"Update"_s) || statement == u"insert PurchaseCart"_s;
}

void ServerTillTest::openTill()
{
    m_notice = std::make_unique<FailureNotice>();
    m_till = std::make_unique<test::Counter>();
    m_till->file.addItem(u"A1"_s, u"TEA"_s, 2.5, 30);
    m_till->file.addItem(u"A2"_s, u"JAM"_s, 4, 30);
    m_till->open();
    m_till->logIn();
    m_follower = std::make_unique<SaleFollower>(harrowby::Counter::instance(), *m_notice);
    connect(m_follower.get(), &SaleFollower::cartIsBack, this, [this](const QString &id) { m_back << id; });
    m_till->connection->setFailureHandler([this](const DbFailure &failure) {
        DbFailure ofServer = failure;
        ofServer.engineState = u"08006"_s;
        m_follower->note(ofServer, m_outcome);
    });
    m_till->click("Command1_0");
    m_till->click("Command1_1");
    QCOMPARE(m_till->cart(), (QStringList{u"A2  |  JAM|1|4.00"_s, u"A1  |  TEA|1|2.50"_s}));
}

void ServerTillTest::sell(const std::function<bool(const QString &)> &fails, WriteOutcome outcome, const char *button)
{
    m_outcome = outcome;
    m_till->connection->fails = fails;
    m_till->connection->mayHave = outcome == WriteOutcome::Unknown;
    m_till->boxes.answerTheRest([](const QString &) { return Answer::Yes; });
    m_till->click(button);
    m_till->connection->fails = [](const QString &) { return false; };
    QCoreApplication::processEvents();
}

void ServerTillTest::cartOfWhichNothingWasWrittenComesBack()
{
    openTill();
    const QStringList cart = m_till->cart();
    sell(isOfTheSale);
    QCOMPARE(m_till->cart(), cart);
    QCOMPARE(m_back.size(), 1);
    QCOMPARE(told("failureWork"),
             u"Nothing of the purchase %1 was sold, and its cart is kept."_s.arg(m_back.constFirst()));
    QVERIFY(told("failureAdvice").contains(u"void"_s));

    // And is sold when the server is back.
    m_notice->dismiss();
    sell([](const QString &) { return false; });
    QVERIFY(m_till->cart().isEmpty());
    QCOMPARE(m_till->file.rows(u"select StockAvailable from StockList order by StockID"_s),
             (QStringList{u"29"_s, u"29"_s}));
    QCOMPARE(m_till->file.rows(u"select count(*) from PurchaseCart"_s), QStringList{u"1"_s});
    QCOMPARE(told("failureWork"), QString());
    QCOMPARE(m_back.size(), 1);
}

void ServerTillTest::cartOfALogoutComesBackWithTheNextLogin()
{
    openTill();
    const QStringList cart = m_till->cart();
    sell(isOfTheSale, WriteOutcome::Refused, "Command27"); // logs out, with a purchase of the cart
    QVERIFY(m_till->cart().isEmpty());
    QVERIFY(told("failureWork").contains(u"its cart is kept"_s));
    m_till->logIn();
    QCoreApplication::processEvents();
    QCOMPARE(m_till->cart(), cart);
    QCOMPARE(m_back.size(), 1);
}

void ServerTillTest::whatIsNotAsItWasIsTold()
{
    openTill();
    sell(isOfTheSale, WriteOutcome::Refused, "Command27"); // logs out, with a purchase of the cart
    m_till->file.sql(u"update StockList set StockUse = 'Disabled' where StockID = 'A2'"_s);
    m_till->logIn();
    QCoreApplication::processEvents();
    QCOMPARE(m_till->cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
    const auto words = u"Not all of the purchase %1 is as it was:\nJAM: was 1 for 4.00, now \u2013 (no longer"_s;
    QVERIFY2(told("failureWork").contains(words.arg(m_back.value(0))), qPrintable(told("failureWork")));
}

void ServerTillTest::linesThatWereNotWrittenAreTold()
{
    openTill();
    sell([](const QString &text) { return text.contains(u"'A2'"_s) && text.startsWith(u"Update"_s); });
    QVERIFY(m_till->cart().isEmpty());
    QVERIFY(m_back.isEmpty());
    QVERIFY2(told("failureWork").startsWith(u"1 x JAM (A2) sold, but the stock was not lowered (purchase HV"_s),
             qPrintable(told("failureWork")));
    QVERIFY(told("failureHeading").contains(u"Not saved"_s));
}

/// Its lines are sold: there is nothing to do again.
void ServerTillTest::purchaseThatIsMissingIsTold()
{
    openTill();
    sell([](const QString &text) { return text == u"insert PurchaseCart"_s; });
    QVERIFY(m_till->cart().isEmpty());
    QVERIFY2(told("failureWork").startsWith(u"The purchase HV"_s) &&
                 told("failureWork").endsWith(u" over 6.50 was not recorded."_s),
             qPrintable(told("failureWork")));
    QCOMPARE(told("failureAdvice"), u"Write it down: the reports do not have it."_s);
}

void ServerTillTest::whatIsNotKnownIsToldAndSettled()
{
    openTill();
    sell([](const QString &text) { return text.contains(u"'A2'"_s) || text == u"insert PurchaseCart"_s; },
         WriteOutcome::Unknown);
    QVERIFY(m_till->cart().isEmpty());
    QVERIFY(m_back.isEmpty());
    QVERIFY(told("failureHeading").contains(u"Not known whether it was saved"_s));
    QVERIFY(told("failureWork").contains(u"It is not known whether the purchase was recorded."_s));
    QVERIFY(told("failureWork").contains(u"1 x JAM (A2) sold; it is not known whether the stock was lowered"_s));
    QVERIFY(told("failureAdvice").contains(u"the till finds out"_s));

    m_follower->settle(u"INSERT PurchaseCart"_s, WriteOutcome::Done);
    QVERIFY(!told("failureWork").contains(u"not known whether the purchase"_s));
    QVERIFY(told("failureWork").contains(u"Known now: the purchase was recorded."_s));
    m_notice->dismiss();
    m_follower->settle(
        u"Update Stocklist Set StockAvailable = StockAvailable - 1 where StockID = 'A2' and UPPER(StockName) = 'JAM'"_s,
        WriteOutcome::Refused);
    QCOMPARE(told("failureWork"), u"Known now: 1 x JAM (A2) was sold, but its stock was not lowered."_s);
    QVERIFY(told("failureHeading").startsWith(u"Known now"_s));
    for (const auto &[noted, named] : {std::pair(u" HV1 6.5"_s, u" HV1 over 6.50"_s), {QString(), QString()}}) {
        m_notice->dismiss();
        m_follower->settle(u"INSERT PurchaseCart"_s + noted, WriteOutcome::Refused);
        QCOMPARE(told("failureWork"), u"Known now: the purchase%1 was not recorded."_s.arg(named));
        QVERIFY(told("failureAdvice").startsWith(u"Write it down"_s));
    }
}

static bool isLowering(const QString &statement)
{
    return statement.startsWith(u"Update"_s) && statement.contains(u"StockAvailable - "_s);
}

static QString lowering(const QString &id, const QString &name)
{
    return u"Update Stocklist Set StockAvailable = StockAvailable - 1 where StockID = '%1' and UPPER(StockName) = '%2'"_s
        .arg(id, name);
}

void ServerTillTest::whatIsKnownByTheEndIsToldAsItIs_data()
{
    QTest::addColumn<bool>("isDone");
    QTest::newRow("lowered") << true;
    QTest::newRow("not lowered") << false;
}

/// The server is back before the commit has ended, as while its summary stands there: it is known what came of one
/// line, and not yet of the other.
void ServerTillTest::whatIsKnownByTheEndIsToldAsItIs()
{
    QFETCH(const bool, isDone);
    openTill();
    int lines = 0;
    const auto fails = [&](const QString &text) {
        if (isLowering(text))
            return ++lines > 0;
        if (std::exchange(lines, 0) == 2)
            m_follower->settle(lowering(u"A2"_s, u"JAM"_s), outcomeOf(isDone));
        return false;
    };
    sell(fails, WriteOutcome::Unknown);
    QCOMPARE(lines, 0);
    QVERIFY(told("failureWork").contains(u"1 x TEA (A1) sold; it is not known whether the stock was lowered"_s));
    QVERIFY(!told("failureWork").contains(u"1 x JAM (A2) sold; it is not known"_s));
    QCOMPARE(told("failureWork").contains(u"1 x JAM (A2) sold, but the stock was not lowered"_s), !isDone);
    QVERIFY(m_follower->isInDoubt());
}

/// What nobody can find out any more is said once, and not promised again with its purchase.
void ServerTillTest::whatIsNeverKnownByTheEndIsToldOnce()
{
    openTill();
    const auto fails = [&](const QString &text) {
        if (text == u"insert PurchaseCart"_s)
            m_follower->settle(lowering(u"A2"_s, u"JAM"_s), WriteOutcome::Unknown);
        return isLowering(text);
    };
    sell(fails, WriteOutcome::Unknown);
    QCOMPARE(told("failureWork").count(u"1 x JAM (A2)"_s), 1);
    QVERIFY(told("failureWork").contains(u"found out any more whether the stock of 1 x JAM (A2) was lowered."_s));
    QVERIFY(m_back.isEmpty());
}

/// Of two lines one is known now: what was said of it goes, what was said of the other stays.
void ServerTillTest::whatWasNotKnownIsForgotten()
{
    openTill();
    sell(isLowering, WriteOutcome::Unknown);
    m_follower->settle(lowering(u"A2"_s, u"JAM"_s), WriteOutcome::Done);
    QVERIFY(told("failureHeading").contains(u"Not known"_s));
    QVERIFY(!told("failureWork").contains(u"1 x JAM (A2) sold; it is not known"_s));
    QVERIFY(told("failureWork").contains(u"Known now: the stock of 1 x JAM (A2) was lowered."_s));
    QVERIFY(told("failureWork").contains(u"1 x TEA (A1) sold; it is not known"_s));
    m_follower->settle(lowering(u"A1"_s, u"TEA"_s), WriteOutcome::Done);
    QVERIFY(!told("failureWork").contains(u"it is not known"_s));
    QVERIFY2(told("failureHeading").contains(u"Known now"_s), qPrintable(told("failureHeading")));
    QVERIFY(!m_follower->isInDoubt());
}

/// Nobody looks for it any longer, and whoever waits for what becomes of it is told.
void ServerTillTest::whatNobodyCanFindOutIsTold()
{
    openTill();
    sell([](const QString &text) { return text.contains(u"'A2'"_s) || text == u"insert PurchaseCart"_s; },
         WriteOutcome::Unknown);
    m_follower->settle(u"INSERT PurchaseCart"_s, WriteOutcome::Unknown);
    m_follower->settle(lowering(u"A2"_s, u"JAM"_s), WriteOutcome::Unknown);
    QVERIFY(!m_follower->isInDoubt());
    QCOMPARE(told("failureWork"), u"It cannot be found out any more whether the purchase was recorded.\n"
                                  "It cannot be found out any more whether the stock of 1 x JAM (A2) was lowered."_s);
    QVERIFY(told("failureHeading").contains(u"Not known whether it was saved"_s));
    QVERIFY(!told("failureAdvice").contains(u"finds out"_s));
    QVERIFY(told("failureAdvice").contains(u"Have the item counted."_s));
}

/// The same line in two purchases: each answer is about one of them.
void ServerTillTest::doubtsOfTwoPurchasesAreTwo()
{
    const auto doubts = [this] { return told("failureWork").count(u"1 x TEA (A1) sold; it is not known"_s); };
    openTill();
    sell(isLowering, WriteOutcome::Unknown);
    m_till->click("Command1_1");
    m_till->clock->time = m_till->clock->time.addSecs(60);
    sell(isLowering, WriteOutcome::Unknown);
    QCOMPARE(doubts(), 2);
    m_follower->settle(lowering(u"A1"_s, u"TEA"_s), WriteOutcome::Done);
    QCOMPARE(doubts(), 1);
    m_follower->settle(lowering(u"A1"_s, u"TEA"_s), WriteOutcome::Done);
    QCOMPARE(doubts(), 0);
}

void ServerTillTest::cartComesBackOnceAllIsKnownAsNotDone_data()
{
    whatIsKnownByTheEndIsToldAsItIs_data();
}

/// One line is not known, so everything after it is refused; before the purchase is told, the server is asked.
void ServerTillTest::cartComesBackOnceAllIsKnownAsNotDone()
{
    QFETCH(const bool, isDone);
    openTill();
    const QStringList cart = m_till->cart();
    const auto fails = [&](const QString &text) {
        m_outcome = text.contains(u"'A2'"_s) ? WriteOutcome::Unknown : WriteOutcome::Refused;
        m_till->connection->mayHave = m_outcome == WriteOutcome::Unknown;
        if (text == u"insert PurchaseCart"_s)
            m_follower->settle(lowering(u"A2"_s, u"JAM"_s), outcomeOf(isDone));
        return isOfTheSale(text);
    };
    sell(fails, WriteOutcome::Refused);
    QCOMPARE(m_back.size(), isDone ? 0 : 1);
    QCOMPARE(m_till->cart(), isDone ? QStringList() : cart);
    const QStringList works = told("failureWork").split(u'\n');
    QCOMPARE(works.size(), isDone ? 2 : 1);
    QCOMPARE(works.first().startsWith(u"Nothing of the purchase"_s), !isDone);
    QCOMPARE(works.last().startsWith(u"1 x TEA (A1) sold, but the stock was not lowered"_s), isDone);
    QVERIFY(!m_follower->isInDoubt());
}

void ServerTillTest::cartComesBackOnceItsRowIsKnownAsNotDone_data()
{
    whatIsKnownByTheEndIsToldAsItIs_data();
}

/// Every line was refused, and the purchase itself is not known until its summary stands there. What else follows the
/// sale, as its payment, is told it as it is then.
void ServerTillTest::cartComesBackOnceItsRowIsKnownAsNotDone()
{
    QFETCH(const bool, isDone);
    openTill();
    const auto id = u"HV18030514070907"_s; // of that moment
    const QStringList cart = m_till->cart();
    m_till->connection->setFailureHandler([&](const DbFailure &failure) {
        m_follower->note(failure, m_outcome);
        if (m_outcome == WriteOutcome::Unknown)
            m_follower->settle(u"INSERT PurchaseCart %1 6.5"_s.arg(id), outcomeOf(isDone));
    });
    const auto fails = [&](const QString &text) {
        m_outcome = text == u"insert PurchaseCart"_s ? WriteOutcome::Unknown : WriteOutcome::Refused;
        m_till->connection->mayHave = m_outcome == WriteOutcome::Unknown;
        return isOfTheSale(text);
    };
    QSignalSpy purchased(&harrowby::Counter::instance(), &harrowby::Counter::purchased);
    sell(fails);
    const auto purchase = purchased.takeFirst().first().value<CounterPurchase>();
    QCOMPARE(purchase.id, id);
    QCOMPARE(purchase.row, isDone ? CounterPurchase::Row::Written : CounterPurchase::Row::NotWritten);
    QVERIFY(!m_follower->isInDoubt());
    QCOMPARE(m_back.size(), isDone ? 0 : 1);
    QCOMPARE(m_till->cart(), isDone ? QStringList() : cart);
    QVERIFY(!told("failureWork").contains(u"It is not known"_s));
    QCOMPARE(told("failureWork").startsWith(u"Nothing of the purchase"_s), !isDone);
    QCOMPARE(told("failureWork").contains(u"Known now: the purchase was recorded"_s), isDone);
}

/// Two items may have one ID; it is the name that tells them apart.
void ServerTillTest::itemsOfOneIdAreToldEach()
{
    openTill();
    m_till->file.addItem(u"A1"_s, u"RUM"_s, 2.5, 30);
    QCOMPARE(harrowby::Counter::instance().readAgain(), CounterAnswer::Done);
    m_till->click("Command1_1");
    QCOMPARE(m_till->cart().value(2), u"A1  |  RUM|1|2.50"_s);
    sell(isLowering);
    QVERIFY(told("failureWork").contains(u"1 x TEA (A1) sold"_s));
    QVERIFY2(told("failureWork").contains(u"1 x RUM (A1) sold"_s), qPrintable(told("failureWork")));
}

void ServerTillTest::heldCartsAreNamed_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<bool>("isDone");
    QTest::addColumn<QString>("doubt");
    QTest::addColumn<QString>("known");
    QTest::addColumn<QString>("advice");
    const QString hold = u"INSERT HarrowbyHeld was not here"_s; // the word stays as it is
    const QString recall = u"DELETE HarrowbyHeld Mary"_s;
    const auto isItHeld = u"It is not known whether the cart \"was not here\" was held."_s;
    const auto isItOff = u"It is not known whether the cart \"Mary\" was taken off the list of held carts."_s;
    const auto listed = u"It is on the list of held carts."_s;
    const auto here = u"The one at the counter is the only one."_s;
    QTest::newRow("held") << hold << true << isItHeld << u"the cart \"was not here\" was held."_s << listed;
    QTest::newRow("not held") << hold << false << isItHeld << u"the cart \"was not here\" was not held."_s << here;
    QTest::newRow("recalled") << recall << true << isItOff
                              << u"the cart \"Mary\" was taken off the list of held carts."_s << here;
    QTest::newRow("not recalled") << recall << false << isItOff
                                  << u"the cart \"Mary\" was not taken off the list of held carts."_s << listed;
}

void ServerTillTest::heldCartsAreNamed()
{
    QFETCH(const QString, statement);
    QFETCH(const bool, isDone);
    QFETCH(const QString, doubt);
    QFETCH(const QString, known);
    QFETCH(const QString, advice);
    m_notice = std::make_unique<FailureNotice>();
    m_notice->addDoubtful({DbFailure::Kind::Write, statement, u"reason"_s});
    QCOMPARE(told("failureWork"), doubt);
    tellSettled(*m_notice, statement, outcomeOf(isDone));
    QCOMPARE(told("failureWork"), u"Known now: "_s + known);
    QVERIFY2(told("failureAdvice").startsWith(advice), qPrintable(told("failureAdvice")));
}

HARROWBY_TEST(app_server_till_test, ServerTillTest)
#include "server_till_test.moc"
