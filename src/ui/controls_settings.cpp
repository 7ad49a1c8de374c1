// SPDX-License-Identifier: MIT
#include "ui/controls.h"

#include "platform/receipt_folder.h"
#include "theme/measures.h"
#include "ui/widget_factory.h"
#include "ui/widgets/entry_edit.h"
#include "ui/widgets/form_panel.h"
#include "ui/widgets/name_list.h"
#include "ui/widgets/pick_list.h"

#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

QLabel *makeHeading(const QString &text, QWidget *control)
{
    QLabel *heading = makeText(control->parentWidget(), text, u"heading"_s);
    heading->setBuddy(control);
    return heading;
}

} // namespace

void Controls::createSettings()
{
    QWidget *page = static_cast<FormPanel *>(Frame9)->page();
    page->setMaximumWidth(measuresOf(Density::Usual).pageWidth);
    createChoices(page);
    createCategories(page);
    Combo17 = makePickList(page, u"Combo17"_s, u"Purchase to delete"_s);
    Combo17->lineEdit()->setPlaceholderText(u"Purchase ID"_s);
    Command4 = makeButton(page, u"Command4"_s, u"Delete Purchase"_s);
    layOutSettings(page);
}

void Controls::createChoices(QWidget *page)
{
    Check1 = makeCheckBox(page, u"Check1"_s, u"&Prompt on Load when Item(s) need to be Reordered"_s);
    Check2 = makeCheckBox(page, u"Check2"_s, u"Don't List Finished Item(s)"_s);
    Check3 = makeCheckBox(page, u"Check3"_s, u"Show Details On Purchase"_s);
    Check4 = makeCheckBox(page, u"Check4"_s, u"Email Daily Report"_s);
    Check5 = makeCheckBox(page, u"Check5"_s, u"Print Receipt on POS"_s);
    Text2 = makeEntry(page, u"Text2"_s, u"Report e-mail address"_s);
    Combo9 = makePickList(page, u"Combo9"_s, u"Receipt printer"_s);
    Combo9->lineEdit()->setPlaceholderText(u"Receipt printer"_s);
    const QString receipts = u"Without a printer, receipts are saved as PDF files in the folder \"%1\"."_s.arg(
        receiptFolders().constFirst());
    Combo9->setToolTip(receipts);
    Combo9->lineEdit()->setToolTip(receipts);
    Command18 = makePrimaryButton(page, u"Command18"_s, u"Save Settings"_s);
}

void Controls::createCategories(QWidget *page)
{
    List2 = new NameList(page);
    List2->setObjectName(u"List2"_s);
    List2->setAccessibleName(u"Categories"_s);
    List2->setMinimumHeight(100);
    Combo16 = makePickList(page, u"Combo16"_s, u"Name of the new category"_s);
    Combo16->lineEdit()->setPlaceholderText(u"New category"_s);
    Command2 = makeButton(page, u"Command2"_s, u"Add"_s);
    Command2->setAccessibleName(u"Add category"_s);
    Command22 = makeButton(page, u"Command22"_s, u"Change"_s);
    Command22->setAccessibleName(u"Change category"_s);
    Command3 = makeButton(page, u"Command3"_s, u"Delete"_s);
    Command3->setAccessibleName(u"Delete category"_s);
}

void Controls::layOutSettings(QWidget *page) const
{
    QGridLayout *grid = makeGrid(page);
    grid->addWidget(Check1, 0, 0, 1, 4);
    grid->addWidget(Check2, 1, 0, 1, 2);
    grid->addWidget(Check3, 1, 2, 1, 2);
    grid->addWidget(Check4, 2, 0, 1, 2);
    grid->addWidget(Text2, 2, 2, 1, 2);
    grid->addWidget(Check5, 3, 0, 1, 2);
    grid->addWidget(Combo9, 3, 2, 1, 2);
    grid->addWidget(Command18, 4, 2, 1, 2);
    grid->addWidget(makeHeading(u"Categories"_s, List2), 5, 0, 1, 2);
    grid->addWidget(List2, 6, 0, 6, 2);
    grid->addWidget(Combo16, 6, 2, 1, 2);
    QBoxLayout *category = makeRow();
    for (QPushButton *button : {Command2, Command22, Command3})
        category->addWidget(button, 1);
    grid->addLayout(category, 7, 2, 1, 2);
    grid->addWidget(makeHeading(u"Purchases"_s, Combo17), 8, 2, 1, 2, Qt::AlignBottom);
    grid->addWidget(Combo17, 9, 2, 1, 2);
    grid->addWidget(Command4, 10, 2, 1, 2);
    for (int column = 0; column < 4; ++column)
        grid->setColumnStretch(column, 1);
    grid->setRowStretch(11, 1);
}

} // namespace harrowby
