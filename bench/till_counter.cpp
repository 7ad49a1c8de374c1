// SPDX-License-Identifier: MIT
#include "bench/paint_watch.h"
#include "bench/till.h"
#include "ui/stock_columns.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"
#include "ui/work_areas.h"

#include <QCoreApplication>
#include <QFrame>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

namespace harrowby::bench {

namespace {

/// Presses a key in the list; ends when its answer is painted.
bool answersKey(RowList &list)
{
    PaintWatch watch{list.viewport()};
    const int before = list.selectedRow();
    QCoreApplication::postEvent(&list, new QKeyEvent(QEvent::KeyPress, Qt::Key_Home, Qt::NoModifier));
    return watch.wait() && list.selectedRow() == 0 && before != 0;
}

} // namespace

bool Till::openAfresh()
{
    close();
    return open() && logIn();
}

bool Till::loadStockList()
{
    RowList &list = *m_window->controls().LV;
    PaintWatch watch{list.viewport()};
    m_window->controls().TabStrip1->selectTab(WorkArea::EditStock);
    return watch.wait() && answersKey(list);
}

bool Till::refreshStockList()
{
    RowList &list = *m_window->controls().LV;
    PaintWatch watch{list.viewport()};
    m_window->controls().Command7->click();
    return watch.wait() && answersKey(list);
}

int Till::stockRows() const
{
    return m_window->controls().LV->rows().rowCount();
}

QStringList Till::stockRow(int row) const
{
    const TextTableModel &list = m_window->controls().LV->rows();
    QStringList texts;
    for (int column = 0; column < list.columnCount(); ++column)
        texts.append(list.text(row, column));
    return texts;
}

bool Till::editStock(int row, const QString &cost)
{
    const Controls &controls = m_window->controls();
    controls.LV->selectRow(row);
    controls.LV->rowChosen(row);
    controls.Combo8->setEntryText(cost);
    QCoreApplication::processEvents();
    return controls.Combo6->entryText() == controls.LV->rows().text(row, StockColumn::Id);
}

bool Till::saveStock()
{
    const Controls &controls = m_window->controls();
    PaintWatch watch{controls.LV->viewport(), controls.StatusBar1_2};
    controls.Command16->click();
    return watch.wait() && controls.StatusBar1_2->text().contains(QStringLiteral("updated successfully"));
}

bool Till::enterReorder(int row, int units)
{
    const Controls &controls = m_window->controls();
    if (controls.TabStrip1->selectedTab() != WorkArea::ReorderStock)
        controls.TabStrip1->selectTab(WorkArea::ReorderStock);
    controls.LV->selectRow(row);
    controls.LV->rowChosen(row);
    controls.Combo10->setEntryText(QString::number(units));
    QCoreApplication::processEvents();
    return controls.Combo11->entryText().startsWith(controls.LV->rows().text(row, StockColumn::Id));
}

bool Till::reorder()
{
    const Controls &controls = m_window->controls();
    PaintWatch watch{controls.LV->viewport(), controls.StatusBar1_2, controls.Label13};
    controls.Command17->click();
    return watch.wait() && m_window->state().last.LastReorderItem == controls.Combo11->entryText();
}

bool Till::chooseSaleCategory(const QString &category)
{
    const Controls &controls = m_window->controls();
    if (controls.TabStrip1->selectedTab() != WorkArea::CustomSales)
        return false;
    PaintWatch watch{controls.Combo2};
    const int entry = controls.Combo2->findText(category);
    controls.Combo2->setCurrentIndex(entry);
    controls.Combo2->picked(entry);
    return watch.wait() && controls.Combo3->count() > 0;
}

bool Till::showCustomSales()
{
    m_window->controls().TabStrip1->selectTab(WorkArea::CustomSales);
    QCoreApplication::processEvents();
    return m_window->controls().Frame3->isVisible();
}

bool Till::showQuickSales()
{
    m_window->controls().TabStrip1->selectTab(WorkArea::QuickSales);
    QCoreApplication::processEvents();
    return m_window->controls().Frame1->isVisible();
}

bool Till::search(const QString &text)
{
    m_boxes->setInput(text);
    PaintWatch watch{m_window->controls().LV2->viewport()};
    m_window->controls().Command8->click();
    return watch.wait() && foundRows() > 0;
}

int Till::foundRows() const
{
    return m_window->controls().LV2->rows().rowCount();
}

bool Till::undoPurchase()
{
    const Controls &controls = m_window->controls();
    PaintWatch watch{controls.LV3->viewport(), controls.Label5, controls.Label6.at(3), controls.StatusBar1_2};
    controls.Command25->click();
    return watch.wait() && m_window->state().last.LastPurchaseID.isEmpty();
}

bool Till::loadPurchaseIds()
{
    const Controls &controls = m_window->controls();
    PaintWatch watch{controls.Combo17};
    controls.TabStrip1->selectTab(WorkArea::Settings);
    return watch.wait() && controls.Combo17->count() > 0;
}

QStringList Till::purchaseIds(int from, int count) const
{
    QStringList ids;
    for (int entry = from; entry < from + count; ++entry)
        ids.append(m_window->controls().Combo17->itemText(entry));
    return ids;
}

void Till::pickPurchase(const QString &id)
{
    PickList &list = *m_window->controls().Combo17;
    list.setCurrentIndex(list.findText(id));
}

bool Till::deletePurchase()
{
    const Controls &controls = m_window->controls();
    const int before = controls.Combo17->count();
    PaintWatch watch{controls.LV3->viewport(), controls.Combo17};
    controls.Command4->click();
    return watch.wait() && controls.Combo17->count() == before - 1;
}

} // namespace harrowby::bench
