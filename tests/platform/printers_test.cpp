// SPDX-License-Identifier: MIT
#include "platform/native_printers.h"

#include "tests/platform/held_time.h"
#include "tests/platform/isolated_home.h"
#include "tests/platform/log_capture.h"
#include "tests/platform/pdf_text.h"
#include "tests/program/test_program.h"

#include <QFile>
#include <QTest>

using namespace harrowby;
using namespace harrowby::testing;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

class FrozenClock final : public Clock
{
public:
    [[nodiscard]] QDateTime now() const override { return QDateTime(QDate(2026, 11, 20), QTime(14, 7, 9)); }
};

// Two queues, one of them rejecting, and one more that the network offers.
const auto listScript = uR"(
echo "$*" >>"$HOME/asked"
case "$1" in
-e) echo kitchen; echo till; echo upstairs ;;
*)
    echo "till accepting requests since Fri Nov 20 14:07:09 2026"
    echo "kitchen not accepting requests since Fri Nov 20 14:07:09 2026 -"
    echo "	Rejecting Jobs"
    echo "system default destination: till"
    ;;
esac
)"_s;

// Says what it was told and keeps a copy of the file, the last argument.
const auto printScript = uR"(
printf '%s|' "$@" >>"$HOME/told"
for file; do :; done
cp "$file" "$HOME/printed.pdf"
)"_s;

const auto receiptFile = u"Receipt file (PDF)"_s;

QString text(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

PrintOptions quickAnswers()
{
    PrintOptions options;
    options.listWait = 300ms;
    options.listDeadline = 500ms;
    options.handOverDeadline = 500ms;
    options.exitWait = 100ms;
    return options;
}

/// For a service that answers, however slow the machine is.
PrintOptions patientAnswers()
{
    PrintOptions options = quickAnswers();
    for (auto *wait : {&options.listWait, &options.listDeadline, &options.handOverDeadline, &options.reachableWait})
        *wait = 30s;
    return options;
}

} // namespace

class PrintersTest : public QObject
{
    Q_OBJECT

private:
    IsolatedHome m_home;
    std::shared_ptr<Clock> m_clock = std::make_shared<FrozenClock>();
    const QString m_receipt = m_home.receipts() + u"/Receipt 2026-11-20 14-07-09.pdf"_s;

    void printOn(const std::shared_ptr<Printer> &printer, const QString &line)
    {
        QVERIFY(printer);
        printer->printLine(line);
        const HeldTime held;
        printer->endDocument();
        QVERIFY(held.milliseconds() < 1000);
    }

private Q_SLOTS:
    void init()
    {
        m_home.clear();
        m_home.removePrograms();
        m_home.addProgram(u"lpstat"_s, listScript);
        m_home.addProgram(u"lp"_s, printScript);
    }

    void theFilePrinterWritesPdfs()
    {
        NativePrinters printers(m_clock, patientAnswers());
        const auto printer = printers.printer(receiptFile);
        QVERIFY(printer);
        QCOMPARE(printer->deviceName(), receiptFile);
        printer->setFontBold(true);
        printer->setFontSize(12);
        printer->printLine(u"HARROWBY STORES"_s);
        printer->setFontSize(10);
        printer->printLine(QString(63, u'-'));
        printer->printLine({});
        printer->printLine(u"***REPRINTED COPY***\r\nend"_s);
        printer->endDocument();
        QCOMPARE(m_home.receiptFiles(), {m_receipt});
        QCOMPARE(pdfLines(m_receipt),
                 QStringList({u"HARROWBY STORES"_s, QString(63, u'-'), u"***REPRINTED COPY***"_s, u"end"_s}));
        QVERIFY(!QFile::exists(m_home.path(u"told"_s)));
    }

    void endingNothingDoesNothing()
    {
        NativePrinters printers(m_clock, patientAnswers());
        const auto printer = printers.printer(receiptFile);
        printer->setFontSize(8);
        printer->endDocument();
        QCOMPARE(m_home.receiptFiles(), QStringList());
        printOn(printer, u"first"_s);
        printer->endDocument();
        QCOMPARE(m_home.receiptFiles().size(), 1);
        printOn(printer, u"second"_s);
        QCOMPARE(m_home.receiptFiles().size(), 2);
    }

    void theFontStaysForTheNextJob()
    {
        NativePrinters printers(m_clock, patientAnswers());
        const auto printer = printers.printer(receiptFile);
        printer->setFontSize(7);
        printOn(printer, QString(80, u'-'));
        printOn(printers.printer(receiptFile), QString(80, u'-'));
        for (const QString &file : m_home.receiptFiles())
            QCOMPARE(pdfLines(file), {QString(80, u'-')}); // would wrap at size 10
    }

    void listsTheQueuesAndThenTheFilePrinter()
    {
        NativePrinters printers(m_clock, patientAnswers());
        QCOMPARE(printers.deviceNames(), QStringList({u"till"_s, u"kitchen"_s, u"upstairs"_s, receiptFile}));
        QVERIFY(!printers.printer(u"Till"_s));
        QVERIFY(!printers.printer(u"COM1"_s));
        QVERIFY(!printers.printer({}));
        QCOMPARE(printers.printer(u"kitchen"_s)->deviceName(), u"kitchen"_s);
    }

    void oneLoadAsksOnce()
    {
        NativePrinters printers(m_clock, patientAnswers());
        for (int i = 0; i < 10; ++i) {
            QCOMPARE(printers.deviceNames().size(), 4);
            QVERIFY(printers.printer(u"till"_s));
            QVERIFY(printers.current());
        }
        QCOMPARE(text(m_home.path(u"asked"_s)).count(u"-a -d"_s), 1);
    }

    void aStaleListIsAskedAgain()
    {
        PrintOptions options = patientAnswers();
        options.listFreshness = 0ms;
        NativePrinters printers(m_clock, options);
        QVERIFY(printers.deviceNames().contains(u"till"_s));
        m_home.addProgram(u"lpstat"_s, u"[ \"$1\" = -e ] || echo 'bar accepting requests since today'"_s);
        QCOMPARE(printers.deviceNames(), QStringList({u"bar"_s, receiptFile}));
        QCOMPARE(printers.current()->deviceName(), receiptFile);
    }

    void theCurrentPrinter()
    {
        NativePrinters printers(m_clock, patientAnswers());
        QCOMPARE(printers.current()->deviceName(), u"till"_s);
        printers.setCurrent(printers.printer(u"kitchen"_s));
        QCOMPARE(printers.current()->deviceName(), u"kitchen"_s);
        printers.setCurrent(printers.printer(u"COM1"_s));
        QCOMPARE(printers.current()->deviceName(), u"till"_s);
    }

    void aReceiptIsNotTornByANewDefault()
    {
        PrintOptions options = patientAnswers();
        options.listFreshness = 0ms;
        m_home.addProgram(u"lpstat"_s, u"exit 1"_s);
        NativePrinters printers(m_clock, options);
        printers.current()->printLine(u"one"_s);
        m_home.addProgram(u"lpstat"_s, listScript);
        QTRY_VERIFY_WITH_TIMEOUT(printers.deviceNames().contains(u"till"_s), 30000);
        printers.current()->printLine(u"two"_s);
        printers.current()->endDocument();
        QCOMPARE(pdfLines(m_receipt), QStringList({u"one"_s, u"two"_s}));
        QCOMPARE(printers.current()->deviceName(), u"till"_s);
    }

    void aTakenReceiptIsRemoved()
    {
        const LogCapture log;
        NativePrinters printers(m_clock, patientAnswers());
        printOn(printers.current(), u"for the till"_s);
        QCOMPARE(m_home.receiptFiles(), {m_receipt}); // on the disk before it is handed over
        QTRY_COMPARE_WITH_TIMEOUT(m_home.receiptFiles(), QStringList(), 30000);
        QCOMPARE(text(m_home.path(u"told"_s)), u"-d|till|-t|Receipt 2026-11-20 14-07-09|--|"_s + m_receipt + u'|');
        QCOMPARE(pdfLines(m_home.path(u"printed.pdf"_s)), {u"for the till"_s});
        QCOMPARE(log.lines(), QStringList());
    }

    void aReceiptThatIsNotTakenStays_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("reason");
        QTest::newRow("refused") << u"echo 'lp: Destination \"till\" is not accepting jobs.' >&2; exit 1"_s
                                 << u"not accepting jobs"_s;
        QTest::newRow("hung") << u"exec sleep 60"_s << u"no answer within 0.5 s"_s;
        QTest::newRow("crashed") << u"kill -SEGV $$"_s << u"crashed"_s;
        QTest::newRow("not executable") << QString() << u"lp: "_s;
    }

    void aReceiptThatIsNotTakenStays()
    {
        QFETCH(const QString, script);
        QFETCH(const QString, reason);
        const LogCapture log;
        PrintOptions options = patientAnswers();
        if (reason.startsWith(u"no answer"_s))
            options.handOverDeadline = quickAnswers().handOverDeadline;
        m_home.addProgram(u"lp"_s, script);
        if (script.isNull())
            options.printProgram = m_home.path(u"no such folder/lp"_s);
        NativePrinters printers(m_clock, options);
        printOn(printers.current(), u"for the till"_s);
        QTRY_VERIFY_WITH_TIMEOUT(!log.lines().isEmpty(), 30000);
        QVERIFY2(log.hasLine({u"harrowby.print"_s, u"till"_s, m_receipt, reason}), qPrintable(log.lines().join(u'\n')));
        QCOMPARE(log.lines().size(), 1);
        QCOMPARE(pdfLines(m_receipt), {u"for the till"_s});
    }

    void aReceiptOnItsWayWhenTheProgramEndsStays()
    {
        const LogCapture log;
        m_home.addProgram(u"lp"_s, u"exec sleep 60"_s);
        {
            NativePrinters printers(m_clock, quickAnswers());
            printOn(printers.current(), u"for the till"_s);
        }
        QVERIFY(log.hasLine({u"harrowby.print"_s, u"till"_s, m_receipt, u"the program ended"_s}));
        QCOMPARE(pdfLines(m_receipt), {u"for the till"_s});
    }

    void aQuickHandOverIsStillDoneWhenTheProgramEnds()
    {
        {
            PrintOptions patient = quickAnswers();
            patient.exitWait = 10s;
            NativePrinters printers(m_clock, patient);
            printOn(printers.current(), u"for the till"_s);
        }
        QCOMPARE(m_home.receiptFiles(), QStringList());
        QCOMPARE(pdfLines(m_home.path(u"printed.pdf"_s)), {u"for the till"_s});
    }

    void aHungListHoldsNobody()
    {
        const LogCapture log;
        m_home.addProgram(u"lpstat"_s, u"exec sleep 60"_s);
        NativePrinters printers(m_clock, quickAnswers());
        const HeldTime held;
        for (int i = 0; i < 20; ++i) { // all of them together
            QCOMPARE(printers.deviceNames(), {receiptFile});
            QVERIFY(!printers.printer(u"till"_s));
            QCOMPARE(printers.current()->deviceName(), receiptFile);
        }
        QVERIFY2(held.milliseconds() < 1000, qPrintable(QString::number(held.milliseconds())));
        QTRY_VERIFY_WITH_TIMEOUT(log.hasLine({u"harrowby.print"_s, u"no answer"_s}), 30000);
    }

    void theLastListIsServedDuringAHangAndANewOneAfterIt()
    {
        PrintOptions options = quickAnswers();
        options.listFreshness = 0ms;
        NativePrinters printers(m_clock, options);
        QTRY_COMPARE_WITH_TIMEOUT(printers.deviceNames().size(), 4, 30000);
        QTRY_COMPARE_WITH_TIMEOUT(printers.current()->deviceName(), u"till"_s, 30000);
        m_home.addProgram(u"lpstat"_s, u"exec sleep 60"_s);
        QCOMPARE(printers.deviceNames().size(), 4);
        QCOMPARE(printers.current()->deviceName(), u"till"_s);
        m_home.addProgram(u"lpstat"_s, u"[ \"$1\" = -e ] || echo 'bar accepting requests since today'"_s);
        QTRY_COMPARE_WITH_TIMEOUT(printers.deviceNames(), QStringList({u"bar"_s, receiptFile}), 30000);
    }

    void withoutAnyPrintServiceThereIsTheFilePrinter()
    {
        PrintOptions options;
        options.listProgram = u"no-such-lpstat"_s;
        NativePrinters printers(m_clock, options);
        QCOMPARE(printers.deviceNames(), {receiptFile});
        printOn(printers.current(), u"kept"_s);
        QCOMPARE(pdfLines(m_receipt), {u"kept"_s});
    }

    void whereNothingCanBeWrittenTheSaleGoesOn()
    {
        const LogCapture log;
        for (const auto &name : {u"Documents"_s, u".local"_s}) {
            QFile blocker(m_home.path(name));
            QVERIFY(blocker.open(QIODevice::WriteOnly));
        }
        NativePrinters printers(m_clock, patientAnswers());
        printOn(printers.current(), u"lost"_s);
        QVERIFY(log.hasLine({u"harrowby.print"_s, u"cannot be written"_s}));
        QVERIFY(!QFile::exists(m_home.path(u"told"_s)));
    }
};

HARROWBY_TEST(printers_test, PrintersTest)
#include "printers_test.moc"
