// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <memory>

/// The component-wide slot that holds the host's open connection. Init fills it; the window only reads it.
namespace harrowby::InvBasic {

[[nodiscard]] const std::shared_ptr<DbConnection> &connection();
void setConnection(std::shared_ptr<DbConnection> connection);

} // namespace harrowby::InvBasic
