// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

struct sqlite3;

/// Connections whose file is no longer the one that was opened. Whoever watches the file notes it here; from then on
/// every error of a statement on that connection says so instead of the engine's own words. May be used on any thread.
namespace harrowby {

/// What has happened to the file of this connection, in one sentence; empty when nothing has.
[[nodiscard]] QString lossOf(const sqlite3 *database);
void noteLoss(const sqlite3 *database, const QString &headline);
/// Before the connection is closed: another one may get its address.
void forgetLoss(const sqlite3 *database);

} // namespace harrowby
