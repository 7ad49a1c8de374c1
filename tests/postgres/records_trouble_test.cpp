// SPDX-License-Identifier: MIT
#include "tests/postgres/records_desk.h"
#include "tests/program/test_program.h"

#include <QElapsedTimer>
#include <QScopeGuard>
#include <QTest>

using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using server::PostgresStore;

/// Answers that get lost, connections that break and servers that are killed under the program's records: each write is
/// done once, and known to be.
class RecordsTroubleTest : public RecordsDesk
{
    Q_OBJECT

private Q_SLOTS:
    void lostAnswersOfWrites();
    void lostAnswersOfWritesTogether();
    void brokenInTheMiddle();
    void brokenAndChangedMeanwhile();
    void brokenAtTheEndAndChangedMeanwhile();
    void serverKilledInTheMiddle();
    void actionThatTheServersReturnMeets();
    void meetsALockAfterADeadlock();
    void unknownIsToldLater();
};

/// Whichever answer gets lost: done once, and known how often.
void RecordsTroubleTest::lostAnswersOfWrites()
{
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s, 0.0)));
    for (int answer = 1; answer <= 3; ++answer) {
        m_store->beginAction();
        m_proxy->loseAnswerOf(answer);
        QCOMPARE(m_records->write(notes(), raiseAll).value_or(-1), 1);
        QCOMPARE(notesOnServer(), u"a=%1"_s.arg(answer));
        m_proxy->loseAnswerOf(1);
        QCOMPARE(m_records->write(notes(), insertNote(u"n%1"_s.arg(answer))).value_or(-1), 1);
        QCOMPARE(m_records->write(notes(), {u"delete from HarrowbyNote where Name = ?"_s, {u"n%1"_s.arg(answer)}})
                     .value_or(-1),
                 1);
        m_proxy->loseAnswerOf(1000);
    }
    QVERIFY(m_told.isEmpty());
}

void RecordsTroubleTest::lostAnswersOfWritesTogether()
{
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s, 0.0)));
    for (int answer = 1; answer <= 5; ++answer) {
        m_store->beginAction();
        m_proxy->loseAnswerOf(answer);
        int runs = 0;
        const auto kept = m_records->together(notes(), [&] {
            ++runs;
            const auto before = m_records->read(notes(), allNotes);
            return before && m_records->write(notes(), raiseAll).value_or(-1) == 1 &&
                   m_records->write(notes(), raiseAll).value_or(-1) == 1;
        });
        QVERIFY2(kept && *kept, QByteArray::number(answer));
        QCOMPARE(runs, 1);
        QCOMPARE(notesOnServer(), u"a=%1"_s.arg(2 * answer));
        m_proxy->loseAnswerOf(1000);
    }
    QVERIFY(m_told.isEmpty());
}

void RecordsTroubleTest::brokenInTheMiddle()
{
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s, 0.0)));
    const auto kept = m_records->together(notes(), [&] {
        const bool first = m_records->write(notes(), raiseAll).value_or(-1) == 1;
        m_proxy->cut();
        return first && m_records->write(notes(), raiseAll).value_or(-1) == 1;
    });
    QVERIFY(kept && *kept);
    QCOMPARE(notesOnServer(), u"a=2"_s);
    QVERIFY(m_told.isEmpty());
}

/// What was read is not true any more, so what was computed from it is not written.
void RecordsTroubleTest::brokenAndChangedMeanwhile()
{
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s, 0.0)));
    const auto kept = m_records->together(notes(), [&] {
        const auto before = m_records->read(notes(), allNotes);
        m_proxy->cut();
        m_server->cluster.sql(u"update harrowby.HarrowbyNote set Worth = 7"_s);
        return before && m_records->write(notes(), raiseAll);
    });
    QVERIFY(kept && !*kept);
    QCOMPARE(m_told.size(), 1);
    QVERIFY(m_told.constFirst().reason.contains(u"changed"_s));
    QCOMPARE(notesOnServer(), u"a=7"_s);
    QVERIFY(m_records->write(notes(), raiseAll));
    QCOMPARE(notesOnServer(), u"a=8"_s);
}

/// What was run again before that was noticed is not done with the next write, either.
void RecordsTroubleTest::brokenAtTheEndAndChangedMeanwhile()
{
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s, 0.0)));
    const auto kept = m_records->together(notes(), [&] {
        const bool isRead = m_records->write(notes(), raiseAll) && m_records->read(notes(), allNotes);
        m_proxy->cut();
        m_server->cluster.sql(u"update harrowby.HarrowbyNote set Worth = 7"_s);
        return isRead;
    });
    QVERIFY(!kept || !*kept);
    QCOMPARE(m_told.size(), 1);
    QVERIFY(m_told.constFirst().reason.contains(u"changed"_s));
    QVERIFY(m_records->write(notes(), insertNote(u"b"_s, 1.0)));
    QCOMPARE(notesOnServer(), u"a=7 b=1"_s);
}

void RecordsTroubleTest::serverKilledInTheMiddle()
{
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s, 0.0)));
    const auto kept = m_records->together(notes(), [&] {
        const bool first = m_records->write(notes(), raiseAll).value_or(-1) == 1;
        m_server->cluster.kill9();
        m_server->cluster.start();
        return first && m_records->write(notes(), raiseAll).value_or(-1) == 1;
    });
    QVERIFY(kept && *kept);
    QCOMPARE(notesOnServer(), u"a=2"_s);
}

/// The server is looked for in the middle of an action. Its rest keeps its time: what follows waits for a server that
/// is away for longer than a first write would wait.
void RecordsTroubleTest::actionThatTheServersReturnMeets()
{
    QVERIFY(!m_store->isInAction());
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s, 0.0)));
    QVERIFY(m_store->isInAction());
    QVERIFY(!m_store->reachAnew());
    QVERIFY(!m_store->tryAgain());
    m_server->cluster.kill9();
    QElapsedTimer away;
    away.start();
    const auto afterwards = qScopeGuard([&] {
        m_store->setWaitHook({});
        if (away.isValid())
            m_server->cluster.start();
    });
    m_store->setWaitHook([&](const DbWait &) {
        if (away.isValid() && away.hasExpired(5'000)) {
            away.invalidate();
            m_server->cluster.start();
        }
        return true;
    });
    QCOMPARE(m_records->write(notes(), raiseAll).value_or(-1), 1);
    QCOMPARE(notesOnServer(), u"a=1"_s);
    QVERIFY(m_told.isEmpty());
    m_store->beginAction();
    QVERIFY(!m_store->isInAction());
}

/// The till has one row and wants the other, a second program the other way round. The till gives way, and what it runs
/// again meets the other's lock, for longer than the server waits for one.
void RecordsTroubleTest::meetsALockAfterADeadlock()
{
    PrivateCluster &cluster = m_server->cluster;
    cluster.set(u"deadlock_timeout"_s, u"300ms"_s);
    cluster.sql(u"set deadlock_timeout = '1h'"_s);
    m_records.reset();
    m_store.reset();
    const qsizetype before = cluster.log().size();
    const auto hasTold = [&](QLatin1StringView what) { return cluster.log().mid(before).contains(what); };
    enum { Has, Wants, Done } other = Done;
    ServerOptions options;
    options.stateFolder = m_server->options().stateFolder;
    options.silence = 1250ms; // a lock is waited for as long as 1 s at a time
    options.waitHook = [&](const DbWait &) {
        if (other == Has && cluster.sql(u"select count(*) from pg_locks where not granted"_s).constFirst() != u"0"_s) {
            other = Wants;
            // Returns when the till has given way.
            cluster.sql(u"update harrowby.HarrowbyNote set Worth = Worth where Name = 'a'"_s);
        } else if (other == Wants && hasTold("due to lock timeout"_L1)) {
            other = Done;
            cluster.sql(u"commit"_s);
        }
        return true;
    };
    PostgresStore store(throughProxy(), options);
    QVERIFY(!store.open());
    const auto records = store.records();
    records->setFailureHandler([this](const DbFailure &failure) { m_told << failure; });
    QVERIFY(records->write(notes(), insertNote(u"a"_s, 0.0)));
    QVERIFY(records->write(notes(), insertNote(u"b"_s, 0.0)));
    const auto raise = [&](const QString &name) {
        return records->write(notes(), {u"update HarrowbyNote set Worth = Worth + 1 where Name = ?"_s, {name}});
    };
    cluster.sql(u"begin; update harrowby.HarrowbyNote set Worth = Worth where Name = 'b'"_s);
    other = Has;
    const auto kept = records->together(notes(), [&] { return raise(u"a"_s) && raise(u"b"_s); });
    cluster.sql(u"rollback; reset deadlock_timeout"_s);
    QVERIFY2(m_told.isEmpty(), qPrintable(m_told.isEmpty() ? QString() : m_told.constFirst().reason));
    QVERIFY(kept && *kept);
    QVERIFY(hasTold("deadlock detected"_L1));
    QCOMPARE(other, Done);
    QCOMPARE(notesOnServer(), u"a=1 b=1"_s);
}

void RecordsTroubleTest::unknownIsToldLater()
{
    m_records.reset();
    m_store.reset();
    const PostgresOptions shortTimes = m_server->options();
    ServerOptions options;
    options.stateFolder = shortTimes.stateFolder;
    options.connecting = 200ms;
    options.silence = 200ms;
    options.rest = 300ms;
    PostgresStore store(throughProxy(), options);
    QVERIFY(!store.open());
    const auto records = store.records();
    QVERIFY(records->write(notes(), insertNote(u"a"_s, 0.0)));
    std::optional<DbFailure> failure;
    records->setFailureHandler([&](const DbFailure &told) { failure = told; });
    store.setResolvedHandler([this](const QString &what, WriteOutcome known) {
        m_resolved << Resolved{what, known == WriteOutcome::Done};
    });
    const auto unknown = records->together(notes(), [&] {
        const bool isWritten = records->write(notes(), raiseAll).has_value();
        m_proxy->goSilentAtAnswerOf(1); // of the commit
        return isWritten;
    });
    QVERIFY(!unknown);
    QVERIFY(failure && Records::isUnknown(*failure));
    QCOMPARE(notesOnServer(), u"a=1"_s);
    m_proxy->speak();
    QTRY_VERIFY(!store.tryAgain());
    QCOMPARE(m_resolved.size(), 1);
    QVERIFY(m_resolved.constFirst().isDone);
    QCOMPARE(m_resolved.constFirst().what, u"UPDATE HarrowbyNote"_s);
    QVERIFY(records->write(notes(), raiseAll));
    QCOMPARE(notesOnServer(), u"a=2"_s);
}

HARROWBY_CORE_TEST(records_trouble_test, RecordsTroubleTest)
#include "records_trouble_test.moc"
