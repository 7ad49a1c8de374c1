// SPDX-License-Identifier: MIT
#pragma once

#include "input/touch_target.h" // for those who dress a window

#include <QSize>

namespace harrowby {

/// How the panels share the window.
enum class Shape {
    Wide,   ///< entry fields, list and side area beside each other
    Narrow, ///< the stock list below its entry fields
    Tall    ///< so too, and the side area below the panels that sell
};

/// How much room controls and texts take. The least that a finger needs is the same in each (input/touch_target.h).
enum class Density { Compact, Usual, Large };

[[nodiscard]] Shape shapeOf(const QSize &window);
[[nodiscard]] Density densityOf(const QSize &window);

/// Lengths in device-independent pixels.
struct Measures
{
    double fonts;      ///< factor on every font size of the style sheet
    int gutter;        ///< around the card of a panel
    int padding;       ///< between the edge of a card and what is in it
    int control;       ///< height of a button or an entry without its edge
    int purchase;      ///< the same of "Purchase Cart"
    int buttonPadding; ///< left and right of a button's caption
    int tabPadding;    ///< left and right of a tab's caption
    int totalPoints;   ///< font of the total, before the factor
    int listRow;       ///< height of a list's row without its line
    int header;        ///< height of a list's captions
    int statusBar;
    int loginWidth;
    int fieldsWidth; ///< least width of the stock's entry fields beside their list
    int sideWidth;   ///< least width of the side area
    int banner;      ///< height of a host's place above the total
    int pageWidth;   ///< greatest width of the settings: the fields stay as long as what is entered in them
};

[[nodiscard]] const Measures &measuresOf(Density density);
/// Those of dialogs, whatever the size of their window.
[[nodiscard]] const Measures &dialogMeasures();

} // namespace harrowby
