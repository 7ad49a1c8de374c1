// SPDX-License-Identifier: MIT
#include "platform/native_printers.h"

#include "tests/platform/held_time.h"
#include "tests/platform/isolated_home.h"
#include "tests/platform/log_capture.h"
#include "tests/platform/pdf_text.h"
#include "tests/platform/private_cups.h"
#include "tests/program/test_program.h"

#include <QTest>

#include <memory>

using namespace harrowby;
using namespace harrowby::testing;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString separator(63, u'-');
const QString filePrinter = NativePrinters::filePrinterName();

constexpr int handOverMs = 30'000;
constexpr int printMs = 60'000;

PrintOptions quick()
{
    PrintOptions options;
    options.listDeadline = 2s;
    options.listFreshness = 0s;
    options.handOverDeadline = 3s;
    return options;
}

/// For a service that answers, however slow the machine is.
PrintOptions patient()
{
    PrintOptions options = quick();
    options.listDeadline = 20s;
    options.handOverDeadline = 20s;
    return options;
}

/// Whether it was held for not more than a second, the most that printing may hold a sale.
class Stopwatch
{
public:
    [[nodiscard]] bool isInTime() const { return m_held.milliseconds() < 1000; }

private:
    HeldTime m_held;
};

} // namespace

/// Prints through a real print service and its faults. Order matters: the last ones end the service.
class CupsTest : public QObject
{
    Q_OBJECT

private:
    IsolatedHome m_home;
    PrivateCups m_cups;
    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<NativePrinters> m_printers;

    void begin(const PrintOptions &options)
    {
        m_printers = std::make_unique<NativePrinters>(std::make_shared<SystemClock>(), options);
        QTRY_VERIFY_WITH_TIMEOUT(m_printers->deviceNames().contains(u"till"_s), handOverMs);
        QTRY_COMPARE_WITH_TIMEOUT(m_printers->current()->deviceName(), u"till"_s, handOverMs);
    }

    void sell(const QString &text)
    {
        const Stopwatch watch;
        const auto printer = m_printers->printer(u"till"_s);
        QVERIFY(watch.isInTime());
        QVERIFY(printer);
        printReceipt(*printer, text);
    }

    void printReceipt(Printer &printer, const QString &text)
    {
        const Stopwatch watch;
        printer.setFontBold(true);
        printer.setFontSize(10);
        printer.printLine(separator);
        printer.setFontSize(8);
        printer.printLine(text);
        printer.printLine({});
        printer.endDocument();
        QVERIFY(watch.isInTime());
        // It is on the disk before anything else can go wrong.
        QCOMPARE(m_home.receiptFiles().size(), 1);
    }

    [[nodiscard]] bool hasPrinted(const QString &text) const
    {
        for (const QString &file : m_cups.printedFiles()) {
            if (pdfLines(file) == QStringList{separator, text})
                return true;
        }
        return false;
    }

    void verifyKept(const QString &text)
    {
        QTRY_VERIFY_WITH_TIMEOUT(m_log->hasLine({u"Receipt kept"_s}), handOverMs);
        QCOMPARE(m_home.receiptFiles().size(), 1);
        const QString file = m_home.receiptFiles().constFirst();
        QVERIFY2(m_log->hasLine({u"harrowby.print"_s, u"Receipt kept"_s, u"till"_s, file}),
                 qPrintable(m_log->lines().join(u'\n')));
        QCOMPARE(pdfLines(file), QStringList({separator, text}));
    }

private Q_SLOTS:
    void initTestCase()
    {
        const QString problem = m_cups.start();
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
    }

    void init()
    {
        m_home.clear();
        m_log = std::make_unique<LogCapture>();
        begin(patient());
    }

    void cleanup()
    {
        if (QTest::currentTestFailed())
            qWarning().noquote() << m_log->lines().join(u'\n') << m_cups.logs();
        m_cups.resumeService();
        m_printers.reset();
        m_log.reset();
    }

    void listsItsQueues()
    {
        QCOMPARE(m_printers->deviceNames(), QStringList({u"till"_s, filePrinter}));
        QCOMPARE(m_printers->current()->deviceName(), u"till"_s);
        QVERIFY(!m_printers->printer(u"kitchen"_s));
    }

    void printsAReceipt()
    {
        sell(u"2 x A1 | M & M = 1250"_s);
        QTRY_COMPARE_WITH_TIMEOUT(m_home.receiptFiles(), QStringList(), handOverMs);
        QTRY_VERIFY_WITH_TIMEOUT(hasPrinted(u"2 x A1 | M & M = 1250"_s), printMs);
        QCOMPARE(m_log->lines(), QStringList());
    }

    void aPausedQueueHasTakenTheReceipt()
    {
        m_cups.command(u"cupsdisable"_s, {u"till"_s});
        sell(u"paused"_s);
        QTRY_COMPARE_WITH_TIMEOUT(m_home.receiptFiles(), QStringList(), handOverMs);
        QVERIFY2(m_cups.waitingJobs().contains(u"till-"_s), qPrintable(m_cups.waitingJobs()));
        QCOMPARE(m_log->lines(), QStringList());
        m_cups.command(u"cupsenable"_s, {u"till"_s});
        QTRY_VERIFY_WITH_TIMEOUT(hasPrinted(u"paused"_s), printMs);
    }

    void aRejectingQueue()
    {
        m_cups.command(u"cupsreject"_s, {u"till"_s});
        sell(u"rejected"_s);
        verifyKept(u"rejected"_s);
        QVERIFY(m_printers->deviceNames().contains(u"till"_s));
        m_cups.command(u"cupsaccept"_s, {u"till"_s});
    }

    void aQueueThatIsGone()
    {
        const auto printer = m_printers->printer(u"till"_s);
        m_cups.removeQueue();
        printReceipt(*printer, u"gone"_s);
        verifyKept(u"gone"_s);
        QTRY_COMPARE_WITH_TIMEOUT(m_printers->deviceNames(), QStringList{filePrinter}, handOverMs);
        QVERIFY(m_cups.addQueue());
    }

    void aDeadPrinter()
    {
        m_cups.killPrinter();
        sell(u"printer dead"_s);
        QTRY_COMPARE_WITH_TIMEOUT(m_home.receiptFiles(), QStringList(), handOverMs);
        QVERIFY2(m_cups.waitingJobs().contains(u"till-"_s), qPrintable(m_cups.waitingJobs()));
        QCOMPARE(m_log->lines(), QStringList());
        m_cups.command(u"cancel"_s, {u"-a"_s}); // else its backend goes on trying after the service has ended
    }

    void aHungService()
    {
        begin(quick());
        m_cups.hangService();
        sell(u"hung"_s);
        const Stopwatch watch;
        QVERIFY(m_printers->deviceNames().contains(u"till"_s)); // the last answer counts
        QCOMPARE(m_printers->current()->deviceName(), u"till"_s);
        QVERIFY(watch.isInTime());
        verifyKept(u"hung"_s);
    }

    void aStartWhileTheServiceHangs()
    {
        m_cups.hangService();
        const Stopwatch watch;
        NativePrinters printers(std::make_shared<SystemClock>(), quick());
        QCOMPARE(printers.deviceNames(), {filePrinter});
        QVERIFY(!printers.printer(u"till"_s));
        QCOMPARE(printers.current()->deviceName(), filePrinter);
        QVERIFY(watch.isInTime());
        printReceipt(*printers.current(), u"in a file"_s);
        m_cups.resumeService();
        QTRY_VERIFY_WITH_TIMEOUT(printers.deviceNames().contains(u"till"_s), handOverMs);
        // Which queue is the usual one is asked after the names.
        QTRY_COMPARE_WITH_TIMEOUT(printers.current()->deviceName(), u"till"_s, handOverMs);
    }

    void aDeadService()
    {
        m_cups.killService();
        sell(u"service dead"_s);
        verifyKept(u"service dead"_s);
        const Stopwatch watch;
        QVERIFY(m_printers->deviceNames().contains(u"till"_s));
        NativePrinters printers(std::make_shared<SystemClock>(), quick());
        QCOMPARE(printers.deviceNames(), {filePrinter});
        QVERIFY(watch.isInTime());
    }
};

HARROWBY_TEST(cups_test, CupsTest)
#include "cups_test.moc"
