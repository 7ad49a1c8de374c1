// SPDX-License-Identifier: MIT
#include "app/office/in_store_dialog.h"

#include "app/boxes/office_box.h"
#include "app/codes/code_finder.h"
#include "app/codes/code_text.h"
#include "app/shop/failure_text.h"
#include "basic/numbers.h"
#include "theme/dialogs.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int usualDecimals = 2;

/// Two digits of prefix, five of the item, five of the price, as most scales print.
QString usualPattern(const QString &prefix)
{
    return prefix + u"IIIIIPPPPPC"_s;
}

QString readingWords(const InStoreReading &reading)
{
    return reading.isWeight ? u"Item number %1, weight %2"_s.arg(reading.itemNumber, plainText(reading.amount))
                            : u"Item number %1, price %2"_s.arg(reading.itemNumber, formatMoney(reading.amount));
}

} // namespace

InStoreDialog::InStoreDialog(const SignedDeeds &deeds, QWidget *parent) :
    QDialog(parent), m_deeds(deeds), m_settings(deeds.records())
{
    setWindowTitle(u"Codes with a Price or a Weight"_s);
    enlargeFont(*this);
    createParts();
    layOut();
    dressDialog(*this);
    resize(QSize(640, 500).boundedTo(screen()->availableSize()));
    readRules();
}

void InStoreDialog::createParts()
{
    m_prefix = new QComboBox(this);
    m_prefix->setObjectName(u"inStorePrefix"_s);
    m_prefix->setAccessibleName(u"Codes that begin with"_s);
    for (const QString &prefix : inStorePrefixes())
        m_prefix->addItem(prefix, prefix);
    connect(m_prefix, &QComboBox::activated, this, &InStoreDialog::showRule);
    m_isOn = new QCheckBox(u"&Read a price or a weight from these codes"_s, this);
    m_isOn->setObjectName(u"inStoreOn"_s);
    m_pattern = new QLineEdit(this);
    m_pattern->setObjectName(u"inStorePattern"_s);
    m_pattern->setAccessibleName(u"Pattern"_s);
    m_decimals = new QComboBox(this);
    m_decimals->setObjectName(u"inStoreDecimals"_s);
    m_decimals->setAccessibleName(u"Decimals of the price or the weight"_s);
    for (int decimals = 0; decimals <= InStoreRule::mostWeightDecimals; ++decimals)
        m_decimals->addItem(QString::number(decimals));
    m_sample = new QLineEdit(this);
    m_sample->setObjectName(u"inStoreSample"_s);
    m_sample->setAccessibleName(u"Try a code"_s);
    m_sample->setPlaceholderText(u"Type or scan one"_s);
    m_reading = makeOfficeText(this, {});
    m_reading->setObjectName(u"inStoreReading"_s);
    for (const QLineEdit *entry : {m_pattern, m_sample})
        connect(entry, &QLineEdit::textChanged, this, &InStoreDialog::tryCode);
    connect(m_decimals, &QComboBox::currentIndexChanged, this, &InStoreDialog::tryCode);
    connect(m_isOn, &QCheckBox::toggled, this, [this](bool on) {
        for (QWidget *entry : {static_cast<QWidget *>(m_pattern), static_cast<QWidget *>(m_decimals)})
            entry->setEnabled(on);
        tryCode();
    });
}

QFormLayout *InStoreDialog::makeForm()
{
    auto *form = new QFormLayout;
    form->setVerticalSpacing(10);
    form->addRow(u"Codes that &begin with:"_s, m_prefix);
    form->addRow(m_isOn);
    form->addRow(u"&Pattern:"_s, m_pattern);
    form->addRow(u"&Decimals:"_s, m_decimals);
    form->addRow(u"&Try a code:"_s, m_sample);
    form->addRow(QString(), m_reading);
    centreCaptions(*form);
    return form;
}

void InStoreDialog::layOut()
{
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"inStoreOutcome"_s);
    m_save = new QPushButton(u"&Save"_s, this);
    m_save->setObjectName(u"saveInStore"_s);
    makePrimary(*m_save);
    connect(m_save, &QPushButton::clicked, this, &InStoreDialog::save);
    auto *close = new QPushButton(u"C&lose"_s, this);
    close->setObjectName(u"closeInStore"_s);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(12);
    buttons->addStretch(1);
    for (QPushButton *button : {m_save, close}) {
        button->setAutoDefault(false); // a reader ends what it types with Enter
        buttons->addWidget(button);
    }
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 12, 16, 12);
    rows->addWidget(makeOfficeText(
        this, u"A scale prints 13 digits. The pattern says where what lies: the prefix, I for the item's number, P for "
              "the price or W for the weight, V for a digit that checks it, \".\" for any digit, C at the end. With a "
              "weight, the item's cost is that of one unit of weight. One scan sells one pack."_s));
    rows->addLayout(makeForm());
    rows->addStretch(1);
    rows->addWidget(m_outcome);
    rows->addLayout(buttons);
}

void InStoreDialog::readRules()
{
    const auto rules = m_settings.startingWith(inStoreSetting({}));
    m_saved.clear();
    for (const auto &[prefix, text] : rules.value_or(QList<std::pair<QString, QString>>()))
        m_saved.insert(prefix, text);
    nameEntries();
    showRule();
    m_save->setEnabled(rules.has_value()); // else a rule that nobody has seen would be replaced
    if (!rules)
        showOutcome(*m_outcome, u"\u26a0 "_s + failureWords(u"The rules could not be read."_s, rules.error()));
}

/// The chosen prefix's rule as it was read.
std::optional<QString> InStoreDialog::saved() const
{
    return m_saved.contains(prefix()) ? std::optional(m_saved.value(prefix())) : std::nullopt;
}

void InStoreDialog::nameEntries()
{
    for (int i = 0; i < m_prefix->count(); ++i) {
        const auto rule = InStoreRule::fromText(m_saved.value(m_prefix->itemData(i).toString()));
        const QString use = !rule ? u"not read"_s : rule->isWeight() ? u"weight"_s : u"price"_s;
        m_prefix->setItemText(i, u"%1 (%2)"_s.arg(m_prefix->itemData(i).toString(), use));
    }
}

QString InStoreDialog::prefix() const
{
    return m_prefix->currentData().toString();
}

void InStoreDialog::showRule()
{
    const auto rule = InStoreRule::fromText(m_saved.value(prefix()));
    m_pattern->setText(rule ? rule->pattern() : usualPattern(prefix()));
    m_decimals->setCurrentIndex(rule ? rule->decimals() : usualDecimals);
    m_isOn->setChecked(rule.has_value());
    for (QWidget *entry : {static_cast<QWidget *>(m_pattern), static_cast<QWidget *>(m_decimals)})
        entry->setEnabled(rule.has_value());
    if (m_save->isEnabled())
        m_outcome->clear();
    tryCode();
}

Result<InStoreRule, QString> InStoreDialog::entered() const
{
    const auto rule = InStoreRule::fromPattern(m_pattern->text().trimmed().toUpper(), m_decimals->currentIndex());
    if (rule && rule->prefix() != prefix())
        return Unexpected(u"The pattern of these codes begins with %1."_s.arg(prefix()));
    return rule;
}

void InStoreDialog::tryCode()
{
    const auto rule = entered();
    if (!m_isOn->isChecked())
        return m_reading->setText(u"Such a code is only found as it stands."_s);
    if (!rule)
        return m_reading->setText(u"\u26a0 "_s + rule.error());
    if (m_sample->text().isEmpty())
        return m_reading->clear();
    const auto reading = rule->read(m_sample->text().trimmed());
    m_reading->setText(reading ? readingWords(*reading) : u"Nothing can be read from this code."_s);
}

void InStoreDialog::save()
{
    const auto rule = entered();
    const bool on = m_isOn->isChecked();
    if (on && !rule)
        return showOutcome(*m_outcome, u"\u26a0 "_s + rule.error());
    const std::optional<QString> text = on ? std::optional(rule->text()) : std::nullopt;
    const QString unread = u"not read"_s;
    const auto replaced = m_settings.replace(
        inStoreSetting(prefix()), saved(), text,
        m_deeds.statement(deed::settingChanged, u"Codes that begin with %1: %2, before %3."_s.arg(
                                                    prefix(), text.value_or(unread), saved().value_or(unread))));
    if (!replaced)
        return tellInOffice(this, failureWords(u"The rule was not saved."_s, replaced.error()));
    if (!*replaced) {
        readRules();
        return showOutcome(*m_outcome,
                           u"\u26a0 Somebody else has changed this rule meanwhile. What is stored now is shown."_s);
    }
    if (on)
        m_saved.insert(prefix(), rule->text());
    else
        m_saved.remove(prefix());
    nameEntries();
    showOutcome(*m_outcome, on ? u"Saved: a price or a weight is read from these codes."_s
                               : u"Saved: nothing is read from these codes."_s);
}

} // namespace harrowby::app
