// SPDX-License-Identifier: MIT
// What the page of labels is made of.
#include "app/boxes/office_box.h"
#include "app/labels/label_picker.h"
#include "app/labels/label_preview.h"
#include "app/labels/labels_page.h"
#include "app/labels/step_entry.h"
#include "app/work/work_strip.h"
#include "theme/dialogs.h"
#include "theme/measures.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int countWidth = 80;

QComboBox *makeBox(QWidget *parent, const QString &objectName, const QString &accessibleName)
{
    auto *box = new QComboBox(parent);
    box->setObjectName(objectName);
    box->setAccessibleName(accessibleName);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(1);
    return box;
}

QLabel *makeCaption(QWidget *parent, const QString &text, QWidget *buddy)
{
    auto *caption = new QLabel(text, parent);
    caption->setBuddy(buddy);
    return caption;
}

} // namespace

void LabelsPage::createList()
{
    m_view = new QTreeView(this);
    m_view->setObjectName(u"labels"_s);
    m_view->setAccessibleName(u"Items to print labels of"_s);
    m_view->setModel(&m_list);
    m_view->setRootIsDecorated(false);
    m_view->setUniformRowHeights(true);
    m_view->setAlternatingRowColors(true);
    m_view->setAllColumnsShowFocus(true);
    m_view->header()->setMinimumHeight(touchHeight);
    m_view->header()->setStretchLastSection(false);
    m_view->header()->setSectionsMovable(false);
    m_view->header()->setSectionResizeMode(LabelList::ItemColumn, QHeaderView::Stretch);
    m_view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_view->header()->resizeSection(LabelList::CountColumn, countWidth);
    m_sum = makeOfficeText(this, {});
    m_sum->setObjectName(u"labelsSum"_s);
    m_count = makeLabelCount(u"labelCount"_s, u"Labels of this item"_s, this);
    m_code = makeBox(this, u"labelCode"_s, u"Code on the label"_s);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &LabelsPage::followChoice);
    connect(&m_list, &QAbstractItemModel::modelReset, this, &LabelsPage::followList);
    connect(&m_list, &QAbstractItemModel::rowsRemoved, this, &LabelsPage::followList);
    connect(m_count, &StepEntry::changed, this, &LabelsPage::takeCount);
    connect(m_code, &QComboBox::activated, this, &LabelsPage::takeChoice);
}

void LabelsPage::createPaper()
{
    m_preview = new LabelPreview(this);
    m_papers = makeBox(this, u"labelPaper"_s, u"Paper"_s);
    m_place = new StepEntry(u"labelPlace"_s, u"First label on the sheet"_s, 0, this);
    m_printer = makeBox(this, u"labelPrinter"_s, u"Printer"_s);
    m_printer->setEditable(true);
    m_printer->setInsertPolicy(QComboBox::NoInsert);
    m_printer->lineEdit()->setPlaceholderText(u"Name"_s);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"labelsOutcome"_s);
    m_strip = new WorkStrip(m_output.job(), this);
    connect(&m_output, &LabelOutput::said, this, &LabelsPage::tell);
    connect(m_papers, &QComboBox::activated, this, &LabelsPage::choosePaper);
    connect(m_place, &StepEntry::changed, this, &LabelsPage::followList);
    connect(m_printer, &QComboBox::editTextChanged, this, &LabelsPage::choosePrinter);
    connect(m_strip, &WorkStrip::busyChanged, this, [this](bool busy) {
        for (QWidget *part : std::initializer_list<QWidget *>{m_view, m_print, m_savePdf, m_papers, m_removeAll})
            part->setDisabled(busy);
    });
}

QPushButton *LabelsPage::addButton(const QString &caption, const QString &name, void (LabelsPage::*act)())
{
    auto *button = new QPushButton(caption, this);
    button->setObjectName(name);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, act);
    return button;
}

QLayout *LabelsPage::makeItems()
{
    m_add = addButton(u"A&dd Items \u2026"_s, u"addLabelItems"_s, &LabelsPage::addItems);
    m_remove = addButton(u"Re&move"_s, u"removeLabelItem"_s, &LabelsPage::removeItem);
    m_removeAll = addButton(u"Remove &All"_s, u"removeAllLabels"_s, &LabelsPage::removeAll);
    auto *chosen = new QGridLayout;
    chosen->setHorizontalSpacing(8);
    chosen->setVerticalSpacing(8);
    chosen->setColumnStretch(1, 1);
    chosen->addWidget(makeCaption(this, u"La&bels:"_s, m_count->entry()), 0, 0);
    chosen->addWidget(m_count, 0, 1);
    chosen->addWidget(m_remove, 0, 2);
    chosen->addWidget(makeCaption(this, u"&Code:"_s, m_code), 1, 0);
    chosen->addWidget(m_code, 1, 1, 1, 2);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addWidget(m_add);
    buttons->addStretch(1);
    buttons->addWidget(m_removeAll);
    auto *rows = new QVBoxLayout;
    rows->setSpacing(8);
    rows->addWidget(m_view, 1);
    rows->addWidget(m_sum);
    rows->addLayout(chosen);
    rows->addLayout(buttons);
    return rows;
}

QLayout *LabelsPage::makePrinting()
{
    m_print = addButton(u"Pri&nt"_s, u"printLabels"_s, &LabelsPage::print);
    makePrimary(*m_print);
    m_savePdf = addButton(u"Sa&ve as PDF \u2026"_s, u"saveLabels"_s, &LabelsPage::savePdf);
    m_adjust = addButton(u"Ad&just \u2026"_s, u"adjustLabels"_s, &LabelsPage::adjust);
    m_placeCaption = makeCaption(this, u"&First label:"_s, m_place->entry());
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(8);
    grid->setColumnStretch(1, 1);
    grid->addWidget(makeCaption(this, u"&Paper:"_s, m_papers), 0, 0);
    grid->addWidget(m_papers, 0, 1, 1, 2);
    grid->addWidget(m_placeCaption, 1, 0);
    grid->addWidget(m_place, 1, 1, 1, 2);
    grid->addWidget(makeCaption(this, u"Prin&ter:"_s, m_printer), 2, 0);
    grid->addWidget(m_printer, 2, 1);
    grid->addWidget(m_adjust, 2, 2);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addWidget(m_print, 1);
    buttons->addWidget(m_savePdf, 1);
    auto *rows = new QVBoxLayout;
    rows->setSpacing(8);
    rows->addWidget(m_preview, 1);
    rows->addLayout(grid);
    rows->addLayout(buttons);
    return rows;
}

void LabelsPage::layOut()
{
    auto *columns = new QHBoxLayout;
    columns->setSpacing(16);
    columns->addLayout(makeItems(), 8);
    columns->addLayout(makePrinting(), 7);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 8);
    rows->setSpacing(8);
    rows->addLayout(columns, 1);
    rows->addWidget(m_strip);
    rows->addWidget(m_outcome);
    orderTabs();
}

/// As it is read: the items, then the paper.
void LabelsPage::orderTabs()
{
    const QList<QWidget *> order = {m_view,   m_count->entry(), m_remove,  m_code,   m_add,   m_removeAll,
                                    m_papers, m_place->entry(), m_printer, m_adjust, m_print, m_savePdf};
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order.at(i - 1), order.at(i));
}

void LabelsPage::fillPapers()
{
    for (const LabelPaper &paper : labelPapers())
        m_papers->addItem(paper.words, paper.key);
    m_papers->setCurrentIndex(m_papers->findData(m_paper.key));
    m_printer->setEditText(m_setting.printer);
}

} // namespace harrowby::app
