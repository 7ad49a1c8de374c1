// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/sqlite_records.h"

#include <QStringList>

namespace harrowby::test {

/// Records that print what they write as Till::reportStatements() does; what belongs together is one line, around its
/// commit.
class ReportingRecords final : public app::SqliteRecords
{
public:
    using SqliteRecords::SqliteRecords;

    /// Whether a statement of the window's on the same database is part of the transaction, and reported with it; see
    /// Till::reportStatements().
    bool takesPart(const QString &done);

protected:
    Answer<std::int64_t> change(const app::RecordStatement &statement) override;
    Answer<std::int64_t> changeEach(const QString &text, const QList<QList<app::RecordValue>> &rows) override;
    std::optional<DbFailure> begin(const app::RecordTable &table, const QString &name) override;
    std::optional<DbFailure> commit() override;
    void rollBack() override;

private:
    bool m_isTogether = false;
    QStringList m_texts; ///< of a transaction
};

} // namespace harrowby::test
