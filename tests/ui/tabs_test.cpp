// SPDX-License-Identifier: MIT
#include "support/counter.h"

#include "ui/widgets/tab_strip.h"

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

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
    void keyboardIsGatedToo();
};

namespace {

const QStringList frames{u"Frame1"_s, u"Frame2"_s,  u"Frame3"_s,  u"Frame7"_s, u"Frame8"_s,
                         u"Frame9"_s, u"Frame10"_s, u"Frame11"_s, u"Frame13"_s};

QStringList visibleFrames(const Counter &counter)
{
    QStringList visible;
    for (const QString &frame : frames) {
        if (counter.find(frame.toLatin1().constData())->isVisible())
            visible << frame;
    }
    return visible;
}

} // namespace

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
    for (int tab = 1; tab <= 5; ++tab) {
        counter.find("Text4")->setFocus();
        counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
        counter.chooseTab("TabStrip1", tab);
        QCOMPARE(counter.selectedTab("TabStrip1"), 1);
        QVERIFY(counter.hasFocus("Text3"));
    }
}

void TabsTest::panelsOfEachArea_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QStringList>("visible");
    QTest::newRow("quick sales") << 1 << QStringList{u"Frame1"_s, u"Frame2"_s};
    QTest::newRow("custom sales") << 2 << QStringList{u"Frame2"_s, u"Frame3"_s};
    // The cart's area stays as it is under the stock list.
    QTest::newRow("stock") << 3 << QStringList{u"Frame2"_s, u"Frame7"_s, u"Frame10"_s};
    QTest::newRow("reorder") << 4 << QStringList{u"Frame8"_s, u"Frame10"_s};
    QTest::newRow("settings") << 5 << QStringList{u"Frame2"_s, u"Frame9"_s};
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
    counter.chooseTab("TabStrip1", 1);
    QCOMPARE(visibleFrames(counter), (QStringList{u"Frame1"_s, u"Frame2"_s}));
}

void TabsTest::refusedAreas_data()
{
    QTest::addColumn<int>("tab");
    for (int tab = 2; tab <= 5; ++tab)
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
    QCOMPARE(counter.selectedTab("TabStrip1"), 1);
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
    counter.chooseTab("TabStrip1", 3);
    QCOMPARE(counter.selectedTab("TabStrip1"), 3);
    counter.chooseTab("TabStrip1", 4);
    QCOMPARE(counter.selectedTab("TabStrip1"), 4);
}

void TabsTest::stockAreaClearsItsFields()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", 3);
    for (const char *field : {"Combo5", "Combo6", "Combo7", "Combo8", "Combo13", "Combo14", "Combo15"})
        counter.setText(field, u"half done"_s);
    counter.chooseTab("TabStrip1", 1);
    counter.chooseTab("TabStrip1", 3);
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
    QTest::newRow("quick sales") << 1 << 1;
    QTest::newRow("custom sales") << 2 << 1;
    QTest::newRow("settings") << 5 << 2;
}

void TabsTest::sellingAreasShowTheCart()
{
    QFETCH(int, tab);
    QFETCH(int, panel);
    Counter counter;
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip2", 2);
    counter.chooseTab("TabStrip1", tab);
    QCOMPARE(counter.selectedTab("TabStrip2"), panel);
}

void TabsTest::activityNeedsLogin()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"You must login first!"_s, box::Exclamation);
    counter.chooseTab("TabStrip2", 2);
    QCOMPARE(counter.selectedTab("TabStrip2"), 1);
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
    counter.chooseTab("TabStrip2", 2);
    QCOMPARE(counter.selectedTab("TabStrip2"), 1);
}

void TabsTest::activityShowsTheLog()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip2", 2);
    QVERIFY(counter.find("Frame5")->isVisible());
    QVERIFY(!counter.find("Frame4")->isVisible());
    counter.chooseTab("TabStrip2", 1);
    QVERIFY(counter.find("Frame4")->isVisible());
    QVERIFY(!counter.find("Frame5")->isVisible());
}

void TabsTest::sameTabAgainRunsItsHandler()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.connection->statements.clear();
    counter.chooseTab("TabStrip1", 1);
    QVERIFY(counter.connection->statements.contains(
        u"Select Total(StockAvailable) as Totals from Stocklist where StockUse = 'Enabled'"_s));
}

void TabsTest::keyboardIsGatedToo()
{
    Counter counter;
    counter.open();
    counter.find("TabStrip1")->setFocus();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    QTest::keyClick(counter.find("TabStrip1"), Qt::Key_Right);
    QCOMPARE(counter.selectedTab("TabStrip1"), 1);
    counter.logIn();
    QTest::keyClick(counter.find("TabStrip1"), Qt::Key_Right);
    QCOMPARE(counter.selectedTab("TabStrip1"), 2);
    QCOMPARE(visibleFrames(counter), (QStringList{u"Frame2"_s, u"Frame3"_s}));
}

QTEST_MAIN(TabsTest)
#include "tabs_test.moc"
