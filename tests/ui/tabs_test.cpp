// SPDX-License-Identifier: MIT
#include "tests/support/counter.h"

#include "tests/program/test_program.h"
#include "tests/ui/paint_count.h"
#include "tests/ui/tabs_desk.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::tabs_desk;

namespace {

constexpr std::array areasWithARight{WorkArea::CustomSales, WorkArea::EditStock, WorkArea::ReorderStock,
                                     WorkArea::Settings};

} // namespace

/// Work areas and side panels: what each shows, who may see it, and where a refusal leads.
class TabsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void captions();
    void noWorkAreaBeforeLogin();
    void panelsOfEachArea_data();
    void panelsOfEachArea();
    void refusedAreas_data();
    void refusedAreas();
    void quickSalesNeedsNoRight();
    void reorderRightOpensTheStockArea();
    void stockAreaClearsItsFields();
    void sellingAreasShowTheCart_data();
    void sellingAreasShowTheCart();
    void activityNeedsLogin();
    void activityNeedsSettingsRight();
    void activityShowsTheLog();
    void sameTabAgainRunsItsHandler();
    void raisedPanels_data();
    void raisedPanels();
    void panelBehindIsNotPainted();
    void stockIsReadWhenItsPanelWasHidden_data();
    void stockIsReadWhenItsPanelWasHidden();
    void buttonsOfTheStockList();
    void newItemButtonIsSwitchedOff();
    void refusalTouchesNothing_data();
    void refusalTouchesNothing();
    void keyboardIsGatedToo();
};

void TabsTest::captions()
{
    Counter counter;
    counter.open();
    const auto *areas = counter.find<TabStrip>("TabStrip1");
    const QStringList captions{u"Quick Sales"_s, u"Custom Sales"_s, u"Add/Edit Stock"_s, u"Reorder Stock"_s,
                               u"Settings"_s};
    QCOMPARE(areas->count(), captions.size());
    for (int i = 0; i < areas->count(); ++i)
        QCOMPARE(areas->tabText(i), captions.at(i));
    const auto *panels = counter.find<TabStrip>("TabStrip2");
    QCOMPARE(panels->count(), 2);
    QCOMPARE(panels->tabText(0), u"Cart(0)"_s);
    QCOMPARE(panels->tabText(1), u"Sales Activity"_s);
}

void TabsTest::noWorkAreaBeforeLogin()
{
    Counter counter;
    counter.open();
    for (const int tab : WorkArea::all) {
        counter.find("Text4")->setFocus();
        counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
        counter.chooseTab("TabStrip1", tab);
        QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
        QVERIFY(counter.hasFocus("Text3"));
    }
}

void TabsTest::panelsOfEachArea_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QStringList>("visible");
    for (const int tab : WorkArea::all)
        QTest::addRow("%d", tab) << tab << framesOf(tab);
}

void TabsTest::panelsOfEachArea()
{
    QFETCH(int, tab);
    QFETCH(QStringList, visible);
    Counter counter;
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", tab);
    QCOMPARE(counter.selectedTab("TabStrip1"), tab);
    QCOMPARE(visibleFrames(counter), visible);
    counter.chooseTab("TabStrip1", WorkArea::QuickSales);
    QCOMPARE(visibleFrames(counter), (QStringList{u"Frame1"_s, u"Frame2"_s}));
}

void TabsTest::refusedAreas_data()
{
    QTest::addColumn<int>("tab");
    for (const int tab : areasWithARight)
        QTest::addRow("%d", tab) << tab;
}

void TabsTest::refusedAreas()
{
    QFETCH(int, tab);
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s);
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    counter.boxes.expect(u"User [ANN] doesn't have this privilege!"_s, box::Exclamation);
    counter.chooseTab("TabStrip1", tab);
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
    QCOMPARE(visibleFrames(counter), (QStringList{u"Frame1"_s, u"Frame2"_s}));
}

void TabsTest::quickSalesNeedsNoRight()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 9);
    counter.file.addUser(u"ANN"_s, u"PW"_s);
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    counter.click("Command1_0");
    QCOMPARE(counter.cart().size(), 1);
}

void TabsTest::reorderRightOpensTheStockArea()
{
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Reorder"_s});
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::EditStock);
    counter.chooseTab("TabStrip1", WorkArea::ReorderStock);
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::ReorderStock);
}

void TabsTest::stockAreaClearsItsFields()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    for (const char *field : {"Combo5", "Combo6", "Combo7", "Combo8", "Combo13", "Combo14", "Combo15"})
        counter.setText(field, u"half done"_s);
    counter.chooseTab("TabStrip1", WorkArea::QuickSales);
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    QCOMPARE(counter.text("Combo5"), u"OTHER CATEGORY"_s);
    QCOMPARE(counter.text("Combo6"), u"(Auto ID)"_s);
    for (const char *field : {"Combo7", "Combo8", "Combo13", "Combo14"})
        QCOMPARE(counter.text(field), QString());
    QCOMPARE(counter.text("Combo15"), u"Enabled"_s);
}

void TabsTest::sellingAreasShowTheCart_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<int>("panel");
    QTest::newRow("quick sales") << WorkArea::QuickSales << SidePanel::Cart;
    QTest::newRow("custom sales") << WorkArea::CustomSales << SidePanel::Cart;
    QTest::newRow("settings") << WorkArea::Settings << SidePanel::SalesActivity;
}

void TabsTest::sellingAreasShowTheCart()
{
    QFETCH(int, tab);
    QFETCH(int, panel);
    Counter counter;
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip2", SidePanel::SalesActivity);
    counter.chooseTab("TabStrip1", tab);
    QCOMPARE(counter.selectedTab("TabStrip2"), panel);
}

void TabsTest::activityNeedsLogin()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"You must login first!"_s, box::Exclamation);
    counter.chooseTab("TabStrip2", SidePanel::SalesActivity);
    QCOMPARE(counter.selectedTab("TabStrip2"), SidePanel::Cart);
    QVERIFY(counter.find("Frame4")->isVisible());
    QVERIFY(!counter.find("Frame5")->isVisible());
}

void TabsTest::activityNeedsSettingsRight()
{
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Sales"_s});
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    counter.boxes.expect(u"User [ANN] doesn't have this privilege!"_s, box::Exclamation);
    counter.chooseTab("TabStrip2", SidePanel::SalesActivity);
    QCOMPARE(counter.selectedTab("TabStrip2"), SidePanel::Cart);
}

void TabsTest::activityShowsTheLog()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip2", SidePanel::SalesActivity);
    QVERIFY(counter.find("Frame5")->isVisible());
    QVERIFY(!counter.find("Frame4")->isVisible());
    counter.chooseTab("TabStrip2", SidePanel::Cart);
    QVERIFY(counter.find("Frame4")->isVisible());
    QVERIFY(!counter.find("Frame5")->isVisible());
}

void TabsTest::sameTabAgainRunsItsHandler()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.connection->statements.clear();
    counter.chooseTab("TabStrip1", WorkArea::QuickSales);
    QVERIFY(counter.connection->statements.contains(
        u"Select Total(StockAvailable) as Totals from Stocklist where StockUse = 'Enabled'"_s));
}

void TabsTest::raisedPanels_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QStringList>("raised"); ///< the topmost last
    QTest::newRow("quick sales") << WorkArea::QuickSales << QStringList{u"Frame1"_s, u"Frame2"_s};
    QTest::newRow("custom sales") << WorkArea::CustomSales << QStringList{u"Frame3"_s, u"Frame2"_s};
    QTest::newRow("stock") << WorkArea::EditStock << QStringList{u"Frame10"_s, u"Frame7"_s};
    QTest::newRow("reorder") << WorkArea::ReorderStock << QStringList{u"Frame10"_s, u"Frame8"_s};
    QTest::newRow("settings") << WorkArea::Settings << QStringList{u"Frame9"_s, u"Frame2"_s};
}

void TabsTest::raisedPanels()
{
    QFETCH(int, tab);
    QFETCH(QStringList, raised);
    Counter counter;
    counter.open();
    counter.logIn();
    for (auto other = WorkArea::all.rbegin(); other != WorkArea::all.rend(); ++other)
        counter.chooseTab("TabStrip1", *other);
    counter.chooseTab("TabStrip1", tab);
    QStringList stack;
    for (const QObject *child : counter.find("Frame1")->parent()->children())
        stack << child->objectName();
    QCOMPARE(stack.mid(stack.size() - 2), raised);
}

/// The stock list covers the cart, which stays as it was behind it.
void TabsTest::panelBehindIsNotPainted()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    auto *behind = counter.find<QWidget>("Frame2");
    QVERIFY(behind->isVisible());
    PaintCount painted(behind);
    painted.take();
    counter.find<RowList>("LV")->viewport()->update();
    QCOMPARE(painted.take(), 0);
    counter.find<QWidget>("Frame10")->hide();
    QVERIFY(painted.take() > 0);
}

void TabsTest::stockIsReadWhenItsPanelWasHidden_data()
{
    QTest::addColumn<QList<int>>("tabs");
    QTest::addColumn<int>("reads");
    QTest::newRow("stock") << QList{WorkArea::EditStock} << 1;
    QTest::newRow("reorder") << QList{WorkArea::ReorderStock} << 1;
    QTest::newRow("stock, reorder") << QList{WorkArea::EditStock, WorkArea::ReorderStock} << 1;
    QTest::newRow("reorder, stock, reorder")
        << QList{WorkArea::ReorderStock, WorkArea::EditStock, WorkArea::ReorderStock} << 1;
    QTest::newRow("stock twice") << QList{WorkArea::EditStock, WorkArea::EditStock} << 1;
    QTest::newRow("stock, quick sales, stock")
        << QList{WorkArea::EditStock, WorkArea::QuickSales, WorkArea::EditStock} << 2;
    QTest::newRow("stock, custom sales, reorder")
        << QList{WorkArea::EditStock, WorkArea::CustomSales, WorkArea::ReorderStock} << 2;
    QTest::newRow("reorder, settings, reorder")
        << QList{WorkArea::ReorderStock, WorkArea::Settings, WorkArea::ReorderStock} << 2;
    QTest::newRow("the others") << QList{WorkArea::QuickSales, WorkArea::CustomSales, WorkArea::Settings,
                                         WorkArea::QuickSales}
                                << 0;
}

void TabsTest::stockIsReadWhenItsPanelWasHidden()
{
    QFETCH(QList<int>, tabs);
    QFETCH(int, reads);
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 9);
    counter.open();
    counter.logIn();
    counter.connection->statements.clear();
    for (const int tab : tabs)
        counter.chooseTab("TabStrip1", tab);
    QCOMPARE(counter.connection->statements.count(allStock), reads);
    QCOMPARE(counter.rows("LV").size(), reads > 0 ? 1 : 0);
}

void TabsTest::buttonsOfTheStockList()
{
    Counter counter;
    counter.open();
    counter.logIn();
    for (const auto &[tab, enabled] : {std::pair(3, true), std::pair(4, false), std::pair(1, false), std::pair(3, true),
                                       std::pair(2, true), std::pair(5, true), std::pair(4, false)}) {
        counter.chooseTab("TabStrip1", tab);
        QCOMPARE(counter.find("Command5")->isEnabled(), enabled);
        QCOMPARE(counter.find("Command6")->isEnabled(), enabled);
        QVERIFY(counter.find("Command7")->isEnabled());
    }
}

void TabsTest::newItemButtonIsSwitchedOff()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.find("Command26")->setEnabled(true);
    for (const int tab : {WorkArea::QuickSales, WorkArea::CustomSales, WorkArea::ReorderStock, WorkArea::Settings})
        counter.chooseTab("TabStrip1", tab);
    QVERIFY(counter.find("Command26")->isEnabled());
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    QVERIFY(!counter.find("Command26")->isEnabled());
}

void TabsTest::refusalTouchesNothing_data()
{
    refusedAreas_data();
}

void TabsTest::refusalTouchesNothing()
{
    QFETCH(int, tab);
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s);
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    for (const char *field : {"Combo5", "Combo7"})
        counter.setText(field, u"half done"_s);
    counter.find("Command26")->setEnabled(true);
    counter.connection->statements.clear();
    counter.boxes.expect(u"User [ANN] doesn't have this privilege!"_s, box::Exclamation, Answer::Ok, [&] {
        QCOMPARE(counter.connection->statements, QStringList());
        QCOMPARE(visibleFrames(counter), framesOf(WorkArea::QuickSales));
    });
    counter.chooseTab("TabStrip1", tab);
    QVERIFY(!counter.connection->statements.contains(allStock));
    QVERIFY(!counter.connection->statements.contains(allPurchases));
    QCOMPARE(counter.connection->statements.count(dashboard), 1); // of the first tab
    QCOMPARE(counter.text("Combo5"), u"half done"_s);
    QCOMPARE(counter.text("Combo7"), u"half done"_s);
    QVERIFY(counter.find("Command26")->isEnabled());
}

void TabsTest::keyboardIsGatedToo()
{
    Counter counter;
    counter.open();
    counter.find("TabStrip1")->setFocus();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    QTest::keyClick(counter.find("TabStrip1"), Qt::Key_Right);
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
    counter.logIn();
    QTest::keyClick(counter.find("TabStrip1"), Qt::Key_Right);
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::CustomSales);
    QCOMPARE(visibleFrames(counter), (QStringList{u"Frame2"_s, u"Frame3"_s}));
}

HARROWBY_TEST(tabs_test, TabsTest)
#include "tabs_test.moc"
