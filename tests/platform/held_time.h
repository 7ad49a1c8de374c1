// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QFile>
#include <QList>

namespace harrowby::testing {

/// How long this thread has been held up since then: what it did and waited for, but not the time in which the machine
/// had no processor for it.
class HeldTime
{
public:
    HeldTime() { m_timer.start(); }

    [[nodiscard]] qint64 milliseconds() const { return (m_timer.nsecsElapsed() - (queued() - m_queued)) / 1'000'000; }

private:
    /// In nanoseconds; none where the system does not tell.
    static qint64 queued()
    {
        QFile file(QStringLiteral("/proc/thread-self/schedstat"));
        return file.open(QIODevice::ReadOnly) ? file.readAll().split(' ').value(1).toLongLong() : 0;
    }

    qint64 m_queued = queued();
    QElapsedTimer m_timer;
};

} // namespace harrowby::testing
