// SPDX-License-Identifier: MIT
// Panels of the stock catalogue: add/edit fields, existing stock and reorder.
#include "theme/measures.h"
#include "ui/controls.h"
#include "ui/form_layout.h"
#include "ui/stock_columns.h"
#include "ui/widget_factory.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/form_panel.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/two_line_delegate.h"

#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

constexpr int figureWidth = 112;       ///< of an entry that takes a price or a quantity
constexpr int narrowFigureWidth = 112; ///< of one that takes a level or "Disabled"

LevelLabel *makeLevel(QWidget *parent, const QString &name, const QString &caption)
{
    auto *level = new LevelLabel(parent);
    level->setObjectName(name);
    level->setText(u"0"_s);
    level->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    level->setMinimumHeight(touchHeight);
    level->setAccessibleDescription(caption);
    setStyleWord(level, u"value"_s);
    return level;
}

} // namespace

void Controls::createStockFields()
{
    QWidget *page = static_cast<FormPanel *>(Frame7)->page();
    Combo6 = makePickList(page, u"Combo6"_s, u"Stock ID"_s);
    Combo5 = makePickList(page, u"Combo5"_s, u"Category"_s);
    Combo7 = makePickList(page, u"Combo7"_s, u"Item name"_s);
    Combo8 = makePickList(page, u"Combo8"_s, u"Unit cost"_s);
    Combo13 = makePickList(page, u"Combo13"_s, u"Reorder level"_s);
    Combo14 = makePickList(page, u"Combo14"_s, u"Available stock"_s);
    Combo15 = makePickList(page, u"Combo15"_s, u"Stock use"_s);
    Command16 = makePrimaryButton(page, u"Command16"_s, u"Add/Edit New Stock"_s);
    Command26 = makeButton(page, u"Command26"_s, u"New Item"_s);

    for (PickList *figure : {Combo8, Combo14})
        figure->setMinimumWidth(figureWidth); // the list needs the rest
    for (PickList *narrow : {Combo13, Combo15})
        narrow->setMinimumWidth(narrowFigureWidth);
    QGridLayout *grid = makeGrid(page);
    grid->addLayout(captioned(u"Category"_s, Combo5), 0, 0, 1, 2);
    grid->addLayout(captioned(u"Stock ID"_s, Combo6), 1, 0, 1, 2);
    grid->addLayout(captioned(u"Item Name"_s, Combo7), 2, 0, 1, 2);
    grid->addLayout(captioned(u"Unit Cost"_s, Combo8), 3, 0);
    grid->addLayout(captioned(u"Reorder Level"_s, Combo13), 3, 1);
    grid->addLayout(captioned(u"Available Stock"_s, Combo14), 4, 0);
    grid->addLayout(captioned(u"Stock Use"_s, Combo15), 4, 1);
    grid->addWidget(Command16, 5, 0, 1, 2);
    grid->addWidget(Command26, 6, 0, 1, 2);
    grid->setColumnStretch(0, priceShare);
    grid->setColumnStretch(1, besidePriceShare);
    grid->setRowStretch(7, 1);
}

void Controls::createStockList()
{
    LV = new RowList(stockHeadings(), Frame10);
    LV->setObjectName(u"LV"_s);
    LV->setAccessibleName(u"Existing stock"_s);
    LV->setItemDelegate(new TwoLineDelegate(LV));
    LV->setColumnShares({0, 8, 1, 0, 0, 0, 0, 0});
    LV->setColumnSamples({u"OOO-0000"_s, {}, u"BEVERAGES"_s, u"9,999.00"_s, {}, {}, u"Disabled"_s, u"22-Oct-26 "_s});
    LV->setFigureColumns({StockColumn::Cost, StockColumn::ReorderLevel, StockColumn::Available});
    Command5 = makeButton(Frame10, u"Command5"_s, u"Edit Stock"_s);
    Command6 = makeButton(Frame10, u"Command6"_s, u"Delete Stock"_s);
    Command7 = makePictureButton(Frame10, u"Command7"_s, u"refresh"_s, u"Read the stock list again"_s);

    QBoxLayout *column = makeColumn(Frame10);
    QBoxLayout *top = makeRow();
    top->addWidget(makeText(Frame10, u"Existing Stock"_s, u"heading"_s), 1);
    for (QPushButton *button : {Command5, Command6, Command7})
        top->addWidget(button);
    column->addLayout(top);
    column->addWidget(LV, 1);
}

void Controls::createReorder()
{
    QWidget *page = static_cast<FormPanel *>(Frame8)->page();
    Combo12 = makePickList(page, u"Combo12"_s, u"Category"_s);
    Combo11 = makePickList(page, u"Combo11"_s, u"Item"_s);
    Combo11->lineEdit()->setPlaceholderText(u"Category first, or a row of the list"_s);
    Combo10 = makePickList(page, u"Combo10"_s, u"New units"_s);
    Label12 = makeLevel(page, u"Label12"_s, u"Current Reorder Level:"_s);
    Label13 = makeLevel(page, u"Label13"_s, u"Current Available Stock:"_s);
    Command17 = makePrimaryButton(page, u"Command17"_s, u"Reorder Stock"_s);
    Command23 = makeButton(page, u"Command23"_s, u"Undo"_s);
    Command24 = makePictureButton(page, u"Command24"_s, u"dashboard"_s, u"Refresh the dashboard"_s);

    QGridLayout *grid = makeGrid(page);
    grid->addLayout(captioned(u"Category"_s, Combo12), 0, 0, 1, 2);
    grid->addLayout(captioned(u"Item"_s, Combo11), 1, 0, 1, 2);
    grid->addLayout(captioned(u"New Units"_s, Combo10), 2, 0, 1, 2);
    grid->addLayout(captioned(u"Current Reorder Level:"_s, Label12), 3, 0, 1, 2);
    grid->addLayout(captioned(u"Current Available Stock:"_s, Label13), 4, 0, 1, 2);
    grid->addWidget(Command17, 5, 0, 1, 2);
    grid->addWidget(Command23, 6, 0);
    grid->addWidget(Command24, 6, 1);
    grid->setColumnStretch(0, 1);
    grid->setRowStretch(7, 1);
}

} // namespace harrowby
