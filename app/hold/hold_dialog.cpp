// SPDX-License-Identifier: MIT
#include "app/hold/hold_dialog.h"

#include "app/boxes/office_box.h"
#include "app/hold/held_carts.h"
#include "theme/dialogs.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

HoldDialog::HoldDialog(const QString &cart, const QString &proposed, QWidget *parent) :
    QDialog(parent), m_entry(new QLineEdit(proposed, this)), m_problem(makeOfficeText(this, {})),
    m_hold(new QPushButton(u"&Hold"_s, this))
{
    setWindowTitle(u"Hold"_s);
    enlargeFont(*this);
    m_entry->setObjectName(u"heldWord"_s);
    m_entry->setAccessibleName(u"Word or number"_s);
    m_problem->setObjectName(u"heldProblem"_s);
    m_problem->setMinimumHeight(m_problem->fontMetrics().height() * 2);
    m_hold->setObjectName(u"holdUnder"_s);
    m_hold->setDefault(true);
    makePrimary(*m_hold);
    layOut(cart);
    dressDialog(*this);
    connect(m_entry, &QLineEdit::textChanged, this, &HoldDialog::followEntry);
    connect(m_hold, &QPushButton::clicked, this, &QDialog::accept);
    m_entry->selectAll();
    m_entry->setFocus();
}

void HoldDialog::layOut(const QString &cart)
{
    auto *cancel = new QPushButton(u"Cancel"_s, this);
    cancel->setObjectName(u"cancelHold"_s);
    cancel->setAutoDefault(false);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addStretch(1);
    buttons->addWidget(m_hold);
    buttons->addWidget(cancel);

    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 12);
    rows->setSpacing(12);
    auto *question = makeOfficeText(this, u"Put the cart (%1) aside under which word or number?"_s.arg(cart));
    question->setObjectName(u"heldQuestion"_s);
    question->setMinimumWidth(question->fontMetrics().averageCharWidth() * 44);
    rows->addWidget(question);
    rows->addWidget(m_entry);
    rows->addWidget(m_problem);
    rows->addLayout(buttons);
}

QString HoldDialog::word() const
{
    return heldWord(m_entry->text());
}

void HoldDialog::refuse(const QString &reason)
{
    m_entry->selectAll();
    m_entry->setFocus();
    showOutcome(*m_problem, u"\u26a0 "_s + reason);
}

void HoldDialog::followEntry()
{
    m_hold->setEnabled(!word().isEmpty());
    m_problem->clear();
}

} // namespace harrowby::app
