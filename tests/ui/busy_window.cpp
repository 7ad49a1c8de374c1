// SPDX-License-Identifier: MIT
#include "tests/ui/busy_window.h"

#include "ui/widgets/elided_label.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"

#include <QApplication>
#include <QFrame>
#include <QStyle>

#include <array>

using namespace Qt::StringLiterals;

namespace harrowby::test {

BusyWindow::BusyWindow() : controls(*this)
{
    for (QuickSaleButton *card : controls.Command1)
        card->setText(u"BEV-0001\r\nARABICA COFFEE BEANS 1KG\r\n12,345.00"_s);
    controls.Command1[3]->setOutOfStock(true);
    controls.Command1[8]->setText(u"(empty)"_s);
    controls.TabStrip2->setTabText(0, u"Cart(100)"_s);
    controls.Label5->setText(u"Total: 1,234,567.00"_s);
    controls.StatusBar1_1->setText(u"User: ADMINISTRATOR"_s);
    controls.StatusBar1_2->setText(QString(500, u'W'));
    for (RowList *list : {controls.LV, controls.LV2, controls.LV3})
        for (int row = 0; row < 30; ++row)
            list->rows().appendRow(QStringList(list->rows().columnCount(), u"LONG TEXT OF A CELL 1,234.00"_s));
}

void BusyWindow::showWorkArea(int number)
{
    for (QFrame *frame : allPanels())
        frame->hide();
    controls.placeSearchResult(number == 9 || number == 10);
    for (QFrame *frame : panelsOf(number)) {
        frame->show();
        frame->raise();
    }
    constexpr std::array tabs{WorkArea::QuickSales,   WorkArea::CustomSales, WorkArea::EditStock,
                              WorkArea::ReorderStock, WorkArea::Settings,    WorkArea::CustomSales,
                              WorkArea::CustomSales,  WorkArea::QuickSales,  WorkArea::ReorderStock,
                              WorkArea::EditStock,    WorkArea::Settings,    WorkArea::QuickSales};
    controls.TabStrip1->selectTab(tabs.at(static_cast<size_t>(number - 1)));
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

std::vector<QFrame *> BusyWindow::allPanels() const
{
    const Controls &c = controls;
    return {c.Frame1, c.Frame2, c.Frame3, c.Frame7, c.Frame8, c.Frame9, c.Frame10, c.Frame11, c.Frame12, c.Frame13};
}

std::vector<QFrame *> BusyWindow::panelsOf(int number) const
{
    const Controls &c = controls;
    switch (number) {
    case WorkArea::CustomSales:
        return {c.Frame3, c.Frame2};
    case WorkArea::EditStock:
        return {c.Frame2, c.Frame10, c.Frame7};
    case WorkArea::ReorderStock:
        return {c.Frame10, c.Frame8};
    case WorkArea::Settings:
        return {c.Frame9, c.Frame2};
    case 6:
        return {c.Frame3, c.Frame2, c.Frame11};
    case 7:
        return {c.Frame3, c.Frame2, c.Frame13};
    case 8:
        return {c.Frame1, c.Frame2, c.Frame12};
    case 9:
        return {c.Frame10, c.Frame8, c.Frame11};
    case 10:
        return {c.Frame2, c.Frame10, c.Frame7, c.Frame11};
    case 11:
        return {c.Frame9, c.Frame2, c.Frame11};
    case 12:
        return {c.Frame1, c.Frame2, c.Frame11};
    default:
        return {c.Frame1, c.Frame2};
    }
}

} // namespace harrowby::test
