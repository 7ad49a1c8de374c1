// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1StringView>

namespace harrowby {

/// The user of this name has every right, whatever the flags of its row say, and sees everybody's sales. It is the name
/// that counts, not the user's type.
inline constexpr QLatin1StringView administratorName("ADMINISTRATOR");

} // namespace harrowby
