// SPDX-License-Identifier: MIT
#include "app/shop/first_user_dialog.h"

#include "app/shop/failure_text.h"
#include "app/shop/password_rules.h"
#include "spoken/spoken.h"
#include "theme/dialogs.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int usualWidth = 660;

QLabel *createText(QWidget *parent, const QString &text)
{
    auto *label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setText(text);
    return label;
}

QLineEdit *createEntry(QWidget *parent, const QString &objectName, const QString &accessibleName, const QString &text)
{
    auto *entry = new QLineEdit(text, parent);
    entry->setObjectName(objectName);
    entry->setAccessibleName(accessibleName);
    return entry;
}

/// The next caption and entry of a form with two of them in a row.
void addEntry(QGridLayout &form, const QString &caption, QLineEdit *entry)
{
    const int count = form.count() / 2;
    auto *label = new QLabel(caption, entry->parentWidget());
    label->setBuddy(entry);
    form.addWidget(label, count / 2, count % 2 * 2);
    form.addWidget(entry, count / 2, count % 2 * 2 + 1);
}

} // namespace

FirstUserDialog::FirstUserDialog(const QString &storePath, const ReceiptProposal &proposal, QWidget *parent) :
    QDialog(parent)
{
    setWindowTitle(u"New Store"_s);
    setMinimumWidth(usualWidth);
    enlargeFont(*this);
    createEntries(proposal);
    layOut(storePath);
    dressDialog(*this);
}

QString FirstUserDialog::password() const
{
    return m_password->text();
}

ReceiptProposal FirstUserDialog::receipt() const
{
    ReceiptProposal chosen;
    if (m_title != nullptr)
        chosen.title = m_title->text().trimmed();
    if (m_currency != nullptr)
        chosen.currency = m_currency->text().trimmed();
    return chosen;
}

void FirstUserDialog::createEntries(const ReceiptProposal &proposal)
{
    m_password = createEntry(this, u"password"_s, u"Password of ADMINISTRATOR"_s, {});
    m_again = createEntry(this, u"passwordAgain"_s, u"The same password again"_s, {});
    for (QLineEdit *entry : {m_password, m_again})
        entry->setEchoMode(QLineEdit::Password);
    if (proposal.title)
        m_title = createEntry(this, u"shopTitle"_s, u"Title of the receipts"_s, *proposal.title);
    if (proposal.currency)
        m_currency = createEntry(this, u"shopCurrency"_s, u"Currency of the receipts"_s, *proposal.currency);
    m_problem = createText(this, {});
    m_problem->setObjectName(u"problem"_s);
    // The empty line takes its room from the start, so that no control moves when it is filled.
    m_problem->setMinimumHeight(m_problem->fontMetrics().height() * 2);
}

QGridLayout *FirstUserDialog::layOutEntries()
{
    auto *form = new QGridLayout;
    form->setHorizontalSpacing(12);
    form->setVerticalSpacing(10);
    form->setColumnStretch(1, 1);
    form->setColumnStretch(3, 1);
    addEntry(*form, u"&Password:"_s, m_password);
    addEntry(*form, u"&Again:"_s, m_again);
    if (m_title != nullptr)
        addEntry(*form, u"&Title:"_s, m_title);
    if (m_currency != nullptr)
        addEntry(*form, u"C&urrency:"_s, m_currency);
    return form;
}

void FirstUserDialog::layOut(const QString &storePath)
{
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *create = buttons->addButton(u"&Create Store"_s, QDialogButtonBox::AcceptRole);
    create->setDefault(true);
    makePrimary(*create);
    buttons->addButton(QDialogButtonBox::Cancel);
    buttons->layout()->setSpacing(12);
    connect(buttons, &QDialogButtonBox::accepted, this, &FirstUserDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &FirstUserDialog::reject);

    const bool asksForReceipt = m_title != nullptr || m_currency != nullptr;
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(24, 16, 24, 16);
    rows->setSpacing(12);
    rows->addWidget(createText(this, u"A new store is created in\n%1"_s.arg(wrappingPath(storePath))));
    rows->addWidget(createText(this, u"Choose the password of its first user, ADMINISTRATOR, who may do everything. "
                                     "Capital and small letters make no difference."_s +
                                         (asksForReceipt ? u" What is printed on the receipts can be changed later "
                                                           "in the store's office."_s
                                                         : QString())));
    rows->addLayout(layOutEntries());
    rows->addWidget(m_problem);
    rows->addWidget(buttons);
}

FirstUserDialog::Problem FirstUserDialog::problem() const
{
    if (const auto password = checkPassword(m_password->text()); !password)
        return {password.error(), m_password};
    if (const auto repeated = checkRepeated(m_password->text(), m_again->text()); !repeated)
        return {repeated.error(), m_again};
    const ReceiptProposal chosen = receipt();
    if (const auto title = checkReceiptHead({chosen.title.value_or(QString()), {}, u"N"_s}); !title)
        return {title.error(), m_title};
    if (!chosen.currency)
        return {};
    if (const auto currency = checkReceiptHead({{}, {}, *chosen.currency}); !currency)
        return {currency.error(), m_currency};
    return {};
}

void FirstUserDialog::showProblem(const Problem &problem)
{
    reportOutcome(m_problem, u"\u26a0 "_s + problem.text);
    problem.entry->setFocus();
    problem.entry->selectAll();
}

void FirstUserDialog::accept()
{
    const Problem found = problem();
    if (found.text.isEmpty())
        QDialog::accept();
    else
        showProblem(found);
}

} // namespace harrowby::app
