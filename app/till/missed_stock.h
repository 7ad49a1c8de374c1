// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/deeds.h"
#include "app/search/stock_miss.h"

#include <harrowby/counter.h>

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

namespace harrowby::app {

/// Sees to items that were renamed or removed, by an import or in the stock form, while this till showed them or had
/// them in the cart. Where a line was sold whose ID still belongs to one item, the stock of that item is lowered: a
/// purchase that is taken back is added by the ID, too. What cannot be put right is told, and written down.
class MissedStock final : public QObject
{
    Q_OBJECT

public:
    struct Voice
    {
        std::function<void(const QString &)> refuse; ///< of what did not come into the cart
        std::function<void(const QString &)> remark; ///< of what was sold; an empty text ends it
    };

    /// Counter and records must outlive it; `till` is the name of the drawer.
    MissedStock(Counter &counter, Records &records, const QString &till, Voice voice);

    /// Only notes it: to be called in the middle of the till's work.
    void note(const StockMiss &miss);

Q_SIGNALS:
    /// A stock that is wrong from now on; in plain words.
    void notChanged(const QString &work, const QString &reason, const QString &advice);

private:
    struct Standing
    {
        int items = 0; ///< with this very ID
        QString name;  ///< of the only one
        bool isSold = false;
        bool isRead = false;
    };

    [[nodiscard]] static QString reasonOf(const Standing &item, const QString &stockId);
    void followPurchase(const CounterPurchase &purchase);
    void followTakenBack(const QString &id);
    void sayNotForSale(const StockMiss &miss);
    [[nodiscard]] bool lower(const StockMiss &miss, const QString &name, const CounterPurchase &purchase);
    void tell(const QString &work, const QString &reason, const QString &user);
    [[nodiscard]] Standing standingOf(const QString &stockId) const;
    [[nodiscard]] QString nameInCart(const QString &stockId) const;

    Counter &m_counter;
    Records &m_records;
    Deeds m_deeds;
    Voice m_voice;
    QList<StockMiss> m_sold;      ///< of a purchase that has not been told yet
    QList<StockMiss> m_takenBack; ///< likewise
};

class FailureNotice;
class FindingConnection;

/// Has the notice tell of what cannot be put right; it must outlive it.
void tellMissedStock(const MissedStock &missed, FailureNotice &notice);
/// Has the connection tell of what it misses, and the notice of what cannot be put right. `missed` and `notice` must
/// outlive the connection's last statement, or its handler be removed.
void followMissedStock(FindingConnection &connection, MissedStock &missed, FailureNotice &notice);

} // namespace harrowby::app
