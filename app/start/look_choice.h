// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/office_settings.h"

#include <QPalette>
#include <QString>

#include <optional>

/// The look of the whole program: light, dark, or as the desktop has it (System).
namespace harrowby::app {

enum class LookChoice {
    System,
    Light,
    Dark,
};

/// "light", "dark" or "system"; none for anything else.
[[nodiscard]] std::optional<LookChoice> lookNamed(const QString &name);

/// What this user has saved; System when it is nothing, or nothing known.
[[nodiscard]] LookChoice savedLook(const OfficeSettings &settings);
/// False when it could not be saved.
[[nodiscard]] bool saveLook(const OfficeSettings &settings, LookChoice look);

/// The colours of a look; none for System.
[[nodiscard]] std::optional<QPalette> lookPalette(LookChoice look);

/// Sets the palette of the look on the application, which passes it on to open windows.
void applyLook(LookChoice look);

} // namespace harrowby::app
