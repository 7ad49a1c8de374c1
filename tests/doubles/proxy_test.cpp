// SPDX-License-Identifier: MIT
#include "tests/doubles/proxy.h"
#include "tests/doubles/proxy_links.h"
#include "tests/program/test_program.h"

#include <QElapsedTimer>
#include <QTest>

#include <thread>

#include <poll.h>
#include <sys/socket.h>

using namespace std::chrono_literals;
using harrowby::test::Proxy;
using harrowby::test::Socket;

namespace {

constexpr int soonMs = 200; ///< what is to come through has come by then, on any machine
constexpr int hangMs = 20'000;

/// Answers one client with what it says.
class Echo
{
public:
    Echo() :
        m_listening(Socket::listeningOn(0)), m_thread([this] {
            const Socket client = m_listening.accepted();
            char byte = 0;
            while (::recv(client.descriptor(), &byte, 1, 0) == 1)
                ::send(client.descriptor(), &byte, 1, MSG_NOSIGNAL);
        })
    {
    }
    ~Echo()
    {
        ::shutdown(m_listening.descriptor(), SHUT_RDWR);
        m_thread.join();
    }
    Echo(const Echo &) = delete;
    Echo &operator=(const Echo &) = delete;

    [[nodiscard]] quint16 port() const { return m_listening.port(); }

private:
    Socket m_listening;
    std::thread m_thread;
};

bool say(const Socket &server, char byte)
{
    return ::send(server.descriptor(), &byte, 1, MSG_NOSIGNAL) == 1;
}

/// The next byte; -1 at the end of the connection, -2 when none comes within the time.
int hear(const Socket &server, int mostMs = hangMs)
{
    pollfd waiting{server.descriptor(), POLLIN, 0};
    if (::poll(&waiting, 1, mostMs) != 1)
        return -2;
    char byte = 0;
    return ::recv(server.descriptor(), &byte, 1, 0) == 1 ? byte : -1;
}

int answerTo(const Socket &server, char byte)
{
    return say(server, byte) ? hear(server) : -1;
}

} // namespace

class ProxyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsRoundTrips();
    void goesSilentAndSpeaksAgain();
    void acceptsWhileSilent();
    void cutsConnections();
    void refusesNewOnes();
    void takesLonger();
    void losesAnAnswer();
    void goesSilentAtAnAnswer();
    void nobodyBehindIt();
};

void ProxyTest::countsRoundTrips()
{
    const Echo echo;
    const Proxy proxy(echo.port());
    QCOMPARE(proxy.connections(), 0);
    const Socket client = Socket::connectedTo(proxy.port());
    for (int trip = 1; trip <= 5; ++trip) {
        QCOMPARE(answerTo(client, 'a'), 'a');
        QCOMPARE(proxy.roundTrips(), trip);
    }
    QCOMPARE(proxy.connections(), 1);
}

void ProxyTest::goesSilentAndSpeaksAgain()
{
    const Echo echo;
    Proxy proxy(echo.port());
    const Socket client = Socket::connectedTo(proxy.port());
    QCOMPARE(answerTo(client, 'a'), 'a');
    proxy.goSilent();
    QVERIFY(say(client, 'b'));
    QCOMPARE(hear(client, soonMs), -2);
    proxy.speak();
    QCOMPARE(hear(client), 'b');
}

void ProxyTest::acceptsWhileSilent()
{
    const Echo echo;
    Proxy proxy(echo.port());
    proxy.goSilent();
    const Socket client = Socket::connectedTo(proxy.port());
    QVERIFY(client.isOpen());
    QVERIFY(say(client, 'a'));
    QCOMPARE(hear(client, soonMs), -2);
    proxy.speak();
    QCOMPARE(hear(client), 'a');
}

void ProxyTest::cutsConnections()
{
    const Echo echo;
    Proxy proxy(echo.port());
    const Socket client = Socket::connectedTo(proxy.port());
    QCOMPARE(answerTo(client, 'a'), 'a');
    proxy.cut();
    QCOMPARE(hear(client), -1);
    QCOMPARE(proxy.connections(), 0);
}

void ProxyTest::refusesNewOnes()
{
    const Echo echo;
    Proxy proxy(echo.port());
    proxy.refuse(true);
    QVERIFY(!Socket::connectedTo(proxy.port()).isOpen());
    proxy.refuse(false);
    const Socket client = Socket::connectedTo(proxy.port());
    QCOMPARE(answerTo(client, 'a'), 'a');
}

void ProxyTest::takesLonger()
{
    const Echo echo;
    Proxy proxy(echo.port());
    const Socket client = Socket::connectedTo(proxy.port());
    proxy.setLatency(10ms);
    QElapsedTimer timer;
    timer.start();
    for (int trip = 0; trip < 10; ++trip)
        QCOMPARE(answerTo(client, 'a'), 'a');
    QVERIFY(timer.elapsed() >= 100);
    QVERIFY(timer.elapsed() < hangMs);
}

void ProxyTest::losesAnAnswer()
{
    const Echo echo;
    Proxy proxy(echo.port());
    const Socket client = Socket::connectedTo(proxy.port());
    proxy.loseAnswerOf(2);
    QCOMPARE(answerTo(client, 'a'), 'a');
    QCOMPARE(answerTo(client, 'b'), -1);
    QCOMPARE(proxy.connections(), 0);
}

void ProxyTest::goesSilentAtAnAnswer()
{
    const Echo echo;
    Proxy proxy(echo.port());
    const Socket client = Socket::connectedTo(proxy.port());
    proxy.goSilentAtAnswerOf(1);
    QVERIFY(say(client, 'a'));
    QCOMPARE(hear(client, soonMs), -2);
    proxy.speak();
    QCOMPARE(hear(client), 'a');
}

void ProxyTest::nobodyBehindIt()
{
    Proxy proxy(1); // nobody listens on it
    const Socket client = Socket::connectedTo(proxy.port());
    QCOMPARE(answerTo(client, 'a'), -1);
}

HARROWBY_CORE_TEST(proxy_test, ProxyTest)
#include "proxy_test.moc"
