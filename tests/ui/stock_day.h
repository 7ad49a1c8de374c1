// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/counter.h"
#include "tests/ui/interruption.h"

#include <functional>

namespace harrowby {
class RowList;
class TextTableModel;
} // namespace harrowby

/// A stock of many items, and the list of it while it fills.
namespace harrowby::test {

constexpr int stockItems = 4000;

/// ID-0, ID-1, …; every second one is low.
void addStock(const Counter &counter, int count = stockItems);
/// Adds them, logs in, and chooses a tab (none when it is 0).
void openStock(Counter &counter, int tab = WorkArea::EditStock);

[[nodiscard]] RowList &stockList(const Counter &counter);
[[nodiscard]] TextTableModel &stockRows(const Counter &counter);
/// IDs in the list, and those in the table as the list shows them.
[[nodiscard]] QStringList listedIds(const Counter &counter);
[[nodiscard]] QStringList storedUpperIds(const Counter &counter);
/// How many names the item-name field offers.
[[nodiscard]] int offeredNames(const Counter &counter);
void clickStockRow(const Counter &counter, int row);

/// Does something when the fill that comes next has listed its first row.
class MidFill
{
public:
    MidFill(Counter &counter, std::function<void()> action);
    /// Whether it was done, and in the middle.
    [[nodiscard]] bool isDone() const { return m_rows > 0 && m_rows < stockItems; }

private:
    int m_rows = -1; ///< how many rows the list had then
    Interruption m_interruption;
};

} // namespace harrowby::test
