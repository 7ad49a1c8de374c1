// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QListWidget>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// One statement of an action fails: it alone is skipped, nothing is rolled back, and no box appears.
class FailingStatementsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void undo_data();
    void undo();
    void deletion_data();
    void deletion();
    void categoryDeletion_data();
    void categoryDeletion();
    void categoryRename_data();
    void categoryRename();
    void categoryAdded_data();
    void categoryAdded();
    void stockDeletion_data();
    void stockDeletion();
    void reorder_data();
    void reorder();
    void reorderUndo_data();
    void reorderUndo();
    void purchaseIds();
};

namespace {

void openShop(Counter &counter)
{
    counter.file.addItem(u"A1"_s, u"SAFE"_s, 1250, 10, u"TOOLS"_s);
    counter.file.addItem(u"A2"_s, u"TEA"_s, 2.5, 20, u"DRINKS"_s, u"Enabled"_s, 25);
    counter.file.addItem(u"A3"_s, u"COLA"_s, 1.5, 30, u"DRINKS"_s);
    counter.file.sql(u"INSERT INTO InventoryCategory VALUES ('DRINKS', ''), ('TOOLS', '')"_s);
    counter.open();
    counter.logIn();
}

/// From now on every statement fails that begins with this text.
void fail(Counter &counter, const QString &beginning)
{
    counter.connection->fails = [beginning](const QString &statement) {
        return !beginning.isEmpty() && statement.startsWith(beginning);
    };
}

QStringList column(const Counter &counter, const QString &select)
{
    return counter.file.rows(select);
}

QStringList stock(const Counter &counter)
{
    return column(counter, u"SELECT StockAvailable FROM StockList ORDER BY StockID"_s);
}

QStringList categoriesOfItems(const Counter &counter)
{
    return column(counter, u"SELECT StockCategory FROM StockList ORDER BY StockID"_s);
}

QStringList storedCategories(const Counter &counter)
{
    return column(counter, u"SELECT CategoryName FROM InventoryCategory ORDER BY rowid"_s);
}

QStringList listedCategories(const Counter &counter)
{
    const auto *list = counter.find<QListWidget>("List2");
    QStringList all;
    for (int row = 0; row < list->count(); ++row)
        all << list->item(row)->text();
    return all;
}

QStringList offered(const QStringList &categories)
{
    return QStringList{u"(ALL CATEGORY)"_s} + categories + QStringList{u"OTHER CATEGORY"_s};
}

/// One safe and two colas.
void commit(Counter &counter)
{
    for (const char *button : {"Command1_1", "Command1_0", "Command1_0"})
        counter.click(button);
    counter.boxes.expect(u"Item List:\r\n\r\n1. 1 x A1  |  SAFE = 1,250.00\r\n2. 2 x A3  |  COLA = 3.00\r\n\r\n\r\n\r\n"
                         "Purchased Cart?"_s,
                         box::Ask, Answer::Yes);
    counter.click("Command14");
}

struct AfterUndo
{
    QStringList cart{u"A1  |  SAFE|1|1,250.00"_s, u"A3  |  COLA|2|3.00"_s};
    QStringList stock{u"10"_s, u"20"_s, u"30"_s};
    int purchases = 0;
    bool isFound = true;
};

void addUndoRows()
{
    QTest::addColumn<QString>("failing");
    QTest::addColumn<AfterUndo>("after");
    const auto row = [](const char *name, const char *failing, const AfterUndo &after) {
        QTest::newRow(name) << QString::fromLatin1(failing) << after;
    };
    const AfterUndo whole;
    row("none", "", whole);
    row("the purchase", "Select * from PurchaseCart", {{}, {u"9"_s, u"20"_s, u"28"_s}, 1, false});
    row("the first item's stock", "Update StockList Set StockAvailable = StockAvailable + 1 where StockID = 'A1'",
        {whole.cart, {u"9"_s, u"20"_s, u"30"_s}});
    row("the last item's stock", "Update StockList Set StockAvailable = StockAvailable + 2 where StockID = 'A3'",
        {whole.cart, {u"10"_s, u"20"_s, u"28"_s}});
    row("all stock", "Update StockList", {whole.cart, {u"9"_s, u"20"_s, u"28"_s}});
    row("an item's price", "Select * from StockList where StockID = 'A1'",
        {{u"A1  |  SAFE|1|0.00"_s, whole.cart.at(1)}, whole.stock});
    row("the log", "INSERT INTO SysUsage", whole);
    row("the purchase's deletion", "Delete from PurchaseCart", {whole.cart, whole.stock, 1});
    row("the sales figures", "Select count(*) as totals", whole);
    row("the stock figures", "Select Total(StockAvailable)", whole);
    row("the quick-sale page", "Select * from Stocklist where StockUse", whole);
}

void checkUndone(const Counter &counter, const AfterUndo &after)
{
    QCOMPARE(counter.cart(), after.cart);
    QCOMPARE(stock(counter), after.stock);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM PurchaseCart"_s), QString::number(after.purchases));
    QCOMPARE(counter.state().last.LastPurchaseID.isEmpty(), after.isFound);
}

} // namespace

Q_DECLARE_METATYPE(AfterUndo)

void FailingStatementsTest::undo_data()
{
    addUndoRows();
}

void FailingStatementsTest::undo()
{
    QFETCH(const QString, failing);
    QFETCH(const AfterUndo, after);
    Counter counter;
    openShop(counter);
    commit(counter);
    fail(counter, failing);
    counter.boxes.expect(u"Undo last Purchased Cart with ID [HV18030514070907]?"_s, box::Ask, Answer::Yes);
    if (!after.isFound)
        counter.boxes.expect(u"Nothing to Undo!"_s, box::Exclamation);
    counter.click("Command25");
    checkUndone(counter, after);
    QCOMPARE(counter.text("StatusBar1_2"), u"Last Purchased Undone!"_s);
    QVERIFY(counter.text("Text1").contains(u"-- Last Purchased Undone!\n"_s));
}

void FailingStatementsTest::deletion_data()
{
    addUndoRows();
}

void FailingStatementsTest::deletion()
{
    QFETCH(const QString, failing);
    QFETCH(const AfterUndo, after);
    Counter counter;
    openShop(counter);
    commit(counter);
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    counter.pick("Combo17", 0);
    fail(counter, failing);
    counter.boxes.expect(u"Delete Purchased Cart with ID [HV18030514070907].\r\nAll purchased items will br restored "
                         "(Y/N)?"_s,
                         box::Ask, Answer::Yes);
    if (!after.isFound)
        counter.boxes.expect(u"Nothing to Undo!"_s, box::Exclamation);
    counter.click("Command4");
    checkUndone(counter, after);
    QCOMPARE(counter.entries("Combo17"), QStringList()); // whether or not the row was deleted
    QCOMPARE(counter.text("Combo17"), QString());
}

void FailingStatementsTest::categoryDeletion_data()
{
    QTest::addColumn<QString>("failing");
    QTest::addColumn<QStringList>("stored");
    QTest::addColumn<QStringList>("items");
    QTest::addColumn<QStringList>("offers");
    const QStringList tools{u"TOOLS"_s};
    const QStringList both{u"DRINKS"_s, u"TOOLS"_s};
    const QStringList moved{u"TOOLS"_s, u"OTHER CATEGORY"_s, u"OTHER CATEGORY"_s};
    const QStringList unmoved{u"TOOLS"_s, u"DRINKS"_s, u"DRINKS"_s};
    QTest::newRow("none") << QString() << tools << moved << offered(tools);
    QTest::newRow("the category") << u"Delete from InventoryCategory"_s << both << moved << offered(both);
    QTest::newRow("its items") << u"Update StockList"_s << tools << unmoved << offered(tools);
    QTest::newRow("the lists") << u"Select * from InventoryCategory"_s << tools << moved << offered({});
    QTest::newRow("the log") << u"INSERT INTO SysUsage"_s << tools << moved << offered(tools);
}

void FailingStatementsTest::categoryDeletion()
{
    QFETCH(const QString, failing);
    Counter counter;
    openShop(counter);
    counter.find<QListWidget>("List2")->setCurrentRow(0);
    fail(counter, failing);
    counter.boxes.expect(
        u"Please note that any Stock item under this category will be moved to 'OTHER CATEGORY. Do you "
        "want to continue to delete Category [DRINKS]?"_s,
        box::AskDefaultNo, Answer::Yes);
    counter.click("Command3");
    QTEST(storedCategories(counter), "stored");
    QTEST(categoriesOfItems(counter), "items");
    QTEST(counter.entries("Combo1"), "offers");
    QCOMPARE(listedCategories(counter), QStringList{u"TOOLS"_s}); // the screen goes on, out of step until the next load
    QCOMPARE(counter.text("StatusBar1_2"), u"Category [DRINKS] Deleted!"_s);
}

void FailingStatementsTest::categoryRename_data()
{
    QTest::addColumn<QString>("failing");
    QTest::addColumn<QStringList>("stored");
    QTest::addColumn<QStringList>("items");
    const QStringList renamed{u"JUICES"_s, u"TOOLS"_s};
    const QStringList moved{u"TOOLS"_s, u"JUICES"_s, u"JUICES"_s};
    QTest::newRow("none") << QString() << renamed << moved;
    QTest::newRow("the category") << u"Update InventoryCategory"_s << QStringList{u"DRINKS"_s, u"TOOLS"_s} << moved;
    QTest::newRow("its items") << u"Update StockList"_s << renamed << QStringList{u"TOOLS"_s, u"DRINKS"_s, u"DRINKS"_s};
    QTest::newRow("the log") << u"INSERT INTO SysUsage"_s << renamed << moved;
}

void FailingStatementsTest::categoryRename()
{
    QFETCH(const QString, failing);
    Counter counter;
    openShop(counter);
    counter.find<QListWidget>("List2")->setCurrentRow(0);
    fail(counter, failing);
    counter.boxes.expectInput(u"Change Category[DRINKS] to what new name?"_s, u"Change Category - "_s, QString(),
                              u"juices"_s);
    counter.click("Command22");
    QTEST(storedCategories(counter), "stored");
    QTEST(categoriesOfItems(counter), "items");
    QCOMPARE(counter.entries("Combo1"), offered(storedCategories(counter)));
    QCOMPARE(listedCategories(counter), (QStringList{u"JUICES"_s, u"TOOLS"_s}));
    QCOMPARE(counter.text("StatusBar1_2"), u"Category Name Changed!"_s);
}

void FailingStatementsTest::categoryAdded_data()
{
    QTest::addColumn<QString>("failing");
    QTest::addColumn<QStringList>("stored");
    const QStringList all{u"DRINKS"_s, u"TOOLS"_s, u"BREAD"_s};
    QTest::newRow("none") << QString() << all;
    QTest::newRow("the category") << u"Insert Into InventoryCategory"_s << all.first(2);
    QTest::newRow("the log") << u"INSERT INTO SysUsage"_s << all;
}

void FailingStatementsTest::categoryAdded()
{
    QFETCH(const QString, failing);
    QFETCH(const QStringList, stored);
    Counter counter;
    openShop(counter);
    counter.setText("Combo16", u"BREAD"_s);
    fail(counter, failing);
    counter.click("Command2");
    QCOMPARE(storedCategories(counter), stored);
    QCOMPARE(counter.entries("Combo1"), offered(stored));
    QCOMPARE(listedCategories(counter), (QStringList{u"DRINKS"_s, u"TOOLS"_s, u"BREAD"_s}));
    QCOMPARE(counter.text("Combo16"), QString());
    QCOMPARE(counter.text("StatusBar1_2"), u"Category [BREAD] Added!"_s);
}

void FailingStatementsTest::stockDeletion_data()
{
    QTest::addColumn<QString>("failing");
    QTest::addColumn<QStringList>("stock");
    QTest::newRow("none") << QString() << QStringList{u"10"_s, u"30"_s};
    QTest::newRow("the item") << u"Delete from StockList"_s << QStringList{u"10"_s, u"20"_s, u"30"_s};
    QTest::newRow("the log") << u"INSERT INTO SysUsage"_s << QStringList{u"10"_s, u"30"_s};
}

void FailingStatementsTest::stockDeletion()
{
    QFETCH(const QString, failing);
    Counter counter;
    openShop(counter);
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    counter.find<RowList>("LV")->selectRow(1);
    fail(counter, failing);
    counter.boxes.expect(u"Delete Stock [TEA] with A2?"_s, box::AskDefaultNo, Answer::Yes);
    counter.click("Command6");
    QTEST(stock(counter), "stock");
    const TextTableModel &list = counter.find<RowList>("LV")->rows();
    QCOMPARE(list.rowCount(), 2);
    QCOMPARE(list.text(1, 0), u"A3"_s);
    QCOMPARE(counter.text("StatusBar1_2"), u"Stock [TEA] with A2 has been deleted!"_s);
}

void FailingStatementsTest::reorder_data()
{
    QTest::addColumn<QString>("failing");
    QTest::addColumn<QString>("available");
    QTest::addColumn<QString>("said");
    QTest::addColumn<QString>("units");
    const QString added = u"5 New item(s) to Stock [A2  |  TEA]. New Available Stock is 25."_s;
    QTest::newRow("none") << QString() << u"25"_s << added << u"0"_s;
    // Nothing happens, and nothing is reported.
    QTest::newRow("the item") << u"Select * from StockList where StockID"_s << u"20"_s << u"before"_s << u"5"_s;
    QTest::newRow("the row") << u"update StockList"_s << u"20"_s
                             << u"5 New item(s) to Stock [A2  |  TEA]. New Available Stock is 20."_s << u"0"_s;
    QTest::newRow("the log") << u"INSERT INTO SysUsage"_s << u"25"_s << added << u"0"_s;
    QTest::newRow("the dashboard") << u"Select Total"_s << u"25"_s << added << u"0"_s;
}

void FailingStatementsTest::reorder()
{
    QFETCH(const QString, failing);
    QFETCH(const QString, available);
    Counter counter;
    openShop(counter);
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    counter.setText("Combo11", u"A2  |  TEA"_s);
    counter.setText("Combo10", u"5"_s);
    counter.setText("StatusBar1_2", u"before"_s);
    fail(counter, failing);
    counter.boxes.expect(u"Add 5 New item(s) to Stock [A2  |  TEA]?"_s, box::Ask, Answer::Yes);
    counter.click("Command17");
    QCOMPARE(stock(counter).at(1), available);
    QCOMPARE(counter.text("Label13"), available);
    QTEST(counter.text("StatusBar1_2"), "said");
    QTEST(counter.text("Combo10"), "units");
    QCOMPARE(counter.rows("LV").at(1).section(u'|', 5, 5), available);
}

void FailingStatementsTest::reorderUndo_data()
{
    QTest::addColumn<QString>("failing");
    QTest::addColumn<QString>("available");
    QTest::addColumn<bool>("isForgotten");
    QTest::newRow("none") << QString() << u"20"_s << true;
    QTest::newRow("the item") << u"Select * from StockList where StockID"_s << u"25"_s << false;
    QTest::newRow("the row") << u"update StockList"_s << u"25"_s << true;
    QTest::newRow("the log") << u"INSERT INTO SysUsage"_s << u"20"_s << true;
}

void FailingStatementsTest::reorderUndo()
{
    QFETCH(const QString, failing);
    QFETCH(const QString, available);
    QFETCH(const bool, isForgotten);
    Counter counter;
    openShop(counter);
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    counter.setText("Combo11", u"A2  |  TEA"_s);
    counter.setText("Combo10", u"5"_s);
    counter.boxes.expect(u"Add 5 New item(s) to Stock [A2  |  TEA]?"_s, box::Ask, Answer::Yes);
    counter.click("Command17");
    fail(counter, failing);
    counter.boxes.expect(u"Undo last added value of 5 from Stock [A2  |  TEA]?"_s, box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(stock(counter).at(1), available);
    QCOMPARE(counter.text("Label13"), available);
    QCOMPARE(counter.state().last.LastReorderItem.isEmpty(), isForgotten);
    QCOMPARE(counter.text("StatusBar1_2").startsWith(u"Item(s) Removed"_s), isForgotten);
}

void FailingStatementsTest::purchaseIds()
{
    Counter counter;
    openShop(counter);
    commit(counter);
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    QCOMPARE(counter.entries("Combo17").size(), 1);
    fail(counter, u"Select PurchaseID"_s);
    counter.chooseTab("TabStrip1", WorkArea::QuickSales);
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    QCOMPARE(counter.entries("Combo17"), QStringList()); // emptied all the same
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::Settings);
    QVERIFY(counter.find("Frame9")->isVisible());
}

HARROWBY_TEST(failing_statements_test, FailingStatementsTest)
#include "failing_statements_test.moc"
