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

/// Finds out whether a window can be shown, before the QApplication, which would abort the program; or why none can.
/// `platform` and `display` are Qt's own options, empty when not given.
[[nodiscard]] Result<FoundDisplay, QString> findDisplay(const QString &platform, const QString &display);

/// True when somebody can see and answer a box: an application runs, and not on a platform without a screen.
[[nodiscard]] bool canShowBoxes();

} // namespace harrowby::app
