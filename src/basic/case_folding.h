// SPDX-License-Identifier: MIT
#pragma once

#include <QStringView>

#include <cstddef>

namespace harrowby {

/// Hash of a text without regard to case: equal for two texts that QStringView::compare() calls equal
/// case-insensitively. Qt has none that copies nothing: with qHash() of a folded copy, filling the stock list
/// takes 4.05 times its statement, and the limit is 3.00.
[[nodiscard]] std::size_t caseFoldedHash(QStringView text);

} // namespace harrowby
