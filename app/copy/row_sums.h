// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

#include <QHash>
#include <QString>

#include <array>
#include <cstdint>

namespace harrowby::app {

/// What rows come to, in whatever order they come: two sets of rows with the same sum are the same.
class RowSum
{
public:
    void add(const RecordRow &row);
    [[nodiscard]] std::int64_t rows() const { return m_rows; }

    friend bool operator==(const RowSum &, const RowSum &) = default;

private:
    std::int64_t m_rows = 0;
    std::array<std::uint64_t, 4> m_sum{}; ///< of the rows' hashes, by parts
};

/// By table.
using RowSums = QHash<QString, RowSum>;

} // namespace harrowby::app
