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

/// The recordset over a real file.
class TestRecordsetSqlite : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void keepsEveryKindOfValue();
    void keepsLongAndForeignTexts_data();
    void keepsLongAndForeignTexts();
    void changesOneOfTwoEqualRows();
    void changesRowsAmongMany();
    void changesInTheOrderOfTheStatement();
    void changesOnlyAssignedColumns();
    void changesRowsOfIdentityNamedColumns();
    void addsToEmptyTable();
    void addsRowOfDefaults();
    void addsTextsWithQuotes();
    void addsWhatTheSelectCouldNotFind();
    void tableWithoutIdentity();
    void unknownColumnIsSkippedAlone();
    void writesWhileManyRowsAreOpen();
    void readsLongResultInOneState();
    void hostMayDropTheTable();
    void hostMayChangeTheTable();

private:
    [[nodiscard]] DbRecordset &open(const Statement &select, Access access = Access::Edit);

    std::unique_ptr<ScratchStore> m_store;
    std::unique_ptr<DbRecordset> m_rows;
};

void TestRecordsetSqlite::init()
{
    m_store = std::make_unique<ScratchStore>();
}

void TestRecordsetSqlite::cleanup()
{
    m_rows.reset();
    QCOMPARE(m_store->close(), SQLITE_OK);
    m_store.reset();
}

DbRecordset &TestRecordsetSqlite::open(const Statement &select, Access access)
{
    m_rows = std::make_unique<DbRecordset>();
    m_rows->Open(select, m_store->connection(), access);
    return *m_rows;
}

void TestRecordsetSqlite::keepsEveryKindOfValue()
{
    m_store->run(u"create table T(n, i, r, t, b, e, zero)"_s);
    m_store->run(u"insert into T values (null, -9223372036854775808, 5.0, 'tea', x'00ff27', x'', "
                 "cast(x'610062' as text))"_s);
    for (const Access access : {Access::Read, Access::Edit}) {
        DbRecordset &rows = open(Statement("Select * from T"), access);
        QCOMPARE(rows.RecordCount(), 1);
        QVERIFY(rows.Field(u"N"_s).value() == DbValue());
        QCOMPARE(rows.Field(u"n"_s).text(u"x"_s), QString());
        QCOMPARE(rows.Field(u"n"_s).number(9), 0.0);
        QVERIFY(rows.Field(u"I"_s).value() == DbValue(std::numeric_limits<std::int64_t>::min()));
        QVERIFY(rows.Field(u"R"_s).value() == DbValue(5.0));
        QCOMPARE(rows.Field(u"r"_s).text(), u"5"_s);
        QVERIFY(rows.Field(u"T"_s).value() == DbValue(u"tea"_s));
        QVERIFY(rows.Field(u"B"_s).value() == DbValue(QByteArray("\x00\xff\x27", 3)));
        QVERIFY(rows.Field(u"E"_s).value() == DbValue(QByteArray()));
        QVERIFY(rows.Field(u"ZERO"_s).value() == DbValue(u"a\0b"_s));
    }
    DbRecordset &rows = open(Statement("Select * from T"));
    for (const QString &column : {u"n"_s, u"i"_s, u"r"_s, u"t"_s, u"b"_s, u"e"_s, u"zero"_s})
        rows.Field(column).assign(*rows.Field(column).value());
    rows.Update();
    QCOMPARE(m_store->column(u"select quote(n)||quote(i)||quote(r)||quote(t)||quote(b)||quote(e)||hex(zero) from T"_s),
             QStringList{u"NULL-92233720368547758085.0'tea'X'00FF27'X''610062"_s});
    QVERIFY(m_store->failures.empty());
}

void TestRecordsetSqlite::keepsLongAndForeignTexts_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("long") << QString(test::shopsAreOnAServer() ? 1'300 : 10'000, u'é'); // an index there holds no more
    QTest::newRow("emoji") << u"\U0001F468\u200D\U0001F469\u200D\U0001F467 pie"_s;
    QTest::newRow("right-to-left") << u"\u202b\u05ea\u05e4\u05d5\u05d7 \u062a\u0641\u0627\u062d\u202c"_s;
    QTest::newRow("markup") << u"<b>M & M</b> \"x\" `y` \\"_s;
    QTest::newRow("line breaks") << u"a\r\nb\tc"_s;
    QTest::newRow("empty") << u""_s;
}

void TestRecordsetSqlite::keepsLongAndForeignTexts()
{
    QFETCH(const QString, name);
    DbRecordset &rows = open(statements::stockById(u"1"_s));
    rows.AddNew();
    rows.Field(u"StockID"_s).assign(u"1"_s);
    rows.Field(u"StockName"_s).assign(name);
    rows.Update();
    DbRecordset &found = open(Statement("Select * from StockList where StockName = ").text(name));
    QCOMPARE(found.RecordCount(), 1);
    QCOMPARE(found.Field(u"stockname"_s).text(u"?"_s), name);
    QVERIFY(m_store->failures.empty());
}

void TestRecordsetSqlite::changesOneOfTwoEqualRows()
{
    for (int i = 0; i < 3; ++i)
        m_store->addItem(u"1"_s, u"TEA"_s, 5);
    DbRecordset &rows = open(statements::stockById(u"1"_s));
    QCOMPARE(rows.RecordCount(), 3);
    rows.MoveNext();
    rows.Field(u"StockAvailable"_s).assign(static_cast<std::int64_t>(6));
    rows.Update();
    QCOMPARE(m_store->column(u"select StockAvailable from StockList order by rowid"_s),
             QStringList({u"5"_s, u"6"_s, u"5"_s}));
    QVERIFY(m_store->failures.empty());
}

void TestRecordsetSqlite::changesRowsAmongMany()
{
    m_store->run(u"begin"_s);
    for (int i = 0; i < 200; ++i)
        m_store->addItem(QString::number(i), u"TEA"_s, i);
    m_store->run(u"commit"_s);
    DbRecordset &rows = open(Statement("Select * from StockList"));
    const std::int32_t count = rows.RecordCount();
    QCOMPARE(count, 200);
    for (std::int32_t i = 1; i <= count; ++i) {
        rows.Field(u"StockAvailable"_s).assign(rows.Field(u"StockAvailable"_s).number() + 1000);
        rows.Update();
        if (!rows.IsEof())
            rows.MoveNext();
    }
    QCOMPARE(
        m_store->column(u"select count(*) from StockList where StockAvailable = 1000 + cast(StockID as numeric)"_s),
        QStringList{u"200"_s});
}

void TestRecordsetSqlite::changesInTheOrderOfTheStatement()
{
    // An index that holds the name alone must not decide in which order the identities come.
    m_store->run(u"create index ByUse on StockList(StockUse, StockName)"_s);
    for (const QString &name : {u"C"_s, u"A"_s, u"B"_s})
        m_store->addItem(name, name);
    for (const Statement &select :
         {statements::quickSalesCount(false, statements::allCategories), statements::lowStock(),
          Statement("Select * from StockList"), Statement("select * from StockList where StockUse = 'Enabled'")}) {
        m_store->run(u"update StockList set StockAvailable = 0, StockAdded = null"_s);
        DbRecordset &rows = open(select);
        QCOMPARE(rows.RecordCount(), 3);
        for (; !rows.IsEof(); rows.MoveNext()) {
            rows.Field(u"StockAdded"_s).assign(rows.Field(u"StockID"_s).text());
            rows.Update();
        }
        QCOMPARE(m_store->column(u"select count(*) from StockList where StockAdded = StockID"_s), QStringList{u"3"_s});
    }
}

void TestRecordsetSqlite::changesOnlyAssignedColumns()
{
    m_store->addItem(u"1"_s, u"TEA"_s, 5);
    DbRecordset &rows = open(statements::stockById(u"1"_s));
    m_store->run(u"update StockList set StockAvailable = 77, StockName = 'COFFEE'"_s);
    rows.Field(u"STOCKREORDERUSER"_s).assign(u"MARY"_s);
    rows.Update();
    QCOMPARE(m_store->column(u"select StockName || StockAvailable || StockReorderUser from StockList"_s),
             QStringList{u"COFFEE77MARY"_s});
    QCOMPARE(rows.Field(u"StockReorderUser"_s).text(), u"MARY"_s);
    QCOMPARE(rows.Field(u"StockAvailable"_s).text(), u"5"_s);
}

void TestRecordsetSqlite::changesRowsOfIdentityNamedColumns()
{
    m_store->run(u"create table One(_ROWID_ text, v); insert into One values ('x', 1), ('x', 2)"_s);
    m_store->run(
        u"create table Two(_rowid_ text, rowid text, v); insert into Two values ('x', 'y', 1), ('x', 'y', 2)"_s);
    m_store->run(u"create table Key(id integer primary key, v); insert into Key values (7, 1), (9, 2)"_s);
    m_store->run(u"create table \"od\"\"d\"(\"a b\"\"c\", v); insert into \"od\"\"d\" values (1, 1), (1, 2)"_s);
    for (const Statement &select :
         {Statement("Select * from One"), Statement("Select * from Two"), Statement("Select * from Key")}) {
        DbRecordset &rows = open(select);
        rows.MoveNext();
        rows.Field(u"V"_s).assign(u"new"_s);
        rows.Update();
        QCOMPARE(m_store->column(u"select v from "_s + select.table() + u" order by v = 'new'"_s),
                 QStringList({u"1"_s, u"new"_s}));
    }
    QVERIFY(m_store->connection()->updateRow(u"od\"d"_s, 2, {{u"a b\"c"_s, u"new"_s}}));
    QCOMPARE(m_store->column(u"select \"a b\"\"c\" from \"od\"\"d\""_s), QStringList({u"1"_s, u"new"_s}));
    QVERIFY(m_store->failures.empty());

    m_store->run(u"create table Three(_rowid_ text, rowid text, oid text, v); insert into Three values (1, 1, 1, 1)"_s);
    DbRecordset &rows = open(Statement("Select * from Three"));
    QCOMPARE(rows.RecordCount(), 1);
    rows.Field(u"v"_s).assign(u"new"_s);
    rows.Update();
    QCOMPARE(m_store->column(u"select v from Three"_s), QStringList{u"1"_s});
    QVERIFY(!m_store->failures.empty());
}

void TestRecordsetSqlite::addsToEmptyTable()
{
    DbRecordset &rows = open(statements::storeSettings());
    QCOMPARE(rows.RecordCount(), 0);
    rows.AddNew();
    rows.Field(u"EmailAddress"_s).assign(u"shop@example.org"_s);
    rows.Field(u"Email"_s).assign(static_cast<std::int64_t>(0));
    rows.Field(u"ShowDetails"_s).assign(static_cast<std::int64_t>(1));
    rows.Update();
    QCOMPARE(m_store->column(
                 u"select Email || EmailAddress || ShowDetails from StoreSettings where AutoPurchaseCart is null"_s),
             QStringList{u"0shop@example.org1"_s});
    QCOMPARE(rows.Field(u"showdetails"_s).number(), 1.0);
}

void TestRecordsetSqlite::addsRowOfDefaults()
{
    m_store->run(u"create table T(a default 'x', b)"_s);
    DbRecordset &rows = open(Statement("Select * from T"));
    rows.AddNew();
    rows.Update();
    QCOMPARE(m_store->column(u"select a || (b is null) from T"_s), QStringList{u"x1"_s});
}

void TestRecordsetSqlite::addsTextsWithQuotes()
{
    DbRecordset &rows = open(statements::purchase(u"HV1"_s));
    rows.AddNew();
    rows.Field(u"PurchasedItems"_s).assign(u"1 x 1  |  O'Neill's ''x' = 1,250.00"_s);
    rows.Field(u"PurchasedItemsCost"_s).assign(99.99);
    rows.Update();
    QCOMPARE(m_store->column(u"select PurchasedItems || ' ' || PurchasedItemsCost from PurchaseCart"_s),
             QStringList{u"1 x 1  |  O'Neill's ''x' = 1,250.00 99.99"_s});
}

void TestRecordsetSqlite::addsWhatTheSelectCouldNotFind()
{
    DbRecordset &rows = open(statements::stockById(u"5' x"_s));
    QCOMPARE(rows.RecordCount(), 0);
    rows.AddNew();
    rows.Field(u"StockID"_s).assign(u"5' x"_s);
    rows.Update();
    QCOMPARE(m_store->column(u"select StockID from StockList"_s), QStringList{u"5' x"_s});
    QCOMPARE(m_store->failures.size(), 1u);
}

void TestRecordsetSqlite::tableWithoutIdentity()
{
    m_store->run(u"create table T(k text primary key, v) without rowid; insert into T values ('a', 1), ('b', 2)"_s);
    m_store->run(u"create view V as select * from T"_s);
    for (const Statement &select : {Statement("Select * from T"), Statement("Select * from V")}) {
        m_store->failures.clear();
        DbRecordset &rows = open(select);
        QCOMPARE(rows.RecordCount(), 2);
        QCOMPARE(rows.Field(u"k"_s).text(), u"a"_s);
        QCOMPARE(m_store->failures.size(), 1u);
        rows.Field(u"v"_s).assign(u"new"_s);
        rows.Update();
        QCOMPARE(m_store->failures.size(), 2u);
        QCOMPARE(m_store->failures.back().kind, DbFailure::Kind::Write);
        QCOMPARE(rows.Field(u"v"_s).text(), u"1"_s);
    }
    QCOMPARE(m_store->column(u"select v from T"_s), QStringList({u"1"_s, u"2"_s}));
    DbRecordset &rows = open(Statement("Select * from T"));
    rows.AddNew();
    rows.Field(u"k"_s).assign(u"c"_s);
    rows.Update();
    QCOMPARE(m_store->column(u"select count(*) from T"_s), QStringList{u"3"_s});
}

void TestRecordsetSqlite::unknownColumnIsSkippedAlone()
{
    m_store->addItem(u"1"_s, u"TEA"_s, 5);
    DbRecordset &rows = open(statements::stockById(u"1"_s));
    rows.Field(u"StockName"_s).assign(u"COFFEE"_s);
    rows.Field(u"StockColour"_s).assign(u"red"_s);
    rows.Update();
    QCOMPARE(m_store->failures.size(), 1u);
    QCOMPARE(m_store->failures[0].statement, u"UPDATE StockList"_s);
    QVERIFY(m_store->failures[0].reason.contains(u"StockColour"_s));
    QCOMPARE(rows.Field(u"StockName"_s).text(), u"COFFEE"_s);
    rows.AddNew();
    rows.Field(u"StockColour"_s).assign(u"red"_s);
    rows.Field(u"StockName"_s).assign(u"JAM"_s);
    rows.Update();
    QCOMPARE(m_store->failures.size(), 2u);
    QCOMPARE(m_store->failures[1].statement, u"INSERT StockList"_s);
    QCOMPARE(m_store->column(u"select StockName from StockList"_s), (QStringList{u"COFFEE"_s, u"JAM"_s}));
}

void TestRecordsetSqlite::writesWhileManyRowsAreOpen()
{
    // A cursor left open would hold its snapshot, and the second of these writes would fail.
    m_store->run(u"pragma journal_mode = wal"_s);
    for (int i = 0; i < 100; ++i)
        m_store->addItem(QString::number(i), u"TEA"_s);
    DbRecordset &rows = open(Statement("Select * from StockList"), Access::Read);
    QCOMPARE(rows.RecordCount(), 100);
    QVERIFY(rows.Field(u"StockID"_s).value());
    test::Database other(m_store->file());
    QVERIFY(other.run(u"update StockList set StockAvailable = 1"_s));
    QVERIFY(Execute(m_store->connection(), statements::lowerStock(1, u"5"_s, u"TEA"_s)));
    if (!test::shopsAreOnAServer()) { // nothing is in the way of a checkpoint
        QVERIFY(other.run(u"pragma wal_checkpoint(truncate)"_s));
        QCOMPARE(m_store->column(u"pragma wal_checkpoint(truncate)"_s), QStringList{u"0"_s});
    }
    QCOMPARE(m_store->column(u"select StockAvailable from StockList where StockID = '5'"_s), QStringList{u"0"_s});
    QVERIFY(m_store->failures.empty());
}

void TestRecordsetSqlite::readsLongResultInOneState()
{
    for (int i = 0; i < 100; ++i)
        m_store->addItem(QString::number(i), u"TEA"_s);
    DbRecordset &rows = open(Statement("Select * from StockList"), Access::Read);
    const std::int32_t count = rows.RecordCount();
    QStringList ids;
    for (std::int32_t i = 1; i <= count; ++i) {
        ids.append(rows.Field(u"StockID"_s).text());
        m_store->run(u"delete from StockList where StockID = '%1'"_s.arg(i - 1));
        if (!rows.IsEof())
            rows.MoveNext();
    }
    QCOMPARE(ids.size(), 100);
    for (int i = 0; i < 100; ++i)
        QCOMPARE(ids[i], QString::number(i));
}

void TestRecordsetSqlite::hostMayDropTheTable()
{
    for (int i = 0; i < 100; ++i)
        m_store->addItem(QString::number(i), u"TEA"_s);
    DbRecordset &rows = open(Statement("Select * from StockList"), Access::Read);
    QCOMPARE(rows.RecordCount(), 100);
    QVERIFY(m_store->run(u"drop table StockList"_s));
    QVERIFY(!rows.Field(u"StockID"_s).value());
    QVERIFY(rows.IsEof());
    rows.MoveNext();
    rows.AddNew();
    rows.Field(u"StockID"_s).assign(u"1"_s);
    rows.Update();
    QCOMPARE(m_store->failures.size(), 2u);
    QVERIFY(m_store->failures[0].reason.contains(u"StockList"_s, Qt::CaseInsensitive));
    QCOMPARE(rows.RecordCount(), 100);
}

void TestRecordsetSqlite::hostMayChangeTheTable()
{
    for (int i = 0; i < 100; ++i)
        m_store->addItem(QString::number(i), u"TEA"_s);
    DbRecordset &rows = open(Statement("Select * from StockList"), Access::Read);
    QVERIFY(m_store->run(u"alter table StockList drop column StockCategory"_s));
    QVERIFY(m_store->run(u"alter table StockList add column Extra text default 'x'"_s));
    QVERIFY(!rows.Field(u"StockCategory"_s).value());
    QCOMPARE(rows.Field(u"EXTRA"_s).text(), u"x"_s);
    QCOMPARE(rows.Field(u"StockID"_s).text(), u"0"_s);
}

HARROWBY_CORE_TEST(recordset_sqlite_test, TestRecordsetSqlite)
#include "recordset_sqlite_test.moc"
