// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/sqlite_records.h"
#include "engine/database.h"

#include <QString>

#include <memory>

namespace harrowby::app {

/// Records of a store over a connection of their own, for work that is not done on the user-interface thread: a till's
/// lock is waited for, and a transaction of many rows stays in memory until it is committed.
class OwnRecords
{
public:
    /// The store has been judged and opened before. The reason, in words for a person.
    [[nodiscard]] static Result<std::unique_ptr<OwnRecords>, QString> open(const QString &store);

    [[nodiscard]] Records &records() { return m_records; }
    [[nodiscard]] sqlite3 *database() const { return m_database.get(); }

private:
    explicit OwnRecords(SqliteDatabase database) : m_database(std::move(database)), m_records(m_database.get()) {}

    SqliteDatabase m_database;
    SqliteRecords m_records;
};

} // namespace harrowby::app
