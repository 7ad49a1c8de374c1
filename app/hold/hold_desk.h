// SPDX-License-Identifier: MIT
#pragma once

#include "app/hold/cart_holder.h"

#include <QObject>
#include <QString>

#include <functional>

namespace harrowby::app {

/// "Hold" and "Recall" at the counter: their buttons in the window's row, and what they ask and tell.
class HoldDesk final : public QObject
{
    Q_OBJECT

public:
    /// Says what became of the cart, beside the window's own texts; `isRefusal` when nothing did.
    using Say = std::function<void(const QString &text, bool isRefusal)>;

    /// Counter and records must outlive it.
    HoldDesk(Counter &counter, Records &records, Say say);

    /// Puts the buttons into a window that has opened.
    void furnish();

    void hold();
    void recall();

private:
    [[nodiscard]] bool isReady();
    void tellHeld(CartHolder::Held held, const QString &word);
    [[nodiscard]] bool mayAdd(const QString &word) const;
    [[nodiscard]] bool recallOne(const HeldCart &cart);
    void tellMisfits(const QString &word, const std::vector<CounterMisfit> &misfits) const;

    Counter &m_counter;
    HeldCarts m_carts;
    CartHolder m_holder;
    Say m_say;
};

} // namespace harrowby::app
