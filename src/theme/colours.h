// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>

class QPalette;

namespace harrowby {

/// The accent, which palettes of the program's own choose too, what is written on it, and the blue of links.
constexpr QRgb lightAccent = 0xff006256;
constexpr QRgb darkAccent = 0xff40c9ac;
constexpr QRgb onLightAccent = 0xffffffff;
constexpr QRgb onDarkAccent = 0xff041e19;
constexpr QRgb lightLink = 0xff0000ff;
constexpr QRgb darkLink = 0xff8cb4ff;

/// What each colour is for. All of them follow the application's palette; the style texts and every widget that paints
/// itself take their colours from here. Texts and edges are moved towards black or white until they can be read.
struct Colours
{
    bool dark;

    QColor background; ///< behind the till's panels, and of dialogs
    QColor card;       ///< panels of the till
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
    QColor chosenRow;  ///< the same of dialogs: stronger, as every other row of a table there is tinted
    QColor stripe;     ///< that tint

    QColor price;    ///< prices and totals, at least 7:1
    QColor danger;   ///< out of stock
    QColor onDanger; ///< text on it
    QColor link;     ///< lightLink or darkLink

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
