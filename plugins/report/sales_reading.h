// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/report/day_slices.h"
#include "plugins/report/sales.h"

#include <harrowby/db_connection.h>

#include <chrono>
#include <memory>

namespace harrowby::report {

/// Reads purchases bit by bit, so that whoever shows them can do something else in between, or drop the reading at any
/// time. Never throws.
class SalesReading
{
public:
    enum class State {
        Reading,
        Done,
        Failed, ///< a statement failed; its connection has reported why
    };

    SalesReading(std::shared_ptr<DbConnection> connection, SalesQuery query);

    /// Goes on for about this long, at least one small step.
    State step(std::chrono::milliseconds budget) noexcept;
    /// 0 to 1.
    [[nodiscard]] double progress() const;
    [[nodiscard]] const Sales &sales() const { return m_sales; }
    [[nodiscard]] const SalesQuery &query() const { return m_query; }

private:
    void advance();
    void finish();
    void openSlice();
    void openItems();
    void open(const QString &select);
    void readRows();
    void readRow();
    [[nodiscard]] int probe(const Period &days, int most);

    std::shared_ptr<DbConnection> m_connection;
    SalesQuery m_query;
    Sales m_sales;
    DaySlices m_slices;
    std::unique_ptr<DbCursor> m_cursor;
    State m_state = State::Reading;
    bool m_readingItems = false;
    qint64 m_itemRows = 0;
};

} // namespace harrowby::report
