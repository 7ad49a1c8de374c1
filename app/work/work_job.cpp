// SPDX-License-Identifier: MIT
#include "app/work/work_job.h"

#include "basic/logging.h"

#include <QMetaObject>

#include <exception>
#include <new>

using namespace Qt::StringLiterals;

namespace harrowby::app {

bool WorkJob::run(std::function<Action(const WorkWatch &)> work)
{
    if (isRunning())
        return false;
    m_cancelled = false;
    m_last = {};
    m_new.reset();
    m_thread = std::jthread([this, work = std::move(work)](const std::stop_token &stop) {
        const Action action = work([&](const WorkStep &step) {
            report(step);
            return !stop.stop_requested();
        });
        QMetaObject::invokeMethod(
            this, [this, action] { end(action); }, Qt::QueuedConnection);
    });
    Q_EMIT started();
    return true;
}

void WorkJob::cancel()
{
    if (!isRunning() || m_cancelled)
        return;
    m_cancelled = true;
    m_thread.request_stop();
    Q_EMIT cancelled();
}

/// A hundred thousand steps are not to become as many events.
void WorkJob::report(const WorkStep &step)
{
    const std::lock_guard lock(m_mutex);
    if (step == m_last || step.words.isEmpty())
        return;
    m_last = step;
    const bool isOnItsWay = m_new.has_value();
    m_new = step;
    if (!isOnItsWay)
        QMetaObject::invokeMethod(this, &WorkJob::deliver, Qt::QueuedConnection);
}

void WorkJob::deliver()
{
    std::optional<WorkStep> step;
    {
        const std::lock_guard lock(m_mutex);
        step = std::exchange(m_new, std::nullopt);
    }
    if (step && isRunning())
        Q_EMIT progressed(*step);
}

void WorkJob::end(const Action &action)
{
    m_thread.join();
    m_thread = {};
    Q_EMIT finished();
    action();
}

QString WorkJob::thrownWords()
{
    QString reason;
    try {
        throw;
    } catch (const std::bad_alloc &) {
        reason = u"there is not enough memory"_s;
    } catch (const std::exception &error) {
        reason = QString::fromLocal8Bit(error.what());
    } catch (...) {
        reason = u"for an unknown reason"_s;
    }
    qCWarning(lcStore).noquote() << "A piece of work broke off:" << reason;
    return u"It broke off (%1)."_s.arg(reason);
}

} // namespace harrowby::app
