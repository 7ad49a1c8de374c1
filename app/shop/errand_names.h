// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1StringView>

#include <array>

namespace harrowby::app {

/// The option that opens the store's office.
inline constexpr QLatin1StringView officeOption("--office");

} // namespace harrowby::app

/// The options by which the store program does something without a window. What else each takes:
/// app/start/errand_line.cpp.
namespace harrowby::app::errand {

inline constexpr QLatin1StringView backup("--backup");
inline constexpr QLatin1StringView copyStore("--copy-store");
inline constexpr QLatin1StringView exportList("--export");
inline constexpr QLatin1StringView importList("--import");
inline constexpr QLatin1StringView restore("--restore");

inline constexpr std::array all = {backup, copyStore, exportList, importList, restore};

} // namespace harrowby::app::errand
