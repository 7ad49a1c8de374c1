// SPDX-License-Identifier: MIT
#include "app/start/look_choice.h"

#include <QApplication>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto section = u"Program"_s;
const auto key = u"Look"_s;

const std::array names = {std::pair(LookChoice::System, u"system"_s), std::pair(LookChoice::Light, u"light"_s),
                          std::pair(LookChoice::Dark, u"dark"_s)};

struct Shades
{
    QColor window, base, button, text, faint, accent, onAccent, link;
};

const Shades lightShades = {QColor(0xefefef), Qt::white,        QColor(0xefefef), Qt::black,
                            QColor(0x767676), QColor(0x006256), Qt::white,        QColor(0x0000ff)};
const Shades darkShades = {QColor(0x353535), QColor(0x232323), QColor(0x353535), Qt::white,
                           QColor(0x9a9a9a), QColor(0x40c9ac), QColor(0x041e19), QColor(0x8cb4ff)};

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

QString nameOf(LookChoice look)
{
    for (const auto &[choice, name] : names) {
        if (choice == look)
            return name;
    }
    return {};
}

} // namespace

std::optional<LookChoice> lookNamed(const QString &name)
{
    for (const auto &[choice, known] : names) {
        if (known.compare(name, Qt::CaseInsensitive) == 0)
            return choice;
    }
    return {};
}

LookChoice savedLook(const OfficeSettings &settings)
{
    return lookNamed(settings.get(section, key, {}).trimmed()).value_or(LookChoice::System);
}

bool saveLook(const OfficeSettings &settings, LookChoice look)
{
    return settings.save(section, key, nameOf(look));
}

std::optional<QPalette> lookPalette(LookChoice look)
{
    if (look == LookChoice::System)
        return {};
    return paletteOf(look == LookChoice::Dark ? darkShades : lightShades);
}

void wearLook(LookChoice look)
{
    if (const auto palette = lookPalette(look))
        QApplication::setPalette(*palette);
}

} // namespace harrowby::app
