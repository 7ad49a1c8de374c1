// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1StringView>

/// Categories that are never stored in InventoryCategory.
namespace harrowby {

/// The text of the category filters that stands for no category condition.
inline constexpr QLatin1StringView allCategories("(ALL CATEGORY)");
/// The catch-all category, which every list offers.
inline constexpr QLatin1StringView otherCategory("OTHER CATEGORY");

} // namespace harrowby
