// SPDX-License-Identifier: MIT
// Which control calls which handler.
#include "ui/dashboard_elements.h"
#include "ui/focus_order.h"
#include "ui/gates.h"
#include "ui/inventory.h"
#include "ui/keypad.h"
#include "ui/sales/custom_sale.h"
#include "ui/stock/stock_fields.h"
#include "ui/widgets/enter_presses.h"
#include "ui/widgets/link_label.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/upper_case_typing.h"

#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <functional>
#include <type_traits>

namespace harrowby {

/// Connects a panel's controls each. All that a control calls goes through the fence, but for Enter in the user name.
class Inventory::Connections
{
public:
    explicit Connections(Inventory &window) : m_window(&window), m_controls(window.m_controls) {}

    void connectWindow() const;
    void connectKeys() const;
    void connectLogin() const;
    void connectQuickSales() const;
    void connectCustomSale() const;
    void connectSearch() const;
    void connectCart() const;
    void connectStock() const;
    void connectReorder() const;
    void connectSettings() const;

private:
    /// Calls a member of the window, or a function over its controls, with `bound` alone: none of the signal's
    /// arguments go with it.
    template <typename Sender, typename Signal, typename Handler, typename... Bound>
    void handle(Sender *sender, Signal signal, Handler handler, Bound... bound) const
    {
        QObject::connect(sender, signal, m_window, [window = m_window, handler, bound...] {
            window->m_fence.run([&] { call(*window, handler, bound...); });
        });
    }
    /// The same, called only when the gate lets the action pass.
    template <typename Sender, typename Signal, typename Handler, typename... Bound>
    void handleGated(Sender *sender, Signal signal, const Gate &gate, Handler handler, Bound... bound) const
    {
        QObject::connect(sender, signal, m_window, [window = m_window, gate, handler, bound...] {
            window->m_fence.run([&] {
                if (window->passes(gate))
                    call(*window, handler, bound...);
            });
        });
    }
    template <typename Handler, typename... Bound>
    static void call(Inventory &window, Handler handler, Bound... bound)
    {
        if constexpr (std::is_invocable_v<Handler, Inventory &, Bound...>)
            std::invoke(handler, window, bound...);
        else
            std::invoke(handler, window.m_controls, bound...);
    }
    template <typename Handler, typename... Bound>
    void handleClick(QAbstractButton *button, Handler handler, Bound... bound) const
    {
        handle(button, &QAbstractButton::clicked, handler, bound...);
    }
    template <typename Handler, typename... Bound>
    void handleGatedClick(QAbstractButton *button, const Gate &gate, Handler handler, Bound... bound) const
    {
        handleGated(button, &QAbstractButton::clicked, gate, handler, bound...);
    }
    template <typename Handler>
    void handleChangeAndClick(PickList *list, Handler handler) const
    {
        handle(list, &PickList::entryTextChanged, handler);
        // A pick that changed the text has been handled by entryTextChanged() already.
        handle(list, &PickList::pickedAgain, handler);
    }

    Inventory *m_window;
    const Controls &m_controls;
};

void Inventory::connectControls()
{
    const Connections connections(*this);
    connections.connectWindow();
    connections.connectKeys();
    connections.connectLogin();
    connections.connectQuickSales();
    connections.connectCustomSale();
    connections.connectSearch();
    connections.connectCart();
    connections.connectStock();
    connections.connectReorder();
    connections.connectSettings();
}

void Inventory::Connections::connectWindow() const
{
    m_controls.TabStrip1->beforeClick = [window = m_window] {
        bool mayChange = false;
        window->m_fence.run([&] { mayChange = window->RequireLogin(); });
        return mayChange;
    };
    handle(m_controls.TabStrip1, &TabStrip::tabClicked, &Inventory::chooseWorkArea);
    handle(m_controls.TabStrip2, &TabStrip::tabClicked, &Inventory::chooseSidePanel);
    handleClick(m_controls.Command10, &Inventory::close);
    handleClick(m_controls.Command20, &Inventory::showHelp);
    handleGatedClick(m_controls.Command19, gates::salesReport, &Inventory::openSalesReport);
    handleClick(m_controls.Command27, &Inventory::logOut);
    // The only element of the dashboard that can be clicked.
    handle(static_cast<LinkLabel *>(m_controls.Label6.at(Dashboard::ReorderCount)), &LinkLabel::clicked,
           &Inventory::openReorderList, Dashboard::ReorderCount);
}

void Inventory::Connections::connectKeys() const
{
    auto *enter = new EnterPresses(m_window);
    for (QAbstractButton *button : m_window->findChildren<QAbstractButton *>()) {
        if (qobject_cast<QuickSaleButton *>(button) == nullptr)
            button->installEventFilter(enter);
    }
}

void Inventory::Connections::connectLogin() const
{
    new UpperCaseTyping(m_controls.Text3);
    // Only moves the focus: no handler of the window, so it has no fence.
    QObject::connect(m_controls.Text3, &QLineEdit::returnPressed, m_window,
                     [password = m_controls.Text4] { leadTo(*password); });
    handle(m_controls.Text4, &QLineEdit::returnPressed, &Inventory::logIn);
    handleClick(m_controls.Command28, &Inventory::logIn);
    handleClick(m_controls.Command29, [](const Controls &controls) {
        controls.Text3->clear();
        controls.Text4->clear();
    });
}

void Inventory::Connections::connectQuickSales() const
{
    int element = 0;
    for (QuickSaleButton *button : m_controls.Command1)
        handleGatedClick(button, gates::login, &Inventory::sellQuickly, element++);
    handleGatedClick(m_controls.CmdNext, gates::login, &Inventory::nextQuickSales);
    handleClick(m_controls.CmdPrev, &Inventory::previousQuickSales);
    handleChangeAndClick(m_controls.Combo1, &Inventory::quickSaleCategoryChanged);
}

void Inventory::Connections::connectCustomSale() const
{
    handle(m_controls.Combo2, &PickList::picked, &Inventory::customSaleCategoryChosen);
    handle(m_controls.Combo3, &PickList::picked, &Inventory::customSaleItemChosen);
    handleChangeAndClick(m_controls.Combo4, &showCustomSaleTotal);
    handleGatedClick(m_controls.Command15, gates::customItem, &Inventory::addCustomItem);
    int key = 0;
    for (QPushButton *button : m_controls.Command30)
        handleClick(button, &pressKey, key++);
    handleGatedClick(m_controls.Command31, gates::login, &toggleKeypad);
}

void Inventory::Connections::connectSearch() const
{
    handleGatedClick(m_controls.Command8, gates::login, &Inventory::searchStock);
    handleClick(m_controls.Command9, [](const Controls &controls) { controls.Frame11->hide(); });
    handleClick(m_controls.Command21, &Inventory::selectSearchResult);
    handle(m_controls.LV2, &RowList::rowOpened, &Inventory::selectSearchResult);
}

void Inventory::Connections::connectCart() const
{
    handleGated(m_controls.LV3, &RowList::rowOpened, gates::linePrice, &Inventory::changeLinePrice);
    handleGatedClick(m_controls.Command12, gates::login, &Inventory::deleteCartLine);
    handleGatedClick(m_controls.Command13, gates::login, &Inventory::clearCart);
    handleGatedClick(m_controls.Command14, gates::login, &Inventory::purchaseCart);
    handleGatedClick(m_controls.Command25, gates::purchaseUndo, &Inventory::undoLastPurchase);
    handleClick(m_controls.Command11, &Inventory::clearActivityLog);
}

void Inventory::Connections::connectStock() const
{
    new UpperCaseTyping(m_controls.Combo7);
    handle(m_controls.Combo8, &PickList::left, &formatStockCost);
    handleGatedClick(m_controls.Command16, gates::stockEntry, &Inventory::saveStock);
    handleClick(m_controls.Command26, &startNewStock);
    handleClick(m_controls.Command5, &Inventory::editSelectedStock);
    handleClick(m_controls.Command6, &Inventory::deleteStock);
    handleClick(m_controls.Command7, &Inventory::refreshStock);
    handle(m_controls.LV, &RowList::rowChosen, &Inventory::chooseStockRow);
}

void Inventory::Connections::connectReorder() const
{
    handle(m_controls.Combo12, &PickList::picked, &Inventory::reorderCategoryChosen);
    handleChangeAndClick(m_controls.Combo11, &Inventory::showReorderItem);
    handleGatedClick(m_controls.Command17, gates::reorder, &Inventory::reorderStock);
    handleGatedClick(m_controls.Command23, gates::reorderUndo, &Inventory::undoReorder);
    handleClick(m_controls.Command24, &Inventory::RefreshDashboard);
}

void Inventory::Connections::connectSettings() const
{
    new UpperCaseTyping(m_controls.Combo16);
    handleGatedClick(m_controls.Command18, gates::settings, &Inventory::saveSettings);
    handleClick(m_controls.Check5,
                [](const Controls &controls) { controls.Combo9->setEnabled(controls.Check5->isChecked()); });
    handleClick(m_controls.Command2, &Inventory::addCategory);
    handleClick(m_controls.Command22, &Inventory::renameCategory);
    handleClick(m_controls.Command3, &Inventory::deleteCategory);
    handleGatedClick(m_controls.Command4, gates::purchaseDeletion, &Inventory::deletePurchase);
}

} // namespace harrowby
