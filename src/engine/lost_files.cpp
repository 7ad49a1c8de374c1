// SPDX-License-Identifier: MIT
#include "engine/lost_files.h"

#include <QHash>

#include <mutex>

namespace harrowby {

namespace {

/// Guarded by a mutex, as a backup runs statements on its own thread.
class Losses
{
public:
    QString of(const sqlite3 *database)
    {
        const std::lock_guard lock(m_mutex);
        return m_all.value(database);
    }
    void set(const sqlite3 *database, const QString &headline)
    {
        const std::lock_guard lock(m_mutex);
        if (headline.isEmpty())
            m_all.remove(database);
        else
            m_all.insert(database, headline);
    }

private:
    std::mutex m_mutex;
    QHash<const sqlite3 *, QString> m_all;
};

Losses &losses()
{
    static Losses all;
    return all;
}

} // namespace

QString lossOf(const sqlite3 *database)
{
    return losses().of(database);
}

void noteLoss(const sqlite3 *database, const QString &headline)
{
    losses().set(database, headline);
}

void forgetLoss(const sqlite3 *database)
{
    losses().set(database, {});
}

} // namespace harrowby
