// SPDX-License-Identifier: MIT
#pragma once

#include "theme/measures.h"

#include <QFrame>
#include <QPointer>

#include <vector>

namespace harrowby {

/// A panel of the window. Several share one place, so a panel hides everything under it, its gutter included.
class Panel : public QFrame
{
    Q_OBJECT

public:
    enum class Kind {
        Card,     ///< a card with a gutter in the colour of the window around it
        Floating, ///< a card in front of the window, with a shadow
        Plain     ///< part of another card
    };

    Panel(Kind kind, QWidget *parent);

    /// What the panel's layout leaves free on each side: gutter or shadow, and the padding of the card.
    [[nodiscard]] int margin() const;
    /// Gutter and padding of a card follow it.
    void setDensity(Density density);

    /// Delays polishing (applying the style sheet to) the panel's children until the panel is first shown: polishing a
    /// control takes longer than making it, and a window opens with most of its panels hidden.
    void dressWhenShown();

    void setVisible(bool visible) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void dress();

    Kind m_kind;
    int m_gutter;
    int m_padding;
    std::vector<QPointer<QWidget>> m_undressed; ///< whose events are filtered
    std::vector<QPointer<QWidget>> m_waiting;   ///< those whose Polish event was filtered
};

} // namespace harrowby
