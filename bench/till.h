// SPDX-License-Identifier: MIT
#pragma once

#include "bench/doubles.h"
#include "bench/measured_store.h"
#include "ui/inventory.h"

#include <QStringList>

#include <memory>

namespace harrowby::bench {

/// The real window over one store, driven through its controls. Everything but the store is a double.
class Till
{
public:
    /// Loads nothing yet. The store must outlive the till.
    Till(MeasuredStore &store, const QDateTime &now);
    ~Till();
    Till(const Till &) = delete;
    Till &operator=(const Till &) = delete;

    /// Makes this the till that statements go through, where there are several.
    void use();
    /// Loads a window and shows it; ends when it is painted.
    bool open();
    void close();
    /// Paints the whole window, so that whatever is measured next finds the processor's caches in the same state.
    void repaint();
    bool logIn();

    /// Each ends when what changes has been painted; false when that did not happen.
    bool press(int button);
    bool nextPage();
    bool previousPage();
    bool chooseCategory(const QString &category);
    /// The dashboard refreshes when the tab of the custom sale is chosen, be it in front already. Returns the time of
    /// that, without the painting that follows; below 0 when it failed.
    double refreshDashboard();
    /// Commits the cart. Returns the time from the Yes to the painted dashboard; below 0 when it failed.
    double commit();
    /// Commits the cart, whatever of the dashboard changes by it.
    bool sell();

    /// Puts `lines` different items into the cart, from the first page on; ends on the page of the last one.
    bool fillCart(int lines);
    /// The button of the cart's last line, when fillCart() has filled it.
    [[nodiscard]] int lastButton() const;
    bool firstPage();
    void emptyCart();
    [[nodiscard]] int cartLines() const;
    [[nodiscard]] QStringList keysInCart() const;

    /// A new window, logged in: its lists are empty still.
    bool openAfresh();
    /// Chooses the tab of the existing stock, or presses the refresh button there. Ends when the list is painted and
    /// has answered a key press.
    bool loadStockList();
    bool refreshStockList();
    [[nodiscard]] int stockRows() const;
    /// Texts of a row, in the list's columns.
    [[nodiscard]] QStringList stockRow(int row) const;

    /// Chooses an item in the stock list, which puts it into the edit fields, and changes its cost there.
    bool editStock(int row, const QString &cost);
    /// Saves what was entered; ends when the list and the status bar are painted.
    bool saveStock();
    /// Chooses an item in the stock list beside the reorder tab, which puts it there, and enters a number of units.
    bool enterReorder(int row, int units);
    bool reorder();

    bool showQuickSales();
    bool showCustomSales();
    /// Chooses a category of the custom sale, whose tab must be shown; ends when its items are listed.
    bool chooseSaleCategory(const QString &category);

    /// Searches for a text; ends when its items are listed and painted.
    bool search(const QString &text);
    [[nodiscard]] int foundRows() const;

    /// Takes the last purchase back; ends when cart, total and dashboard are painted.
    bool undoPurchase();
    /// Chooses the tab of the settings; ends when the purchases are listed there.
    bool loadPurchaseIds();
    [[nodiscard]] QStringList purchaseIds(int from, int count) const;
    void pickPurchase(const QString &id);
    bool deletePurchase();

    [[nodiscard]] Inventory &window() const { return *m_window; }
    [[nodiscard]] QDateTime now() const { return m_clock->now(); }
    void nextSecond() { m_clock->nextSecond(); }

private:
    std::shared_ptr<YesBoxes> m_boxes;
    std::shared_ptr<SteppedClock> m_clock;
    Platform m_platform;
    std::shared_ptr<DbConnection> m_connection;
    std::unique_ptr<Inventory> m_window;
};

} // namespace harrowby::bench
