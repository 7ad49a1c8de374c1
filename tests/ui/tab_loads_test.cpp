// SPDX-License-Identifier: MIT
#include "tests/support/counter.h"

#include "tests/program/test_program.h"
#include "tests/ui/interruption.h"
#include "tests/ui/tabs_desk.h"
#include "ui/widgets/tab_strip.h"

#include <QTimer>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::tabs_desk;

namespace {

constexpr std::array areasThatFill{WorkArea::QuickSales, WorkArea::EditStock, WorkArea::ReorderStock,
                                   WorkArea::Settings};

void fillShop(const Counter &counter)
{
    constexpr int items = 300;
    for (int i = 0; i < items; ++i)
        counter.file.addItem(u"A%1"_s.arg(i), u"ITEM %1"_s.arg(i), 1.5, 100);
    counter.file.sql(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300) "
                     "INSERT INTO PurchaseCart (PurchaseID) SELECT 'HV' || (1000 + i) FROM n"_s);
}

/// Does something at the first row that fills a work area's list.
class InTheMiddle
{
public:
    InTheMiddle(Counter &counter, int tab, const std::function<void()> &action)
    {
        counter.connection->before = [this, tab, action, window = &counter.window()](const QString &statement) {
            if (!fills(tab, statement) || std::exchange(m_isBegun, true))
                return;
            passRest(); // so that the window breathes after that row
            QTimer::singleShot(0, window, [this, action] {
                m_isDone = true;
                action();
            });
        };
    }
    [[nodiscard]] bool isDone() const { return m_isDone; }

private:
    static bool fills(int tab, const QString &statement)
    {
        return tab == WorkArea::QuickSales ? statement.contains(u" Limit "_s)
                                           : statement == (tab == WorkArea::Settings ? allPurchases : allStock);
    }
    bool m_isBegun = false;
    bool m_isDone = false;
};

} // namespace

/// What is read when a tab is chosen, and what may happen meanwhile.
class TabLoadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void settingsListThePurchases();
    void loadsComeBeforeThePanels_data();
    void loadsComeBeforeThePanels();
    void dashboardIsRefreshed_data();
    void dashboardIsRefreshed();
    void stockAreaLeavesTheSearchResult();
    void tabChosenWhileAListFills_data();
    void tabChosenWhileAListFills();
    void logoutWhileAListFills_data();
    void logoutWhileAListFills();
};

void TabLoadsTest::settingsListThePurchases()
{
    Counter counter;
    counter.file.sql(u"INSERT INTO PurchaseCart (PurchaseID) VALUES ('HE2'),('HV1'),('HV3'),('HE1')"_s);
    counter.open();
    counter.logIn();
    QCOMPARE(counter.entries("Combo17"), QStringList());
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    QCOMPARE(counter.entries("Combo17"), (QStringList{u"HV3"_s, u"HV1"_s, u"HE2"_s, u"HE1"_s}));
    counter.connection->statements.clear();
    for (const int tab : {WorkArea::QuickSales, WorkArea::CustomSales, WorkArea::EditStock, WorkArea::ReorderStock})
        counter.chooseTab("TabStrip1", tab);
    QVERIFY(!counter.connection->statements.contains(allPurchases));
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    QCOMPARE(counter.connection->statements.count(allPurchases), 1);
}

void TabLoadsTest::loadsComeBeforeThePanels_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QStringList>("shown"); ///< from the custom sale
    const QStringList custom{u"Frame2"_s, u"Frame3"_s};
    QTest::newRow("quick sales") << WorkArea::QuickSales << dashboard << custom;
    QTest::newRow("custom sales") << WorkArea::CustomSales << dashboard << custom; // its dashboard comes last
    QTest::newRow("stock") << WorkArea::EditStock << allStock << custom;
    QTest::newRow("reorder") << WorkArea::ReorderStock << allStock << custom;
    QTest::newRow("settings") << WorkArea::Settings << allPurchases << custom;
}

void TabLoadsTest::loadsComeBeforeThePanels()
{
    QFETCH(int, tab);
    QFETCH(QString, statement);
    QFETCH(QStringList, shown);
    Counter counter;
    counter.open();
    counter.logIn();
    if (tab != WorkArea::CustomSales)
        counter.chooseTab("TabStrip1", WorkArea::CustomSales);
    QStringList then;
    counter.connection->before = [&](const QString &begun) {
        if (begun == statement)
            then = visibleFrames(counter);
    };
    counter.chooseTab("TabStrip1", tab);
    QCOMPARE(then, shown);
}

void TabLoadsTest::dashboardIsRefreshed_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<int>("times");
    for (const int tab : WorkArea::all)
        QTest::addRow("%d", tab) << tab << (tab == WorkArea::QuickSales || tab == WorkArea::CustomSales ? 1 : 0);
}

void TabLoadsTest::dashboardIsRefreshed()
{
    QFETCH(int, tab);
    QFETCH(int, times);
    Counter counter;
    counter.open();
    counter.logIn();
    counter.connection->statements.clear();
    counter.chooseTab("TabStrip1", tab);
    QCOMPARE(counter.connection->statements.count(dashboard), times);
}

void TabLoadsTest::stockAreaLeavesTheSearchResult()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.find("Frame11")->show();
    counter.find("Frame13")->show();
    counter.find("Frame2")->hide();
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    QCOMPARE(visibleFrames(counter), (QStringList{u"Frame7"_s, u"Frame10"_s, u"Frame11"_s}));
}

void TabLoadsTest::tabChosenWhileAListFills_data()
{
    QTest::addColumn<int>("begun");
    QTest::addColumn<int>("meanwhile");
    for (const int begun : areasThatFill) {
        for (const int meanwhile : WorkArea::all)
            QTest::addRow("%d in the middle of %d", meanwhile, begun) << begun << meanwhile;
    }
}

/// The tab that was chosen last is shown.
void TabLoadsTest::tabChosenWhileAListFills()
{
    QFETCH(int, begun);
    QFETCH(int, meanwhile);
    Counter counter;
    fillShop(counter);
    counter.open();
    counter.logIn();
    const InTheMiddle interruption(counter, begun, [&] { counter.chooseTab("TabStrip1", meanwhile); });
    counter.chooseTab("TabStrip1", begun);
    QVERIFY(interruption.isDone());
    QCOMPARE(counter.selectedTab("TabStrip1"), meanwhile);
    QCOMPARE(visibleFrames(counter), framesOf(meanwhile));
    if (meanwhile == WorkArea::EditStock || meanwhile == WorkArea::ReorderStock)
        QCOMPARE(counter.rows("LV").size(), 300);
    if (meanwhile == WorkArea::Settings)
        QCOMPARE(counter.entries("Combo17").size(), 300);
    QCOMPARE(counter.find("Command5")->isEnabled(), meanwhile != WorkArea::ReorderStock);
}

void TabLoadsTest::logoutWhileAListFills_data()
{
    QTest::addColumn<int>("begun");
    for (const int begun : areasThatFill)
        QTest::addRow("%d", begun) << begun;
}

void TabLoadsTest::logoutWhileAListFills()
{
    QFETCH(int, begun);
    Counter counter;
    fillShop(counter);
    counter.open();
    counter.logIn();
    counter.boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::AskDefaultNo, Answer::Yes);
    const InTheMiddle interruption(counter, begun, [&] { counter.click("Command27"); });
    counter.chooseTab("TabStrip1", begun);
    QVERIFY(interruption.isDone());
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
    QCOMPARE(visibleFrames(counter), framesOf(WorkArea::QuickSales));
    QVERIFY(counter.find("Frame12")->isVisible());
    QVERIFY(!counter.state().login.IsLoggedIn);
}

HARROWBY_TEST(tab_loads_test, TabLoadsTest)
#include "tab_loads_test.moc"
