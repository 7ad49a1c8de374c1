// SPDX-License-Identifier: MIT
#include "basic/logging.h"
#include "log_file.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;

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
    void messageIsOneLine();
    void fullFileIsPutAsideOnce();
    void placeThatCannotBeWrittenIsNoFailure();
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

void LogFileTest::placeThatCannotBeWrittenIsNoFailure()
{
    LogFile log(u"/proc/nowhere/harrowby.log"_s);
    log.add(QtWarningMsg, u"c"_s, u"lost"_s);
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

QTEST_GUILESS_MAIN(LogFileTest)
#include "log_file_test.moc"
