// SPDX-License-Identifier: MIT
#include "postgres/dialect.h"

#include "store/statement_texts.h"
#include "tests/program/test_program.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

using namespace harrowby;
using namespace harrowby::postgres;
using namespace Qt::StringLiterals;

class TestDialect : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void select_data();
    void select();
    void count_data();
    void count();
    void change_data();
    void change();
    void search();
    void whatIsASearch();
    void values();
    void literalsStay();
    void refusal_data();
    void refusal();
    void orderOfTheFile_data();
    void orderOfTheFile();
};

namespace {

QString told(const ServerText &text)
{
    return text ? *text : u"refused: "_s + text.error();
}

QSet<QString> literalsOf(const QString &text)
{
    static const QRegularExpression literal(u"'(?:[^']|'')*'"_s);
    QSet<QString> found;
    for (auto matches = literal.globalMatch(text); matches.hasNext();)
        found.insert(matches.next().captured());
    return found;
}

void addTexts(std::initializer_list<std::array<const char *, 3>> rows)
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    for (const auto &[name, text, expected] : rows)
        QTest::newRow(name) << QString::fromUtf8(text) << QString::fromUtf8(expected);
}

} // namespace

void TestDialect::select_data()
{
    addTexts({
        {"nothing to do", "Select 1", "Select 1"},
        {"limit", "Select x from t order by x Limit 18, 9", "Select x from t order by x nulls first Limit 9 Offset 18"},
        {"limit, one line each", "Select x from t Limit\n 1 ,\t2", "Select x from t Limit\n 2 Offset 1"},
        {"limit with offset", "Select x from t limit 9 offset 18", "Select x from t limit 9 Offset 18"},
        {"limit alone", "Select x from t limit 9", "Select x from t limit 9"},
        {"limit of parameters", "Select x from t limit ?2, ?1", "Select x from t limit ?1 Offset ?2"},
        {"limit below 0", "Select x from t limit -9, -1", "Select x from t limit all Offset 0"},
        {"limit in a literal", "Select 'Limit 1, 2'", "Select 'Limit 1, 2'"},
        {"limit in a quoted quote", "Select 'it''s Limit 1, 2 ;'", "Select 'it''s Limit 1, 2 ;'"},
        {"limit within", "Select x from (select y from u limit 1, 2) v",
         "Select x from (select y from u limit 2 Offset 1) v"},
        {"derived table", "SELECT count(*) FROM (SELECT 1 FROM t LIMIT 7)",
         "SELECT count(*) FROM (SELECT 1 FROM t LIMIT 7) as derived_6"},
        {"derived table with a name", "SELECT x FROM (SELECT 1) as a", "SELECT x FROM (SELECT 1) as a"},
        {"derived table before a clause", "SELECT x FROM (SELECT 1) where x = 1",
         "SELECT x FROM (SELECT 1) as derived_3 where x = 1"},
        {"subselect", "SELECT (select 1) FROM t", "SELECT (select 1) FROM t"},
        {"quoted names", "Select \"StockID\", [Stock Name], `x\"y` from \"Some\"",
         "Select \"stockid\", \"stock name\", \"x\"\"y\" from \"some\""},
        {"comments", "Select 1 -- Limit 1, 2\n, 2 /* ; */, 3", "Select 1               , 2        , 3"},
        {"comment within a limit", "Select x from t limit 1 /* ' */, -- '\n 2", "Select x from t limit 2 Offset 1"},
        {"comment at the end", "Select 1 -- no more", "Select 1"},
        {"semicolon at the end", "Select 1 ; ; ", "Select 1"},
        {"backslash", "Select 'a\\', 'b'", "Select 'a\\', 'b'"},
        {"escape", "Select upper(x) like 'a\\%%' escape '\\' or y like ? escape '\\'",
         "Select upper(x) ~~~ 'a\\%%'  or y ~~~ ? "},
        {"other escape", "Select x like 'a' escape '!'", "Select x like 'a' escape '!'"},
        {"nulls", "Select x from t order by lower(x, y) desc, y ASC, 3",
         "Select x from t order by lower(x, y) desc nulls last, y ASC nulls first, 3 nulls first"},
        {"nulls as they are", "Select x from t order by x nulls last", "Select x from t order by x nulls last"},
        {"groups", "SELECT substr(d,1,6), count(*) FROM t GROUP BY substr(d,1,6), u",
         "SELECT substr(d,1,6), count(*) FROM t GROUP BY substr(d,1,6), u order by substr(d,1,6) nulls first, u nulls "
         "first"},
        {"alphabets", "Select 'Überß' as ü from größe", "Select 'Überß' as ü from größe"},
    });
}

void TestDialect::select()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(told(selectText(text)), expected);
}

void TestDialect::count_data()
{
    addTexts({
        {"rows", "Select * from StockList", "Select count(*) from (Select * from StockList) as counted"},
        {"ordered", "Select * from Stocklist where StockUse = 'Enabled' order by StockName ASC",
         "Select count(*) from (Select * from Stocklist where StockUse = 'Enabled') as counted"},
        {"page", "Select * from Stocklist order by StockName ASC  Limit 9, 9",
         "Select count(*) from (Select * from Stocklist Limit 9 Offset 9) as counted"},
        {"semicolon", "Select * from StockList;", "Select count(*) from (Select * from StockList) as counted"},
        {"comment", "Select * from StockList -- all", "Select count(*) from (Select * from StockList) as counted"},
    });
}

void TestDialect::count()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(told(countText(text)), expected);
}

void TestDialect::change_data()
{
    addTexts({
        {"update", "Update StockList Set StockAvailable = StockAvailable + 3 where StockID = 'A'",
         "Update StockList Set StockAvailable = StockAvailable + 3 where StockID = 'A'"},
        {"insert", "INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('Limit 1, 2','t','d');",
         "INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('Limit 1, 2','t','d')"},
        {"delete", "Delete from StockList where Upper(StockID) = 'A'",
         "Delete from StockList where Upper(StockID) = 'A'"},
        {"with", "with x as (select 1) delete from t where a in (select * from x)",
         "with x as (select 1) delete from t where a in (select * from x)"},
        {"quoted names", "update \"StockList\" set \"StockID\" = 'x'", "update \"stocklist\" set \"stockid\" = 'x'"},
    });
}

void TestDialect::change()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(told(changeText(text)), expected);
}

void TestDialect::search()
{
    const QString till = statements::searchStock(u"A%_\\B C"_s).sql();
    QCOMPARE(told(selectText(till)), till + u" order by rowid_"_s);
    QCOMPARE(told(selectText(till, Search::Anywhere)),
             u"Select StockID, StockName, StockCategory from StockList where harrowby_finds('A%_\\B C', StockID) or "
             "harrowby_finds('A%_\\B C', StockName)  and StockUse = 'Enabled' order by rowid_"_s);
    QCOMPARE(told(countText(till, Search::Anywhere)),
             u"Select count(*) from (Select StockID, StockName, StockCategory from StockList where "
             "harrowby_finds('A%_\\B C', StockID) or harrowby_finds('A%_\\B C', StockName)  and StockUse = 'Enabled') "
             "as counted"_s);
    QCOMPARE(told(selectText(u"Select 1 where upper([a\"B]) like '*a*'"_s, Search::Anywhere)),
             u"Select 1 where harrowby_finds('a', \"a\"\"b\")"_s);
    const QString empty = statements::searchStock({}).sql();
    QVERIFY(told(selectText(empty, Search::Anywhere)).contains(u"harrowby_finds('', StockID)"_s));
    const QString ids = statements::automaticIdCount(u"ABC"_s).sql();
    QCOMPARE(told(selectText(ids, Search::Anywhere)), ids);
}

void TestDialect::whatIsASearch()
{
    using namespace statements;
    QVERIFY(searches(searchStock(u"A"_s).sql()));
    QVERIFY(searches(searchStock({}).sql()));
    QVERIFY(searches(u"Select 1 where upper([a]) like '*a*'"_s));
    QVERIFY(!searches(stockById(u"upper(a) like '*a*'"_s).sql()));
    QVERIFY(!searches(automaticIdCount(u"ABC"_s).sql()));
    QVERIFY(!searches(u"Select 'like"_s));
}

void TestDialect::values()
{
    const QString it = u"it's ?"_s;
    QCOMPARE(
        told(withValues(u"Select '?', x -? from t where a = ? limit ?"_s, {std::int64_t{-5}, it, std::int64_t{3}})),
        u"Select '?', x -(-5) from t where a = 'it''s ?' limit 3"_s);
    QCOMPARE(told(withValues(u"Select ?2, ?1, ?2"_s, {DbValue(), 0.5})), u"Select 0.5, null, 0.5"_s);
    QCOMPARE(told(withValues(u"Select ?, ?"_s, {it})), u"refused: the statement lacks a value"_s);
    QCOMPARE(told(withValues(u"Select ?"_s, {it, it})), u"refused: the statement has a value too many"_s);
    QCOMPARE(told(withValues(u"Select ?0"_s, {it})), u"refused: the statement lacks a value"_s);
    QCOMPARE(told(withValues(u"Select 1; Select ?"_s, {it})),
             u"refused: there is more than one statement in the text"_s);
}

/// Whatever the words are, and wherever they stand.
void TestDialect::literalsStay()
{
    const QStringList words{u"select"_s,  u"*"_s,      u"from"_s, u"StockList"_s, u"where"_s, u"("_s,     u")"_s,
                            u"limit"_s,   u"9"_s,      u","_s,    u"offset"_s,    u"order"_s, u"by"_s,    u"group"_s,
                            u"desc"_s,    u"upper"_s,  u"like"_s, u"escape"_s,    u"'\\'"_s,  u"'*a*'"_s, u"\"x\""_s,
                            u"and"_s,     u"or"_s,     u"="_s,    u"between"_s,   u"-"_s,     u"?"_s,     u"update"_s,
                            u"set"_s,     u"insert"_s, u"into"_s, u"values"_s,    u"count"_s, u"nulls"_s, u"/* ' */"_s,
                            u"'it''s'"_s, u"'%1 %2'"_s};
    QRandomGenerator random(3);
    const QStringList heads{u"select"_s, u"update StockList set"_s, u"insert into StockList ("_s};
    for (int i = 0; i < 20'000; ++i) {
        QStringList text{heads.at(random.bounded(heads.size()))};
        for (int count = random.bounded(14); count > 0; --count)
            text << words.at(random.bounded(words.size()));
        const QString statement = text.join(u' ');
        const bool isSelect = text.front() == heads.front();
        const auto sent = isSelect ? selectText(statement) : changeText(statement);
        static_cast<void>(countText(statement, Search::Anywhere));
        if (!sent)
            continue;
        const auto given = literalsOf(QString(statement).remove(u"/* ' */"_s));
        const auto lost = given - literalsOf(*sent);
        QVERIFY2(given.contains(literalsOf(*sent)) && (lost.isEmpty() || lost == QSet<QString>{u"'\\'"_s}),
                 qPrintable(statement + u'\n' + *sent));
    }
}

void TestDialect::refusal_data()
{
    addTexts({
        {"two", "Select 1; Select 2", "there is more than one statement in the text"},
        {"two changes", "Delete from t;drop table t", "there is more than one statement in the text"},
        {"no SELECT", "Delete from t", "the statement is no SELECT"},
        {"nothing", "", "the statement is no SELECT"},
        {"blanks", " ; ", "the statement is no SELECT"},
        {"comment behind the end", "Select 1; -- more", "there is more than one statement in the text"},
        {"no value", "select", "the statement is no SELECT"},
        {"no column", "select from t", "the statement is no SELECT"},
        {"change within", "with x as (select 1) delete from StockList returning *", "the statement is no SELECT"},
        {"change in parentheses", "with x as (Update t set a = 1 returning a) select * from x",
         "the statement is no SELECT"},
        {"new table", "select 1 into t", "the statement is no SELECT"},
        {"open quote", "Select 'a", "a quote in the statement does not end"},
        {"open name", "Select \"a", "a quote in the statement does not end"},
        {"open bracket", "Select [a", "a quote in the statement does not end"},
        {"escapes", "Select e'\\'; drop table t; --'", "a text is written in a way that a store file does not know"},
        {"bytes", "Select X'41'", "a text is written in a way that a store file does not know"},
        {"unicode escapes", "Select U&'\\0041'", "a text is written in a way that a store file does not know"},
        {"dollar", "Select $$a$$", "a text is written in a way that a store file does not know"},
    });
}

void TestDialect::refusal()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(told(selectText(text)), u"refused: "_s + expected);
    QVERIFY(!countText(text));
    QVERIFY(!changeText(u"with x as (select 1) select * from x"_s));
    QVERIFY(selectText(u"with x as (select 1) select * from x"_s));
    QVERIFY(selectText(u"select * from t where a = 'delete' for update"_s));
    QCOMPARE(told(changeText(u"Select 1"_s)), u"refused: the statement is no UPDATE, INSERT or DELETE"_s);
    QCOMPARE(told(selectText(u"Select 'a\0b'"_s)), u"refused: the statement contains a NUL"_s);
}

void TestDialect::orderOfTheFile_data()
{
    using namespace statements;
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("order"); ///< what is added at the end
    const auto row = [](const char *name, const QString &text, const QString &order) {
        QTest::newRow(name) << text << order;
    };
    const QString all(allCategories);
    const QString food = u"FOOD"_s;
    const QString byId = u" order by rowid_"_s;
    const QString byName = u" order by StockName nulls first, rowid_"_s;
    row("login", login(u"A"_s, u"B"_s).sql(), byId);
    row("settings", storeSettings().sql(), byId);
    row("categories", categories().sql(), byId);
    row("names of categories", u"select CategoryName from InventoryCategory"_s,
        u" order by categoryname nulls first, rowid_"_s);
    row("categories by name", categoriesByName().sql(), u" nulls first, rowid_"_s);
    row("stock by ID", stockById(u"A"_s).sql(), byId);
    row("all stock", allStock().sql(), byId);
    row("automatic ID", automaticIdCount(u"A"_s).sql(), {});
    row("IDs that begin like this", u"Select StockID from StockList where StockID like 'A-%'"_s,
        u" order by lower(StockID) nulls first, rowid_"_s);
    row("same stock", sameStock(u"A"_s, u"B"_s).sql(),
        u" order by case when StockID = 'A' then 0 when UPPER(StockName) = 'B' then 1 end, rowid_"_s);
    row("same stock with percent signs", sameStock(u"5%1"_s, u"A %2 B"_s).sql(),
        u" order by case when StockID = '5%1' then 0 when UPPER(StockName) = 'A %2 B' then 1 end, rowid_"_s);
    row("same name", sameStockName(u"A"_s).sql(), byId);
    row("items", stockItems(false, all).sql(), byName);
    row("items left", stockItems(true, all).sql(), byName);
    row("items of a category", stockItems(false, food).sql(), byName);
    row("items left of a category", stockItems(true, food).sql(), byName);
    row("search", searchStock(u"A"_s).sql(), byId);
    row("levels", stockLevels(u"A"_s).sql(), byId);
    row("available", availableStock(u"A"_s, u"B"_s).sql(), byId);
    row("count of pages", quickSalesCount(true, food).sql(), u" nulls first, rowid_"_s);
    row("low stock", lowStock().sql(), byId);
    row("total", stockTotal().sql(), {});
    row("purchase", purchase(u"A"_s).sql(), byId);
    row("purchases", purchaseIds().sql(), u" nulls last, rowid_ desc"_s);
    row("sales", salesCount(u"261122"_s).sql(), {});
    row("sales of a user", salesAmount(u"A"_s, u"261122"_s).sql(), {});
    row("another table", u"Select * from HarrowbyCode"_s, {});
    row("two tables", u"Select * from StockList, Users"_s, {});
    row("table with an alias", u"Select s.StockID from StockList as s"_s, byId);
    row("distinct", u"Select distinct StockCategory from StockList"_s, {});
    row("put together", u"Select StockID from StockList union select StockName from StockList"_s, {});
    row("several IDs", u"Select StockName from StockList where StockID in ('b', ?)"_s,
        u" order by stockid nulls first, rowid_"_s);
    row("several IDs in capitals", u"Select StockName from StockList where UPPER(StockID) in ('B')"_s,
        u" order by upper(stockid) nulls first, rowid_"_s);
    row("IDs of another table", u"Select StockName from StockList where StockID in (select Code from HarrowbyCode)"_s,
        byId);
    row("report", u"SELECT PurchasedItems FROM PurchaseCart WHERE substr(PurchasedDate,1,6) BETWEEN 'a' AND 'b'"_s,
        u" order by substr(PurchasedDate, 1, 6) nulls first, Users nulls first, PurchasedItemsCost nulls first, "
        "PurchasedDate nulls first, rowid_"_s);
    const QString page = quickSalesPage(false, all, 9).sql();
    QCOMPARE(told(selectText(page)), u"Select * from Stocklist where StockUse = 'Enabled' order by StockName ASC nulls "
                                     "first, rowid_  Limit 9 Offset 9"_s);
}

void TestDialect::orderOfTheFile()
{
    QFETCH(QString, text);
    QFETCH(QString, order);
    QCOMPARE(told(selectText(text)), text + order);
}

HARROWBY_CORE_TEST(dialect_test, TestDialect)
#include "dialect_test.moc"
