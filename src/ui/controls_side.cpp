// SPDX-License-Identifier: MIT
// The right-hand area: cart, sales activity and dashboard.
#include "ui/cart_columns.h"
#include "ui/controls.h"
#include "ui/dashboard_elements.h"
#include "ui/widget_factory.h"
#include "ui/widgets/activity_text.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/form_panel.h"
#include "ui/widgets/item_key_delegate.h"
#include "ui/widgets/link_label.h"
#include "ui/widgets/panel.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// Height at which the cart shows some lines above its total and its buttons.
constexpr int comfortableCounter = 390;

Panel *makeSidePanel(QWidget *parent, const QString &name)
{
    auto *panel = new Panel(Panel::Kind::Plain, parent);
    panel->setObjectName(name);
    return panel;
}

QLabel *makeElement(QWidget *parent, int index, const QString &text)
{
    QLabel *label = makeText(parent, text, u"element"_s);
    label->setObjectName(elementName(u"Label6"_s, index));
    return label;
}

template <typename Figure = ElidedLabel>
Figure *makeFigure(QWidget *parent, int index, const QString &text, const QLabel &caption)
{
    auto *figure = new Figure(parent);
    figure->setObjectName(elementName(u"Label6"_s, index));
    figure->setText(text);
    figure->setAccessibleDescription(caption.text());
    setStyleWord(figure, u"figure"_s);
    return figure;
}

/// A tile of the dashboard: a caption over its figure, and what belongs beside it.
QFrame *makeTile(QLabel *caption, QLabel *figure, QLabel *hint = nullptr)
{
    auto *tile = new QFrame(caption->parentWidget());
    setStyleWord(tile, u"tile"_s);
    auto *rows = new QVBoxLayout(tile);
    rows->setContentsMargins(8, 5, 6, 4);
    rows->setSpacing(0);
    caption->setWordWrap(true);
    rows->addWidget(caption);
    rows->addStretch();
    QBoxLayout *foot = makeRow();
    foot->addWidget(figure, 1);
    if (hint) {
        hint->setWordWrap(true);
        hint->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        foot->addWidget(hint, 2);
    }
    rows->addLayout(foot);
    return tile;
}

} // namespace

void Controls::createSideArea()
{
    QWidget *page = static_cast<FormPanel *>(Frame2)->page();
    auto *counter = new QWidget(page); // what a sale takes, beside the dashboard
    TabStrip2 = new TabStrip(counter);
    TabStrip2->setObjectName(u"TabStrip2"_s);
    TabStrip2->setAccessibleName(u"Side panels"_s);
    TabStrip2->addTab(u"Cart"_s);
    TabStrip2->addTab(u"Sales Activity"_s);
    Frame4 = makeSidePanel(counter, u"Frame4"_s);
    Frame5 = makeSidePanel(counter, u"Frame5"_s);
    Frame5->hide();
    createCart();
    createActivity();

    auto *shared = new QGridLayout;
    shared->addWidget(Frame4, 0, 0);
    shared->addWidget(Frame5, 0, 0);
    QBoxLayout *column = makeColumn(counter);
    column->addWidget(TabStrip2);
    column->addLayout(shared, 1);
    makeColumn(page)->addWidget(counter, 1);
    createDashboard();
    static_cast<FormPanel *>(Frame2)->keepInView(counter, comfortableCounter);
}

void Controls::createCart()
{
    LV3 = new RowList(cartHeadings(), Frame4);
    LV3->setObjectName(u"LV3"_s);
    LV3->setAccessibleName(u"Cart"_s);
    LV3->setColumnShares({10, 1, 2});
    LV3->setColumnSamples({{}, u"999"_s, u"99,999.00"_s});
    LV3->setFigureColumns({CartColumn::Qty, CartColumn::Cost});
    LV3->setItemDelegateForColumn(CartColumn::Item, new ItemKeyDelegate(LV3));
    Label5 = new TotalLabel(Frame4);
    Label5->setObjectName(u"Label5"_s);
    Label5->setText(u"Total: 0.00"_s);
    Command14 = makePrimaryButton(Frame4, u"Command14"_s, u"Purchase Cart"_s);
    Command14->setToolTip(u"F12 presses it from anywhere in the window"_s);
    Command12 = makeButton(Frame4, u"Command12"_s, u"Delete"_s);
    Command12->setAccessibleName(u"Delete the selected item from the cart"_s);
    Command13 = makeButton(Frame4, u"Command13"_s, u"Clear Cart"_s);
    Command25 = makeButton(Frame4, u"Command25"_s, u"Undo"_s);
    Command25->setAccessibleName(u"Undo the last purchase"_s);

    QBoxLayout *column = makeColumn(Frame4);
    column->addWidget(LV3, 1);
    column->addWidget(Label5);
    column->addWidget(Command14);
    QBoxLayout *buttons = makeRow();
    for (QPushButton *button : {Command12, Command13, Command25})
        buttons->addWidget(button, 1);
    column->addLayout(buttons);
}

void Controls::createActivity()
{
    Text1 = new ActivityText(Frame5);
    Text1->setObjectName(u"Text1"_s);
    Text1->setAccessibleName(u"Activity log"_s);
    Text1->setTabChangesFocus(true);
    Text1->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    Text1->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    Command11 = makeButton(Frame5, u"Command11"_s, u"Clear Activity Log"_s);

    QBoxLayout *column = makeColumn(Frame5);
    column->addWidget(Text1, 1);
    column->addWidget(Command11);
}

void Controls::createDashboard()
{
    QWidget *page = static_cast<FormPanel *>(Frame2)->page();
    const std::pair<int, QString> captions[] = {{Dashboard::Heading, u"Dashboard"_s},
                                                {Dashboard::SalesCountCaption, u"Today's Sales"_s},
                                                {Dashboard::SalesAmountCaption, u"Today's Sales Total"_s},
                                                {Dashboard::StockTotalCaption, u"Total Available Item(s):"_s},
                                                {Dashboard::ReorderCountCaption, u"Low Reorder Level:"_s},
                                                {Dashboard::ReorderHint, u"Click to See Reorder List"_s}};
    for (const auto &[index, text] : captions)
        Label6[static_cast<size_t>(index)] = makeElement(page, index, text);
    setStyleWord(Label6[Dashboard::Heading], u"heading"_s);
    Label6[Dashboard::SalesCount] =
        makeFigure(page, Dashboard::SalesCount, u"0"_s, *Label6[Dashboard::SalesCountCaption]);
    Label6[Dashboard::SalesAmount] =
        makeFigure(page, Dashboard::SalesAmount, u"0.00"_s, *Label6[Dashboard::SalesAmountCaption]);
    Label6[Dashboard::StockTotal] =
        makeFigure(page, Dashboard::StockTotal, u"0"_s, *Label6[Dashboard::StockTotalCaption]);
    Label6[Dashboard::ReorderCount] =
        makeFigure<LinkLabel>(page, Dashboard::ReorderCount, u"0"_s, *Label6[Dashboard::ReorderCountCaption]);
    Label6[Dashboard::ReorderCount]->setAccessibleDescription(u"Low Reorder Level: Click to See Reorder List"_s);

    auto *tiles = new QGridLayout;
    tiles->setSpacing(controlGap);
    tiles->addWidget(Label6[Dashboard::Heading], 0, 0, 1, 2);
    tiles->addWidget(makeTile(Label6[Dashboard::SalesCountCaption], Label6[Dashboard::SalesCount]), 1, 0);
    tiles->addWidget(makeTile(Label6[Dashboard::SalesAmountCaption], Label6[Dashboard::SalesAmount]), 1, 1);
    tiles->addWidget(makeTile(Label6[Dashboard::StockTotalCaption], Label6[Dashboard::StockTotal]), 2, 0);
    tiles->addWidget(makeTile(Label6[Dashboard::ReorderCountCaption], Label6[Dashboard::ReorderCount],
                              Label6[Dashboard::ReorderHint]),
                     2, 1);
    tiles->setColumnStretch(0, 1);
    tiles->setColumnStretch(1, 1);
    static_cast<QBoxLayout *>(page->layout())->addLayout(tiles);
}

} // namespace harrowby
