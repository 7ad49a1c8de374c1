// SPDX-License-Identifier: MIT
#include "tests/doubles/private_cluster.h"
#include "tests/doubles/proxy.h"
#include "tests/postgres/acting_till.h"
#include "tests/postgres/server_store.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <csignal>
#include <memory>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace harrowby;
using namespace harrowby::postgres;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using Outcome = Actions::Outcome;

/// Each write exactly once, on a real server behind a network that fails.
class ActionsServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void takesANumberOnce();
    void tellsAfterAClaim();
    void holdsWhatWasRead();
    void needsOneRoundTrip();
    void sellsOnceWhenTheAnswerIsLost();
    void sellsOnceOverASilentCable();
    void tellsUnknownAndThenTheTruth();
    void nextStartTellsTheTruth();
    void sellsOnceByAnotherWay();
    void goesOnAfterAServerThatHung();
    void refusesWhenNobodyIsThere();
    void refusesWhatAnotherHolds();
    void sendsADeadlocksVictimAgain();
    void losesNothingWhenProgramsAreKilled();
    void letsNothingOfAKilledProgramArriveLater();
    void endsAHeldRead();
    void carriesAHeldReadOver();
    void resolvesOutsideAHeldRead();

private:
    [[nodiscard]] QString journal() const { return m_home->filePath(u"actions"_s); }
    [[nodiscard]] QString value(const QString &select) { return m_cluster->sql(select).value(0); }
    [[nodiscard]] int timesSold(qint64 sale)
    {
        return value(u"select count(*) from harrowby.sold where sale = %1"_s.arg(sale)).toInt();
    }
    [[nodiscard]] std::unique_ptr<ActingTill> till(quint16 port) const
    {
        return std::make_unique<ActingTill>(QList<quint16>{port}, journal(), ActingTill::patientTimes());
    }
    /// Until nothing of a sending is under way any more: each session ends on the server behind its last statement.
    void awaitQuiet(ActingTill &last);
    /// A sale that the server gets when the till has long given up: it stays in the network.
    void sellIntoTheNetwork(ActingTill &till, Proxy &proxy, qint64 sale);

    std::unique_ptr<PrivateCluster> m_cluster;
    std::unique_ptr<QTemporaryDir> m_home;
};

void ActionsServerTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    m_cluster = std::make_unique<PrivateCluster>();
    m_cluster->start();
    for (const QString &text : schemaFiles())
        m_cluster->sql(text);
    m_cluster->sql(ActingTill::tables());
}

void ActionsServerTest::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    m_cluster->sql(u"truncate harrowby.sold; update harrowby.stock set pieces = 1000000"_s);
}

/// Whatever a test did, the stock goes with what was sold.
void ActionsServerTest::cleanup()
{
    QCOMPARE(value(u"select pieces + (select count(*) from harrowby.sold) from harrowby.stock"_s), u"1000000"_s);
}

// ---- the server's part

void ActionsServerTest::takesANumberOnce()
{
    const QString act = u"select harrowby.act('%1', %2)"_s.arg(QUuid::createUuid().toString(QUuid::WithoutBraces));
    QVERIFY(m_cluster->trySql(act.arg(1)));
    QVERIFY(!m_cluster->trySql(act.arg(1)));
    QVERIFY(!m_cluster->trySql(act.arg(0)));
    QVERIFY(m_cluster->trySql(act.arg(5)));
    QVERIFY(!m_cluster->trySql(act.arg(4)));
    // A number goes with its transaction.
    QVERIFY(!m_cluster->trySql(act.arg(6) + u"; select 1/0"_s));
    QVERIFY(m_cluster->trySql(act.arg(6) + u"; select harrowby.require(true)"_s));
    QVERIFY(!m_cluster->trySql(act.arg(7) + u"; select harrowby.require(false)"_s));
    QVERIFY(!m_cluster->trySql(act.arg(7) + u"; select harrowby.require(null)"_s));
    QVERIFY(m_cluster->trySql(act.arg(7)));
    // Each writer has its own.
    QVERIFY(m_cluster->trySql(u"select harrowby.act('%1', 1)"_s.arg(QUuid::createUuid().toString())));
}

void ActionsServerTest::tellsAfterAClaim()
{
    const QString writer = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const QString claim = u"select harrowby.claim_action('%1', %2)"_s.arg(writer);
    const QString confirm = u"select harrowby.confirm_action('%1', %2)"_s.arg(writer);
    const QString act = u"select harrowby.act('%1', %2)"_s.arg(writer);
    QCOMPARE(value(confirm.arg(3)), u"f"_s);
    QCOMPARE(value(claim.arg(3)), u"4"_s);
    QCOMPARE(value(claim.arg(3)), u"4"_s); // as often as it is asked
    QVERIFY(!m_cluster->trySql(act.arg(3)));
    QVERIFY(m_cluster->trySql(act.arg(5)));
    QCOMPARE(value(confirm.arg(5)), u"t"_s);
    QCOMPARE(value(confirm.arg(4)), u"f"_s);
    QCOMPARE(value(claim.arg(5)), u"5"_s);
    QCOMPARE(value(claim.arg(3)), u"5"_s);
    QCOMPARE(value(claim.arg(u"9223372036854775806"_s)), u"9223372036854775807"_s);
    QVERIFY(!m_cluster->trySql(act.arg(6)));
}

void ActionsServerTest::holdsWhatWasRead()
{
    const auto program = till(m_cluster->port());
    Write write = ActingTill::saleOf(1);
    write.condition =
        "select harrowby.require(exists(select 1 from harrowby.stock where item = 1 and pieces = 1000000 for update));";
    QCOMPARE(program->write(write).outcome, Outcome::Done);
    const Actions::End end = program->write(write);
    QCOMPARE(end.outcome, Outcome::Refused);
    QCOMPARE(end.error.sqlState, "HB002");
    QCOMPARE(timesSold(1), 1);
}

void ActionsServerTest::awaitQuiet(ActingTill &last)
{
    last.session().close();
    m_cluster->await(u"select count(*) from pg_stat_activity "
                     "where backend_type = 'client backend' and pid <> pg_backend_pid()"_s,
                     u"0"_s);
}

// ---- the network

void ActionsServerTest::needsOneRoundTrip()
{
    Proxy proxy(m_cluster->port());
    const auto program = till(proxy.port());
    QCOMPARE(program->sell(1), Outcome::Done);
    const int before = proxy.roundTrips();
    for (qint64 sale = 2; sale <= 11; ++sale)
        QCOMPARE(program->sell(sale), Outcome::Done);
    QCOMPARE(proxy.roundTrips() - before, 10);
}

void ActionsServerTest::sellsOnceWhenTheAnswerIsLost()
{
    Proxy proxy(m_cluster->port());
    const auto program = till(proxy.port());
    QCOMPARE(program->sell(1), Outcome::Done);
    for (qint64 sale = 2; sale <= 6; ++sale) {
        proxy.loseAnswerOf(1);
        QCOMPARE(program->sell(sale), Outcome::Done);
        QCOMPARE(timesSold(sale), 1);
    }
    // And cut before it was sent: the session finds out, and nothing was under way.
    proxy.cut();
    QCOMPARE(program->sell(7), Outcome::Done);
    QCOMPARE(timesSold(7), 1);
}

void ActionsServerTest::sellsOnceOverASilentCable()
{
    Proxy proxy(m_cluster->port());
    const auto program = till(proxy.port());
    QCOMPARE(program->sell(1), Outcome::Done);
    program->setTimes(ActingTill::insistentTimes());
    int waits = 0;
    program->setWaiting([&] {
        if (++waits == 12) // longer than one answer is waited for
            proxy.speak();
    });
    proxy.goSilent();
    QCOMPARE(program->sell(2), Outcome::Done);
    QCOMPARE(timesSold(2), 1);
    waits = 0;
    proxy.goSilentAtAnswerOf(1);
    QCOMPARE(program->sell(3), Outcome::Done);
    QCOMPARE(timesSold(3), 1);
}

void ActionsServerTest::sellIntoTheNetwork(ActingTill &till, Proxy &proxy, qint64 sale)
{
    QCOMPARE(till.sell(0), Outcome::Done);
    proxy.goSilent();
    till.setTimes(ActingTill::shortTimes());
    QCOMPARE(till.sell(sale), Outcome::Unknown);
    QVERIFY(till.actions().hasOpen());
    QCOMPARE(till.sell(99), Outcome::Refused); // nothing while it is not known
    till.setTimes(ActingTill::patientTimes());
    QCOMPARE(timesSold(sale), 0);
}

void ActionsServerTest::tellsUnknownAndThenTheTruth()
{
    Proxy proxy(m_cluster->port());
    const auto program = till(proxy.port());
    sellIntoTheNetwork(*program, proxy, 1);
    proxy.speak(); // what was sent arrives now, in some order with the claim
    QCOMPARE(program->sell(2), Outcome::Done);
    QVERIFY(!program->actions().hasOpen());
    const Outcome told = program->told().at(1);
    QVERIFY(told == Outcome::Done || told == Outcome::Refused);
    awaitQuiet(*program);
    QCOMPARE(timesSold(1), told == Outcome::Done ? 1 : 0);
    QCOMPARE(timesSold(2), 1);
    QCOMPARE(timesSold(99), 0);
}

void ActionsServerTest::nextStartTellsTheTruth()
{
    Proxy proxy(m_cluster->port());
    auto program = till(proxy.port());
    sellIntoTheNetwork(*program, proxy, 1);
    program.reset();
    // By another way, so that the first sending stays in the network.
    program = till(m_cluster->port());
    QVERIFY(program->actions().hasOpen());
    QCOMPARE(program->sell(2), Outcome::Done);
    QCOMPARE(program->told().at(1), Outcome::Refused);
    proxy.speak();
    awaitQuiet(*program);
    QCOMPARE(timesSold(1), 0);
    QCOMPARE(timesSold(2), 1);
}

void ActionsServerTest::sellsOnceByAnotherWay()
{
    // As over a second line to the same server: the first sending is still in the network.
    Proxy proxy(m_cluster->port());
    ActingTill program({proxy.port(), m_cluster->port()}, journal(), ActingTill::insistentTimes());
    QCOMPARE(program.sell(0), Outcome::Done);
    proxy.goSilent();
    const Outcome outcome = program.sell(1);
    QVERIFY(outcome == Outcome::Done);
    QCOMPARE(timesSold(1), 1);
    proxy.speak();
    awaitQuiet(program);
    QCOMPARE(timesSold(1), 1);
}

// ---- the server

void ActionsServerTest::goesOnAfterAServerThatHung()
{
    const auto program = till(m_cluster->port());
    QCOMPARE(program->sell(1), Outcome::Done);
    program->setTimes(ActingTill::insistentTimes());
    int waits = 0;
    program->setWaiting([&] {
        if (++waits == 12)
            m_cluster->cont();
    });
    m_cluster->stop();
    QCOMPARE(program->sell(2), Outcome::Done);
    QCOMPARE(timesSold(2), 1);

    program->setWaiting({});
    program->setTimes(ActingTill::shortTimes());
    m_cluster->stop();
    QCOMPARE(program->sell(3), Outcome::Unknown);
    m_cluster->cont();
    program->setTimes(ActingTill::patientTimes());
    QCOMPARE(program->sell(4), Outcome::Done);
    awaitQuiet(*program);
    QCOMPARE(timesSold(3), program->told().at(3) == Outcome::Done ? 1 : 0);
}

void ActionsServerTest::refusesWhenNobodyIsThere()
{
    const auto program = till(m_cluster->port());
    QCOMPARE(program->sell(1), Outcome::Done);
    m_cluster->shutDown();
    program->setTimes(ActingTill::shortTimes());
    const Actions::End end = program->write(ActingTill::saleOf(2));
    QCOMPARE(end.outcome, Outcome::Refused);
    QVERIFY(!program->actions().hasOpen());
    m_cluster->start();
    program->setTimes(ActingTill::patientTimes());
    QCOMPARE(program->sell(3), Outcome::Done);
    QCOMPARE(timesSold(2), 0);
}

void ActionsServerTest::refusesWhatAnotherHolds()
{
    const auto program = till(m_cluster->port());
    auto times = ActingTill::patientTimes();
    times.waits.lock = ActingTill::shortTimes().waits.lock;
    program->setTimes(times);
    m_cluster->sql(u"begin; update harrowby.stock set pieces = pieces where item = 1"_s);
    const Actions::End end = program->write(ActingTill::saleOf(1));
    m_cluster->sql(u"rollback"_s);
    QCOMPARE(end.outcome, Outcome::Refused);
    QCOMPARE(end.error.kind, PgError::Kind::LockTimedOut);
    QVERIFY(!program->actions().hasOpen());
    QCOMPARE(program->sell(2), Outcome::Done);
    QCOMPARE(timesSold(1), 0);
}

/// The till holds one row and wants the other, a second program the other way round; it is the till that is told off.
void ActionsServerTest::sendsADeadlocksVictimAgain()
{
    m_cluster->set(u"deadlock_timeout"_s, u"300ms"_s);
    m_cluster->sql(u"set deadlock_timeout = '1h'"_s);
    m_cluster->sql(u"insert into harrowby.stock values (2, 0)"_s);
    ActingTill program({m_cluster->port()}, journal(), ActingTill::patientTimes()); // the deadlock comes first
    const QString take = u"update harrowby.stock set pieces = pieces where item = %1"_s;
    m_cluster->sql(u"begin; "_s + take.arg(2));
    bool isTaken = false;
    program.setWaiting([&] {
        // Once the till has its first row, and waits for the second; not already while it connects.
        if (isTaken || value(u"select count(*) from pg_locks where not granted"_s) == u"0"_s)
            return;
        isTaken = true;
        m_cluster->sql(take.arg(1) + u"; commit"_s); // returns when the till has given way
    });
    Write write = ActingTill::saleOf(1);
    write.condition = (take.arg(1) + u';' + take.arg(2) + u';').toUtf8();
    const Actions::End end = program.write(write);
    m_cluster->sql(u"reset deadlock_timeout; delete from harrowby.stock where item = 2"_s);
    QCOMPARE(end.outcome, Outcome::Done);
    QVERIFY(isTaken);
    QVERIFY(m_cluster->log().contains(u"deadlock detected"));
    QCOMPARE(timesSold(1), 1);
}

// ---- programs that are killed

namespace {

/// A process that sells 1, 2, … and says so, one byte a sale, until it is killed.
class SellingProcess
{
public:
    SellingProcess(quint16 port, const QString &journal)
    {
        if (::pipe(m_pipe.data()) != 0)
            qFatal("no pipe");
        m_process = ::fork();
        if (m_process == 0)
            sell(port, journal);
        ::close(m_pipe[1]);
    }

    /// Once so many sales were told as done; kills it then, and returns how many there were.
    [[nodiscard]] qint64 killAfter(int sales)
    {
        qint64 told = 0;
        char byte = 0;
        while (told < sales && ::read(m_pipe[0], &byte, 1) == 1)
            ++told;
        ::kill(m_process, SIGKILL);
        while (::read(m_pipe[0], &byte, 1) == 1)
            ++told;
        ::close(m_pipe[0]);
        ::waitpid(m_process, nullptr, 0);
        return told;
    }

private:
    [[noreturn]] void sell(quint16 port, const QString &journal)
    {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ActingTill program({port}, journal);
        for (qint64 sale = 1;; ++sale) {
            if (program.sell(sale) != Outcome::Done || ::write(m_pipe[1], "x", 1) != 1)
                ::_exit(1);
        }
    }

    std::array<int, 2> m_pipe{};
    pid_t m_process = 0;
};

} // namespace

void ActionsServerTest::losesNothingWhenProgramsAreKilled()
{
    for (int round = 1; round <= 20; ++round) {
        m_cluster->sql(u"truncate harrowby.sold; update harrowby.stock set pieces = 1000000"_s);
        const qint64 told = SellingProcess(m_cluster->port(), journal()).killAfter(round * 3);
        QCOMPARE(QDir(journal()).entryList(QDir::Files).size(), 1);
        const auto next = till(m_cluster->port());
        QVERIFY(next->actions().resolve());
        const int sold = value(u"select count(*) from harrowby.sold"_s).toInt();
        QVERIFY2(sold == told || sold == told + 1, qPrintable(u"%1 told, %2 sold"_s.arg(told).arg(sold)));
        QCOMPARE(value(u"select count(distinct sale) from harrowby.sold"_s).toInt(), sold);
    }
    QVERIFY(QDir(journal()).isEmpty());
}

void ActionsServerTest::letsNothingOfAKilledProgramArriveLater()
{
    Proxy proxy(m_cluster->port());
    SellingProcess process(proxy.port(), journal());
    QTRY_VERIFY(timesSold(5) == 1);
    proxy.goSilent(); // with some sale on its way, one way or the other
    QTest::qWait(100);
    const qint64 told = process.killAfter(0);
    const auto next = till(m_cluster->port());
    QCOMPARE(next->sell(1000000), Outcome::Done);
    const int sold = value(u"select count(*) from harrowby.sold"_s).toInt() - 1;
    QVERIFY(sold == told || sold == told + 1);
    proxy.speak();
    awaitQuiet(*next);
    QCOMPARE(value(u"select count(*) from harrowby.sold"_s).toInt() - 1, sold);
}

// ---- a held read

void ActionsServerTest::endsAHeldRead()
{
    const auto program = till(m_cluster->port());
    const QByteArray hold = "begin; select pieces from harrowby.stock where item = 1 for update";
    QCOMPARE(program->sell(0), Outcome::Done);
    QVERIFY(program->session().run(hold));
    QVERIFY(program->session().isInTransaction());
    QCOMPARE(program->sell(1), Outcome::Done);
    QVERIFY(!program->session().isInTransaction());
    QCOMPARE(timesSold(1), 1);

    QVERIFY(program->session().run(hold));
    QCOMPARE(program->write({{}, "insert into harrowby.sold values (1/0)", u"2"_s}).outcome, Outcome::Refused);
    QVERIFY(!program->session().isInTransaction());
    QCOMPARE(program->sell(3), Outcome::Done);
}

void ActionsServerTest::carriesAHeldReadOver()
{
    Proxy proxy(m_cluster->port());
    const auto program = till(proxy.port());
    QCOMPARE(program->sell(0), Outcome::Done);
    for (const bool hasChanged : {false, true}) {
        const qint64 sale = hasChanged ? 2 : 1;
        const auto held = program->session().run("begin; select pieces from harrowby.stock where item = 1 for update");
        QVERIFY(held);
        Write write = ActingTill::saleOf(sale);
        write.condition = "select harrowby.require(exists(select 1 from harrowby.stock where item = 1 and pieces = " +
                          held->back().text(0, 0).toByteArray() + " for update));";
        proxy.cut(); // the hold is gone, before the write is sent
        QTRY_COMPARE(value(u"select count(*) from pg_stat_activity where state = 'idle in transaction'"_s), u"0"_s);
        if (hasChanged)
            m_cluster->sql(
                u"with one as (insert into harrowby.sold values (77)) update harrowby.stock set pieces = pieces - 1"_s);
        QCOMPARE(program->write(write).outcome, hasChanged ? Outcome::Refused : Outcome::Done);
        QCOMPARE(timesSold(sale), hasChanged ? 0 : 1);
    }
}

/// What a claim has settled stays so when the held read ends without its write.
void ActionsServerTest::resolvesOutsideAHeldRead()
{
    Proxy proxy(m_cluster->port());
    auto program = till(proxy.port());
    m_cluster->sql(u"truncate harrowby.writer_action"_s);
    sellIntoTheNetwork(*program, proxy, 1);
    program.reset();
    program = till(m_cluster->port());
    QVERIFY(program->connect());
    QVERIFY(program->session().run("begin; select pieces from harrowby.stock where item = 1 for update"));
    QCOMPARE(program->write({{}, "insert into harrowby.sold values (1/0)", u"2"_s}).outcome, Outcome::Refused);
    QCOMPARE(program->told().at(1), Outcome::Refused);
    QCOMPARE(value(u"select last from harrowby.writer_action"_s), u"3"_s); // that of the claim
}

HARROWBY_CORE_TEST(actions_server_test, ActionsServerTest)
#include "actions_server_test.moc"
