// SPDX-License-Identifier: MIT
#include "tests/doubles/proxy.h"
#include "tests/postgres/server_fixture.h"
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
class ConnectionServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { m_connection.reset(); }

    void readsAnItem();
    void writesAndReadsBack();
    void refusesBeforeSending_data();
    void refusesBeforeSending();
    void oneRoundTripEach();
    void choiceOfTheSearch();
    void countsWithoutReading();
    void walksBesideOtherWork();
    void walksSeeOneMoment();
    void fourthListIsReadWhole();
    void searchLooksOnce();
    void walkThatIsLeft();
    void reordersLoseNothing();
    void purchaseIdIsHeld();
    void holdWithoutAWrite();
    void lostAnswer_data();
    void lostAnswer();
    void heldRowHasChanged();
    void noConnectionLeftForAList();
    void telling();

private:
    [[nodiscard]] QString throughProxy(const Proxy &proxy) const;

    std::unique_ptr<ServerFixture> m_server;
    std::shared_ptr<PostgresConnection> m_connection;
};

void ConnectionServerTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    m_server = std::make_unique<ServerFixture>();
}

void ConnectionServerTest::init()
{
    m_server->refill();
    m_connection = m_server->connect();
}

QString ConnectionServerTest::throughProxy(const Proxy &proxy) const
{
    return u"host=127.0.0.1 port=%1 user=postgres dbname=shop sslmode=disable"_s.arg(proxy.port());
}

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
    QVERIFY(m_server->failures.front().engineState.isEmpty());
    QCOMPARE(m_server->failures.front().statement, u"UPDATE StockList"_s);
    QCOMPARE(m_connection->lastWrite(), WriteOutcome::Refused);
    QVERIFY(!m_connection->mayHaveWritten());
}

void ConnectionServerTest::oneRoundTripEach()
{
    Proxy proxy(m_server->cluster.port());
    m_connection = m_server->connect(throughProxy(proxy));
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

/// What it takes to ask is done for searches alone, and once for each.
void ConnectionServerTest::choiceOfTheSearch()
{
    int asked = 0;
    PostgresOptions options = m_server->options();
    options.findsAnywhere = [&asked] { return ++asked > 0; };
    const auto till = std::make_shared<PostgresConnection>(m_server->cluster.conninfo(), options);
    QVERIFY(!till->open());
    DbRecordset list;
    for (const Access access : {Access::Read, Access::Edit, Access::Walk}) {
        list.Open(statements::stockById(u"1"_s), till, access);
        QCOMPARE(list.RecordCount(), 1);
        list.Open(statements::allStock(), till, access);
        QCOMPARE(list.RecordCount(), 3);
    }
    list.OpenHeld(statements::stockById(u"1"_s), till, Access::Edit);
    QCOMPARE(asked, 0);
    for (const Access access : {Access::Read, Access::Walk}) {
        list.Open(statements::searchStock(u"TEM 000002"_s), till, access);
        QCOMPARE(list.RecordCount(), 1);
    }
    QCOMPARE(asked, 2);
}

void ConnectionServerTest::countsWithoutReading()
{
    m_server->refill(20'000);
    Proxy proxy(m_server->cluster.port());
    m_connection = m_server->connect(throughProxy(proxy));
    QVERIFY(!m_connection->open());
    for (int turn = 0; turn < 3; ++turn) {
        const int before = proxy.roundTrips();
        DbRecordset items;
        items.Open(statements::quickSalesCount(false, statements::allCategories), m_connection);
        QCOMPARE(items.RecordCount(), 20'000);
        QCOMPARE(proxy.roundTrips() - before, 1);
    }
    DbRecordset items;
    items.Open(statements::stockItems(false, u"DRINKS"_s), m_connection);
    QCOMPARE(items.RecordCount(), 20'000);
    QCOMPARE(items.Field(u"StockID"_s).text(), u"1"_s); // beyond the first rows: all are fetched
    QCOMPARE(m_connection->countRows(u"Select * from StockList"_s), std::optional<std::int64_t>(20'000));
}

void ConnectionServerTest::walksBesideOtherWork()
{
    m_server->refill(20'000);
    QVERIFY(!m_connection->open());
    DbRecordset walk;
    walk.Open(statements::allStock(), m_connection, Access::Walk);
    QCOMPARE(walk.RecordCount(), 20'000);
    int rows = 0;
    for (; !walk.IsEof(); walk.MoveNext(), ++rows) {
        QCOMPARE(walk.Field(u"StockID"_s).text(), QString::number(rows + 1));
        if (rows % 5'000 != 17)
            continue;
        DbRecordset item;
        item.Open(statements::stockById(QString::number(rows)), m_connection);
        QCOMPARE(item.RecordCount(), 1);
        QVERIFY(Execute(m_connection, statements::raiseStock(1, QString::number(rows))));
    }
    QCOMPARE(rows, 20'000);
    QVERIFY(!walk.HasFailed());
    QVERIFY(m_server->failures.empty());
    QCOMPARE(m_server->stockOf(u"17"_s), u"11"_s);
}

void ConnectionServerTest::walksSeeOneMoment()
{
    QVERIFY(!m_connection->open());
    const auto cursor = m_connection->queryAs(u"Select * from StockList"_s, DbReading::CountedWalk);
    QVERIFY(cursor);
    QVERIFY(cursor->standsApart());
    QVERIFY(m_connection->Execute(u"Delete from StockList"_s));
    QCOMPARE(cursor->rowCount(), std::optional<std::int64_t>(3));
    int rows = 0;
    for (; cursor->next() == DbCursor::Step::Row; ++rows)
        QVERIFY(cursor->rowId());
    QCOMPARE(rows, 3);
    QCOMPARE(cursor->next(), DbCursor::Step::Done);
}

void ConnectionServerTest::fourthListIsReadWhole()
{
    m_server->refill(5'000);
    QVERIFY(!m_connection->open());
    const auto sessions = [&] {
        return m_server->cluster.sql(u"select count(*) from pg_stat_activity where application_name like 'harrowby%'"_s)
            .join(u',')
            .toInt();
    };
    const int before = sessions();
    std::vector<std::unique_ptr<DbCursor>> walks;
    for (int i = 0; i < 5; ++i) {
        walks.push_back(m_connection->queryAs(u"Select * from StockList"_s, DbReading::Walk));
        QVERIFY(walks.back());
        QCOMPARE(walks.back()->next(), DbCursor::Step::Row);
    }
    QCOMPARE(sessions(), before + 3);
    for (const auto &walk : walks) {
        int rows = 1;
        while (walk->next() == DbCursor::Step::Row)
            ++rows;
        QCOMPARE(rows, 5'000);
    }
    walks.clear();
    QVERIFY(m_connection->queryAs(u"Select * from StockList"_s, DbReading::Walk));
    QCOMPARE(sessions(), before + 3); // one of them again
    QVERIFY(m_server->failures.empty());
}

/// It looks through every item, and does so once: on the till's own session, without counting before.
void ConnectionServerTest::searchLooksOnce()
{
    m_server->refill(5'000);
    PostgresOptions wanted = m_server->options();
    wanted.findsAnywhere = [] { return true; };
    m_connection = std::make_shared<PostgresConnection>(m_server->cluster.conninfo(), wanted);
    QVERIFY(!m_connection->open());
    const auto sessions = [&] {
        return m_server->cluster.sql(
            u"select count(*) from pg_stat_activity where application_name like 'harrowby%'"_s);
    };
    const QStringList before = sessions();
    for (const auto &[text, count] : {std::pair(u"TEM 0049"_s, 100), std::pair(u"NONE"_s, 0)}) {
        DbRecordset found;
        found.Open(statements::searchStock(text), m_connection, Access::Walk);
        QCOMPARE(found.RecordCount(), count);
        QCOMPARE(sessions(), before);
    }
    const auto category = [&] {
        DbRecordset items;
        items.Open(statements::stockItems(false, u"DRINKS"_s), m_connection, Access::Walk);
        return items.RecordCount();
    };
    QCOMPARE(category(), 5'000);
    const QStringList walked = sessions(); // nothing was known of that list yet
    QCOMPARE(category(), 5'000);
    QCOMPARE(sessions(), walked);
    QVERIFY(m_server->failures.empty());
}

void ConnectionServerTest::walkThatIsLeft()
{
    m_server->refill(20'000);
    QVERIFY(!m_connection->open());
    for (int turn = 0; turn < 4; ++turn) {
        auto cursor = m_connection->queryAs(u"Select * from StockList"_s, DbReading::CountedWalk);
        QCOMPARE(cursor->next(), DbCursor::Step::Row);
        cursor.reset();
        cursor = m_connection->queryAs(u"Select * from StockList where StockID = '7'"_s, DbReading::CountedWalk);
        QCOMPARE(cursor->rowCount(), std::optional<std::int64_t>(1));
        QCOMPARE(cursor->next(), DbCursor::Step::Row);
        QVERIFY(cursor->value(0) == DbValue(u"7"_s));
        QCOMPARE(cursor->next(), DbCursor::Step::Done);
    }
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
    m_connection = m_server->connect(throughProxy(proxy));
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
    m_connection = m_server->connect(throughProxy(proxy));
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

/// The server takes one connection of this till: lists are read over it, whole.
void ConnectionServerTest::noConnectionLeftForAList()
{
    m_server->cluster.sql(
        u"drop role if exists narrow; create role narrow login connection limit 1; grant usage on schema harrowby "
        "to narrow; grant all on all tables in schema harrowby to narrow"_s);
    m_connection = m_server->connect(m_server->cluster.conninfo(u"narrow"_s));
    QVERIFY(!m_connection->open());
    DbRecordset walk;
    walk.Open(statements::allStock(), m_connection, Access::Walk);
    QCOMPARE(walk.RecordCount(), 3);
    QCOMPARE(walk.Field(u"StockID"_s).text(), u"1"_s);
    QVERIFY(!walk.HasFailed());
    m_connection.reset();
    m_server->cluster.sql(u"drop owned by narrow; drop role narrow"_s);
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
