// SPDX-License-Identifier: MIT
#include "tests/ui/stock_day.h"

#include "tests/program/test_program.h"
#include "tests/support/inventory_probe.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

using namespace harrowby;
using namespace harrowby::test;

/// The existing-stock list while it fills: signals to the views, and refilling, leaving or closing it in the middle.
class StockFillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void viewsHearOfRowsTogether();
    void hundredThousandItems();
    void refreshAndRefreshAgain();
    void refreshedAgainAndAgain();
    void otherTabWins_data();
    void otherTabWins();
    void sameTabAgain();
    void logOutInTheMiddle();
    void closeInTheMiddle();
    void failingInTheMiddle();
    void brokenAfterRowsWereShown();
};

void StockFillTest::viewsHearOfRowsTogether()
{
    constexpr int many = 20'000;
    constexpr int few = many / 20;
    Counter counter;
    addStock(counter, many);
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    const QSignalSpy inserted(&stockRows(counter), &QAbstractItemModel::rowsInserted);
    const QSignalSpy changed(&stockRows(counter), &QAbstractItemModel::dataChanged);
    const QSignalSpy reset(&stockRows(counter), &QAbstractItemModel::modelReset);
    const QSignalSpy selected(stockList(counter).selectionModel(), &QItemSelectionModel::selectionChanged);
    const QSignalSpy current(stockList(counter).selectionModel(), &QItemSelectionModel::currentChanged);
    const QSignalSpy named(counter.find<PickList>("Combo7")->model(), &QAbstractItemModel::rowsInserted);
    counter.click("Command7");
    QCOMPARE(stockRows(counter).rowCount(), many);
    QCOMPARE(offeredNames(counter), many);
    QVERIFY2(inserted.count() >= 1 && inserted.count() < few, qPrintable(QString::number(inserted.count())));
    QVERIFY2(named.count() >= 1 && named.count() < few, qPrintable(QString::number(named.count())));
    QVERIFY2(selected.count() < few && current.count() < few, qPrintable(QString::number(selected.count())));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(reset.count(), 1);
}

void StockFillTest::hundredThousandItems()
{
    constexpr int many = 100'000;
    constexpr qint64 hangMs = 60'000;
    Counter counter;
    addStock(counter, many);
    counter.open();
    counter.logIn();
    QElapsedTimer timer;
    timer.start();
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    QVERIFY(timer.elapsed() < hangMs);
    QCOMPARE(stockRows(counter).rowCount(), many);
    QCOMPARE(offeredNames(counter), many);
    QCOMPARE(stockList(counter).selectedRow(), many - 1);
    const InventoryProbe probe{counter.window()};
    for (const int row : {0, 32'767, 32'768, 65'535, 65'536, many - 1})
        QCOMPARE(probe.findStockRow(u"id-%1"_s.arg(row)), row);
    QVERIFY(!stockRows(counter).isLow(0));
    QVERIFY(stockRows(counter).isLow(many - 1));
}

void StockFillTest::refreshAndRefreshAgain()
{
    Counter counter;
    openStock(counter);
    counter.setText("Combo7", u"TYPED"_s);
    const MidFill fill(counter, [&] {
        counter.file.sql(u"DELETE FROM StockList WHERE StockID = 'ID-7'"_s);
        counter.click("Command7");
        QCOMPARE(listedIds(counter), storedUpperIds(counter));
    });
    counter.click("Command7");
    QVERIFY(fill.isDone());
    QCOMPARE(listedIds(counter), storedUpperIds(counter));
    QCOMPARE(offeredNames(counter), stockItems - 1);
    QCOMPARE(counter.text("Combo7"), u"TYPED"_s);
    QCOMPARE(stockList(counter).selectedRow(), stockItems - 2);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM SysUsage WHERE SystemUsage = 'Stock List Refreshed.'"_s), u"2"_s);
}

void StockFillTest::refreshedAgainAndAgain()
{
    Counter counter;
    openStock(counter);
    counter.setText("Combo7", u"TYPED"_s);
    constexpr int deepest = 20;
    int depth = 0;
    std::vector<std::unique_ptr<MidFill>> begun;
    const std::function<void()> again = [&] {
        if (++depth > deepest)
            return;
        begun.push_back(std::make_unique<MidFill>(counter, again));
        counter.click("Command7");
    };
    again();
    QVERIFY(depth > deepest);
    QCOMPARE(listedIds(counter), storedUpperIds(counter));
    QCOMPARE(offeredNames(counter), stockItems);
    QCOMPARE(counter.text("Combo7"), u"TYPED"_s);
}

void StockFillTest::otherTabWins_data()
{
    QTest::addColumn<int>("begun");
    QTest::addColumn<int>("chosen");
    for (const int begun : {WorkArea::EditStock, WorkArea::ReorderStock}) {
        for (const int chosen : WorkArea::all) {
            if (begun != chosen)
                QTest::addRow("%d in the middle of %d", chosen, begun) << begun << chosen;
        }
    }
}

void StockFillTest::otherTabWins()
{
    QFETCH(const int, begun);
    QFETCH(const int, chosen);
    Counter counter;
    openStock(counter, 0);
    const MidFill fill(counter, [&] { counter.chooseTab("TabStrip1", chosen); });
    counter.chooseTab("TabStrip1", begun);
    QVERIFY(fill.isDone());
    QCOMPARE(counter.selectedTab("TabStrip1"), chosen);
    const std::initializer_list<std::pair<const char *, QList<int>>> panels{
        {"Frame1", {WorkArea::QuickSales}}, {"Frame3", {WorkArea::CustomSales}},
        {"Frame7", {WorkArea::EditStock}},  {"Frame8", {WorkArea::ReorderStock}},
        {"Frame9", {WorkArea::Settings}},   {"Frame10", {WorkArea::EditStock, WorkArea::ReorderStock}}};
    for (const auto &[panel, tabs] : panels)
        QVERIFY2(counter.find(panel)->isHidden() != tabs.contains(chosen), panel);
    QCOMPARE(counter.find("Command6")->isEnabled(), chosen != WorkArea::ReorderStock);
    QCOMPARE(listedIds(counter), storedUpperIds(counter));
    QCOMPARE(offeredNames(counter), stockItems);
}

void StockFillTest::sameTabAgain()
{
    Counter counter;
    openStock(counter, 0);
    const MidFill fill(counter, [&] { counter.chooseTab("TabStrip1", WorkArea::EditStock); });
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    QVERIFY(fill.isDone());
    QCOMPARE(listedIds(counter), storedUpperIds(counter));
    QCOMPARE(offeredNames(counter), stockItems);
    QVERIFY(counter.find("Frame7")->isVisible());
    QCOMPARE(counter.text("Combo7"), QString());
}

void StockFillTest::logOutInTheMiddle()
{
    Counter counter;
    openStock(counter, 0);
    const MidFill fill(counter, [&] {
        counter.boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::AskDefaultNo, Answer::Yes);
        counter.click("Command27");
    });
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    QVERIFY(fill.isDone());
    QVERIFY(!counter.state().login.IsLoggedIn);
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
    QVERIFY(counter.find("Frame10")->isHidden());
    QVERIFY(counter.find("Frame7")->isHidden());
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    QCOMPARE(listedIds(counter), storedUpperIds(counter));
}

void StockFillTest::closeInTheMiddle()
{
    Counter counter;
    openStock(counter);
    const QPointer<Inventory> window(&counter.window());
    const MidFill fill(counter, [&] {
        counter.boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::Yes);
        counter.window().close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!window.isNull()); // its handler is still running
    });
    counter.click("Command7");
    QVERIFY(fill.isDone());
    QVERIFY(!window.isNull());
    QVERIFY(!window->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(window.isNull());
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM SysUsage WHERE SystemUsage = 'Stock List Refreshed.'"_s), u"1"_s);
}

void StockFillTest::failingInTheMiddle()
{
    Counter counter;
    openStock(counter);
    const MidFill fill(counter, [&] {
        counter.connection->fails = [](const QString &) { return true; };
        counter.click("Command7"); // cannot read, and leaves the list empty
        QCOMPARE(listedIds(counter), QStringList());
    });
    counter.click("Command7");
    QVERIFY(fill.isDone());
    QCOMPARE(listedIds(counter), QStringList());
    QCOMPARE(offeredNames(counter), 0);
    counter.connection->fails = [](const QString &) { return false; };
    counter.connection->before = [](const QString &) {};
    counter.click("Command7");
    QCOMPARE(listedIds(counter), storedUpperIds(counter));
}

void StockFillTest::brokenAfterRowsWereShown()
{
    Counter counter;
    openStock(counter);
    const MidFill fill(counter, [&] { counter.setText("Combo7", u"TYPED"_s); });
    counter.connection->rowsUntilBreak = [](const QString &) { return stockItems - 1; };
    counter.click("Command7");
    QVERIFY(fill.isDone());
    QCOMPARE(listedIds(counter), QStringList());
    QCOMPARE(offeredNames(counter), 0);
    QCOMPARE(counter.text("Combo7"), u"TYPED"_s);
}

HARROWBY_TEST(stock_fill_test, StockFillTest)
#include "stock_fill_test.moc"
