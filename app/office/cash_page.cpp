// SPDX-License-Identifier: MIT
#include "app/office/cash_page.h"

#include "app/boxes/office_box.h"
#include "app/cash/drawer_name.h"
#include "app/cash/open_intents.h"
#include "app/office/drawer_settings_dialog.h"
#include "app/office/open_payments_dialog.h"
#include "app/shop/failure_text.h"
#include "theme/dialogs.h"

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

QString drawerWords(const OfficeSettings &settings)
{
    const DrawerSettings drawer = readDrawerSettings(settings);
    return drawer.isOn ? u"\"%1\", pin %2, %3 ms"_s.arg(drawer.queue).arg(drawer.pin).arg(drawer.pulseMs) : u"none"_s;
}

} // namespace

CashPage::CashPage(const SignedDeeds &deeds, OfficeSettings settings, QWidget *parent) :
    OfficePage(parent), m_deeds(deeds), m_settings(std::move(settings)), m_saved(readCashChoices(deeds.records())),
    m_savedDrawer(savedDrawerName(m_settings))
{
    createEntries();
    auto *columns = new QHBoxLayout;
    columns->setSpacing(24);
    columns->addLayout(makeShop(), 1);
    columns->addLayout(makeMachine(), 1);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 8);
    rows->setSpacing(12);
    rows->addLayout(columns);
    rows->addStretch(1);
    rows->addLayout(makeOpen());
    rows->addLayout(makeEnd());
}

void CashPage::createEntries()
{
    m_ways = makeEntry(u"paymentWays"_s, u"Ways of paying beside cash"_s, waysText(m_saved.ways));
    m_notes = makeEntry(u"cashNotes"_s, u"Notes"_s, notesText(m_saved.notes));
    m_drawer = makeEntry(u"drawerName"_s, u"Name of the drawer"_s, m_savedDrawer);
    m_drawer->setPlaceholderText(drawerName({}, m_settings));
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"cashOutcome"_s);
    m_outcome->setMinimumHeight(m_outcome->fontMetrics().height() * 2);
}

QLineEdit *CashPage::makeEntry(const QString &objectName, const QString &spoken, const QString &text)
{
    auto *entry = new QLineEdit(text, this);
    entry->setObjectName(objectName);
    entry->setAccessibleName(spoken);
    connect(entry, &QLineEdit::returnPressed, this, &CashPage::save);
    return entry;
}

/// What counts for every till of the shop.
QLayout *CashPage::makeShop()
{
    auto *form = new QFormLayout;
    form->setVerticalSpacing(8);
    form->setRowWrapPolicy(QFormLayout::WrapAllRows);
    form->addRow(u"&Ways of paying beside cash:"_s, m_ways);
    form->addRow(u"&Notes that one touch hands over:"_s, m_notes);
    auto *rows = new QVBoxLayout;
    rows->setSpacing(8);
    rows->addWidget(
        makeOfficeText(this, u"For every till of this shop. Commas between the ways, blanks between the notes."_s));
    rows->addLayout(form);
    rows->addStretch(1);
    return rows;
}

/// What counts for this computer.
QLayout *CashPage::makeMachine()
{
    auto *form = new QFormLayout;
    form->setVerticalSpacing(8);
    form->setRowWrapPolicy(QFormLayout::WrapAllRows);
    form->addRow(u"Name of the &drawer:"_s, m_drawer);
    auto *opening = new QPushButton(u"&Printer That Opens It \u2026"_s, this);
    opening->setObjectName(u"drawerSettings"_s);
    connect(opening, &QPushButton::clicked, this, &CashPage::chooseDrawer);
    auto *rows = new QVBoxLayout;
    rows->setSpacing(8);
    rows->addWidget(makeOfficeText(this, u"For this computer. Each payment is kept with the name of its drawer."_s));
    rows->addLayout(form);
    rows->addWidget(opening, 0, Qt::AlignLeft);
    rows->addStretch(1);
    return rows;
}

QLayout *CashPage::makeOpen()
{
    m_openWords = makeOfficeText(this, {});
    m_openWords->setObjectName(u"openPaymentsCount"_s);
    m_open = new QPushButton(u"Look at The&m \u2026"_s, this);
    m_open->setObjectName(u"openPayments"_s);
    connect(m_open, &QPushButton::clicked, this, &CashPage::showOpen);
    auto *row = new QHBoxLayout;
    row->addWidget(m_openWords, 1);
    row->addWidget(m_open);
    return row;
}

QLayout *CashPage::makeEnd()
{
    auto *save = new QPushButton(u"Sa&ve"_s, this);
    save->setObjectName(u"saveCash"_s);
    makePrimary(*save);
    connect(save, &QPushButton::clicked, this, &CashPage::save);
    auto *row = new QHBoxLayout;
    row->addWidget(m_outcome, 1);
    row->addWidget(save);
    return row;
}

std::optional<LeavingQuestion> CashPage::leaving() const
{
    const bool changed = m_ways->text() != waysText(m_saved.ways) || m_notes->text() != notesText(m_saved.notes) ||
                         m_drawer->text() != m_savedDrawer;
    if (!changed)
        return {};
    return LeavingQuestion{u"What you have changed about cash is not saved. Discard it?"_s, u"&Discard It"_s};
}

void CashPage::save()
{
    const auto ways = readWays(m_ways->text());
    const auto notes = readNotes(m_notes->text());
    if (!ways || !notes)
        return showOutcome(*m_outcome, u"\u26a0 "_s + (ways ? notes.error() : ways.error()));
    const CashChoices choices{*ways, *notes};
    if (choices != m_saved && !saveChoices(choices))
        return;
    const QString drawer = drawerNameOf(m_drawer->text());
    if (drawer != m_savedDrawer && !saveDrawer(drawer))
        return;
    m_ways->setText(waysText(m_saved.ways));
    m_notes->setText(notesText(m_saved.notes));
    m_drawer->setText(drawer);
    showOutcome(*m_outcome, u"Saved. What belongs to this computer counts when the till is started the next time."_s);
}

bool CashPage::saveChoices(const CashChoices &choices)
{
    const auto changed = changeCashChoices(m_deeds, m_saved, choices);
    if (!changed) {
        tellInOffice(this, failureWords(u"Ways and notes were not saved."_s, changed.error()));
        return false;
    }
    if (!*changed) {
        showChangedMeanwhile();
        return false;
    }
    // What was left as it was read may have been changed by another office.
    m_saved = readCashChoices(m_deeds.records());
    return true;
}

bool CashPage::saveDrawer(const QString &name)
{
    if (savedDrawerName(m_settings) != m_savedDrawer) {
        showChangedMeanwhile();
        return false;
    }
    if (!saveDrawerName(m_settings, name)) {
        tellInOffice(this, u"The name of the drawer could not be saved. Check the disk and the folder of the "
                           "settings file, then save again."_s);
        return false;
    }
    (void)m_deeds.add(deed::settingChanged,
                      u"Name of the drawer of this computer: %1; before: %2."_s.arg(name, m_savedDrawer));
    m_savedDrawer = name;
    return true;
}

void CashPage::showSaved()
{
    m_saved = readCashChoices(m_deeds.records());
    m_savedDrawer = savedDrawerName(m_settings);
    m_ways->setText(waysText(m_saved.ways));
    m_notes->setText(notesText(m_saved.notes));
    m_drawer->setText(m_savedDrawer);
}

void CashPage::showChangedMeanwhile()
{
    showSaved();
    showOutcome(*m_outcome,
                u"\u26a0 Somebody else has changed this meanwhile. What is saved now is shown; what you typed "
                "was not saved."_s);
}

/// What is typed and not saved stays.
void CashPage::readAnew()
{
    if (!leaving())
        showSaved();
    countOpen();
}

void CashPage::chooseDrawer()
{
    if (DrawerSettingsDialog(m_settings, this).exec() != QDialog::Accepted)
        return;
    (void)m_deeds.add(deed::settingChanged,
                      u"The printer that opens the drawer of this computer: %1."_s.arg(drawerWords(m_settings)));
    showOutcome(*m_outcome, u"Saved. The drawer's printer counts when the till is started the next time."_s);
}

void CashPage::countOpen()
{
    const auto open = OpenIntents(m_deeds.records()).list();
    const qsizetype count = open ? open->size() : 0;
    m_open->setVisible(count > 0);
    m_openWords->setText(!open        ? u"\u26a0 "_s + failureWords(u"The payments could not be read."_s, open.error())
                         : count == 0 ? u"Every payment has found its purchase."_s
                         : count == 1 ? u"\u26a0 1 payment found no purchase."_s
                                      : u"\u26a0 %1 payments found no purchase."_s.arg(count));
}

void CashPage::showOpen()
{
    OpenPaymentsDialog(m_deeds, this).exec();
    countOpen();
}

} // namespace harrowby::app
