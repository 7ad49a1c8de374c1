// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>

class QPalette;

namespace harrowby {

/// What each colour of the window is for. All of them follow the application's palette; the style sheet and every
/// widget that paints itself take their colours from here.
struct Colours
{
    bool dark;

    QColor background; ///< behind the panels
    QColor card;       ///< panels
    QColor tile;       ///< areas set off inside a panel
    QColor field;      ///< entries and lists
    QColor text;
    QColor muted; ///< captions and what is switched off
    QColor border;
    QColor fieldBorder; ///< edges of entries, check boxes and buttons

    QColor accent;
    QColor accentHover;
    QColor accentPressed;
    QColor onAccent;   ///< text on the accent
    QColor accentText; ///< the accent as a text colour
    QColor selection;  ///< selected rows and pressed cards

    QColor price;    ///< prices and totals, at least 7:1
    QColor danger;   ///< out of stock
    QColor onDanger; ///< text on it
    QColor link;     ///< blue

    QColor lowRow;    ///< text of a list row at or below its reorder level: red
    QColor enoughRow; ///< text of the other rows: black
    QColor lowLevel;  ///< behind a stock level at or below its reorder level: red
    QColor level;     ///< behind the other levels: white
    QColor onLowLevel;
    QColor onLevel;

    [[nodiscard]] static Colours from(const QPalette &palette);
    /// Those of the application's palette now.
    [[nodiscard]] static const Colours &current();
};

/// Contrast ratio of two opaque colours, 1 to 21.
[[nodiscard]] double contrastRatio(const QColor &one, const QColor &other);

} // namespace harrowby
