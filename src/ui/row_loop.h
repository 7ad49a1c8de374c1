// SPDX-License-Identifier: MIT
#pragma once

#include "basic/values.h"
#include "store/recordset.h"

#include <QByteArray>
#include <QString>
#include <QUtf8StringView>

#include <array>
#include <optional>
#include <type_traits>
#include <utility>

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

/// The texts of one caption or one entry of a list, from columns of the current row.
///
/// The rule for a result that lacks a needed column: what is made from that column is skipped for the row. A caption
/// keeps its text, and a list gets no entry. fieldText() is the same for a single column.
template <std::size_t N>
class NeededTexts
{
public:
    /// `rows` must outlive it.
    template <typename... Columns>
    explicit NeededTexts(DbRecordset &rows, Columns &&...columns) :
        m_rows(rows), m_columns{QString(std::forward<Columns>(columns))...}
    {
        static_assert(sizeof...(Columns) == N);
    }

    /// Reads the current row; false when it lacks one of the columns.
    [[nodiscard]] bool read()
    {
        for (std::size_t i = 0; i < N; ++i) {
            const std::optional<QUtf8StringView> text = m_rows.Field(m_columns[i]).utf8(m_buffers[i]);
            if (!text)
                return false;
            m_texts[i] = *text;
        }
        return true;
    }
    /// In the order of the columns; good until the recordset moves or closes its walk.
    [[nodiscard]] QUtf8StringView operator[](std::size_t column) const { return m_texts[column]; }

private:
    DbRecordset &m_rows;
    std::array<QString, N> m_columns;
    std::array<QByteArray, N> m_buffers;
    std::array<QUtf8StringView, N> m_texts;
};

template <typename... Columns>
NeededTexts(DbRecordset &, Columns &&...) -> NeededTexts<sizeof...(Columns)>;

/// A column's text; empty when it cannot be read, and the step that needs it is skipped.
[[nodiscard]] inline std::optional<QString> fieldText(DbRecordset &rows, const QString &column)
{
    const std::optional<DbValue> value = rows.Field(column).value();
    return value ? std::optional<QString>(valueText(*value)) : std::nullopt;
}

} // namespace harrowby
