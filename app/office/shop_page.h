// SPDX-License-Identifier: MIT
#pragma once

#include "app/boxes/office_page.h"
#include "app/search/search_choice.h"

class QCheckBox;
class QLabel;

namespace harrowby::app {

/// What holds for all tills of the shop.
class ShopPage final : public OfficePage
{
    Q_OBJECT

public:
    ShopPage(SearchChoice search, SignedDeeds deeds, bool isOnServer, QWidget *parent = nullptr);

    void readAnew() override;

private:
    void readSearch();
    void chooseSearch(bool findsAnywhere);

    SearchChoice m_choice;
    SignedDeeds m_deeds;
    QCheckBox *m_search = nullptr;
    QLabel *m_outcome = nullptr;
    bool m_isUnread = false; ///< when it was last tried
};

} // namespace harrowby::app
