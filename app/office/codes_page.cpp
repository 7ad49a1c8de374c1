// SPDX-License-Identifier: MIT
#include "app/office/codes_page.h"

#include "app/boxes/office_box.h"
#include "app/codes/code_text.h"
#include "app/office/code_dialog.h"
#include "app/office/in_store_dialog.h"
#include "app/shop/failure_text.h"
#include "tables/table_view.h"
#include "theme/dialogs.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr std::size_t codeColumn = 0;
constexpr int itemColumn = 1;
constexpr int lettersOfCode = 22; // 14 digits are wider than as many letters

tables::Table emptyTable()
{
    tables::Table table;
    table.columns = {{u"Code"_s, tables::Kind::Text, false, lettersOfCode},
                     {u"Item"_s, tables::Kind::Text, true},
                     {u"ID"_s, tables::Kind::Text, false},
                     {u"Units"_s, tables::Kind::Count, false}};
    return table;
}

bool holds(const ItemCode &entry, const QString &text)
{
    return text.isEmpty() || entry.code.contains(text, Qt::CaseInsensitive) ||
           entry.stockId.contains(text, Qt::CaseInsensitive) || entry.name.contains(text, Qt::CaseInsensitive);
}

QString countWords(qsizetype all, qsizetype orphans)
{
    if (all == 0)
        return u"No item has a code beside its ID yet."_s;
    const QString count = all == 1 ? u"1 code"_s : u"%1 codes"_s.arg(all);
    return orphans == 0 ? count : count + u", %1 of items that are gone"_s.arg(orphans);
}

} // namespace

CodesPage::CodesPage(const SignedDeeds &deeds, QWidget *parent) :
    OfficePage(parent), m_deeds(deeds), m_table(deeds.records(), deeds)
{
    m_view = new tables::TableView(this);
    m_view->setObjectName(u"codes"_s);
    m_view->setAccessibleName(u"Codes"_s);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"codesOutcome"_s);
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 8);
    rows->setSpacing(10);
    rows->addLayout(makeHead());
    rows->addWidget(m_view, 1);
    rows->addWidget(m_outcome);
    rows->addLayout(makeButtons());
    m_view->show(emptyTable(), itemColumn, Qt::AscendingOrder);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentRowChanged, this, &CodesPage::followChoice);
    followChoice();
}

QHBoxLayout *CodesPage::makeHead()
{
    m_search = new QLineEdit(this);
    m_search->setObjectName(u"findCode"_s);
    m_search->setAccessibleName(u"Find a code or an item"_s);
    m_search->setPlaceholderText(u"Find a code or an item"_s);
    m_search->setClearButtonEnabled(true);
    connect(m_search, &QLineEdit::textChanged, this, &CodesPage::list);
    m_count = makeOfficeText(this, {});
    m_count->setObjectName(u"codesCount"_s);
    auto *sorting = m_view->createSortBox(this);
    sorting->setObjectName(u"sortCodes"_s);
    auto *head = new QHBoxLayout;
    head->setSpacing(12);
    head->addWidget(m_search, 2);
    head->addWidget(m_count, 1);
    head->addWidget(sorting);
    return head;
}

QHBoxLayout *CodesPage::makeButtons()
{
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    QPushButton *add = addButton(u"&Add Codes \u2026"_s, u"addCodes"_s, &CodesPage::addCodes);
    makePrimary(*add);
    buttons->addWidget(add);
    m_forOne = {addButton(u"U&nits \u2026"_s, u"changeUnits"_s, &CodesPage::changeUnits),
                addButton(u"Gi&ve To \u2026"_s, u"giveCode"_s, &CodesPage::giveCode),
                addButton(u"Dele&te"_s, u"deleteCode"_s, &CodesPage::deleteCode)};
    for (QPushButton *button : std::as_const(m_forOne))
        buttons->addWidget(button);
    buttons->addStretch(1);
    buttons->addWidget(addButton(u"Price Inside \u2026"_s, u"inStoreCodes"_s, &CodesPage::setRules));
    return buttons;
}

QPushButton *CodesPage::addButton(const QString &caption, const QString &name, void (CodesPage::*act)())
{
    auto *button = new QPushButton(caption, this);
    button->setObjectName(name);
    connect(button, &QPushButton::clicked, this, act);
    return button;
}

/// Also tells what could not be read.
bool CodesPage::read()
{
    const auto codes = m_table.list();
    m_codes = codes.value_or(QList<ItemCode>());
    const auto isOrphan = [](const ItemCode &entry) { return entry.isOrphan; };
    const QString count = countWords(m_codes.size(), std::count_if(m_codes.cbegin(), m_codes.cend(), isOrphan));
    m_count->setText(codes ? count : QString());
    m_outcome->clear();
    list();
    if (!codes)
        showOutcome(*m_outcome, u"\u26a0 "_s + failureWords(u"The codes could not be read."_s, codes.error()));
    return codes.has_value();
}

/// Reads the codes again; where that fails, both are told.
void CodesPage::readAfter(const QString &outcome)
{
    const bool isRead = read();
    showOutcome(*m_outcome, isRead ? outcome : outcome + u'\n' + m_outcome->text());
}

void CodesPage::list()
{
    const ItemCode *before = current();
    const QString chosen = before != nullptr ? before->code : QString();
    tables::Table table = emptyTable();
    for (const ItemCode &entry : std::as_const(m_codes)) {
        if (holds(entry, m_search->text().trimmed()))
            table.rows.push_back({entry.code, entry.isOrphan ? u"(the item is gone)"_s : entry.name, entry.stockId,
                                  static_cast<double>(entry.units)});
    }
    m_view->show(std::move(table), itemColumn, Qt::AscendingOrder);
    const auto &rows = m_view->table().rows;
    const auto isChosen = [&](const tables::Row &row) { return std::get<QString>(row.at(codeColumn)) == chosen; };
    const auto row = std::find_if(rows.begin(), rows.end(), isChosen);
    if (row != rows.end())
        m_view->setCurrentIndex(m_view->model()->index(static_cast<int>(row - rows.begin()), 0));
    followChoice();
}

const ItemCode *CodesPage::current() const
{
    const QModelIndex index = m_view->currentIndex();
    const auto &rows = m_view->table().rows;
    if (!index.isValid() || static_cast<std::size_t>(index.row()) >= rows.size())
        return nullptr;
    const QString code = std::get<QString>(rows.at(static_cast<std::size_t>(index.row())).at(codeColumn));
    const auto entry =
        std::find_if(m_codes.cbegin(), m_codes.cend(), [&](const ItemCode &one) { return one.code == code; });
    return entry != m_codes.cend() ? &*entry : nullptr;
}

void CodesPage::followChoice()
{
    for (QPushButton *button : std::as_const(m_forOne))
        button->setEnabled(current() != nullptr);
}

void CodesPage::addCodes()
{
    CodeDialog dialog(m_deeds, {}, this);
    dialog.exec();
    if (dialog.hasChanged())
        read();
}

void CodesPage::changeUnits()
{
    const ItemCode *entry = current();
    if (entry == nullptr)
        return;
    const ItemCode seen = *entry;
    QInputDialog dialog(this);
    dialog.setWindowTitle(u"Units"_s);
    dialog.setTextValue(QString::number(seen.units));
    dialog.setLabelText(u"How many units does one scan of %1 sell?"_s.arg(shownCode(seen.code)));
    enlargeFont(dialog);
    dressDialog(dialog);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const auto units = readUnits(dialog.textValue());
    if (!units)
        return tellInOffice(this, units.error());
    finish(m_table.setUnits(seen, *units), u"The units were not changed."_s,
           u"Saved: one scan of %1 sells %2."_s.arg(shownCode(seen.code)).arg(*units));
}

void CodesPage::giveCode()
{
    const ItemCode *entry = current();
    if (entry == nullptr)
        return;
    CodeDialog dialog(m_deeds, *entry, this);
    dialog.exec();
    if (!dialog.hasChanged())
        return;
    readAfter(u"Saved: the code has another item now."_s);
}

void CodesPage::deleteCode()
{
    const ItemCode *entry = current();
    if (entry == nullptr)
        return;
    const ItemCode seen = *entry;
    const QString of = seen.isOrphan ? QString() : u" of %1"_s.arg(itemWords(seen.name, seen.stockId));
    const QString code = shownCode(seen.code);
    if (askInOffice(this, u"Delete the code %1%2?"_s.arg(code, of), u"&Delete"_s))
        finish(m_table.remove(seen), u"The code was not deleted."_s, u"Deleted: %1."_s.arg(code));
}

void CodesPage::setRules()
{
    InStoreDialog(m_deeds, this).exec();
}

/// Reads the codes again, also after a failure.
void CodesPage::finish(const Records::Answer<bool> &done, const QString &what, const QString &outcome)
{
    if (done)
        return readAfter(*done ? outcome
                               : u"Somebody else has deleted or changed the code meanwhile. Nothing was changed."_s);
    read();
    tellInOffice(this, failureWords(what, done.error()));
}

} // namespace harrowby::app
