// SPDX-License-Identifier: MIT
#include "basic/reorder_level.h"

#include "basic/values.h"

#include <variant>

namespace harrowby {

namespace {

bool isMissing(const DbValue &value)
{
    return std::holds_alternative<std::monostate>(value);
}

} // namespace

bool needsReorder(const DbValue &reorderLevel, const DbValue &available)
{
    return !isMissing(reorderLevel) && !isMissing(available) && valueNumber(reorderLevel) >= valueNumber(available);
}

} // namespace harrowby
