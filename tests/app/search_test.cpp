// SPDX-License-Identifier: MIT
#include "app/records/sqlite_records.h"
#include "app/search/finding_connection.h"
#include "app/search/search_choice.h"
#include "app/search/search_statement.h"
#include "app/search/sought_text.h"
#include "app/shop/schema.h"
#include "store/recordset.h"
#include "store/statement_texts.h"

#include "tests/program/test_program.h"

#include <QTest>

#include <sqlite3.h>

using namespace harrowby;
using namespace harrowby::app;
using namespace Qt::StringLiterals;

/// The store program's search: what it finds, and what stays as the engine has it.
class SearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void findsAnywhereInAnyCase_data();
    void findsAnywhereInAnyCase();
    void findsInIdsAndNamesOfEveryKind();
    void knowsItsStatementAlone_data();
    void knowsItsStatementAlone();
    void countAndRowsAgree();
    void identitiesAreRefusedAsEver();
    void disabledItemsAreFoundByTheirId();
    void keepsTheOrderOfTheTable();
    void switchedOffItIsTheEnginesOwn();
    void theShopChooses();
    void automaticIdsAreCountedAsEver();
    void quotesAndNulAreRefused_data();
    void quotesAndNulAreRefused();
    void longTextsAreFoundExactly();
    void rowsStandStillWhileTheStockChanges();
    void failuresAreToldAsEver();
    void worksOnItsOwnConnectionAlone();

private:
    bool run(const QString &statements) const
    {
        return sqlite3_exec(m_database, statements.toUtf8().constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
    }
    void add(const QString &id, const QString &name, const QString &use = u"Enabled"_s) const;
    /// IDs that the till would list for what was typed.
    [[nodiscard]] QStringList search(const QString &typed) const;
    [[nodiscard]] QStringList column(const QString &select) const;
    /// How the engine goes about the statement.
    [[nodiscard]] QStringList plan(const Statement &statement) const;

    sqlite3 *m_database = nullptr;
    std::shared_ptr<FindingConnection> m_connection;
    std::vector<DbFailure> m_failures;
    bool m_isOn = true;
};

void SearchTest::init()
{
    QCOMPARE(sqlite3_open(":memory:", &m_database), SQLITE_OK);
    QVERIFY(!createTables(m_database));
    QVERIFY(createMissingIndexes(m_database));
    m_isOn = true;
    m_failures.clear();
    m_connection = std::make_shared<FindingConnection>(m_database, QString(), [this] { return m_isOn; });
    m_connection->setFailureHandler([this](const DbFailure &failure) { m_failures.push_back(failure); });
}

void SearchTest::cleanup()
{
    m_connection.reset();
    sqlite3_close(m_database);
}

void SearchTest::add(const QString &id, const QString &name, const QString &use) const
{
    QVERIFY(m_connection->insertRow(
        u"StockList"_s,
        {{u"StockID"_s, id}, {u"StockName"_s, name}, {u"StockCategory"_s, u"FOOD"_s}, {u"StockUse"_s, use}}));
}

QStringList SearchTest::search(const QString &typed) const
{
    DbRecordset found;
    found.Open(statements::searchStock(typed.toUpper()), m_connection, DbRecordset::Access::Walk);
    QStringList ids;
    const std::int32_t count = found.RecordCount();
    for (; !found.IsEof(); found.MoveNext())
        ids << found.Field(u"StockID"_s).text();
    return count == ids.size() ? ids : QStringList{u"counted %1"_s.arg(count)};
}

QStringList SearchTest::column(const QString &select) const
{
    QStringList texts;
    SqliteStatement statement(m_database, select);
    while (statement.next())
        texts << statement.text(0);
    return statement.hasFailed() ? QStringList{u"failed"_s} : texts;
}

QStringList SearchTest::plan(const Statement &statement) const
{
    QStringList steps;
    SqliteStatement explained(m_database, u"EXPLAIN QUERY PLAN "_s + statement.sql());
    while (explained.next())
        steps << explained.text(3);
    return steps;
}

void SearchTest::findsAnywhereInAnyCase_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("isFound");
    const auto row = [](const char *what, const QString &name, const QString &typed, bool isFound = true) {
        QTest::newRow(what) << name << typed << isFound;
    };
    row("in the middle", u"WHOLE MILK 1 L"_s, u"milk"_s);
    row("at the beginning", u"WHOLE MILK 1 L"_s, u"whole"_s);
    row("at the end", u"WHOLE MILK 1 L"_s, u"1 l"_s);
    row("all of it", u"Milk"_s, u"mILK"_s);
    row("small letters in the store", u"whole milk"_s, u"MILK"_s);
    row("not there", u"WHOLE MILK 1 L"_s, u"mild"_s, false);
    row("longer than the name", u"MILK"_s, u"milks"_s, false);
    row("blanks count", u"WHOLE MILK"_s, u"milk "_s, false);
    row("blanks are found", u"WHOLE MILK 1 L"_s, u" milk "_s);
    row("percent", u"JUICE 100 % APPLE"_s, u"0 % a"_s);
    row("percent is no wildcard", u"MILK"_s, u"m%k"_s, false);
    row("line is no wildcard", u"MILK"_s, u"m_lk"_s, false);
    row("line", u"KEY_RING"_s, u"y_r"_s);
    row("asterisk", u"*GIFT WRAP*"_s, u"*gift"_s);
    row("asterisk is no wildcard", u"GIFT WRAP"_s, u"gift*"_s, false);
    row("backslash", uR"(A\B\C)"_s, uR"(\b\)"_s);
    row("umlaut", u"GRÜNE ÄPFEL"_s, u"äpfel"_s);
    row("accents count", u"CAFÉ"_s, u"cafe"_s, false);
    row("composed in the store", u"CAFÉ AU LAIT"_s, u"cafe\u0301 au"_s);
    row("composed as typed", u"CAFE\u0301 AU LAIT"_s, u"café"_s);
    row("accents count however they are stored", u"CAFE\u0301 AU LAIT"_s, u"cafe"_s, false);
    row("accent without a letter of its own", u"X\u0301 RAY"_s, u"x\u0301 r"_s);
    row("sharp s", u"Straße 5"_s, u"straße"_s);
    row("sharp s by double s", u"Straße 5"_s, u"STRASSE"_s);
    row("double s by sharp s", u"STRASSENKREIDE"_s, u"straße"_s);
    row("capital sharp s", u"STRAẞE"_s, u"strasse"_s);
    row("half a sharp s", u"GROß"_s, u"gros"_s);
    row("ligature", u"ﬁLTER"_s, u"filt"_s);
    row("dotted capital i", u"İZMİR"_s, u"izmir"_s);
    row("dotless small i", u"ısparta"_s, u"ISPARTA"_s);
    row("typed without a dot", u"IZGARA"_s, u"ızgara"_s);
    row("typed with a dot", u"izmir"_s, u"İZMİR"_s);
    row("i with a dot of its own", u"I\u0307ZMIR"_s, u"izmir"_s);
    row("final sigma", u"ΟΔΟΣ"_s, u"οδος"_s);
    row("final sigma in the store", u"οδος"_s, u"ΟΔΟΣ"_s);
    row("sigma in the middle by a final one", u"ΜΟΥΣΑΚΑΣ"_s, u"ους"_s);
    row("Greek accent", u"Μουσακάς"_s, u"ΜΟΥΣΑΚΆΣ"_s);
    row("iota below", u"ᾳ"_s.repeated(3), u"ᾼ"_s.repeated(3));
    row("Cyrillic", u"МОЛОКО 1 л"_s, u"молок"_s);
    row("Armenian ligature", u"ԱՐԵՒ ՀԱՑ"_s, u"արև"_s);
    row("Georgian", u"ᲞᲣᲠᲘ"_s, u"პური"_s);
    row("Deseret, beyond 16 bits", u"\U00010400\U00010401\U00010402"_s, u"\U00010428\U00010429\U0001042a"_s);
    row("Kelvin sign", u"300 \u212a LAMP"_s, u"0 k l"_s);
    row("Hangul by its letters", u"\uac00\ub098\ub2e4"_s, u"\u1100\u1161\u1102\u1161\u1103\u1161"_s);
    row("Chinese", u"全脂牛奶一升"_s, u"脂牛奶"_s);
    row("Thai", u"นมสด 1 ลิตร"_s, u"นมสด"_s);
    row("Arabic", u"حليب كامل الدسم"_s, u"كامل"_s);
    row("direction marks", u"\u202bחלב\u202c 3%"_s, u"חלב"_s);
    row("a picture", u"PIZZA 🍕 BIG"_s, u"🍕 b"_s);
}

void SearchTest::findsAnywhereInAnyCase()
{
    QFETCH(const QString, name);
    QFETCH(const QString, typed);
    QFETCH(const bool, isFound);
    add(u"1"_s, name);
    add(u"2"_s, u"SOMETHING ELSE"_s);
    QCOMPARE(search(typed), isFound ? QStringList{u"1"_s} : QStringList());
    // The same when a neighbour in the text is of another alphabet, which is compared in another way.
    QVERIFY(run(u"UPDATE StockList SET StockName = StockName || 'Ж' WHERE StockID = '1'"_s));
    QCOMPARE(search(typed), isFound ? QStringList{u"1"_s} : QStringList());
    QVERIFY(m_failures.empty());
}

void SearchTest::findsInIdsAndNamesOfEveryKind()
{
    QVERIFY(run(u"DROP TABLE StockList; CREATE TABLE StockList (stockid, STOCKNAME, StockCategory, StockUse);"
                "INSERT INTO StockList VALUES (40123455, 'A', 7, 'Enabled'), ('B', 12.50, NULL, 'Enabled'),"
                "('C', NULL, 'x', 'Enabled'), (NULL, 'NULL', 'x', 'Enabled'), ('E', x'6d696c6b', 'x', 'Enabled'),"
                "('F', 'MILK', 'x', 'Enabled')"_s));
    QCOMPARE(search(u"1234"_s), QStringList{u"40123455"_s});
    QCOMPARE(search(u"12.5"_s), QStringList{u"B"_s});
    QCOMPARE(search(u"null"_s), QStringList{QString()});
    QCOMPARE(search(u"milk"_s), (QStringList{u"E"_s, u"F"_s}));
    DbRecordset found;
    found.Open(statements::searchStock(u"1234"_s), m_connection, DbRecordset::Access::Walk);
    QCOMPARE(found.Field(u"StockCategory"_s).value(), DbValue(std::int64_t(7)));
    QCOMPARE(found.Field(u"stockname"_s).text(), u"A"_s);
    QVERIFY(!found.Field(u"StockUse"_s).value());
}

void SearchTest::knowsItsStatementAlone_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("text"); ///< null: it is another statement
    const auto row = [](const char *name, const QString &statement, const QString &text = {}) {
        QTest::newRow(name) << statement << text;
    };
    const auto other = [](const QString &before, const QString &after) {
        return QString(statements::searchStock(u"TEA"_s).sql()).replace(before, after);
    };
    row("search", statements::searchStock(u"TEA"_s).sql(), u"TEA"_s);
    row("odd text", statements::searchStock(u" *% or UPPER(StockName) like "_s).sql(),
        u" *% or UPPER(StockName) like "_s);
    row("no text", statements::searchStock(u""_s).sql(), u""_s);
    row("two texts", u"Select StockID, StockName, StockCategory from StockList where UPPER(StockID) like '*TEA*' or "
                     "UPPER(StockName) like '*TIE*'  and StockUse = 'Enabled'"_s);
    row("other capitals", other(u"Select"_s, u"SELECT"_s));
    row("one blank", other(u"  and"_s, u" and"_s));
    row("more behind it", statements::searchStock(u"TEA"_s).sql() + u' ');
    row("other marks", other(u"*"_s, u"%"_s));
    row("automatic ID", statements::automaticIdCount(u"TEA"_s).sql());
    row("all stock", statements::allStock().sql());
    row("nothing", u""_s);
    row("quote", other(u"TEA"_s, u"T'A"_s));
    row("NUL", other(u"TEA"_s, u"T"_s + QChar(u'\0') + u'A'));
}

void SearchTest::knowsItsStatementAlone()
{
    QFETCH(const QString, statement);
    QFETCH(const QString, text);
    const auto searched = searchedText(statement);
    QCOMPARE(searched.has_value(), !text.isNull());
    QCOMPARE(searched.value_or(QString()), text);
}

void SearchTest::countAndRowsAgree()
{
    for (int i = 0; i < 30; ++i)
        add(u"A%1"_s.arg(i), i % 3 == 0 ? u"TEA %1"_s.arg(i) : u"MILK"_s);
    const QString select = statements::searchStock(u"TEA"_s).sql();
    for (const bool isOn : {true, false}) {
        m_isOn = isOn;
        const std::int64_t expected = isOn ? 10 : 0;
        QCOMPARE(m_connection->countRows(select), std::optional(expected));
        const auto first = m_connection->query(select);
        const auto second = m_connection->query(select);
        QCOMPARE(m_connection->countRows(select), std::optional(expected));
        QCOMPARE(first->columnNames(), (QStringList{u"StockID"_s, u"StockName"_s, u"StockCategory"_s}));
        for (std::int64_t row = 0; row < expected; ++row) {
            QCOMPARE(first->next(), DbCursor::Step::Row);
            QCOMPARE(first->value(0), DbValue(u"A%1"_s.arg(3 * row)));
            QCOMPARE(first->text(1).value_or(QByteArrayView()),
                     QByteArrayView(QByteArray("TEA " + QByteArray::number(3 * row))));
        }
        for (int again = 0; again < 2; ++again)
            QCOMPARE(first->next(), DbCursor::Step::Done);
        QCOMPARE(second->next(), isOn ? DbCursor::Step::Row : DbCursor::Step::Done);
    }
    QVERIFY(m_failures.empty());
}

void SearchTest::identitiesAreRefusedAsEver()
{
    add(u"1"_s, u"TEA"_s);
    const QString select = statements::searchStock(u"TEA"_s).sql();
    SqliteConnection plain(m_database);
    QVERIFY(!plain.rowIds(select));
    QVERIFY(!m_connection->rowIds(select));
    QCOMPARE(m_failures.size(), std::size_t(1));
    QCOMPARE(m_failures.front().statement, select);
    QCOMPARE(m_failures.front().reason, u"the rows have no identity"_s);
}

/// The condition on their use goes with the name alone.
void SearchTest::disabledItemsAreFoundByTheirId()
{
    add(u"TEA-1"_s, u"GREEN"_s, u"Disabled"_s);
    add(u"X-1"_s, u"TEA"_s, u"Disabled"_s);
    add(u"X-2"_s, u"TEA"_s, u"Enabled"_s);
    QCOMPARE(search(u"tea"_s), (QStringList{u"TEA-1"_s, u"X-2"_s}));
}

void SearchTest::keepsTheOrderOfTheTable()
{
    for (const QString &id : {u"C"_s, u"A"_s, u"B"_s})
        add(id, u"*TEA*"_s);
    const QStringList found = search(u"tea"_s);
    m_isOn = false;
    QCOMPARE(found, search(u"tea"_s));
    QCOMPARE(found, (QStringList{u"C"_s, u"A"_s, u"B"_s}));
}

void SearchTest::switchedOffItIsTheEnginesOwn()
{
    add(u"1"_s, u"GREEN TEA"_s);
    add(u"2"_s, u"*TEA*"_s);
    QCOMPARE(search(u"tea"_s), (QStringList{u"1"_s, u"2"_s}));
    m_isOn = false;
    QCOMPARE(search(u"tea"_s), QStringList{u"2"_s});
    m_isOn = true;
    QCOMPARE(search(u"tea"_s), (QStringList{u"1"_s, u"2"_s}));
}

/// What the office has chosen counts from the next search on, at every till.
void SearchTest::theShopChooses()
{
    SqliteRecords records(m_database);
    SearchChoice own(records, true);
    SearchChoice foreign(records, false);
    const SignedDeeds deeds(records, officePlace, u"ANNA"_s);
    QVERIFY(own.findsAnywhere() && !foreign.findsAnywhere());
    QVERIFY(foreign.change(false, true, deeds).value_or(false));
    QVERIFY(own.findsAnywhere() && foreign.findsAnywhere());
    QVERIFY(own.change(true, false, deeds).value_or(false));
    QVERIFY(!own.findsAnywhere() && !foreign.findsAnywhere());
    QVERIFY(run(u"UPDATE HarrowbySetting SET Value = 'perhaps'"_s));
    QVERIFY(own.findsAnywhere() && !foreign.findsAnywhere());

    add(u"1"_s, u"GREEN TEA"_s);
    m_connection = std::make_shared<FindingConnection>(m_database, QString(), [&] { return own.findsAnywhere(); });
    QCOMPARE(search(u"tea"_s), QStringList{u"1"_s});
    QVERIFY(foreign.change(false, false, deeds).value_or(false));
    QCOMPARE(search(u"tea"_s), QStringList());
}

void SearchTest::automaticIdsAreCountedAsEver()
{
    for (const QString &id : {u"ABC-0001"_s, u"ABC-0002"_s, u"abc-*"_s})
        add(id, u"ITEM "_s + id);
    const auto counted = [this] {
        DbRecordset count;
        count.Open(statements::automaticIdCount(u"ABC"_s), m_connection);
        return count.Field(u"Counts"_s).number();
    };
    QCOMPARE(counted(), 1.0);
    const QStringList planned = plan(statements::automaticIdCount(u"ABC"_s));
    QVERIFY2(planned.join(u'\n').contains(u"harrowby_stock_id_like"_s), qPrintable(planned.join(u'\n')));
    QCOMPARE(search(u"bc-"_s), (QStringList{u"ABC-0001"_s, u"ABC-0002"_s, u"abc-*"_s}));
    QCOMPARE(counted(), 1.0);
    QCOMPARE(plan(statements::automaticIdCount(u"ABC"_s)), planned);
    QCOMPARE(column(u"Select ('WHOLE MILK' like '%milk%') || ('WHOLE MILK' like '*MILK*') || ('Ä' like 'ä')"_s),
             QStringList{u"100"_s});
}

void SearchTest::quotesAndNulAreRefused_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("quote") << u"O'NEIL"_s;
    QTest::newRow("a condition") << u"x' or 'a'='a"_s;
    QTest::newRow("another statement") << u"x'; delete from StockList; --"_s;
    QTest::newRow("NUL") << u"TE"_s + QChar(u'\0') + u'A';
}

void SearchTest::quotesAndNulAreRefused()
{
    QFETCH(const QString, typed);
    add(u"1"_s, typed);
    QCOMPARE(search(typed), QStringList());
    QVERIFY(!m_failures.empty());
    QCOMPARE(column(u"Select count(*) from StockList"_s), QStringList{u"1"_s});
    const QString text = QString(statements::searchStock(u"TEA"_s).sql()).replace(u"TEA"_s, typed);
    m_failures.clear();
    const auto cursor = m_connection->query(text); // as it would come from elsewhere: the engine's own matter
    QVERIFY(!cursor || cursor->next() != DbCursor::Step::Row || typed.contains(u" or "_s));
    QCOMPARE(column(u"Select count(*) from StockList"_s), QStringList{u"1"_s});
}

void SearchTest::longTextsAreFoundExactly()
{
    const QString text = u"long %*_ name "_s.repeated(715).first(10'000);
    add(u"1"_s, u"x"_s + text.toUpper() + u'x');
    add(u"2"_s, text.first(9'999) + u'-');
    QCOMPARE(search(text), QStringList{u"1"_s});
    QCOMPARE(search(text.toUpper().replace(u'N', u'Ñ')), QStringList());
    QVERIFY(m_failures.empty());
}

void SearchTest::rowsStandStillWhileTheStockChanges()
{
    for (int i = 0; i < 20; ++i)
        add(u"A%1"_s.arg(i), u"TEA"_s);
    DbRecordset found;
    found.Open(statements::searchStock(u"TEA"_s), m_connection, DbRecordset::Access::Walk);
    QVERIFY(run(u"DELETE FROM StockList"_s)); // refused by nothing: no statement is open
    QCOMPARE(found.RecordCount(), 20);
    int rows = 0;
    for (; !found.IsEof(); found.MoveNext())
        ++rows;
    QCOMPARE(rows, 20);
    QCOMPARE(search(u"tea"_s), QStringList());
}

void SearchTest::failuresAreToldAsEver()
{
    const QString select = statements::searchStock(u"TEA"_s).sql();
    QVERIFY(run(u"ALTER TABLE StockList RENAME TO Lost"_s));
    QVERIFY(!m_connection->query(select));
    QCOMPARE(m_failures.size(), std::size_t(1));
    QVERIFY(!m_connection->countRows(select));
    QCOMPARE(m_failures.size(), std::size_t(2));
    for (const DbFailure &failure : m_failures) {
        QCOMPARE(failure.kind, DbFailure::Kind::Read);
        QCOMPARE(failure.statement, select);
        QCOMPARE(failure.reason, u"no such table: StockList"_s);
        QCOMPARE(failure.engineCode, SQLITE_ERROR);
    }
    FindingConnection none(nullptr, QString(), [] { return true; });
    QVERIFY(!none.query(select));
}

/// What a host hands in finds as the engine does, also on the same file.
void SearchTest::worksOnItsOwnConnectionAlone()
{
    add(u"1"_s, u"GREEN TEA"_s);
    m_connection.reset();
    SqliteConnection plain(m_database);
    QCOMPARE(plain.countRows(statements::searchStock(u"TEA"_s).sql()), std::optional(std::int64_t(0)));
    QVERIFY(!run(u"CREATE INDEX broken ON StockList (harrowby_finds('TEA', StockName))"_s));
    QVERIFY(!run(u"CREATE VIEW broken AS SELECT * FROM StockList WHERE harrowby_finds('TEA', StockName);"
                 "SELECT * FROM broken"_s));
}

HARROWBY_TEST(app_search_test, SearchTest)
#include "search_test.moc"
