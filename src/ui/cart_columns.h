// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace harrowby {

/// Columns of the cart list LV3.
namespace CartColumn {
inline constexpr int Item = 0; ///< the item key
inline constexpr int Qty = 1;
inline constexpr int Cost = 2; ///< of the whole line
} // namespace CartColumn

/// Their headings.
[[nodiscard]] inline QStringList cartHeadings()
{
    return {QStringLiteral("Item"), QStringLiteral("Qty"), QStringLiteral("Cost")};
}

} // namespace harrowby
