// SPDX-License-Identifier: MIT
#include "app/office/open_payments_dialog.h"

#include "app/boxes/office_box.h"
#include "app/cash/cash_words.h"
#include "app/shop/failure_text.h"
#include "theme/dialogs.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr QSize paymentsSize(760, 540);

/// One line; the rows of a purchase's items are many.
QString itemsLine(const QString &items)
{
    constexpr qsizetype longest = 120;
    const QString line = items.simplified();
    return line.size() <= longest ? line : line.left(longest) + u'\u2026';
}

QString paymentWords(const Payment &payment)
{
    return u"%1, %2, %3: %4\n%5"_s.arg(payment.taken.toLocalTime().toString(u"yyyy-MM-dd HH:mm"_s), payment.seller,
                                       payment.drawer, tenderWords(payment.parts), itemsLine(payment.items));
}

QString choiceWords(const IntentChoice &choice)
{
    const QDateTime date = QDateTime::fromString(u"20"_s + choice.date, u"yyyyMMddHHmmss"_s);
    return u"%1, %2, %3\n%4"_s.arg(date.isValid() ? date.toString(u"yyyy-MM-dd HH:mm"_s) : choice.date, choice.seller,
                                   choice.purchaseId, itemsLine(choice.items));
}

/// The tool tip has all items.
void addRow(QListWidget &list, const QString &text, const QString &items)
{
    auto *row = new QListWidgetItem(text, &list);
    row->setToolTip(items.toHtmlEscaped());
}

} // namespace

OpenPaymentsDialog::OpenPaymentsDialog(const SignedDeeds &deeds, QWidget *parent) :
    QDialog(parent), m_intents(deeds.records(), deeds)
{
    setWindowTitle(u"Payments Without a Purchase"_s);
    enlargeFont(*this);
    m_list = makeList(u"openPaymentList"_s, u"Payments without a purchase"_s);
    m_purchases = makeList(u"openPaymentChoices"_s, u"Purchases that it may belong to"_s);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"openPaymentOutcome"_s);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 12);
    rows->setSpacing(8);
    rows->addWidget(makeOfficeText(this, u"A till died in the middle of these. Was the sale made?"_s));
    rows->addWidget(m_list, 1);
    rows->addWidget(makeOfficeText(this, u"Sales of the same sum near that time, counted as paid in cash so far:"_s));
    rows->addWidget(m_purchases, 1);
    rows->addWidget(m_outcome);
    rows->addLayout(makeButtons());
    dressDialog(*this);
    resize(paymentsSize.boundedTo(screen()->availableSize()));
    connect(m_list, &QListWidget::currentRowChanged, this, &OpenPaymentsDialog::readChoices);
    connect(m_purchases, &QListWidget::currentRowChanged, this, &OpenPaymentsDialog::followChoice);
    read();
    m_list->setFocus();
}

QListWidget *OpenPaymentsDialog::makeList(const QString &objectName, const QString &spoken)
{
    auto *list = new QListWidget(this);
    list->setObjectName(objectName);
    list->setAccessibleName(spoken);
    list->setWordWrap(true);
    list->setResizeMode(QListView::Adjust);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    return list;
}

QLayout *OpenPaymentsDialog::makeButtons()
{
    const auto make = [this](const QString &caption, const QString &name, void (OpenPaymentsDialog::*act)()) {
        auto *button = new QPushButton(caption, this);
        button->setObjectName(name);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, act);
        return button;
    };
    m_count = make(u"It &Paid for This Sale"_s, u"countForPurchase"_s, &OpenPaymentsDialog::countFor);
    m_remove = make(u"&Nothing Was Sold"_s, u"removePayment"_s, &OpenPaymentsDialog::remove);
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(m_count);
    row->addWidget(m_remove);
    row->addStretch(1);
    row->addWidget(make(u"C&lose"_s, u"closeOpenPayments"_s, &OpenPaymentsDialog::reject));
    return row;
}

void OpenPaymentsDialog::read()
{
    const auto open = m_intents.list();
    m_payments = open.value_or(QList<Payment>());
    m_list->clear();
    for (const Payment &payment : std::as_const(m_payments))
        addRow(*m_list, paymentWords(payment), payment.items);
    if (!m_payments.isEmpty())
        m_list->setCurrentRow(0);
    readChoices();
    if (!open)
        showOutcome(*m_outcome, u"\u26a0 "_s + failureWords(u"The payments could not be read."_s, open.error()));
}

void OpenPaymentsDialog::readChoices()
{
    const Payment *payment = current();
    m_choices =
        payment != nullptr ? m_intents.choicesFor(*payment).value_or(QList<IntentChoice>()) : QList<IntentChoice>();
    m_purchases->clear();
    for (const IntentChoice &choice : std::as_const(m_choices))
        addRow(*m_purchases, choiceWords(choice), choice.items);
    followChoice();
}

void OpenPaymentsDialog::followChoice()
{
    m_count->setEnabled(current() != nullptr && m_purchases->currentRow() >= 0);
    m_remove->setEnabled(current() != nullptr);
}

const Payment *OpenPaymentsDialog::current() const
{
    const int row = m_list->currentRow();
    return row >= 0 && row < m_payments.size() ? &m_payments.at(row) : nullptr;
}

void OpenPaymentsDialog::countFor()
{
    const Payment *payment = current();
    const int row = m_purchases->currentRow();
    if (payment == nullptr || row < 0 || row >= m_choices.size())
        return;
    const IntentChoice choice = m_choices.at(row);
    finish(m_intents.countFor(payment->id, choice.purchaseId),
           u"Saved: %1 paid for the sale %2."_s.arg(tenderWords(payment->parts), choice.purchaseId));
}

void OpenPaymentsDialog::remove()
{
    const Payment *payment = current();
    if (payment == nullptr)
        return;
    const QString words = tenderWords(payment->parts);
    const QString id = payment->id;
    if (askInOffice(
            this, u"Remove the payment \"%1\"?\nDo so when nothing was sold, or the money was given back."_s.arg(words),
            u"&Remove"_s))
        finish(m_intents.remove(id), u"Removed: %1."_s.arg(words));
}

void OpenPaymentsDialog::finish(OpenIntents::Outcome outcome, const QString &done)
{
    using Outcome = OpenIntents::Outcome;
    read();
    switch (outcome) {
    case Outcome::Done:
        return showOutcome(*m_outcome, done);
    case Outcome::Gone:
        return showOutcome(*m_outcome, u"\u26a0 Somebody else has decided on this payment."_s);
    case Outcome::Misfit:
        return showOutcome(*m_outcome, u"\u26a0 That sale has another sum now, or is gone."_s);
    case Outcome::Failed:
        return showOutcome(*m_outcome, u"\u26a0 Nothing was changed: the store could not be written. Try again."_s);
    }
}

} // namespace harrowby::app
