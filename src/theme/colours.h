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

/// The least contrast (contrastRatio()) of what is read, on each ground that it stands on, whatever the palette. Texts
/// and edges are moved towards black or white until they have it.
///
/// Intended: the reds of low stock in a light window have less, as they are the plain ones that the shop knows: 4.0 in
/// a row of the list, 3.1 in the chosen one. A sign says the same as the red.
namespace contrast {
inline constexpr double text = 4.5;
inline constexpr double muted = 5.0;  ///< captions, what is switched off, and the links of a dark window
inline constexpr double figure = 7.0; ///< the window's usual text; prices and totals, which are read from further away
inline constexpr double edge = 3.1;   ///< of entries, check boxes and buttons
} // namespace contrast

/// What each colour is for. All of them follow the application's palette; the style texts and every widget that paints
/// itself take their colours from here. Which text stands on which ground is said by the style sheets (common.qss,
/// till.qss, dialogs.qss) and by widgets that paint themselves.
struct Colours
{
    bool dark;

    QColor background; ///< behind the till's panels, and of dialogs
    QColor card;       ///< panels of the till
    QColor tile;       ///< areas set off inside a panel
    QColor field;      ///< entries and lists
    QColor text;       ///< contrast::figure
    QColor muted;      ///< captions and what is switched off; contrast::muted
    QColor border;
    QColor fieldBorder; ///< edges of entries, check boxes and buttons; contrast::edge

    QColor accent;
    QColor accentHover;
    QColor accentPressed;
    QColor onAccent;   ///< text on the accent
    QColor accentText; ///< the accent as a text colour
    QColor selection;  ///< selected rows and pressed cards
    QColor chosenRow;  ///< the same of dialogs: stronger, as every other row of a table there is tinted
    QColor stripe;     ///< that tint

    QColor price;    ///< prices and totals; contrast::figure
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
