// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include "platform/receipt_folder.h"
#include "ui/widgets/pick_list.h"

#include <QCheckBox>
#include <QLineEdit>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// The settings panel, and the choice of the receipt printer.
class SettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void savesSettings();
    void savingNeedsLogin();
    void savingNeedsTheRight();
    void quotedAddressFailsQuietly();
    void savedChoiceOfReceiptsSwitchesThePrinterList();
    void tellsWhereReceiptsGoWithoutAPrinter();
    void listsPrinters();
    void savedPrinterNotInstalled();
    void savingChoosesThePrinter();
    void unknownPrinterKeepsTheCurrentOne();
    void promptFlagHasASetter();
};

void SettingsTest::savesSettings()
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
    QCOMPARE(state.settings.EmailReportFlag + state.settings.ShowDetailsFlag + state.settings.PromptReorderFlag +
                 state.settings.HideFinishedFlag,
             4);
    QCOMPARE(state.settings.ReportEmailAddress, u" a@b.example"_s);
}

void SettingsTest::savingNeedsLogin()
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

void SettingsTest::savingNeedsTheRight()
{
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Sales"_s});
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
    counter.settings->values.clear();
    counter.boxes.expect(u"User [ANN] doesn't have this privilege!"_s, box::Exclamation);
    counter.click("Command18");
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
    QVERIFY(counter.settings->values.isEmpty());
}

void SettingsTest::quotedAddressFailsQuietly()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.setText("Text2", u"o'neil@b.example"_s);
    counter.find<QCheckBox>("Check2")->setChecked(true);
    counter.click("Command18");
    QCOMPARE(counter.file.cell(u"SELECT AutoPurchaseCart FROM StoreSettings"_s), u"0"_s);
    QCOMPARE(counter.state().settings.HideFinishedFlag, std::int16_t{1}); // kept while the window stays open
    QCOMPARE(counter.text("StatusBar1_2"), u"Setting Saved!"_s);
}

void SettingsTest::savedChoiceOfReceiptsSwitchesThePrinterList()
{
    Counter counter;
    counter.open();
    counter.logIn();
    QVERIFY(!counter.find("Combo9")->isEnabled());
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    counter.click("Check5");
    QVERIFY(counter.find("Combo9")->isEnabled());
    counter.click("Check5");
    QVERIFY(!counter.find("Combo9")->isEnabled());
}

void SettingsTest::tellsWhereReceiptsGoWithoutAPrinter()
{
    Counter counter;
    counter.open();
    const auto *list = counter.find<PickList>("Combo9");
    QVERIFY2(list->toolTip().contains(receiptFolders().constFirst()), qPrintable(list->toolTip()));
    QCOMPARE(list->lineEdit()->toolTip(), list->toolTip()); // the edit covers the box, and shows its own tool tip
}

void SettingsTest::listsPrinters()
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

void SettingsTest::savedPrinterNotInstalled()
{
    Counter counter;
    counter.settings->save(u"POS"_s, u"COM"_s, u"till"_s); // device names are compared exactly
    counter.open();
    QCOMPARE(counter.find<PickList>("Combo9")->count(), 2);
    QCOMPARE(counter.text("Combo9"), QString());
    QCOMPARE(counter.printers->current()->deviceName(), u"Back office"_s); // the platform's default
}

void SettingsTest::savingChoosesThePrinter()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.setText("Combo9", u"Till"_s);
    counter.click("Command18");
    QCOMPARE(counter.settings->get(u"pos"_s, u"com"_s, QString()), u"Till"_s);
    QCOMPARE(counter.printers->current()->deviceName(), u"Till"_s);
}

void SettingsTest::unknownPrinterKeepsTheCurrentOne()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.setText("Combo9", u"Gone"_s);
    counter.click("Command18");
    QCOMPARE(counter.settings->get(u"pos"_s, u"com"_s, QString()), u"Gone"_s);
    QCOMPARE(counter.printers->current()->deviceName(), u"Back office"_s);
}

void SettingsTest::promptFlagHasASetter()
{
    Counter counter;
    counter.open();
    const std::int16_t flag = 7;
    counter.window().UpdatePromptReorder(flag);
    QCOMPARE(counter.state().settings.PromptReorderFlag, flag);
}

HARROWBY_TEST(settings_test, SettingsTest)
#include "settings_test.moc"
