// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"
#include "tests/store/scratch_store.h"

#include "store/recordset.h"
#include "store/statement_texts.h"

#include <QTest>

#include <sqlite3.h>

using namespace harrowby;
using namespace Qt::StringLiterals;
using Access = DbRecordset::Access;

namespace {

constexpr int items = 100;

QStringList rest(DbRecordset &rows)
{
    QStringList ids;
    for (; !rows.IsEof(); rows.MoveNext())
        ids.append(rows.Field(u"stockid"_s).text());
    return ids;
}

QStringList idsFrom(int first, int end)
{
    QStringList ids;
    for (int i = first; i < end; ++i)
        ids.append(u"A%1"_s.arg(i));
    return ids;
}

void skip(DbRecordset &rows, int count)
{
    for (; count > 0; --count)
        rows.MoveNext();
}

} // namespace

/// Walks over SQLite, with others at the same file.
class TestWalkSqlite : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void yieldsEveryRow();
    void changesAfterAnotherProgram_data();
    void changesAfterAnotherProgram();
    void keepsToItsStateOfTheTable();
    void letsOthersWriteOnceFinished_data();
    void letsOthersWriteOnceFinished();
    void countIsOfTheSameState();
    void droppedTable();
    void interrupted();
    void nests();
    void textsInPlace_data();
    void textsInPlace();
    void leavesNothingOpen_data();
    void leavesNothingOpen();

private:
    void open(DbRecordset &rows) { rows.Open(statements::allStock(), m_store->connection(), Access::Walk); }

    std::unique_ptr<ScratchStore> m_store;
};

void TestWalkSqlite::init()
{
    m_store = std::make_unique<ScratchStore>();
    m_store->run(u"pragma journal_mode = wal"_s);
    for (int i = 0; i < items; ++i)
        m_store->addItem(u"A%1"_s.arg(i), u"ITEM %1"_s.arg(i));
}

/// Whether no statement is open, so that the host could close the connection.
void TestWalkSqlite::cleanup()
{
    QVERIFY(!m_store->isBeingRead());
    QCOMPARE(m_store->close(), SQLITE_OK);
    m_store.reset();
}

void TestWalkSqlite::yieldsEveryRow()
{
    DbRecordset rows;
    open(rows);
    QCOMPARE(rows.RecordCount(), items);
    QCOMPARE(rest(rows), idsFrom(0, items));
}

void TestWalkSqlite::changesAfterAnotherProgram_data()
{
    using Change = std::function<bool(const std::shared_ptr<DbConnection> &)>;
    QTest::addColumn<Change>("change");
    QTest::newRow("statement") << Change([](const std::shared_ptr<DbConnection> &connection) {
        return Execute(connection, statements::raiseStock(5, u"A7"_s));
    });
    QTest::newRow("row") << Change([](const std::shared_ptr<DbConnection> &connection) {
        DbRecordset stock;
        stock.Open(statements::stockById(u"A7"_s), connection, Access::Edit);
        stock.Field(u"StockAvailable"_s).assign(stock.Field(u"StockAvailable"_s).number() + 5);
        stock.Update();
        return true;
    });
    QTest::newRow("log") << Change([](const std::shared_ptr<DbConnection> &connection) {
        return Execute(connection, statements::usage(u"x"_s, u"t"_s, u"d"_s)) &&
               Execute(connection, statements::raiseStock(5, u"A7"_s));
    });
}

/// A change under a read that began before another program's change would be refused for its stale view.
void TestWalkSqlite::changesAfterAnotherProgram()
{
    using Change = std::function<bool(const std::shared_ptr<DbConnection> &)>;
    QFETCH(const Change, change);
    test::Database other(m_store->file()); // another program
    DbRecordset rows;
    open(rows);
    skip(rows, 3);
    QVERIFY(other.run(
        u"update StockList set StockAvailable = StockAvailable + 1, StockID = 'B' || StockID where StockID <> 'A7'; update StockList set StockAvailable = 20 where StockID = 'A7'"_s));
    QVERIFY(change(m_store->connection()));
    QVERIFY(m_store->failures.empty());
    QCOMPARE(m_store->column(u"select StockAvailable from StockList where StockID = 'A7'"_s), QStringList{u"25"_s});
    QCOMPARE(rest(rows), idsFrom(3, items));
    open(rows);
    QCOMPARE(rows.Field(u"StockID"_s).text(), u"BA0"_s);
}

void TestWalkSqlite::keepsToItsStateOfTheTable()
{
    test::Database other(m_store->file()); // another program
    DbRecordset rows;
    open(rows);
    skip(rows, 50);
    QVERIFY(other.run(u"delete from StockList where rowid > 60"_s));
    skip(rows, 5);
    QVERIFY(other.run(u"update StockList set StockID = 'other'"_s));
    finishWalks(m_store->connection());
    QVERIFY(other.run(u"delete from StockList"_s));
    QCOMPARE(rest(rows), idsFrom(55, items));
    QVERIFY(m_store->failures.empty());
}

void TestWalkSqlite::letsOthersWriteOnceFinished_data()
{
    QTest::addColumn<QString>("journal");
    QTest::newRow("write-ahead log") << u"wal"_s;
    QTest::newRow("rollback journal") << u"delete"_s;
}

void TestWalkSqlite::letsOthersWriteOnceFinished()
{
    QFETCH(const QString, journal);
    if (test::shopsAreOnAServer() && journal != u"wal"_s)
        QSKIP("a reader blocks nobody there");
    m_store->run(u"pragma journal_mode = "_s + journal);
    test::Database other(m_store->file()); // another program
    DbRecordset rows;
    open(rows);
    rows.MoveNext();
    // A reader blocks writers with a rollback journal, and checkpoints with a write-ahead log.
    QCOMPARE(other.run(u"update StockList set StockAvailable = 1"_s), journal == "wal"_L1);
    finishWalks(m_store->connection());
    QVERIFY(other.run(u"update StockList set StockAvailable = 2"_s));
    QVERIFY(other.run(u"pragma wal_checkpoint(truncate)"_s));
    QCOMPARE(rest(rows), idsFrom(1, items));
}

void TestWalkSqlite::countIsOfTheSameState()
{
    test::Database other(m_store->file()); // another program
    DbRecordset rows;
    open(rows);
    QVERIFY(other.run(u"delete from StockList where rowid > 10"_s));
    QCOMPARE(rows.RecordCount(), items);
    QCOMPARE(rest(rows).size(), items);
}

void TestWalkSqlite::droppedTable()
{
    DbRecordset rows;
    open(rows);
    skip(rows, 10);
    QVERIFY(Execute(m_store->connection(), Statement("Delete from StockList")));
    m_store->run(u"drop table StockList"_s);
    QCOMPARE(rest(rows), idsFrom(10, items));
    open(rows);
    QVERIFY(rows.HasFailed());
    QCOMPARE(rows.RecordCount(), 0);
    QCOMPARE(m_store->failures.size(), 1u);
}

void TestWalkSqlite::interrupted()
{
    for (const bool finish : {false, true}) {
        m_store->failures.clear();
        DbRecordset rows;
        open(rows);
        skip(rows, 10);
        sqlite3_interrupt(m_store->handle());
        if (finish)
            finishWalks(m_store->connection());
        QCOMPARE(rest(rows), idsFrom(10, 11)); // from the current row on
        QVERIFY(rows.HasFailed());
        QCOMPARE(m_store->failures.size(), 1u);
        QCOMPARE(m_store->failures[0].engineCode, SQLITE_INTERRUPT);
        QCOMPARE(m_store->failures[0].kind, DbFailure::Kind::Read);
    }
}

void TestWalkSqlite::nests()
{
    DbRecordset outer;
    open(outer);
    skip(outer, 10);
    for (int i = 0; i < 3; ++i) {
        DbRecordset inner;
        open(inner);
        skip(inner, 20 + i);
        if (i == 1)
            QVERIFY(Execute(m_store->connection(), statements::raiseStock(1, u"A1"_s)));
        QCOMPARE(inner.Field(u"StockID"_s).text(), u"A%1"_s.arg(20 + i));
        QCOMPARE(inner.RecordCount(), items);
    }
    QCOMPARE(rest(outer), idsFrom(10, items));
}

void TestWalkSqlite::textsInPlace_data()
{
    QTest::addColumn<QString>("literal");
    QTest::newRow("text") << u"'TEA'"_s;
    QTest::newRow("empty") << u"''"_s;
    QTest::newRow("null") << u"NULL"_s;
    QTest::newRow("integer") << u"-12"_s;
    QTest::newRow("real") << u"99.5"_s;
    QTest::newRow("whole real") << u"5.0"_s;
    QTest::newRow("bytes") << u"X'41C3A9'"_s;
    QTest::newRow("bytes that are no text") << u"X'FF00FE'"_s;
    QTest::newRow("text that is none") << u"CAST(X'41FF42' AS TEXT)"_s;
    QTest::newRow("NUL inside") << u"CAST(X'410042' AS TEXT)"_s;
    QTest::newRow("emoji") << u"'🍎 שלום'"_s;
    QTest::newRow("long") << u"hex(zeroblob(50000))"_s;
}

/// DbField::utf8() gives the same text whether the row is still in the engine or in memory.
void TestWalkSqlite::textsInPlace()
{
    QFETCH(const QString, literal);
    QVERIFY(m_store->run(u"update StockList set StockName = "_s + literal));
    for (const Access access : {Access::Walk, Access::Read, Access::Edit}) {
        for (const bool finish : {false, true}) {
            DbRecordset rows;
            rows.Open(statements::allStock(), m_store->connection(), access);
            skip(rows, 3);
            if (finish)
                finishWalks(m_store->connection());
            QByteArray buffer;
            const std::optional<QUtf8StringView> text = rows.Field(u"stockname"_s).utf8(buffer);
            QVERIFY(text);
            QCOMPARE(text->toString(), rows.Field(u"StockName"_s).text());
            QVERIFY(!rows.Field(u"Price"_s).utf8(buffer));
            rows.Field(u"StockName"_s).assign(u"written"_s);
            QCOMPARE(rows.Field(u"StockName"_s).utf8(buffer)->toString(), u"written"_s);
            QCOMPARE(rows.Field(u"StockID"_s).utf8(buffer)->toString(), u"A3"_s);
            skip(rows, items);
            QVERIFY(!rows.Field(u"StockName"_s).utf8(buffer));
        }
    }
}

void TestWalkSqlite::leavesNothingOpen_data()
{
    QTest::addColumn<int>("passed");
    for (const int passed : {0, 1, 50, items - 1, items, items + 1})
        QTest::addRow("%d", passed) << passed;
}

void TestWalkSqlite::leavesNothingOpen()
{
    QFETCH(const int, passed);
    {
        DbRecordset rows;
        open(rows);
        skip(rows, passed);
        if (!test::shopsAreOnAServer()) // which has handed a short result over at once
            QCOMPARE(m_store->isBeingRead(), passed < items);
    }
    QVERIFY(!m_store->isBeingRead());
}

HARROWBY_CORE_TEST(walk_sqlite_test, TestWalkSqlite)
#include "walk_sqlite_test.moc"
