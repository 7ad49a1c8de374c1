// SPDX-License-Identifier: MIT
#include "postgres/postgres_session.h"
#include "tests/doubles/private_cluster.h"
#include "tests/doubles/proxy.h"
#include "tests/program/test_program.h"

#include <QTest>

#include <memory>
#include <thread>

using namespace harrowby;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

using harrowby::test::PrivateCluster;
using harrowby::test::Proxy;
using Kind = PgError::Kind;
using Step = PgRows::Step;

namespace {

const PgWaits patient{60s, 60s, 60s, 60s, {}};
/// A silent server is given up soon.
const PgWaits shop{20s, 500ms, 400ms, 10s, {}};
/// For what is to be answered in such a session.
const PgBudget patience{60s, 60s};

PgTarget target(const PrivateCluster &cluster)
{
    return {cluster.conninfo().toUtf8()};
}

PgTarget target(const QList<const PrivateCluster *> &clusters)
{
    QStringList hosts;
    QStringList ports;
    for (const PrivateCluster *cluster : clusters) {
        hosts.append(u"127.0.0.1"_s);
        ports.append(QString::number(cluster->port()));
    }
    return {u"user=postgres dbname=shop host=%1 port=%2"_s.arg(hosts.join(u','), ports.join(u',')).toUtf8()};
}

PgSession connected(const PgTarget &target, const PgWaits &waits)
{
    PgSession session;
    const Result<void, PgError> result = session.connect(target, waits);
    if (!result)
        qFatal("no session: %s", qPrintable(result.error().text));
    return session;
}

PgError errorOf(const Result<PgResults, PgError> &results)
{
    return results ? PgError{Kind::Refused, "none", {}} : results.error();
}

PgError errorOf(const Result<void, PgError> &result)
{
    return result ? PgError{Kind::Refused, "none", {}} : result.error();
}

QByteArray one(PgSession &session, const QByteArray &select)
{
    const Result<PgResults, PgError> results = session.run(select, patience);
    return results ? results->back().text(0, 0).toByteArray() : results.error().text.toUtf8();
}

} // namespace

class SessionServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void aSessionIsAsAStoreNeedsIt_data();
    void aSessionIsAsAStoreNeedsIt();
    void everyUserMayAskForTheTimeline();
    void aDatabaseOfAnotherLocaleIsRefused();
    void aServerThatIsFullOfClientsIsTold();
    void aPasswordThatIsWrongIsTold();
    void withoutTlsNobodyIsLetIn();
    void aStoppedServerIsLeftAndFoundAgain();
    void aCutCableIsNoticed();
    void anotherTillsLockIsWaitedFor();
    void aDeadlockIsResolved();
    void aHundredThousandRowsAreWalked();
    void rowsThatNobodyReadsStayOnTheServer();
    void rowsThatNobodyWantsEnd();
    void aWalkThatIsLeftEndsOnTheServer();
    void aKilledServerIsLostAndFoundAgain();
    void aStandbyIsAskedForConfirmation();
    void ofTwoPrimariesTheSuccessorIsChosen();

private:
    std::unique_ptr<PrivateCluster> m_cluster;
};

void SessionServerTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    m_cluster = std::make_unique<PrivateCluster>();
    m_cluster->start();
}

void SessionServerTest::init()
{
    m_cluster->sql(u"create schema if not exists harrowby; drop table if exists harrowby.stock;"
                   "create table harrowby.stock (id int primary key, units int);"
                   "insert into harrowby.stock values (1, 100), (2, 100)"_s);
}

void SessionServerTest::aSessionIsAsAStoreNeedsIt_data()
{
    QTest::addColumn<QByteArray>("setting");
    QTest::addColumn<QByteArray>("value");
    QTest::newRow("texts") << QByteArray("client_encoding") << QByteArray("UTF8");
    QTest::newRow("dates") << QByteArray("datestyle") << QByteArray("ISO, YMD");
    QTest::newRow("backslashes") << QByteArray("standard_conforming_strings") << QByteArray("on");
    QTest::newRow("ours first") << QByteArray("search_path") << QByteArray("harrowby, pg_catalog, pg_temp");
    QTest::newRow("locks") << QByteArray("lock_timeout") << QByteArray("20ms");
    QTest::newRow("no time limit") << QByteArray("statement_timeout") << QByteArray("0");
    QTest::newRow("isolation") << QByteArray("transaction_isolation") << QByteArray("read committed");
    QTest::newRow("the server's business") << QByteArray("synchronous_commit") << QByteArray("remote_apply");
    QTest::newRow("no endless hold") << QByteArray("idle_in_transaction_session_timeout") << QByteArray("10s");
    QTest::newRow("no cut of a write") << QByteArray("client_connection_check_interval") << QByteArray("0");
}

void SessionServerTest::aSessionIsAsAStoreNeedsIt()
{
    QFETCH(QByteArray, setting);
    m_cluster->sql(u"alter role postgres set datestyle = 'German, DMY'; alter role postgres set statement_timeout = 7;"
                   "alter role postgres set default_transaction_isolation = 'serializable';"
                   "alter role postgres set standard_conforming_strings = off;"
                   "alter role postgres set synchronous_commit = 'remote_apply';"
                   "alter role postgres set client_min_messages = 'error'"_s);
    PgSession session = connected(target(*m_cluster), shop);
    m_cluster->sql(u"alter role postgres reset all"_s);
    QTEST(one(session, "show " + setting), "value");
    QCOMPARE(one(session, "show client_min_messages"), "warning"); // it tells what was not confirmed
    QCOMPARE(one(session, "select 0.1::float8"), "0.1");
    QVERIFY(!session.isInTransaction());
}

void SessionServerTest::everyUserMayAskForTheTimeline()
{
    m_cluster->sql(u"drop role if exists till_1; create role till_1 login"_s);
    PgSession session = connected({m_cluster->conninfo(u"till_1"_s).toUtf8()}, shop);
    QCOMPARE(session.server().timeline, 1U);
    QVERIFY(session.server().version >= 150000);
    QVERIFY(one(session, "select timeline_id from pg_control_checkpoint()") == "1"); // as a standby is asked
}

void SessionServerTest::aDatabaseOfAnotherLocaleIsRefused()
{
    m_cluster->sql(u"drop database if exists other"_s);
    m_cluster->sql(u"create database other template template0 lc_ctype 'C.UTF-8'"_s);
    PgSession session;
    const PgError error = errorOf(session.connect({m_cluster->conninfo(u"postgres"_s, u"other"_s).toUtf8()}, shop));
    QCOMPARE(error.kind, Kind::Unfit);
    QVERIFY(error.text.contains("C.UTF-8"_L1));
    m_cluster->sql(u"drop database if exists other"_s);
    m_cluster->sql(u"create database other template template0 locale_provider icu icu_locale 'en' lc_collate 'C' "
                   "lc_ctype 'C'"_s);
    const PgError ofIcu = errorOf(session.connect({m_cluster->conninfo(u"postgres"_s, u"other"_s).toUtf8()}, shop));
    QCOMPARE(ofIcu.kind, Kind::Unfit);
    QVERIFY(ofIcu.text.contains("C of the provider i"_L1));
    QCOMPARE(errorOf(session.connect({m_cluster->conninfo(u"postgres"_s, u"none"_s).toUtf8()}, shop)).kind,
             Kind::Denied);
    PgTarget store = target(*m_cluster);
    store.schemaVersion = 1;
    QVERIFY(errorOf(session.connect(store, shop)).text.contains("no store"_L1));
}

void SessionServerTest::aServerThatIsFullOfClientsIsTold()
{
    PrivateCluster small({u"max_connections = 2"_s, u"superuser_reserved_connections = 0"_s, u"max_wal_senders = 0"_s});
    small.start();
    const PgSession first = connected(target(small), patient);
    PgSession second = connected(target(small), patient);
    PgSession third;
    QCOMPARE(errorOf(third.connect(target(small), shop)).kind, Kind::Crowded);
    second.close();
    QTRY_VERIFY(!third.isLost() || third.connect(target(small), shop)); // once the second has gone there, too
}

void SessionServerTest::aPasswordThatIsWrongIsTold()
{
    m_cluster->sql(u"drop role if exists till_2; create role till_2 login password 'right'"_s);
    m_cluster->setAccess({u"local all postgres trust"_s, u"host all all 127.0.0.1/32 scram-sha-256"_s});
    const QByteArray till = m_cluster->tcpConninfo(u"till_2"_s).toUtf8();
    PgSession session;
    const PgError wrong = errorOf(session.connect({till + " password=wrong"}, shop));
    QCOMPARE(wrong.kind, Kind::Denied);
    QCOMPARE(wrong.sqlState, "28P01");
    QVERIFY(session.connect({till + " password=right"}, shop));
    m_cluster->setAccess({u"local all all trust"_s, u"host all all 127.0.0.1/32 trust"_s,
                          u"local replication all trust"_s, u"host replication all 127.0.0.1/32 trust"_s});
}

void SessionServerTest::withoutTlsNobodyIsLetIn()
{
    m_cluster->setAccess({u"local all postgres trust"_s, u"hostssl all all 127.0.0.1/32 trust"_s});
    const QByteArray till = m_cluster->tcpConninfo().toUtf8();
    PgSession session;
    QCOMPARE(errorOf(session.connect({till}, shop)).kind, Kind::Denied);
    QCOMPARE(errorOf(session.connect({till + " sslmode=verify-full sslrootcert=/nowhere"}, shop)).kind,
             Kind::NotTrusted);
    m_cluster->setAccess({u"local all all trust"_s, u"host all all 127.0.0.1/32 trust"_s,
                          u"local replication all trust"_s, u"host replication all 127.0.0.1/32 trust"_s});
}

void SessionServerTest::aStoppedServerIsLeftAndFoundAgain()
{
    PgSession session = connected(target(*m_cluster), shop);
    m_cluster->stop();
    const PgError error = errorOf(session.run("update stock set units = 99 where id = 1"));
    PgSession other;
    const PgError second = errorOf(other.connect(target({m_cluster.get()}), {300ms, 100ms, 1s, 1s, {}}));
    m_cluster->cont();
    QCOMPARE(error.kind, Kind::TimedOut);
    QVERIFY(error.mayBeDone);
    QCOMPARE(second.kind, Kind::CannotConnect);
    QVERIFY(session.isLost());
    QVERIFY(session.connect(target(*m_cluster), patient));
    QTRY_COMPARE(one(session, "select units from stock where id = 1"), "99"); // what had been sent was done after all
}

void SessionServerTest::aCutCableIsNoticed()
{
    Proxy cable(m_cluster->port());
    const QByteArray far = "host=127.0.0.1 user=postgres dbname=shop port=" + QByteArray::number(cable.port());
    PgSession session = connected({far}, shop);
    PgSession walking = connected({far}, shop);
    Result<PgRows, PgError> rows = walking.walk("select repeat('x', 10000) from generate_series(1, 20000)");
    QVERIFY(rows);
    cable.goSilent();
    QCOMPARE(errorOf(session.run("select 1")).kind, Kind::TimedOut);
    while (rows->next() == Step::Row) {
    }
    QVERIFY(rows->error());
    QCOMPARE(rows->error()->kind, Kind::TimedOut);
    cable.speak();
    QVERIFY(session.connect({far}, patient));
    cable.cut();
    QCOMPARE(errorOf(session.run("select 1")).kind, Kind::Lost);
}

void SessionServerTest::anotherTillsLockIsWaitedFor()
{
    PgSession holder = connected(target(*m_cluster), patient);
    QVERIFY(holder.run("begin; select units from stock where id = 1 for update"));
    int locks = 0;
    PgWaits waits = shop;
    waits.hook = [&locks, &holder](const PgWait &wait) {
        if (wait.what == PgWaiting::Lock && ++locks == 3) // more than once the time for an answer
            return holder.run("commit").has_value();
        return true;
    };
    PgSession session = connected(target(*m_cluster), waits);
    QCOMPARE(one(session, "begin; select units from stock where id = 1 for update"), "100");
    QCOMPARE(locks, 3);
    QVERIFY(session.isInTransaction());
    QVERIFY(session.run("update stock set units = units - 1 where id = 1; commit", patience));

    QVERIFY(holder.run("begin; select units from stock where id = 1 for update"));
    const PgError error = errorOf(session.run("update stock set units = 0 where id = 1", {400ms, 700ms}));
    QCOMPARE(error.kind, Kind::LockTimedOut);
    QVERIFY(!error.mayBeDone);
    QVERIFY(!session.isLost());
    QVERIFY(holder.run("rollback"));
    QCOMPARE(one(session, "select units from stock where id = 1"), "99");
}

void SessionServerTest::aDeadlockIsResolved()
{
    PgSession first = connected(target(*m_cluster), patient);
    PgSession second = connected(target(*m_cluster), patient);
    // Each goes on once both have their first row, also when it is sent again.
    const QByteArray text("update stock set units = units - 1 where id = %1; select pg_advisory_lock_shared(7);"
                          "do $$ begin while (select count(*) from pg_locks where locktype = 'advisory') < 2 loop "
                          "perform pg_sleep(0.01); end loop; end $$;"
                          "update stock set units = units - 1 where id = %2");
    bool isOtherDone = false;
    std::thread other(
        [&] { isOtherDone = second.run(QByteArray(text).replace("%1", "2").replace("%2", "1")).has_value(); });
    const Result<PgResults, PgError> results = first.run(QByteArray(text).replace("%1", "1").replace("%2", "2"));
    other.join();
    QVERIFY(results);
    QVERIFY(isOtherDone);
    QVERIFY(m_cluster->log().contains(u"deadlock detected"));
    QCOMPARE(m_cluster->sql(u"select units from harrowby.stock order by id"_s), (QStringList{u"98"_s, u"98"_s}));
}

void SessionServerTest::aHundredThousandRowsAreWalked()
{
    PgTarget walk = target(*m_cluster);
    walk.use = PgTarget::Use::Walk;
    PgSession walking = connected(walk, patient);
    PgSession session = connected(target(*m_cluster), patient);
    Result<PgRows, PgError> rows =
        walking.walk("begin transaction isolation level repeatable read read only; select count(*) from stock;"
                     "select g, 'item ' || g from generate_series(1, 100000) g; commit");
    QVERIFY(rows);
    QCOMPARE(rows->next(), Step::Row);
    QCOMPARE(rows->text(0).toByteArray(), "2");
    QCOMPARE(rows->next(), Step::Done);
    QVERIFY(rows->nextSelect());
    int count = 0;
    while (rows->next() == Step::Row) {
        ++count;
        if (count % 10000 == 0)
            QCOMPARE(one(session, "select units from stock where id = 1"), "100");
        if (count == 100000)
            QCOMPARE(rows->text(1).toByteArray(), "item 100000");
    }
    QCOMPARE(count, 100000);
    QVERIFY(!rows->nextSelect());
    QVERIFY(!walking.isInTransaction());
    QCOMPARE(one(walking, "select 1"), "1");
}

/// They are fetched ahead, though not all of them.
void SessionServerTest::rowsThatNobodyReadsStayOnTheServer()
{
    constexpr int all = 50'000;
    PgTarget walk = target(*m_cluster);
    walk.use = PgTarget::Use::Walk;
    walk.programName = "reader";
    PgSession walking = connected(walk, patient);
    Result<PgRows, PgError> rows =
        walking.walk("select repeat('x', 1000), g from generate_series(1, " + QByteArray::number(all) + ") g");
    QVERIFY(rows);
    int count = 0;
    while (count < 400 && rows->next() == Step::Row)
        ++count;
    // It waits for a moment now and then also while rows are fetched.
    const auto waitsForLong = [this] {
        for (int look = 0; look < 10; ++look) {
            if (m_cluster->sql(u"select wait_event from pg_stat_activity where application_name = 'reader'"_s) !=
                QStringList{u"ClientWrite"_s})
                return false;
            QTest::qWait(30);
        }
        return true;
    };
    QVERIFY(QTest::qWaitFor(waitsForLong, 30'000)); // the server makes all of them first
    while (rows->next() == Step::Row) {
        ++count;
        QCOMPARE(rows->text(1).toInt(), count);
    }
    QCOMPARE(count, all);
    QVERIFY(!rows->nextSelect());
    QCOMPARE(one(walking, "select 1"), "1");
}

void SessionServerTest::rowsThatNobodyWantsEnd()
{
    PgSession session = connected(target(*m_cluster), patient);
    for (int i = 0; i < 3; ++i) {
        Result<PgRows, PgError> rows = session.walk("begin; select repeat('x', 1000), generate_series(1, 100000000)");
        QVERIFY(rows);
        QCOMPARE(rows->next(), Step::Row);
    }
    QVERIFY(!session.isLost());
    QVERIFY(!session.isInTransaction());
    QCOMPARE(one(session, "select 1"), "1");
}

void SessionServerTest::aWalkThatIsLeftEndsOnTheServer()
{
    PgTarget walk = target(*m_cluster);
    walk.use = PgTarget::Use::Walk;
    walk.programName = "walker";
    PgSession walking = connected(walk, patient);
    Result<PgRows, PgError> rows =
        walking.walk("select generate_series(1, 2000) union all "
                     "select count(*) from generate_series(1, 100000) a, generate_series(1, 100000) b");
    QVERIFY(rows);
    walking.close();
    m_cluster->await(u"select count(*) from pg_stat_activity where application_name = 'walker'"_s, u"0"_s);
}

void SessionServerTest::aKilledServerIsLostAndFoundAgain()
{
    PgSession session = connected(target(*m_cluster), patient);
    m_cluster->kill9();
    QCOMPARE(errorOf(session.run("select 1")).kind, Kind::Lost);
    QCOMPARE(errorOf(session.connect(target(*m_cluster), shop)).kind, Kind::CannotConnect);
    m_cluster->start();
    QVERIFY(session.connect(target(*m_cluster), patient));
    QCOMPARE(one(session, "select units from stock where id = 1"), "100");
}

void SessionServerTest::aStandbyIsAskedForConfirmation()
{
    const std::unique_ptr<PrivateCluster> standby = m_cluster->standby();
    PgSession session = connected(target({standby.get(), m_cluster.get()}), shop);
    QCOMPARE(session.server().port, QByteArray::number(m_cluster->port()));
    QVERIFY(session.run("update stock set units = 99 where id = 1", patience));
    standby->stop();
    const PgError silent = errorOf(session.run("update stock set units = 98 where id = 1"));
    QCOMPARE(silent.kind, Kind::TimedOut); // and goes on waiting on the server, where nobody has ended it
    QVERIFY(silent.mayBeDone);

    // An administrator who ends such a wait makes a success of it, with a warning.
    PgWaits waits = patient;
    bool isAsked = true; // from the write on
    waits.hook = [this, &isAsked](const PgWait &) {
        if (!std::exchange(isAsked, true))
            m_cluster->await(u"select count(pg_cancel_backend(pid)) from pg_stat_activity "
                             "where wait_event = 'SyncRep' and application_name = 'second'"_s,
                             u"1"_s);
        return true;
    };
    PgTarget second = target(*m_cluster);
    second.programName = "second";
    QVERIFY(session.connect(second, waits));
    isAsked = false;
    const PgError error = errorOf(session.run("update stock set units = 50 where id = 2"));
    QCOMPARE(error.kind, Kind::NotConfirmed);
    QVERIFY(error.mayBeDone);
    QVERIFY(!session.isLost());
    standby->cont();
    m_cluster->await(u"select units from harrowby.stock where id = 1"_s, u"98"_s);
    m_cluster->demandStandby(false);
}

void SessionServerTest::ofTwoPrimariesTheSuccessorIsChosen()
{
    PrivateCluster old;
    old.start();
    const std::unique_ptr<PrivateCluster> successor = old.standby();
    PgSession session = connected(target({&old, successor.get()}), patient);
    QCOMPARE(session.server().port, QByteArray::number(old.port()));
    successor->promote();
    for (const auto &clusters :
         {QList<const PrivateCluster *>{&old, successor.get()}, QList<const PrivateCluster *>{successor.get(), &old}}) {
        QVERIFY(session.connect(target(clusters), patient));
        QCOMPARE(session.server().port, QByteArray::number(successor->port()));
        QCOMPARE(session.server().timeline, 2U);
    }
    PgTarget late = target(old);
    late.leastTimeline = session.server().timeline;
    QCOMPARE(errorOf(session.connect(late, patient)).kind, Kind::ReadOnly);
    old.kill9();
    QVERIFY(session.connect(target({&old, successor.get()}), patient));
}

HARROWBY_CORE_TEST(session_server_test, SessionServerTest)
#include "session_server_test.moc"
