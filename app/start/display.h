// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QString>

#include <memory>

struct xcb_connection_t;

namespace harrowby::app {

struct CloseDisplay
{
    void operator()(xcb_connection_t *connection) const noexcept;
};

/// A display that answers; with X11 the connection to it. Keep it until the QApplication exists, as an X server may
/// reset when its last client disconnects, and refuses connections while it does.
using FoundDisplay = std::unique_ptr<xcb_connection_t, CloseDisplay>;

/// Finds out whether a window can be shown, before the QApplication; or why none can. `platform` and `display` are Qt's
/// own options, empty when not given.
///
/// Probed by hand because Qt 6 tells none of it before it ends the program: the constructor of QGuiApplication calls
/// qFatal() when no platform can be initialized, and only private classes list the platform plugins. So this does what
/// that constructor would: it takes the platforms from the option or the environment, looks for the plugin of each, and
/// connects to the X server or the Wayland socket that the plugin would connect to.
[[nodiscard]] Result<FoundDisplay, QString> findDisplay(const QString &platform, const QString &display);

/// True when somebody can see and answer a box: an application runs, and not on a platform without a screen.
[[nodiscard]] bool canShowBoxes();

} // namespace harrowby::app
