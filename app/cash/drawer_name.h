// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/office_settings.h"

#include <QString>

namespace harrowby::app {

/// The name of this till's drawer, as its payments bear it: what the command line says, or else what this machine has
/// saved, or else the machine's own name.
[[nodiscard]] QString drawerName(const QString &option, const OfficeSettings &settings);

/// The saved one; empty while there is none.
[[nodiscard]] QString savedDrawerName(const OfficeSettings &settings);
/// False when it could not be saved.
[[nodiscard]] bool saveDrawerName(const OfficeSettings &settings, const QString &name);

/// What was typed, as a drawer can be called (tidyLabel()).
[[nodiscard]] QString drawerNameOf(const QString &typed);

} // namespace harrowby::app
