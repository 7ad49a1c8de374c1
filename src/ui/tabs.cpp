// SPDX-License-Identifier: MIT
// What the tabs show.
#include "ui/gates.h"
#include "ui/inventory.h"
#include "ui/panels.h"
#include "ui/stock/stock_fields.h"
#include "ui/widgets/tab_strip.h"
#include "ui/work_areas.h"

#include <QFrame>
#include <QPushButton>

namespace harrowby {

namespace {

void showSettingsPanels(const Controls &controls)
{
    hidePanels({controls.Frame1, controls.Frame3, controls.Frame7, controls.Frame8});
    bringForward(controls, *controls.Frame9);
    bringForward(controls, *controls.Frame2);
    hidePanels({controls.Frame11, controls.Frame10, controls.Frame13});
}

void showReorderPanels(const Controls &controls)
{
    bringForward(controls, *controls.Frame10);
    controls.Command5->setEnabled(false);
    controls.Command6->setEnabled(false);
    hidePanels({controls.Frame1, controls.Frame3, controls.Frame7, controls.Frame9});
    bringForward(controls, *controls.Frame8);
    hidePanels({controls.Frame2, controls.Frame11, controls.Frame13});
}

void showStockPanels(const Controls &controls)
{
    bringForward(controls, *controls.Frame10);
    controls.Command5->setEnabled(true);
    controls.Command6->setEnabled(true);
    controls.Command26->setEnabled(false);
    bringForward(controls, *controls.Frame7);
    // Intended: unfinished input is dropped, also when coming back to the tab.
    resetStockFields(controls);
    hidePanels({controls.Frame1, controls.Frame3, controls.Frame8, controls.Frame9, controls.Frame13});
}

void showCustomSalePanels(const Controls &controls)
{
    hidePanels({controls.Frame1, controls.Frame7, controls.Frame8, controls.Frame9});
    bringForward(controls, *controls.Frame3);
    bringForward(controls, *controls.Frame2);
    hidePanels({controls.Frame11, controls.Frame10});
}

void showQuickSalePanels(const Controls &controls)
{
    hidePanels({controls.Frame3, controls.Frame7, controls.Frame8, controls.Frame9});
    bringForward(controls, *controls.Frame1);
    bringForward(controls, *controls.Frame2);
    hidePanels({controls.Frame10, controls.Frame11, controls.Frame13});
}

} // namespace

void Inventory::chooseWorkArea()
{
    const int area = m_controls.TabStrip1->selectedTab();
    if (!passes(gates::workArea(area)))
        return;
    // False when the user chose another tab while a list was filling: that tab has the panels now.
    const auto isStillChosen = [&] { return m_controls.TabStrip1->selectedTab() == area; };
    switch (area) {
    case WorkArea::QuickSales:
        m_controls.TabStrip2->selectTab(SidePanel::Cart);
        quickSaleCategoryChanged();
        if (!isStillChosen())
            return;
        RefreshDashboard();
        return showQuickSalePanels(m_controls);
    case WorkArea::CustomSales:
        m_controls.TabStrip2->selectTab(SidePanel::Cart);
        showCustomSalePanels(m_controls);
        return RefreshDashboard();
    case WorkArea::EditStock:
    case WorkArea::ReorderStock:
        if (m_controls.Frame10->isHidden())
            LoadStock(false);
        if (isStillChosen())
            area == WorkArea::EditStock ? showStockPanels(m_controls) : showReorderPanels(m_controls);
        return;
    case WorkArea::Settings:
        LoadPurchaseIDs();
        if (isStillChosen())
            showSettingsPanels(m_controls);
        return;
    default:
        return;
    }
}

void Inventory::chooseSidePanel()
{
    if (m_controls.TabStrip2->selectedTab() != SidePanel::SalesActivity) {
        m_controls.Frame5->hide();
        bringForward(m_controls, *m_controls.Frame4);
    } else if (passes(gates::salesActivity)) {
        m_controls.Frame4->hide();
        bringForward(m_controls, *m_controls.Frame5);
    } else {
        m_controls.TabStrip2->selectTab(SidePanel::Cart);
    }
}

} // namespace harrowby
