// SPDX-License-Identifier: MIT
#pragma once

#include "app/start/exit_code.h"

namespace harrowby::app {

struct CommandLine;

/// Runs the errand of the command line to its end: on the store that it names, which is judged and opened as a till
/// does it. Never makes a store, and asks nobody: what is wrong is printed to standard error. Needs an application
/// object.
[[nodiscard]] ExitCode runErrand(const CommandLine &line);

} // namespace harrowby::app
