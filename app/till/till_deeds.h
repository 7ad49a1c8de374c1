// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/deeds.h"

#include <harrowby/counter.h>

#include <QHash>
#include <QObject>
#include <QString>

#include <optional>

namespace harrowby::app {

/// Writes down who did at the counter what the component's own log does not tell, or not by whom: sold at a price that
/// was changed by hand, took a purchase back, deleted items, was refused. The sale goes on when one cannot be written.
class TillDeeds final : public QObject
{
    Q_OBJECT

public:
    /// Counter and records must outlive it; `till` is the name of the drawer.
    TillDeeds(Counter &counter, Records &records, const QString &till);

    /// A code held the price of what is in the cart: it is not one of a person's.
    void notePriceOfCode(const QString &stockId, double units, double cost);

private:
    struct Sum
    {
        double units = 0;
        double cost = 0;
    };

    void followCart();
    void followPurchase(const CounterPurchase &purchase);
    void followRefusal(const QString &name);
    [[nodiscard]] std::optional<QString> priceWords(const CounterLine &line, const Sum &ofCodes) const;
    [[nodiscard]] std::optional<double> priceOf(const QString &stockId) const;
    [[nodiscard]] QString user() const;
    void add(const QString &kind, const QString &what);

    Counter &m_counter;
    Records &m_records;
    Deeds m_deeds;
    QHash<QString, Sum> m_ofCodes; ///< by ID, of the cart
    QHash<QString, Sum> m_emptied; ///< of the cart that was emptied last
};

} // namespace harrowby::app
