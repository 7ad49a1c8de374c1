// SPDX-License-Identifier: MIT
#include "store/statement.h"

#include "tests/program/test_program.h"

#include <QTest>

#include <limits>
#include <type_traits>

using namespace harrowby;
using namespace Qt::StringLiterals;

// Only literals are fixed text: nothing that was typed or read can become part of a statement as it is.
static_assert(!std::is_convertible_v<QString, FixedText>);
static_assert(!std::is_constructible_v<FixedText, QByteArray>);
static_assert(!std::is_constructible_v<FixedText, const char *>);

class TestStatement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void joinsPieces();
    void writesNumbers();
    void refusesQuotesAndNuls_data();
    void refusesQuotesAndNuls();
    void staysRefused();
    void refusesNumbersWithoutDigits();
    void knowsItsTable_data();
    void knowsItsTable();
};

void TestStatement::joinsPieces()
{
    const Statement statement = Statement("Select * from A where b = ")
                                    .text(u"c"_s)
                                    .fixed(" and d like ")
                                    .text("x", u"é\U0001F34E"_s, "-*")
                                    .fixed(" or e = ")
                                    .text({});
    QCOMPARE(statement.sql(), u"Select * from A where b = 'c' and d like 'xé\U0001F34E-*' or e = ''"_s);
    QVERIFY(!statement.isRefused());
    QVERIFY(statement.refusal().isEmpty());
}

void TestStatement::writesNumbers()
{
    const auto text = [](double value) { return Statement("").number(value).sql(); };
    QCOMPARE(text(2), u"2"_s);
    QCOMPARE(text(1250.5), u"1250.5"_s);
    QCOMPARE(text(-3), u"-3"_s);
    QCOMPARE(text(1e21), u"1000000000000000000000"_s);
    QCOMPARE(Statement("").number(std::numeric_limits<std::int64_t>::min()).sql(), u"-9223372036854775808"_s);
}

void TestStatement::refusesQuotesAndNuls_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("reason");
    const QString quote = u"a text value contains a single quote"_s;
    QTest::newRow("quote") << u"O'Neill"_s << quote;
    QTest::newRow("two quotes") << u"''"_s << quote;
    QTest::newRow("injection") << u"x' or 'a'='a"_s << quote;
    QTest::newRow("quote last") << u"x'"_s << quote;
    QTest::newRow("NUL") << u"a"_s + QChar(u'\0') + u"b"_s << u"a text value contains a NUL"_s;
    QTest::newRow("double quote is data") << u"12\""_s << QString();
    QTest::newRow("comment is data") << u"-- /* ; \\"_s << QString();
    QTest::newRow("look-alike is data") << u"\u2019\uff07\u02bc"_s << QString();
}

void TestStatement::refusesQuotesAndNuls()
{
    QFETCH(const QString, value);
    QFETCH(const QString, reason);
    for (const Statement &statement : {Statement("Select * from Users where Username = ").text(value),
                                       Statement("Select * from Users where Username like ").text("", value, "*")}) {
        QCOMPARE(statement.isRefused(), !reason.isEmpty());
        QCOMPARE(statement.refusal(), reason);
        QCOMPARE(statement.table(), u"Users"_s);
    }
}

void TestStatement::staysRefused()
{
    const Statement statement = Statement("Update A Set b = ").text(u"'"_s).fixed(" where c = ").text(u"d"_s);
    QVERIFY(statement.isRefused());
    QCOMPARE(statement.sql(), u"Update A Set b = ''' where c = 'd'"_s);
}

void TestStatement::refusesNumbersWithoutDigits()
{
    for (const double value : {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN()})
        QCOMPARE(Statement("Update A Set b = ").number(value).refusal(), u"a number is not finite"_s);
}

void TestStatement::knowsItsTable_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const Statement &statement, const QString &expected) {
        QTest::newRow(name) << statement.table() << expected;
    };
    row("to the end", Statement("Select * from StoreSettings"), u"StoreSettings"_s);
    row("where", Statement("Select * from StockList where StockID = "), u"StockList"_s);
    row("any case", Statement("SELECT count(*) as counts FROM stocklist WHERE a = 1"), u"stocklist"_s);
    row("mixed case", Statement("Select substr(a,1,6) From X order by a"), u"X"_s);
    row("no table", Statement("Update StockList Set a = 1"), QString());
    row("word within a word", Statement("Select fromage of 1"), QString());
    row("value is not searched", Statement("Select ").text(u" from Users "_s), QString());
}

void TestStatement::knowsItsTable()
{
    QFETCH(const QString, table);
    QFETCH(const QString, expected);
    QCOMPARE(table, expected);
}

HARROWBY_CORE_TEST(statement_test, TestStatement)
#include "statement_test.moc"
