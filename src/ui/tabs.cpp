// SPDX-License-Identifier: MIT
#include "ui/inventory.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/tab_strip.h"

#include <QFrame>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

enum WorkArea { QuickSales = 1, CustomSales, EditStock, ReorderStock, Settings };
enum SidePanel { Cart = 1, SalesActivity };

void bringForward(QFrame *frame)
{
    frame->show();
    frame->raise();
}

void hidePanels(std::initializer_list<QFrame *> frames)
{
    for (QFrame *frame : frames)
        frame->hide();
}

} // namespace

bool Inventory::mayChangeWorkArea()
{
    return RequireLogin();
}

void Inventory::chooseWorkArea()
{
    switch (m_controls.TabStrip1->selectedTab()) {
    case Settings:
        return m_state.CanSettings ? showSettingsTab() : refuseWorkArea();
    case ReorderStock:
        return m_state.CanReorder ? showReorderTab() : refuseWorkArea();
    case EditStock:
        return m_state.CanEditStock ? showStockTab() : refuseWorkArea();
    case CustomSales:
        return m_state.CanSell ? showCustomSalesTab() : refuseWorkArea();
    case QuickSales: // needs no right: a user without the right to sell still sells here
        return showQuickSalesTab();
    default:
        return;
    }
}

void Inventory::refuseWorkArea()
{
    refusePrivilege();
    m_controls.TabStrip1->selectTab(QuickSales);
}

void Inventory::showSettingsTab()
{
    hidePanels({m_controls.Frame1, m_controls.Frame3, m_controls.Frame7, m_controls.Frame8});
    bringForward(m_controls.Frame9);
    bringForward(m_controls.Frame2);
    hidePanels({m_controls.Frame11, m_controls.Frame10, m_controls.Frame13});
}

void Inventory::showReorderTab()
{
    bringForward(m_controls.Frame10);
    m_controls.Command5->setEnabled(false);
    m_controls.Command6->setEnabled(false);
    hidePanels({m_controls.Frame1, m_controls.Frame3, m_controls.Frame7, m_controls.Frame9});
    bringForward(m_controls.Frame8);
    hidePanels({m_controls.Frame2, m_controls.Frame11, m_controls.Frame13});
}

void Inventory::showStockTab()
{
    bringForward(m_controls.Frame10);
    m_controls.Command26->setEnabled(false);
    bringForward(m_controls.Frame7);
    // Unfinished input is dropped on purpose, also when coming back to the tab.
    m_controls.Combo5->setEntryText(u"OTHER CATEGORY"_s);
    m_controls.Combo6->setEntryText(u"(Auto ID)"_s);
    for (PickList *field : {m_controls.Combo7, m_controls.Combo8, m_controls.Combo13, m_controls.Combo14})
        field->setEntryText(QString());
    m_controls.Combo15->setEntryText(u"Enabled"_s);
    hidePanels({m_controls.Frame1, m_controls.Frame3, m_controls.Frame8, m_controls.Frame9, m_controls.Frame13});
}

void Inventory::showCustomSalesTab()
{
    m_controls.TabStrip2->selectTab(Cart);
    hidePanels({m_controls.Frame1, m_controls.Frame7, m_controls.Frame8, m_controls.Frame9});
    bringForward(m_controls.Frame3);
    bringForward(m_controls.Frame2);
    hidePanels({m_controls.Frame11, m_controls.Frame10});
    RefreshDashboard();
}

void Inventory::showQuickSalesTab()
{
    m_controls.TabStrip2->selectTab(Cart);
    quickSaleCategoryChanged();
    RefreshDashboard();
    hidePanels({m_controls.Frame3, m_controls.Frame7, m_controls.Frame8, m_controls.Frame9});
    bringForward(m_controls.Frame1);
    bringForward(m_controls.Frame2);
    hidePanels({m_controls.Frame10, m_controls.Frame11, m_controls.Frame13});
}

void Inventory::chooseSidePanel()
{
    if (m_controls.TabStrip2->selectedTab() == SalesActivity) {
        if (!m_state.IsLoggedIn || !m_state.CanSettings) {
            m_state.IsLoggedIn ? refusePrivilege() : warn(u"You must login first!"_s);
            m_controls.TabStrip2->selectTab(Cart);
            return;
        }
        m_controls.Frame4->hide();
        bringForward(m_controls.Frame5);
    } else {
        m_controls.Frame5->hide();
        bringForward(m_controls.Frame4);
    }
}

} // namespace harrowby
