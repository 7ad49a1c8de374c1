// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include <QLabel>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Today's figures.
class DashboardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingSold();
    void ownSales();
    void everybodysSales();
    void otherDaysDoNotCount();
    void disabledStockDoesNotCount();
    void figuresAreGrouped();
    void failingQueryKeepsItsCaption();
    void statements();
    void reorderLink_data();
    void reorderLink();
    void reorderLinkIsQuietWithoutAWindow();
};

namespace {

void addPurchase(const Counter &counter, const QString &id, const QString &cost, const QString &date,
                 const QString &user)
{
    counter.file.sql(u"INSERT INTO PurchaseCart VALUES ('%1','',1,%2,'%3','%4')"_s.arg(id, cost, date, user));
}

} // namespace

void DashboardTest::nothingSold()
{
    Counter counter;
    counter.open();
    QCOMPARE(counter.text("Label6_3"), u"0"_s);
    QCOMPARE(counter.text("Label6_4"), u"  0.00"_s);
    QCOMPARE(counter.text("Label6_8"), u"  0"_s);
    QCOMPARE(counter.text("Label6_9"), u"  0"_s);
}

void DashboardTest::ownSales()
{
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Sales"_s});
    addPurchase(counter, u"1"_s, u"1234.5"_s, u"180305090000"_s, u"ANN"_s);
    addPurchase(counter, u"2"_s, u"7"_s, u"180305090000"_s, u"BOB"_s);
    counter.open();
    QCOMPARE(counter.text("Label6_3"), u"0"_s); // nobody's
    counter.logIn(u"ANN"_s, u"PW"_s);
    QCOMPARE(counter.text("Label6_3"), u"1"_s);
    QCOMPARE(counter.text("Label6_4"), u"  1,234.50"_s);
}

void DashboardTest::everybodysSales()
{
    Counter counter;
    addPurchase(counter, u"1"_s, u"1234.5"_s, u"180305090000"_s, u"ANN"_s);
    addPurchase(counter, u"2"_s, u"7"_s, u"180305090000"_s, u"BOB"_s);
    counter.open();
    counter.logIn();
    QCOMPARE(counter.text("Label6_3"), u"2"_s);
    QCOMPARE(counter.text("Label6_4"), u"  1,241.50"_s);
}

void DashboardTest::otherDaysDoNotCount()
{
    Counter counter;
    addPurchase(counter, u"1"_s, u"5"_s, u"180304090000"_s, u"ANN"_s);
    addPurchase(counter, u"2"_s, u"5"_s, u"2018-03-05"_s, u"ANN"_s);
    counter.open();
    counter.logIn();
    QCOMPARE(counter.text("Label6_3"), u"0"_s);
    QCOMPARE(counter.text("Label6_4"), u"  0.00"_s);
}

void DashboardTest::disabledStockDoesNotCount()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 5, u"D"_s, u"Enabled"_s, 5); // at its level: needs reordering
    counter.file.addItem(u"A2"_s, u"ALE"_s, 1, 6, u"D"_s, u"Enabled"_s, 5);
    counter.file.addItem(u"A3"_s, u"BUN"_s, 1, 1, u"D"_s, u"Disabled"_s, 5);
    counter.open();
    QCOMPARE(counter.text("Label6_8"), u"  11"_s);
    QCOMPARE(counter.text("Label6_9"), u"  1"_s);
}

void DashboardTest::figuresAreGrouped()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 12344.5);
    counter.open();
    QCOMPARE(counter.text("Label6_8"), u"  12,345"_s);
}

void DashboardTest::failingQueryKeepsItsCaption()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 1);
    addPurchase(counter, u"1"_s, u"5"_s, u"180305090000"_s, u"ANN"_s);
    counter.open();
    counter.logIn();
    counter.file.sql(u"DROP TABLE PurchaseCart; DROP TABLE StockList"_s);
    counter.chooseTab("TabStrip1", WorkArea::QuickSales);
    QCOMPARE(counter.text("Label6_3"), u"1"_s);
    QCOMPARE(counter.text("Label6_4"), u"  5.00"_s);
    QCOMPARE(counter.text("Label6_8"), u"  1"_s);
    QCOMPARE(counter.text("Label6_9"), u"  1"_s);
}

void DashboardTest::statements()
{
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Sales"_s});
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    counter.connection->statements.clear();
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
    QCOMPARE(
        counter.connection->statements.mid(0, 4),
        (QStringList{
            u"Select count(*) as totals from PurchaseCart where Users = 'ANN' and substr(PurchasedDate,1,6) = '180305'"_s,
            u"Select sum(PurchasedItemsCost) as Counts from PurchaseCart where Users = 'ANN' and substr(PurchasedDate,1,6) = '180305'"_s,
            u"Select Total(StockAvailable) as Totals from Stocklist where StockUse = 'Enabled'"_s,
            u"Select * from Stocklist where StockReorderlevel >= stockavailable and StockUse = 'Enabled'"_s,
        }));
    counter.logIn();
    counter.connection->statements.clear();
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
    QCOMPARE(
        counter.connection->statements.mid(0, 2),
        (QStringList{
            u"Select count(*) as totals from PurchaseCart where substr(PurchasedDate,1,6) = '180305'"_s,
            u"Select sum(PurchasedItemsCost) as Counts from PurchaseCart where substr(PurchasedDate,1,6) = '180305'"_s,
        }));
}

/// Stands for a host's list window: counts how often it is asked to show itself.
class ListWindow : public QObject
{
    Q_OBJECT

public:
    explicit ListWindow(QStringList &shown) : m_shown(shown) {}
    Q_INVOKABLE void Show(int mode, QWidget *owner) { m_shown << u"%1 %2"_s.arg(mode).arg(owner->windowTitle()); }

private:
    QStringList &m_shown;
};

void DashboardTest::reorderLink_data()
{
    QTest::addColumn<bool>("low");
    QTest::addColumn<QString>("element");
    QTest::addColumn<bool>("shows");
    QTest::newRow("something to reorder") << true << u"Label6_9"_s << true;
    QTest::newRow("nothing to reorder") << false << u"Label6_9"_s << false;
    QTest::newRow("another figure") << true << u"Label6_8"_s << false;
}

void DashboardTest::reorderLink()
{
    QFETCH(bool, low);
    QFETCH(QString, element);
    QFETCH(bool, shows);
    Counter counter;
    QStringList shown;
    counter.objects->add(u"Harrowby.ReorderList"_s, [&shown] { return std::make_unique<ListWindow>(shown); });
    if (low)
        counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 1);
    counter.open();
    QTest::mouseClick(counter.find(element.toLatin1().constData()), Qt::LeftButton);
    QCOMPARE(shown, shows ? QStringList{u"1 Sales Inventory"_s} : QStringList());
    QTest::keyClick(counter.find(element.toLatin1().constData()), Qt::Key_Return);
    QCOMPARE(shown.size(), shows ? 2 : 0);
}

void DashboardTest::reorderLinkIsQuietWithoutAWindow()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 1);
    counter.open();
    QTest::mouseClick(counter.find("Label6_9"), Qt::LeftButton);
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

HARROWBY_TEST(dashboard_test, DashboardTest)
#include "dashboard_test.moc"
