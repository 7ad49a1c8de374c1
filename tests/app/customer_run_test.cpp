// SPDX-License-Identifier: MIT
#include "tests/app/monitors.h"
#include "tests/app/screen.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app::test;

namespace {

constexpr int patience = 30000;
constexpr QRect tillPlace(0, 0, 1024, 768);
constexpr QRect customerPlace(1024, 0, 1024, 768);

} // namespace

/// The customer's screen beside the real till, on one X screen with two monitors.
class CustomerRunTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void screenTakesNothingFromTheTill_data();
    void screenTakesNothingFromTheTill();

private:
    void logIn(RunningProgram &program, const Screen &screen);

    QTemporaryDir m_home;
    QString m_store;
};

void CustomerRunTest::initTestCase()
{
    for (const QString &tool : {u"Xvfb"_s, u"openbox"_s, u"xdotool"_s})
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), qPrintable(tool + u" is needed"_s));
    m_store = m_home.filePath(u"store.sqlite"_s);
    makeStore(m_store);
    runAll(m_store, {u"UPDATE StockList SET StockAvailable = 5000"_s});
}

void CustomerRunTest::logIn(RunningProgram &program, const Screen &screen)
{
    QVERIFY2(program.press(u"Text3"_s), qPrintable(program.errors()));
    screen.type(u"administrator"_s);
    QVERIFY(program.press(u"Text4"_s));
    screen.type(u"secret"_s);
    screen.key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"StatusBar1_1"_s), u"User: ADMINISTRATOR"_s, patience);
}

void CustomerRunTest::screenTakesNothingFromTheTill_data()
{
    QTest::addColumn<bool>("isManaged");
    QTest::newRow("window manager") << true;
    QTest::newRow("bare screen") << false;
}

void CustomerRunTest::screenTakesNothingFromTheTill()
{
    QFETCH(bool, isManaged);
    Screen screen;
    QVERIFY(screen.start(u"2048x768"_s, isManaged ? Screen::Manager::Openbox : Screen::Manager::None));
    QVERIFY(setMonitor(screen.display(), u"TILL"_s, tillPlace, true));
    QVERIFY(setMonitor(screen.display(), u"CUSTOMER"_s, customerPlace));
    RunningProgram program(screen, m_home.path());
    QVERIFY(program.start({u"--database"_s, m_store, u"--customer-display"_s, u"customer"_s}));
    logIn(program, screen);
    QTRY_COMPARE_WITH_TIMEOUT(program.place(u"customerScreen"_s), customerPlace.center(), patience);
    const QString focus = program.focus();
    screen.key(u"space"_s); // the first quick-sale button has the focus after a login
    QTRY_VERIFY_WITH_TIMEOUT(program.text(u"customerScreen"_s).contains(u"\t1 | "_s), patience);

    // A customer's finger does nothing, and the next key is the till's.
    QVERIFY(program.press(customerPlace.center()));
    screen.key(u"space"_s);
    QTRY_VERIFY_WITH_TIMEOUT(program.text(u"customerScreen"_s).contains(u"\t2 | "_s), patience);
    QCOMPARE(program.focus(), focus);

    QVERIFY(removeMonitor(screen.display(), u"CUSTOMER"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.place(u"customerScreen"_s), QPoint(-1, -1), patience);
    screen.key(u"space"_s);
    QVERIFY(setMonitor(screen.display(), u"CUSTOMER"_s, customerPlace));
    QTRY_COMPARE_WITH_TIMEOUT(program.place(u"customerScreen"_s), customerPlace.center(), patience);
    QTRY_VERIFY_WITH_TIMEOUT(program.text(u"customerScreen"_s).contains(u"\t3 | "_s), patience);

    // Nor does it keep the program alive.
    QVERIFY(program.press(u"Command10"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.box(), u"Close Inventory?"_s, patience);
    QVERIFY(program.press(u"Yes"_s));
    QCOMPARE(program.waitForEnd(), 0);
}

HARROWBY_TEST(app_customer_run_test, CustomerRunTest)
#include "customer_run_test.moc"
