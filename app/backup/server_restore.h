// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/restore.h"

namespace harrowby::app {

/// Puts what a backup holds in place of what a server's store holds, in one transaction of the server's. In these
/// steps:
///
/// - the backup is judged by the rules by which a store is opened, checked as a whole, and each of its rows is looked
///   at whether a server can hold it;
/// - the server's store is copied into a checked file, as restoreStore() keeps one;
/// - nobody else has it open, or can write to it from now on;
/// - all rows are replaced, read back and compared, the deeds since then stay, and this one is added.
///
/// Whatever fails, the store is as it was; where the connection breaks in the very end, nobody may know.
[[nodiscard]] RestoreResult restoreServer(const RestoreOrder &order, const WorkWatch &watch);

} // namespace harrowby::app
