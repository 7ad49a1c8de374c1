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

/// A long result that breaks while its rows are fetched.
class TestWalkFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_connection = std::make_shared<ScriptedConnection>(); }
    void cleanup();

    void failsInTheMiddle_data();
    void failsInTheMiddle();
    void failsWhileFinishing_data();
    void failsWhileFinishing();
    void failsAtOpening_data();
    void failsAtOpening();
    void countFails_data();
    void countFails();
    void valueThrows();
    void otherWalksSurviveAFailingOne();

private:
    static void addFaults();
    void open(DbRecordset &rows) { rows.Open(everything, m_connection, Access::Walk); }

    std::shared_ptr<ScriptedConnection> m_connection;
};

/// No test leaves a statement open in the engine.
void TestWalkFaults::cleanup()
{
    QCOMPARE(m_connection->liveCursors, 0);
    finishWalks(m_connection);
}

void TestWalkFaults::addFaults()
{
    QTest::addColumn<Fault>("fault");
    QTest::newRow("failure") << Fault::Failure;
    QTest::newRow("exception") << Fault::Exception;
    QTest::newRow("oddity") << Fault::Oddity;
}

void TestWalkFaults::failsInTheMiddle_data()
{
    addFaults();
}

void TestWalkFaults::failsInTheMiddle()
{
    QFETCH(const Fault, fault);
    m_connection->fill(10);
    m_connection->faults[u"next 5"_s] = fault;
    DbRecordset rows;
    open(rows);
    QCOMPARE(rows.RecordCount(), 10);
    QCOMPARE(rest(rows), namesFrom(0, 4)); // those that came before
    QVERIFY(rows.HasFailed());
    QVERIFY(rows.IsEof());
    QCOMPARE(m_connection->liveCursors, 0);
    QCOMPARE(m_connection->failures.size(), 1u);
    QCOMPARE(rows.RecordCount(), 10); // the count stays; IsEof() ends the loop
}

void TestWalkFaults::failsWhileFinishing_data()
{
    addFaults();
}

void TestWalkFaults::failsWhileFinishing()
{
    QFETCH(const Fault, fault);
    m_connection->fill(10);
    m_connection->faults[u"next 5"_s] = fault;
    DbRecordset rows;
    open(rows);
    rows.MoveNext();
    finishWalks(m_connection);
    QVERIFY(rows.HasFailed());
    QCOMPARE(m_connection->liveCursors, 0);
    QCOMPARE(rest(rows), namesFrom(1, 4));
    QCOMPARE(m_connection->failures.size(), 1u);
}

void TestWalkFaults::failsAtOpening_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<Fault>("fault");
    for (const char *operation : {"query", "next", "columnNames"}) {
        QTest::addRow("%s throws", operation) << QString::fromLatin1(operation) << Fault::Exception;
        QTest::addRow("%s throws an oddity", operation) << QString::fromLatin1(operation) << Fault::Oddity;
        if (qstrcmp(operation, "columnNames") != 0)
            QTest::addRow("%s fails", operation) << QString::fromLatin1(operation) << Fault::Failure;
    }
}

void TestWalkFaults::failsAtOpening()
{
    QFETCH(const QString, operation);
    QFETCH(const Fault, fault);
    m_connection->fill(10);
    m_connection->faults[operation] = fault;
    DbRecordset rows;
    open(rows);
    QVERIFY(rows.HasFailed());
    QVERIFY(rows.IsEof());
    QCOMPARE(rows.RecordCount(), 0);
    QVERIFY(!rows.Field(u"name"_s).value());
    rows.MoveNext();
    QCOMPARE(m_connection->failures.size(), 1u);
    QCOMPARE(m_connection->liveCursors, 0);
    // A row can still be added to its table.
    m_connection->faults.clear();
    rows.AddNew();
    rows.Update();
    QCOMPARE(m_connection->table, u"StockList"_s);
}

void TestWalkFaults::countFails_data()
{
    addFaults();
}

void TestWalkFaults::countFails()
{
    QFETCH(const Fault, fault);
    m_connection->fill(10);
    m_connection->faults[u"countRows"_s] = fault;
    DbRecordset rows;
    open(rows);
    QCOMPARE(rows.RecordCount(), 0);
    QVERIFY(rows.HasFailed());
    QVERIFY(rows.IsEof());
    QCOMPARE(m_connection->liveCursors, 0);
    QCOMPARE(m_connection->failures.size(), 1u);
}

void TestWalkFaults::valueThrows()
{
    m_connection->fill(3);
    DbRecordset rows;
    open(rows);
    m_connection->faults[u"value"_s] = Fault::Exception;
    QCOMPARE(rows.Field(u"name"_s).text(u"kept"_s), u"kept"_s);
    m_connection->faults.clear();
    QCOMPARE(rest(rows), namesFrom(0, 3)); // only that one value is missing
    open(rows);
    rows.MoveNext();
    m_connection->faults[u"value"_s] = Fault::Exception;
    finishWalks(m_connection);
    QVERIFY(rows.HasFailed());
    QVERIFY(rows.IsEof());
    QCOMPARE(rest(rows), QStringList());
}

void TestWalkFaults::otherWalksSurviveAFailingOne()
{
    m_connection->fill(6);
    DbRecordset outer;
    DbRecordset inner;
    open(outer);
    skip(outer, 4);
    open(inner);
    m_connection->faults[u"next 4"_s] = Fault::Exception; // a row that the outer walk has passed
    finishWalks(m_connection);
    QCOMPARE(m_connection->liveCursors, 0);
    QVERIFY(inner.HasFailed());
    QVERIFY(!outer.HasFailed());
    QCOMPARE(rest(outer), namesFrom(4, 6));
    QCOMPARE(rest(inner), namesFrom(0, 3));
}

HARROWBY_CORE_TEST(walk_faults_test, TestWalkFaults)
#include "walk_faults_test.moc"
