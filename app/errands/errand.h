// SPDX-License-Identifier: MIT
#pragma once

#include "app/start/errand_line.h"
#include "app/start/exit_code.h"

#include <QString>

#include <functional>

namespace harrowby::app {

class BusyWait;
class StoreGuard;

/// The open store that an errand works on.
struct ErrandStore
{
    QString path;
    StoreGuard &guard;
    BusyWait &wait; ///< of the guard's connection: refill() it for each piece of work
};

/// An errand whose command line has been read: does it, says how it ended, and yields the exit code.
using Errand = std::function<ExitCode(const ErrandStore &store)>;

/// Whether the file is still the one that was opened; what has happened to it has been told when it is not.
[[nodiscard]] bool storeIsStillThere(const ErrandStore &store);

/// To standard error, with the program's name before it.
void tellOfErrand(const QString &text);

} // namespace harrowby::app
