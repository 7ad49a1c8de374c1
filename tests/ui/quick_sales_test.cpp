// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QAbstractButton>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// The nine quick-sale buttons, their pages, and whether the stock covers what is asked of it.
class QuickSalesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void buttonShowsItem();
    void eighteenItems();
    void focusStaysInThePaging();
    void tenItems();
    void pageBeyondTheEnd();
    void previousBeyondTheStart();
    void offsetOverflowChangesNothing();
    void finishedItems();
    void disabledItemsAreNotListed();
    void statements_data();
    void statements();
    void emptyCategoryKeepsTheButtons();
    void failingPageKeepsTheButtons();
    void pageWithoutAColumnKeepsTheButtons_data();
    void pageWithoutAColumnKeepsTheButtons();
    void categoryWithoutLogin();
    void pickingACategory();
    void emptyButton();
    void enterPressesAllButTheItems();
    void pressLogsTwice();
    void pressShowsTheCart();
    void pressClearsTheMark();
    void purchaseIsOffWhilePressed();
    void plainData();
    void notEnoughInStock();
    void noneInStock();
    void cartCountsToo();
    void fractionalStock();
    void mixedCaseNameIsRefused();
    void vanishedItemIsRefused();
    void checkReservesNothing();
};

namespace {

void addItems(const Counter &counter, int count)
{
    for (int i = 1; i <= count; ++i)
        counter.file.addItem(u"I%1"_s.arg(i), u"ITEM %1"_s.arg(i, 4, 10, QChar(u'0')), i, 10);
}

QStringList captions(const Counter &counter)
{
    QStringList all;
    for (int i = 0; i < 9; ++i)
        all << counter.text(qPrintable(u"Command1_%1"_s.arg(i))).section(u"\r\n"_s, 0, 0);
    return all;
}

bool isEnabled(const Counter &counter, const char *name)
{
    return counter.find(name)->isEnabled();
}

void openShop(Counter &counter)
{
    counter.open();
    counter.logIn();
}

} // namespace

void QuickSalesTest::buttonShowsItem()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"Tea, green"_s, 1234.5, 0);
    openShop(counter);
    const auto *button = counter.find<QuickSaleButton>("Command1_0");
    QCOMPARE(button->text(), u"A1\r\nTea, green\r\n1,234.50"_s);
    QCOMPARE(button->toolTip(), u"A1  |  Tea, green  |  1,234.50"_s);
    QVERIFY(button->isOutOfStock());
    const auto *blank = counter.find<QuickSaleButton>("Command1_1");
    QCOMPARE(blank->text(), u"(empty)"_s);
    QCOMPARE(blank->toolTip(), QString());
    QVERIFY(!blank->isOutOfStock());
}

void QuickSalesTest::eighteenItems()
{
    Counter counter;
    addItems(counter, 18);
    openShop(counter);
    QCOMPARE(captions(counter).first(), u"I1"_s);
    QVERIFY(isEnabled(counter, "CmdNext"));
    QVERIFY(!isEnabled(counter, "CmdPrev"));
    counter.click("CmdNext");
    QCOMPARE(captions(counter).first(), u"I10"_s);
    QCOMPARE(captions(counter).last(), u"I18"_s);
    QVERIFY(!isEnabled(counter, "CmdNext"));
    QVERIFY(isEnabled(counter, "CmdPrev"));
    counter.click("CmdPrev");
    QCOMPARE(captions(counter).first(), u"I1"_s);
    QVERIFY(isEnabled(counter, "CmdNext"));
    QVERIFY(!isEnabled(counter, "CmdPrev"));
}

void QuickSalesTest::focusStaysInThePaging()
{
    Counter counter;
    addItems(counter, 18);
    openShop(counter);
    counter.find("CmdNext")->setFocus();
    QTest::keyClick(counter.find("CmdNext"), Qt::Key_Space); // to the last page
    QVERIFY(counter.hasFocus("CmdPrev"));
    QTest::keyClick(counter.find("CmdPrev"), Qt::Key_Space);
    QVERIFY(counter.hasFocus("CmdNext"));
    QVERIFY(counter.cart().isEmpty());
}

void QuickSalesTest::tenItems()
{
    Counter counter;
    addItems(counter, 10);
    openShop(counter);
    counter.click("CmdNext");
    QCOMPARE(captions(counter), (QStringList{u"I10"_s} + QStringList(8, u"(empty)"_s)));
    QVERIFY(!isEnabled(counter, "CmdNext"));
    QVERIFY(isEnabled(counter, "CmdPrev"));
}

void QuickSalesTest::pageBeyondTheEnd()
{
    Counter counter;
    addItems(counter, 10);
    openShop(counter);
    counter.file.sql(u"DELETE FROM StockList WHERE StockID = 'I10'"_s);
    counter.click("CmdNext"); // the page turned out empty: the buttons stay, and the offset is not corrected
    QCOMPARE(captions(counter).first(), u"I1"_s);
    QCOMPARE(counter.state().QuickSalesOffset, std::int16_t{9});
    QVERIFY(!isEnabled(counter, "CmdNext"));
    QVERIFY(isEnabled(counter, "CmdPrev"));
    counter.file.sql(u"DELETE FROM StockList"_s);
    counter.find("CmdNext")->setEnabled(true);
    counter.click("CmdNext");
    counter.click("CmdPrev"); // empty again, and not by a step forward
    QCOMPARE(counter.state().QuickSalesOffset, std::int16_t{9});
    QVERIFY(isEnabled(counter, "CmdNext"));
    QVERIFY(!isEnabled(counter, "CmdPrev"));
}

void QuickSalesTest::previousBeyondTheStart()
{
    Counter counter;
    openShop(counter);
    counter.find("CmdPrev")->setEnabled(true);
    counter.click("CmdPrev");
    QCOMPARE(counter.state().QuickSalesOffset, std::int16_t{0});
    QVERIFY(!isEnabled(counter, "CmdPrev"));
    QVERIFY(!isEnabled(counter, "CmdNext"));
}

void QuickSalesTest::offsetOverflowChangesNothing()
{
    Counter counter;
    openShop(counter);
    auto *next = counter.find<QAbstractButton>("CmdNext");
    for (int i = 0; i < 4000; ++i) {
        next->setEnabled(true);
        next->click();
    }
    QCOMPARE(counter.state().QuickSalesOffset, std::int16_t{32760});
    counter.find("CmdPrev")->setEnabled(false);
    const QStringList before = counter.connection->statements;
    next->setEnabled(true);
    next->click();
    QCOMPARE(counter.state().QuickSalesOffset, std::int16_t{32760});
    QVERIFY(!isEnabled(counter, "CmdPrev"));
    QCOMPARE(counter.connection->statements, before);
}

void QuickSalesTest::finishedItems()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"ALE"_s, 1, 0);
    counter.file.addItem(u"A2"_s, u"BUN"_s, 1, 5);
    openShop(counter);
    QCOMPARE(captions(counter).mid(0, 2), (QStringList{u"A1"_s, u"A2"_s}));
    QVERIFY(counter.find<QuickSaleButton>("Command1_0")->isOutOfStock());
    QVERIFY(!counter.find<QuickSaleButton>("Command1_1")->isOutOfStock());
    Counter hiding;
    hiding.file.sql(u"UPDATE StoreSettings SET AutoPurchaseCart = 1"_s);
    hiding.file.addItem(u"A1"_s, u"ALE"_s, 1, 0);
    hiding.file.addItem(u"A2"_s, u"BUN"_s, 1, 5);
    openShop(hiding);
    QCOMPARE(captions(hiding).mid(0, 2), (QStringList{u"A2"_s, u"(empty)"_s}));
}

void QuickSalesTest::disabledItemsAreNotListed()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"ALE"_s, 1, 5, u"DRINKS"_s, u"Disabled"_s);
    openShop(counter);
    QCOMPARE(captions(counter).first(), u"(empty)"_s);
}

void QuickSalesTest::statements_data()
{
    QTest::addColumn<bool>("hideFinished");
    QTest::addColumn<QString>("category");
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("count");
    const QString order = u" and StockUse = 'Enabled' order by StockName ASC"_s;
    QTest::newRow("all") << false << u"(ALL CATEGORY)"_s
                         << u"Select * from Stocklist where StockUse = 'Enabled' order by StockName ASC  Limit 0, 9"_s
                         << u"Select * from Stocklist where StockUse = 'Enabled' order by StockName ASC"_s;
    QTest::newRow("category") << false << u" DRINKS"_s // as it stands, not trimmed
                              << u"Select * from Stocklist where StockCategory = ' DRINKS'"_s + order +
                                     u"  Limit 0, 9"_s
                              << u"Select * from Stocklist where StockCategory = ' DRINKS'"_s + order;
    QTest::newRow("hiding, all") << true << u"(ALL CATEGORY)"_s
                                 << u"Select * from Stocklist where stockAvailable > 0"_s + order + u"  Limit 0, 9"_s
                                 << u"Select * from Stocklist where stockAvailable > 0"_s + order;
    QTest::newRow("hiding, category")
        << true << u"DRINKS"_s
        << u"Select * from Stocklist where stockAvailable > 0 and StockCategory = 'DRINKS'"_s + order +
               u"  Limit 0, 9"_s
        << u"Select * from Stocklist where  stockAvailable > 0 and StockCategory = 'DRINKS'"_s + order;
}

void QuickSalesTest::statements()
{
    QFETCH(bool, hideFinished);
    QFETCH(QString, category);
    QFETCH(QString, page);
    QFETCH(QString, count);
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET AutoPurchaseCart = %1"_s.arg(hideFinished ? 1 : 0));
    for (int i = 1; i <= 9; ++i)
        counter.file.addItem(u"I%1"_s.arg(i), u"ITEM"_s, i, 10, category);
    openShop(counter);
    counter.setText("Combo1", u"NONE"_s);
    counter.connection->statements.clear();
    counter.setText("Combo1", category);
    QCOMPARE(counter.connection->statements, (QStringList{page, count}));
}

void QuickSalesTest::emptyCategoryKeepsTheButtons()
{
    Counter counter;
    addItems(counter, 9);
    openShop(counter);
    const QStringList before = captions(counter);
    counter.setText("Combo1", u"NO SUCH"_s);
    QCOMPARE(captions(counter), before);
    QVERIFY(!isEnabled(counter, "CmdNext"));
    QVERIFY(!isEnabled(counter, "CmdPrev"));
}

void QuickSalesTest::failingPageKeepsTheButtons()
{
    Counter counter;
    addItems(counter, 10);
    openShop(counter);
    const QStringList before = captions(counter);
    counter.setText("Combo1", u"O'DRINKS"_s);
    QCOMPARE(captions(counter), before);
}

void QuickSalesTest::pageWithoutAColumnKeepsTheButtons_data()
{
    QTest::addColumn<QString>("column");
    for (const char *column : {"StockID", "StockName", "StockCost"})
        QTest::newRow(column) << QString::fromLatin1(column);
}

/// A caption is replaced as a whole or kept; the mark depends on its own column alone.
void QuickSalesTest::pageWithoutAColumnKeepsTheButtons()
{
    QFETCH(const QString, column);
    Counter counter;
    addItems(counter, 2);
    openShop(counter);
    const auto *button = counter.find<QuickSaleButton>("Command1_1");
    const QString caption = button->text();
    const QString tip = button->toolTip();
    QCOMPARE(caption, u"I2\r\nITEM 0002\r\n2.00"_s);
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN %1; UPDATE StockList SET StockAvailable = 0"_s.arg(column));
    counter.click("Command24");
    QCOMPARE(button->text(), caption);
    QCOMPARE(button->toolTip(), tip);
    QCOMPARE(button->isOutOfStock(), column != "StockName"_L1); // without the names there is no page at all
}

void QuickSalesTest::categoryWithoutLogin()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    counter.setText("Combo1", u"DRINKS"_s);
    QCOMPARE(counter.text("Combo1"), u"(ALL CATEGORY)"_s);
}

void QuickSalesTest::pickingACategory()
{
    Counter counter;
    counter.file.sql(u"INSERT INTO InventoryCategory VALUES ('FOOD','')"_s);
    addItems(counter, 10);
    counter.file.addItem(u"F1"_s, u"BREAD"_s, 1, 1, u"FOOD"_s);
    openShop(counter);
    counter.click("CmdNext");
    auto *list = counter.find<PickList>("Combo1");
    counter.connection->statements.clear();
    list->setFocus();
    list->setEntryText(u"(ALL CATEGORY)"_s); // the text is unchanged, so no change handler runs
    QVERIFY(counter.connection->statements.isEmpty());
    QTest::keyClick(list, Qt::Key_Down); // from the entry shown to the next one: FOOD
    QCOMPARE(counter.text("Combo1"), u"FOOD"_s);
    QCOMPARE(captions(counter).mid(0, 2), (QStringList{u"F1"_s, u"(empty)"_s}));
    QCOMPARE(counter.state().QuickSalesOffset, std::int16_t{0});
}

void QuickSalesTest::emptyButton()
{
    Counter counter;
    openShop(counter);
    counter.boxes.expect(u"Item is empty!\r\nYou can add a new Item from Add/Edit Stock"_s, box::Information);
    counter.click("Command1_4");
    QVERIFY(counter.cart().isEmpty());
}

void QuickSalesTest::enterPressesAllButTheItems()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 9);
    openShop(counter);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
        QTest::keyClick(counter.find("Command1_0"), key);
    QCOMPARE(counter.cart(), QStringList{u"A1  |  TEA|1|1.00"_s}); // the space bar alone sells
    counter.boxes.expect(u"Clear Cart?"_s, box::Ask, Answer::Yes);
    QTest::keyClick(counter.find("Command13"), Qt::Key_Enter);
    QVERIFY(counter.cart().isEmpty());
}

void QuickSalesTest::pressLogsTwice()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 9);
    openShop(counter);
    counter.file.sql(u"DELETE FROM SysUsage"_s);
    counter.click("Command1_0");
    QCOMPARE(counter.file.rows(u"SELECT replace(SystemUsage, '|', '!') FROM SysUsage ORDER BY rowid"_s),
             (QStringList{u"1 of A1  !  TEA Added to Cart!"_s, u"A1  !  TEA Added to Cart!"_s}));
}

void QuickSalesTest::pressShowsTheCart()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 9);
    openShop(counter);
    counter.chooseTab("TabStrip2", SidePanel::SalesActivity);
    counter.click("Command1_0");
    QCOMPARE(counter.selectedTab("TabStrip2"), SidePanel::Cart);
    QVERIFY(counter.find("Frame4")->isVisible());
}

void QuickSalesTest::pressClearsTheMark()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 0);
    openShop(counter);
    counter.file.sql(u"UPDATE StockList SET StockAvailable = 5"_s);
    counter.click("Command1_0");
    QVERIFY(!counter.find<QuickSaleButton>("Command1_0")->isOutOfStock());
}

void QuickSalesTest::purchaseIsOffWhilePressed()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 0);
    openShop(counter);
    bool enabledMeanwhile = true;
    counter.connection->before = [&](const QString &) { enabledMeanwhile = isEnabled(counter, "Command14"); };
    counter.boxes.expect(u"There is no available stock item(s) for A1  |  TEA. Kindly reorder Stock!"_s,
                         box::Information);
    counter.click("Command1_0");
    QVERIFY(!enabledMeanwhile);
    QVERIFY(isEnabled(counter, "Command14"));
}

void QuickSalesTest::plainData()
{
    Counter counter;
    counter.file.addItem(u"A&1"_s, u"<B>M && M</B>"_s, 1, 9);
    openShop(counter);
    const auto *button = counter.find<QuickSaleButton>("Command1_0");
    QCOMPARE(button->text(), u"A&1\r\n<B>M && M</B>\r\n1.00"_s);
    QVERIFY(button->shortcut().isEmpty());
    counter.click("Command1_0");
    QCOMPARE(counter.cart(), QStringList{u"A&1  |  <B>M && M</B>|1|1.00"_s});
}

void QuickSalesTest::notEnoughInStock()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 0.5);
    openShop(counter);
    counter.boxes.expect(u"There are only 0.5 item(s) in stock for A1  |  TEA. Kindly reorder Stock!"_s,
                         box::Information);
    counter.click("Command1_0");
    QVERIFY(counter.cart().isEmpty());
}

void QuickSalesTest::noneInStock()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, -3);
    openShop(counter);
    counter.boxes.expect(u"There is no available stock item(s) for A1  |  TEA. Kindly reorder Stock!"_s,
                         box::Information);
    counter.click("Command1_0");
    QVERIFY(counter.cart().isEmpty());
}

void QuickSalesTest::cartCountsToo()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 5);
    openShop(counter);
    for (int i = 0; i < 5; ++i)
        counter.click("Command1_0");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  TEA|5|5.00"_s});
    counter.boxes.expect(
        u"There are only 5 item(s) in stock for A1  |  TEA and have already of 5 this item(s) in cart."_s,
        box::Information);
    counter.click("Command1_0");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  TEA|5|5.00"_s});
}

void QuickSalesTest::fractionalStock()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 1.5);
    openShop(counter);
    counter.click("Command1_0");
    counter.boxes.expect(
        u"There are only 1.5 item(s) in stock for A1  |  TEA and have already of 1 this item(s) in cart."_s,
        box::Information);
    counter.click("Command1_0");
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void QuickSalesTest::mixedCaseNameIsRefused()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"Tea"_s, 1, 5);
    openShop(counter);
    counter.click("Command1_0");
    QVERIFY(counter.cart().isEmpty());
    QVERIFY(counter.connection->statements.contains(
        u"Select * from Stocklist where StockUse = 'Enabled' and StockID = 'A1'  and StockName = 'TEA'"_s));
}

void QuickSalesTest::vanishedItemIsRefused()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 5);
    openShop(counter);
    for (const auto &change : {u"UPDATE StockList SET StockUse = 'Disabled'"_s, u"DELETE FROM StockList"_s}) {
        counter.file.sql(change);
        counter.click("Command1_0");
        QVERIFY(counter.cart().isEmpty());
    }
}

void QuickSalesTest::checkReservesNothing()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 5);
    openShop(counter);
    counter.click("Command1_0");
    QCOMPARE(counter.file.cell(u"SELECT StockAvailable FROM StockList"_s), u"5"_s);
}

HARROWBY_TEST(quick_sales_test, QuickSalesTest)
#include "quick_sales_test.moc"
