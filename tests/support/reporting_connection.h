// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <functional>
#include <memory>
#include <utility>

namespace harrowby::test {

/// Passes everything on to another connection, and tells of each statement that writes, as a text that can be run
/// again, before it is begun and after it is done. One that is held is done when it is settled.
class ReportingConnection final : public DbConnection
{
public:
    explicit ReportingConnection(std::shared_ptr<DbConnection> below) : m_below(std::move(below)) {}

    std::function<void(const QString &statement)> before = [](const QString &) {};
    std::function<void(const QString &statement, bool done)> after = [](const QString &, bool) {};

    bool Execute(const QString &statement) override;
    [[nodiscard]] std::unique_ptr<DbCursor> query(const QString &select) override;
    [[nodiscard]] std::optional<std::int64_t> countRows(const QString &select) override;
    [[nodiscard]] std::optional<std::vector<DbRowId>> rowIds(const QString &select) override;
    bool insertRow(const QString &table, const DbAssignments &values) override;
    bool updateRow(const QString &table, DbRowId row, const DbAssignments &values) override;
    [[nodiscard]] QString location() const override { return m_below->location(); }
    bool hold() override;
    bool settle(const QString &write) override;

private:
    void written(const QString &statement, bool done);

    bool m_holds = false;
    QString m_held;
    std::shared_ptr<DbConnection> m_below;
};

} // namespace harrowby::test
