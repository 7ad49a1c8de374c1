// SPDX-License-Identifier: MIT
#include "tests/doubles/private_cluster.h"
#include "tests/doubles/proxy.h"
#include "tests/postgres/server_store.h"
#include "tests/program/test_program.h"

#include "store/recordset.h"
#include "store/statement_texts.h"

#include <harrowby/postgres_connection.h>

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
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
    void countsWithoutReading();
    void walksBesideOtherWork();
    void walksSeeOneMoment();
    void fourthListIsReadWhole();
    void walkThatIsLeft();
    void reordersLoseNothing();
    void purchaseIdIsHeld();
    void holdWithoutAWrite();
    void lostAnswer_data();
    void lostAnswer();
    void heldRowHasChanged();
    void serverComesBack();
    void failsWhileItIsAway();
    void anothersLock();
    void stoppedServer();
    void givesUp();
    void telling();

private:
    [[nodiscard]] PostgresOptions options();
    [[nodiscard]] std::shared_ptr<PostgresConnection> connect(const QString &conninfo);
    [[nodiscard]] QString throughProxy(const Proxy &proxy) const;
    void addItems(int count);
    [[nodiscard]] QString stockOf(const QString &id)
    {
        return m_cluster->sql(u"select StockAvailable from harrowby.StockList where StockID = '%1'"_s.arg(id))
            .join(u',');
    }

    QTemporaryDir m_folder;
    int m_folders = 0;
    std::unique_ptr<PrivateCluster> m_cluster;
    std::shared_ptr<PostgresConnection> m_connection;
    std::vector<DbFailure> m_failures;
};

void ConnectionServerTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    m_cluster = std::make_unique<PrivateCluster>();
    m_cluster->start();
    for (const QString &text : schemaFiles())
        m_cluster->sql(text);
}

void ConnectionServerTest::init()
{
    m_cluster->sql(
        u"truncate harrowby.StockList, harrowby.PurchaseCart, harrowby.SysUsage, harrowby.InventoryCategory"_s);
    addItems(3);
    m_connection = connect(m_cluster->conninfo());
    m_failures.clear();
    m_connection->setFailureHandler([this](const DbFailure &failure) { m_failures.push_back(failure); });
}

PostgresOptions ConnectionServerTest::options()
{
    PostgresOptions options;
    options.stateFolder = m_folder.filePath(QString::number(++m_folders));
    options.location = u"/opt/shop"_s;
    options.connecting = 1000ms;
    options.silence = 1000ms;
    options.lock = 400ms;
    options.rest = 20'000ms;
    return options;
}

std::shared_ptr<PostgresConnection> ConnectionServerTest::connect(const QString &conninfo)
{
    return std::make_shared<PostgresConnection>(conninfo, options());
}

QString ConnectionServerTest::throughProxy(const Proxy &proxy) const
{
    return u"host=127.0.0.1 port=%1 user=postgres dbname=shop sslmode=disable"_s.arg(proxy.port());
}

void ConnectionServerTest::addItems(int count)
{
    m_cluster->sql(
        u"insert into harrowby.StockList (StockID, StockName, StockCategory, StockCost, StockReorderLevel, "
        "StockAvailable, StockUse) select i::text, 'ITEM ' || lpad(i::text, 6, '0'), 'DRINKS', i + 0.5, 2, 10, "
        "'Enabled' from generate_series(1, %1) i"_s.arg(count));
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
    QVERIFY(m_failures.empty());
    QCOMPARE(m_connection->location(), u"/opt/shop"_s);
}

void ConnectionServerTest::writesAndReadsBack()
{
    QVERIFY(Execute(m_connection, statements::lowerStock(3, u"1"_s, u"ITEM 000001"_s)));
    QCOMPARE(m_connection->lastWrite(), WriteOutcome::Done);
    QCOMPARE(stockOf(u"1"_s), u"7"_s);
    DbRecordset row;
    row.Open(statements::stockById(u"2"_s), m_connection, Access::Edit);
    row.Field(u"StockName"_s).assign(u"it's \\ \"TEA\" é"_s);
    row.Field(u"StockCost"_s).assign(0.1);
    QCOMPARE(row.Update(), Outcome::Written);
    QCOMPARE(m_cluster->sql(u"select StockName, StockCost from harrowby.StockList where StockID = '2'"_s),
             QStringList{u"it's \\ \"TEA\" é|0.1"_s});
    row.Open(statements::stockById(u"9"_s), m_connection);
    row.AddNew();
    row.Field(u"StockID"_s).assign(u"9"_s);
    row.Field(u"StockAvailable"_s).assign(std::int64_t{4});
    QCOMPARE(row.Update(), Outcome::Written);
    QCOMPARE(stockOf(u"9"_s), u"4"_s);
    QVERIFY(m_connection->Execute(u"Update StockList SET StockCost = 1 where StockID = 'none'"_s)); // matches no row
    QVERIFY(m_failures.empty());
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
    QCOMPARE(m_failures.size(), 1u);
    QVERIFY(m_failures.front().engineState.isEmpty());
    QCOMPARE(m_failures.front().statement, u"UPDATE StockList"_s);
    QCOMPARE(m_connection->lastWrite(), WriteOutcome::Refused);
    QVERIFY(!m_connection->mayHaveWritten());
}

void ConnectionServerTest::oneRoundTripEach()
{
    Proxy proxy(m_cluster->port());
    m_connection = connect(throughProxy(proxy));
    m_cluster->sql(
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
    QCOMPARE(stockOf(u"1"_s), u"16"_s);
    QVERIFY(m_failures.empty());
}

void ConnectionServerTest::countsWithoutReading()
{
    m_cluster->sql(u"truncate harrowby.StockList"_s);
    addItems(20'000);
    Proxy proxy(m_cluster->port());
    m_connection = connect(throughProxy(proxy));
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
    m_cluster->sql(u"truncate harrowby.StockList"_s);
    addItems(20'000);
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
    QVERIFY(m_failures.empty());
    QCOMPARE(stockOf(u"17"_s), u"11"_s);
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
    m_cluster->sql(u"truncate harrowby.StockList"_s);
    addItems(5'000);
    QVERIFY(!m_connection->open());
    const auto sessions = [&] {
        return m_cluster->sql(u"select count(*) from pg_stat_activity where application_name like 'harrowby%'"_s)
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
    QVERIFY(m_failures.empty());
}

void ConnectionServerTest::walkThatIsLeft()
{
    m_cluster->sql(u"truncate harrowby.StockList"_s);
    addItems(20'000);
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
    QVERIFY(m_failures.empty());
}

/// Four tills add to the same item; each reads first and writes the sum.
void ConnectionServerTest::reordersLoseNothing()
{
    constexpr int tills = 4;
    constexpr int reorders = 50;
    std::vector<std::thread> threads;
    std::atomic<int> failed = 0;
    for (int till = 0; till < tills; ++till) {
        PostgresOptions wanted = options();
        wanted.lock = 20'000ms;
        threads.emplace_back([&, wanted] {
            const auto connection = std::make_shared<PostgresConnection>(m_cluster->conninfo(), wanted);
            for (int i = 0; i < reorders; ++i) {
                DbRecordset stock;
                stock.OpenHeld(statements::stockById(u"1"_s), connection, Access::Edit);
                stock.Field(u"StockAvailable"_s).assign(stock.Field(u"StockAvailable"_s).number() + 5);
                if (stock.Update() != Outcome::Written)
                    ++failed;
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(failed.load(), 0);
    QCOMPARE(stockOf(u"1"_s), QString::number(10 + tills * reorders * 5));
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
    std::thread other([&] {
        PostgresOptions wanted = options();
        wanted.lock = 20'000ms;
        const auto connection = std::make_shared<PostgresConnection>(m_cluster->conninfo(), wanted);
        DbRecordset second;
        second.OpenHeld(statements::purchase(u"HV1"_s), connection, Access::Read);
        seen = second.RecordCount();
        second.AddNew();
        second.Field(u"PurchaseID"_s).assign(u"HE1"_s);
        second.Update();
    });
    m_cluster->await(u"select count(*) from pg_locks where locktype = 'advisory' and not granted"_s, u"1"_s);
    QCOMPARE(add(first, u"HV1"_s), Outcome::Written);
    other.join();
    QCOMPARE(seen, 1);
    QCOMPARE(m_cluster->sql(u"select PurchaseID from harrowby.PurchaseCart order by 1"_s),
             (QStringList{u"HE1"_s, u"HV1"_s}));
}

void ConnectionServerTest::holdWithoutAWrite()
{
    {
        DbRecordset stock;
        stock.OpenHeld(statements::stockById(u"1"_s), m_connection, Access::Edit);
        QCOMPARE(stock.RecordCount(), 1);
    }
    QCOMPARE(m_cluster->sql(u"select count(*) from pg_stat_activity where state like 'idle in transaction%'"_s),
             QStringList{u"0"_s});
    QVERIFY(!m_connection->hold());
    QVERIFY(m_connection->settle(u"UPDATE StockList"_s));
    QVERIFY(!m_connection->holdFor({}, HeldWrite::Change));
    DbRecordset broken;
    broken.OpenHeld(Statement("Select * from Nowhere where StockID = '1'"), m_connection, Access::Edit);
    QCOMPARE(m_failures.size(), 1u);
    QCOMPARE(m_failures.front().engineState, u"42P01"_s);
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(stockOf(u"1"_s), u"11"_s);
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
    Proxy proxy(m_cluster->port());
    m_connection = connect(throughProxy(proxy));
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
    QCOMPARE(stockOf(u"1"_s), u"35"_s);
    QVERIFY(m_failures.empty());
}

/// The connection breaks between read and write, its lock goes, and another till sells.
void ConnectionServerTest::heldRowHasChanged()
{
    Proxy proxy(m_cluster->port());
    m_connection = connect(throughProxy(proxy));
    m_connection->setFailureHandler([this](const DbFailure &failure) { m_failures.push_back(failure); });
    QVERIFY(m_connection->Execute(u"Delete from SysUsage"_s));
    for (const bool isSold : {false, true}) {
        DbRecordset stock;
        stock.OpenHeld(statements::stockById(u"1"_s), m_connection, Access::Edit);
        stock.Field(u"StockAvailable"_s).assign(stock.Field(u"StockAvailable"_s).number() + 5);
        proxy.cut();
        m_cluster->await(u"select count(*) from pg_stat_activity where state like 'idle in transaction%'"_s, u"0"_s);
        if (isSold)
            m_cluster->sql(u"update harrowby.StockList set StockAvailable = StockAvailable - 1 where StockID = '1'"_s);
        QCOMPARE(stock.Update(), isSold ? Outcome::NotWritten : Outcome::Written);
        QCOMPARE(m_failures.size(), isSold ? 1u : 0u);
    }
    QCOMPARE(m_failures.front().engineState, u"HB002"_s);
    QCOMPARE(stockOf(u"1"_s), u"14"_s);
}

void ConnectionServerTest::serverComesBack()
{
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    m_cluster->kill9();
    m_cluster->start();
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), m_connection);
    QCOMPARE(item.RecordCount(), 1);
    m_cluster->kill9();
    m_cluster->start();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(stockOf(u"1"_s), u"12"_s);
    m_cluster->kill9();
    m_cluster->start();
    DbRecordset walk;
    walk.Open(statements::allStock(), m_connection, Access::Walk);
    QCOMPARE(walk.RecordCount(), 3);
    QVERIFY(m_failures.empty());
}

void ConnectionServerTest::failsWhileItIsAway()
{
    QVERIFY(!m_connection->open());
    m_cluster->kill9();
    QElapsedTimer took;
    took.start();
    m_connection->beginAction();
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), m_connection);
    QVERIFY(item.HasFailed());
    QVERIFY(took.elapsed() < 4'000);
    took.restart();
    for (int i = 0; i < 10; ++i) { // of the same action: not waited for again
        item.Open(statements::stockById(u"1"_s), m_connection);
        QVERIFY(!Execute(m_connection, statements::raiseStock(1, u"1"_s)));
        QCOMPARE(m_connection->lastWrite(), WriteOutcome::Refused);
    }
    QVERIFY(took.elapsed() < 500);
    QCOMPARE(m_failures.size(), 21u);
    QVERIFY(std::all_of(m_failures.begin(), m_failures.end(),
                        [](const DbFailure &failure) { return failure.engineState.startsWith(u"08"_s); }));
    QVERIFY(!m_connection->isOpen());
    m_cluster->start();
    m_connection->beginAction();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QVERIFY(m_connection->isOpen());
    QCOMPARE(stockOf(u"1"_s), u"11"_s);
}

void ConnectionServerTest::anothersLock()
{
    QVERIFY(!m_connection->open());
    int calls = 0;
    m_connection->setWaitHook([&](const DbWait &) { return ++calls > 0; });
    m_cluster->sql(u"begin; update harrowby.StockList set StockCost = 1 where StockID = '1'"_s);
    m_connection->beginAction();
    QVERIFY(!Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(m_connection->lastWrite(), WriteOutcome::Refused);
    QCOMPARE(m_failures.size(), 1u);
    QCOMPARE(m_failures.front().engineState, u"55P03"_s);
    QVERIFY(calls > 0);
    m_cluster->sql(u"rollback"_s);
    m_connection->beginAction();
    QVERIFY(Execute(m_connection, statements::raiseStock(1, u"1"_s)));
    QCOMPARE(stockOf(u"1"_s), u"11"_s);
}

/// A server that says nothing: the wait is bounded, and painted all the while.
void ConnectionServerTest::stoppedServer()
{
    QVERIFY(!m_connection->open());
    m_connection->beginAction();
    QElapsedTimer painted;
    painted.start();
    qint64 longest = 0;
    m_connection->setWaitHook([&](const DbWait &wait) {
        longest = std::max(longest, painted.restart());
        return !wait.mayGiveUp;
    });
    m_cluster->stop();
    QElapsedTimer took;
    took.start();
    painted.restart();
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), m_connection);
    m_cluster->cont();
    QVERIFY(item.HasFailed());
    QVERIFY2(took.elapsed() < 4'000, qPrintable(QString::number(took.elapsed())));
    QVERIFY2(longest <= 200, qPrintable(QString::number(longest))); // 50 ms, and what a busy machine adds
    m_connection->beginAction();
    item.Open(statements::stockById(u"1"_s), m_connection);
    QCOMPARE(item.RecordCount(), 1);
}

/// Once an action has written, its rest is waited for, until the person has had enough.
void ConnectionServerTest::givesUp()
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
    m_cluster->stop();
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), m_connection);
    const qint64 waited = took.elapsed();
    m_cluster->cont();
    QVERIFY(item.HasFailed());
    QVERIFY(mayGiveUp);
    QVERIFY2(waited >= 2'900 && waited < 8'000, qPrintable(QString::number(waited)));
}

void ConnectionServerTest::telling()
{
    QVERIFY(!m_connection->query(u"Select * from Nowhere"_s));
    QVERIFY(!m_connection->query(u"Delete from StockList"_s));
    QVERIFY(!m_connection->countRows(u"Select * from Nowhere"_s));
    QVERIFY(!m_connection->rowIds(u"Select StockID from StockList"_s));
    QVERIFY(!m_connection->Execute(u"Select 1"_s));
    QVERIFY(!m_connection->Execute(u"Update Nowhere set A = 1"_s));
    QCOMPARE(m_failures.size(), 6u);
    QCOMPARE(m_failures.front().engineState, u"42P01"_s);
    QCOMPARE(m_connection->rowIds(u"Select * from StockList"_s)->size(), 3u);
    const auto nobody = connect(u"host=/nowhere dbname=shop"_s);
    const auto failure = nobody->open();
    QVERIFY(failure);
    QCOMPARE(failure->engineState, u"08001"_s);
}

HARROWBY_CORE_TEST(connection_server_test, ConnectionServerTest)
#include "connection_server_test.moc"
