// SPDX-License-Identifier: MIT
#include "app/records/server_engine.h"
#include "app/server/finding_out.h"
#include "app/server/missed_reading.h"
#include "app/server/return_to_server.h"
#include "app/server/server_run_locks.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include <harrowby/counter.h>

#include <QTest>

#include <optional>
#include <utility>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace std::chrono_literals;

/// What a till on a server does once that is back, without a server.
class ServerBackTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void windowReadsAgainWhatItMissed();
    void whatFailsAgainIsTriedLater();
    void whatWasRefusedIsNotReadAgain();
    void lockThatIsFreeIsNobodysAfterAWhile();
    void lockThatIsTakenAgainWasNobodysNever();
    void whatIsNotKnownIsLookedForNowAndThen();
    void serverThatIsBackIsReachedForUntilItIs();
    void actionThatIsUnderWayComesFirst();
};

namespace {

DbFailure missedRead(const QString &state)
{
    DbFailure failure = {DbFailure::Kind::Read, u"Select * from Stocklist"_s, u"reason"_s};
    failure.engineState = state;
    return failure;
}

/// A server that a test turns.
class FalseStore final : public ServerStore
{
public:
    Holder holder = Holder::Somebody;
    QList<std::int64_t> asked;
    bool isReached = true;
    bool isUnderWay = false;
    QStringList tried;

    std::shared_ptr<DbConnection> connection() override { return {}; }
    std::unique_ptr<Records> records() override { return {}; }
    [[nodiscard]] QUuid identity() const override { return {}; }
    [[nodiscard]] bool isOpen() const override { return true; }
    std::optional<ServerProblem> tryAgain() override { return given(u"again"_s); }
    std::optional<ServerProblem> reachAnew() override { return given(u"anew"_s); }
    [[nodiscard]] bool isInAction() const override { return isUnderWay; }
    void setResolvedHandler(ResolvedHandler) override {}
    void setWaitHook(DbConnection::WaitHook) override {}
    void setChangeHandler(ChangeHandler) override {}
    void setEmptyHandler(EmptyHandler) override {}
    void beginAction() override {}
    Result<std::unique_ptr<ServerLock>, QString> lock(std::int64_t) override { return std::make_unique<ServerLock>(); }
    QList<Holder> holdersOf(const QList<std::int64_t> &numbers) override
    {
        asked << numbers;
        return QList<Holder>(numbers.size(), holder);
    }

private:
    std::optional<ServerProblem> given(const QString &what)
    {
        tried << what;
        return isReached ? std::nullopt : std::optional(ServerProblem());
    }
};

} // namespace

void ServerBackTest::windowReadsAgainWhatItMissed()
{
    test::Counter till;
    till.file.addItem(u"A1"_s, u"TEA"_s, 2.5, 30);
    MissedReading missed([] { return harrowby::Counter::instance().readAgain() == CounterAnswer::Done; });
    till.connection->setFailureHandler([&missed](const DbFailure &failure) {
        DbFailure ofServer = failure;
        ofServer.kind = DbFailure::Kind::Read; // of the double, each is a write
        ofServer.engineState = u"08006"_s;
        missed.note(ofServer);
    });
    till.connection->fails = [](const QString &) { return true; };
    till.open();
    QCOMPARE(till.text("Command1_0"), u"(empty)"_s);
    till.connection->fails = [](const QString &) { return false; };
    missed.serverAnswers(false);
    QCOMPARE(till.text("Command1_0"), u"A1\r\nTEA\r\n2.50"_s);
    till.connection->statements.clear();
    missed.serverAnswers(false);
    missed.serverAnswers(true);
    QCOMPARE(till.connection->statements, QStringList()); // nothing is missing any more
}

void ServerBackTest::whatFailsAgainIsTriedLater()
{
    int times = 0;
    bool isBusy = true;
    MissedReading missing([&] {
        if (isBusy)
            return false;
        ++times;
        missing.note(missedRead(u"08001"_s));
        return true;
    });
    missing.serverAnswers(true);
    QCOMPARE(times, 0);
    missing.note(missedRead(u"57014"_s));
    missing.serverAnswers(true);
    isBusy = false; // a box was open
    missing.serverAnswers(false);
    QCOMPARE(times, 1);
    missing.serverAnswers(false); // at once again: it would hold the window up again and again
    QCOMPARE(times, 1);
    missing.serverAnswers(true);
    QCOMPARE(times, 2);
}

void ServerBackTest::whatWasRefusedIsNotReadAgain()
{
    int times = 0;
    MissedReading missing([&] { return ++times > 0; });
    for (const QString &state : {u"42501"_s, u"42P01"_s, u"22P02"_s, QString()})
        missing.note(missedRead(state));
    DbFailure write = missedRead(u"08006"_s);
    write.kind = DbFailure::Kind::Write;
    missing.note(write);
    missing.serverAnswers(true);
    QCOMPARE(times, 0);
}

/// Tills that live lose their locks when the server ends, and need a moment to take them again.
void ServerBackTest::lockThatIsFreeIsNobodysAfterAWhile()
{
    FalseStore store;
    std::chrono::milliseconds now = 1h;
    ServerRunLocks locks(store, [&now] { return now; });
    QCOMPARE(locks.holderOf(7), RunLocks::Holder::Somebody);
    store.holder = ServerStore::Holder::Nobody;
    QCOMPARE(locks.holderOf(7), RunLocks::Holder::NotKnown);
    for (; now < 1h + ServerRunLocks::grace; now += 3s) {
        locks.renew();
        QCOMPARE(locks.holderOf(7), RunLocks::Holder::NotKnown);
    }
    now = 1h + ServerRunLocks::grace;
    QCOMPARE(locks.holderOf(7), RunLocks::Holder::Nobody);
    QCOMPARE(locks.holderOf(8), RunLocks::Holder::NotKnown); // each by itself
    QVERIFY(locks.hold(9));
    QCOMPARE(locks.holderOf(9), RunLocks::Holder::Somebody); // its own
    locks.close();
    QCOMPARE(locks.holderOf(7), RunLocks::Holder::NotKnown);
}

void ServerBackTest::lockThatIsTakenAgainWasNobodysNever()
{
    using Turned = ServerStore::Holder;
    for (const Turned meanwhile : {Turned::Somebody, Turned::NotKnown}) {
        FalseStore store;
        std::chrono::milliseconds now = 1h;
        ServerRunLocks locks(store, [&now] { return now; });
        store.holder = Turned::Nobody;
        QCOMPARE(locks.holderOf(7), RunLocks::Holder::NotKnown);
        now += ServerRunLocks::grace / 2;
        store.holder = meanwhile; // it lives, or the server is gone again
        locks.renew();
        store.holder = Turned::Nobody;
        now += ServerRunLocks::grace / 2;
        QCOMPARE(locks.holderOf(7), RunLocks::Holder::NotKnown);
        now += ServerRunLocks::grace;
        QCOMPARE(locks.holderOf(7), RunLocks::Holder::Nobody);
        store.asked.clear();
        store.holder = Turned::Somebody;
        QCOMPARE(locks.holderOf(7), RunLocks::Holder::Somebody);
        locks.renew();
        QCOMPARE(store.asked, QList<std::int64_t>{7}); // no more than what it waits for
    }
}

/// Each try may hold the window up for seconds.
void ServerBackTest::whatIsNotKnownIsLookedForNowAndThen()
{
    std::chrono::milliseconds now = 1h;
    FindingOut finding([&now] { return now; });
    const ServerWatch::State alone{true, {}, u"single"_s};
    const ServerWatch::State waiting{true, {}, u"waiting"_s};
    QVERIFY(!finding.isDue(alone, false, false));
    QVERIFY(!finding.isDue(waiting, true, true));
    QVERIFY(finding.isDue(alone, true, false)); // of an earlier run
    QVERIFY(!finding.isDue(alone, false, true));
    now += FindingOut::rest;
    QVERIFY(finding.isDue(alone, false, true));
    QVERIFY(!finding.isDue(alone, false, true));
    QVERIFY(finding.isDue(alone, true, true));
    QVERIFY(!finding.isDue(waiting, false, true));
    QVERIFY(finding.isDue(alone, false, true)); // the standby is there, which it has waited for
    QVERIFY(!finding.isDue(alone, false, true));
    QVERIFY(!finding.isDue(waiting, true, false));
    QVERIFY(finding.isDue(alone, false, false));
}

/// Nothing counts as done that was kept from it.
void ServerBackTest::serverThatIsBackIsReachedForUntilItIs()
{
    FalseStore store;
    std::chrono::milliseconds now = 1h;
    ReturnToServer returning(store, [&now] { return now; });
    const ServerWatch::State single{true, {}, u"single"_s};
    store.isReached = false; // it takes no more of them just now
    QCOMPARE(returning.serverAnswers(single, true, true), false);
    QCOMPARE(std::exchange(store.tried, {}), QStringList{u"anew"_s});
    store.isReached = true;
    now += 3s;
    QCOMPARE(returning.serverAnswers(single, false, true), false);
    QCOMPARE(store.tried, QStringList()); // each try may hold the window up
    now += FindingOut::rest;
    QCOMPARE(returning.serverAnswers(single, false, true), true);
    QCOMPARE(std::exchange(store.tried, {}), (QStringList{u"anew"_s, u"again"_s}));
    QCOMPARE(returning.serverAnswers(single, false, true), false);
    QCOMPARE(store.tried, QStringList());
}

/// The list of an undo that breathes between two of its lines.
void ServerBackTest::actionThatIsUnderWayComesFirst()
{
    FalseStore store;
    ReturnToServer returning(store, [] { return 1h; });
    const ServerWatch::State single{true, {}, u"single"_s};
    store.isUnderWay = true;
    QCOMPARE(returning.serverAnswers(single, true, true), std::nullopt);
    QCOMPARE(returning.serverAnswers(single, false, true), std::nullopt);
    QCOMPARE(std::exchange(store.tried, {}), QStringList{u"anew"_s}); // of its own time, and once
    store.isUnderWay = false;
    QCOMPARE(returning.serverAnswers(single, false, false), true);
    QCOMPARE(store.tried, QStringList{u"again"_s});
}

HARROWBY_TEST(app_server_back_test, ServerBackTest)
#include "server_back_test.moc"
