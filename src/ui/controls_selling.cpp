// SPDX-License-Identifier: MIT
// Panels that sell: quick sales, custom sale, search result and keypad.
#include "ui/controls.h"
#include "ui/search_columns.h"
#include "ui/widget_factory.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/grid_walk.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
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

constexpr int cardsPerRow = 3;

ElidedLabel *makeValue(QWidget *parent, const QString &name, const QString &text, const QString &caption)
{
    auto *value = new ElidedLabel(parent);
    value->setObjectName(name);
    value->setText(text);
    value->setAccessibleDescription(caption);
    setStyleWord(value, u"value"_s);
    return value;
}

} // namespace

void Controls::createQuickSales()
{
    Combo1 = makePickList(Frame1, u"Combo1"_s, u"Category of the quick-sale items"_s);
    CmdPrev = makeButton(Frame1, u"CmdPrev"_s, u"Prev"_s);
    CmdPrev->setAccessibleName(u"Previous items"_s);
    CmdNext = makeButton(Frame1, u"CmdNext"_s, u"Next"_s);
    CmdNext->setAccessibleName(u"Next items"_s);

    QGridLayout *grid = makeGrid(Frame1);
    QBoxLayout *paging = makeRow();
    paging->addWidget(Combo1, 3);
    paging->addWidget(CmdPrev, 1);
    paging->addWidget(CmdNext, 1);
    grid->addLayout(paging, 0, 0, 1, cardsPerRow);
    for (int i = 0; i < static_cast<int>(Command1.size()); ++i) {
        auto *card = new QuickSaleButton(Frame1);
        card->setObjectName(elementName(u"Command1"_s, i));
        grid->addWidget(card, 1 + i / cardsPerRow, i % cardsPerRow);
        grid->setRowStretch(1 + i / cardsPerRow, 1);
        grid->setColumnStretch(i % cardsPerRow, 1);
        Command1[static_cast<size_t>(i)] = card;
    }
    new GridWalk({Command1.begin(), Command1.end()}, cardsPerRow, Frame1);
}

void Controls::createCustomSale()
{
    Combo2 = makePickList(Frame3, u"Combo2"_s, u"Category"_s);
    Combo3 = makePickList(Frame3, u"Combo3"_s, u"Item"_s);
    Combo3->lineEdit()->setPlaceholderText(u"Category first, then an item"_s);
    Combo4 = makePickList(Frame3, u"Combo4"_s, u"Quantity"_s);
    Combo4->setEntryText(u"0"_s);
    Command31 = makePictureButton(Frame3, u"Command31"_s, u"keypad"_s, u"Keypad"_s);
    Command15 = makePrimaryButton(Frame3, u"Command15"_s, u"Add Item"_s);
    Label14 = makeValue(Frame3, u"Label14"_s, {}, u"Item:"_s);
    Label7 = makeValue(Frame3, u"Label7"_s, u"0.00"_s, u"Item Unit Cost:"_s);
    Label9 = makeValue(Frame3, u"Label9"_s, u"0.00"_s, u"Total Item Cost:"_s);
    Label15 = makeValue(Frame3, u"Label15"_s, u"Nil"_s, u"Total Available Item(s):"_s);

    QGridLayout *grid = makeGrid(Frame3);
    grid->addLayout(captioned(u"Category"_s, Combo2), 0, 0, 1, 2);
    grid->addLayout(captioned(u"Item"_s, Combo3), 0, 2, 1, 4);
    grid->addLayout(captioned(u"Quantity"_s, Combo4), 1, 0);
    grid->addWidget(Command31, 1, 1, Qt::AlignBottom | Qt::AlignLeft);
    grid->addWidget(Command15, 1, 2, 1, 4, Qt::AlignBottom);
    grid->addLayout(captioned(u"Item:"_s, Label14), 2, 0, 1, 6);
    grid->addLayout(captioned(u"Item Unit Cost:"_s, Label7), 3, 0, 1, 2);
    grid->addLayout(captioned(u"Total Item Cost:"_s, Label9), 3, 2, 1, 2);
    grid->addLayout(captioned(u"Total Available Item(s):"_s, Label15), 3, 4, 1, 2);
    for (int column = 0; column < 6; ++column)
        grid->setColumnStretch(column, 1);
    grid->setRowStretch(4, 1);
}

void Controls::createSearchResult()
{
    LV2 = new RowList(searchHeadings(), Frame11);
    LV2->setObjectName(u"LV2"_s);
    LV2->setAccessibleName(u"Search result"_s);
    LV2->setItemDelegate(new TwoLineDelegate(LV2));
    LV2->setColumnShares({1, 2, 5, 3});
    Command9 = makeButton(Frame11, u"Command9"_s, u"Close Search Result"_s);
    Command21 = makePrimaryButton(Frame11, u"Command21"_s, u"Select ..."_s);

    QBoxLayout *column = makeColumn(Frame11);
    column->addWidget(LV2, 1);
    QBoxLayout *buttons = makeRow();
    buttons->addWidget(Command21, 1);
    buttons->addWidget(Command9, 1);
    column->addLayout(buttons);
}

void Controls::createKeypad()
{
    const auto makeKey = [this](int index, const QString &caption) {
        QPushButton *key = makeButton(Frame13, elementName(u"Command30"_s, index), caption);
        setStyleWord(key, u"key"_s);
        key->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        Command30[static_cast<size_t>(index)] = key;
        return key;
    };
    QGridLayout *grid = makeGrid(Frame13);
    for (int digit = 1; digit <= 9; ++digit)
        grid->addWidget(makeKey(digit, QString::number(digit)), (digit - 1) / 3, (digit - 1) % 3);
    grid->addWidget(makeKey(0, u"0"_s), 3, 1);
    grid->addWidget(makeKey(10, u"<---"_s), 3, 0);
    grid->addWidget(makeKey(11, u"Close"_s), 3, 2);
    Command30[10]->setAccessibleName(u"Erase the last digit"_s);
    Command30[11]->setAccessibleName(u"Close the keypad"_s);
}

} // namespace harrowby
