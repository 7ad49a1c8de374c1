// SPDX-License-Identifier: MIT
#pragma once

#include "platform/breather.h"
#include "platform/platform.h"
#include "ui/controls.h"
#include "ui/form_state.h"
#include "ui/handler_fence.h"
#include "ui/reentry.h"
#include "ui/stock_columns.h"

#include <QMainWindow>

#include <cstdint>
#include <memory>

namespace harrowby {

class DbConnection;
class DbRecordset;
struct Gate;
struct StockItem;

/// The component's one window, "Sales Inventory". Its members are the handlers of its controls and the procedures that
/// these share, in one source file per subject; what needs neither a box nor the form-level state is a function beside
/// them. connections.cpp says which control calls which handler, gates.h who may.
///
/// Any handler can be entered while another one's loop lets the window breathe, and the window can be closed in the
/// middle of one. A closed window is destroyed once its last handler has returned.
class Inventory : public QMainWindow
{
    Q_OBJECT

public:
    explicit Inventory(const Platform &platform, QWidget *parent = nullptr);
    ~Inventory() override;

    /// The instance that LoadInventory shows: the open one, or a new one that has been loaded.
    static Inventory *defaultInstance();

    /// Fills the window from the database and the saved settings, and ends with nobody logged in. Once, before it is
    /// shown.
    void load();
    /// Shows the window modeless, in front, and not minimized; maximized where the screen leaves no room around it.
    void present();

    [[nodiscard]] const Controls &controls() const { return m_controls; }
    [[nodiscard]] const FormState &state() const { return m_state; }

    /// Setter of the flag behind "Prompt on Load when Item(s) need to be Reordered".
    void UpdatePromptReorder(const std::int16_t &flag);

protected:
    void closeEvent(QCloseEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    /// Tests call shared procedures through it that no control reaches with such arguments.
    friend struct InventoryProbe;
    /// Presses for a host what a person could press (counter/counter_desk.cpp).
    friend class CounterDesk;

    // connections.cpp
    class Connections;
    void connectControls();

    // inventory.cpp: life of the window
    void loadForm();
    void readSettings();
    void readAgain();
    bool confirmClose();
    void showHelp();

    // What every handler leans on
    [[nodiscard]] std::shared_ptr<DbConnection> connection() const;
    Answer ask(const QString &text, int style);
    QString askForText(const QString &prompt, const QString &title, const QString &initial);
    void warn(const QString &text);

    // gates.cpp
    bool passes(const Gate &gate);

    // login.cpp
    bool RequireLogin();
    void logIn();
    void refuseLogin(const QString &name, const QString &reason);
    void enter(const QString &name);
    void logOut();
    bool settleCartBeforeLogout();

    // activity_log.cpp
    void LogActivity(const QString &message, int buttons, bool plainBox, bool quiet);
    void clearActivityLog();

    // tabs.cpp
    void chooseWorkArea();
    void chooseSidePanel();

    // stock/categories.cpp
    void LoadCategory();
    void LoadCategories();
    void addCategory();
    void renameCategory();
    void deleteCategory();

    // stock/stock_list.cpp
    void LoadStock(bool keepRows);
    void FindandUpdateStock(const ListedStock &stock, const QString &editedId);
    [[nodiscard]] int FindStockRow(const QString &id) const;
    void refreshStock();
    void chooseStockRow();
    void deleteStock();

    // stock/stock_entry.cpp
    void editSelectedStock();
    void EditStock();
    void saveStock();
    void storeStock(const StockItem &item, bool automaticId);

    // stock/reorder.cpp
    void reorderCategoryChosen();
    void showReorderItem();
    void reorderStock();
    void undoReorder();

    // sales/cart.cpp
    void FindandUpdateCart(const QString &itemKey, std::int16_t qty, bool addToExisting);
    [[nodiscard]] int FindCartLine(const QString &itemKey) const;
    float FindCost(const QString &itemKey);
    void UpdateCart();
    void deleteCartLine();
    void clearCart();
    void changeLinePrice();

    // sales/availability.cpp
    bool StockAvailable(const QString &itemKey, std::int16_t qty);

    // sales/quick_sales.cpp
    void LoadQuickSales(bool movedForward);
    void nextQuickSales();
    void previousQuickSales();
    void quickSaleCategoryChanged();
    void sellQuickly(int button);
    /// As a press on the item's button, with more units perhaps. False when the stock does not allow it.
    bool sellItem(const QString &key, std::int16_t units);

    // sales/custom_sale.cpp
    void LoadStockItem(PickList &list, const QString &category);
    void customSaleCategoryChosen();
    void customSaleItemChosen();
    void addCustomItem();

    // sales/search.cpp
    void searchStock();
    void SearchLoad(const QString &text);
    void selectSearchResult();

    // sales/purchase.cpp
    void purchaseCart();
    /// False when the question was answered "No".
    bool CheckoutCart(bool skipConfirm);
    void SaveCart();

    // sales/purchase_undo.cpp
    /// `isDeletion` says which of the two a host is told.
    void UndoPurchase(const QString &purchaseId, bool mergeIntoCart, bool isDeletion = false);
    void undoLastPurchase();
    void deletePurchase();
    void LoadPurchaseIDs();

    // sales/receipt.cpp
    void PRINTS(const QString &text, bool newReceipt);
    std::shared_ptr<Printer> UsePrinter();
    bool LoadPrinter();

    // dashboard/dashboard.cpp
    void RefreshDashboard();
    void openReorderList(int element);

    // dashboard/sales_report.cpp
    void openSalesReport();
    bool callSalesReport();

    // settings/settings.cpp
    void saveSettings();

    /// What an entered handler may find begun and not ended by an earlier one.
    struct UnderWay
    {
        LatestLoad pageLoads; ///< of quick sales
        LatestLoad categoryLoads;
        OneAtATime loading;
        OneAtATime purchaseUndo; ///< a second one meanwhile would give the same stock back twice
        OneAtATime closeQuestion;
        OpenBoxes boxes;
    };

    Platform m_platform;
    Controls m_controls;
    FormState m_state;
    Breather m_breather;
    HandlerFence m_fence;
    UnderWay m_underWay;
};

} // namespace harrowby
