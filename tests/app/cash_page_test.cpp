// SPDX-License-Identifier: MIT
#include "app/cash/cash_choices.h"
#include "app/records/record_tables.h"
#include "app/records/sqlite_records.h"
#include "tests/app/false_print_service.h"
#include "tests/app/office_desk.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// The office's page for cash, at the window.
class CashPageTest : public OfficeDesk
{
    Q_OBJECT

private Q_SLOTS:
    void choicesAreSaved();
    void wrongEntriesAreToldOf();
    void failedSaveIsTold();
    void drawerIsNamed();
    void drawerIsSwitchedOn();
    void drawerOfAnotherOfficeStays();
    void drawerIsTried();
    void changesAreAskedAbout();
    void openPaymentsAreCounted();
    void openPaymentFindsItsSale();
    void openPaymentIsRemoved();

private:
    void openPage();
    void addOpenPayment(const QString &id, int cents);
};

/// Shown anew, so that it counts again.
void CashPageTest::openPage()
{
    showPage(u"Users"_s);
    showPage(u"Cash"_s);
}

void CashPageTest::addOpenPayment(const QString &id, int cents)
{
    QStringList statements = kept::payment().making;
    statements << u"INSERT INTO HarrowbyPayment VALUES ('%1', 1, '', 'UNMATCHED', 'Card', %2, %2, %2, '2 x TEA-0001  | "
                  u" TEA', 'ANNA', "
                  "'2026-05-04T10:00:00.000Z', 'Front', 7, 0, '', '')"_s.arg(id)
                      .arg(cents);
    runAll(m_path, statements);
}

void CashPageTest::choicesAreSaved()
{
    openPage();
    QCOMPARE(part<QLineEdit>("paymentWays")->text(), u"Card"_s);
    QCOMPARE(part<QLineEdit>("cashNotes")->text(), u"5 10 20 50 100"_s);
    part<QLineEdit>("paymentWays")->setText(u"Card,Voucher"_s);
    part<QLineEdit>("cashNotes")->setText(u"20, 10"_s);
    press("saveCash");
    QVERIFY(part<QLabel>("cashOutcome")->text().startsWith(u"Saved."_s));
    QCOMPARE(part<QLineEdit>("cashNotes")->text(), u"10 20"_s);
    Records &records = *m_shop->records();
    QCOMPARE(readCashChoices(records), (CashChoices{{u"Card"_s, u"Voucher"_s}, {1000, 2000}}));
    QVERIFY(m_saved.isEmpty()); // nothing of this machine's has changed
    m_window->reject();
    QVERIFY(!m_window->isVisible());
}

void CashPageTest::wrongEntriesAreToldOf()
{
    openPage();
    part<QLineEdit>("paymentWays")->setText(u"Card, Cash"_s);
    press("saveCash");
    QCOMPARE(part<QLabel>("cashOutcome")->text(), u"\u26a0 \"Cash\" is there already."_s);
    part<QLineEdit>("paymentWays")->setText(u"Card"_s);
    part<QLineEdit>("cashNotes")->setText(u"5 x"_s);
    QTest::keyClick(part<QLineEdit>("cashNotes"), Qt::Key_Return);
    QVERIFY(part<QLabel>("cashOutcome")->text().contains(u"\"x\" is no note."_s));
    // A server's table is there from its set-up.
    QCOMPARE(read(harrowby::test::shopsAreOnAServer()
                      ? u"SELECT count(*) FROM HarrowbySetting"_s
                      : u"SELECT count(*) FROM sqlite_schema WHERE name = 'HarrowbySetting'"_s),
             u"0"_s);
}

void CashPageTest::failedSaveIsTold()
{
    openPage();
    m_shop->refuseWritesTo(u"HarrowbySetting"_s);
    part<QLineEdit>("paymentWays")->setText(u"Card, Voucher"_s);
    answerNextBox(QMessageBox::AcceptRole);
    press("saveCash");
    QVERIFY2(m_boxText.startsWith(u"Ways and notes were not saved."_s), qPrintable(m_boxText));
    QCOMPARE(part<QLabel>("cashOutcome")->text(), QString());
}

void CashPageTest::drawerIsNamed()
{
    openPage();
    QVERIFY(!part<QLineEdit>("drawerName")->placeholderText().isEmpty());
    part<QLineEdit>("drawerName")->setText(u"  Front   desk "_s);
    press("saveCash");
    QCOMPARE(m_saved.value(u"Cash/Drawer"_s), u"Front desk"_s);
    QCOMPARE(part<QLineEdit>("drawerName")->text(), u"Front desk"_s);
}

void CashPageTest::drawerIsSwitchedOn()
{
    FalsePrintService service;
    service.answerList(u"kitchen\ntill"_s);
    openPage();
    inNextDialog([](QDialog &dialog) {
        auto *queue = dialog.findChild<QComboBox *>(u"drawerQueue"_s);
        auto *save = dialog.findChild<QPushButton *>(u"saveDrawer"_s);
        QVERIFY(!queue->isEnabled());
        QTRY_COMPARE(queue->count(), 2); // in the background
        QCOMPARE(queue->currentText(), QString());
        dialog.findChild<QCheckBox *>(u"drawerOn"_s)->setChecked(true);
        save->click();
        QCOMPARE(dialog.findChild<QLabel *>(u"drawerOutcome"_s)->text(),
                 u"\u26a0 Choose the printer that the drawer hangs on."_s);
        QVERIFY(dialog.isVisible());
        queue->setCurrentIndex(1);
        dialog.findChild<QComboBox *>(u"drawerPin"_s)->setCurrentIndex(1);
        dialog.findChild<QComboBox *>(u"drawerPulse"_s)->setCurrentIndex(0);
        save->click();
    });
    press("drawerSettings");
    QVERIFY(part<QLabel>("cashOutcome")->text().startsWith(u"Saved."_s));
    QCOMPARE(m_saved.value(u"Drawer/On"_s), u"1"_s);
    QCOMPARE(m_saved.value(u"Drawer/Queue"_s), u"till"_s);
    QCOMPARE(m_saved.value(u"Drawer/Pin"_s), u"5"_s);
    QCOMPARE(m_saved.value(u"Drawer/Pulse"_s), u"20"_s);
    QVERIFY(!m_saved.contains(u"Drawer/Pause"_s));
}

void CashPageTest::drawerOfAnotherOfficeStays()
{
    FalsePrintService service;
    service.answerList(QString());
    openPage();
    inNextDialog([this](QDialog &dialog) {
        m_saved.insert(u"Drawer/Queue"_s, u"till"_s);
        m_saved.insert(u"Drawer/On"_s, u"1"_s);
        dialog.findChild<QCheckBox *>(u"drawerOn"_s)->setChecked(true);
        dialog.findChild<QComboBox *>(u"drawerQueue"_s)->setEditText(u"kitchen"_s);
        dialog.findChild<QPushButton *>(u"saveDrawer"_s)->click();
        const QString told = dialog.findChild<QLabel *>(u"drawerOutcome"_s)->text();
        QVERIFY2(told.contains(u"Somebody else has changed this meanwhile."_s), qPrintable(told));
        dialog.reject();
    });
    press("drawerSettings");
    QCOMPARE(m_saved.value(u"Drawer/Queue"_s), u"till"_s);
}

void CashPageTest::drawerIsTried()
{
    FalsePrintService service;
    service.answerList(QString());
    openPage();
    inNextDialog([&service](QDialog &dialog) {
        auto *outcome = dialog.findChild<QLabel *>(u"drawerOutcome"_s);
        auto *attempt = dialog.findChild<QPushButton *>(u"tryDrawer"_s);
        QVERIFY(!attempt->isEnabled());
        dialog.findChild<QCheckBox *>(u"drawerOn"_s)->setChecked(true);
        dialog.findChild<QComboBox *>(u"drawerQueue"_s)->setEditText(u"till"_s);
        service.answerLp(u"echo 'lp: no such printer' >&2; exit 1"_s);
        attempt->click();
        QVERIFY(!attempt->isEnabled()); // one at a time
        QTRY_COMPARE(outcome->text(), u"\u26a0 Not opened: lp: no such printer"_s);
        service.reset();
        attempt->click();
        QTRY_VERIFY(outcome->text().startsWith(u"The printer has taken it."_s));
        dialog.reject();
    });
    press("drawerSettings");
    QCOMPARE(service.printed(), QByteArray("\x1bp\0\x19\xfa", 5));
    QVERIFY(m_saved.isEmpty());
}

void CashPageTest::changesAreAskedAbout()
{
    openPage();
    part<QLineEdit>("drawerName")->setText(u"Front"_s);
    answerNextBox(QMessageBox::RejectRole);
    m_window->reject();
    QVERIFY(m_window->isVisible());
    QVERIFY(m_boxText.contains(u"about cash is not saved"_s));
    answerNextBox(QMessageBox::AcceptRole);
    m_window->reject();
    QVERIFY(!m_window->isVisible());
}

void CashPageTest::openPaymentsAreCounted()
{
    openPage();
    QCOMPARE(part<QLabel>("openPaymentsCount")->text(), u"Every payment has found its purchase."_s);
    QVERIFY(!part<QPushButton>("openPayments")->isVisible());
    addOpenPayment(u"one"_s, 250);
    openPage();
    QCOMPARE(part<QLabel>("openPaymentsCount")->text(), u"\u26a0 1 payment found no purchase."_s);
    addOpenPayment(u"two"_s, 500);
    openPage();
    QCOMPARE(part<QLabel>("openPaymentsCount")->text(), u"\u26a0 2 payments found no purchase."_s);
    QVERIFY(part<QPushButton>("openPayments")->isVisible());
}

void CashPageTest::openPaymentFindsItsSale()
{
    addOpenPayment(u"one"_s, 250);
    runAll(
        m_path,
        {u"INSERT INTO PurchaseCart (PurchaseID, PurchasedItems, PurchasedItemsTotal, PurchasedItemsCost, "
         u"PurchasedDate, Users) "
         "VALUES ('260504100001', '1. 2 x TEA-0001  |  TEA = 2.50', 1, 2.5, '260504100001', 'ANNA')"_s,
         u"INSERT INTO HarrowbyPayment VALUES ('cash', 1, '260504100001', 'PAID', 'Cash', 250, 250, 250, '', 'ANNA', "
         "'2026-05-04T10:00:01.000Z', 'Front', 8, 2, '', '')"_s});
    openPage();
    inNextDialog([](QDialog &dialog) {
        const auto *list = dialog.findChild<QListWidget *>(u"openPaymentList"_s);
        auto *sales = dialog.findChild<QListWidget *>(u"openPaymentChoices"_s);
        auto *count = dialog.findChild<QPushButton *>(u"countForPurchase"_s);
        QVERIFY(list->item(0)->text().contains(u"ANNA, Front: Card 2.50"_s));
        QCOMPARE(sales->count(), 1);
        QVERIFY(sales->item(0)->text().contains(u"260504100001"_s));
        QVERIFY(!count->isEnabled());
        sales->setCurrentRow(0);
        QTest::mouseClick(count, Qt::LeftButton);
        QCOMPARE(dialog.findChild<QLabel *>(u"openPaymentOutcome"_s)->text(),
                 u"Saved: Card 2.50 paid for the sale 260504100001."_s);
        QCOMPARE(list->count(), 0);
        dialog.reject();
    });
    press("openPayments");
    QCOMPARE(column(m_path, u"SELECT PurchaseID || Way || State FROM HarrowbyPayment"_s),
             QStringList{u"260504100001CardPAID"_s});
    QCOMPARE(part<QLabel>("openPaymentsCount")->text(), u"Every payment has found its purchase."_s);
}

void CashPageTest::openPaymentIsRemoved()
{
    addOpenPayment(u"one"_s, 250);
    openPage();
    inNextDialog([this](QDialog &dialog) {
        auto *remove = dialog.findChild<QPushButton *>(u"removePayment"_s);
        answerNextBox(QMessageBox::RejectRole);
        QTest::mouseClick(remove, Qt::LeftButton);
        QVERIFY(m_boxText.startsWith(u"Remove the payment \"Card 2.50\"?"_s));
        QCOMPARE(dialog.findChild<QListWidget *>(u"openPaymentList"_s)->count(), 1);
        answerNextBox(QMessageBox::AcceptRole);
        QTest::mouseClick(remove, Qt::LeftButton);
        QCOMPARE(dialog.findChild<QListWidget *>(u"openPaymentList"_s)->count(), 0);
        QVERIFY(!remove->isEnabled());
        dialog.reject();
    });
    press("openPayments");
    QCOMPARE(column(m_path, u"SELECT PaymentID FROM HarrowbyPayment"_s), QStringList());
}

HARROWBY_TEST(app_cash_page_test, CashPageTest)
#include "cash_page_test.moc"
