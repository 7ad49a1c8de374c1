// SPDX-License-Identifier: MIT
#include "app/office/code_dialog.h"

#include "app/boxes/office_box.h"
#include "app/codes/code_text.h"
#include "app/office/item_picker.h"
#include "app/shop/failure_text.h"
#include "theme/dialogs.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

CodeDialog::CodeDialog(const SignedDeeds &deeds, ItemCode given, QWidget *parent) :
    QDialog(parent), m_table(deeds.records(), deeds), m_given(std::move(given)),
    m_items(new ItemPicker(deeds.records(), this))
{
    setWindowTitle(m_given.code.isEmpty() ? u"Add Codes"_s : u"Give Code to an Item"_s);
    enlargeFont(*this);
    layOut();
    dressDialog(*this);
    resize(QSize(640, 540).boundedTo(screen()->availableSize()));
    connect(m_action, &QPushButton::clicked, this, &CodeDialog::act);
}

QFormLayout *CodeDialog::makeForm()
{
    auto *form = new QFormLayout;
    form->setVerticalSpacing(12);
    if (!m_given.code.isEmpty()) {
        form->addRow(u"Code:"_s, makeOfficeText(this, shownCode(m_given.code)));
        return form;
    }
    m_code = new QLineEdit(this);
    m_code->setObjectName(u"newCode"_s);
    m_code->setAccessibleName(u"Code"_s);
    m_code->setPlaceholderText(u"Type or scan it"_s);
    connect(m_code, &QLineEdit::returnPressed, this, &CodeDialog::act); // as a reader ends a code
    m_units = new QLineEdit(u"1"_s, this);
    m_units->setObjectName(u"newUnits"_s);
    m_units->setAccessibleName(u"Units that one scan sells"_s);
    m_units->setInputMethodHints(Qt::ImhDigitsOnly);
    connect(m_units, &QLineEdit::returnPressed, this, &CodeDialog::act);
    form->addRow(u"&Code:"_s, m_code);
    form->addRow(u"&Units a scan sells:"_s, m_units);
    centreCaptions(*form);
    return form;
}

void CodeDialog::layOut()
{
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"codeOutcome"_s);
    m_outcome->setMinimumHeight(m_outcome->fontMetrics().height() * 2);
    m_action = new QPushButton(m_given.code.isEmpty() ? u"&Add Code"_s : u"&Give Code"_s, this);
    m_action->setObjectName(u"codeAction"_s);
    m_action->setAutoDefault(false);
    makePrimary(*m_action);
    auto *close = new QPushButton(u"C&lose"_s, this);
    close->setObjectName(u"closeCodes"_s);
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addStretch(1);
    buttons->addWidget(m_action);
    buttons->addWidget(close);

    auto *caption = new QLabel(u"&Item:"_s, this);
    caption->setBuddy(m_items->entry());
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 12, 16, 12);
    rows->addWidget(caption);
    rows->addWidget(m_items, 1);
    rows->addLayout(makeForm());
    rows->addWidget(m_outcome);
    rows->addLayout(buttons);
}

/// A reader ends each code with Enter, which must not press a button of the dialog.
void CodeDialog::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter)
        QDialog::keyPressEvent(event);
}

void CodeDialog::act()
{
    const auto item = m_items->current();
    if (!item)
        return refuse(u"Pick the item first."_s);
    if (m_given.code.isEmpty())
        addCode(*item);
    else
        giveCode(*item);
}

void CodeDialog::addCode(const StockItem &item)
{
    const auto units = readUnits(m_units->text());
    if (!units)
        return refuse(units.error());
    const auto problem = m_table.add(m_code->text(), item.id, *units);
    m_code->setFocus();
    m_code->selectAll();
    if (problem)
        return refuse(*problem);
    m_hasChanged = true;
    const QString each = *units == 1 ? QString() : u", %1 units"_s.arg(*units);
    showOutcome(*m_outcome,
                u"Added: %1 to %2%3."_s.arg(shownCode(m_code->text()), itemWords(item.name, item.id), each));
    m_code->clear();
    m_units->setText(u"1"_s);
}

void CodeDialog::giveCode(const StockItem &item)
{
    const auto given = m_table.giveTo(m_given, item.id);
    if (!given)
        return refuse(failureWords(u"The code was not given."_s, given.error()));
    if (!*given)
        return refuse(u"Somebody else has deleted the code meanwhile, or given it to an item."_s);
    m_hasChanged = true;
    accept();
}

void CodeDialog::refuse(const QString &text)
{
    showOutcome(*m_outcome, u"\u26a0 "_s + text);
}

} // namespace harrowby::app
