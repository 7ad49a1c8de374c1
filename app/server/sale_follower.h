// SPDX-License-Identifier: MIT
#pragma once

#include "app/search/stock_miss.h"

#include <harrowby/counter.h>
#include <harrowby/db_connection.h>

#include <QList>
#include <QObject>
#include <QString>

#include <optional>
#include <vector>

namespace harrowby::app {

class FailureNotice;

/// What becomes of a purchase while the server fails. The component goes on to the end whatever fails, and then its
/// cart is empty. Where not one line and not the purchase itself has been written, nothing has been sold, and the cart
/// comes back; otherwise each line that was not written is told by its item.
class SaleFollower final : public QObject
{
    Q_OBJECT

public:
    /// Both must outlive it.
    SaleFollower(Counter &counter, FailureNotice &notice, QObject *parent = nullptr);

    /// A write of the component's, or of the program's own, has failed. To be called in the middle of the till's work.
    void note(const DbFailure &failure, WriteOutcome outcome);

    /// Of a write that was not known, it is known now, or never will be (Unknown). Likewise.
    void settle(const QString &statement, WriteOutcome known);
    /// Whether there are writes that are not known yet.
    [[nodiscard]] bool isInDoubt() const { return m_doubts > 0; }

Q_SIGNALS:
    /// The cart of a purchase of which nothing was written is in the counter again.
    void cartIsBack(const QString &purchaseId);

private:
    struct Miss
    {
        DbFailure failure;
        WriteOutcome outcome;
        StockMiss line; ///< of the purchase
    };
    struct Cart
    {
        QString purchaseId;
        std::vector<CounterLine> lines;
    };

    /// A line of which nobody knew when its purchase was told.
    struct Doubt
    {
        QString line;
        QString told; ///< the notice's sentence
    };

    [[nodiscard]] bool settleRow(const QString &statement, WriteOutcome known);
    [[nodiscard]] bool settleMiss(const QString &line, WriteOutcome known);
    void forgetDoubt(const QString &line);
    void follow(const CounterPurchase &purchase);
    void tell(const Miss &miss, const QString &purchaseId);
    void bringBack();

    Counter &m_counter;
    FailureNotice &m_notice;
    QList<Miss> m_misses;                   ///< of a purchase that has not been told yet
    std::optional<DbFailure> m_row;         ///< the purchase itself, likewise; for certain not written
    std::optional<DbFailure> m_doubtfulRow; ///< the same while it is not known
    QList<Doubt> m_toldDoubts;
    int m_doubts = 0;
    std::vector<Cart> m_back; ///< that are to come back
};

/// Tells of a write that was not known, perhaps of an earlier program's, what has become of it, or that nobody can find
/// out any more (Unknown).
void tellSettled(FailureNotice &notice, const QString &statement, WriteOutcome known);

} // namespace harrowby::app
