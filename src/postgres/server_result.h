// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <cstdint>
#include <memory>
#include <vector>

struct pg_result;

namespace harrowby {

/// What one statement has given: its rows, or how many it has changed.
class PgResult
{
public:
    PgResult() = default;
    explicit PgResult(pg_result *result) : m_result(result) {}

    [[nodiscard]] pg_result *raw() const { return m_result.get(); }
    [[nodiscard]] pg_result *release() { return m_result.release(); }

    [[nodiscard]] int rowCount() const;
    [[nodiscard]] int columnCount() const;
    [[nodiscard]] QByteArray columnName(int column) const;
    /// The server's number of the type: 701 float8, 25 text, 20 int8 …
    [[nodiscard]] std::uint32_t columnType(int column) const;
    [[nodiscard]] bool isNull(int row, int column) const;
    /// As the server writes it; empty for null. Good as long as this object.
    [[nodiscard]] QByteArrayView text(int row, int column) const;
    [[nodiscard]] bool isTrue(int row, int column) const { return text(row, column) == "t"; }
    /// Rows that were changed, or selected.
    [[nodiscard]] std::int64_t affectedRows() const;

private:
    struct Clear
    {
        void operator()(pg_result *result) const noexcept;
    };
    std::unique_ptr<pg_result, Clear> m_result;
};

/// Of several statements that were sent together, in their order.
using PgResults = std::vector<PgResult>;

} // namespace harrowby
