// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QString>

namespace harrowby::app::test {

/// Divides the screen of an X server into monitors, which programs see as screens of their own. False when the server
/// does not take it.
///
/// The first one gets the server's output, and so takes the place of the whole screen.
[[nodiscard]] bool setMonitor(const QString &display, const QString &name, const QRect &place, bool isFirst = false);
[[nodiscard]] bool removeMonitor(const QString &display, const QString &name);

} // namespace harrowby::app::test
