// SPDX-License-Identifier: MIT
#include "app/office/user_dialog.h"

#include "app/boxes/office_box.h"
#include "app/office/user_rules.h"
#include "app/shop/password_rules.h"
#include "theme/dialogs.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QLineEdit *makeEntry(QWidget *parent, const QString &objectName, const QString &accessibleName)
{
    auto *entry = new QLineEdit(parent);
    entry->setObjectName(objectName);
    entry->setAccessibleName(accessibleName);
    return entry;
}

} // namespace

UserDialog::UserDialog(const QString &name, Save save, QWidget *parent) : QDialog(parent), m_save(std::move(save))
{
    const bool isNew = name.isEmpty();
    setWindowTitle(isNew ? u"New User"_s : u"New Password"_s);
    setMinimumWidth(520);
    enlargeFont(*this);
    auto *form = new QFormLayout;
    addName(*form, name);
    if (isNew)
        addType(*form);
    addPassword(*form);
    layOut(*form, isNew ? u"&Add User"_s : u"&Change Password"_s);
    dressDialog(*this);
}

void UserDialog::addName(QFormLayout &form, const QString &name)
{
    if (name.isEmpty()) {
        m_name = makeEntry(this, u"userName"_s, u"User name"_s);
        form.addRow(u"&User name:"_s, m_name);
    } else {
        form.addRow(u"User name:"_s, makeOfficeText(this, name));
    }
}

void UserDialog::addType(QFormLayout &form)
{
    m_type = new QComboBox(this);
    m_type->setObjectName(u"userType"_s);
    m_type->setAccessibleName(u"Type"_s);
    for (const UserType &type : userTypes())
        m_type->addItem(type.name + u" ("_s + type.words + u')', type.name);
    form.addRow(u"&Type:"_s, m_type);
}

void UserDialog::addPassword(QFormLayout &form)
{
    m_password = makeEntry(this, u"userPassword"_s, u"Password"_s);
    m_again = makeEntry(this, u"userPasswordAgain"_s, u"The same password again"_s);
    for (QLineEdit *entry : {m_password, m_again})
        entry->setEchoMode(QLineEdit::Password);
    form.addRow(u"&Password:"_s, m_password);
    form.addRow(u"A&gain:"_s, m_again);
}

void UserDialog::layOut(QFormLayout &form, const QString &action)
{
    form.setVerticalSpacing(10);
    centreCaptions(form);
    m_problem = makeOfficeText(this, {});
    m_problem->setObjectName(u"problem"_s);
    m_problem->setMinimumHeight(m_problem->fontMetrics().height() * 2);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *store = buttons->addButton(action, QDialogButtonBox::AcceptRole);
    store->setDefault(true);
    makePrimary(*store);
    buttons->addButton(QDialogButtonBox::Cancel);
    buttons->layout()->setSpacing(12);
    connect(buttons, &QDialogButtonBox::accepted, this, &UserDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &UserDialog::reject);

    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(24, 16, 24, 16);
    rows->setSpacing(12);
    rows->addWidget(makeOfficeText(this, u"Capital and small letters make no difference at the login."_s));
    rows->addLayout(&form);
    rows->addWidget(m_problem);
    rows->addWidget(buttons);
}

NewUser UserDialog::entered() const
{
    const QString type = m_type != nullptr ? m_type->currentData().toString() : QString();
    return {m_name != nullptr ? m_name->text() : QString(), m_password->text(), type, usualRights(type)};
}

QString UserDialog::problem() const
{
    if (m_name != nullptr) {
        if (const auto name = checkUserName(m_name->text()); !name)
            return name.error();
    }
    if (const auto password = checkPassword(m_password->text()); !password)
        return password.error();
    if (const auto repeated = checkRepeated(m_password->text(), m_again->text()); !repeated)
        return repeated.error();
    return m_save(entered()).value_or(QString());
}

void UserDialog::accept()
{
    const QString text = problem();
    if (text.isEmpty())
        QDialog::accept();
    else
        showOutcome(*m_problem, u"\u26a0 "_s + text);
}

} // namespace harrowby::app
