// SPDX-License-Identifier: MIT
#include "tests/postgres/connected_till.h"
#include "tests/postgres/painted_gaps.h"
#include "tests/program/test_program.h"

#include "postgres/server_waits.h"
#include "store/recordset.h"
#include "store/statement_texts.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <array>
#include <memory>

#include <unistd.h>

using namespace harrowby;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Access = DbRecordset::Access;

/// Servers that are away or stopped: every wait ends, is painted, and the till goes on afterwards.
class ConnectionWaitsTest : public ConnectedTill
{
    Q_OBJECT

private Q_SLOTS:
    void serverComesBack_data();
    void serverComesBack();
    void restartsInTheMiddleOfAnAction();
    void turnsReadOnly();
    void failsWhileItIsAway();
    void stoppedServer();
    void shortWaitsInARow();
    void longWaitsInARow();
    void shortWaitsOfManyEvents();
    void pausesAreNoShortOnes();
    void answerThatIsThereCounts();
    void silentCable();
    void nobodyCanFindOut();
    void givesUp();
    void unknownAfterAHoldThatWasRefused();
    void actionEndsWithTheEventLoop();
};

/// One that ends in order tells its connections, and what it said is read with the next statement.
void ConnectionWaitsTest::serverComesBack_data()
{
    QTest::addColumn<bool>("isKilled");
    QTest::newRow("killed") << true;
    QTest::newRow("ended in order") << false;
}

void ConnectionWaitsTest::serverComesBack()
{
    QFETCH(const bool, isKilled);
    const auto restart = [&] {
        if (isKilled)
            m_server->cluster.kill9();
        else
            m_server->cluster.shutDown();
        m_server->cluster.start();
    };
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    restart();
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), m_connection);
    QCOMPARE(item.RecordCount(), 1);
    restart();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(m_server->stockOf(u"1"_s), u"12"_s);
    restart();
    DbRecordset walk;
    walk.Open(statements::allStock(), m_connection, Access::Walk);
    QCOMPARE(walk.RecordCount(), 3);
    QVERIFY(m_server->failures.empty());
}

/// The rest of an action waits for a server that is ended in order and started again: a restart cuts no sale in two.
void ConnectionWaitsTest::restartsInTheMiddleOfAnAction()
{
    QVERIFY(!m_connection->open());
    m_connection->beginAction();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    m_server->cluster.shutDown();
    int waits = 0;
    m_connection->setWaitHook([&](const DbWait &) {
        if (++waits == 5)
            m_server->cluster.start();
        return true;
    });
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), m_connection);
    QCOMPARE(item.RecordCount(), 1);
    QVERIFY(waits >= 5);
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(m_server->stockOf(u"1"_s), u"12"_s);
    QVERIFY(m_server->failures.empty());
}

/// A server that takes no writes any more, under a connection that is open: it is told in its time, nothing is done,
/// and what is read is read. The same connection writes as soon as the server lets it.
void ConnectionWaitsTest::turnsReadOnly()
{
    QVERIFY(!m_connection->open());
    m_server->cluster.set(u"default_transaction_read_only"_s, u"on"_s);
    m_connection->beginAction();
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), m_connection);
    QCOMPARE(item.RecordCount(), 1);
    QElapsedTimer took;
    took.start();
    QVERIFY(!Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QVERIFY2(took.elapsed() < 8'000, qPrintable(QString::number(took.elapsed())));
    QCOMPARE(m_connection->lastWrite(), WriteOutcome::Refused);
    QCOMPARE(m_server->failures.size(), 1u);
    QCOMPARE(m_server->failures.front().engineState, u"25006"_s);
    m_server->cluster.set(u"default_transaction_read_only"_s, u"off"_s);
    m_connection->beginAction();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(m_server->stockOf(u"1"_s), u"11"_s);
    QCOMPARE(m_server->failures.size(), 1u);
}

void ConnectionWaitsTest::failsWhileItIsAway()
{
    QVERIFY(!m_connection->open());
    m_server->cluster.kill9();
    QElapsedTimer took;
    took.start();
    m_connection->beginAction();
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), m_connection);
    QVERIFY(item.HasFailed());
    QVERIFY(took.elapsed() < 10'000);
    took.restart();
    for (int i = 0; i < 10; ++i) { // of the same action: not waited for again
        item.Open(statements::stockById(u"1"_s), m_connection);
        QVERIFY(!Execute(m_connection, statements::raiseStock(1, u"1"_s)));
        QCOMPARE(m_connection->lastWrite(), WriteOutcome::Refused);
    }
    QVERIFY(took.elapsed() < 2'000);
    QCOMPARE(m_server->failures.size(), 21u);
    QVERIFY(std::all_of(m_server->failures.begin(), m_server->failures.end(),
                        [](const DbFailure &failure) { return failure.engineState.startsWith(u"08"_s); }));
    QVERIFY(!m_connection->isOpen());
    m_server->cluster.start();
    m_connection->beginAction();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QVERIFY(m_connection->isOpen());
    QCOMPARE(m_server->stockOf(u"1"_s), u"11"_s);
}

/// A server that says nothing: the wait is bounded, and painted all the while.
void ConnectionWaitsTest::stoppedServer()
{
    QVERIFY(!m_connection->open());
    m_connection->beginAction();
    PaintedGaps gaps;
    m_connection->setWaitHook([&](const DbWait &wait) {
        gaps.paint();
        return !wait.mayGiveUp;
    });
    m_server->cluster.stop();
    QElapsedTimer took;
    took.start();
    gaps.begin();
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), m_connection);
    m_server->cluster.cont();
    QVERIFY(item.HasFailed());
    QVERIFY2(took.elapsed() < 10'000, qPrintable(QString::number(took.elapsed())));
    QVERIFY2(gaps.median() <= 100, qPrintable(QString::number(gaps.median())));
    m_connection->beginAction();
    item.Open(statements::stockById(u"1"_s), m_connection);
    QCOMPARE(item.RecordCount(), 1);
}

/// A long line: each answer comes soon, but the window stands still for as long as all of them together take.
void ConnectionWaitsTest::shortWaitsInARow()
{
    Proxy line(m_server->cluster.port());
    m_connection = m_server->connect(through(line));
    QVERIFY(!m_connection->open());
    line.setLatency(10ms);
    PaintedGaps gaps;
    int shortOnes = 0;
    m_connection->setWaitHook([&gaps, &shortOnes](const DbWait &wait) {
        gaps.paint();
        shortOnes += wait.isManyShortOnes ? 1 : 0;
        return true;
    });
    QCoreApplication::processEvents();
    gaps.begin();
    for (int i = 0; i < 60; ++i)
        QVERIFY(m_connection->query(u"Select * from StockList where StockID = '1'"_s));
    QVERIFY2(shortOnes > 5, qPrintable(QString::number(shortOnes))); // of 15; a busy machine makes some waits long
    QVERIFY2(gaps.median() <= 100, qPrintable(QString::number(gaps.median())));
}

/// Each is one by itself, however much of the time before the hook's call belongs to the one before it.
void ConnectionWaitsTest::longWaitsInARow()
{
    Proxy line(m_server->cluster.port());
    m_connection = m_server->connect(through(line));
    QVERIFY(!m_connection->open());
    QVERIFY(m_connection->query(u"Select * from StockList where StockID = '1'"_s));
    line.setLatency(55ms);
    int longOnes = 0;
    m_connection->setWaitHook([&longOnes](const DbWait &wait) {
        longOnes += wait.isManyShortOnes ? 0 : 1;
        return true;
    });
    constexpr int statements = 12;
    for (int i = 0; i < statements; ++i)
        QVERIFY(m_connection->query(u"Select * from StockList where StockID = '1'"_s));
    QVERIFY2(longOnes >= statements - 2, qPrintable(QString::number(longOnes)));
}

/// Between them the window paints itself.
void ConnectionWaitsTest::shortWaitsOfManyEvents()
{
    Proxy line(m_server->cluster.port());
    m_connection = m_server->connect(through(line));
    QVERIFY(!m_connection->open());
    line.setLatency(10ms);
    int calls = 0;
    m_connection->setWaitHook([&calls](const DbWait &) { return ++calls > 0; });
    for (int i = 0; i < 60; ++i) {
        QCoreApplication::processEvents();
        QVERIFY(m_connection->query(u"Select * from StockList where StockID = '1'"_s));
    }
    QVERIFY2(calls < 8, qPrintable(QString::number(calls))); // of 15 in a row; a busy machine makes some waits long
}

/// A cable that is pulled out: what is read has failed in time, and told so; a write on its way is not known, which is
/// told too, and is found out as soon as the cable is back.
void ConnectionWaitsTest::silentCable()
{
    Proxy cable(m_server->cluster.port());
    PostgresOptions options = m_server->options();
    options.rest = 2'000ms;
    m_connection = std::make_shared<PostgresConnection>(through(cable), options);
    m_connection->setFailureHandler([this](const DbFailure &failure) { m_server->failures.push_back(failure); });
    std::optional<bool> found;
    m_connection->setResolvedHandler([&](const QString &, WriteOutcome known) { found = known == WriteOutcome::Done; });
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    m_connection->beginAction();
    cable.goSilent();
    QElapsedTimer took;
    took.start();
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), m_connection);
    QVERIFY(item.HasFailed());
    QVERIFY2(took.elapsed() < 10'000, qPrintable(QString::number(took.elapsed())));
    QCOMPARE(m_server->failures.size(), 1u);
    cable.speak();
    m_connection->beginAction();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    m_connection->beginAction();
    cable.goSilent();
    took.restart();
    QVERIFY(!Execute(m_connection, statements::raiseStock(5, u"1"_s)));
    QVERIFY2(took.elapsed() < 15'000, qPrintable(QString::number(took.elapsed())));
    QCOMPARE(m_connection->lastWrite(), WriteOutcome::Unknown);
    QCOMPARE(m_server->failures.size(), 2u);
    cable.speak();
    m_connection->beginAction();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QVERIFY(found.has_value());
    QCOMPARE(m_server->stockOf(u"1"_s), *found ? u"18"_s : u"13"_s);
}

/// A program that took this one for dead has ended its numbers, also that of the write that was not known.
void ConnectionWaitsTest::nobodyCanFindOut()
{
    Proxy cable(m_server->cluster.port());
    PostgresOptions options = m_server->options();
    options.rest = 300ms;
    m_connection = std::make_shared<PostgresConnection>(through(cable), options);
    std::vector<WriteOutcome> told;
    m_connection->setResolvedHandler([&told](const QString &, WriteOutcome known) { told.push_back(known); });
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    m_connection->beginAction();
    cable.goSilent();
    QVERIFY(!Execute(m_connection, statements::raiseStock(5, u"1"_s)));
    QCOMPARE(m_connection->lastWrite(), WriteOutcome::Unknown);
    m_server->cluster.sql(u"update harrowby.writer_action set last = last + 100"_s);
    cable.speak();
    m_connection->beginAction();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s))); // with numbers of its own
    QCOMPARE(told, (std::vector<WriteOutcome>{WriteOutcome::Unknown}));
}

/// Once an action has written, its rest is waited for, until the person has had enough.
void ConnectionWaitsTest::givesUp()
{
    QVERIFY(!m_connection->open());
    m_connection->beginAction();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    bool mayGiveUp = false;
    QElapsedTimer took;
    took.start();
    m_connection->setWaitHook([&](const DbWait &wait) {
        mayGiveUp = mayGiveUp || wait.mayGiveUp;
        return took.elapsed() < 3'000; // longer than a server's silence is borne with
    });
    m_server->cluster.stop();
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), m_connection);
    const qint64 waited = took.elapsed();
    m_server->cluster.cont();
    QVERIFY(item.HasFailed());
    QVERIFY(mayGiveUp);
    QVERIFY2(waited >= 2'900 && waited < 8'000, qPrintable(QString::number(waited)));
}

/// The look-up that was to be held has failed, and its write stands alone: what nobody knows of it is told as such.
void ConnectionWaitsTest::unknownAfterAHoldThatWasRefused()
{
    Proxy proxy(m_server->cluster.port());
    PostgresOptions options = m_server->options();
    options.rest = 300ms;
    const auto till = std::make_shared<PostgresConnection>(through(proxy), options);
    QVERIFY(!till->open());
    const Statement select = statements::purchase(u"HV1"_s);
    m_server->cluster.sql(u"begin; select pg_advisory_xact_lock(hashtextextended('%1', 0))"_s.arg(
        QString(select.sql()).replace(u"'"_s, u"''"_s)));
    DbRecordset purchase;
    purchase.OpenHeld(select, till, Access::Read);
    QVERIFY(purchase.HasFailed());
    m_server->cluster.sql(u"rollback"_s);
    purchase.AddNew();
    purchase.Field(u"PurchaseID"_s).assign(u"HV1"_s);
    proxy.goSilentAtAnswerOf(1);
    QCOMPARE(purchase.Update(), DbRecordset::Outcome::NotKnown);
    QCOMPARE(m_server->cluster.sql(u"select PurchaseID from harrowby.PurchaseCart"_s), QStringList{u"HV1"_s});
}

/// A server that refuses at once is tried again and again: each pause is seen, and none is one of many short answers.
void ConnectionWaitsTest::pausesAreNoShortOnes()
{
    int calls = 0;
    int shortOnes = 0;
    const PgWaitHook hook = [&](const PgWait &wait) {
        ++calls;
        shortOnes += wait.isManyShortOnes ? 1 : 0;
        return true;
    };
    for (int i = 0; i < 6; ++i)
        QVERIFY(postgres::pauseBeforeNextTry(hook));
    QVERIFY2(calls >= 6, qPrintable(QString::number(calls)));
    QCOMPARE(shortOnes, 0);
}

/// A person gives up at the moment of the answer: it is taken, and what comes behind it is not waited for.
void ConnectionWaitsTest::answerThatIsThereCounts()
{
    std::array<int, 2> line{};
    QCOMPARE(::pipe(line.data()), 0);
    QCOMPARE(::write(line[1], "x", 1), 1);
    pollfd end{line[0], POLLIN, 0};
    int calls = 0;
    const PgWaitHook hook = [&calls](const PgWait &) { return ++calls > 1; };
    postgres::Waiter waiter(hook, PgWaiting::Answer);
    QTest::qSleep(60);
    QCOMPARE(waiter.wait(end, QDeadlineTimer(10s)), postgres::Waiter::End::Ready);
    QCOMPARE(calls, 1);
    QCOMPARE(waiter.wait(end, QDeadlineTimer(10s)), postgres::Waiter::End::GivenUp);
    ::close(line[0]);
    ::close(line[1]);
}

/// What the outermost event loop waits for is the next action; what a box's loop waits for belongs to its own.
void ConnectionWaitsTest::actionEndsWithTheEventLoop()
{
    QVERIFY(!m_connection->open());
    std::vector<bool> done;
    const auto write = [&] { done.push_back(Execute(m_connection, statements::raiseStock(1, u"1"_s))); };
    QTimer::singleShot(0, this, [&] {
        m_server->cluster.kill9();
        write(); // from here on the action waits no more
        m_server->cluster.start();
        write();
        QEventLoop box;
        QTimer::singleShot(50ms, &box, [&] {
            write();
            box.quit();
        });
        box.exec();
        QTimer::singleShot(50ms, this, [&] {
            write();
            QCoreApplication::quit();
        });
    });
    QCoreApplication::exec();
    QCOMPARE(done, (std::vector<bool>{false, false, false, true}));
}

HARROWBY_CORE_TEST(connection_waits_test, ConnectionWaitsTest)
#include "connection_waits_test.moc"
