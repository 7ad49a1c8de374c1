// SPDX-License-Identifier: MIT
#include "tests/doubles/private_cluster.h"
#include "tests/postgres/server_store.h"
#include "tests/program/test_program.h"

#include "postgres/connection_parts.h"
#include "postgres/transaction.h"
#include "store/recordset.h"
#include "store/statement_texts.h"

#include <harrowby/postgres_connection.h>

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <atomic>
#include <latch>
#include <thread>

using namespace harrowby;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Access = DbRecordset::Access;
using Outcome = DbRecordset::Outcome;

namespace {

struct Resolved
{
    QString what;
    bool isDone = false;
};

QString stockOf(PrivateCluster &cluster, const QString &id)
{
    return cluster.sql(u"select StockAvailable from harrowby.StockList where StockID = '%1'"_s.arg(id)).join(u',');
}

} // namespace

/// The component's way into the store while servers come and go.
class ConnectionFailoverTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void standbyGone();
    void givesUpWithTheRest();
    void nextStartResolves();
    void deadlock();
    void primaryKilled();
    void listsFollowTheServer();

private:
    [[nodiscard]] std::shared_ptr<PostgresConnection> connect(const QString &states,
                                                              std::chrono::milliseconds rest = 60s);
    /// Further writes of an action whose write before them is not known: refused on a session that lives.
    void expectRestIsRefused(const std::shared_ptr<PostgresConnection> &till);
    [[nodiscard]] QString bothHosts() const;

    QTemporaryDir m_folder;
    std::unique_ptr<PrivateCluster> m_primary;
    std::unique_ptr<PrivateCluster> m_standby;
    std::vector<Resolved> m_resolved;
    std::vector<DbFailure> m_failures;
};

void ConnectionFailoverTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
}

void ConnectionFailoverTest::init()
{
    m_resolved.clear();
    m_failures.clear();
    m_primary = std::make_unique<PrivateCluster>();
    m_primary->start();
    for (const QString &text : schemaFiles())
        m_primary->sql(text);
    m_primary->sql(u"insert into harrowby.StockList (StockID, StockName, StockAvailable, StockUse) "
                   "select i::text, 'ITEM ' || i, 1000, 'Enabled' from generate_series(1, 2) i"_s);
    m_standby = m_primary->standby();
}

void ConnectionFailoverTest::cleanup()
{
    m_standby.reset();
    m_primary.reset();
}

QString ConnectionFailoverTest::bothHosts() const
{
    return u"host=127.0.0.1,127.0.0.1 port=%1,%2 user=postgres dbname=shop sslmode=disable"_s.arg(m_primary->port())
        .arg(m_standby->port());
}

std::shared_ptr<PostgresConnection> ConnectionFailoverTest::connect(const QString &states,
                                                                    std::chrono::milliseconds rest)
{
    PostgresOptions options;
    options.stateFolder = m_folder.filePath(states);
    options.silence = 500ms;
    options.lock = rest == 1s ? 500ms : 10s;
    options.rest = rest;
    auto connection = std::make_shared<PostgresConnection>(bothHosts(), options);
    connection->setResolvedHandler([this](const QString &what, WriteOutcome known) {
        m_resolved.push_back({what, known == WriteOutcome::Done});
    });
    connection->setFailureHandler([this](const DbFailure &failure) { m_failures.push_back(failure); });
    return connection;
}

void ConnectionFailoverTest::expectRestIsRefused(const std::shared_ptr<PostgresConnection> &till)
{
    QElapsedTimer took;
    took.start();
    QVERIFY(till->isOpen());
    for (int line = 0; line < 5; ++line) {
        QVERIFY(!Execute(till, statements::raiseStock(3, u"2"_s)));
        QCOMPARE(till->lastWrite(), WriteOutcome::Refused);
        QCOMPARE(m_failures.back().engineState, u"55000"_s); // no fault of another till, and nothing to be found out
        QCOMPARE(m_failures.back().reason, u"The server has not confirmed yet what was sent before"_s);
    }
    QVERIFY2(took.elapsed() < 5000, qPrintable(QString::number(took.elapsed()))); // against 7 s for each
}

/// A write that nobody has confirmed is neither done nor refused; nothing else is written before that is known.
void ConnectionFailoverTest::standbyGone()
{
    const auto till = connect(u"gone"_s, 1s);
    QVERIFY(!till->open());
    QVERIFY(Execute(till, statements::raiseStock(1, u"1"_s)));
    m_standby->stop();
    till->beginAction();
    int calls = 0;
    bool blamesOthers = false;
    till->setWaitHook([&](const DbWait &wait) {
        blamesOthers = blamesOthers || wait.what == DbWait::For::Lock;
        return ++calls > 0;
    });
    QVERIFY(!Execute(till, statements::raiseStock(5, u"1"_s)));
    QCOMPARE(till->lastWrite(), WriteOutcome::Unknown);
    QVERIFY(till->mayHaveWritten());
    QVERIFY(calls > 10);
    QCOMPARE(m_failures.back().engineState, u"08007"_s);
    expectRestIsRefused(till);
    till->beginAction();
    QElapsedTimer took;
    took.start();
    postgres::Transaction several(postgres::ConnectionParts::of(*till).writer, {}, u"several"_s);
    QVERIFY(!several.begin());
    QVERIFY2(took.elapsed() < 14'000, qPrintable(QString::number(took.elapsed()))); // the claim's 7 s, once
    expectRestIsRefused(till);
    QVERIFY(m_resolved.empty());
    QVERIFY(!blamesOthers); // it is the till's own write that keeps the lock
    m_standby->cont();
    till->beginAction();
    QVERIFY(Execute(till, statements::raiseStock(9, u"2"_s)));
    QCOMPARE(m_resolved.size(), 1u);
    QVERIFY(m_resolved.front().what.contains(u"+ 5"_s));
    QCOMPARE(stockOf(*m_primary, u"1"_s), m_resolved.front().isDone ? u"1006"_s : u"1001"_s);
    QCOMPARE(stockOf(*m_primary, u"2"_s), u"1009"_s);
}

/// A person who has had enough of one write has had enough of those behind it.
void ConnectionFailoverTest::givesUpWithTheRest()
{
    const auto till = connect(u"enough"_s);
    QVERIFY(!till->open());
    for (const bool isTogether : {false, true}) {
        till->beginAction();
        QVERIFY(Execute(till, statements::raiseStock(1, u"1"_s)));
        const int before = stockOf(*m_primary, u"1"_s).toInt();
        postgres::Transaction several(postgres::ConnectionParts::of(*till).writer, {}, u"several"_s);
        if (isTogether)
            QVERIFY(several.begin("update StockList set StockAvailable = StockAvailable + 5 where StockID = '1'"));
        m_standby->stop();
        till->setWaitHook([](const DbWait &wait) { return !wait.mayGiveUp; });
        QElapsedTimer took;
        took.start();
        if (isTogether)
            QCOMPARE(several.commit().outcome, postgres::Actions::Outcome::Unknown);
        else
            QVERIFY(!Execute(till, statements::raiseStock(5, u"1"_s)) && till->mayHaveWritten());
        QVERIFY2(took.elapsed() < 5000, qPrintable(QString::number(took.elapsed()))); // one more try, of 1.5 s
        expectRestIsRefused(till);
        QVERIFY(m_resolved.empty());
        m_standby->cont();
        till->setWaitHook({});
        till->beginAction();
        QVERIFY(Execute(till, statements::raiseStock(9, u"2"_s)));
        QCOMPARE(m_resolved.size(), 1u);
        QCOMPARE(stockOf(*m_primary, u"1"_s).toInt(), before + (m_resolved.front().isDone ? 5 : 0));
        QCOMPARE(stockOf(*m_primary, u"2"_s), isTogether ? u"1018"_s : u"1009"_s); // nothing of the rest
        m_resolved.clear();
    }
}

void ConnectionFailoverTest::nextStartResolves()
{
    auto till = connect(u"next"_s, 1s);
    QVERIFY(!till->open());
    QVERIFY(Execute(till, statements::raiseStock(1, u"1"_s)));
    m_standby->stop();
    till->beginAction();
    {
        DbRecordset purchase;
        purchase.OpenHeld(statements::purchase(u"HV1"_s), till, Access::Read);
        purchase.AddNew();
        purchase.Field(u"PurchaseID"_s).assign(u"HV1"_s);
        purchase.Field(u"PurchasedItemsCost"_s).assign(12.5);
        QCOMPARE(purchase.Update(), Outcome::NotKnown);
    }
    till.reset();
    m_standby->cont();
    till = connect(u"next"_s);
    QVERIFY(!till->open());
    QCOMPARE(m_resolved.size(), 1u);
    QCOMPARE(m_resolved.front().what, u"INSERT PurchaseCart HV1 12.5"_s); // enough to write it down
    QCOMPARE(m_primary->sql(u"select count(*) from harrowby.PurchaseCart"_s),
             QStringList{m_resolved.front().isDone ? u"1"_s : u"0"_s});
}

/// Two writes that wait for each other's rows: the one that the server gives up is sent again.
void ConnectionFailoverTest::deadlock()
{
    PostgresOptions options;
    options.stateFolder = m_folder.filePath(u"deadlock"_s);
    options.silence = 30s; // so that no lock is given up before the server has found the deadlock
    options.lock = 30s;
    const auto till = std::make_shared<PostgresConnection>(m_primary->conninfo(), options);
    QVERIFY(!till->open());
    // Each goes on once both have their first row, also when it is sent again.
    m_primary->sql(
        u"create function collide() returns trigger language plpgsql as $$ begin perform pg_advisory_lock_shared(7); "
        "while (select count(*) from pg_locks where locktype = 'advisory' and mode = 'ShareLock') < 2 loop perform "
        "pg_sleep(0.01); end loop; update harrowby.StockList set StockCost = 1 where StockID <> new.StockID; return "
        "new; end $$; create trigger "
        "collide after update on harrowby.StockList for each row when (pg_trigger_depth() = 0) execute function "
        "collide()"_s);
    std::atomic<bool> isDone = false;
    std::latch bothDone(2); // until then both sessions hold their lock, which the one that is sent again counts
    std::jthread other([&, options]() mutable {
        options.stateFolder = m_folder.filePath(u"deadlock2"_s);
        const auto second = std::make_shared<PostgresConnection>(m_primary->conninfo(), options);
        isDone = Execute(second, statements::raiseStock(5, u"2"_s));
        bothDone.arrive_and_wait();
    });
    const bool isFirstDone = Execute(till, statements::raiseStock(5, u"1"_s));
    bothDone.arrive_and_wait();
    other.join();
    QVERIFY(isFirstDone);
    QVERIFY(isDone);
    QVERIFY(m_primary->log().contains(u"deadlock detected"));
    QCOMPARE(stockOf(*m_primary, u"1"_s), u"1005"_s);
    QCOMPARE(stockOf(*m_primary, u"2"_s), u"1005"_s);
}

/// Tills sell, one of them with held writes, while the primary is killed and the standby takes over.
void ConnectionFailoverTest::primaryKilled()
{
    constexpr int tills = 3;
    std::atomic<bool> isOver = false;
    std::array<std::atomic<int>, tills> sold{};
    std::atomic<int> failed = 0;
    std::vector<std::jthread> threads;
    for (int till = 0; till < tills; ++till) {
        threads.emplace_back([&, till, connection = connect(u"till%1"_s.arg(till))] {
            connection->setFailureHandler([&failed](const DbFailure &failure) {
                if (failure.engineState != u"HB002"_s)
                    ++failed;
            });
            while (!isOver && failed == 0) {
                bool isDone = false;
                bool isTold = false; // that another till has sold since the row was read
                if (till == 0) {
                    DbRecordset stock;
                    stock.OpenHeld(statements::stockById(u"1"_s), connection, Access::Edit);
                    stock.Field(u"StockAvailable"_s).assign(stock.Field(u"StockAvailable"_s).number() - 1);
                    const Outcome outcome = stock.Update();
                    isDone = outcome == Outcome::Written;
                    isTold = outcome == Outcome::NotWritten;
                } else {
                    isDone = Execute(connection, statements::raiseStock(-1, u"1"_s));
                }
                if (isDone)
                    ++sold.at(static_cast<std::size_t>(till));
                else if (!isTold)
                    ++failed;
            }
        });
    }
    const auto total = [&] { return sold[0] + sold[1] + sold[2]; };
    QVERIFY(QTest::qWaitFor([&] { return total() > 100; }, 20'000));
    m_primary->kill9();
    m_standby->promote();
    const std::array<int, tills> before{sold[0], sold[1], sold[2]};
    const auto haveAllSold = [&] { return sold[0] > before[0] && sold[1] > before[1] && sold[2] > before[2]; };
    QElapsedTimer took;
    took.start();
    QVERIFY(QTest::qWaitFor([&] { return haveAllSold() || failed > 0; }, 20'000));
    qInfo("all sell again %lld ms after the promotion", took.elapsed());
    isOver = true;
    for (std::jthread &thread : threads)
        thread.join();
    QCOMPARE(failed.load(), 0);
    QCOMPARE(stockOf(*m_standby, u"1"_s), QString::number(1000 - total()));
    QVERIFY(m_resolved.empty());
}

/// A server that was replaced while it hung lives on, and a list that was walked there is free for the next one.
void ConnectionFailoverTest::listsFollowTheServer()
{
    const auto till = connect(u"lists"_s);
    QVERIFY(!till->open());
    const auto stockInList = [&] {
        DbRecordset walk;
        walk.Open(statements::allStock(), till, Access::Walk);
        return walk.RecordCount() == 2 ? walk.Field(u"StockAvailable"_s).text() : u"no list"_s;
    };
    QCOMPARE(stockInList(), u"1000"_s);
    m_primary->stop();
    m_standby->promote();
    till->beginAction();
    QVERIFY(Execute(till, statements::raiseStock(5, u"1"_s)));
    m_primary->cont();
    till->beginAction();
    QCOMPARE(stockInList(), u"1005"_s);
}

HARROWBY_CORE_TEST(connection_failover_test, ConnectionFailoverTest)
#include "connection_failover_test.moc"
