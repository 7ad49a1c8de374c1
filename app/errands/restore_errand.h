// SPDX-License-Identifier: MIT
#pragma once

#include "app/start/exit_code.h"

#include <QString>

namespace harrowby::app {

/// "--restore FILE": puts what this backup holds in place of what the store holds; the store must not be open. The
/// store that is replaced goes into the usual folder of backups.
[[nodiscard]] ExitCode restoreWithoutWindow(const QString &store, const QString &backup);

} // namespace harrowby::app
