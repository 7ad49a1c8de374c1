// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

#include <cstddef>

namespace harrowby {

/// Hash of a text without regard to case: equal for two texts that QStringView::compare() calls equal
/// case-insensitively.
[[nodiscard]] std::size_t caseFoldedHash(QStringView text);

} // namespace harrowby
