// SPDX-License-Identifier: MIT
#pragma once

#include <array>

namespace harrowby::Dashboard {

// Elements of Label6.
inline constexpr int Heading = 0;
inline constexpr int SalesCountCaption = 1;
inline constexpr int SalesAmountCaption = 2;
inline constexpr int SalesCount = 3;
inline constexpr int SalesAmount = 4;
inline constexpr int StockTotalCaption = 5;
inline constexpr int ReorderCountCaption = 6;
inline constexpr int ReorderHint = 7;
inline constexpr int StockTotal = 8;
inline constexpr int ReorderCount = 9; ///< a link

inline constexpr std::array figures{SalesCount, SalesAmount, StockTotal, ReorderCount};

} // namespace harrowby::Dashboard
