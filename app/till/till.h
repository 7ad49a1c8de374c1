// SPDX-License-Identifier: MIT
#pragma once

#include "app/banner/banner.h"
#include "app/cash/cash_desk.h"
#include "app/cash/drawer_desk.h"
#include "app/cash/payments.h"
#include "app/hold/hold_desk.h"
#include "app/readers/code_readers.h"
#include "app/shop/office_settings.h"
#include "app/till/code_seller.h"
#include "app/till/first_steps.h"
#include "app/till/missed_stock.h"
#include "app/till/till_deeds.h"

#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <utility>

namespace harrowby::app {

/// The store program's own at the counter. Made before the window opens; each window that opens gets its banner and
/// buttons.
class Till final : public QObject
{
    Q_OBJECT

public:
    /// Counter and records must outlive it; the settings say which code readers this machine has. `sound` is heard when
    /// something is refused. `cash` says where the payments go.
    Till(Counter &counter, Records &records, const OfficeSettings &settings, std::function<void()> sound,
         CashStation cash = {});
    ~Till() override;

    [[nodiscard]] Banner &banner() { return m_banner; }
    [[nodiscard]] Payments &payments() { return m_payments; }
    [[nodiscard]] DrawerDesk &drawer() { return m_drawer; }
    [[nodiscard]] MissedStock &missedStock() { return m_missedStock; }
    /// See CodeReaders::refuseWhere().
    void refuseCodesWhere(CodeReaders::WasWaiting wasWaiting) { m_readers->refuseWhere(std::move(wasWaiting)); }

private:
    void takeCodes(const OfficeSettings &settings);
    void furnish();
    void keepCodes(const QString &oldId, const QString &newId);
    void sayOfCart(const QString &text, bool isRefusal);
    void followCart();

    Counter &m_counter;
    Records &m_records;
    Banner m_banner;
    Payments m_payments;
    DrawerDesk m_drawer;
    CodeSeller m_codes;
    TillDeeds m_deeds;
    MissedStock m_missedStock;
    FirstSteps m_firstSteps;
    CashDesk m_cash;
    HoldDesk m_hold;
    bool m_sayingOfCart = false; ///< the change of the cart that was spoken of has not been heard of yet
    std::unique_ptr<CodeReaders> m_readers;
};

} // namespace harrowby::app
