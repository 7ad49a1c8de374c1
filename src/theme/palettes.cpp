// SPDX-License-Identifier: MIT
#include "theme/palettes.h"

#include "theme/colours.h"

namespace harrowby {

namespace {

struct Shades
{
    QColor window, base, button, text, faint, accent, onAccent, link;
};

const Shades lightShades = {QColor(0xefefef), Qt::white,           QColor(0xefefef),      Qt::black,
                            QColor(0x767676), QColor(lightAccent), QColor(onLightAccent), QColor(lightLink)};
const Shades darkShades = {QColor(0x353535), QColor(0x232323),   QColor(0x353535),     Qt::white,
                           QColor(0x9a9a9a), QColor(darkAccent), QColor(onDarkAccent), QColor(darkLink)};

QPalette paletteOf(const Shades &shades)
{
    QPalette palette(shades.button, shades.window); // the shades of edges follow from the button's
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        palette.setColor(role, shades.text);
    for (const auto role : {QPalette::Base, QPalette::ToolTipBase})
        palette.setColor(role, shades.base);
    palette.setColor(QPalette::AlternateBase, shades.window);
    palette.setColor(QPalette::PlaceholderText, shades.faint);
    palette.setColor(QPalette::Highlight, shades.accent);
    palette.setColor(QPalette::HighlightedText, shades.onAccent);
    palette.setColor(QPalette::Link, shades.link);
    palette.setColor(QPalette::LinkVisited, shades.link);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, shades.faint);
    return palette;
}

} // namespace

QPalette lightPalette()
{
    return paletteOf(lightShades);
}

QPalette darkPalette()
{
    return paletteOf(darkShades);
}

} // namespace harrowby
