// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace harrowby::bench {

/// Resident memory of a process with the loaded, logged-in window over that of a process with an empty one.
/// Throws std::runtime_error when one of the two does not tell.
[[nodiscard]] double residentMegabytesOverEmptyWindow(const QString &shopFile);

/// What such a process does: shows "empty" or "till", and prints its resident kilobytes. Returns its exit code.
int printResident(const QString &window, const QString &shopFile);

} // namespace harrowby::bench
