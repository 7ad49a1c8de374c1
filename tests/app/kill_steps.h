// SPDX-License-Identifier: MIT
#pragma once

#include <sqlite3.h>

#include <csignal>
#include <functional>

namespace harrowby::test {

/// Everything that happens to a file: each row that is written, each commit and the moment after it, and what else a
/// test calls a step. The process is killed at one of them.
struct KillSteps
{
    int left;                             ///< before the one at which the process is killed
    std::function<void()> before = [] {}; ///< called at each

    void step()
    {
        before();
        if (left-- == 0)
            ::raise(SIGKILL);
    }
    void watch(sqlite3 *database)
    {
        sqlite3_update_hook(
            database,
            [](void *steps, int, const char *, const char *, sqlite3_int64) {
                static_cast<KillSteps *>(steps)->step();
            },
            this);
        sqlite3_commit_hook(
            database,
            [](void *steps) {
                static_cast<KillSteps *>(steps)->step();
                return 0;
            },
            this);
        sqlite3_wal_hook(
            database,
            [](void *steps, sqlite3 *, const char *, int) {
                static_cast<KillSteps *>(steps)->step();
                return SQLITE_OK;
            },
            this);
    }
};

} // namespace harrowby::test
