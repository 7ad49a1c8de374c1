// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/server_engine.h"

#include <QString>

namespace harrowby::app {

/// Why a store on a server cannot be opened, a line break, and what to do. `store` is its address.
[[nodiscard]] QString problemWords(const ServerProblem &problem, const QString &store);

/// Why the server of a store that is open cannot be used now, in one line without a full stop.
[[nodiscard]] QString goneWords(const ServerProblem &problem);

/// The server has the store, and nobody who could log in; this machine may not add the first one.
[[nodiscard]] QString nobodyYetWords(const QString &store);

} // namespace harrowby::app
