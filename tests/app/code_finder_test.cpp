// SPDX-License-Identifier: MIT
#include "app/codes/code_finder.h"
#include "app/codes/code_table.h"
#include "app/records/sqlite_records.h"
#include "app/shop/schema.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

using Kind = FoundCode::Kind;

/// The table of codes, and what a code finds.
class CodeFinderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void exactId();
    void exactCodeSellsItsUnits();
    void sameNumberInAnotherLength_data();
    void sameNumberInAnotherLength();
    void wrongCheckDigitIsFoundExactlyOnly();
    void neverPaddedBehind();
    void twoItemsAreRefused();
    void twoItemsOfOneIdAreRefused();
    void exactEntryTellsTheUnits();
    void unknownAndOrphan();
    void oddCodesAreRefusedOrFoundExactly_data();
    void oddCodesAreRefusedOrFoundExactly();
    void ownRangeIsExactWithoutARule();
    void priceInside();
    void weightInside();
    void numberInsideIsPaddedBefore();
    void exactEntryGoesBeforeTheRule();
    void foreignTypesFindNothingElse();
    void failedReadIsToldApart();
    void rulesThatCannotBeReadAreToldApart();
    void statements();

    void itemsAreLookedFor();
    void takenCodes_data();
    void takenCodes();
    void whatIsNotAdded();
    void entriesAreListed();
    void renamedItemKeepsItsCodes();
    void renamedItemOfTwoLeavesThem();
    void newItemGetsNobodysCodes();
    void shopWithoutCodesGetsNoTable();
    void unitsAndDeleting();

private:
    void run(const QString &statement) { QVERIFY2(!runSql(m_database.get(), statement), qPrintable(statement)); }
    void item(const QString &id, const QString &name, const QString &cost = u"1.00"_s)
    {
        QVERIFY(!runSql(m_database.get(),
                        u"INSERT INTO StockList (StockID, StockName, StockCost, StockAvailable, StockUse) "
                        "VALUES (?1, ?2, ?3, 9, 'Enabled')"_s,
                        {id, name, cost}));
    }
    void code(const QString &code, const QString &id, int units = 1)
    {
        const auto problem = table().add(code, id, units);
        QVERIFY2(!problem, problem ? qPrintable(*problem) : "");
    }
    void rule(const QString &text) { QVERIFY(!ShopSettings(*m_records).save(inStoreSetting(text.first(2)), text)); }
    [[nodiscard]] CodeTable table() { return CodeTable(*m_records); }
    [[nodiscard]] ItemCode seen(const QString &code)
    {
        return table().entries({code}).value_or(QList<ItemCode>()).value(0);
    }
    [[nodiscard]] FoundCode found(const QString &code) { return CodeFinder(*m_records).find(code); }
    [[nodiscard]] QString read(const QString &select) const { return readText(m_database.get(), select); }

    SqliteDatabase m_database;
    std::unique_ptr<SqliteRecords> m_records;
};

void CodeFinderTest::init()
{
    QVERIFY(!into(m_database, openDatabase(u":memory:"_s, OpenMode::Create)));
    QVERIFY(!createTables(m_database.get()));
    QVERIFY(createMissingIndexes(m_database.get()));
    m_records = std::make_unique<SqliteRecords>(m_database.get());
    item(u"TEA-0001"_s, u"TEA"_s);
    item(u"MIL-0001"_s, u"MILK"_s);
}

void CodeFinderTest::cleanup()
{
    m_records.reset();
    m_database.reset();
}

void CodeFinderTest::exactId()
{
    const FoundCode tea = found(u"TEA-0001"_s);
    QVERIFY(tea.kind == Kind::Item);
    QCOMPARE(tea.stockId, u"TEA-0001"_s);
    QCOMPARE(tea.name, u"TEA"_s);
    QCOMPARE(tea.units, 1);
    QVERIFY(!tea.cost);
    QVERIFY(found(u"tea-0001"_s).kind == Kind::Unknown); // an ID's case counts
}

void CodeFinderTest::exactCodeSellsItsUnits()
{
    code(u"4006381333931"_s, u"TEA-0001"_s);
    code(u"CASE'12"_s, u"TEA-0001"_s, 12);
    QCOMPARE(found(u"4006381333931"_s).units, 1);
    QCOMPARE(found(u"CASE'12"_s).units, 12);
    QCOMPARE(found(u"CASE'12"_s).stockId, u"TEA-0001"_s);
}

void CodeFinderTest::sameNumberInAnotherLength_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("scanned");
    QTest::newRow("12 as 13") << u"036000291452"_s << u"0036000291452"_s;
    QTest::newRow("13 as 12") << u"0036000291452"_s << u"036000291452"_s;
    QTest::newRow("14 as 12") << u"00036000291452"_s << u"036000291452"_s;
    QTest::newRow("8 as 13") << u"96385074"_s << u"0000096385074"_s;
    QTest::newRow("14 as 8") << u"00000096385074"_s << u"96385074"_s;
}

void CodeFinderTest::sameNumberInAnotherLength()
{
    QFETCH(QString, stored);
    QFETCH(QString, scanned);
    code(stored, u"MIL-0001"_s, 6);
    QCOMPARE(found(scanned).stockId, u"MIL-0001"_s);
    QCOMPARE(found(scanned).units, 6);
    run(u"DELETE FROM HarrowbyCode"_s);
    item(stored, u"BREAD"_s); // an ID is a code, too
    QCOMPARE(found(scanned).stockId, stored);
    QCOMPARE(found(scanned).units, 1);
}

void CodeFinderTest::wrongCheckDigitIsFoundExactlyOnly()
{
    code(u"036000291453"_s, u"MIL-0001"_s);
    QCOMPARE(found(u"036000291453"_s).stockId, u"MIL-0001"_s);
    QVERIFY(found(u"0036000291453"_s).kind == Kind::Unknown);
}

void CodeFinderTest::neverPaddedBehind()
{
    item(u"9"_s, u"NINE"_s);
    item(u"90"_s, u"NINETY"_s);
    QCOMPARE(found(u"9"_s).name, u"NINE"_s);
    QCOMPARE(found(u"90"_s).name, u"NINETY"_s);
    QVERIFY(found(u"09"_s).kind == Kind::Unknown);
    QVERIFY(found(u"900"_s).kind == Kind::Unknown);
}

void CodeFinderTest::twoItemsAreRefused()
{
    code(u"036000291452"_s, u"MIL-0001"_s);
    item(u"0036000291452"_s, u"BREAD"_s);
    for (const QString &scanned : {u"036000291452"_s, u"0036000291452"_s, u"00036000291452"_s}) {
        const FoundCode two = found(scanned);
        QVERIFY(two.kind == Kind::Several);
        QStringList items = two.items;
        items.sort();
        QCOMPARE(items, (QStringList{u"BREAD (0036000291452)"_s, u"MILK (MIL-0001)"_s}));
    }
}

void CodeFinderTest::twoItemsOfOneIdAreRefused()
{
    item(u"MIL-0001"_s, u"BUTTER"_s);
    QVERIFY(found(u"MIL-0001"_s).kind == Kind::Several);
}

void CodeFinderTest::exactEntryTellsTheUnits()
{
    QVERIFY(m_records->write(kept::code(), {u"insert into HarrowbyCode (Code, StockID, Units) values "
                                            "('036000291452', 'MIL-0001', 1), ('0036000291452', 'MIL-0001', 12)"_s,
                                            {}}));
    QCOMPARE(found(u"036000291452"_s).units, 1);
    QCOMPARE(found(u"0036000291452"_s).units, 12);
    QVERIFY(found(u"00036000291452"_s).kind == Kind::Several);
}

void CodeFinderTest::unknownAndOrphan()
{
    QVERIFY(found(u"4006381333931"_s).kind == Kind::Unknown);
    code(u"4006381333931"_s, u"MIL-0001"_s);
    run(u"DELETE FROM StockList WHERE StockID = 'MIL-0001'"_s);
    QVERIFY(found(u"4006381333931"_s).kind == Kind::Orphan);
}

void CodeFinderTest::oddCodesAreRefusedOrFoundExactly_data()
{
    QTest::addColumn<QString>("odd");
    QTest::addColumn<bool>("isCode");
    QTest::newRow("quote") << u"'; delete from StockList; --"_s << true;
    QTest::newRow("double quote") << u"\" or \"\"=\""_s << true;
    QTest::newRow("percent") << u"%%%%"_s << true;
    QTest::newRow("underscores") << u"________"_s << true;
    QTest::newRow("asterisk") << u"****"_s << true;
    QTest::newRow("question marks") << u"????"_s << true;
    QTest::newRow("NUL") << u"TEA-0001\u0000"_s << false;
    QTest::newRow("ten thousand") << QString(10000, u'9') << false;
    QTest::newRow("right to left") << u"\u202eTEA-0001"_s << false;
    QTest::newRow("half a character") << u"TEA-0001"_s + QChar(0xdc00) << false;
}

void CodeFinderTest::oddCodesAreRefusedOrFoundExactly()
{
    QFETCH(QString, odd);
    QFETCH(bool, isCode);
    QVERIFY(found(odd).kind == (isCode ? Kind::Unknown : Kind::Odd));
    const auto problem = table().add(odd, u"MIL-0001"_s, 2);
    QCOMPARE(!problem, isCode);
    if (isCode)
        QCOMPARE(found(odd).stockId, u"MIL-0001"_s);
    QCOMPARE(found(u"TEA-0001"_s).stockId, u"TEA-0001"_s);
    QCOMPARE(read(u"select count(*) from StockList"_s), u"2"_s);
}

void CodeFinderTest::ownRangeIsExactWithoutARule()
{
    item(u"12345"_s, u"CHEESE"_s);
    const QString scanned = u"2112345019994"_s;
    QVERIFY(found(scanned).kind == Kind::Unknown);
    rule(u"29IIIIIPPPPPC 2"_s); // of another prefix
    QVERIFY(found(scanned).kind == Kind::Unknown);
    code(scanned, u"MIL-0001"_s);
    QCOMPARE(found(scanned).stockId, u"MIL-0001"_s);
    QVERIFY(!found(scanned).cost);
}

void CodeFinderTest::priceInside()
{
    item(u"12345"_s, u"CHEESE"_s);
    rule(u"21IIIIIPPPPPC 2"_s);
    const FoundCode cheese = found(u"2112345019994"_s);
    QVERIFY(cheese.kind == Kind::Item);
    QCOMPARE(cheese.stockId, u"12345"_s);
    QCOMPARE(cheese.units, 1);
    QCOMPARE(cheese.cost.value_or(-1), 19.99);
    QVERIFY(found(u"2112345019995"_s).kind == Kind::Unknown); // misread
    QVERIFY(found(u"2154321019994"_s).kind == Kind::Unknown);
    QVERIFY(!ShopSettings(*m_records).remove(u"InStoreCode.21"_s));
    QVERIFY(found(u"2112345019994"_s).kind == Kind::Unknown); // switched off again
}

void CodeFinderTest::weightInside()
{
    item(u"00042"_s, u"HAM"_s, u"9.99"_s);
    item(u"43"_s, u"PAPER"_s, u"0"_s);
    rule(u"29IIIIIWWWWWC 3"_s);
    const FoundCode ham = found(u"2900042012352"_s); // 1.235 kg
    QVERIFY(ham.kind == Kind::Item);
    QCOMPARE(ham.units, 1);
    QCOMPARE(ham.cost.value_or(-1), 12.34);
    const FoundCode paper = found(u"2900043012351"_s);
    QVERIFY(paper.kind == Kind::Odd);
    QCOMPARE(paper.problem, u"PAPER (43) has no price for a weight"_s);
}

void CodeFinderTest::numberInsideIsPaddedBefore()
{
    item(u"9"_s, u"NINE"_s);
    item(u"90"_s, u"NINETY"_s);
    code(u"0007"_s, u"MIL-0001"_s);
    rule(u"20IIIIIPPPPPC 2"_s);
    QCOMPARE(found(u"2000009001006"_s).name, u"NINE"_s);
    QCOMPARE(found(u"2000090001008"_s).name, u"NINETY"_s);
    QCOMPARE(found(u"2000007001008"_s).name, u"MILK"_s);
    QVERIFY(found(u"2000900001006"_s).kind == Kind::Unknown);
    item(u"00009"_s, u"OTHER"_s);
    QVERIFY(found(u"2000009001006"_s).kind == Kind::Several);
}

void CodeFinderTest::exactEntryGoesBeforeTheRule()
{
    item(u"12345"_s, u"CHEESE"_s);
    rule(u"21IIIIIPPPPPC 2"_s);
    code(u"2112345019994"_s, u"MIL-0001"_s);
    QCOMPARE(found(u"2112345019994"_s).name, u"MILK"_s);
    QVERIFY(!found(u"2112345019994"_s).cost);
}

void CodeFinderTest::foreignTypesFindNothingElse()
{
    run(u"ALTER TABLE StockList RENAME TO Former"_s);
    run(u"CREATE TABLE StockList (StockID INTEGER, StockName TEXT, StockCategory TEXT, StockCost NUMERIC, "
        "StockReorderLevel NUMERIC, StockAvailable NUMERIC, StockUse TEXT)"_s);
    run(u"INSERT INTO StockList (StockID, StockName) VALUES (123, 'NUMBER')"_s);
    QCOMPARE(found(u"123"_s).name, u"NUMBER"_s);
    QVERIFY(found(u"0123"_s).kind == Kind::Unknown);
    QVERIFY(found(u"123.0"_s).kind == Kind::Unknown);
}

void CodeFinderTest::failedReadIsToldApart()
{
    QList<DbFailure> told;
    m_records->setFailureHandler([&](const DbFailure &failure) { told << failure; });
    run(u"ALTER TABLE StockList RENAME TO Former"_s);
    QVERIFY(found(u"TEA-0001"_s).kind == Kind::Failed);
    QCOMPARE(told.size(), 1);
    QVERIFY(told.constFirst().kind == DbFailure::Kind::Read);
}

void CodeFinderTest::rulesThatCannotBeReadAreToldApart()
{
    rule(u"21IIIIIPPPPPC 2"_s);
    run(u"ALTER TABLE HarrowbySetting RENAME COLUMN Value TO Former"_s);
    QVERIFY(found(u"2112345019994"_s).kind == Kind::Failed);
    QVERIFY(found(u"4006381333931"_s).kind == Kind::Unknown); // no rule is for it
}

void CodeFinderTest::statements()
{
    QStringList plan;
    for (const QString &select : {u"select StockID, StockName, StockCost from StockList where StockID in (?, ?)"_s,
                                  u"select c.Code, c.StockID, c.Units, s.StockID, s.StockName from HarrowbyCode c "
                                  "left join StockList s on s.StockID = c.StockID where c.Code in (?, ?)"_s}) {
        code(QString::number(plan.size()), u"MIL-0001"_s);
        SqliteStatement query(m_database.get(), u"explain query plan "_s + select, QList<DbValue>());
        while (query.next())
            plan << query.text(3);
        QVERIFY(!query.hasFailed());
    }
    for (const QString &step : std::as_const(plan))
        QVERIFY2(step.startsWith(u"SEARCH"_s), qPrintable(plan.join(u'\n')));
}

void CodeFinderTest::itemsAreLookedFor()
{
    item(u"A_1"_s, u"100% JUICE"_s);
    item(u"AB1"_s, u"O'NEILL\\S"_s);
    const auto names = [this](const QString &text, int most = 9) {
        QStringList all;
        for (const StockItem &one : table().itemsLike(text, most).value_or(QList<StockItem>()))
            all << one.name;
        return all.join(u',');
    };
    QCOMPARE(names(u"mil"_s), u"MILK"_s);
    QCOMPARE(names(u" -0001 "_s), u"MILK,TEA"_s);
    QCOMPARE(names(u"%"_s), u"100% JUICE"_s);
    QCOMPARE(names(u"a_"_s), u"100% JUICE"_s);
    QCOMPARE(names(u"\\"_s), u"O'NEILL\\S"_s);
    QCOMPARE(names(u"o'n"_s), u"O'NEILL\\S"_s);
    QCOMPARE(names({}, 2), u"100% JUICE,MILK"_s);
}

void CodeFinderTest::takenCodes_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("said");
    QTest::newRow("ID") << u"TEA-0001"_s << u"The code is taken: it is the ID of TEA (TEA-0001)."_s;
    QTest::newRow("own ID") << u" MIL-0001 "_s << u"MIL-0001 is the item's own ID, which is read without an entry."_s;
    QTest::newRow("code") << u"036000291452"_s << u"The code is taken: it belongs to TEA (TEA-0001)."_s;
    QTest::newRow("in another length") << u"0036000291452"_s << u"The code is taken: it belongs to TEA (TEA-0001)."_s;
    QTest::newRow("the same item's") << u"4006381333931"_s
                                     << u"MILK (MIL-0001) has the code already, as 04006381333931."_s;
    QTest::newRow("orphan's")
        << u"GONE"_s << u"The code is taken by an item that is gone. Delete it there, or give it to this item."_s;
    QTest::newRow("odd") << u"a\u0000b"_s << u"This is no code: it holds a character that cannot be seen."_s;
    QTest::newRow("free") << u"FREE"_s << QString();
}

void CodeFinderTest::takenCodes()
{
    QFETCH(QString, code);
    QFETCH(QString, said);
    item(u"BUT-0001"_s, u"BUTTER"_s);
    this->code(u"036000291452"_s, u"TEA-0001"_s);
    this->code(u"04006381333931"_s, u"MIL-0001"_s);
    this->code(u"GONE"_s, u"BUT-0001"_s);
    run(u"DELETE FROM StockList WHERE StockID = 'BUT-0001'"_s);
    const auto problem = table().add(code, u"MIL-0001"_s, 1);
    QCOMPARE(problem.value_or(QString()), said);
    QCOMPARE(read(u"select count(*) from HarrowbyCode"_s), said.isEmpty() ? u"4"_s : u"3"_s);
}

void CodeFinderTest::whatIsNotAdded()
{
    for (const int units : {0, -1, 32768})
        QCOMPARE(table().add(u"A"_s, u"MIL-0001"_s, units).value_or(QString()), u"A scan can sell 1 to 32767 units."_s);
    run(u"pragma query_only = 1"_s);
    QStringList told;
    m_records->setFailureHandler([&](const DbFailure &failure) { told << failure.statement; });
    const auto problem = table().add(u"A"_s, u"MIL-0001"_s, 1);
    QVERIFY(problem && problem->startsWith(u"The code was not added.\n"_s));
    QCOMPARE(told.size(), 1);
}

void CodeFinderTest::entriesAreListed()
{
    item(u"BUT-0001"_s, u"BUTTER"_s);
    code(u"B"_s, u"TEA-0001"_s, 12);
    code(u"A"_s, u"TEA-0001"_s);
    code(u"C"_s, u"BUT-0001"_s);
    run(u"DELETE FROM StockList WHERE StockID = 'BUT-0001'"_s);
    item(u"TEA-0001"_s, u"SECOND OF THIS ID"_s);
    QStringList lines;
    const auto all = table().list();
    QVERIFY(all);
    for (const ItemCode &entry : *all)
        lines << u"%1 %2 %3 %4"_s.arg(entry.code, entry.stockId).arg(entry.units).arg(entry.isOrphan);
    QCOMPARE(lines, (QStringList{u"C BUT-0001 1 1"_s, u"A TEA-0001 1 0"_s, u"B TEA-0001 12 0"_s}));
}

void CodeFinderTest::renamedItemKeepsItsCodes()
{
    code(u"A"_s, u"MIL-0001"_s, 6);
    run(u"UPDATE StockList SET StockID = 'DAI-0007', StockName = 'WHOLE MILK' WHERE StockID = 'MIL-0001'"_s);
    QVERIFY(!table().itemRenamed(u"MIL-0001"_s, u"DAI-0007"_s));
    QCOMPARE(found(u"A"_s).stockId, u"DAI-0007"_s);
    QCOMPARE(found(u"A"_s).units, 6);
    run(u"pragma query_only = 1"_s);
    const auto failure = table().itemRenamed(u"DAI-0007"_s, u"X"_s);
    QVERIFY(!failure); // the item is still there
    run(u"pragma query_only = 0"_s);
    run(u"UPDATE StockList SET StockID = 'X' WHERE StockID = 'DAI-0007'"_s);
    run(u"pragma query_only = 1"_s);
    QVERIFY(table().itemRenamed(u"DAI-0007"_s, u"X"_s));
}

void CodeFinderTest::renamedItemOfTwoLeavesThem()
{
    item(u"MIL-0001"_s, u"BUTTER"_s);
    code(u"A"_s, u"MIL-0001"_s);
    run(u"UPDATE StockList SET StockID = 'X' WHERE StockName = 'BUTTER'"_s);
    QVERIFY(!table().itemRenamed(u"MIL-0001"_s, u"X"_s));
    QCOMPARE(found(u"A"_s).name, u"MILK"_s);
}

void CodeFinderTest::newItemGetsNobodysCodes()
{
    code(u"A"_s, u"MIL-0001"_s);
    run(u"DELETE FROM StockList WHERE StockID = 'MIL-0001'"_s);
    item(u"MIL-0001"_s, u"CREAM"_s); // an automatic ID that is free again
    QVERIFY(!table().itemAdded(u"MIL-0001"_s));
    QVERIFY(found(u"A"_s).kind == Kind::Orphan);
    QCOMPARE(table().list().value_or(QList<ItemCode>()).size(), 1);
    QVERIFY(table().giveTo(seen(u"A"_s), u"TEA-0001"_s).value_or(false));
    QCOMPARE(found(u"A"_s).name, u"TEA"_s);
}

void CodeFinderTest::shopWithoutCodesGetsNoTable()
{
    (void)found(u"A"_s);
    (void)table().list();
    QVERIFY(!table().itemAdded(u"MIL-0001"_s));
    QVERIFY(!table().itemRenamed(u"FORMER"_s, u"MIL-0001"_s));
    QCOMPARE(read(u"select count(*) from sqlite_master where name like 'Harrowby%' and type = 'table'"_s), u"0"_s);
}

void CodeFinderTest::unitsAndDeleting()
{
    code(u"A"_s, u"MIL-0001"_s);
    const ItemCode first = seen(u"A"_s);
    QVERIFY(table().setUnits(first, 24).value_or(false));
    QCOMPARE(found(u"A"_s).units, 24);
    QVERIFY(!table().setUnits(first, 6).value_or(true)); // another has changed it meanwhile
    QVERIFY(!table().remove(first).value_or(true));
    QCOMPARE(found(u"A"_s).units, 24);
    const ItemCode now = seen(u"A"_s);
    QVERIFY(table().remove(now).value_or(false));
    QVERIFY(!table().remove(now).value_or(true)); // gone meanwhile
    QVERIFY(!table().setUnits(now, 2).value_or(true));
    QVERIFY(!table().giveTo(now, u"TEA-0001"_s).value_or(true));
    QVERIFY(found(u"A"_s).kind == Kind::Unknown);
}

HARROWBY_CORE_TEST(app_code_finder_test, CodeFinderTest)
#include "code_finder_test.moc"
