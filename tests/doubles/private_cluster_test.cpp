// SPDX-License-Identifier: MIT
#include "tests/doubles/private_cluster.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <chrono>
#include <future>

#include <libpq-fe.h>
#include <sys/shm.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using harrowby::test::PrivateCluster;

namespace {

constexpr auto soon = 300ms; ///< what is to wait is not done by then

bool connects(const QString &conninfo)
{
    PGconn *connection = PQconnectdb(conninfo.toUtf8().constData());
    const bool done = PQstatus(connection) == CONNECTION_OK;
    PQfinish(connection);
    return done;
}

std::future<bool> beginSql(PrivateCluster &cluster, const QString &statement)
{
    return std::async(std::launch::async, [&cluster, statement] { return cluster.trySql(statement); });
}

int processesIn(const QString &folder)
{
    int found = 0;
    for (const QString &process : QDir(u"/proc"_s).entryList(QDir::Dirs))
        found += QFile::symLinkTarget(u"/proc/%1/cwd"_s.arg(process)).startsWith(folder) ? 1 : 0;
    return found;
}

/// The block of shared memory that the server has written down.
int sharedMemoryOf(const PrivateCluster &cluster)
{
    QFile file(cluster.dataFolder() + u"/postmaster.pid"_s);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    return file.readAll().split('\n').value(6).simplified().split(' ').last().toInt();
}

bool exists(int sharedMemory)
{
    shmid_ds state{};
    return ::shmctl(sharedMemory, IPC_STAT, &state) == 0;
}

} // namespace

class PrivateClusterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void isAsAShopsIs();
    void keepsWhatWasWrittenBeforeAKill();
    void hangsAndGoesOn();
    void letsInWhomItIsTold();
    void writesWaitForTheStandby();
    void standbyTakesOver();
    void standbyHasAllThatWasWrittenBeforeIt();
    void leavesNothingBehind_data();
    void leavesNothingBehind();
};

void PrivateClusterTest::initTestCase()
{
    QCOMPARE(PrivateCluster::missing(), QString());
}

void PrivateClusterTest::isAsAShopsIs()
{
    PrivateCluster cluster({u"max_connections = 17"_s});
    cluster.start();
    QCOMPARE(cluster.sql(u"SELECT datcollate, pg_encoding_to_char(encoding) FROM pg_database WHERE datname = 'shop'"_s),
             QStringList{u"C|UTF8"_s});
    QCOMPARE(cluster.sql(u"SHOW data_checksums"_s), QStringList{u"on"_s});
    QCOMPARE(cluster.sql(u"SHOW max_connections"_s), QStringList{u"17"_s});
    QCOMPARE(cluster.sql(u"SELECT NULL, 1; SELECT 'a', NULL UNION SELECT 'b', 'c'"_s),
             QStringList({u"a|"_s, u"b|c"_s}));
    QVERIFY(connects(cluster.conninfo()));
    QVERIFY(connects(cluster.tcpConninfo()));
    cluster.set(u"work_mem"_s, u"9MB"_s);
    QCOMPARE(cluster.sql(u"SHOW work_mem"_s), QStringList{u"9MB"_s});
}

void PrivateClusterTest::keepsWhatWasWrittenBeforeAKill()
{
    PrivateCluster cluster;
    cluster.start();
    const quint16 port = cluster.port();
    cluster.sql(u"CREATE TABLE t (a int); INSERT INTO t VALUES (1)"_s);
    cluster.kill9();
    QVERIFY(!cluster.isRunning());
    QVERIFY(!connects(cluster.tcpConninfo()));
    QCOMPARE(processesIn(cluster.dataFolder()), 0);
    cluster.start();
    QCOMPARE(cluster.port(), port);
    QCOMPARE(cluster.sql(u"SELECT a FROM t"_s), QStringList{u"1"_s});
    cluster.shutDown();
    QVERIFY(!connects(cluster.conninfo()));
    cluster.start();
    QCOMPARE(cluster.sql(u"SELECT a FROM t"_s), QStringList{u"1"_s});
}

void PrivateClusterTest::hangsAndGoesOn()
{
    PrivateCluster cluster;
    cluster.start();
    cluster.stop();
    std::future<bool> answered = beginSql(cluster, u"SELECT 1"_s);
    QVERIFY(answered.wait_for(soon) == std::future_status::timeout);
    cluster.cont();
    QVERIFY(answered.get());
}

void PrivateClusterTest::letsInWhomItIsTold()
{
    PrivateCluster cluster;
    cluster.start();
    cluster.setAccess({u"local all postgres trust"_s, u"host all till 127.0.0.1/32 scram-sha-256"_s});
    cluster.sql(u"CREATE USER till PASSWORD 'secret'"_s);
    QVERIFY(!connects(cluster.tcpConninfo()));
    QVERIFY(!connects(cluster.tcpConninfo(u"till"_s)));
    QVERIFY(!connects(cluster.tcpConninfo(u"till"_s) + u" password=other"_s));
    QVERIFY(connects(cluster.tcpConninfo(u"till"_s) + u" password=secret"_s));
}

void PrivateClusterTest::writesWaitForTheStandby()
{
    PrivateCluster cluster;
    cluster.start();
    cluster.sql(u"CREATE TABLE t (a int)"_s);
    const std::unique_ptr<PrivateCluster> standby = cluster.standby();
    cluster.sql(u"INSERT INTO t VALUES (1)"_s);
    standby->kill9();
    std::future<bool> written = beginSql(cluster, u"INSERT INTO t VALUES (2)"_s);
    QVERIFY(written.wait_for(soon) == std::future_status::timeout);
    standby->start();
    QVERIFY(written.get());
    standby->await(u"SELECT count(*) FROM t"_s, u"2"_s);
    standby->kill9();
    cluster.demandStandby(false);
    QVERIFY(cluster.trySql(u"INSERT INTO t VALUES (3)"_s));
}

void PrivateClusterTest::standbyTakesOver()
{
    PrivateCluster first;
    first.start();
    first.sql(u"CREATE TABLE t (a int)"_s);
    const std::unique_ptr<PrivateCluster> second = first.standby();
    first.sql(u"INSERT INTO t VALUES (1)"_s);
    QVERIFY(!second->trySql(u"INSERT INTO t VALUES (2)"_s)); // not yet
    first.kill9();
    second->promote();
    second->sql(u"INSERT INTO t VALUES (2)"_s);
    first.follow(*second);
    second->sql(u"INSERT INTO t VALUES (3)"_s);
    first.await(u"SELECT count(*) FROM t"_s, u"3"_s);
    second->kill9();
    first.promote();
    first.sql(u"INSERT INTO t VALUES (4)"_s);
    QCOMPARE(first.sql(u"SELECT substr(pg_walfile_name(pg_current_wal_lsn()), 1, 8)"_s), QStringList{u"00000003"_s});
}

/// Also what no write has waited for that came after it: the primary may go as soon as the standby is there.
void PrivateClusterTest::standbyHasAllThatWasWrittenBeforeIt()
{
    PrivateCluster first;
    first.start();
    first.sql(u"CREATE TABLE t (a int)"_s);
    const std::unique_ptr<PrivateCluster> second = first.standby();
    first.kill9();
    second->promote();
    second->sql(u"INSERT INTO t SELECT generate_series(1, 200000)"_s); // confirmed by nobody
    first.follow(*second);
    second->kill9();
    first.promote();
    QCOMPARE(first.sql(u"SELECT count(*) FROM t"_s), QStringList{u"200000"_s});
}

void PrivateClusterTest::leavesNothingBehind_data()
{
    using End = void (*)(PrivateCluster &);
    QTest::addColumn<End>("end");
    QTest::newRow("running") << End([](PrivateCluster &) {});
    QTest::newRow("ended") << End([](PrivateCluster &cluster) { cluster.shutDown(); });
    QTest::newRow("killed") << End([](PrivateCluster &cluster) { cluster.kill9(); });
    QTest::newRow("hanging") << End([](PrivateCluster &cluster) { cluster.stop(); });
}

void PrivateClusterTest::leavesNothingBehind()
{
    using End = void (*)(PrivateCluster &);
    QFETCH(const End, end);
    auto cluster = std::make_unique<PrivateCluster>();
    cluster->start();
    cluster->sql(u"SELECT 1"_s);
    const QString folder = cluster->socketFolder();
    const int sharedMemory = sharedMemoryOf(*cluster);
    QVERIFY(processesIn(folder) > 0);
    QVERIFY(exists(sharedMemory));
    end(*cluster);
    cluster.reset();
    QCOMPARE(processesIn(folder), 0);
    QVERIFY(!QFile::exists(folder));
    QVERIFY(!exists(sharedMemory));
}

HARROWBY_CORE_TEST(private_cluster_test, PrivateClusterTest)
#include "private_cluster_test.moc"
