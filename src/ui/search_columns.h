// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace harrowby {

/// Columns of the search result LV2.
namespace ResultColumn {
inline constexpr int Number = 0; ///< of the row, "1."
inline constexpr int Id = 1;
inline constexpr int Name = 2;
inline constexpr int Category = 3;
} // namespace ResultColumn

/// Their headings.
[[nodiscard]] inline QStringList searchHeadings()
{
    return {QString(), QStringLiteral("Stock ID"), QStringLiteral("Stock Name"), QStringLiteral("Stock Category")};
}

} // namespace harrowby
