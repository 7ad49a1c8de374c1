// SPDX-License-Identifier: MIT
#pragma once

#include "basic/quick_sale_page.h"

#include <array>

class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QListWidget;
class QMainWindow;
class QPushButton;
class QStatusBar;
class QWidget;

namespace harrowby {

class ActivityText;
class LevelLabel;
class PickList;
class QuickSaleButton;
class RowList;
class TabStrip;

/// Every control of the window under its given name, and what it is for. Each one's objectName is its name here;
/// element i of an array is "Command1_0". The window owns them all.
struct Controls
{
    /// Creates the controls with their captions, tool tips and accessible names, lays them out in the window and
    /// sets the tab order. Connects nothing that acts on data.
    explicit Controls(QMainWindow &form);

    /// The search result shares its place with the keypad; beside entry fields it lies over the list instead, so that
    /// what it is taken into can be seen.
    void placeSearchResult(bool besideFields) const;

    // Window frame
    TabStrip *TabStrip1;    ///< work areas: Quick Sales, Custom Sales, Add/Edit Stock, Reorder Stock, Settings
    TabStrip *TabStrip2;    ///< side panels: Cart, Sales Activity
    QPushButton *Command8;  ///< search for a stock item; serves two work areas, so it stands beside their tabs
    QStatusBar *StatusBar1; ///< two panels:
    QLabel *StatusBar1_1;   ///< who is logged in
    QLabel *StatusBar1_2;   ///< the last logged outcome
    QPushButton *Command10; ///< "Clo&se Inventory"
    QPushButton *Command19; ///< "Sales &Report"
    QPushButton *Command20; ///< help (picture button)
    QPushButton *Command27; ///< "Log out User"

    // Panels; several share one place, visibility and stacking order decide which is seen
    QFrame *Frame1;  ///< quick-sale buttons
    QFrame *Frame2;  ///< right-hand area: side panels and dashboard
    QFrame *Frame3;  ///< custom sale
    QFrame *Frame4;  ///< side panel: cart
    QFrame *Frame5;  ///< side panel: sales activity
    QFrame *Frame7;  ///< add/edit stock fields
    QFrame *Frame8;  ///< reorder stock
    QFrame *Frame9;  ///< settings
    QFrame *Frame10; ///< existing-stock list
    QFrame *Frame11; ///< search result, over the custom sale and the reorder panel
    QFrame *Frame12; ///< login panel, in front and centred
    QFrame *Frame13; ///< on-screen keypad, in the same place as the search result

    // Login panel (Frame12)
    QLineEdit *Text3;       ///< user name, upper-cased as it is typed
    QLineEdit *Text4;       ///< password, hidden
    QPushButton *Command28; ///< "&Login!"
    QPushButton *Command29; ///< "&Clear"

    // Quick sales (Frame1)
    std::array<QuickSaleButton *, quickSaleButtons> Command1; ///< one item of the page each
    PickList *Combo1;                                         ///< category of the page
    QPushButton *CmdPrev;                                     ///< "Prev" page
    QPushButton *CmdNext;                                     ///< "Next" page

    // Custom sale (Frame3)
    PickList *Combo2;       ///< category
    PickList *Combo3;       ///< item (item keys)
    PickList *Combo4;       ///< quantity
    QLabel *Label14;        ///< "Item:" the chosen item key
    QLabel *Label7;         ///< "Item Unit Cost:"
    QLabel *Label9;         ///< "Total Item Cost:"
    QLabel *Label15;        ///< "Total Available Item(s):" stock on hand
    QPushButton *Command15; ///< "Add Item"
    QPushButton *Command31; ///< opens and closes the keypad (picture button)

    // Search result (Frame11)
    RowList *LV2;           ///< row number, Stock ID, Stock Name, Stock Category
    QPushButton *Command9;  ///< "Close Search Result"
    QPushButton *Command21; ///< "Select ..."

    // Keypad (Frame13)
    std::array<QPushButton *, 12> Command30; ///< digits 0 to 9, 10 "<---", 11 "Close"

    // Add/edit stock fields (Frame7)
    PickList *Combo5;       ///< category
    PickList *Combo6;       ///< stock ID, or "(Auto ID)"
    PickList *Combo7;       ///< item name, upper-cased as it is typed
    PickList *Combo8;       ///< unit cost
    PickList *Combo13;      ///< reorder level
    PickList *Combo14;      ///< available stock
    PickList *Combo15;      ///< "Enabled" or "Disabled"
    QPushButton *Command16; ///< "Add/Edit New Stock": saves the fields
    QPushButton *Command26; ///< empties the fields for a new item

    // Existing-stock list (Frame10)
    RowList *LV;           ///< Stock ID, Stock Name, Category, Unit Cost, R. Level, Avail., Use, Last Updated
    QPushButton *Command5; ///< "Edit Stock"
    QPushButton *Command6; ///< "Delete Stock"
    QPushButton *Command7; ///< reads the list again (picture button)

    // Reorder stock (Frame8)
    PickList *Combo12;      ///< category
    PickList *Combo11;      ///< item (item keys)
    PickList *Combo10;      ///< quantity
    LevelLabel *Label12;    ///< "Current Reorder Level:"
    LevelLabel *Label13;    ///< "Current Available Stock:"
    QPushButton *Command17; ///< "Reorder Stock"
    QPushButton *Command23; ///< "Undo" of the last reorder
    QPushButton *Command24; ///< refreshes the dashboard (picture button)

    // Settings (Frame9)
    QListWidget *List2;     ///< categories
    PickList *Combo16;      ///< name of a category to add, upper-cased as it is typed
    QPushButton *Command2;  ///< adds the category
    QPushButton *Command22; ///< "Change": renames the selected category
    QPushButton *Command3;  ///< "Delete": removes the selected category
    QCheckBox *Check1;      ///< "&Prompt on Load when Item(s) need to be Reordered"
    QCheckBox *Check2;      ///< "Don't List Finished Item(s)"
    QCheckBox *Check3;      ///< "Show Details On Purchase"
    QCheckBox *Check4;      ///< "Email Daily Report"
    QCheckBox *Check5;      ///< "Print Receipt on POS"
    QLineEdit *Text2;       ///< report e-mail address
    PickList *Combo9;       ///< receipt printer
    QPushButton *Command18; ///< "Save Settings"
    PickList *Combo17;      ///< purchase to delete, by its ID
    QPushButton *Command4;  ///< deletes that purchase

    // Cart (Frame4)
    RowList *LV3;           ///< Item, Qty, Cost: the cart itself
    QLabel *Label5;         ///< "Total: …"
    QPushButton *Command12; ///< "Delete": removes the selected line
    QPushButton *Command13; ///< "Clear Cart"
    QPushButton *Command14; ///< "Purchase Cart"
    QPushButton *Command25; ///< "Undo" of the last purchase

    // Sales activity (Frame5)
    ActivityText *Text1;    ///< activity log, newest first
    QPushButton *Command11; ///< "Clear Activity Log"

    // Dashboard (in Frame2). 3 sales today, 4 their amount, 8 units in stock, 9 items to reorder (a link);
    // 0 "Dashboard", 1 "Today's Sales", 2 "Today's Sales Total", 5 "Total Available Item(s):",
    // 6 "Low Reorder Level:", 7 "Click to See Reorder List"
    std::array<QLabel *, 10> Label6;

private:
    void createWindowFrame(QMainWindow &form);
    void createStatusBar(QMainWindow &form);
    void createWorkPanels(QWidget &stage);
    void createQuickSales();
    void createCustomSale();
    void createSearchResult();
    void createKeypad();
    void createStockFields();
    void createStockList();
    void createReorder();
    void createSettings();
    void createChoices(QWidget *page);
    void createCategories(QWidget *page);
    void layOutSettings(QWidget *page) const;
    void createSideArea();
    void createCart();
    void createActivity();
    void createDashboard();
    void createLogin(QMainWindow &form);
    void layOut(QWidget &stage);
    void setTabOrder();
    void nameParts();
    void dress(QMainWindow &form);
};

} // namespace harrowby
