// SPDX-License-Identifier: MIT
#pragma once

#include "ui/inventory.h"

namespace harrowby {

/// Calls private members of the window: its shared procedures, with arguments that no control passes.
struct InventoryProbe
{
    Inventory &window;

    void addToCart(const QString &key, std::int16_t quantity, bool addToExisting) const
    {
        window.FindandUpdateCart(key, quantity, addToExisting);
    }
    [[nodiscard]] bool stockAvailable(const QString &key, std::int16_t quantity) const
    {
        return window.StockAvailable(key, quantity);
    }
    void undoPurchase(const QString &id, bool merge) const { window.UndoPurchase(id, merge); }
    void logActivity(const QString &message, int buttons, bool plainBox, bool quiet) const
    {
        window.LogActivity(message, buttons, plainBox, quiet);
    }
    void loadStockItem(PickList &list, const QString &category) const { window.LoadStockItem(list, category); }
    void loadStock(bool keepRows) const { window.LoadStock(keepRows); }
    void putStock(const ListedStock &stock, const QString &editedId) const
    {
        window.FindandUpdateStock(stock, editedId);
    }
    [[nodiscard]] int findStockRow(const QString &id) const { return window.FindStockRow(id); }
};

} // namespace harrowby
