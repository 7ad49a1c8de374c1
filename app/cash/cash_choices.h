// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/money.h"
#include "app/records/deeds.h"
#include "basic/result.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace harrowby::app {

/// How customers of the shop may pay; one for all its tills.
struct CashChoices
{
    QStringList ways;   ///< of paying, beside cash
    QList<Cents> notes; ///< in cents, from the smallest on: those that can be handed over by one touch

    bool operator==(const CashChoices &) const = default;

    static constexpr qsizetype mostWays = 6;
    static constexpr qsizetype longestWay = 14;
    static constexpr qsizetype mostNotes = 8;
};

/// Ways as they are written in one line, "Card, Voucher"; else why they cannot be taken.
[[nodiscard]] Result<QStringList, QString> readWays(const QString &text);
[[nodiscard]] QString waysText(const QStringList &ways);
/// Notes as they are written in one line, "5 10 20", also with commas between; else why they cannot be taken.
[[nodiscard]] Result<QList<Cents>, QString> readNotes(const QString &text);
[[nodiscard]] QString notesText(const QList<Cents> &notes);
/// "20", "0.50"
[[nodiscard]] QString noteText(Cents cents);

/// Card alone, and notes of 5 to 100, until the office has saved others.
[[nodiscard]] CashChoices readCashChoices(Records &records);
/// Saves what differs from `before`, which was read, and tells it by deeds. False, and nothing is saved, when something
/// of that was changed by somebody else meanwhile.
[[nodiscard]] Records::Answer<bool> changeCashChoices(const SignedDeeds &deeds, const CashChoices &before,
                                                      const CashChoices &choices);

} // namespace harrowby::app
