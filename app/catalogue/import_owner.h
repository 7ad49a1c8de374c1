// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace harrowby::app {

/// This program, as it can be told from every other one: machine, process and when that was started.
[[nodiscard]] QString thisOwner();
/// Whether that program lives, or may live on another machine.
[[nodiscard]] bool mayLive(const QString &owner);

} // namespace harrowby::app
