// SPDX-License-Identifier: MIT
#include "tests/postgres/connected_till.h"
#include "tests/program/test_program.h"

#include "store/recordset.h"
#include "store/statement_texts.h"

#include <QTest>

using namespace harrowby;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using Access = DbRecordset::Access;

/// The component's lists and searches on a real server: counted without being fetched, or walked over connections of
/// their own.
class ConnectionListsTest : public ConnectedTill
{
    Q_OBJECT

private Q_SLOTS:
    void choiceOfTheSearch();
    void countsWithoutReading();
    void walksBesideOtherWork();
    void walksSeeOneMoment();
    void countsWithoutTheRows();
    void fourthListIsReadWhole();
    void searchLooksOnce();
    void walkThatIsLeft();
    void noConnectionLeftForAList();
};

/// What it takes to ask is done for searches alone, and once for each.
void ConnectionListsTest::choiceOfTheSearch()
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

void ConnectionListsTest::countsWithoutReading()
{
    m_server->refill(20'000);
    Proxy proxy(m_server->cluster.port());
    m_connection = m_server->connect(through(proxy));
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

void ConnectionListsTest::walksBesideOtherWork()
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

void ConnectionListsTest::walksSeeOneMoment()
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

void ConnectionListsTest::countsWithoutTheRows()
{
    QVERIFY(!m_connection->open());
    const auto cursor = m_connection->queryAs(u"Select * from StockList"_s, DbReading::Count);
    QVERIFY(cursor);
    QCOMPARE(cursor->rowCount(), std::optional<std::int64_t>(3));
    QVERIFY(m_connection->Execute(u"Delete from StockList where StockID = '3'"_s));
    QVERIFY(cursor->columnNames().contains(u"StockID"_s, Qt::CaseInsensitive));
    int rows = 0;
    for (; cursor->next() == DbCursor::Step::Row; ++rows)
        QVERIFY(cursor->rowId());
    QCOMPARE(rows, 2); // as they were when they were asked for
    QVERIFY(m_server->failures.empty());
    QVERIFY(!m_connection->queryAs(u"Select * from Nothing"_s, DbReading::Count));
    QCOMPARE(m_server->failures.size(), std::size_t{1});
}

void ConnectionListsTest::fourthListIsReadWhole()
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
void ConnectionListsTest::searchLooksOnce()
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

void ConnectionListsTest::walkThatIsLeft()
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

/// The server takes one connection of this till: lists are read over it, whole.
void ConnectionListsTest::noConnectionLeftForAList()
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

HARROWBY_CORE_TEST(connection_lists_test, ConnectionListsTest)
#include "connection_lists_test.moc"
