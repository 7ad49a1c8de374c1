// SPDX-License-Identifier: MIT
#include "tests/postgres/connected_till.h"
#include "tests/program/test_program.h"

#include "store/recordset.h"
#include "store/statement_texts.h"

#include <QTest>

#include <atomic>
#include <thread>

using namespace harrowby;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Access = DbRecordset::Access;
using Outcome = DbRecordset::Outcome;

/// The component's way into the store, on a real server.
class ConnectionServerTest : public ConnectedTill
{
    Q_OBJECT

private Q_SLOTS:
    void readsAnItem();
    void writesAndReadsBack();
    void refusesBeforeSending_data();
    void refusesBeforeSending();
    void oneRoundTripEach();
    void reordersLoseNothing();
    void purchaseIdIsHeld();
    void holdWithoutAWrite();
    void lostAnswer_data();
    void lostAnswer();
    void heldRowHasChanged();
    void telling();
};

void ConnectionServerTest::readsAnItem()
{
    DbRecordset item;
    item.Open(statements::stockById(u"2"_s), m_connection);
    QCOMPARE(item.RecordCount(), 1);
    QVERIFY(item.Field(u"sTOCKid"_s).value() == DbValue(u"2"_s));
    QVERIFY(item.Field(u"StockCost"_s).value() == DbValue(2.5));
    QVERIFY(item.Field(u"StockAvailable"_s).value() == DbValue(std::int64_t{10}));
    QVERIFY(item.Field(u"StockAdded"_s).value() == DbValue());
    QVERIFY(!item.Field(u"rowid_"_s).value());
    QByteArray buffer;
    QCOMPARE(item.Field(u"StockName"_s).utf8(buffer)->toString(), u"ITEM 000002"_s);
    QVERIFY(m_server->failures.empty());
    QCOMPARE(m_connection->location(), u"/opt/shop"_s);
}

void ConnectionServerTest::writesAndReadsBack()
{
    QVERIFY(Execute(m_connection, statements::lowerStock(3, u"1"_s, u"ITEM 000001"_s)));
    QCOMPARE(m_connection->lastWrite(), WriteOutcome::Done);
    QCOMPARE(m_server->stockOf(u"1"_s), u"7"_s);
    DbRecordset row;
    row.Open(statements::stockById(u"2"_s), m_connection, Access::Edit);
    row.Field(u"StockName"_s).assign(u"it's \\ \"TEA\" é"_s);
    row.Field(u"StockCost"_s).assign(0.1);
    QCOMPARE(row.Update(), Outcome::Written);
    QCOMPARE(m_server->cluster.sql(u"select StockName, StockCost from harrowby.StockList where StockID = '2'"_s),
             QStringList{u"it's \\ \"TEA\" é|0.1"_s});
    row.Open(statements::stockById(u"9"_s), m_connection);
    row.AddNew();
    row.Field(u"StockID"_s).assign(u"9"_s);
    row.Field(u"StockAvailable"_s).assign(std::int64_t{4});
    QCOMPARE(row.Update(), Outcome::Written);
    QCOMPARE(m_server->stockOf(u"9"_s), u"4"_s);
    QVERIFY(m_connection->Execute(u"Update StockList SET StockCost = 1 where StockID = 'none'"_s)); // matches no row
    QVERIFY(m_server->failures.empty());
}

void ConnectionServerTest::refusesBeforeSending_data()
{
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("value");
    QTest::newRow("a text in a figure's column") << u"StockCost"_s << u"cheap"_s;
    QTest::newRow("a NUL") << u"StockName"_s << QString(QChar(u'\0'));
    QTest::newRow("too long for an index") << u"StockName"_s << QString(3000, u'x');
}

void ConnectionServerTest::refusesBeforeSending()
{
    QFETCH(const QString, column);
    QFETCH(const QString, value);
    DbRecordset row;
    row.Open(statements::stockById(u"1"_s), m_connection, Access::Edit);
    row.Field(column).assign(value);
    QCOMPARE(row.Update(), Outcome::NotWritten);
    QCOMPARE(m_server->failures.size(), 1u);
    QCOMPARE(m_server->failures.front().engineState, u"22000"_s);
    QCOMPARE(m_server->failures.front().statement, u"UPDATE StockList"_s);
    QCOMPARE(m_connection->lastWrite(), WriteOutcome::Refused);
    QVERIFY(!m_connection->mayHaveWritten());
}

void ConnectionServerTest::oneRoundTripEach()
{
    Proxy proxy(m_server->cluster.port());
    m_connection = m_server->connect(through(proxy));
    m_server->cluster.sql(
        u"insert into harrowby.InventoryCategory (CategoryName) select 'C' || i from generate_series(1, 30) i"_s);
    const auto tripsOf = [&](const auto &work) {
        const int before = proxy.roundTrips();
        work();
        return proxy.roundTrips() - before;
    };
    const auto readAll = [&](const Statement &select) {
        DbRecordset rows;
        rows.Open(select, m_connection);
        for (int i = rows.RecordCount(); i > 0; --i) {
            QVERIFY(rows.Field(u"CategoryName"_s).value() || rows.Field(u"StockID"_s).value());
            rows.MoveNext();
        }
    };
    QVERIFY(m_connection->Execute(u"Delete from SysUsage"_s));             // connects, and enrols
    QCOMPARE(tripsOf([&] { readAll(statements::stockById(u"1"_s)); }), 1); // the first time, too
    QCOMPARE(tripsOf([&] { readAll(statements::stockById(u"2"_s)); }), 1);
    readAll(statements::categories());
    QCOMPARE(tripsOf([&] { readAll(statements::categories()); }), 1); // its rows are used, it has learned
    QCOMPARE(tripsOf([&] { Execute(m_connection, statements::raiseStock(1, u"1"_s)); }), 1);
    const int reorder = tripsOf([&] {
        DbRecordset row;
        row.OpenHeld(statements::stockById(u"1"_s), m_connection, Access::Edit);
        row.Field(u"StockAvailable"_s).assign(row.Field(u"StockAvailable"_s).number() + 5);
        QCOMPARE(row.Update(), Outcome::Written);
    });
    QCOMPARE(reorder, 2);
    QCOMPARE(m_server->stockOf(u"1"_s), u"16"_s);
    QVERIFY(m_server->failures.empty());
}

/// Four tills add to the same item; each reads first and writes the sum.
void ConnectionServerTest::reordersLoseNothing()
{
    constexpr int tills = 4;
    constexpr int reorders = 50;
    std::vector<std::jthread> threads;
    std::atomic<int> failed = 0;
    for (int till = 0; till < tills; ++till) {
        PostgresOptions wanted = m_server->options();
        wanted.lock = 20'000ms;
        threads.emplace_back([&, wanted] {
            const auto connection = std::make_shared<PostgresConnection>(m_server->cluster.conninfo(), wanted);
            for (int i = 0; i < reorders; ++i) {
                DbRecordset stock;
                stock.OpenHeld(statements::stockById(u"1"_s), connection, Access::Edit);
                stock.Field(u"StockAvailable"_s).assign(stock.Field(u"StockAvailable"_s).number() + 5);
                if (stock.Update() != Outcome::Written)
                    ++failed;
            }
        });
    }
    for (std::jthread &thread : threads)
        thread.join();
    QCOMPARE(failed.load(), 0);
    QCOMPARE(m_server->stockOf(u"1"_s), QString::number(10 + tills * reorders * 5));
}

/// A purchase's ID that is not there yet: whoever looks for it second sees the first one's row.
void ConnectionServerTest::purchaseIdIsHeld()
{
    const auto add = [](DbRecordset &purchase, const QString &id) {
        purchase.AddNew();
        purchase.Field(u"PurchaseID"_s).assign(id);
        return purchase.Update();
    };
    DbRecordset first;
    first.OpenHeld(statements::purchase(u"HV1"_s), m_connection, Access::Read);
    QCOMPARE(first.RecordCount(), 0);
    int seen = -1;
    std::jthread other([&] {
        PostgresOptions wanted = m_server->options();
        wanted.lock = 20'000ms;
        const auto connection = std::make_shared<PostgresConnection>(m_server->cluster.conninfo(), wanted);
        DbRecordset second;
        second.OpenHeld(statements::purchase(u"HV1"_s), connection, Access::Read);
        seen = second.RecordCount();
        second.AddNew();
        second.Field(u"PurchaseID"_s).assign(u"HE1"_s);
        second.Update();
    });
    m_server->cluster.await(u"select count(*) from pg_locks where locktype = 'advisory' and not granted"_s, u"1"_s);
    QCOMPARE(add(first, u"HV1"_s), Outcome::Written);
    other.join();
    QCOMPARE(seen, 1);
    QCOMPARE(m_server->cluster.sql(u"select PurchaseID from harrowby.PurchaseCart order by 1"_s),
             (QStringList{u"HE1"_s, u"HV1"_s}));
}

void ConnectionServerTest::holdWithoutAWrite()
{
    {
        DbRecordset stock;
        stock.OpenHeld(statements::stockById(u"1"_s), m_connection, Access::Edit);
        QCOMPARE(stock.RecordCount(), 1);
    }
    QCOMPARE(m_server->cluster.sql(u"select count(*) from pg_stat_activity where state like 'idle in transaction%'"_s),
             QStringList{u"0"_s});
    QVERIFY(!m_connection->hold());
    QVERIFY(m_connection->settle(u"UPDATE StockList"_s));
    QVERIFY(!m_connection->holdFor({}, HeldWrite::Change));
    DbRecordset broken;
    broken.OpenHeld(Statement("Select * from Nowhere where StockID = '1'"), m_connection, Access::Edit);
    QCOMPARE(m_server->failures.size(), 1u);
    QCOMPARE(m_server->failures.front().engineState, u"42P01"_s);
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(m_server->stockOf(u"1"_s), u"11"_s);
}

void ConnectionServerTest::lostAnswer_data()
{
    QTest::addColumn<bool>("isHeld");
    QTest::newRow("a write alone") << false;
    QTest::newRow("a held one") << true;
}

/// The server has done it, and the connection breaks before it can say so.
void ConnectionServerTest::lostAnswer()
{
    QFETCH(const bool, isHeld);
    Proxy proxy(m_server->cluster.port());
    m_connection = m_server->connect(through(proxy));
    QVERIFY(m_connection->Execute(u"Delete from SysUsage"_s));
    for (int turn = 0; turn < 5; ++turn) {
        if (isHeld) {
            DbRecordset stock;
            stock.OpenHeld(statements::stockById(u"1"_s), m_connection, Access::Edit);
            stock.Field(u"StockAvailable"_s).assign(stock.Field(u"StockAvailable"_s).number() + 5);
            proxy.loseAnswerOf(1);
            QCOMPARE(stock.Update(), Outcome::Written);
        } else {
            proxy.loseAnswerOf(1);
            QVERIFY(Execute(m_connection, statements::raiseStock(5, u"1"_s)));
        }
        QCOMPARE(m_connection->lastWrite(), WriteOutcome::Done);
    }
    QCOMPARE(m_server->stockOf(u"1"_s), u"35"_s);
    QVERIFY(m_server->failures.empty());
}

/// The connection breaks between read and write, its lock goes, and another till sells.
void ConnectionServerTest::heldRowHasChanged()
{
    Proxy proxy(m_server->cluster.port());
    m_connection = m_server->connect(through(proxy));
    m_connection->setFailureHandler([this](const DbFailure &failure) { m_server->failures.push_back(failure); });
    QVERIFY(m_connection->Execute(u"Delete from SysUsage"_s));
    for (const bool isSold : {false, true}) {
        DbRecordset stock;
        stock.OpenHeld(statements::stockById(u"1"_s), m_connection, Access::Edit);
        stock.Field(u"StockAvailable"_s).assign(stock.Field(u"StockAvailable"_s).number() + 5);
        proxy.cut();
        m_server->cluster.await(u"select count(*) from pg_stat_activity where state like 'idle in transaction%'"_s,
                                u"0"_s);
        if (isSold)
            m_server->cluster.sql(
                u"update harrowby.StockList set StockAvailable = StockAvailable - 1 where StockID = '1'"_s);
        QCOMPARE(stock.Update(), isSold ? Outcome::NotWritten : Outcome::Written);
        QCOMPARE(m_server->failures.size(), isSold ? 1u : 0u);
    }
    QCOMPARE(m_server->failures.front().engineState, u"HB002"_s);
    QCOMPARE(m_server->stockOf(u"1"_s), u"14"_s);
}

void ConnectionServerTest::telling()
{
    QVERIFY(!m_connection->query(u"Select * from Nowhere"_s));
    QVERIFY(!m_connection->query(u"Delete from StockList"_s));
    QVERIFY(!m_connection->countRows(u"Select * from Nowhere"_s));
    QVERIFY(!m_connection->rowIds(u"Select StockID from StockList"_s));
    QVERIFY(!m_connection->Execute(u"Select 1"_s));
    QVERIFY(!m_connection->Execute(u"Update Nowhere set A = 1"_s));
    QCOMPARE(m_server->failures.size(), 6u);
    QCOMPARE(m_server->failures.front().engineState, u"42P01"_s);
    QCOMPARE(m_connection->rowIds(u"Select * from StockList"_s)->size(), 3u);
    const auto nobody = m_server->connect(u"host=/nowhere dbname=shop"_s);
    const auto failure = nobody->open();
    QVERIFY(failure);
    QCOMPARE(failure->engineState, u"08001"_s);
}

HARROWBY_CORE_TEST(connection_server_test, ConnectionServerTest)
#include "connection_server_test.moc"
