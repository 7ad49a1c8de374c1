// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/payment.h"
#include "app/records/deeds.h"

#include <QString>

#include <optional>
#include <utility>

namespace harrowby::app {

/// A purchase that an intent could be counted for.
struct IntentChoice
{
    QString purchaseId;
    QString items;
    QString seller;
    QString date; ///< as PurchaseCart holds it, yyMMddHHmmss
};

/// Payments that were begun by a till that died, and found no purchase: the money may be in the drawer, and the
/// purchase may never have come about. A person decides.
class OpenIntents
{
public:
    enum class Outcome {
        Done,
        Gone,   ///< somebody else has decided
        Misfit, ///< no purchase of that ID has the same sum
        Failed, ///< told by the records
    };

    /// The records must outlive it. With deeds, what is decided is told by them.
    explicit OpenIntents(Records &records, std::optional<SignedDeeds> deeds = {}) :
        m_records(records), m_deeds(std::move(deeds))
    {
    }

    /// Oldest first; each is in the state Unmatched, its `taken` in UTC.
    [[nodiscard]] Records::Answer<QList<Payment>> list() const;
    /// Purchases of the same sum from the day before to the day after, which a start or the till has counted as paid
    /// in cash, exact: one of them may be the one.
    [[nodiscard]] Records::Answer<QList<IntentChoice>> choicesFor(const Payment &intent) const;

    /// The purchase was paid in this way, and not as it was counted.
    [[nodiscard]] Outcome countFor(const QString &paymentId, const QString &purchaseId);
    /// There was no purchase: the money was given back, or was never taken.
    [[nodiscard]] Outcome remove(const QString &paymentId);

private:
    [[nodiscard]] std::optional<RecordStatement> told(const QString &what) const;

    Records &m_records;
    std::optional<SignedDeeds> m_deeds;
};

} // namespace harrowby::app
