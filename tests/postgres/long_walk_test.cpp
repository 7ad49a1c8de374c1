// SPDX-License-Identifier: MIT
#include "postgres/postgres_session.h"
#include "tests/postgres/scripted_server.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <algorithm>

using namespace harrowby;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

using harrowby::test::ScriptedServer;
using Answer = ScriptedServer::Answer;
using Kind = PgError::Kind;
using Step = PgRows::Step;
using Then = ScriptedServer::Then;

namespace {

constexpr int many = 3000;

/// Numbers up to `count`; each third row has a null beside its number.
QByteArray numbers(int count)
{
    QList<QByteArrayList> rows;
    for (int i = 0; i < count; ++i)
        rows.append({QByteArray::number(i), i % 3 == 0 ? QByteArray() : QByteArray(i % 50, 'x')});
    return ScriptedServer::rows({"number", "text"}, rows);
}

QByteArray end()
{
    return ScriptedServer::done() + ScriptedServer::ready();
}

/// Says this to the first statement.
ScriptedServer::Script first(const Answer &answer)
{
    return [answer](const QByteArray &, int number) {
        return number == 0 ? answer : Answer{{ScriptedServer::done("UPDATE 1") + ScriptedServer::ready()}};
    };
}

PgSession sessionAt(const ScriptedServer &server, const PgWaitHook &hook = {})
{
    PgSession session;
    if (!session.connect({server.conninfo()}, {60s, 60s, 60s, 60s, hook}))
        qFatal("no session");
    return session;
}

/// How many of the threads that fetch rows ahead there are.
int pumps()
{
    int found = 0;
    const QDir tasks(u"/proc/self/task"_s);
    for (const QString &task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile name(tasks.filePath(task + u"/comm"_s));
        if (name.open(QIODevice::ReadOnly) && name.readAll().trimmed() == "harrowby-rows")
            ++found;
    }
    return found;
}

/// Steps to so many rows and looks at each. How many there were.
int walked(PgRows &rows, int most = many)
{
    int count = 0;
    while (count < most && rows.next() == Step::Row) {
        const bool isNull = count % 3 == 0;
        if (rows.text(0) != QByteArray::number(count) || rows.isNull(1) != isNull ||
            rows.text(1).size() != (isNull ? 0 : count % 50))
            return -1;
        ++count;
    }
    return count;
}

} // namespace

/// Rows of a list that is long enough for them to be fetched ahead.
class LongWalkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aShortListStartsNoThread();
    void everyRowComesInItsOrder();
    void eachSelectIsFetchedAhead();
    void noRowIsHeldBack();
    void anErrorIsTold();
    void aBreakIsTold();
    void aSilenceIsTold();
    void whateverComesRenewsTheTime();
    void givingUpEndsTheWait();
    void aWalkThatIsLeftIsCancelled();
    void aClosedSessionTakesItsRowsAway();
};

void LongWalkTest::aShortListStartsNoThread()
{
    const ScriptedServer server({}, first({{numbers(255) + end()}}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("select");
    QVERIFY(rows);
    for (int i = 0; i < 255; ++i) {
        QCOMPARE(rows->next(), Step::Row);
        QCOMPARE(pumps(), 0);
    }
    QCOMPARE(rows->next(), Step::Done);
}

void LongWalkTest::everyRowComesInItsOrder()
{
    const ScriptedServer server({}, first({{numbers(many) + end()}}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("select");
    QVERIFY(rows);
    QCOMPARE(walked(*rows, 256), 256);
    QCOMPARE(pumps(), 1);
    QVERIFY(!session.isLost());
    QVERIFY(!session.isIdle());
    QCOMPARE(session.run("update").error().kind, Kind::Refused);
    int count = 256;
    for (; rows->next() == Step::Row; ++count)
        QCOMPARE(rows->text(0).toByteArray(), QByteArray::number(count));
    QCOMPARE(count, many);
    QVERIFY(!rows->error());
    QCOMPARE(pumps(), 0);
    QCOMPARE(rows->columnName(1), "text");
    QVERIFY(!rows->nextSelect());
    QVERIFY(session.run("update"));
}

void LongWalkTest::eachSelectIsFetchedAhead()
{
    const QByteArray all = numbers(many) + ScriptedServer::done();
    const ScriptedServer server({}, first({{ScriptedServer::done("BEGIN") + all + all + ScriptedServer::done("COMMIT"),
                                            ScriptedServer::ready()}}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("begin; select; select; commit");
    QVERIFY(rows);
    QCOMPARE(walked(*rows), many);
    QCOMPARE(rows->next(), Step::Done);
    QVERIFY(rows->nextSelect());
    QCOMPARE(walked(*rows, 300), 300);
    QCOMPARE(pumps(), 1);
    while (rows->next() == Step::Row) {
    }
    QVERIFY(!rows->error());
    QVERIFY(!rows->nextSelect());
    QVERIFY(session.run("update"));
}

void LongWalkTest::noRowIsHeldBack()
{
    const ScriptedServer server({}, first({{numbers(300)}, Then::AwaitCancel}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("select", {5s, 60s});
    QVERIFY(rows);
    QCOMPARE(walked(*rows, 300), 300);
    QVERIFY(!rows->error());
}

void LongWalkTest::anErrorIsTold()
{
    const ScriptedServer server(
        {}, first({{ScriptedServer::done("BEGIN") + numbers(1000) + ScriptedServer::error("22012", "division by zero") +
                    ScriptedServer::ready('E')}}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("begin; select");
    QVERIFY(rows);
    QCOMPARE(walked(*rows), 1000);
    QCOMPARE(rows->next(), Step::Failed);
    QCOMPARE(rows->error()->sqlState, "22012");
    QCOMPARE(server.statements().last(), "rollback");
    QVERIFY(session.run("update"));
}

void LongWalkTest::aBreakIsTold()
{
    const ScriptedServer server({}, first({{numbers(1000)}, Then::HangUp}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("select");
    QVERIFY(rows);
    QCOMPARE(walked(*rows), 1000);
    QCOMPARE(rows->next(), Step::Failed);
    QCOMPARE(rows->error()->kind, Kind::Lost);
    QVERIFY(session.isLost());
    QCOMPARE(pumps(), 0);
}

void LongWalkTest::aSilenceIsTold()
{
    const ScriptedServer server({}, first({{numbers(1000)}, Then::FallSilent}));
    int asked = 0;
    PgSession session = sessionAt(server, [&asked](const PgWait &) { return ++asked > 0; });
    asked = 0;
    Result<PgRows, PgError> rows = session.walk("select", {400ms, 60s});
    QVERIFY(rows);
    QElapsedTimer took;
    took.start();
    QCOMPARE(walked(*rows), 1000);
    QVERIFY(took.elapsed() >= 400);
    QVERIFY(took.elapsed() < 5'000);
    QVERIFY(asked >= 4);
    QCOMPARE(rows->error()->kind, Kind::TimedOut);
    QVERIFY(session.isLost());
    QCOMPARE(pumps(), 0);
}

/// A row that comes in pieces, each in time, is waited for.
void LongWalkTest::whateverComesRenewsTheTime()
{
    QByteArrayList pieces{numbers(299)};
    const QByteArray large = ScriptedServer::rows({"number", "text"}, {{"299", QByteArray(299 % 50, 'x')}});
    const QByteArray row = large.sliced(large.indexOf('D'));
    for (qsizetype at = 0; at < row.size(); at += 8)
        pieces.append(row.sliced(at, std::min<qsizetype>(8, row.size() - at)));
    pieces.append(end());
    const ScriptedServer server({}, first({pieces, Then::Wait, 150}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("select", {600ms, 60s});
    QVERIFY(rows);
    QVERIFY(pieces.size() * 150 > 1'200);
    QCOMPARE(walked(*rows, 299), 299);
    QCOMPARE(rows->next(), Step::Row);
    QCOMPARE(rows->next(), Step::Done);
}

void LongWalkTest::givingUpEndsTheWait()
{
    const ScriptedServer server({}, first({{numbers(1000)}, Then::FallSilent}));
    PgSession session = sessionAt(server, [](const PgWait &wait) { return wait.what == PgWaiting::Connection; });
    Result<PgRows, PgError> rows = session.walk("select");
    QVERIFY(rows);
    QCOMPARE(walked(*rows), 1000);
    QCOMPARE(rows->error()->kind, Kind::GivenUp);
    QVERIFY(session.isLost());
}

void LongWalkTest::aWalkThatIsLeftIsCancelled()
{
    const ScriptedServer server({}, first({{numbers(many)}, Then::AwaitCancel}));
    PgSession session = sessionAt(server);
    {
        Result<PgRows, PgError> rows = session.walk("select");
        QVERIFY(rows);
        QCOMPARE(walked(*rows, 700), 700);
        QCOMPARE(pumps(), 1);
    }
    QCOMPARE(pumps(), 0);
    QCOMPARE(server.cancels(), 1);
    QVERIFY(!session.isLost());
    QVERIFY(session.run("update"));
}

void LongWalkTest::aClosedSessionTakesItsRowsAway()
{
    const ScriptedServer server({}, first({{numbers(many)}, Then::FallSilent}));
    PgSession session = sessionAt(server);
    Result<PgRows, PgError> rows = session.walk("select");
    QVERIFY(rows);
    QCOMPARE(walked(*rows, 700), 700);
    session.close();
    QCOMPARE(pumps(), 0);
    QCOMPARE(rows->text(0).toByteArray(), "699"); // that one is there
    QCOMPARE(rows->next(), Step::Failed);
    QCOMPARE(rows->error()->kind, Kind::Lost);
}

HARROWBY_CORE_TEST(long_walk_test, LongWalkTest)
#include "long_walk_test.moc"
