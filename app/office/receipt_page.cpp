// SPDX-License-Identifier: MIT
#include "app/office/receipt_page.h"

#include "app/boxes/office_box.h"
#include "theme/dialogs.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int pictureWidth = 330;

QLineEdit *makeEntry(QWidget *parent, const QString &objectName, const QString &accessibleName, const QString &text)
{
    auto *entry = new QLineEdit(parent);
    entry->setObjectName(objectName);
    entry->setAccessibleName(accessibleName);
    entry->setText(text);
    return entry;
}

} // namespace

ReceiptPage::ReceiptPage(const SignedDeeds &deeds, OfficeSettings settings, QWidget *parent) :
    OfficePage(parent), m_settings(std::move(settings)), m_deeds(deeds), m_saved(readReceiptHead(m_settings))
{
    createEntries();
    auto *columns = new QHBoxLayout(this);
    columns->setContentsMargins(16, 16, 16, 16);
    columns->setSpacing(24);
    columns->addLayout(makeForm(), 1);
    columns->addLayout(makePicture());
    showEntered();
}

void ReceiptPage::createEntries()
{
    m_title = makeEntry(this, u"receiptTitle"_s, u"Title"_s, m_saved.title);
    m_address = makeEntry(this, u"receiptAddress"_s, u"Address"_s, m_saved.address);
    m_currency = makeEntry(this, u"receiptCurrency"_s, u"Currency"_s, m_saved.currency);
    for (QLineEdit *entry : {m_title, m_address, m_currency})
        connect(entry, &QLineEdit::textChanged, this, &ReceiptPage::showEntered);
    m_emailReport = new QCheckBox(u"Email the daily re&port"_s, this);
    m_emailReport->setObjectName(u"emailReport"_s);
    m_emailReport->setChecked(m_saved.emailReport);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"receiptOutcome"_s);
    m_outcome->setMinimumHeight(m_outcome->fontMetrics().height() * 2);
}

QVBoxLayout *ReceiptPage::makeForm()
{
    auto *save = new QPushButton(u"Sa&ve"_s, this);
    save->setObjectName(u"saveReceipt"_s);
    makePrimary(*save);
    connect(save, &QPushButton::clicked, this, &ReceiptPage::save);
    for (const QLineEdit *entry : {m_title, m_address, m_currency})
        connect(entry, &QLineEdit::returnPressed, this, &ReceiptPage::save);

    auto *form = new QFormLayout;
    form->setVerticalSpacing(12);
    form->addRow(u"&Title:"_s, m_title);
    form->addRow(u"A&ddress:"_s, m_address);
    form->addRow(u"&Currency:"_s, m_currency);
    centreCaptions(*form);

    auto *rows = new QVBoxLayout;
    rows->setSpacing(12);
    rows->addWidget(makeOfficeText(this,
                                   u"Title and address are printed at the top of each receipt, in capitals. They count "
                                   "for whoever uses this computer under the same name."_s));
    rows->addLayout(form);
    rows->addWidget(m_emailReport);
    rows->addWidget(save);
    rows->addWidget(m_outcome);
    rows->addStretch(1);
    return rows;
}

QVBoxLayout *ReceiptPage::makePicture()
{
    m_picture = new QLabel(this);
    m_picture->setObjectName(u"receiptPicture"_s);
    m_picture->setFrameShape(QFrame::StyledPanel);
    m_picture->setAccessibleName(u"Picture of a receipt"_s);
    auto *rows = new QVBoxLayout;
    rows->addWidget(makeOfficeText(this, u"How it looks:"_s));
    rows->addWidget(m_picture);
    rows->addStretch(1);
    return rows;
}

std::optional<LeavingQuestion> ReceiptPage::leaving() const
{
    if (entered() == m_saved)
        return {};
    return LeavingQuestion{u"What you have typed for the receipt is not saved. Discard it?"_s, u"&Discard It"_s};
}

ReceiptHead ReceiptPage::entered() const
{
    return {m_title->text(), m_address->text(), m_currency->text(), m_emailReport->isChecked()};
}

void ReceiptPage::showEntered()
{
    const ReceiptHead head = entered();
    m_picture->setPixmap(receiptPreview(head, pictureWidth, devicePixelRatioF()));
    const auto fits = checkReceiptHead(head);
    showOutcome(*m_outcome, fits ? QString() : u"\u26a0 "_s + fits.error());
}

void ReceiptPage::save()
{
    const ReceiptHead head = entered();
    if (const auto fits = checkReceiptHead(head); !fits)
        return showOutcome(*m_outcome, u"\u26a0 "_s + fits.error());
    const ReceiptHead before = readReceiptHead(m_settings);
    if (before != m_saved) {
        showSaved();
        return showOutcome(*m_outcome,
                           u"\u26a0 Somebody else has changed this meanwhile. What is saved now is shown; what "
                           "you typed was not saved."_s);
    }
    const bool saved = saveReceiptHead(m_settings, before, head);
    m_saved = readReceiptHead(m_settings);
    tellWhatChanged(before);
    if (saved)
        showOutcome(*m_outcome, u"Saved. It will be on the next receipt."_s);
    else
        tellInOffice(this, u"The settings could not be saved. Check the disk and the folder of the settings file, then "
                           "save again."_s);
}

void ReceiptPage::showSaved()
{
    m_saved = readReceiptHead(m_settings);
    m_title->setText(m_saved.title);
    m_address->setText(m_saved.address);
    m_currency->setText(m_saved.currency);
    m_emailReport->setChecked(m_saved.emailReport);
}

/// The settings are this machine's, so the deed cannot be stored together with them.
void ReceiptPage::tellWhatChanged(const ReceiptHead &before) const
{
    QStringList changes;
    const auto note = [&changes](const QString &title, const QString &was, const QString &is) {
        if (was != is)
            changes << u"%1 \"%2\", before \"%3\""_s.arg(title, is, was);
    };
    const auto sent = [](const ReceiptHead &head) { return head.emailReport ? u"on"_s : u"off"_s; };
    note(u"title"_s, before.title, m_saved.title);
    note(u"address"_s, before.address, m_saved.address);
    note(u"currency"_s, before.currency, m_saved.currency);
    note(u"daily report by e-mail"_s, sent(before), sent(m_saved));
    if (!changes.isEmpty())
        (void)m_deeds.add(deed::settingChanged, u"Receipt of this computer: %1."_s.arg(changes.join(u"; "_s)));
}

} // namespace harrowby::app
