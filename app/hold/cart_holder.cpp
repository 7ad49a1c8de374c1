// SPDX-License-Identifier: MIT
#include "app/hold/cart_holder.h"

#include "basic/numbers.h"

namespace harrowby::app {

CartHolder::Held CartHolder::hold(const QString &word)
{
    const auto user = m_counter.user();
    if (!user)
        return Held::NobodyThere;
    const CartToHold cart{word, user->name, m_counter.cart(), asStored(m_counter.total())};
    if (cart.lines.empty())
        return Held::CartEmpty;
    const auto id = m_carts.hold(cart);
    if (!id)
        return id.error() == HeldCarts::NotHeld::WordTaken ? Held::WordTaken : Held::NotHeld;
    std::vector<CounterLine> taken;
    if (m_counter.takeCart(taken) == CounterAnswer::Done)
        return Held::Done;
    switch (m_carts.drop(*id)) {
    case HeldCarts::Taken::Done:
        return Held::NotHeld;
    case HeldCarts::Taken::Gone:
        return Held::Elsewhere;
    default:
        return Held::Both;
    }
}

HeldCarts::Taken CartHolder::recall(const QString &id, std::vector<CounterMisfit> &misfits)
{
    if (!m_counter.user()) // else the login's gate would show its box within the transaction
        return HeldCarts::Taken::NotPut;
    return m_carts.take(id, [&](const std::vector<CounterLine> &lines) {
        return m_counter.putCart(lines, misfits) == CounterAnswer::Done;
    });
}

} // namespace harrowby::app
