// SPDX-License-Identifier: MIT
#include "app/records/server_engine.h"
#include "plugins/server/postgres_store.h"
#include "tests/doubles/proxy.h"
#include "tests/postgres/server_fixture.h"
#include "tests/program/test_program.h"

#include <QTest>

#include <atomic>
#include <limits>
#include <thread>

using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using server::PostgresStore;
using Holder = ServerStore::Holder;

namespace {

const RecordTable &notes()
{
    static const RecordTable table = {
        u"HarrowbyNote"_s,
        {u"create table if not exists HarrowbyNote (Name text not null primary key, Worth double precision)"_s,
         u"create index if not exists harrowby_note_worth on HarrowbyNote (Worth)"_s}};
    return table;
}

RecordStatement insertNote(const QString &name, const RecordValue &worth = {})
{
    return {u"insert into HarrowbyNote (Name, Worth) values (?, ?)"_s, {name, worth}};
}

const RecordStatement allNotes{u"select Name, Worth from HarrowbyNote order by Name"_s, {}};
const RecordStatement raiseAll{u"update HarrowbyNote set Worth = Worth + 1"_s, {}};

Holder holderOf(ServerStore &store, std::int64_t number)
{
    return store.holdersOf({number}).constFirst();
}

struct Resolved
{
    QString what;
    bool isDone = false;
};

} // namespace

/// The program's records on a server, over the session of a till.
class RecordsServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void tableIsMadeBeforeItsFirstWrite();
    void valuesComeBackAsTheyWere();
    void writeTellsHowManyRowsItChanged();
    void textIsNeverAStatement_data();
    void textIsNeverAStatement();
    void whatCannotBeStoredIsRefused();
    void asManyValuesAsMarks();
    void writesTogetherAreAllOrNone();
    void workIsUndoneWhenItSaysSo();
    void workGoesNotOnAfterAFailure();
    void noOtherRecordsComeBetween();
    void tillsWaitForWhatIsGuarded();
    void severalRowsAtOnce();
    void rowsAreReadOneByOne();
    void rowIdentityHasAName();
    void recordsAndComponentShareASession();

    void lostAnswersOfWrites();
    void lostAnswersOfWritesTogether();
    void brokenInTheMiddle();
    void brokenAndChangedMeanwhile();
    void serverKilledInTheMiddle();
    void unknownIsToldLater();

    void rowsThatAreChangedAreTold();
    void locksOfPrograms();
    void lockThatAnotherHadMeanwhile();
    void lockFollowsTheStoresSession();

private:
    [[nodiscard]] std::unique_ptr<PostgresStore> open(const QString &target);
    [[nodiscard]] QString throughProxy() const;
    [[nodiscard]] QString notesOnServer();
    [[nodiscard]] QStringList names();

    std::unique_ptr<ServerFixture> m_server;
    std::unique_ptr<Proxy> m_proxy;
    std::unique_ptr<PostgresStore> m_store;
    std::unique_ptr<Records> m_records;
    QList<DbFailure> m_told;
    QList<Resolved> m_resolved;
};

void RecordsServerTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    m_server = std::make_unique<ServerFixture>();
    m_proxy = std::make_unique<Proxy>(m_server->cluster.port());
}

std::unique_ptr<PostgresStore> RecordsServerTest::open(const QString &target)
{
    const PostgresOptions shortTimes = m_server->options();
    ServerOptions options;
    options.stateFolder = shortTimes.stateFolder;
    options.connecting = shortTimes.connecting;
    options.silence = shortTimes.silence;
    options.lock = shortTimes.lock;
    options.rest = shortTimes.rest;
    options.resolvedHandler = [this](const QString &what, bool isDone) { m_resolved << Resolved{what, isDone}; };
    auto store = std::make_unique<PostgresStore>(target, options);
    if (const auto problem = store->open())
        qWarning("not opened: %ls", qUtf16Printable(problem->reason));
    return store;
}

QString RecordsServerTest::throughProxy() const
{
    return u"host=127.0.0.1 port=%1 user=postgres dbname=shop sslmode=disable"_s.arg(m_proxy->port());
}

void RecordsServerTest::init()
{
    m_server->cluster.sql(u"drop table if exists harrowby.HarrowbyNote"_s);
    m_server->refill();
    m_told.clear();
    m_resolved.clear();
    m_store = open(throughProxy());
    m_records = m_store->records();
    m_records->setFailureHandler([this](const DbFailure &failure) { m_told << failure; });
}

void RecordsServerTest::cleanup()
{
    m_proxy->speak();
    m_proxy->setTarget(m_server->cluster.port());
    m_records.reset();
    m_store.reset();
}

/// "a=1 b=2"
QString RecordsServerTest::notesOnServer()
{
    return m_server->cluster
        .sql(
            u"select string_agg(Name || '=' || coalesce(Worth::text, ''), ' ' order by Name) from harrowby.HarrowbyNote"_s)
        .join(u'|');
}

QStringList RecordsServerTest::names()
{
    QStringList all;
    const auto rows = m_records->read(notes(), allNotes);
    for (const RecordRow &row : rows.value_or(QList<RecordRow>()))
        all << recordText(row.at(0));
    return all;
}

void RecordsServerTest::tableIsMadeBeforeItsFirstWrite()
{
    QCOMPARE(names(), QStringList());
    QCOMPARE(m_server->cluster.sql(u"select to_regclass('harrowby.HarrowbyNote')"_s), QStringList{u""_s}); // by no look
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s)));
    QCOMPARE(names(), QStringList{u"a"_s});
    const int before = m_proxy->roundTrips();
    QCOMPARE(names(), QStringList{u"a"_s});
    QCOMPARE(m_proxy->roundTrips() - before, 1); // the table is not looked for again
    QVERIFY(m_told.isEmpty());
}

void RecordsServerTest::valuesComeBackAsTheyWere()
{
    const QString odd = u"a'\"%*?\\\u202e$1:x"_s;
    QVERIFY(m_records->write(notes(), insertNote(odd, 2.5)));
    QVERIFY(m_records->write(notes(), insertNote(u"whole"_s, std::int64_t{5})));
    QVERIFY(m_records->write(notes(), insertNote(u"null"_s)));
    QVERIFY(m_records->write(notes(), insertNote(u"low"_s, -0.1)));
    const auto rows = m_records->read(notes(), allNotes);
    QVERIFY(rows);
    QCOMPARE(*rows, (QList<RecordRow>{
                        {odd, 2.5}, {u"low"_s, -0.1}, {u"null"_s, std::monostate()}, {u"whole"_s, std::int64_t{5}}}));
    const auto one =
        m_records->read(notes(), {u"select Worth from HarrowbyNote where Name = ? and Worth > ?"_s, {odd, -1.5}});
    QVERIFY(one);
    QCOMPARE(*one, QList<RecordRow>{{2.5}});
}

void RecordsServerTest::writeTellsHowManyRowsItChanged()
{
    for (const auto &name : {u"a"_s, u"b"_s})
        QCOMPARE(m_records->write(notes(), insertNote(name, 1.0)).value_or(-1), 1);
    const RecordStatement removing{u"delete from HarrowbyNote where Worth = ?"_s, {1.0}};
    QCOMPARE(m_records->write(notes(), removing).value_or(-1), 2);
    QCOMPARE(m_records->write(notes(), removing).value_or(-1), 0);
    const RecordStatement several{u"insert into HarrowbyNote (Name) values (?), (?)"_s, {u"c"_s, u"d"_s}};
    QCOMPARE(m_records->write(notes(), several).value_or(-1), 2);
}

void RecordsServerTest::textIsNeverAStatement_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("quote") << u"'; drop table harrowby.StockList; --"_s;
    QTest::newRow("double quote") << u"\" or 1=1"_s;
    QTest::newRow("backslash") << u"\\'; drop table harrowby.StockList; --"_s;
    QTest::newRow("dollar") << u"$$; drop table harrowby.StockList; $$ $1"_s;
    QTest::newRow("percent") << u"%"_s;
    QTest::newRow("question marks") << u"???"_s;
    QTest::newRow("right to left") << u"\u202e\u2066abc"_s;
    QTest::newRow("letters beyond the first plane") << u"\U0001F34B"_s;
}

void RecordsServerTest::textIsNeverAStatement()
{
    QFETCH(QString, name);
    QVERIFY(m_records->write(notes(), insertNote(u"other"_s)));
    QVERIFY(m_records->write(notes(), insertNote(name)));
    const auto found = m_records->read(notes(), {u"select Name from HarrowbyNote where Name = ?"_s, {name}})
                           .value_or(QList<RecordRow>());
    QCOMPARE(found, QList<RecordRow>{{name}});
    QCOMPARE(m_server->cluster.sql(u"select count(*) from harrowby.StockList"_s), QStringList{u"3"_s});
}

void RecordsServerTest::whatCannotBeStoredIsRefused()
{
    QVERIFY(!m_records->write(notes(), insertNote(u"a\u0000b"_s)));
    QVERIFY(!m_records->write(notes(), insertNote(u"a"_s, u"text"_s)));
    QVERIFY(!m_records->write(notes(), {u"update StockList set StockCost = ? where StockID = '1'"_s, {u"dear"_s}}));
    QCOMPARE(m_told.size(), 3);
    QCOMPARE(m_told.at(1).engineState, u"22P02"_s);
    QVERIFY(m_told.at(2).reason.contains(u"holds no text"_s));
    QVERIFY(m_records->unstorable(u"StockList"_s, {{u"StockCost"_s, u"dear"_s}}));
    QVERIFY(!m_records->unstorable(u"StockList"_s, {{u"StockCost"_s, u"2.5"_s}}));
    QCOMPARE(m_records->converted(u"StockList"_s, u"StockID"_s, std::int64_t{5}), RecordValue(u"5"_s));
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s))); // the session goes on
}

void RecordsServerTest::asManyValuesAsMarks()
{
    QVERIFY(!m_records->write(notes(), {u"insert into HarrowbyNote (Name) values (?)"_s, {}}));
    QVERIFY(!m_records->read({u"select * from StockList"_s, {u"a"_s}}));
    QCOMPARE(m_told.size(), 2);
}

void RecordsServerTest::writesTogetherAreAllOrNone()
{
    const auto both = m_records->writeTogether(notes(), {insertNote(u"a"_s), insertNote(u"b"_s)});
    QVERIFY(both);
    QCOMPARE(*both, (QList<std::int64_t>{1, 1}));
    const auto twice = m_records->writeTogether(notes(), {insertNote(u"c"_s), insertNote(u"a"_s)});
    QVERIFY(!twice);
    QCOMPARE(twice.error().engineState, u"23505"_s);
    QCOMPARE(names(), (QStringList{u"a"_s, u"b"_s}));
    QCOMPARE(m_told.size(), 1);
}

void RecordsServerTest::workIsUndoneWhenItSaysSo()
{
    const auto work = [this](bool keep) {
        return m_records->together(notes(), [this, keep] {
            (void)m_records->write(notes(), insertNote(keep ? u"kept"_s : u"undone"_s));
            return keep;
        });
    };
    const auto undone = work(false);
    QVERIFY(undone && !*undone);
    QCOMPARE(names(), QStringList());
    const auto thrown = m_records->together(notes(), [this]() -> bool {
        (void)m_records->write(notes(), insertNote(u"thrown"_s));
        throw std::bad_alloc();
    });
    QVERIFY(thrown && !*thrown);
    const auto kept = work(true);
    QVERIFY(kept && *kept);
    QCOMPARE(names(), QStringList{u"kept"_s});
    QVERIFY(m_told.isEmpty());
}

/// A server gives the whole of it up; so nothing of it may be kept by somebody who does not look.
void RecordsServerTest::workGoesNotOnAfterAFailure()
{
    const auto kept = m_records->together(notes(), [this] {
        (void)m_records->write(notes(), insertNote(u"a"_s));
        (void)m_records->write(notes(), insertNote(u"a"_s));
        (void)m_records->write(notes(), insertNote(u"b"_s));
        return true;
    });
    QVERIFY(!kept);
    QCOMPARE(names(), QStringList());
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s)));
}

void RecordsServerTest::noOtherRecordsComeBetween()
{
    const auto other = open(m_server->cluster.tcpConninfo());
    const auto others = other->records();
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s)));
    const auto kept = m_records->together(notes(), [&] {
        const auto refused = others->write(notes(), insertNote(u"b"_s));
        const auto alone = others->together(notes(), [] { return true; });
        return !refused && refused.error().engineState == u"55P03"_s && !alone &&
               others->read(notes(), allNotes).has_value();
    });
    QVERIFY(kept && *kept);
    other->beginAction();
    QVERIFY(others->write(notes(), insertNote(u"b"_s)));
}

void RecordsServerTest::tillsWaitForWhatIsGuarded()
{
    const auto other = open(m_server->cluster.tcpConninfo());
    const auto till = other->connection();
    const QString sale = u"Update StockList set StockAvailable = StockAvailable - 1 where StockID = '1'"_s;
    RecordTable guarding = notes();
    guarding.guarded = {u"StockList"_s};
    bool isFree = false;
    bool isKeptAway = false;
    QVERIFY(m_records->together(notes(), [&] { return isFree = till->Execute(sale); }));
    QVERIFY(m_records->together(guarding, [&] { return isKeptAway = !till->Execute(sale); }));
    QVERIFY(isFree);
    QVERIFY(isKeptAway);
    QCOMPARE(m_server->stockOf(u"1"_s), u"9"_s);
}

void RecordsServerTest::severalRowsAtOnce()
{
    QList<QList<RecordValue>> rows;
    for (int i = 0; i < 450; ++i)
        rows << QList<RecordValue>{QString::number(1000 + i), i % 2 == 0 ? RecordValue(i + 0.5) : RecordValue()};
    const QString text = insertNote({}).text;
    QVERIFY(!m_records->prepare(notes()));
    QCOMPARE(names(), QStringList());
    int trips = 0;
    const auto kept = m_records->together(notes(), [&] {
        trips = m_proxy->roundTrips();
        const auto put = m_records->writeEach(notes(), text, rows);
        trips = m_proxy->roundTrips() - trips;
        return put.value_or(0) == 450;
    });
    QVERIFY(kept && *kept);
    QCOMPARE(trips, 3);
    QCOMPARE(m_records->read(notes(), {u"select sum(Worth) from HarrowbyNote"_s, {}})->constFirst(),
             (RecordRow{50512.5}));
    // Alone, those before the one that fails stay.
    const auto some = m_records->writeEach(notes(), text, {{u"x"_s, {}}, {u"1000"_s, {}}, {u"y"_s, {}}});
    QVERIFY(!some);
    QCOMPARE(m_records->read(notes(), {u"select Name from HarrowbyNote where Name > ?"_s, {u"w"_s}})
                 .value_or(QList<RecordRow>()),
             QList<RecordRow>{{u"x"_s}});
}

void RecordsServerTest::rowsAreReadOneByOne()
{
    m_server->refill(5000);
    int rows = 0;
    QByteArray last;
    const RecordStatement items{u"select StockID, StockName, StockCost from StockList order by StockName"_s, {}};
    const auto whole = m_records->readEach(nullptr, items, [&](const RecordCells &cells) {
        ++rows;
        last = cells.utf8(1).value_or(QByteArrayView()).toByteArray();
        return cells.count() == 3 && std::holds_alternative<double>(cells.value(2));
    });
    QVERIFY(whole && *whole);
    QCOMPARE(rows, 5000);
    QCOMPARE(last, QByteArray("ITEM 005000"));
    const auto ended = m_records->readEach(nullptr, items, [&](const RecordCells &) { return --rows > 4900; });
    QVERIFY(ended && !*ended);
    QCOMPARE(m_records->read({u"select count(*) from StockList"_s, {}}).value_or(QList<RecordRow>()),
             QList<RecordRow>{{std::int64_t{5000}}});
    QVERIFY(!m_records->readEach(nullptr, {u"select Nothing from StockList"_s, {}}, [](auto &) { return true; }));
    QCOMPARE(m_told.size(), 1);
}

void RecordsServerTest::rowIdentityHasAName()
{
    const QString rowId = m_records->dialect().rowId;
    const auto rows =
        m_records->read({u"select StockID, %1 from StockList where %1 > ? order by %1 limit 1"_s.arg(rowId), {0.5}});
    QVERIFY(rows && rows->size() == 1);
    QCOMPARE(rows->constFirst().size(), 2);
    const auto all = m_records->read({u"select * from StockList where StockID = '1'"_s, {}});
    QCOMPARE(all->constFirst().size(), 11); // the identity is no column
}

void RecordsServerTest::recordsAndComponentShareASession()
{
    const auto till = m_store->connection();
    const int sessions = m_proxy->connections();
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s)));
    QVERIFY(till->Execute(u"Update StockList set StockAvailable = 4 where StockID = '1'"_s));
    const auto kept = m_records->together(notes(), [&] {
        return m_records->write(notes(), insertNote(u"b"_s)) &&
               till->Execute(u"Update StockList set StockAvailable = 5 where StockID = '1'"_s) && false;
    });
    QVERIFY(kept && !*kept);
    QCOMPARE(m_server->stockOf(u"1"_s), u"4"_s); // it was part of what is undone
    QCOMPARE(m_proxy->connections(), sessions);
    m_store.reset(); // the records keep what they need
    QVERIFY(m_records->write(notes(), insertNote(u"c"_s)));
}

/// Whichever answer gets lost: done once, and known how often.
void RecordsServerTest::lostAnswersOfWrites()
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

void RecordsServerTest::lostAnswersOfWritesTogether()
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

void RecordsServerTest::brokenInTheMiddle()
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
void RecordsServerTest::brokenAndChangedMeanwhile()
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

void RecordsServerTest::serverKilledInTheMiddle()
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

void RecordsServerTest::unknownIsToldLater()
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
    store.setResolvedHandler([this](const QString &what, bool isDone) { m_resolved << Resolved{what, isDone}; });
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

void RecordsServerTest::rowsThatAreChangedAreTold()
{
    QStringList changes;
    QStringList empty;
    m_store->setChangeHandler(
        [&](const QString &statement, std::int64_t rows) { changes << statement + u' ' + QString::number(rows); });
    m_store->setEmptyHandler([&](const QString &select) { empty << select; });
    const auto till = m_store->connection();
    const auto lower = [](const QString &id) {
        return u"Update StockList set StockAvailable = StockAvailable - 1 where StockID = '%1'"_s.arg(id);
    };
    const auto item = [](const QString &id) { return u"Select * from StockList where StockID = '%1'"_s.arg(id); };
    QVERIFY(till->Execute(lower(u"1"_s)));
    QVERIFY(till->Execute(lower(u"none"_s)));
    QCOMPARE(changes, (QStringList{lower(u"1"_s) + u" 1"_s, lower(u"none"_s) + u" 0"_s}));
    QVERIFY(till->query(item(u"1"_s)));
    QVERIFY(till->queryAs(item(u"none"_s), DbReading::First));
    QCOMPARE(empty, QStringList{item(u"none"_s)});
}

void RecordsServerTest::locksOfPrograms()
{
    auto other = open(m_server->cluster.tcpConninfo());
    auto lock = m_store->lock(17);
    QVERIFY(lock);
    QVERIFY(!other->lock(17));
    QVERIFY(holderOf(*other, 17) == Holder::Somebody);
    QVERIFY(holderOf(*other, 18) == Holder::Nobody);
    QVERIFY(holderOf(*m_store, 17) == Holder::Somebody); // its own
    m_proxy->cut();
    QVERIFY(!m_store->tryAgain()); // takes it again
    QVERIFY(holderOf(*other, 17) == Holder::Somebody);
    m_server->cluster.kill9();
    m_server->cluster.start();
    QVERIFY(!m_store->tryAgain());
    QVERIFY(!other->tryAgain());
    QVERIFY(holderOf(*other, 17) == Holder::Somebody);
    *lock = nullptr;
    QVERIFY(holderOf(*other, 17) == Holder::Nobody);
    QVERIFY(m_store->lock(17));
}

/// As the server's own memory of a session of which nobody has told it that it is gone.
void RecordsServerTest::lockThatAnotherHadMeanwhile()
{
    auto other = open(m_server->cluster.tcpConninfo());
    auto lock = m_store->lock(17);
    QVERIFY(lock);
    m_server->cluster.sql(u"select pg_terminate_backend(pid) from pg_locks where locktype = 'advisory'"_s);
    m_server->cluster.await(u"select count(*) from pg_locks where locktype = 'advisory'"_s, u"0"_s);
    auto between = other->lock(17);
    QVERIFY(between);
    QVERIFY(holderOf(*m_store, 17) == Holder::Somebody);
    *between = nullptr;
    QVERIFY(holderOf(*other, 17) == Holder::Nobody);
    QVERIFY(!m_store->tryAgain());
    QVERIFY(holderOf(*other, 17) == Holder::Somebody);
    *lock = nullptr;
    QVERIFY(holderOf(*other, 17) == Holder::Nobody);
}

/// The till works on where it can be reached; the session of its locks hangs on a way that is silent, and nobody tells
/// it. The server has its lock still, and gives it up minutes later.
void RecordsServerTest::lockFollowsTheStoresSession()
{
    using Holder = ServerStore::Holder;
    Proxy otherWay(m_server->cluster.port());
    otherWay.refuse(true);
    const auto till = open(u"host=127.0.0.1,127.0.0.1 port=%1,%2 user=postgres dbname=shop sslmode=disable"_s.arg(
        QString::number(m_proxy->port()), QString::number(otherWay.port())));
    const auto other = open(m_server->cluster.tcpConninfo());
    const auto lock = till->lock(19);
    QVERIFY(lock);
    otherWay.refuse(false);
    m_proxy->goSilent();
    const auto isThere = [&] { return !till->tryAgain() && till->records()->read({u"select 1"_s, {}}).has_value(); };
    QTRY_VERIFY(isThere());
    QVERIFY(!till->tryAgain());
    QVERIFY(holderOf(*other, 19) == Holder::Somebody);
    m_server->cluster.sql(u"select pg_terminate_backend(pid, 5000) from pg_locks where locktype = 'advisory'"_s);
    QVERIFY(!till->tryAgain());
    QVERIFY(holderOf(*other, 19) == Holder::Somebody);
    QCOMPARE(m_server->cluster.sql(u"select count(*) from pg_locks where locktype = 'advisory'"_s).constFirst(),
             u"1"_s); // who looks takes nothing
}

HARROWBY_CORE_TEST(records_server_test, RecordsServerTest)
#include "records_server_test.moc"
