// SPDX-License-Identifier: MIT
#include "app/office/user_rules.h"
#include "app/records/deeds.h"
#include "app/records/sqlite_records.h"
#include "tests/app/office_desk.h"
#include "tests/program/test_program.h"

#include <QCheckBox>
#include <QComboBox>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTableView>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// Two offices of one shop at once: what one has changed, the other does not undo unseen.
class TwoOfficesTest : public OfficeDesk
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        m_second.reset();
        m_secondShop.reset();
        OfficeDesk::cleanup();
    }

    void rightIsNotSwitchedBack();
    void roleIsOnePress();
    void roleThatIsThereChangesNothing();
    void waysAndNotesOfBothStay();
    void waysOfTheOtherAreShown();
    void searchOfTheOtherIsShown();
    void receiptOfTheOtherIsShown();
    void drawerNameOfTheOtherIsShown();
    void readersOfTheOtherAreShown();
    void codeOfTheOtherStays();
    void ruleOfTheOtherIsShown();
    void changesOfSettingsAreTold();

private:
    void openSecond()
    {
        m_secondShop = std::make_unique<OpenShop>(m_path);
        m_second = makeWindow(storeOf(*m_secondShop));
    }
    template <class Widget>
    [[nodiscard]] Widget *theirs(const char *name) const
    {
        return m_second->findChild<Widget *>(QString::fromLatin1(name));
    }
    void chooseTheirs(const QString &user)
    {
        auto *list = theirs<QListWidget>("users");
        list->setCurrentItem(list->findItems(user + u'\n', Qt::MatchStartsWith).value(0));
    }
    [[nodiscard]] QStringList deeds(const char *kind) const
    {
        return column(m_path, u"select What from HarrowbyActivity where Kind = '%1' and Who = 'ADMINISTRATOR' order by "
                              "rowid"_s.arg(QString::fromLatin1(kind)));
    }
    [[nodiscard]] QString setting(const QString &name) const
    {
        return column(m_path, u"select Value from HarrowbySetting where Name = '%1'"_s.arg(name)).value(0);
    }
    [[nodiscard]] QString said(const char *label) const { return part<QLabel>(label)->text(); }

    std::unique_ptr<OpenShop> m_secondShop;
    std::unique_ptr<OfficeWindow> m_second;
};

void TwoOfficesTest::rightIsNotSwitchedBack()
{
    openSecond();
    choose(u"ANNA"_s);
    chooseTheirs(u"ANNA"_s);
    theirs<QCheckBox>("InventorySales")->click();
    answerNextBox(QMessageBox::AcceptRole);
    part<QCheckBox>("InventorySales")->click(); // which shows it as off still
    QVERIFY2(m_boxText.contains(u"Somebody else has changed ANNA meanwhile."_s), qPrintable(m_boxText));
    QVERIFY(part<QCheckBox>("InventorySales")->isChecked()); // as it is stored
    QCOMPARE(read(u"select InventorySales from Users where Username = 'ANNA'"_s), u"-1"_s);
    // What they have not touched can be changed.
    part<QCheckBox>("InventoryUndo")->click();
    QCOMPARE(read(u"select count(*) from Users where Username = 'ANNA' and InventorySales = -1 and InventoryUndo = "
                  "-1"_s),
             u"1"_s);
    QCOMPARE(deeds("RightsChanged"),
             (QStringList{u"ANNA was given the right \"Custom sales\"."_s, u"ANNA was given the right \"Undo\"."_s}));
}

void TwoOfficesTest::roleIsOnePress()
{
    openSecond();
    choose(u"ANNA"_s);
    QVERIFY(!part<QPushButton>("role0")->isChecked());
    part<QPushButton>("role1")->click();
    QCOMPARE(read(u"select count(*) from Users where Username = 'ANNA' and InventoryUse = -1 and InventorySales = -1 "
                  "and InventoryReport = -1 and InventoryUndo = -1 and coalesce(InventoryDelete, 0) = 0 and "
                  "coalesce(InventorySettings, 0) = 0 and coalesce(InventoryReorder, 0) = 0"_s),
             u"1"_s);
    QCOMPARE(said("usersOutcome"), u"Saved: ANNA has the rights of a shift leader. Given: Custom sales, Sales report, "
                                   "Undo. It takes effect at the next login."_s);
    QVERIFY(part<QPushButton>("role1")->isChecked() && !part<QPushButton>("role2")->isChecked());
    QVERIFY(part<QCheckBox>("InventoryReport")->isChecked());
    QCOMPARE(part<QListWidget>("users")->currentItem()->text(), u"ANNA\nSTAFF, shift leader"_s);
    chooseTheirs(u"ANNA"_s);
    answerNextBox(QMessageBox::AcceptRole);
    theirs<QPushButton>("role0")->click(); // of what they saw, another right would be left
    QVERIFY(m_boxText.contains(u"meanwhile"_s));
    QVERIFY(theirs<QPushButton>("role1")->isChecked());
    choose(u"ADMINISTRATOR"_s);
    for (const char *role : {"role0", "role1", "role2"})
        QVERIFY(!part<QPushButton>(role)->isEnabled() && !part<QPushButton>(role)->isChecked());
}

void TwoOfficesTest::roleThatIsThereChangesNothing()
{
    choose(u"ANNA"_s);
    part<QPushButton>("role2")->click();
    const QStringList before = deeds("RightsChanged");
    part<QPushButton>("role2")->click();
    QVERIFY(part<QPushButton>("role2")->isChecked());
    QVERIFY(said("usersOutcome").contains(u"already"_s));
    QCOMPARE(deeds("RightsChanged"), before);
}

void TwoOfficesTest::waysAndNotesOfBothStay()
{
    openSecond();
    part<QLineEdit>("paymentWays")->setText(u"Card, Voucher"_s);
    theirs<QLineEdit>("cashNotes")->setText(u"10 20"_s);
    theirs<QPushButton>("saveCash")->click();
    part<QPushButton>("saveCash")->click();
    QCOMPARE(setting(u"PaymentWays"_s), u"Card, Voucher"_s);
    QCOMPARE(setting(u"CashNotes"_s), u"10 20"_s);
    QCOMPARE(part<QLineEdit>("cashNotes")->text(), u"10 20"_s);
    QCOMPARE(deeds("SettingChanged"), (QStringList{u"Notes: 10 20; before: 5 10 20 50 100."_s,
                                                   u"Ways of paying beside cash: Card, Voucher; before: Card."_s}));
}

void TwoOfficesTest::waysOfTheOtherAreShown()
{
    openSecond();
    theirs<QLineEdit>("paymentWays")->setText(u"Card, Voucher"_s);
    theirs<QPushButton>("saveCash")->click();
    part<QLineEdit>("paymentWays")->setText(u"Cheque"_s);
    part<QPushButton>("saveCash")->click();
    QCOMPARE(setting(u"PaymentWays"_s), u"Card, Voucher"_s);
    QCOMPARE(part<QLineEdit>("paymentWays")->text(), u"Card, Voucher"_s);
    QVERIFY(said("cashOutcome").contains(u"Somebody else has changed this meanwhile."_s));
    part<QLineEdit>("paymentWays")->setText(u"Cheque"_s);
    part<QPushButton>("saveCash")->click(); // having seen it
    QCOMPARE(setting(u"PaymentWays"_s), u"Cheque"_s);
}

void TwoOfficesTest::searchOfTheOtherIsShown()
{
    openSecond();
    const bool before = part<QCheckBox>("searchAnywhere")->isChecked();
    theirs<QCheckBox>("searchAnywhere")->click();
    part<QCheckBox>("searchAnywhere")->click(); // to what it is by now
    QVERIFY(said("shopOutcome").contains(u"Somebody else"_s));
    QCOMPARE(part<QCheckBox>("searchAnywhere")->isChecked(), !before);
    part<QCheckBox>("searchAnywhere")->click();
    QCOMPARE(setting(u"SearchFindsAnywhere"_s), before ? u"yes"_s : u"no"_s);
}

void TwoOfficesTest::receiptOfTheOtherIsShown()
{
    openSecond();
    theirs<QLineEdit>("receiptTitle")->setText(u"Corner Shop"_s);
    theirs<QPushButton>("saveReceipt")->click();
    part<QLineEdit>("receiptTitle")->setText(u"Corner Store"_s);
    part<QPushButton>("saveReceipt")->click();
    QCOMPARE(m_saved.value(u"option/Title"_s), u"Corner Shop"_s);
    QCOMPARE(part<QLineEdit>("receiptTitle")->text(), u"Corner Shop"_s);
    QVERIFY(said("receiptOutcome").contains(u"Somebody else"_s));
}

void TwoOfficesTest::drawerNameOfTheOtherIsShown()
{
    openSecond();
    theirs<QLineEdit>("drawerName")->setText(u"DESK 1"_s);
    theirs<QPushButton>("saveCash")->click();
    part<QLineEdit>("drawerName")->setText(u"DESK 2"_s);
    part<QPushButton>("saveCash")->click();
    QCOMPARE(part<QLineEdit>("drawerName")->text(), u"DESK 1"_s);
    QVERIFY(m_saved.values().contains(u"DESK 1"_s) && !m_saved.values().contains(u"DESK 2"_s));
}

void TwoOfficesTest::readersOfTheOtherAreShown()
{
    openSecond();
    theirs<QLineEdit>("readerPrefix")->setText(u"AA"_s);
    theirs<QPushButton>("saveReaders")->click();
    part<QLineEdit>("readerPrefix")->setText(u"BB"_s);
    part<QPushButton>("saveReaders")->click();
    QCOMPARE(part<QLineEdit>("readerPrefix")->text(), u"AA"_s);
    QVERIFY(said("readersOutcome").contains(u"Somebody else"_s));
    part<QLineEdit>("readerPrefix")->setText(u"BB"_s);
    part<QPushButton>("saveReaders")->click();
    QVERIFY(m_saved.values().contains(u"BB"_s));
}

void TwoOfficesTest::codeOfTheOtherStays()
{
    runAll(m_path, kept::code().making + QStringList{u"insert into HarrowbyCode values ('123', 'TEA-0001', 1)"_s});
    openSecond();
    showPage(u"Codes"_s);
    auto *list = part<QAbstractItemView>("codes");
    list->setCurrentIndex(list->model()->index(0, 0));
    runAll(m_path, {u"update HarrowbyCode set Units = 6"_s}); // as the other office does
    answerNextBox(QMessageBox::AcceptRole);
    part<QPushButton>("deleteCode")->click();
    QVERIFY(said("codesOutcome").contains(u"Somebody else has deleted or changed the code meanwhile."_s));
    QCOMPARE(read(u"select Units from HarrowbyCode"_s), u"6"_s);
    list->setCurrentIndex(list->model()->index(0, 0));
    answerNextBox(QMessageBox::AcceptRole);
    part<QPushButton>("deleteCode")->click();
    QCOMPARE(read(u"select count(*) from HarrowbyCode"_s), u"0"_s);
    QCOMPARE(deeds("CodeChanged"), QStringList{u"The code 123 of TEA-0001 was deleted."_s});
}

void TwoOfficesTest::ruleOfTheOtherIsShown()
{
    inNextDialog([this](QDialog &dialog) {
        const auto save = [&dialog](const QString &pattern) {
            dialog.findChild<QCheckBox *>(u"inStoreOn"_s)->setChecked(true);
            enter(dialog, "inStorePattern", pattern);
            dialog.findChild<QPushButton *>(u"saveInStore"_s)->click();
            return dialog.findChild<QLabel *>(u"inStoreOutcome"_s)->text();
        };
        runAll(m_path, kept::setting().making + // as the other office does
                           QStringList{u"insert into HarrowbySetting values ('InStoreCode.02', '02IIIIIPPPPPC 2')"_s});
        QVERIFY(save(u"02IIIIIWWWWWC"_s).contains(u"Somebody else has changed this rule meanwhile."_s));
        QCOMPARE(dialog.findChild<QLineEdit *>(u"inStorePattern"_s)->text(), u"02IIIIIPPPPPC"_s);
        QCOMPARE(setting(u"InStoreCode.02"_s), u"02IIIIIPPPPPC 2"_s);
        QVERIFY(save(u"02IIIIIWWWWWC"_s).startsWith(u"Saved"_s));
        QVERIFY(setting(u"InStoreCode.02"_s).startsWith(u"02IIIIIWWWWWC"_s));
        dialog.reject();
    });
    part<QPushButton>("inStoreCodes")->click();
}

void TwoOfficesTest::changesOfSettingsAreTold()
{
    part<QLineEdit>("receiptTitle")->setText(u"Corner Shop"_s);
    part<QPushButton>("saveReceipt")->click();
    part<QLineEdit>("readerPrefix")->setText(u"AA"_s);
    part<QPushButton>("saveReaders")->click();
    part<QPushButton>("saveReaders")->click(); // which changes nothing
    part<QCheckBox>("searchAnywhere")->click();
    const QStringList told = deeds("SettingChanged");
    QCOMPARE(told.size(), 3);
    QVERIFY2(told.at(0).startsWith(u"Receipt of this computer: title \"Corner Shop\", before "_s),
             qPrintable(told.at(0)));
    QVERIFY2(told.at(1).contains(u"prefix AA"_s), qPrintable(told.at(1)));
    QVERIFY2(told.at(2).startsWith(u"The search finds a text anywhere: switched "_s), qPrintable(told.at(2)));
}

HARROWBY_TEST(app_two_offices_test, TwoOfficesTest)
#include "two_offices_test.moc"
