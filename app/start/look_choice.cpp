// SPDX-License-Identifier: MIT
#include "app/start/look_choice.h"

#include "theme/palettes.h"

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
    return look == LookChoice::Dark ? darkPalette() : lightPalette();
}

void applyLook(LookChoice look)
{
    if (const auto palette = lookPalette(look))
        QApplication::setPalette(*palette);
}

} // namespace harrowby::app
