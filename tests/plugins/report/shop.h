// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/sqlite_connection.h>

#include <QDate>
#include <QStringList>

#include <functional>
#include <memory>

struct sqlite3;

namespace harrowby::report::test {

/// Passes everything on, notes the statements, and fails or throws where a test wants it.
class WatchedConnection final : public DbConnection
{
public:
    explicit WatchedConnection(sqlite3 *database) : m_below(database) {}

    QStringList statements;
    std::function<bool(const QString &statement)> fails; ///< may throw

    bool Execute(const QString &statement) override { return m_below.Execute(statement); }
    std::unique_ptr<DbCursor> query(const QString &select) override;
    std::optional<std::int64_t> countRows(const QString &select) override { return m_below.countRows(select); }
    std::optional<std::vector<DbRowId>> rowIds(const QString &select) override { return m_below.rowIds(select); }
    bool insertRow(const QString &, const DbAssignments &) override { return false; }
    bool updateRow(const QString &, DbRowId, const DbAssignments &) override { return false; }
    [[nodiscard]] QString location() const override { return {}; }

private:
    SqliteConnection m_below;
};

/// A shop in memory, with the tables and indexes of a store's file.
class Shop
{
public:
    Shop();
    ~Shop();
    Shop(const Shop &) = delete;
    Shop &operator=(const Shop &) = delete;

    /// Runs statements; false when one fails.
    bool run(const QString &statements) const;
    /// One purchase; `date` as it is stored.
    void sell(const QString &date, const QString &user, double cost, const QString &items = {}) const;
    /// That many purchases from the first day on, `perDay` on each, of 1.50 each, one line each of 50 items, by the
    /// sellers S0 to S4.
    void sellMany(int count, int perDay, const QDate &firstDay) const;

    [[nodiscard]] sqlite3 *handle() const { return m_database; }
    [[nodiscard]] const std::shared_ptr<WatchedConnection> &connection() const { return m_connection; }

private:
    sqlite3 *m_database = nullptr;
    std::shared_ptr<WatchedConnection> m_connection;
};

} // namespace harrowby::report::test
