// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

struct sqlite3;

/// Connections whose file is no longer the one that was opened. The guard of the file notes it here; from then on each
/// error of a statement on that connection has this reason instead of the engine's message. Thread-safe.
namespace harrowby {

/// What has happened to the file of this connection, in one sentence; empty when nothing has.
[[nodiscard]] QString lossOf(const sqlite3 *database);
void noteLoss(const sqlite3 *database, const QString &headline);
/// Before the connection is closed: another one may get its address.
void forgetLoss(const sqlite3 *database);

} // namespace harrowby
