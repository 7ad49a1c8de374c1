// SPDX-License-Identifier: MIT
#pragma once

#include "tables/table.h"

#include <harrowby/db_connection.h>

#include <chrono>
#include <memory>
#include <vector>

namespace harrowby::app {

/// Reads the items that need to be reordered bit by bit, so that a window answers meanwhile. Never throws.
class LowStockReading
{
public:
    enum class State {
        Reading,
        Done,
        Failed, ///< the statement failed; its connection has reported why
    };

    explicit LowStockReading(std::shared_ptr<DbConnection> connection);

    /// Goes on for about this long, at least one small step.
    State step(std::chrono::milliseconds budget) noexcept;
    /// What has been read.
    [[nodiscard]] const tables::Table &table() const { return m_table; }

private:
    void open();
    void readRow();
    [[nodiscard]] DbValue value(int field) const;

    std::shared_ptr<DbConnection> m_connection;
    std::unique_ptr<DbCursor> m_cursor;
    std::vector<int> m_columns; ///< of the fields, in their order; below 0 for one that the table lacks
    tables::Table m_table;
    State m_state = State::Reading;
};

} // namespace harrowby::app
