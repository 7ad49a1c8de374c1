// SPDX-License-Identifier: MIT
#include "app/records/file_records.h"
#include "app/records/sqlite_records.h"
#include "engine/lost_files.h"
#include "tests/app/store_files.h"
#include "tests/platform/log_capture.h"
#include "tests/program/test_program.h"

#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

#include <sqlite3.h>

#include <atomic>
#include <chrono>
#include <limits>
#include <memory>
#include <stdexcept>
#include <thread>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

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

} // namespace

class RecordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void tableIsMadeBeforeItsFirstWrite();
    void tableThatAnotherProgramMakesIsSeen();
    void valuesComeBackAsTheyWere();
    void writeTellsHowManyRowsItChanged();
    void textIsNeverAStatement_data();
    void textIsNeverAStatement();
    void asManyValuesAsMarks();
    void writesTogetherAreAllOrNone();
    void writesThatBreakOffAreAFailure();
    void workIsUndoneWhenItSaysSo();
    void workThatThrowsIsUndone();
    void noOtherWriteComesBetween();
    void failureIsToldOnceAndLogged();
    void failedMakingIsTheWritesFailure();
    void lockedStoreIsTold();
    void lostFileIsTheReason();
    void recordsOnTheComponentsTables();
    void rowsAreReadOneByOne();
    void ownRecordsReadOneMoment();
    void ownRecordsThatReadDoNotWrite();
    void aWatchEndsAStatement();
    void aWatchEndsAWaitForALock();
    void anotherThreadEndsAStatement();
    void readersAreAskedToEndBeforeAWrite();
    void times();
    void conversions();

private:
    [[nodiscard]] QString read(const QString &select) const { return readText(m_database.get(), select); }
    [[nodiscard]] QStringList names();

    QTemporaryDir m_folder;
    QString m_path;
    SqliteDatabase m_database;
    std::unique_ptr<SqliteRecords> m_records;
    QList<DbFailure> m_told;
};

void RecordsTest::init()
{
    m_path = m_folder.filePath(QString::fromLatin1(QTest::currentTestFunction()) + u'-' +
                               QString::number(reinterpret_cast<quintptr>(QTest::currentDataTag())) + u".sqlite"_s);
    makeStore(m_path);
    QVERIFY(!into(m_database, openDatabase(m_path, OpenMode::Write)));
    m_records = std::make_unique<SqliteRecords>(m_database.get());
    m_told.clear();
    m_records->setFailureHandler([this](const DbFailure &failure) { m_told << failure; });
}

void RecordsTest::cleanup()
{
    m_records.reset();
    m_database.reset();
}

QStringList RecordsTest::names()
{
    QStringList all;
    const auto rows = m_records->read(notes(), allNotes);
    for (const RecordRow &row : rows.value_or(QList<RecordRow>()))
        all << recordText(row.at(0));
    return all;
}

void RecordsTest::tableIsMadeBeforeItsFirstWrite()
{
    const QString made = u"select group_concat(name, ' ') from sqlite_master where name like '%note%'"_s;
    QCOMPARE(names(), QStringList());
    QCOMPARE(read(made), QString()); // a look makes nothing
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s)));
    QCOMPARE(names(), QStringList{u"a"_s});
    QCOMPARE(read(made), u"HarrowbyNote sqlite_autoindex_HarrowbyNote_1 harrowby_note_worth"_s);
    QVERIFY(m_told.isEmpty());
}

void RecordsTest::tableThatAnotherProgramMakesIsSeen()
{
    QCOMPARE(names(), QStringList());
    runAll(m_path, notes().making + QStringList{u"insert into HarrowbyNote (Name) values ('b')"_s});
    QCOMPARE(names(), QStringList{u"b"_s});
    QVERIFY(m_records->write(notes(), insertNote(u"c"_s)));
    QCOMPARE(names(), (QStringList{u"b"_s, u"c"_s}));
}

void RecordsTest::valuesComeBackAsTheyWere()
{
    const QString odd = u"a'\"%*?\u202e\u0000z"_s;
    QVERIFY(m_records->write(notes(), insertNote(odd, 2.5)));
    QVERIFY(m_records->write(notes(), insertNote(u"whole"_s, std::numeric_limits<std::int64_t>::max())));
    QVERIFY(m_records->write(notes(), insertNote(u"null"_s)));
    const auto rows = m_records->read(notes(), allNotes);
    QVERIFY(rows);
    QCOMPARE(rows->size(), 3);
    QCOMPARE(rows->at(0), (RecordRow{odd, 2.5}));
    QCOMPARE(rows->at(1), (RecordRow{u"null"_s, std::monostate()}));
    QCOMPARE(recordText(rows->at(2).at(0)), u"whole"_s);
    const auto one = m_records->read(notes(), {u"select Worth from HarrowbyNote where Name = ?"_s, {odd}});
    QVERIFY(one);
    QCOMPARE(*one, QList<RecordRow>{{2.5}});
}

void RecordsTest::writeTellsHowManyRowsItChanged()
{
    for (const auto &name : {u"a"_s, u"b"_s})
        QCOMPARE(m_records->write(notes(), insertNote(name, 1.0)).value_or(-1), 1);
    const RecordStatement removing{u"delete from HarrowbyNote where Worth = ?"_s, {1.0}};
    QCOMPARE(m_records->write(notes(), removing).value_or(-1), 2);
    QCOMPARE(m_records->write(notes(), removing).value_or(-1), 0); // who comes second gets nothing
}

void RecordsTest::textIsNeverAStatement_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("quote") << u"'; drop table StockList; --"_s;
    QTest::newRow("double quote") << u"\" or 1=1"_s;
    QTest::newRow("percent") << u"%"_s;
    QTest::newRow("asterisk") << u"*"_s;
    QTest::newRow("question marks") << u"???"_s;
    QTest::newRow("NUL") << u"a\u0000b"_s;
    QTest::newRow("long") << QString(10000, u'9');
    QTest::newRow("right to left") << u"\u202e\u2066abc"_s;
}

void RecordsTest::textIsNeverAStatement()
{
    QFETCH(QString, name);
    QVERIFY(m_records->write(notes(), insertNote(u"other"_s)));
    QVERIFY(m_records->write(notes(), insertNote(name)));
    const auto found = m_records->read(notes(), {u"select Name from HarrowbyNote where Name = ?"_s, {name}})
                           .value_or(QList<RecordRow>());
    QCOMPARE(found, QList<RecordRow>{{name}});
    QCOMPARE(read(u"select count(*) from StockList"_s), u"1"_s);
}

void RecordsTest::asManyValuesAsMarks()
{
    QVERIFY(!m_records->write(notes(), {u"insert into HarrowbyNote (Name) values (?)"_s, {}}));
    QVERIFY(m_records->read(notes(), {u"select * from StockList"_s, {u"a"_s}}).value_or(QList<RecordRow>()).isEmpty());
    QVERIFY(!m_records->read({u"select * from StockList"_s, {u"a"_s}}));
    QCOMPARE(m_told.size(), 2); // the second had no table to read
    QCOMPARE(m_told.constFirst().reason, u"0 values were given for 1 marks"_s);
}

void RecordsTest::writesTogetherAreAllOrNone()
{
    const auto both = m_records->writeTogether(notes(), {insertNote(u"a"_s), insertNote(u"b"_s)});
    QVERIFY(both);
    QCOMPARE(*both, (QList<std::int64_t>{1, 1}));
    const auto twice = m_records->writeTogether(notes(), {insertNote(u"c"_s), insertNote(u"a"_s)});
    QVERIFY(!twice);
    QCOMPARE(twice.error().engineCode & 0xff, SQLITE_CONSTRAINT);
    QCOMPARE(names(), (QStringList{u"a"_s, u"b"_s}));
    QCOMPARE(m_told.size(), 1);
    QVERIFY(sqlite3_get_autocommit(m_database.get()) != 0);
}

void RecordsTest::writesThatBreakOffAreAFailure()
{
    int writes = 0;
    m_records->setBeforeWriting([&writes] {
        if (++writes == 3) // the second of the two; the first time is for the table
            throw std::bad_alloc();
    });
    const auto broken = m_records->writeTogether(notes(), {insertNote(u"a"_s), insertNote(u"b"_s)});
    m_records->setBeforeWriting({});
    QVERIFY(!broken);
    QCOMPARE(m_told.size(), 1);
    QCOMPARE(names(), QStringList());
}

void RecordsTest::workIsUndoneWhenItSaysSo()
{
    const auto work = [this](bool keep) {
        return m_records->together(notes(), [this, keep] {
            (void)m_records->write(notes(), insertNote(keep ? u"kept"_s : u"undone"_s));
            return keep;
        });
    };
    const auto undone = work(false);
    QVERIFY(undone);
    QVERIFY(!*undone);
    QCOMPARE(names(), QStringList());
    const auto kept = work(true);
    QVERIFY(kept && *kept);
    QCOMPARE(names(), QStringList{u"kept"_s});
    QVERIFY(m_told.isEmpty());
}

void RecordsTest::workThatThrowsIsUndone()
{
    const auto done = m_records->together(notes(), [this]() -> bool {
        (void)m_records->write(notes(), insertNote(u"a"_s));
        throw std::bad_alloc();
    });
    QVERIFY(done && !*done);
    QCOMPARE(names(), QStringList());
    QVERIFY(sqlite3_get_autocommit(m_database.get()) != 0);
}

void RecordsTest::noOtherWriteComesBetween()
{
    SqliteDatabase other;
    QVERIFY(!into(other, openDatabase(m_path, OpenMode::Write)));
    SqliteRecords others(other.get());
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s)));
    const auto kept = m_records->together(notes(), [&] {
        const auto refused = others.write(notes(), insertNote(u"b"_s));
        return !refused && (refused.error().engineCode & 0xff) == SQLITE_BUSY;
    });
    QVERIFY(kept && *kept);
    QVERIFY(others.write(notes(), insertNote(u"b"_s)));
}

void RecordsTest::failureIsToldOnceAndLogged()
{
    const testing::LogCapture log;
    const auto failed = m_records->write(notes(), {u"insert into Nowhere (A) values (?)"_s, {u"x"_s}});
    QVERIFY(!failed);
    QCOMPARE(m_told.size(), 1);
    QVERIFY(m_told.constFirst().kind == DbFailure::Kind::Write);
    QCOMPARE(m_told.constFirst().statement, u"insert into Nowhere (A) values (?)"_s);
    QCOMPARE(m_told.constFirst().reason, u"no such table: Nowhere"_s);
    QCOMPARE(m_told.constFirst().engineCode, SQLITE_ERROR);
    QVERIFY(log.hasLine({u"harrowby.store"_s, u"insert into Nowhere"_s, u"no such table"_s}));
    QVERIFY(!m_records->read({u"select A from Nowhere"_s, {}}));
    QVERIFY(m_told.constLast().kind == DbFailure::Kind::Read);
    m_records->setFailureHandler([](const DbFailure &) { throw std::bad_alloc(); });
    QVERIFY(!m_records->read({u"select A from Nowhere"_s, {}})); // nothing gets out
}

void RecordsTest::failedMakingIsTheWritesFailure()
{
    runAll(m_path, {u"pragma journal_mode = delete"_s});
    QVERIFY(!runSql(m_database.get(), u"pragma query_only = 1"_s));
    const RecordStatement insert = insertNote(u"a"_s);
    QVERIFY(!m_records->write(notes(), insert));
    QCOMPARE(m_told.size(), 1);
    QVERIFY(m_told.constFirst().kind == DbFailure::Kind::Write);
    QCOMPARE(m_told.constFirst().statement, insert.text);
    QCOMPARE(m_told.constFirst().engineCode & 0xff, SQLITE_READONLY);
    QVERIFY(!m_records->writeTogether(notes(), {insert}));
    QCOMPARE(m_told.constLast().statement, u"UPDATE HarrowbyNote"_s);
}

void RecordsTest::lockedStoreIsTold()
{
    SqliteDatabase other;
    QVERIFY(!into(other, openDatabase(m_path, OpenMode::Write)));
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s)));
    QVERIFY(!runSql(other.get(), u"begin immediate"_s));
    QVERIFY(!m_records->write(notes(), insertNote(u"b"_s)));
    QVERIFY(!m_records->together(notes(), [] { return true; }));
    QCOMPARE(m_told.size(), 2);
    for (const DbFailure &failure : std::as_const(m_told))
        QCOMPARE(failure.engineCode & 0xff, SQLITE_BUSY);
    QCOMPARE(m_told.constLast().statement, u"UPDATE HarrowbyNote"_s);
    QVERIFY(!runSql(other.get(), u"rollback"_s));
    QVERIFY(m_records->write(notes(), insertNote(u"b"_s)));
}

void RecordsTest::lostFileIsTheReason()
{
    noteLoss(m_database.get(), u"The file was removed."_s);
    QVERIFY(!m_records->write(notes(), {u"insert into Nowhere (A) values (1)"_s, {}}));
    forgetLoss(m_database.get());
    QCOMPARE(m_told.constFirst().reason, u"The file was removed."_s);
    QCOMPARE(m_told.constFirst().engineCode, SQLITE_READONLY_DBMOVED);
}

void RecordsTest::recordsOnTheComponentsTables()
{
    const auto rows = m_records->read({u"select StockName from StockList where StockID = ?"_s, {u"TEA-0001"_s}});
    QVERIFY(rows);
    QCOMPARE(*rows, QList<RecordRow>{{u"TEA"_s}});
}

void RecordsTest::rowsAreReadOneByOne()
{
    QVERIFY(m_records->readEach(&notes(), allNotes, [](const RecordCells &) { return true; }).value_or(false));
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s, 2.5)));
    QVERIFY(m_records->write(notes(), insertNote(u"b"_s)));
    QList<RecordRow> rows;
    QByteArrayList texts;
    const auto take = [&](const RecordCells &cells) {
        RecordRow row;
        for (int column = 0; column < cells.count(); ++column)
            row << cells.value(column);
        rows << row;
        texts << cells.utf8(0).value_or(QByteArrayView()).toByteArray();
        return true;
    };
    QVERIFY(m_records->readEach(&notes(), allNotes, take).value_or(false));
    QCOMPARE(rows, (QList<RecordRow>{{u"a"_s, 2.5}, {u"b"_s, std::monostate()}}));
    QCOMPARE(texts, (QByteArrayList{"a", "b"}));
    int taken = 0;
    const auto ended = m_records->readEach(nullptr, {u"select StockID from StockList union all select 'x'"_s, {}},
                                           [&taken](const RecordCells &) { return ++taken < 1; });
    QVERIFY(ended && !*ended);
    QCOMPARE(taken, 1);
    QVERIFY(!m_records->readEach(nullptr, {u"select A from Nowhere"_s, {}}, take));
    QCOMPARE(m_told.size(), 1);
    QVERIFY(!m_records->readEach(nullptr, {u"select ?"_s, {}}, take));
    QCOMPARE(m_told.size(), 2);
}

namespace {

std::unique_ptr<StoreRecords> ownRecords(const QString &path, Access access)
{
    auto own = openStoreRecords(path, access);
    return own ? *std::move(own) : nullptr;
}

/// Of a statement that would take minutes.
const RecordStatement endless{u"with recursive n(i) as (select 1 union all select i + 1 from n where i < 1000000000) "
                              "select count(*) from n"_s,
                              {}};

} // namespace

void RecordsTest::ownRecordsReadOneMoment()
{
    QVERIFY(!openStoreRecords(m_path + u"/nowhere"_s, Access::Read));
    const auto own = ownRecords(m_path, Access::Read);
    QVERIFY(own);
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s)));
    QVERIFY(!own->holdMoment());
    QVERIFY(m_records->write(notes(), insertNote(u"b"_s)));
    QCOMPARE(own->records().read(notes(), allNotes).value_or(QList<RecordRow>()).size(), 1);
    own->releaseMoment();
    QCOMPARE(own->records().read(notes(), allNotes).value_or(QList<RecordRow>()).size(), 2);
    own->releaseMoment(); // nothing is held
}

void RecordsTest::ownRecordsThatReadDoNotWrite()
{
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s)));
    QVERIFY(!ownRecords(m_path, Access::Read)->records().write(notes(), insertNote(u"b"_s)));
    QVERIFY(ownRecords(m_path, Access::Write)->records().write(notes(), insertNote(u"b"_s)));
    QCOMPARE(names(), (QStringList{u"a"_s, u"b"_s}));
}

void RecordsTest::aWatchEndsAStatement()
{
    const auto own = ownRecords(m_path, Access::Read);
    int looks = 0;
    own->setWatch([&looks] { return ++looks < 3; });
    const auto ended = own->records().read(endless);
    QVERIFY(!ended);
    QVERIFY(own->wasInterrupted(ended.error()));
    QCOMPARE(looks, 3);
    own->setWatch([]() -> bool { throw std::runtime_error("the watch is broken"); });
    QVERIFY(!own->records().read(endless));
    own->setWatch({});
    QVERIFY(own->records().read({u"select count(*) from StockList"_s, {}}));
    const auto wrong = own->records().read({u"select A from Nowhere"_s, {}});
    QVERIFY(!wrong && !own->wasInterrupted(wrong.error()));
}

void RecordsTest::aWatchEndsAWaitForALock()
{
    const auto own = ownRecords(m_path, Access::Write);
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s)));
    QVERIFY(!runSql(m_database.get(), u"begin immediate"_s));
    int looks = 0;
    own->setWatch([&looks] { return ++looks < 4; });
    const auto ended = own->records().write(notes(), insertNote(u"b"_s));
    QVERIFY(!ended);
    QVERIFY(own->wasInterrupted(ended.error()));
    QVERIFY(looks >= 4);
    QVERIFY(!runSql(m_database.get(), u"rollback"_s));
    own->setWatch({});
    QVERIFY(own->records().write(notes(), insertNote(u"b"_s)));
}

void RecordsTest::anotherThreadEndsAStatement()
{
    const auto own = ownRecords(m_path, Access::Read);
    std::atomic<bool> isOver = false;
    std::thread other([&] {
        while (!isOver) {
            own->interrupt();
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    });
    const auto ended = own->records().read(endless);
    isOver = true;
    other.join();
    QVERIFY(!ended);
    QVERIFY(own->wasInterrupted(ended.error()));
}

void RecordsTest::readersAreAskedToEndBeforeAWrite()
{
    QVERIFY(m_records->write(notes(), insertNote(u"a"_s)));
    auto reading = std::make_unique<SqliteStatement>(m_database.get(), u"select * from StockList"_s, QList<DbValue>());
    QVERIFY(reading->next());
    runAll(m_path, {u"insert into HarrowbyNote (Name) values ('b')"_s}); // another program, out of the reader's sight
    QVERIFY(!m_records->write(notes(), insertNote(u"c"_s)));
    m_records->setBeforeWriting([&] { reading.reset(); });
    QVERIFY(m_records->write(notes(), insertNote(u"c"_s)));
    QCOMPARE(names(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
}

void RecordsTest::times()
{
    const QDateTime noon(QDate(2026, 11, 22), QTime(12, 0, 5, 7), QTimeZone(3600));
    QCOMPARE(recordTime(noon), u"2026-11-22T11:00:05.007Z"_s);
    QCOMPARE(timeOfRecord(recordTime(noon)), noon);
    QCOMPARE(timeOfRecord(recordTime(noon)).timeSpec(), Qt::UTC);
    QVERIFY(!timeOfRecord(u"yesterday"_s).isValid());
}

void RecordsTest::conversions()
{
    QCOMPARE(recordText(std::int64_t{7}), u"7"_s);
    QCOMPARE(recordText(2.50), u"2.5"_s);
    QCOMPARE(recordText({}), QString());
    QCOMPARE(recordNumber(u"12 pieces"_s), 12);
    QCOMPARE(recordNumber(1e300), 0);
    QCOMPARE(recordNumber({}), 0);
    QCOMPARE(recordReal(std::int64_t{3}), 3.0);
    QCOMPARE(recordReal(u"1.25"_s), 1.25);
}

HARROWBY_CORE_TEST(app_records_test, RecordsTest)
#include "records_test.moc"
