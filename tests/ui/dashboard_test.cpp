// SPDX-License-Identifier: MIT
#include "support/counter.h"

#include "ui/widgets/pick_list.h"

#include <QCheckBox>
#include <QLabel>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Today's figures, the settings panel, and the choice of the receipt printer.
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
    void savesSettings();
    void savingNeedsLogin();
    void savingNeedsTheRight();
    void quotedAddressFailsQuietly();
    void savedChoiceOfReceiptsSwitchesThePrinterList();
    void listsPrinters();
    void savedPrinterNotInstalled();
    void savingChoosesThePrinter();
    void unknownPrinterKeepsTheCurrentOne();
    void promptFlagHasASetter();
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
    counter.chooseTab("TabStrip1", 1);
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
    counter.chooseTab("TabStrip1", 2);
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
    counter.chooseTab("TabStrip1", 2);
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
}

void DashboardTest::savesSettings()
{
    Counter counter;
    counter.file.sql(u"INSERT INTO StoreSettings VALUES (0, 0, '', 0, 0)"_s); // every row is set
    counter.open();
    counter.logIn();
    counter.settings->values.clear();
    for (const char *check : {"Check1", "Check2", "Check3", "Check4", "Check5"})
        counter.find<QCheckBox>(check)->setChecked(true);
    counter.setText("Text2", u" a@b.example"_s);
    counter.click("Command18"); // no box, also with "Show Details On Purchase" on
    QVERIFY(counter.connection->statements.contains(
        u"Update StoreSettings SET Email = 1, ShowDetails = 1, EmailAddress = ' a@b.example', Promptreorder = 1, AutoPurchaseCart = 1"_s));
    QCOMPARE(counter.file.rows(
                 u"SELECT Email, ShowDetails, EmailAddress, Promptreorder, AutoPurchaseCart FROM StoreSettings"_s),
             QStringList(2, u"1|1| a@b.example|1|1"_s));
    QCOMPARE(counter.settings->values, (QMap<QString, QString>{{u"option/emailreport"_s, u"1"_s},
                                                               {u"option/useposforreceipt"_s, u"1"_s},
                                                               {u"pos/com"_s, QString()}}));
    const FormState &state = counter.state();
    QCOMPARE(state.EmailReportFlag + state.ShowDetailsFlag + state.PromptReorderFlag + state.HideFinishedFlag, 4);
    QCOMPARE(state.ReportEmailAddress, u" a@b.example"_s);
}

void DashboardTest::savingNeedsLogin()
{
    Counter counter;
    counter.open();
    counter.connection->statements.clear();
    counter.settings->values.clear();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    counter.click("Command18");
    QVERIFY(counter.connection->statements.isEmpty());
    QVERIFY(counter.settings->values.isEmpty());
}

void DashboardTest::savingNeedsTheRight()
{
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Sales"_s});
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    counter.chooseTab("TabStrip1", 2);
    counter.settings->values.clear();
    counter.boxes.expect(u"User [ANN] doesn't have this privilege!"_s, box::Exclamation);
    counter.click("Command18");
    QCOMPARE(counter.selectedTab("TabStrip1"), 1);
    QVERIFY(counter.settings->values.isEmpty());
}

void DashboardTest::quotedAddressFailsQuietly()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.setText("Text2", u"o'neil@b.example"_s);
    counter.find<QCheckBox>("Check2")->setChecked(true);
    counter.click("Command18");
    QCOMPARE(counter.file.cell(u"SELECT AutoPurchaseCart FROM StoreSettings"_s), u"0"_s);
    QCOMPARE(counter.state().HideFinishedFlag, std::int16_t{1}); // kept while the window stays open
    QCOMPARE(counter.text("StatusBar1_2"), u"Setting Saved!"_s);
}

void DashboardTest::savedChoiceOfReceiptsSwitchesThePrinterList()
{
    Counter counter;
    counter.open();
    counter.logIn();
    QVERIFY(!counter.find("Combo9")->isEnabled());
    counter.chooseTab("TabStrip1", 5);
    counter.click("Check5");
    QVERIFY(counter.find("Combo9")->isEnabled());
    counter.click("Check5");
    QVERIFY(!counter.find("Combo9")->isEnabled());
}

void DashboardTest::listsPrinters()
{
    Counter counter;
    counter.settings->save(u"POS"_s, u"COM"_s, u"Till"_s);
    counter.open();
    const auto *list = counter.find<PickList>("Combo9");
    QCOMPARE(list->count(), 2);
    QCOMPARE(list->itemText(0), u"Till"_s);
    QCOMPARE(list->itemText(1), u"Back office"_s);
    QCOMPARE(counter.text("Combo9"), u"Till"_s);
    QCOMPARE(counter.printers->current()->deviceName(), u"Till"_s);
    QCOMPARE(counter.text("Combo3"), QString());
}

void DashboardTest::savedPrinterNotInstalled()
{
    Counter counter;
    counter.settings->save(u"POS"_s, u"COM"_s, u"till"_s); // device names are compared exactly
    counter.open();
    QCOMPARE(counter.find<PickList>("Combo9")->count(), 2);
    QCOMPARE(counter.text("Combo9"), QString());
    QCOMPARE(counter.printers->current()->deviceName(), u"Back office"_s); // the platform's default
}

void DashboardTest::savingChoosesThePrinter()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.setText("Combo9", u"Till"_s);
    counter.click("Command18");
    QCOMPARE(counter.settings->get(u"pos"_s, u"com"_s, QString()), u"Till"_s);
    QCOMPARE(counter.printers->current()->deviceName(), u"Till"_s);
}

void DashboardTest::unknownPrinterKeepsTheCurrentOne()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.setText("Combo9", u"Gone"_s);
    counter.click("Command18");
    QCOMPARE(counter.settings->get(u"pos"_s, u"com"_s, QString()), u"Gone"_s);
    QCOMPARE(counter.printers->current()->deviceName(), u"Back office"_s);
}

void DashboardTest::promptFlagHasASetter()
{
    Counter counter;
    counter.open();
    const std::int16_t flag = 7;
    counter.window().UpdatePromptReorder(flag);
    QCOMPARE(counter.state().PromptReorderFlag, flag);
}

QTEST_MAIN(DashboardTest)
#include "dashboard_test.moc"
