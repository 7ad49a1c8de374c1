// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <memory>

namespace harrowby::app {

/// Supplies the windows that the component leaves to its host. Does not keep the connection alive.
void supplyForeignWindows(const std::shared_ptr<DbConnection> &connection);

/// Plugins are not looked for anywhere.
void leaveOutPlugins();

} // namespace harrowby::app
