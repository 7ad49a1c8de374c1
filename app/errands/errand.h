// SPDX-License-Identifier: MIT
#pragma once

#include "app/start/errand_line.h"
#include "app/start/exit_code.h"

#include <QString>

#include <functional>

namespace harrowby::app {

class Records;
class StoreGuard;

/// The open store that an errand works on.
struct ErrandStore
{
    QString address;                   ///< path of the file, or the server's target
    Records &records;                  ///< over the connection that is open
    StoreGuard *guard = nullptr;       ///< null on a server
    std::function<void()> beginAction; ///< for each piece of work: its waits have their full time again
};

/// An errand whose command line has been read: does it, says how it ended, and yields the exit code.
using Errand = std::function<ExitCode(const ErrandStore &store)>;

/// Whether a file is still the one that was opened; what has happened to it has been told when it is not.
[[nodiscard]] bool storeIsStillThere(const ErrandStore &store);

/// To standard error, with the program's name before it.
void tellOfErrand(const QString &text);

} // namespace harrowby::app
