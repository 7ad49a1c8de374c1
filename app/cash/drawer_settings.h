// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/office_settings.h"

#include <QByteArray>
#include <QString>

namespace harrowby::app {

/// The cash drawer of this machine, which hangs on a receipt printer; saved settings of this user.
struct DrawerSettings
{
    static constexpr int shortestMs = 2;
    static constexpr int longestMs = 510;
    static constexpr int usualPulseMs = 50;
    static constexpr int usualPauseMs = 500;

    bool isOn = false;
    QString queue; ///< of the print service
    int pin = 2;   ///< of the drawer's plug: 2 or 5
    int pulseMs =
        usualPulseMs; ///< how long the drawer's magnet is on; both times are even, as the printer counts steps of 2 ms
    int pauseMs = usualPauseMs; ///< how long it rests then

    bool operator==(const DrawerSettings &) const = default;
};

/// What is not understood counts as not saved.
[[nodiscard]] DrawerSettings readDrawerSettings(const OfficeSettings &settings);
/// Saves what differs from `before`. False when something could not be saved.
[[nodiscard]] bool saveDrawerSettings(const OfficeSettings &settings, const DrawerSettings &before,
                                      const DrawerSettings &after);

/// What opens the drawer: ESC p m t1 t2, as receipt printers understand it. Nothing is printed and no paper is fed.
[[nodiscard]] QByteArray drawerPulse(const DrawerSettings &settings);

} // namespace harrowby::app
