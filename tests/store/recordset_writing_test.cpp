// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/store/scripted_connection.h"

#include "store/recordset.h"

#include <QTest>

using namespace harrowby;
using namespace Qt::StringLiterals;
using Access = DbRecordset::Access;
using Fault = ScriptedConnection::Fault;

namespace {

const Statement allOfThem("Select * from StockList");

} // namespace

/// Which row and which columns the recordset writes.
class TestRecordsetWriting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void assignsInOrderAndOnlyAssigned();
    void writesTheRowItStandsOn();
    void readsBackWhatItWrote();
    void failedUpdateKeepsOldValues();
    void movingForgetsAssignments();
    void readAccessCannotChange();
    void rowsWithoutIdentityCannotChange();
    void updateWithoutAssignmentsDoesNothing();
    void assignmentWithoutRowIsDropped();
    void addsToEmptyResult();
    void addsToFoundRow();
    void addsAfterLongResult();
    void addsToRefusedResult();
    void addingFailsQuietly();
    void changingAddedRowFails();
    void aggregateCannotTakeARow();

private:
    std::shared_ptr<ScriptedConnection> m_connection;
};

void TestRecordsetWriting::init()
{
    m_connection = std::make_shared<ScriptedConnection>();
}

void TestRecordsetWriting::assignsInOrderAndOnlyAssigned()
{
    DbRecordset rows;
    rows.Open(allOfThem, m_connection);
    rows.AddNew();
    rows.Field(u"Name"_s).assign(u"1"_s);
    rows.Field(u"ID"_s).assign(2.5);
    rows.Field(u"name"_s).assign(static_cast<std::int64_t>(3));
    rows.Update();
    QCOMPARE(m_connection->table, u"StockList"_s);
    const DbAssignments expected{{u"Name"_s, static_cast<std::int64_t>(3)}, {u"ID"_s, 2.5}};
    QVERIFY(m_connection->written == expected);
}

void TestRecordsetWriting::writesTheRowItStandsOn()
{
    m_connection->fill(60);
    DbRecordset rows;
    rows.Open(allOfThem, m_connection, Access::Edit);
    QVERIFY(m_connection->idsAskedOnFirstRow);
    for (int i = 0; i < 45; ++i)
        rows.MoveNext();
    rows.Field(u"NAME"_s).assign(u"new"_s);
    rows.Update();
    QCOMPARE(m_connection->row, DbRowId(145));
    QCOMPARE(m_connection->table, u"StockList"_s);
    QVERIFY(m_connection->written == (DbAssignments{{u"NAME"_s, u"new"_s}}));
    QCOMPARE(m_connection->calls.value(u"query"_s), 1);
    QCOMPARE(m_connection->calls.value(u"rowIds"_s), 1);
}

void TestRecordsetWriting::readsBackWhatItWrote()
{
    m_connection->fill(2);
    DbRecordset rows;
    rows.Open(allOfThem, m_connection, Access::Edit);
    rows.Field(u"Name"_s).assign(u"new"_s);
    rows.Update();
    QCOMPARE(rows.Field(u"name"_s).text(), u"new"_s);
    QCOMPARE(rows.Field(u"id"_s).text(), u"0"_s);
    rows.Field(u"ID"_s).assign(u"x"_s);
    rows.Update();
    QCOMPARE(rows.Field(u"name"_s).text(), u"new"_s);
    QCOMPARE(rows.Field(u"id"_s).text(), u"x"_s);
    rows.MoveNext();
    QCOMPARE(rows.Field(u"name"_s).text(), u"row 1"_s);
}

void TestRecordsetWriting::failedUpdateKeepsOldValues()
{
    m_connection->fill(1);
    m_connection->faults[u"updateRow"_s] = Fault::Failure;
    DbRecordset rows;
    rows.Open(allOfThem, m_connection, Access::Edit);
    rows.Field(u"Name"_s).assign(u"new"_s);
    rows.Update();
    QCOMPARE(rows.Field(u"Name"_s).text(), u"row 0"_s);
    QCOMPARE(m_connection->failures.size(), 1u);
}

void TestRecordsetWriting::movingForgetsAssignments()
{
    m_connection->fill(2);
    DbRecordset rows;
    rows.Open(allOfThem, m_connection, Access::Edit);
    rows.Field(u"Name"_s).assign(u"new"_s);
    rows.MoveNext();
    rows.Update();
    QCOMPARE(m_connection->calls.value(u"updateRow"_s), 0);
    QCOMPARE(rows.Field(u"Name"_s).text(), u"row 1"_s);
}

void TestRecordsetWriting::readAccessCannotChange()
{
    m_connection->fill(1);
    DbRecordset rows;
    rows.Open(allOfThem, m_connection);
    rows.Field(u"Name"_s).assign(u"new"_s);
    rows.Update();
    QCOMPARE(m_connection->calls.value(u"updateRow"_s), 0);
    QCOMPARE(m_connection->failures.size(), 1u);
    QCOMPARE(m_connection->failures[0].kind, DbFailure::Kind::Write);
    QCOMPARE(m_connection->failures[0].statement, u"UPDATE StockList"_s);
    QCOMPARE(m_connection->failures[0].reason, u"the result was opened for reading only"_s);
}

void TestRecordsetWriting::rowsWithoutIdentityCannotChange()
{
    m_connection->fill(3);
    m_connection->ids.pop_back(); // fewer identities than rows
    DbRecordset rows;
    rows.Open(allOfThem, m_connection, Access::Edit);
    QCOMPARE(rows.RecordCount(), 3);
    rows.Field(u"Name"_s).assign(u"new"_s);
    rows.Update();
    QCOMPARE(m_connection->calls.value(u"updateRow"_s), 0);
    QCOMPARE(m_connection->failures.size(), 1u);
    QCOMPARE(m_connection->failures[0].reason, u"the row has no identity to find it by"_s);
    QCOMPARE(rows.Field(u"Name"_s).text(), u"row 0"_s);
}

void TestRecordsetWriting::updateWithoutAssignmentsDoesNothing()
{
    m_connection->fill(1);
    DbRecordset rows;
    rows.Open(allOfThem, m_connection, Access::Edit);
    rows.Update();
    QCOMPARE(m_connection->calls.value(u"updateRow"_s), 0);
    QVERIFY(m_connection->failures.empty());
}

void TestRecordsetWriting::assignmentWithoutRowIsDropped()
{
    DbRecordset rows;
    rows.Open(allOfThem, m_connection, Access::Edit);
    rows.Field(u"Name"_s).assign(u"new"_s);
    QVERIFY(!rows.Field(u"Name"_s).value());
    rows.Update();
    QCOMPARE(m_connection->calls.value(u"updateRow"_s), 0);
    QCOMPARE(m_connection->calls.value(u"insertRow"_s), 0);
    QCOMPARE(m_connection->calls.value(u"rowIds"_s), 0);
}

void TestRecordsetWriting::addsToEmptyResult()
{
    DbRecordset rows;
    rows.Open(allOfThem, m_connection, Access::Edit);
    QCOMPARE(rows.RecordCount(), 0);
    rows.AddNew();
    QVERIFY(!rows.IsEof());
    rows.Field(u"Name"_s).assign(u"new"_s);
    QCOMPARE(rows.Field(u"NAME"_s).text(), u"new"_s);
    rows.Update();
    QCOMPARE(m_connection->calls.value(u"insertRow"_s), 1);
    QCOMPARE(m_connection->table, u"StockList"_s);
    QCOMPARE(rows.Field(u"name"_s).text(), u"new"_s);
    QVERIFY(!rows.Field(u"ID"_s).value()); // not assigned: the value is the table's default, which was not read
    QCOMPARE(rows.RecordCount(), 0);
    QVERIFY(!rows.IsEof());
    rows.MoveNext();
    QVERIFY(rows.IsEof());
    QVERIFY(!rows.Field(u"name"_s).value());
}

void TestRecordsetWriting::addsToFoundRow()
{
    m_connection->fill(2);
    DbRecordset rows;
    rows.Open(allOfThem, m_connection);
    rows.Field(u"Name"_s).assign(u"dropped"_s);
    rows.AddNew();
    QVERIFY(!rows.Field(u"Name"_s).value());
    rows.Field(u"ID"_s).assign(static_cast<std::int64_t>(9));
    rows.Update();
    QVERIFY(m_connection->written == (DbAssignments{{u"ID"_s, static_cast<std::int64_t>(9)}}));
    QCOMPARE(m_connection->calls.value(u"updateRow"_s), 0);
    QVERIFY(m_connection->failures.empty());
}

void TestRecordsetWriting::addsAfterLongResult()
{
    m_connection->fill(50);
    DbRecordset rows;
    rows.Open(allOfThem, m_connection);
    rows.AddNew();
    rows.Update();
    rows.MoveNext();
    QVERIFY(!rows.Field(u"Name"_s).value());
    QVERIFY(rows.IsEof());
    QCOMPARE(rows.RecordCount(), 50);
}

void TestRecordsetWriting::addsToRefusedResult()
{
    m_connection->fill(5);
    DbRecordset rows;
    rows.Open(Statement("Select * from StockList where StockID = ").text(u"5' x"_s), m_connection, Access::Edit);
    QCOMPARE(rows.RecordCount(), 0);
    QVERIFY(m_connection->statements.isEmpty());
    rows.AddNew();
    rows.Field(u"StockID"_s).assign(u"5' x"_s);
    rows.Update();
    QCOMPARE(m_connection->table, u"StockList"_s);
    QVERIFY(m_connection->written == (DbAssignments{{u"StockID"_s, u"5' x"_s}}));
    QCOMPARE(rows.Field(u"stockid"_s).text(), u"5' x"_s);
}

void TestRecordsetWriting::addingFailsQuietly()
{
    m_connection->fill(1);
    m_connection->faults[u"insertRow"_s] = Fault::Failure;
    DbRecordset rows;
    rows.Open(allOfThem, m_connection);
    rows.AddNew();
    rows.Field(u"Name"_s).assign(u"new"_s);
    rows.Update();
    QCOMPARE(m_connection->failures.size(), 1u);
    QCOMPARE(rows.Field(u"Name"_s).text(), u"row 0"_s);
}

void TestRecordsetWriting::changingAddedRowFails()
{
    DbRecordset rows;
    rows.Open(allOfThem, m_connection, Access::Edit);
    rows.AddNew();
    rows.Field(u"Name"_s).assign(u"new"_s);
    rows.Update();
    rows.Field(u"Name"_s).assign(u"newer"_s);
    rows.Update();
    QCOMPARE(m_connection->calls.value(u"insertRow"_s), 1);
    QCOMPARE(m_connection->calls.value(u"updateRow"_s), 0);
    QCOMPARE(m_connection->failures.size(), 1u);
    QCOMPARE(rows.Field(u"Name"_s).text(), u"new"_s);
}

void TestRecordsetWriting::aggregateCannotTakeARow()
{
    DbRecordset rows;
    rows.Open(Statement("Select 1"), m_connection);
    rows.AddNew();
    rows.Update();
    QCOMPARE(m_connection->calls.value(u"insertRow"_s), 0);
    QCOMPARE(m_connection->failures.size(), 1u);
    QCOMPARE(m_connection->failures[0].reason, u"the result is not read from a table"_s);
}

HARROWBY_CORE_TEST(recordset_writing_test, TestRecordsetWriting)
#include "recordset_writing_test.moc"
