// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/payment_table.h"
#include "app/cash/run_locks.h"
#include "app/cash/runs.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>

namespace harrowby::app {

/// What a start does about the runs of the program that have died: their purchases get the payments that they lack.
///
/// 1. A purchase without a payment gets the intent of a dead run that fits it: the same items, seller and sum, and the
///    nearest time within a day.
/// 2. Or else it counts as paid in cash, exact. Should it be a living run's that has not heard of it yet, that one puts
///    its own payment in the place of the counted one. (An intent of a living run tells nothing: its purchase may be
///    yet to come.)
/// 3. Payments whose purchase is gone are taken back.
/// 4. Intents of dead runs that are left are Unmatched: a person decides (open_intents.h). None is removed: the money
///    may lie in the drawer.
/// 5. The dead runs have ended.
///
/// It is one transaction, and reads the purchases since the dead runs began (runs move that on day by day), by day and
/// ID; payments without a purchase are looked for a month further back. With no dead run it reads one row, and writes
/// nothing. A run that could not hold its lock counts as dead a day after its start.
class Settlement
{
public:
    struct Place
    {
        std::int64_t run = 0; ///< that settles; 0 while it is not noted
        QString drawer;
    };

    /// Both must outlive it. Without locks nothing is settled.
    Settlement(Records &records, const RunLocks *locks, Place place);

    /// Whether there were dead runs, and all of them are settled. What fails is told by the records, and left to the
    /// next start.
    bool settle(const QDateTime &now);
    /// Whether another look may find more: of some run it could not be told, or not yet, whether it lives.
    [[nodiscard]] bool isUndecided() const { return m_isUndecided; }

private:
    struct Purchase
    {
        QString id;
        QString items;
        Cents total = 0;
        QDateTime date; ///< local; invalid where the text is no date
        QString seller;
    };

    [[nodiscard]] QSet<std::int64_t> withoutHolder(const QList<Run> &runs);
    [[nodiscard]] Records::Answer<QList<Run>> deadRuns();
    [[nodiscard]] bool settleRuns();
    [[nodiscard]] bool readIntents();
    [[nodiscard]] Records::Answer<QStringList> oddPurchases() const;
    [[nodiscard]] Records::Answer<QStringList> goneAmong(const QString &prefix) const;
    [[nodiscard]] Records::Answer<QList<Purchase>> purchasesOf(const QString &id) const;
    [[nodiscard]] bool balance(const QString &id);
    [[nodiscard]] bool takeBackGone();
    [[nodiscard]] bool pay(const Purchase &purchase);
    [[nodiscard]] bool countAsExactCash(const Purchase &purchase);
    [[nodiscard]] bool endRuns();
    [[nodiscard]] const Run &likelyRun(const Purchase &purchase) const;

    Records &m_records;
    const RunLocks *m_locks;
    Place m_place;
    PaymentTable m_table;
    QDateTime m_now;
    QList<Run> m_dead;
    QString m_since;
    bool m_isUndecided = false;
    QHash<QString, QList<Payment>> m_intents; ///< of dead runs, by what was sold
};

} // namespace harrowby::app
