// SPDX-License-Identifier: MIT
#pragma once

#include "app/hold/held_carts.h"

#include <vector>

namespace harrowby::app {

/// Moves a cart between the counter and the store file.
///
/// Order of effects, so that a till that is killed at any moment loses no cart:
/// 1. Hold writes the cart into the file, committed, and only then empties the counter's. A kill in between leaves the
///    cart held.
/// 2. Recall deletes the held cart and puts its lines into the counter's cart within one transaction, which is
///    committed last. A kill before that undoes the deletion: the cart is held as before. After it, the cart is the
///    counter's.
/// Where the last step fails without a kill, the cart is in both places, and the outcome says so. Where nobody can say
/// whether a commit was done, the counter's cart stays: it may be held, too.
class CartHolder
{
public:
    enum class Held {
        Done,
        NobodyThere, ///< nobody is logged in
        CartEmpty,
        WordTaken,
        NotHeld,   ///< the cart is the counter's as before
        Both,      ///< held, and still in the counter's cart
        NotKnown,  ///< still in the counter's cart, and nobody can say yet whether it is held, too
        Elsewhere, ///< still in the counter's cart, and another till has recalled it already
    };

    /// Both must outlive it.
    CartHolder(Counter &counter, HeldCarts &carts) : m_counter(counter), m_carts(carts) {}

    /// `word` as heldWord() leaves it, and not empty. No box, no event loop.
    Held hold(const QString &word);
    /// Adds the held cart to what is in the counter's; `misfits` gets the lines that are not as they were. Somebody
    /// must be logged in. No box, no event loop.
    HeldCarts::Taken recall(const HeldCart &cart, std::vector<CounterMisfit> &misfits);

private:
    Counter &m_counter;
    HeldCarts &m_carts;
};

} // namespace harrowby::app
