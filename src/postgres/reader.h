// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/dialect.h"
#include "postgres/held_read.h"
#include "postgres/postgres_walks.h"
#include "postgres/reading_habits.h"
#include "postgres/server_access.h"

#include <harrowby/db_connection.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace harrowby::postgres {

/// Runs SELECTs, in whichever way is cheapest for how their rows are read. What fails is reported once.
class Reader
{
public:
    using Report = std::function<void(const QString &select, const PgError &error)>;

    /// `findsAnywhere` is asked at each search; see PostgresOptions.
    Reader(ServerAccess &access, Report report, std::function<bool()> findsAnywhere);

    [[nodiscard]] std::unique_ptr<DbCursor> whole(const QString &select);
    [[nodiscard]] std::unique_ptr<DbCursor> first(const QString &select);
    [[nodiscard]] std::unique_ptr<DbCursor> walk(const QString &select, bool isCounted);
    [[nodiscard]] std::unique_ptr<DbCursor> counted(const QString &select);
    /// Begins the held read's transaction and gives it its rows. It ends here when the SELECT fails.
    [[nodiscard]] std::unique_ptr<DbCursor> held(HeldRead &held);

    [[nodiscard]] std::optional<std::int64_t> count(const QString &select);
    [[nodiscard]] std::optional<std::vector<DbRowId>> rowIds(const QString &select);
    /// The SELECT that counts, for HeldRead; empty when it is refused.
    [[nodiscard]] QString counting(const QString &select) const;

private:
    using Rows = std::shared_ptr<const PgResult>;

    [[nodiscard]] Search searchOf(const QString &select) const;
    [[nodiscard]] std::optional<QString> serverText(const QString &select, Search search);
    [[nodiscard]] std::optional<PgResults> run(const QString &select, const QByteArray &statements);
    [[nodiscard]] Rows rows(const QString &select);
    [[nodiscard]] Rows rowsOf(const QString &select, const QString &text);
    [[nodiscard]] std::unique_ptr<DbCursor> firstAndCount(const QString &select, const QString &text, Search search);
    [[nodiscard]] std::shared_ptr<PgSession> sessionToWalk();
    [[nodiscard]] std::unique_ptr<DbCursor> shortList(const QString &select, const QString &text);
    [[nodiscard]] std::unique_ptr<DbCursor> walkElsewhere(const QString &select, const PgError &error);
    void refuse(const QString &select, const QString &reason);

    ServerAccess &m_access;
    Report m_report;
    std::function<bool()> m_findsAnywhere;
    ReadingHabits m_habits;
    WalkSessions m_walks;
    QString m_latestFirst; ///< the SELECT of which the first rows were read last
};

} // namespace harrowby::postgres
