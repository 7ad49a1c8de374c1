// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/store/scripted_connection.h"
#include "tests/store/walk_rows.h"

#include "store/recordset.h"

#include <QTest>

#include <functional>
#include <optional>
#include <utility>

using namespace harrowby;
using namespace harrowby::walk_rows;
using namespace Qt::StringLiterals;
using Access = DbRecordset::Access;
using Fault = ScriptedConnection::Fault;

/// A long result whose rows are fetched as its loop goes.
class TestWalk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_connection = std::make_shared<ScriptedConnection>(); }
    void cleanup();

    void yieldsEveryRow_data() { addCounts(); }
    void yieldsEveryRow();
    void fetchesAsTheLoopGoes();
    void counts_data() { addCounts(); }
    void counts();
    void readsOnlyTheColumnsAskedFor();
    void closesAtTheEnd();
    void closesWhenDestroyed();
    void closesWhenOpenedAgain();
    void finishesInTheMiddle_data() { addCounts(); }
    void finishesInTheMiddle();
    void finishesBeforeAChange_data();
    void finishesBeforeAChange();
    void finishesOnlyOnce();
    void walksNest();
    void finishesThoseOfItsConnection();
    void addsARow();
    void leavesTheRowsForAnAddedOne();
    void writesNoRowBack();
    void refusedAndNull();

private:
    static void addCounts();
    void open(DbRecordset &rows) { rows.Open(everything, m_connection, Access::Walk); }

    std::shared_ptr<ScriptedConnection> m_connection;
};

/// No test leaves a statement open in the engine.
void TestWalk::cleanup()
{
    QCOMPARE(m_connection->liveCursors, 0);
    finishWalks(m_connection);
}

void TestWalk::addCounts()
{
    QTest::addColumn<int>("count");
    for (const int count : {0, 1, 2, 9, 10, 11, 100})
        QTest::addRow("%d", count) << count;
}

void TestWalk::yieldsEveryRow()
{
    QFETCH(const int, count);
    m_connection->fill(count);
    DbRecordset rows;
    open(rows);
    QCOMPARE(rest(rows), namesFrom(0, count));
    QVERIFY(rows.IsEof());
    QVERIFY(!rows.HasFailed());
    QVERIFY(!rows.Field(u"name"_s).value());
    rows.MoveNext();
    QVERIFY(rows.IsEof());
    QCOMPARE(m_connection->statements, QStringList{everything.sql()});
    QVERIFY(m_connection->failures.empty());
}

void TestWalk::fetchesAsTheLoopGoes()
{
    m_connection->fill(100'000);
    DbRecordset rows;
    open(rows);
    QCOMPARE(m_connection->position, 1u);
    QCOMPARE(rows.RecordCount(), 100'000);
    skip(rows, 10);
    QCOMPARE(rows.Field(u"name"_s).text(), u"row 10"_s);
    QCOMPARE(m_connection->position, 11u);
    QCOMPARE(m_connection->liveCursors, 1);
}

void TestWalk::counts()
{
    QFETCH(const int, count);
    m_connection->fill(count);
    for (int passed = 0; passed <= count; passed += 5) {
        for (const bool finish : {false, true}) {
            DbRecordset rows;
            open(rows);
            skip(rows, passed);
            if (finish)
                finishWalks(m_connection);
            QCOMPARE(rows.RecordCount(), count);
            QCOMPARE(rest(rows), namesFrom(passed, count));
            QCOMPARE(rows.RecordCount(), count);
        }
    }
}

void TestWalk::readsOnlyTheColumnsAskedFor()
{
    m_connection->fill(50);
    DbRecordset rows;
    open(rows);
    QCOMPARE(rows.RecordCount(), 50);
    QCOMPARE(rest(rows).size(), 50);
    QCOMPARE(m_connection->calls.value(u"value"_s), 50);
    QCOMPARE(m_connection->calls.value(u"query"_s), 1);
    QCOMPARE(m_connection->calls.value(u"rowIds"_s), 0);
    QVERIFY(!rows.Field(u"price"_s).value());
}

void TestWalk::closesAtTheEnd()
{
    m_connection->fill(3);
    DbRecordset rows;
    open(rows);
    QCOMPARE(m_connection->liveCursors, 1);
    skip(rows, 2);
    QCOMPARE(m_connection->liveCursors, 1);
    skip(rows, 1);
    QCOMPARE(m_connection->liveCursors, 0);
    // An empty result is closed at once.
    m_connection->rows.clear();
    open(rows);
    QCOMPARE(m_connection->liveCursors, 0);
}

void TestWalk::closesWhenDestroyed()
{
    m_connection->fill(3);
    {
        DbRecordset rows;
        open(rows);
        rows.MoveNext();
        QCOMPARE(m_connection->liveCursors, 1);
    }
    QCOMPARE(m_connection->liveCursors, 0);
    finishWalks(m_connection); // must not touch the destroyed recordset
    QCOMPARE(m_connection->calls.value(u"value"_s), 0);
}

void TestWalk::closesWhenOpenedAgain()
{
    m_connection->fill(3);
    DbRecordset rows;
    open(rows);
    rows.MoveNext();
    open(rows);
    QCOMPARE(m_connection->liveCursors, 1);
    QCOMPARE(rest(rows), namesFrom(0, 3));
    open(rows);
    rows.Open(everything, m_connection);
    QCOMPARE(m_connection->liveCursors, 0);
    QCOMPARE(rest(rows), namesFrom(0, 3));
}

void TestWalk::finishesInTheMiddle()
{
    QFETCH(const int, count);
    m_connection->fill(count);
    for (int passed = 0; passed <= count; ++passed) {
        DbRecordset rows;
        open(rows);
        skip(rows, passed);
        finishWalks(m_connection);
        QCOMPARE(m_connection->liveCursors, 0);
        QCOMPARE(rows.IsEof(), passed == count);
        m_connection->rows.clear(); // the walk has read them already
        if (passed < count) {
            QCOMPARE(rows.Field(u"NAME"_s).text(), u"row %1"_s.arg(passed));
            QCOMPARE(rows.Field(u"id"_s).number(), static_cast<double>(passed));
        }
        QCOMPARE(rest(rows), namesFrom(passed, count));
        QVERIFY(!rows.HasFailed());
        m_connection->fill(count);
    }
}

void TestWalk::finishesBeforeAChange_data()
{
    using Change = std::function<void(const std::shared_ptr<DbConnection> &)>;
    QTest::addColumn<Change>("change");
    QTest::newRow("statement") << Change([](const std::shared_ptr<DbConnection> &connection) {
        (void)Execute(connection, Statement("Delete from StockList"));
    });
    QTest::newRow("new row") << Change([](const std::shared_ptr<DbConnection> &connection) {
        DbRecordset other;
        other.Open(everything, connection);
        other.AddNew();
        other.Field(u"name"_s).assign(u"new"_s);
        other.Update();
    });
    QTest::newRow("changed row") << Change([](const std::shared_ptr<DbConnection> &connection) {
        DbRecordset other;
        other.Open(everything, connection, Access::Edit);
        other.Field(u"name"_s).assign(u"new"_s);
        other.Update();
    });
}

void TestWalk::finishesBeforeAChange()
{
    using Change = std::function<void(const std::shared_ptr<DbConnection> &)>;
    QFETCH(const Change, change);
    /// Records, at each change and at each row looked up for one, whether the walk's statement is still open.
    class Watch final : public DbConnection
    {
    public:
        explicit Watch(ScriptedConnection &watched) : m_watched(watched) { m_scripted.fill(1); }
        QList<int> openAtChange;
        bool Execute(const QString &statement) override { return note(), m_scripted.Execute(statement); }
        std::unique_ptr<DbCursor> query(const QString &select) override
        {
            return std::exchange(m_walks, true) ? m_scripted.query(select) : m_watched.query(select);
        }
        std::optional<std::int64_t> countRows(const QString &select) override { return m_scripted.countRows(select); }
        std::optional<std::vector<DbRowId>> rowIds(const QString &select) override
        {
            return note(), m_scripted.rowIds(select);
        }
        bool insertRow(const QString &table, const DbAssignments &values) override
        {
            return note(), m_scripted.insertRow(table, values);
        }
        bool updateRow(const QString &table, DbRowId row, const DbAssignments &values) override
        {
            return note(), m_scripted.updateRow(table, row, values);
        }
        [[nodiscard]] QString location() const override { return {}; }

    private:
        void note() { openAtChange << m_watched.liveCursors; }
        ScriptedConnection &m_watched;
        bool m_walks = false;
        ScriptedConnection m_scripted;
    };
    m_connection->fill(3);
    const auto watch = std::make_shared<Watch>(*m_connection);
    DbRecordset rows;
    rows.Open(everything, watch, Access::Walk);
    rows.MoveNext();
    QCOMPARE(m_connection->liveCursors, 1);
    change(watch);
    QVERIFY(!watch->openAtChange.isEmpty());
    for (const int open : watch->openAtChange)
        QCOMPARE(open, 0);
    QCOMPARE(rest(rows), namesFrom(1, 3));
}

void TestWalk::finishesOnlyOnce()
{
    m_connection->fill(5);
    DbRecordset rows;
    open(rows);
    finishWalks(m_connection);
    const int read = m_connection->calls.value(u"value"_s);
    QCOMPARE(read, 10);
    finishWalks(m_connection);
    QCOMPARE(m_connection->calls.value(u"value"_s), read);
    QCOMPARE(rest(rows), namesFrom(0, 5));
}

void TestWalk::walksNest()
{
    m_connection->fill(6);
    DbRecordset outer;
    open(outer);
    outer.MoveNext();
    {
        DbRecordset inner;
        open(inner);
        skip(inner, 2);
        QCOMPARE(inner.RecordCount(), 6);
        QCOMPARE(m_connection->liveCursors, 2);
        finishWalks(m_connection);
        QCOMPARE(m_connection->liveCursors, 0);
        QCOMPARE(rest(inner), namesFrom(2, 6));
    }
    QCOMPARE(rest(outer), namesFrom(1, 6));
    {
        DbRecordset inner;
        open(outer);
        open(inner);
    }
    finishWalks(m_connection); // the inner recordset is destroyed, the outer one is not
    QCOMPARE(m_connection->liveCursors, 0);
    QCOMPARE(rest(outer), namesFrom(0, 6));
}

/// A walk over another connection stays open: it does not block this connection's changes.
void TestWalk::finishesThoseOfItsConnection()
{
    const auto other = std::make_shared<ScriptedConnection>();
    m_connection->fill(4);
    other->fill(6);
    DbRecordset outer;
    DbRecordset inner;
    open(outer);
    inner.Open(everything, other, Access::Walk);
    finishWalks(m_connection);
    QCOMPARE(m_connection->liveCursors, 0);
    QCOMPARE(other->liveCursors, 1);
    QVERIFY(Execute(m_connection, Statement("Delete from StockList")));
    QCOMPARE(other->liveCursors, 1);
    finishWalks(other);
    QCOMPARE(other->liveCursors, 0);
    QCOMPARE(rest(outer), namesFrom(0, 4));
    QCOMPARE(rest(inner), namesFrom(0, 6));
    finishWalks(nullptr);
}

void TestWalk::addsARow()
{
    m_connection->fill(3);
    DbRecordset rows;
    open(rows);
    rows.MoveNext();
    rows.AddNew();
    rows.Field(u"name"_s).assign(u"new"_s);
    rows.Update();
    QCOMPARE(m_connection->table, u"StockList"_s);
    QCOMPARE(m_connection->written, (DbAssignments{{u"name"_s, u"new"_s}}));
    QCOMPARE(m_connection->liveCursors, 0);
    QCOMPARE(rows.Field(u"name"_s).text(), u"new"_s);
    QVERIFY(!rows.IsEof());
    rows.MoveNext();
    QVERIFY(rows.IsEof());
}

void TestWalk::leavesTheRowsForAnAddedOne()
{
    m_connection->fill(3);
    DbRecordset rows;
    open(rows);
    rows.AddNew();
    rows.Field(u"name"_s).assign(u"unwritten"_s);
    rows.MoveNext();
    QVERIFY(rows.IsEof());
    QCOMPARE(m_connection->liveCursors, 0);
    QCOMPARE(m_connection->calls.value(u"insertRow"_s), 0);
}

void TestWalk::writesNoRowBack()
{
    m_connection->fill(3);
    DbRecordset rows;
    open(rows);
    rows.Field(u"name"_s).assign(u"other"_s);
    QCOMPARE(rows.Field(u"name"_s).text(), u"other"_s);
    rows.Update();
    QCOMPARE(m_connection->calls.value(u"updateRow"_s), 0);
    QCOMPARE(m_connection->failures.size(), 1u);
    QCOMPARE(m_connection->failures[0].reason, u"the result was opened for reading only"_s);
    QCOMPARE(rest(rows), namesFrom(0, 3));
}

void TestWalk::refusedAndNull()
{
    DbRecordset rows;
    rows.Open(Statement("Select * from StockList where StockID = ").text(u"'"_s), m_connection, Access::Walk);
    QVERIFY(rows.HasFailed());
    QCOMPARE(rows.RecordCount(), 0);
    QVERIFY(m_connection->statements.isEmpty());
    rows.Open(everything, nullptr, Access::Walk);
    QVERIFY(rows.HasFailed());
    QVERIFY(rows.IsEof());
    QCOMPARE(rows.RecordCount(), 0);
}

HARROWBY_CORE_TEST(walk_test, TestWalk)
#include "walk_test.moc"
