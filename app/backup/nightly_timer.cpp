// SPDX-License-Identifier: MIT
#include "app/backup/nightly_timer.h"

#include "app/backup/backup_place.h"
#include "app/backup/kept_backups.h"
#include "basic/logging.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSaveFile>
#include <QStandardPaths>

#include <pwd.h>
#include <unistd.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int deadline = 10'000; // ms, for one call of systemd's programs
constexpr int interval = 100;    // ms, between two looks whether it is still wanted

using GoesOn = std::function<bool()>;

bool always()
{
    return true;
}

QString unitFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/systemd/user"_s;
}

struct Called
{
    bool succeeded = false;
    bool isMissing = false; ///< there is no such program
    QString output;
    QString reason;
};

bool waitForEnd(QProcess &process, const GoesOn &goesOn)
{
    for (int waited = 0; waited < deadline && goesOn(); waited += interval) {
        if (process.waitForFinished(interval))
            return true;
    }
    return false;
}

Called call(const QString &program, const QStringList &arguments, const GoesOn &goesOn)
{
    QProcess process;
    process.start(program, arguments, QIODevice::ReadOnly);
    if (!process.waitForStarted(deadline))
        return {false, true, {}, u"there is no program \"%1\""_s.arg(program)};
    if (!waitForEnd(process, goesOn)) {
        process.kill();
        process.waitForFinished(deadline);
        return {false, false, {}, u"\"%1\" did not answer"_s.arg(program)};
    }
    const bool succeeded = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    const QString said = QString::fromLocal8Bit(process.readAllStandardError()).trimmed();
    if (!succeeded)
        qCWarning(lcStore).noquote() << program << arguments << "failed:" << said;
    return {succeeded, false, QString::fromLocal8Bit(process.readAllStandardOutput()).trimmed(),
            said.isEmpty() ? u"\"%1\" refused"_s.arg(program) : said};
}

Called tellSystemd(const QStringList &arguments, const GoesOn &goesOn = always)
{
    return call(u"systemctl"_s, QStringList{u"--user"_s} + arguments, goesOn);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool save(const QString &path, const QByteArray &content)
{
    if (content.isEmpty())
        return QFile::remove(path) || !QFile::exists(path);
    QSaveFile file(path);
    // Its address may have the password to a server.
    return file.open(QIODevice::WriteOnly) && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) &&
           file.write(content) == content.size() && file.commit();
}

QString userName()
{
    const passwd *entry = ::getpwuid(::getuid());
    return entry != nullptr ? QString::fromLocal8Bit(entry->pw_name) : QString();
}

/// So that the timer runs while nobody is logged in. Why it will not; empty when it will.
QString letLinger(const GoesOn &goesOn)
{
    const Called asked = call(u"loginctl"_s, {u"show-user"_s, u"--property=Linger"_s, u"--value"_s}, goesOn);
    if (asked.succeeded && asked.output == u"yes"_s)
        return {};
    const Called told = call(u"loginctl"_s, {u"enable-linger"_s}, goesOn);
    if (told.succeeded)
        return {};
    return u"It runs only while you are logged in to this computer (%1). For all other times, let whoever keeps this "
           "computer run: loginctl enable-linger %2"_s.arg(told.reason, userName());
}

QString noTimer(const QString &reason, const NightlyJob &job, const NightlyPlan &plan)
{
    return u"systemd could not set up the timer (%1). Nothing was changed. Another program that runs something every "
           "day, such as cron, can do it with this line:\n%2"_s.arg(reason, nightlyCronLine(job, plan));
}

QString checkPlan(const NightlyJob &job, const NightlyPlan &plan)
{
    if (plan.folder.isEmpty() || !QDir::isAbsolutePath(plan.folder))
        return u"Please choose a folder."_s;
    for (const QString &path : {plan.folder, job.store, job.program}) {
        if (!fitsUnit(path))
            return u"The name \"%1\" holds signs that systemd does not take. Please choose another one."_s.arg(path);
    }
    const QString name = keptBackupName(job.store, QDateTime::currentDateTime());
    const auto place = checkBackupPlace(job.store, QDir(plan.folder).filePath(name));
    return place ? QString() : place.error();
}

} // namespace

NightlyTimer::NightlyTimer(NightlyJob job) :
    m_job(std::move(job)), m_name(u"harrowby-backup-"_s + storeMark(m_job.store))
{
}

QString NightlyTimer::timerName() const
{
    return m_name + u".timer"_s;
}

QString NightlyTimer::timerPath() const
{
    return unitFolder() + u'/' + timerName();
}

QString NightlyTimer::servicePath() const
{
    return unitFolder() + u'/' + m_name + u".service"_s;
}

std::optional<ReadNightly> NightlyTimer::read() const
{
    return readNightlyTimer(QString::fromUtf8(contentOf(timerPath())));
}

bool NightlyTimer::isRunning() const
{
    return tellSystemd({u"is-active"_s, u"--quiet"_s, timerName()}).succeeded;
}

QString NightlyTimer::write(const NightlyPlan &plan) const
{
    const bool written = QDir().mkpath(unitFolder()) && save(servicePath(), nightlyServiceText(m_job, plan).toUtf8()) &&
                         save(timerPath(), nightlyTimerText(m_job, plan).toUtf8());
    return written ? QString() : u"\"%1\" cannot be written"_s.arg(unitFolder());
}

/// "restart" has a changed time count at once; "enable" alone would start it at the next login.
QString NightlyTimer::start(const std::function<bool()> &goesOn) const
{
    for (const QStringList &arguments : {QStringList{u"daemon-reload"_s}, QStringList{u"enable"_s, timerName()},
                                         QStringList{u"restart"_s, timerName()}}) {
        if (const Called told = tellSystemd(arguments, goesOn); !told.succeeded)
            return told.reason;
    }
    return {};
}

NightlyEnd NightlyTimer::setUp(const NightlyPlan &plan, const WorkWatch &watch) const
{
    const auto goesOn = [&watch] { return watch({u"The timer is being set up \u2026"_s, WorkStep::unknown}); };
    if (const QString fault = checkPlan(m_job, plan); !fault.isEmpty())
        return {fault, {}};
    const QByteArray oldService = contentOf(servicePath());
    const QByteArray oldTimer = contentOf(timerPath());
    QString reason = write(plan);
    if (reason.isEmpty())
        reason = start(goesOn);
    if (reason.isEmpty())
        return {{}, letLinger(goesOn)};
    if (oldTimer.isEmpty())
        (void)tellSystemd({u"disable"_s, u"--now"_s, timerName()});
    (void)save(servicePath(), oldService);
    (void)save(timerPath(), oldTimer);
    (void)tellSystemd({u"daemon-reload"_s});
    if (!oldTimer.isEmpty())
        (void)tellSystemd({u"restart"_s, timerName()});
    return {goesOn() ? noTimer(reason, m_job, plan) : u"Cancelled. Nothing was changed."_s, {}};
}

NightlyEnd NightlyTimer::switchOff(const WorkWatch &watch) const
{
    const auto goesOn = [&watch] { return watch({u"The timer is being switched off \u2026"_s, WorkStep::unknown}); };
    const Called told = tellSystemd({u"disable"_s, u"--now"_s, timerName()}, goesOn);
    if (!told.succeeded && !told.isMissing && isRunning())
        return {u"systemd could not switch off the timer (%1)."_s.arg(told.reason), {}};
    if (!save(timerPath(), {}) || !save(servicePath(), {}))
        return {u"The files of the timer in \"%1\" cannot be removed."_s.arg(unitFolder()), {}};
    (void)tellSystemd({u"daemon-reload"_s});
    return {};
}

} // namespace harrowby::app
