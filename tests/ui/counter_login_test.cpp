// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/ui/counter_guest.h"

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// What a host is told of who logs in and out, and may do what.
class CounterLoginTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loginAndLogout();
    void refusedLogins_data();
    void refusedLogins();
    void rightsOfTheUser();
};

void CounterLoginTest::loginAndLogout()
{
    test::Counter till;
    Guest guest;
    till.file.addUser(u"Ann"_s, u"PW"_s);
    till.open();
    QCOMPARE(guest.heard(), QStringList{u"windowOpened"_s});
    QVERIFY(!harrowby::Counter::instance().user());
    till.logIn(u"ann"_s, u"PW"_s);
    QCOMPARE(guest.heard(), QStringList{u"loggedIn ANN"_s});
    QCOMPARE(harrowby::Counter::instance().user()->name, u"ANN"_s);
    till.boxes.expect(u"Log out User[ANN]?"_s, box::AskDefaultNo, Answer::No);
    till.click("Command27");
    QCOMPARE(guest.heard(), QStringList());
    till.boxes.expect(u"Log out User[ANN]?"_s, box::AskDefaultNo, Answer::Yes);
    till.click("Command27");
    QCOMPARE(guest.heard(), QStringList{u"loggedOut ANN"_s});
    QVERIFY(!harrowby::Counter::instance().user());
}

void CounterLoginTest::refusedLogins_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("box");

    QTest::newRow("nothing") << u" "_s << u"PW"_s << u"You have entered a blank entry!"_s;
    QTest::newRow("no password") << u"ann"_s << QString() << u"You have entered a blank entry!"_s;
    QTest::newRow("wrong") << u" ann "_s << u"WRONG"_s << u"Username or Password Incorrect!"_s;
    QTest::newRow("not enabled") << u"bob"_s << u"PW"_s << u"User not Enabled to use this tool!"_s;
}

void CounterLoginTest::refusedLogins()
{
    QFETCH(const QString, name);
    QFETCH(const QString, password);
    QFETCH(const QString, box);
    test::Counter till;
    till.file.addUser(u"ANN"_s, u"PW"_s);
    till.file.addUser(u"BOB"_s, u"PW"_s);
    till.file.sql(u"UPDATE Users SET InventoryUse = 0 WHERE Username = 'BOB'"_s);
    till.open();
    Guest guest;
    static_cast<void>(guest.heard());
    till.boxes.expect(box, box::Exclamation);
    till.logIn(name, password);
    QCOMPARE(guest.heard(), QStringList{u"loginRefused "_s + name.trimmed().toUpper()});
}

void CounterLoginTest::rightsOfTheUser()
{
    test::Counter till;
    till.file.addUser(u"BOB"_s, u"PW"_s, {u"Sales"_s, u"Undo"_s});
    till.open();
    Guest guest;
    till.logIn(u"BOB"_s, u"PW"_s);
    static_cast<void>(guest.heard());
    const CounterRights rights = guest.users.back().rights;
    QVERIFY(rights.sell && rights.undo);
    QVERIFY(!rights.editStock && !rights.reorder && !rights.deletePurchases && !rights.settings && !rights.report);
    till.boxes.expect(u"Log out User[BOB]?"_s, box::AskDefaultNo, Answer::Yes);
    till.click("Command27");
    till.logIn();
    static_cast<void>(guest.heard());
    const CounterRights all = harrowby::Counter::instance().user()->rights;
    QVERIFY(all.sell && all.undo && all.editStock && all.reorder && all.deletePurchases && all.settings && all.report);
}

HARROWBY_TEST(counter_login_test, CounterLoginTest)
#include "counter_login_test.moc"
