// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/restore.h"

namespace harrowby::app {

/// Restores while a window of its own shows how far it is and offers to cancel it. Returns when it has ended. This
/// program has the store not open.
[[nodiscard]] RestoreResult restoreInWindow(const RestoreOrder &order);

/// What there is to say about it, for a person.
[[nodiscard]] QString restoreWords(const RestoreResult &result);

} // namespace harrowby::app
