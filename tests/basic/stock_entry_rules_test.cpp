// SPDX-License-Identifier: MIT
#include "basic/reorder_level.h"
#include "basic/stock_entry_rules.h"
#include "basic/stock_id.h"

#include "tests/program/test_program.h"

#include <QTest>

#include <functional>
#include <limits>

using namespace harrowby;
using namespace Qt::StringLiterals;

/// Checks, texts and figures of a stock item that is entered.
class StockEntryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void faults_data();
    void faults();
    void firstFaultWins();
    void faultTexts_data();
    void faultTexts();
    void storedTexts_data();
    void storedTexts();
    void storedFigures_data();
    void storedFigures();
    void usesAreStoredAsChosen_data();
    void usesAreStoredAsChosen();
    void prefixes_data();
    void prefixes();
    void automaticIds_data();
    void automaticIds();
    void freeIds_data();
    void freeIds();
    void questions();
    void reorders_data();
    void reorders();
};

Q_DECLARE_METATYPE(DbValue)
Q_DECLARE_METATYPE(StockFault)

namespace {

using Change = std::function<void(StockEntry &)>;

StockEntry faultless()
{
    return {u"TEA-1"_s, u"DRINKS"_s, u"GREEN TEA"_s, u"1.50"_s, u"5"_s, u"20"_s, u"Enabled"_s};
}

} // namespace

Q_DECLARE_METATYPE(Change)

void StockEntryTest::faults_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<StockFault>("fault");
    const auto row = [](const char *name, StockFault fault, const Change &change) {
        QTest::newRow(name) << change << fault;
    };
    row("none", StockFault::None, [](StockEntry &) {});
    row("no ID", StockFault::Id, [](StockEntry &e) { e.id.clear(); });
    row("no category", StockFault::Category, [](StockEntry &e) { e.category.clear(); });
    row("no name", StockFault::Name, [](StockEntry &e) { e.name.clear(); });
    using Field = QString StockEntry::*;
    const std::initializer_list<std::tuple<const char *, Field, StockFault>> figures{
        {"cost", &StockEntry::cost, StockFault::Cost},
        {"level", &StockEntry::reorderLevel, StockFault::ReorderLevel},
        {"stock", &StockEntry::available, StockFault::Available}};
    for (const auto &[figure, field, fault] : figures) {
        for (const QString &bad : {u""_s, u"abc"_s, u"-1"_s, u"-0.01"_s, u"1.2.3"_s, u"12x"_s, u","_s, u"."_s, u"-"_s,
                                   u"1e400"_s, u"nan"_s, u"inf"_s, u"0x10"_s, u"$1"_s})
            row(qPrintable(QLatin1StringView(figure) + u": "_s + bad), fault,
                [field = field, bad](StockEntry &e) { e.*field = bad; });
        for (const QString &good : {u"0"_s, u"-0"_s, u"+1"_s, u".5"_s, u"5."_s, u"1, 234.5"_s, u"1,234,567"_s, u"1e3"_s,
                                    u"100000"_s, u"1e-400"_s})
            row(qPrintable(QLatin1StringView(figure) + u": "_s + good), StockFault::None,
                [field = field, good](StockEntry &e) { e.*field = good; });
    }
    for (const QString &bad : {u""_s, u"Yes"_s, u"enable"_s, u"Enabled!"_s, u"-1"_s})
        row(qPrintable(u"use: "_s + bad), StockFault::Use, [bad](StockEntry &e) { e.use = bad; });
    for (const QString &good : {u"Enabled"_s, u"disabled"_s, u"ENABLED"_s, u"dISabled"_s})
        row(qPrintable(u"use: "_s + good), StockFault::None, [good](StockEntry &e) { e.use = good; });
}

void StockEntryTest::faults()
{
    QFETCH(const Change, change);
    StockEntry entry = faultless();
    change(entry);
    QTEST(findFault(entry), "fault");
}

void StockEntryTest::firstFaultWins()
{
    StockEntry entry;
    QCOMPARE(findFault(entry), StockFault::Id);
    entry.id = u"1"_s;
    QCOMPARE(findFault(entry), StockFault::Category);
    entry.category = u"A"_s;
    QCOMPARE(findFault(entry), StockFault::Name);
    entry.name = u"B"_s;
    QCOMPARE(findFault(entry), StockFault::Cost);
    entry.cost = u"0"_s;
    QCOMPARE(findFault(entry), StockFault::ReorderLevel);
    entry.reorderLevel = u"0"_s;
    QCOMPARE(findFault(entry), StockFault::Available);
    entry.available = u"0"_s;
    QCOMPARE(findFault(entry), StockFault::Use);
    entry.use = u"Enabled"_s;
    QCOMPARE(findFault(entry), StockFault::None);
}

void StockEntryTest::faultTexts_data()
{
    QTest::addColumn<StockFault>("fault");
    QTest::addColumn<QString>("text");
    QTest::newRow("ID") << StockFault::Id << u"Invalid Category ID Entry!"_s;
    QTest::newRow("category") << StockFault::Category << u"Invalid Category Name Selection!"_s;
    QTest::newRow("name") << StockFault::Name << u"Invalid Item Name Entry!"_s;
    QTest::newRow("cost") << StockFault::Cost << u"Non-numeric or Invalid Stock Cost!"_s;
    QTest::newRow("level") << StockFault::ReorderLevel << u"Non-numeric or Invalid Reorder Level!"_s;
    QTest::newRow("stock") << StockFault::Available << u"Non-numeric or Invalid Available Stock!"_s;
    QTest::newRow("use") << StockFault::Use << u"Stock must either be Enabled or Disabled!"_s;
    QTest::newRow("none") << StockFault::None << QString();
}

void StockEntryTest::faultTexts()
{
    QFETCH(const StockFault, fault);
    QTEST(faultText(fault), "text");
}

void StockEntryTest::storedTexts_data()
{
    QTest::addColumn<QString>("cost");
    QTest::addColumn<QString>("stored");
    QTest::newRow("plain") << u"1.5"_s << u"1.50"_s;
    QTest::newRow("whole") << u"12"_s << u"12.00"_s;
    QTest::newRow("nothing") << u"0"_s << u"0.00"_s;
    QTest::newRow("minus nothing") << u"-0"_s << u"0.00"_s;
    QTest::newRow("comma and blank") << u"1, 234.5"_s << u"1234.50"_s;
    QTest::newRow("no grouping") << u"1,234,567.891"_s << u"1234567.89"_s;
    QTest::newRow("half away from zero") << u"1.005"_s << u"1.01"_s;
    QTest::newRow("exponent") << u"1.5e3"_s << u"1500.00"_s;
}

void StockEntryTest::storedTexts()
{
    QFETCH(const QString, cost);
    StockEntry entry = faultless();
    entry.cost = cost;
    const StockItem item = stockItem(entry);
    QTEST(item.cost, "stored");
    QCOMPARE(item.id, entry.id);
    QCOMPARE(item.category, entry.category);
    QCOMPARE(item.name, entry.name);
}

void StockEntryTest::storedFigures_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<double>("stored");
    QTest::newRow("whole") << u"7"_s << 7.0;
    QTest::newRow("broken") << u"7.25"_s << 7.25;
    QTest::newRow("grouped") << u"1, 234"_s << 1234.0;
    QTest::newRow("beyond 16 bits") << u"40000"_s << 40000.0;
    QTest::newRow("exponent") << u"1e5"_s << 100000.0;
}

void StockEntryTest::storedFigures()
{
    QFETCH(const QString, typed);
    StockEntry entry = faultless();
    entry.reorderLevel = typed;
    QTEST(stockItem(entry).reorderLevel, "stored");
    QCOMPARE(stockItem(entry).available, 20.0);
    entry = faultless();
    entry.available = typed;
    QTEST(stockItem(entry).available, "stored");
    QCOMPARE(stockItem(entry).reorderLevel, 5.0);
}

void StockEntryTest::usesAreStoredAsChosen_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("stored");
    QTest::newRow("chosen") << u"Enabled"_s << u"Enabled"_s;
    QTest::newRow("other") << u"Disabled"_s << u"Disabled"_s;
    QTest::newRow("small letters") << u"enabled"_s << u"Enabled"_s;
    QTest::newRow("capitals") << u"DISABLED"_s << u"Disabled"_s;
}

void StockEntryTest::usesAreStoredAsChosen()
{
    QFETCH(const QString, typed);
    StockEntry entry = faultless();
    entry.use = typed;
    QTEST(stockItem(entry).use, "stored");
}

void StockEntryTest::prefixes_data()
{
    QTest::addColumn<QString>("category");
    QTest::addColumn<QString>("prefix");
    QTest::newRow("long") << u"BEVERAGES"_s << u"BEV"_s;
    QTest::newRow("small letters") << u"beverages"_s << u"BEV"_s;
    QTest::newRow("three") << u"TEA"_s << u"TEA"_s;
    QTest::newRow("two") << u"Ab"_s << u"AB"_s;
    QTest::newRow("one") << u"x"_s << u"X"_s;
    QTest::newRow("blank inside") << u"A bun"_s << u"A B"_s;
    QTest::newRow("letters with marks") << u"ébène"_s << u"ÉBÈ"_s;
    QTest::newRow("beyond 16 bits") << u"a🍎👩‍👩 fruit"_s << u"A🍎👩"_s;
    QTest::newRow("half a pair") << QString(QChar(0xD83D)) + u"abc"_s << QString(QChar(0xD83D)) + u"AB"_s;
}

void StockEntryTest::prefixes()
{
    QFETCH(const QString, category);
    QTEST(automaticIdPrefix(category), "prefix");
}

void StockEntryTest::automaticIds_data()
{
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("id");
    QTest::newRow("first") << u"BEV"_s << 1 << u"BEV-0001"_s;
    QTest::newRow("short prefix") << u"AB"_s << 1 << u"AB-0001"_s;
    QTest::newRow("four digits") << u"BEV"_s << 9999 << u"BEV-9999"_s;
    QTest::newRow("five digits") << u"BEV"_s << 10000 << u"BEV-10000"_s;
    QTest::newRow("last") << u"BEV"_s << 32767 << u"BEV-32767"_s;
}

void StockEntryTest::automaticIds()
{
    QFETCH(const QString, prefix);
    QFETCH(const int, number);
    QTEST(automaticId(prefix, static_cast<std::int16_t>(number)), "id");
}

void StockEntryTest::freeIds_data()
{
    QTest::addColumn<int>("last");
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QString>("id");
    QTest::newRow("first") << 0 << QStringList() << u"BEV-0001"_s;
    QTest::newRow("gap") << 0 << QStringList{u"BEV-0001"_s, u"BEV-0003"_s} << u"BEV-0002"_s;
    QTest::newRow("above the last") << 7 << QStringList{u"BEV-0008"_s} << u"BEV-0009"_s;
    QTest::newRow("largest") << 32766 << QStringList() << u"BEV-32767"_s;
    QTest::newRow("run out") << 32766 << QStringList{u"BEV-32767"_s} << QString();
}

void StockEntryTest::freeIds()
{
    QFETCH(const int, last);
    QFETCH(const QStringList, taken);
    const auto isTaken = [&](const QString &id) { return taken.contains(id); };
    QTEST(freeAutomaticId(u"BEV"_s, static_cast<std::int16_t>(last), isTaken), "id");
}

void StockEntryTest::questions()
{
    StockEntry entry = faultless();
    entry.cost = u"1234.5"_s;
    entry.available = u"40000"_s;
    const StockItem item = stockItem(entry);
    const QString question = updateQuestion(u"TEA-1  |  TEA"_s, item);
    QVERIFY2(question.startsWith(u"Update Stock [TEA-1  |  TEA] with "_s), qPrintable(question));
    QVERIFY2(question.endsWith(u'?'), qPrintable(question));
    for (const QString &value : {u"TEA-1"_s, u"GREEN TEA"_s, u"DRINKS"_s, u"1,234.50"_s, u"40000"_s, u"Enabled"_s})
        QVERIFY2(question.contains(value), qPrintable(value));
    QCOMPARE(multipleEntriesText(item), u"Stock [GREEN TEA] with ID [TEA-1] cannot be updated because multiple entries "
                                        "already exist. Change Stock ID or Item Name and try again!"_s);
}

void StockEntryTest::reorders_data()
{
    QTest::addColumn<DbValue>("level");
    QTest::addColumn<DbValue>("available");
    QTest::addColumn<bool>("low");
    const auto whole = [](std::int64_t number) { return DbValue(number); };
    QTest::newRow("equal") << whole(5) << whole(5) << true;
    QTest::newRow("one more") << whole(5) << whole(6) << false;
    QTest::newRow("one less") << whole(5) << whole(4) << true;
    QTest::newRow("both nothing") << whole(0) << whole(0) << true;
    QTest::newRow("below zero") << whole(0) << whole(-1) << true;
    QTest::newRow("a half more") << whole(5) << DbValue(5.5) << false;
    QTest::newRow("as numbers") << whole(9) << whole(10) << false;
    QTest::newRow("texts of numbers") << DbValue(u"9"_s) << DbValue(u"10"_s) << false;
    QTest::newRow("text and number") << DbValue(u"10"_s) << whole(9) << true;
    QTest::newRow("no level") << DbValue() << whole(-1) << false;
    QTest::newRow("no stock") << whole(1) << DbValue() << false;
    QTest::newRow("nothing known") << DbValue() << DbValue() << false;
    QTest::newRow("far beyond 16 bits") << whole(100000) << whole(100001) << false;
}

void StockEntryTest::reorders()
{
    QFETCH(const DbValue, level);
    QFETCH(const DbValue, available);
    QTEST(needsReorder(level, available), "low");
}

HARROWBY_CORE_TEST(stock_entry_rules_test, StockEntryTest)
#include "stock_entry_rules_test.moc"
