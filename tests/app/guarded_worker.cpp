// SPDX-License-Identifier: MIT
#include "tests/app/guarded_worker.h"

#include "app/backup/backup.h"
#include "app/shop/busy_wait.h"
#include "app/shop/store_guard.h"
#include "app/shop/store_open.h"

#include <harrowby/sqlite_connection.h>

#include <QCoreApplication>
#include <QTest>

#include <cstdio>
#include <iostream>
#include <string>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

namespace {

constexpr int workerPatience = 30000;

QString reasonOf(const std::optional<SqlError> &error)
{
    return error ? error->reason : u"ok"_s;
}

/// The worker's process.
class Work
{
public:
    Work(const QString &role, SqliteDatabase database, const QString &path, BusyWait &wait) :
        m_wait(wait), m_isTill(role == u"till"_s), m_guard(std::move(database), path, wait), m_till(m_guard.database())
    {
        m_till.setFailureHandler([this](const DbFailure &failure) { m_failure = m_guard.explained(failure).reason; });
    }

    QString answer(const QString &order)
    {
        m_wait.refill(); // each command is an action with its own wait
        const QString verb = order.section(u' ', 0, 0);
        const QString rest = order.section(u' ', 1);
        if (verb == u"write"_s)
            return change(u"INSERT INTO SysUsage (SystemUsage) VALUES ('%1')"_s.arg(rest));
        if (verb == u"work"_s)
            return work(rest.toInt());
        if (verb == u"touch"_s)
            return change(u"UPDATE SysUsage SET Dates = 1 WHERE SystemUsage = 'nobody'"_s);
        if (verb == u"read"_s)
            return reasonOf(runSql(m_guard.database(), u"SELECT count(*) FROM SysUsage"_s));
        if (verb == u"rescue"_s)
            return rescue(rest);
        if (verb == u"tick"_s)
            m_guard.tick();
        if (!m_guard.isLost())
            return u"fine"_s;
        if (verb == u"now"_s)
            return m_guard.loss().nowAt;
        return verb == u"aside"_s ? m_guard.loss().logAside : QString::number(static_cast<int>(m_guard.loss().kind));
    }

private:
    QString change(const QString &statement)
    {
        if (!m_isTill)
            return reasonOf(runSql(m_guard.database(), statement));
        return m_till.Execute(statement) ? u"ok"_s : m_failure;
    }

    QString work(int writes)
    {
        for (int i = 0; i < writes; ++i) {
            m_wait.refill();
            const QString answer = change(u"INSERT INTO SysUsage (SystemUsage) VALUES ('work')"_s);
            if (answer != u"ok"_s)
                return answer;
            if (i % 3 == 0)
                m_guard.tick();
        }
        return u"ok"_s;
    }

    QString rescue(const QString &file)
    {
        const StoreGuard::Pass pass(m_guard);
        const auto result =
            rescueStore(m_guard.database(), m_guard.loss().path, file, [](const BackupProgress &) { return true; });
        return result.outcome == BackupResult::Outcome::Done ? u"ok"_s : result.problem;
    }

    BusyWait &m_wait;
    bool m_isTill;
    StoreGuard m_guard;
    SqliteConnection m_till;
    QString m_failure;
};

void say(const QString &text)
{
    std::printf("%s\n", text.toUtf8().replace('\n', '|').constData());
    std::fflush(stdout);
}

} // namespace

bool isWorker(int argc, char **argv)
{
    return argc == 4 && std::string(argv[1]) == "--work";
}

int runWorker(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QString path = QString::fromLocal8Bit(argv[3]);
    BusyWait wait;
    auto database = openStore(path, wait);
    if (!database) {
        say(database.error().text);
        return 4;
    }
    Work work(QString::fromLocal8Bit(argv[2]), *std::move(database), path, wait);
    say(u"ready"_s);
    std::string line;
    while (std::getline(std::cin, line))
        say(work.answer(QString::fromStdString(line)));
    return 0;
}

void runInFolder(const QString &folder, const QString &commands)
{
    QProcess shell;
    shell.setWorkingDirectory(folder);
    shell.start(u"sh"_s, {u"-c"_s, u"S=shop.sqlite; O=other.sqlite; "_s + commands});
    QVERIFY(shell.waitForFinished(workerPatience));
    QVERIFY2(shell.exitCode() == 0, shell.readAllStandardError().constData());
}

std::unique_ptr<StoreGuard> guardStore(const QString &path, BusyWait &wait)
{
    auto database = openStore(path, wait);
    if (!database)
        qFatal("%s", qPrintable(database.error().text));
    return std::make_unique<StoreGuard>(*std::move(database), path, wait);
}

Worker::Worker(const QString &role, const QString &store)
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start(QCoreApplication::applicationFilePath(), {u"app_store_guard_test"_s, u"--work"_s, role, store});
    if (!m_process.waitForReadyRead(workerPatience) || m_process.readLine() != "ready\n")
        qFatal("The worker does not start");
}

Worker::~Worker()
{
    kill();
}

QString Worker::ask(const QString &order)
{
    send(order);
    return hear();
}

void Worker::send(const QString &order)
{
    m_process.write(order.toUtf8() + '\n');
    m_process.waitForBytesWritten(workerPatience);
}

QString Worker::hear()
{
    while (!m_process.canReadLine()) {
        if (!m_process.waitForReadyRead(workerPatience))
            return u"no answer"_s;
    }
    return QString::fromUtf8(m_process.readLine()).chopped(1);
}

int Worker::close()
{
    m_process.closeWriteChannel();
    return m_process.waitForFinished(workerPatience) && m_process.exitStatus() == QProcess::NormalExit
               ? m_process.exitCode()
               : -1;
}

void Worker::kill()
{
    m_process.kill();
    m_process.waitForFinished(workerPatience);
}

} // namespace harrowby::app::test
