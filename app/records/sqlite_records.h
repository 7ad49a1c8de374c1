// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

struct sqlite3;

namespace harrowby::app {

/// Records in the store file, over the very handle that the till or the office works with: the guard of the file, its
/// waits for a lock and its loss hold for them, too.
class SqliteRecords : public Records
{
public:
    /// The database must outlive it.
    explicit SqliteRecords(sqlite3 *database) : m_database(database) {}

protected:
    Answer<bool> hasTable(const RecordTable &table) override;
    std::optional<DbFailure> keepRows(const RecordTable &table) override;
    Answer<QList<RecordRow>> select(const RecordStatement &statement) override;
    Answer<bool> selectEach(const RecordStatement &statement, const RowTaker &take) override;
    Answer<std::int64_t> change(const RecordStatement &statement) override;
    Answer<std::int64_t> changeEach(const QString &text, const QList<QList<RecordValue>> &rows) override;
    std::optional<DbFailure> begin(const RecordTable &table, const QString &name) override;
    std::optional<DbFailure> commit() override;
    void rollBack() override;

private:
    std::optional<DbFailure> run(const QString &text);

    sqlite3 *m_database;
};

} // namespace harrowby::app
