// SPDX-License-Identifier: MIT
#include "theme/measures.h"

namespace harrowby {

namespace {

constexpr QSize usualSize(1000, 700); // holds the panels of every work area at usual measures, side by side
constexpr QSize largeSize(1600, 900);
constexpr int tallHeight = 900;

constexpr Measures compact{1.0, 4, 6, 40, 50, 8, 7, 28, 34, 26, 26, 400, 270, 304, 44, 960};
constexpr Measures usual{1.0, 6, 12, 42, 62, 12, 13, 34, 40, 30, 30, 400, 294, 372, 44, 960};
constexpr Measures large{1.25, 8, 16, 50, 78, 18, 20, 34, 48, 38, 38, 500, 400, 540, 64, 1240};

constexpr Measures dialog = [] {
    Measures measures = usual;
    measures.buttonPadding = 14;
    return measures;
}();

} // namespace

Shape shapeOf(const QSize &window)
{
    if (window.height() >= tallHeight && window.height() * 4 > window.width() * 5)
        return Shape::Tall;
    return window.width() < usualSize.width() ? Shape::Narrow : Shape::Wide;
}

Density densityOf(const QSize &window)
{
    if (window.width() < usualSize.width() || window.height() < usualSize.height())
        return Density::Compact;
    return window.width() < largeSize.width() || window.height() < largeSize.height() ? Density::Usual : Density::Large;
}

const Measures &measuresOf(Density density)
{
    switch (density) {
    case Density::Compact:
        return compact;
    case Density::Large:
        return large;
    default:
        return usual;
    }
}

const Measures &dialogMeasures()
{
    return dialog;
}

} // namespace harrowby
