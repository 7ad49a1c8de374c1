// SPDX-License-Identifier: MIT
#include "app/records/server_engine.h"
#include "plugins/server/postgres_store.h"
#include "tests/doubles/proxy.h"
#include "tests/postgres/server_fixture.h"
#include "tests/program/test_program.h"

#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>

using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::test;
using namespace Qt::StringLiterals;

namespace {

const RecordTable &numbers()
{
    static const RecordTable table = {u"HarrowbyNumber"_s,
                                      {u"create table if not exists HarrowbyNumber (Number bigint, Name text)"_s}};
    return table;
}

const RecordStatement all{u"select Number, Name from HarrowbyNumber"_s, {}};
constexpr int count = 25'001;

} // namespace

/// What there is much of on a server is neither held in memory as a whole nor asked for one by one.
class ManyRecordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void listIsReadInPieces();
    void brokenListGoesOn();
    void listIsEnded();
    void manyLocksAreAskedForAtOnce();

private:
    [[nodiscard]] std::unique_ptr<server::PostgresStore> open(const QString &target) const;
    /// Reads all numbers within a transaction; `at` is called with each.
    [[nodiscard]] QList<std::int64_t> readTogether(const std::function<bool(std::int64_t)> &at);

    std::unique_ptr<ServerFixture> m_server;
    std::unique_ptr<Proxy> m_proxy;
    std::unique_ptr<server::PostgresStore> m_store;
    std::unique_ptr<Records> m_records;
};

void ManyRecordsTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    m_server = std::make_unique<ServerFixture>();
    m_proxy = std::make_unique<Proxy>(m_server->cluster.port());
    m_server->cluster.sql(
        u"create table harrowby.HarrowbyNumber (Number bigint, Name text); insert into "
        "harrowby.HarrowbyNumber select n, 'number ' || n from generate_series(1, %1) n"_s.arg(count));
}

std::unique_ptr<server::PostgresStore> ManyRecordsTest::open(const QString &target) const
{
    ServerOptions options;
    options.stateFolder = m_server->options().stateFolder;
    auto store = std::make_unique<server::PostgresStore>(target, options);
    if (const auto problem = store->open())
        qWarning("not opened: %ls", qUtf16Printable(problem->reason));
    return store;
}

void ManyRecordsTest::init()
{
    m_store = open(u"host=127.0.0.1 port=%1 user=postgres dbname=shop sslmode=disable"_s.arg(m_proxy->port()));
    m_records = m_store->records();
}

void ManyRecordsTest::cleanup()
{
    m_records.reset();
    m_store.reset();
}

QList<std::int64_t> ManyRecordsTest::readTogether(const std::function<bool(std::int64_t)> &at)
{
    QList<std::int64_t> read;
    const auto kept = m_records->together(numbers(), [&] {
        const auto whole = m_records->readEach(&numbers(), all, [&](const RecordCells &cells) {
            read << recordNumber(cells.value(0));
            return cells.utf8(1) == QByteArrayView("number " + QByteArray::number(read.constLast())) &&
                   at(read.constLast());
        });
        return whole.has_value() && m_records->read({u"select 1"_s, {}}).has_value();
    });
    return kept && *kept ? read : QList<std::int64_t>();
}

void ManyRecordsTest::listIsReadInPieces()
{
    const int before = m_proxy->roundTrips();
    QList<std::int64_t> read = readTogether([](std::int64_t) { return true; });
    const int trips = m_proxy->roundTrips() - before;
    QVERIFY2(trips >= 7 && trips < 12, QByteArray::number(trips)); // begin, three pieces, close, select, commit
    std::sort(read.begin(), read.end());
    QCOMPARE(read.size(), count);
    QCOMPARE(read.constFirst(), 1);
    QCOMPARE(read.constLast(), count);
}

/// Between two pieces: each row comes once.
void ManyRecordsTest::brokenListGoesOn()
{
    int taken = 0;
    QList<std::int64_t> read = readTogether([&](std::int64_t) {
        if (++taken == 15'000)
            m_proxy->cut();
        return true;
    });
    std::sort(read.begin(), read.end());
    QCOMPARE(read.size(), count);
    QVERIFY(std::adjacent_find(read.begin(), read.end()) == read.end());
}

/// The transaction goes on, and lists can be read in it.
void ManyRecordsTest::listIsEnded()
{
    int taken = 0;
    const int before = m_proxy->roundTrips();
    QCOMPARE(readTogether([&](std::int64_t) { return ++taken < 10; }).size(), 10);
    QVERIFY(m_proxy->roundTrips() - before < 9);
}

/// A till that starts asks for all that have not ended.
void ManyRecordsTest::manyLocksAreAskedForAtOnce()
{
    using Holder = ServerStore::Holder;
    auto other = open(m_server->cluster.tcpConninfo());
    const auto held = other->lock(2'999);
    QVERIFY(held && m_store->lock(-7));
    QList<std::int64_t> asked;
    for (std::int64_t number = 3'000; number > 0; --number)
        asked << number;
    const int before = m_proxy->roundTrips();
    const auto holders = m_store->holdersOf(asked);
    QCOMPARE(m_proxy->roundTrips() - before, 1);
    QCOMPARE(holders.size(), asked.size());
    QCOMPARE(holders.count(Holder::Nobody), asked.size() - 1);
    QVERIFY(holders.at(1) == Holder::Somebody);
    QVERIFY(other->lock(2'998)); // a look takes nothing
    QVERIFY(m_store->holdersOf({}).isEmpty());
}

HARROWBY_CORE_TEST(many_records_test, ManyRecordsTest)
#include "many_records_test.moc"
