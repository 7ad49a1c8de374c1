// SPDX-License-Identifier: MIT
#include "app/records/server_engine.h"
#include "tests/doubles/proxy.h"
#include "tests/postgres/server_fixture.h"
#include "tests/program/test_program.h"

#include <QStandardPaths>
#include <QTest>

#include <atomic>
#include <thread>

using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The plugin, as the program loads it.
class ServerEngineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void usualTimes();
    void opensAStore();
    void whyItCannotBeOpened_data();
    void whyItCannotBeOpened();
    void storesOfOtherVersions();

    void ownRecordsReadOneMoment();
    void ownRecordsWrite();
    void ownRecordsThatReadDoNotWrite();
    void ownRecordsLeaveWhatTheyCannotTell();
    void aWatchEndsAStatement();
    void anotherThreadEndsAStatement();
    void ownRecordsOfNoServer();

private:
    [[nodiscard]] ServerOptions options();
    [[nodiscard]] std::unique_ptr<StoreRecords> ownRecords(Access access);
    /// Nobody goes on with the endless statement there.
    void awaitItsEnd();

    std::unique_ptr<ServerFixture> m_server;
    ServerEngine *m_engine = nullptr;
};

namespace {

const RecordStatement names{u"select StockName from StockList"_s, {}};

/// Takes minutes.
const RecordStatement endless{u"select count(*) from pg_sleep(300)"_s, {}};

} // namespace

void ServerEngineTest::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true); // what outlives the program
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    const auto engine = serverEngine();
    QVERIFY2(engine, engine ? "" : qPrintable(engine.error()));
    m_engine = *engine;
    QCOMPARE(*serverEngine(), m_engine);
    m_server = std::make_unique<ServerFixture>();
}

void ServerEngineTest::init()
{
    m_server->refill();
}

/// How long a shop waits for its server where nobody says otherwise.
void ServerEngineTest::usualTimes()
{
    const PostgresOptions ofAHost;
    QCOMPARE(ofAHost.connecting, 2s);
    QCOMPARE(ofAHost.silence, 5s);
    QCOMPARE(ofAHost.lock, 10s);
    QCOMPARE(ofAHost.rest, 60s);
    const ServerOptions ofTheProgram;
    QCOMPARE(ofTheProgram.connecting, 2s);
    QCOMPARE(ofTheProgram.silence, 5s);
    QCOMPARE(ofTheProgram.lock, 10s);
    QCOMPARE(ofTheProgram.rest, 60s);
}

ServerOptions ServerEngineTest::options()
{
    ServerOptions options;
    options.stateFolder = m_server->options().stateFolder;
    options.connecting = 1000ms;
    options.silence = 1000ms;
    return options;
}

std::unique_ptr<StoreRecords> ServerEngineTest::ownRecords(Access access)
{
    const QString target = u"postgresql://postgres@127.0.0.1:%1/shop"_s.arg(m_server->cluster.port());
    auto records = openStoreRecords(target, access);
    return records ? *std::move(records) : nullptr;
}

void ServerEngineTest::awaitItsEnd()
{
    m_server->cluster.await(u"select count(*) from pg_stat_activity where query like '%pg_sleep(300)%' and "
                            "state = 'active' and pid <> pg_backend_pid()"_s,
                            u"0"_s);
}

void ServerEngineTest::opensAStore()
{
    auto store = m_engine->open(m_server->cluster.tcpConninfo(), options());
    QVERIFY(store);
    const auto connection = (*store)->connection();
    QVERIFY((*store)->isOpen());
    store = Unexpected(ServerProblem()); // goes
    QVERIFY(connection->Execute(u"Update StockList set StockAvailable = 3 where StockID = '1'"_s));
    QCOMPARE(m_server->stockOf(u"1"_s), u"3"_s);
    QVERIFY(m_engine->unstorable(u"StockList"_s, {{u"StockCost"_s, u"dear"_s}}));
    QCOMPARE(m_engine->converted(u"StockList"_s, u"StockCost"_s, u"5"_s), RecordValue(std::int64_t{5}));
}

void ServerEngineTest::whyItCannotBeOpened_data()
{
    using Kind = ServerProblem::Kind;
    QTest::addColumn<QString>("target");
    QTest::addColumn<ServerProblem::Kind>("kind");
    const QString server = u"postgresql://postgres@127.0.0.1:%1/"_s.arg(m_server->cluster.port());
    QTest::newRow("no such service") << u"service=nowhere"_s << Kind::BadTarget;
    QTest::newRow("no target") << u"postgresql://[x"_s << Kind::BadTarget;
    QTest::newRow("nobody there") << u"postgresql://postgres@127.0.0.1:1/shop"_s << Kind::NoServer;
    QTest::newRow("no such database") << server + u"nowhere"_s << Kind::Denied;
    QTest::newRow("no such user") << u"host=127.0.0.1 port=%1 user=nobody dbname=shop"_s.arg(m_server->cluster.port())
                                  << Kind::Denied;
    QTest::newRow("no store") << server + u"postgres"_s << Kind::NotAStore;
    QTest::newRow("no TLS") << server + u"shop?sslmode=require"_s << Kind::NotTrusted;
}

void ServerEngineTest::whyItCannotBeOpened()
{
    QFETCH(QString, target);
    QFETCH(ServerProblem::Kind, kind);
    const auto store = m_engine->open(target, options());
    QVERIFY(!store);
    QVERIFY2(store.error().kind == kind, qPrintable(store.error().reason));
    QVERIFY(!store.error().reason.isEmpty());
}

void ServerEngineTest::storesOfOtherVersions()
{
    const auto problemOf = [this](int version) {
        m_server->cluster.sql(u"create or replace function harrowby.schema_version() returns integer language sql "
                              "immutable return %1"_s.arg(version));
        const auto store = m_engine->open(m_server->cluster.tcpConninfo(), options());
        return store ? ServerProblem::Kind::Other : store.error().kind;
    };
    QVERIFY(problemOf(-1) == ServerProblem::Kind::SchemaTooOld);
    QVERIFY(problemOf(99) == ServerProblem::Kind::Other); // what is only added to, older programs work with
    QVERIFY(problemOf(100) == ServerProblem::Kind::SchemaTooNew);
    QVERIFY(problemOf(1) == ServerProblem::Kind::Other);
}

void ServerEngineTest::ownRecordsReadOneMoment()
{
    const auto own = ownRecords(Access::Read);
    QVERIFY(own);
    QVERIFY(!own->holdMoment());
    m_server->cluster.sql(u"insert into harrowby.StockList (StockID) values ('4'), ('5')"_s);
    QCOMPARE(own->records().read(names).value_or(QList<RecordRow>()).size(), 3);
    int rows = 0;
    QVERIFY(own->records().readEach(nullptr, names, [&rows](const RecordCells &) { return ++rows > 0; }));
    QCOMPARE(rows, 3);
    QVERIFY(!own->records().write(kept::setting(), {u"update StockList set StockCost = 1"_s, {}}));
    own->releaseMoment();
    QCOMPARE(own->records().read(names).value_or(QList<RecordRow>()).size(), 5);
    QVERIFY(!own->holdMoment());
    m_server->cluster.sql(u"select pg_terminate_backend(pid) from pg_stat_activity where application_name like "
                          "'harrowby%'"_s);
    QVERIFY(!own->records().read(names)); // another moment is not put in its place
    own->releaseMoment();
    QVERIFY(own->records().read(names));
}

void ServerEngineTest::ownRecordsWrite()
{
    const auto own = ownRecords(Access::Write);
    QVERIFY(own);
    const RecordStatement dearer{u"update StockList set StockCost = StockCost + ?"_s, {2.0}};
    QVERIFY(own->records().together(kept::import(),
                                    [&] { return own->records().write(kept::import(), dearer).value_or(0) == 3; }));
    QCOMPARE(m_server->cluster.sql(u"select StockCost from harrowby.StockList where StockID = '1'"_s),
             QStringList{u"3.5"_s});
}

void ServerEngineTest::ownRecordsThatReadDoNotWrite()
{
    const auto own = ownRecords(Access::Read);
    QVERIFY(!own->records().write(kept::setting(), {u"update StockList set StockCost = 1"_s, {}}));
    QCOMPARE(own->records().read(names).value_or(QList<RecordRow>()).size(), 3);
}

/// A night job between a till's end and its next start has nobody to tell what became of the till's write.
void ServerEngineTest::ownRecordsLeaveWhatTheyCannotTell()
{
    Proxy proxy(m_server->cluster.port());
    const QString target = u"host=127.0.0.1 port=%1 user=postgres dbname=shop sslmode=disable"_s.arg(proxy.port());
    ServerOptions options;
    options.connecting = 200ms;
    options.silence = 200ms;
    options.rest = 300ms;
    {
        const auto till = m_engine->open(target, options);
        QVERIFY(till);
        const auto connection = (*till)->connection();
        QVERIFY(connection->Execute(u"Update StockList set StockAvailable = 3 where StockID = '1'"_s));
        proxy.goSilentAtAnswerOf(1);
        QVERIFY(!connection->Execute(u"Update StockList set StockAvailable = 4 where StockID = '1'"_s));
        QCOMPARE(connection->lastWrite(), WriteOutcome::Unknown);
    }
    proxy.speak();
    const auto nightJob = ownRecords(Access::Write);
    QVERIFY(nightJob);
    QVERIFY(nightJob->records().write(kept::import(), {u"update StockList set StockCost = 1"_s, {}}));
    QStringList told;
    options.resolvedHandler = [&told](const QString &what, WriteOutcome known) {
        told << (known == WriteOutcome::Done ? what : u"not done"_s);
    };
    QVERIFY(m_engine->open(target, options));
    QCOMPARE(told, QStringList(u"Update StockList set StockAvailable = 4 where StockID = '1'"_s));
}

void ServerEngineTest::aWatchEndsAStatement()
{
    const auto own = ownRecords(Access::Read);
    int looks = 0;
    own->setWatch([&looks] { return ++looks < 3; });
    const auto ended = own->records().read(endless);
    QVERIFY(!ended);
    QVERIFY(own->wasInterrupted(ended.error()));
    own->setWatch({});
    QVERIFY(own->records().read(names)); // connected anew
    const auto wrong = own->records().read({u"select Nothing from StockList"_s, {}});
    QVERIFY(!wrong && !own->wasInterrupted(wrong.error()));
    awaitItsEnd();
}

void ServerEngineTest::anotherThreadEndsAStatement()
{
    const auto own = ownRecords(Access::Write);
    std::atomic<bool> isOver = false;
    std::thread other([&] {
        while (!isOver) {
            own->interrupt();
            std::this_thread::sleep_for(5ms);
        }
    });
    const auto ended =
        own->records().together(kept::import(), [&] { return own->records().read(endless).has_value(); });
    isOver = true;
    other.join();
    QVERIFY(!ended || !*ended);
    awaitItsEnd();
    QVERIFY(own->records().read(names));
}

void ServerEngineTest::ownRecordsOfNoServer()
{
    const auto own = openStoreRecords(u"postgresql://postgres@127.0.0.1:1/shop"_s, Access::Read);
    QVERIFY(!own);
    QVERIFY(own.error().contains(u"cannot be opened. The server cannot be reached"_s));
}

HARROWBY_CORE_TEST(server_engine_test, ServerEngineTest)
#include "server_engine_test.moc"
