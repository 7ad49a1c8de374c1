// SPDX-License-Identifier: MIT
#pragma once

#include "app/start/errand_line.h"
#include "app/start/exit_code.h"

namespace harrowby::app {

/// "--copy-store FROM TO": a whole store out of a file into a server's empty store, or out of a server into a new file.
/// Nobody may have either of them open.
[[nodiscard]] ExitCode copyStoreWithoutWindow(const ErrandLine &line);

} // namespace harrowby::app
