// SPDX-License-Identifier: MIT
#include "tests/postgres/records_desk.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::test;
using namespace Qt::StringLiterals;

/// The program's records on a server, over the session of a till.
class RecordsServerTest : public RecordsDesk
{
    Q_OBJECT

private Q_SLOTS:
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
    void rowsThatAreChangedAreTold();
};

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

HARROWBY_CORE_TEST(records_server_test, RecordsServerTest)
#include "records_server_test.moc"
