// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/postgres_rows.h"
#include "postgres/server_result.h"

#include <harrowby/db_connection.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace harrowby::postgres {

/// The columns of a result as the component sees them: the rows' identity, where it came with them, is none of them.
class ShownColumns
{
public:
    template <typename Rows>
    explicit ShownColumns(const Rows &rows)
    {
        for (int column = 0; column < rows.columnCount(); ++column)
            add(rows.columnName(column), rows.columnType(column));
        hideIdentity();
    }

    [[nodiscard]] const QStringList &names() const { return m_names; }
    [[nodiscard]] std::uint32_t type(int column) const { return m_types[static_cast<std::size_t>(column)]; }
    /// Where the identity stands; negative when it did not come.
    [[nodiscard]] int identity() const { return m_identity; }

private:
    void add(const QByteArray &name, std::uint32_t type);
    void hideIdentity();

    QStringList m_names;
    std::vector<std::uint32_t> m_types;
    int m_identity = -1;
};

/// A result that is in the client's memory: whole, or only its first rows.
class HeldRowsCursor final : public DbCursor
{
public:
    /// `more` fetches the whole result, or reports why it cannot and gives null.
    using More = std::function<std::shared_ptr<const PgResult>()>;
    /// Told how many rows have been read when the cursor goes.
    using Farewell = std::function<void(std::int64_t read)>;

    explicit HeldRowsCursor(std::shared_ptr<const PgResult> rows, Farewell farewell = {});
    /// The result has `count` rows, of which only the first ones are here.
    HeldRowsCursor(std::shared_ptr<const PgResult> rows, std::int64_t count, More more);
    ~HeldRowsCursor() override;

    [[nodiscard]] QStringList columnNames() const override { return m_columns.names(); }
    [[nodiscard]] Step next() override;
    [[nodiscard]] DbValue value(int column) const override;
    [[nodiscard]] std::optional<QByteArrayView> text(int column) const override;
    [[nodiscard]] std::optional<DbRowId> rowId() const override;
    [[nodiscard]] std::optional<std::int64_t> rowCount() const override { return m_count; }
    [[nodiscard]] bool standsApart() const noexcept override { return !m_more; }

private:
    [[nodiscard]] bool fetchMore();

    std::shared_ptr<const PgResult> m_rows;
    ShownColumns m_columns;
    std::int64_t m_count;
    More m_more;
    Farewell m_farewell;
    int m_row = -1;
    bool m_hasFailed = false;
};

/// A result of which only the number of rows is here. They are fetched when they are asked for, as they are then.
class CountCursor final : public DbCursor
{
public:
    /// Fetches the result, or reports why it cannot and gives null.
    using Rows = std::function<std::unique_ptr<DbCursor>()>;

    CountCursor(std::int64_t count, Rows rows);

    [[nodiscard]] QStringList columnNames() const override;
    [[nodiscard]] Step next() override;
    [[nodiscard]] DbValue value(int column) const override { return m_cursor->value(column); }
    [[nodiscard]] std::optional<QByteArrayView> text(int column) const override { return m_cursor->text(column); }
    [[nodiscard]] std::optional<DbRowId> rowId() const override { return m_cursor->rowId(); }
    [[nodiscard]] std::optional<std::int64_t> rowCount() const override { return m_count; }

private:
    [[nodiscard]] DbCursor *fetched() const;

    std::int64_t m_count;
    mutable Rows m_rows; ///< until they are fetched
    mutable std::unique_ptr<DbCursor> m_cursor;
};

/// A result that comes row by row over a session of its own.
class WalkCursor final : public DbCursor
{
public:
    using Report = std::function<void(const PgError &error)>;

    /// `lease` is let go when there is nothing more to fetch; it holds the session that the rows come from.
    WalkCursor(std::shared_ptr<void> lease, PgRows rows, std::optional<std::int64_t> count, Report report);

    [[nodiscard]] QStringList columnNames() const override { return m_columns.names(); }
    [[nodiscard]] Step next() override;
    [[nodiscard]] DbValue value(int column) const override;
    [[nodiscard]] std::optional<QByteArrayView> text(int column) const override;
    [[nodiscard]] std::optional<DbRowId> rowId() const override;
    [[nodiscard]] std::optional<std::int64_t> rowCount() const override { return m_count; }
    [[nodiscard]] bool standsApart() const noexcept override { return true; }

private:
    std::shared_ptr<void> m_lease; ///< outlives the rows
    std::optional<PgRows> m_rows;  ///< until its end
    ShownColumns m_columns;
    std::optional<std::int64_t> m_count;
    Report m_report;
    Step m_last = Step::Row;
};

} // namespace harrowby::postgres
