// SPDX-License-Identifier: MIT
#include "app/start/log_file.h"
#include "basic/logging.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

int terminalLines = 0;

void countLine(QtMsgType, const QMessageLogContext &, const QString &)
{
    ++terminalLines;
}

QStringList linesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

} // namespace

class LogFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(u"deep/harrowby.log"_s);
        terminalLines = 0;
        m_previous = qInstallMessageHandler(countLine);
    }
    void cleanup() { qInstallMessageHandler(m_previous); }

    void lineHasTimeLevelAndCategory();
    void levelIsNamed_data();
    void levelIsNamed();
    void messageIsOneLine();
    void fullFileIsPutAsideOnce();
    void twoProgramsRotateOneLog();
    void manyProgramsLoseNoLine();
    void rotationUnderWayIsLeftAlone();
    void hugeFileIsPutAside();
    void filesAreTheOwnersAlone();
    void whatIsNoFileIsNotWaitedFor_data();
    void whatIsNoFileIsNotWaitedFor();
    void placeThatCannotBeWrittenIsToldOnce();
    void withoutAFileWarningsGoToTheTerminal();
    void componentsWarningsGoIntoTheFileOnly();
    void verboseShowsThemInTheTerminalToo();
    void otherMessagesGoWhereTheyWent();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    QtMessageHandler m_previous = nullptr;
};

void LogFileTest::lineHasTimeLevelAndCategory()
{
    LogFile log(m_path);
    log.add(QtWarningMsg, u"harrowby.store"_s, u"no such table: ü"_s);
    const QStringList lines = linesOf(m_path);
    QCOMPARE(lines.size(), 1);
    const QRegularExpression form(
        u"^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3} warning harrowby\\.store: no such table: ü$"_s);
    QVERIFY2(form.match(lines.constFirst()).hasMatch(), qPrintable(lines.constFirst()));
}

void LogFileTest::levelIsNamed_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("level");
    QTest::newRow("debug") << int{QtDebugMsg} << u"debug"_s;
    QTest::newRow("info") << int{QtInfoMsg} << u"info"_s;
    QTest::newRow("warning") << int{QtWarningMsg} << u"warning"_s;
    QTest::newRow("critical") << int{QtCriticalMsg} << u"critical"_s;
    QTest::newRow("fatal") << int{QtFatalMsg} << u"fatal"_s;
}

void LogFileTest::levelIsNamed()
{
    QFETCH(const int, type);
    QFETCH(const QString, level);
    LogFile log(m_path);
    QVERIFY(log.add(static_cast<QtMsgType>(type), u"c"_s, u"text"_s));
    QVERIFY2(linesOf(m_path).value(0).endsWith(u" "_s + level + u" c: text"_s), qPrintable(linesOf(m_path).value(0)));
}

void LogFileTest::messageIsOneLine()
{
    LogFile log(m_path);
    log.add(QtWarningMsg, u"c"_s, u"a\r\nb\\n"_s);
    QCOMPARE(linesOf(m_path).size(), 1);
    QVERIFY(linesOf(m_path).constFirst().endsWith(u"a\\r\\nb\\\\n"_s));
}

void LogFileTest::fullFileIsPutAsideOnce()
{
    LogFile log(m_path, 400);
    for (int i = 0; i < 50; ++i)
        log.add(QtWarningMsg, u"c"_s, u"message number %1 of many"_s.arg(i));
    QVERIFY(QFile(m_path + u".1"_s).size() >= 400);
    QVERIFY(QFile(m_path + u".1"_s).size() < 500);
    QVERIFY(QFile(m_path).size() < 400);
    QVERIFY(!QFile::exists(m_path + u".2"_s));
    const QStringList all = linesOf(m_path + u".1"_s) + linesOf(m_path);
    QVERIFY(all.constLast().contains(u"number 49 "_s));
}

void LogFileTest::twoProgramsRotateOneLog()
{
    LogFile one(m_path, 400);
    LogFile other(m_path, 400);
    other.add(QtWarningMsg, u"c"_s, u"line 0 of the other"_s);
    int written = 1;
    while (!QFile::exists(m_path + u".1"_s))
        one.add(QtWarningMsg, u"c"_s, u"line %1 of the one"_s.arg(written++));
    other.add(QtWarningMsg, u"c"_s, u"last line of the other"_s);
    const QStringList older = linesOf(m_path + u".1"_s);
    QCOMPARE(older.size(), written);
    QVERIFY(older.constFirst().endsWith(u"line 0 of the other"_s));
    QCOMPARE(linesOf(m_path).size(), 1);
    QVERIFY(linesOf(m_path).constFirst().endsWith(u"last line of the other"_s));
}

void LogFileTest::manyProgramsLoseNoLine()
{
    constexpr int programs = 4;
    constexpr int lines = 500;
    constexpr qint64 limit = 120'000; // reached once; a second rotation would drop the oldest lines
    std::vector<std::thread> running;
    running.reserve(programs);
    for (int program = 0; program < programs; ++program) {
        running.emplace_back([this, program] {
            LogFile log(m_path, limit);
            for (int i = 0; i < lines; ++i)
                log.add(QtWarningMsg, u"c"_s, u"program %1 line %2 %3"_s.arg(program).arg(i).arg(QString(20, u'x')));
        });
    }
    for (std::thread &program : running)
        program.join();
    const QStringList all = linesOf(m_path + u".1"_s) + linesOf(m_path);
    QVERIFY(QFile::exists(m_path + u".1"_s));
    QCOMPARE(all.size(), programs * lines);
    QCOMPARE(QDir(QFileInfo(m_path).path()).entryList(QDir::Files | QDir::Hidden),
             (QStringList{u"harrowby.log"_s, u"harrowby.log.1"_s}));
}

void LogFileTest::rotationUnderWayIsLeftAlone()
{
    LogFile log(m_path, 100);
    QVERIFY(log.add(QtWarningMsg, u"c"_s, u"first"_s));
    QLockFile other(m_path + u".lock"_s);
    QVERIFY(other.tryLock());
    QVERIFY(log.add(QtWarningMsg, u"c"_s, QString(100, u'x')));
    QVERIFY(log.add(QtWarningMsg, u"c"_s, u"third"_s));
    QVERIFY(!QFile::exists(m_path + u".1"_s));
    QCOMPARE(linesOf(m_path).size(), 3);
    other.unlock();
    QVERIFY(log.add(QtWarningMsg, u"c"_s, u"fourth"_s));
    QCOMPARE(linesOf(m_path + u".1"_s).size(), 3);
    QCOMPARE(linesOf(m_path).size(), 1);
}

void LogFileTest::hugeFileIsPutAside()
{
    QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
    QFile huge(m_path);
    QVERIFY(huge.open(QIODevice::WriteOnly));
    QVERIFY(huge.resize(static_cast<qint64>(1) << 40)); // sparse; RLIMIT_FSIZE below keeps it from growing
    huge.close();
    rlimit before = {};
    ::getrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit full = {rlim_t{1} << 40, before.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &full);
    const bool written = LogFile(m_path).add(QtWarningMsg, u"c"_s, u"the first after it"_s);
    ::setrlimit(RLIMIT_FSIZE, &before);
    QVERIFY(written);
    QCOMPARE(linesOf(m_path).size(), 1);
    QCOMPARE(QFile(m_path + u".1"_s).size(), static_cast<qint64>(1) << 40);
}

void LogFileTest::filesAreTheOwnersAlone()
{
    const auto mode = [](const QString &path) {
        struct stat facts = {};
        return ::stat(QFile::encodeName(path).constData(), &facts) == 0 ? static_cast<int>(facts.st_mode & 0777) : -1;
    };
    LogFile log(m_path, 100);
    log.add(QtWarningMsg, u"c"_s, QString(100, u'x'));
    log.add(QtWarningMsg, u"c"_s, u"x"_s);
    QCOMPARE(mode(m_path), 0600);
    QCOMPARE(mode(m_path + u".1"_s), 0600);
    QCOMPARE(mode(QFileInfo(m_path).path()), 0700);
}

void LogFileTest::whatIsNoFileIsNotWaitedFor_data()
{
    QTest::addColumn<QString>("what");
    QTest::newRow("pipe") << u"pipe"_s;
    QTest::newRow("device") << u"/dev/null"_s;
    QTest::newRow("folder") << u"folder"_s;
    QTest::newRow("pipe for the lock") << u"lock"_s;
}

void LogFileTest::whatIsNoFileIsNotWaitedFor()
{
    QFETCH(QString, what);
    QVERIFY(QDir().mkpath(QFileInfo(m_path).path()));
    const bool isLock = what == u"lock"_s;
    const QString name = isLock ? m_path + u".lock"_s : m_path;
    if (what.startsWith(u'/'))
        QVERIFY(QFile::link(what, name));
    else if (what == u"folder"_s)
        QVERIFY(QDir().mkdir(name));
    else
        QCOMPARE(::mkfifo(QFile::encodeName(name).constData(), 0600), 0);
    LogFile log(m_path, 10);
    QString reason;
    log.setHandler([&](const Result<void, QString> &outcome) { reason = reasonOf(outcome); });
    QCOMPARE(log.add(QtWarningMsg, u"c"_s, u"a line"_s), isLock);
    QCOMPARE(reason, isLock ? QString() : u"it is not an ordinary file"_s);
    QVERIFY(!QFile::exists(m_path + u".1"_s));
}

void LogFileTest::placeThatCannotBeWrittenIsToldOnce()
{
    QFile obstacle(m_folder->filePath(u"deep"_s));
    QVERIFY(obstacle.open(QIODevice::WriteOnly));
    LogFile log(m_path);
    QStringList told;
    log.setHandler([&](const Result<void, QString> &outcome) { told << reasonOf(outcome); });
    log.probe();
    QCOMPARE(told, QStringList{u"Not a directory"_s});
    QVERIFY(!log.add(QtWarningMsg, u"c"_s, u"lost"_s));
    QVERIFY(!log.add(QtWarningMsg, u"c"_s, u"lost"_s));
    QCOMPARE(told.size(), 1);
    QVERIFY(obstacle.remove());
    QVERIFY(log.add(QtWarningMsg, u"c"_s, u"kept"_s));
    QCOMPARE(told, (QStringList{u"Not a directory"_s, QString()}));
    QCOMPARE(linesOf(m_path).size(), 1);
}

void LogFileTest::withoutAFileWarningsGoToTheTerminal()
{
    QFile terminal(m_folder->filePath(u"terminal"_s));
    QVERIFY(terminal.open(QIODevice::ReadWrite));
    const int usual = ::dup(STDERR_FILENO);
    ::dup2(terminal.handle(), STDERR_FILENO);
    {
        LogFile log(u"/proc/nowhere/harrowby.log"_s);
        const LogRouting routing(log, false);
        qCWarning(lcPrint) << "nowhere else";
    }
    ::dup2(usual, STDERR_FILENO);
    ::close(usual);
    const QStringList lines = linesOf(terminal.fileName());
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines.constFirst().endsWith(u"warning harrowby.print: nowhere else"_s), qPrintable(lines.constFirst()));
}

void LogFileTest::componentsWarningsGoIntoTheFileOnly()
{
    LogFile log(m_path);
    {
        const LogRouting routing(log, false);
        qCWarning(lcStore) << "first";
        qCWarning(lcPrint) << "second";
        qCDebug(lcStore) << "too much";
    }
    qCWarning(lcStore) << "later";
    const QStringList lines = linesOf(m_path);
    QCOMPARE(lines.size(), 2);
    QVERIFY(lines.at(0).contains(u"harrowby.store: first"_s));
    QVERIFY(lines.at(1).contains(u"harrowby.print: second"_s));
    QCOMPARE(terminalLines, 1);
}

void LogFileTest::verboseShowsThemInTheTerminalToo()
{
    LogFile log(m_path);
    const LogRouting routing(log, true);
    qCWarning(lcStore) << "first";
    QCOMPARE(linesOf(m_path).size(), 1);
    QCOMPARE(terminalLines, 1);
}

void LogFileTest::otherMessagesGoWhereTheyWent()
{
    LogFile log(m_path);
    const LogRouting routing(log, false);
    qWarning("not ours");
    QCOMPARE(linesOf(m_path), QStringList());
    QCOMPARE(terminalLines, 1);
}

HARROWBY_CORE_TEST(app_log_file_test, LogFileTest)
#include "log_file_test.moc"
