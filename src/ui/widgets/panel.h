// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>

namespace harrowby {

/// A panel of the window. Several share one place, so a panel hides everything under it, its gutter included.
class Panel : public QFrame
{
    Q_OBJECT

public:
    enum class Look {
        Card,     ///< a card with a gutter in the colour of the window around it
        Floating, ///< a card in front of the window, with a shadow
        Plain     ///< part of another card
    };

    Panel(Look look, QWidget *parent);

    /// What the panel's layout leaves free on each side: gutter or shadow, and the padding of the card.
    [[nodiscard]] int margin() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Look m_look;
};

} // namespace harrowby
