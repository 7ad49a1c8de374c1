// SPDX-License-Identifier: MIT
#include "postgres/postgres_session.h"
#include "tests/postgres/scripted_server.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby;
using namespace std::chrono_literals;

using harrowby::test::ScriptedServer;
using Answer = ScriptedServer::Answer;
using Kind = PgError::Kind;
using Step = PgRows::Step;
using Then = ScriptedServer::Then;

namespace {

const QByteArray twoItems = ScriptedServer::rows({"StockID", "StockName"}, {{"A1", "Tea"}, {"A2", QByteArray()}});
const QByteArray ready = ScriptedServer::ready();

ScriptedServer::Script firstThenDone(const Answer &first)
{
    return [first](const QByteArray &, int number) {
        return number == 0 ? first : Answer{{ScriptedServer::done("UPDATE 1") + ready}};
    };
}

PgSession sessionAt(const ScriptedServer &server)
{
    PgSession session;
    if (!session.connect({server.conninfo()}, {60s, 60s, 60s, 60s, {}}))
        qFatal("no session");
    return session;
}

} // namespace

class RowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsComeOneByOne();
    void columnsOfNoRowsAreKnown();
    void everySelectOfTheTextIsWalked();
    void aTextWithoutRowsIsDone();
    void aRefusedSelectGivesNoRows();
    void anErrorBetweenRowsIsTold();
    void aTransactionThatFailedIsRolledBack();
    void aSilenceBetweenRowsIsTold();
    void aBreakBetweenRowsIsTold();
    void rowsThatNobodyWantsAreCancelled();
    void aServerThatDoesNotCancelIsLeft();
    void aReadResultIsFinishedQuietly();
    void aCopyBehindTheRowsEndsTheSession();
    void nothingElseRunsMeanwhile();
    void aClosedSessionTakesItsRowsAway();
};

void RowsTest::rowsComeOneByOne()
{
    const ScriptedServer server(
        {}, firstThenDone({{twoItems.first(60), twoItems.sliced(60), ScriptedServer::done(), ready}}));
    PgSession session = sessionAt(server);
    {
        Result<PgRows, PgError> rows = session.walk("select");
        QVERIFY(rows);
        QCOMPARE(rows->columnCount(), 2);
        QCOMPARE(rows->columnName(0), "StockID");
        QCOMPARE(rows->columnType(0), 25U);
        QCOMPARE(rows->next(), Step::Row);
        QCOMPARE(rows->text(1).toByteArray(), "Tea");
        QCOMPARE(rows->next(), Step::Row);
        QCOMPARE(rows->text(0).toByteArray(), "A2");
        QVERIFY(rows->isNull(1));
        QCOMPARE(rows->next(), Step::Done);
        QCOMPARE(rows->next(), Step::Done);
        QCOMPARE(rows->columnName(1), "StockName");
        QVERIFY(!rows->nextSelect());
    }
    QVERIFY(session.run("update"));
}

void RowsTest::columnsOfNoRowsAreKnown()
{
    const ScriptedServer server(
        {}, firstThenDone({{ScriptedServer::rows({"a", "b"}, {}) + ScriptedServer::done() + ready}}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("select");
    QVERIFY(rows);
    QCOMPARE(rows->columnCount(), 2);
    QCOMPARE(rows->next(), Step::Done);
}

void RowsTest::everySelectOfTheTextIsWalked()
{
    const QByteArray count = ScriptedServer::rows({"count"}, {{"2"}}) + ScriptedServer::done();
    const ScriptedServer server(
        {}, firstThenDone({{ScriptedServer::done("BEGIN") + count + twoItems + ScriptedServer::done("SELECT 2") +
                            ScriptedServer::done("COMMIT") + ready}}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("begin; select count; select; commit");
    QVERIFY(rows);
    QVERIFY(!rows->nextSelect()); // not before its rows
    QCOMPARE(rows->next(), Step::Row);
    QCOMPARE(rows->text(0).toByteArray(), "2");
    QCOMPARE(rows->next(), Step::Done);
    QVERIFY(rows->nextSelect());
    QCOMPARE(rows->columnCount(), 2);
    QCOMPARE(rows->next(), Step::Row);
    QCOMPARE(rows->next(), Step::Row);
    QCOMPARE(rows->next(), Step::Done);
    QVERIFY(!rows->nextSelect());
    QVERIFY(!rows->error());
    QVERIFY(session.run("update")); // the text is over
}

void RowsTest::aTextWithoutRowsIsDone()
{
    const ScriptedServer server({}, firstThenDone({{ScriptedServer::done("COMMIT") + ready}}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("commit");
    QVERIFY(rows);
    QCOMPARE(rows->next(), Step::Done);
}

void RowsTest::aRefusedSelectGivesNoRows()
{
    const ScriptedServer server({}, firstThenDone({{ScriptedServer::error("42P01", "no such table") + ready}}));
    PgSession session = sessionAt(server);
    const Result<PgRows, PgError> rows = session.walk("select");
    QVERIFY(!rows);
    QCOMPARE(rows.error().sqlState, "42P01");
    QVERIFY(session.run("update"));
}

void RowsTest::anErrorBetweenRowsIsTold()
{
    const ScriptedServer server(
        {}, firstThenDone({{twoItems + ScriptedServer::error("22012", "division by zero") + ready}}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("select");
    QVERIFY(rows);
    QCOMPARE(rows->next(), Step::Row);
    QCOMPARE(rows->next(), Step::Row);
    QCOMPARE(rows->next(), Step::Failed);
    QCOMPARE(rows->next(), Step::Failed);
    QCOMPARE(rows->error()->sqlState, "22012");
    QVERIFY(session.run("update"));
}

void RowsTest::aTransactionThatFailedIsRolledBack()
{
    const ScriptedServer server({},
                                firstThenDone({{ScriptedServer::done("BEGIN") + twoItems +
                                                ScriptedServer::error("40001", "no") + ScriptedServer::ready('E')}}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("begin; select");
    QVERIFY(rows);
    while (rows->next() == Step::Row) {
    }
    QVERIFY(rows->error());
    QCOMPARE(server.statements().last(), "rollback");
    QVERIFY(!session.isInTransaction());
}

void RowsTest::aSilenceBetweenRowsIsTold()
{
    const ScriptedServer server({}, firstThenDone({{twoItems}, Then::FallSilent}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("select", {200ms, 60s});
    QVERIFY(rows);
    QCOMPARE(rows->next(), Step::Row);
    QCOMPARE(rows->next(), Step::Row);
    QCOMPARE(rows->next(), Step::Failed);
    QCOMPARE(rows->error()->kind, Kind::TimedOut);
    QVERIFY(session.isLost());
}

void RowsTest::aBreakBetweenRowsIsTold()
{
    const ScriptedServer server({}, firstThenDone({{twoItems}, Then::HangUp}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("select");
    QVERIFY(rows);
    while (rows->next() == Step::Row) {
    }
    QCOMPARE(rows->error()->kind, Kind::Lost);
    QVERIFY(session.isLost());
}

void RowsTest::rowsThatNobodyWantsAreCancelled()
{
    const ScriptedServer server({}, firstThenDone({{twoItems}, Then::AwaitCancel}));
    PgSession session = sessionAt(server);
    {
        Result<PgRows, PgError> rows = session.walk("select");
        QVERIFY(rows);
        QCOMPARE(rows->next(), Step::Row);
    }
    QVERIFY(!session.isLost());
    QVERIFY(session.run("update"));
}

void RowsTest::aServerThatDoesNotCancelIsLeft()
{
    const ScriptedServer server({}, firstThenDone({{twoItems}, Then::FallSilent}));
    PgSession session = sessionAt(server);
    {
        Result<PgRows, PgError> rows = session.walk("select");
        QVERIFY(rows);
    }
    QVERIFY(session.isLost());
}

void RowsTest::aReadResultIsFinishedQuietly()
{
    const ScriptedServer server(
        {},
        firstThenDone({{twoItems + ScriptedServer::done(), ScriptedServer::done("COMMIT"), ready}, Then::Wait, 30}));
    PgSession session = sessionAt(server);
    {
        Result<PgRows, PgError> rows = session.walk("begin; select; commit");
        QVERIFY(rows);
        while (rows->next() == Step::Row) {
        }
        QVERIFY(!rows->error());
    }
    QVERIFY(session.run("update"));
    QCOMPARE(server.cancels(), 0);
}

void RowsTest::aCopyBehindTheRowsEndsTheSession()
{
    const QByteArray copy("G\0\0\0\x07\0\0\0", 8);
    const ScriptedServer server({}, firstThenDone({{twoItems + ScriptedServer::done() + copy}}));
    PgSession session = sessionAt(server);
    {
        Result<PgRows, PgError> rows = session.walk("select");
        QVERIFY(rows);
        while (rows->next() == Step::Row) {
        }
    }
    QVERIFY(session.isLost());
}

void RowsTest::nothingElseRunsMeanwhile()
{
    const ScriptedServer server({}, firstThenDone({{twoItems}, Then::AwaitCancel}));
    PgSession session = sessionAt(server);
    const Result<PgRows, PgError> rows = session.walk("select");
    QVERIFY(rows);
    const Result<PgResults, PgError> results = session.run("update");
    QVERIFY(!results);
    QCOMPARE(results.error().kind, Kind::Refused);
    QVERIFY(!session.walk("select"));
    QCOMPARE(server.statements(), QByteArrayList{"select"});
}

void RowsTest::aClosedSessionTakesItsRowsAway()
{
    const ScriptedServer server({}, firstThenDone({{twoItems}, Then::FallSilent}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("select");
    QVERIFY(rows);
    QCOMPARE(rows->next(), Step::Row);
    session.close();
    QCOMPARE(rows->text(0).toByteArray(), "A1"); // that one is there
    QCOMPARE(rows->next(), Step::Failed);
    QCOMPARE(rows->error()->kind, Kind::Lost);
}

HARROWBY_CORE_TEST(rows_test, RowsTest)
#include "rows_test.moc"
