// SPDX-License-Identifier: MIT
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"
#include "tests/store/scratch_store.h"

#include "store/recordset.h"
#include "store/statement_texts.h"

#include <harrowby/sqlite_connection.h>

#include <QTest>

#include <sqlite3.h>

using namespace harrowby;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(Statement)

class TestSqliteConnection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void tellsItsLocation();
    void leavesTheHandleToItsHost();
    void runsOneStatement_data();
    void runsOneStatement();
    void refusesMoreThanOneStatement_data();
    void refusesMoreThanOneStatement();
    void executesChangesOnly_data();
    void executesChangesOnly();
    void queriesOnlyRead_data();
    void queriesOnlyRead();
    void reportsTheEnginesReason();
    void nullHandleFailsQuietly();
    void cursorStaysAtItsEnd();
    void countsRows_data();
    void countsRows();
    void countsInAnIndexAlone_data();
    void countsInAnIndexAlone();
    void tellsIdentities();
    void tellsNoIdentities_data();
    void tellsNoIdentities();
    void closesWhileConnectionLives();
    void lockedFileFailsQuietly();
    void readOnlyFileFailsQuietly();
    void damagedTextIsRead();

private:
    [[nodiscard]] DbConnection &connection() const { return *m_store->connection(); }
    [[nodiscard]] bool hasNothingSet() const;
    [[nodiscard]] static Qt::CaseSensitivity nameCase()
    {
        return test::shopsAreOnAServer() ? Qt::CaseInsensitive : Qt::CaseSensitive;
    }

    std::unique_ptr<ScratchStore> m_store;
};

void TestSqliteConnection::init()
{
    m_store = std::make_unique<ScratchStore>();
    m_store->addItem(u"1"_s, u"TEA"_s);
    m_store->addItem(u"2"_s, u"MILK"_s);
}

void TestSqliteConnection::cleanup()
{
    m_store.reset();
}

/// Whether the settings of the file are as they were.
bool TestSqliteConnection::hasNothingSet() const
{
    return test::shopsAreOnAServer() ||
           m_store->column(u"pragma user_version"_s) + m_store->column(u"pragma busy_timeout"_s) ==
               QStringList({u"0"_s, u"0"_s});
}

void TestSqliteConnection::tellsItsLocation()
{
    QCOMPARE(connection().location(), u"/shop"_s);
    QCOMPARE(SqliteConnection(nullptr).location(), QString());
}

void TestSqliteConnection::leavesTheHandleToItsHost()
{
    const auto settings = [this] {
        return m_store->column(u"pragma journal_mode"_s) + m_store->column(u"pragma synchronous"_s) +
               m_store->column(u"pragma busy_timeout"_s) + m_store->column(u"pragma foreign_keys"_s) +
               m_store->column(u"pragma locking_mode"_s);
    };
    const QStringList before = settings();
    {
        const SqliteConnection other(m_store->handle());
    }
    DbRecordset rows;
    rows.Open(statements::lowStock(), m_store->connection());
    QCOMPARE(settings(), before);
    QCOMPARE(m_store->column(u"select name from sqlite_master where type <> 'table'"_s), QStringList());
    QVERIFY(sqlite3_get_autocommit(m_store->handle()) != 0);
}

void TestSqliteConnection::runsOneStatement_data()
{
    QTest::addColumn<QString>("statement");
    QTest::newRow("update") << u"Update StockList set StockAvailable = 3"_s;
    QTest::newRow("insert") << u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('a','b','c')"_s;
    QTest::newRow("delete") << u"delete from StockList where StockID = '1'"_s;
    QTest::newRow("no row") << u"Update StockList set StockAvailable = 3 where StockID = 'none'"_s;
    QTest::newRow("semicolon") << u"Update StockList set StockAvailable = 3;"_s;
    QTest::newRow("blanks around") << u"\n Update StockList set StockAvailable = 3 ; \r\n\t"_s;
    QTest::newRow("returning") << u"Update StockList set StockAvailable = 3 returning *"_s;
}

void TestSqliteConnection::runsOneStatement()
{
    QFETCH(const QString, statement);
    QVERIFY(connection().Execute(statement));
    QVERIFY(m_store->failures.empty());
}

void TestSqliteConnection::refusesMoreThanOneStatement_data()
{
    QTest::addColumn<QString>("statement");
    QTest::newRow("second change") << u"Update StockList set StockAvailable = 3; delete from StockList"_s;
    QTest::newRow("second rubbish") << u"Update StockList set StockAvailable = 3; rubbish"_s;
    QTest::newRow("comment") << u"Update StockList set StockAvailable = 3; -- more"_s;
    QTest::newRow("NUL") << u"Update StockList set StockAvailable = 3"_s + QChar(u'\0') + u" where StockID = '1'"_s;
    QTest::newRow("NUL at the end") << u"Update StockList set StockAvailable = 3"_s + QChar(u'\0');
}

void TestSqliteConnection::refusesMoreThanOneStatement()
{
    QFETCH(QString, statement);
    QVERIFY(!connection().Execute(statement));
    QCOMPARE(m_store->column(u"select StockAvailable from StockList"_s), QStringList({u"10"_s, u"10"_s}));
    QCOMPARE(m_store->failures.size(), 1u);
    QCOMPARE(m_store->failures[0].statement, statement);
    QCOMPARE(m_store->failures[0].engineCode, 0);
    statement.replace(u"Update StockList set StockAvailable = 3"_s, u"Select * from StockList"_s);
    QVERIFY(!connection().query(statement));
    QVERIFY(!connection().countRows(statement));
    QVERIFY(!connection().rowIds(statement));
    QCOMPARE(m_store->failures.size(), 4u);
}

void TestSqliteConnection::executesChangesOnly_data()
{
    QTest::addColumn<QString>("statement");
    for (const char *statement :
         {"Select * from StockList", "with x as (select 1) select * from x", "begin", "commit", "vacuum",
          "drop table Users", "create table T(a)", "pragma user_version = 7", "pragma busy_timeout = 7",
          "explain delete from StockList", "attach ':memory:' as other", "", "  ;", "-- delete from StockList",
          "rubbish", "deleted from StockList"})
        QTest::newRow(statement) << QString::fromLatin1(statement);
}

void TestSqliteConnection::executesChangesOnly()
{
    QFETCH(const QString, statement);
    QVERIFY(!connection().Execute(statement));
    QCOMPARE(m_store->failures.size(), 1u);
    QCOMPARE(m_store->failures[0].kind, DbFailure::Kind::Write);
    QVERIFY(!m_store->failures[0].reason.isEmpty());
    QCOMPARE(m_store->column(u"select count(*) from sqlite_master"_s), QStringList{u"6"_s});
    QVERIFY(hasNothingSet());
    QVERIFY(!m_store->isInTransaction());
}

void TestSqliteConnection::queriesOnlyRead_data()
{
    QTest::addColumn<QString>("statement");
    for (const char *statement :
         {"delete from StockList", "Update StockList set StockAvailable = 3 returning *",
          "insert into Users default values", "with x as (select 1) delete from StockList returning *", "begin",
          "pragma user_version = 7", "pragma user_version", "pragma busy_timeout = 7", "explain select 1", "", ";",
          "rubbish", "select * from Nowhere", "select"})
        QTest::newRow(statement) << QString::fromLatin1(statement);
}

void TestSqliteConnection::queriesOnlyRead()
{
    QFETCH(const QString, statement);
    QVERIFY(!connection().query(statement));
    QVERIFY(!connection().countRows(statement));
    QVERIFY(!connection().rowIds(statement));
    QCOMPARE(m_store->failures.size(), 3u);
    for (const DbFailure &failure : m_store->failures) {
        QCOMPARE(failure.kind, DbFailure::Kind::Read);
        QCOMPARE(failure.statement, statement);
        QVERIFY(!failure.reason.isEmpty());
    }
    QCOMPARE(m_store->column(u"select StockAvailable from StockList"_s), QStringList({u"10"_s, u"10"_s}));
    QVERIFY(hasNothingSet());
}

void TestSqliteConnection::reportsTheEnginesReason()
{
    m_store->run(u"create unique index U on Users(Username); insert into Users(Username) values ('A')"_s);
    QVERIFY(!connection().Execute(u"insert into Users(Username) values ('A')"_s));
    QVERIFY(!connection().insertRow(u"Users"_s, {{u"Username"_s, u"A"_s}}));
    QVERIFY(!connection().insertRow(u"Nowhere"_s, {}));
    QVERIFY(!connection().updateRow(u"Nowhere"_s, 1, {{u"a"_s, {}}}));
    QCOMPARE(m_store->failures.size(), 4u);
    QCOMPARE(m_store->failures[0].engineCode, SQLITE_CONSTRAINT_UNIQUE);
    QCOMPARE(m_store->failures[0].reason, u"UNIQUE constraint failed: Users.Username"_s);
    QCOMPARE(m_store->failures[1].engineCode, SQLITE_CONSTRAINT_UNIQUE);
    QCOMPARE(m_store->failures[1].statement, u"INSERT Users"_s);
    QCOMPARE(m_store->failures[2].reason, u"no such table: Nowhere"_s);
    QCOMPARE(m_store->failures[3].statement, u"UPDATE Nowhere"_s);
    QCOMPARE(m_store->failures[3].kind, DbFailure::Kind::Write);
}

void TestSqliteConnection::nullHandleFailsQuietly()
{
    const auto none = std::make_shared<SqliteConnection>(nullptr);
    std::vector<DbFailure> failures;
    none->setFailureHandler([&failures](const DbFailure &failure) { failures.push_back(failure); });
    QVERIFY(!none->Execute(u"delete from StockList"_s));
    QVERIFY(!none->query(u"Select * from StockList"_s));
    QVERIFY(!none->countRows(u"Select * from StockList"_s));
    QVERIFY(!none->rowIds(u"Select * from StockList"_s));
    QVERIFY(!none->insertRow(u"StockList"_s, {}));
    QVERIFY(!none->updateRow(u"StockList"_s, 1, {{u"StockID"_s, u"1"_s}}));
    QCOMPARE(failures.size(), 6u);
    for (const DbFailure &failure : failures) {
        QCOMPARE(failure.reason, u"there is no open database"_s);
        QCOMPARE(failure.engineCode, 0);
    }
    DbRecordset rows;
    rows.Open(statements::storeSettings(), none);
    QCOMPARE(rows.RecordCount(), 0);
}

void TestSqliteConnection::cursorStaysAtItsEnd()
{
    const std::unique_ptr<DbCursor> cursor = connection().query(u"Select StockID as ID, StockName from StockList"_s);
    QVERIFY(cursor);
    const QStringList names{u"ID"_s, u"StockName"_s}; // which a server gives in small letters
    QCOMPARE(cursor->columnNames().join(u' ').compare(names.join(u' '), nameCase()), 0);
    QCOMPARE(cursor->next(), DbCursor::Step::Row);
    QVERIFY(cursor->value(1) == DbValue(u"TEA"_s));
    QVERIFY(cursor->value(2) == DbValue());
    QVERIFY(cursor->value(-1) == DbValue());
    QCOMPARE(cursor->next(), DbCursor::Step::Row);
    QCOMPARE(cursor->next(), DbCursor::Step::Done);
    QCOMPARE(cursor->next(), DbCursor::Step::Done);
    QVERIFY(cursor->value(0) == DbValue());
}

void TestSqliteConnection::countsRows_data()
{
    QTest::addColumn<QString>("select");
    QTest::addColumn<qint64>("expected");
    QTest::newRow("all") << u"Select * from StockList"_s << static_cast<qint64>(2);
    QTest::newRow("none") << u"Select * from Users"_s << static_cast<qint64>(0);
    QTest::newRow("where") << u"Select * from StockList where StockID = '2'"_s << static_cast<qint64>(1);
    QTest::newRow("ordered") << u"Select * from StockList order by StockName ASC"_s << static_cast<qint64>(2);
    QTest::newRow("limited") << u"Select * from StockList order by StockName ASC  Limit 1, 9"_s
                             << static_cast<qint64>(1);
    QTest::newRow("aggregate") << u"Select count(*) as counts from StockList"_s << static_cast<qint64>(1);
    QTest::newRow("same name twice") << u"Select StockID, StockID from StockList"_s << static_cast<qint64>(2);
    QTest::newRow("semicolon, so stepped") << u"Select * from StockList;"_s << static_cast<qint64>(2);
}

void TestSqliteConnection::countsRows()
{
    QFETCH(const QString, select);
    const std::optional<std::int64_t> count = connection().countRows(select);
    QVERIFY(count.has_value());
    QTEST(static_cast<qint64>(*count), "expected");
    QVERIFY(m_store->failures.empty());
}

void TestSqliteConnection::countsInAnIndexAlone_data()
{
    QTest::addColumn<Statement>("statement");
    QTest::newRow("all") << statements::quickSalesCount(false, statements::allCategories);
    QTest::newRow("category") << statements::quickSalesCount(false, u"FOOD"_s);
    QTest::newRow("available") << statements::quickSalesCount(true, statements::allCategories);
    QTest::newRow("available, category") << statements::quickSalesCount(true, u"FOOD"_s);
    QTest::newRow("low stock") << statements::lowStock();
}

/// Neither the order of the rows nor their columns may cost anything while they are only counted.
void TestSqliteConnection::countsInAnIndexAlone()
{
    QFETCH(const Statement, statement);
    m_store->run(u"create index I on StockList(StockUse, StockCategory, StockAvailable, StockReorderLevel)"_s);
    QString plan;
    sqlite3_trace_v2(
        m_store->handle(), SQLITE_TRACE_STMT,
        [](unsigned, void *text, void *, void *sql) {
            *static_cast<QString *>(text) = QString::fromUtf8(static_cast<const char *>(sql));
            return 0;
        },
        &plan);
    const std::optional<std::int64_t> count = connection().countRows(statement.sql());
    sqlite3_trace_v2(m_store->handle(), 0, nullptr, nullptr);
    QCOMPARE(count, std::optional<std::int64_t>(statement.sql() == statements::lowStock().sql() ? 0 : 2));

    sqlite3_stmt *explained = nullptr;
    const QByteArray explain = "explain query plan " + plan.toUtf8();
    QCOMPARE(sqlite3_prepare_v2(m_store->handle(), explain.constData(), -1, &explained, nullptr), SQLITE_OK);
    QStringList steps;
    while (sqlite3_step(explained) == SQLITE_ROW)
        steps.append(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(explained, 3))));
    sqlite3_finalize(explained);
    QCOMPARE(steps.size(), 1);
    QVERIFY2(steps[0].contains(u"COVERING INDEX"), qPrintable(steps[0]));
}

void TestSqliteConnection::tellsIdentities()
{
    m_store->run(u"update StockList set rowid = rowid + 100"_s);
    QVERIFY(connection().rowIds(u"Select * from StockList"_s) == std::vector<DbRowId>({101, 102}));
    QVERIFY(connection().rowIds(u"SELECT * from StockList order by StockName"_s) == std::vector<DbRowId>({102, 101}));
    QVERIFY(connection().rowIds(u"Select * from Users"_s) == std::vector<DbRowId>());
    QVERIFY(m_store->failures.empty());
}

void TestSqliteConnection::tellsNoIdentities_data()
{
    QTest::addColumn<QString>("select");
    QTest::newRow("named columns") << u"Select StockID from StockList"_s;
    QTest::newRow("aggregate") << u"Select count(*) from StockList"_s;
    QTest::newRow("view") << u"Select * from V"_s;
    QTest::newRow("without identity") << u"Select * from W"_s;
    QTest::newRow("names taken") << u"Select * from T"_s;
    QTest::newRow("missing") << u"Select * from Nowhere"_s;
}

void TestSqliteConnection::tellsNoIdentities()
{
    QFETCH(const QString, select);
    m_store->run(u"create view V as select * from StockList; create table W(a primary key) without rowid; "
                 "insert into W values (1); create table T(rowid text, oid text, _rowid_ text); "
                 "insert into T values (1, 2, 3)"_s);
    QVERIFY(!connection().rowIds(select));
    QCOMPARE(m_store->failures.size(), 1u);
    QCOMPARE(m_store->failures[0].kind, DbFailure::Kind::Read);
}

void TestSqliteConnection::closesWhileConnectionLives()
{
    DbRecordset rows;
    rows.Open(Statement("Select * from StockList"), m_store->connection(), DbRecordset::Access::Edit);
    rows.Field(u"StockName"_s).assign(u"COFFEE"_s);
    rows.Update();
    QVERIFY(connection().Execute(u"delete from Users"_s));
    QVERIFY(connection().countRows(u"Select * from StockList"_s));
    QVERIFY(connection().Execute(u"delete from StockList returning *"_s));
    QCOMPARE(m_store->close(), SQLITE_OK);
}

void TestSqliteConnection::lockedFileFailsQuietly()
{
    sqlite3 *other = nullptr;
    QCOMPARE(sqlite3_open(m_store->file().toUtf8().constData(), &other), SQLITE_OK);
    QCOMPARE(sqlite3_exec(other, "begin exclusive", nullptr, nullptr, nullptr), SQLITE_OK);
    DbRecordset rows;
    rows.Open(Statement("Select * from StockList"), m_store->connection());
    QCOMPARE(rows.RecordCount(), 0);
    QVERIFY(!connection().Execute(u"delete from StockList"_s));
    QVERIFY(!connection().countRows(u"Select * from StockList"_s));
    QVERIFY(!connection().insertRow(u"StockList"_s, {}));
    QCOMPARE(m_store->failures.size(), 4u);
    for (const DbFailure &failure : m_store->failures) {
        QCOMPARE(failure.engineCode & 0xff, SQLITE_BUSY);
        QCOMPARE(failure.reason, u"database is locked"_s);
    }
    sqlite3_close(other);
    rows.Open(Statement("Select * from StockList"), m_store->connection());
    QCOMPARE(rows.RecordCount(), 2);
    QVERIFY(connection().Execute(u"delete from StockList"_s));
}

void TestSqliteConnection::readOnlyFileFailsQuietly()
{
    sqlite3 *reader = nullptr;
    QCOMPARE(sqlite3_open_v2(m_store->file().toUtf8().constData(), &reader, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
    const auto readOnly = std::make_shared<SqliteConnection>(reader);
    int code = 0;
    readOnly->setFailureHandler([&code](const DbFailure &failure) { code = failure.engineCode; });
    QVERIFY(!Execute(readOnly, statements::lowerStock(1, u"1"_s, u"TEA"_s)));
    QCOMPARE(code & 0xff, SQLITE_READONLY);
    DbRecordset rows;
    rows.Open(statements::stockById(u"1"_s), readOnly, DbRecordset::Access::Edit);
    QCOMPARE(rows.Field(u"StockAvailable"_s).number(), 10.0);
    code = 0;
    rows.Field(u"StockAvailable"_s).assign(static_cast<std::int64_t>(1));
    rows.Update();
    QCOMPARE(code & 0xff, SQLITE_READONLY);
    QCOMPARE(rows.Field(u"StockAvailable"_s).number(), 10.0);
    QCOMPARE(sqlite3_close(reader), SQLITE_OK);
}

void TestSqliteConnection::damagedTextIsRead()
{
    m_store->run(u"update StockList set StockName = cast(x'41ff42' as text) where StockID = '1'"_s);
    DbRecordset rows;
    rows.Open(statements::stockById(u"1"_s), m_store->connection());
    QCOMPARE(rows.Field(u"StockName"_s).text(), u"A\ufffdB"_s);
}

HARROWBY_CORE_TEST(sqlite_connection_test, TestSqliteConnection)
#include "sqlite_connection_test.moc"
