// SPDX-License-Identifier: MIT
#pragma once

#include "engine/database.h"

#include <QDateTime>
#include <QString>

#include <optional>

/// The demo shop: a small store with a past, to look around and to sell from.
namespace harrowby::app {

/// Fills the six empty tables: items, categories, users, settings, and the purchases of the four weeks up to `now`.
/// The same `now` gives the same shop.
[[nodiscard]] std::optional<SqlError> fillDemoShop(sqlite3 *database, const QDateTime &now);

/// How to log in.
[[nodiscard]] QString demoLoginText();

} // namespace harrowby::app
