// SPDX-License-Identifier: MIT
#include "ui/controls.h"

#include "spoken/spoken.h"
#include "theme/style.h"
#include "ui/fitting.h"
#include "ui/widget_factory.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/form_panel.h"
#include "ui/widgets/panel.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/window_marks.h"

#include <QBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QScreen>
#include <QStatusBar>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

constexpr QSize usualSize(1280, 860);
constexpr QSize smallestSize(760, 560); // a screen of 800x600 less what frames it

QFrame *named(Panel *panel, const QString &name)
{
    panel->setObjectName(name);
    panel->hide();
    return panel;
}

QFrame *makeCard(QWidget &stage, const QString &name)
{
    return named(new Panel(Panel::Kind::Card, &stage), name);
}

QFrame *makeForm(QWidget &stage, const QString &name)
{
    return named(new FormPanel(&stage), name);
}

} // namespace

Controls::Controls(QMainWindow &form)
{
    speakTruly(&form);
    createWindowFrame(form);
    auto *stage = new QWidget;
    form.centralWidget()->layout()->addWidget(stage);
    createWorkPanels(*stage);
    createSideArea();
    createLogin(form);
    layOut(*stage);
    setTabOrder();
    nameParts();
    markForHost(form, *this);
    for (PickList *list : {Combo1, Combo2, Combo3, Combo5, Combo9, Combo11, Combo12, Combo15})
        list->setDropsOnPress(true);
    form.resize(usualSize.boundedTo(form.screen()->availableSize()));
    auto *fitting = new Fitting(form, *this);
    fitting->fit();
    dress(form);
}

/// Last: a control made under a style sheet is polished before it has its objectName, and one shown before the style
/// sheet is set is polished twice.
void Controls::dress(QMainWindow &form)
{
    for (Panel *panel : form.findChildren<Panel *>()) {
        if (panel != Frame1 && panel != Frame2 && panel != Frame4)
            panel->dressWhenShown();
    }
    applyTillStyle(form);
    Frame1->show();
    Frame2->show();
}

void Controls::createWindowFrame(QMainWindow &form)
{
    form.setWindowTitle(u"Sales Inventory"_s);
    form.setMinimumSize(smallestSize);
    auto *whole = new QWidget(&form);
    form.setCentralWidget(whole);

    Command19 = makeButton(whole, u"Command19"_s, u"Sales &Report"_s);
    Command27 = makeButton(whole, u"Command27"_s, u"Log out User"_s);
    Command20 = makePictureButton(whole, u"Command20"_s, u"help"_s, u"Help"_s);
    Command10 = makeButton(whole, u"Command10"_s, u"Clo&se Inventory"_s);
    Command8 = makeButton(whole, u"Command8"_s, u"Search"_s);
    Command8->setAccessibleName(u"Search for a stock item"_s);
    Command8->setIcon(tillIcon(u"search"_s));
    TabStrip1 = new TabStrip(whole);
    TabStrip1->setObjectName(u"TabStrip1"_s);
    TabStrip1->setAccessibleName(u"Work areas"_s);
    for (const QString &caption :
         {u"Quick Sales"_s, u"Custom Sales"_s, u"Add/Edit Stock"_s, u"Reorder Stock"_s, u"Settings"_s})
        TabStrip1->addTab(caption);

    auto *rows = new QVBoxLayout(whole);
    rows->setContentsMargins(6, 8, 6, 0);
    rows->setSpacing(0);
    QBoxLayout *actions = makeRow();
    actions->setContentsMargins(8, 0, 6, controlGap);
    actions->addWidget(makeText(whole, u"Harrowby Inventory"_s, u"title"_s), 1);
    for (QPushButton *button : {Command19, Command27, Command20, Command10})
        actions->addWidget(button);
    rows->addLayout(actions);
    QBoxLayout *tabs = makeRow();
    tabs->setContentsMargins(2, 0, 6, controlGap);
    tabs->addWidget(TabStrip1, 1);
    tabs->addWidget(Command8, 0, Qt::AlignBottom);
    rows->addLayout(tabs);
    createStatusBar(form);
}

void Controls::createStatusBar(QMainWindow &form)
{
    StatusBar1 = new QStatusBar(&form);
    StatusBar1->setObjectName(u"StatusBar1"_s);
    StatusBar1->setSizeGripEnabled(false);
    StatusBar1_1 = new ElidedLabel;
    StatusBar1_1->setObjectName(u"StatusBar1_1"_s);
    StatusBar1_1->setAccessibleDescription(u"Login"_s);
    StatusBar1_2 = new ElidedLabel;
    StatusBar1_2->setObjectName(u"StatusBar1_2"_s);
    StatusBar1_2->setAccessibleDescription(u"Last activity"_s);
    // addPermanentWidget(): status tips of a host's actions hide normal widgets.
    StatusBar1->addPermanentWidget(StatusBar1_1, 1);
    StatusBar1->addPermanentWidget(StatusBar1_2, 3);
    form.setStatusBar(StatusBar1);
}

void Controls::createWorkPanels(QWidget &stage)
{
    // In their first stacking order.
    Frame1 = makeCard(stage, u"Frame1"_s);
    Frame3 = makeCard(stage, u"Frame3"_s);
    Frame9 = makeForm(stage, u"Frame9"_s);
    Frame2 = makeForm(stage, u"Frame2"_s);
    Frame7 = makeForm(stage, u"Frame7"_s);
    Frame8 = makeForm(stage, u"Frame8"_s);
    Frame10 = makeCard(stage, u"Frame10"_s);
    Frame11 = makeCard(stage, u"Frame11"_s);
    Frame13 = makeCard(stage, u"Frame13"_s);
    createQuickSales();
    createCustomSale();
    createSearchResult();
    createKeypad();
    createStockFields();
    createStockList();
    createReorder();
    createSettings();
}

} // namespace harrowby
