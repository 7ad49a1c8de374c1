// SPDX-License-Identifier: MIT
#include "app/office/store_access_line.h"

#include "app/boxes/office_box.h"
#include "app/shop/store_access.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

StoreAccessLine::StoreAccessLine(QString store, QWidget *parent) : QWidget(parent), m_store(std::move(store))
{
    m_text = makeOfficeText(this, u"\u26a0 Other users of this computer may read the store file, and with it all "
                                  "passwords."_s);
    m_text->setObjectName(u"storeAccess"_s);
    m_close = new QPushButton(u"Close &It to Others"_s, this);
    m_close->setObjectName(u"closeStoreAccess"_s);
    connect(m_close, &QPushButton::clicked, this, &StoreAccessLine::closeStore);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(16, 8, 16, 0);
    row->setSpacing(12);
    row->addWidget(m_text, 1);
    row->addWidget(m_close);
    setVisible(isOpenToOthers(m_store));
}

void StoreAccessLine::closeStore()
{
    if (!askInOffice(this,
                     u"Only you could open the store then: tills that run under another name of this computer could "
                     "not. Close it to others?"_s,
                     u"&Close It"_s))
        return;
    if (const auto closed = closeToOthers(m_store); !closed)
        return tellInOffice(
            this,
            u"The store file could not be closed to others: only its owner can do that.\n(%1)"_s.arg(closed.error()));
    showOutcome(*m_text, u"\u2713 Only you can read the store file now."_s);
    m_close->hide();
}

} // namespace harrowby::app
