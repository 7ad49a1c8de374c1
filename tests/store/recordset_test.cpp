// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/store/scripted_connection.h"

#include "store/recordset.h"

#include <QTest>

#include <limits>

using namespace harrowby;
using namespace Qt::StringLiterals;
using Access = DbRecordset::Access;

namespace {

const Statement allRows("Select * from StockList");

QStringList walk(DbRecordset &rows)
{
    QStringList names;
    for (std::int32_t i = 1, count = rows.RecordCount(); i <= count; ++i) {
        names.append(rows.Field(u"name"_s).text());
        if (!rows.IsEof())
            rows.MoveNext();
    }
    return names;
}

QStringList namesOf(int count)
{
    QStringList names;
    for (int i = 0; i < count; ++i)
        names.append(u"row "_s + QString::number(i));
    return names;
}

} // namespace

/// The recordset over a connection without an engine: what it asks for, and when.
class TestRecordset : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void walksEveryRow_data();
    void walksEveryRow();
    void isEmptyBeforeOpening();
    void emptyResultHasNoRow();
    void smallResultIsReadOnce();
    void countingReadsFewRows();
    void countIsAskedOnce();
    void readsWholeResultOnlyForARow();
    void walkingReadsWholeResultWithoutField();
    void countStandsWhenTableChanges();
    void hugeCountFits32Bits();
    void openingAgainReplacesRows();
    void keepsNoCursor_data();
    void keepsNoCursor();
    void unknownFieldHasNoValue();

private:
    std::shared_ptr<ScriptedConnection> m_connection;
};

void TestRecordset::init()
{
    m_connection = std::make_shared<ScriptedConnection>();
}

void TestRecordset::walksEveryRow_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {0, 1, 2, 9, 10, 11, 12, 33, 100, 5000})
        QTest::addRow("%d", count) << count;
}

void TestRecordset::walksEveryRow()
{
    QFETCH(const int, count);
    m_connection->fill(count);
    for (const Access access : {Access::Read, Access::Edit}) {
        DbRecordset rows;
        rows.Open(allRows, m_connection, access);
        QCOMPARE(rows.RecordCount(), count);
        QCOMPARE(walk(rows), namesOf(count));
        QVERIFY(rows.IsEof());
        QCOMPARE(rows.RecordCount(), count);
    }
    QVERIFY(m_connection->failures.empty());
}

void TestRecordset::isEmptyBeforeOpening()
{
    DbRecordset rows;
    QVERIFY(rows.IsEof());
    QCOMPARE(rows.RecordCount(), 0);
    QVERIFY(!rows.HasFailed());
    QVERIFY(!rows.Field(u"ID"_s).value());
    rows.MoveNext();
    rows.Field(u"ID"_s).assign(static_cast<std::int64_t>(1));
    rows.Update();
    rows.AddNew();
    rows.Update();
    QVERIFY(rows.IsEof());
}

void TestRecordset::emptyResultHasNoRow()
{
    DbRecordset rows;
    rows.Open(allRows, m_connection);
    QVERIFY(rows.IsEof());
    QCOMPARE(rows.RecordCount(), 0);
    QVERIFY(!rows.HasFailed());
    QVERIFY(!rows.Field(u"ID"_s).value());
    QCOMPARE(rows.Field(u"ID"_s).text(u"kept"_s), u"kept"_s);
    QCOMPARE(rows.Field(u"ID"_s).number(7.0), 7.0);
    rows.MoveNext();
    QVERIFY(rows.IsEof());
    QCOMPARE(m_connection->calls.value(u"countRows"_s), 0);
    QCOMPARE(m_connection->calls.value(u"query"_s), 1);
}

void TestRecordset::smallResultIsReadOnce()
{
    m_connection->fill(9);
    DbRecordset rows;
    rows.Open(allRows, m_connection);
    QCOMPARE(rows.RecordCount(), 9);
    QCOMPARE(walk(rows), namesOf(9));
    QCOMPARE(m_connection->calls.value(u"query"_s), 1);
    QCOMPARE(m_connection->calls.value(u"countRows"_s), 0);
    QCOMPARE(m_connection->calls.value(u"value"_s), 18);
    QCOMPARE(m_connection->calls.value(u"rowIds"_s), 0);
}

void TestRecordset::countingReadsFewRows()
{
    m_connection->fill(100'000);
    DbRecordset rows;
    rows.Open(allRows, m_connection);
    QCOMPARE(rows.RecordCount(), 100'000);
    QVERIFY(!rows.IsEof());
    QCOMPARE(m_connection->calls.value(u"query"_s), 1);
    QVERIFY(m_connection->calls.value(u"next"_s) <= 40);
    QVERIFY(m_connection->calls.value(u"value"_s) <= 80);
}

void TestRecordset::countIsAskedOnce()
{
    m_connection->fill(50);
    DbRecordset rows;
    rows.Open(allRows, m_connection);
    for (int i = 0; i < 5; ++i)
        QCOMPARE(rows.RecordCount(), 50);
    QVERIFY(!rows.HasFailed());
    QCOMPARE(m_connection->calls.value(u"countRows"_s), 1);
    QCOMPARE(m_connection->statements, QStringList({allRows.sql(), allRows.sql()}));
}

void TestRecordset::readsWholeResultOnlyForARow()
{
    m_connection->fill(50);
    DbRecordset rows;
    rows.Open(allRows, m_connection);
    QVERIFY(!rows.IsEof());
    QCOMPARE(m_connection->calls.value(u"query"_s), 1);
    QCOMPARE(rows.Field(u"NAME"_s).text(), u"row 0"_s);
    QCOMPARE(m_connection->calls.value(u"query"_s), 2);
    QCOMPARE(rows.RecordCount(), 50);
    QCOMPARE(walk(rows), namesOf(50));
    QCOMPARE(m_connection->calls.value(u"query"_s), 2);
    QCOMPARE(m_connection->calls.value(u"countRows"_s), 0);
}

void TestRecordset::walkingReadsWholeResultWithoutField()
{
    m_connection->fill(50);
    DbRecordset rows;
    rows.Open(allRows, m_connection);
    int steps = 0;
    for (; !rows.IsEof(); rows.MoveNext())
        ++steps;
    QCOMPARE(steps, 50);
    rows.MoveNext();
    QVERIFY(rows.IsEof());
}

void TestRecordset::countStandsWhenTableChanges()
{
    m_connection->fill(50);
    DbRecordset rows;
    rows.Open(allRows, m_connection);
    QCOMPARE(rows.RecordCount(), 50);
    m_connection->rows.resize(40);
    QStringList names = walk(rows);
    QCOMPARE(names.first(40), namesOf(40));
    QCOMPARE(names.sliced(40), QStringList(10, QString()));
    QCOMPARE(rows.RecordCount(), 50);
}

void TestRecordset::hugeCountFits32Bits()
{
    class Endless final : public DbConnection
    {
    public:
        class Cursor final : public DbCursor
        {
        public:
            [[nodiscard]] QStringList columnNames() const override { return {}; }
            [[nodiscard]] Step next() override { return Step::Row; }
            [[nodiscard]] DbValue value(int) const override { return {}; }
        };
        bool Execute(const QString &) override { return false; }
        std::unique_ptr<DbCursor> query(const QString &) override { return std::make_unique<Cursor>(); }
        std::optional<std::int64_t> countRows(const QString &) override
        {
            return static_cast<std::int64_t>(5'000'000'000);
        }
        std::optional<std::vector<DbRowId>> rowIds(const QString &) override { return {}; }
        bool insertRow(const QString &, const DbAssignments &) override { return false; }
        bool updateRow(const QString &, DbRowId, const DbAssignments &) override { return false; }
        [[nodiscard]] QString location() const override { return {}; }
    };
    DbRecordset rows;
    rows.Open(allRows, std::make_shared<Endless>());
    QCOMPARE(rows.RecordCount(), std::numeric_limits<std::int32_t>::max());
}

void TestRecordset::openingAgainReplacesRows()
{
    m_connection->fill(3);
    DbRecordset rows;
    rows.Open(allRows, m_connection, Access::Edit);
    rows.MoveNext();
    rows.Field(u"name"_s).assign(u"unwritten"_s);
    rows.AddNew();
    m_connection->rows.resize(1);
    rows.Open(Statement("Select * from Users"), m_connection);
    QCOMPARE(rows.RecordCount(), 1);
    QCOMPARE(rows.Field(u"name"_s).text(), u"row 0"_s);
    rows.AddNew();
    rows.Update();
    QCOMPARE(m_connection->table, u"Users"_s);
    QVERIFY(m_connection->written.empty());
}

void TestRecordset::keepsNoCursor_data()
{
    walksEveryRow_data();
}

void TestRecordset::keepsNoCursor()
{
    QFETCH(const int, count);
    m_connection->fill(count);
    for (const Access access : {Access::Read, Access::Edit}) {
        DbRecordset rows;
        rows.Open(allRows, m_connection, access);
        QCOMPARE(m_connection->liveCursors, 0);
        (void)rows.RecordCount();
        QCOMPARE(m_connection->liveCursors, 0);
        (void)rows.Field(u"ID"_s).value();
        QCOMPARE(m_connection->liveCursors, 0);
        rows.MoveNext();
        QCOMPARE(m_connection->liveCursors, 0);
        (void)rows.IsEof();
        QCOMPARE(m_connection->liveCursors, 0);
    }
}

void TestRecordset::unknownFieldHasNoValue()
{
    m_connection->fill(1);
    DbRecordset rows;
    rows.Open(allRows, m_connection);
    QVERIFY(!rows.Field(u"Price"_s).value());
    QCOMPARE(rows.Field(u"Price"_s).text(u"old"_s), u"old"_s);
    QCOMPARE(rows.Field(u"Price"_s).number(-1), -1.0);
    QCOMPARE(rows.Field(u"NAME"_s).text(u"old"_s), u"row 0"_s);
    QCOMPARE(rows.Field(u"iD"_s).number(-1), 0.0);
}

HARROWBY_CORE_TEST(recordset_test, TestRecordset)
#include "recordset_test.moc"
