// SPDX-License-Identifier: MIT
#include "ui/controls.h"

#include "platform/receipt_store.h"
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
    Combo17 = makePickList(page, u"Combo17"_s, QObject::tr("Purchase to delete"));
    Combo17->lineEdit()->setPlaceholderText(QObject::tr("Purchase ID"));
    Command4 = makeButton(page, u"Command4"_s, QObject::tr("Delete Purchase"));
    layOutSettings(page);
}

void Controls::createChoices(QWidget *page)
{
    Check1 = makeCheckBox(page, u"Check1"_s, u"&Prompt on Load when Item(s) need to be Reordered"_s);
    Check2 = makeCheckBox(page, u"Check2"_s, u"Don't List Finished Item(s)"_s);
    Check3 = makeCheckBox(page, u"Check3"_s, u"Show Details On Purchase"_s);
    Check4 = makeCheckBox(page, u"Check4"_s, u"Email Daily Report"_s);
    Check5 = makeCheckBox(page, u"Check5"_s, u"Print Receipt on POS"_s);
    Text2 = makeEntry(page, u"Text2"_s, QObject::tr("Report e-mail address"));
    Combo9 = makePickList(page, u"Combo9"_s, QObject::tr("Receipt printer"));
    Combo9->lineEdit()->setPlaceholderText(QObject::tr("Receipt printer"));
    const QString receipts = QObject::tr("Without a printer, receipts are saved as PDF files in the folder \"%1\".")
                                 .arg(receiptFolders().constFirst());
    Combo9->setToolTip(receipts);
    Combo9->lineEdit()->setToolTip(receipts);
    Command18 = makePrimaryButton(page, u"Command18"_s, u"Save Settings"_s);
}

void Controls::createCategories(QWidget *page)
{
    List2 = new NameList(page);
    List2->setObjectName(u"List2"_s);
    List2->setAccessibleName(QObject::tr("Categories"));
    List2->setMinimumHeight(100);
    Combo16 = makePickList(page, u"Combo16"_s, QObject::tr("Name of the new category"));
    Combo16->lineEdit()->setPlaceholderText(QObject::tr("New category"));
    Command2 = makeButton(page, u"Command2"_s, QObject::tr("Add"));
    Command2->setAccessibleName(QObject::tr("Add category"));
    Command22 = makeButton(page, u"Command22"_s, u"Change"_s);
    Command22->setAccessibleName(QObject::tr("Change category"));
    Command3 = makeButton(page, u"Command3"_s, u"Delete"_s);
    Command3->setAccessibleName(QObject::tr("Delete category"));
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
    grid->addWidget(makeHeading(QObject::tr("Categories"), List2), 5, 0, 1, 2);
    grid->addWidget(List2, 6, 0, 6, 2);
    grid->addWidget(Combo16, 6, 2, 1, 2);
    QBoxLayout *category = makeRow();
    for (QPushButton *button : {Command2, Command22, Command3})
        category->addWidget(button, 1);
    grid->addLayout(category, 7, 2, 1, 2);
    grid->addWidget(makeHeading(QObject::tr("Purchases"), Combo17), 8, 2, 1, 2, Qt::AlignBottom);
    grid->addWidget(Combo17, 9, 2, 1, 2);
    grid->addWidget(Command4, 10, 2, 1, 2);
    for (int column = 0; column < 4; ++column)
        grid->setColumnStretch(column, 1);
    grid->setRowStretch(11, 1);
}

} // namespace harrowby
