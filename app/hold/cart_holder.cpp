// SPDX-License-Identifier: MIT
#include "app/hold/cart_holder.h"

#include "basic/numbers.h"

namespace harrowby::app {

namespace {

CartHolder::Held notHeld(HeldCarts::NotHeld why)
{
    switch (why) {
    case HeldCarts::NotHeld::WordTaken:
        return CartHolder::Held::WordTaken;
    case HeldCarts::NotHeld::NotKnown:
        return CartHolder::Held::NotKnown;
    case HeldCarts::NotHeld::Failed:
        break;
    }
    return CartHolder::Held::NotHeld;
}

} // namespace

CartHolder::Held CartHolder::hold(const QString &word)
{
    const auto user = m_counter.user();
    if (!user)
        return Held::NobodyThere;
    const CartToHold cart{word, user->name, m_counter.cart(), asStored(m_counter.total())};
    if (cart.lines.empty())
        return Held::CartEmpty;
    const auto held = m_carts.hold(cart);
    if (!held)
        return notHeld(held.error());
    std::vector<CounterLine> taken;
    if (m_counter.takeCart(taken) == CounterAnswer::Done)
        return Held::Done;
    switch (m_carts.drop(*held)) {
    case HeldCarts::Taken::Done:
        return Held::NotHeld;
    case HeldCarts::Taken::Gone:
        return Held::Elsewhere;
    case HeldCarts::Taken::NotKnown:
        return Held::NotKnown;
    default:
        return Held::Both;
    }
}

HeldCarts::Taken CartHolder::recall(const HeldCart &cart, std::vector<CounterMisfit> &misfits)
{
    if (!m_counter.user()) // else the login's gate would show its box within the transaction
        return HeldCarts::Taken::NotPut;
    return m_carts.take(cart, [&](const std::vector<CounterLine> &lines) {
        return m_counter.putCart(lines, misfits) == CounterAnswer::Done;
    });
}

} // namespace harrowby::app
