// SPDX-License-Identifier: MIT
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "tests/postgres/records_desk.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using Holder = ServerStore::Holder;

namespace {

Holder holderOf(ServerStore &store, std::int64_t number)
{
    return store.holdersOf({number}).constFirst();
}

} // namespace

/// The locks by which programs know of each other, in the sessions of their stores on a server.
class SessionLocksTest : public RecordsDesk
{
    Q_OBJECT

private Q_SLOTS:
    void locksOfPrograms();
    void lockThatAnotherHadMeanwhile();
    void lockFollowsTheStoresSession();
    void idleSessionAloneIsMadeAnew();
};

void SessionLocksTest::locksOfPrograms()
{
    auto other = open(m_server->cluster.tcpConninfo());
    auto lock = m_store->lock(17);
    QVERIFY(lock);
    QVERIFY(!other->lock(17));
    QVERIFY(holderOf(*other, 17) == Holder::Somebody);
    QVERIFY(holderOf(*other, 18) == Holder::Nobody);
    QVERIFY(holderOf(*m_store, 17) == Holder::Somebody); // its own
    m_proxy->cut();
    QVERIFY(!m_store->tryAgain()); // takes it again
    QVERIFY(holderOf(*other, 17) == Holder::Somebody);
    m_server->cluster.kill9();
    m_server->cluster.start();
    QVERIFY(!m_store->tryAgain());
    QVERIFY(!other->tryAgain());
    QVERIFY(holderOf(*other, 17) == Holder::Somebody);
    *lock = nullptr;
    QVERIFY(holderOf(*other, 17) == Holder::Nobody);
    QVERIFY(m_store->lock(17));
}

/// As the server's own memory of a session of which nobody has told it that it is gone.
void SessionLocksTest::lockThatAnotherHadMeanwhile()
{
    auto other = open(m_server->cluster.tcpConninfo());
    auto lock = m_store->lock(17);
    QVERIFY(lock);
    m_server->cluster.sql(u"select pg_terminate_backend(pid) from pg_locks where locktype = 'advisory'"_s);
    m_server->cluster.await(u"select count(*) from pg_locks where locktype = 'advisory'"_s, u"0"_s);
    auto between = other->lock(17);
    QVERIFY(between);
    QVERIFY(holderOf(*m_store, 17) == Holder::Somebody);
    *between = nullptr;
    QVERIFY(holderOf(*other, 17) == Holder::Nobody);
    QVERIFY(!m_store->tryAgain());
    QVERIFY(holderOf(*other, 17) == Holder::Somebody);
    *lock = nullptr;
    QVERIFY(holderOf(*other, 17) == Holder::Nobody);
}

/// The till works on where it can be reached; the session of its locks hangs on a way that is silent, and nobody tells
/// it. The server has its lock still, and gives it up minutes later.
void SessionLocksTest::lockFollowsTheStoresSession()
{
    Proxy otherWay(m_server->cluster.port());
    otherWay.refuse(true);
    const auto till = open(u"host=127.0.0.1,127.0.0.1 port=%1,%2 user=postgres dbname=shop sslmode=disable"_s.arg(
        QString::number(m_proxy->port()), QString::number(otherWay.port())));
    const auto other = open(m_server->cluster.tcpConninfo());
    const auto lock = till->lock(19);
    QVERIFY(lock);
    otherWay.refuse(false);
    m_proxy->goSilent();
    const auto isThere = [&] { return !till->tryAgain() && till->records()->read({u"select 1"_s, {}}).has_value(); };
    QTRY_VERIFY(isThere());
    QVERIFY(!till->tryAgain());
    QVERIFY(holderOf(*other, 19) == Holder::Somebody);
    m_server->cluster.sql(u"select pg_terminate_backend(pid, 5000) from pg_locks where locktype = 'advisory'"_s);
    QVERIFY(!till->tryAgain());
    QVERIFY(holderOf(*other, 19) == Holder::Somebody);
    QCOMPARE(m_server->cluster.sql(u"select count(*) from pg_locks where locktype = 'advisory'"_s).constFirst(),
             u"1"_s); // who looks takes nothing
}

/// What is held is not cut off, as its write is still to come.
void SessionLocksTest::idleSessionAloneIsMadeAnew()
{
    const auto session = [this] {
        return m_server->cluster
            .sql(u"select pid, state from pg_stat_activity where query ilike '%from stocklist%' and "
                 "pid <> pg_backend_pid()"_s)
            .join(u' ');
    };
    const RecordStatement look = {u"select StockID from StockList"_s, {}};
    QVERIFY(m_records->read(look));
    const QString first = session();
    QVERIFY(!first.isEmpty());
    QVERIFY(!m_store->reachAnew());
    QVERIFY(m_records->read(look));
    QVERIFY(session() != first);
    DbRecordset stock;
    stock.OpenHeld(statements::stockById(u"1"_s), m_store->connection(), DbRecordset::Access::Edit);
    const QString held = session();
    QVERIFY2(held.endsWith(u"|idle in transaction"_s), qPrintable(held));
    QVERIFY(!m_store->reachAnew());
    QCOMPARE(session(), held);
}

HARROWBY_CORE_TEST(session_locks_test, SessionLocksTest)
#include "session_locks_test.moc"
