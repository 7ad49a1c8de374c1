// SPDX-License-Identifier: MIT
#include "app/backup/backup_job.h"

#include <QMetaObject>

#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

void BackupJob::start(const QString &store, const QString &target, bool replace)
{
    start([=](const BackupWatch &watch) { return backUpStore(store, target, replace, watch); });
}

void BackupJob::start(Work work)
{
    if (isRunning())
        return;
    m_lastPercent = -1;
    m_thread = std::jthread([this, work = std::move(work)](const std::stop_token &stop) { run(work, stop); });
}

void BackupJob::run(const Work &work, const std::stop_token &stop)
{
    BackupResult result;
    try {
        result = work([&](const BackupProgress &progress) {
            report(progress);
            return !stop.stop_requested();
        });
    } catch (const std::exception &error) {
        result.problem = u"The backup could not be made (%1)."_s.arg(QString::fromLocal8Bit(error.what()));
    }
    QMetaObject::invokeMethod(
        this, [this, result] { end(result); }, Qt::QueuedConnection);
}

/// Emits progress only when the percentage, or the stage, differs from the last one emitted.
void BackupJob::report(const BackupProgress &progress)
{
    const int shown = progress.percent + (progress.stage == BackupProgress::Stage::Checking ? 1 : 0);
    if (m_lastPercent.exchange(shown) != shown)
        QMetaObject::invokeMethod(
            this, [this, progress] { Q_EMIT progressed(progress); }, Qt::QueuedConnection);
}

void BackupJob::end(const BackupResult &result)
{
    m_thread.join();
    Q_EMIT finished(result);
}

} // namespace harrowby::app
