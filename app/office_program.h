// SPDX-License-Identifier: MIT
#pragma once

#include "app/start/exit_code.h"
#include "basic/result.h"

#include <QString>

namespace harrowby::app {

struct CommandLine;
class FailureNotice;
class LogFile;

/// The office of an existing store, by its address, from its opening to its end: the exit code, or the one that ends
/// the start; the message has been shown. For a restore it lets go of the store, and opens it and asks for the login
/// again.
[[nodiscard]] Result<int, ExitCode> runOfficeProgram(const CommandLine &line, const QString &store,
                                                     FailureNotice &notice, LogFile &log);

} // namespace harrowby::app
