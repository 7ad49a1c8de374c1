// SPDX-License-Identifier: MIT
// Where the panels stand, and the order in which Tab goes through the controls.
#include "ui/controls.h"
#include "ui/dashboard_elements.h"
#include "ui/stage_layout.h"
#include "ui/widgets/activity_text.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"

#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include <vector>

namespace harrowby {

namespace {

template <typename... Widgets>
void append(std::vector<QWidget *> &order, Widgets *...widgets)
{
    (order.push_back(widgets), ...);
}

} // namespace

void Controls::layOut(QWidget &stage)
{
    auto *grid = new QGridLayout(&stage);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0); // the panels bring their gutters along
    arrangePanels(*this, *grid, Shape::Wide, Density::Usual);
    static_cast<QBoxLayout *>(stage.parentWidget()->layout())->setStretchFactor(&stage, 1);
}

void Controls::placeSearchResult(bool besideFields) const
{
    placeSearchPanel(*this, *static_cast<QGridLayout *>(Frame11->parentWidget()->layout()), besideFields);
}

void Controls::setTabOrder()
{
    std::vector<QWidget *> order;
    append(order, Text3, Text4, Command28, Command29, TabStrip1, Command8);
    append(order, Combo1, CmdPrev, CmdNext);
    order.insert(order.end(), Command1.begin(), Command1.end());
    append(order, Combo2, Combo3, Combo4, Command31, Command15);
    for (const size_t key : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0, 11})
        order.push_back(Command30[key]);
    append(order, LV2, Command21, Command9);
    append(order, Combo5, Combo6, Combo7, Combo8, Combo13, Combo14, Combo15, Command16, Command26);
    append(order, Combo12, Combo11, Combo10, Command17, Command23, Command24);
    append(order, Check1, Check2, Check3, Check4, Text2, Check5, Combo9, Command18);
    append(order, List2, Combo16, Command2, Command22, Command3, Combo17, Command4);
    append(order, Command5, Command6, Command7, LV);
    append(order, TabStrip2, LV3, Command14, Command12, Command13, Command25, Text1, Command11,
           Label6[Dashboard::ReorderCount]);
    append(order, Command19, Command27, Command20, Command10);
    for (size_t i = 1; i < order.size(); ++i)
        QWidget::setTabOrder(order[i - 1], order[i]);
}

} // namespace harrowby
