// SPDX-License-Identifier: MIT
#include "tests/doubles/private_cluster.h"

#include "tests/doubles/cluster_tools.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QProcess>
#include <QThread>

#include <csignal>
#include <utility>

#include <libpq-fe.h>
#include <sys/shm.h>

using namespace Qt::StringLiterals;

namespace harrowby::test {

namespace {

constexpr int startingMs = 60'000;
constexpr int pollMs = 2;
constexpr int triedPorts = 5;

/// No shared memory outside the folder but for the one block that removeSharedMemory() knows; small, as many run at
/// once; what a standby needs that is taken back later.
constexpr auto usualSettings = R"(
dynamic_shared_memory_type = mmap
shared_buffers = 32MB
max_wal_size = 256MB
wal_keep_size = 256MB
)"_L1;

struct EndResult
{
    void operator()(PGresult *result) const { PQclear(result); }
};
using Answer = std::unique_ptr<PGresult, EndResult>;

bool isDone(const Answer &answer)
{
    const ExecStatusType status = PQresultStatus(answer.get());
    return status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK || status == PGRES_EMPTY_QUERY;
}

QStringList rowsOf(const Answer &answer)
{
    QStringList all;
    for (int row = 0; row < PQntuples(answer.get()); ++row) {
        QStringList cells;
        for (int column = 0; column < PQnfields(answer.get()); ++column)
            cells << QString::fromUtf8(PQgetvalue(answer.get(), row, column));
        all << cells.join(u'|');
    }
    return all;
}

void append(const QString &file, const QStringList &lines, QIODevice::OpenMode mode = QIODevice::Append)
{
    QFile settings(file);
    if (!settings.open(QIODevice::WriteOnly | mode) || settings.write(lines.join(u'\n').toUtf8() + '\n') < 0)
        qFatal("%s: %s", qPrintable(file), qPrintable(settings.errorString()));
}

QStringList linesOf(const QString &file)
{
    QFile lines(file);
    return lines.open(QIODevice::ReadOnly) ? QString::fromUtf8(lines.readAll()).split(u'\n') : QStringList();
}

} // namespace

QString PrivateCluster::missing()
{
    return cluster::missing();
}

PrivateCluster::PrivateCluster(const QStringList &settings, Durability durability) :
    m_folder(cluster::parentFolder() + u"/c-XXXXXX"_s), m_port(cluster::freePort())
{
    cluster::giveAway(m_folder.path());
    cluster::run(u"cp"_s, {u"--archive"_s, u"--reflink=auto"_s, cluster::templateFolder(), dataFolder()});
    append(dataFolder() + u"/postgresql.conf"_s,
           QStringList{usualSettings, durability == Durability::Memory ? u"fsync = off"_s : QString()} + settings);
}

PrivateCluster::PrivateCluster(StandbyOf copied) :
    m_folder(cluster::parentFolder() + u"/c-XXXXXX"_s), m_port(cluster::freePort())
{
    cluster::giveAway(m_folder.path());
    cluster::run(cluster::program(u"pg_basebackup"_s),
                 {u"--pgdata"_s, dataFolder(), u"--dbname"_s, copied.primary.conninfo(), u"--write-recovery-conf"_s,
                  u"--checkpoint"_s, u"fast"_s, u"--no-sync"_s});
}

PrivateCluster::~PrivateCluster()
{
    if (isRunning())
        kill9();
    removeSharedMemory();
}

void PrivateCluster::start()
{
    if (isRunning())
        qFatal("the server runs already");
    // Another program may have taken the free port meanwhile.
    for (int tries = m_hasRun ? 1 : triedPorts; tries > 0; --tries) {
        if (startOnce()) {
            m_hasRun = true;
            return;
        }
        if (!m_hasRun)
            m_port = cluster::freePort();
    }
    qFatal("the server does not start: %s", qPrintable(log()));
}

bool PrivateCluster::startOnce()
{
    m_server = std::make_unique<QProcess>();
    cluster::prepare(*m_server);
    m_server->setStandardOutputFile(QProcess::nullDevice());
    m_server->setStandardErrorFile(logFile(), QIODevice::Append);
    m_server->start(cluster::program(u"postgres"_s),
                    {u"-D"_s, dataFolder(), u"-p"_s, QString::number(m_port), u"-k"_s, socketFolder(), u"-h"_s,
                     u"127.0.0.1"_s, u"-c"_s, u"cluster_name=server_%1"_s.arg(m_port)});
    const QDeadlineTimer deadline(startingMs);
    while (!isReady()) {
        if (m_server->waitForFinished(pollMs) || deadline.hasExpired()) {
            m_server.reset();
            return false;
        }
    }
    return true;
}

/// As pg_ctl finds out: the server writes its process and, in the eighth line, its state.
bool PrivateCluster::isReady() const
{
    const QStringList lines = linesOf(dataFolder() + u"/postmaster.pid"_s);
    return m_server->processId() != 0 && lines.value(0) == QString::number(m_server->processId()) &&
           lines.value(7).trimmed() == u"ready"_s;
}

void PrivateCluster::shutDown()
{
    disconnect();
    ::kill(static_cast<pid_t>(m_server->processId()), SIGINT);
    if (!m_server->waitForFinished(startingMs))
        qFatal("the server does not end: %s", qPrintable(log()));
    m_server.reset();
}

void PrivateCluster::kill9()
{
    disconnect();
    m_server->waitForFinished(0);
    const auto server = static_cast<pid_t>(m_server->processId());
    if (server == 0) {
        m_server.reset();
        return;
    }
    ::kill(server, SIGSTOP); // so that it starts no further ones
    const std::vector<pid_t> children = cluster::childrenOf(server);
    for (const pid_t process : children)
        ::kill(process, SIGKILL);
    ::kill(server, SIGKILL);
    m_server->waitForFinished(startingMs);
    m_server.reset();
    for (const pid_t process : children)
        cluster::awaitEnd(process);
}

void PrivateCluster::stop()
{
    const auto server = static_cast<pid_t>(m_server->processId());
    ::kill(server, SIGSTOP);
    for (const pid_t process : cluster::childrenOf(server))
        ::kill(process, SIGSTOP);
}

void PrivateCluster::cont()
{
    const auto server = static_cast<pid_t>(m_server->processId());
    for (const pid_t process : cluster::childrenOf(server))
        ::kill(process, SIGCONT);
    ::kill(server, SIGCONT);
}

std::unique_ptr<PrivateCluster> PrivateCluster::standby()
{
    std::unique_ptr<PrivateCluster> copy(new PrivateCluster(StandbyOf{*this}));
    copy->start();
    awaitStandby(*copy);
    return copy;
}

void PrivateCluster::awaitStandby(const PrivateCluster &standby)
{
    await(
        u"SELECT count(*) FROM pg_stat_replication WHERE state = 'streaming' AND application_name = 'server_%1'"_s.arg(
            standby.port()),
        u"1"_s);
    demandStandby(true);
    // What was written until now has waited for nobody, and may still be here alone.
    const QString written = sql(u"SELECT pg_current_wal_flush_lsn()"_s).value(0);
    await(u"SELECT count(*) FROM pg_stat_replication WHERE application_name = 'server_%1' AND flush_lsn >= '%2'"_s
              .arg(standby.port())
              .arg(written),
          u"1"_s);
}

void PrivateCluster::demandStandby(bool demanded)
{
    set(u"synchronous_standby_names"_s, demanded ? u"ANY 1 (*)"_s : QString());
    sql(u"CHECKPOINT"_s); // by the process that tells the others whether to wait: it has read the setting then
}

std::chrono::steady_clock::time_point PrivateCluster::promote()
{
    sql(u"SELECT pg_promote(false)"_s);
    await(u"SELECT pg_is_in_recovery()"_s, u"f"_s);
    const auto promoted = std::chrono::steady_clock::now(); // before what takes a while below, and holds up nobody
    demandStandby(false);
    return promoted;
}

void PrivateCluster::follow(PrivateCluster &primary)
{
    cluster::run(cluster::program(u"pg_rewind"_s), {u"--target-pgdata"_s, dataFolder(), u"--source-server"_s,
                                                    primary.conninfo(), u"--write-recovery-conf"_s, u"--no-sync"_s});
    start();
    primary.awaitStandby(*this);
}

QString PrivateCluster::conninfo(const QString &user, const QString &database) const
{
    return u"host=%1 port=%2 user=%3 dbname=%4"_s.arg(socketFolder(), QString::number(m_port), user, database);
}

QString PrivateCluster::tcpConninfo(const QString &user, const QString &database) const
{
    return u"host=127.0.0.1 port=%1 user=%2 dbname=%3"_s.arg(QString::number(m_port), user, database);
}

pg_conn *PrivateCluster::connected(const QString &database)
{
    if (m_connection == nullptr || m_connectedTo != database) {
        disconnect();
        m_connection = PQconnectdb(conninfo(u"postgres"_s, database).toUtf8().constData());
        m_connectedTo = database;
        PQsetNoticeProcessor(
            m_connection, [](void *, const char *) {}, nullptr);
    }
    return m_connection;
}

void PrivateCluster::disconnect()
{
    PQfinish(std::exchange(m_connection, nullptr));
}

QStringList PrivateCluster::sql(const QString &statements, const QString &database)
{
    pg_conn *connection = connected(database);
    const Answer answer(PQexec(connection, statements.toUtf8().constData()));
    if (!isDone(answer))
        qFatal("%s: %s", qPrintable(statements), PQerrorMessage(connection));
    return rowsOf(answer);
}

bool PrivateCluster::trySql(const QString &statements, const QString &database)
{
    pg_conn *connection = PQconnectdb(conninfo(u"postgres"_s, database).toUtf8().constData());
    const bool done = isDone(Answer(PQexec(connection, statements.toUtf8().constData())));
    PQfinish(connection);
    return done;
}

void PrivateCluster::await(const QString &select, const QString &value)
{
    const QDeadlineTimer deadline(startingMs);
    while (sql(select).value(0).section(u'|', 0, 0) != value) {
        if (deadline.hasExpired())
            qFatal("%s does not become %s: %s", qPrintable(select), qPrintable(value), qPrintable(log()));
        QThread::msleep(pollMs);
    }
}

void PrivateCluster::set(const QString &name, const QString &value)
{
    sql(u"ALTER SYSTEM SET %1 = '%2'"_s.arg(name, value));
    reload();
}

void PrivateCluster::setAccess(const QStringList &lines)
{
    append(dataFolder() + u"/pg_hba.conf"_s, lines, QIODevice::Truncate);
    reload();
}

void PrivateCluster::reload()
{
    const QString before = sql(u"SELECT pg_conf_load_time()"_s).value(0);
    sql(u"SELECT pg_reload_conf()"_s);
    await(u"SELECT pg_conf_load_time() > '%1'"_s.arg(before), u"t"_s);
}

QString PrivateCluster::log() const
{
    return linesOf(logFile()).join(u'\n');
}

/// What a server leaves that ended without being asked: the block that the seventh line of its file names.
void PrivateCluster::removeSharedMemory() const
{
    const QStringList keyAndBlock =
        linesOf(dataFolder() + u"/postmaster.pid"_s).value(6).simplified().split(u' ', Qt::SkipEmptyParts);
    if (keyAndBlock.size() == 2)
        ::shmctl(keyAndBlock.at(1).toInt(), IPC_RMID, nullptr);
}

} // namespace harrowby::test
