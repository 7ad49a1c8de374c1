// SPDX-License-Identifier: MIT
#include "app/shop/quick_check.h"

#include <QRegularExpression>

#include <sqlite3.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// Calls sqlite3_interrupt() from another thread once the time is up: the check of all pages is a single
/// sqlite3_step().
class Deadline
{
public:
    Deadline(sqlite3 *database, std::chrono::milliseconds limit) :
        m_over(limit.count() <= 0), m_watch([=, this](const std::stop_token &end) { run(database, limit, end); })
    {
    }

    [[nodiscard]] bool isOver() const { return m_over; }

private:
    void run(sqlite3 *database, std::chrono::milliseconds limit, const std::stop_token &end)
    {
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any ended;
        const auto never = [] { return false; };
        ended.wait_for(lock, end, limit, never);
        // Repeated: SQLite ignores an interrupt that comes between two statements.
        while (!end.stop_requested()) {
            m_over = true;
            sqlite3_interrupt(database);
            ended.wait_for(lock, end, std::chrono::milliseconds(5), never);
        }
    }

    std::atomic<bool> m_over;
    std::jthread m_watch; ///< last, so that it is joined before the other members are destroyed
};

bool isAboutRows(const QString &line)
{
    static const QRegularExpression rule(u"^(NULL value in|CHECK constraint failed in|NUMERIC value in|TEXT value in|"
                                         "non-\\w+ value in|non-unique entry in) "_s);
    return rule.match(line).hasMatch();
}

} // namespace

QuickCheck quickCheck(sqlite3 *database, std::chrono::milliseconds limit)
{
    const Deadline deadline(database, limit);
    SqliteStatement query(database, u"PRAGMA quick_check"_s);
    while (query.next()) {
        const QString line = query.text(0);
        // An interrupted check reports the pages that it has not reached as unused.
        if (deadline.isOver())
            return {QuickCheck::Result::Unfinished, {}};
        if (line != u"ok"_s && !isAboutRows(line))
            return {QuickCheck::Result::Damaged, {SQLITE_CORRUPT, line.simplified()}};
    }
    if (!query.error())
        return {};
    if (query.error()->code == SQLITE_INTERRUPT)
        return {QuickCheck::Result::Unfinished, {}};
    return {QuickCheck::Result::Failed, *query.error()};
}

} // namespace harrowby::app
