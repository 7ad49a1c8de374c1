// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"
#include "app/start/exit_code.h"
#include "basic/result.h"

#include <QString>

namespace harrowby::app {

/// Asks for the password of the first user of a server's store that has none, and adds him; nothing where there is one.
/// The exit code that ends the start, where nobody can log in then; the message has been shown.
[[nodiscard]] Result<void, ExitCode> seeToFirstUser(Records &records, const QString &store);

} // namespace harrowby::app
