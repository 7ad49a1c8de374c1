// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/store/scripted_connection.h"

#include "store/recordset.h"
#include "store/statement_texts.h"

#include <QTest>

#include <stdexcept>

using namespace harrowby;
using namespace Qt::StringLiterals;
using Access = DbRecordset::Access;
using Fault = ScriptedConnection::Fault;

namespace {

const Statement everything("Select * from StockList");

} // namespace

/// Whatever the connection throws or fails at, the recordset stays usable and reports it once.
class TestRecordsetFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void refusedStatementIsReported();
    void nullConnectionIsHarmless();
    void faultLeavesEmptyResult_data();
    void faultLeavesEmptyResult();
    void faultOfALongResult_data();
    void faultOfALongResult();
    void faultOfWriting_data();
    void faultOfWriting();
    void handlerMayThrow();
    void passwordsAreNotTold();
    void handlerMayReplaceItself();
    void executes();

private:
    std::shared_ptr<ScriptedConnection> m_connection;
};

void TestRecordsetFaults::init()
{
    m_connection = std::make_shared<ScriptedConnection>();
}

void TestRecordsetFaults::refusedStatementIsReported()
{
    const Statement bad = Statement("Select * from Users where Username = ").text(u"x' or 'a'='a"_s);
    DbRecordset rows;
    rows.Open(bad, m_connection);
    QCOMPARE(rows.RecordCount(), 0);
    QVERIFY(rows.IsEof());
    QVERIFY(rows.HasFailed());
    QVERIFY(!Execute(m_connection, Statement("Delete from Users where Username = ").text(u"'"_s)));
    QVERIFY(m_connection->statements.isEmpty());
    QCOMPARE(m_connection->failures.size(), 2u);
    QCOMPARE(m_connection->failures[0].kind, DbFailure::Kind::Read);
    QCOMPARE(m_connection->failures[0].statement, bad.sql());
    QCOMPARE(m_connection->failures[0].reason, u"a text value contains a single quote"_s);
    QCOMPARE(m_connection->failures[0].engineCode, 0);
    QCOMPARE(m_connection->failures[1].kind, DbFailure::Kind::Write);
    QCOMPARE(m_connection->failures[1].reason, u"a text value contains a single quote"_s);
}

void TestRecordsetFaults::nullConnectionIsHarmless()
{
    DbRecordset rows;
    for (const Access access : {Access::Read, Access::Edit}) {
        rows.Open(everything, nullptr, access);
        QCOMPARE(rows.RecordCount(), 0);
        QVERIFY(rows.IsEof());
        QVERIFY(rows.HasFailed());
        QVERIFY(!rows.Field(u"ID"_s).value());
        rows.AddNew();
        rows.Field(u"ID"_s).assign(static_cast<std::int64_t>(1));
        rows.Update();
        QVERIFY(!rows.Field(u"ID"_s).value());
    }
    rows.Open(Statement("Select * from Users where Username = ").text(u"'"_s), nullptr);
    QCOMPARE(rows.RecordCount(), 0);
    QVERIFY(!Execute(nullptr, Statement("Delete from Users")));
    QVERIFY(!Execute(nullptr, Statement("Delete from Users where Username = ").text(u"'"_s)));
}

void TestRecordsetFaults::faultLeavesEmptyResult_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<QString>("reason");
    for (const char *operation : {"query", "next", "next 1", "next 3", "value", "columnNames"}) {
        const QString name = QString::fromLatin1(operation);
        if (name == u"query" || name.startsWith(u"next"))
            QTest::addRow("%s fails", operation) << name << Fault::Failure << u"scripted failure"_s;
        QTest::addRow("%s throws", operation) << name << Fault::Exception << u"scripted exception"_s;
        QTest::addRow("%s throws anything", operation)
            << name << Fault::Oddity << u"the connection threw something that is no exception"_s;
    }
}

void TestRecordsetFaults::faultLeavesEmptyResult()
{
    QFETCH(const QString, operation);
    QFETCH(const Fault, fault);
    QFETCH(const QString, reason);
    m_connection->fill(5);
    m_connection->faults[operation] = fault;
    for (const Access access : {Access::Read, Access::Edit}) {
        m_connection->failures.clear();
        DbRecordset rows;
        rows.Open(everything, m_connection, access);
        QCOMPARE(rows.RecordCount(), 0);
        QVERIFY(rows.IsEof());
        QVERIFY(rows.HasFailed());
        QVERIFY(!rows.Field(u"ID"_s).value());
        rows.MoveNext();
        QCOMPARE(m_connection->failures.size(), 1u);
        QCOMPARE(m_connection->failures[0].reason, reason);
        QCOMPARE(m_connection->failures[0].kind, DbFailure::Kind::Read);
        QCOMPARE(m_connection->liveCursors, 0);
        rows.AddNew();
        rows.Update();
        QCOMPARE(m_connection->table, u"StockList"_s);
        m_connection->faults.clear();
        rows.Open(everything, m_connection, access);
        QVERIFY(!rows.HasFailed());
        m_connection->faults[operation] = fault;
    }
}

void TestRecordsetFaults::faultOfALongResult_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<int>("count");
    for (const auto &[name, fault] : {std::pair("fails", Fault::Failure), std::pair("throws", Fault::Exception),
                                      std::pair("throws anything", Fault::Oddity)}) {
        QTest::addRow("counting %s", name) << u"countRows"_s << fault << 0;
        QTest::addRow("a late row %s", name) << u"next 45"_s << fault << 50;
        QTest::addRow("identities: %s", name) << u"rowIds"_s << fault << 50;
    }
}

void TestRecordsetFaults::faultOfALongResult()
{
    QFETCH(const QString, operation);
    QFETCH(const Fault, fault);
    QFETCH(const int, count);
    m_connection->fill(50);
    m_connection->faults[operation] = fault;
    const bool readsIds = operation == u"rowIds";
    DbRecordset rows;
    rows.Open(everything, m_connection, readsIds ? Access::Edit : Access::Read);
    QCOMPARE(rows.RecordCount(), count);
    QCOMPARE(rows.Field(u"Name"_s).value().has_value(), readsIds);
    QCOMPARE(rows.IsEof(), !readsIds);
    QCOMPARE(rows.HasFailed(), !readsIds);
    QCOMPARE(rows.RecordCount(), count);
    QCOMPARE(m_connection->failures.size(), 1u);
    rows.Field(u"Name"_s).assign(u"new"_s);
    rows.Update();
    QCOMPARE(m_connection->calls.value(u"updateRow"_s), 0);
    QCOMPARE(m_connection->liveCursors, 0);
}

void TestRecordsetFaults::faultOfWriting_data()
{
    QTest::addColumn<Fault>("fault");
    QTest::newRow("fails") << Fault::Failure;
    QTest::newRow("throws") << Fault::Exception;
    QTest::newRow("throws anything") << Fault::Oddity;
}

void TestRecordsetFaults::faultOfWriting()
{
    QFETCH(const Fault, fault);
    m_connection->fill(1);
    for (const char *operation : {"Execute", "insertRow", "updateRow"})
        m_connection->faults[QString::fromLatin1(operation)] = fault;
    QVERIFY(!Execute(m_connection, Statement("Delete from StockList")));
    DbRecordset rows;
    rows.Open(everything, m_connection, Access::Edit);
    rows.Field(u"Name"_s).assign(u"new"_s);
    rows.Update();
    rows.AddNew();
    rows.Update();
    QCOMPARE(m_connection->failures.size(), 3u);
    for (const DbFailure &failure : m_connection->failures)
        QCOMPARE(failure.kind, DbFailure::Kind::Write);
    if (fault != Fault::Failure) {
        QCOMPARE(m_connection->failures[0].statement, u"Delete from StockList"_s);
        QCOMPARE(m_connection->failures[1].statement, u"UPDATE StockList"_s);
        QCOMPARE(m_connection->failures[2].statement, u"INSERT StockList"_s);
    }
}

void TestRecordsetFaults::handlerMayThrow()
{
    m_connection->setFailureHandler([](const DbFailure &) { throw std::runtime_error("handler"); });
    m_connection->faults[u"query"_s] = Fault::Failure;
    DbRecordset rows;
    rows.Open(everything, m_connection);
    QCOMPARE(rows.RecordCount(), 0);
    m_connection->setFailureHandler([](const DbFailure &) { throw 42; }); // NOLINT: hosts may throw anything
    rows.Open(everything, m_connection);
    QCOMPARE(rows.RecordCount(), 0);
}

void TestRecordsetFaults::passwordsAreNotTold()
{
    DbRecordset rows;
    rows.Open(statements::login(u"ANN"_s, u"SEC'RET"_s), m_connection);
    m_connection->faults[u"query"_s] = Fault::Failure;
    rows.Open(statements::login(u"ANN"_s, u"SECRET"_s), m_connection);
    QCOMPARE(m_connection->failures.size(), 2u);
    for (const DbFailure &failure : m_connection->failures)
        QVERIFY(!failure.statement.contains(u"SEC"_s));
    QVERIFY(m_connection->failures.front().statement.contains(u"'ANN'"_s));
}

void TestRecordsetFaults::handlerMayReplaceItself()
{
    int told = 0;
    ScriptedConnection *connection = m_connection.get();
    const QString big(1000, u'x');
    m_connection->setFailureHandler([connection, &told, big](const DbFailure &) {
        connection->setFailureHandler({});
        told += static_cast<int>(big.size());
    });
    m_connection->faults[u"Execute"_s] = Fault::Failure;
    QVERIFY(!Execute(m_connection, Statement("Delete from StockList")));
    QVERIFY(!Execute(m_connection, Statement("Delete from StockList")));
    QCOMPARE(told, 1000);
}

void TestRecordsetFaults::executes()
{
    QVERIFY(Execute(m_connection, Statement("Delete from StockList where StockID = ").text(u"1"_s)));
    QCOMPARE(m_connection->statements, QStringList{u"Delete from StockList where StockID = '1'"_s});
    QVERIFY(m_connection->failures.empty());
}

HARROWBY_CORE_TEST(recordset_faults_test, TestRecordsetFaults)
#include "recordset_faults_test.moc"
