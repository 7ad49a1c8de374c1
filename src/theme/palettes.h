// SPDX-License-Identifier: MIT
#pragma once

#include <QPalette>

namespace harrowby {

/// What an application wears that does not follow its desktop.
[[nodiscard]] QPalette lightPalette();
[[nodiscard]] QPalette darkPalette();

} // namespace harrowby
