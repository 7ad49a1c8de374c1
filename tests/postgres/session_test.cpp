// SPDX-License-Identifier: MIT
#include "postgres/postgres_session.h"
#include "postgres/session_actions.h"
#include "tests/postgres/scripted_server.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby;
using namespace std::chrono_literals;

using harrowby::test::ScriptedServer;
using Answer = ScriptedServer::Answer;
using Kind = PgError::Kind;
using Manners = ScriptedServer::Manners;
using Then = ScriptedServer::Then;

namespace {

/// What a server says nothing for is over soon; what it says is waited for long.
const PgBudget soon{200ms, 60s};

Answer say(const QByteArray &bytes)
{
    return {{bytes}};
}

/// A session at the server, which says to its first statement what stands here, and "done" to all further ones.
struct Desk
{
    explicit Desk(const Answer &first, PgWaitHook hook = {}) :
        server(Manners(), [first](const QByteArray &statements, int number) {
            const QByteArray limit = statements.startsWith("set local") ? ScriptedServer::done("SET") : QByteArray();
            return number == 0 ? first : Answer{{limit + ScriptedServer::done("UPDATE 1") + ScriptedServer::ready()}};
        })
    {
        PgWaits waits{60s, 60s, 60s, 60s, std::move(hook)};
        const Result<void, PgError> connected = session.connect({server.conninfo()}, waits);
        if (!connected)
            qFatal("%s", qPrintable(connected.error().text));
    }

    ScriptedServer server;
    PgSession session;
};

PgError errorOf(const Result<PgResults, PgError> &results)
{
    return results ? PgError{Kind::Refused, "none", {}} : results.error();
}

} // namespace

class SessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void answersComeAsTheyWereSent();
    void anErrorIsToldAndTheSessionGoesOn_data();
    void anErrorIsToldAndTheSessionGoesOn();
    void anErrorLateInTheTextIsItsError();
    void aSilentServerIsGivenUp();
    void whatComesBeginsTheTimeAnew();
    void whoWaitsMayGiveUp();
    void aBrokenConnectionIsLost_data();
    void aBrokenConnectionIsLost();
    void anEndInBetweenIsNoticedBeforeAnythingIsSent();
    void aCommitThatNoStandbyConfirmedIsTold();
    void aLockIsAskedForAgain();
    void aLockThatIsNeverFreeIsToldAsOne();
    void whatIsLeftForLocksIsTheServersLimit();
    void locksOfASendingAgain_data();
    void locksOfASendingAgain();
    void withinATransactionNothingIsSentAgain();
    void aTextThatFailsLeavesNoTransactionOpen();
    void aNulIsRefused();
    void aCopyIsNotSpoken();
    void whatIsNoAnswerIsToldAsABreak();
    void aClosedSessionRunsNothing();
};

void SessionTest::answersComeAsTheyWereSent()
{
    Desk desk(say(ScriptedServer::done("BEGIN") +
                  ScriptedServer::rows({"StockID", "StockName"}, {{"A1", "Tea"}, {"", QByteArray()}}) +
                  ScriptedServer::done("SELECT 2") + ScriptedServer::done("UPDATE 3") + ScriptedServer::ready()));
    const Result<PgResults, PgError> results = desk.session.run("begin; select 1; update");
    QVERIFY(results);
    QCOMPARE(results->size(), 3U);
    const PgResult &rows = (*results)[1];
    QCOMPARE(rows.rowCount(), 2);
    QCOMPARE(rows.columnCount(), 2);
    QCOMPARE(rows.columnName(1), "StockName");
    QCOMPARE(rows.columnType(1), 25U);
    QCOMPARE(rows.text(0, 1).toByteArray(), "Tea");
    QVERIFY(!rows.isNull(1, 0));
    QVERIFY(rows.isNull(1, 1));
    QCOMPARE((*results)[2].affectedRows(), 3);
    QCOMPARE(desk.server.statements(), QByteArrayList{"begin; select 1; update"});
}

void SessionTest::anErrorIsToldAndTheSessionGoesOn_data()
{
    QTest::addColumn<QByteArray>("state");
    QTest::addColumn<Kind>("kind");
    QTest::newRow("syntax") << QByteArray("42601") << Kind::Refused;
    QTest::newRow("right") << QByteArray("42501") << Kind::Refused;
    QTest::newRow("full") << QByteArray("53100") << Kind::Full;
    QTest::newRow("read-only") << QByteArray("25006") << Kind::ReadOnly;
    QTest::newRow("own") << QByteArray("HB001") << Kind::Refused;
}

void SessionTest::anErrorIsToldAndTheSessionGoesOn()
{
    QFETCH(QByteArray, state);
    QFETCH(Kind, kind);
    Desk desk(say(ScriptedServer::error(state, "it is\nnot to be") + ScriptedServer::ready()));
    const PgError error = errorOf(desk.session.run("update"));
    QCOMPARE(error.kind, kind);
    QCOMPARE(error.sqlState, state);
    QCOMPARE(error.text, QStringLiteral("it is not to be"));
    QVERIFY(!error.mayBeDone);
    QVERIFY(!desk.session.isLost());
    QVERIFY(desk.session.run("update"));
}

void SessionTest::anErrorLateInTheTextIsItsError()
{
    Desk desk(say(ScriptedServer::rows({"act"}, {{""}}) + ScriptedServer::done() +
                  ScriptedServer::error("22003", "out of range") + ScriptedServer::ready()));
    QCOMPARE(errorOf(desk.session.run("select act(); update")).sqlState, "22003");
    QVERIFY(desk.session.run("update"));
}

void SessionTest::aSilentServerIsGivenUp()
{
    QList<PgWaiting> waited;
    Desk desk({{}, Then::FallSilent}, [&waited](const PgWait &wait) {
        waited.append(wait.what);
        return true;
    });
    const PgError error = errorOf(desk.session.run("update", soon));
    QCOMPARE(error.kind, Kind::TimedOut);
    QVERIFY(error.mayBeDone);
    QVERIFY(desk.session.isLost());
    QVERIFY(waited.size() >= 3);
    QCOMPARE(waited.last(), PgWaiting::Answer);
    const PgError next = errorOf(desk.session.run("update"));
    QCOMPARE(next.kind, Kind::Lost);
    QVERIFY(!next.mayBeDone);
}

void SessionTest::whatComesBeginsTheTimeAnew()
{
    const QByteArray rows = ScriptedServer::rows({"a"}, {{"1"}, {"2"}});
    Answer slow{{ScriptedServer::done("SET") + rows.first(20), rows.sliced(20, 9), rows.sliced(29, 9), rows.sliced(38),
                 ScriptedServer::done() + ScriptedServer::ready()},
                Then::Wait,
                300}; // one result, in pieces
    Desk desk(slow);
    QVERIFY(desk.session.run("select", {1'200ms, 60s})); // of 1,500 in all
}

void SessionTest::whoWaitsMayGiveUp()
{
    Desk desk({{}, Then::FallSilent}, [](const PgWait &wait) { return wait.what != PgWaiting::Answer; });
    const PgError error = errorOf(desk.session.run("update"));
    QCOMPARE(error.kind, Kind::GivenUp);
    QVERIFY(error.mayBeDone);
    QVERIFY(desk.session.isLost());
}

void SessionTest::aBrokenConnectionIsLost_data()
{
    QTest::addColumn<QByteArray>("last");
    QTest::addColumn<QString>("text");
    QTest::newRow("no word") << QByteArray() << QString();
    QTest::newRow("in a message") << QByteArray("T\0\0\0\x40", 5) << QString();
    QTest::newRow("before the end") << ScriptedServer::done("UPDATE 1") << QString();
    QTest::newRow("ended by an administrator") << ScriptedServer::error("57P01", "terminating connection", "FATAL")
                                               << QStringLiteral("terminating connection");
    QTest::newRow("any last word") << ScriptedServer::error("XX000", "trap", "PANIC") << QStringLiteral("trap");
}

void SessionTest::aBrokenConnectionIsLost()
{
    QFETCH(QByteArray, last);
    QFETCH(QString, text);
    Desk desk({{last}, Then::HangUp});
    const PgError error = errorOf(desk.session.run("update"));
    QCOMPARE(error.kind, Kind::Lost);
    QVERIFY(error.mayBeDone);
    QVERIFY(!error.text.isEmpty());
    if (!text.isEmpty())
        QCOMPARE(error.text, text);
    QVERIFY(desk.session.isLost());
}

void SessionTest::anEndInBetweenIsNoticedBeforeAnythingIsSent()
{
    Desk desk(say(ScriptedServer::done() + ScriptedServer::ready()));
    QVERIFY(!desk.session.hasEnded());
    desk.server.hangUp();
    const PgError error = errorOf(desk.session.run("update"));
    QCOMPARE(error.kind, Kind::Lost);
    QVERIFY(!error.mayBeDone);
    QCOMPARE(desk.server.statements(), QByteArrayList());

    Desk other(say({}));
    other.server.hangUp();
    QTRY_VERIFY(other.session.hasEnded());
    QVERIFY(other.session.isLost());
}

void SessionTest::aCommitThatNoStandbyConfirmedIsTold()
{
    const QByteArray done = ScriptedServer::done("UPDATE 1") + ScriptedServer::ready();
    Desk desk(say(ScriptedServer::warning("SyncRepWaitForLSN", "Warten abgebrochen") + done));
    const PgError error = errorOf(desk.session.run("update"));
    QCOMPARE(error.kind, Kind::NotConfirmed);
    QVERIFY(error.mayBeDone);
    QVERIFY(!desk.session.isLost());
    QVERIFY(desk.session.run("update")); // the warning was for that one alone

    Desk other(say(ScriptedServer::warning("exec_simple_query", "there is no transaction") + done));
    QVERIFY(other.session.run("commit"));
}

void SessionTest::aLockIsAskedForAgain()
{
    for (const QByteArray &state : {QByteArray("55P03"), QByteArray("40P01")}) {
        Desk desk({{ScriptedServer::error(state, "not now") + ScriptedServer::ready()}, Then::Wait, 60});
        QVERIFY(desk.session.run("update"));
        QCOMPARE(desk.server.statements(), (QByteArrayList{"update", "set local lock_timeout = 27000;update"}));
        QVERIFY(desk.session.takeLockWait() >= 60ms); // also when it was got in the end
        QCOMPARE(desk.session.takeLockWait(), 0ms);
    }
}

void SessionTest::aLockThatIsNeverFreeIsToldAsOne()
{
    const ScriptedServer server(Manners(), [](const QByteArray &, int) {
        return Answer{{ScriptedServer::error("55P03", "another has it") + ScriptedServer::ready()}, Then::Wait, 60};
    });
    PgSession session;
    QList<PgWaiting> waited;
    QVERIFY(session.connect({server.conninfo()}, {60s, 60s, 60s, 60s, [&waited](const PgWait &wait) {
                                                      waited.append(wait.what);
                                                      return true;
                                                  }}));
    const PgError error = errorOf(session.run("update", {60s, 150ms}));
    QCOMPARE(error.kind, Kind::LockTimedOut);
    QVERIFY(!error.mayBeDone);
    QVERIFY(!session.isLost());
    QVERIFY(server.statements().size() > 1);
    QCOMPARE(waited.last(), PgWaiting::Lock);
    QVERIFY(session.takeLockWait() >= 150ms);
}

void SessionTest::whatIsLeftForLocksIsTheServersLimit()
{
    Desk desk(say(ScriptedServer::done("SET") + ScriptedServer::done("UPDATE 7") + ScriptedServer::ready()));
    QVERIFY(desk.server.questions().first().contains("set lock_timeout = 3000;")); // so that a short wait is known, too
    const Result<PgResults, PgError> results = desk.session.run("update", {60s, 0s});
    QVERIFY(results);
    QCOMPARE(results->size(), 1U);
    QCOMPARE(results->front().affectedRows(), 7);
    QVERIFY(desk.session.run("update", {10ms + 60s, 60s}));
    QVERIFY(desk.session.run("update", {1s, 60s}));
    QCOMPARE(desk.server.statements(),
             (QByteArrayList{"set local lock_timeout = 1;update", "update", "set local lock_timeout = 450;update"}));

    const ScriptedServer server;
    PgSession walking;
    PgTarget target{server.conninfo()};
    target.use = PgTarget::Use::Walk;
    QVERIFY(walking.connect(target, {60s, 60s, 60s, 60s}));
    QVERIFY(server.questions().first().contains("set lock_timeout = 27000;")); // less than an answer's minute
}

void SessionTest::locksOfASendingAgain_data()
{
    QTest::addColumn<bool>("isLimited");
    QTest::addColumn<bool>("isOwn");
    for (const bool isLimited : {false, true}) {
        QTest::addRow("of the first sending, %d", isLimited) << isLimited << true;
        QTest::addRow("of another, %d", isLimited) << isLimited << false;
    }
}

/// The first sending holds the number's row, if it is there at all. Whoever gets past that waits for somebody else.
void SessionTest::locksOfASendingAgain()
{
    QFETCH(const bool, isLimited);
    QFETCH(const bool, isOwn);
    const ScriptedServer server(Manners(), [isOwn](const QByteArray &statements, int) {
        const QByteArray limit = statements.startsWith("set local") ? ScriptedServer::done("SET") : QByteArray();
        const QByteArray passed = isOwn ? QByteArray() : ScriptedServer::rows({"act"}, {{""}}) + ScriptedServer::done();
        const QByteArray failed = ScriptedServer::error("55P03", "not now") + ScriptedServer::ready();
        return Answer{{limit + passed + failed}, Then::Wait, 20};
    });
    PgSession session;
    QVERIFY(session.connect({server.conninfo()}, {5s, 5s, 5s, 5s}));
    postgres::SessionActions actions(session, [] { return Result<void, PgError>(); });
    actions.setBudget({5s, isLimited ? 100ms : 400ms});
    actions.enter(postgres::ActionServer::Phase::Resending);
    const postgres::ActionAnswer answer = actions.act({}, {{}, "update", {}});
    QCOMPARE(answer.heard, postgres::Heard::Locked);
    QCOMPARE(answer.error.sqlState, isOwn ? "55000" : "55P03");
    QCOMPARE(session.takeLockWait() > 0ms, !isOwn);
    QCOMPARE(actions.isOver(), !isOwn);
}

void SessionTest::withinATransactionNothingIsSentAgain()
{
    const ScriptedServer server(Manners(), [](const QByteArray &, int number) {
        if (number == 0)
            return Answer{{ScriptedServer::done("BEGIN") + ScriptedServer::ready('T')}};
        return Answer{{ScriptedServer::error("55P03", "another has it") + ScriptedServer::ready('E')}};
    });
    PgSession session;
    QVERIFY(session.connect({server.conninfo()}, {}));
    QVERIFY(session.run("begin"));
    QVERIFY(session.isInTransaction());
    QCOMPARE(errorOf(session.run("select for update")).kind, Kind::LockTimedOut);
    QVERIFY(session.isInTransaction());
    session.rollBack({5s, 0s});
    QCOMPARE(server.statements(),
             (QByteArrayList{"begin", "set local lock_timeout = 2250;select for update", "rollback"}));
}

void SessionTest::aTextThatFailsLeavesNoTransactionOpen()
{
    Desk desk(say(ScriptedServer::done("BEGIN") + ScriptedServer::error("42703", "no such column") +
                  ScriptedServer::ready('E')));
    QCOMPARE(errorOf(desk.session.run("begin; select")).sqlState, "42703");
    QCOMPARE(desk.server.statements(), (QByteArrayList{"begin; select", "rollback"}));
    QVERIFY(!desk.session.isInTransaction());
}

void SessionTest::aNulIsRefused()
{
    Desk desk(say(ScriptedServer::ready()));
    QCOMPARE(errorOf(desk.session.run(QByteArray("update\0x", 8))).kind, Kind::Refused);
    QCOMPARE(desk.server.statements(), QByteArrayList());
}

void SessionTest::aCopyIsNotSpoken()
{
    Desk desk(say(QByteArray("G\0\0\0\x07\0\0\0", 8)));
    QCOMPARE(errorOf(desk.session.run("copy t from stdin")).kind, Kind::Lost);
    QVERIFY(desk.session.isLost());
}

/// Of a server that has lost count, or is none.
void SessionTest::whatIsNoAnswerIsToldAsABreak()
{
    Desk desk(say(ScriptedServer::ready()));
    const PgError error = errorOf(desk.session.run("update"));
    QCOMPARE(error.kind, Kind::Lost);
    QVERIFY(error.mayBeDone);
    QVERIFY(desk.session.isLost());

    Desk fewer(say(ScriptedServer::done("UPDATE 1") + ScriptedServer::ready())); // no word about the limit
    QCOMPARE(errorOf(fewer.session.run("update", {60s, 0s})).kind, Kind::Lost);

    Desk held(say(ScriptedServer::done("BEGIN") + ScriptedServer::ready('T')));
    QVERIFY(held.session.run("begin"));
    postgres::SessionActions actions(held.session, [] { return Result<void, PgError>(); });
    actions.setBudget({60s, 60s});
    QCOMPARE(actions.act({}, {{}, "update", {}}).heard, postgres::Heard::Lost); // one answer to three statements
}

void SessionTest::aClosedSessionRunsNothing()
{
    Desk desk(say(ScriptedServer::done("UPDATE 1") + ScriptedServer::ready()));
    desk.session.close();
    QVERIFY(desk.session.isLost());
    QVERIFY(desk.session.hasEnded());
    QCOMPARE(errorOf(desk.session.run("update")).kind, Kind::Lost);
    QCOMPARE(PgSession().isLost(), true);
    PgSession moved;
    moved = std::move(desk.session);
    QVERIFY(moved.isLost());
    QVERIFY(moved.connect({desk.server.conninfo()}, {}));
    QVERIFY(moved.run("update"));
}

HARROWBY_CORE_TEST(session_test, SessionTest)
#include "session_test.moc"
