// SPDX-License-Identifier: MIT
#include "tests/app/screen.h"
#include "tests/doubles/private_cluster.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"

#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app::test;
using harrowby::test::PrivateCluster;

/// The real program, on a real X server, with its store on a private server: from the start to sales while that dies,
/// hangs and comes back.
class ServerRunTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void addressesThatLeadNowhereAreRefused_data();
    void addressesThatLeadNowhereAreRefused();
    void firstUserIsAsked();
    void sells();
    void sellsOnAfterAKill();
    void cartStaysWhileTheServerIsGone();
    void waitIsShownAndTakesNoInput();
    void waitCanBeGivenUp();
    void unprotectedShopHasItsSign();
    void ends();

private:
    [[nodiscard]] QString store() const { return u"postgresql://postgres@127.0.0.1:%1/shop"_s.arg(m_cluster->port()); }
    [[nodiscard]] QString value(const QString &select) const { return m_cluster->sql(select).value(0); }
    void protect(const QString &how);
    /// Whether this part of the screen is covered by the sign of a wait.
    [[nodiscard]] bool isOfTheSign(const QRect &part) const
    {
        return m_screen.count(qRgb(0, 98, 86), part) > part.width() * part.height() * 9 / 10;
    }
    void logIn();
    void fillCart();
    [[nodiscard]] QString stock() const { return value(u"select StockAvailable from harrowby.stocklist"_s); }
    /// Of runs that live.
    [[nodiscard]] QString locks() const
    {
        return value(u"select count(*) from pg_locks where locktype = 'advisory'"_s);
    }
    /// "Purchase Cart" and the boxes of a sale that is done.
    void commit();
    void answerSummary();

    QTemporaryDir m_home;
    Screen m_screen;
    std::unique_ptr<PrivateCluster> m_cluster;
    std::unique_ptr<RunningProgram> m_program;
};

void ServerRunTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    for (const QString &tool : {u"Xvfb"_s, u"openbox"_s, u"xdotool"_s})
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), qPrintable(tool + u" is needed"_s));
    QVERIFY(m_screen.start(u"1280x1024"_s));
    m_cluster = std::make_unique<PrivateCluster>();
    m_cluster->start();
    harrowby::test::setUpShop(*m_cluster, u"shop"_s);
    protect(u"single"_s);
}

/// What the server says of itself.
void ServerRunTest::protect(const QString &how)
{
    m_cluster->sql(
        u"create or replace function harrowby.protection() returns text language sql as $$ select '%1' $$"_s.arg(how));
}

void ServerRunTest::addressesThatLeadNowhereAreRefused_data()
{
    QTest::addColumn<QString>("database");
    QTest::addColumn<QString>("word");
    const QString port = QString::number(m_cluster->port());
    QTest::newRow("nobody there") << u"postgresql://postgres@127.0.0.1:1/shop"_s << u"cannot be reached"_s;
    QTest::newRow("no such database") << u"postgresql://postgres@127.0.0.1:%1/nothing"_s.arg(port)
                                      << u"no database of that name"_s;
    QTest::newRow("no such user") << u"postgresql://nobody@127.0.0.1:%1/shop"_s.arg(port)
                                  << u"does not let this machine in"_s;
    QTest::newRow("no store") << u"postgresql://postgres@127.0.0.1:%1/postgres"_s.arg(port)
                              << u"no store in that database"_s;
    QTest::newRow("no such service") << u"service=nothing"_s << u"leads nowhere"_s;
}

void ServerRunTest::addressesThatLeadNowhereAreRefused()
{
    QFETCH(const QString, database);
    QFETCH(const QString, word);
    RunningProgram program(m_screen, m_home.path());
    QVERIFY(program.start({u"--database"_s, database}));
    QTRY_VERIFY_WITH_TIMEOUT(program.box().contains(word), 30000);
    QVERIFY(program.press(u"OK"_s));
    QCOMPARE(program.waitForEnd(), 4);
    QVERIFY(program.errors().contains(word));
}

void ServerRunTest::firstUserIsAsked()
{
    m_program = std::make_unique<RunningProgram>(m_screen, m_home.path());
    QVERIFY(m_program->start({u"--database"_s, store(), u"--drawer"_s, u"Front desk"_s}));
    QVERIFY2(m_program->press(u"password"_s), qPrintable(m_program->errors()));
    m_screen.type(u"pass1"_s);
    QVERIFY(m_program->press(u"passwordAgain"_s));
    m_screen.type(u"pass1"_s);
    m_cluster->sql(u"insert into harrowby.stocklist (StockID, StockName, StockCategory, StockCost, StockReorderLevel, "
                   "StockAvailable, StockUse) values ('TEA-0001', 'TEA', 'DRINKS', '2.50', 5, 20, 'Enabled')"_s);
    QVERIFY(m_program->press(u"Create Store"_s));
    logIn();
    QCOMPARE(value(u"select count(*) from harrowby.users"_s), u"1"_s);
    QTRY_COMPARE_WITH_TIMEOUT(locks(), u"1"_s, 30000);
}

void ServerRunTest::logIn()
{
    QVERIFY2(m_program->press(u"Text3"_s), qPrintable(m_program->errors()));
    m_screen.type(u"administrator"_s);
    QVERIFY(m_program->press(u"Text4"_s));
    m_screen.type(u"pass1"_s);
    m_screen.key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_program->text(u"StatusBar1_1"_s), u"User: ADMINISTRATOR"_s, 30000);
}

void ServerRunTest::fillCart()
{
    QVERIFY2(m_program->press(u"Command1_0"_s), qPrintable(m_program->errors()));
    QTRY_COMPARE_WITH_TIMEOUT(m_program->text(u"Label5"_s), u"Total: 2.50"_s, 30000);
}

void ServerRunTest::commit()
{
    QVERIFY(m_program->press(u"Command14"_s));
    QTRY_VERIFY_WITH_TIMEOUT(m_program->box().contains(u"1. 1 x TEA-0001  |  TEA = 2.50"_s), 30000);
    QVERIFY(m_program->press(u"Yes"_s));
}

void ServerRunTest::answerSummary()
{
    QTRY_VERIFY_WITH_TIMEOUT(m_program->box().startsWith(u"Items have been purchased!"_s), 90000);
    QVERIFY(m_program->press(u"OK"_s));
}

void ServerRunTest::sells()
{
    fillCart();
    commit();
    answerSummary();
    QTRY_COMPARE_WITH_TIMEOUT(m_program->text(u"Label5"_s), u"Total: 0.00"_s, 30000);
    QCOMPARE(stock(), u"19"_s);
    QCOMPARE(value(u"select PurchasedItems from harrowby.purchasecart"_s), u"1 x TEA-0001  |  TEA = 2.50"_s);
    QTRY_COMPARE_WITH_TIMEOUT(value(u"select State || '/' || Way || '/' || Amount || '/' || Drawer "
                                    "from harrowby.harrowbypayment"_s),
                              u"PAID/Cash/250/Front desk"_s, 30000);
}

/// Killed and started again: nobody has to do anything at the till.
void ServerRunTest::sellsOnAfterAKill()
{
    m_cluster->kill9();
    m_cluster->start();
    fillCart();
    commit();
    answerSummary();
    QCOMPARE(stock(), u"18"_s);
    QCOMPARE(value(u"select count(*) from harrowby.purchasecart"_s), u"2"_s);
    QVERIFY(!m_program->has(u"failureNotice"_s));
    QTRY_COMPARE_WITH_TIMEOUT(locks(), u"1"_s, 30000); // taken again: other tills see that this one lives
}

void ServerRunTest::cartStaysWhileTheServerIsGone()
{
    fillCart();
    m_cluster->kill9();
    QTRY_VERIFY_WITH_TIMEOUT(m_program->text(u"hostBannerText"_s).contains(u"cannot be reached"_s), 30000);
    commit();
    answerSummary();
    QTRY_VERIFY_WITH_TIMEOUT(m_program->text(u"failureWork"_s).contains(u"its cart is kept"_s), 30000);
    QTRY_COMPARE_WITH_TIMEOUT(m_program->text(u"Label5"_s), u"Total: 2.50"_s, 30000);
    m_cluster->start();
    QTRY_VERIFY_WITH_TIMEOUT(!m_program->text(u"hostBannerText"_s).contains(u"cannot be reached"_s), 30000);
    commit();
    answerSummary();
    QCOMPARE(stock(), u"17"_s);
    QCOMPARE(value(u"select count(*) from harrowby.purchasecart"_s), u"3"_s);
}

/// A server that hangs: the program says so at once, and what is pressed meanwhile does nothing.
void ServerRunTest::waitIsShownAndTakesNoInput()
{
    const QPoint item = m_program->place(u"Command1_0"_s);
    m_cluster->stop();
    m_screen.press(item);
    QTRY_VERIFY_WITH_TIMEOUT(isOfTheSign({430, 50, 80, 6}), 4000);
    m_screen.press(item);
    m_screen.press(item);
    m_cluster->cont();
    QTRY_COMPARE_WITH_TIMEOUT(m_program->text(u"Label5"_s), u"Total: 2.50"_s, 30000);
    QTest::qWait(500); // were the other presses taken, they would be by now
    QCOMPARE(m_program->text(u"Label5"_s), u"Total: 2.50"_s);
}

/// The write of a line has been sent and nobody answers: a person need not wait for a minute. What is not known is
/// told, and told again as soon as it is.
void ServerRunTest::waitCanBeGivenUp()
{
    QVERIFY(m_program->press(u"Command14"_s));
    QTRY_VERIFY_WITH_TIMEOUT(m_program->box().contains(u"TEA = 2.50"_s), 30000);
    const QPoint yes = m_program->place(u"Yes"_s);
    m_cluster->stop();
    m_screen.press(yes);
    // The sign grows by its button once the server has been silent for 5 s.
    QTRY_VERIFY_WITH_TIMEOUT(isOfTheSign({430, 168, 80, 6}), 20000);
    m_screen.key(u"Escape"_s);
    answerSummary();
    QTRY_VERIFY_WITH_TIMEOUT(m_program->text(u"failureWork"_s).contains(u"it is not known whether"_s), 30000);
    m_cluster->cont();
    QTRY_VERIFY_WITH_TIMEOUT(m_program->text(u"failureWork"_s).contains(u"Known now"_s), 60000);
}

void ServerRunTest::unprotectedShopHasItsSign()
{
    protect(u"alone"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_program->text(u"hostBannerText"_s).contains(u"Unprotected"_s), 30000);
    protect(u"waiting"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_program->text(u"hostBannerText"_s).contains(u"nothing can be sold"_s), 30000);
    protect(u"protected"_s);
    QTRY_VERIFY_WITH_TIMEOUT(!m_program->text(u"hostBannerText"_s).contains(u"nothing can be sold"_s), 30000);
}

void ServerRunTest::ends()
{
    QVERIFY(m_program->press(u"Command10"_s));
    QTRY_COMPARE_WITH_TIMEOUT(m_program->box(), u"Close Inventory?"_s, 30000);
    QVERIFY(m_program->press(u"Yes"_s));
    const int code = m_program->waitForEnd();
    QVERIFY2(code == 0, qPrintable(u"%1\n%2"_s.arg(code).arg(m_program->errors())));
    QCOMPARE(value(u"select count(*) from harrowby.harrowbyrun where EndedAt = ''"_s), u"0"_s);
    QTRY_COMPARE_WITH_TIMEOUT(locks(), u"0"_s, 30000);
}

HARROWBY_TEST(app_server_run_test, ServerRunTest)
#include "server_run_test.moc"
