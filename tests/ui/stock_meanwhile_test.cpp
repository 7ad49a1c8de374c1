// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/program/test_program.h"
#include "tests/ui/stock_day.h"

#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QAbstractButton>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

using Action = void (*)(Counter &);
Q_DECLARE_METATYPE(Action)

/// What a user does with the existing-stock list, and beside it, while it fills.
class StockMeanwhileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void meanwhile_data();
    void meanwhile();
    void clickLoadsTheFields();
    void deleteInTheMiddle();
    void saveInTheMiddle();
    void saveOfAListedItemInTheMiddle();
    void nameTypedInTheMiddleStays();
    void anotherProgramWritesInTheMiddle();
};

namespace {

void saveItem(const Counter &counter, const QString &id, const QString &name)
{
    const std::initializer_list<std::pair<const char *, QString>> texts{
        {"Combo6", id},      {"Combo5", u"FOOD"_s}, {"Combo7", name},         {"Combo8", u"1"_s},
        {"Combo13", u"1"_s}, {"Combo14", u"2"_s},   {"Combo15", u"Enabled"_s}};
    for (const auto &[field, text] : texts)
        counter.setText(field, text);
    counter.click("Command16");
}

} // namespace

void StockMeanwhileTest::meanwhile_data()
{
    QTest::addColumn<Action>("action");
    const std::initializer_list<std::pair<const char *, Action>> actions{
        {"edit", [](Counter &c) { c.click("Command5"); }},
        {"new item", [](Counter &c) { c.click("Command26"); }},
        {"walk the rows", [](Counter &c) { QTest::keyClick(&stockList(c), Qt::Key_Home); }},
        {"Enter", [](Counter &c) { QTest::keyClick(&stockList(c), Qt::Key_Return); }},
        {"keypad", [](Counter &c) { c.click("Command31"); }},
        {"activity", [](Counter &c) { c.chooseTab("TabStrip2", SidePanel::SalesActivity); }},
        {"settings saved", [](Counter &c) { c.click("Command18"); }},
        {"custom sale's category", [](Counter &c) { c.setText("Combo2", u"FOOD"_s), c.click("Command8"); }},
        {"dashboard", [](Counter &c) { c.click("Command24"); }},
        {"category added", [](Counter &c) { c.setText("Combo16", u"NEW"_s), c.click("Command2"); }},
    };
    for (const auto &[name, action] : actions)
        QTest::newRow(name) << action;
}

void StockMeanwhileTest::meanwhile()
{
    QFETCH(const Action, action);
    Counter counter;
    openStock(counter);
    counter.boxes.answerTheRest([](const QString &) { return Answer::Yes; });
    const MidFill fill(counter, [&] { action(counter); });
    counter.click("Command7");
    QVERIFY(fill.isDone());
    QCOMPARE(listedIds(counter), storedUpperIds(counter));
    QCOMPARE(offeredNames(counter), stockItems);
    QCOMPARE(stockList(counter).selectedRow(), stockItems - 1);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM SysUsage WHERE SystemUsage = 'Stock List Refreshed.'"_s), u"1"_s);
}

void StockMeanwhileTest::clickLoadsTheFields()
{
    Counter counter;
    openStock(counter);
    const MidFill fill(counter, [&] {
        clickStockRow(counter, 0);
        QCOMPARE(stockList(counter).selectedRow(), 0);
    });
    counter.click("Command7");
    QVERIFY(fill.isDone());
    QCOMPARE(counter.text("Combo6"), u"ID-0"_s);
    QCOMPARE(counter.text("Combo7"), u"ITEM 0"_s); // what was typed meanwhile, not the text of before the fill
    QVERIFY(counter.find("Command26")->isEnabled());
    QCOMPARE(listedIds(counter), storedUpperIds(counter));
}

void StockMeanwhileTest::deleteInTheMiddle()
{
    Counter counter;
    openStock(counter);
    const MidFill fill(counter, [&] {
        stockList(counter).selectRow(0);
        counter.boxes.expect(u"Delete Stock [ITEM 0] with ID-0?"_s, box::AskDefaultNo, Answer::Yes);
        counter.click("Command6");
    });
    counter.click("Command7");
    QVERIFY(fill.isDone());
    QCOMPARE(storedUpperIds(counter).size(), stockItems - 1);
    QCOMPARE(listedIds(counter), storedUpperIds(counter));
    QCOMPARE(stockRows(counter).findRow(u"ID-1"_s), 0);
    QVERIFY(stockRows(counter).isLow(stockRows(counter).lastRow()));
}

void StockMeanwhileTest::saveInTheMiddle()
{
    Counter counter;
    openStock(counter);
    const MidFill fill(counter, [&] { saveItem(counter, u"NEW"_s, u"NEW ITEM"_s); });
    counter.click("Command7");
    QVERIFY(fill.isDone());
    QCOMPARE(storedUpperIds(counter).size(), stockItems + 1);
    QStringList sorted = listedIds(counter);
    QCOMPARE(sorted.count(u"NEW"_s), 1);
    sorted.sort();
    QStringList expected = storedUpperIds(counter);
    expected.sort();
    QCOMPARE(sorted, expected);
    QCOMPARE(counter.text("Combo7"), u"NEW ITEM"_s);
}

void StockMeanwhileTest::saveOfAListedItemInTheMiddle()
{
    Counter counter;
    openStock(counter);
    const MidFill fill(counter, [&] {
        counter.boxes.expect(u"Update Stock [ID-0  |  ITEM 0] with ID-0  |  CHANGED, FOOD, Unit Cost 1.00, R. Level 1, "
                             "Avail. 2, Enabled?"_s,
                             box::AskDefaultNo, Answer::Yes);
        saveItem(counter, u"ID-0"_s, u"CHANGED"_s);
    });
    counter.click("Command7");
    QVERIFY(fill.isDone());
    QCOMPARE(listedIds(counter), storedUpperIds(counter));
    QCOMPARE(stockRows(counter).text(0, 1), u"CHANGED"_s);
    QCOMPARE(counter.file.cell(u"SELECT StockName FROM StockList WHERE StockID = 'ID-0'"_s), u"CHANGED"_s);
}

void StockMeanwhileTest::nameTypedInTheMiddleStays()
{
    Counter counter;
    openStock(counter);
    counter.setText("Combo7", u"BEFORE"_s);
    counter.find("Combo7")->setFocus();
    const MidFill fill(counter, [&] { QTest::keyClicks(counter.find("Combo7"), u"tea"_s); });
    counter.click("Command7");
    QVERIFY(fill.isDone());
    QCOMPARE(counter.text("Combo7"), u"TEA"_s);
}

void StockMeanwhileTest::anotherProgramWritesInTheMiddle()
{
    Counter counter;
    counter.file.sql(u"PRAGMA journal_mode = WAL"_s);
    openStock(counter);
    const MidFill fill(counter, [&] {
        QVERIFY(Database(counter.file.path()).run(u"DELETE FROM StockList"_s));
        counter.click("Command18"); // a change by this window
    });
    counter.click("Command7");
    QVERIFY(fill.isDone());
    QCOMPARE(listedIds(counter).size(), stockItems); // all rows of one snapshot
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM SysUsage WHERE SystemUsage = 'Stock List Refreshed.'"_s), u"1"_s);
    counter.connection->before = [](const QString &) {};
    counter.click("Command7");
    QCOMPARE(listedIds(counter), QStringList());
}

HARROWBY_TEST(stock_meanwhile_test, StockMeanwhileTest)
#include "stock_meanwhile_test.moc"
