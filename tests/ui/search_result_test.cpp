// SPDX-License-Identifier: MIT
#include "tests/support/counter.h"

#include "tests/program/test_program.h"
#include "tests/ui/interruption.h"
#include "tests/ui/search_desk.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/row_list.h"

#include <QAbstractItemModel>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::search_desk;

namespace {

QStringList entered(const Counter &counter)
{
    return {counter.text("Combo2"), counter.text("Combo3"), counter.text("Combo12"), counter.text("Combo11")};
}

void selectResult(Counter &counter, int row)
{
    counter.find<RowList>("LV2")->selectRow(row);
    counter.click("Command21");
}

QPoint centreOf(const Counter &counter, int row)
{
    const auto *list = counter.find<RowList>("LV2");
    return list->visualRect(list->model()->index(row, 1)).center();
}

} // namespace

/// The result panel of the search, and what becomes of the chosen item.
class SearchResultTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fillsItAfresh();
    void hidesTheKeypad();
    void liesInFront_data();
    void liesInFront();
    void coversNoEntryFieldOfTheStock_data();
    void coversNoEntryFieldOfTheStock();
    void noResultIsSelectedAtFirst();
    void manyResults();
    void secondSearchWins();
    void closeHidesThePanel();
    void selectsForTheCustomSale();
    void selectsForTheReorder();
    void selectsNothingElsewhere_data();
    void selectsNothingElsewhere();
    void emptyListSelectsNothing();
    void doubleClickSelects();
    void enterSelects();
    void singleClickDoesNot();
    void tabsHideThePanel_data();
    void tabsHideThePanel();
    void logoutHidesThePanel();
    void selectedItemIsSold();
    void namesAreShownPlain();
};

void SearchResultTest::fillsItAfresh()
{
    Counter counter;
    openShop(counter);
    search(counter, u"tea"_s);
    counter.file.sql(u"UPDATE StockList SET StockName = '*COFFEE*' WHERE StockID = 'A3'"_s);
    search(counter, u"coffee"_s);
    QCOMPARE(counter.rows("LV2"), QStringList{u"1.|A3|*COFFEE*|DRINKS"_s});
}

void SearchResultTest::hidesTheKeypad()
{
    Counter counter;
    openShop(counter);
    counter.click("Command31");
    search(counter, u"tea"_s);
    QVERIFY(isOpen(counter));
    QVERIFY(!counter.find("Frame13")->isVisible());
}

void SearchResultTest::liesInFront_data()
{
    QTest::addColumn<int>("tab");
    for (const int tab : WorkArea::all)
        QTest::addRow("%d", tab) << tab;
}

void SearchResultTest::liesInFront()
{
    QFETCH(int, tab);
    Counter counter;
    openShop(counter, tab);
    search(counter, u"tea"_s);
    for (const char *name : {"LV2", "Command9", "Command21"}) {
        const QWidget *control = counter.find(name);
        const QPoint centre = control->mapTo(&counter.window(), control->rect().center());
        const QWidget *there = counter.window().childAt(centre);
        QVERIFY(there == control || control->isAncestorOf(there));
    }
}

void SearchResultTest::coversNoEntryFieldOfTheStock_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("fields");
    QTest::newRow("add and edit") << WorkArea::EditStock << u"Frame7"_s;
    QTest::newRow("reorder") << WorkArea::ReorderStock << u"Frame8"_s;
}

void SearchResultTest::coversNoEntryFieldOfTheStock()
{
    QFETCH(int, tab);
    QFETCH(QString, fields);
    Counter counter;
    openShop(counter, tab);
    search(counter, u"tea"_s);
    const auto placeOf = [&counter](const char *name) {
        const QWidget *frame = counter.find(name);
        return QRect(frame->mapTo(&counter.window(), QPoint()), frame->size());
    };
    const QRect result = placeOf("Frame11");
    QVERIFY(!result.intersects(placeOf(qPrintable(fields))));
    QVERIFY(placeOf("Frame10").contains(result));
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
    counter.click("Command31");
    const QRect keypad = placeOf("Frame13");
    search(counter, u"tea"_s);
    QCOMPARE(placeOf("Frame11"), keypad); // they share a place
}

void SearchResultTest::noResultIsSelectedAtFirst()
{
    Counter counter;
    openShop(counter);
    search(counter, u"tea"_s);
    QCOMPARE(counter.find<RowList>("LV2")->selectedRow(), -1);
    counter.click("Command21");
    QCOMPARE(counter.text("Combo3"), QString());
    QVERIFY(counter.hasFocus("LV2")); // the arrow keys choose
}

void SearchResultTest::manyResults()
{
    Counter counter;
    openShop(counter);
    counter.file.sql(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 40000) "
                     "INSERT INTO StockList (StockID, StockName, StockCategory, StockUse) "
                     "SELECT 'N' || i, '*NUTS*', 'FOOD', 'Enabled' FROM n"_s);
    search(counter, u"nuts"_s);
    const QStringList rows = counter.rows("LV2");
    QCOMPARE(rows.size(), 40000);
    QCOMPARE(rows.first(), u"1.|N1|*NUTS*|FOOD"_s);
    QCOMPARE(rows.last(), u"40000.|N40000|*NUTS*|FOOD"_s);
}

/// A second one that is begun while the first one fills its list.
void SearchResultTest::secondSearchWins()
{
    Counter counter;
    openShop(counter);
    counter.file.sql(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 20000) "
                     "INSERT INTO StockList (StockID, StockName, StockCategory, StockUse) "
                     "SELECT 'N' || i, '*NUTS*', 'FOOD', 'Enabled' FROM n"_s);
    const QAbstractItemModel *list = counter.find<RowList>("LV2")->model();
    bool entered = false;
    counter.connection->before = [](const QString &statement) {
        if (statement.startsWith(u"Select StockID, "_s))
            passRest(); // so that the window breathes among the first rows
    };
    connect(list, &QAbstractItemModel::rowsInserted, list, [&] {
        if (std::exchange(entered, true))
            return;
        QTimer::singleShot(0, &counter.window(), [&] { search(counter, u"tea"_s); });
    });
    counter.boxes.expectInput(prompt, title, QString(), u"nuts"_s);
    counter.click("Command8");
    QVERIFY(entered);
    QCOMPARE(counter.rows("LV2"), (QStringList{u"1.|A2|*TEA*|HOT DRINKS"_s, u"2.|A3|*tea*|DRINKS"_s}));
}

void SearchResultTest::closeHidesThePanel()
{
    Counter counter;
    openShop(counter);
    search(counter, u"tea"_s);
    counter.connection->statements.clear();
    counter.click("Command9");
    QVERIFY(!isOpen(counter));
    QVERIFY(!counter.find("Frame13")->isVisible());
    QCOMPARE(counter.rows("LV2").size(), 2);
    QCOMPARE(counter.connection->statements, QStringList());
}

void SearchResultTest::selectsForTheCustomSale()
{
    Counter counter;
    openShop(counter);
    counter.setText("Combo4", u"3"_s);
    search(counter, u"tea"_s);
    counter.connection->statements.clear();
    selectResult(counter, 0);
    QCOMPARE(entered(counter), (QStringList{u"HOT DRINKS"_s, u"A2  |  *TEA*"_s, u"(ALL CATEGORY)"_s, QString()}));
    QCOMPARE(counter.connection->statements, QStringList()); // the texts alone
    QCOMPARE(counter.text("Label14"), QString());
    QCOMPARE(counter.text("Label7"), u"0.00"_s);
    QCOMPARE(counter.text("Label15"), u"Nil"_s);
    QVERIFY(isOpen(counter));
    selectResult(counter, 1);
    QCOMPARE(counter.text("Combo3"), u"A3  |  *tea*"_s);
}

void SearchResultTest::selectsForTheReorder()
{
    Counter counter;
    openShop(counter, WorkArea::ReorderStock);
    search(counter, u"tea"_s);
    selectResult(counter, 0);
    QCOMPARE(entered(counter), (QStringList{u"(ALL CATEGORY)"_s, QString(), u"HOT DRINKS"_s, u"A2  |  *TEA*"_s}));
    QCOMPARE(counter.entries("Combo11"), QStringList());
    QCOMPARE(counter.text("Label13"), u"100"_s); // the item's change handler shows it
    QVERIFY(isOpen(counter));
    counter.file.sql(u"UPDATE StockList SET StockName = '*MILK*' WHERE StockName = 'MILK'"_s);
    search(counter, u"milk"_s);
    selectResult(counter, 0);
    QCOMPARE(counter.text("Combo11"), u"*A1*  |  *MILK*"_s);
    QCOMPARE(counter.text("Label12"), u"25"_s);
    QCOMPARE(counter.text("Label13"), u"20"_s);
    QVERIFY(counter.find<LevelLabel>("Label13")->isLow());
}

void SearchResultTest::selectsNothingElsewhere_data()
{
    QTest::addColumn<int>("tab");
    for (const int tab : {WorkArea::QuickSales, WorkArea::EditStock, WorkArea::Settings})
        QTest::addRow("%d", tab) << tab;
}

void SearchResultTest::selectsNothingElsewhere()
{
    QFETCH(int, tab);
    Counter counter;
    openShop(counter, tab);
    search(counter, u"tea"_s);
    selectResult(counter, 0);
    QCOMPARE(entered(counter), (QStringList{u"(ALL CATEGORY)"_s, QString(), u"(ALL CATEGORY)"_s, QString()}));
    QVERIFY(isOpen(counter));
}

void SearchResultTest::emptyListSelectsNothing()
{
    Counter counter;
    openShop(counter);
    counter.find("Frame11")->show();
    counter.click("Command21");
    QCOMPARE(counter.text("Combo3"), QString());
}

void SearchResultTest::doubleClickSelects()
{
    Counter counter;
    openShop(counter);
    search(counter, u"tea"_s);
    QTest::mouseClick(counter.find<RowList>("LV2")->viewport(), Qt::LeftButton, {}, centreOf(counter, 1));
    QTest::mouseDClick(counter.find<RowList>("LV2")->viewport(), Qt::LeftButton, {}, centreOf(counter, 1));
    QCOMPARE(counter.text("Combo3"), u"A3  |  *tea*"_s);
    QVERIFY(isOpen(counter));
}

void SearchResultTest::enterSelects()
{
    Counter counter;
    openShop(counter);
    search(counter, u"tea"_s);
    counter.find<RowList>("LV2")->selectRow(0);
    QTest::keyClick(counter.find("LV2"), Qt::Key_Down);
    QCOMPARE(counter.text("Combo3"), QString());
    QTest::keyClick(counter.find("LV2"), Qt::Key_Return);
    QCOMPARE(counter.text("Combo3"), u"A3  |  *tea*"_s);
}

void SearchResultTest::singleClickDoesNot()
{
    Counter counter;
    openShop(counter);
    search(counter, u"tea"_s);
    QTest::mouseClick(counter.find<RowList>("LV2")->viewport(), Qt::LeftButton, {}, centreOf(counter, 1));
    QCOMPARE(counter.text("Combo3"), QString());
    QCOMPARE(counter.find<RowList>("LV2")->selectedRow(), 1);
}

void SearchResultTest::tabsHideThePanel_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<bool>("hides");
    for (const int tab : WorkArea::all)
        QTest::addRow("%d", tab) << tab << (tab != WorkArea::EditStock);
}

void SearchResultTest::tabsHideThePanel()
{
    QFETCH(int, tab);
    QFETCH(bool, hides);
    Counter counter;
    openShop(counter);
    search(counter, u"tea"_s);
    counter.chooseTab("TabStrip1", tab);
    QCOMPARE(counter.find("Frame11")->isHidden(), hides);
}

void SearchResultTest::logoutHidesThePanel()
{
    Counter counter;
    openShop(counter);
    search(counter, u"tea"_s);
    counter.boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::AskDefaultNo, Answer::Yes);
    counter.click("Command27");
    QVERIFY(!isOpen(counter));
}

void SearchResultTest::selectedItemIsSold()
{
    Counter counter;
    openShop(counter);
    search(counter, u"tea"_s);
    selectResult(counter, 0);
    counter.setText("Combo4", u"2"_s);
    counter.click("Command15");
    QCOMPARE(counter.cart(), QStringList{u"A2  |  *TEA*|2|5.00"_s});
}

void SearchResultTest::namesAreShownPlain()
{
    Counter counter;
    openShop(counter);
    counter.file.addItem(u"B1"_s, u"*<b>M & M</b>*"_s, 1, 1, u"<i>&FOOD"_s);
    search(counter, u"<b>m & m</b>"_s);
    QCOMPARE(counter.rows("LV2"), QStringList{u"1.|B1|*<b>M & M</b>*|<i>&FOOD"_s});
    counter.boxes.expectInput(prompt, title, QString(), u"<b>&x"_s);
    counter.boxes.expect(u"No Search Found for <b>&x!"_s, box::Exclamation);
    counter.click("Command8");
}

HARROWBY_TEST(search_result_test, SearchResultTest)
#include "search_result_test.moc"
