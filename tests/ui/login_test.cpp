// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Login, logout and what they leave behind.
class LoginTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blankEntries_data();
    void blankEntries();
    void wrongPassword();
    void quotedNameIsNoStatement();
    void viewersNeverGetIn();
    void usersWithoutTypeNeverGetIn();
    void useFlag_data();
    void useFlag();
    void administratorHasEveryRight();
    void eachRightFromItsColumn_data();
    void eachRightFromItsColumn();
    void unreadableFlagIsFalse();
    void numbersAreFlags();
    void passwordsIgnoreCase();
    void nameIsUpperCasedWhileTyped();
    void enterMovesOnAndLogsIn();
    void clearEmptiesBoth();
    void loginShowsTheUser();
    void failedLoginLogsOut();
    void reorderNoticeIsTheQueryAlone();
    void gateShowsWarning();
    void logoutWithoutUserDoesNothing();
    void logoutRefused();
    void logoutForgetsTheUser();
    void logoutPurchasesTheCart();
    void logoutDropsTheCart();
    void logoutCancelled();
    void missingTableIsAWrongPassword();
};

namespace {

constexpr auto logOutQuestion = "Log out User[ADMINISTRATOR]?"_L1;
constexpr auto cartQuestion = "Cart is not empty, Purchase Cart?"_L1;

void fillCart(Counter &counter)
{
    counter.file.addItem(u"A1"_s, u"TEA"_s, 2.5, 10);
    counter.open();
    counter.logIn();
    counter.click("Command1_0");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
}

} // namespace

void LoginTest::blankEntries_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("password");
    QTest::newRow("both") << QString() << QString();
    QTest::newRow("name") << u"   "_s << u"PASS"_s;
    QTest::newRow("password") << u"ADMINISTRATOR"_s << u"  "_s;
}

void LoginTest::blankEntries()
{
    QFETCH(QString, name);
    QFETCH(QString, password);
    Counter counter;
    counter.open();
    counter.boxes.expect(u"You have entered a blank entry!"_s, box::Exclamation);
    counter.logIn(name, password);
    const auto *entry = counter.find<QLineEdit>("Text3");
    QVERIFY(counter.hasFocus("Text3"));
    QCOMPARE(entry->selectedText(), name);
    QVERIFY(!counter.state().login.IsLoggedIn);
}

void LoginTest::wrongPassword()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"Username or Password Incorrect!"_s, box::Exclamation);
    counter.logIn(u"ADMINISTRATOR"_s, u"WRONG"_s);
    QVERIFY(!counter.state().login.IsLoggedIn);
    QCOMPARE(counter.text("Text3"), u"ADMINISTRATOR"_s);
    QCOMPARE(counter.text("Text4"), u"WRONG"_s);
    QVERIFY(counter.find("Frame12")->isVisible());
}

void LoginTest::quotedNameIsNoStatement()
{
    Counter counter;
    counter.open();
    counter.connection->statements.clear();
    counter.boxes.expect(u"Username or Password Incorrect!"_s, box::Exclamation);
    counter.logIn(u"x' or 'a'='a"_s, u"x' or 'a'='a"_s);
    QVERIFY(counter.connection->statements.isEmpty());
}

void LoginTest::viewersNeverGetIn()
{
    Counter counter;
    counter.file.addUser(u"EVE"_s, u"PW"_s, {u"Sales"_s, u"Settings"_s}, u"VIEWER"_s);
    counter.open();
    counter.boxes.expect(u"Username or Password Incorrect!"_s, box::Exclamation);
    counter.logIn(u"EVE"_s, u"PW"_s);
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
    QVERIFY(!counter.state().login.IsLoggedIn);
}

void LoginTest::usersWithoutTypeNeverGetIn()
{
    Counter counter;
    counter.file.sql(u"INSERT INTO Users VALUES ('EVE','PW',NULL,-1,-1,-1,-1,-1,-1,-1)"_s);
    counter.open();
    counter.boxes.expect(u"Username or Password Incorrect!"_s, box::Exclamation);
    counter.logIn(u"EVE"_s, u"PW"_s);
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
    QVERIFY(!counter.state().login.IsLoggedIn);
}

void LoginTest::useFlag_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("mayUse");
    QTest::newRow("-1") << u"-1"_s << true;
    QTest::newRow("True") << u"'True'"_s << true;
    QTest::newRow("text -1") << u"'-1'"_s << true;
    QTest::newRow("1 is not true") << u"1"_s << false;
    QTest::newRow("0") << u"0"_s << false;
    QTest::newRow("null") << u"NULL"_s << false;
    QTest::newRow("word") << u"'yes'"_s << false;
}

void LoginTest::useFlag()
{
    QFETCH(QString, stored);
    QFETCH(bool, mayUse);
    Counter counter;
    if (!counter.file.keepsFigure(stored))
        QSKIP("no figure");
    counter.file.sql(u"INSERT INTO Users VALUES ('ANN','PW','STAFF',%1,-1,0,0,0,0,0)"_s.arg(stored));
    // ADMINISTRATOR is let in by name, whatever the flag.
    counter.file.sql(u"UPDATE Users SET InventoryUse = %1 WHERE Username = 'ADMINISTRATOR'"_s.arg(stored));
    counter.open();
    if (!mayUse)
        counter.boxes.expect(u"User not Enabled to use this tool!"_s, box::Exclamation);
    counter.logIn(u"ANN"_s, u"PW"_s);
    QCOMPARE(counter.state().login.IsLoggedIn, mayUse);
    counter.logIn();
    QVERIFY(counter.state().login.IsLoggedIn);
}

void LoginTest::administratorHasEveryRight()
{
    Counter counter;
    counter.open();
    counter.logIn();
    const FormState &state = counter.state();
    QVERIFY(state.login.rights.CanSell && state.login.rights.CanReport && state.login.rights.CanUndo &&
            state.login.rights.CanDelete && state.login.rights.CanSettings && state.login.rights.CanReorder &&
            state.login.rights.CanEditStock);
}

void LoginTest::eachRightFromItsColumn_data()
{
    QTest::addColumn<QString>("right");
    for (const char *right : {"Sales", "Report", "Undo", "Delete", "Settings", "Reorder"})
        QTest::newRow(right) << QString::fromLatin1(right);
}

void LoginTest::eachRightFromItsColumn()
{
    QFETCH(QString, right);
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s, {right});
    counter.open();
    counter.logIn(); // sets all seven rights, which the next login must overwrite
    counter.logIn(u"ANN"_s, u"PW"_s);
    const FormState &state = counter.state();
    QCOMPARE(state.login.rights.CanSell, right == "Sales"_L1);
    QCOMPARE(state.login.rights.CanReport, right == "Report"_L1);
    QCOMPARE(state.login.rights.CanUndo, right == "Undo"_L1);
    QCOMPARE(state.login.rights.CanDelete, right == "Delete"_L1);
    QCOMPARE(state.login.rights.CanSettings, right == "Settings"_L1);
    QCOMPARE(state.login.rights.CanReorder, right == "Reorder"_L1);
    QCOMPARE(state.login.rights.CanEditStock, right == "Reorder"_L1);
}

void LoginTest::unreadableFlagIsFalse()
{
    Counter counter;
    counter.file.sql(u"INSERT INTO Users VALUES ('ANN','PW','STAFF','True','perhaps',X'01',NULL,1,'2','True')"_s);
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    const FormState &state = counter.state();
    QVERIFY(!state.login.rights.CanSell && !state.login.rights.CanReport && !state.login.rights.CanUndo);
    QVERIFY(state.login.rights.CanDelete && state.login.rights.CanSettings && state.login.rights.CanReorder);
}

void LoginTest::numbersAreFlags()
{
    Counter counter;
    counter.file.sql(u"INSERT INTO Users VALUES ('ANN','PW','STAFF',-1,0,0.0,NULL,1,2,0.5)"_s);
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    const FormState &state = counter.state();
    QVERIFY(!state.login.rights.CanSell && !state.login.rights.CanReport && !state.login.rights.CanUndo);
    QVERIFY(state.login.rights.CanDelete && state.login.rights.CanSettings && state.login.rights.CanReorder);
}

void LoginTest::passwordsIgnoreCase()
{
    Counter counter;
    counter.file.addUser(u"Ann"_s, u"SeCret"_s);
    counter.open();
    counter.logIn(u" ann "_s, u" sEcrEt "_s);
    QVERIFY(counter.state().login.IsLoggedIn);
    QCOMPARE(counter.state().login.LoggedUser, u"ANN"_s);
}

void LoginTest::nameIsUpperCasedWhileTyped()
{
    Counter counter;
    counter.open();
    QTest::keyClicks(counter.find("Text3"), u"annX"_s);
    counter.find("Text4")->setFocus();
    QTest::keyClicks(counter.find("Text4"), u"annX"_s);
    QCOMPARE(counter.text("Text3"), u"ANNX"_s);
    QCOMPARE(counter.text("Text4"), u"annX"_s);
    QCOMPARE(counter.find<QLineEdit>("Text4")->echoMode(), QLineEdit::Password);
}

void LoginTest::enterMovesOnAndLogsIn()
{
    Counter counter;
    counter.open();
    QVERIFY(counter.hasFocus("Text3"));
    QTest::keyClicks(counter.find("Text3"), u"administrator"_s);
    QTest::keyClick(counter.find("Text3"), Qt::Key_Return);
    QVERIFY(counter.hasFocus("Text4"));
    QTest::keyClicks(counter.find("Text4"), u"pass"_s);
    QTest::keyClick(counter.find("Text4"), Qt::Key_Enter);
    QVERIFY(counter.state().login.IsLoggedIn);
    QVERIFY(counter.hasFocus("Command1_0")); // the same Enter does not press it: no box, nothing sold
}

void LoginTest::clearEmptiesBoth()
{
    Counter counter;
    counter.open();
    counter.setText("Text3", u"ANN"_s);
    counter.setText("Text4", u"PW"_s);
    counter.click("Command29");
    QCOMPARE(counter.text("Text3"), QString());
    QCOMPARE(counter.text("Text4"), QString());
}

void LoginTest::loginShowsTheUser()
{
    Counter counter;
    counter.open();
    QCOMPARE(counter.text("StatusBar1_1"), u"Login: No User"_s);
    QCOMPARE(counter.text("StatusBar1_2"), QString());
    counter.logIn();
    QCOMPARE(counter.text("StatusBar1_1"), u"User: ADMINISTRATOR"_s);
    QCOMPARE(counter.text("StatusBar1_2"), u"ADMINISTRATOR successfully logged in!"_s);
    QVERIFY(!counter.find("Frame12")->isVisible());
    QCOMPARE(counter.text("Text3"), QString());
    QCOMPARE(counter.text("Text4"), QString());
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
    QCOMPARE(counter.file.cell(u"SELECT SystemUsage FROM SysUsage"_s), u"ADMINISTRATOR successfully logged in!"_s);
    QVERIFY(counter.connection->statements.contains(
        u"Select * from Users where Type <> 'VIEWER' and UPPER(Username) = 'ADMINISTRATOR' and UPPER(Password) = 'PASS'"_s));
}

void LoginTest::failedLoginLogsOut()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.boxes.expect(u"Username or Password Incorrect!"_s, box::Exclamation);
    counter.logIn(u"ADMINISTRATOR"_s, u"WRONG"_s);
    QVERIFY(!counter.state().login.IsLoggedIn);
}

void LoginTest::reorderNoticeIsTheQueryAlone()
{
    const QString query =
        u"Select * from Stocklist where StockReorderlevel >= stockavailable and StockUse = 'Enabled'"_s;
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET Promptreorder = 1"_s);
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 1);
    counter.file.addUser(u"ANN"_s, u"PW"_s, {u"Sales"_s});
    int made = 0;
    counter.objects->add(u"Harrowby.ReorderNotice"_s, [&] {
        ++made;
        return std::make_unique<QObject>();
    });
    counter.open();
    counter.logIn();
    QCOMPARE(counter.connection->statements.last(), query);
    QCOMPARE(made, 0);
    counter.logIn(u"ANN"_s, u"PW"_s); // without the right to reorder, nothing is asked
    QVERIFY(counter.connection->statements.last().startsWith(u"INSERT INTO SysUsage"_s));
}

void LoginTest::gateShowsWarning()
{
    Counter counter;
    counter.open();
    for (const char *button : {"Command1_0", "CmdNext", "Command12", "Command13", "Command14", "Command18"}) {
        counter.find(button)->setEnabled(true);
        counter.find("Text4")->setFocus();
        counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
        counter.click(button);
        QVERIFY2(counter.hasFocus("Text3"), button);
    }
}

void LoginTest::logoutWithoutUserDoesNothing()
{
    Counter counter;
    counter.open();
    counter.click("Command27");
    QCOMPARE(counter.text("StatusBar1_1"), u"Login: No User"_s);
}

void LoginTest::logoutRefused()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.boxes.expect(logOutQuestion, box::AskDefaultNo, Answer::No);
    counter.click("Command27");
    QVERIFY(counter.state().login.IsLoggedIn);
}

void LoginTest::logoutForgetsTheUser()
{
    Counter counter;
    fillCart(counter);
    counter.boxes.expect(u"Item List:\n\n1. 1 x A1  |  TEA = 2.50\n\n\n\nPurchased Cart?"_s, box::Ask, Answer::Yes);
    counter.click("Command14");
    QVERIFY(!counter.state().last.LastPurchaseID.isEmpty());
    counter.boxes.expect(logOutQuestion, box::AskDefaultNo, Answer::Yes);
    counter.click("Command27");
    const FormState &state = counter.state();
    QVERIFY(!state.login.IsLoggedIn);
    QCOMPARE(state.login.LoggedUser, QString());
    QCOMPARE(state.last.LastPurchaseID, QString());
    QCOMPARE(state.last.LastReorderQty, std::int16_t{1});
    QCOMPARE(state.last.LastReorderItem, QString());
    QCOMPARE(counter.text("StatusBar1_1"), u"User: None"_s);
    QCOMPARE(counter.text("StatusBar1_2"), u"ADMINISTRATOR logged out successfully!"_s);
    QVERIFY(counter.find("Frame12")->isVisible());
    QCOMPARE(counter.text("Label6_3"), u"0"_s); // nobody's figures
    QVERIFY(state.login.rights.CanSell);        // left as it is: every gate asks for the login first
}

void LoginTest::logoutPurchasesTheCart()
{
    Counter counter;
    fillCart(counter);
    counter.boxes.expect(logOutQuestion, box::AskDefaultNo, Answer::Yes);
    counter.boxes.expect(cartQuestion, box::AskOrCancel, Answer::Yes);
    counter.click("Command27");
    QVERIFY(!counter.state().login.IsLoggedIn);
    QCOMPARE(counter.file.cell(u"SELECT PurchasedItems FROM PurchaseCart"_s), u"1 x A1  "_s);
    QCOMPARE(counter.file.cell(u"SELECT Users FROM PurchaseCart"_s), u"ADMINISTRATOR"_s);
    QVERIFY(!counter.text("Text1").contains(u"Purchased."_s)); // this way of committing logs no line of its own
}

void LoginTest::logoutDropsTheCart()
{
    Counter counter;
    fillCart(counter);
    counter.boxes.expect(logOutQuestion, box::AskDefaultNo, Answer::Yes);
    counter.boxes.expect(cartQuestion, box::AskOrCancel, Answer::No);
    counter.click("Command27");
    QVERIFY(!counter.state().login.IsLoggedIn);
    QVERIFY(counter.cart().isEmpty());
    QCOMPARE(counter.text("Label5"), u"Total: 0.00"_s);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM PurchaseCart"_s), u"0"_s);
}

void LoginTest::logoutCancelled()
{
    Counter counter;
    fillCart(counter);
    counter.boxes.expect(logOutQuestion, box::AskDefaultNo, Answer::Yes);
    counter.boxes.expect(cartQuestion, box::AskOrCancel, Answer::Cancel);
    counter.click("Command27");
    QVERIFY(counter.state().login.IsLoggedIn);
    QCOMPARE(counter.cart().size(), 1);
    QVERIFY(!counter.find("Frame12")->isVisible());
}

void LoginTest::missingTableIsAWrongPassword()
{
    Counter counter;
    counter.open();
    counter.file.sql(u"DROP TABLE Users"_s);
    counter.boxes.expect(u"Username or Password Incorrect!"_s, box::Exclamation);
    counter.logIn();
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
    QVERIFY(!counter.state().login.IsLoggedIn);
}

HARROWBY_TEST(login_test, LoginTest)
#include "login_test.moc"
