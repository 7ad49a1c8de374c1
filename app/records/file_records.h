// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/sqlite_records.h"
#include "app/records/store_records.h"
#include "engine/database.h"

#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace harrowby::app {

/// Records of a store file over a connection of their own. A till's lock is waited for, and a transaction of many rows
/// stays in memory until it is committed.
class FileRecords final : public StoreRecords
{
public:
    /// The file has been judged before. The reason, in words for a person.
    [[nodiscard]] static Result<std::unique_ptr<FileRecords>, QString> open(const QString &store, Access access);

    [[nodiscard]] Records &records() override { return m_records; }
    void interrupt() override;
    void setWatch(std::function<bool()> goesOn) override;
    [[nodiscard]] bool wasInterrupted(const DbFailure &failure) const override;
    [[nodiscard]] std::optional<DbFailure> holdMoment() override;
    void releaseMoment() override;

    [[nodiscard]] sqlite3 *database() const { return m_database.get(); }

private:
    explicit FileRecords(SqliteDatabase database);

    static int onBusy(void *self, int attempt) noexcept;
    static int onProgress(void *self) noexcept;
    [[nodiscard]] bool goesOn() const noexcept;

    SqliteDatabase m_database;
    SqliteRecords m_records;
    std::function<bool()> m_watch;
    std::atomic<bool> m_isInterrupted = false; ///< in a wait for a lock
    bool m_hasLeftWait = false;                ///< the latest one was not waited out
};

} // namespace harrowby::app
