// SPDX-License-Identifier: MIT
#include "theme/colours.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <cmath>

namespace harrowby {

namespace {

constexpr QRgb darkDanger = 0xffff8076; ///< red, on dark grounds

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor &colour)
{
    return 0.2126 * linear(static_cast<double>(colour.redF())) + 0.7152 * linear(static_cast<double>(colour.greenF())) +
           0.0722 * linear(static_cast<double>(colour.blueF()));
}

/// The first colour with this share of the second one in it.
QColor mixed(const QColor &base, const QColor &other, double share)
{
    const auto channel = [share](int from, int to) {
        return static_cast<int>(std::lround(from + (to - from) * share));
    };
    return {channel(base.red(), other.red()), channel(base.green(), other.green()), channel(base.blue(), other.blue())};
}

/// The wanted colour, mixed with black or white until its contrast on each of these backgrounds is high enough.
QColor readable(const QColor &wanted, std::initializer_list<QColor> grounds, double ratio)
{
    const bool onDark = luminance(*grounds.begin()) < 0.18;
    const QColor target = onDark ? QColor(Qt::white) : QColor(Qt::black);
    for (int step = 0; step <= 20; ++step) {
        const QColor colour = mixed(wanted, target, step * 0.05);
        if (std::all_of(grounds.begin(), grounds.end(),
                        [&](const QColor &ground) { return contrastRatio(colour, ground) >= ratio; }))
            return colour;
    }
    return target;
}

void setGrounds(Colours &colours, const QPalette &palette)
{
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    const QColor base = palette.color(QPalette::Active, QPalette::Base);
    colours.dark = luminance(window) < 0.18;
    if (colours.dark) {
        colours.accent = QColor(darkAccent);
        colours.card = mixed(window, colours.accent, 0.03);
        colours.background = mixed(colours.card, Qt::black, 0.45);
        colours.field = mixed(colours.card, Qt::black, 0.30);
        colours.tile = mixed(colours.card, Qt::white, 0.07);
    } else {
        colours.accent = QColor(lightAccent);
        colours.card = base;
        colours.background = mixed(window, colours.accent, 0.05);
        colours.field = base;
        colours.tile = mixed(base, colours.accent, 0.06);
    }
}

void setTexts(Colours &colours, const QPalette &palette)
{
    const auto grounds = {colours.card, colours.tile, colours.field, colours.background};
    colours.text = readable(palette.color(QPalette::Active, QPalette::WindowText), grounds, contrast::figure);
    colours.muted = readable(mixed(colours.text, colours.card, 0.30), grounds, contrast::muted);
    colours.border = mixed(colours.card, colours.text, 0.16);
    colours.fieldBorder = readable(mixed(colours.card, colours.text, 0.45), grounds, contrast::edge);
    colours.price = readable(colours.dark ? colours.accent : mixed(colours.accent, Qt::black, 0.15),
                             {colours.card, colours.tile, colours.field, mixed(colours.card, colours.accent, 0.16)},
                             contrast::figure);
    colours.link = colours.dark ? readable(QColor(darkLink), grounds, contrast::muted) : QColor(lightLink);
}

void setAccents(Colours &colours)
{
    colours.onAccent = QColor(colours.dark ? onDarkAccent : onLightAccent);
    colours.accentHover = mixed(colours.accent, colours.dark ? Qt::white : Qt::black, 0.12);
    colours.accentPressed = mixed(colours.accent, colours.dark ? Qt::white : Qt::black, 0.25);
    colours.accentText = readable(colours.accent, {colours.card, colours.tile, colours.background}, contrast::text);
    colours.selection = mixed(colours.card, colours.accent, 0.16);
    colours.chosenRow = mixed(colours.field, colours.accent, 0.25);
    colours.stripe = colours.dark ? colours.card : colours.tile;
    colours.danger = colours.dark ? QColor(darkDanger) : QColor(186, 14, 14);
    colours.onDanger = colours.dark ? QColor(45, 0, 0) : QColor(Qt::white);
}

void setStockSigns(Colours &colours)
{
    // In a light window the plain red, black and white: see contrast.
    colours.lowRow = colours.dark ? readable(QColor(darkDanger), {colours.field, colours.selection}, contrast::text)
                                  : QColor(255, 0, 0);
    colours.enoughRow = colours.dark ? colours.text : QColor(0, 0, 0);
    colours.lowLevel = colours.dark ? QColor(255, 110, 98) : QColor(255, 0, 0);
    colours.onLowLevel = QColor(0, 0, 0);
    colours.level = colours.dark ? colours.field : QColor(255, 255, 255);
    colours.onLevel = colours.dark ? colours.text : QColor(0, 0, 0);
}

} // namespace

double contrastRatio(const QColor &one, const QColor &other)
{
    const auto [darker, lighter] = std::minmax({luminance(one), luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

Colours Colours::from(const QPalette &palette)
{
    Colours colours{};
    setGrounds(colours, palette);
    setTexts(colours, palette);
    setAccents(colours);
    setStockSigns(colours);
    return colours;
}

const Colours &Colours::current()
{
    static qint64 key = -1;
    static Colours colours{};
    const QPalette palette = QGuiApplication::palette();
    if (palette.cacheKey() != key) {
        colours = from(palette);
        key = palette.cacheKey();
    }
    return colours;
}

} // namespace harrowby
