// SPDX-License-Identifier: MIT
#include "tests/postgres/connected_till.h"
#include "tests/postgres/painted_gaps.h"
#include "tests/program/test_program.h"

#include "store/recordset.h"
#include "store/statement_texts.h"

#include <QElapsedTimer>
#include <QHash>
#include <QTest>

#include <memory>
#include <utility>

#include <libpq-fe.h>

using namespace harrowby;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// Rows that others hold: they are waited for in one time for all of an action, painted, and told as what they are.
class ConnectionLocksTest : public ConnectedTill
{
    Q_OBJECT

private Q_SLOTS:
    void anothersLock();
    void locksOfAnActionTogether();
    void shortLocksOfAnAction();
    void anothersLockAfterABreak();
    void thirdForARow();

private:
    /// As another till that is in the middle of something.
    void lockItem()
    {
        m_server->cluster.sql(u"begin; update harrowby.StockList set StockCost = 1 where StockID = '1'"_s);
    }
    void freeItem() { m_server->cluster.sql(u"rollback"_s); }
    [[nodiscard]] bool isToldAsLocked() const
    {
        return m_server->failures.size() == 1 && m_server->failures.front().engineState == u"55P03"_s;
    }
};

void ConnectionLocksTest::anothersLock()
{
    QVERIFY(!m_connection->open());
    PaintedGaps gaps;
    m_connection->setWaitHook([&](const DbWait &) {
        gaps.paint();
        return true;
    });
    lockItem();
    m_connection->beginAction();
    gaps.begin();
    QVERIFY(!Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(m_connection->lastWrite(), WriteOutcome::Refused);
    QVERIFY(isToldAsLocked());
    QVERIFY2(gaps.median() <= 100, qPrintable(QString::number(gaps.median())));
    freeItem();
    m_connection->beginAction();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(m_server->stockOf(u"1"_s), u"11"_s);
}

/// One time for all of them, also for those that were got in the end.
void ConnectionLocksTest::locksOfAnActionTogether()
{
    PostgresOptions options = m_server->options();
    options.silence = 1'000ms;
    options.lock = 5'000ms;
    PostgresConnection till(m_server->cluster.conninfo(), options);
    QVERIFY(!till.open());
    lockItem();
    QElapsedTimer took;
    bool isHeld = true;
    till.setWaitHook([&](const DbWait &) {
        if (isHeld && took.elapsed() > 3'500)
            freeItem(), isHeld = false;
        return true;
    });
    till.beginAction();
    took.start();
    QVERIFY(till.Execute(statements::raiseStock(1, u"1"_s).sql()));
    till.setWaitHook({});
    lockItem();
    took.restart();
    QVERIFY(!till.Execute(statements::raiseStock(1, u"1"_s).sql()));
    freeItem();
    // 1,500 are left, where a time of its own would have 5,000.
    QVERIFY2(took.elapsed() < 4'500, qPrintable(QString::number(took.elapsed())));
    QCOMPARE(m_server->stockOf(u"1"_s), u"11"_s);
}

/// Each is free again long before the server would tell of it: they are of the action's time all the same.
void ConnectionLocksTest::shortLocksOfAnAction()
{
    PostgresOptions options = m_server->options();
    options.silence = 4'000ms;
    options.lock = 2'000ms;
    PostgresConnection till(m_server->cluster.conninfo(), options);
    till.setFailureHandler([this](const DbFailure &failure) { m_server->failures.push_back(failure); });
    QVERIFY(!till.open());
    QElapsedTimer took;
    bool isHeld = false;
    till.setWaitHook([&](const DbWait &) {
        if (isHeld && took.elapsed() > 1'300)
            freeItem(), isHeld = false;
        return true;
    });
    const auto sellLocked = [&] {
        lockItem();
        isHeld = true;
        took.start();
        return till.Execute(statements::raiseStock(1, u"1"_s).sql());
    };
    till.beginAction();
    QVERIFY(sellLocked());
    QVERIFY(!sellLocked());
    freeItem();
    QVERIFY(isToldAsLocked());
    QCOMPARE(m_server->stockOf(u"1"_s), u"11"_s);
}

/// The write may be there when it is sent again, and then another till holds its row: it is told as that, in the time
/// for locks, and not as one's own that the server has not confirmed.
void ConnectionLocksTest::anothersLockAfterABreak()
{
    Proxy line(m_server->cluster.port());
    PostgresOptions options = m_server->options();
    options.silence = 1'000ms;
    options.lock = 2'000ms;
    options.rest = 60'000ms;
    PostgresConnection till(through(line), options);
    till.setFailureHandler([this](const DbFailure &failure) { m_server->failures.push_back(failure); });
    QVERIFY(!till.open());
    lockItem();
    bool isCut = false;
    QHash<DbWait::For, int> told;
    till.setWaitHook([&](const DbWait &wait) {
        if (!std::exchange(isCut, true))
            line.cut();
        ++told[wait.what];
        return true;
    });
    till.beginAction();
    QElapsedTimer took;
    took.start();
    QVERIFY(!till.Execute(statements::raiseStock(1, u"1"_s).sql()));
    QVERIFY2(took.elapsed() < 20'000, qPrintable(QString::number(took.elapsed())));
    freeItem();
    QCOMPARE(till.lastWrite(), WriteOutcome::Refused);
    QVERIFY(isToldAsLocked());
    QVERIFY(told[DbWait::For::Lock] > told[DbWait::For::Answer]);
    till.beginAction();
    QVERIFY(till.Execute(statements::raiseStock(1, u"1"_s).sql()));
    QCOMPARE(m_server->stockOf(u"1"_s), u"11"_s);
}

/// Somebody else waits for the row already: the server waits for that one's turn first and then for its end, which
/// together are longer than a silent server is borne with. It is another's lock all the same.
void ConnectionLocksTest::thirdForARow()
{
    PostgresOptions options = m_server->options();
    options.silence = 1'000ms;
    options.lock = 10'000ms;
    PostgresConnection till(m_server->cluster.conninfo(), options);
    QVERIFY(!till.open());
    lockItem();
    const std::unique_ptr<PGconn, decltype(&PQfinish)> second(
        PQconnectdb(m_server->cluster.conninfo().toUtf8().constData()), PQfinish);
    QVERIFY(PQsendQuery(second.get(), "begin; update harrowby.StockList set StockCost = 2 where StockID = '1'") == 1);
    m_server->cluster.await(u"select count(*) from pg_stat_activity where wait_event_type = 'Lock'"_s, u"1"_s);
    const auto endSecond = [&second] {
        while (PGresult *result = PQgetResult(second.get()))
            PQclear(result);
        (void)PQsendQuery(second.get(), "rollback");
    };
    QElapsedTimer took;
    int turn = 0;
    QList<DbWait::For> waited;
    till.setWaitHook([&](const DbWait &wait) {
        if (turn == 0 && took.elapsed() > 700 && ++turn)
            freeItem();
        if (turn == 1 && took.elapsed() > 2'500 && ++turn)
            endSecond();
        waited.append(wait.what);
        return true;
    });
    till.beginAction();
    took.start();
    QVERIFY(till.Execute(statements::raiseStock(1, u"1"_s).sql()));
    till.setWaitHook({});
    QVERIFY2(took.elapsed() > 2'500, qPrintable(QString::number(took.elapsed())));
    QVERIFY(!waited.contains(DbWait::For::Connection));
    QVERIFY(m_server->failures.empty());
    QCOMPARE(m_server->stockOf(u"1"_s), u"11"_s);
}

HARROWBY_CORE_TEST(connection_locks_test, ConnectionLocksTest)
#include "connection_locks_test.moc"
