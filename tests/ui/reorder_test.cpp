// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/ui/reorder_desk.h"

#include "ui/widgets/row_list.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::reorder_desk;

namespace {

const QString invalid = u"New Stock Number is invalid or less than 1!"_s;

const QString dashboardQuery = u"Select Total(StockAvailable) as Totals from Stocklist where StockUse = 'Enabled'"_s;

} // namespace

/// Topping up stock.
class ReorderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reorderNeedsLogin();
    void reorderNeedsItsRight();
    void refusedQuantities_data();
    void refusedQuantities();
    void addsUnits_data();
    void addsUnits();
    void fiveUnitsAtTheLevel();
    void reorderRefused();
    void keyWithoutItem_data();
    void keyWithoutItem();
    void idIsNotTrimmed();
    void emptyIdIsAnId();
    void idWithQuote();
    void firstOfEqualIds();
    void orderOfEffects();
    void whoReorderedIsStored();
    void reporting();
    void listedRowIsBroughtUpToDate();
    void unlistedItemIsListed();
    void changedQuestionText();
    void failedUpdateShowsTheOldFigure();
    void noSaleGetsInBetween_data();
    void noSaleGetsInBetween();
    void refusedHoldIsNotTold();
    void lostCommitShowsTheOldFigure();
    void failedSelectDoesNothing();
};

void ReorderTest::reorderNeedsLogin()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    counter.click("Command17");
    QVERIFY(counter.hasFocus("Text3"));
}

void ReorderTest::reorderNeedsItsRight()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"MILK"_s, 1.25, 20);
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Undo"_s, u"Sales"_s});
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
    choose(counter, milk, u"5"_s);
    counter.boxes.expect(u"User [ANN] doesn't have this privilege!"_s, box::Exclamation);
    counter.click("Command17");
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
    QVERIFY(counter.find("Frame1")->isVisible());
    QCOMPARE(available(counter), u"20"_s);
}

void ReorderTest::refusedQuantities_data()
{
    QTest::addColumn<QString>("units");
    for (const char *units : {"abc", "0.5", "", "0", "-2", "-1.5", ".9", "0.9999999", "x5", ",5", "1e400", "-1e400",
                              "nan", "inf", "e5", "+", "."})
        QTest::newRow(*units == '\0' ? "nothing" : units) << QString::fromLatin1(units);
}

void ReorderTest::refusedQuantities()
{
    QFETCH(QString, units);
    Counter counter;
    openShop(counter);
    choose(counter, milk, units);
    counter.connection->statements.clear();
    counter.boxes.expect(invalid, box::Exclamation);
    counter.click("Command17");
    QCOMPARE(counter.connection->statements, QStringList());
    QCOMPARE(counter.text("Combo10"), units);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
}

void ReorderTest::addsUnits_data()
{
    QTest::addColumn<QString>("units");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<QString>("stock");
    QTest::addColumn<int>("undoable");
    QTest::newRow("1") << u"1"_s << u"1"_s << u"21"_s << 1;
    QTest::newRow("signed") << u"+5"_s << u"5"_s << u"25"_s << 5;
    QTest::newRow("leading zeros") << u"007"_s << u"7"_s << u"27"_s << 7;
    QTest::newRow("blanks") << u"  4  "_s << u"4"_s << u"24"_s << 4;
    QTest::newRow("and words") << u"3 boxes of 12"_s << u"3"_s << u"23"_s << 3;
    QTest::newRow("up to the comma") << u"1,000"_s << u"1"_s << u"21"_s << 1;
    QTest::newRow("up to the blank") << u"2 000"_s << u"2"_s << u"22"_s << 2;
    QTest::newRow("exponent") << u"1e2"_s << u"100"_s << u"120"_s << 100;
    QTest::newRow("1.5, half to even") << u"1.5"_s << u"1.5"_s << u"21.5"_s << 2;
    QTest::newRow("2.5, half to even") << u"2.5"_s << u"2.5"_s << u"22.5"_s << 2;
    QTest::newRow("3.5, half to even") << u"3.5"_s << u"3.5"_s << u"23.5"_s << 4;
    QTest::newRow("1.49") << u"1.49"_s << u"1.49"_s << u"21.49"_s << 1;
    QTest::newRow("trailing zeros") << u"6.50"_s << u"6.5"_s << u"26.5"_s << 6;
}

void ReorderTest::addsUnits()
{
    QFETCH(QString, units);
    QFETCH(QString, asked);
    QFETCH(QString, stock);
    QFETCH(int, undoable);
    Counter counter;
    openShop(counter);
    reorder(counter, milk, units, asked);
    QCOMPARE(available(counter), stock);
    QCOMPARE(counter.text("Label13"), stock);
    QCOMPARE(counter.text("StatusBar1_2"),
             asked + u" New item(s) to Stock [A1  |  MILK]. New Available Stock is "_s + stock + u'.');
    QCOMPARE(counter.text("Combo10"), u"0"_s);
    QCOMPARE(static_cast<int>(counter.state().last.LastReorderQty), undoable);
    QCOMPARE(counter.state().last.LastReorderItem, milk);
}

void ReorderTest::fiveUnitsAtTheLevel()
{
    Counter counter;
    openShop(counter);
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(available(counter), u"25"_s);
    QVERIFY(isRed(counter, "Label12")); // 25 of 25
    QVERIFY(isRed(counter, "Label13"));
    QCOMPARE(logged(counter).first(), u"5 New item(s) to Stock [A1  |  MILK]. New Available Stock is 25."_s);
    QCOMPARE(counter.text("Combo10"), u"0"_s);
    reorder(counter, milk, u"1"_s, u"1"_s);
    QVERIFY(!isRed(counter, "Label12"));
    QVERIFY(!isRed(counter, "Label13"));
}

void ReorderTest::reorderRefused()
{
    Counter counter;
    openShop(counter);
    choose(counter, milk, u"5"_s);
    counter.connection->statements.clear();
    counter.boxes.expect(addQuestion(u"5"_s, milk), box::Ask, Answer::No);
    counter.click("Command17");
    QCOMPARE(counter.connection->statements, QStringList());
    QCOMPARE(counter.text("Combo10"), u"5"_s);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
}

void ReorderTest::keyWithoutItem_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("looksForIt");
    QTest::newRow("nothing") << QString() << false;
    QTest::newRow("blanks") << u"   "_s << false;
    QTest::newRow("ID alone") << u"A1"_s << false;
    QTest::newRow("narrow separator") << u"A1 | MILK"_s << false;
    QTest::newRow("no such item") << u"Z9  |  GONE"_s << true;
    QTest::newRow("another case") << u"a1  |  MILK"_s << true;
}

void ReorderTest::keyWithoutItem()
{
    QFETCH(QString, key);
    QFETCH(bool, looksForIt);
    Counter counter;
    openShop(counter);
    const QString before = counter.text("Text1");
    choose(counter, key, u"5"_s);
    counter.connection->statements.clear();
    counter.boxes.expect(addQuestion(u"5"_s, key), box::Ask, Answer::Yes);
    counter.click("Command17");
    QCOMPARE(counter.connection->statements,
             looksForIt ? QStringList{u"Select * from StockList where StockID = '"_s + key.left(2) + u"'"_s}
                        : QStringList());
    QCOMPARE(counter.text("Combo10"), u"5"_s);
    QCOMPARE(counter.text("Text1"), before);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
}

void ReorderTest::idIsNotTrimmed()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u" A1"_s, u"OTHER"_s, 1, 3);
    reorder(counter, u" A1  |  MILK"_s, u"5"_s, u"5"_s);
    QCOMPARE(available(counter), u"20"_s);
    QCOMPARE(available(counter, u" A1"_s), u"8"_s);
    QCOMPARE(counter.state().last.LastReorderItem, milk); // stored trimmed, so that its undo looks for another item
    counter.boxes.expect(undoQuestion(u"5"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(available(counter), u"15"_s);
    QCOMPARE(available(counter, u" A1"_s), u"8"_s);
}

void ReorderTest::emptyIdIsAnId()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(QString(), u"NAMELESS"_s, 1, 3);
    reorder(counter, u"  |  NAMELESS"_s, u"5"_s, u"5"_s);
    QCOMPARE(available(counter, QString()), u"8"_s);
    // Trimmed, it has no separator any more.
    QCOMPARE(counter.state().last.LastReorderItem, u"|  NAMELESS"_s);
    counter.boxes.expect(undoQuestion(u"5"_s, u"|  NAMELESS"_s), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(available(counter, QString()), u"8"_s);
}

void ReorderTest::idWithQuote()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u"A'1"_s, u"ALE"_s, 1, 3);
    const QString before = counter.text("Text1");
    reorder(counter, u"A'1  |  ALE"_s, u"5"_s, u"5"_s);
    QCOMPARE(available(counter, u"A'1"_s), u"3"_s);
    QCOMPARE(counter.text("Text1"), before);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
}

void ReorderTest::firstOfEqualIds()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u"A1"_s, u"TWIN"_s, 1, 3);
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(counter.file.rows(u"SELECT StockName, StockAvailable FROM StockList WHERE StockID = 'A1'"_s),
             (QStringList{u"MILK|25"_s, u"TWIN|3"_s}));
}

void ReorderTest::orderOfEffects()
{
    Counter counter;
    openShop(counter);
    choose(counter, milk, u"5"_s);
    counter.connection->statements.clear();
    QStringList seen;
    counter.connection->before = [&](const QString &statement) {
        if (statement.startsWith(u"INSERT INTO SysUsage"_s))
            seen << counter.text("Label13") << counter.text("Combo10") << counter.state().last.LastReorderItem;
        if (statement == dashboardQuery)
            seen << counter.text("Combo10") << counter.rows("LV").first().section(u'|', 5, 5);
    };
    counter.boxes.expect(addQuestion(u"5"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command17");
    QCOMPARE(seen, (QStringList{u"25"_s, u"5"_s, milk, u"0"_s, u"25"_s}));
    QCOMPARE(
        counter.connection->statements.mid(0, 3),
        (QStringList{selectMilk, u"update StockList"_s,
                     u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('5 New item(s) to Stock "
                     "[A1  |  MILK]. New Available Stock is 25.','2018-03-05 14:07:09','2018-03-05 14:07:09')"_s}));
    QVERIFY(counter.connection->statements.indexOf(dashboardQuery) > 2);
}

void ReorderTest::whoReorderedIsStored()
{
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Reorder"_s});
    counter.file.addItem(u"A1"_s, u"MILK"_s, 1.25, 20);
    counter.file.sql(u"UPDATE StockList SET StockLastUpdated = 'long ago', StockLastModified = 'BOB', "
                     "StockAdded = 'EVE', StockReorderUser = 'SUE'"_s);
    counter.open();
    counter.logIn(u"ann"_s, u"PW"_s);
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(counter.file.rows(u"SELECT * FROM StockList"_s),
             QStringList{u"A1|MILK|DRINKS|1.25|2|25|Enabled|long ago|BOB|EVE|ANN"_s});
}

void ReorderTest::reporting()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1"_s);
    openShop(counter);
    reorder(counter, milk, u"5"_s, u"5"_s); // quiet: no box, although boxes are on
    QCOMPARE(counter.file.rows(u"SELECT SystemUsage FROM SysUsage"_s).last(),
             u"5 New item(s) to Stock [A1  |  MILK]. New Available Stock is 25."_s);
}

void ReorderTest::listedRowIsBroughtUpToDate()
{
    Counter counter;
    openShop(counter);
    QCOMPARE(counter.rows("LV").size(), 4);
    counter.file.sql(u"UPDATE StockList SET StockName = 'Fresh milk', StockCost = 1234.5, StockCategory = 'FOOD', "
                     "StockReorderLevel = 3, StockUse = 'Disabled', StockLastUpdated = 'today' WHERE StockID = 'A1'"_s);
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(counter.rows("LV").first(), u"A1|FRESH MILK|FOOD|1,234.50|3|25|Disabled|today"_s);
    QCOMPARE(counter.rows("LV").size(), 4);
    QCOMPARE(counter.find<RowList>("LV")->selectedRow(), 0);
}

void ReorderTest::unlistedItemIsListed()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u"c1"_s, u"New"_s, 2, 1);
    reorder(counter, u"c1  |  New"_s, u"1"_s, u"1"_s);
    QCOMPARE(counter.rows("LV").last(), u"C1|NEW|DRINKS|2.00|2|2|Enabled|"_s);
    QCOMPARE(counter.find<RowList>("LV")->selectedRow(), 4);
}

void ReorderTest::changedQuestionText()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u"D1"_s, u"<b>M & M</b>"_s, 2, 1);
    reorder(counter, u"D1  |  <b>M & M</b>"_s, u"1.50"_s, u"1.5"_s);
    QCOMPARE(available(counter, u"D1"_s), u"2.5"_s);
}

void ReorderTest::failedUpdateShowsTheOldFigure()
{
    Counter counter;
    openShop(counter);
    choose(counter, milk, u"5"_s);
    counter.connection->fails = [](const QString &statement) { return statement == u"update StockList"_s; };
    counter.boxes.expect(addQuestion(u"5"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command17");
    QCOMPARE(available(counter), u"20"_s);
    QCOMPARE(counter.text("Label13"), u"20"_s);
    QCOMPARE(logged(counter).first(), u"5 New item(s) to Stock [A1  |  MILK]. New Available Stock is 20."_s);
    QCOMPARE(counter.text("Combo10"), u"0"_s);
    QCOMPARE(counter.state().last.LastReorderItem, milk); // kept although the write failed
    QCOMPARE(counter.rows("LV").first().section(u'|', 5, 5), u"20"_s);
}

void ReorderTest::noSaleGetsInBetween_data()
{
    QTest::addColumn<bool>("undo");
    QTest::newRow("reorder") << false;
    QTest::newRow("undo") << true;
}

/// A sale of another till between reading the stock and writing the sum would be lost, so the read is held.
void ReorderTest::noSaleGetsInBetween()
{
    QFETCH(bool, undo);
    Counter counter;
    openShop(counter);
    Database other(counter.file.path());
    const auto sell = [&other] {
        return other.run(u"Update Stocklist Set StockAvailable = StockAvailable - 1 where StockID = 'A1'"_s);
    };
    QList<bool> sold;
    counter.connection->before = [&](const QString &statement) {
        if (statement == u"update StockList"_s)
            sold << sell();
    };
    reorder(counter, milk, u"5"_s, u"5"_s);
    if (undo) {
        counter.boxes.expect(undoQuestion(u"5"_s, milk), box::Ask, Answer::Yes);
        counter.click("Command23");
    }
    QCOMPARE(sold, QList<bool>(undo ? 2 : 1, false)); // locked out during the reorder
    QVERIFY(sell());                                  // and no longer afterwards
    QCOMPARE(available(counter), undo ? u"19"_s : u"24"_s);
}

void ReorderTest::refusedHoldIsNotTold()
{
    Counter counter;
    openShop(counter);
    std::vector<DbFailure> failures;
    counter.connection->setFailureHandler([&](const DbFailure &failure) { failures.push_back(failure); });
    counter.connection->refusesHolds = true;
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(available(counter), u"25"_s);
    QCOMPARE(counter.text("Label13"), u"25"_s);
    QVERIFY(failures.empty());
}

void ReorderTest::lostCommitShowsTheOldFigure()
{
    Counter counter;
    openShop(counter);
    std::vector<DbFailure> failures;
    counter.connection->setFailureHandler([&](const DbFailure &failure) { failures.push_back(failure); });
    counter.connection->losesCommits = true;
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(available(counter), u"20"_s);
    QCOMPARE(counter.text("Label13"), u"20"_s);
    QCOMPARE(logged(counter).first(), u"5 New item(s) to Stock [A1  |  MILK]. New Available Stock is 20."_s);
    QCOMPARE(failures.size(), 1u);
    QCOMPARE(failures.front().statement, u"UPDATE StockList"_s);
}

void ReorderTest::failedSelectDoesNothing()
{
    Counter counter;
    openShop(counter);
    choose(counter, milk, u"5"_s);
    const QString before = counter.text("Text1");
    counter.connection->fails = [](const QString &statement) { return statement == selectMilk; };
    counter.boxes.expect(addQuestion(u"5"_s, milk), box::Ask, Answer::Yes);
    counter.click("Command17");
    QCOMPARE(available(counter), u"20"_s);
    QCOMPARE(counter.text("Text1"), before);
    QCOMPARE(counter.text("Combo10"), u"5"_s);
}

HARROWBY_TEST(reorder_test, ReorderTest)
#include "reorder_test.moc"
