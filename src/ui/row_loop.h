// SPDX-License-Identifier: MIT
#pragma once

#include "basic/values.h"
#include "store/recordset.h"

#include <optional>
#include <type_traits>

namespace harrowby {

/// Runs `row` for each row of an opened recordset, until it returns false if it returns anything. Bounded by the count
/// read before the loop, as other handlers may change the table while one of the rows lets the window breathe.
template <typename Row>
void forEachRow(DbRecordset &rows, Row &&row)
{
    const std::int32_t count = rows.RecordCount();
    for (std::int32_t i = 1; i <= count && !rows.IsEof(); ++i) {
        if constexpr (std::is_same_v<std::invoke_result_t<Row>, bool>) {
            if (!row())
                return;
        } else {
            row();
        }
        rows.MoveNext();
    }
}

/// A column's text; empty when it cannot be read, and the step that needs it is skipped.
[[nodiscard]] inline std::optional<QString> fieldText(DbRecordset &rows, const QString &column)
{
    const std::optional<DbValue> value = rows.Field(column).value();
    return value ? std::optional<QString>(valueText(*value)) : std::nullopt;
}

} // namespace harrowby
