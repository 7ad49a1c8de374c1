// SPDX-License-Identifier: MIT
#include "app/search/finding_function.h"
#include "app/search/search_statement.h"
#include "app/search/sought_text.h"
#include "app/shop/schema.h"
#include "engine/database.h"
#include "postgres/schema.h"
#include "postgres/storable.h"
#include "store/statement_texts.h"
#include "tests/doubles/private_cluster.h"
#include "tests/postgres/odd_shop.h"
#include "tests/postgres/server_store.h"
#include "tests/program/test_program.h"

#include <harrowby/sqlite_connection.h>

#include <QHash>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using namespace harrowby;
using namespace harrowby::test;
using namespace Qt::StringLiterals;

/// Every statement gives the same on a store file and on a server.
class TestSameRows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void everyStatement_data();
    void everyStatement();
    void longestTexts_data();
    void longestTexts();
    void likeOfOddPatterns();
    void searchFindsTheSame();
    void keysOfAllLetters();
    void schemaCanBeRunAgain();
    void indexesServe();
    void saleTouchesNoIndex();

private:
    void compare(const QString &select);
    void compareAll();
    void compareSearch(const QString &text);
    void insertBoth(const QString &table, const DbAssignments &values);
    void changeBoth();
    void updateBoth();

    std::unique_ptr<PrivateCluster> m_cluster;
    std::unique_ptr<ServerStore> m_server;
    QTemporaryDir m_folder;
    SqliteDatabase m_file;
    std::unique_ptr<SqliteConnection> m_connection;
    std::unique_ptr<OddShop> m_shop;
    int m_files = 0;
};

namespace {

constexpr int shops = 12;
constexpr int rowsOfShop = 60;
constexpr int rounds = 3;
constexpr int changesOfRound = 25;

struct FileRows
{
    QStringList columns;
    QList<QList<DbValue>> rows;
};

/// Aggregates are reals on a file although they are whole.
DbValue wholeAsInteger(const DbValue &value)
{
    const auto *real = std::get_if<double>(&value);
    return real != nullptr && std::trunc(*real) == *real && std::abs(*real) < 1e18
               ? DbValue(static_cast<std::int64_t>(*real))
               : value;
}

FileRows read(SqliteConnection &connection, const QString &select)
{
    FileRows result;
    const auto cursor = connection.query(select);
    if (!cursor)
        return result;
    for (const QString &name : cursor->columnNames())
        result.columns << name.toLower();
    while (cursor->next() == DbCursor::Step::Row) {
        QList<DbValue> row;
        for (qsizetype column = 0; column < result.columns.size(); ++column)
            row << wholeAsInteger(cursor->value(static_cast<int>(column)));
        result.rows << row;
    }
    return result;
}

/// Without those that have no name: each engine makes up one of its own.
QStringList namesOf(const QStringList &columns, const QStringList &inFile)
{
    QStringList names;
    for (qsizetype i = 0; i < columns.size(); ++i) {
        const QString name = inFile.value(i);
        names << (name.contains(u'(') || name == u"1"_s ? QString() : columns.at(i));
    }
    return names;
}

QStringList told(const QList<QList<DbValue>> &rows)
{
    QStringList lines;
    for (const QList<DbValue> &row : rows) {
        QStringList cells;
        for (const DbValue &value : row)
            cells << postgres::literal(value);
        lines << cells.join(u'|');
    }
    return lines;
}

/// Statements of each way to look for rows, and the index that serves it.
QList<std::pair<QString, QString>> served()
{
    using namespace statements;
    const QString all(allCategories);
    const QString food = u"C7"_s;
    return {
        {login(u"U7"_s, u"B"_s).sql(), u"harrowby_user_name"_s},
        {stockById(u"A7"_s).sql(), u"harrowby_stock_id"_s},
        {deleteStock(u"A7"_s).sql(), u"harrowby_stock_id_upper"_s},
        {automaticIdCount(u"ABC"_s).sql(), u"harrowby_stock_id_like"_s},
        {sameStockName(u"N7"_s).sql(), u"harrowby_stock_name_upper"_s},
        {sameStock(u"A7"_s, u"N7"_s).sql(), u"BitmapOr"_s},
        {lowerStock(1, u"A7"_s, u"N7"_s).sql(), u"harrowby_stock_(id|name_upper)"_s},
        {quickSalesPage(false, all, 9).sql(), u"harrowby_stock_page"_s},
        {quickSalesPage(true, all, 9).sql(), u"harrowby_stock_page"_s},
        {quickSalesPage(false, food, 9).sql(), u"harrowby_stock_category"_s},
        {quickSalesPage(true, food, 9).sql(), u"harrowby_stock_category"_s},
        {moveStock(u"A"_s, food).sql(), u"harrowby_stock_category"_s},
        {renameCategory(u"A"_s, food).sql(), u"harrowby_category_name"_s},
        {statements::purchase(u"HV7"_s).sql(), u"harrowby_purchase_id"_s},
        {purchaseIds().sql() + u" limit 9"_s, u"harrowby_purchase_id"_s},
        {salesAmount(u"260007"_s).sql(), u"harrowby_purchase_day"_s},
        {salesCount(u"A"_s, u"260007"_s).sql(), u"harrowby_purchase_day"_s},
        {u"select Dates, SystemUsage from SysUsage where Dates is not null and Dates <= '5' order by Dates desc limit 9"_s,
         u"harrowby_usage_time"_s},
    };
}

} // namespace

void TestSameRows::initTestCase()
{
    if (const QString reason = PrivateCluster::missing(); !reason.isEmpty())
        QSKIP(qPrintable(reason));
    m_cluster = std::make_unique<PrivateCluster>();
    m_cluster->start();
    for (const QString &text : schemaFiles())
        m_cluster->sql(text);
    m_server = std::make_unique<ServerStore>(m_cluster->conninfo());
}

/// Both empty, the file with its indexes.
void TestSameRows::init()
{
    for (const postgres::ShopTable &table : postgres::shopTables())
        QCOMPARE(m_server->run(u"truncate "_s + table.name).failure, QString());
    auto opened = openDatabase(m_folder.filePath(QString::number(++m_files)), OpenMode::Create);
    QVERIFY(opened);
    m_connection.reset();
    m_file = *std::move(opened);
    QVERIFY(!runSql(m_file.get(), u"PRAGMA synchronous = OFF"_s));
    QVERIFY(!app::createTables(m_file.get()));
    QVERIFY(app::createMissingIndexes(m_file.get()));
    QVERIFY(app::addFindingFunction(m_file.get()));
    m_connection = std::make_unique<SqliteConnection>(m_file.get());
}

void TestSameRows::insertBoth(const QString &table, const DbAssignments &values)
{
    QVERIFY(m_connection->insertRow(table, values));
    QCOMPARE(m_server->insert(table, values), QString());
}

void TestSameRows::compare(const QString &select)
{
    const FileRows expected = read(*m_connection, select);
    const ServerRows found = m_server->select(select);
    QVERIFY2(found.failure.isEmpty(), qPrintable(select + u'\n' + found.failure));
    QCOMPARE(namesOf(found.columns, expected.columns), namesOf(expected.columns, expected.columns));
    const QStringList foundRows = told(found.rows);
    const QStringList expectedRows = told(expected.rows);
    QVERIFY2(foundRows == expectedRows, qPrintable(u"%1\non the server:\n%2\nin the file:\n%3"_s.arg(
                                            select, foundRows.join(u'\n'), expectedRows.join(u'\n'))));
    QCOMPARE(m_server->count(select), m_connection->countRows(select).value_or(-2));
}

void TestSameRows::compareAll()
{
    for (const QString &select : m_shop->selects()) {
        compare(select);
        if (QTest::currentTestFailed())
            return;
    }
}

/// The search that finds a text anywhere.
void TestSameRows::compareSearch(const QString &text)
{
    SqliteStatement expected(m_file.get(), app::findingStatement(), {text});
    QList<QList<DbValue>> rows;
    while (expected.next())
        rows << QList<DbValue>{expected.value(0), expected.value(1), expected.value(2)};
    QVERIFY(!expected.hasFailed());
    const ServerRows found = m_server->select(statements::searchStock(text).sql(), postgres::Search::Anywhere);
    QCOMPARE(found.failure, QString());
    QCOMPARE(told(found.rows), told(rows));
}

/// The row at the same place of the same list.
void TestSameRows::updateBoth()
{
    const QString all = u"Select * from StockList"_s;
    const auto inFile = m_connection->rowIds(all).value_or(std::vector<DbRowId>());
    const ServerRows onServer = m_server->select(all);
    QCOMPARE(std::size_t(onServer.identities.size()), inFile.size());
    if (inFile.empty())
        return;
    const int row = m_shop->number(static_cast<int>(inFile.size()));
    const DbAssignments values = m_shop->itemChange();
    QVERIFY(m_connection->updateRow(u"Stocklist"_s, inFile.at(static_cast<std::size_t>(row)), values));
    QCOMPARE(m_server->update(u"Stocklist"_s, onServer.identities.at(row), values), QString());
}

void TestSameRows::changeBoth()
{
    for (int i = 0; i < changesOfRound && !QTest::currentTestFailed(); ++i) {
        const QString statement = m_shop->change();
        QVERIFY2(m_connection->Execute(statement), qPrintable(statement));
        QCOMPARE(m_server->change(statement), QString());
        updateBoth();
    }
    insertBoth(u"StockList"_s, m_shop->item());
    insertBoth(u"PurchaseCart"_s, m_shop->purchase());
}

void TestSameRows::everyStatement_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= shops; ++seed)
        QTest::addRow("shop %u", seed) << seed;
}

void TestSameRows::everyStatement()
{
    QFETCH(quint32, seed);
    m_shop = std::make_unique<OddShop>(seed);
    compareAll(); // nothing in it
    QVERIFY(!runSql(m_file.get(), u"BEGIN"_s));
    for (int row = 0; row < rowsOfShop; ++row) {
        insertBoth(u"StockList"_s, m_shop->item());
        insertBoth(u"PurchaseCart"_s, m_shop->purchase());
        if (row % 6 == 0) {
            insertBoth(u"Users"_s, m_shop->user());
            insertBoth(u"InventoryCategory"_s, m_shop->category());
            insertBoth(u"StoreSettings"_s, m_shop->settings());
        }
    }
    QVERIFY(!runSql(m_file.get(), u"COMMIT"_s));
    compareAll();
    for (int round = 0; round < rounds && !QTest::currentTestFailed(); ++round) {
        changeBoth();
        compareAll();
        for (const QString &text : {u""_s, u"TE"_s, u"É"_s, u"*"_s, u"\\"_s, u"İ"_s})
            compareSearch(text);
    }
}

void TestSameRows::longestTexts_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QStringList>("columns");
    for (const postgres::ShopTable &table : postgres::shopTables()) {
        for (const QStringList &columns : table.indexedColumns)
            QTest::newRow(qPrintable(table.name + u' ' + columns.join(u' '))) << table.name << columns;
    }
}

/// Random letters, which the server cannot compress: the longest that is let through fits, and much longer ones do not.
void TestSameRows::longestTexts()
{
    QFETCH(QString, table);
    QFETCH(QStringList, columns);
    QRandomGenerator random(7);
    const auto letters = [&](qsizetype count) {
        QString text;
        for (qsizetype i = 0; i < count; ++i)
            text += QChar(u'!' + static_cast<char16_t>(random.bounded(90)));
        return text;
    };
    const auto row = [&](qsizetype bytes) {
        DbAssignments values;
        for (const QString &column : columns)
            values.emplace_back(column, letters(bytes / columns.size()));
        if (table == u"StockList"_s)
            values.emplace_back(u"StockUse"_s, u"Enabled"_s);
        return values;
    };
    QCOMPARE(m_server->insert(table, row(postgres::mostIndexedBytes)), QString());
    QVERIFY(m_server->insert(table, row(postgres::mostIndexedBytes + columns.size())).contains(u"2600 bytes"_s));
    QVERIFY(m_server->run(postgres::insertText(table, row(3000))).failure.contains(u"index row size"_s));
}

void TestSameRows::likeOfOddPatterns()
{
    QRandomGenerator random(11);
    const QString letters = u"aAbBéÉ%_\\*-ß "_s;
    const auto text = [&] {
        QString result;
        for (int i = random.bounded(5); i > 0; --i)
            result += letters.at(random.bounded(letters.size()));
        return result;
    };
    const auto escaped = [](QString pattern) { return pattern.replace(u'\\', u"\\\\"_s).replace(u'_', u"\\_"_s); };
    for (int i = 0; i < 2000; ++i) {
        const QList<DbValue> values{text(), text()};
        const auto plain = postgres::withValues(u"Select ? like ?"_s, values);
        const auto marked = postgres::withValues(u"Select ? like ? escape '\\'"_s,
                                                 {values.at(0), escaped(std::get<QString>(values.at(1)))});
        for (const QString &select : {*plain, *marked}) {
            const ServerRows found = m_server->select(select);
            QVERIFY2(found.failure.isEmpty(), qPrintable(found.failure));
            QVERIFY2(postgres::literal(found.rows.front().front()) == readText(m_file.get(), select),
                     qPrintable(select));
        }
    }
}

void TestSameRows::searchFindsTheSame()
{
    const QStringList texts{u"Tea"_s,        u"TEA"_s,  u"Straße"_s,   u"STRASSE"_s,  u"straẞe"_s,   u"Σίσυφος"_s,
                            u"ΣΊΣΥΦΟΣ"_s,    u"σας"_s,  u"İstanbul"_s, u"ISTANBUL"_s, u"ıstanbul"_s, u"café"_s,
                            u"cafe\u0301"_s, u"CAFÉ"_s, u"cafe"_s,     u"*"_s,        u"%"_s,        u"_"_s,
                            u"\\"_s,         u""_s,     u"ﬁsh"_s,      u"FISH"_s,     u"K"_s,        u"k"_s,
                            u"茶"_s,         u"ЧАЙ"_s,  u"чай"_s,      u"𐐀"_s,        u"𐐨"_s,        u" Tea "_s,
                            u"σασα"_s,       u"ας"_s};
    for (const QString &wanted : texts) {
        const app::SoughtText sought(wanted);
        for (const QString &value : texts) {
            const QString text = u"<%1>"_s.arg(value);
            const ServerRows found = m_server->run(u"Select harrowby_finds(%1, %2)"_s.arg(
                postgres::literal(DbValue(wanted)), postgres::literal(DbValue(text))));
            QVERIFY2(found.failure.isEmpty(), qPrintable(found.failure));
            const DbValue expected = std::int64_t{sought.isIn(text.toUtf8()) ? 1 : 0};
            QVERIFY2(found.rows.front().front() == expected, qPrintable(wanted + u" in "_s + text));
        }
    }
    QCOMPARE(m_server->run(u"Select harrowby_finds('a', null)"_s).rows.front().front(), DbValue());
}

/// Two letters are the same to the server when they are to the program.
void TestSameRows::keysOfAllLetters()
{
    QHash<QString, QString> toServer;
    QHash<QString, QString> toProgram;
    QStringList differing;
    const ServerRows keys = m_server->run(u"select chr(c), caseless_key(chr(c)) from generate_series(1, 65533) c "
                                          "where c not between 55296 and 57343 order by c"_s);
    QVERIFY2(keys.failure.isEmpty(), qPrintable(keys.failure));
    for (const QList<DbValue> &row : keys.rows) {
        const QString letter = std::get<QString>(row.at(0));
        const QString server = std::get<QString>(row.at(1));
        const QString program = app::caselessKey(letter);
        if (toServer.value(program, server) != server || toProgram.value(server, program) != program)
            differing << QString::number(letter.front().unicode(), 16);
        toServer.insert(program, server);
        toProgram.insert(server, program);
    }
    QCOMPARE(differing.join(u' '), QString());
}

void TestSameRows::schemaCanBeRunAgain()
{
    const auto identity = [this] { return told(m_server->run(u"select store_identity()"_s).rows); };
    const QStringList before = identity();
    QCOMPARE(m_server->insert(u"Users"_s, {{u"Username"_s, u"MARY"_s}}), QString());
    for (const QString &text : schemaFiles())
        m_cluster->sql(text);
    QCOMPARE(identity(), before);
    QCOMPARE(m_server->count(u"Select * from Users"_s), 1);
    QCOMPARE(told(m_server->run(u"select schema_version()"_s).rows),
             QStringList{QString::number(postgres::schemaVersion)});
}

/// A shop of some size, with figures about it that the server plans by.
void TestSameRows::indexesServe()
{
    const QString filling =
        u"insert into StockList (StockID, StockName, StockCategory, StockAvailable, StockUse) "
        "select 'A' || n, 'N' || n, 'C' || n % 100, n % 3, 'Enabled' from generate_series(1, 20000) n; "
        "insert into PurchaseCart (PurchaseID, PurchasedDate, Users, PurchasedItemsCost) select 'HV' || n, "
        "lpad((260000 + n % 500)::text, 6, '0') || n, 'A', n from generate_series(1, 20000) n; "
        "insert into Users (Username) select 'U' || n from generate_series(1, 2000) n; "
        "insert into InventoryCategory (CategoryName) select 'C' || n from generate_series(1, 5000) n; "
        "insert into SysUsage (Dates) select n::text from generate_series(1, 5000) n"_s;
    QCOMPARE(m_server->run(filling).failure, QString());
    QCOMPARE(m_server->run(u"vacuum analyze"_s).failure, QString());
    for (const auto &[statement, index] : served()) {
        const bool isSelect = statement.startsWith(u"select"_s, Qt::CaseInsensitive);
        const auto text = isSelect ? postgres::selectText(statement) : postgres::changeText(statement);
        QVERIFY(text);
        const ServerRows plan = m_server->run(u"explain "_s + *text);
        const QString steps = *text + u'\n' + plan.failure + told(plan.rows).join(u'\n');
        QVERIFY2(steps.contains(QRegularExpression(index)), qPrintable(steps));
        QVERIFY2(!steps.contains(u"Sort"_s) || !statement.contains(u"imit 9"_s), qPrintable(steps));
    }
}

/// Else each sale would write into each of them.
void TestSameRows::saleTouchesNoIndex()
{
    for (const QString &id : {u"A"_s, u"B"_s, u"C"_s})
        QCOMPARE(
            m_server->insert(u"StockList"_s, {{u"StockID"_s, id}, {u"StockName"_s, id}, {u"StockAvailable"_s, 9.0}}),
            QString());
    QCOMPARE(m_server->run(u"begin"_s).failure, QString());
    for (const QString &id : {u"A"_s, u"B"_s, u"C"_s}) {
        QCOMPARE(m_server->change(statements::lowerStock(2, id, id).sql()), QString());
        QCOMPARE(m_server->change(statements::raiseStock(1, id).sql()), QString());
    }
    const ServerRows counts = m_server->run(u"select n_tup_upd, n_tup_hot_upd from pg_stat_xact_user_tables "
                                            "where relname = 'stocklist'"_s);
    QCOMPARE(m_server->run(u"commit"_s).failure, QString());
    QCOMPARE(told(counts.rows), QStringList{u"6|6"_s});
}

HARROWBY_CORE_TEST(same_rows_test, TestSameRows)
#include "same_rows_test.moc"
