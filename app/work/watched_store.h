// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/store_records.h"
#include "app/work/work_step.h"
#include "basic/result.h"

#include <QString>

#include <memory>

namespace harrowby::app {

/// A store for one piece of work, over a connection of its own, whose watch is asked in every wait for the store too:
/// while it is opened, and in the middle of a statement. So the work ends within a moment, whatever the server does.
///
/// On a file only what reads is ended in the middle: a write there waits for nothing but the disk.
class WatchedStore
{
public:
    struct NotOpened
    {
        bool wasStopped = false; ///< by the watch
        QString words;           ///< why not, for a person
    };
    [[nodiscard]] static Result<std::unique_ptr<WatchedStore>, NotOpened> open(const QString &store, Access access,
                                                                               const WorkWatch &watch);
    WatchedStore(const WatchedStore &) = delete;
    WatchedStore &operator=(const WatchedStore &) = delete;

    [[nodiscard]] StoreRecords &store() { return *m_store; }
    [[nodiscard]] Records &records() { return m_store->records(); }
    /// For the work: a wait repeats the step that was told to this one last.
    [[nodiscard]] const WorkWatch &watch() const { return m_watch; }
    /// Whether what has failed did so because the watch wanted no more; not where nobody knows whether it was done.
    [[nodiscard]] bool wasStopped() const { return m_hasStopped && !m_isUnknown; }

private:
    explicit WatchedStore(const WorkWatch &watch);
    [[nodiscard]] bool goesOn();

    WorkWatch m_given;
    WorkStep m_step; ///< the latest, empty before the first
    WorkWatch m_watch;
    bool m_hasStopped = false;
    bool m_isUnknown = false;
    std::unique_ptr<StoreRecords> m_store; ///< last: its end may wait, too
};

} // namespace harrowby::app
