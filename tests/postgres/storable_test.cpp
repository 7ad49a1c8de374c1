// SPDX-License-Identifier: MIT
#include "postgres/storable.h"

#include "postgres/dialect.h"
#include "postgres/schema.h"
#include "store/statement_texts.h"
#include "tests/doubles/shop_file.h"
#include "tests/program/test_program.h"

#include <harrowby/sqlite_connection.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <limits>

using namespace harrowby;
using namespace harrowby::postgres;
using namespace harrowby::test;
using namespace Qt::StringLiterals;

class TestStorable : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refuses_data();
    void refuses();
    void takes();
    void refusesStatements_data();
    void refusesStatements();
    void convertsAsAFile_data();
    void convertsAsAFile();
    void readsValues_data();
    void readsValues();
    void writesRows();
    void knowsTheSchema();
    void noIndexHoldsTheStock();
};

namespace {

const QString stock = u"StockList"_s;
constexpr std::int64_t most = std::int64_t{1} << 53;

QString schemaText()
{
    QString text;
    const QDir folder(QStringLiteral(HARROWBY_SCHEMA_FOLDER));
    for (const QString &name : folder.entryList({u"*.sql"_s}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            text += QString::fromUtf8(file.readAll());
    }
    return text;
}

/// What a store file makes of a value in a column of this type.
DbValue inFile(const QString &column, const DbValue &value)
{
    const ShopFile file;
    SqliteConnection connection(file.handle());
    if (!connection.insertRow(stock, {{column, value}}))
        return u"not inserted"_s;
    const auto cursor = connection.query(u"Select %1 from StockList"_s.arg(column));
    return cursor && cursor->next() == DbCursor::Step::Row ? cursor->value(0) : DbValue(u"not read"_s);
}

} // namespace

Q_DECLARE_METATYPE(DbValue)
Q_DECLARE_METATYPE(DbAssignments)

void TestStorable::refuses_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<DbAssignments>("values");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *name, const QString &table, const DbAssignments &values, const QString &reason) {
        QTest::newRow(name) << table << values << reason;
    };
    const QString noText = u"a column of figures on a server holds no text (%1)"_s;
    row("text as figure", stock, {{u"StockCost"_s, u"ten"_s}}, noText.arg(u"StockCost"_s));
    row("empty text as figure", stock, {{u"stockcost"_s, QString()}}, noText.arg(u"stockcost"_s));
    row("figure and text", u"users"_s, {{u"InventoryUse"_s, u"1 yes"_s}}, noText.arg(u"InventoryUse"_s));
    row("hexadecimal", stock, {{u"StockCost"_s, u"0x10"_s}}, noText.arg(u"StockCost"_s));
    row("infinite", stock, {{u"StockCost"_s, u"inf"_s}}, noText.arg(u"StockCost"_s));
    row("NUL", stock, {{u"StockID"_s, u"a\0b"_s}}, u"a text on a server holds no NUL (StockID)"_s);
    row("NUL elsewhere", u"Other"_s, {{u"a"_s, u"a\0b"_s}}, u"a text on a server holds no NUL (a)"_s);
    row("bytes", stock, {{u"StockID"_s, QByteArray("a")}}, u"a column on a server holds no bytes (StockID)"_s);
    row("large figure", stock, {{u"StockAvailable"_s, most + 1}},
        u"a figure on a server has at most 15 digits (StockAvailable)"_s);
    row("large figure as text", stock, {{u"StockAvailable"_s, u"-9007199254740993"_s}},
        u"a figure on a server has at most 15 digits (StockAvailable)"_s);
    row("long ID", stock, {{u"StockID"_s, QString(mostIndexedBytes + 1, u'x')}},
        u"a text that a server looks for has at most 2600 bytes (StockID)"_s);
    row("long name in another alphabet", stock, {{u"StockName"_s, QString(mostIndexedBytes / 2 + 1, u'ß')}},
        u"a text that a server looks for has at most 2600 bytes (StockName)"_s);
    row("long name and category", stock,
        {{u"StockCategory"_s, QString(1300, u'x')}, {u"StockName"_s, QString(1301, u'x')}},
        u"a text that a server looks for has at most 2600 bytes (StockCategory and StockName)"_s);
    row("long date", u"PurchaseCart"_s, {{u"PurchasedDate"_s, QString(2601, u'x')}},
        u"a text that a server looks for has at most 2600 bytes (PurchasedDate and Users)"_s);
}

void TestStorable::refuses()
{
    QFETCH(QString, table);
    QFETCH(DbAssignments, values);
    QFETCH(QString, reason);
    QCOMPARE(unstorable(table, values).value_or(QString()), reason);
}

void TestStorable::takes()
{
    const QString longest(mostIndexedBytes, u'x');
    const QString endless(100'000, u'x');
    const QList<std::pair<QString, DbAssignments>> rows{
        {stock, {{u"StockID"_s, longest}, {u"StockName"_s, longest}}},
        {stock, {{u"StockUse"_s, endless}, {u"StockAdded"_s, endless}}},
        {stock, {{u"StockCost"_s, u" 12.50 "_s}, {u"StockAvailable"_s, most}, {u"StockReorderLevel"_s, DbValue()}}},
        {u"PurchaseCart"_s, {{u"PurchasedItems"_s, endless}, {u"PurchasedItemsCost"_s, 1e300}}},
        {u"SysUsage"_s, {{u"SystemUsage"_s, endless}}},
        {u"Other"_s, {{u"a"_s, QByteArray("\0")}, {u"b"_s, endless}, {u"c"_s, most + 1}}},
    };
    for (const auto &[table, values] : rows)
        QCOMPARE(unstorable(table, values).value_or(QString()), QString());
}

void TestStorable::refusesStatements_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<bool>("isRefused");
    const QString longText(mostIndexedBytes + 1, u'x');
    const auto row = [](const char *name, const QString &statement, bool isRefused) {
        QTest::newRow(name) << statement << isRefused;
    };
    row("category", statements::addCategory(longText, u"d"_s).sql(), true);
    row("date of a category", statements::addCategory(u"A"_s, longText).sql(), false);
    row("rename", statements::renameCategory(longText, u"A"_s).sql(), true);
    row("rename from", statements::renameCategory(u"A"_s, longText).sql(), false);
    row("move", statements::moveStock(longText, u"A"_s).sql(), true);
    row("delete", statements::deleteStock(longText).sql(), false);
    row("usage", statements::usage(longText, u"t"_s, u"d"_s).sql(), false);
    row("usage's date", statements::usage(u"a"_s, u"t"_s, longText).sql(), true);
    row("settings", statements::updateSettings({1, 0, longText, 1, 0}).sql(), false);
    row("lower", statements::lowerStock(2, longText, longText).sql(), false);
    row("text as figure", u"Update StoreSettings SET EmailAddress = 'a', Email = 'b' where 1 = 1"_s, true);
    row("second value", u"Insert into \"Users\" (Username, InventoryUse) values ('a', 'b')"_s, true);
    row("negative", u"Update StockList Set StockAvailable = -9007199254740993"_s, true);
    row("expression", u"Update StockList Set StockAvailable = (9007199254740993 + 1), StockCost = 2"_s, false);
}

void TestStorable::refusesStatements()
{
    QFETCH(QString, statement);
    QFETCH(bool, isRefused);
    QCOMPARE(unstorable(statement).has_value(), isRefused);
    QCOMPARE(changeText(statement).has_value(), !isRefused);
}

void TestStorable::convertsAsAFile_data()
{
    QTest::addColumn<QString>("column");
    QTest::addColumn<DbValue>("value");
    const QList<DbValue> values{DbValue(),
                                std::int64_t{0},
                                std::int64_t{-7},
                                most,
                                0.0,
                                -0.0,
                                2.0,
                                2.5,
                                0.1,
                                1e15,
                                1e18,
                                1e19,
                                1e300,
                                -5e-324,
                                123456789.123456789,
                                std::numeric_limits<double>::quiet_NaN(),
                                u"7"_s,
                                u" 7 "_s,
                                u"+7"_s,
                                u"-7.50"_s,
                                u".5"_s,
                                u"5."_s,
                                u"1e3"_s,
                                u"12.50\n"_s,
                                u"1e-3"_s,
                                u"0.1"_s};
    for (const QString &column : {u"StockCost"_s, u"StockID"_s}) {
        int number = 0;
        for (const DbValue &value : values)
            QTest::addRow("%s %d", qPrintable(column), number++) << column << value;
    }
    QTest::addRow("text of no number") << u"StockID"_s << DbValue(u"0x10"_s);
    QTest::addRow("infinite") << u"StockID"_s << DbValue(std::numeric_limits<double>::infinity());
}

void TestStorable::convertsAsAFile()
{
    QFETCH(QString, column);
    QFETCH(DbValue, value);
    QVERIFY(!unstorable(stock, {{column, value}}));
    const DbValue expected = inFile(column, value);
    const DbValue found = converted(stock, column, value);
    QCOMPARE(found.index(), expected.index());
    QCOMPARE(literal(found), literal(expected));
}

void TestStorable::readsValues_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<TypeId>("type");
    QTest::addColumn<DbValue>("value");
    const auto row = [](const char *text, TypeId type, const DbValue &value) {
        QTest::addRow("%s %u", text, type) << QByteArray(text) << type << value;
    };
    constexpr TypeId float8 = 701;
    row("5", float8, std::int64_t{5});
    row("-0", float8, std::int64_t{0});
    row("1e+18", float8, std::int64_t{1'000'000'000'000'000'000});
    row("1e+19", float8, 1e19);
    row("0.1", float8, 0.1);
    row("-2.5", float8, -2.5);
    row("Infinity", float8, std::numeric_limits<double>::infinity());
    row("NaN", float8, DbValue());
    row("9223372036854775807", 20, std::numeric_limits<std::int64_t>::max());
    row("12", 23, std::int64_t{12});
    row("12.50", 1700, 12.5);
    row("t", 16, std::int64_t{1});
    row("f", 16, std::int64_t{0});
    row("12", 25, u"12"_s);
    row("Über", 25, u"Über"_s);
    row("", 25, QString());
}

void TestStorable::readsValues()
{
    QFETCH(QByteArray, text);
    QFETCH(TypeId, type);
    QFETCH(DbValue, value);
    const DbValue found = readValue(text, type);
    QCOMPARE(found.index(), value.index());
    QVERIFY(found == value);
    QCOMPARE(isText(type), std::holds_alternative<QString>(value));
}

void TestStorable::writesRows()
{
    QCOMPARE(insertText(u"StockList"_s, {{u"StockID"_s, u"it's \\"_s},
                                         {u"StockCost"_s, u"12.50"_s},
                                         {u"StockName"_s, std::int64_t{5}},
                                         {u"StockAvailable"_s, 0.1},
                                         {u"StockUse"_s, DbValue()}}),
             u"INSERT INTO \"stocklist\" (\"stockid\", \"stockcost\", \"stockname\", \"stockavailable\", \"stockuse\") "
             "VALUES ('it''s \\', 12.5, '5', 0.1, null)"_s);
    QCOMPARE(insertText(u"StoreSettings"_s, {}), u"INSERT INTO \"storesettings\" DEFAULT VALUES"_s);
    QCOMPARE(updateText(u"Stocklist"_s, 42, {{u"StockAvailable"_s, std::int64_t{-3}}, {u"a\"; b"_s, u"x"_s}}),
             u"UPDATE \"stocklist\" SET \"stockavailable\" = -3, \"a\"\"; b\" = 'x' WHERE rowid_ = 42"_s);
    QCOMPARE(literal(-std::numeric_limits<double>::infinity()), u"'-Infinity'::float8"_s);
    QCOMPARE(literal(QByteArray("\x01\xff")), u"'\\x01ff'::bytea"_s);
}

void TestStorable::knowsTheSchema()
{
    const QString schema = schemaText();
    for (const ShopTable &table : shopTables()) {
        const QRegularExpression definition(
            u"create table if not exists harrowby\\.%1 \\(([^;]*?)\\n\\)"_s.arg(table.name));
        const QString body = definition.match(schema).captured(1);
        QStringList columns;
        for (const QString &line : body.split(u'\n', Qt::SkipEmptyParts)) {
            const QString name = line.trimmed().section(u' ', 0, 0);
            if (name == QLatin1StringView(identityColumn))
                continue;
            columns << name;
            QCOMPARE(line.trimmed().section(u' ', 1, 1).remove(u','), table.isFigure(name) ? u"float8"_s : u"text"_s);
        }
        QCOMPARE(columns, table.columns);
        QVERIFY(body.trimmed().section(u'\n', -1).trimmed().startsWith(
            u"rowid_ bigint generated by default as identity"_s));
    }
    QVERIFY(schema.contains(u"return %1;"_s.arg(schemaVersion)));
}

void TestStorable::noIndexHoldsTheStock()
{
    static const QRegularExpression statement(u"create index[^;]*;"_s);
    auto found = statement.globalMatch(schemaText());
    int indexes = 0;
    while (found.hasNext()) {
        const QString index = found.next().captured();
        QVERIFY2(!index.contains(u"StockAvailable"_s, Qt::CaseInsensitive), qPrintable(index));
        ++indexes;
    }
    QCOMPARE(indexes, 11);
}

HARROWBY_CORE_TEST(storable_test, TestStorable)
#include "storable_test.moc"
