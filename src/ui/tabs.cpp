// SPDX-License-Identifier: MIT
#include "ui/inventory.h"
#include "ui/widgets/tab_strip.h"
#include "ui/work_areas.h"

#include <QFrame>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

void hidePanels(std::initializer_list<QFrame *> frames)
{
    for (QFrame *frame : frames)
        frame->hide();
}

} // namespace

/// In front of every other panel, but for a keypad that is shown: nothing covers that until it is hidden.
void Inventory::bringForward(QFrame *panel)
{
    panel->show();
    panel->raise();
    if (!m_controls.Frame13->isHidden())
        m_controls.Frame13->raise();
}

bool Inventory::mayChangeWorkArea()
{
    return RequireLogin();
}

void Inventory::chooseWorkArea()
{
    switch (m_controls.TabStrip1->selectedTab()) {
    case WorkArea::Settings:
        return m_state.login.rights.CanSettings ? showSettingsTab() : refuseWorkArea();
    case WorkArea::ReorderStock:
        return m_state.login.rights.CanReorder ? showReorderTab() : refuseWorkArea();
    case WorkArea::EditStock:
        return m_state.login.rights.CanEditStock ? showStockTab() : refuseWorkArea();
    case WorkArea::CustomSales:
        return m_state.login.rights.CanSell ? showCustomSalesTab() : refuseWorkArea();
    case WorkArea::QuickSales: // needs no right: a user without the right to sell still sells here
        return showQuickSalesTab();
    default:
        return;
    }
}

void Inventory::refuseWorkArea()
{
    refusePrivilege();
    m_controls.TabStrip1->selectTab(WorkArea::QuickSales);
}

/// False when the user chose another tab while the list was filling: that tab has the panels now.
bool Inventory::loadStockForTab()
{
    const int tab = m_controls.TabStrip1->selectedTab();
    if (m_controls.Frame10->isHidden())
        LoadStock(false);
    return m_controls.TabStrip1->selectedTab() == tab;
}

void Inventory::showSettingsTab()
{
    LoadPurchaseIDs();
    if (m_controls.TabStrip1->selectedTab() != WorkArea::Settings)
        return; // another tab was chosen while the list was filling
    hidePanels({m_controls.Frame1, m_controls.Frame3, m_controls.Frame7, m_controls.Frame8});
    bringForward(m_controls.Frame9);
    bringForward(m_controls.Frame2);
    hidePanels({m_controls.Frame11, m_controls.Frame10, m_controls.Frame13});
}

void Inventory::showReorderTab()
{
    if (!loadStockForTab())
        return;
    bringForward(m_controls.Frame10);
    m_controls.Command5->setEnabled(false);
    m_controls.Command6->setEnabled(false);
    hidePanels({m_controls.Frame1, m_controls.Frame3, m_controls.Frame7, m_controls.Frame9});
    bringForward(m_controls.Frame8);
    hidePanels({m_controls.Frame2, m_controls.Frame11, m_controls.Frame13});
}

void Inventory::showStockTab()
{
    if (!loadStockForTab())
        return;
    bringForward(m_controls.Frame10);
    m_controls.Command5->setEnabled(true);
    m_controls.Command6->setEnabled(true);
    m_controls.Command26->setEnabled(false);
    bringForward(m_controls.Frame7);
    // Unfinished input is dropped on purpose, also when coming back to the tab.
    resetStockFields();
    hidePanels({m_controls.Frame1, m_controls.Frame3, m_controls.Frame8, m_controls.Frame9, m_controls.Frame13});
}

void Inventory::showCustomSalesTab()
{
    m_controls.TabStrip2->selectTab(SidePanel::Cart);
    hidePanels({m_controls.Frame1, m_controls.Frame7, m_controls.Frame8, m_controls.Frame9});
    bringForward(m_controls.Frame3);
    bringForward(m_controls.Frame2);
    hidePanels({m_controls.Frame11, m_controls.Frame10});
    RefreshDashboard();
}

void Inventory::showQuickSalesTab()
{
    m_controls.TabStrip2->selectTab(SidePanel::Cart);
    quickSaleCategoryChanged();
    if (m_controls.TabStrip1->selectedTab() != WorkArea::QuickSales)
        return; // another tab was chosen while the page was filling
    RefreshDashboard();
    hidePanels({m_controls.Frame3, m_controls.Frame7, m_controls.Frame8, m_controls.Frame9});
    bringForward(m_controls.Frame1);
    bringForward(m_controls.Frame2);
    hidePanels({m_controls.Frame10, m_controls.Frame11, m_controls.Frame13});
}

void Inventory::chooseSidePanel()
{
    if (m_controls.TabStrip2->selectedTab() == SidePanel::SalesActivity) {
        if (!m_state.login.IsLoggedIn || !m_state.login.rights.CanSettings) {
            m_state.login.IsLoggedIn ? refusePrivilege() : warn(u"You must login first!"_s);
            m_controls.TabStrip2->selectTab(SidePanel::Cart);
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
