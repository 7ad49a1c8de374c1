// SPDX-License-Identifier: MIT
#pragma once

#include <array>

/// The tabs by their numbers, which count from 1 as TabStrip does.
namespace harrowby {

/// Tabs of TabStrip1.
namespace WorkArea {
inline constexpr int QuickSales = 1;
inline constexpr int CustomSales = 2;
inline constexpr int EditStock = 3;
inline constexpr int ReorderStock = 4;
inline constexpr int Settings = 5;
inline constexpr std::array all{QuickSales, CustomSales, EditStock, ReorderStock, Settings};
} // namespace WorkArea

/// Tabs of TabStrip2.
namespace SidePanel {
inline constexpr int Cart = 1;
inline constexpr int SalesActivity = 2;
inline constexpr std::array all{Cart, SalesActivity};
} // namespace SidePanel

} // namespace harrowby
