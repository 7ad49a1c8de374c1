// SPDX-License-Identifier: MIT
#include "app/office/office_login_dialog.h"

#include "app/boxes/office_box.h"
#include "app/office/user_rules.h"
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

OfficeLoginDialog::OfficeLoginDialog(LoginCheck check, WrongTries wrongTries, const QString &reason, QWidget *parent) :
    QDialog(parent), m_check(std::move(check)), m_wrongTries(std::move(wrongTries))
{
    setWindowTitle(u"Store"_s);
    setMinimumWidth(480);
    enlargeFont(*this);
    createEntries();
    layOut(reason);
    dressDialog(*this);
    m_password->setFocus();
    if (pause())
        sayPause();
}

void OfficeLoginDialog::createEntries()
{
    m_name = new QLineEdit(administratorName, this);
    m_name->setObjectName(u"officeUser"_s);
    m_name->setAccessibleName(u"User name"_s);
    m_password = new QLineEdit(this);
    m_password->setObjectName(u"officePassword"_s);
    m_password->setAccessibleName(u"Password"_s);
    m_password->setEchoMode(QLineEdit::Password);
}

void OfficeLoginDialog::layOut(const QString &reason)
{
    m_problem = makeOfficeText(this, {});
    m_problem->setObjectName(u"problem"_s);
    // The empty line takes its room from the start, so that no control moves when it is filled.
    m_problem->setMinimumHeight(m_problem->fontMetrics().height() * 2);

    auto *form = new QFormLayout;
    form->addRow(u"&User name:"_s, m_name);
    form->addRow(u"&Password:"_s, m_password);
    form->setVerticalSpacing(12);
    centreCaptions(*form);

    auto *buttons = new QDialogButtonBox(this);
    m_open = buttons->addButton(u"&Open"_s, QDialogButtonBox::AcceptRole);
    m_open->setDefault(true);
    makePrimary(*m_open);
    buttons->addButton(QDialogButtonBox::Cancel);
    buttons->layout()->setSpacing(12);
    connect(buttons, &QDialogButtonBox::accepted, this, &OfficeLoginDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &OfficeLoginDialog::reject);

    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(24, 24, 24, 24);
    rows->setSpacing(16);
    if (!reason.isEmpty())
        rows->addWidget(makeOfficeText(this, reason));
    rows->addWidget(makeOfficeText(
        this,
        u"ADMINISTRATOR sees all of the store's office; who has the right \"%1\" sees the pages about stock."_s.arg(
            stockRightTitle())));
    rows->addLayout(form);
    rows->addWidget(m_problem);
    rows->addWidget(buttons);
}

void OfficeLoginDialog::accept()
{
    if (!m_open->isEnabled())
        return;  // Enter during the pause
    if (pause()) // after a wrong try in another office
        return sayPause();
    m_wrongTries.add(QDateTime::currentDateTimeUtc());
    const auto checked = m_check(m_name->text(), m_password->text());
    if (!checked)
        return refuse(checked.error());
    m_user = *checked;
    // Somebody else's login must not shorten the pause of who tries to guess ADMINISTRATOR's password.
    if (m_user.isAdministrator)
        m_wrongTries.forget();
    else
        m_wrongTries.takeBack();
    QDialog::accept();
}

void OfficeLoginDialog::refuse(const QString &problem)
{
    showOutcome(*m_problem, u"\u26a0 "_s + problem);
    QLineEdit *entry = m_name->text().trimmed().isEmpty() ? m_name : m_password;
    entry->setFocus();
    entry->selectAll();
    pause();
}

bool OfficeLoginDialog::pause()
{
    const std::chrono::milliseconds left = m_wrongTries.pause(QDateTime::currentDateTimeUtc());
    if (left.count() == 0)
        return false;
    m_open->setEnabled(false);
    QTimer::singleShot(left, Qt::PreciseTimer, m_open, [this] { m_open->setEnabled(true); });
    return true;
}

void OfficeLoginDialog::sayPause()
{
    showOutcome(*m_problem, u"\u26a0 After wrong passwords the next try has to wait a little."_s);
}

} // namespace harrowby::app
