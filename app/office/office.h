// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/office_settings.h"

#include <QString>

/// The store's office: windows for its ADMINISTRATOR, beside the till.
namespace harrowby::app {

class StoreGuard;

enum class OfficeEnd {
    Left,    ///< the window was closed, or the password was not given
    Refused, ///< nobody can be let in; the message has been shown
};

/// Asks for the password and shows the window until it is closed.
[[nodiscard]] OfficeEnd runOffice(StoreGuard &guard, const QString &store, const OfficeSettings &settings);

} // namespace harrowby::app
