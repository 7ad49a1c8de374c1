// SPDX-License-Identifier: MIT
#include "tests/doubles/cluster_tools.h"
#include "tests/doubles/server_shop.h"
#include "tests/postgres/server_fixture.h"
#include "tests/program/test_program.h"

#include "store/recordset.h"
#include "store/statement_texts.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <libpq-fe.h>

using namespace harrowby;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Access = DbRecordset::Access;

namespace {

/// Waits for nobody: what the connections of the tests have at most (ServerFixture::options()), and a busy machine.
constexpr qint64 boundMs = 8'000;

/// A server whose disk is full while a file is there: see tests/doubles/full_server_disk.cpp.
class FullServerDisk
{
public:
    explicit FullServerDisk(const PrivateCluster &cluster) : m_mark(cluster.dataFolder() + u"/disk-is-full"_s)
    {
        QFile file(m_mark);
        m_isFull = file.open(QIODevice::WriteOnly);
    }
    ~FullServerDisk() { QFile::remove(m_mark); }
    FullServerDisk(const FullServerDisk &) = delete;
    FullServerDisk &operator=(const FullServerDisk &) = delete;

    [[nodiscard]] bool isFull() const { return m_isFull; }

private:
    QString m_mark;
    bool m_isFull = false;
};

} // namespace

/// Servers that have no room: for one more connection, or on their disk. It is told within its time, nothing is done
/// that was refused, and the till goes on as soon as there is room.
class ConnectionTroubleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void tooManyConnections();
    void noneLeftToWalk();
    void fullDisk();
    void fullDiskOfTheLog();

private:
    [[nodiscard]] QString till() const { return m_server->cluster.conninfo(u"till"_s); }
    void occupy(int connections);
    [[nodiscard]] bool addPurchase(int number);

    std::unique_ptr<ServerFixture> m_server;
    std::shared_ptr<PostgresConnection> m_connection;
    std::vector<std::unique_ptr<PGconn, decltype(&PQfinish)>> m_others;
};

void ConnectionTroubleTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    // Where the user that servers run as gets to it.
    const QString disk = cluster::parentFolder() + u"/full-server-disk.so"_s;
    QFile::remove(disk);
    QVERIFY(QFile::copy(QStringLiteral(HARROWBY_FULL_SERVER_DISK), disk));
    QVERIFY(QFile::setPermissions(disk, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther));
    qputenv("LD_PRELOAD", disk.toUtf8());
    m_server =
        std::make_unique<ServerFixture>(QStringList{u"max_connections = 8"_s, u"superuser_reserved_connections = 2"_s,
                                                    u"max_wal_senders = 0"_s, u"autovacuum = off"_s});
    qunsetenv("LD_PRELOAD");
    setUpShop(m_server->cluster, u"shop"_s);
}

void ConnectionTroubleTest::occupy(int connections)
{
    for (int i = 0; i < connections; ++i) {
        m_others.emplace_back(PQconnectdb(till().toUtf8().constData()), &PQfinish);
        QCOMPARE(PQstatus(m_others.back().get()), CONNECTION_OK);
    }
}

void ConnectionTroubleTest::tooManyConnections()
{
    m_server->refill();
    occupy(5); // of eight, two are kept for the owner, who has one already
    m_connection = m_server->connect(till());
    m_connection->beginAction();
    QElapsedTimer took;
    took.start();
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), m_connection);
    QVERIFY(item.HasFailed());
    QVERIFY(!Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(m_connection->lastWrite(), WriteOutcome::Refused);
    QVERIFY2(took.elapsed() < boundMs, qPrintable(QString::number(took.elapsed())));
    QCOMPARE(m_server->failures.size(), 2u);
    QVERIFY2(m_server->failures.front().engineState == u"53300"_s, qPrintable(m_server->failures.front().reason));
    m_others.pop_back();
    m_connection->beginAction();
    item.Open(statements::stockById(u"1"_s), m_connection);
    QCOMPARE(item.RecordCount(), 1);
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(m_server->stockOf(u"1"_s), u"11"_s);
}

/// A list that finds no connection of its own is read on the till's.
void ConnectionTroubleTest::noneLeftToWalk()
{
    m_server->failures.clear();
    m_connection->beginAction();
    DbRecordset list;
    list.Open(statements::allStock(), m_connection, Access::Walk);
    QCOMPARE(list.RecordCount(), 3);
    QVERIFY(m_server->failures.empty());
    m_connection.reset();
    m_others.clear();
}

bool ConnectionTroubleTest::addPurchase(int number)
{
    QString lines; // about 20,000 letters that no compression makes small
    for (int i = 0; i < 3'000; ++i)
        lines += QString::number(number * 7919 + i * i * 31, 36);
    return m_connection->insertRow(u"PurchaseCart"_s,
                                   {{u"PurchaseID"_s, QString::number(number)}, {u"PurchasedItems"_s, lines}});
}

void ConnectionTroubleTest::fullDisk()
{
    m_server->refill();
    m_connection = m_server->connect(till());
    QVERIFY(addPurchase(1));
    int done = 1;
    {
        const FullServerDisk full(m_server->cluster);
        QVERIFY(full.isFull());
        QElapsedTimer took;
        took.start();
        while (done < 1'000 && addPurchase(done + 1))
            ++done;
        QVERIFY2(done < 1'000, "the disk is not full");
        QCOMPARE(m_connection->lastWrite(), WriteOutcome::Refused);
        QCOMPARE(m_server->failures.size(), 1u);
        QCOMPARE(m_server->failures.front().engineState, u"53100"_s);
        DbRecordset item;
        item.Open(statements::stockById(u"1"_s), m_connection); // reading goes on
        QCOMPARE(item.RecordCount(), 1);
        QVERIFY2(took.elapsed() < boundMs, qPrintable(QString::number(took.elapsed())));
    }
    m_connection->beginAction();
    QVERIFY(addPurchase(done + 1));
    QCOMPARE(m_server->cluster.sql(u"select count(*) from harrowby.PurchaseCart"_s).join(u','),
             QString::number(done + 1));
}

/// The server's own log cannot grow: it stops, and cannot come back before there is room.
void ConnectionTroubleTest::fullDiskOfTheLog()
{
    m_server->refill();
    PostgresOptions options = m_server->options();
    options.rest = 2'000ms;
    m_connection = std::make_shared<PostgresConnection>(till(), options);
    m_connection->setFailureHandler([this](const DbFailure &failure) { m_server->failures.push_back(failure); });
    int resolvedDone = 0;
    m_connection->setResolvedHandler(
        [&](const QString &, WriteOutcome known) { resolvedDone += known == WriteOutcome::Done ? 1 : 0; });
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    int done = 1;
    {
        const FullServerDisk full(m_server->cluster);
        QElapsedTimer took;
        took.start();
        m_connection->beginAction();
        for (int writes = 0; writes < 50 && m_server->failures.empty(); ++writes) {
            m_server->cluster.trySql(u"select pg_switch_wal()"_s); // soon there is no file left to be used again
            done += Execute(m_connection, statements::raiseStock(1, u"1"_s)) ? 1 : 0;
        }
        QVERIFY(!m_server->failures.empty());
        QVERIFY(m_server->cluster.log().contains(u"PANIC"_s)); // it was not the till's own limit
        QVERIFY2(took.elapsed() < 60'000, qPrintable(QString::number(took.elapsed())));
    }
    m_server->cluster.kill9();
    m_server->cluster.start();
    m_connection->beginAction();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(m_server->stockOf(u"1"_s), QString::number(10 + done + resolvedDone + 1));
}

HARROWBY_CORE_TEST(connection_trouble_test, ConnectionTroubleTest)
#include "connection_trouble_test.moc"
