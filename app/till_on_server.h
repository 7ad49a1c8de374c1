// SPDX-License-Identifier: MIT
#pragma once

#include "app/start/exit_code.h"
#include "basic/result.h"

#include <QString>

namespace harrowby::app {

struct CommandLine;
class FailureNotice;
class LogFile;

/// Sells from the store at this server until the window is closed; the exit code. What ends the start has been shown.
[[nodiscard]] Result<int, ExitCode> runTillOnServer(const CommandLine &line, const QString &store,
                                                    FailureNotice &notice, LogFile &log);

} // namespace harrowby::app
