// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby {

/// Tabs of TabStrip1.
namespace WorkArea {
enum { QuickSales = 1, CustomSales, EditStock, ReorderStock, Settings };
} // namespace WorkArea

/// Tabs of TabStrip2.
namespace SidePanel {
enum { Cart = 1, SalesActivity };
} // namespace SidePanel

} // namespace harrowby
