// SPDX-License-Identifier: MIT
#include "app/office/shop_page.h"

#include "app/boxes/office_box.h"
#include "app/shop/failure_text.h"

#include <QCheckBox>
#include <QLabel>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

ShopPage::ShopPage(SearchChoice search, SignedDeeds deeds, bool isOnServer, QWidget *parent) :
    OfficePage(parent), m_choice(search), m_deeds(std::move(deeds))
{
    m_search = new QCheckBox(u"Search &finds a text anywhere"_s, this);
    m_search->setObjectName(u"searchAnywhere"_s);
    connect(m_search, &QCheckBox::clicked, this, &ShopPage::chooseSearch);
    m_outcome = makeOfficeText(this, {});
    m_outcome->setObjectName(u"shopOutcome"_s);

    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(16, 16, 16, 16);
    rows->setSpacing(12);
    rows->addWidget(makeOfficeText(this, u"What is chosen here counts for every till of this shop."_s));
    rows->addWidget(m_search);
    QLabel *hint = makeOfficeText(
        this, u"Switched on, \"milk\" finds \"WHOLE MILK 1 L\", in capitals or not. Switched "
              "off, it finds only an item whose whole name or ID is \"*MILK*\", which "
              "another program with this %1 may rely on."_s.arg(isOnServer ? u"store"_s : u"store file"_s));
    hint->setObjectName(u"searchHint"_s);
    rows->addWidget(hint);
    rows->addWidget(m_outcome);
    rows->addStretch(1);
    readSearch();
}

void ShopPage::readSearch()
{
    const auto chosen = m_choice.read();
    m_search->setChecked(chosen.value_or(false));
    m_isUnread = !chosen;
    if (!chosen)
        showOutcome(*m_outcome, u"\u26a0 "_s + failureWords(u"What was chosen could not be read."_s, chosen.error()));
}

void ShopPage::readAnew()
{
    if (!m_isUnread)
        return;
    showOutcome(*m_outcome, {});
    readSearch();
}

void ShopPage::chooseSearch(bool findsAnywhere)
{
    const auto changed = m_choice.change(!findsAnywhere, findsAnywhere, m_deeds);
    if (changed && *changed)
        return showOutcome(*m_outcome, u"Saved. It counts from the next search on."_s);
    if (changed) {
        showOutcome(*m_outcome, u"\u26a0 Somebody else has switched it meanwhile. Nothing was changed."_s);
        return readSearch();
    }
    m_search->setChecked(!findsAnywhere);
    showOutcome(*m_outcome, {});
    tellInOffice(this, failureWords(u"The search was not switched."_s, changed.error()));
}

} // namespace harrowby::app
