// SPDX-License-Identifier: MIT
#include "tests/doubles/private_cluster.h"
#include "tests/doubles/proxy.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include <QUrl>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// At a till whose store is on a server, an action of the user makes at most as many round trips as it has statements.
class RoundTripsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { m_counter.reset(); }
    void pressOfAQuickSaleButton();
    void purchaseOfThreeLines();
    void turnOfAPage();

private:
    /// Presses a button as often as a till learns what it asks for, and compares each time.
    void compare(const char *button, int times = 3);

    std::unique_ptr<Counter> m_counter;
    std::unique_ptr<Proxy> m_proxy;
};

void RoundTripsTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
}

void RoundTripsTest::init()
{
    m_counter = std::make_unique<Counter>();
    for (int item = 1; item <= 30; ++item)
        m_counter->file.addItem(u"I%1"_s.arg(item), u"ITEM %1"_s.arg(item, 4, 10, QChar(u'0')), item, 100);
    QUrl way(m_counter->file.path());
    m_proxy = std::make_unique<Proxy>(static_cast<quint16>(way.port()));
    way.setPort(m_proxy->port());
    m_counter->connection = std::make_shared<RecordingConnection>(connectToServer(way.toString(), {}));
    m_counter->open();
    m_counter->logIn();
}

void RoundTripsTest::compare(const char *button, int times)
{
    for (int time = 0; time < times; ++time) {
        m_counter->connection->statements.clear();
        const int before = m_proxy->roundTrips();
        m_counter->click(button);
        const int trips = m_proxy->roundTrips() - before;
        const QStringList statements = m_counter->connection->statements;
        QVERIFY2(!statements.isEmpty() && trips > 0 && trips <= statements.size(),
                 qPrintable(u"%1 round trips for\n%2"_s.arg(trips).arg(statements.join(u'\n'))));
    }
}

void RoundTripsTest::pressOfAQuickSaleButton()
{
    compare("Command1_0");
    compare("Command1_8");
    m_counter->click("CmdNext");
    compare("Command1_3");
    QCOMPARE(m_counter->cart().size(), 3);
}

void RoundTripsTest::purchaseOfThreeLines()
{
    for (int purchase = 0; purchase < 3; ++purchase) {
        for (const char *button : {"Command1_0", "Command1_1", "Command1_2"})
            m_counter->click(button);
        m_counter->boxes.answerTheRest([](const QString &) { return Answer::Yes; });
        compare("Command14", 1);
        QCOMPARE(m_counter->cart(), QStringList());
        m_counter->clock->time = m_counter->clock->time.addSecs(1);
    }
}

void RoundTripsTest::turnOfAPage()
{
    compare("CmdNext", 2);
    compare("CmdPrev", 2);
}

HARROWBY_TEST(round_trips_test, RoundTripsTest)
#include "round_trips_test.moc"
