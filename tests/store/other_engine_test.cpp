// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/store/scratch_store.h"
#include "tests/store/scripted_connection.h"
#include "tests/store/walk_rows.h"

#include "store/hold.h"
#include "store/recordset.h"
#include "store/statement_texts.h"

#include <QLoggingCategory>
#include <QTest>

using namespace harrowby;
using namespace harrowby::walk_rows;
using namespace Qt::StringLiterals;
using Access = DbRecordset::Access;
using Fault = ScriptedConnection::Fault;

namespace {

/// An engine that says of a failed write only what a host had to say so far.
class Taciturn final : public DbConnection
{
public:
    bool mayHave = true;
    int holds = 0;

    bool Execute(const QString &) override { return false; }
    [[nodiscard]] std::unique_ptr<DbCursor> query(const QString &) override { return nullptr; }
    [[nodiscard]] std::optional<std::int64_t> countRows(const QString &) override { return {}; }
    [[nodiscard]] std::optional<std::vector<DbRowId>> rowIds(const QString &) override { return {}; }
    bool insertRow(const QString &, const DbAssignments &) override { return false; }
    bool updateRow(const QString &, DbRowId, const DbAssignments &) override { return false; }
    [[nodiscard]] QString location() const override { return {}; }
    bool hold() override { return ++holds > 0; }
    [[nodiscard]] bool mayHaveWritten() const override { return mayHave; }
};

} // namespace

/// What an engine may do beyond the least, and that the least goes on as it did.
class TestOtherEngine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_connection = std::make_shared<ScriptedConnection>(); }
    void cleanup() { QCOMPARE(m_connection->liveCursors, 0); }

    void tellsHowItReads();
    void takesIdentitiesWithTheRows_data();
    void takesIdentitiesWithTheRows();
    void takesTheCountWithTheRows();
    void readsNoRowToCount();
    void asksForNothingTwice_data();
    void asksForNothingTwice();
    void dropsAFailingRest();
    void leavesAnOpenCursorAlone();
    void leavesWalksThatStandApart();
    void finishesThemBeforeABox();
    void tellsWhatItHolds();
    void holdsNothingForARefusedSelect();
    void outcomeByDefault();
    void outcomeOfSqlite();
    void outcomeIsKnownToTheFailureHandler();
    void failureHasItsState();
    void waitHookIsTakenByNobody();

private:
    void changeARow()
    {
        DbRecordset rows;
        rows.Open(everything, m_connection, Access::Edit);
        rows.MoveNext();
        rows.Field(u"name"_s).assign(u"new"_s);
        rows.Update();
    }

    std::shared_ptr<ScriptedConnection> m_connection;
};

void TestOtherEngine::tellsHowItReads()
{
    m_connection->fill(20);
    DbRecordset rows;
    rows.Open(everything, m_connection);
    QVERIFY(rows.Field(u"name"_s).value()); // beyond the first ten: all are read
    rows.Open(everything, m_connection, Access::Edit);
    rows.Open(everything, m_connection, Access::Walk);
    rows.Open(everything, m_connection, Access::Count);
    const std::vector expected{DbReading::First, DbReading::Whole, DbReading::Whole, DbReading::CountedWalk,
                               DbReading::Count};
    QVERIFY(m_connection->readings == expected);
}

void TestOtherEngine::takesIdentitiesWithTheRows_data()
{
    QTest::addColumn<bool>("withRows");
    QTest::newRow("with the rows") << true;
    QTest::newRow("by a statement of their own") << false;
}

void TestOtherEngine::takesIdentitiesWithTheRows()
{
    QFETCH(const bool, withRows);
    m_connection->fill(3);
    m_connection->idsComeWithRows = withRows;
    changeARow();
    QCOMPARE(m_connection->row, DbRowId{101});
    QCOMPARE(m_connection->calls.value(u"rowIds"_s), withRows ? 0 : 1);
}

void TestOtherEngine::takesTheCountWithTheRows()
{
    m_connection->fill(50);
    m_connection->countComesWithRows = true;
    DbRecordset rows;
    for (const Access access : {Access::Read, Access::Count, Access::Walk}) {
        rows.Open(everything, m_connection, access);
        QCOMPARE(rows.RecordCount(), 50);
        QCOMPARE(rest(rows), namesFrom(0, 50));
        QCOMPARE(rows.RecordCount(), 50);
    }
    QCOMPARE(m_connection->calls.value(u"countRows"_s), 0);
}

void TestOtherEngine::readsNoRowToCount()
{
    m_connection->fill(50);
    m_connection->countComesWithRows = true;
    DbRecordset rows;
    rows.Open(everything, m_connection, Access::Count);
    QCOMPARE(rows.RecordCount(), 50);
    QCOMPARE(m_connection->calls.value(u"next"_s), 0);
    QCOMPARE(rest(rows), namesFrom(0, 50));
    m_connection->rows.clear();
    rows.Open(everything, m_connection, Access::Count);
    QVERIFY(rows.IsEof());
    QCOMPARE(rows.RecordCount(), 0);
    QCOMPARE(m_connection->readings.back(), DbReading::Count);
}

void TestOtherEngine::asksForNothingTwice_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {0, 1, 9, 10, 11, 12, 100})
        QTest::addRow("%d", count) << count;
}

/// The whole result is in the client's memory: it is one statement, however it is read.
void TestOtherEngine::asksForNothingTwice()
{
    QFETCH(const int, count);
    m_connection->fill(count);
    m_connection->countComesWithRows = true;
    m_connection->standsApart = true;
    {
        DbRecordset rows;
        rows.Open(everything, m_connection);
        QCOMPARE(rows.RecordCount(), count);
        QCOMPARE(rest(rows), namesFrom(0, count));
        QVERIFY(rows.IsEof());
        QVERIFY(!rows.HasFailed());
        QCOMPARE(m_connection->liveCursors, 0); // all is read
        DbRecordset untouched;
        untouched.Open(everything, m_connection);
        QCOMPARE(untouched.RecordCount(), count);
        QCOMPARE(untouched.RecordCount(), count);
    }
    QCOMPARE(m_connection->statements, (QStringList{everything.sql(), everything.sql()}));
}

void TestOtherEngine::dropsAFailingRest()
{
    m_connection->fill(50);
    m_connection->standsApart = true;
    m_connection->faults[u"next 30"_s] = Fault::Failure;
    DbRecordset rows;
    rows.Open(everything, m_connection);
    QVERIFY(!rows.HasFailed());
    QVERIFY(!rows.Field(u"name"_s).value());
    QVERIFY(rows.HasFailed());
    QVERIFY(rows.IsEof());
    QCOMPARE(m_connection->failures.size(), 1u);
    m_connection->faults.clear();
    m_connection->faults[u"next 30"_s] = Fault::Exception;
    rows.Open(everything, m_connection);
    rows.MoveNext();
    QVERIFY(rows.HasFailed());
    QCOMPARE(m_connection->failures.size(), 2u);
}

/// A cursor that does not stand apart is closed after the first rows, whatever it knows.
void TestOtherEngine::leavesAnOpenCursorAlone()
{
    m_connection->fill(50);
    m_connection->countComesWithRows = true;
    DbRecordset rows;
    rows.Open(everything, m_connection);
    QCOMPARE(m_connection->liveCursors, 0);
    QCOMPARE(rows.RecordCount(), 50);
    QCOMPARE(rest(rows), namesFrom(0, 50));
    QCOMPARE(m_connection->statements.size(), 2);
}

void TestOtherEngine::leavesWalksThatStandApart()
{
    m_connection->fill(50);
    m_connection->standsApart = true;
    m_connection->idsComeWithRows = true;
    DbRecordset rows;
    rows.Open(everything, m_connection, Access::Walk);
    skip(rows, 5);
    changeARow();
    QVERIFY(Execute(m_connection, statements::categories()));
    const Hold hold(m_connection);
    QCOMPARE(m_connection->liveCursors, 1); // still the walk's
    QCOMPARE(rest(rows), namesFrom(5, 50));
}

void TestOtherEngine::finishesThemBeforeABox()
{
    m_connection->fill(50);
    m_connection->standsApart = true;
    DbRecordset rows;
    rows.Open(everything, m_connection, Access::Walk);
    finishWalks(m_connection);
    QCOMPARE(m_connection->liveCursors, 0);
    QCOMPARE(rest(rows), namesFrom(0, 50));
}

void TestOtherEngine::tellsWhatItHolds()
{
    DbRecordset rows;
    rows.OpenHeld(statements::purchase(u"HV1"_s), m_connection, Access::Read);
    rows.OpenHeld(statements::stockById(u"1"_s), m_connection, Access::Edit);
    QCOMPARE(m_connection->holds, (QStringList{u"insert "_s + statements::purchase(u"HV1"_s).sql(),
                                               u"change "_s + statements::stockById(u"1"_s).sql()}));
    const auto plain = std::make_shared<Taciturn>();
    rows.OpenHeld(statements::stockById(u"1"_s), plain, Access::Edit);
    QCOMPARE(plain->holds, 1);
}

void TestOtherEngine::holdsNothingForARefusedSelect()
{
    DbRecordset rows;
    rows.OpenHeld(statements::stockById(u"it's"_s), m_connection, Access::Edit);
    QCOMPARE(m_connection->holds, QStringList{u"change "_s});
    QVERIFY(m_connection->statements.isEmpty());
}

void TestOtherEngine::outcomeByDefault()
{
    Taciturn engine;
    QCOMPARE(engine.lastWrite(), WriteOutcome::Unknown);
    engine.mayHave = false;
    QCOMPARE(engine.lastWrite(), WriteOutcome::Refused);
    QCOMPARE(ScriptedConnection().lastWrite(), WriteOutcome::Unknown);
}

void TestOtherEngine::outcomeOfSqlite()
{
    ScratchStore store;
    store.addItem(u"1"_s, u"TEA"_s);
    DbConnection &connection = *store.connection();
    QVERIFY(connection.Execute(u"Update StockList Set StockCost = 2"_s));
    QCOMPARE(connection.lastWrite(), WriteOutcome::Done);
    QVERIFY(!connection.Execute(u"Update Nowhere Set StockCost = 2"_s));
    QCOMPARE(connection.lastWrite(), WriteOutcome::Refused);
    QVERIFY(connection.insertRow(u"InventoryCategory"_s, {{u"CategoryName"_s, u"TEA"_s}}));
    QCOMPARE(connection.lastWrite(), WriteOutcome::Done);
    QVERIFY(!connection.updateRow(u"Nowhere"_s, 1, {{u"A"_s, u"B"_s}}));
    QCOMPARE(connection.lastWrite(), WriteOutcome::Refused);
    QVERIFY(connection.hold());
    QVERIFY(connection.updateRow(u"StockList"_s, 1, {{u"StockCost"_s, 3.0}}));
    QVERIFY(!connection.settle({}));
    QCOMPARE(connection.lastWrite(), WriteOutcome::Refused);
    QVERIFY(connection.hold());
    QVERIFY(connection.updateRow(u"StockList"_s, 1, {{u"StockCost"_s, 3.0}}));
    QVERIFY(connection.settle(u"UPDATE StockList"_s));
    QCOMPARE(connection.lastWrite(), WriteOutcome::Done);
}

void TestOtherEngine::outcomeIsKnownToTheFailureHandler()
{
    ScratchStore store;
    std::optional<WriteOutcome> told;
    store.connection()->setFailureHandler([&](const DbFailure &) { told = store.connection()->lastWrite(); });
    QVERIFY(store.connection()->Execute(u"Delete from StockList"_s));
    QVERIFY(!store.connection()->Execute(u"Delete from Nowhere"_s));
    QVERIFY(told == WriteOutcome::Refused);
}

void TestOtherEngine::failureHasItsState()
{
    DbFailure failure{DbFailure::Kind::Write, u"UPDATE StockList"_s, u"it is locked"_s, 0};
    QVERIFY(failure.engineState.isEmpty());
    failure.engineState = u"55P03"_s;
    QLoggingCategory::setFilterRules(u"harrowby.store.warning=true"_s);
    QTest::ignoreMessage(QtWarningMsg, "it is locked 55P03 UPDATE StockList");
    m_connection->reportFailure(failure);
    QCOMPARE(m_connection->failures.front().engineState, u"55P03"_s);
    QTest::ignoreMessage(QtWarningMsg, "no such table 1 UPDATE StockList");
    m_connection->reportFailure({DbFailure::Kind::Write, u"UPDATE StockList"_s, u"no such table"_s, 1});
    QLoggingCategory::setFilterRules(QString());
}

void TestOtherEngine::waitHookIsTakenByNobody()
{
    bool isCalled = false;
    ScratchStore store;
    store.connection()->setWaitHook([&](const DbWait &wait) {
        isCalled = true;
        return wait.mayGiveUp;
    });
    QVERIFY(store.connection()->Execute(u"Delete from StockList"_s));
    QVERIFY(!isCalled);
}

HARROWBY_CORE_TEST(other_engine_test, TestOtherEngine)
#include "other_engine_test.moc"
