// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

#include <cstdint>

/// The newest import of items, for those who go on with what it has brought.
namespace harrowby::app {

/// Of those that were carried out and not taken back, and whose rows are still kept; 0 when there is none.
[[nodiscard]] Records::Answer<std::int64_t> lastImport(Records &records);

/// A SELECT of the IDs of the items that an import has added or changed; its number is the one value.
[[nodiscard]] QString importedIds();

} // namespace harrowby::app
