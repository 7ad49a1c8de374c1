// SPDX-License-Identifier: MIT
#include "app/backup/backup_job.h"

#include <QMetaObject>

#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

BackupJob::~BackupJob()
{
    m_stop = true;
    if (m_thread.joinable())
        m_thread.join();
}

void BackupJob::start(const QString &store, const QString &target, bool replace)
{
    start([=](const BackupWatch &watch) { return backUpStore(store, target, replace, watch); });
}

void BackupJob::start(Work work)
{
    if (isRunning())
        return;
    m_stop = false;
    m_lastPercent = -1;
    m_thread = std::thread([this, work = std::move(work)] { run(work); });
}

void BackupJob::run(const Work &work)
{
    BackupResult result;
    try {
        result = work([this](const BackupProgress &progress) { return report(progress); });
    } catch (const std::exception &error) {
        result.problem = u"The backup could not be made (%1)."_s.arg(QString::fromLocal8Bit(error.what()));
    }
    QMetaObject::invokeMethod(
        this, [this, result] { end(result); }, Qt::QueuedConnection);
}

/// Says it only when a person could see a difference.
bool BackupJob::report(const BackupProgress &progress)
{
    const int shown = progress.percent + (progress.stage == BackupProgress::Stage::Checking ? 1 : 0);
    if (m_lastPercent.exchange(shown) != shown)
        QMetaObject::invokeMethod(
            this, [this, progress] { Q_EMIT progressed(progress); }, Qt::QueuedConnection);
    return !m_stop;
}

void BackupJob::end(const BackupResult &result)
{
    m_thread.join();
    Q_EMIT finished(result);
}

} // namespace harrowby::app
