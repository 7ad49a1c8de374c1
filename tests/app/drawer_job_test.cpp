// SPDX-License-Identifier: MIT
#include "app/cash/drawer.h"
#include "app/cash/drawer_openings.h"
#include "tests/app/false_print_service.h"
#include "tests/platform/log_capture.h"
#include "tests/platform/private_cups.h"
#include "tests/program/test_program.h"

#include <QMap>
#include <QTest>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;
using namespace std::chrono_literals;

namespace {

const QByteArray usualPulse("\x1bp\0\x19\xfa", 5);
constexpr int patience = 30'000;

DrawerSettings switchedOn(const QString &queue = u"till"_s)
{
    DrawerSettings settings;
    settings.isOn = true;
    settings.queue = queue;
    return settings;
}

DrawerOptions patient()
{
    DrawerOptions options;
    options.pause = 10ms;
    return options;
}

/// For a service or a printer that does not answer; one that does has to within this time.
DrawerOptions quick()
{
    DrawerOptions options = patient();
    options.deadline = 1s;
    return options;
}

/// A receipt printer in the network: keeps what comes, until it is switched off.
class NetworkPrinter
{
public:
    NetworkPrinter() : m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        auto *place = reinterpret_cast<sockaddr *>(&address);
        if (::bind(m_listener, place, size) == 0 && ::listen(m_listener, 4) == 0 &&
            ::getsockname(m_listener, place, &size) == 0)
            m_port = ntohs(address.sin_port);
    }
    ~NetworkPrinter() { switchOff(); }
    NetworkPrinter(const NetworkPrinter &) = delete;
    NetworkPrinter &operator=(const NetworkPrinter &) = delete;

    void switchOff()
    {
        if (m_listener >= 0)
            ::close(std::exchange(m_listener, -1));
    }
    [[nodiscard]] int port() const { return m_port; }
    /// All so far.
    const QByteArray &received()
    {
        const int job = ::accept(m_listener, nullptr, nullptr);
        if (job < 0)
            return m_received;
        char bytes[4096];
        for (ssize_t count = 0; (count = ::read(job, bytes, sizeof(bytes))) > 0;)
            m_received.append(bytes, count);
        ::close(job);
        return m_received;
    }

private:
    int m_listener;
    int m_port = 0;
    QByteArray m_received;
};

} // namespace

/// The job that opens a drawer: what goes to the printer, and what is told of it.
class DrawerJobTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void settingsComeBack_data();
    void settingsComeBack();
    void settingsThatAreNone();
    void pulseOfEachPin();
    void reasonIsMadeFit();
    void nothingHappensWhileItIsOff();
    void printerGetsFiveBytes();
    void anotherService();
    void failures_data();
    void failures();
    void printerThatDoesNotTakeItLosesTheJob();
    void jobThatCannotBeWithdrawnIsTold();
    void endOfTheProgramHandsItOver();
    void realQueue();

private:
    [[nodiscard]] std::unique_ptr<Drawer> drawer(const DrawerSettings &settings, const DrawerOptions &options = {})
    {
        return std::make_unique<Drawer>(
            settings, [this](const QString &reason) { m_told << reason; }, options);
    }

    FalsePrintService m_service;
    QStringList m_told;
};

void DrawerJobTest::init()
{
    m_told.clear();
    m_service.reset();
}

void DrawerJobTest::settingsComeBack_data()
{
    QTest::addColumn<int>("pulse");
    QTest::addColumn<int>("pause");
    QTest::addColumn<int>("readPulse");
    QTest::addColumn<int>("readPause");
    QTest::newRow("usual") << 50 << 500 << 50 << 500;
    QTest::newRow("limits") << 2 << 510 << 2 << 510;
    QTest::newRow("beyond") << -5 << 100000 << 2 << 510;
    QTest::newRow("odd") << 51 << 333 << 50 << 332;
}

void DrawerJobTest::settingsComeBack()
{
    QFETCH(int, pulse);
    QFETCH(int, pause);
    QMap<QString, QString> kept;
    const OfficeSettings settings = {[&](const QString &section, const QString &key, const QString &otherwise) {
                                         return kept.value(section + u'/' + key, otherwise);
                                     },
                                     [&](const QString &section, const QString &key, const QString &value) {
                                         kept[section + u'/' + key] = value;
                                         return true;
                                     }};
    QCOMPARE(readDrawerSettings(settings).isOn, false);
    DrawerSettings chosen{true, u"till"_s, 5, pulse, pause};
    QVERIFY(saveDrawerSettings(settings, {}, chosen));
    QTEST(readDrawerSettings(settings).pulseMs, "readPulse");
    QTEST(readDrawerSettings(settings).pauseMs, "readPause");
    QVERIFY(readDrawerSettings(settings).isOn);
    QCOMPARE(readDrawerSettings(settings).queue, u"till"_s);
    QCOMPARE(readDrawerSettings(settings).pin, 5);
}

void DrawerJobTest::settingsThatAreNone()
{
    const OfficeSettings odd = {[](const QString &, const QString &, const QString &) { return u"odd"_s; },
                                [](const QString &, const QString &, const QString &) { return false; }};
    DrawerSettings usual;
    usual.queue = u"odd"_s;
    QVERIFY(readDrawerSettings(odd) == usual);
    QVERIFY(saveDrawerSettings(odd, usual, usual));
    QVERIFY(!saveDrawerSettings(odd, {}, usual));
}

void DrawerJobTest::pulseOfEachPin()
{
    DrawerSettings settings;
    QCOMPARE(drawerPulse(settings), usualPulse);
    settings = {true, {}, 5, 510, 2};
    QCOMPARE(drawerPulse(settings), QByteArray("\x1bp\1\xff\1", 5));
}

void DrawerJobTest::reasonIsMadeFit()
{
    QCOMPARE(openingReason(u"  to \n the\u0007 bank "_s), u"to the bank"_s);
    QCOMPARE(openingReason(QString(1000, u'x')).size(), 200);
    QCOMPARE(openingReason(u" \u0001 "_s), QString());
}

void DrawerJobTest::nothingHappensWhileItIsOff()
{
    DrawerSettings settings = switchedOn();
    settings.isOn = false;
    drawer(settings)->open();
    QCOMPARE(m_service.calls(), QStringList());
    QCOMPARE(m_told, QStringList());
}

void DrawerJobTest::printerGetsFiveBytes()
{
    m_service.setTakenAfter(2);
    const auto one = drawer(switchedOn(), patient());
    one->open();
    QCOMPARE(m_told, QStringList()); // nothing waits
    QTRY_COMPARE_WITH_TIMEOUT(m_told, QStringList{QString()}, patience);
    QCOMPARE(m_service.printed(), usualPulse);
    QCOMPARE(m_service.calls(), (QStringList{u"lp -d till -o raw -o job-sheets=none -t Cash drawer"_s,
                                             u"lpstat -W not-completed -o till"_s, u"lpstat -W not-completed -o till"_s,
                                             u"lpstat -W not-completed -o till"_s}));
}

/// One that says nothing of a job has taken it.
void DrawerJobTest::anotherService()
{
    m_service.answerLp(u"cat >/dev/null; echo queued"_s);
    const auto one = drawer(switchedOn(), patient());
    one->open();
    QTRY_COMPARE_WITH_TIMEOUT(m_told, QStringList{QString()}, patience);
    QCOMPARE(m_service.calls().size(), 1);
}

void DrawerJobTest::failures_data()
{
    QTest::addColumn<QString>("queue");
    QTest::addColumn<QString>("lp");
    QTest::addColumn<QString>("reason");
    QTest::newRow("no queue") << QString() << QString() << u"no printer is chosen for it"_s;
    QTest::newRow("refused") << u"till"_s << u"echo 'lp: not accepting jobs' >&2; exit 1"_s
                             << u"lp: not accepting jobs"_s;
    QTest::newRow("silent") << u"till"_s << u"exit 3"_s << u"lp failed with 3"_s;
    QTest::newRow("hangs") << u"till"_s << u"exec sleep 60"_s << u"no answer within 1 s"_s;
    QTest::newRow("missing") << u"till"_s << u"-"_s << u"lp: "_s;
}

void DrawerJobTest::failures()
{
    QFETCH(QString, queue);
    QFETCH(QString, lp);
    QFETCH(QString, reason);
    const testing::LogCapture log;
    m_service.answerLp(lp);
    const auto one = drawer(switchedOn(queue), reason.startsWith(u"no answer"_s) ? quick() : patient());
    one->open();
    QVERIFY(m_told.isEmpty());
    QTRY_COMPARE_WITH_TIMEOUT(m_told.size(), 1, patience);
    QVERIFY2(m_told.first().startsWith(reason), qPrintable(m_told.first()));
    QVERIFY(log.hasLine({u"harrowby.print"_s, u"The cash drawer was not opened"_s, reason}));
    // The next one is a new try.
    m_service.reset();
    one->open();
    QTRY_COMPARE_WITH_TIMEOUT(m_told.size(), 2, patience);
    QCOMPARE(m_told.last().isEmpty(), !queue.isEmpty());
}

void DrawerJobTest::printerThatDoesNotTakeItLosesTheJob()
{
    m_service.setTakenAfter(-1);
    const auto one = drawer(switchedOn(), quick());
    one->open();
    QTRY_COMPARE_WITH_TIMEOUT(m_told, QStringList{u"the printer has not taken it within 1 s"_s}, patience);
    QCOMPARE(m_service.calls().last(), u"cancel till-7"_s);
}

void DrawerJobTest::jobThatCannotBeWithdrawnIsTold()
{
    m_service.setTakenAfter(-1);
    m_service.answerCancel(u"echo 'cancel: no' >&2; exit 1"_s);
    const auto one = drawer(switchedOn(), quick());
    one->open();
    QTRY_COMPARE_WITH_TIMEOUT(
        m_told, QStringList{u"the printer has not taken it within 1 s, and may still do so (cancel: no)"_s}, patience);
}

void DrawerJobTest::endOfTheProgramHandsItOver()
{
    auto one = drawer(switchedOn());
    one->open();
    one.reset();
    QCOMPARE(m_service.printed(), usualPulse);
    QCOMPARE(m_told, QStringList());
}

/// Through a real print service to a printer in the network, and with that one switched off.
void DrawerJobTest::realQueue()
{
    m_service.leave();
    testing::PrivateCups cups;
    const QString problem = cups.start();
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
    NetworkPrinter printer;
    QVERIFY(printer.port() > 0);
    const QString device = u"socket://127.0.0.1:%1"_s.arg(printer.port());
    cups.command(u"lpadmin"_s,
                 {u"-p"_s, u"drawer"_s, u"-E"_s, u"-v"_s, device, u"-o"_s, u"job-sheets-default=standard,none"_s});
    DrawerOptions options;
    options.pause = 100ms;
    const auto one = drawer(switchedOn(u"drawer"_s), options);
    one->open();
    QTRY_COMPARE_WITH_TIMEOUT(printer.received(), usualPulse, patience); // and no cover sheet
    QTRY_COMPARE_WITH_TIMEOUT(m_told, QStringList{QString()}, patience);
    QCOMPARE(printer.received(), usualPulse);

    printer.switchOff();
    options.deadline = 3s;
    const auto dead = drawer(switchedOn(u"drawer"_s), options);
    dead->open();
    QTRY_COMPARE_WITH_TIMEOUT(m_told.size(), 2, patience);
    QCOMPARE(m_told.last(), u"the printer has not taken it within 3 s"_s);
    QVERIFY2(!cups.waitingJobs().contains(u"drawer-"_s), qPrintable(cups.waitingJobs()));

    cups.hangService();
    options.deadline = 300ms;
    const auto hung = drawer(switchedOn(u"drawer"_s), options);
    hung->open();
    QTRY_COMPARE_WITH_TIMEOUT(m_told.size(), 3, patience);
    QCOMPARE(m_told.last(), u"no answer within 0.3 s"_s);
    cups.resumeService();
}

HARROWBY_TEST(app_drawer_job_test, DrawerJobTest)
#include "drawer_job_test.moc"
