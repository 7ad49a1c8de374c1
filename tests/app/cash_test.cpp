// SPDX-License-Identifier: MIT
#include "app/cash/cash_choices.h"
#include "app/cash/cash_desk.h"
#include "app/cash/cash_dialog.h"
#include "app/cash/payments.h"
#include "tests/app/hold_till.h"
#include "tests/program/test_program.h"
#include "theme/palettes.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <limits>
#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

const CashChoices usual{{u"Card"_s}, {500, 1000, 2000, 5000, 10000}};

QString textOf(const QDialog &dialog, const QString &label)
{
    return dialog.findChild<QLabel *>(label)->text();
}

void pressIn(const QDialog &dialog, const QString &button)
{
    QTest::mouseClick(dialog.findChild<QPushButton *>(button), Qt::LeftButton);
}

/// To who has the focus, as the window system does.
void type(const QDialog &dialog, const QString &keys)
{
    for (const QChar key : keys)
        QTest::keyClick(dialog.focusWidget(), key.toLatin1());
}

} // namespace

/// "Cash …" at the real window over a real file.
class CashTest : public HoldTill
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void keysEnterTheAmount();
    void keypadAndNotesEnterIt();
    void enterPaysOnceItIsEnough();
    void enterOnAKeyPaysToo();
    void waysShareTheSum();
    void namesOfTheShopAreNoAccelerators();
    void everythingIsLargeEnoughAndNamed();
    void longestListsFitASmallScreen();
    void saleIsPaid();
    void changeStandsUntilTheNextItem();
    void cardAloneGivesNoChange();
    void leavingChangesNothing();
    void refusedQuestionKeepsTheCart();
    void keyOpensIt();
    void emptyCartIsNotPaid();
    void nobodyLoggedInIsTheGatesRefusal();
    void sumThatIsNoneIsToldOf();
    void purchaseWithoutItSaysNothing();
    void undoTellsWhatToGiveBack();
    void deletionTellsWhatToGiveBack();
    void lettersAreTheWindowsOwn();

private:
    void expectSale(Answer answer = Answer::Yes);
    void payWith(const std::function<void(QDialog &)> &act);

    std::unique_ptr<Payments> m_payments;
    std::unique_ptr<CashDesk> m_cash;
    QStringList m_amounts; ///< what stood large at the counter, one after the other
};

void CashTest::init()
{
    HoldTill::init();
    m_till->close();
    m_amounts.clear();
    m_payments = std::make_unique<Payments>(counter(), *m_records, CashStation{});
    m_cash = std::make_unique<CashDesk>(counter(), *m_records, *m_payments,
                                        CashDesk::Voice{[this](const QString &text) { m_said << text; },
                                                        [this](const QString &text) { m_amounts << text; }});
    m_till->open();
    m_cash->furnish();
    m_desk->furnish();
    m_till->logIn();
}

void CashTest::cleanup()
{
    m_cash.reset();
    m_payments.reset();
    HoldTill::cleanup();
}

void CashTest::keysEnterTheAmount()
{
    CashDialog dialog(1250, usual, nullptr);
    dialog.show();
    QCOMPARE(textOf(dialog, u"cashTotal"_s), u"To pay: 12.50"_s);
    QCOMPARE(textOf(dialog, u"cashChange"_s), u"Still to pay: 12.50"_s);
    const auto *given = dialog.findChild<QLineEdit *>(u"cashGiven"_s);
    QVERIFY(given->hasFocus() || dialog.focusWidget() == given);
    type(dialog, u"2000"_s);
    QCOMPARE(given->text(), u"20.00"_s);
    QCOMPARE(textOf(dialog, u"cashChange"_s), u"Change: 7.50"_s);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Backspace);
    QCOMPARE(given->text(), u"2.00"_s);
    QCOMPARE(textOf(dialog, u"cashChange"_s), u"Still to pay: 10.50"_s);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Delete);
    QCOMPARE(given->text(), u"0.00"_s);
    type(dialog, u"15,5x"_s);
    QCOMPARE(given->text(), u"15.50"_s);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_1, Qt::ControlModifier);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_7, Qt::KeypadModifier);
    QCOMPARE(given->text(), u"15.57"_s);
}

void CashTest::keypadAndNotesEnterIt()
{
    CashDialog dialog(1250, usual, nullptr);
    dialog.show();
    for (const QString &key : {u"cashKey_1"_s, u"cashKey_5"_s, u"cashKey_00"_s})
        pressIn(dialog, key);
    QCOMPARE(textOf(dialog, u"cashChange"_s), u"Change: 2.50"_s);
    QCOMPARE(dialog.focusWidget()->objectName(), u"cashGiven"_s); // a finger takes no focus
    pressIn(dialog, u"cashKey_back"_s);
    QCOMPARE(textOf(dialog, u"cashChange"_s), u"Still to pay: 11.00"_s);
    pressIn(dialog, u"cashExact"_s);
    QCOMPARE(textOf(dialog, u"cashChange"_s), u"Change: 0.00"_s);
    pressIn(dialog, u"cashKey_back"_s);
    pressIn(dialog, u"cashNote_2"_s);
    pressIn(dialog, u"cashNote_0"_s);
    QCOMPARE(dialog.findChild<QLineEdit *>(u"cashGiven"_s)->text(), u"25.00"_s);
    QCOMPARE(textOf(dialog, u"cashChange"_s), u"Change: 12.50"_s);
    // The space bar presses what Tab has reached, and digits count there too.
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    QCOMPARE(dialog.focusWidget()->objectName(), u"cashWay_0"_s);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Space);
    QCOMPARE(textOf(dialog, u"cashChange"_s), u"Change: 17.50"_s);
    type(dialog, u"13."_s);
    QCOMPARE(textOf(dialog, u"cashChange"_s), u"Change: 0.50"_s);
}

void CashTest::enterPaysOnceItIsEnough()
{
    CashDialog dialog(1250, usual, nullptr);
    dialog.show();
    QVERIFY(!dialog.findChild<QPushButton *>(u"payCash"_s)->isEnabled());
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    type(dialog, u"1249"_s);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Enter, Qt::KeypadModifier);
    QVERIFY(dialog.isVisible());
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Delete);
    type(dialog, u"1250"_s);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, u"\r"_s, true);
    QCoreApplication::sendEvent(dialog.focusWidget(), &held);
    QVERIFY(dialog.isVisible());
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Enter, Qt::KeypadModifier);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.parts(), (QList<PaymentPart>{{cashWay(), 1250, 1250}}));
}

void CashTest::enterOnAKeyPaysToo()
{
    CashDialog dialog(1250, usual, nullptr);
    dialog.show();
    type(dialog, u"2000"_s);
    dialog.findChild<QPushButton *>(u"cashKey_7"_s)->setFocus();
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.parts(), (QList<PaymentPart>{{cashWay(), 1250, 2000}}));
    CashDialog left(1250, usual, nullptr);
    left.show();
    type(left, u"2000"_s);
    left.findChild<QPushButton *>(u"cancelCash"_s)->setFocus();
    QTest::keyClick(left.focusWidget(), Qt::Key_Return);
    QVERIFY(!left.isVisible());
    QCOMPARE(left.result(), int(QDialog::Rejected));
}

void CashTest::waysShareTheSum()
{
    CashDialog dialog(1250, {{u"Card"_s, u"Voucher"_s}, {500}}, nullptr);
    dialog.show();
    const auto *takeBack = dialog.findChild<QPushButton *>(u"cashTakeBack"_s);
    QVERIFY(!takeBack->isVisible());
    type(dialog, u"13."_s);
    pressIn(dialog, u"cashWay_0"_s);
    QCOMPARE(textOf(dialog, u"cashCharged"_s), u"\u26a0 No more than 12.50 is to pay: Card gives no change."_s);
    QTest::keyClick(dialog.focusWidget(), Qt::Key_Delete);
    pressIn(dialog, u"cashNote_0"_s);
    pressIn(dialog, u"cashWay_1"_s);
    QCOMPARE(textOf(dialog, u"cashCharged"_s), u"Voucher 5.00"_s);
    QCOMPARE(textOf(dialog, u"cashChange"_s), u"Still to pay: 7.50"_s);
    pressIn(dialog, u"cashWay_0"_s);
    QCOMPARE(textOf(dialog, u"cashCharged"_s), u"Voucher 5.00, Card 7.50"_s);
    QCOMPARE(textOf(dialog, u"cashChange"_s), u"Change: 0.00"_s);
    pressIn(dialog, u"cashWay_0"_s);
    QCOMPARE(textOf(dialog, u"cashCharged"_s), u"\u26a0 Nothing more is to pay."_s);
    pressIn(dialog, u"cashTakeBack"_s);
    QCOMPARE(textOf(dialog, u"cashCharged"_s), u"Voucher 5.00"_s);
    type(dialog, u"1000"_s);
    pressIn(dialog, u"payCash"_s);
    QCOMPARE(dialog.parts(), (QList<PaymentPart>{{u"Voucher"_s, 500, 500}, {cashWay(), 750, 1000}}));
}

void CashTest::namesOfTheShopAreNoAccelerators()
{
    const CashDialog dialog(1250, {{u"M&M <b>"_s}, {}}, nullptr);
    const auto *way = dialog.findChild<QPushButton *>(u"cashWay_0"_s);
    QCOMPARE(way->text(), u"M&&M <b>"_s);
    QVERIFY(way->shortcut().isEmpty());
    QCOMPARE(way->accessibleName(), u"Pay by M&M <b>"_s);
}

void CashTest::everythingIsLargeEnoughAndNamed()
{
    const QPalette before = QApplication::palette();
    for (const QPalette &palette : {lightPalette(), darkPalette()}) {
        QApplication::setPalette(palette);
        CashDialog dialog(1250, usual, nullptr);
        dialog.show();
        QStringList letters;
        dialog.findChild<QPushButton *>(u"cashTakeBack"_s)->show();
        QCoreApplication::processEvents();
        for (auto *button : dialog.findChildren<QPushButton *>()) {
            QVERIFY2(button->height() >= 44 && button->width() >= 44, qPrintable(button->objectName()));
            QVERIFY(button->fontMetrics().size(Qt::TextShowMnemonic, button->text()).width() <= button->width() - 8);
            const auto *spoken = QAccessible::queryAccessibleInterface(button);
            QVERIFY2(!spoken->text(QAccessible::Name).isEmpty(), qPrintable(button->objectName()));
            QVERIFY((button->focusPolicy() & Qt::TabFocus) != 0);
            if (!button->shortcut().isEmpty())
                letters << button->shortcut().toString();
        }
        QCOMPARE(letters.removeDuplicates(), 0);
    }
    QApplication::setPalette(before);
}

void CashTest::longestListsFitASmallScreen()
{
    CashChoices most;
    for (qsizetype i = 0; i < CashChoices::mostWays; ++i)
        most.ways << QString(CashChoices::longestWay - 1, u'W') + QString::number(i);
    for (qsizetype i = 0; i < CashChoices::mostNotes; ++i)
        most.notes << 999'999'900 + i;
    CashDialog dialog(std::numeric_limits<std::int32_t>::max(), most, nullptr);
    dialog.show();
    QVERIFY2(dialog.width() <= 790 && dialog.height() <= 570,
             qPrintable(u"%1x%2"_s.arg(dialog.width()).arg(dialog.height())));
    for (const auto *button : dialog.findChildren<QPushButton *>())
        QVERIFY(dialog.rect().contains(QRect(button->mapTo(&dialog, QPoint()), button->size())));
}

void CashTest::expectSale(Answer answer)
{
    m_till->boxes.expect(u"Item List:\r\n\r\n1. 5 x A1  |  TEA = 12.50\r\n\r\n\r\n\r\nPurchased Cart?"_s, box::Ask,
                         answer);
}

/// Five teas, 12.50.
void CashTest::payWith(const std::function<void(QDialog &)> &act)
{
    QCOMPARE(counter().sell(u"A1"_s, 5), CounterAnswer::Done);
    QCoreApplication::processEvents();
    inNextDialog(act);
    press(u"payByCash"_s);
    QCoreApplication::processEvents();
}

void CashTest::saleIsPaid()
{
    expectSale();
    payWith([](QDialog &dialog) {
        QCOMPARE(textOf(dialog, u"cashTotal"_s), u"To pay: 12.50"_s);
        type(dialog, u"2000"_s);
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    });
    QCOMPARE(m_amounts, QStringList{u"Change: 7.50"_s});
    QCOMPARE(cart(), QStringList());
    QCOMPARE(m_till->file.rows(u"SELECT Way, Amount, Given, State FROM HarrowbyPayment"_s),
             QStringList{u"Cash|1250|2000|PAID"_s});
}

void CashTest::changeStandsUntilTheNextItem()
{
    expectSale();
    payWith([](QDialog &dialog) {
        pressIn(dialog, u"cashNote_2"_s);
        pressIn(dialog, u"payCash"_s);
    });
    m_amounts.clear();
    m_till->boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::YesNo | box::Question | box::SecondButtonDefault,
                         Answer::Yes);
    m_till->click("Command27");
    m_till->logIn();
    QCoreApplication::processEvents();
    QCOMPARE(m_amounts, QStringList());
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    QCoreApplication::processEvents();
    QCOMPARE(m_amounts, QStringList{QString()});
}

void CashTest::cardAloneGivesNoChange()
{
    expectSale();
    payWith([](QDialog &dialog) {
        pressIn(dialog, u"cashWay_0"_s);
        pressIn(dialog, u"payCash"_s);
    });
    QCOMPARE(m_amounts, QStringList{u"Paid: Card 12.50"_s});
}

void CashTest::leavingChangesNothing()
{
    payWith([](QDialog &dialog) {
        type(dialog, u"2000"_s);
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Escape);
    });
    QCOMPARE(m_dialogs, 1);
    QCOMPARE(cart().size(), 1);
    QCOMPARE(m_amounts, QStringList());
    QCOMPARE(m_said, QStringList());
}

void CashTest::refusedQuestionKeepsTheCart()
{
    expectSale(Answer::No);
    payWith([](QDialog &dialog) {
        pressIn(dialog, u"cashExact"_s);
        pressIn(dialog, u"payCash"_s);
    });
    QCOMPARE(cart().size(), 1);
    QCOMPARE(m_amounts, QStringList());
    QCOMPARE(m_said, QStringList());
    QCOMPARE(m_till->file.rows(u"SELECT Way FROM HarrowbyPayment"_s), QStringList());
}

void CashTest::keyOpensIt()
{
    QCOMPARE(counter().sell(u"A1"_s, 5), CounterAnswer::Done);
    QTest::keyClick(m_till->find("Command1_0"), Qt::Key_F11, Qt::ShiftModifier);
    QKeyEvent held(QEvent::KeyPress, Qt::Key_F11, Qt::NoModifier, {}, true);
    QCoreApplication::sendEvent(m_till->find("Command1_0"), &held);
    inNextDialog([](QDialog &dialog) { dialog.reject(); });
    QCoreApplication::processEvents();
    m_acts.clear();
    QCOMPARE(m_dialogs, 0);
    for (const char *focus : {"Command1_0", "TabStrip1", "LV3"}) {
        inNextDialog([](QDialog &dialog) { dialog.reject(); });
        QTest::keyClick(m_till->find(focus), Qt::Key_F11);
        QTRY_VERIFY(m_acts.empty());
    }
    QCOMPARE(m_dialogs, 3);
}

void CashTest::emptyCartIsNotPaid()
{
    press(u"payByCash"_s);
    QCOMPARE(m_said, QStringList{u"The cart is empty: there is nothing to pay."_s});
}

void CashTest::nobodyLoggedInIsTheGatesRefusal()
{
    m_till->boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::YesNo | box::Question | box::SecondButtonDefault,
                         Answer::Yes);
    m_till->click("Command27");
    m_till->boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    press(u"payByCash"_s);
    QCOMPARE(m_said, QStringList());
}

void CashTest::sumThatIsNoneIsToldOf()
{
    std::vector<CounterMisfit> misfits;
    QCOMPARE(counter().putCart({{u"A1"_s, u"TEA"_s, 1, 1e15, true}}, misfits), CounterAnswer::Done);
    press(u"payByCash"_s);
    QCOMPARE(m_said, QStringList{u"This sum cannot be paid here. \"Purchase Cart\" sells it."_s});
}

void CashTest::purchaseWithoutItSaysNothing()
{
    QCOMPARE(counter().sell(u"A1"_s, 5), CounterAnswer::Done);
    expectSale();
    m_till->click("Command14");
    QCoreApplication::processEvents();
    for (const QString &amount : std::as_const(m_amounts))
        QCOMPARE(amount, QString());
    QCOMPARE(m_till->file.rows(u"SELECT Way, Amount, Given, State FROM HarrowbyPayment"_s),
             QStringList{u"Cash|1250|1250|PAID"_s});
}

void CashTest::undoTellsWhatToGiveBack()
{
    expectSale();
    payWith([](QDialog &dialog) {
        pressIn(dialog, u"cashNote_0"_s);
        pressIn(dialog, u"cashWay_0"_s);
        pressIn(dialog, u"cashNote_1"_s);
        pressIn(dialog, u"payCash"_s);
    });
    QCOMPARE(m_amounts, QStringList{u"Change: 2.50"_s});
    m_amounts.clear();
    const QString id = m_till->file.cell(u"SELECT PurchaseID FROM PurchaseCart"_s);
    m_till->boxes.expect(u"Undo last Purchased Cart with ID [%1]?"_s.arg(id), box::Ask, Answer::Yes);
    m_till->click("Command25");
    QCoreApplication::processEvents();
    QCOMPARE(m_amounts.constLast(), u"Give back: 7.50, Card 5.00"_s);
    QCOMPARE(m_till->file.rows(u"SELECT Way, State FROM HarrowbyPayment"_s),
             (QStringList{u"Card|BACK"_s, u"Cash|BACK"_s}));
    std::vector<CounterLine> lines; // an emptied cart is no next sale
    QCOMPARE(counter().takeCart(lines), CounterAnswer::Done);
    QCoreApplication::processEvents();
    QCOMPARE(m_amounts.constLast(), u"Give back: 7.50, Card 5.00"_s);
    QCOMPARE(counter().sell(u"b2"_s), CounterAnswer::Done);
    QCoreApplication::processEvents();
    QCOMPARE(m_amounts.constLast(), QString());
}

void CashTest::deletionTellsWhatToGiveBack()
{
    expectSale();
    payWith([](QDialog &dialog) {
        pressIn(dialog, u"cashNote_1"_s);
        pressIn(dialog, u"cashWay_0"_s);
        pressIn(dialog, u"cashNote_1"_s);
        pressIn(dialog, u"payCash"_s);
    });
    const QString id = m_till->file.cell(u"SELECT PurchaseID FROM PurchaseCart"_s);
    m_till->setText("Combo17", id);
    m_till->boxes.expect(u"Delete Purchased Cart with ID ["_s + id +
                             u"].\r\nAll purchased items will br restored (Y/N)?"_s,
                         box::Ask, Answer::Yes);
    m_till->click("Command4");
    QCoreApplication::processEvents();
    QCOMPARE(m_amounts.constLast(), u"Give back: 2.50, Card 10.00"_s);
    QCOMPARE(m_till->file.rows(u"SELECT Way, State, BackWhy FROM HarrowbyPayment"_s),
             (QStringList{u"Card|BACK|DELETED"_s, u"Cash|BACK|DELETED"_s}));
}

void CashTest::lettersAreTheWindowsOwn()
{
    QStringList letters;
    for (const auto *button : m_till->window().findChildren<QAbstractButton *>()) {
        if (!button->shortcut().isEmpty())
            letters << button->shortcut().toString();
    }
    QVERIFY(letters.contains(u"Alt+A"_s));
    QCOMPARE(letters.removeDuplicates(), 0);
    const auto *button = m_till->window().findChild<QPushButton *>(u"payByCash"_s);
    QVERIFY(button->isVisible() && button->height() >= 44 && button->focusPolicy() != Qt::NoFocus);
}

HARROWBY_TEST(app_cash_test, CashTest)
#include "cash_test.moc"
