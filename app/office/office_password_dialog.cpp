// SPDX-License-Identifier: MIT
#include "app/office/office_password_dialog.h"

#include "app/boxes/office_box.h"
#include "basic/administrator.h"
#include "theme/dialogs.h"

#include <QDateTime>
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

OfficePasswordDialog::OfficePasswordDialog(PasswordCheck check, WrongTries wrongTries, QWidget *parent) :
    QDialog(parent), m_check(std::move(check)), m_wrongTries(std::move(wrongTries))
{
    setWindowTitle(u"Store"_s);
    setMinimumWidth(480);
    enlargeFont(*this);
    layOut();
    dressDialog(*this);
    if (pause())
        sayPause();
}

void OfficePasswordDialog::layOut()
{
    m_password = new QLineEdit(this);
    m_password->setObjectName(u"officePassword"_s);
    m_password->setAccessibleName(u"Password of ADMINISTRATOR"_s);
    m_password->setEchoMode(QLineEdit::Password);
    m_problem = makeOfficeText(this, {});
    m_problem->setObjectName(u"problem"_s);
    // The empty line takes its room from the start, so that no control moves when it is filled.
    m_problem->setMinimumHeight(m_problem->fontMetrics().height() * 2);

    auto *form = new QFormLayout;
    form->addRow(u"User name:"_s, makeOfficeText(this, administratorName));
    form->addRow(u"&Password:"_s, m_password);
    form->setVerticalSpacing(12);
    centreCaptions(*form);

    auto *buttons = new QDialogButtonBox(this);
    m_open = buttons->addButton(u"&Open"_s, QDialogButtonBox::AcceptRole);
    m_open->setDefault(true);
    makePrimary(*m_open);
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
        return;  // Enter during the pause
    if (pause()) // after a wrong try in another office
        return sayPause();
    m_wrongTries.add(QDateTime::currentDateTimeUtc());
    if (const auto checked = m_check(m_password->text()); !checked)
        return refuse(checked.error());
    m_wrongTries.forget();
    QDialog::accept();
}

void OfficePasswordDialog::refuse(const QString &problem)
{
    showOutcome(*m_problem, u"\u26a0 "_s + problem);
    m_password->setFocus();
    m_password->selectAll();
    pause();
}

bool OfficePasswordDialog::pause()
{
    const std::chrono::milliseconds left = m_wrongTries.pause(QDateTime::currentDateTimeUtc());
    if (left.count() == 0)
        return false;
    m_open->setEnabled(false);
    QTimer::singleShot(left, Qt::PreciseTimer, m_open, [this] { m_open->setEnabled(true); });
    return true;
}

void OfficePasswordDialog::sayPause()
{
    showOutcome(*m_problem, u"\u26a0 After wrong passwords the next try has to wait a little."_s);
}

} // namespace harrowby::app
