// SPDX-License-Identifier: MIT
#pragma once

#include "app/start/exit_code.h"
#include "basic/result.h"

#include <QString>

namespace harrowby::app {

struct CommandLine;
class FailureNotice;
class LogFile;

/// Sells from a store file, or from a server's store, until the window is closed; the exit code. `store` is its address
/// (basic/store_address.h). What ends the start has been shown.
[[nodiscard]] Result<int, ExitCode> runTillProgram(const CommandLine &line, const QString &store, FailureNotice &notice,
                                                   LogFile &log);

} // namespace harrowby::app
