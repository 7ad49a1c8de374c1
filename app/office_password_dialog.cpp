// SPDX-License-Identifier: MIT
#include "office_password_dialog.h"

#include "dialog_style.h"
#include "office_box.h"
#include "office_door.h"
#include "sheet/look.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

OfficePasswordDialog::OfficePasswordDialog(PasswordCheck check, QWidget *parent) :
    QDialog(parent), m_check(std::move(check))
{
    setWindowTitle(u"Store"_s);
    setMinimumWidth(480);
    enlargeFont(*this);
    layOut();
    sheet::dress(*this);
}

void OfficePasswordDialog::layOut()
{
    m_password = new QLineEdit(this);
    m_password->setObjectName(u"officePassword"_s);
    m_password->setAccessibleName(u"Password of ADMINISTRATOR"_s);
    m_password->setEchoMode(QLineEdit::Password);
    m_problem = makeOfficeText(this, {});
    m_problem->setObjectName(u"problem"_s);
    // The line is there from the start, so that nothing moves under the finger when it is filled.
    m_problem->setMinimumHeight(m_problem->fontMetrics().height() * 2);

    auto *form = new QFormLayout;
    form->addRow(u"User name:"_s, makeOfficeText(this, u"ADMINISTRATOR"_s));
    form->addRow(u"&Password:"_s, m_password);
    form->setVerticalSpacing(12);
    sheet::centreCaptions(*form);

    auto *buttons = new QDialogButtonBox(this);
    m_open = buttons->addButton(u"&Open"_s, QDialogButtonBox::AcceptRole);
    m_open->setDefault(true);
    sheet::makePrimary(*m_open);
    buttons->addButton(QDialogButtonBox::Cancel);
    buttons->layout()->setSpacing(12);
    connect(buttons, &QDialogButtonBox::accepted, this, &OfficePasswordDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &OfficePasswordDialog::reject);

    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(24, 24, 24, 24);
    rows->setSpacing(16);
    rows->addWidget(makeOfficeText(this, u"The store's users, its receipt and its backup."_s));
    rows->addLayout(form);
    rows->addWidget(m_problem);
    rows->addWidget(buttons);
}

void OfficePasswordDialog::accept()
{
    if (!m_open->isEnabled())
        return; // Enter during the pause
    const QString problem = m_check(m_password->text());
    if (problem.isEmpty())
        QDialog::accept();
    else
        refuse(problem);
}

void OfficePasswordDialog::refuse(const QString &problem)
{
    ++m_wrongTries;
    showOutcome(*m_problem, u"\u26a0 "_s + problem);
    m_password->setFocus();
    m_password->selectAll();
    if (pauseAfter(m_wrongTries).count() > 0)
        pause();
}

void OfficePasswordDialog::pause()
{
    m_open->setEnabled(false);
    QTimer::singleShot(pauseAfter(m_wrongTries), m_open, [this] { m_open->setEnabled(true); });
}

} // namespace harrowby::app
