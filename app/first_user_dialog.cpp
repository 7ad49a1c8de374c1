// SPDX-License-Identifier: MIT
#include "first_user_dialog.h"

#include "dialog_style.h"
#include "password_rules.h"

#include <QAccessible>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QLabel *createText(QWidget *parent, const QString &text)
{
    auto *label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setText(text);
    return label;
}

QLineEdit *createPasswordEntry(QWidget *parent, const QString &objectName, const QString &accessibleName)
{
    auto *entry = new QLineEdit(parent);
    entry->setObjectName(objectName);
    entry->setAccessibleName(accessibleName);
    entry->setEchoMode(QLineEdit::Password);
    return entry;
}

} // namespace

FirstUserDialog::FirstUserDialog(const QString &storePath, QWidget *parent) : QDialog(parent)
{
    setWindowTitle(u"New Store"_s);
    setMinimumWidth(480);
    createEntries();
    layOut(storePath);
    makeTouchSized(*this);
}

QString FirstUserDialog::password() const
{
    return m_password->text();
}

void FirstUserDialog::createEntries()
{
    m_password = createPasswordEntry(this, u"password"_s, u"Password of ADMINISTRATOR"_s);
    m_again = createPasswordEntry(this, u"passwordAgain"_s, u"The same password again"_s);
    m_problem = createText(this, {});
    m_problem->setObjectName(u"problem"_s);
    // The line is there from the start, so that nothing moves under the finger when it is filled.
    m_problem->setMinimumHeight(m_problem->fontMetrics().height() * 2);
    m_problem->setForegroundRole(QPalette::WindowText);
}

void FirstUserDialog::layOut(const QString &storePath)
{
    auto *form = new QFormLayout;
    form->setVerticalSpacing(12);
    form->addRow(u"User name:"_s, createText(this, u"ADMINISTRATOR"_s));
    form->addRow(u"&Password:"_s, m_password);
    form->addRow(u"&Again:"_s, m_again);

    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(u"&Create Store"_s, QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(QDialogButtonBox::Cancel);
    buttons->layout()->setSpacing(12);
    connect(buttons, &QDialogButtonBox::accepted, this, &FirstUserDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &FirstUserDialog::reject);

    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(24, 24, 24, 24);
    rows->setSpacing(16);
    rows->addWidget(createText(this, u"A new store is created in\n%1"_s.arg(storePath)));
    rows->addWidget(createText(this, u"Choose the password of its first user, who may do everything. Capital and "
                                     "small letters make no difference."_s));
    rows->addLayout(form);
    rows->addWidget(m_problem);
    rows->addWidget(buttons);
}

QString FirstUserDialog::problem() const
{
    if (QString refused = passwordProblem(m_password->text()); !refused.isEmpty())
        return refused;
    const bool same = storedPassword(m_password->text()) == storedPassword(m_again->text());
    return same ? QString() : u"The two entries differ. Please type the password again."_s;
}

void FirstUserDialog::showProblem(const QString &text)
{
    m_problem->setText(u"\u26a0 "_s + text);
    QAccessibleEvent alert(m_problem, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
    QLineEdit *wrong = passwordProblem(m_password->text()).isEmpty() ? m_again : m_password;
    wrong->setFocus();
    wrong->selectAll();
}

void FirstUserDialog::accept()
{
    const QString text = problem();
    if (text.isEmpty())
        QDialog::accept();
    else
        showProblem(text);
}

} // namespace harrowby::app
