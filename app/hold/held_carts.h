// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

#include <harrowby/counter.h>

#include <QDateTime>
#include <QList>
#include <QString>

#include <cstdint>
#include <functional>
#include <vector>

namespace harrowby::app {

/// A cart that is held, as the list shows it.
struct HeldCart
{
    QString id;
    QString word;    ///< or a number, under which it is held; no other one is, whatever the case
    QDateTime since; ///< local time
    QString user;
    int lines = 0;
    double total = 0;
};

/// A cart that is to be held.
struct CartToHold
{
    QString word; ///< as heldWord() leaves it
    QString user;
    std::vector<CounterLine> lines;
    double total = 0;
};

/// The carts that are held in the store file. What fails has been told by the records.
class HeldCarts
{
public:
    enum class NotHeld {
        WordTaken, ///< another cart is held under it
        Failed,
        NotKnown, ///< nobody can say yet whether it is held
    };
    /// What came of taking a cart off the list.
    enum class Taken {
        Done,
        Gone,        ///< somebody else has taken it
        NotPut,      ///< `put` said no; the cart is still held
        Failed,      ///< still held
        StillListed, ///< `put` has put it, but the cart could not be taken off the list: it is in both places
        NotKnown,    ///< `put` has put it, and nobody can say yet whether the cart was taken off the list
    };

    /// The records must outlive it.
    explicit HeldCarts(Records &records) : m_records(records) {}

    /// Those held longest first.
    [[nodiscard]] Records::Answer<QList<HeldCart>> list() const;
    /// Holds the cart, all of it or nothing. As it is held.
    [[nodiscard]] Result<HeldCart, NotHeld> hold(const CartToHold &cart);
    /// Takes the cart off the list and hands its lines to `put`, as one transaction that is committed when `put`
    /// returns true. Of several tills that try, one gets it: the one whose DELETE has removed the row. The write lock
    /// is taken before that (Records::together()), so that the others find no row.
    [[nodiscard]] Taken take(const HeldCart &cart, const std::function<bool(const std::vector<CounterLine> &)> &put);
    /// Takes it off the list, without its lines: Done, Gone, Failed or NotKnown.
    [[nodiscard]] Taken drop(const HeldCart &cart);

private:
    [[nodiscard]] Records::Answer<std::vector<CounterLine>> linesOf(const QString &id) const;
    [[nodiscard]] Records::Answer<std::int64_t> removeHead(const QString &id);
    [[nodiscard]] bool removeLines(const QString &id);
    [[nodiscard]] bool add(const HeldCart &held, const std::vector<CounterLine> &lines);

    Records &m_records;
};

/// What was typed, as a cart is held under it (tidyLabel()).
[[nodiscard]] QString heldWord(const QString &typed);
/// Whether a cart is held under the word, in whatever case.
[[nodiscard]] bool isTaken(const QList<HeldCart> &carts, const QString &word);
/// The lowest number under which no cart is held.
[[nodiscard]] QString proposedWord(const QList<HeldCart> &carts);

} // namespace harrowby::app
