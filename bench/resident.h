// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace harrowby::bench {

/// What is open in the process whose memory is measured.
inline constexpr auto emptyWindow = "empty";
inline constexpr auto loggedInTill = "till";
inline constexpr auto tillWithStockList = "stock";

/// Resident memory of a process with such a window over that of a process with an empty one. The shop is a file, or a
/// server in libpq's "key=value" form.
/// Throws std::runtime_error when one of the two does not tell.
[[nodiscard]] double residentMegabytesOverEmptyWindow(const QString &window, const QString &shop);

/// What such a process does: shows its window, and prints its resident kilobytes. Returns its exit code.
int printResident(const QString &window, const QString &shop);

} // namespace harrowby::bench
